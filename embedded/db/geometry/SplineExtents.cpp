// Extents of splines. Every span of the knots is a Bezier curve; its extremes are found by
// halving it: what lies between its control points can be left out as soon as none of them
// reaches beyond a point that is known to be on the curve.
#include <algorithm>
#include <array>
#include <cmath>

#include "embedded/db/geometry/CurveExtents.h"

namespace quoin::db {
namespace {

/// A control point times its weight, with the weight.
struct Weighted {
  AcGeVector3d place;
  double weight = 1.0;

  double coordinate(unsigned int axis) const { return place[axis] / weight; }
};
using Bezier = std::vector<Weighted>;

Weighted between(const Weighted& a, const Weighted& b, double share) {
  return {a.place * (1.0 - share) + b.place * share, a.weight * (1.0 - share) + b.weight * share};
}

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
  for (const Weighted& point : whole) {
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
    for (const Weighted& point : left) {
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
  for (const Weighted& end : {curve.front(), curve.back()}) {
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

/// The span's curve by its polar form: control point i has the arguments (start, ..., end, ...)
/// with the end i times (de Boor's scheme with an argument for each level).
Bezier bezierOf(const SplineImage& spline, std::size_t span) {
  const std::size_t degree = spline.degree;
  const double start = spline.knots[span];
  const double end = spline.knots[span + 1];
  Bezier curve;
  for (std::size_t ends = 0; ends <= degree; ++ends) {
    Bezier row;
    for (std::size_t i = span - degree; i <= span; ++i) {
      const double weight = spline.weights.empty() ? 1.0 : spline.weights[i];
      row.push_back({spline.points[i].asVector() * weight, weight});
    }
    for (std::size_t level = 1; level <= degree; ++level) {
      const double argument = level <= ends ? end : start;
      for (std::size_t i = degree; i >= level; --i) {
        const double low = spline.knots[span - degree + i];
        const double high = spline.knots[span + 1 + i - level];
        row[i] = between(row[i - 1], row[i], high > low ? (argument - low) / (high - low) : 0.0);
      }
    }
    curve.push_back(row.back());
  }
  return curve;
}

bool isRegular(const SplineImage& spline) {
  const auto isFinite = [](double value) { return std::isfinite(value); };
  return spline.degree >= 1 && spline.degree <= SplineImage::kMostDegrees &&
         spline.points.size() > spline.degree &&
         spline.knots.size() == spline.points.size() + spline.degree + 1 &&
         std::all_of(spline.knots.begin(), spline.knots.end(), isFinite) &&
         std::is_sorted(spline.knots.begin(), spline.knots.end()) &&
         spline.knots[spline.degree] < spline.knots[spline.points.size()] &&
         (spline.weights.empty() || spline.weights.size() == spline.points.size()) &&
         std::all_of(spline.weights.begin(), spline.weights.end(),
                     [](double weight) { return weight > 0.0 && std::isfinite(weight); });
}

}  // namespace

void addSpline(const SplineImage& spline, AcDbExtents& box) {
  if (!isRegular(spline)) {
    for (const AcGePoint3d& point : spline.points) {
      box.addPoint(point);
    }
    return;
  }
  for (std::size_t span = spline.degree; span < spline.points.size(); ++span) {
    if (spline.knots[span] < spline.knots[span + 1]) {
      addBezier(bezierOf(spline, span), box);
    }
  }
}

void addFitSpline(std::span<const AcGePoint3d> given, const AcGeVector3d& startDirection,
                  const AcGeVector3d& endDirection, const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  std::vector<AcGePoint3d> points;
  for (const AcGePoint3d& point : given) {
    if (points.empty() || (point - points.back()).length() > 0.0) {
      points.push_back(point);
    }
  }
  if (points.size() < 2) {
    for (const AcGePoint3d& point : points) {
      box.addPoint(toWorld * point);
    }
    return;
  }
  // The derivatives solve a tridiagonal system: each row says that curvature is continuous.
  const std::size_t last = points.size() - 1;
  std::vector<double> steps(last);
  for (std::size_t i = 0; i < last; ++i) {
    steps[i] = (points[i + 1] - points[i]).length();
  }
  std::vector<double> over(points.size(), 0.0);
  std::vector<AcGeVector3d> slopes(points.size());
  const auto solveRow = [&](std::size_t i, double before, double own, double after,
                            const AcGeVector3d& sum) {
    const double pivot = own - (i > 0 ? before * over[i - 1] : 0.0);
    over[i] = after / pivot;
    slopes[i] = (sum - (i > 0 ? slopes[i - 1] * before : AcGeVector3d())) / pivot;
  };
  const bool hasStart = startDirection.length() > 0.0;
  const bool hasEnd = endDirection.length() > 0.0;
  if (hasStart) {
    solveRow(0, 0.0, 1.0, 0.0, startDirection.normal());
  } else {
    solveRow(0, 0.0, 2.0, 1.0, (points[1] - points[0]) * (3.0 / steps[0]));
  }
  for (std::size_t i = 1; i < last; ++i) {
    const double left = steps[i - 1];
    const double right = steps[i];
    solveRow(i, right, 2.0 * (left + right), left,
             (points[i] - points[i - 1]) * (3.0 * right / left) +
                 (points[i + 1] - points[i]) * (3.0 * left / right));
  }
  if (hasEnd) {
    solveRow(last, 0.0, 1.0, 0.0, endDirection.normal());
  } else {
    solveRow(last, 1.0, 2.0, 0.0, (points[last] - points[last - 1]) * (3.0 / steps[last - 1]));
  }
  for (std::size_t i = last; i-- > 0;) {
    slopes[i] = slopes[i] - slopes[i + 1] * over[i];
  }
  for (std::size_t i = 0; i < last; ++i) {
    const double third = steps[i] / 3.0;
    Bezier curve;
    for (const AcGePoint3d& point : {points[i], points[i] + slopes[i] * third,
                                     points[i + 1] - slopes[i + 1] * third, points[i + 1]}) {
      curve.push_back({(toWorld * point).asVector(), 1.0});
    }
    addBezier(curve, box);
  }
}

}  // namespace quoin::db
