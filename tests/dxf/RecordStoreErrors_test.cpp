// Files that are no drawings, or are no longer: each gives an error that says where and why,
// and never a crash.
#include <gtest/gtest.h>

#include <string>

#include "embedded/dxf/FileError.h"
#include "embedded/dxf/RecordStore.h"
#include "support/DxfText.h"

namespace quoin::dxf {
namespace {

using test::asciiDxf;
using test::binaryDxf;
using test::entitiesOnly;
using test::lineTags;
using test::smallR2000;

/// The error of loading these bytes; its message is "no error" when there is none.
FileError errorOf(std::string bytes) {
  RecordStore store;
  try {
    store.load(std::move(bytes), "plan.dxf");
  } catch (const FileError& error) {
    EXPECT_TRUE(store.isEmpty());
    return error;
  }
  return FileError(Acad::eOk, "no error");
}

TEST(FileErrors, NameFileLineRecordAndCause) {
  std::string bytes = asciiDxf(entitiesOnly("0 LINE\n5 2F\n8 0\n"));
  bytes.insert(bytes.find("2F\r\n") + 4, "x1\r\n0.0\r\n");
  const FileError error = errorOf(bytes);
  EXPECT_EQ(error.message(), "plan.dxf:9: LINE 2F: group code 'x1' is not a number");
  EXPECT_EQ(error.status, Acad::eInvalidDxfCode);
}

TEST(FileErrors, LeaveOutWhatIsUnknown) {
  FileError error(Acad::eBadDxfFile, "cause");
  EXPECT_EQ(error.message(), "cause");
  error.fileName = "plan.dxf";
  EXPECT_EQ(error.message(), "plan.dxf: cause");
  error.record = "LINE 2F";
  EXPECT_EQ(error.message(), "plan.dxf: LINE 2F: cause");
  error.offset = 17;
  EXPECT_EQ(error.message(), "plan.dxf, byte 17: LINE 2F: cause");
  error.line = 3;
  EXPECT_EQ(error.message(), "plan.dxf:3: LINE 2F: cause");
}

TEST(FileErrors, NameTheByteInABinaryFile) {
  std::string bytes = binaryDxf(entitiesOnly("0 LINE\n5 2F\n8 0\n"), false);
  const std::size_t at = bytes.find(std::string("\x08\0000", 3));
  bytes[at + 1] = '\x7F';
  EXPECT_EQ(errorOf(bytes).message(),
            "plan.dxf, byte " + std::to_string(at) + ": LINE 2F: group code 32520 does not exist");
}

TEST(FileErrors, AnEmptyFileIsSaidToBeEmpty) {
  EXPECT_EQ(errorOf("").message(), "plan.dxf: the file is empty");
}

TEST(FileErrors, AFileWithoutEofIsCutOff) {
  const FileError error = errorOf(asciiDxf("0 SECTION\n2 ENTITIES\n0 LINE\n5 A\n8 0\n"));
  EXPECT_EQ(error.message(), "plan.dxf:11: LINE A: the file is cut off: it ends without EOF");
  EXPECT_EQ(error.status, Acad::eBadDxfFile);
}

TEST(FileErrors, AFileThatEndsInsideATagIsCutOffThere) {
  EXPECT_EQ(errorOf("  0\nSECTION\n  2\n").message(),
            "plan.dxf:3: the data ends in the middle of a tag");
}

TEST(FileErrors, SectionsThatDoNotEndAreNamed) {
  EXPECT_EQ(
      errorOf(asciiDxf("0 SECTION\n2 TABLES\n0 SECTION\n2 BLOCKS\n0 ENDSEC\n0 EOF\n")).message(),
      "plan.dxf:5: a section begins inside section TABLES, whose ENDSEC is missing");
  EXPECT_EQ(errorOf(asciiDxf("0 SECTION\n2 ENTITIES\n0 LINE\n8 0\n0 EOF\n")).message(),
            "plan.dxf:9: EOF inside section ENTITIES, whose ENDSEC is missing");
}

TEST(FileErrors, ASectionNeedsAName) {
  EXPECT_EQ(errorOf(asciiDxf("0 SECTION\n0 ENDSEC\n0 EOF\n")).status, Acad::eBadDxfSequence);
}

TEST(FileErrors, RecordsOutsideOfSectionsAreNamed) {
  EXPECT_EQ(errorOf(asciiDxf("0 LINE\n8 0\n0 EOF\n")).message(),
            "plan.dxf:1: LINE outside of any section");
  EXPECT_EQ(errorOf(asciiDxf("0 ENDSEC\n0 EOF\n")).message(),
            "plan.dxf:1: ENDSEC outside of any section");
}

TEST(FileErrors, ALineTooManyShiftsTheTagsAndIsFound) {
  std::string bytes = asciiDxf(smallR2000(lineTags("50")));
  bytes.insert(bytes.find("Walls"), "a line too many\r\n");
  const FileError error = errorOf(bytes);
  EXPECT_EQ(error.status, Acad::eInvalidDxfCode);
  EXPECT_EQ(error.message().substr(error.message().find("group code")),
            "group code 'Walls' is not a number");
}

TEST(FileErrors, ABinaryMarkDamagedByATextTransferIsExplained) {
  std::string bytes = binaryDxf(entitiesOnly(""), false);
  bytes.erase(bytes.find('\r'), 1);
  EXPECT_NE(errorOf(bytes).message().find("a transfer that changes line ends"), std::string::npos);
}

TEST(FileErrors, LongAndUnprintableGroupCodesAreShownShort) {
  const std::string shown = errorOf(std::string(500, 'x') + "\nA\n").message();
  EXPECT_LT(shown.size(), 100U);
  EXPECT_EQ(errorOf("\x01\nA\n").message(), "plan.dxf:1: group code '?' is not a number");
}

/// Every prefix of a small drawing gives an error or, from the end of its objects on, a whole load.
void expectNoCrashAtAnyLength(const std::string& bytes) {
  int whole = 0;
  const std::size_t lastSection = bytes.find("ENDSEC", bytes.find("OBJECTS"));
  ASSERT_NE(lastSection, std::string::npos);
  for (std::size_t size = 0; size <= bytes.size(); ++size) {
    RecordStore store;
    try {
      store.load(bytes.substr(0, size), "plan.dxf");
      ++whole;
      ASSERT_GE(size, lastSection);
      ASSERT_EQ(test::savedBytes(store), bytes.substr(0, size));
    } catch (const FileError& error) {
      ASSERT_TRUE(store.isEmpty());
      ASSERT_NE(error.status, Acad::eOk);
      ASSERT_FALSE(error.message().empty());
    }
  }
  EXPECT_GE(whole, 1);
}

TEST(FileErrors, AFileTruncatedAtAnyByteIsAnErrorOrWhole) {
  const std::string text = smallR2000(lineTags("50") + "0 POLYLINE\n5 51\n0 VERTEX\n5 52\n");
  expectNoCrashAtAnyLength(asciiDxf(text));
  expectNoCrashAtAnyLength(asciiDxf(text, "\r"));
  expectNoCrashAtAnyLength(binaryDxf(text, false));
  expectNoCrashAtAnyLength(binaryDxf(text, true));
}

}  // namespace
}  // namespace quoin::dxf
