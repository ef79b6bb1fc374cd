// Drawings of writers that put what all entities share (layer, colour, ...) behind the marker of
// the kind, or leave markers out, or name the kind's marker otherwise.
#include <gtest/gtest.h>

#include "dbpl.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

/// As old writers spell a line: the marker of entities with nothing behind it.
std::string strayLine(std::string_view common, std::string_view rest = {}) {
  return "0 LINE\n5 40\n100 AcDbEntity\n100 AcDbLine\n8 Walls\n" + std::string(common) +
         "10 1.50\n20 0.0\n30 0.0\n11 2.0\n21 0.0\n31 0.0\n" + std::string(rest);
}

struct Sample {
  const char* kind;
  const char* marker;  // the usual one
  const char* tags;
  const char* moved;  // by (10, 20, 0)
};

const Sample kSamples[] = {
    {"LINE", "AcDbLine", "10 1.0\n20 2.0\n30 0.0\n11 3.0\n21 4.0\n31 0.0\n",
     "10 11.0\n20 22.0\n30 0.0\n11 13.0\n21 24.0\n31 0.0\n"},
    {"XLINE", "AcDbXline", "10 1.0\n20 2.0\n30 0.0\n11 1.0\n21 0.0\n31 0.0\n",
     "10 11.0\n20 22.0\n30 0.0\n11 1.0\n21 0.0\n31 0.0\n"},
    {"RAY", "AcDbRay", "10 1.0\n20 2.0\n30 0.0\n11 1.0\n21 0.0\n31 0.0\n",
     "10 11.0\n20 22.0\n30 0.0\n11 1.0\n21 0.0\n31 0.0\n"},
    {"POINT", "AcDbPoint", "10 1.0\n20 2.0\n30 0.0\n", "10 11.0\n20 22.0\n30 0.0\n"},
    {"CIRCLE", "AcDbCircle", "10 1.0\n20 2.0\n30 0.0\n40 5.0\n",
     "10 11.0\n20 22.0\n30 0.0\n40 5.0\n"},
    {"ARC", "AcDbCircle", "10 1.0\n20 2.0\n30 0.0\n40 5.0\n50 10.0\n51 90.0\n",
     "10 11.0\n20 22.0\n30 0.0\n40 5.0\n50 10.0\n51 90.0\n"},
    {"ELLIPSE", "AcDbEllipse",
     "10 1.0\n20 2.0\n30 0.0\n11 5.0\n21 0.0\n31 0.0\n40 0.5\n41 0.0\n42 6.0\n",
     "10 11.0\n20 22.0\n30 0.0\n11 5.0\n21 0.0\n31 0.0\n40 0.5\n41 0.0\n42 6.0\n"},
    {"LWPOLYLINE", "AcDbPolyline", "90 2\n70 0\n10 1.0\n20 2.0\n10 3.0\n20 4.0\n",
     "90 2\n70 0\n10 11.0\n20 22.0\n10 13.0\n20 24.0\n"},
    {"SOLID", "AcDbTrace", "10 1.0\n20 2.0\n11 3.0\n21 4.0\n12 5.0\n22 6.0\n13 7.0\n23 8.0\n",
     "10 11.0\n20 22.0\n11 13.0\n21 24.0\n12 15.0\n22 26.0\n13 17.0\n23 28.0\n"},
    {"3DFACE", "AcDbFace",
     "10 1.0\n20 2.0\n30 0.0\n11 3.0\n21 4.0\n31 0.0\n12 5.0\n22 6.0\n32 0.0\n13 7.0\n23 8.0\n"
     "33 0.0\n",
     "10 11.0\n20 22.0\n30 0.0\n11 13.0\n21 24.0\n31 0.0\n12 15.0\n22 26.0\n32 0.0\n13 17.0\n"
     "23 28.0\n33 0.0\n"},
    {"TEXT", "AcDbText", "10 1.0\n20 2.0\n30 0.0\n40 2.5\n1 x\n",
     "10 11.0\n20 22.0\n30 0.0\n40 2.5\n1 x\n"},
    {"MTEXT", "AcDbMText", "10 1.0\n20 2.0\n30 0.0\n40 2.5\n71 1\n1 x\n",
     "10 11.0\n20 22.0\n30 0.0\n40 2.5\n71 1\n1 x\n"},
    {"INSERT", "AcDbBlockReference", "2 Door\n10 1.0\n20 2.0\n30 0.0\n",
     "2 Door\n10 11.0\n20 22.0\n30 0.0\n"},
    {"SHAPE", "AcDbShape", "10 1.0\n20 2.0\n30 0.0\n40 1.0\n2 x\n",
     "10 11.0\n20 22.0\n30 0.0\n40 1.0\n2 x\n"},
    {"SPLINE", "AcDbSpline",
     "70 8\n71 1\n72 4\n73 2\n40 0.0\n40 0.0\n40 1.0\n40 1.0\n10 1.0\n20 2.0\n30 0.0\n10 3.0\n"
     "20 4.0\n30 0.0\n",
     "70 8\n71 1\n72 4\n73 2\n40 0.0\n40 0.0\n40 1.0\n40 1.0\n10 11.0\n20 22.0\n30 0.0\n"
     "10 13.0\n20 24.0\n30 0.0\n"},
    {"LEADER", "AcDbLeader", "71 1\n76 2\n10 1.0\n20 2.0\n30 0.0\n10 3.0\n20 4.0\n30 0.0\n",
     "71 1\n76 2\n10 11.0\n20 22.0\n30 0.0\n10 13.0\n20 24.0\n30 0.0\n"},
    {"TOLERANCE", "AcDbFcf", "10 1.0\n20 2.0\n30 0.0\n1 x\n", "10 11.0\n20 22.0\n30 0.0\n1 x\n"},
};

