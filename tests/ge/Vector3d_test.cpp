#include "gevec3d.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "gemat3d.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const AcGeVector3d kX = AcGeVector3d::kXAxis;
const AcGeVector3d kY = AcGeVector3d::kYAxis;
const AcGeVector3d kZ = AcGeVector3d::kZAxis;

AcGeVector3d at(double degrees, double length = 1.0) {
  return AcGeVector3d(std::cos(degrees * kPi / 180.0), std::sin(degrees * kPi / 180.0), 0.0) *
         length;
}

TEST(Vector3d, DefaultIsTheZeroVector) {
  const AcGeVector3d v;
  EXPECT_EQ(v.x, 0.0);
  EXPECT_EQ(v.y, 0.0);
  EXPECT_EQ(v.z, 0.0);
  EXPECT_TRUE(v.isZeroLength());
}

TEST(Vector3d, ArithmeticIsComponentWise) {
  AcGeVector3d v(1, 2, 3);
  EXPECT_EQ(v + AcGeVector3d(1, 1, 1), AcGeVector3d(2, 3, 4));
  EXPECT_EQ(v - AcGeVector3d(1, 1, 1), AcGeVector3d(0, 1, 2));
  EXPECT_EQ(-v, AcGeVector3d(-1, -2, -3));
  EXPECT_EQ(2.0 * v, v * 2.0);
  EXPECT_EQ(v / 2.0, AcGeVector3d(0.5, 1.0, 1.5));
  v += AcGeVector3d(1, 0, 0);
  v -= AcGeVector3d(0, 1, 0);
  v *= 3.0;
  EXPECT_EQ(v, AcGeVector3d(6, 3, 9));
  v /= 3.0;
  EXPECT_EQ(v.negate(), AcGeVector3d(-2, -1, -3));
  EXPECT_EQ(v[0], v.x);
  EXPECT_EQ(v[1], v.y);
  EXPECT_EQ(v[2], v.z);
}

TEST(Vector3d, CrossProductOfTheAxesFollowsTheRightHand) {
  EXPECT_EQ(kX.crossProduct(kY), kZ);
  EXPECT_EQ(kY.crossProduct(kZ), kX);
  EXPECT_EQ(kZ.crossProduct(kX), kY);
  EXPECT_EQ(kX.dotProduct(kY), 0.0);
}

TEST(Vector3d, EqualityIncludesTheToleranceItself) {
  AcGeTol tol;
  tol.setEqualVector(0.5);
  EXPECT_TRUE(kX.isEqualTo(AcGeVector3d(1.5, 0, 0), tol));
  EXPECT_FALSE(kX.isEqualTo(AcGeVector3d(1.5000001, 0, 0), tol));
}

TEST(Vector3d, NormalizeMakesLengthOneAndLeavesAShortVectorAlone) {
  AcGeVector3d v(3, 4, 0);
  EXPECT_EQ(v.normalize(), AcGeVector3d(0.6, 0.8, 0));
  AcGeVector3d tiny(1e-10, 0, 0);
  EXPECT_EQ(tiny.normalize().x, 1e-10);
  AcGeVector3d justLonger(2e-10, 0, 0);
  EXPECT_EQ(justLonger.normalize().x, 1.0);
  EXPECT_EQ(AcGeVector3d().normal().length(), 0.0);
  EXPECT_TRUE(v.isUnitLength());
}

TEST(Vector3d, CodirectionalMeansTheSameWayWhateverTheLength) {
  EXPECT_TRUE(kX.isCodirectionalTo(AcGeVector3d(1e6, 0, 0)));
  EXPECT_FALSE(kX.isCodirectionalTo(-kX));
  EXPECT_FALSE(kX.isCodirectionalTo(at(0.001)));
}

TEST(Vector3d, ParallelMeansTheSameOrTheOppositeWay) {
  EXPECT_TRUE(kX.isParallelTo(AcGeVector3d(-1e-3, 0, 0)));
  EXPECT_TRUE(kX.isParallelTo(kX * 7.0));
  EXPECT_FALSE(kX.isParallelTo(kY));
}

TEST(Vector3d, ParallelUsesTheDifferenceOfUnitVectors) {
  EXPECT_TRUE(kX.isParallelTo(AcGeVector3d(1.0, 0.9e-10, 0)));
  EXPECT_FALSE(kX.isParallelTo(AcGeVector3d(1.0, 1.1e-10, 0)));
  EXPECT_TRUE(AcGeVector3d(1e6, 0, 0).isParallelTo(AcGeVector3d(-1e6, 0.9e-4, 0)));
}

