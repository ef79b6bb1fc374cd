#include "plan/PointIndex.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <set>

namespace {

using quoin::plan::PointBox;
using quoin::plan::PointIndex;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kLeast = std::numeric_limits<double>::denorm_min();

bool isFinite(const AcGePoint3d& point) {
  return std::isfinite(point.x) && std::isfinite(point.y);
}

/// Every point that a computed distance allows is found, and nothing outside of the box.
void compareWithAll(const std::vector<AcGePoint3d>& points, double distance) {
  const PointIndex index(points);
  for (const AcGePoint3d& place : points) {
    const PointBox box(place, distance);
    std::set<std::size_t> found;
    index.visitIn(box, [&](std::size_t number) {
      EXPECT_TRUE(found.insert(number).second) << "found twice";
      EXPECT_TRUE(box.holds(points[number].x, points[number].y));
    });
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (isFinite(points[i]) && isFinite(place) && points[i].distanceTo(place) <= distance) {
        EXPECT_EQ(found.count(i), 1u)
            << points[i].x << "," << points[i].y << " from " << place.x << "," << place.y;
      }
    }
  }
}

TEST(PointIndex, FindsEveryPointAtADistance) {
  std::mt19937_64 random(20261122);
  std::uniform_int_distribution<int> lattice(-6, 6);
  std::uniform_real_distribution<double> anywhere(-60.0, 60.0);
  for (int round = 0; round < 40; ++round) {
    std::vector<AcGePoint3d> points;
    for (int i = 0; i < 60; ++i) {
      const bool isOnLattice = round % 2 == 0;
      points.emplace_back(isOnLattice ? 10.0 * lattice(random) : anywhere(random),
                          round % 3 == 0 ? 5.0 : anywhere(random), lattice(random));
    }
    for (const double distance : {0.0, 1e-10, 10.0, 1e9, kInfinity}) {
      compareWithAll(points, distance);
    }
  }
}

TEST(PointIndex, FindsThemAtTheEndsOfTheNumbersToo) {
  std::vector<AcGePoint3d> points;
  const std::vector<double> values{0.0,       kLeast,    -kLeast,    1e-160,
                                   1.0,       1e308,     -1e308,     kLargest,
                                   -kLargest, kInfinity, -kInfinity, std::nan("")};
  for (const double x : values) {
    for (const double y : values) {
      points.emplace_back(x, y, 0.0);
    }
  }
  for (const double distance :
       {0.0, kLeast, 1.0, 1e300, kLargest, kInfinity, -1.0, -kInfinity, std::nan("")}) {
    compareWithAll(points, distance);
  }
}

TEST(PointIndex, OfNothingFindsNothing) {
  PointIndex({}).visitIn(PointBox(AcGePoint3d(), kInfinity), [](std::size_t) { FAIL(); });
}

}  // namespace
