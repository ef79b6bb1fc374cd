#include "embedded/dwg/container/ObjectMap.h"

#include <gtest/gtest.h>

#include <random>

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"

namespace quoin::dwg::container {
namespace {

using namespace std::string_view_literals;

std::vector<MapEntry> readBack(std::string_view section, Warnings& warnings) {
  return readObjectMap(section, 0, 1000000, warnings);
}

void expectSame(const std::vector<MapEntry>& some, const std::vector<MapEntry>& others) {
  ASSERT_EQ(some.size(), others.size());
  for (std::size_t i = 0; i < some.size(); ++i) {
    ASSERT_EQ(some[i].handle, others[i].handle) << i;
    ASSERT_EQ(some[i].place, others[i].place) << i;
  }
}

/// A chunk with these pairs and its checksum, and the empty one behind it.
std::string sectionOf(std::string_view pairs) {
  std::string section;
  for (const std::string_view chunk : {pairs, ""sv}) {
    std::string bytes{'\0', static_cast<char>(chunk.size() + 2)};
    bytes += chunk;
    const std::uint16_t sum = crc16(kCrc16Seed, bytes);
    section += bytes + static_cast<char>(sum >> 8) + static_cast<char>(sum & 0xFF);
  }
  return section;
}

TEST(ObjectMap, OfManyEntriesComesBack) {
  std::mt19937_64 random(5);
  for (const std::size_t count : {0U, 1U, 3U, 500U, 20000U}) {
    std::vector<MapEntry> entries;
    std::uint64_t handle = 0;
    for (std::size_t i = 0; i < count; ++i) {
      handle += 1 + (random() >> (random() % 40 + 24));
      entries.push_back({handle, random() >> (random() % 50 + 14)});
    }
    Warnings warnings;
    const std::string section = objectMapOf(entries);
    expectSame(readBack(section, warnings), entries);
    EXPECT_TRUE(warnings.list().empty());
    EXPECT_EQ(objectMapOf(readBack(section, warnings)), section);
  }
}

TEST(ObjectMap, ChunksStayBelowTheLimitOfTheFormat) {
  std::vector<MapEntry> entries;
  for (std::uint64_t i = 1; i < 9000; ++i) {
    entries.push_back({i * 100, i % 2 * 1000000});
  }
  const std::string section = objectMapOf(entries);
  std::size_t at = 0;
  std::size_t largest = 0;
  while (at + 4 < section.size()) {
    const std::size_t size = static_cast<unsigned char>(section[at]) * std::size_t{256} +
                             static_cast<unsigned char>(section[at + 1]);
    largest = std::max(largest, size);
    at += size + 2;
  }
  EXPECT_LE(largest, 2032U);
  EXPECT_GT(largest, 2020U);
}

TEST(ObjectMap, NumbersAreSpelledAsTheFormatHasThem) {
  Warnings warnings;
  // Handle 0x81 at 0x41, then handle 0x82 at 0 less.
  expectSame(readBack(sectionOf("\x81\x01\xC1\x00\x01\x80\x40"sv), warnings),
             {{0x81, 0x41}, {0x82, 0x41}});
  expectSame(readBack(sectionOf("\x01\x3F\x01\x7E"sv), warnings), {{1, 63}, {2, 1}});
  EXPECT_TRUE(warnings.list().empty());
}

TEST(ObjectMap, AWrongChecksumIsDamage) {
  std::string section = objectMapOf({{1, 2}, {3, 4}});
  section[3] = static_cast<char>(section[3] ^ 1);
  Warnings warnings;
  EXPECT_EQ(readBack(section, warnings).size(), 2U);
  EXPECT_FALSE(warnings.whyReadOnly().empty());
}

TEST(ObjectMap, ACutOffMapGivesWhatItHas) {
  std::vector<MapEntry> entries;
  for (std::uint64_t i = 1; i < 3000; ++i) {
    entries.push_back({i, i * 70});
  }
  const std::string section = objectMapOf(entries);
  for (const std::size_t size : {0U, 1U, 3U, 2034U, 2040U, 5000U}) {
    Warnings warnings;
    const auto read = readBack(std::string_view(section).substr(0, size), warnings);
    EXPECT_LT(read.size(), entries.size());
    EXPECT_EQ(read.empty(), size < 2034) << size;
    EXPECT_FALSE(warnings.whyReadOnly().empty()) << size;
  }
}

TEST(ObjectMap, OfTwoRecordsWithOneHandleTheFirstCounts) {
  Warnings warnings;
  expectSame(readBack(sectionOf("\x05\x09\x00\x09"sv), warnings), {{5, 9}});
  EXPECT_FALSE(warnings.whyReadOnly().empty());
}

TEST(ObjectMap, AHandleOfZeroIsLeftOut) {
  Warnings warnings;
  expectSame(readBack(sectionOf("\x00\x09\x05\x09"sv), warnings), {{5, 18}});
  EXPECT_FALSE(warnings.whyReadOnly().empty());
}

TEST(ObjectMap, MoreRecordsThanThereIsRoomForAreDamage) {
  std::vector<MapEntry> entries;
  for (std::uint64_t i = 1; i < 100000; ++i) {
    entries.push_back({i, 0});
  }
  Warnings warnings;
  EXPECT_LT(readObjectMap(objectMapOf(entries), 0, 5000, warnings).size(), 7000U);
  EXPECT_FALSE(warnings.whyReadOnly().empty());
}

TEST(ObjectMap, HandlesOutOfOrderArePutInOrder) {
  std::string section = objectMapOf({{7, 70}});
  section.resize(section.size() - 4);
  section += objectMapOf({{3, 30}});
  Warnings warnings;
  expectSame(readBack(section, warnings), {{3, 30}, {7, 70}});
  EXPECT_EQ(warnings.list().size(), 1U);
  EXPECT_EQ(warnings.whyReadOnly(), "");
}

}  // namespace
}  // namespace quoin::dwg::container
