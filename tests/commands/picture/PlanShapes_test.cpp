#include "commands/picture/PlanShapes.h"

#include <gtest/gtest.h>

#include <cmath>

#include "commands/picture/DrawList.h"
#include "support/Drawings.h"

namespace {

using quoin::commands::appendBulge;

TEST(BulgeArc, AHalfCircleRunsRoundItsCentre) {
  std::vector<AcGePoint2d> points{{0, 0}};
  appendBulge(points, {0, 0}, {10, 0}, 1.0);
  // Counter-clockwise from the left end to the right one: below the chord.
  double lowest = 0.0;
  for (const AcGePoint2d& point : points) {
    EXPECT_NEAR(point.distanceTo({5, 0}), 5.0, 1e-12);
    lowest = std::min(lowest, point.y);
  }
  EXPECT_NEAR(lowest, -5.0, 0.05);
  EXPECT_EQ(points.back().x, 10.0);
}

TEST(BulgeArc, ANegativeBulgeRunsTheOtherWay) {
  std::vector<AcGePoint2d> points{{0, 0}};
  appendBulge(points, {0, 0}, {10, 0}, -0.5);
  for (const AcGePoint2d& point : points) {
    EXPECT_GE(point.y, 0.0);
  }
  // The sagitta is half the chord times the bulge.
  EXPECT_NEAR(points[points.size() / 2].y, 2.5, 0.05);
}

TEST(BulgeArc, NoBulgeIsAStraightLine) {
  std::vector<AcGePoint2d> points{{0, 0}};
  appendBulge(points, {0, 0}, {10, 0}, 0.0);
  EXPECT_EQ(points.size(), 2u);
}

TEST(TextCodes, StandForSigns) {
  using quoin::commands::withoutCodes;
  EXPECT_EQ(withoutCodes(L"%%uBATH%%u"), L"BATH");
  EXPECT_EQ(withoutCodes(L"45%%d %%P2 %%c16 100%%%"), L"45\u00B0 \u00B12 \u230016 100%");
  EXPECT_EQ(withoutCodes(L"50% of 20%%"), L"50% of 20%%");
  EXPECT_EQ(withoutCodes(L"%%x1"), L"%%x1");
}

TEST(PlanShapes, EntitiesThatAreExceptedAreNotDrawn) {
  const quoin::test::TemporaryFolder folder;
  quoin::commands::Drawing drawing(folder.put(
      "plan.dxf",
      quoin::test::smallDrawing(quoin::test::lineTags("40") + quoin::test::lineTags("41"))));
  AcDbObjectId line;
  drawing.database().getAcDbObjectId(line, false, AcDbHandle(0x40));
  quoin::commands::Picture picture;
  quoin::commands::addPlanShapes(picture, drawing, {line});
  ASSERT_EQ(picture.drawn.size(), 1u);
  EXPECT_EQ(picture.drawn[0].list->count(), 1u);
}

TEST(PlanShapes, WhatCannotBeDrawnIsNamedAndCounted) {
  hostx::DrawReport report;
  report.framed = 2;
  report.leftOut = {{L"ACAD_PROXY_ENTITY", 3}, {L"BODY", 1}};
  const std::vector<std::string> warnings = quoin::commands::warningsOf(report);
  ASSERT_EQ(warnings.size(), 2u);
  EXPECT_NE(warnings[0].find("2 block references drawn as frames"), std::string::npos);
  EXPECT_EQ(warnings[1], "not drawn: 3 ACAD_PROXY_ENTITY, 1 BODY");
}

TEST(EntityShapes, HaveTheirColourAndAreInView) {
  const quoin::test::TemporaryFolder folder;
  quoin::commands::Drawing drawing(
      folder.put("plan.dxf", quoin::test::smallDrawing(quoin::test::lineTags("40"))));
  AcDbObjectId line;
  drawing.database().getAcDbObjectId(line, false, AcDbHandle(0x40));
  quoin::commands::Picture picture;
  quoin::commands::addEntityShapes(picture, drawing, {line}, quoin::commands::palette::kMark, 3.0);
  ASSERT_EQ(picture.drawn.size(), 1u);
  EXPECT_EQ(picture.drawn[0].width, 3.0);
  EXPECT_EQ(picture.drawn[0].color->red, quoin::commands::palette::kMark.red);
  EXPECT_EQ(picture.focus.size(), 2u);
}

}  // namespace
