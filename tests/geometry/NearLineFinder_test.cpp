// The search for near lines: what it hands out, in which order, and that it never leaves out
// a line that the exact test accepts.
#include "NearLineFinder.h"

#include <gtest/gtest.h>

#include <random>

#include "gelnsg3d.h"
#include "support/GeometryText.h"
#include "support/WallLineSets.h"

namespace {

using quoin::test::point;
using quoin::test::text;

const double kInfinity = std::numeric_limits<double>::infinity();
const double kNoNumber = std::nan("");

std::vector<WallLineLikeSeg*> pointersTo(std::vector<WallLineLikeSeg>& lines) {
  std::vector<WallLineLikeSeg*> pointers;
  for (WallLineLikeSeg& line : lines) {
    pointers.push_back(&line);
  }
  return pointers;
}

/// The numbers of the lines that are handed out.
std::vector<std::ptrdiff_t> found(std::vector<WallLineLikeSeg>& lines, const WallLineLikeSeg& line,
                                  double captureDistance) {
  const std::vector<WallLineLikeSeg*> pointers = pointersTo(lines);
  std::vector<std::ptrdiff_t> numbers;
  CNearLineFinder(pointers).VisitNear(line, captureDistance, [&](const WallLineLikeSeg* pOther) {
    numbers.push_back(pOther - lines.data());
  });
  return numbers;
}

std::vector<WallLineLikeSeg> linesOf(std::string_view source) {
  std::vector<WallLineLikeSeg> lines;
  for (const auto& [start, end] : quoin::test::segments(source)) {
    lines.emplace_back(start, end);
  }
  return lines;
}

/// The exact test: an end nearer than the capture distance.
bool isAccepted(const WallLineLikeSeg& line, const WallLineLikeSeg& other, double captureDistance) {
  const AcGeLineSeg3d segment(line.ptStart, line.ptEnd);
  return captureDistance > segment.distanceTo(other.ptStart) ||
         captureDistance > segment.distanceTo(other.ptEnd);
}

void expectNoneMissing(std::vector<WallLineLikeSeg>& lines, double captureDistance,
                       std::size_t& accepted) {
  for (const WallLineLikeSeg& line : lines) {
    const std::vector<std::ptrdiff_t> numbers = found(lines, line, captureDistance);
    ASSERT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (isAccepted(line, lines[i], captureDistance)) {
        ++accepted;
        ASSERT_TRUE(
            std::binary_search(numbers.begin(), numbers.end(), static_cast<std::ptrdiff_t>(i)))
            << text(lines[i].ptStart, lines[i].ptEnd) << " is missing near "
            << text(line.ptStart, line.ptEnd) << ", capture distance " << text(captureDistance);
      }
    }
  }
}

TEST(NearLineFinder, HandsOutNearLinesInTheOrderOfTheSet) {
  auto lines = linesOf("900,5 900,800; 0,0 1000,0; 0,500 1000,500; 400,5 400,800");
  EXPECT_EQ(found(lines, lines[1], 10.0), (std::vector<std::ptrdiff_t>{0, 1, 3}));
}

TEST(NearLineFinder, LeavesOutWhatLiesFarAway) {
  auto lines = linesOf("0,0 1000,0; 0,500 1000,500; 1100,-50 1100,50; 500,-400 500,400");
  EXPECT_EQ(found(lines, lines[0], 10.0), (std::vector<std::ptrdiff_t>{0}));
}

TEST(NearLineFinder, HandsOutALineAsOftenAsItStandsInTheSet) {
  WallLineLikeSeg line(point("0,0"), point("10,0"));
  const std::vector<WallLineLikeSeg*> twice{&line, &line};
  int visits = 0;
  CNearLineFinder(twice).VisitNear(line, 1.0, [&](const WallLineLikeSeg*) { ++visits; });
  EXPECT_EQ(visits, 2);
}

TEST(NearLineFinder, NoDistanceBelowWhichNothingLiesHandsOutNothing) {
  auto lines = linesOf("0,0 1000,0; 0,0 1000,0");
  for (const double captureDistance : {0.0, -0.0, -10.0, -kInfinity, kNoNumber}) {
    EXPECT_TRUE(found(lines, lines[0], captureDistance).empty());
  }
}

TEST(NearLineFinder, AnInfiniteDistanceHandsOutEverything) {
  auto lines = linesOf("0,0 1000,0; 0,500 1000,500; -1e300,1e300 1e300,-1e300");
  EXPECT_EQ(found(lines, lines[0], kInfinity).size(), 3u);
  EXPECT_EQ(found(lines, lines[2], kInfinity).size(), 3u);
}

TEST(NearLineFinder, RandomSetsMissNothingThatTheExactTestAccepts) {
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

TEST(NearLineFinder, EndsOnTheVeryEdgeOfTheCaptureDistanceAreNotMissed) {
  // Ends at the distance itself and at the doubles next to it, beside lines far out: where
  // rounding decides, the exact test must be the one that is asked.
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

TEST(NearLineFinder, DistancesSoSmallThatTheirSquaresVanishAreNotMissed) {
  std::size_t accepted = 0;
  std::vector<WallLineLikeSeg> lines{{{0, 0, 0}, {1e-155, 0, 0}},
                                     {{5e-156, 1e-163, 0}, {5e-156, 1, 0}}};
  ASSERT_TRUE(isAccepted(lines[0], lines[1], 1e-180));
  expectNoneMissing(lines, 1e-180, accepted);
}

TEST(NearLineFinder, CoordinatesThatAreNoFiniteNumbersMissNothing) {
  const double coordinates[] = {0.0, 5.0, 1e300, -1.7e308, kInfinity, -kInfinity, kNoNumber};
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

}  // namespace
