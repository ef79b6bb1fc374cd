#include "commands/picture/PlanShapes.h"

#include <gtest/gtest.h>

#include <cmath>

#include "commands/picture/PlanShapesInternal.h"
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

/// The blocks "B0" to "B<depth>", each with `times` references to the one below; B0 has a line.
std::string nestedBlocks(int depth, int times) {
  std::string text;
  for (int i = 0; i <= depth; ++i) {
    const std::string name = "B" + std::to_string(i);
    text += "0 BLOCK\n8 0\n2 " + name + "\n70 0\n10 0.0\n20 0.0\n30 0.0\n3 " + name + "\n";
    for (int j = 0; j < (i > 0 ? times : 0); ++j) {
      text += "0 INSERT\n8 0\n2 B" + std::to_string(i - 1) + "\n10 1.0\n20 0.0\n";
    }
    text += i > 0 ? "" : "0 LINE\n8 0\n10 0.0\n20 0.0\n11 1.0\n21 1.0\n";
    text += "0 ENDBLK\n8 0\n";
  }
  return text;
}

struct BlockPicture : quoin::commands::Picture {
  std::size_t framedReferences = 0;
};

BlockPicture pictureOfBlocks(const std::string& blocks, const std::string& entities,
                             std::size_t mostBlockEntities) {
  const quoin::test::TemporaryFolder folder;
  const std::string bytes = quoin::test::asciiDxf(
      "0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1009\n0 ENDSEC\n0 SECTION\n2 BLOCKS\n" + blocks +
      "0 ENDSEC\n0 SECTION\n2 ENTITIES\n" + entities + "0 ENDSEC\n0 EOF\n");
  quoin::commands::Drawing drawing(folder.put("plan.dxf", bytes));
  BlockPicture picture;
  picture.framedReferences =
      quoin::commands::addPlanShapesUpTo(mostBlockEntities, picture, drawing, {});
  return picture;
}

TEST(PlanShapes, ArcsWithAnglesFarBeyondATurnAreArcsAllTheSame) {
  const quoin::test::TemporaryFolder folder;
  const auto arc = [](const std::string& start, const std::string& end) {
    return "0 ARC\n5 40\n100 AcDbEntity\n8 0\n100 AcDbCircle\n10 5.0\n20 5.0\n40 5.0\n100 "
           "AcDbArc\n50 " +
           start + "\n51 " + end + "\n";
  };
  for (const auto& [start, end] : std::vector<std::pair<std::string, std::string>>{
           {"0", "-1e300"}, {"-1e300", "90"}, {"1e300", "-1e300"}, {"0", "1e300"}, {"0", "1e18"}}) {
    const quoin::commands::Picture picture = pictureOf(arc(start, end), folder);
    ASSERT_EQ(picture.paths.size(), 1u) << start << " to " << end;
    const std::vector<AcGePoint2d>& points = picture.paths[0].points;
    EXPECT_LE(points.size(), 1000u);
    double longest = 0.0;
    for (std::size_t i = 1; i < points.size(); ++i) {
      EXPECT_NEAR(points[i].distanceTo({5, 5}), 5.0, 1e-9);
      longest = std::max(longest, points[i].distanceTo(points[i - 1]));
    }
    EXPECT_GT(longest, 0.0) << start << " to " << end;
    EXPECT_LT(longest, 1.0) << "chords are short";
  }
}

TEST(PlanShapes, BlocksNestedTenThousandDeepAreDrawn) {
  const BlockPicture picture = pictureOfBlocks(
      nestedBlocks(10'000, 1), "0 INSERT\n8 0\n2 B10000\n10 0.0\n20 0.0\n", 100'000);
  ASSERT_EQ(picture.paths.size(), 1u);
  EXPECT_EQ(picture.paths[0].points[0].x, 10'000.0);
  EXPECT_EQ(picture.framedReferences, 0u);
}

TEST(PlanShapes, ABlockInsideItselfIsDrawnOnce) {
  const BlockPicture picture = pictureOfBlocks(
      "0 BLOCK\n8 0\n2 A\n70 0\n10 0.0\n20 0.0\n3 A\n0 LINE\n8 0\n10 0.0\n20 0.0\n11 1.0\n"
      "21 1.0\n0 INSERT\n8 0\n2 A\n10 5.0\n20 0.0\n0 ENDBLK\n8 0\n",
      "0 INSERT\n8 0\n2 A\n10 0.0\n20 0.0\n", 100'000);
  EXPECT_EQ(picture.paths.size(), 1u);
}

TEST(PlanShapes, WhatShowsTooMuchIsDrawnAsItsFrame) {
  // An array of a thousand million cells, and ten to the fifth lines.
  const std::string array =
      "0 INSERT\n8 0\n2 B0\n10 0.0\n20 0.0\n70 32767\n71 32767\n44 2.0\n45 2.0\n";
  const std::string reference = "0 INSERT\n8 0\n2 B5\n10 0.0\n20 0.0\n";
  const BlockPicture picture = pictureOfBlocks(nestedBlocks(5, 10), array + reference, 1000);
  EXPECT_LT(picture.paths.size(), 1100u);
  ASSERT_EQ(picture.framedReferences, 2u);
  const auto& frame = picture.paths[picture.paths.size() - 2].points;
  EXPECT_EQ(frame[0], AcGePoint2d(0, 0));
  EXPECT_EQ(frame[2], AcGePoint2d(65533, 65533));
  EXPECT_TRUE(picture.paths.back().isClosed);
  EXPECT_NE(picture.subtitle.find("2 block references drawn as frames"), std::string::npos);
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
