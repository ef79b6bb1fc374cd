// The filters of the algorithms that go through all lines once: they never rule out what the exact
// test accepts, and they do rule out what is far.
#include "FarFilter.h"

#include <gtest/gtest.h>

#include <random>

#include "gelnsg3d.h"
#include "support/GeometryText.h"
#include "support/WallLineSets.h"

namespace {

using quoin::test::point;
using quoin::test::text;

const double kInfinity = std::numeric_limits<double>::infinity();

void expectNothingMissed(const WallLineLikeSeg& line, const WallLineLikeSeg& other,
                         double captureDistance, int& accepted) {
  const AcGeLineSeg3d segment(line.ptStart, line.ptEnd);
  if (captureDistance > segment.distanceTo(AcGeLineSeg3d(other.ptStart, other.ptEnd))) {
    ++accepted;
    EXPECT_FALSE(
        CFarLineFilter(line.ptStart, line.ptEnd, captureDistance).IsFar(other.ptStart, other.ptEnd))
        << text(line.ptStart, line.ptEnd) << " and " << text(other.ptStart, other.ptEnd);
  }
  const auto isNear = [&](const AcGePoint3d& pt) {
    return captureDistance > pt.distanceTo(line.ptStart) ||
           captureDistance > pt.distanceTo(line.ptEnd);
  };
  if (isNear(other.ptStart) || isNear(other.ptEnd)) {
    CFarPointFilter filter(captureDistance);
    filter.Add(line.ptStart);
    filter.Add(line.ptEnd);
    EXPECT_FALSE(filter.AreFar(other.ptStart, other.ptEnd));
  }
}

TEST(FarLineFilter, RulesOutWhatLiesBesideTheSegmentsBox) {
  const CFarLineFilter filter(point("0,0"), point("1000,0"), 10.0);
  EXPECT_TRUE(filter.IsFar(point("-500,50"), point("-20,0")));
  EXPECT_TRUE(filter.IsFar(point("1020,0"), point("1100,-50")));
  EXPECT_TRUE(filter.IsFar(point("0,20"), point("1000,30")));
  EXPECT_TRUE(filter.IsFar(point("0,-20"), point("1000,-30")));
  EXPECT_FALSE(filter.IsFar(point("500,-400"), point("500,400")));
  EXPECT_FALSE(filter.IsFar(point("500,5"), point("500,400")));
}

TEST(FarPointFilter, RulesOutLinesWithNoEndNearThePoints) {
  CFarPointFilter filter(10.0);
  filter.Add(point("0,0"));
  filter.Add(point("1000,0"));
  EXPECT_TRUE(filter.AreFar(point("500,-400"), point("500,400")));
  EXPECT_FALSE(filter.AreFar(point("1005,5"), point("500,400")));
}

TEST(FarPointFilter, NothingIsNearWithoutADistanceOrAPoint) {
  CFarPointFilter filter(0.0);
  filter.Add(point("0,0"));
  EXPECT_TRUE(filter.AreFar(point("0,0"), point("0,0")));
  EXPECT_TRUE(CFarPointFilter(kInfinity).AreFar(point("0,0"), point("0,0")));
}

TEST(FarFilters, RandomSetsMissNothingThatTheExactTestAccepts) {
  std::mt19937_64 random(84);
  int accepted = 0;
  for (int round = 0; round < 4000; ++round) {
    const std::vector<WallLineLikeSeg> lines = quoin::test::randomWallLines(random, 6);
    for (const double captureDistance : {10.0, 1e-10, 250.0, 1e300, kInfinity}) {
      for (const WallLineLikeSeg& line : lines) {
        expectNothingMissed(line, lines.front(), captureDistance, accepted);
      }
    }
  }
  EXPECT_GT(accepted, 30000);
}

TEST(FarFilters, LinesOfVeryDifferentSizesMissNothing) {
  std::mt19937_64 random(85);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  int accepted = 0;
  for (int round = 0; round < 100000; ++round) {
    const auto size = [&] { return std::pow(10.0, static_cast<double>(random() % 25) - 8.0); };
    const double own = size();
    const double others = size();
    const WallLineLikeSeg line({own * unit(random), own * unit(random), 0},
                               {own * unit(random), own * unit(random), 0});
    const WallLineLikeSeg other({others * unit(random), others * unit(random), 0},
                                {others * unit(random), others * unit(random), 0});
    expectNothingMissed(line, other, 0.001 * size(), accepted);
  }
  EXPECT_GT(accepted, 20000);
}

}  // namespace
