// A direction of the plan with a place: points by how far they lie along it and to its left.
#pragma once

#include "gepnt2d.h"

namespace quoin::plan {

struct Axis {
  AcGePoint2d origin;
  /// A unit vector.
  AcGeVector2d along = AcGeVector2d(1.0, 0.0);

  double alongOf(const AcGePoint2d& point) const { return along.dotProduct(point - origin); }
  double leftOf(const AcGePoint2d& point) const {
    return along.perpVector().dotProduct(point - origin);
  }
  AcGePoint2d at(double distance, double left = 0.0) const {
    return origin + along * distance + along.perpVector() * left;
  }
};

/// The sine of the angle from one unit vector to another, counter-clockwise.
inline double sineOf(const AcGeVector2d& from, const AcGeVector2d& to) {
  return from.x * to.y - from.y * to.x;
}

}  // namespace quoin::plan
