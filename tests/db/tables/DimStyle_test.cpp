// Dimension styles: variables in their group codes, arrow blocks by name, copies between
// drawings, and how releases have them.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "dbapserv.h"
#include "support/Styles.h"

namespace quoin::test {
namespace {

AcDbObjectId addStyle(const Drawing& drawing, AcDbDimStyleTableRecord* style) {
  AcDbDimStyleTable* styles = nullptr;
  EXPECT_EQ(drawing.db().getDimStyleTable(styles, AcDb::kForWrite), Acad::eOk);
  AcDbObjectId id;
  EXPECT_EQ(styles->add(id, style), Acad::eOk);
  styles->close();
  style->close();
  return id;
}

AcDbObjectId standardOf(const Drawing& drawing) {
  return dimStyleOf(drawing, L"Standard");
}

/// A small R12 drawing with two blocks and a style that names one of them.
std::string smallR12() {
  return "0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1009\n0 ENDSEC\n0 SECTION\n2 TABLES\n0 TABLE\n"
         "2 DIMSTYLE\n70 1\n0 DIMSTYLE\n2 STANDARD\n70 0\n3\n4\n5 TICK\n6\n7\n40 2.0\n41 0.5\n"
         "140 0.25\n0 ENDTAB\n0 ENDSEC\n0 SECTION\n2 BLOCKS\n0 BLOCK\n8 0\n2 TICK\n70 0\n10 0.0\n"
         "20 0.0\n3 TICK\n0 ENDBLK\n8 0\n0 BLOCK\n8 0\n2 DOT\n70 0\n10 0.0\n20 0.0\n3 DOT\n"
         "0 ENDBLK\n8 0\n0 ENDSEC\n0 SECTION\n2 ENTITIES\n0 ENDSEC\n0 EOF\n";
}

TEST(DimStyles, MissingVariablesHaveTheHostsBeginnings) {
  const Drawing drawing(smallDrawing());
  const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(drawing));
  EXPECT_EQ(standard->dimscale(), 1.0);
  EXPECT_EQ(standard->dimtxt(), 0.18);
  EXPECT_EQ(standard->dimexo(), 0.0625);
  EXPECT_EQ(standard->dimdec(), 4);
  EXPECT_EQ(standard->dimunit(), 2);
  EXPECT_TRUE(standard->dimtih());
  EXPECT_FALSE(standard->dimtix());
  EXPECT_TRUE(standard->dimclrd().isByBlock());
  EXPECT_EQ(standard->dimlwd(), AcDb::kLnWtByBlock);
  EXPECT_TRUE(standard->dimblk().isNull());
  EXPECT_TRUE(standard->dimtxsty().isNull());
  EXPECT_STREQ(standard->dimpost(), L"");
}

TEST(DimStyles, AVariableIsWrittenUnderItsGroupCode) {
  const Drawing drawing(smallDrawing());
  const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(drawing), AcDb::kForWrite);
  EXPECT_EQ(standard->setDimtxt(2.5), Acad::eOk);
  EXPECT_EQ(standard->setDimscale(80.0), Acad::eOk);
  EXPECT_EQ(standard->setDimjust(0), Acad::eOk);  // a value that is set is told
  EXPECT_EQ(standard->setDimtix(true), Acad::eOk);
  EXPECT_EQ(standard->setDimunit(2), Acad::eOk);
  EXPECT_EQ(standard->setDimlwd(AcDb::kLnWt025), Acad::eOk);
  EXPECT_EQ(standard->setDimpost(L"<> mm"), Acad::eOk);
  EXPECT_EQ(standard->setDimblk(L"door"), Acad::eOk);
  AcCmColor red;
  red.setColorIndex(1);
  EXPECT_EQ(standard->setDimclrd(red), Acad::eOk);
  EXPECT_NE(drawing.saved().find(
                asciiDxf("2 Standard\n70 0\n3 <> mm\n40 80.0\n140 2.5\n174 1\n176 1\n277 2\n280 0\n"
                         "342 30\n371 25\n0 ENDTAB\n")),
            std::string::npos);
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbDimStyleTableRecord> read(standardOf(again));
  EXPECT_EQ(read->dimtxt(), 2.5);
  EXPECT_TRUE(read->dimtix());
  EXPECT_EQ(read->dimclrd(), red);
  EXPECT_STREQ(read->dimpost(), L"<> mm");
  EXPECT_EQ(read->dimblk(), blockOf(again, L"Door"));
}

