#include "commands/picture/PlanShapes.h"

#include <gtest/gtest.h>

#include <cmath>

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

/// The picture of a drawing whose model space has these entities.
quoin::commands::Picture pictureOf(const std::string& entities,
                                   const quoin::test::TemporaryFolder& folder) {
  quoin::commands::Drawing drawing(folder.put("plan.dxf", quoin::test::smallDrawing(entities)));
  quoin::commands::Picture picture;
  quoin::commands::addPlanShapes(picture, drawing, {});
  return picture;
}

TEST(PlanShapes, DimensionsShowWhatIsInTheirBlock) {
  const quoin::test::TemporaryFolder folder;
  const quoin::commands::Picture picture = pictureOf(
      "0 DIMENSION\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbDimension\n2 Door\n10 0.0\n"
      "20 0.0\n30 0.0\n11 0.0\n21 0.0\n31 0.0\n12 5.0\n22 6.0\n32 0.0\n70 0\n3 Standard\n",
      folder);
  ASSERT_EQ(picture.paths.size(), 1u);
  EXPECT_EQ(picture.paths[0].points[0].distanceTo({5, 6}), 0.0);
  EXPECT_EQ(picture.paths[0].points[1].distanceTo({6, 6}), 0.0);
}

TEST(PlanShapes, EllipsesAndSplinesAreChords) {
  const quoin::test::TemporaryFolder folder;
  const quoin::commands::Picture picture = pictureOf(
      "0 ELLIPSE\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbEllipse\n10 0.0\n20 0.0\n30 0.0\n"
      "11 4.0\n21 0.0\n31 0.0\n40 0.5\n41 0.0\n42 6.283185307179586\n"
      "0 SPLINE\n5 41\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbSpline\n70 8\n71 3\n72 0\n73 0\n"
      "74 2\n11 0.0\n21 0.0\n31 0.0\n11 1.0\n21 1.0\n31 0.0\n",
      folder);
  ASSERT_EQ(picture.paths.size(), 2u);
  for (const AcGePoint2d& point : picture.paths[0].points) {
    EXPECT_NEAR(point.x * point.x / 16.0 + point.y * point.y / 4.0, 1.0, 1e-9);
  }
  EXPECT_EQ(picture.paths[1].points.size(), 2u);
}

TEST(EntityShapes, HaveTheirColourAndAreInView) {
  const quoin::test::TemporaryFolder folder;
  quoin::commands::Drawing drawing(
      folder.put("plan.dxf", quoin::test::smallDrawing(quoin::test::lineTags("40"))));
  AcDbObjectId line;
  drawing.database().getAcDbObjectId(line, false, AcDbHandle(0x40));
  quoin::commands::Picture picture;
  quoin::commands::addEntityShapes(picture, drawing, {line}, quoin::commands::palette::kMark, 3.0);
  ASSERT_EQ(picture.paths.size(), 1u);
  EXPECT_EQ(picture.paths[0].width, 3.0);
  EXPECT_EQ(picture.paths[0].color.red, quoin::commands::palette::kMark.red);
  EXPECT_EQ(picture.focus.size(), 2u);
}

}  // namespace
