// Points of a plan arranged so that those in a box are found without looking at the others: a
// k-d tree without pointers. It knows x and y alone; whoever asks compares exactly what it finds.
#pragma once

#include <cstddef>
#include <vector>

#include "gepnt3d.h"

namespace quoin::plan {

/// The points within `distance` of a place, in x and in y, sides included and with some room to
/// spare: every finite point at a computed distance below or at `distance` is in it.
///
/// The computed distance is the root of the sum of the squared differences. A difference exceeds
/// it by a few 2^-53 of its size at most, or, where its square vanishes, by some 1e-161; and the
/// sides of the box are rounded by a few 2^-53 of their size. The slacks cover that thousands of
/// times over. Where the place or the distance is NaN all comparisons are false and the box is
/// empty, as nothing is at such a distance.
struct PointBox {
  PointBox(const AcGePoint3d& place, double distance);
  bool holds(double x, double y) const { return x >= minX && x <= maxX && y >= minY && y <= maxY; }

  double minX;
  double maxX;
  double minY;
  double maxY;
};

/// Every half is parted at its middle point, across the side that is longer: so a search takes few
/// steps beside what it finds, also where all points lie on a line.
class PointIndex {
 public:
  /// Points with a coordinate that is not finite are left out: no computed distance to them is
  /// below any other number.
  explicit PointIndex(const std::vector<AcGePoint3d>& points);

  /// Calls visit(number of the point) for the points that the box holds, in no order that means
  /// anything.
  template <class Visit>
  void visitIn(const PointBox& box, Visit visit) const {
    visitIn(box, 0, m_points.size(), visit);
  }

 private:
  struct Point {
    double x;
    double y;
    std::size_t number;
    bool partsByX = true;  // the points about it, of which it is the middle one
  };
  void arrange(std::size_t first, std::size_t last);

  /// Among the points from `first` to before `last`.
  template <class Visit>
  void visitIn(const PointBox& box, std::size_t first, std::size_t last, Visit& visit) const {
    if (first == last) {
      return;
    }
    const std::size_t middle = first + (last - first) / 2;
    const Point& point = m_points[middle];
    if (box.holds(point.x, point.y)) {
      visit(point.number);
    }
    const double at = point.partsByX ? point.x : point.y;
    if ((point.partsByX ? box.minX : box.minY) <= at) {
      visitIn(box, first, middle, visit);
    }
    if ((point.partsByX ? box.maxX : box.maxY) >= at) {
      visitIn(box, middle + 1, last, visit);
    }
  }

  std::vector<Point> m_points;
};

}  // namespace quoin::plan
