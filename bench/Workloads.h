// What is measured on: lines and polygons made by a rule, the same for the same size on every
// machine. Lengths are millimetres.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <utility>
#include <vector>

namespace quoin::bench {

/// splitmix64 (Steele, Lea, Flood: "Fast splittable pseudorandom number generators", 2014), whose
/// numbers no standard library changes.
class Random {
 public:
  explicit Random(std::uint64_t seed = 1) : m_state(seed) {}

  std::uint64_t next() {
    std::uint64_t z = (m_state += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  double between(double low, double high) {
    return low + (high - low) * (static_cast<double>(next() >> 11) / 9007199254740992.0);  // 2^53
  }
  std::uint64_t below(std::uint64_t end) { return next() % end; }

 private:
  std::uint64_t m_state;
};

/// A line as plain numbers.
struct Line {
  double x0;
  double y0;
  double x1;
  double y1;
};

inline double lengthOf(const Line& line) {
  return std::hypot(line.x1 - line.x0, line.y1 - line.y0);
}

inline void flipSome(std::vector<Line>& lines, Random& random) {
  for (Line& line : lines) {
    if (random.next() & 1u) {
      std::swap(line.x0, line.x1);
      std::swap(line.y0, line.y1);
    }
  }
}

template <class Value>
void shuffle(std::vector<Value>& values, Random& random) {
  for (std::size_t i = values.size(); i > 1; --i) {
    std::swap(values[i - 1], values[random.below(i)]);
  }
}

constexpr double kPlot = 50000.0;  // from building to building, and from chain to chain

/// Wall lines of a city: buildings of six strips between seven long walls, with rooms whose walls
/// end on the long ones. Every fourth building stands at an angle. In random direction and, if
/// `shuffled`, in random order.
inline std::vector<Line> city(std::size_t count, bool shuffled = true) {
  constexpr std::size_t kLinesPerBuilding = 39;
  constexpr double kDepth = 24000.0;
  Random random;
  std::vector<Line> lines;
  lines.reserve(count + kLinesPerBuilding);
  const std::size_t buildings = (count + kLinesPerBuilding - 1) / kLinesPerBuilding;
  const auto side = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(buildings))));
  for (std::size_t building = 0; building < buildings; ++building) {
    const double originX = static_cast<double>(building % side) * kPlot;
    const double originY = static_cast<double>(building / side) * kPlot;
    const double angleRad = building % 4 == 3 ? random.between(0.0, std::numbers::pi / 2) : 0.0;
    const double c = std::cos(angleRad);
    const double s = std::sin(angleRad);
    const auto add = [&](double x0, double y0, double x1, double y1) {
      lines.push_back({originX + c * x0 - s * y0, originY + s * x0 + c * y0,
                       originX + c * x1 - s * y1, originY + s * x1 + c * y1});
    };
    double wall[7];
    for (int i = 0; i < 7; ++i) {
      wall[i] = 4000.0 * i + random.between(-400.0, 400.0);
    }
    for (const double x : wall) {
      add(x, 0.0, x, kDepth);
    }
    add(wall[0], 0.0, wall[6], 0.0);
    add(wall[0], kDepth, wall[6], kDepth);
    for (int strip = 0; strip < 6; ++strip) {
      for (int room = 1; room <= 5; ++room) {
        const double y = 4000.0 * room + random.between(-1500.0, 1500.0);
        add(wall[strip], y, wall[strip + 1], y);
      }
    }
  }
  lines.resize(count);
  flipSome(lines, random);
  if (shuffled) {
    shuffle(lines, random);
  }
  return lines;
}

/// Chains of 4 to 40 collinear fragments that share their ends bit for bit, in random order and
/// direction; three of four are horizontal or vertical.
inline std::vector<Line> chains(std::size_t count) {
  Random random;
  std::vector<Line> lines;
  lines.reserve(count + 40);
  const auto side =
      static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count) / 22.0))) + 1;
  for (std::size_t chain = 0; lines.size() < count; ++chain) {
    const std::size_t fragments = 4 + random.below(37);
    const double originX = static_cast<double>(chain % side) * kPlot;
    const double originY = static_cast<double>(chain / side) * kPlot;
    const bool isVertical = (random.next() & 1u) != 0;
    const double angleRad = random.between(0.0, std::numbers::pi);
    const bool straight = chain % 4 < 3;
    const double c = straight ? (isVertical ? 0.0 : 1.0) : std::cos(angleRad);
    const double s = straight ? (isVertical ? 1.0 : 0.0) : std::sin(angleRad);
    double from = 0.0;
    for (std::size_t i = 0; i < fragments && lines.size() < count; ++i) {
      const double to = from + random.between(200.0, 1000.0);
      lines.push_back({originX + from * c, originY + from * s, originX + to * c, originY + to * s});
      from = to;
    }
  }
  flipSome(lines, random);
  shuffle(lines, random);
  return lines;
}

