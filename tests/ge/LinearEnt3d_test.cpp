#include "gelent3d.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "gelnsg3d.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

AcGePoint3d P(double x, double y, double z = 0.0) {
  return {x, y, z};
}
AcGeLineSeg3d seg(double x1, double y1, double x2, double y2) {
  return {P(x1, y1), P(x2, y2)};
}
AcGeLine3d line(double x1, double y1, double x2, double y2) {
  return {P(x1, y1), P(x2, y2)};
}
bool sameBits(const AcGePoint3d& a, const AcGePoint3d& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

// --- direction, kinds -----------------------------------------------------------------

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

TEST(LineSeg3d, KeepsItsPointsWithTheirVeryBits) {
  const AcGeLineSeg3d segment(P(0.1, 1e9 + 0.3), P(0.7, -1e-30));
  EXPECT_TRUE(sameBits(segment.startPoint(), P(0.1, 1e9 + 0.3)));
  EXPECT_TRUE(sameBits(segment.endPoint(), P(0.7, -1e-30)));
  EXPECT_EQ(seg(0, 0, 6, 8).length(), 10.0);
  EXPECT_EQ(seg(0, 0, 6, 8).midPoint(), P(3, 4));
}

TEST(LineSeg3d, SetReplacesBothPoints) {
  AcGeLineSeg3d segment;
  segment.set(P(1, 2), P(3, 4));
  EXPECT_EQ(segment.startPoint(), P(1, 2));
  EXPECT_EQ(segment.endPoint(), P(3, 4));
  segment.set(P(1, 2), AcGeVector3d(1, 1, 1));
  EXPECT_EQ(segment.endPoint(), P(2, 3, 1));
}

// --- closest point and distance to a point ----------------------------------------------

TEST(ClosestPoint, ASegmentEndsAtItsPoints) {
  const AcGeLineSeg3d segment = seg(0, 0, 10, 0);
  EXPECT_EQ(segment.closestPointTo(P(5, 3)), P(5, 0));
  EXPECT_TRUE(sameBits(segment.closestPointTo(P(-4, 3)), P(0, 0)));
  EXPECT_TRUE(sameBits(segment.closestPointTo(P(14, 3)), P(10, 0)));
  EXPECT_EQ(segment.distanceTo(P(14, 3)), 5.0);
  EXPECT_TRUE(segment.isOn(P(7, 1e-10)));
  EXPECT_FALSE(segment.isOn(P(7, 2e-10)));
}

TEST(ClosestPoint, ALineIsUnbounded) {
  EXPECT_EQ(line(0, 0, 1, 0).closestPointTo(P(-40, 3)), P(-40, 0));
  EXPECT_EQ(line(0, 0, 1, 0).distanceTo(P(1e9, -2)), 2.0);
}

TEST(ClosestPoint, ADegenerateEntityAnswersItsBasePoint) {
  EXPECT_TRUE(sameBits(seg(3, 4, 3, 4).closestPointTo(P(0, 0)), P(3, 4)));
  EXPECT_EQ(seg(3, 4, 3, 4).distanceTo(P(0, 0)), 5.0);
  EXPECT_TRUE(sameBits(line(3, 4, 3, 4).closestPointTo(P(0, 0)), P(3, 4)));
}

TEST(ClosestPoint, NotANumberAndInfinityAnswerTheStart) {
  EXPECT_TRUE(sameBits(seg(1, 2, 9, 9).closestPointTo(P(kNaN, 0)), P(1, 2)));
  EXPECT_TRUE(std::isnan(seg(1, 2, 9, 9).distanceTo(P(kNaN, 0))));
  EXPECT_TRUE(sameBits(seg(1, 2, kInfinity, 2).closestPointTo(P(5, 5)), P(1, 2)));
  EXPECT_TRUE(sameBits(line(1, 2, 9, 2).closestPointTo(P(kInfinity, 0)), P(1, 2)));
}

TEST(ClosestPoint, ABillionUnitsOutTheFootIsExactOnAxisParallelSegments) {
  const double far = 1e9;
  const AcGeLineSeg3d segment = seg(far, far, far + 4000, far);
  EXPECT_EQ(segment.distanceTo(P(far + 1000, far + 10)), 10.0);
  EXPECT_EQ(segment.closestPointTo(P(far + 1000, far + 10)).y, far);
}

TEST(ClosestPoint, TheFootIsNearerThanAnyOtherPointOfTheSegment) {
  std::mt19937_64 random(3);
  std::uniform_real_distribution<double> coordinate(-100, 100);
  for (int i = 0; i < 500; ++i) {
    const AcGeLineSeg3d segment(P(coordinate(random), coordinate(random), coordinate(random)),
                                P(coordinate(random), coordinate(random), coordinate(random)));
    const AcGePoint3d p(coordinate(random), coordinate(random), coordinate(random));
    const double distance = segment.distanceTo(p);
    for (int k = 0; k <= 20; ++k) {
      const AcGePoint3d other =
          segment.startPoint() + (segment.endPoint() - segment.startPoint()) * (k / 20.0);
      ASSERT_LE(distance, p.distanceTo(other) + 1e-12);
    }
  }
}

// --- distance of two curves ---------------------------------------------------------------

TEST(CurveDistance, CrossingSegmentsAreAtDistanceZero) {
  EXPECT_EQ(seg(0, 0, 10, 0).distanceTo(seg(5, -5, 5, 5)), 0.0);
  EXPECT_NEAR(seg(0, 0, 10, 7).distanceTo(seg(0, 7, 10, 0)), 0.0, 1e-14);
}

TEST(CurveDistance, ParallelSegmentsAreTheirGapApart) {
  EXPECT_EQ(seg(0, 0, 10, 0).distanceTo(seg(2, 3, 8, 3)), 3.0);
  EXPECT_EQ(seg(0, 0, 10, 0).distanceTo(seg(8, 3, 2, 3)), 3.0);
  EXPECT_EQ(seg(0, 0, 10, 0).distanceTo(seg(13, 4, 20, 4)), 5.0);
}

TEST(CurveDistance, CollinearSegmentsAreTheirGapApartAndZeroWhereTheyOverlap) {
  EXPECT_EQ(seg(0, 0, 10, 0).distanceTo(seg(12, 0, 20, 0)), 2.0);
  EXPECT_EQ(seg(0, 0, 10, 0).distanceTo(seg(4, 0, 20, 0)), 0.0);
  EXPECT_EQ(seg(0, 0, 10, 0).distanceTo(seg(10, 0, 20, 0)), 0.0);
}

TEST(CurveDistance, SkewSegmentsAreTheirCommonPerpendicularApart) {
  const AcGeLineSeg3d lower(P(-5, 0, 0), P(5, 0, 0));
  const AcGeLineSeg3d upper(P(0, -5, 7), P(0, 5, 7));
  EXPECT_EQ(lower.distanceTo(upper), 7.0);
  AcGePoint3d onUpper;
  EXPECT_EQ(lower.closestPointTo(upper, onUpper), P(0, 0, 0));
  EXPECT_EQ(onUpper, P(0, 0, 7));
}

TEST(CurveDistance, DegenerateSegmentsAreMeasuredAsPoints) {
  EXPECT_EQ(seg(5, 3, 5, 3).distanceTo(seg(0, 0, 10, 0)), 3.0);
  EXPECT_EQ(seg(0, 0, 10, 0).distanceTo(seg(5, 3, 5, 3)), 3.0);
  EXPECT_EQ(seg(0, 0, 0, 0).distanceTo(seg(3, 4, 3, 4)), 5.0);
  EXPECT_EQ(line(0, 0, 1, 0).distanceTo(seg(500, 3, 500, 3)), 3.0);
}

TEST(CurveDistance, LinesReachBeyondTheirPoints) {
  EXPECT_EQ(line(0, 0, 1, 0).distanceTo(line(0, 5, 1, 5)), 5.0);
  EXPECT_NEAR(line(0, 0, 1, 0).distanceTo(line(0, 5, 1, 6)), 0.0, 1e-14);
  EXPECT_EQ(line(0, 0, 1, 0).distanceTo(seg(50, 2, 60, 9)), 2.0);
}

TEST(CurveDistance, NotANumberInEveryCandidateIsNotANumber) {
  EXPECT_TRUE(std::isnan(seg(kNaN, 0, kNaN, 1).distanceTo(seg(0, 0, 10, 0))));
  EXPECT_EQ(seg(kNaN, 0, 1, 1).distanceTo(seg(0, 0, 10, 0)), 1.0);
}

TEST(CurveDistance, IsSymmetricAndKeepsUnderReversalAndMotion) {
  std::mt19937_64 random(5);
  std::uniform_int_distribution<int> lattice(-4, 4);
  for (int i = 0; i < 4000; ++i) {
    const auto point = [&] { return P(lattice(random), lattice(random), lattice(random) / 4); };
    const AcGePoint3d a = point(), b = point(), c = point(), d = point();
    const double distance = AcGeLineSeg3d(a, b).distanceTo(AcGeLineSeg3d(c, d));
    ASSERT_NEAR(distance, AcGeLineSeg3d(c, d).distanceTo(AcGeLineSeg3d(a, b)), 1e-12);
    ASSERT_NEAR(distance, AcGeLineSeg3d(b, a).distanceTo(AcGeLineSeg3d(d, c)), 1e-12);
    const AcGeMatrix3d motion = AcGeMatrix3d().setToRotation(0.7, {1, 2, 3}, P(1, 1, 1));
    ASSERT_NEAR(
        distance,
        AcGeLineSeg3d(motion * a, motion * b).distanceTo(AcGeLineSeg3d(motion * c, motion * d)),
        1e-11);
    // No pair of sampled points is nearer.
    for (int k = 0; k <= 8; ++k) {
      ASSERT_LE(distance, AcGeLineSeg3d(c, d).distanceTo(a + (b - a) * (k / 8.0)) + 1e-12);
    }
  }
}

// --- intersections ----------------------------------------------------------------------

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

TEST(LinearEnt3d, ParallelAndCollinearAreToldApart) {
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

}  // namespace
