#include "KxAcadBlockTool.h"

#include <gtest/gtest.h>

#include "dbapserv.h"
#include "support/GeometryText.h"
#include "support/Styles.h"

namespace {

using quoin::test::Drawing;

AcDbObjectId make(const Drawing& drawing, const wchar_t* name, double scale) {
  return CKxAcadBlockTool::GetCustomDimStyle(&drawing.db(), name, scale);
}

/// Whether this is a style at scale 100.
void expectArchitectural(const AcDbObjectId& id) {
  const AcDbObjectPointer<AcDbDimStyleTableRecord> style(id);
  EXPECT_EQ(style->dimexe(), 2.5);
  EXPECT_EQ(style->dimexo(), 8.0);
  EXPECT_EQ(style->dimasz(), 2.0);
  EXPECT_EQ(style->dimtxt(), 2.5);
  EXPECT_EQ(style->dimtad(), 1);
  EXPECT_EQ(style->dimjust(), 0);
  EXPECT_TRUE(style->dimtix());
  EXPECT_EQ(style->dimtmove(), 2);
  EXPECT_TRUE(style->dimtofl());
  EXPECT_EQ(style->dimunit(), 2);
  EXPECT_EQ(style->dimdec(), 0);
  EXPECT_EQ(style->dimrnd(), 0.0);
  EXPECT_EQ(style->dimgap(), 1.5);
  EXPECT_FALSE(style->dimtih());
  EXPECT_FALSE(style->dimtoh());
  EXPECT_EQ(style->dimlfac(), 0.01);
  EXPECT_EQ(style->dimscale(), 8000.0);
}

TEST(CustomDimStyle, HasTheSettingsOfArchitecturalDimensions) {
  const quoin::test::NoMisuse guard;
  const Drawing drawing;
  const AcDbObjectId id = make(drawing, L"Plan", 100.0);
  ASSERT_FALSE(id.isNull());
  EXPECT_EQ(id, quoin::test::dimStyleOf(drawing, L"Plan"));
  EXPECT_TRUE(hostx::openObjects(&drawing.db()).empty());
  expectArchitectural(id);
}

TEST(CustomDimStyle, SetsItsOwnWhateverStandardHas) {
  const Drawing drawing;
  {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(
        quoin::test::dimStyleOf(drawing, L"Standard"), AcDb::kForWrite);
    for (const auto set :
         {&AcDbDimStyleTableRecord::setDimexe, &AcDbDimStyleTableRecord::setDimexo,
          &AcDbDimStyleTableRecord::setDimasz, &AcDbDimStyleTableRecord::setDimtxt,
          &AcDbDimStyleTableRecord::setDimrnd, &AcDbDimStyleTableRecord::setDimgap,
          &AcDbDimStyleTableRecord::setDimlfac, &AcDbDimStyleTableRecord::setDimscale}) {
      EXPECT_EQ((standard.object()->*set)(77.0), Acad::eOk);
    }
    EXPECT_EQ(standard->setDimtad(4), Acad::eOk);
    EXPECT_EQ(standard->setDimjust(3), Acad::eOk);
    EXPECT_EQ(standard->setDimtix(false), Acad::eOk);
    EXPECT_EQ(standard->setDimtmove(1), Acad::eOk);
    EXPECT_EQ(standard->setDimtofl(false), Acad::eOk);
    EXPECT_EQ(standard->setDimunit(4), Acad::eOk);
    EXPECT_EQ(standard->setDimdec(7), Acad::eOk);
    EXPECT_EQ(standard->setDimtih(true), Acad::eOk);
    EXPECT_EQ(standard->setDimtoh(true), Acad::eOk);
  }
  expectArchitectural(make(drawing, L"Plan", 100.0));
}

TEST(CustomDimStyle, TakesTheRestFromStandard) {
  const Drawing drawing;
  {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(
        quoin::test::dimStyleOf(drawing, L"Standard"), AcDb::kForWrite);
    standard->setDimdli(7.25);
    standard->setDimasz(99.0);
  }
  const AcDbObjectPointer<AcDbDimStyleTableRecord> style(make(drawing, L"Plan", 1.0));
  EXPECT_EQ(style->dimdli(), 7.25);
  EXPECT_EQ(style->dimasz(), 2.0);
  const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(
      quoin::test::dimStyleOf(drawing, L"Standard"));
  EXPECT_EQ(standard->dimasz(), 99.0);
}

TEST(CustomDimStyle, PrefersTheFirstArrowBlock) {
  const Drawing drawing;
  quoin::test::addBlock(drawing, L"建筑标记");
  const AcDbObjectId tick = quoin::test::addBlock(drawing, L"ArchTick");
  const AcDbObjectPointer<AcDbDimStyleTableRecord> style(make(drawing, L"Plan", 1.0));
  EXPECT_EQ(style->dimblk(), tick);
}

TEST(CustomDimStyle, FallsBackToTheOtherArrowBlock) {
  const Drawing drawing;
  const AcDbObjectId mark = quoin::test::addBlock(drawing, L"建筑标记");
  const AcDbObjectPointer<AcDbDimStyleTableRecord> style(make(drawing, L"Plan", 1.0));
  EXPECT_EQ(style->dimblk(), mark);
}

TEST(CustomDimStyle, KeepsTheArrowOfStandardWhereThereIsNeitherBlock) {
  const Drawing drawing;
  const AcDbObjectId dot = quoin::test::addBlock(drawing, L"Dot");
  {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> standard(
        quoin::test::dimStyleOf(drawing, L"Standard"), AcDb::kForWrite);
    standard->setDimblk(dot);
  }
  const AcDbObjectPointer<AcDbDimStyleTableRecord> style(make(drawing, L"Plan", 1.0));
  EXPECT_EQ(style->dimblk(), dot);
}

TEST(CustomDimStyle, AnExistingOneStaysAsItIs) {
  const quoin::test::NoMisuse guard;
  const Drawing drawing;
  const AcDbObjectId first = make(drawing, L"Plan", 100.0);
  const std::string before = drawing.saved();
  EXPECT_EQ(make(drawing, L"PLAN", 7.0), first);
  EXPECT_EQ(make(drawing, L"Standard", 7.0), quoin::test::dimStyleOf(drawing, L"Standard"));
  EXPECT_EQ(drawing.saved(), before);
}

TEST(CustomDimStyle, AnErasedOneIsMadeAnew) {
  const Drawing drawing;
  const AcDbObjectId first = make(drawing, L"Plan", 100.0);
  {
    const AcDbObjectPointer<AcDbDimStyleTableRecord> style(first, AcDb::kForWrite);
    EXPECT_EQ(style->erase(), Acad::eOk);
  }
  const AcDbObjectId second = make(drawing, L"Plan", 50.0);
  ASSERT_FALSE(second.isNull());
  EXPECT_NE(second, first);
  const AcDbObjectPointer<AcDbDimStyleTableRecord> style(second);
  EXPECT_EQ(style->dimscale(), 4000.0);
}

TEST(CustomDimStyle, ScaleZeroGivesAFactorThatNoDrawingTakes) {
  const Drawing drawing;
  const AcDbObjectPointer<AcDbDimStyleTableRecord> style(make(drawing, L"Plan", 0.0));
  ASSERT_EQ(style.openStatus(), Acad::eOk);
  EXPECT_EQ(style->dimlfac(), 1.0);  // the infinity was refused: what "Standard" has stays
  EXPECT_EQ(style->dimscale(), 0.0);
  const Drawing again(drawing.saved());
  EXPECT_EQ(again.status, Acad::eOk);
}

TEST(CustomDimStyle, IsNullWhereItCannotBeMade) {
  const quoin::test::NoMisuse guard;
  EXPECT_TRUE(CKxAcadBlockTool::GetCustomDimStyle(nullptr, L"Plan", 1.0).isNull());
  const Drawing drawing;
  EXPECT_TRUE(make(drawing, L"", 1.0).isNull());
  EXPECT_TRUE(make(drawing, L"a*b", 1.0).isNull());
  const AcDbObjectPointer<AcDbDimStyleTable> held(drawing.db().dimStyleTableId());
  EXPECT_TRUE(make(drawing, L"Plan", 1.0).isNull());
}

TEST(CustomDimStyle, GoesIntoADrawingWithoutStyles) {
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  const Drawing drawing(quoin::test::asciiDxf(
      quoin::test::entitiesOnly("0 LINE\n8 0\n10 1.0\n20 2.0\n11 3.0\n21 4.0\n")));
  const AcDbObjectId id = make(drawing, L"Plan", 50.0);
  ASSERT_FALSE(id.isNull());
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbDimStyleTableRecord> style(quoin::test::dimStyleOf(again, L"Plan"));
  ASSERT_EQ(style.openStatus(), Acad::eOk);
  EXPECT_EQ(style->dimscale(), 4000.0);
  EXPECT_EQ(style->dimlfac(), 0.02);
  EXPECT_EQ(style->dimjust(), 0);  // R12 has no such variable
}

TEST(BlockExtents, AreAddedToWhatIsThere) {
  const quoin::test::NoMisuse guard;
  const Drawing drawing(quoin::test::smallDrawing());
  AcDbExtents box(AcGePoint3d(-5, -5, 0), AcGePoint3d(-4, -4, 0));
  CKxAcadBlockTool::GetBlkRecExtent(box, quoin::test::blockOf(drawing, L"Door"));
  EXPECT_EQ(quoin::test::text(box.minPoint()), "-5,-5");
  EXPECT_EQ(quoin::test::text(box.maxPoint()), "1,0");
  EXPECT_TRUE(hostx::openObjects(&drawing.db()).empty());
}

TEST(BlockExtents, StayAsTheyAreForAnythingElse) {
  const Drawing drawing(quoin::test::smallDrawing());
  AcDbExtents box;
  CKxAcadBlockTool::GetBlkRecExtent(box, AcDbObjectId::kNull);
  CKxAcadBlockTool::GetBlkRecExtent(box, drawing.db().layerZero());
  const AcDbObjectId door = quoin::test::blockOf(drawing, L"Door");
  {
    const AcDbObjectPointer<AcDbBlockTableRecord> held(door);
    CKxAcadBlockTool::GetBlkRecExtent(box, door);  // open by a reader: not for write
  }
  EXPECT_TRUE(box.isFresh());
}

}  // namespace
