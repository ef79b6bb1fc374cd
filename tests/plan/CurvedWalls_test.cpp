#include "plan/CurvedWalls.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace {

using namespace quoin::plan;

constexpr double kQuarter = std::numbers::pi / 2.0;

PlanArc arc(double radius, double start = 0.0, double sweep = kQuarter) {
  return {{1000.0, 2000.0}, radius, start, sweep};
}

TEST(CurvedWalls, TwoArcsOfOneCentreAreAWall) {
  const auto walls = findCurvedWalls({arc(4000.0), arc(4200.0)}, {});
  ASSERT_EQ(walls.size(), 1U);
  EXPECT_EQ(walls[0].width, 200.0);
  EXPECT_EQ(walls[0].arc.radius, 4100.0);
  EXPECT_DOUBLE_EQ(walls[0].arc.sweep, kQuarter);
}

TEST(CurvedWalls, ReachesAsFarAsBothArcs) {
  const auto walls = findCurvedWalls({arc(4000.0, 0.0, 2.0), arc(4200.0, 1.5, 2.0)}, {});
  ASSERT_EQ(walls.size(), 1U);
  EXPECT_DOUBLE_EQ(walls[0].arc.startAngle, 1.5);
  EXPECT_DOUBLE_EQ(walls[0].arc.sweep, 0.5);
}

TEST(CurvedWalls, AnArcBehindTheTurnMeetsOneBeforeIt) {
  const auto walls = findCurvedWalls({arc(4000.0, 6.0, 1.0), arc(4200.0, 0.0, 0.5)}, {});
  ASSERT_EQ(walls.size(), 1U);
  EXPECT_NEAR(walls[0].arc.sweep, 0.5, 1e-12);
}

TEST(CurvedWalls, AnArcIsTheFaceOfOneWall) {
  // Three arcs: the longer pair wins.
  const auto walls =
      findCurvedWalls({arc(4000.0, 0.0, 1.0), arc(4200.0), arc(4400.0, 0.0, 2.0)}, {});
  ASSERT_EQ(walls.size(), 1U);
  EXPECT_EQ(walls[0].arc.radius, 4300.0);
}

TEST(CurvedWalls, FullCirclesMakeARing) {
  const double turn = 2.0 * std::numbers::pi;
  const auto walls = findCurvedWalls({arc(4000.0, 0.0, turn), arc(4200.0, 1.0, turn)}, {});
  ASSERT_EQ(walls.size(), 1U);
  EXPECT_DOUBLE_EQ(walls[0].arc.sweep, turn);
}

TEST(CurvedWalls, NoneOfWhatIsApartOrTooShortOrNoNumber) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(findCurvedWalls({}, {}).empty());
  EXPECT_TRUE(findCurvedWalls({arc(4000.0), arc(4700.0)}, {}).empty());
  EXPECT_TRUE(findCurvedWalls({arc(4000.0), arc(4020.0)}, {}).empty());
  EXPECT_TRUE(findCurvedWalls({arc(4000.0, 0.0, 1.0), arc(4200.0, 2.0, 1.0)}, {}).empty());
  EXPECT_TRUE(findCurvedWalls({arc(4000.0, 0.0, 0.05), arc(4200.0, 0.0, 0.05)}, {}).empty());
  EXPECT_TRUE(findCurvedWalls({arc(nan), arc(4200.0)}, {}).empty());
  PlanArc aside = arc(4200.0);
  aside.center.x += 50.0;
  EXPECT_TRUE(findCurvedWalls({arc(4000.0), aside}, {}).empty());
}

TEST(CurvedWalls, ChordsLeaveTheArcByTheDeviation) {
  const PlanArc wall = arc(4100.0);
  const auto corners = chordsOf(wall, 5.0);
  EXPECT_EQ(corners.front(), wall.at(0.0));
  EXPECT_EQ(corners.back(), wall.at(kQuarter));
  for (std::size_t i = 1; i < corners.size(); ++i) {
    const AcGePoint2d middle = corners[i - 1] + (corners[i] - corners[i - 1]) * 0.5;
    EXPECT_LE(wall.radius - middle.distanceTo(wall.center), 5.0);
    EXPECT_GE(wall.radius - middle.distanceTo(wall.center), 2.0);  // and not by much less
  }
}

TEST(CurvedWalls, StandAmongTheWallsOfAPlan) {
  PlanDrawing drawing;
  drawing.faceArcs = {arc(4000.0), arc(4200.0)};
  const FoundWalls found = findWalls(drawing, {});
  ASSERT_EQ(found.curved.size(), 1U);
  ASSERT_EQ(found.plan.walls.size(), found.curved[0].chords.size());
  for (std::size_t i = 1; i < found.plan.walls.size(); ++i) {
    EXPECT_EQ(found.plan.walls[i].start.x, found.plan.walls[i - 1].end.x);
    EXPECT_EQ(found.plan.walls[i].width(), 200.0);
  }
}

}  // namespace
