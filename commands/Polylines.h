// Polylines of all three kinds (light, 2D with vertex entities, 3D) behind one view: their
// vertices, and parts of them as polylines of their own.
#pragma once

#include <memory>
#include <vector>

#include "commands/Drawing.h"
#include "dbents.h"
#include "dbpl.h"

namespace quoin::commands {

/// A vertex with what belongs to the segment behind it.
struct PolylineVertex {
  AcGePoint3d world;   // world coordinates
  AcGePoint3d own;     // the polyline's own coordinates, as it keeps them
  double bulge = 0.0;  // 0 for a straight segment
  double startWidth = 0.0;
  double endWidth = 0.0;
};

struct PolylineShape {
  std::vector<PolylineVertex> vertices;
  bool isClosed = false;
  /// Curve fitting or a spline frame: the vertices are not what is drawn.
  bool isCurveFit = false;
  double thickness = 0.0;
  AcGeVector3d normal = AcGeVector3d::kZAxis;

  std::size_t segmentCount() const;
  const PolylineVertex& segmentEnd(std::size_t segment) const;
};

/// Whether the entity is a polyline that the functions below know.
bool isPolyline(const AcDbEntity& entity);
PolylineShape readPolyline(const AcDbEntity& entity);

/// Makes the polyline (open for write) an open one with just these vertices, which are at most
/// as many as it has.
/// Fails: throws CommandError (EntityFailed).
void reducePolyline(AcDbEntity& entity, const std::vector<PolylineVertex>& vertices,
                    const Drawing& drawing);
/// A new open polyline of the same kind and properties with these vertices, in no database.
std::unique_ptr<AcDbEntity> makePolylineLike(const AcDbEntity& entity,
                                             const std::vector<PolylineVertex>& vertices);
/// Layer, colour, linetype, line weight and the like, and extended data.
void copyPropertiesAndXData(AcDbEntity& target, const AcDbEntity& source);

}  // namespace quoin::commands
