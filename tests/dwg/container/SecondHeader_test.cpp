#include "embedded/dwg/container/SecondHeader.h"

#include <gtest/gtest.h>

#include "dwg/MadeDwg.h"
#include "support/SharedData.h"

namespace quoin::dwg::container {
namespace {

TEST(SecondHeader, OfAMadeFileComesBack) {
  const std::string file = test::madeFlatDwg();
  const auto place = findSecondHeader(file);
  ASSERT_TRUE(place.has_value());
  const SecondHeader header = readSecondHeader(file, *place);
  EXPECT_EQ(header.sections.size(), 3U);
  EXPECT_EQ(header.handles.size(), 2U);
  EXPECT_EQ(header.rest, "whatever");
  EXPECT_EQ(secondHeaderBytes(header, static_cast<std::uint32_t>(*place)), file.substr(*place));
}

TEST(SecondHeader, OfPublishedFilesComesBackButForItsPadding) {
  for (const auto& path : test::sharedFiles(".dwg")) {
    const std::string file = test::bytesOf(path);
    const auto place = findSecondHeader(file);
    if (file.compare(0, 6, "AC1015") > 0 || !place) {
      continue;
    }
    SCOPED_TRACE(path.filename().string());
    const SecondHeader header = readSecondHeader(file, *place);
    const std::string bytes = secondHeaderBytes(header, static_cast<std::uint32_t>(*place));
    ASSERT_EQ(bytes.size(), header.size);
    std::size_t different = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      different += bytes[i] != file[*place + i] ? 1 : 0;
    }
    // The last byte of bits is padded with whatever was there, and the checksum covers it.
    EXPECT_LE(different, 3U);
    const std::string moved = std::string(100, '\0') + secondHeaderBytes(header, 100);
    EXPECT_EQ(readSecondHeader(moved, 100).handles.size(), header.handles.size());
  }
}

TEST(SecondHeader, DamageIsRefused) {
  const std::string file = test::madeFlatDwg();
  const std::size_t place = findSecondHeader(file).value();
  for (std::size_t i = place + 16; i < file.size(); ++i) {
    if (i >= file.size() - 24 && i < file.size() - 16) {
      continue;  // nobody knows what these are
    }
    std::string damaged = file;
    damaged[i] = static_cast<char>(damaged[i] ^ 4);
    EXPECT_THROW(readSecondHeader(damaged, place), Damage) << i - place;
    EXPECT_THROW(readSecondHeader(file.substr(0, i), place), Damage) << i - place;
  }
}

}  // namespace
}  // namespace quoin::dwg::container
