// Random sets of wall lines that aim at trouble: shared points, ends at the capture distance,
// near-parallel and zero-length lines, duplicates, huge offsets, NaN.
#pragma once

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "WallLineLikeSeg.h"

namespace quoin::test {

/// Project scales whose capture distances go from nothing to everything.
inline std::vector<double> projectScales() {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  return {1.0, 10.0, 0.25, 100.0, 0.01, 0.0, -0.0, -1.0, kInfinity, -kInfinity, std::nan("")};
}

/// `count` lines of one character a set; with `withNonNumbers` also sets with infinite and NaN
/// coordinates.
inline std::vector<WallLineLikeSeg> randomWallLines(std::mt19937_64& random, int count,
                                                    bool withNonNumbers = true) {
  std::uniform_int_distribution<int> character(0, withNonNumbers ? 5 : 4);
  std::uniform_int_distribution<int> lattice(-8, 8);
  std::uniform_real_distribution<double> anywhere(-300.0, 300.0);
  std::uniform_int_distribution<int> die(0, 9);
  const int kind = character(random);
  const auto coordinate = [&]() -> double {
    switch (kind) {
      case 0:  // a lattice at the capture distance of scale 1: many exact ties
        return 10.0 * lattice(random);
      case 1:  // anywhere
        return anywhere(random);
      case 2:  // a lattice with jitter about the point tolerance
        return 5.0 * lattice(random) + 1e-10 * lattice(random);
      case 3:  // a lattice a billion units out
        return 1e9 + 5.0 * lattice(random);
      case 4:  // nearly everything on one line
        return die(random) == 0 ? anywhere(random) : 0.25 * lattice(random);
      default:  // the odd NaN
        switch (die(random)) {
          case 0:
            return std::nan("");
          case 1:
            return std::numeric_limits<double>::infinity();
          case 2:
            return 1e300;
          default:
            return 10.0 * lattice(random);
        }
    }
  };
  std::vector<WallLineLikeSeg> lines;
  while (static_cast<int>(lines.size()) < count) {
    WallLineLikeSeg line(AcGePoint3d(coordinate(), coordinate(), 0.0),
                         AcGePoint3d(coordinate(), coordinate(), 0.0));
    switch (die(random)) {
      case 0:  // a duplicate, perhaps turned round
        if (!lines.empty()) {
          line = lines[random() % lines.size()];
          if (random() & 1) {
            std::swap(line.ptStart, line.ptEnd);
          }
        }
        break;
      case 1:  // zero length
        line.ptEnd = line.ptStart;
        break;
      case 2:  // axis-parallel
        line.ptEnd.y = line.ptStart.y;
        break;
      case 3:  // from the middle of another
        if (!lines.empty()) {
          const WallLineLikeSeg& other = lines[random() % lines.size()];
          line.ptStart = other.ptStart + (other.ptEnd - other.ptStart) * 0.5;
        }
        break;
      case 4:  // with height
        line.ptStart.z = lattice(random);
        line.ptEnd.z = lattice(random);
        break;
      default:
        break;
    }
    lines.push_back(line);
  }
  return lines;
}

/// How many kinds of uneven sets there are.
inline constexpr int kUnevenKinds = 12;

/// Sets that lie unevenly: a crowd and stragglers far off, everything on one line or in a few
/// places, lines side by side at an angle, all far out; each of them dense and wide.
inline std::vector<WallLineLikeSeg> unevenWallLines(std::mt19937_64& random, int kind, int count) {
  std::uniform_real_distribution<double> inCrowd(0.0, kind % 2 == 0 ? 1.0 : 3000.0);
  const auto any = [&] { return AcGePoint3d(inCrowd(random), inCrowd(random), 0.0); };
  std::vector<WallLineLikeSeg> lines;
  for (int i = 0; i < count; ++i) {
    WallLineLikeSeg line(any(), any());
    switch (kind / 2) {
      case 0:  // stragglers
        if (i % 40 == 0) {
          line.ptEnd = line.ptEnd + AcGeVector3d(1e12, -1e9, 0);
        }
        break;
      case 1:  // all on a vertical line
        line.ptStart.x = line.ptEnd.x = 5.0;
        break;
      case 2:  // all on a horizontal line
        line.ptStart.y = line.ptEnd.y = 5.0;
        break;
      case 3:  // a few places
        line.ptStart.set(i % 3, 0, 0);
        line.ptEnd.set(0, i % 5, 0);
        break;
      case 4:  // side by side at an angle
        line.ptStart.set(i, 0, 0);
        line.ptEnd.set(i + 1e4, 1e4, 0);
        break;
      default:  // a billion units out
        line.ptStart = line.ptStart + AcGeVector3d(1e9, 1e9, 0);
        line.ptEnd = line.ptEnd + AcGeVector3d(1e9, 1e9, 0);
        break;
    }
    lines.push_back(line);
  }
  return lines;
}

/// Lines at the ends of the numbers, in z too: their spans, lengths and squares overflow or vanish.
inline std::vector<WallLineLikeSeg> extremeWallLines(std::mt19937_64& random, int count) {
  constexpr double kLargest = std::numeric_limits<double>::max();
  constexpr double kLeast = std::numeric_limits<double>::denorm_min();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  // The plain ones more often, so that ends do meet.
  const std::vector<double> values{0.0,      0.0,       0.0,       5.0,        5.0,
                                   -5.0,     kLeast,    -1e-310,   1e-160,     1e160,
                                   1e308,    -1e308,    1e308,     -1e308,     1e300,
                                   kLargest, -kLargest, kInfinity, -kInfinity, std::nan("")};
  // A set of few values has overflowing spans and nothing that is not finite.
  const std::size_t kinds = random() % 2 == 0 ? values.size() : values.size() - 3;
  const auto any = [&] { return values[random() % kinds]; };
  const auto height = [&] { return random() % 4 == 0 ? any() : 0.0; };
  std::vector<WallLineLikeSeg> lines;
  for (int i = 0; i < count; ++i) {
    lines.emplace_back(AcGePoint3d(any(), any(), height()), AcGePoint3d(any(), any(), height()));
  }
  return lines;
}

/// A block of rooms: a frame, verticals, and horizontals between neighbouring verticals whose
/// ends fall short of them or run over by less than the capture distance of scale 1.
inline std::vector<WallLineLikeSeg> cityBlock(std::mt19937_64& random) {
  std::uniform_real_distribution<double> slop(-4.0, 4.0);
  std::uniform_real_distribution<double> shift(-300.0, 300.0);
  constexpr double kHeight = 6000.0;
  std::vector<WallLineLikeSeg> lines;
  std::vector<double> x;
  for (int i = 0; i < 4; ++i) {
    x.push_back(3000.0 * i + shift(random));
    lines.emplace_back(AcGePoint3d(x.back(), 0, 0), AcGePoint3d(x.back(), kHeight, 0));
  }
  lines.emplace_back(AcGePoint3d(x.front(), 0, 0), AcGePoint3d(x.back(), 0, 0));
  for (int i = 0; i < 3; ++i) {
    const double y = 3000.0 + shift(random);
    const std::size_t column = static_cast<std::size_t>(i);
    lines.emplace_back(AcGePoint3d(x[column] + slop(random), y, 0),
                       AcGePoint3d(x[column + 1] + slop(random), y, 0));
  }
  return lines;
}

}  // namespace quoin::test
