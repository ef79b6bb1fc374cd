// The parts that files of R2007 have of their own; whole files are those of SharedDwg_test.cpp.
#include "embedded/dwg/container/CodedFile.h"

#include <gtest/gtest.h>

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"
#include "embedded/dwg/container/CodedLz77.h"
#include "embedded/dwg/container/ReedSolomon.h"

namespace quoin::dwg::container {
namespace {

using namespace std::string_literals;

std::string unpacked(std::string_view packed, std::size_t size) {
  std::string out(size, '?');
  out.resize(unpackCodedLz77(packed, out.data(), size));
  return out;
}

/// 40 literals behind their count, in an order that unpacks to "abc...".
std::string fortyLiterals() {
  return "\x0F\x11"s + "YZ012345QRSTUVWXIJKLMNOPABCDEFGH" + "abcdefgh";
}

TEST(CodedLz77, LiteralsComeInTheOrderOfTheFormat) {
  EXPECT_EQ(unpacked(fortyLiterals(), 40), "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345abcdefgh");
  EXPECT_EQ(unpacked("\x00"s + "abcdefgh", 8), "abcdefgh");
  EXPECT_EQ(unpacked("\x01"s + "abcdefghi", 9), "iabcdefgh");
  EXPECT_EQ(unpacked("\x02"s + "abcdefghij", 10), "jbcdefghia");
  EXPECT_EQ(unpacked("\x09"s + "abcdefghijklmnopq", 17), "jklmnopqiabcdefgh");
}

TEST(CodedLz77, CopiesOfEveryKindAreUnderstood) {
  const std::string eight = "\x00"s + "abcdefgh";
  // 4 bytes from 8 back, then one literal.
  EXPECT_EQ(unpacked(eight + "\x47\x01x"s, 13), "abcdefghabcdx");
  // 3 bytes from 2 back, behind it 15 - 15 + 3 more from 1 back.
  EXPECT_EQ(unpacked(eight + "\x32\x00\x10\x00\x01z"s, 15), "abcdefghfghhhhz");
  // 19 bytes from 1 back.
  EXPECT_EQ(unpacked(eight + "\x00\x00\x00"s, 27), "abcdefgh" + std::string(19, 'h'));
  // 2 + 8 bytes, and 0x100 + 1 + 8 of them, from 4 back.
  EXPECT_EQ(unpacked(eight + "\x22\x04\x00\x08"s, 18), "abcdefghefghefghef");
  EXPECT_EQ(unpacked(eight + "\x29\x03\x00\x01\x00"s, 273).size(), 273U);
}

TEST(CodedLz77, DamagedInstructionsAreRefused) {
  const std::string eight = "\x00"s + "abcdefgh";
  for (const std::string& packed :
       {"\x07"s + "abc", eight + "\x49\x01x"s, eight + "\x4F\x08x"s, eight + "\x22\x00\x00\x08"s,
        eight + "\x22\x04"s, eight + "\x00\x00\x80"s, "\x0F\xFF\xFF\xFF\xFF\xFF"s}) {
    EXPECT_THROW(unpacked(packed, 27), Damage) << testing::PrintToString(packed);
  }
}

TEST(ReedSolomon, DataStandsInFrontAndWordsAreInterleaved) {
  std::string encoded(2 * kCodeWordSize, '\0');
  for (const std::size_t dataSize : {kSystemDataSize, kPageDataSize}) {
    const Decoded decoded = decodeReedSolomon(encoded, 2, dataSize);
    EXPECT_TRUE(decoded.isRight);
    EXPECT_EQ(decoded.data, std::string(2 * dataSize, '\0'));
  }
  encoded[2] = 'x';
  const Decoded decoded = decodeReedSolomon(encoded, 2, kSystemDataSize);
  EXPECT_FALSE(decoded.isRight);
  EXPECT_EQ(decoded.data.find('x'), 1U);
  encoded[2] = '\0';
  encoded[509] = 'x';
  EXPECT_FALSE(decodeReedSolomon(encoded, 2, kPageDataSize).isRight);
}

TEST(ReedSolomon, TheGeneratorOfPagesIsAWord) {
  // (x + 2)(x + 4)(x + 8)(x + 16) over the field of 0x11D, the constant first.
  std::string word(kCodeWordSize, '\0');
  word.replace(0, 5, "\x74\xE7\xD8\x1E\x01");
  EXPECT_TRUE(decodeReedSolomon(word, 1, kPageDataSize).isRight);
  EXPECT_FALSE(decodeReedSolomon(word, 1, kSystemDataSize).isRight);
}

TEST(Checksum, OfPagesOfR2007DependsOnSizeAndOrder) {
  // Of the section AcDb:Template of a published drawing.
  EXPECT_EQ(codedPageChecksum("\x01\x00\x00\x00\x00\x00"s), 0x487336B2U);
  EXPECT_NE(codedPageChecksum("abcdefgh"), codedPageChecksum("bacdefgh"));
  EXPECT_NE(codedPageChecksum(""), codedPageChecksum("\0"s));
}

}  // namespace
}  // namespace quoin::dwg::container