TEST(Vector3d, PerpendicularUsesTheDotProductOfUnitVectors) {
  EXPECT_TRUE(kX.isPerpendicularTo(kY * 1e5));
  EXPECT_TRUE(kX.isPerpendicularTo(AcGeVector3d(0.9e-10, 1.0, 0)));
  EXPECT_FALSE(kX.isPerpendicularTo(AcGeVector3d(1.1e-10, 1.0, 0)));
  EXPECT_TRUE(AcGeVector3d(1e5, 0, 0).isPerpendicularTo(AcGeVector3d(0.9e-5, 1e5, 0)));
}

TEST(Vector3d, AZeroVectorHasNoDirection) {
  for (const AcGeVector3d& zero : {AcGeVector3d(), AcGeVector3d(1e-10, 0, 0)}) {
    for (const AcGeVector3d& other : {kX, zero}) {
      EXPECT_FALSE(zero.isCodirectionalTo(other));
      EXPECT_FALSE(other.isCodirectionalTo(zero));
      EXPECT_FALSE(zero.isParallelTo(other));
      EXPECT_FALSE(other.isParallelTo(zero));
      EXPECT_FALSE(zero.isPerpendicularTo(other));
      EXPECT_FALSE(other.isPerpendicularTo(zero));
    }
  }
}

TEST(Vector3d, NotANumberMakesEveryComparisonFalse) {
  const AcGeVector3d nan(kNaN, 0, 0);
  EXPECT_FALSE(nan.isEqualTo(nan));
  EXPECT_FALSE(nan.isZeroLength());
  EXPECT_FALSE(nan.isCodirectionalTo(kX));
  EXPECT_FALSE(nan.isParallelTo(kX));
  EXPECT_FALSE(nan.isPerpendicularTo(kY));
  EXPECT_FALSE(AcGeVector3d(kInfinity, 0, 0).isCodirectionalTo(kX));
}

TEST(Vector3d, UnsignedAngleRunsFromZeroToPi) {
  EXPECT_EQ(kX.angleTo(kX), 0.0);
  EXPECT_EQ(kX.angleTo(kY), kPi / 2);
  EXPECT_EQ(kY.angleTo(kX), kPi / 2);
  EXPECT_EQ(kX.angleTo(-kX), kPi);
  EXPECT_EQ(kX.angleTo(AcGeVector3d()), 0.0);
}

TEST(Vector3d, AngleAboutAReferenceRunsCounterClockwiseFromZeroToTwoPi) {
  EXPECT_EQ(kX.angleTo(kX, kZ), 0.0);
  EXPECT_EQ(kX.angleTo(kY, kZ), kPi / 2);
  EXPECT_EQ(kX.angleTo(-kX, kZ), kPi);
  EXPECT_EQ(kX.angleTo(-kY, kZ), 1.5 * kPi);
  EXPECT_EQ(kX.angleTo(-kY, -kZ), kPi / 2);
  EXPECT_EQ(kX.angleTo(kY, kZ * 100.0), kPi / 2);
}

TEST(Vector3d, AngleAboutAReferenceIsThatOfTheProjectionsNormalToIt) {
  EXPECT_EQ(AcGeVector3d(1, 0, 5).angleTo(AcGeVector3d(0, 1, -900), kZ), kPi / 2);
  EXPECT_EQ(kX.angleTo(AcGeVector3d(3, 3, 1e9), kZ), kPi / 4);
}

TEST(Vector3d, AnAngleThatRoundsToAFullTurnIsZero) {
  EXPECT_EQ(kX.angleTo(AcGeVector3d(1, -1e-17, 0), kZ), 0.0);
  EXPECT_EQ(kX.angleTo(AcGeVector3d(1, -0.0, 0), kZ), 0.0);
  EXPECT_FALSE(std::signbit(kX.angleTo(AcGeVector3d(1, -0.0, 0), kZ)));
  const double almost = kX.angleTo(AcGeVector3d(1, -1e-9, 0), kZ);
  EXPECT_LT(almost, 2 * kPi);
  EXPECT_GT(almost, 6.28);
}

TEST(Vector3d, AngleOfAZeroVectorAndAboutAZeroReferenceIsDefined) {
  EXPECT_EQ(AcGeVector3d().angleTo(kX, kZ), 0.0);
  EXPECT_EQ(kX.angleTo(-kY, AcGeVector3d()), kPi / 2);
}

TEST(Vector3d, TheZeroVectorHasAngleZeroToEveryOctant) {
  for (const double x : {-1.0, 1.0}) {
    for (const double y : {-1.0, 1.0}) {
      for (const double z : {-1.0, 1.0}) {
        const AcGeVector3d v(x, y, z);
        EXPECT_EQ(AcGeVector3d().angleTo(v), 0.0);
        EXPECT_EQ(v.angleTo(AcGeVector3d()), 0.0);
        EXPECT_EQ(AcGeVector3d().angleTo(v, kZ), 0.0);
        EXPECT_EQ(v.angleTo(AcGeVector3d(), v), 0.0);
        EXPECT_EQ(AcGeVector3d(-0.0, -0.0, -0.0).angleTo(v), 0.0);
      }
    }
  }
  EXPECT_TRUE(std::isnan(kX.angleTo(AcGeVector3d(kNaN, 0, 0))));
  EXPECT_TRUE(std::isnan(kX.angleTo(AcGeVector3d(kNaN, 0, 0), kZ)));
}