TEST(StrayTags, AreReadBehindTheMarkerOfTheKind) {
  const Drawing drawing(
      drawingOfR2007(strayLine("6 Continuous\n62 3\n48 2.5\n60 1\n370 50\n440 33554559\n")));
  const AcDbObjectPointer<AcDbLine> line(drawing.id(0x40));
  ASSERT_EQ(line.openStatus(), Acad::eOk);
  EXPECT_EQ(taken(line->layer()), L"Walls");
  EXPECT_EQ(hostx::layerName(drawing.id(0x40)), L"Walls");
  EXPECT_FALSE(line->layerId().isNull());
  EXPECT_EQ(taken(line->linetype()), L"Continuous");
  EXPECT_EQ(line->colorIndex(), 3);
  EXPECT_EQ(line->linetypeScale(), 2.5);
  EXPECT_EQ(line->visibility(), AcDb::kInvisible);
  EXPECT_EQ(line->lineWeight(), AcDb::kLnWt050);
  EXPECT_EQ(line->startPoint(), AcGePoint3d(1.5, 0.0, 0.0));
}

TEST(StrayTags, ALayerThatNoTableListsIsFoundBehindAnyMarker) {
  std::string text = strayLine("62 3\n");
  text.replace(text.find("Walls"), 5, "Unlisted");
  const Drawing drawing(smallDrawing(text));
  AcDbLayerTable* layers = nullptr;
  ASSERT_EQ(drawing.db().getLayerTable(layers), Acad::eOk);
  EXPECT_TRUE(layers->has(L"Unlisted"));
  layers->close();
}

