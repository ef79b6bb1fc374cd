#include "gepnt3d.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

TEST(Point3d, DefaultIsTheOrigin) {
  EXPECT_EQ(AcGePoint3d(), AcGePoint3d::kOrigin);
  EXPECT_EQ(AcGePoint3d().x, 0.0);
}

TEST(Point3d, DifferenceOfPointsIsAVectorAndMovesBack) {
  const AcGePoint3d a(1, 2, 3);
  const AcGePoint3d b(4, 6, 3);
  EXPECT_EQ(b - a, AcGeVector3d(3, 4, 0));
  EXPECT_EQ(a + (b - a), b);
  EXPECT_EQ(a.distanceTo(b), 5.0);
  EXPECT_EQ(a.asVector(), AcGeVector3d(1, 2, 3));
}

TEST(Point3d, EqualityIncludesTheToleranceItself) {
  AcGeTol tol;
  tol.setEqualPoint(0.25);
  EXPECT_TRUE(AcGePoint3d(1, 0, 0).isEqualTo(AcGePoint3d(1.25, 0, 0), tol));
  EXPECT_FALSE(AcGePoint3d(1, 0, 0).isEqualTo(AcGePoint3d(1.2500001, 0, 0), tol));
  EXPECT_TRUE(AcGePoint3d(0, 0, 0) == AcGePoint3d(1e-10, 0, 0));
  EXPECT_TRUE(AcGePoint3d(0, 0, 0) != AcGePoint3d(2e-10, 0, 0));
}

TEST(Point3d, ABillionUnitsOutTheToleranceStillTellsNeighbouringDoublesApart) {
  const double far = 1e9;
  EXPECT_TRUE(AcGePoint3d(far, far, 0) == AcGePoint3d(far, far, 0));
  EXPECT_FALSE(AcGePoint3d(far, 0, 0) == AcGePoint3d(std::nextafter(far, 2 * far), 0, 0));
}

TEST(Point3d, NotANumberAndInfinityEqualNothing) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_FALSE(AcGePoint3d(nan, 0, 0).isEqualTo(AcGePoint3d(nan, 0, 0)));
  EXPECT_FALSE(AcGePoint3d(inf, 0, 0).isEqualTo(AcGePoint3d(inf, 0, 0)));
}

TEST(Point3d, ScalingAndRotationKeepTheCentre) {
  const AcGePoint3d centre(5, 5, 0);
  EXPECT_EQ(AcGePoint3d(7, 5, 0).scaleBy(3.0, centre), AcGePoint3d(11, 5, 0));
  AcGePoint3d turned(7, 5, 0);
  turned.rotateBy(std::acos(-1.0), AcGeVector3d::kZAxis, centre);
  EXPECT_TRUE(turned.isEqualTo(AcGePoint3d(3, 5, 0)));
}

}  // namespace
