// Light polylines of many vertices, changed in one go: every setter of AcDbPolyline writes the
// whole record anew.
#pragma once

#include <vector>

#include "dbpl.h"
#include "gepnt2d.h"
#include "hostapi.h"

namespace hostx {

/// A vertex with what belongs to the segment behind it.
struct LightPolylineVertex {
  AcGePoint2d point;
  double bulge = 0.0;
  double startWidth = 0.0;
  double endWidth = 0.0;
};

/// Gives the first vertices these values and removes the others, in time proportional to the
/// record. A value that a vertex already has stays as it is spelled.
/// Fails: eInvalidIndex (more than the polyline has), eDegenerateGeometry (fewer than two, and
/// fewer than it has), and as the setters of AcDbPolyline; the polyline stays as it is then.
HOST_API Acad::ErrorStatus reduceVertices(AcDbPolyline& polyline,
                                          const std::vector<LightPolylineVertex>& vertices);

}  // namespace hostx
