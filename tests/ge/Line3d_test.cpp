#include "geline3d.h"

#include <gtest/gtest.h>

#include "tests/ge/Shapes.h"

namespace {

using namespace shapes;

TEST(Line3d, DefaultIsTheXAxis) {
  EXPECT_TRUE(AcGeLine3d().isColinearTo(AcGeLine3d::kXAxis));
  EXPECT_EQ(AcGeLine3d::kYAxis.direction(), AcGeVector3d::kYAxis);
  EXPECT_EQ(AcGeLine3d::kZAxis.direction(), AcGeVector3d::kZAxis);
  EXPECT_EQ(AcGeLine3d::kZAxis.pointOnLine(), AcGePoint3d::kOrigin);
}

TEST(Line3d, KeepsPointAndDirectionAsGiven) {
  const AcGeLine3d given(P(0.1, 0.2), AcGeVector3d(0, 30, 40));
  EXPECT_TRUE(sameBits(given.pointOnLine(), P(0.1, 0.2)));
  EXPECT_EQ(given.direction(), AcGeVector3d(0, 0.6, 0.8));
  EXPECT_TRUE(sameBits(given.evalPoint(2.0), P(0.1, 60.2, 80)));
}

TEST(Line3d, SetReplacesBaseAndDirection) {
  AcGeLine3d changed;
  changed.set(P(1, 1), P(1, 5));
  EXPECT_EQ(changed.direction(), AcGeVector3d::kYAxis);
  changed.set(P(2, 2), AcGeVector3d(0, 0, -3));
  EXPECT_EQ(changed.direction(), -AcGeVector3d::kZAxis);
  EXPECT_EQ(changed.closestPointTo(P(0, 0, 50)), P(2, 2, 50));
}

TEST(Line3d, ThroughEqualPointsHasNoDirectionAndNoAngle) {
  const AcGeLine3d degenerate(P(3, 4), P(3, 4));
  EXPECT_TRUE(degenerate.isDegenerate());
  for (const AcGeVector3d& v :
       {AcGeVector3d::kXAxis, AcGeVector3d(-1, -1, -1), AcGeVector3d(-2, 0, 0)}) {
    EXPECT_EQ(degenerate.direction().angleTo(v), 0.0);
    EXPECT_EQ(v.angleTo(degenerate.direction()), 0.0);
    EXPECT_EQ(degenerate.direction().angleTo(v, AcGeVector3d::kZAxis), 0.0);
  }
  EXPECT_FALSE(degenerate.isParallelTo(line(0, 0, 1, 0)));
  EXPECT_FALSE(degenerate.isParallelTo(degenerate));
  EXPECT_FALSE(degenerate.isPerpendicularTo(line(0, 0, 1, 0)));
  EXPECT_FALSE(degenerate.isColinearTo(line(0, 0, 3, 4)));
}

TEST(Line3d, MirroringInALineTurnsHalfRoundAboutIt) {
  const AcGeMatrix3d mirror = AcGeMatrix3d().setToMirroring(line(0, 5, 9, 5));
  EXPECT_EQ(mirror * P(3, 7, 2), P(3, 3, -2));
  EXPECT_EQ(AcGeMatrix3d().setToMirroring(line(1, 1, 1, 1)), AcGeMatrix3d::kIdentity);
}

}  // namespace
