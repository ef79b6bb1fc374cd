// CEntityTool: extents, base points, transforms and the scaling of drawing files.
#include "EntityTool.h"

#include <gtest/gtest.h>

#include "dbmtext.h"
#include "support/Drawings.h"
#include "support/GeometryText.h"
#include "support/Styles.h"

namespace {

using quoin::test::append;
using quoin::test::Drawing;
using quoin::test::text;

AcDbObjectId addLayer(const Drawing& drawing, const wchar_t* name) {
  const AcDbObjectPointer<AcDbLayerTable> layers(drawing.db().layerTableId(), AcDb::kForWrite);
  auto* const layer = new AcDbLayerTableRecord;
  layer->setName(name);
  AcDbObjectId id;
  EXPECT_EQ(layers->add(id, layer), Acad::eOk);
  layer->close();
  return id;
}

/// Appends a line from (x, y) that is 10 long and 5 high.
AcDbObjectId addLine(const Drawing& drawing, double x, double y, const wchar_t* layer = L"0") {
  auto* const line = new AcDbLine(AcGePoint3d(x, y, 1.0), AcGePoint3d(x + 10.0, y + 5.0, 2.0));
  line->setLayer(layer);
  return append(drawing.db(), line);
}

/// A line from (1, 2) to (3, 4) with the handle F1, as tags.
std::string lineOn(const std::string& layer) {
  return "0 LINE\n5 F1\n330 1F\n100 AcDbEntity\n8 " + layer +
         "\n100 AcDbLine\n10 1.0\n20 2.0\n30 0.0\n11 3.0\n21 4.0\n31 0.0\n";
}

struct Measured {
  bool isDone;
  AcDbExtents ext;
};

Measured measured(const Drawing& drawing, bool bIncludeInvisible = false) {
  const quoin::test::NoMisuse guard;
  Measured result;
  result.isDone = CEntityTool::GetEntExtents(&drawing.db(), result.ext, bIncludeInvisible);
  EXPECT_TRUE(hostx::openObjects(&drawing.db()).empty());
  return result;
}

bool counts(const Drawing& drawing, bool bIncludeInvisible = false) {
  return !measured(drawing, bIncludeInvisible).ext.isFresh();
}

// --- extents ------------------------------------------------------------------------------------

TEST(EntityExtents, OfAnEmptyModelSpaceStayAsTheyWere) {
  const Drawing drawing;
  AcDbExtents ext(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6));
  EXPECT_TRUE(CEntityTool::GetEntExtents(&drawing.db(), ext, true));
  EXPECT_EQ(text(ext.minPoint(), ext.maxPoint()), text(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6)));
}

TEST(EntityExtents, AreWidenedByWhatIsThere) {
  const Drawing drawing;
  addLine(drawing, 0, 0);
  addLine(drawing, 100, -50);
  AcDbExtents ext(AcGePoint3d(-1, 0, 0), AcGePoint3d(0, 0, 0));
  EXPECT_TRUE(CEntityTool::GetEntExtents(&drawing.db(), ext, false));
  EXPECT_EQ(text(ext.minPoint(), ext.maxPoint()),
            text(AcGePoint3d(-1, -50, 0), AcGePoint3d(110, 5, 2)));
}

TEST(EntityExtents, AreNotMeasuredWithoutADatabaseOrWhileModelSpaceIsOpen) {
  AcDbExtents ext;
  EXPECT_FALSE(CEntityTool::GetEntExtents(nullptr, ext, false));
  const Drawing drawing;
  AcDbObjectId spaceId;
  acdbSymUtil()->getBlockId(spaceId, ACDB_MODEL_SPACE, &drawing.db());
  const AcDbObjectPointer<AcDbBlockTableRecord> space(spaceId, AcDb::kForRead);
  EXPECT_FALSE(CEntityTool::GetEntExtents(&drawing.db(), ext, false));
  EXPECT_TRUE(ext.isFresh());
}

TEST(EntityExtents, AreNotMeasuredWhileSomebodyReadsTheBlockTable) {
  const Drawing drawing;
  const AcDbObjectPointer<AcDbBlockTable> table(drawing.db().blockTableId(), AcDb::kForRead);
  AcDbExtents ext;
  EXPECT_FALSE(CEntityTool::GetEntExtents(&drawing.db(), ext, false));
}

