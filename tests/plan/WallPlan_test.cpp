#include "plan/WallPlan.h"

#include <gtest/gtest.h>

#include <string>

namespace quoin::plan {
namespace {

TEST(Wall, IsMeasuredAlongItsReferenceLine) {
  const Wall wall{{100, 200}, {400, 600}, 80.0, 40.0};
  EXPECT_EQ(wall.width(), 120);
  EXPECT_EQ(wall.length(), 500);
  EXPECT_DOUBLE_EQ(wall.direction().x, 0.6);
  EXPECT_DOUBLE_EQ(wall.direction().y, 0.8);
  EXPECT_DOUBLE_EQ(wall.at(250).x, 250);
  EXPECT_DOUBLE_EQ(wall.at(250).y, 400);
}

TEST(Wall, WithoutLengthHasNoDirection) {
  const Wall wall{{5, 5}, {5, 5}};
  EXPECT_EQ(wall.direction().x, 0);
  EXPECT_EQ(wall.direction().y, 0);
  EXPECT_EQ(wall.at(7).x, 5);
}

TEST(WallPlan, OpeningsStandOnTheirWalls) {
  const WallPlan plan{{{{0, 0}, {9, 0}}, {{10, 20}, {10, 5020}}}, {{1, 1000.0, 1900.0}}};
  EXPECT_EQ(plan.openings[0].width(), 900);
  EXPECT_EQ(plan.startOf(plan.openings[0]).x, 10);
  EXPECT_EQ(plan.startOf(plan.openings[0]).y, 1020);
  EXPECT_EQ(plan.endOf(plan.openings[0]).y, 1920);
}

TEST(OpeningKind, NamesAreReadBack) {
  for (const OpeningKind kind : {OpeningKind::Opening, OpeningKind::Door, OpeningKind::Window}) {
    EXPECT_EQ(openingKindNamed(nameOf(kind)), kind);
  }
  EXPECT_EQ(nameOf(OpeningKind::Window), std::string("window"));
  EXPECT_FALSE(openingKindNamed("gate").has_value());
  EXPECT_FALSE(openingKindNamed("").has_value());
}

}  // namespace
}  // namespace quoin::plan
