#include "commands/Polylines.h"

#include <functional>

#include "acutmem.h"
#include "commands/CommandError.h"
#include "dbobjptr.h"

namespace quoin::commands {

namespace {

/// Calls `visit` for each vertex entity of a polyline, opened in a mode, in a database or not.
template <class Vertex, class Polyline>
void forEachVertex(const Polyline& polyline, AcDb::OpenMode mode,
                   const std::function<void(Vertex&)>& visit) {
  const std::unique_ptr<AcDbObjectIterator> iterator(polyline.vertexIterator());
  for (; iterator && !iterator->done(); iterator->step()) {
    if (Vertex* own = Vertex::cast(iterator->entity())) {
      visit(*own);
      continue;
    }
    AcDbObjectPointer<Vertex> vertex(iterator->objectId(), mode);
    if (vertex.openStatus() == Acad::eOk) {
      visit(*vertex.object());
    }
  }
}

PolylineShape readLight(const AcDbPolyline& polyline) {
  PolylineShape shape;
  shape.isClosed = polyline.isClosed();
  shape.thickness = polyline.thickness();
  shape.normal = polyline.normal();
  for (unsigned int i = 0; i < polyline.numVerts(); ++i) {
    PolylineVertex vertex;
    AcGePoint2d own;
    polyline.getPointAt(i, vertex.world);
    polyline.getPointAt(i, own);
    polyline.getBulgeAt(i, vertex.bulge);
    polyline.getWidthsAt(i, vertex.startWidth, vertex.endWidth);
    vertex.own.set(own.x, own.y, 0.0);
    shape.vertices.push_back(vertex);
  }
  return shape;
}

PolylineShape readHeavy2d(const AcDb2dPolyline& polyline) {
  PolylineShape shape;
  shape.isClosed = polyline.isClosed();
  shape.isCurveFit = polyline.polyType() != AcDb::k2dSimplePoly;
  shape.thickness = polyline.thickness();
  shape.normal = polyline.normal();
  forEachVertex<AcDb2dVertex>(polyline, AcDb::kForRead, [&](AcDb2dVertex& entity) {
    shape.vertices.push_back({polyline.vertexPosition(entity), entity.position(), entity.bulge(),
                              entity.startWidth(), entity.endWidth()});
  });
  return shape;
}

PolylineShape readHeavy3d(const AcDb3dPolyline& polyline) {
  PolylineShape shape;
  shape.isClosed = polyline.isClosed();
  shape.isCurveFit = polyline.polyType() != AcDb::k3dSimplePoly;
  forEachVertex<AcDb3dPolylineVertex>(polyline, AcDb::kForRead, [&](AcDb3dPolylineVertex& entity) {
    shape.vertices.push_back({entity.position(), entity.position(), 0.0, 0.0, 0.0});
  });
  return shape;
}

void setVertex(AcDb2dVertex& entity, const PolylineVertex& vertex) {
  // Only what differs is written, so that the rest of the record stays as it is spelled.
  entity.setPosition(vertex.own);
  entity.setBulge(vertex.bulge);
  if (entity.startWidth() != vertex.startWidth) {
    entity.setStartWidth(vertex.startWidth);
  }
  if (entity.endWidth() != vertex.endWidth) {
    entity.setEndWidth(vertex.endWidth);
  }
}

void setVertex(AcDb3dPolylineVertex& entity, const PolylineVertex& vertex) {
  entity.setPosition(vertex.own);
}

/// Gives the first vertices these values and erases the others.
template <class Vertex, class Polyline>
Acad::ErrorStatus reduceHeavy(Polyline& polyline, const std::vector<PolylineVertex>& vertices) {
  std::size_t number = 0;
  Acad::ErrorStatus status = Acad::eOk;
  forEachVertex<Vertex>(polyline, AcDb::kForWrite, [&](Vertex& entity) {
    if (number < vertices.size()) {
      setVertex(entity, vertices[number]);
    } else if (const Acad::ErrorStatus erased = entity.erase(); erased != Acad::eOk) {
      status = erased;
    }
    ++number;
  });
  const Acad::ErrorStatus opened = polyline.isClosed() ? polyline.makeOpen() : Acad::eOk;
  return status != Acad::eOk ? status : opened;
}

Acad::ErrorStatus reduceLight(AcDbPolyline& polyline, const std::vector<PolylineVertex>& vertices) {
  while (polyline.numVerts() > vertices.size()) {
    const Acad::ErrorStatus status = polyline.removeVertexAt(polyline.numVerts() - 1);
    if (status != Acad::eOk) {
      return status;
    }
  }
  const PolylineShape before = readLight(polyline);
  for (unsigned int i = 0; i < polyline.numVerts(); ++i) {
    // Only what differs is written, so that the rest of the record stays as it is spelled.
    const PolylineVertex& is = before.vertices[i];
    const PolylineVertex& wanted = vertices[i];
    if (is.own.x != wanted.own.x || is.own.y != wanted.own.y) {
      polyline.setPointAt(i, AcGePoint2d(wanted.own.x, wanted.own.y));
    }
    if (is.bulge != wanted.bulge) {
      polyline.setBulgeAt(i, wanted.bulge);
    }
    if (is.startWidth != wanted.startWidth || is.endWidth != wanted.endWidth) {
      polyline.setWidthsAt(i, wanted.startWidth, wanted.endWidth);
    }
  }
  if (polyline.isClosed()) {
    polyline.setClosed(false);
  }
  return Acad::eOk;
}

}  // namespace

std::size_t PolylineShape::segmentCount() const {
  if (vertices.size() < 2) {
    return 0;
  }
  return isClosed ? vertices.size() : vertices.size() - 1;
}

const PolylineVertex& PolylineShape::segmentEnd(std::size_t segment) const {
  return vertices[(segment + 1) % vertices.size()];
}

bool isPolyline(const AcDbEntity& entity) {
  return entity.isKindOf(AcDbPolyline::desc()) || entity.isKindOf(AcDb2dPolyline::desc()) ||
         entity.isKindOf(AcDb3dPolyline::desc());
}

PolylineShape readPolyline(const AcDbEntity& entity) {
  if (const AcDbPolyline* light = AcDbPolyline::cast(&entity)) {
    return readLight(*light);
  }
  if (const AcDb2dPolyline* heavy = AcDb2dPolyline::cast(&entity)) {
    return readHeavy2d(*heavy);
  }
  return readHeavy3d(*AcDb3dPolyline::cast(&entity));
}

void reducePolyline(AcDbEntity& entity, const std::vector<PolylineVertex>& vertices,
                    const Drawing& drawing) {
  Acad::ErrorStatus status = Acad::eNotApplicable;
  if (AcDbPolyline* light = AcDbPolyline::cast(&entity)) {
    status = reduceLight(*light, vertices);
  } else if (AcDb2dPolyline* flat = AcDb2dPolyline::cast(&entity)) {
    status = reduceHeavy<AcDb2dVertex>(*flat, vertices);
  } else if (AcDb3dPolyline* spatial = AcDb3dPolyline::cast(&entity)) {
    status = reduceHeavy<AcDb3dPolylineVertex>(*spatial, vertices);
  }
  check(status, drawing, entity.objectId(), "take a segment out of the polyline");
}

std::unique_ptr<AcDbEntity> makePolylineLike(const AcDbEntity& entity,
                                             const std::vector<PolylineVertex>& vertices) {
  if (entity.isKindOf(AcDbPolyline::desc())) {
    // A clone keeps what a light polyline has beyond its vertices: elevation, widths, flags.
    std::unique_ptr<AcDbPolyline> copy(static_cast<AcDbPolyline*>(entity.clone()));
    reduceLight(*copy, vertices);
    return copy;
  }
  if (const AcDb2dPolyline* flat = AcDb2dPolyline::cast(&entity)) {
    auto copy = std::make_unique<AcDb2dPolyline>();
    copyPropertiesAndXData(*copy, entity);
    copy->setElevation(flat->elevation());
    copy->setThickness(flat->thickness());
    copy->setNormal(flat->normal());
    for (const PolylineVertex& vertex : vertices) {
      auto made = std::make_unique<AcDb2dVertex>(vertex.own, vertex.bulge, vertex.startWidth,
                                                 vertex.endWidth);
      made->setPropertiesFrom(&entity);
      copy->appendVertex(made.release());
    }
    return copy;
  }
  auto copy = std::make_unique<AcDb3dPolyline>();
  copyPropertiesAndXData(*copy, entity);
  for (const PolylineVertex& vertex : vertices) {
    auto made = std::make_unique<AcDb3dPolylineVertex>(vertex.own);
    made->setPropertiesFrom(&entity);
    copy->appendVertex(made.release());
  }
  return copy;
}

void copyPropertiesAndXData(AcDbEntity& target, const AcDbEntity& source) {
  target.setPropertiesFrom(&source);
  if (resbuf* data = source.xData()) {
    target.setXData(data);
    acutRelRb(data);
  }
}

}  // namespace quoin::commands
