// The small helpers of plane geometry: projections, angles, resolution of vectors, sides of
// lines and parallelograms.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "GeomLinearCommon.h"
#include "JudgeYOpen.h"
#include "Parallelogram.h"
#include "XyResolveVector.h"

namespace {

const double kPi = std::acos(-1.0);

AcGePoint3d P(double x, double y) {
  return {x, y, 0.0};
}
AcGeLine3d at(double degrees) {
  return {P(3, 4), AcGeVector3d(std::cos(degrees * kPi / 180), std::sin(degrees * kPi / 180), 0)};
}
EPntPrjOnSegType project(double x, double y) {
  return CGeomLinearCommon::GetPntPrjOnSegType(P(x, y), P(0, 0), P(10, 0));
}

TEST(Projection, FallsInsideOnAnEndOrOutside) {
  EXPECT_EQ(project(5, 7), ePrjInside);
  EXPECT_EQ(project(12, 0), ePrjOutside);
  EXPECT_EQ(project(-1, -9), ePrjOutside);
  EXPECT_EQ(static_cast<int>(ePrjInside), 0);
  EXPECT_EQ(static_cast<int>(ePrjOnEndpoint), 1);
  EXPECT_EQ(static_cast<int>(ePrjOutside), 2);
}

TEST(Projection, OnAnEndAlsoFromOffTheLine) {
  EXPECT_EQ(project(0, 0), ePrjOnEndpoint);
  EXPECT_EQ(project(10, 0), ePrjOnEndpoint);
  EXPECT_EQ(project(0, 500), ePrjOnEndpoint);
  EXPECT_EQ(project(10, -3), ePrjOnEndpoint);
}

TEST(Projection, TheTestsForTheEndsComeBeforeInsideAndOutside) {
  // Within the tolerance of perpendicular, though just inside or outside.
  EXPECT_EQ(project(1e-9, 500), ePrjOnEndpoint);
  EXPECT_EQ(project(10 + 1e-9, 500), ePrjOnEndpoint);
  // A product within 1e-9 of zero, whatever the angle.
  EXPECT_EQ(project(1e-13, 0), ePrjOnEndpoint);
}

TEST(Projection, OnASegmentOfNoLengthEverythingIsOnTheEnd) {
  EXPECT_EQ(CGeomLinearCommon::GetPntPrjOnSegType(P(5, 5), P(1, 1), P(1, 1)), ePrjOnEndpoint);
}

TEST(Projection, OnAVeryShortSegmentEverythingNearIsOnTheEnd) {
  // The product of the two projections is compared with zero as it is, whatever the units.
  EXPECT_EQ(CGeomLinearCommon::GetPntPrjOnSegType(P(0.0025, 0), P(0, 0), P(0.005, 0)),
            ePrjOnEndpoint);
  EXPECT_EQ(CGeomLinearCommon::GetPntPrjOnSegType(P(0.025, 0), P(0, 0), P(0.05, 0)), ePrjInside);
}

TEST(IncludedAngle, IsTheAcuteAngleOfUndirectedLines) {
  EXPECT_EQ(CGeomLinearCommon::GetLineIncludedAngle(at(0), at(0)), 0.0);
  EXPECT_EQ(CGeomLinearCommon::GetLineIncludedAngle(at(0), at(180)), 0.0);
  EXPECT_EQ(CGeomLinearCommon::GetLineIncludedAngle(AcGeLine3d(P(0, 0), P(1, 0)),
                                                    AcGeLine3d(P(0, 0), P(0, 1))),
            kPi / 2);
  EXPECT_NEAR(CGeomLinearCommon::GetLineIncludedAngle(at(0), at(150)), kPi / 6, 1e-14);
  EXPECT_NEAR(CGeomLinearCommon::GetLineIncludedAngle(at(0), at(210)), kPi / 6, 1e-14);
  EXPECT_NEAR(CGeomLinearCommon::GetLineIncludedAngle(at(0), at(-30)), kPi / 6, 1e-14);
}

TEST(ChamferAngle, IsPositiveCounterClockwiseAndNegativeClockwise) {
  EXPECT_NEAR(CGeomLinearCommon::GetLineChamferAngle(at(0), at(30)), kPi / 6, 1e-14);
  EXPECT_NEAR(CGeomLinearCommon::GetLineChamferAngle(at(0), at(210)), kPi / 6, 1e-14);
  EXPECT_NEAR(CGeomLinearCommon::GetLineChamferAngle(at(0), at(-30)), -kPi / 6, 1e-14);
  EXPECT_NEAR(CGeomLinearCommon::GetLineChamferAngle(at(0), at(150)), -kPi / 6, 1e-14);
  // Exactly a right angle passes as the first candidate, whatever the order.
  const AcGeLine3d x(P(0, 0), P(1, 0));
  const AcGeLine3d y(P(0, 0), P(0, 1));
  EXPECT_EQ(CGeomLinearCommon::GetLineChamferAngle(x, y), kPi / 2);
  EXPECT_EQ(CGeomLinearCommon::GetLineChamferAngle(y, x), kPi / 2);
}

TEST(ChamferAngle, ExchangingTheLinesChangesTheSignOnly) {
  std::mt19937_64 random(31);
  std::uniform_real_distribution<double> degrees(0, 360);
  for (int i = 0; i < 1000; ++i) {
    const AcGeLine3d a = at(degrees(random));
    const AcGeLine3d b = at(degrees(random));
    const double angle = CGeomLinearCommon::GetLineChamferAngle(a, b);
    ASSERT_NEAR(angle, -CGeomLinearCommon::GetLineChamferAngle(b, a), 1e-12);
    ASSERT_EQ(std::fabs(angle), CGeomLinearCommon::GetLineIncludedAngle(a, b));
    ASSERT_LE(std::fabs(angle), kPi / 2);
  }
}

TEST(ThreePoints, LieOnOneLineWithinThePointTolerance) {
  EXPECT_TRUE(CGeomLinearCommon::IsThreePointInSameLine(P(0, 0), P(10, 0), P(-500, 0)));
  EXPECT_TRUE(CGeomLinearCommon::IsThreePointInSameLine(P(0, 0), P(10, 0), P(5, 0.9e-10)));
  EXPECT_FALSE(CGeomLinearCommon::IsThreePointInSameLine(P(0, 0), P(10, 0), P(5, 1.1e-10)));
  // Through two equal points goes no line: only that point lies on it.
  EXPECT_TRUE(CGeomLinearCommon::IsThreePointInSameLine(P(1, 1), P(1, 1), P(1, 1)));
  EXPECT_FALSE(CGeomLinearCommon::IsThreePointInSameLine(P(1, 1), P(1, 1), P(2, 1)));
}

TEST(ResolveVector, WritesAVectorAsASumOfTheBaseVectors) {
  CXyResolveVector resolve(AcGeVector3d(2, 0, 0), AcGeVector3d(1, 1, 0));
  EXPECT_TRUE(resolve.ResolveVector(AcGeVector3d(7, 3, 0)));
  EXPECT_DOUBLE_EQ(resolve.GetXParam(), 2.0);
  EXPECT_DOUBLE_EQ(resolve.GetYParam(), 3.0);
  CXyResolveVector copy(resolve);
  EXPECT_DOUBLE_EQ(copy.GetYParam(), 3.0);
}

TEST(ResolveVector, ParallelBaseVectorsGiveFalseAndZeroParameters) {
  CXyResolveVector resolve(AcGeVector3d(2, 0, 0), AcGeVector3d(0, 1, 0));
  EXPECT_TRUE(resolve.ResolveVector(AcGeVector3d(7, 3, 0)));
  resolve = CXyResolveVector(AcGeVector3d(2, 0, 0), AcGeVector3d(-5, 0, 0));
  EXPECT_FALSE(resolve.ResolveVector(AcGeVector3d(7, 3, 0)));
  EXPECT_EQ(resolve.GetXParam(), 0.0);
  EXPECT_EQ(resolve.GetYParam(), 0.0);
}

TEST(ResolveVector, AFailureAfterASuccessLeavesNothingOfIt) {
  // The same object fails only when the tolerance grows until its base vectors are parallel.
  CXyResolveVector resolve(AcGeVector3d(1, 0, 0), AcGeVector3d(1, 1e-3, 0));
  EXPECT_TRUE(resolve.ResolveVector(AcGeVector3d(7, 3, 0)));
  EXPECT_NE(resolve.GetXParam(), 0.0);
  const AcGeTol before = AcGeContext::gTol;
  AcGeContext::gTol.setEqualVector(0.1);
  EXPECT_FALSE(resolve.ResolveVector(AcGeVector3d(7, 3, 0)));
  AcGeContext::gTol = before;
  EXPECT_EQ(resolve.GetXParam(), 0.0);
  EXPECT_EQ(resolve.GetYParam(), 0.0);
}

TEST(ResolveVector, TheSumGivesTheVectorBack) {
  std::mt19937_64 random(32);
  std::uniform_real_distribution<double> number(-10, 10);
  for (int i = 0; i < 1000; ++i) {
    const AcGeVector3d x(number(random), number(random), 0);
    const AcGeVector3d y(number(random), number(random), 0);
    const AcGeVector3d v(number(random), number(random), 0);
    CXyResolveVector resolve(x, y);
    ASSERT_EQ(resolve.GetXParam(), 0.0);
    ASSERT_TRUE(resolve.ResolveVector(v));
    const double condition = x.length() * y.length() / x.crossProduct(y).length();
    ASSERT_LT((x * resolve.GetXParam() + y * resolve.GetYParam() - v).length(), 1e-12 * condition);
  }
}

TEST(YOpen, IsTrueOnAndAboveTheLine) {
  CJudgeYOpen judge(P(0, 0), P(10, 10));
  EXPECT_TRUE(judge.GetYOpenBySelPnt(P(5, 5)));
  EXPECT_TRUE(judge.GetYOpenBySelPnt(P(5, 6)));
  EXPECT_FALSE(judge.GetYOpenBySelPnt(P(5, 4)));
  EXPECT_TRUE(judge.GetYOpenBySelPnt(P(500, 501)));  // the line is unbounded
}

TEST(YOpen, OfAVerticalLineIsTrueOnItAndToItsLeft) {
  CJudgeYOpen judge(P(5, 0), P(5, 10));
  EXPECT_TRUE(judge.GetYOpenBySelPnt(P(5, 99)));
  EXPECT_TRUE(judge.GetYOpenBySelPnt(P(4, 0)));
  EXPECT_FALSE(judge.GetYOpenBySelPnt(P(6, 0)));
  CJudgeYOpen copy(judge);
  EXPECT_FALSE(copy.GetYOpenBySelPnt(P(6, 0)));
}

TEST(YOpen, OfALineThroughOnePointTheOriginIsJudgedInstead) {
  CJudgeYOpen judge(P(5, 5), P(5, 5));
  EXPECT_TRUE(judge.GetYOpenBySelPnt(P(9, 0)));
  EXPECT_FALSE(judge.GetYOpenBySelPnt(P(9, -1)));
}

TEST(Parallelogram, TheBoundaryBelongsToTheRegion) {
  CParallelogram region;
  EXPECT_EQ(&region.set(P(1, 1), AcGeVector3d(4, 0, 0), AcGeVector3d(1, 2, 0)), &region);
  for (const AcGePoint3d& inside :
       {P(1, 1), P(5, 1), P(6, 3), P(2, 3), P(3, 1), P(1.5, 2), P(3, 2)}) {
    EXPECT_TRUE(region.DoPntInRegion(inside)) << inside.x << "," << inside.y;
  }
  for (const AcGePoint3d& outside : {P(0, 1), P(5.1, 1), P(1.4, 2), P(3, 3.1), P(3, 0.9)}) {
    EXPECT_FALSE(region.DoPntInRegion(outside)) << outside.x << "," << outside.y;
  }
}

TEST(Parallelogram, WithASideOfNoLengthHoldsNoPoint) {
  EXPECT_FALSE(CParallelogram().DoPntInRegion(P(0, 0)));
  CParallelogram region;
  region.set(P(0, 0), AcGeVector3d(1, 0, 0), AcGeVector3d());
  EXPECT_FALSE(region.DoPntInRegion(P(0, 0)));
  region.set(P(0, 0), AcGeVector3d(), AcGeVector3d(1, 0, 0));
  EXPECT_FALSE(region.DoPntInRegion(P(0, 0)));
}

TEST(Parallelogram, WithParallelSidesTheOriginIsJudgedInstead) {
  CParallelogram region;
  region.set(P(-1, 5), AcGeVector3d(4, 0, 0), AcGeVector3d(2, 0, 0));
  EXPECT_TRUE(region.DoPntInRegion(P(999, 999)));  // the origin projects inside both sides
  region.set(P(1, 5), AcGeVector3d(4, 0, 0), AcGeVector3d(2, 0, 0));
  EXPECT_FALSE(region.DoPntInRegion(P(2, 5)));  // beyond both
}

}  // namespace