TEST(DimStyles, ValuesOutOfRangeAreRefused) {
  const NoMisuse guard;
  AcDbDimStyleTableRecord style;
  EXPECT_EQ(style.setDimtad(5), Acad::eInvalidInput);
  EXPECT_EQ(style.setDimtad(-1), Acad::eInvalidInput);
  EXPECT_EQ(style.setDimtmove(3), Acad::eInvalidInput);
  EXPECT_EQ(style.setDimunit(0), Acad::eInvalidInput);
  EXPECT_EQ(style.setDimunit(9), Acad::eInvalidInput);
  EXPECT_EQ(style.setDimdec(9), Acad::eInvalidInput);
  EXPECT_EQ(style.setDimpost(nullptr), Acad::eInvalidInput);
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(style.setDimlfac(0.5), Acad::eOk);
  EXPECT_EQ(style.setDimlfac(infinity), Acad::eInvalidInput);
  EXPECT_EQ(style.setDimlfac(-infinity), Acad::eInvalidInput);
  EXPECT_EQ(style.setDimlfac(std::nan("")), Acad::eInvalidInput);
  EXPECT_EQ(style.dimlfac(), 0.5);
}

TEST(DimStyles, UnitsAreTwoVariablesSinceR2000) {
  const Drawing drawing(smallDrawing());
  const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(drawing), AcDb::kForWrite);
  struct Case {
    int unit;
    int linear;
    int fraction;
  };
  for (const Case& each : {Case{1, 1, 0}, Case{3, 3, 0}, Case{4, 4, 0}, Case{5, 5, 0},
                           Case{6, 4, 2}, Case{7, 5, 2}, Case{8, 6, 2}}) {
    EXPECT_EQ(standard->setDimunit(each.unit), Acad::eOk);
    EXPECT_EQ(standard->dimunit(), each.unit);
    EXPECT_EQ(standard->dimlunit(), each.linear) << each.unit;
    EXPECT_EQ(standard->dimfrac(), each.fraction) << each.unit;
  }
}

TEST(DimStyles, ArrowBlocksMustExist) {
  const NoMisuse guard;
  const Drawing drawing(smallDrawing());
  const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(drawing), AcDb::kForWrite);
  EXPECT_EQ(standard->setDimblk(L"ArchTick"), Acad::eKeyNotFound);
  EXPECT_TRUE(standard->dimblk().isNull());
  EXPECT_EQ(standard->setDimblk(static_cast<const ACHAR*>(nullptr)), Acad::eInvalidInput);
  EXPECT_EQ(standard->setDimblk(drawing.db().layerZero()), Acad::eNotThatKindOfClass);
  addBlock(drawing, L"_ArchTick");
  EXPECT_EQ(standard->setDimblk(L"ARCHTICK"), Acad::eOk);
  EXPECT_EQ(standard->dimblk(), blockOf(drawing, L"_ArchTick"));
  EXPECT_EQ(standard->setDimblk1(L"Tick"), Acad::eKeyNotFound);
  EXPECT_EQ(standard->setDimblk(L""), Acad::eOk);
  EXPECT_TRUE(standard->dimblk().isNull());
  const Drawing other(smallDrawing());
  EXPECT_EQ(standard->setDimblk(blockOf(other, L"Door")), Acad::eWrongDatabase);
}

TEST(DimStyles, AFreeStyleLooksInTheDrawingItWasCopiedFrom) {
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  auto* const style = new AcDbDimStyleTableRecord;
  EXPECT_EQ(style->setDimblk(L"Door"), Acad::eNoDatabase);
  const Drawing drawing(smallDrawing());
  {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(drawing));
    style->setName(L"Plan");
    EXPECT_EQ(style->copyFrom(standard.object()), Acad::eOk);
  }
  const ACHAR* name = nullptr;
  style->getName(name);
  EXPECT_STREQ(name, L"Plan");
  EXPECT_EQ(style->setDimblk(L"Window"), Acad::eKeyNotFound);
  EXPECT_EQ(style->setDimblk(L"Door"), Acad::eOk);
  EXPECT_EQ(style->dimblk(), blockOf(drawing, L"Door"));
  addStyle(drawing, style);
  EXPECT_NE(drawing.saved().find(asciiDxf("0 DIMSTYLE\n105 100\n330 A\n100 AcDbSymbolTableRecord\n"
                                          "100 AcDbDimStyleTableRecord\n2 Plan\n70 0\n342 30\n")),
            std::string::npos);
}

