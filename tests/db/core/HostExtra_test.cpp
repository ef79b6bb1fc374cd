// What the host tells of a file.
#include <gtest/gtest.h>

#include "support/Drawings.h"

namespace quoin::test {
namespace {

TEST(FileInfo, TellsWhatTheFileIs) {
  const Drawing drawing(smallDrawing(lineTags("40")));
  const hostx::FileInfo info = hostx::fileInfo(&drawing.db());
  EXPECT_EQ(info.format, L"DXF");
  EXPECT_EQ(info.release, L"R2000");
  EXPECT_EQ(info.acadVersion, L"AC1015");
  EXPECT_EQ(info.codePage, L"ANSI_1252");
  EXPECT_FALSE(info.isBinary);
  EXPECT_FALSE(info.isTextUtf8);
  EXPECT_EQ(info.fileBytes, smallDrawing(lineTags("40")).size());
  EXPECT_EQ(info.units, AcDb::kUnitsMillimeters);
  EXPECT_EQ(os::toUtf8(info.path), drawing.path);
  EXPECT_EQ(drawing.db().originalFileVersion(), AcDb::kDHL_1015);
  EXPECT_EQ(std::wstring(hostx::unitsName(info.units)), L"millimeters");
  EXPECT_EQ(hostx::millimetersPerUnit(AcDb::kUnitsFeet), 304.8);
  EXPECT_EQ(hostx::millimetersPerUnit(AcDb::kUnitsUndefined), 0.0);
  EXPECT_TRUE(hostx::fileInfo(nullptr).path.empty());
}

TEST(FileInfo, ObjectsKnowTheirLine) {
  const std::string bytes = smallDrawing(lineTags("40"));
  const Drawing drawing(bytes);
  const auto line = static_cast<Adesk::UInt64>(
      std::count(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(bytes.find("40\r\n")),
                 '\n') -
      1);
  EXPECT_EQ(hostx::lineNumber(drawing.id(0x40)), line - 1);
  EXPECT_EQ(hostx::kindName(drawing.id(0x40)), L"LINE");
  EXPECT_EQ(hostx::layerName(drawing.id(0x40)), L"Walls");
  EXPECT_EQ(hostx::layerName(drawing.db().layerZero()), L"");
  EXPECT_EQ(hostx::lineNumber(append(drawing.db(), new AcDbLine)), 0U);
  EXPECT_EQ(hostx::lineNumber(AcDbObjectId::kNull), 0U);
}

TEST(FileInfo, OddFilesAreReadWithAWarning) {
  const Drawing drawing(smallDrawing(lineTags("40") + lineTags("40")));
  ASSERT_EQ(drawing.status, Acad::eOk);
  ASSERT_EQ(hostx::warnings(&drawing.db()).size(), 1U);
  EXPECT_EQ(entitiesOf(drawing.db()).size(), 2U);
}

}  // namespace
}  // namespace quoin::test
