// The quick sort of few points along a direction against the pairwise rule in a stable sort, bit
// for bit, above all where rounding decides what the rule says of two points.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "SortAlongDirection.h"
#include "support/SameBits.h"

namespace {

void expectSameOrder(const std::vector<AcGePoint3d>& points, const AcGeVector3d& direction) {
  std::vector<AcGePoint3d> expected = points;
  std::stable_sort(expected.begin(), expected.end(), CPointAlongDirection(direction));
  std::vector<AcGePoint3d> actual = points;
  SortAlongDirection(actual.begin(), actual.end(), direction);
  for (std::size_t i = 0; i < points.size(); ++i) {
    ASSERT_TRUE(quoin::test::sameBits(actual[i], expected[i])) << i << " of " << points.size();
  }
}

TEST(SortAlongDirection, PointsARoundingApartAreOrderedAsTheRuleOrdersThem) {
  std::mt19937_64 random(95);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  for (int round = 0; round < 50000; ++round) {
    const AcGeVector3d direction(unit(random), unit(random), round % 3 == 0 ? unit(random) : 0.0);
    const double size = std::pow(10.0, static_cast<double>(random() % 12) - 3.0);
    const AcGePoint3d base(size * unit(random), size * unit(random), 0.0);
    std::vector<AcGePoint3d> points;
    points.reserve(13);
    for (int i = 0; i < 2 + round % 12; ++i) {
      // A few units in the last place about the base, beside it as far again, or anywhere.
      const double step = size * std::ldexp(1.0, -52) * static_cast<double>(random() % 8);
      AcGePoint3d pt = base + direction * step;
      if (random() % 2 == 0) {
        const double aside = size * unit(random);
        pt = pt + AcGeVector3d(-direction.y, direction.x, 0.0) * aside;
      }
      if (random() % 8 == 0) {
        pt = AcGePoint3d(size * unit(random), size * unit(random), size * unit(random));
      }
      points.push_back(random() % 6 == 0 && !points.empty() ? points.front() : pt);
    }
    ASSERT_NO_FATAL_FAILURE(expectSameOrder(points, direction)) << round;
  }
}

TEST(SortAlongDirection, ManyPointsAndNoNumbersAreOrderedAsTheRuleOrdersThem) {
  const double odd[] = {0.0,    -0.0,   1.0,          1e300,
                        -1e300, 1e-310, std::nan(""), std::numeric_limits<double>::infinity()};
  std::mt19937_64 random(96);
  const auto any = [&] { return odd[random() % 8]; };
  for (int round = 0; round < 20000; ++round) {
    std::vector<AcGePoint3d> points;
    points.reserve(40);
    for (int i = 0; i < round % 40; ++i) {
      points.emplace_back(any(), any(), any());
    }
    ASSERT_NO_FATAL_FAILURE(expectSameOrder(points, AcGeVector3d(any(), any(), any()))) << round;
  }
}

}  // namespace
