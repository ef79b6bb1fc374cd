// Polylines of all three kinds (light, 2D with vertex entities, 3D) behind one view: their
// vertices, and parts of them as polylines of their own.
#pragma once

#include <map>
#include <memory>
#include <span>
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

/// Makes parts of one polyline as entities of their own, in no database, in time proportional to
/// the parts: a polyline of many vertices may be cut at many of them. Every part has the
/// polyline's layer, colour, linetype, line weight and the like, and extended data.
class PolylineParts {
 public:
  /// The polyline has this shape, and must neither change nor close while parts are made.
  PolylineParts(const AcDbEntity& polyline, const PolylineShape& shape, const Drawing& drawing);

  /// A new open polyline of the same kind with these vertices, at most as many as the polyline has.
  /// Fails: throws CommandError (EntityFailed).
  std::unique_ptr<AcDbEntity> polyline(const std::vector<PolylineVertex>& vertices);
  /// A new line with the polyline's thickness.
  std::unique_ptr<AcDbLine> line(const AcGePoint3d& start, const AcGePoint3d& end);

 private:
  void reduce(AcDbPolyline& copy, std::span<const PolylineVertex> vertices) const;
  std::unique_ptr<AcDbPolyline> cloneOfAtLeast(std::size_t count);
  template <class Vertex, class Polyline>
  void appendVertices(Polyline& copy, const std::vector<PolylineVertex>& vertices);

  const AcDbEntity& m_polyline;
  const PolylineShape& m_shape;
  const Drawing& m_drawing;
  /// Clones of a light polyline with its first 2, 4, 8, ... vertices, those that were needed.
  std::map<std::size_t, std::unique_ptr<AcDbPolyline>> m_shortened;
  // What the others are clones of.
  std::unique_ptr<AcDbLine> m_line;
  std::unique_ptr<AcDbVertex> m_vertex;
};

}  // namespace quoin::commands
