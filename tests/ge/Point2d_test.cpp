#include "gepnt2d.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(Point2d, DifferenceOfPointsIsAVectorAndMovesBack) {
  const AcGePoint2d a(0, 0);
  const AcGePoint2d b(3, 4);
  EXPECT_EQ(a, AcGePoint2d::kOrigin);
  EXPECT_EQ(a.distanceTo(b), 5.0);
  EXPECT_EQ((b - a).length(), 5.0);
  EXPECT_EQ(a + AcGeVector2d(3, 4), b);
  EXPECT_EQ(b - b.asVector(), a);
  AcGePoint2d moved = a;
  moved += AcGeVector2d(1, 2);
  EXPECT_EQ(moved, AcGePoint2d(1, 2));
  moved -= AcGeVector2d(0, 2);
  EXPECT_EQ(moved * 6.0 / 2.0, AcGePoint2d(3, 0));
}

TEST(Point2d, EqualityIncludesTheToleranceItself) {
  EXPECT_TRUE(AcGePoint2d(0, 0) == AcGePoint2d(0, 1e-10));
  EXPECT_TRUE(AcGePoint2d(0, 0) != AcGePoint2d(0, 2e-10));
  EXPECT_FALSE(AcGePoint2d(std::nan(""), 0) == AcGePoint2d(std::nan(""), 0));
}

}  // namespace
