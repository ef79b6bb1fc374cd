#include "embedded/db/geometry/PatternLines.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quoin::db {
namespace {

/// Where a line of a family crosses an edge: the line's index, and how far along it.
struct Crossing {
  double line;
  double along;

  bool operator<(const Crossing& other) const {
    return line != other.line ? line < other.line : along < other.along;
  }
};

/// The family's own axes: `along` its lines, `across` in units of their distance.
struct Axes {
  AcGePoint3d base;
  AcGeVector3d along;
  AcGeVector3d across;
  double spacing;
  double shift;  // of the dashes from line to line

  explicit Axes(const PatternFamily& family)
      : base(family.base),
        along(std::cos(family.angle), std::sin(family.angle), 0.0),
        across(-along.y, along.x, 0.0),
        spacing(family.offset.dotProduct(across)),
        shift(family.offset.dotProduct(along)) {}

  AcGePoint3d at(double u, double line, double z) const {
    AcGePoint3d point = base + along * u + across * (line * spacing);
    point.z = z;
    return point;
  }
};

/// Fails: returns false for more than `most` crossings.
bool findCrossings(const Axes& axes, const PatternRings& rings, std::size_t most,
                   std::vector<Crossing>& crossings) {
  for (const std::vector<AcGePoint3d>& ring : rings) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const AcGeVector3d from = ring[i] - axes.base;
      const AcGeVector3d to = ring[(i + 1) % ring.size()] - axes.base;
      double low = from.dotProduct(axes.across) / axes.spacing;
      double high = to.dotProduct(axes.across) / axes.spacing;
      double lowAlong = from.dotProduct(axes.along);
      double highAlong = to.dotProduct(axes.along);
      if (low > high) {
        std::swap(low, high);
        std::swap(lowAlong, highAlong);
      }
      // An edge holds its lower end and not its upper one, so that a ring is crossed evenly.
      const double first = std::ceil(low);
      const double last = std::ceil(high) - 1.0;
      constexpr double kCountable = 4503599627370496.0;  // 2^52: one more is another number
      const bool isCountable = std::fabs(first) < kCountable && std::fabs(last) < kCountable;
      if (!isCountable || !(last - first < static_cast<double>(most - crossings.size()))) {
        return false;
      }
      for (double line = first; line <= last; line += 1.0) {
        const double share = (line - low) / (high - low);
        crossings.push_back({line, lowAlong + (highAlong - lowAlong) * share});
      }
    }
  }
  std::sort(crossings.begin(), crossings.end());
  return true;
}

}  // namespace

double spacingOf(const PatternFamily& family) {
  return std::fabs(Axes(family).spacing);
}

bool forEachPatternStroke(
    const PatternFamily& family, const PatternRings& rings, std::size_t most,
    const std::function<void(const AcGePoint3d&, const AcGePoint3d&)>& visit) {
  const Axes axes(family);
  double period = 0.0;
  double strokes = 0.0;
  bool isDashed = false;
  for (const double dash : family.dashes) {
    period += std::fabs(dash);
    strokes += dash >= 0.0 ? 1.0 : 0.0;
    isDashed = isDashed || dash < 0.0;
  }
  const bool isUsable = std::isfinite(axes.spacing) && std::isfinite(1.0 / axes.spacing) &&
                        std::isfinite(axes.shift) && std::isfinite(period) &&
                        std::isfinite(axes.base.x) && std::isfinite(axes.base.y);
  std::vector<Crossing> crossings;
  if (!isUsable || !findCrossings(axes, rings, 2 * most, crossings)) {
    return false;
  }
  double count = 0.0;
  for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
    const double length = crossings[i + 1].along - crossings[i].along;
    count += isDashed ? (length / period + 2.0) * strokes : 1.0;
  }
  if (!(count <= static_cast<double>(most))) {
    return false;
  }
  const double z = rings.empty() || rings.front().empty() ? 0.0 : rings.front().front().z;
  for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
    const double line = crossings[i].line;
    const double first = crossings[i].along;
    const double last = crossings[i + 1].along;
    if (!isDashed) {
      visit(axes.at(first, line, z), axes.at(last, line, z));
      continue;
    }
    const double origin = line * axes.shift;
    const double begin = std::floor((first - origin) / period);
    // Counted: far from the base a period may be less than what a number can tell.
    const auto cycles = static_cast<std::size_t>((last - first) / period) + 2;
    for (std::size_t cycle = 0; cycle < cycles; ++cycle) {
      double at = origin + (begin + static_cast<double>(cycle)) * period;
      for (const double dash : family.dashes) {
        const double end = at + std::fabs(dash);
        const double from = std::fmax(at, first);
        const double to = std::fmin(end, last);
        if (dash > 0.0 && from < to) {
          visit(axes.at(from, line, z), axes.at(to, line, z));
        } else if (dash == 0.0 && at >= first && at <= last) {
          visit(axes.at(at, line, z), axes.at(at, line, z));
        }
        at = end;
      }
    }
  }
  return true;
}

}  // namespace quoin::db
