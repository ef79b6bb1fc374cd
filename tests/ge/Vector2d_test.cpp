#include "gevec2d.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;

TEST(Vector2d, ArithmeticIsComponentWise) {
  AcGeVector2d v(1, 2);
  v += AcGeVector2d(2, 2);
  EXPECT_EQ(v, AcGeVector2d(3, 4));
  EXPECT_EQ(v.length(), 5.0);
  EXPECT_EQ(v.lengthSqrd(), 25.0);
  v -= AcGeVector2d(3, 0);
  v *= 3.0;
  v /= 2.0;
  EXPECT_EQ(v, AcGeVector2d(0, 6));
  EXPECT_EQ(-v, AcGeVector2d(0, -6));
  EXPECT_TRUE(v != AcGeVector2d::kXAxis);
}

TEST(Vector2d, NormalizeMakesLengthOneAndLeavesAShortVectorAlone) {
  EXPECT_EQ(AcGeVector2d(0, 9).normalize(), AcGeVector2d::kYAxis);
  EXPECT_EQ(AcGeVector2d(1e-10, 0).normal().x, 1e-10);
  EXPECT_TRUE(AcGeVector2d::kIdentity.isZeroLength());
  EXPECT_FALSE(AcGeVector2d(2e-10, 0).isZeroLength());
}

TEST(Vector2d, AngleRunsCounterClockwiseFromZeroToTwoPi) {
  EXPECT_EQ(AcGeVector2d(1, 0).angle(), 0.0);
  EXPECT_EQ(AcGeVector2d(0, 2).angle(), kPi / 2);
  EXPECT_EQ(AcGeVector2d(-2, 0).angle(), kPi);
  EXPECT_EQ(AcGeVector2d(-2, -0.0).angle(), kPi);
  EXPECT_EQ(AcGeVector2d(0, -2).angle(), 1.5 * kPi);
}

TEST(Vector2d, AnAngleThatRoundsToAFullTurnIsZero) {
  EXPECT_EQ(AcGeVector2d(1, -1e-17).angle(), 0.0);
  EXPECT_FALSE(std::signbit(AcGeVector2d(1, -0.0).angle()));
}

TEST(Vector2d, TheZeroVectorHasAngleZeroWhateverItsSigns) {
  EXPECT_EQ(AcGeVector2d(0, 0).angle(), 0.0);
  EXPECT_EQ(AcGeVector2d(-0.0, 0.0).angle(), 0.0);
  EXPECT_EQ(AcGeVector2d(-0.0, -0.0).angle(), 0.0);
}

TEST(Vector2d, PerpendicularIsTheVectorTurnedLeft) {
  EXPECT_EQ(AcGeVector2d::kXAxis.perpVector(), AcGeVector2d::kYAxis);
  EXPECT_EQ(AcGeVector2d(3, 4).perpVector(), AcGeVector2d(-4, 3));
  EXPECT_EQ(AcGeVector2d(3, 4).dotProduct(AcGeVector2d(-4, 3)), 0.0);
}

}  // namespace
