// The index of end points: what a search hands out, and that it never leaves out an end that the
// exact test accepts.
#include "EndPointIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "gelnsg3d.h"
#include "support/GeometryText.h"
#include "support/LineRecords.h"
#include "support/WallLineSets.h"

namespace {

using quoin::test::linesOf;
using quoin::test::point;
using quoin::test::pointersTo;
using quoin::test::text;

const double kInfinity = std::numeric_limits<double>::infinity();
const double kNaN = std::nan("");

/// The indices of the ends near line `own` of the set, in order.
std::vector<std::uint32_t> found(std::vector<WallLineLikeSeg>& lines, std::size_t own,
                                 double captureDistance) {
  const CEndPointIndex index(pointersTo(lines), captureDistance);
  const CCaptureBox box(lines[own].ptStart, lines[own].ptEnd, captureDistance);
  std::vector<std::uint32_t> indices;
  for (std::size_t column = 0; column < index.ColumnCount(); ++column) {
    for (const CEndPointIndex::End& end : index.EndsOfColumn(column)) {
      if (end.index != 2 * own) {
        continue;
      }
      index.VisitNear(box, column, [&](std::uint32_t near) {
        indices.push_back(near);
        return true;
      });
      // The other form of the search finds the same, but for the line itself.
      CEndPointIndex::CFound list;
      const std::size_t count = index.CollectNear(box, column, own, list);
      EXPECT_EQ(count, list.All().size());
      std::vector<std::uint32_t> others;
      std::copy_if(indices.begin(), indices.end(), std::back_inserter(others),
                   [&](std::uint32_t near) { return CEndPointIndex::LineOf(near) != own; });
      EXPECT_EQ(std::vector<std::uint32_t>(list.All().begin(), list.All().end()), others);
    }
  }
  std::sort(indices.begin(), indices.end());
  return indices;
}

void expectNoneMissing(std::vector<WallLineLikeSeg>& lines, double captureDistance,
                       std::size_t& accepted) {
  for (std::size_t own = 0; own < lines.size(); ++own) {
    const WallLineLikeSeg& line = lines[own];
    const AcGeLineSeg3d segment(line.ptStart, line.ptEnd);
    const std::vector<std::uint32_t> indices = found(lines, own, captureDistance);
    ASSERT_EQ(std::adjacent_find(indices.begin(), indices.end()), indices.end());
    for (std::uint32_t end = 0; end < 2 * lines.size(); ++end) {
      const WallLineLikeSeg& other = lines[CEndPointIndex::LineOf(end)];
      const AcGePoint3d& pt = CEndPointIndex::IsStart(end) ? other.ptStart : other.ptEnd;
      if (captureDistance > segment.distanceTo(pt)) {
        ++accepted;
        ASSERT_TRUE(std::binary_search(indices.begin(), indices.end(), end))
            << text(pt) << " is missing near " << text(line.ptStart, line.ptEnd)
            << ", capture distance " << text(captureDistance);
      }
    }
  }
}

using Indices = std::vector<std::uint32_t>;

TEST(EndPointIndex, HandsOutTheEndsNearALineItsOwnAmongThem) {
  auto lines = linesOf("900,5 900,800; 0,0 1000,0; 0,500 1000,500; 400,800 400,5");
  EXPECT_EQ(found(lines, 1, 10.0), (Indices{0, 2, 3, 7}));
}

TEST(EndPointIndex, LeavesOutWhatLiesFarAway) {
  auto lines = linesOf("0,0 1000,0; 0,500 1000,500; 1100,-50 1100,50; 500,-400 500,400");
  EXPECT_EQ(found(lines, 0, 10.0), (Indices{0, 1}));
}

TEST(EndPointIndex, ALineAtAnAngleFindsWhatLiesAlongItNotAllInItsBox) {
  auto lines = linesOf("0,0 1000,1000; 500,495 900,100; 100,900 900,100; 0,1000 1000,0");
  EXPECT_EQ(found(lines, 0, 10.0), (Indices{0, 1, 2}));
}

TEST(EndPointIndex, HandsOutALineAsOftenAsItStandsInTheSet) {
  WallLineLikeSeg line(point("0,0"), point("10,0"));
  const std::vector<WallLineLikeSeg*> twice{&line, &line};
  const CEndPointIndex index(twice, 1.0);
  int visits = 0;
  index.VisitNear(CCaptureBox(line.ptStart, 1.0), 0, [&](std::uint32_t) { return ++visits > 0; });
  EXPECT_EQ(visits, 2);
}

TEST(EndPointIndex, ASearchStopsWhenItIsTold) {
  auto lines = linesOf("0,0 1000,0; 0,0 1000,0; 0,0 1000,0");
  const CEndPointIndex index(pointersTo(lines), 1.0);
  int visits = 0;
  index.VisitNear(CCaptureBox(point("0,0"), 1.0), 0, [&](std::uint32_t) { return ++visits < 2; });
  EXPECT_EQ(visits, 2);
}

TEST(EndPointIndex, NoDistanceBelowWhichNothingLiesHandsOutNothing) {
  auto lines = linesOf("0,0 1000,0; 0,0 1000,0");
  for (const double captureDistance : {0.0, -0.0, -10.0, -kInfinity, kNaN}) {
    EXPECT_TRUE(found(lines, 0, captureDistance).empty());
  }
}

TEST(EndPointIndex, AnInfiniteDistanceHandsOutEverything) {
  auto lines = linesOf("0,0 1000,0; 0,500 1000,500; -1e300,1e300 1e300,-1e300");
  EXPECT_EQ(found(lines, 0, kInfinity).size(), 6u);
  EXPECT_EQ(found(lines, 2, kInfinity).size(), 6u);
}

TEST(EndPointIndex, EndsWithACoordinateThatIsNotFiniteAreLeftOut) {
  std::vector<WallLineLikeSeg> lines{{{0, 0, 0}, {kNaN, 0, 0}}, {{0, 0, 0}, {0, kInfinity, 0}}};
  EXPECT_EQ(found(lines, 0, kInfinity), (Indices{0, 2}));
}

TEST(EndPointIndex, NoLinesMakeAnEmptyIndex) {
  EXPECT_EQ(CEndPointIndex(std::vector<WallLineLikeSeg*>(), 1.0).ColumnCount(), 0u);
}

TEST(EndPointIndex, RandomSetsMissNothingThatTheExactTestAccepts) {
  std::mt19937_64 random(80);
  std::size_t accepted = 0;
  for (int round = 0; round < 3000; ++round) {
    std::vector<WallLineLikeSeg> lines = quoin::test::randomWallLines(random, 12);
    for (const double captureDistance : {10.0, 1e-10, 1e-300, 250.0, 1e300, kInfinity}) {
      ASSERT_NO_FATAL_FAILURE(expectNoneMissing(lines, captureDistance, accepted));
    }
  }
  EXPECT_GT(accepted, 100000u);
}

TEST(EndPointIndex, UnevenSetsMissNothingThatTheExactTestAccepts) {
  std::mt19937_64 random(83);
  std::size_t accepted = 0;
  for (int kind = 0; kind < quoin::test::kUnevenKinds; ++kind) {
    std::vector<WallLineLikeSeg> lines = quoin::test::unevenWallLines(random, kind, 400);
    for (const double captureDistance : {1e-3, 10.0, kInfinity}) {
      ASSERT_NO_FATAL_FAILURE(expectNoneMissing(lines, captureDistance, accepted)) << kind;
    }
  }
  EXPECT_GT(accepted, 100000u);
}

TEST(EndPointIndex, EndsOnTheVeryEdgeOfTheCaptureDistanceAreNotMissed) {
  // Ends at the distance itself and at the doubles next to it, beside lines far out: where
  // rounding decides, the exact test must be the one that decides.
  std::mt19937_64 random(81);
  std::uniform_real_distribution<double> anywhere(-1e9, 1e9);
  std::size_t accepted = 0;
  for (int round = 0; round < 3000; ++round) {
    const double x = anywhere(random);
    const double y = anywhere(random);
    const double captureDistance = std::ldexp(1.0 + 1e-3 * round, round % 40 - 20);
    std::vector<WallLineLikeSeg> lines{{{x, y, 0}, {x + 1000.0, y, 0}}};
    double edge = y + captureDistance;
    for (int step = 0; step < 4; ++step) {
      lines.push_back({{x + 100.0 * step, edge, 0}, {x, y + 1e9, 0}});
      edge = std::nextafter(edge, -kInfinity);
    }
    ASSERT_NO_FATAL_FAILURE(expectNoneMissing(lines, captureDistance, accepted));
  }
  EXPECT_GT(accepted, 10000u);
}

TEST(EndPointIndex, DistancesSoSmallThatTheirSquaresVanishAreNotMissed) {
  std::size_t accepted = 0;
  std::vector<WallLineLikeSeg> lines{{{0, 0, 0}, {1e-155, 0, 0}},
                                     {{5e-156, 1e-163, 0}, {5e-156, 1, 0}}};
  expectNoneMissing(lines, 1e-180, accepted);
  EXPECT_EQ(accepted, 5u);  // each its own ends, one the other's start
}

TEST(EndPointIndex, CoordinatesThatAreNotFiniteMissNothing) {
  const double coordinates[] = {0.0, 5.0, 1e300, -1.7e308, kInfinity, -kInfinity, kNaN};
  std::mt19937_64 random(82);
  const auto any = [&] { return coordinates[random() % 7]; };
  std::size_t accepted = 0;
  for (int round = 0; round < 5000; ++round) {
    std::vector<WallLineLikeSeg> lines;
    for (int i = 0; i < 6; ++i) {
      lines.push_back({{any(), any(), any()}, {any(), any(), any()}});
    }
    for (const double captureDistance : {10.0, 1e300, kInfinity}) {
      ASSERT_NO_FATAL_FAILURE(expectNoneMissing(lines, captureDistance, accepted));
    }
  }
  EXPECT_GT(accepted, 1000u);
}

TEST(EndPointIndex, LinesAtTheEndsOfTheNumbersMissNothing) {
  std::mt19937_64 random(85);
  std::size_t accepted = 0;
  for (int round = 0; round < 2000; ++round) {
    std::vector<WallLineLikeSeg> lines = quoin::test::extremeWallLines(random, 2 + round % 12);
    for (const double captureDistance : {10.0, 1e300, kInfinity}) {
      ASSERT_NO_FATAL_FAILURE(expectNoneMissing(lines, captureDistance, accepted));
    }
  }
  EXPECT_GT(accepted, 1000u);
}

}  // namespace