TEST(EntityExtents, PassOverAnEntityThatIsOpenForWrite) {
  const Drawing drawing;
  addLine(drawing, 0, 0);
  const AcDbObjectPointer<AcDbLine> open(addLine(drawing, 500, 500), AcDb::kForWrite);
  AcDbExtents ext;
  EXPECT_TRUE(CEntityTool::GetEntExtents(&drawing.db(), ext, false));
  EXPECT_EQ(ext.maxPoint().x, 10.0);
}

TEST(EntityExtents, LeaveOutErasedEntities) {
  const Drawing drawing;
  const AcDbObjectId id = addLine(drawing, 0, 0);
  AcDbObjectPointer<AcDbLine>(id, AcDb::kForWrite)->erase();
  EXPECT_FALSE(counts(drawing));
}

TEST(EntityExtents, CountAnInvisibleEntityOnlyWhenAsked) {
  const Drawing drawing;
  AcDbObjectPointer<AcDbLine>(addLine(drawing, 0, 0), AcDb::kForWrite)
      ->setVisibility(AcDb::kInvisible);
  EXPECT_FALSE(counts(drawing, false));
  EXPECT_TRUE(counts(drawing, true));
}

TEST(EntityExtents, NeverCountWhatIsOnALayerThatDoesNotShow) {
  const Drawing drawing;
  const AcDbObjectId layerId = addLayer(drawing, L"A-WALL");
  addLine(drawing, 0, 0, L"A-WALL");
  EXPECT_TRUE(counts(drawing));
  {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(layerId, AcDb::kForWrite);
    layer->setIsOff(true);
  }
  EXPECT_FALSE(counts(drawing, true));
  {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(layerId, AcDb::kForWrite);
    layer->setIsOff(false);
    layer->setIsFrozen(true);
  }
  EXPECT_FALSE(counts(drawing, true));
  {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(layerId, AcDb::kForWrite);
    layer->setIsFrozen(false);
    layer->setIsLocked(true);  // a locked layer shows
  }
  EXPECT_TRUE(counts(drawing));
}

TEST(EntityExtents, NeverCountWhatIsOnAHiddenLayer) {
  const Drawing drawing(quoin::test::smallDrawing(lineOn("*ADSK_X")));
  ASSERT_EQ(drawing.status, Acad::eOk);
  EXPECT_FALSE(counts(drawing, true));
}

TEST(EntityExtents, PassOverAnEntityWhoseLayerIsOpenForWrite) {
  const Drawing drawing;
  const AcDbObjectId layerId = addLayer(drawing, L"A-WALL");
  addLine(drawing, 0, 0, L"A-WALL");
  const AcDbObjectPointer<AcDbLayerTableRecord> layer(layerId, AcDb::kForWrite);
  AcDbExtents ext;
  EXPECT_TRUE(CEntityTool::GetEntExtents(&drawing.db(), ext, false));
  EXPECT_TRUE(ext.isFresh());
}

TEST(EntityExtents, GoOnBehindAnEntityThatIsOpenForWrite) {
  const Drawing drawing;
  addLine(drawing, 0, 0);
  const AcDbObjectId openId = addLine(drawing, 1000, 1000);
  addLine(drawing, -50, -50);
  const AcDbObjectPointer<AcDbLine> open(openId, AcDb::kForWrite);
  AcDbExtents ext;
  EXPECT_TRUE(CEntityTool::GetEntExtents(&drawing.db(), ext, false));
  EXPECT_EQ(text(ext.minPoint(), ext.maxPoint()),
            text(AcGePoint3d(-50, -50, 1), AcGePoint3d(10, 5, 2)));
}

// --- texts --------------------------------------------------------------------------------------

bool textCounts(double height, const wchar_t* contents) {
  const Drawing drawing;
  addLine(drawing, 1000, 1000);
  auto* const label = new AcDbText(AcGePoint3d(0, 0, 0), contents);
  label->setHeight(height);
  append(drawing.db(), label);
  return measured(drawing).ext.minPoint().x < 500.0;
}

TEST(EntityExtents, OfTextCountUnlessItHasNeitherHeightNorLetters) {
  EXPECT_FALSE(textCounts(0.0, L"   "));
  EXPECT_FALSE(textCounts(0.0, L""));
  EXPECT_TRUE(textCounts(2.5, L"A"));
  EXPECT_TRUE(textCounts(0.0, L"A"));
  EXPECT_TRUE(textCounts(0.0, L"  A "));
  EXPECT_TRUE(textCounts(2.5, L""));
  EXPECT_TRUE(textCounts(2.5, L"   "));
}

