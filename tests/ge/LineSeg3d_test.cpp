#include "gelnsg3d.h"

#include <gtest/gtest.h>

#include <random>
#include <type_traits>

#include "tests/ge/Shapes.h"

namespace {

using namespace shapes;

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

TEST(LineSeg3d, EqualEndPointsGiveEqualResultsHoweverItWasMade) {
  const AcGePoint3d start = P(1e9, 0.1);
  const AcGeLineSeg3d byVector(start, AcGeVector3d(1e-3, 0.2, 0));
  const AcGeLineSeg3d byPoints(start, byVector.endPoint());
  AcGeLineSeg3d moved(start - AcGeVector3d(1e9, 0, 0),
                      byVector.endPoint() - AcGeVector3d(1e9, 0, 0));
  moved.translateBy(AcGeVector3d(1e9, 0, 0));
  ASSERT_TRUE(sameBits(moved.endPoint(), byPoints.endPoint()));
  for (const AcGeLineSeg3d& segment : {byVector, moved}) {
    EXPECT_EQ(segment.direction().x, byPoints.direction().x);
    EXPECT_EQ(segment.direction().y, byPoints.direction().y);
    EXPECT_TRUE(sameBits(segment.closestPointTo(P(1e9 + 5, 0.17)),
                         byPoints.closestPointTo(P(1e9 + 5, 0.17))));
  }
}

TEST(LineSeg3d, TheMiddleOfTheReversedSegmentHasTheSameBits) {
  std::mt19937_64 random(13);
  std::uniform_real_distribution<double> coordinate(-1e9, 1e9);
  for (int i = 0; i < 1000; ++i) {
    const AcGePoint3d a = P(coordinate(random), coordinate(random), coordinate(random));
    const AcGePoint3d b = P(coordinate(random), coordinate(random), coordinate(random));
    ASSERT_TRUE(sameBits(AcGeLineSeg3d(a, b).midPoint(), AcGeLineSeg3d(b, a).midPoint()));
  }
}

TEST(LineSeg3d, DefaultRunsAlongXByOne) {
  EXPECT_TRUE(sameBits(AcGeLineSeg3d().startPoint(), P(0, 0)));
  EXPECT_TRUE(sameBits(AcGeLineSeg3d().endPoint(), P(1, 0)));
}

TEST(LineSeg3d, IsAValueThatConstantExpressionsCanHold) {
  constexpr AcGeLineSeg3d kSegment(AcGePoint3d(1.0, 2.0, 3.0), AcGePoint3d(5.0, 2.0, 3.0));
  static_assert(kSegment.midPoint().x == 3.0);
  static_assert(std::is_trivially_copyable_v<AcGeLineSeg3d>);
  static_assert(std::is_trivially_destructible_v<AcGeLineSeg3d>);
  static_assert(!std::is_polymorphic_v<AcGeLineSeg3d>);
  EXPECT_FALSE(kSegment.isDegenerate());
}

}  // namespace
