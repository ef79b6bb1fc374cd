// Wall lines of a made-up city, the same for the same number on every machine: houses on a
// grid, each with a few long walls and many short ones whose ends lie on the long ones.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace quoin::bench {

/// A wall line as plain numbers, in millimetres.
struct Line {
  double x0;
  double y0;
  double x1;
  double y1;
};

/// A small generator of random numbers whose sequence the standard library does not change:
/// a 64-bit linear congruence, of which the upper half is used.
class Random {
 public:
  explicit Random(std::uint64_t seed) : m_state(seed) {}

  std::uint32_t next() {
    m_state = m_state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::uint32_t>(m_state >> 32);
  }
  double between(double low, double high) {
    constexpr double kRange = 4294967296.0;  // 2^32
    return low + (high - low) * (static_cast<double>(next()) / kRange);
  }

 private:
  std::uint64_t m_state;
};

/// `count` wall lines in random order and direction. Every fourth house stands at an angle.
inline std::vector<Line> city(std::size_t count) {
  constexpr double kPlot = 40000.0;   // from house to house
  constexpr double kDepth = 20000.0;  // of a house
  constexpr int kStrips = 5;          // long walls stand at the ends of strips of rooms
  constexpr int kRooms = 5;           // in a strip
  constexpr std::size_t kLinesPerHouse = (kStrips + 1) + 2 + kStrips * (kRooms - 1);

  Random random(20);
  std::vector<Line> lines;
  lines.reserve(count + kLinesPerHouse);
  const std::size_t houses = (count + kLinesPerHouse - 1) / kLinesPerHouse;
  const auto side = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(houses))));
  for (std::size_t house = 0; house < houses; ++house) {
    const double angleRad = house % 4 == 3 ? random.between(0.0, 1.5) : 0.0;
    const double cosine = std::cos(angleRad);
    const double sine = std::sin(angleRad);
    const double originX = static_cast<double>(house % side) * kPlot;
    const double originY = static_cast<double>(house / side) * kPlot;
    const auto add = [&](double x0, double y0, double x1, double y1) {
      lines.push_back({originX + cosine * x0 - sine * y0, originY + sine * x0 + cosine * y0,
                       originX + cosine * x1 - sine * y1, originY + sine * x1 + cosine * y1});
    };
    double wall[kStrips + 1];
    for (int i = 0; i <= kStrips; ++i) {
      wall[i] = i * 4000.0 + random.between(-500.0, 500.0);
      add(wall[i], 0.0, wall[i], kDepth);
    }
    add(wall[0], 0.0, wall[kStrips], 0.0);
    add(wall[0], kDepth, wall[kStrips], kDepth);
    for (int strip = 0; strip < kStrips; ++strip) {
      for (int room = 1; room < kRooms; ++room) {
        const double y = room * kDepth / kRooms + random.between(-900.0, 900.0);
        add(wall[strip], y, wall[strip + 1], y);
      }
    }
  }
  lines.resize(count);
  for (std::size_t i = count; i > 1; --i) {
    std::swap(lines[i - 1], lines[random.next() % i]);
    if (random.next() & 1u) {
      std::swap(lines[i - 1].x0, lines[i - 1].x1);
      std::swap(lines[i - 1].y0, lines[i - 1].y1);
    }
  }
  return lines;
}

}  // namespace quoin::bench
