#include "embedded/dwg/container/Checksum.h"

#include <gtest/gtest.h>

#include <string>

namespace quoin::dwg::container {
namespace {

TEST(Checksum, OfKnownTextIsKnown) {
  EXPECT_EQ(crc16(0xFFFF, "123456789"), 0x4B37);
  EXPECT_EQ(crc16(0, "123456789"), 0xBB3D);
  EXPECT_EQ(crc32("123456789"), 0xCBF43926U);
  EXPECT_EQ(pageChecksum(1, "Wikipedia"), 0x11E60398U);
}

TEST(Checksum, OfAPartIsTheSeedOfTheRest) {
  const std::string bytes = std::string(20000, '\xFF') + "and so on";
  for (const std::size_t cut : {0U, 1U, 5552U, 5553U, 20000U}) {
    const std::string_view front = std::string_view(bytes).substr(0, cut);
    const std::string_view back = std::string_view(bytes).substr(cut);
    EXPECT_EQ(pageChecksum(pageChecksum(0, front), back), pageChecksum(0, bytes)) << cut;
    EXPECT_EQ(crc16(crc16(kCrc16Seed, front), back), crc16(kCrc16Seed, bytes)) << cut;
  }
}

TEST(Checksum, OfAFileHeaderNeedsNoConstantForItsNumberOfSections) {
  // The published description begins with 0 and combines the result with one of these.
  const std::uint16_t published[] = {0xA598, 0x8101, 0x3CC4, 0x8461};
  for (std::size_t sections = 3; sections <= 6; ++sections) {
    const std::string header(0x19 + 9 * sections, 'x');
    EXPECT_EQ(crc16(kCrc16Seed, header), crc16(0, header) ^ published[sections - 3]);
  }
}

}  // namespace
}  // namespace quoin::dwg::container
