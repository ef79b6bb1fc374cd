// Extents of splines. The extremes of each of their Bezier curves are found by halving it: what
// lies between its control points can be left out as soon as none of them reaches beyond a point
// that is known to be on the curve.
#include <algorithm>
#include <array>
#include <cmath>

#include "embedded/db/geometry/Beziers.h"

namespace quoin::db {
namespace {

/// The greatest (side 1) or least (side -1) coordinate of a curve, times `side`, if it is
/// greater than `best`; `best` otherwise.
double extremeOf(const Bezier& whole, unsigned int axis, double side, double best) {
  // The distance of hull and curve falls by four with each halving: 2^-2*27 of the beginning
  // is below what a double tells apart, so that deeper halves are rounding only.
  constexpr int kDeepest = 27;
  // Pieces near one extreme are few at each depth; more of them lie on a plateau of rounding.
  constexpr int kMostPieces = 4096;
  struct Piece {
    Bezier curve;
    int depth;
  };
  std::vector<Piece> open{{whole, 0}};
  double reach = 0.0;
  for (const WeightedPoint& point : whole) {
    reach = std::fmax(reach, std::fabs(point.coordinate(axis)));
  }
  const double rounding = reach * 1e-15;
  for (int seen = 0; !open.empty() && seen < kMostPieces; ++seen) {
    Piece piece = std::move(open.back());
    open.pop_back();
    Bezier& left = piece.curve;
    best = std::fmax(best, side * left.front().coordinate(axis));
    best = std::fmax(best, side * left.back().coordinate(axis));
    double hull = best;
    for (const WeightedPoint& point : left) {
      hull = std::fmax(hull, side * point.coordinate(axis));
    }
    if (!(hull > best + rounding) || piece.depth >= kDeepest) {
      continue;
    }
    Bezier right(left.size());
    Bezier row = left;
    for (std::size_t level = 0; level < row.size(); ++level) {
      const std::size_t last = row.size() - 1;
      right[last - level] = row[last];
      left[level] = row[level];
      for (std::size_t i = last; i > level; --i) {
        row[i] = between(row[i - 1], row[i], 0.5);
      }
    }
    open.push_back({std::move(right), piece.depth + 1});
    open.push_back({std::move(left), piece.depth + 1});
  }
  return best;
}

void addBezier(const Bezier& curve, AcDbExtents& box) {
  for (const WeightedPoint& end : {curve.front(), curve.back()}) {
    box.addPoint(AcGePoint3d(end.coordinate(0), end.coordinate(1), end.coordinate(2)));
  }
  AcGePoint3d low = box.minPoint();
  AcGePoint3d high = box.maxPoint();
  for (unsigned int axis = 0; axis < 3; ++axis) {
    low[axis] = -extremeOf(curve, axis, -1.0, -low[axis]);
    high[axis] = extremeOf(curve, axis, 1.0, high[axis]);
  }
  box.addPoint(low);
  box.addPoint(high);
}

}  // namespace

void addSpline(const SplineImage& spline, AcDbExtents& box) {
  const bool isCurve = forEachBezier(spline, [&](const Bezier& curve) { addBezier(curve, box); });
  for (std::size_t i = 0; !isCurve && i < spline.points.size(); ++i) {
    box.addPoint(spline.points[i]);
  }
}

void addFitSpline(std::span<const AcGePoint3d> points, const AcGeVector3d& startDirection,
                  const AcGeVector3d& endDirection, const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  const bool isCurve = forEachFitBezier(points, startDirection, endDirection, toWorld,
                                        [&](const Bezier& curve) { addBezier(curve, box); });
  for (std::size_t i = 0; !isCurve && i < points.size(); ++i) {
    box.addPoint(toWorld * points[i]);
  }
}

}  // namespace quoin::db
