// Paths for sinks, made of the curves that entities are made of.
#pragma once

#include <span>
#include <vector>

#include "embedded/db/geometry/CurveExtents.h"
#include "hostdraw.h"

namespace quoin::db {

using hostx::DrawPath;

/// Begins anew at a point; keeps the memory of what was there.
void startPath(DrawPath& path, const AcGePoint3d& start);
void addLine(DrawPath& path, const AcGePoint3d& end);
/// Adds an arc from its start, or with `isTurned` from its end; the path must have come there.
void addArc(DrawPath& path, const ArcImage& arc, bool isTurned = false);
/// Adds a segment of a polyline without its widths, from its start.
void addSegment(DrawPath& path, const Segment& segment, const AcGeMatrix3d& toWorld);

DrawPath linePath(const AcGePoint3d& start, const AcGePoint3d& end);
DrawPath arcPath(const ArcImage& arc);
/// Straight from point to point.
DrawPath polygonPath(std::span<const AcGePoint3d> points, bool isClosed);
/// The corners of a rectangle along the axes of a plane.
DrawPath rectanglePath(double left, double bottom, double right, double top,
                       const AcGeMatrix3d& toWorld);

ArcImage imageOf(const ArcImage& arc, const AcGeMatrix3d& matrix);

/// How far a map stretches lengths along its X and Y axes: 1 for moves and turns.
double lengthScale(const AcGeMatrix3d& matrix);

/// Whether every number of a path is finite.
bool isFinite(const DrawPath& path);

/// The points of a path: its corners, and along arcs as many as keep within `error` of them.
std::vector<AcGePoint3d> pointsAlong(const DrawPath& path, double error);

}  // namespace quoin::db