TEST(EntityExtents, OfMultilineTextGoByItsWidth) {
  const auto isCounted = [](double width, const wchar_t* contents) {
    const Drawing drawing;
    addLine(drawing, 1000, 1000);
    auto* const paragraph = new AcDbMText;
    paragraph->setContents(contents);
    paragraph->setTextHeight(2.5);
    paragraph->setWidth(width);
    append(drawing.db(), paragraph);
    return measured(drawing).ext.minPoint().x < 500.0;
  };
  EXPECT_FALSE(isCounted(0.0, L"  "));
  EXPECT_FALSE(isCounted(0.0, L""));
  EXPECT_TRUE(isCounted(0.0, L"A"));
  EXPECT_TRUE(isCounted(40.0, L""));
  EXPECT_TRUE(isCounted(40.0, L"  "));
  EXPECT_TRUE(isCounted(40.0, L"A"));
}

// --- base points --------------------------------------------------------------------------------

TEST(BasePos, IsACornerOrTheCentreAtHeightZero) {
  const Drawing drawing;
  addLine(drawing, 100, 20);
  const struct {
    EDwgPosition pos;
    AcGePoint3d point;
  } cases[] = {{eLeftTop, {100, 25, 0}},
               {eLeftBottom, {100, 20, 0}},
               {eRightTop, {110, 25, 0}},
               {eRightBottom, {110, 20, 0}},
               {eCenter, {105, 22.5, 0}},
               {static_cast<EDwgPosition>(0), {0, 0, 0}},
               {static_cast<EDwgPosition>(6), {0, 0, 0}}};
  for (const auto& one : cases) {
    EXPECT_EQ(text(CEntityTool::GetBasePos(&drawing.db(), one.pos)), text(one.point)) << one.pos;
  }
}

TEST(BasePos, OfNothingIsThatOfFreshExtents) {
  const Drawing drawing;
  const AcDbExtents fresh;
  EXPECT_EQ(text(CEntityTool::GetBasePos(&drawing.db(), eRightTop)),
            text(AcGePoint3d(fresh.maxPoint().x, fresh.maxPoint().y, 0)));
}

TEST(BasePos, DoesNotCountInvisibleEntities) {
  const Drawing drawing;
  addLine(drawing, 0, 0);
  AcDbObjectPointer<AcDbLine>(addLine(drawing, -90, -90), AcDb::kForWrite)
      ->setVisibility(AcDb::kInvisible);
  EXPECT_EQ(text(CEntityTool::GetBasePos(&drawing.db(), eLeftBottom)), text(AcGePoint3d(0, 0, 0)));
}

// --- transforms ---------------------------------------------------------------------------------

std::string lineOf(const AcDbObjectId& id) {
  const AcDbObjectPointer<AcDbLine> line(id);
  return text(line->startPoint(), line->endPoint());
}

TEST(TransformEntity, ToTheOriginMovesEverythingAndKeepsHeights) {
  const Drawing drawing;
  const AcDbObjectId id = addLine(drawing, 100, 20);
  const AcDbObjectId hidden = addLine(drawing, 0, 0);
  AcDbObjectPointer<AcDbLine>(hidden, AcDb::kForWrite)->setVisibility(AcDb::kInvisible);
  CEntityTool::TranslationToOrigin(&drawing.db(), eLeftBottom);
  EXPECT_EQ(lineOf(id), text(AcGePoint3d(0, 0, 1), AcGePoint3d(10, 5, 2)));
  EXPECT_EQ(lineOf(hidden), text(AcGePoint3d(-100, -20, 1), AcGePoint3d(-90, -15, 2)));
}

TEST(TransformEntity, ToTheOriginOfNoPositionMovesNothing) {
  const Drawing drawing;
  const AcDbObjectId id = addLine(drawing, 100, 20);
  CEntityTool::TranslationToOrigin(&drawing.db(), static_cast<EDwgPosition>(7));
  EXPECT_EQ(lineOf(id), text(AcGePoint3d(100, 20, 1), AcGePoint3d(110, 25, 2)));
}

TEST(TransformEntity, OfABlockThatIsNotThereDoesNothing) {
  const Drawing drawing;
  const AcDbObjectId id = addLine(drawing, 100, 20);
  AcGeMatrix3d mat;
  mat.setToScaling(2.0);
  CEntityTool::TransformEntity(&drawing.db(), mat, L"NOWHERE");
  CEntityTool::TransformEntity(nullptr, mat, L"*Model_Space");
  EXPECT_EQ(lineOf(id), text(AcGePoint3d(100, 20, 1), AcGePoint3d(110, 25, 2)));
}

