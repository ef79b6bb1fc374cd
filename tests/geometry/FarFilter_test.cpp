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

/// Whether the filter hands the line out, by itself and among many.
template <class Filter>
bool handsOut(const Filter& filter, const WallLineLikeSeg& line) {
  WallLineLikeSeg copy = line;
  std::size_t visits = 0;
  filter.VisitNear(std::vector<WallLineLikeSeg*>(3, &copy), [&](WallLineLikeSeg*) { ++visits; });
  EXPECT_TRUE(visits == 0 || visits == 3);
  return visits > 0;
}

void expectNothingMissed(const WallLineLikeSeg& line, const WallLineLikeSeg& other,
                         double captureDistance, int& accepted) {
  const AcGeLineSeg3d segment(line.ptStart, line.ptEnd);
  if (captureDistance > segment.distanceTo(AcGeLineSeg3d(other.ptStart, other.ptEnd))) {
    ++accepted;
    const CFarLineFilter filter(line.ptStart, line.ptEnd, captureDistance);
    EXPECT_FALSE(filter.IsFar(other.ptStart, other.ptEnd))
        << text(line.ptStart, line.ptEnd) << " and " << text(other.ptStart, other.ptEnd);
    EXPECT_TRUE(handsOut(filter, other))
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
    EXPECT_TRUE(handsOut(filter, other));
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

TEST(FarLineFilter, HandsOutWhatIsNotFarInItsOrder) {
  // Every seventh line is near; sizes and numbers that the quick comparison is not good for come
  // in some chunks and not in others.
  const CFarLineFilter filter(point("0,0"), point("1000,0"), 10.0);
  std::vector<WallLineLikeSeg> lines;
  for (int i = 0; i < 3000; ++i) {
    const double x = i % 7 == 0 ? 500.0 : 2000.0 + i;
    lines.emplace_back(AcGePoint3d(x, -400.0, 0.0),
                       AcGePoint3d(x, i % 2 == 0 ? 400.0 : -600.0, 0.0));
  }
  lines[700].ptEnd = {500.0, 1e300, 0.0};
  lines[701] = {{1e300, 0.0, 0.0}, {1e300, 1.0, 0.0}};
  lines[1500].ptEnd.x = kInfinity;
  lines[2400].ptStart.y = std::numeric_limits<double>::quiet_NaN();
  std::vector<WallLineLikeSeg*> pointers;
  std::vector<WallLineLikeSeg*> expected;
  for (WallLineLikeSeg& line : lines) {
    pointers.push_back(&line);
    if (!filter.IsFar(line.ptStart, line.ptEnd)) {
      expected.push_back(&line);
    }
  }
  std::vector<WallLineLikeSeg*> visited;
  filter.VisitNear(pointers, [&](WallLineLikeSeg* pLine) { visited.push_back(pLine); });
  EXPECT_EQ(visited, expected);
  EXPECT_GT(visited.size(), 200U);
  EXPECT_LT(visited.size(), 250U);
}

TEST(FarPointFilter, LeavesOutNullPointers) {
  CFarPointFilter filter(10.0);
  filter.Add(point("0,0"));
  WallLineLikeSeg line(point("0,0"), point("5,0"));
  int visits = 0;
  filter.VisitNear(std::vector<WallLineLikeSeg*>{nullptr, &line, nullptr},
                   [&](WallLineLikeSeg* pLine) { visits += pLine == &line ? 1 : 100; });
  EXPECT_EQ(visits, 1);
}

TEST(FarPointFilter, RulesOutLinesWithNoEndNearThePoints) {
  CFarPointFilter filter(10.0);
  filter.Add(point("0,0"));
  filter.Add(point("1000,0"));
  EXPECT_FALSE(handsOut(filter, {point("500,-400"), point("500,400")}));
  EXPECT_TRUE(handsOut(filter, {point("1005,5"), point("500,400")}));
  EXPECT_TRUE(handsOut(filter, {point("500,400"), point("-5,-5")}));
}

TEST(FarPointFilter, NothingIsNearWithoutADistanceOrAPoint) {
  CFarPointFilter filter(0.0);
  filter.Add(point("0,0"));
  EXPECT_FALSE(handsOut(filter, {point("0,0"), point("0,0")}));
  EXPECT_FALSE(handsOut(CFarPointFilter(kInfinity), {point("0,0"), point("0,0")}));
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
