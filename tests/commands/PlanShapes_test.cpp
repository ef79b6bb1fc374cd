#include "commands/picture/PlanShapes.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using quoin::commands::appendBulge;

TEST(BulgeArc, AHalfCircleRunsRoundItsCentre) {
  std::vector<AcGePoint2d> points{{0, 0}};
  appendBulge(points, {0, 0}, {10, 0}, 1.0);
  // Counter-clockwise from the left end to the right one: below the chord.
  double lowest = 0.0;
  for (const AcGePoint2d& point : points) {
    EXPECT_NEAR(point.distanceTo({5, 0}), 5.0, 1e-12);
    lowest = std::min(lowest, point.y);
  }
  EXPECT_NEAR(lowest, -5.0, 0.05);
  EXPECT_EQ(points.back().x, 10.0);
}

TEST(BulgeArc, ANegativeBulgeRunsTheOtherWay) {
  std::vector<AcGePoint2d> points{{0, 0}};
  appendBulge(points, {0, 0}, {10, 0}, -0.5);
  for (const AcGePoint2d& point : points) {
    EXPECT_GE(point.y, 0.0);
  }
  // The sagitta is half the chord times the bulge.
  EXPECT_NEAR(points[points.size() / 2].y, 2.5, 0.05);
}

TEST(BulgeArc, NoBulgeIsAStraightLine) {
  std::vector<AcGePoint2d> points{{0, 0}};
  appendBulge(points, {0, 0}, {10, 0}, 0.0);
  EXPECT_EQ(points.size(), 2u);
}

}  // namespace
