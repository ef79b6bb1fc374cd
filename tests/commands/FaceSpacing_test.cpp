#include "commands/FaceSpacing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

using quoin::commands::faceSpacings;
using quoin::commands::WallLine;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;

WallLine line(double x1, double y1, double x2, double y2) {
  WallLine made;
  made.start.set(x1, y1, 0);
  made.end.set(x2, y2, 0);
  return made;
}

TEST(FaceSpacing, TwoFacesOfAWallAreItsThicknessApart) {
  EXPECT_THAT(faceSpacings({line(0, 0, 5000, 0), line(5000, 240, 0, 240)}),
              ElementsAre(DoubleNear(240, 1e-9), DoubleNear(240, 1e-9)));
}

TEST(FaceSpacing, ATurnedWallIsAsThick) {
  const double x = std::cos(0.7);
  const double y = std::sin(0.7);
  EXPECT_THAT(faceSpacings({line(0, 0, 5000 * x, 5000 * y),
                            line(-240 * y, 240 * x, 5000 * x - 240 * y, 5000 * y + 240 * x)}),
              ElementsAre(DoubleNear(240, 2.0), DoubleNear(240, 2.0)));
}

TEST(FaceSpacing, TheNearestOfSeveralCounts) {
  EXPECT_THAT(faceSpacings({line(0, 0, 100, 0), line(0, 9, 100, 9), line(0, 3, 100, 3)}),
              ElementsAre(DoubleNear(3, 1e-9), DoubleNear(6, 1e-9), DoubleNear(3, 1e-9)));
}

TEST(FaceSpacing, LinesThatOnlyTouchOrContinueOrCrossAreNoPair) {
  EXPECT_THAT(faceSpacings({line(-100, 0, 0, 0), line(0, 0, 100, 0), line(100, 5, 200, 5),
                            line(200, 0, 300, 0), line(50, -50, 50, 50)}),
              IsEmpty());
}

TEST(FaceSpacing, LinesWithoutEndOrLengthHaveNone) {
  EXPECT_THAT(faceSpacings({line(0, 0, 0, 0), line(0, 0, HUGE_VAL, 0), line(0, 1, HUGE_VAL, 1)}),
              IsEmpty());
  EXPECT_THAT(faceSpacings({}), IsEmpty());
}

}  // namespace
