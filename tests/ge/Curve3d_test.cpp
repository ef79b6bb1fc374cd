#include "gecurv3d.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "tests/ge/Shapes.h"

namespace {

using namespace shapes;

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

TEST(ClosestPoint, ADegenerateEntityGivesItsBasePoint) {
  EXPECT_TRUE(sameBits(seg(3, 4, 3, 4).closestPointTo(P(0, 0)), P(3, 4)));
  EXPECT_EQ(seg(3, 4, 3, 4).distanceTo(P(0, 0)), 5.0);
  EXPECT_TRUE(sameBits(line(3, 4, 3, 4).closestPointTo(P(0, 0)), P(3, 4)));
}

TEST(ClosestPoint, NotANumberAndInfinityGiveTheStart) {
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
    const auto point = [&] {
      const int height = lattice(random) / 4;  // mostly 0, so that many segments lie in a plane
      return P(lattice(random), lattice(random), height);
    };
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

TEST(ClosestPoint, TheSignOfAZeroCoordinateStaysAtTheEnds) {
  const AcGeLineSeg3d segment(P(-0.0, -0.0, -0.0), P(10, -0.0, -0.0));
  EXPECT_TRUE(sameBits(segment.closestPointTo(P(-4, 3)), P(-0.0, -0.0, -0.0)));
  EXPECT_TRUE(sameBits(segment.closestPointTo(P(14, 3)), P(10, -0.0, -0.0)));
}

TEST(ClosestPoint, ASegmentWhoseSquaredLengthVanishesGivesItsStart) {
  const AcGeLineSeg3d tiny(P(0, 0), P(1e-170, 0));
  EXPECT_TRUE(sameBits(tiny.closestPointTo(P(1, 0)), P(0, 0)));
  EXPECT_TRUE(sameBits(tiny.closestPointTo(P(-1, 0)), P(0, 0)));
  const AcGeLine3d tinyLine(P(0, 0), AcGeVector3d(1e-170, 0, 0));
  EXPECT_TRUE(sameBits(tinyLine.closestPointTo(P(1, 0)), P(0, 0)));
}

TEST(ClosestPoint, AnInfinitelyFarPointIsNearestToTheEndOnItsSide) {
  EXPECT_TRUE(sameBits(seg(1, 2, 9, 2).closestPointTo(P(kInfinity, 0)), P(9, 2)));
  EXPECT_TRUE(sameBits(seg(1, 2, 9, 2).closestPointTo(P(-kInfinity, 0)), P(1, 2)));
  EXPECT_EQ(seg(1, 2, 9, 2).distanceTo(P(kInfinity, 0)), kInfinity);
}

TEST(ClosestPoint, DistanceIsThatToTheClosestPointBitForBit) {
  std::mt19937_64 random(17);
  std::uniform_real_distribution<double> coordinate(-1000, 1000);
  for (int i = 0; i < 2000; ++i) {
    const auto r = [&] { return coordinate(random); };
    const AcGeLineSeg3d segment(P(r(), r(), r()), P(r(), r(), r()));
    const AcGePoint3d p = P(r(), r(), r());
    const AcGePoint3d a = segment.startPoint();
    const AcGeVector3d d = segment.endPoint() - a;
    const double t = (p - a).dotProduct(d) / d.dotProduct(d);
    AcGePoint3d foot = a + d * t;
    if (t <= 0.0) {
      foot = a;
    } else if (t >= 1.0) {
      foot = segment.endPoint();
    }
    ASSERT_TRUE(sameBits(segment.closestPointTo(p), foot));
    const AcGeVector3d gap = p - foot;
    ASSERT_EQ(segment.distanceTo(p), std::sqrt(gap.x * gap.x + gap.y * gap.y + gap.z * gap.z));
  }
}

TEST(ClosestPoint, ThroughTheBaseALineStaysUnboundedAndASegmentBounded) {
  const AcGeLine3d unbounded = line(0, 0, 10, 0);
  const AcGeLineSeg3d bounded = seg(0, 0, 10, 0);
  const AcGeCurve3d* curve = &unbounded;
  EXPECT_EQ(curve->distanceTo(P(40, 3)), 3.0);
  curve = &bounded;
  EXPECT_EQ(curve->distanceTo(P(14, 3)), 5.0);
}

// Bound of the distance of two curves, per unit of the largest coordinate.
constexpr double kDistanceError = 4e-15;

TEST(CurveDistance, NearlyParallelSegmentsThatCrossAreAtDistanceZero) {
  // Both pass through one point with a tilt down to 1e-13; a gap in z is their distance.
  std::mt19937_64 random(19);
  std::uniform_real_distribution<double> number(-1, 1);
  std::uniform_real_distribution<double> exponent(-13, 0);
  for (int i = 0; i < 20000; ++i) {
    const AcGeVector3d along(1000 * number(random), 1000 * number(random), 0);
    const AcGeVector3d tilted = along * number(random) + AcGeVector3d(-along.y, along.x, 0) *
                                                             std::pow(10.0, exponent(random));
    const AcGePoint3d middle = P(1000 * number(random), 1000 * number(random));
    const AcGeLineSeg3d first(middle - along * (0.1 + std::fabs(number(random))), middle + along);
    const double gap = i % 2 == 0 ? 0.0 : 0.25;
    const AcGeVector3d up(0, 0, gap);
    const AcGeLineSeg3d second(middle - tilted + up,
                               middle + tilted * (0.1 + std::fabs(number(random))) + up);
    ASSERT_NEAR(first.distanceTo(second), gap, 4000 * kDistanceError) << "case " << i;
  }
}

TEST(CurveDistance, IsTheDistanceOfTheTwoClosestPoints) {
  std::mt19937_64 random(23);
  std::uniform_int_distribution<int> lattice(-3, 3);
  for (int i = 0; i < 2000; ++i) {
    const auto point = [&] { return P(lattice(random), lattice(random), lattice(random)); };
    const AcGeLineSeg3d a(point(), point());
    const AcGeLineSeg3d b(point(), point());
    AcGePoint3d onB;
    const AcGePoint3d onA = a.closestPointTo(b, onB);
    ASSERT_EQ(a.distanceTo(b), onA.distanceTo(onB));
    ASSERT_EQ(a.distanceTo(b), b.distanceTo(a));
    ASSERT_LE(a.distanceTo(onA), 10 * kDistanceError);
    ASSERT_LE(b.distanceTo(onB), 10 * kDistanceError);
  }
}

TEST(CurveDistance, ABillionUnitsOutTheGapOfParallelWallLinesIsExact) {
  const double far = 1e9;
  EXPECT_EQ(seg(far, far, far + 4000, far).distanceTo(seg(far + 9, far + 24, far + 90, far + 24)),
            24.0);
  EXPECT_NEAR(
      seg(far, far, far + 4000, far + 3000).distanceTo(seg(far, far + 3000, far + 4000, far)), 0.0,
      2e9 * kDistanceError);
}

TEST(Curve3d, ParametersRunFromStartToEnd) {
  const AcGeLineSeg3d segment = seg(0.1, 0.2, 0.7, 1e9);
  EXPECT_TRUE(sameBits(segment.evalPoint(0.0), P(0.1, 0.2)));
  EXPECT_TRUE(sameBits(segment.evalPoint(1.0), P(0.7, 1e9)));
  EXPECT_EQ(seg(0, 0, 10, 20).evalPoint(0.5), P(5, 10));
  EXPECT_EQ(seg(0, 0, 10, 20).evalPoint(-2.0), P(-20, -40));
}

TEST(Curve3d, OnlySegmentsHaveEnds) {
  AcGePoint3d end = P(7, 7);
  EXPECT_FALSE(line(0, 0, 1, 0).hasStartPoint(end));
  EXPECT_FALSE(line(0, 0, 1, 0).hasEndPoint(end));
  EXPECT_TRUE(sameBits(end, P(7, 7)));
  EXPECT_TRUE(seg(1, 2, 3, 4).hasStartPoint(end));
  EXPECT_TRUE(sameBits(end, P(1, 2)));
  EXPECT_TRUE(seg(1, 2, 3, 4).hasEndPoint(end));
  EXPECT_TRUE(sameBits(end, P(3, 4)));
}

}  // namespace