TEST(TransformEntity, ByScaleEnlargesEightyTimes) {
  const Drawing drawing;
  const AcDbObjectId id = addLine(drawing, 100, 20);
  CEntityTool::TransformEntityByScale(&drawing.db(), 1.0, L"*MODEL_SPACE");
  EXPECT_EQ(lineOf(id), text(AcGePoint3d(8000, 1600, 80), AcGePoint3d(8800, 2000, 160)));
}

TEST(TransformEntity, ByScaleReachesAnotherBlockAndNothingElse) {
  const Drawing drawing;
  const AcDbObjectId inSpace = addLine(drawing, 100, 20);
  quoin::test::addBlock(drawing, L"Door");
  const AcDbObjectId inDoor =
      append(drawing.db(), new AcDbLine(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6)), L"Door");
  CEntityTool::TransformEntityByScale(&drawing.db(), 0.5, L"Door");
  EXPECT_EQ(lineOf(inDoor), text(AcGePoint3d(40, 80, 120), AcGePoint3d(160, 200, 240)));
  EXPECT_EQ(lineOf(inSpace), text(AcGePoint3d(100, 20, 1), AcGePoint3d(110, 25, 2)));
}

TEST(TransformEntity, ByScaleZeroLeavesEntitiesAsTheyAre) {
  const Drawing drawing;
  const AcDbObjectId id = addLine(drawing, 100, 20);
  CEntityTool::TransformEntityByScale(&drawing.db(), 0.0, L"*Model_Space");
  EXPECT_EQ(lineOf(id), text(AcGePoint3d(100, 20, 1), AcGePoint3d(110, 25, 2)));
}

TEST(TransformEntity, PassesOverWhatIsOpen) {
  const Drawing drawing;
  const AcDbObjectId id = addLine(drawing, 1, 1);
  const AcDbObjectId openId = addLine(drawing, 2, 2);
  {
    const AcDbObjectPointer<AcDbLine> open(openId, AcDb::kForRead);
    CEntityTool::TransformEntityByScale(&drawing.db(), 1.0, L"*Model_Space");
  }
  EXPECT_EQ(lineOf(id), text(AcGePoint3d(80, 80, 80), AcGePoint3d(880, 480, 160)));
  EXPECT_EQ(lineOf(openId), text(AcGePoint3d(2, 2, 1), AcGePoint3d(12, 7, 2)));
}

// --- files --------------------------------------------------------------------------------------

CString pathOf(const Drawing& drawing) {
  return quoin::os::fromUtf8(drawing.path).c_str();
}

const std::string kLine = lineOn("0");

TEST(AdjustDwgSize, ScalesEachFileInPlaceAndKeepsABackup) {
  const Drawing first(quoin::test::smallDrawing(kLine));
  const Drawing second(quoin::test::smallDrawing(kLine));
  const std::string before = first.folder.get("plan.dxf");
  std::vector<CString> files{pathOf(first), pathOf(second)};
  CEntityTool::AdjustDwgSize(files, 0.5);
  for (const Drawing* drawing : {&first, &second}) {
    const Drawing scaled(drawing->folder.get("plan.dxf"));
    ASSERT_EQ(scaled.status, Acad::eOk);
    EXPECT_EQ(lineOf(scaled.id(0xF1)), text(AcGePoint3d(40, 80, 0), AcGePoint3d(120, 160, 0)));
  }
  EXPECT_EQ(first.folder.get("plan.dxf.bak"), before);
}

TEST(AdjustDwgSize, GoesOnBehindAFileThatCannotBeReadAndLeavesItAlone) {
  const Drawing good(quoin::test::smallDrawing(kLine));
  const std::string bad = good.folder.put("bad.dxf", "this is no drawing");
  std::vector<CString> files{quoin::os::fromUtf8(bad).c_str(),
                             quoin::os::fromUtf8(good.folder.file("nowhere.dxf")).c_str(),
                             pathOf(good)};
  CEntityTool::AdjustDwgSize(files, 1.0);
  EXPECT_EQ(good.folder.get("bad.dxf"), "this is no drawing");
  const Drawing scaled(good.folder.get("plan.dxf"));
  ASSERT_EQ(scaled.status, Acad::eOk);
  EXPECT_EQ(lineOf(scaled.id(0xF1)), text(AcGePoint3d(80, 160, 0), AcGePoint3d(240, 320, 0)));
}

TEST(AdjustDwgSize, OfNoFilesDoesNothing) {
  std::vector<CString> files;
  CEntityTool::AdjustDwgSize(files, 1.0);
  EXPECT_TRUE(files.empty());
}

}  // namespace
