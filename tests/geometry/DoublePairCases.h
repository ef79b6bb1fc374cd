// What every form of CDoublePair must give: what the same comparisons of single doubles give.
// Included by a file that has said which form it wants.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

/// Runs through pairs of values that include zeros of both signs, infinities and NaN.
template <class Pair>
void expectPairsWorkAsDoublesDo() {
  const double infinity = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<double> values = {0.0, -0.0, 1.0, -1.0, 2.5, infinity, -infinity, nan};
  // By bits: -0 is not 0 here, and NaN is itself.
  const auto isSame = [](double a, double b) {
    return a == b ? std::signbit(a) == std::signbit(b) : a != a && b != b;
  };
  for (const double a : values) {
    for (const double b : values) {
      const Pair first(a, 7.0);
      const Pair second(b, -3.0);
      EXPECT_TRUE(isSame(Min(first, second).First(), std::min(a, b))) << a << " " << b;
      EXPECT_TRUE(isSame(Max(first, second).First(), std::max(a, b))) << a << " " << b;
      EXPECT_TRUE(isSame((first + second).First(), a + b));
      EXPECT_TRUE(isSame((first - second).First(), a - b));
      EXPECT_EQ(Min(first, second).Second(), -3.0);
      EXPECT_EQ((first - second).Second(), 10.0);
      for (const double c : values) {
        const Pair ranges(c, 100.0);
        const bool isOutside = a > b || c < 0.0;
        EXPECT_EQ(AreOutside(Pair(a, 5.0), Pair(c, 5.0), Pair(0.0, 0.0), Pair(b, 1.0)), isOutside);
        EXPECT_EQ(AreOutside(Pair(5.0, a), Pair(5.0, c), Pair(0.0, 0.0), Pair(1.0, b)), isOutside);
        EXPECT_FALSE(AreOutside(Pair(a, 0.5), Pair(c, 0.5), Pair(0.0, 0.0), Pair(b, 1.0)));
        const bool isWithin = a >= b && a <= c;
        EXPECT_EQ(AreWithin(Pair(a, 0.0), Pair(b, 0.0), ranges), isWithin);
        EXPECT_EQ(AreWithin(Pair(0.0, a), Pair(0.0, b), Pair(100.0, c)), isWithin);
        EXPECT_FALSE(AreWithin(Pair(a, -1.0), Pair(b, 0.0), ranges));
      }
    }
  }
}
