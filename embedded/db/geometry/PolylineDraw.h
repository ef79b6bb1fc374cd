// How polylines of a plane are drawn, light or heavy: lines and arcs, and where they have widths
// the areas that these fill.
#pragma once

#include <vector>

#include "embedded/db/geometry/CurveExtents.h"

namespace quoin::db {

class DrawWalk;

struct PlanePolyline {
  /// In the plane's coordinates, each from a vertex to the next; the last of an open one is left
  /// out.
  std::vector<Segment> segments;
  bool isClosed = false;
  /// Whether a linetype runs on through the vertices, rather than beginning anew at each.
  bool isPatternContinuous = false;
};
void drawPolyline(const PlanePolyline& polyline, const AcGeMatrix3d& toWorld, DrawWalk& walk);
/// The same for a segment a vertex: the last one, which ends where it begins, closes the polyline
/// or is left out. A polyline of one vertex is a dot.
void drawVertices(PlanePolyline& polyline, const AcGeMatrix3d& toWorld, DrawWalk& walk);

}  // namespace quoin::db
