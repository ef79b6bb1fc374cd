// The boxes of the curves that entities are made of: arcs, segments with widths and
// splines under any affine map. Each adds the smallest box of its shape.
#pragma once

#include <span>
#include <vector>

#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/PlaneTransform.h"

namespace quoin::db {

/// centre + u cos t + v sin t for t from `start` over `sweep` (0 to a full turn).
struct ArcImage {
  AcGePoint3d center;
  AcGeVector3d u;
  AcGeVector3d v;
  double start = 0.0;
  double sweep = kFullTurn;

  AcGePoint3d at(double t) const;
  /// Lets it run counter-clockwise from `from` to `to` (radians); equal ends are a full turn.
  void setRange(double from, double to);
};
void addArc(const ArcImage& arc, AcDbExtents& box);

/// One segment of a polyline in its plane.
struct Segment {
  AcGePoint3d start;
  AcGePoint3d end;
  double bulge = 0.0;
  double startWidth = 0.0;
  double endWidth = 0.0;
};
bool isStraight(const Segment& segment);
/// The arc of a bulged segment in its plane, from start to end; with its radius times `factor`.
ArcImage arcOf(const Segment& segment, double factor = 1.0);
/// An arc of changing width counts with its greater width throughout.
void addSegment(const Segment& segment, const AcGeMatrix3d& toWorld, AcDbExtents& box);

/// A rectangle along the axes of a plane.
void addRectangle(double left, double bottom, double right, double top, const AcGeMatrix3d& toWorld,
                  AcDbExtents& box);

/// Adds a flat shape, and its copy at the other end of the thickness.
void addThick(const AcDbExtents& shape, const AcGeVector3d& thickness, AcDbExtents& box);
AcGeVector3d thicknessOf(const TagList& tags, TagRange range, const AcGeMatrix3d& toWorld);

/// A spline by knots and control points; `weights` has one for each point, or none.
/// Shape: knots.size() == points.size() + degree + 1, in order. What has another shape, or a
///        weight that is not positive, counts with the box of its control points.
/// Error: short of the curve by at most 1e-15 of the size of its control points.
struct SplineImage {
  static constexpr std::size_t kMostDegrees = 25;
  /// What a record says is one, which may be anything.
  static std::size_t degreeOf(std::int64_t degree) {
    return degree >= 1 ? static_cast<std::size_t>(degree) : kMostDegrees + 1;
  }

  std::size_t degree = 3;
  std::vector<double> knots;
  std::vector<AcGePoint3d> points;
  std::vector<double> weights;
};
void addSpline(const SplineImage& spline, AcDbExtents& box);

/// The cubic spline with continuous curvature through some points, its parameter the length of
/// the chords; with the directions at its ends where they are not zero, straight there else.
/// It is made in the points' own space and measured through `toWorld`.
void addFitSpline(std::span<const AcGePoint3d> points, const AcGeVector3d& startDirection,
                  const AcGeVector3d& endDirection, const AcGeMatrix3d& toWorld, AcDbExtents& box);

/// Every value, or point, that a stretch of a record has under a code.
std::vector<double> numbersOf(const TagList& tags, int code, TagRange range);
std::vector<AcGePoint3d> pointsOf(const TagList& tags, int code, TagRange range);

}  // namespace quoin::db
