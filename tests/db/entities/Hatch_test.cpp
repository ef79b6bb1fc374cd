// HATCH and MPOLYGON: values, extents and transforms.
#include <gtest/gtest.h>

#include <cmath>

#include "dbhatch.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

std::string hatch(const std::string& boundaries, const std::string& elevation = "30 0\n") {
  return entityText("HATCH", "AcDbHatch",
                    "10 0\n20 0\n" + elevation + "210 0\n220 0\n230 1\n2 SOLID\n70 1\n71 0\n" +
                        boundaries + "75 1\n76 1\n98 1\n10 99\n20 99\n");
}

TEST(EntityExtents, OfAHatchWithABulgedPolyline) {
  // A square of side 2 whose right side is a half circle; the seed point does not count.
  expectBox(Measured(hatch("91 1\n92 2\n72 1\n73 1\n93 4\n10 0\n20 0\n42 0\n10 2\n20 0\n42 1\n"
                           "10 2\n20 2\n42 0\n10 0\n20 2\n42 0\n97 0\n",
                           "30 4\n")),
            {0, 0, 4}, {3, 2, 4});
}

TEST(EntityExtents, OfAHatchWithEdgesOfEverySort) {
  // A line, a clockwise quarter from (0, 2) to (2, 0), a quarter of an ellipse from (2, 0) to
  // (0, -1), and a spline from there back.
  expectBox(
      Measured(hatch("91 1\n92 0\n93 4\n72 1\n10 0\n20 0\n11 0\n21 2\n"
                     "72 2\n10 0\n20 0\n40 2\n50 270\n51 360\n73 0\n"
                     "72 3\n10 0\n20 0\n11 2\n21 0\n40 0.5\n50 0\n51 90\n73 0\n"
                     "72 4\n94 2\n73 0\n74 0\n95 6\n96 3\n40 0\n40 0\n40 0\n40 1\n40 1\n40 1\n"
                     "10 0\n20 -1\n10 -2\n20 -0.5\n10 0\n20 0\n97 0\n97 0\n")),
      {-1, -1, 0}, {2, 2, 0});
}

TEST(EntityExtents, OfAPolygonHatch) {
  expectBox(Measured(entityText("MPOLYGON", "AcDbMPolygon",
                                "70 1\n10 0\n20 0\n30 0\n210 0\n220 0\n230 1\n2 SOLID\n71 0\n91 1\n"
                                "92 2\n72 0\n73 1\n93 3\n10 0\n20 0\n10 5\n20 0\n10 5\n20 4\n"
                                "76 1\n63 2\n11 0\n21 0\n99 0\n")),
            {0, 0, 0}, {5, 4, 0});
}

TEST(EntityTransforms, AHatchTurnsItsPatternAndMirrorsItsArcs) {
  OneEntity one("HATCH");
  AcGeMatrix3d turn;
  turn.setToRotation(std::acos(-1.0) / 6.0, AcGeVector3d::kZAxis);
  ASSERT_EQ(one.transform(turn), Acad::eOk);
  EXPECT_NEAR(one.numbers(52)[0], 60.0, 1e-12);
  EXPECT_NEAR(one.numbers(53)[0], 105.0, 1e-12);
  EXPECT_NEAR(one.numbers(50)[0], 30.0, 1e-12);
  EXPECT_NEAR(one.numbers(51)[0], 120.0, 1e-12);
  OneEntity other("HATCH");
  AcGeMatrix3d mirror;
  mirror.setToMirroring(AcGePoint3d(), AcGeVector3d::kXAxis);
  ASSERT_EQ(other.transform(mirror), Acad::eOk);
  EXPECT_EQ(other.numbers(42), (std::vector<double>{-0.5, -0.5}));
  EXPECT_EQ(other.numbers(73).back(), 0.0);  // the arc runs clockwise now
  ASSERT_EQ(other.transform(AcGeMatrix3d().setToScaling(2.0)), Acad::eOk);
  EXPECT_EQ(other.numbers(41)[0], 4.0);
  EXPECT_EQ(other.numbers(49)[0], 6.0);
}

AcArray<AcGePoint2d> square(double low, double high) {
  AcArray<AcGePoint2d> corners;
  for (const AcGePoint2d& corner : {AcGePoint2d(low, low), AcGePoint2d(high, low),
                                    AcGePoint2d(high, high), AcGePoint2d(low, high)}) {
    corners.append(corner);
  }
  return corners;
}

TEST(Hatch, ANewOneTakesBoundaries) {
  AcDbHatch hatch;
  EXPECT_EQ(hatch.numLoops(), 0);
  EXPECT_EQ(hatch.setElevation(7.0), Acad::eOk);
  EXPECT_EQ(hatch.appendLoop(AcDbHatch::kExternal, square(0.0, 10.0)), Acad::eOk);
  EXPECT_EQ(hatch.appendLoop(AcDbHatch::kDefault, square(2.0, 3.0)), Acad::eOk);
  EXPECT_EQ(hatch.numLoops(), 2);
  EXPECT_EQ(hatch.elevation(), 7.0);
  AcDbExtents box;
  ASSERT_EQ(hatch.getGeomExtents(box), Acad::eOk);
  EXPECT_TRUE(box.minPoint().isEqualTo(AcGePoint3d(0.0, 0.0, 7.0)));
  EXPECT_TRUE(box.maxPoint().isEqualTo(AcGePoint3d(10.0, 10.0, 7.0)));
}

TEST(Hatch, BoundariesWithoutAreaOrWithNumbersThatAreNoneAreRefused) {
  AcDbHatch hatch;
  AcArray<AcGePoint2d> line;
  line.append(AcGePoint2d(0.0, 0.0));
  line.append(AcGePoint2d(1.0, 0.0));
  EXPECT_EQ(hatch.appendLoop(AcDbHatch::kDefault, line), Acad::eInvalidInput);
  EXPECT_NE(hatch.appendLoop(AcDbHatch::kDefault, square(0.0, HUGE_VAL)), Acad::eOk);
  EXPECT_EQ(hatch.numLoops(), 0);
}

}  // namespace
}  // namespace quoin::test
