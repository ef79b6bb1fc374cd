#include "embedded/db/geometry/Beziers.h"

#include <algorithm>
#include <cmath>

namespace quoin::db {

WeightedPoint between(const WeightedPoint& a, const WeightedPoint& b, double share) {
  return {a.place * (1.0 - share) + b.place * share, a.weight * (1.0 - share) + b.weight * share};
}

namespace {

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

bool forEachBezier(const SplineImage& spline, const BezierVisit& visit) {
  if (!isRegular(spline)) {
    return false;
  }
  for (std::size_t span = spline.degree; span < spline.points.size(); ++span) {
    if (spline.knots[span] < spline.knots[span + 1]) {
      visit(bezierOf(spline, span));
    }
  }
  return true;
}

bool forEachFitBezier(std::span<const AcGePoint3d> given, const AcGeVector3d& startDirection,
                      const AcGeVector3d& endDirection, const AcGeMatrix3d& toWorld,
                      const BezierVisit& visit) {
  std::vector<AcGePoint3d> points;
  for (const AcGePoint3d& point : given) {
    if (points.empty() || (point - points.back()).length() > 0.0) {
      points.push_back(point);
    }
  }
  if (points.size() < 2) {
    return false;
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
    visit(curve);
  }
  return true;
}

}  // namespace quoin::db
