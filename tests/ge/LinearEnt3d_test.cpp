#include "gelent3d.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "tests/ge/Shapes.h"

namespace {

using namespace shapes;

TEST(LinearEnt3d, DirectionIsAUnitVector) {
  EXPECT_EQ(seg(0, 0, 30, 40).direction(), AcGeVector3d(0.6, 0.8, 0));
  EXPECT_EQ(line(5, 5, 5, -100).direction(), AcGeVector3d(0, -1, 0));
  EXPECT_EQ(AcGeLine3d(P(1, 1), AcGeVector3d(0, 0, 9)).direction(), AcGeVector3d::kZAxis);
  EXPECT_TRUE(seg(1, 1, 1, 1).direction().isZeroLength());
}

TEST(LinearEnt3d, KindsAreToldThroughTheBase) {
  const AcGeLineSeg3d segment = seg(0, 0, 1, 0);
  const AcGeEntity3d& entity = segment;
  EXPECT_EQ(entity.type(), AcGe::kLineSeg3d);
  EXPECT_TRUE(entity.isKindOf(AcGe::kCurve3d));
  EXPECT_FALSE(entity.isKindOf(AcGe::kLine3d));
}

TEST(Intersection, CrossingSegmentsMeetExactlyWhereTheyAreAxisParallel) {
  AcGePoint3d meeting;
  ASSERT_TRUE(seg(-5, 0.1, 25, 0.1).intersectWith(seg(0.3, -5, 0.3, 25), meeting));
  EXPECT_TRUE(sameBits(meeting, P(0.3, 0.1)));
  ASSERT_TRUE(line(0, 0, 3, 7).intersectWith(line(0.7, -1, 0.7, 9), meeting));
  EXPECT_EQ(meeting.x, 0.7);
}

TEST(Intersection, LinesMeetBeyondTheirPoints) {
  AcGePoint3d meeting;
  ASSERT_TRUE(line(0, 0, 1, 0).intersectWith(line(50, 1, 50, 2), meeting));
  EXPECT_EQ(meeting, P(50, 0));
}

TEST(Intersection, ParallelAndCollinearLinesGiveNoneAndLeaveTheOutput) {
  AcGePoint3d meeting(7, 7, 7);
  EXPECT_FALSE(line(0, 0, 1, 0).intersectWith(line(0, 5, 1, 5), meeting));
  EXPECT_FALSE(line(0, 0, 1, 0).intersectWith(line(5, 0, -1, 0), meeting));
  EXPECT_FALSE(seg(0, 0, 10, 0).intersectWith(seg(10, 0, 20, 0), meeting));
  EXPECT_TRUE(sameBits(meeting, P(7, 7, 7)));
}

TEST(Intersection, SkewLinesGiveNoneBeyondThePointTolerance) {
  AcGePoint3d meeting(7, 7, 7);
  const AcGeLine3d lower(P(0, 0, 0), P(1, 0, 0));
  EXPECT_FALSE(lower.intersectWith(AcGeLine3d(P(0, 0, 2e-10), P(0, 1, 2e-10)), meeting));
  EXPECT_TRUE(sameBits(meeting, P(7, 7, 7)));
  EXPECT_TRUE(lower.intersectWith(AcGeLine3d(P(0, 0, 1e-10), P(0, 1, 1e-10)), meeting));
  EXPECT_EQ(meeting.z, 0.0);  // the point is this line's
}

TEST(Intersection, ASegmentIsReachedToWithinThePointTolerance) {
  AcGePoint3d meeting(7, 7, 7);
  const AcGeLineSeg3d vertical = seg(10, -5, 10, 5);
  EXPECT_TRUE(seg(0, 0, 10, 0).intersectWith(vertical, meeting));
  EXPECT_TRUE(seg(0, 0, 10 - 0.9e-10, 0).intersectWith(vertical, meeting));
  meeting = P(7, 7, 7);
  EXPECT_FALSE(seg(0, 0, 10 - 1e-9, 0).intersectWith(vertical, meeting));
  EXPECT_FALSE(seg(0, 9, 20, 9).intersectWith(vertical, meeting));
  EXPECT_TRUE(sameBits(meeting, P(7, 7, 7)));
  EXPECT_TRUE(line(0, 4, 1, 4).intersectWith(vertical, meeting));
  EXPECT_FALSE(line(0, 6, 1, 6).intersectWith(vertical, meeting));
}

TEST(Intersection, TheGapAtEitherEndIsMeasuredToTheLastDigit) {
  const double tolerance = AcGeContext::gTol.equalPoint();
  std::mt19937_64 random(10);
  std::uniform_real_distribution<double> anyLength(10.0, 30000.0);
  for (int round = 0; round < 5000; ++round) {
    // The doubles around the tolerance; gaps are exact differences.
    const double length = anyLength(random);
    double x = length + tolerance;
    for (int step = 0; step < 3; ++step) {
      x = std::nextafter(x, 0.0);
    }
    for (int step = 0; step < 6; ++step, x = std::nextafter(x, kInfinity)) {
      const bool isReached = x - length <= tolerance;
      const AcGeLineSeg3d vertical = seg(x, -5, x, 7000);
      AcGePoint3d meeting;
      ASSERT_EQ(seg(0, 0, length, 0).intersectWith(vertical, meeting), isReached) << x - length;
      ASSERT_EQ(seg(length, 0, 0, 0).intersectWith(vertical, meeting), isReached) << x - length;
      ASSERT_EQ(vertical.intersectWith(seg(0, 0, length, 0), meeting), isReached) << x - length;
    }
  }
}

TEST(Intersection, DegenerateEntitiesCrossNothing) {
  AcGePoint3d meeting(7, 7, 7);
  EXPECT_FALSE(seg(5, 0, 5, 0).intersectWith(seg(0, 0, 10, 0), meeting));
  EXPECT_FALSE(seg(0, 0, 10, 0).intersectWith(seg(5, 0, 5, 0), meeting));
  EXPECT_FALSE(line(5, 0, 5, 0).intersectWith(line(0, 0, 0, 1), meeting));
  EXPECT_TRUE(sameBits(meeting, P(7, 7, 7)));
}

TEST(Intersection, NotANumberAndInfinityGiveNone) {
  AcGePoint3d meeting(7, 7, 7);
  EXPECT_FALSE(line(0, 0, 1, 0).intersectWith(line(kNaN, 0, 0, 1), meeting));
  EXPECT_FALSE(line(0, 0, kInfinity, 0).intersectWith(line(5, -1, 5, 1), meeting));
  EXPECT_TRUE(sameBits(meeting, P(7, 7, 7)));
}

TEST(Intersection, ABillionUnitsOutTheMeetingPointIsStillFound) {
  AcGePoint3d meeting;
  const double far = 1e9;
  ASSERT_TRUE(seg(far, far, far + 4000, far + 3000)
                  .intersectWith(seg(far, far + 3000, far + 4000, far), meeting));
  EXPECT_LT(meeting.distanceTo(P(far + 2000, far + 1500)), 1e-6);
}

TEST(Intersection, TheMeetingPointLiesOnBothForRandomLines) {
  std::mt19937_64 random(9);
  std::uniform_real_distribution<double> coordinate(-1000, 1000);
  int met = 0;
  for (int i = 0; i < 3000; ++i) {
    const auto r = [&] { return coordinate(random); };
    const AcGeLineSeg3d a = seg(r(), r(), r(), r());
    const AcGeLineSeg3d b = seg(r(), r(), r(), r());
    AcGePoint3d ab, ba;
    const bool meets = a.intersectWith(b, ab);
    ASSERT_EQ(meets, b.intersectWith(a, ba));
    if (meets) {
      ++met;
      ASSERT_LT(a.distanceTo(ab), 1e-9);
      ASSERT_LT(b.distanceTo(ab), 1e-9);
      ASSERT_LT(ab.distanceTo(ba), 1e-9);
    } else {
      ASSERT_GT(a.distanceTo(b), 0.0);
    }
  }
  EXPECT_GT(met, 300);
}

TEST(LinearEnt3d, ParallelAndCollinearAreDistinct) {
  EXPECT_TRUE(line(0, 0, 1, 0).isParallelTo(seg(5, 5, -5, 5)));
  EXPECT_FALSE(line(0, 0, 1, 0).isColinearTo(seg(5, 5, -5, 5)));
  EXPECT_TRUE(seg(0, 0, 1, 0).isColinearTo(seg(50, 0, 40, 0)));
  EXPECT_TRUE(line(0, 0, 1, 0).isPerpendicularTo(line(0, 0, 0, -3)));
}

TEST(LinearEnt3d, TransformingMovesBothEnds) {
  AcGeLineSeg3d segment = seg(0, 0, 10, 0);
  segment.transformBy(AcGeMatrix3d().setToTranslation(AcGeVector3d(1, 2, 3)));
  EXPECT_EQ(segment.startPoint(), P(1, 2, 3));
  EXPECT_EQ(segment.endPoint(), P(11, 2, 3));
  AcGeLine3d unbounded = line(0, 0, 1, 0);
  unbounded.translateBy(AcGeVector3d(0, 5, 0));
  EXPECT_EQ(unbounded.closestPointTo(P(9, 9)), P(9, 5));
  AcGeLine3d other;
  segment.getLine(other);
  EXPECT_EQ(other.closestPointTo(P(99, 0, 3)), P(99, 2, 3));
}

TEST(Intersection, ADegenerateEntityIsOneNoLongerThanTheVectorTolerance) {
  AcGePoint3d meeting(7, 7, 7);
  EXPECT_FALSE(seg(0, -1, 0, 1).intersectWith(seg(0, 0, 1e-10, 0), meeting));
  EXPECT_TRUE(sameBits(meeting, P(7, 7, 7)));
  EXPECT_TRUE(seg(0, -1, 0, 1).intersectWith(seg(0, 0, 2e-10, 0), meeting));
}

TEST(Intersection, LinesAndSegmentsMix) {
  AcGePoint3d meeting;
  ASSERT_TRUE(line(0, 0, 1, 0).intersectWith(seg(10, -5, 10, 5), meeting));
  EXPECT_TRUE(sameBits(meeting, P(10, 0)));
  ASSERT_TRUE(seg(10, -5, 10, 5).intersectWith(line(0, 0, 1, 0), meeting));
  EXPECT_TRUE(sameBits(meeting, P(10, 0)));
  EXPECT_FALSE(seg(10, 1, 10, 5).intersectWith(line(0, 0, 1, 0), meeting));
}

TEST(Intersection, ABillionUnitsOutAStemThatTouchesItsWallMeetsItAndOneThatStopsShortDoesNot) {
  const double far = 1e9;
  const AcGeLineSeg3d wall = seg(far, far, far + 4000, far);
  AcGePoint3d meeting(7, 7, 7);
  // The next double below `far` is 1.2e-7 away, more than the point tolerance.
  EXPECT_FALSE(
      seg(far + 9, far - 50, far + 9, std::nextafter(far, 0.0)).intersectWith(wall, meeting));
  EXPECT_TRUE(sameBits(meeting, P(7, 7, 7)));
  ASSERT_TRUE(seg(far + 9, far - 50, far + 9, far).intersectWith(wall, meeting));
  EXPECT_TRUE(sameBits(meeting, P(far + 9, far)));
}

TEST(Intersection, ThePointOfSkewLinesIsTheNearestOfThisOne) {
  AcGeTol loose;
  loose.setEqualPoint(2.0);
  AcGePoint3d meeting;
  const AcGeLine3d lower(P(0, 0, 0), P(1, 1, 0));
  const AcGeLine3d upper(P(4, 0, 2), P(3, 1, 2));
  ASSERT_TRUE(lower.intersectWith(upper, meeting, loose));
  EXPECT_EQ(meeting, P(2, 2, 0));
  ASSERT_TRUE(upper.intersectWith(lower, meeting, loose));
  EXPECT_EQ(meeting, P(2, 2, 2));
}

TEST(LinearEnt3d, CollinearLinesFarFromTheOriginAreKnown) {
  const double far = 1e9;
  const AcGeLineSeg3d first = seg(far, far, far + 300, far + 400);
  EXPECT_TRUE(first.isColinearTo(seg(far + 900, far + 1200, far + 600, far + 800)));
  EXPECT_FALSE(first.isColinearTo(seg(far + 901, far + 1200, far + 601, far + 800)));
  EXPECT_FALSE(first.isColinearTo(seg(kNaN, far, far, far)));
}

TEST(LinearEnt3d, CollinearIncludesThePointToleranceItself) {
  AcGeTol tol;
  tol.setEqualPoint(0.25);
  EXPECT_TRUE(line(0, 0, 4, 0).isColinearTo(line(0, 0.25, 8, 0.25), tol));
  EXPECT_FALSE(line(0, 0, 4, 0).isColinearTo(line(0, 0.2500001, 8, 0.2500001), tol));
}

TEST(LinearEnt3d, TurningAndScalingKeepTheCentre) {
  AcGeLineSeg3d segment = seg(7, 5, 9, 5);
  segment.rotateBy(kPi / 2, AcGeVector3d::kZAxis, P(5, 5));
  EXPECT_EQ(segment.startPoint(), P(5, 7));
  EXPECT_EQ(segment.endPoint(), P(5, 9));
  segment.scaleBy(2.0, P(5, 5));
  EXPECT_EQ(segment.endPoint(), P(5, 13));
  AcGeLine3d turned = line(0, 0, 1, 0);
  turned.rotateBy(kPi / 2, AcGeVector3d::kZAxis, P(5, 0));
  EXPECT_TRUE(turned.isColinearTo(line(5, 0, 5, 1)));
}

}  // namespace
