// What a store learns about a file's form, version, code page and habits.
#include "embedded/dxf/Format.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "embedded/dxf/DrawingCodec.h"
#include "embedded/dxf/FileError.h"
#include "support/DxfText.h"

namespace quoin::dxf {
namespace {

using test::asciiDxf;
using test::binaryDxf;
using test::entitiesOnly;
using test::loadBytes;
using test::savedBytes;
using test::smallR2000;

std::string headerOnly(std::string_view variables) {
  return "0 SECTION\n2 HEADER\n" + std::string(variables) + "0 ENDSEC\n0 EOF\n";
}

Format formatOf(const std::string& bytes) {
  RecordStore store;
  loadBytes(store, bytes);
  EXPECT_EQ(savedBytes(store), bytes);
  return store.format();
}

TEST(Version, EveryReleaseIsKnownByItsMark) {
  EXPECT_EQ(versionFromAcadVer("AC1006"), Version::R10);
  EXPECT_EQ(versionFromAcadVer("AC1009"), Version::R12);
  EXPECT_EQ(versionFromAcadVer("AC1012"), Version::R13);
  EXPECT_EQ(versionFromAcadVer("AC1014"), Version::R14);
  EXPECT_EQ(versionFromAcadVer("AC1015"), Version::R2000);
  EXPECT_EQ(versionFromAcadVer("AC1018"), Version::R2004);
  EXPECT_EQ(versionFromAcadVer("AC1021"), Version::R2007);
  EXPECT_EQ(versionFromAcadVer("AC1024"), Version::R2010);
  EXPECT_EQ(versionFromAcadVer("AC1027"), Version::R2013);
  EXPECT_EQ(versionFromAcadVer(" AC1032 "), Version::R2018);
}

TEST(Version, MarksInBetweenCountAsTheLaterRelease) {
  EXPECT_EQ(versionFromAcadVer("AC1.50"), Version::R10);
  EXPECT_EQ(versionFromAcadVer("AC2.10"), Version::R10);
  EXPECT_EQ(versionFromAcadVer("AC1004"), Version::R10);
  EXPECT_EQ(versionFromAcadVer("AC1011"), Version::R13);
  EXPECT_EQ(versionFromAcadVer("AC1016"), Version::R2004);
}

TEST(Version, AnythingElseIsUnknown) {
  for (const char* text : {"", "AC", "AC1099", "1015", "ac1015", "AC10x5", "ACAD"}) {
    EXPECT_EQ(versionFromAcadVer(text), Version::Unknown) << text;
  }
}

TEST(Version, NamesAreThoseOfTheReleases) {
  EXPECT_EQ(acadVerText(Version::R2013), "AC1027");
  EXPECT_EQ(releaseName(Version::R2013), "R2013");
  EXPECT_EQ(acadVerText(Version::Unknown), "");
}

TEST(FormatDetection, ReadsTheVersionAndTheCodePage) {
  const Format format =
      formatOf(asciiDxf(headerOnly("9 $ACADVER\n1 AC1018\n9 $DWGCODEPAGE\n3 ANSI_936\n")));
  EXPECT_EQ(format.version, Version::R2004);
  EXPECT_EQ(format.codePage, "ANSI_936");
  EXPECT_FALSE(format.textIsUtf8());
}

TEST(FormatDetection, AFileWithoutAVersionIsR12) {
  EXPECT_EQ(formatOf(asciiDxf(entitiesOnly("0 LINE\n8 0\n"))).version, Version::R12);
  EXPECT_EQ(formatOf(asciiDxf(headerOnly(""))).version, Version::R12);
}

TEST(FormatDetection, AFileWithoutAVersionButWithSubclassMarkersIsR2000) {
  EXPECT_EQ(formatOf(asciiDxf(entitiesOnly("0 LINE\n5 A\n100 AcDbEntity\n8 0\n"))).version,
            Version::R2000);
}

TEST(FormatDetection, AVersionFromTheFutureIsReadAsTheNewestAndWarnedOf) {
  RecordStore store;
  loadBytes(store, asciiDxf(headerOnly("9 $ACADVER\n1 AC1044\n")));
  EXPECT_EQ(store.format().version, Version::R2018);
  ASSERT_EQ(store.warnings().size(), 1U);
  EXPECT_EQ(store.warnings()[0].text, "version 'AC1044' is unknown; read as R2018");
}

TEST(FormatDetection, LineEndsAndPaddingAreThoseOfTheFirstLine) {
  for (const char* lineEnd : {"\n", "\r\n", "\r"}) {
    for (const std::size_t columns : {1U, 3U, 4U}) {
      const Format format = formatOf(asciiDxf(headerOnly(""), lineEnd, columns));
      EXPECT_EQ(format.lineEnd, lineEnd);
      EXPECT_EQ(format.groupCodeColumns, static_cast<int>(columns));
    }
  }
}

TEST(FormatDetection, ALeadingCommentDoesNotHideThePadding) {
  EXPECT_EQ(formatOf(asciiDxf("999 x\n" + headerOnly(""), "\n", 1)).groupCodeColumns, 1);
  EXPECT_EQ(formatOf(asciiDxf("999 x\n" + headerOnly(""), "\n", 3)).groupCodeColumns, 3);
}

TEST(FormatDetection, MixedLineEndsComeBackByteForByte) {
  std::string bytes = asciiDxf(smallR2000(test::lineTags("50")), "\r\n");
  bool drop = false;
  std::string mixed;
  for (const char c : bytes) {
    if (c == '\r' && (drop = !drop)) {
      continue;
    }
    mixed.push_back(c);
  }
  RecordStore store;
  loadBytes(store, mixed);
  EXPECT_EQ(savedBytes(store), mixed);
  EXPECT_EQ(store.modelSpace().entities.size(), 1U);
}

TEST(FormatDetection, LinesThatEndWithTwoReturnsAreRead) {
  RecordStore store;
  const std::string bytes = asciiDxf(smallR2000(test::lineTags("50")), "\r\r\n");
  loadBytes(store, bytes);
  EXPECT_EQ(store.format().lineEnd, "\r\n");
  EXPECT_EQ(store.modelSpace().entities.size(), 1U);
  EXPECT_EQ(savedBytes(store), bytes);
}

TEST(FormatDetection, AByteOrderMarkIsKeptAndMeansUtf8) {
  RecordStore store;
  const std::string bytes = "\xEF\xBB\xBF" + asciiDxf(entitiesOnly("0 LINE\n8 W\xC3\xA4nde\n"));
  loadBytes(store, bytes);
  EXPECT_EQ(savedBytes(store), bytes);
  EXPECT_EQ(store.format().codePage, "UTF-8");
  EXPECT_EQ(store.modelSpace().entities.size(), 1U);
}

TEST(FormatDetection, CommentsInFrontOfTheFirstSectionAreKept) {
  RecordStore store;
  const std::string bytes =
      asciiDxf("999 one\n999 two\n" + entitiesOnly("0 LINE\n8 0\n999 three\n"));
  loadBytes(store, bytes);
  EXPECT_EQ(savedBytes(store), bytes);
  EXPECT_EQ(store.modelSpace().entities.size(), 1U);
}

TEST(FormatDetection, BytesBehindEofAreKept) {
  for (const std::string tail : {"\x1A", "garbage without tags", "\r\n\r\n"}) {
    RecordStore store;
    const std::string bytes = asciiDxf(entitiesOnly("0 LINE\n8 0\n")) + tail;
    loadBytes(store, bytes);
    EXPECT_EQ(savedBytes(store), bytes);
  }
}

TEST(FormatDetection, BinaryFilesHaveTwoByteCodesAndBeforeR13OneByte) {
  const Format wide = formatOf(binaryDxf(smallR2000(test::lineTags("50")), false));
  EXPECT_EQ(wide.form, Form::Binary);
  EXPECT_FALSE(wide.narrowGroupCodes);
  EXPECT_EQ(wide.version, Version::R2000);
  const Format narrow = formatOf(binaryDxf(headerOnly("9 $ACADVER\n1 AC1009\n"), true));
  EXPECT_TRUE(narrow.narrowGroupCodes);
  EXPECT_EQ(narrow.version, Version::R12);
}

TEST(FormatDetection, ALeadingCommentDoesNotHideTheWidthOfBinaryCodes) {
  EXPECT_TRUE(formatOf(binaryDxf("999 x\n" + entitiesOnly(""), true)).narrowGroupCodes);
  EXPECT_FALSE(formatOf(binaryDxf("999 x\n" + entitiesOnly(""), false)).narrowGroupCodes);
}

TEST(FormatDetection, TheThreeFormsOfOneDrawingHoldTheSameRecords) {
  const std::string text = smallR2000(test::lineTags("50") + test::lineTags("51"));
  RecordStore ascii;
  RecordStore wide;
  RecordStore narrow;
  loadBytes(ascii, asciiDxf(text));
  loadBytes(wide, binaryDxf(text, false));
  loadBytes(narrow, binaryDxf(text, true));
  for (const RecordStore* other : {&wide, &narrow}) {
    ASSERT_EQ(other->stubs().size(), ascii.stubs().size());
    for (std::size_t i = 0; i < ascii.stubs().size(); ++i) {
      const AcDbStub& left = ascii.stubs()[i];
      const AcDbStub& right = other->stubs()[i];
      EXPECT_EQ(ascii.describe(left), other->describe(right));
      EXPECT_EQ(left.role, right.role);
      EXPECT_EQ(left.section, right.section);
      EXPECT_EQ(left.owner == nullptr, right.owner == nullptr);
      if (left.owner != nullptr && right.owner != nullptr) {
        EXPECT_EQ(left.owner->index, right.owner->index);
      }
    }
  }
}

TEST(Codecs, EachFormatIsRecognisedByItsFirstBytes) {
  const auto nameOf = [](std::string_view head) {
    const DrawingCodec* codec = codecFor(head);
    return std::string(codec == nullptr ? "none" : codec->name());
  };
  EXPECT_EQ(nameOf(asciiDxf(entitiesOnly(""))), "DXF");
  EXPECT_EQ(nameOf(asciiDxf("999 x\n")), "DXF");
  EXPECT_EQ(nameOf("0\nEOF"), "DXF");
  EXPECT_EQ(nameOf("\xEF\xBB\xBF  0\nSECTION\n"), "DXF");
  EXPECT_EQ(nameOf(binaryDxf(entitiesOnly(""), false)), "DXF");
  EXPECT_EQ(nameOf("AutoCAD Binary DXF\n"), "DXF");
  EXPECT_EQ(nameOf(std::string("AC1032\0\0", 8)), "DWG");
  EXPECT_EQ(nameOf("AC1.50"), "DWG");
  EXPECT_EQ(nameOf(""), "none");
  EXPECT_EQ(nameOf("hello, world\n"), "none");
  EXPECT_EQ(nameOf("0\nLINE\n"), "none");
  EXPECT_EQ(nameOf("1\n2\n3\n"), "none");
  EXPECT_EQ(nameOf("AC1032 is a version\n"), "none");
  EXPECT_EQ(nameOf("%PDF-1.4"), "none");
}

TEST(Codecs, ADamagedDwgDrawingIsRefusedWithItsName) {
  for (const char* mark :
       {"AC1012", "AC1014", "AC1015", "AC1018", "AC1021", "AC1024", "AC1027", "AC1032"}) {
    std::string bytes(mark);
    bytes.append(100, '\0');
    RecordStore store;
    try {
      codecFor(bytes)->read(bytes, "plan.dwg", store, {});
      FAIL() << mark;
    } catch (const FileError& error) {
      EXPECT_EQ(error.message().substr(0, 8), "plan.dwg") << error.message();
    }
    EXPECT_TRUE(store.isEmpty());
  }
}

TEST(Codecs, TheDwgCodecMakesNoDwgFileOfADxfFile) {
  RecordStore store;
  bool wrote = false;
  EXPECT_THROW(codecFor(std::string("AC1015\0", 7))
                   ->write(store, [&](std::string_view) { wrote = true; }, {}),
               FileError);
  EXPECT_FALSE(wrote);
}

}  // namespace
}  // namespace quoin::dxf