TEST(DimStyles, AFreeStyleLooksInTheWorkingDatabase) {
  AcDbDimStyleTableRecord style;
  {
    const Drawing drawing(smallDrawing());
    acdbHostApplicationServices()->setWorkingDatabase(&drawing.db());
    EXPECT_EQ(style.setDimblk(L"Door"), Acad::eOk);
    EXPECT_EQ(style.dimblk(), blockOf(drawing, L"Door"));
  }
  EXPECT_TRUE(style.dimblk().isNull());  // the drawing is gone
  EXPECT_EQ(style.setDimblk(L"Door"), Acad::eNoDatabase);
}

TEST(DimStyles, CopiesNameTheirBlocksInTheOtherDrawing) {
  const NoMisuse guard;
  const Drawing from(smallDrawing());
  {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(from), AcDb::kForWrite);
    standard->setDimblk(L"Door");
    standard->setDimtxt(3.5);
  }
  // In the other drawing the block of that name has another handle, or is missing.
  const Drawing to;
  addBlock(to, L"DOOR");
  const Drawing bare;
  for (const Drawing* target : {&to, &bare}) {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> source(standardOf(from));
    const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(*target), AcDb::kForWrite);
    EXPECT_EQ(standard->copyFrom(source.object()), Acad::eOk);
    EXPECT_EQ(standard->dimtxt(), 3.5);
    EXPECT_EQ(standard->dimblk(), blockOf(*target, L"Door"));
    AcDbHandle handle;
    standard->getAcDbHandle(handle);
    EXPECT_EQ(handle, AcDbHandle(0x27));
  }
  EXPECT_FALSE(blockOf(to, L"Door").isNull());
  EXPECT_EQ(bare.saved().find(asciiDxf("342 ")), std::string::npos);
  AcDbDimStyleTableRecord style;
  AcDbLayerTableRecord layer;
  EXPECT_EQ(style.copyFrom(&layer), Acad::eNotThatKindOfClass);
  EXPECT_EQ(style.copyFrom(nullptr), Acad::eNullObjectPointer);
}

TEST(DimStyles, AClonesBlocksGoAlongByName) {
  const Drawing from(smallDrawing());
  AcDbDimStyleTableRecord* clone = nullptr;
  {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(from), AcDb::kForWrite);
    standard->setDimblk(L"Door");
    clone = AcDbDimStyleTableRecord::cast(standard->clone());
  }
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(clone->dimblk(), blockOf(from, L"Door"));
  clone->setName(L"Plan");
  const Drawing to;
  addBlock(to, L"Door");
  const AcDbObjectId id = addStyle(to, clone);
  const AcDbObjectPointer<AcDbDimStyleTableRecord> placed(id);
  EXPECT_EQ(placed->dimblk(), blockOf(to, L"Door"));
}

TEST(DimStyles, R12NamesItsBlocks) {
  const NoMisuse guard;
  const std::string bytes = asciiDxf(smallR12());
  const Drawing drawing(bytes);
  {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(drawing), AcDb::kForWrite);
    EXPECT_EQ(standard->dimblk(), blockOf(drawing, L"Tick"));
    EXPECT_EQ(standard->dimscale(), 2.0);
    EXPECT_EQ(standard->setDimblk(L"Dot"), Acad::eOk);
    EXPECT_EQ(standard->dimblk(), blockOf(drawing, L"Dot"));
    // What R12 does not know is taken and not written.
    EXPECT_EQ(standard->setDimjust(1), Acad::eOk);
    EXPECT_EQ(standard->setDimtmove(2), Acad::eOk);
    EXPECT_EQ(standard->setDimunit(2), Acad::eOk);
    EXPECT_EQ(standard->setDimdec(0), Acad::eOk);
    EXPECT_EQ(standard->dimjust(), 0);
  }
  std::string expected = smallR12();
  expected.replace(expected.find("5 TICK"), 6, "5 DOT");
  EXPECT_EQ(drawing.saved(), asciiDxf(expected));
}

