// Splines as paths of straight pieces, as fine as who draws them can see.
#pragma once

#include <span>

#include "embedded/db/geometry/CurveExtents.h"
#include "hostdraw.h"

namespace quoin::db {

class DrawWalk;

/// A spline of another shape than SplineImage says is its control polygon.
hostx::DrawPath splinePath(const SplineImage& spline, const DrawWalk& walk);
/// The spline of addFitSpline().
hostx::DrawPath fitSplinePath(std::span<const AcGePoint3d> points,
                              const AcGeVector3d& startDirection, const AcGeVector3d& endDirection,
                              const AcGeMatrix3d& toWorld, const DrawWalk& walk);

}  // namespace quoin::db
