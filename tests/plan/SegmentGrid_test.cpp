// What the grid finds is what a plain loop over all segments finds.
#include "plan/SegmentGrid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>

namespace quoin::plan {
namespace {

using Segments = std::vector<std::pair<AcGePoint2d, AcGePoint2d>>;

SegmentGrid gridOf(const Segments& segments, double cellSize) {
  SegmentGrid grid;
  for (const auto& [start, end] : segments) {
    grid.add(start, end);
  }
  grid.arrange(cellSize);
  return grid;
}

std::vector<std::size_t> foundIn(const SegmentGrid& grid, const Box& box) {
  std::vector<std::size_t> found;
  grid.visitIn(box, [&](std::size_t number) { found.push_back(number); });
  return found;
}

/// Whether some point of the segment lies in the box, by clipping it to both slabs.
bool passes(const AcGePoint2d& start, const AcGePoint2d& end, const Box& box) {
  double from = 0.0;
  double to = 1.0;
  const auto clip = [&](double at, double delta, double least, double greatest) {
    if (delta == 0.0) {
      return at >= least && at <= greatest;
    }
    const double a = (least - at) / delta;
    const double b = (greatest - at) / delta;
    from = std::max(from, std::min(a, b));
    to = std::min(to, std::max(a, b));
    return from <= to;
  };
  return clip(start.x, end.x - start.x, box.least.x, box.greatest.x) &&
         clip(start.y, end.y - start.y, box.least.y, box.greatest.y);
}

/// Expects all that pass the box, none beyond the boxes that meet it, each once, ascending.
void expectAsByLoop(const Segments& segments, const SegmentGrid& grid, const Box& box) {
  const std::vector<std::size_t> found = foundIn(grid, box);
  EXPECT_TRUE(std::is_sorted(found.begin(), found.end()));
  EXPECT_EQ(std::adjacent_find(found.begin(), found.end()), found.end());
  for (std::size_t i = 0; i < segments.size(); ++i) {
    const auto& [start, end] = segments[i];
    const bool isFound = std::binary_search(found.begin(), found.end(), i);
    EXPECT_TRUE(isFound || !passes(start, end, box)) << "missed " << i;
    EXPECT_TRUE(!isFound || Box(start, end).meets(box)) << "made up " << i;
  }
}

Segments randomSegments(std::mt19937& random, std::size_t count) {
  std::uniform_real_distribution<> place(-5000, 5000);
  std::uniform_real_distribution<> length(-600, 600);
  Segments segments;
  for (std::size_t i = 0; i < count; ++i) {
    const AcGePoint2d start{place(random), place(random)};
    const AcGeVector2d along{i % 3 == 0 ? 0.0 : length(random), i % 3 == 1 ? 0.0 : length(random)};
    segments.emplace_back(start, start + along * (i % 50 == 0 ? 20.0 : 1.0));
  }
  return segments;
}

Box randomBox(std::mt19937& random) {
  std::uniform_real_distribution<> place(-6000, 6000);
  std::uniform_real_distribution<> side(0, 900);
  const AcGePoint2d corner{place(random), place(random)};
  return {corner, corner + AcGeVector2d{side(random), side(random)}};
}

TEST(Box, CornersComeInAnyOrder) {
  const Box box({3, -2}, {-1, 4});
  EXPECT_EQ(box.least.x, -1);
  EXPECT_EQ(box.least.y, -2);
  EXPECT_EQ(box.greatest.x, 3);
  EXPECT_EQ(box.greatest.y, 4);
  EXPECT_TRUE(box.meets({{3, 4}, {5, 5}}));
  EXPECT_FALSE(box.meets({{3.5, 4}, {5, 5}}));
  EXPECT_TRUE(box.grownBy(0.5).meets({{3.5, 4}, {5, 5}}));
}

TEST(SegmentGrid, FindsAllThatALoopFindsAndNothingBeyondTheBoxes) {
  for (unsigned seed = 1; seed <= 5; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const Segments segments = randomSegments(random, 400);
    for (const double cellSize : {1.0, 50.0, 700.0, 1e6}) {
      const SegmentGrid grid = gridOf(segments, cellSize);
      for (int i = 0; i < 60; ++i) {
        expectAsByLoop(segments, grid, randomBox(random));
      }
      expectAsByLoop(segments, grid, {{-1e5, -1e5}, {1e5, 1e5}});
    }
  }
}

TEST(SegmentGrid, OneStrayFarAwayCostsNothingAndIsFound) {
  std::mt19937 random(7);
  Segments segments = randomSegments(random, 400);
  segments.push_back({{4e9, -3e9}, {4e9 + 10, -3e9}});
  const SegmentGrid grid = gridOf(segments, 1.0);
  EXPECT_EQ(foundIn(grid, {{4e9, -3e9 - 5}, {4e9 + 5, -3e9 + 5}}),
            std::vector<std::size_t>{segments.size() - 1});
  for (int i = 0; i < 60; ++i) {
    expectAsByLoop(segments, grid, randomBox(random));
  }
}

TEST(SegmentGrid, PointsAndBoxesWithoutAreaAreFound) {
  const SegmentGrid grid = gridOf({{{10, 10}, {10, 10}}, {{0, 0}, {20, 0}}}, 5.0);
  EXPECT_EQ(foundIn(grid, {{10, 10}, {10, 10}}), std::vector<std::size_t>{0});
  EXPECT_EQ(foundIn(grid, {{20, 0}, {20, 0}}), std::vector<std::size_t>{1});
  EXPECT_TRUE(foundIn(grid, {{-100, -100}, {-90, -90}}).empty());
}

TEST(SegmentGrid, NothingIsFoundInAnEmptyOne) {
  EXPECT_TRUE(foundIn(gridOf({}, 10.0), {{-1, -1}, {1, 1}}).empty());
}

}  // namespace
}  // namespace quoin::plan
