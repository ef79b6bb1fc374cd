#include "embedded/dxf/Tag.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "embedded/dxf/FileError.h"

namespace quoin::dxf {
namespace {

Format ascii(std::string lineEnd = "\n") {
  Format format;
  format.lineEnd = std::move(lineEnd);
  return format;
}

Format binary(bool narrow = false) {
  Format format;
  format.form = Form::Binary;
  format.narrowGroupCodes = narrow;
  return format;
}

TagView only(std::string_view bytes, const Format& format) {
  TagCursor cursor(bytes, format);
  TagView tag;
  EXPECT_TRUE(cursor.next(tag));
  EXPECT_EQ(cursor.offset(), bytes.size());
  return tag;
}

double readDouble(std::string text) {
  const std::string bytes = " 10\n" + std::move(text) + "\n";
  return doubleOf(only(bytes, ascii()), ascii());
}

std::int64_t readInteger(std::string text) {
  const std::string bytes = " 70\n" + std::move(text) + "\n";
  return integerOf(only(bytes, ascii()), ascii());
}

// --- kinds of values ----------------------------------------------------------------------

TEST(TagType, FollowsTheRangesOfTheReference) {
  EXPECT_EQ(tagType(0), TagType::Text);
  EXPECT_EQ(tagType(5), TagType::Handle);
  EXPECT_EQ(tagType(9), TagType::Text);
  EXPECT_EQ(tagType(10), TagType::Double);
  EXPECT_EQ(tagType(59), TagType::Double);
  EXPECT_EQ(tagType(60), TagType::Int16);
  EXPECT_EQ(tagType(80), TagType::Text);
  EXPECT_EQ(tagType(90), TagType::Int32);
  EXPECT_EQ(tagType(100), TagType::Text);
  EXPECT_EQ(tagType(105), TagType::Handle);
  EXPECT_EQ(tagType(140), TagType::Double);
  EXPECT_EQ(tagType(160), TagType::Int64);
  EXPECT_EQ(tagType(290), TagType::Bool);
  EXPECT_EQ(tagType(310), TagType::Binary);
  EXPECT_EQ(tagType(330), TagType::Handle);
  EXPECT_EQ(tagType(370), TagType::Int16);
  EXPECT_EQ(tagType(420), TagType::Int32);
  EXPECT_EQ(tagType(430), TagType::Text);
  EXPECT_EQ(tagType(999), TagType::Text);
  EXPECT_EQ(tagType(1004), TagType::Binary);
  EXPECT_EQ(tagType(1010), TagType::Double);
  EXPECT_EQ(tagType(1070), TagType::Int16);
  EXPECT_EQ(tagType(1071), TagType::Int32);
}

TEST(TagType, CodesOutsideTheReferenceAreText) {
  EXPECT_EQ(tagType(-1), TagType::Text);
  EXPECT_EQ(tagType(1072), TagType::Text);
  EXPECT_EQ(tagType(std::numeric_limits<int>::max()), TagType::Text);
}

// --- walking ------------------------------------------------------------------------------

TEST(UnreadableDouble, IsAFloatingPointNumberThatIsNoneOrNotFinite) {
  for (const char* text : {"abc", "", "1,5", "1e999", "nan", "inf", "1 2"}) {
    EXPECT_TRUE(isUnreadableDouble(only(" 10\n" + std::string(text) + "\n", ascii()), ascii()))
        << text;
  }
  for (const char* text : {"0", " 1.5 ", "+2", "-1e308", "1e-310"}) {
    EXPECT_FALSE(isUnreadableDouble(only(" 10\n" + std::string(text) + "\n", ascii()), ascii()))
        << text;
  }
  EXPECT_FALSE(isUnreadableDouble(only("  8\nabc\n", ascii()), ascii())) << "a text";
}

TEST(TagCursor, WalksPairsOfLinesAndTellsWhereEachTagStands) {
  const std::string bytes = "  0\r\nLINE\r\n 10\r\n1.5\r\n";
  const Format format = ascii("\r\n");
  TagCursor cursor(bytes, format);
  TagView tag;
  ASSERT_TRUE(cursor.next(tag));
  EXPECT_EQ(tag.code, 0);
  EXPECT_EQ(tag.value, "LINE");
  EXPECT_EQ(tag.begin, 0U);
  EXPECT_EQ(tag.end, 11U);
  ASSERT_TRUE(cursor.next(tag));
  EXPECT_EQ(tag.code, 10);
  EXPECT_EQ(tag.value, "1.5");
  EXPECT_EQ(tag.begin, 11U);
  EXPECT_FALSE(cursor.next(tag));
}

TEST(TagCursor, TakesEitherLineEndWhateverTheFirstLineHas) {
  const std::string bytes = "  0\r\nLINE\n 8\nA\r\n";
  const Format format = ascii("\r\n");
  TagCursor cursor(bytes, format);
  TagView tag;
  ASSERT_TRUE(cursor.next(tag));
  EXPECT_EQ(tag.value, "LINE");
  ASSERT_TRUE(cursor.next(tag));
  EXPECT_EQ(tag.value, "A");
}

TEST(TagCursor, TakesCarriageReturnsAloneAndWithLineFeeds) {
  const std::string bytes = "  0\rLINE\r 8\r\nA\r\n 62\r7\r";
  const Format format = ascii("\r");
  TagCursor cursor(bytes, format);
  TagView tag;
  std::string seen;
  while (cursor.next(tag)) {
    seen += std::to_string(tag.code) + "=" + std::string(tag.value) + ";";
  }
  EXPECT_EQ(seen, "0=LINE;8=A;62=7;");
}

TEST(TagCursor, ToleratesBlanksAroundGroupCodes) {
  EXPECT_EQ(only("    8 \t\nA\n", ascii()).code, 8);
  EXPECT_EQ(only("8\nA\n", ascii()).code, 8);
  EXPECT_EQ(only("  -5\nA\n", ascii()).code, -5);
}

TEST(TagCursor, KeepsTheBlanksOfAValue) {
  EXPECT_EQ(only("  1\n  a \n", ascii()).value, "  a ");
}

TEST(TagCursor, TakesALastLineWithoutItsEnd) {
  EXPECT_EQ(only("  0\nEOF", ascii()).value, "EOF");
}

TEST(TagCursor, ATagThatIsCutShortTellsItsOffset) {
  for (const std::string bytes : {"  8\nA\n  6", "  8\nA\n  6\n", "  8\nA\n  "}) {
    const Format format = ascii();
    TagCursor cursor(bytes, format);
    TagView tag;
    ASSERT_TRUE(cursor.next(tag));
    try {
      cursor.next(tag);
      FAIL() << bytes;
    } catch (const FileError& error) {
      EXPECT_EQ(error.status, Acad::eBadDxfFile);
      EXPECT_EQ(error.offset, 6U);
    }
  }
}

TEST(TagCursor, AGroupCodeThatIsNoNumberIsNamed) {
  for (const std::string text : {"x1", "1x", "", "1.0", "123456", "0x1", "-"}) {
    const std::string bytes = text + "\nA\n";
    const Format format = ascii();
    TagCursor cursor(bytes, format);
    TagView tag;
    try {
      cursor.next(tag);
      FAIL() << text;
    } catch (const FileError& error) {
      EXPECT_EQ(error.status, Acad::eInvalidDxfCode);
      EXPECT_EQ(std::string(error.what()), "group code '" + text + "' is not a number");
    }
  }
}

TEST(TagCursor, ReadsBinaryValuesOfEveryWidth) {
  using namespace std::string_literals;
  const Format format = binary();
  const std::string pi = "\x18\x2D\x44\x54\xFB\x21\x09\x40"s;
  EXPECT_EQ(doubleOf(only("\x0A\0"s + pi, format), format), 3.141592653589793);
  EXPECT_EQ(integerOf(only("\x46\0\xFE\xFF"s, format), format), -2);
  EXPECT_EQ(integerOf(only("\x5A\0\x01\0\0\x80"s, format), format), -2147483647);
  EXPECT_EQ(integerOf(only("\xA0\0\x01\0\0\0\0\0\0\x40"s, format), format), 0x4000000000000001);
  EXPECT_EQ(integerOf(only("\x22\x01\x01"s, format), format), 1);
  EXPECT_EQ(only("\x08\0Walls\0"s, format).value, "Walls");
  EXPECT_EQ(only("\x36\x01\x03\x01\0\x02"s, format).value, "\x01\0\x02"s);
  EXPECT_EQ(handleOf(only("\x05\0"s + "2F\0"s, format), format), 0x2FU);
}

TEST(TagCursor, ReadsNarrowGroupCodesAndTheirWideEscape) {
  using namespace std::string_literals;
  const Format format = binary(true);
  EXPECT_EQ(only("\x08Walls\0"s, format).code, 8);
  EXPECT_EQ(only("\xFE\0"s, format).code, 254);
  const std::string bytes = "\xFF\xEA\x03{\0"s;
  const TagView wide = only(bytes, format);
  EXPECT_EQ(wide.code, 1002);
  EXPECT_EQ(wide.value, "{");
}

TEST(TagCursor, ABinaryTagThatIsCutShortIsAnError) {
  using namespace std::string_literals;
  for (const std::string& bytes : {"\x0A"s, "\x0A\0"s, "\x0A\0\0\0\0\0\0\0\0"s, "\x08\0Walls"s,
                                   "\x36\x01"s, "\x36\x01\x05"s + "abcd", "\x46\0\x01"s}) {
    const Format format = binary();
    TagCursor cursor(bytes, format);
    TagView tag;
    EXPECT_THROW(cursor.next(tag), FileError) << bytes.size();
  }
}

TEST(TagCursor, ABinaryGroupCodeThatDoesNotExistIsAnError) {
  using namespace std::string_literals;
  for (const std::string& bytes : {"\xFF\x7F\0\0"s, "\xFF\xFF\0\0"s, "\x30\x04\0\0"s}) {
    const Format format = binary();
    TagCursor cursor(bytes, format);
    TagView tag;
    try {
      cursor.next(tag);
      FAIL();
    } catch (const FileError& error) {
      EXPECT_EQ(error.status, Acad::eInvalidDxfCode);
    }
  }
}

// --- numbers ------------------------------------------------------------------------------

TEST(TagNumber, DoublesAreReadInEverySpelling) {
  EXPECT_EQ(readDouble("1.5"), 1.5);
  EXPECT_EQ(readDouble("  -0.25  "), -0.25);
  EXPECT_EQ(readDouble("+3"), 3.0);
  EXPECT_EQ(readDouble(".5"), 0.5);
  EXPECT_EQ(readDouble("5."), 5.0);
  EXPECT_EQ(readDouble("1e-05"), 1e-05);
  EXPECT_EQ(readDouble("1.0E+20"), 1e20);
  EXPECT_TRUE(std::signbit(readDouble("-0.0")));
}

TEST(TagNumber, WhatIsNoDoubleReadsAsZero) {
  for (const char* text : {"", "abc", "1,5", "1.5x", "1 2", "nan", "inf", "1e999", "--1", "+-1"}) {
    EXPECT_EQ(readDouble(text), 0.0) << text;
  }
}

TEST(TagNumber, IntegersAreReadInEverySpelling) {
  EXPECT_EQ(readInteger("     1"), 1);
  EXPECT_EQ(readInteger("-7"), -7);
  EXPECT_EQ(readInteger("+7"), 7);
  EXPECT_EQ(readInteger("4.0"), 4);
  EXPECT_EQ(readInteger("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
}

TEST(TagNumber, WhatIsNoIntegerReadsAsZero) {
  for (const char* text : {"", "abc", "7x", "1e30", "0x10"}) {
    EXPECT_EQ(readInteger(text), 0) << text;
  }
}

TEST(TagNumber, HandlesAreHexadecimalInEitherCase) {
  const Format format = ascii();
  EXPECT_EQ(handleOf(only("  5\n2f\n", format), format), 0x2FU);
  EXPECT_EQ(handleOf(only("  5\n 2F \n", format), format), 0x2FU);
  EXPECT_EQ(handleOf(only("  5\nFFFFFFFFFFFFFFFF\n", format), format), 0xFFFFFFFFFFFFFFFFU);
  EXPECT_EQ(handleOf(only("  5\n10000000000000000\n", format), format), 0U);
  EXPECT_EQ(handleOf(only("  5\nxyz\n", format), format), 0U);
  EXPECT_EQ(handleOf(only("  5\n\n", format), format), 0U);
}

// --- writing ------------------------------------------------------------------------------

std::string doubleText(double value) {
  std::string bytes;
  putDouble(bytes, 10, value, ascii());
  return bytes.substr(4, bytes.size() - 5);
}

TEST(PutTag, GroupCodesArePaddedAndLinesEndAsInTheFile) {
  std::string bytes;
  putAscii(bytes, 0, "LINE", ascii("\r\n"));
  putInteger(bytes, 1070, -3, ascii("\r\n"));
  EXPECT_EQ(bytes, "  0\r\nLINE\r\n1070\r\n-3\r\n");
  Format bare = ascii();
  bare.groupCodeColumns = 1;
  bytes.clear();
  putHandle(bytes, 5, 0x2F, bare);
  EXPECT_EQ(bytes, "5\n2F\n");
}

TEST(PutTag, DoublesAlwaysHaveADecimalPoint) {
  EXPECT_EQ(doubleText(0.0), "0.0");
  EXPECT_EQ(doubleText(-0.0), "-0.0");
  EXPECT_EQ(doubleText(100.0), "100.0");
  EXPECT_EQ(doubleText(0.1), "0.1");
  EXPECT_EQ(doubleText(1e-05), "1.0e-05");
  EXPECT_EQ(doubleText(1.5e300), "1.5e+300");
  EXPECT_EQ(doubleText(1.0 / 3.0), "0.3333333333333333");
}

TEST(PutTag, NumbersThatNoReaderTakesAreWrittenAsTheNearestThatItDoes) {
  EXPECT_EQ(doubleText(std::numeric_limits<double>::quiet_NaN()), "0.0");
  EXPECT_EQ(doubleText(std::numeric_limits<double>::infinity()), "1.7976931348623157e+308");
  EXPECT_EQ(doubleText(-std::numeric_limits<double>::infinity()), "-1.7976931348623157e+308");
}

TEST(PutTag, EveryDoubleReadsBackBitForBitInAnyForm) {
  std::mt19937_64 random(4711);
  for (int i = 0; i < 20000; ++i) {
    const std::uint64_t bits = random();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) {
      continue;
    }
    for (const Format& format : {ascii(), binary(), binary(true)}) {
      std::string bytes;
      putDouble(bytes, 40, value, format);
      const double back = doubleOf(only(bytes, format), format);
      ASSERT_EQ(std::memcmp(&back, &value, sizeof value), 0) << value;
    }
  }
}

TEST(PutTag, IntegersReadBackInEveryWidthThatHoldsThem) {
  for (const Format& format : {ascii(), binary(), binary(true)}) {
    for (const int code : {70, 90, 160, 290, 1070, 1071}) {
      for (const std::int64_t value : {0, 1}) {
        std::string bytes;
        putInteger(bytes, code, value, format);
        EXPECT_EQ(integerOf(only(bytes, format), format), value) << code;
      }
    }
    std::string bytes;
    putInteger(bytes, 70, -32768, format);
    EXPECT_EQ(integerOf(only(bytes, format), format), -32768);
    bytes.clear();
    putInteger(bytes, 160, std::numeric_limits<std::int64_t>::min(), format);
    EXPECT_EQ(integerOf(only(bytes, format), format), std::numeric_limits<std::int64_t>::min());
  }
}

TEST(PutTag, BinaryNumbersOfAnotherKindAreConverted) {
  const Format format = binary();
  std::string bytes;
  putInteger(bytes, 40, 7, format);
  EXPECT_EQ(doubleOf(only(bytes, format), format), 7.0);
  bytes.clear();
  putDouble(bytes, 70, 3.9, format);
  EXPECT_EQ(integerOf(only(bytes, format), format), 3);
}

TEST(PutTag, ChunksAreHexadecimalLinesOrRawBytes) {
  using namespace std::string_literals;
  const std::string chunk = "\x00\xDE\xAD\xFF"s;
  std::string bytes;
  putBinary(bytes, 310, chunk, ascii());
  EXPECT_EQ(bytes, "310\n00DEADFF\n");
  EXPECT_EQ(binaryOf(only(bytes, ascii()), ascii()), chunk);
  bytes.clear();
  putBinary(bytes, 310, chunk, binary());
  EXPECT_EQ(bytes, "\x36\x01\x04\x00\xDE\xAD\xFF"s);
  EXPECT_EQ(binaryOf(only(bytes, binary()), binary()), chunk);
}

TEST(PutTag, LongChunksBecomeSeveralTags) {
  const std::string chunk(300, 'x');
  for (const Format& format : {ascii(), binary()}) {
    std::string bytes;
    putBinary(bytes, 310, chunk, format);
    TagCursor cursor(bytes, format);
    TagView tag;
    std::string joined;
    int tags = 0;
    for (; cursor.next(tag); ++tags) {
      joined += binaryOf(tag, format);
    }
    EXPECT_EQ(joined, chunk);
    EXPECT_EQ(tags, 3);
  }
}

TEST(PutTag, TagsKeepTheirValueFromOneFormatToAnother) {
  struct Case {
    int code;
    const char* text;
  };
  std::string original;
  for (const Case& entry : {Case{0, "LINE"},
                            {5, "2F"},
                            {8, "Walls"},
                            {10, "1.25"},
                            {62, "7"},
                            {90, "70000"},
                            {160, "5000000000"},
                            {290, "1"},
                            {310, "00FF"},
                            {330, "1F"},
                            {1000, "abc"}}) {
    putAscii(original, entry.code, entry.text, ascii());
  }
  const std::vector<Format> formats = {ascii(), binary(), binary(true), ascii("\r\n"), ascii()};
  std::string bytes = original;
  for (std::size_t i = 1; i < formats.size(); ++i) {
    std::string next;
    TagCursor cursor(bytes, formats[i - 1]);
    TagView tag;
    while (cursor.next(tag)) {
      putTranscoded(next, tag, formats[i - 1], formats[i]);
    }
    bytes = next;
  }
  EXPECT_EQ(bytes, original);
}

}  // namespace
}  // namespace quoin::dxf
