// Splines as Bezier curves: every span of their knots is one.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "embedded/db/geometry/CurveExtents.h"

namespace quoin::db {

/// A control point times its weight, with the weight.
struct WeightedPoint {
  AcGeVector3d place;
  double weight = 1.0;

  double coordinate(unsigned int axis) const { return place[axis] / weight; }
};
using Bezier = std::vector<WeightedPoint>;
using BezierVisit = std::function<void(const Bezier&)>;

WeightedPoint between(const WeightedPoint& a, const WeightedPoint& b, double share);

/// Calls `visit` with the curves of a spline, in order.
/// Fails: returns false for a spline of another shape than SplineImage says.
bool forEachBezier(const SplineImage& spline, const BezierVisit& visit);
/// The same for the spline of addFitSpline().
/// Fails: returns false for fewer than two distinct points.
bool forEachFitBezier(std::span<const AcGePoint3d> points, const AcGeVector3d& startDirection,
                      const AcGeVector3d& endDirection, const AcGeMatrix3d& toWorld,
                      const BezierVisit& visit);

}  // namespace quoin::db