TEST(StrayTags, AreReplacedWhereTheyStand) {
  const std::string bytes =
      changed(drawingOfR2007(
                  strayLine("6 Continuous\n62 3\n48 2.5\n60 1\n370 50\n", "1001 ACAD\n1000 x\n")),
              [](AcDbEntity& entity) {
                EXPECT_EQ(entity.setColorIndex(5), Acad::eOk);
                EXPECT_EQ(entity.setLineWeight(AcDb::kLnWt100), Acad::eOk);
                EXPECT_EQ(entity.setLinetypeScale(0.5), Acad::eOk);
                EXPECT_EQ(entity.setLayer(L"0"), Acad::eOk);
              });
  std::string expected =
      strayLine("6 Continuous\n62 5\n48 0.5\n60 1\n370 100\n", "1001 ACAD\n1000 x\n");
  expected.replace(expected.find("Walls"), 5, "0");
  EXPECT_EQ(bytes, drawingOfR2007(expected));
}

TEST(StrayTags, ALayerIsNamedAlikeWhetherItsEntityIsOpenOrNot) {
  constexpr std::string_view kEnds = "10 1.0\n20 0.0\n11 2.0\n21 0.0\n";
  for (const std::string_view front :
       {"100 AcDbEntity\n8 Walls\n100 AcDbLine\n", "100 AcDbEntity\n100 AcDbLine\n8 Walls\n",
        "8 Walls\n100 AcDbLine\n", "8 0\n100 AcDbEntity\n8 Walls\n100 AcDbLine\n",
        "102 {X\n8 0\n102 }\n100 AcDbEntity\n8 Walls\n100 AcDbLine\n",
        "100 AcDbEntity\n102 {X\n8 0\n102 }\n8 Walls\n100 AcDbLine\n", "8 Walls\n",
        "100 AcDbLine\n8 0\n100 AcDbEntity\n8 Walls\n", "8 Walls\n8 0\n",
        "100 AcDbEntity\n100 AcDbLine\n", ""}) {
    const Drawing drawing(
        drawingOfR2007("0 LINE\n5 40\n" + std::string(front) + std::string(kEnds)));
    const AcDbObjectPointer<AcDbLine> line(drawing.id(0x40));
    ASSERT_EQ(line.openStatus(), Acad::eOk) << front;
    EXPECT_EQ(hostx::layerName(line->objectId()), taken(line->layer())) << front;
  }
}

TEST(StrayTags, OfTheValueThatIsAskedForStayAsTheyAre) {
  const std::string bytes = drawingOfR2007(strayLine("62 3\n370 -1\n6 ByLayer\n"));
  EXPECT_EQ(changed(bytes,
                    [](AcDbEntity& entity) {
                      EXPECT_EQ(entity.setColorIndex(3), Acad::eOk);
                      EXPECT_EQ(entity.setLayer(L"walls"), Acad::eOk);
                      EXPECT_EQ(entity.setLinetype(L"BYLAYER"), Acad::eOk);
                      EXPECT_EQ(entity.setLineWeight(AcDb::kLnWtByLayer), Acad::eOk);
                    }),
            bytes);
}

TEST(StrayTags, AreTakenAwayWhereTheyStand) {
  EXPECT_EQ(changed(drawingOfR2007(strayLine("62 3\n420 255\n430 RAL$1\n")),
                    [](AcDbEntity& entity) { entity.setColorIndex(256); }),
            drawingOfR2007(strayLine({})));
}

TEST(StrayTags, ThatRepeatWhatStandsInItsPlaceDoNotCountAndGoWithAChange) {
  const std::string twice =
      "0 LINE\n5 40\n100 AcDbEntity\n8 Walls\n62 5\n100 AcDbLine\n62 256\n"
      "10 1.5\n20 0.0\n11 2.0\n21 0.0\n";
  const Drawing drawing(drawingOfR2007(twice));
  EXPECT_EQ(AcDbObjectPointer<AcDbLine>(drawing.id(0x40))->colorIndex(), 5);
  EXPECT_EQ(changed(drawingOfR2007(twice), [](AcDbEntity& entity) { entity.setColorIndex(6); }),
            drawingOfR2007("0 LINE\n5 40\n100 AcDbEntity\n8 Walls\n62 6\n100 AcDbLine\n"
                           "10 1.5\n20 0.0\n11 2.0\n21 0.0\n"));
}

