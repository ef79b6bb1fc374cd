#include "embedded/db/geometry/SplineDraw.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "embedded/db/geometry/Beziers.h"
#include "embedded/db/geometry/DrawWalk.h"

namespace quoin::db {
namespace {

/// Pieces of one spline, beside one a span.
constexpr double kMostPieces = 100'000.0;

class Flattening {
 public:
  Flattening(DrawPath& path, double error) : m_path(path), m_error(error) {}

  void add(const Bezier& curve) {
    if (m_isFirst) {
      m_path.start = at(curve, 0.0);
      m_isFirst = false;
    }
    const int steps = stepsOf(curve);
    m_left -= steps;
    for (int step = 1; step <= steps; ++step) {
      addLine(m_path, at(curve, static_cast<double>(step) / steps));
    }
  }

 private:
  /// A curve leaves the chord of 1/n of its parameter by at most d (d - 1) / (8 n^2) of the
  /// greatest second difference of its control points.
  int stepsOf(const Bezier& curve) const {
    constexpr double kMost = 256.0;
    const double degree = static_cast<double>(curve.size() - 1);
    double most = 0.0;
    for (std::size_t i = 0; i + 2 < curve.size(); ++i) {
      const AcGeVector3d bend = curve[i].place / curve[i].weight -
                                curve[i + 1].place * (2.0 / curve[i + 1].weight) +
                                curve[i + 2].place / curve[i + 2].weight;
      most = std::fmax(most, bend.length());
    }
    bool isRational = false;
    for (const WeightedPoint& point : curve) {
      isRational = isRational || point.weight != curve.front().weight;
    }
    double steps = std::ceil(std::sqrt(degree * (degree - 1.0) * most / (8.0 * m_error)));
    // Weights draw the curve towards single points, which the differences do not show.
    steps = isRational ? std::fmax(2.0 * steps, 8.0) : steps;
    steps = std::isfinite(steps) ? std::fmin(steps, kMost) : 1.0;
    return static_cast<int>(std::clamp(std::fmin(steps, m_left), 1.0, kMost));
  }

  AcGePoint3d at(const Bezier& curve, double share) {
    m_row = curve;
    for (std::size_t level = m_row.size() - 1; level > 0; --level) {
      for (std::size_t i = 0; i < level; ++i) {
        m_row[i] = between(m_row[i], m_row[i + 1], share);
      }
    }
    return {m_row[0].coordinate(0), m_row[0].coordinate(1), m_row[0].coordinate(2)};
  }

  DrawPath& m_path;
  double m_error;
  double m_left = kMostPieces;
  bool m_isFirst = true;
  Bezier m_row;
};

double sizeOf(std::span<const AcGePoint3d> points) {
  AcDbExtents box;
  for (const AcGePoint3d& point : points) {
    box.addPoint(point);
  }
  return box.isFresh() ? 0.0 : (box.maxPoint() - box.minPoint()).length();
}

}  // namespace

hostx::DrawPath splinePath(const SplineImage& spline, const DrawWalk& walk) {
  DrawPath path;
  Flattening flattening(path, walk.chordError(sizeOf(spline.points)));
  const bool isCurve = forEachBezier(spline, [&](const Bezier& curve) { flattening.add(curve); });
  return isCurve ? path : polygonPath(spline.points, false);
}

hostx::DrawPath fitSplinePath(std::span<const AcGePoint3d> points,
                              const AcGeVector3d& startDirection, const AcGeVector3d& endDirection,
                              const AcGeMatrix3d& toWorld, const DrawWalk& walk) {
  DrawPath path;
  Flattening flattening(path, walk.chordError(sizeOf(points) * lengthScale(toWorld)));
  const bool isCurve = forEachFitBezier(points, startDirection, endDirection, toWorld,
                                        [&](const Bezier& curve) { flattening.add(curve); });
  if (!isCurve && !points.empty()) {
    path.start = toWorld * points.front();
  }
  return path;
}

}  // namespace quoin::db
