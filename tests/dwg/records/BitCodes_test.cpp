// The bit codes of DWG records: what is written is read again, in the shortest form and in the
// form that a file had.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "embedded/dwg/records/BitReader.h"
#include "embedded/dwg/records/BitWriter.h"

namespace quoin::dwg {
namespace {

BitReader readerOf(const BitWriter& writer) {
  return BitReader(writer.bytes(), 0, writer.size());
}

TEST(BitCodes, BitsStandMostSignificantFirst) {
  BitWriter writer;
  writer.bits(0b101, 3);
  writer.rawChar(0xFF);
  EXPECT_EQ(writer.size(), 11U);
  EXPECT_EQ(writer.bytes(), std::string("\xBF\xE0"));
}

TEST(BitCodes, RawNumbersStandLeastSignificantByteFirst) {
  BitWriter writer;
  writer.rawShort(0x1234);
  writer.rawLong(0x89ABCDEF);
  EXPECT_EQ(writer.bytes(), std::string("\x34\x12\xEF\xCD\xAB\x89"));
}

TEST(BitCodes, ShortAndLongTakeTheShortestFormThatHoldsThem) {
  const std::vector<std::pair<std::uint16_t, std::size_t>> sizes{
      {0, 2}, {256, 2}, {1, 10}, {255, 10}, {257, 18}, {0xFFFF, 18}};
  for (const auto& [value, size] : sizes) {
    BitWriter writer;
    writer.bitShort(value);
    EXPECT_EQ(writer.size(), size) << value;
    BitReader reader = readerOf(writer);
    EXPECT_EQ(reader.bitShort().value, value);
    EXPECT_FALSE(reader.hasFailed());
  }
  for (const std::uint32_t value : {0U, 1U, 255U, 256U, 0xFFFFFFFFU}) {
    BitWriter writer;
    writer.bitLong(value);
    BitReader reader = readerOf(writer);
    EXPECT_EQ(reader.bitLong().value, value);
  }
}

TEST(BitCodes, ANumberKeepsTheFormThatTheFileHad) {
  BitWriter writer;
  writer.bitShort(7, 0);
  writer.bitLong(0, 1);
  writer.bitDouble(1.0, 0);
  writer.defaultDouble(2.5, 2.5, 3);
  BitReader reader = readerOf(writer);
  EXPECT_EQ(reader.bitShort().form, 0);
  EXPECT_EQ(reader.bitLong().form, 1);
  EXPECT_EQ(reader.bitDouble().form, 0);
  const Coded<double> whole = reader.defaultDouble(2.5);
  EXPECT_EQ(whole.form, 3);
  EXPECT_EQ(whole.value, 2.5);
}

TEST(BitCodes, AFormThatCannotHoldTheNumberIsNotTaken) {
  BitWriter writer;
  writer.bitShort(300, 1);
  writer.bitDouble(-0.0, 2);
  writer.defaultDouble(5.0, 4.0, 0);
  BitReader reader = readerOf(writer);
  EXPECT_EQ(reader.bitShort().value, 300);
  const double zero = reader.bitDouble().value;
  EXPECT_TRUE(zero == 0.0 && std::signbit(zero));
  EXPECT_EQ(reader.defaultDouble(4.0).value, 5.0);
}

TEST(BitCodes, ADoubleIsReadAsItsDifferenceToADefault) {
  std::mt19937_64 random(20);
  std::uniform_real_distribution<double> any(-1e6, 1e6);
  for (int i = 0; i < 1000; ++i) {
    const double base = any(random);
    const double near = base * (1.0 + 1e-9 * any(random) / 1e6);
    for (const double value : {base, near, std::nextafter(base, 1e9), any(random), 0.0,
                               std::numeric_limits<double>::infinity()}) {
      BitWriter writer;
      writer.defaultDouble(value, base);
      BitReader reader = readerOf(writer);
      EXPECT_EQ(reader.defaultDouble(base).value, value);
      EXPECT_TRUE(reader.isAtEnd());
    }
  }
}

TEST(BitCodes, HandlesReferAbsolutelyAndToTheirOwnNeighbours) {
  const std::uint64_t own = 0x1F0;
  BitWriter writer;
  writer.handle({4, 2, 0x123});
  writer.handle({6, 0, 0});
  writer.handle({8, 0, 0});
  writer.handle({10, 1, 0x10});
  writer.handle({12, 1, 0xF0});
  BitReader reader = readerOf(writer);
  for (const std::uint64_t meant : {0x123U, 0x1F1U, 0x1EFU, 0x200U, 0x100U}) {
    EXPECT_EQ(reader.handle().resolved(own), meant);
  }
}

TEST(BitCodes, ObjectTypesTakeOneByteOrTwo) {
  for (const int value : {0, 19, 255, 256, 0x1F0, 0x2EF, 0x2F0, 0x7FFF}) {
    const auto type = static_cast<std::uint16_t>(value);
    BitWriter writer;
    writer.objectType(type);
    BitReader reader = readerOf(writer);
    EXPECT_EQ(reader.objectType(), type);
    EXPECT_TRUE(reader.isAtEnd());
  }
}

TEST(BitCodes, WhatIsNotThereReadsAsZeroAndFails) {
  BitReader reader(std::string_view("\x01", 1), 0, 8);
  EXPECT_EQ(reader.rawShort(), 0);
  EXPECT_TRUE(reader.hasFailed());
  EXPECT_TRUE(reader.isAtEnd());
  BitReader beyond(std::string_view("ab"), 40, 50);
  EXPECT_TRUE(beyond.hasFailed());
}

TEST(BitCodes, AHandleOfMoreBytesThanANumberHasFails) {
  BitWriter writer;
  writer.bits(4, 4);
  writer.bits(9, 4);
  writer.rawLongLong(1);
  writer.rawChar(1);
  BitReader reader = readerOf(writer);
  reader.handle();
  EXPECT_TRUE(reader.hasFailed());
}

TEST(BitCodes, ALongIsReplacedWhereItStands) {
  BitWriter writer;
  writer.bits(1, 3);
  writer.rawLong(0);
  writer.bits(1, 2);
  writer.replaceLong(3, 0xA1B2C3D4);
  BitReader reader = readerOf(writer);
  EXPECT_EQ(reader.bits(3), 1U);
  EXPECT_EQ(reader.rawLong(), 0xA1B2C3D4U);
  EXPECT_EQ(reader.bits(2), 1U);
}

}  // namespace
}  // namespace quoin::dwg