TEST(StrayTags, AreTakenBeforeTheMarkersToo) {
  const std::string ahead =
      "0 LINE\n5 40\n8 Walls\n62 3\n100 AcDbLine\n10 1.5\n20 0.0\n11 2.0\n21 0.0\n";
  const Drawing drawing(drawingOfR2007(ahead));
  const AcDbObjectPointer<AcDbLine> line(drawing.id(0x40));
  EXPECT_EQ(line->colorIndex(), 3);
  EXPECT_EQ(hostx::layerName(drawing.id(0x40)), L"Walls");
  // Where entities have no marker of their own, new tags stand before the first one.
  EXPECT_EQ(changed(drawingOfR2007(ahead),
                    [](AcDbEntity& entity) { entity.setLineWeight(AcDb::kLnWt050); }),
            drawingOfR2007("0 LINE\n5 40\n8 Walls\n62 3\n370 50\n100 AcDbLine\n10 1.5\n20 0.0\n"
                           "11 2.0\n21 0.0\n"));
}

TEST(StrayTags, OfTheKindItselfOrBehindAnEmbeddedObjectAreNotTaken) {
  const Drawing drawing(drawingOfR2007(
      "0 MTEXT\n5 40\n100 AcDbEntity\n8 Walls\n100 AcDbMText\n10 0.0\n20 0.0\n40 2.5\n1 x\n"
      "90 1\n63 3\n420 255\n48 9.0\n101 Embedded Object\n62 4\n8 Other\n"
      "0 ATTDEF\n5 41\n100 AcDbEntity\n100 AcDbText\n10 0.0\n20 0.0\n40 1.0\n1 x\n"
      "100 AcDbXrecord\n8 Other\n62 4\n"
      "0 ACAD_TABLE\n5 42\n100 AcDbEntity\n8 Walls\n100 AcDbTable\n62 4\n60 1\n"
      "0 LINE\n5 43\n102 {X\n8 Other\n102 }\n100 AcDbEntity\n100 AcDbLine\n62 1\n"
      "1001 ACAD\n1003 Other\n"));
  const auto colorOf = [&](Adesk::UInt64 handle) {
    return AcDbObjectPointer<AcDbEntity>(drawing.id(handle))->color();
  };
  EXPECT_TRUE(colorOf(0x40).isByLayer());
  EXPECT_TRUE(colorOf(0x41).isByLayer());
  EXPECT_TRUE(colorOf(0x42).isByLayer());
  EXPECT_EQ(colorOf(0x43).colorIndex(), 1);
  EXPECT_EQ(hostx::layerName(drawing.id(0x41)), L"0");
  EXPECT_EQ(hostx::layerName(drawing.id(0x43)), L"0");
  EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(drawing.id(0x40))->linetypeScale(), 1.0);
  EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(drawing.id(0x42))->visibility(), AcDb::kVisible);
}

TEST(StrayTags, AreCopiedWithTheEntity) {
  const Drawing drawing(drawingOfR2007(strayLine("62 3\n370 50\n")));
  AcDbLine* copy = nullptr;
  {
    const AcDbObjectPointer<AcDbLine> line(drawing.id(0x40));
    copy = AcDbLine::cast(line->clone());
  }
  const AcDbObjectId id = append(drawing.db(), copy);
  auto* const other = new AcDbLine;
  {
    const AcDbObjectPointer<AcDbLine> line(drawing.id(0x40));
    EXPECT_EQ(other->setPropertiesFrom(line.object()), Acad::eOk);
  }
  const AcDbObjectId otherId = append(drawing.db(), other);
  const Drawing again(drawing.saved());
  for (const AcDbObjectId& made : {id, otherId}) {
    const AcDbObjectPointer<AcDbLine> line(again.id(made.handle().asUInt64()));
    ASSERT_EQ(line.openStatus(), Acad::eOk);
    EXPECT_EQ(taken(line->layer()), L"Walls");
    EXPECT_EQ(line->colorIndex(), 3);
    EXPECT_EQ(line->lineWeight(), AcDb::kLnWt050);
  }
}