TEST(Vector3d, AngleThereAndBackIsAFullTurn) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> coordinate(-1e3, 1e3);
  for (int i = 0; i < 2000; ++i) {
    const AcGeVector3d a(coordinate(random), coordinate(random), 0);
    const AcGeVector3d b(coordinate(random), coordinate(random), 0);
    const double there = a.angleTo(b, kZ);
    ASSERT_GE(there, 0.0);
    ASSERT_LT(there, 2 * kPi);
    ASSERT_NEAR(there + b.angleTo(a, kZ), there == 0.0 ? 0.0 : 2 * kPi, 1e-12);
    ASSERT_NEAR(there, b.angleTo(a, -kZ), 1e-12);
    ASSERT_NEAR(std::min(there, 2 * kPi - there), a.angleTo(b), 1e-12);
  }
}

TEST(Vector3d, RotationTurnsCounterClockwiseAgainstTheAxis) {
  AcGeVector3d v(10, 0, 3);
  v.rotateBy(kPi / 2, kZ * 4.0);
  EXPECT_EQ(v.x, 0.0);
  EXPECT_EQ(v.y, 10.0);
  EXPECT_EQ(v.z, 3.0);
  EXPECT_EQ(AcGeVector3d(1, 2, 3).rotateBy(1.0, AcGeVector3d()), AcGeVector3d(1, 2, 3));
}

TEST(Vector3d, PerpendicularVectorIsAUnitVectorAcross) {
  for (const AcGeVector3d& v : {kX, kY, kZ, -kZ, AcGeVector3d(1, 2, 3), AcGeVector3d(1e-3, 0, 5)}) {
    EXPECT_TRUE(v.perpVector().isUnitLength());
    EXPECT_TRUE(v.perpVector().isPerpendicularTo(v));
  }
  EXPECT_EQ(kZ.perpVector(), kX);
}

TEST(Vector3d, MirrorTurnsTheNormalPartRound) {
  EXPECT_EQ(AcGeVector3d(1, 2, 3).mirror(kX * 9.0), AcGeVector3d(-1, 2, 3));
  EXPECT_EQ(AcGeVector3d(1, 2, 3).mirror(AcGeVector3d()), AcGeVector3d(1, 2, 3));
}

TEST(Vector3d, ProjectionDropsTheNormalPart) {
  EXPECT_EQ(AcGeVector3d(1, 2, 3).orthoProject(kZ * 5.0), AcGeVector3d(1, 2, 0));
  EXPECT_EQ(AcGeVector3d(1, 2, 3).orthoProject(AcGeVector3d()), AcGeVector3d(1, 2, 3));
}

TEST(Vector3d, NormalizeTellsWhetherThereWasALength) {
  AcGe::ErrorCondition flag = AcGe::k0This;
  AcGeVector3d v(0, 8, 0);
  EXPECT_EQ(v.normalize(AcGeContext::gTol, flag), kY);
  EXPECT_EQ(flag, AcGe::kOk);
  AcGeVector3d tiny(0, 1e-11, 0);
  EXPECT_EQ(tiny.normalize(AcGeContext::gTol, flag).y, 1e-11);
  EXPECT_EQ(flag, AcGe::k0This);
}

TEST(Vector3d, RotationKeepsLengthAndAngleToTheAxis) {
  std::mt19937_64 random(29);
  std::uniform_real_distribution<double> number(-10, 10);
  for (int i = 0; i < 1000; ++i) {
    const auto r = [&] { return number(random); };
    const AcGeVector3d v(r(), r(), r());
    const AcGeVector3d axis(r(), r(), r());
    const double angle = r();
    AcGeVector3d turned = v;
    turned.rotateBy(angle, axis);
    ASSERT_NEAR(turned.length(), v.length(), 1e-13);
    ASSERT_NEAR(turned.angleTo(axis), v.angleTo(axis), 1e-13);
    const double turnedBy = v.angleTo(turned, axis);
    ASSERT_NEAR(std::cos(turnedBy), std::cos(angle), 1e-10);
    ASSERT_NEAR(std::sin(turnedBy), std::sin(angle), 1e-10);
    ASSERT_LT((turned.rotateBy(-angle, axis) - v).length(), 1e-13);
  }
}

}  // namespace
