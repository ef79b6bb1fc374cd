// The box reject of the algorithms that go through all lines once never rules out what the exact
// test accepts, and it does rule out what is far.
#include "BoxReject.h"

#include <gtest/gtest.h>

#include <random>

#include "gelnsg3d.h"
#include "support/GeometryText.h"
#include "support/WallLineSets.h"

namespace {

using quoin::test::point;
using quoin::test::text;

const double kInfinity = std::numeric_limits<double>::infinity();

/// Whether the reject hands the line out, by itself and among many.
template <class Reject>
bool handsOut(const Reject& reject, const WallLineLikeSeg& line) {
  WallLineLikeSeg copy = line;
  std::size_t visits = 0;
  reject.VisitNear(std::vector<WallLineLikeSeg*>(3, &copy), [&](WallLineLikeSeg*) { ++visits; });
  EXPECT_TRUE(visits == 0 || visits == 3);
  return visits > 0;
}

void expectNothingMissed(const WallLineLikeSeg& line, const WallLineLikeSeg& other,
                         double captureDistance, int& accepted) {
  const AcGeLineSeg3d segment(line.ptStart, line.ptEnd);
  if (captureDistance > segment.distanceTo(AcGeLineSeg3d(other.ptStart, other.ptEnd))) {
    ++accepted;
    const CLineBoxReject reject(line.ptStart, line.ptEnd, captureDistance);
    EXPECT_FALSE(reject.IsRejected(other.ptStart, other.ptEnd))
        << text(line.ptStart, line.ptEnd) << " and " << text(other.ptStart, other.ptEnd);
    EXPECT_TRUE(handsOut(reject, other))
        << text(line.ptStart, line.ptEnd) << " and " << text(other.ptStart, other.ptEnd);
  }
  const auto isNear = [&](const AcGePoint3d& pt) {
    return captureDistance > pt.distanceTo(line.ptStart) ||
           captureDistance > pt.distanceTo(line.ptEnd);
  };
  if (isNear(other.ptStart) || isNear(other.ptEnd)) {
    CPointBoxReject reject(captureDistance);
    reject.Add(line.ptStart);
    reject.Add(line.ptEnd);
    EXPECT_TRUE(handsOut(reject, other));
  }
}

TEST(LineBoxReject, RulesOutWhatLiesBesideTheSegmentsBox) {
  const CLineBoxReject reject(point("0,0"), point("1000,0"), 10.0);
  EXPECT_TRUE(reject.IsRejected(point("-500,50"), point("-20,0")));
  EXPECT_TRUE(reject.IsRejected(point("1020,0"), point("1100,-50")));
  EXPECT_TRUE(reject.IsRejected(point("0,20"), point("1000,30")));
  EXPECT_TRUE(reject.IsRejected(point("0,-20"), point("1000,-30")));
  EXPECT_FALSE(reject.IsRejected(point("500,-400"), point("500,400")));
  EXPECT_FALSE(reject.IsRejected(point("500,5"), point("500,400")));
}

TEST(LineBoxReject, HandsOutWhatIsNotRejectedInItsOrder) {
  // Every seventh line is near; sizes and numbers that the quick comparison is not good for come
  // in some chunks and not in others.
  const CLineBoxReject reject(point("0,0"), point("1000,0"), 10.0);
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
    if (!reject.IsRejected(line.ptStart, line.ptEnd)) {
      expected.push_back(&line);
    }
  }
  std::vector<WallLineLikeSeg*> visited;
  reject.VisitNear(pointers, [&](WallLineLikeSeg* pLine) { visited.push_back(pLine); });
  EXPECT_EQ(visited, expected);
  EXPECT_GT(visited.size(), 200U);
  EXPECT_LT(visited.size(), 250U);
}

TEST(PointBoxReject, LeavesOutNullPointers) {
  CPointBoxReject reject(10.0);
  reject.Add(point("0,0"));
  WallLineLikeSeg line(point("0,0"), point("5,0"));
  int visits = 0;
  reject.VisitNear(std::vector<WallLineLikeSeg*>{nullptr, &line, nullptr},
                   [&](WallLineLikeSeg* pLine) { visits += pLine == &line ? 1 : 100; });
  EXPECT_EQ(visits, 1);
}

TEST(PointBoxReject, RulesOutLinesWithNoEndNearThePoints) {
  CPointBoxReject reject(10.0);
  reject.Add(point("0,0"));
  reject.Add(point("1000,0"));
  EXPECT_FALSE(handsOut(reject, {point("500,-400"), point("500,400")}));
  EXPECT_TRUE(handsOut(reject, {point("1005,5"), point("500,400")}));
  EXPECT_TRUE(handsOut(reject, {point("500,400"), point("-5,-5")}));
}

TEST(PointBoxReject, NothingIsNearWithoutADistanceOrAPoint) {
  CPointBoxReject reject(0.0);
  reject.Add(point("0,0"));
  EXPECT_FALSE(handsOut(reject, {point("0,0"), point("0,0")}));
  EXPECT_FALSE(handsOut(CPointBoxReject(kInfinity), {point("0,0"), point("0,0")}));
}

TEST(BoxReject, RandomSetsMissNothingThatTheExactTestAccepts) {
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

TEST(BoxReject, LinesOfVeryDifferentSizesMissNothing) {
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
