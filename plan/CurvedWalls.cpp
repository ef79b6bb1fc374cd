#include "plan/CurvedWalls.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "plan/SegmentGrid.h"

namespace quoin::plan {

namespace {

constexpr double kTurn = 2.0 * std::numbers::pi;
/// A curved wall is so many times as long as wide, at least.
constexpr double kLeastSlender = 2.0;
/// So many chords stand for an arc at most.
constexpr double kMostChords = 10'000.0;

bool isUsable(const PlanArc& arc) {
  return std::isfinite(arc.center.x) && std::isfinite(arc.center.y) && std::isfinite(arc.radius) &&
         arc.radius > 0.0 && std::isfinite(arc.startAngle) && arc.sweep > 0.0 && arc.sweep <= kTurn;
}

double wrapped(double angle) {
  const double rest = std::fmod(angle, kTurn);
  return rest < 0.0 ? rest + kTurn : rest;
}

/// The first stretch of angles that two arcs share: where it begins, and how far it goes.
std::pair<double, double> sharedAngles(const PlanArc& a, const PlanArc& b) {
  if (b.sweep >= kTurn) {
    return {a.startAngle, a.sweep};
  }
  if (a.sweep >= kTurn) {
    return {b.startAngle, b.sweep};
  }
  const double ahead = wrapped(b.startAngle - a.startAngle);
  // Where b begins within a, else where a begins within b.
  if (ahead < a.sweep) {
    return {b.startAngle, std::min(b.sweep, a.sweep - ahead)};
  }
  const double behind = kTurn - ahead;
  return {a.startAngle, std::min(a.sweep, b.sweep - behind)};
}

struct Pair {
  std::size_t inner;
  std::size_t outer;
  CurvedWall wall;

  double length() const { return wall.arc.radius * wall.arc.sweep; }
};

/// Longest first; the order of the drawing does not matter.
bool isBefore(const Pair& a, const Pair& b) {
  if (a.length() != b.length()) {
    return a.length() > b.length();
  }
  if (a.wall.width != b.wall.width) {
    return a.wall.width < b.wall.width;
  }
  const AcGePoint2d& p = a.wall.arc.center;
  const AcGePoint2d& q = b.wall.arc.center;
  if (p.x != q.x) {
    return p.x < q.x;
  }
  return p.y != q.y ? p.y < q.y : a.wall.arc.startAngle < b.wall.arc.startAngle;
}

}  // namespace

std::vector<CurvedWall> findCurvedWalls(const std::vector<PlanArc>& arcs,
                                        const FindWallsOptions& options) {
  SegmentGrid centers;
  std::vector<std::size_t> usable;
  for (std::size_t i = 0; i < arcs.size(); ++i) {
    if (isUsable(arcs[i])) {
      usable.push_back(i);
      centers.add(arcs[i].center, arcs[i].center);
    }
  }
  centers.arrange(options.maxWidth);
  std::vector<Pair> pairs;
  for (const std::size_t i : usable) {
    const PlanArc& inner = arcs[i];
    const Box near = Box(inner.center, inner.center).grownBy(options.tolerance);
    centers.visitIn(near, [&](std::size_t number) {
      const std::size_t j = usable[number];
      const PlanArc& outer = arcs[j];
      const double width = outer.radius - inner.radius;
      if (width < options.minWidth || width > options.maxWidth) {
        return;
      }
      const auto [start, sweep] = sharedAngles(inner, outer);
      Pair pair{i, j, {}};
      pair.wall.width = width;
      pair.wall.arc = {inner.center, 0.5 * (inner.radius + outer.radius), start, sweep};
      if (sweep > 0.0 && pair.length() >= kLeastSlender * width) {
        pairs.push_back(pair);
      }
    });
  }
  std::sort(pairs.begin(), pairs.end(), isBefore);
  std::vector<bool> isTaken(arcs.size(), false);
  std::vector<CurvedWall> walls;
  for (const Pair& pair : pairs) {
    if (!isTaken[pair.inner] && !isTaken[pair.outer]) {
      isTaken[pair.inner] = isTaken[pair.outer] = true;
      walls.push_back(pair.wall);
    }
  }
  return walls;
}

std::vector<AcGePoint2d> chordsOf(const PlanArc& arc, double deviation) {
  // The middle of a chord over the angle 2a lies r (1 - cos a) inside the arc.
  const double part = std::clamp(1.0 - deviation / arc.radius, 0.0, 1.0);
  const double step = std::max(2.0 * std::acos(part), arc.sweep / kMostChords);
  const double count = std::clamp(std::ceil(arc.sweep / step), 2.0, kMostChords);
  std::vector<AcGePoint2d> corners;
  for (int i = 0; i <= static_cast<int>(count); ++i) {
    corners.push_back(arc.at(arc.startAngle + arc.sweep * (i / count)));
  }
  return corners;
}

}  // namespace quoin::plan