/// A line to draw in the middle of the city.
inline Line dragged(std::size_t cityLines, int frame) {
  const double buildings = std::ceil(static_cast<double>(cityLines) / 39.0);
  const double centre = std::floor(std::ceil(std::sqrt(buildings)) / 2.0) * kPlot;
  const double x = centre + 37.0 * frame;
  const double y = centre + 11.0 * frame;
  const double angleRad = 0.3 + 0.01 * frame;
  return {x, y, x + 6000.0 * std::cos(angleRad), y + 6000.0 * std::sin(angleRad)};
}

/// `count` horizontal axes and as many vertical ones that cross them; one in eight starts half-way.
inline std::vector<Line> axes(int count) {
  Random random;
  std::vector<Line> lines;
  const auto add = [&](bool isVertical) {
    for (int i = 0; i < count; ++i) {
      const double at = 6000.0 * i + random.between(-1000.0, 1000.0);
      double from = -random.between(2000.0, 4000.0);
      const double to = 6000.0 * (count - 1) + random.between(2000.0, 4000.0);
      if (random.below(8) == 0) {
        from = 6000.0 * (count / 2) + 3000.0;
      }
      lines.push_back(isVertical ? Line{at, from, at, to} : Line{from, at, to, at});
    }
  };
  add(false);
  add(true);
  return lines;
}

/// A star-shaped polygon, counter-clockwise. Of a pair either the centres differ and the outlines
/// cross at few edges, or both have one centre and differ in their jitter alone: then they cross
/// at nearly every edge.
inline std::vector<std::pair<double, double>> star(std::size_t edges, int which, bool sameCentre) {
  constexpr double kRadius = 100000.0;
  Random random(static_cast<std::uint64_t>(1 + which));
  const bool moved = which != 0 && !sameCentre;
  const double centreX = moved ? 0.37 * kRadius : 0.0;
  const double centreY = moved ? 0.11 * kRadius : 0.0;
  const double phase = moved ? 1.0 : 0.0;
  const double jitter = kRadius * std::numbers::pi / static_cast<double>(edges);
  std::vector<std::pair<double, double>> points(edges);
  for (std::size_t i = 0; i < edges; ++i) {
    const double angleRad =
        2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(edges);
    const double radius = kRadius * (1.0 + 0.2 * std::sin(7.0 * angleRad + phase)) +
                          jitter * random.between(-0.5, 0.5);
    points[i] = {centreX + radius * std::cos(angleRad), centreY + radius * std::sin(angleRad)};
  }
  return points;
}

// --- uneven data --------------------------------------------------------------------------------

/// All lines within ten metres, and one a thousand kilometres away.
inline std::vector<Line> crowd(std::size_t count) {
  Random random;
  std::vector<Line> lines;
  lines.reserve(count);
  while (lines.size() + 1 < count) {
    const double x = random.between(0.0, 10000.0);
    const double y = random.between(0.0, 10000.0);
    lines.push_back({x, y, x + random.between(-1.0, 1.0), y + random.between(-1.0, 1.0)});
  }
  lines.push_back({1e9, 1e9, 1e9 + 1000.0, 1e9});
  return lines;
}

/// A city with one wall in front of it that is as long as the city is wide.
inline std::vector<Line> cityWall(std::size_t count) {
  std::vector<Line> lines = city(count);
  const double width = std::ceil(std::sqrt(std::ceil(static_cast<double>(count) / 39.0))) * kPlot;
  lines.back() = {-1000.0, -5.0, width, -5.0};
  return lines;
}

/// A city a billion units out.
inline std::vector<Line> farCity(std::size_t count) {
  std::vector<Line> lines = city(count);
  for (Line& line : lines) {
    line = {line.x0 + 1e9, line.y0 + 1e9, line.x1 + 1e9, line.y1 + 1e9};
  }
  return lines;
}

/// Fragments of one horizontal line, end to end, in random order.
inline std::vector<Line> oneLine(std::size_t count) {
  Random random;
  std::vector<Line> lines;
  lines.reserve(count);
  double from = 0.0;
  while (lines.size() < count) {
    const double to = from + random.between(200.0, 1000.0);
    lines.push_back({from, 0.0, to, 0.0});
    from = to;
  }
  shuffle(lines, random);
  return lines;
}

}  // namespace quoin::bench
