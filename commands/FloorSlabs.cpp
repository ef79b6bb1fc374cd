#include "commands/FloorSlabs.h"

#include <algorithm>
#include <cmath>

#include "commands/Polylines.h"
#include "commands/picture/PlanShapes.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"
#include "plan/PolygonMesh.h"

namespace quoin::commands {

namespace {

std::vector<AcGePoint2d> flat(const std::vector<AcGePoint3d>& points) {
  std::vector<AcGePoint2d> result;
  result.reserve(points.size());
  for (const AcGePoint3d& point : points) {
    result.emplace_back(point.x, point.y);
  }
  return result;
}

/// The corners of a polyline seen from above, its arcs as chords; each once, however often it is
/// given in a row.
std::vector<AcGePoint2d> outlineOf(const PolylineShape& shape) {
  std::vector<AcGePoint2d> points;
  // Of a polyline that is seen from below, arcs turn the other way.
  const double orientation = shape.normal.z < 0.0 ? -1.0 : 1.0;
  for (std::size_t i = 0; i < shape.segmentCount(); ++i) {
    const AcGePoint3d& from = shape.vertices[i].world;
    const AcGePoint3d& to = shape.segmentEnd(i).world;
    if (points.empty()) {
      points.emplace_back(from.x, from.y);
    }
    appendBulge(points, {from.x, from.y}, {to.x, to.y}, orientation * shape.vertices[i].bulge);
  }
  const auto isSame = [](const AcGePoint2d& a, const AcGePoint2d& b) {
    return a.x == b.x && a.y == b.y;
  };
  points.erase(std::unique(points.begin(), points.end(), isSame), points.end());
  while (points.size() > 1 && isSame(points.front(), points.back())) {
    points.pop_back();
  }
  return points;
}

/// Why no slab lies below this polyline; "" where one does.
std::string problemOf(const PolylineShape& shape) {
  if (shape.isCurveFit) {
    return "is fitted to a curve";
  }
  if (shape.vertices.empty()) {
    return "has no vertex";
  }
  const AcGePoint3d& first = shape.vertices.front().world;
  if (!shape.isClosed && first != shape.vertices.back().world) {
    return "is not closed";
  }
  for (const PolylineVertex& vertex : shape.vertices) {
    if (!std::isfinite(vertex.world.x) || !std::isfinite(vertex.world.y) ||
        !std::isfinite(vertex.world.z) || !std::isfinite(vertex.bulge)) {
      return kUnreadableNumber;
    }
    if (std::fabs(vertex.world.z - first.z) > AcGeContext::gTol.equalPoint()) {
      return "is not horizontal";
    }
  }
  return "";
}

}  // namespace

double FloorSlab::area() const {
  return 0.5 * plan::doubleAreaOf(flat(top));
}

std::vector<FloorSlab::Face> FloorSlab::faces() const {
  const AcGeVector3d down(0.0, 0.0, -thickness);
  std::vector<Face> faces;
  faces.reserve(2 * triangles.size() + top.size());
  for (const auto& [a, b, c] : triangles) {
    faces.push_back({top[a], top[b], top[c], top[c]});
    faces.push_back({top[c] + down, top[b] + down, top[a] + down, top[a] + down});
  }
  for (std::size_t i = 0; i < top.size(); ++i) {
    const AcGePoint3d& from = top[i];
    const AcGePoint3d& to = top[(i + 1) % top.size()];
    faces.push_back({from + down, to + down, to, from});
  }
  return faces;
}

FloorSlabs collectSlabs(Drawing& drawing, const std::set<std::wstring>& layers, double thickness) {
  FloorSlabs found;
  drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
    const std::wstring layer = hostx::layerName(id);
    if (layers.count(layer) == 0) {
      return;
    }
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk || !isPolyline(*entity.object())) {
      ++found.countOfKind[hostx::kindName(id)];
      return;
    }
    const PolylineShape shape = readPolyline(*entity.object());
    if (const std::string problem = problemOf(shape); !problem.empty()) {
      found.leftOut.push_back({id, problem});
      return;
    }
    std::vector<AcGePoint2d> outline = outlineOf(shape);
    if (plan::doubleAreaOf(outline) < 0.0) {
      std::reverse(outline.begin(), outline.end());
    }
    plan::PolygonMesh mesh = plan::meshOf(outline);
    if (!mesh.problem.empty()) {
      found.leftOut.push_back({id, mesh.problem});
      return;
    }
    FloorSlab slab;
    slab.source = id;
    slab.layer = os::toUtf8(layer);
    slab.name = slab.layer + "_" + handleText(id);
    std::replace(slab.name.begin(), slab.name.end(), ' ', '_');
    slab.top.reserve(outline.size());
    for (const AcGePoint2d& corner : outline) {
      slab.top.emplace_back(corner.x, corner.y, shape.vertices.front().world.z);
    }
    slab.triangles = std::move(mesh.triangles);
    slab.thickness = thickness;
    found.slabs.push_back(std::move(slab));
  });
  return found;
}

}  // namespace quoin::commands
