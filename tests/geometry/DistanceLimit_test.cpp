// Comparisons with a limit say what comparisons with the length itself say, in every case.
#include "DistanceLimit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

const double kInfinity = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();

void expectAsByLength(double limit, const AcGeVector3d& v) {
  const CDistanceLimit distanceLimit(limit);
  EXPECT_EQ(distanceLimit.IsAbove(v), limit > v.length()) << limit << " and " << v.length();
  EXPECT_EQ(distanceLimit.IsReachedBy(v), v.length() >= limit) << limit << " and " << v.length();
}

TEST(DistanceLimit, TheLimitItselfIsReachedAndNotAbove) {
  const CDistanceLimit limit(5.0);
  EXPECT_FALSE(limit.IsAbove({3.0, 4.0, 0.0}));
  EXPECT_TRUE(limit.IsReachedBy({3.0, 4.0, 0.0}));
  EXPECT_TRUE(limit.IsAbove({3.0, 4.0 - 1e-14, 0.0}));
  EXPECT_FALSE(limit.IsReachedBy({3.0, 4.0 - 1e-14, 0.0}));
}

TEST(DistanceLimit, NothingIsBelowALimitThatIsNotPositive) {
  for (const double limit : {0.0, -0.0, -1.0, -kInfinity, kNaN}) {
    EXPECT_FALSE(CDistanceLimit(limit).IsAbove({0.0, 0.0, 0.0}));
    expectAsByLength(limit, {0.0, 0.0, 0.0});
    expectAsByLength(limit, {1.0, 0.0, 0.0});
    expectAsByLength(limit, {kNaN, 0.0, 0.0});
    expectAsByLength(limit, {kInfinity, 0.0, 0.0});
  }
}

TEST(DistanceLimit, LengthsARoundingOrTwoApartCompareAsTheirRoots) {
  std::mt19937_64 random(91);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  int below = 0;
  int reached = 0;
  for (int round = 0; round < 200000; ++round) {
    // From where squares vanish to where they overflow.
    const double size = std::pow(10.0, static_cast<double>(random() % 320) - 165.0);
    const AcGeVector3d v(size * unit(random), random() % 2 == 0 ? 0.0 : size * unit(random),
                         random() % 2 == 0 ? 0.0 : size * unit(random));
    double limit = v.length();
    for (std::uint64_t steps = random() % 4; steps > 0; --steps) {
      limit = std::nextafter(limit, round % 2 == 0 ? 0.0 : kInfinity);
    }
    expectAsByLength(limit, v);
    (limit > v.length() ? below : reached) += 1;
    expectAsByLength(limit * (1.0 + 4.0e-12 * unit(random)), v);
    expectAsByLength(size * unit(random), v);
  }
  EXPECT_GT(below, 50000);
  EXPECT_GT(reached, 50000);
}

TEST(DistanceLimit, TheSmallestAndTheLargestNumbers) {
  const std::vector<double> values = {0.0,    5e-324, 1e-323,    1e-170, 2.2e-162, 3.2e-162,
                                      1e-160, 1e-155, 1e-154,    1.0,    1e154,    1.4e154,
                                      1e160,  1e308,  kInfinity, kNaN};
  for (const double limit : values) {
    for (const double x : values) {
      for (const double y : values) {
        expectAsByLength(limit, {x, y, 0.0});
      }
    }
  }
}

}  // namespace