TEST(DimStyles, ANewStyleInR12HasWhatR12Knows) {
  const NoMisuse guard;
  const Drawing drawing(asciiDxf(smallR12()));
  auto* const style = new AcDbDimStyleTableRecord;
  {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(drawing));
    EXPECT_EQ(style->copyFrom(standard.object()), Acad::eOk);
  }
  style->setName(L"PLAN");
  style->setDimblk(L"DOT");
  style->setDimjust(1);
  style->setDimunit(2);
  style->setDimtad(1);
  addStyle(drawing, style);
  EXPECT_NE(drawing.saved().find(asciiDxf("0 DIMSTYLE\n2 PLAN\n70 0\n3\n4\n5 DOT\n40 2.0\n41 0.5\n"
                                          "140 0.25\n77 1\n0 ENDTAB\n")),
            std::string::npos)
      << drawing.saved();
}

TEST(DimStyles, StylesOfR12GoIntoNewDrawingsAndBack) {
  const Drawing old(asciiDxf(smallR12()));
  const Drawing fresh;
  addBlock(fresh, L"TICK");
  AcDbDimStyleTableRecord* clone = nullptr;
  {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(old));
    clone = AcDbDimStyleTableRecord::cast(standard->clone());
  }
  ASSERT_NE(clone, nullptr);
  clone->setName(L"OLD");
  const AcDbObjectPointer<AcDbDimStyleTableRecord> placed(addStyle(fresh, clone));
  EXPECT_EQ(placed->dimblk(), blockOf(fresh, L"Tick"));
  EXPECT_EQ(placed->dimtxt(), 0.25);
}

TEST(DimStyles, ArrowNamesOfOldReleasesKeepTheirCodePage) {
  std::string text = smallR12();
  text.insert(text.find("0 ENDSEC"), "9 $DWGCODEPAGE\n3 ANSI_936\n");
  const std::string mark = "\xBD\xA8\xD6\xFE\xB1\xEA\xBC\xC7";  // 建筑标记 in GBK
  for (std::size_t at = text.find("TICK"); at != std::string::npos; at = text.find("TICK")) {
    text.replace(at, 4, mark);
  }
  const Drawing drawing(asciiDxf(text));
  auto* const style = new AcDbDimStyleTableRecord;
  {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(drawing));
    EXPECT_EQ(standard->dimblk(), blockOf(drawing, L"建筑标记"));
    EXPECT_EQ(style->copyFrom(standard.object()), Acad::eOk);
  }
  EXPECT_EQ(style->dimblk(), blockOf(drawing, L"建筑标记"));
  style->setName(L"PLAN");
  addStyle(drawing, style);
  EXPECT_NE(drawing.saved().find(asciiDxf("2 PLAN\n70 0\n3\n4\n5 " + mark + "\n40 2.0\n")),
            std::string::npos);
}

TEST(DimStyles, R14HasTheUnitInOneVariable) {
  std::string text = smallR2000();
  text.replace(text.find("AC1015"), 6, "AC1014");
  const Drawing drawing(asciiDxf(text));
  auto* const style = new AcDbDimStyleTableRecord;
  {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(standardOf(drawing), AcDb::kForWrite);
    EXPECT_EQ(standard->setDimunit(6), Acad::eOk);
    EXPECT_EQ(standard->dimunit(), 6);
    EXPECT_EQ(standard->setDimblk(L"Door"), Acad::eOk);
    EXPECT_EQ(style->copyFrom(standard.object()), Acad::eOk);
  }
  EXPECT_EQ(style->dimunit(), 6);
  EXPECT_EQ(style->dimlunit(), 4);
  EXPECT_EQ(style->dimfrac(), 2);
  style->setName(L"Plan");
  style->setDimtmove(2);
  addStyle(drawing, style);
  const std::string bytes = drawing.saved();
  EXPECT_NE(bytes.find(asciiDxf("2 Standard\n70 0\n5 Door\n270 6\n")), std::string::npos);
  EXPECT_NE(bytes.find(asciiDxf("2 Plan\n70 0\n5 Door\n270 6\n")), std::string::npos) << bytes;
}

TEST(Layers, ANewLayerInR12HasNoLineWeight) {
  const Drawing drawing(asciiDxf(smallR12()));
  AcDbLayerTable* layers = nullptr;
  ASSERT_EQ(drawing.db().getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
  auto* const layer = new AcDbLayerTableRecord;
  layer->setName(L"ROOF");
  EXPECT_EQ(layers->add(layer), Acad::eOk);
  layer->close();
  layers->close();
  EXPECT_NE(drawing.saved().find(asciiDxf("0 LAYER\n2 ROOF\n70 0\n62 7\n6 Continuous\n0 ENDTAB\n")),
            std::string::npos)
      << drawing.saved();
}

}  // namespace
}  // namespace quoin::test
