#include "plan/PointIndex.h"

#include <algorithm>
#include <cmath>

#include "GeomConst.h"

namespace quoin::plan {

namespace {

double reachOf(double at, double distance) {
  return distance * (1.0 + GeomConst::kRoundingSlack) + std::fabs(at) * GeomConst::kRoundingSlack +
         GeomConst::kVanishingSlack;
}

}  // namespace

PointBox::PointBox(const AcGePoint3d& place, double distance)
    : minX(place.x - reachOf(place.x, distance)),
      maxX(place.x + reachOf(place.x, distance)),
      minY(place.y - reachOf(place.y, distance)),
      maxY(place.y + reachOf(place.y, distance)) {}

PointIndex::PointIndex(const std::vector<AcGePoint3d>& points) {
  m_points.reserve(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (std::isfinite(points[i].x) && std::isfinite(points[i].y)) {
      m_points.push_back({points[i].x, points[i].y, i});
    }
  }
  arrange(0, m_points.size());
}

/// What is left of the middle is not above it in x (or y), what is right of it not below.
void PointIndex::arrange(std::size_t first, std::size_t last) {
  if (last - first < 2) {
    return;
  }
  const auto begin = m_points.begin() + static_cast<std::ptrdiff_t>(first);
  const auto end = m_points.begin() + static_cast<std::ptrdiff_t>(last);
  const auto byX = [](const Point& a, const Point& b) { return a.x < b.x; };
  const auto byY = [](const Point& a, const Point& b) { return a.y < b.y; };
  const auto [left, right] = std::minmax_element(begin, end, byX);
  const auto [low, high] = std::minmax_element(begin, end, byY);
  // Halves, since the whole may be beyond all numbers.
  const bool partsByX = 0.5 * right->x - 0.5 * left->x >= 0.5 * high->y - 0.5 * low->y;
  const std::size_t middle = first + (last - first) / 2;
  const auto at = m_points.begin() + static_cast<std::ptrdiff_t>(middle);
  partsByX ? std::nth_element(begin, at, end, byX) : std::nth_element(begin, at, end, byY);
  at->partsByX = partsByX;
  arrange(first, middle);
  arrange(middle + 1, last);
}

}  // namespace quoin::plan