TEST(StrayTags, OfThePaperSpaceChangeWithTheCopiesSpace) {
  const Drawing drawing(
      drawingOfR2007("0 LINE\n5 40\n100 AcDbEntity\n100 AcDbLine\n8 Walls\n67 1\n"
                     "10 1.5\n20 0.0\n11 2.0\n21 0.0\n"));
  ASSERT_EQ(entitiesOf(drawing.db(), L"*Paper_Space").size(), 1U);
  AcDbLine* copy = nullptr;
  {
    const AcDbObjectPointer<AcDbLine> line(drawing.id(0x40));
    copy = AcDbLine::cast(line->clone());
  }
  append(drawing.db(), copy);
  const Drawing again(drawing.saved());
  EXPECT_EQ(entitiesOf(again.db(), L"*Paper_Space").size(), 1U);
  EXPECT_EQ(entitiesOf(again.db()).size(), 1U);
}

TEST(Markers, OfAnyNameHoldWhatTheKindHas) {
  for (const Sample& sample : kSamples) {
    const std::string marker(sample.marker);
    std::string lower = marker;
    for (char& letter : lower) {
      letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    }
    for (const std::string& markers :
         {"100 AcDbEntity\n8 Walls\n100 " + marker + "\n",
          std::string("100 AcDbEntity\n8 Walls\n100 AcDbSomething\n"),
          std::string("100 AcDbEntity\n8 Walls\n100 AcDbLine\n"),
          "100 AcDbEntity\n8 Walls\n100 " + lower + "\n", std::string("100 AcDbEntity\n8 Walls\n"),
          "100 AcDbEntity\n100 " + marker + "\n8 Walls\n",
          std::string("8 Walls\n100 AcDbSomething\n"), std::string("8 Walls\n")}) {
      const std::string head = "0 " + std::string(sample.kind) + "\n5 40\n" + markers;
      const Drawing drawing(smallDrawing(head + sample.tags));
      EXPECT_TRUE(hostx::canTransform(drawing.id(0x40)));
      EXPECT_EQ(hostx::layerName(drawing.id(0x40)), L"Walls");
      {
        const AcDbObjectPointer<AcDbEntity> entity(drawing.id(0x40), AcDb::kForWrite);
        EXPECT_EQ(entity->transformBy(AcGeMatrix3d().setToTranslation({10.0, 20.0, 0.0})),
                  Acad::eOk);
      }
      EXPECT_EQ(drawing.saved(), smallDrawing(head + sample.moved)) << head;
    }
  }
}

TEST(Markers, ADimensionWhoseSubclassNobodyKnowsIsRefusedAndNotCounted) {
  const std::string dimension =
      "0 DIMENSION\n5 40\n100 AcDbEntity\n8 Walls\n100 AcDbDimension\n2 *D1\n10 1.0\n20 2.0\n"
      "30 0.0\n70 32\n";
  const std::string points = "13 1.0\n23 2.0\n33 0.0\n14 3.0\n24 4.0\n34 0.0\n";
  for (const char* marker : {"100 AcDbSomeDimension\n", ""}) {
    const Drawing drawing(smallDrawing(dimension + marker + points));
    EXPECT_FALSE(hostx::canTransform(drawing.id(0x40)));
    const AcDbObjectPointer<AcDbEntity> entity(drawing.id(0x40), AcDb::kForWrite);
    EXPECT_EQ(entity->transformBy(AcGeMatrix3d().setToTranslation({10.0, 20.0, 0.0})),
              Acad::eNotApplicable);
  }
  const Drawing drawing(smallDrawing(dimension + "100 AcDbAlignedDimension\n" + points));
  EXPECT_TRUE(hostx::canTransform(drawing.id(0x40)));
}

}  // namespace
}  // namespace quoin::test
