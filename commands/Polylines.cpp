#include "commands/Polylines.h"

#include <bit>
#include <functional>
#include <new>
#include <span>

#include "acutmem.h"
#include "commands/CommandError.h"
#include "dbobjptr.h"
#include "hostpolyline.h"

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

Acad::ErrorStatus reduceLight(AcDbPolyline& polyline, std::span<const PolylineVertex> vertices) {
  std::vector<hostx::LightPolylineVertex> wanted;
  wanted.reserve(vertices.size());
  for (const PolylineVertex& vertex : vertices) {
    wanted.push_back({AcGePoint2d(vertex.own.x, vertex.own.y), vertex.bulge, vertex.startWidth,
                      vertex.endWidth});
  }
  const Acad::ErrorStatus status = hostx::reduceVertices(polyline, wanted);
  if (status == Acad::eOk && polyline.isClosed()) {
    polyline.setClosed(false);
  }
  return status;
}

template <class Entity>
std::unique_ptr<Entity> cloneOf(const Entity& entity) {
  std::unique_ptr<Entity> copy(static_cast<Entity*>(entity.clone()));
  if (!copy) {
    throw std::bad_alloc();
  }
  return copy;
}

/// Layer, colour, linetype, line weight and the like, and extended data.
void copyPropertiesAndXData(AcDbEntity& target, const AcDbEntity& source) {
  target.setPropertiesFrom(&source);
  if (resbuf* data = source.xData()) {
    target.setXData(data);
    acutRelRb(data);
  }
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

// --- parts ------------------------------------------------------------------------------------

PolylineParts::PolylineParts(const AcDbEntity& polyline, const PolylineShape& shape,
                             const Drawing& drawing)
    : m_polyline(polyline), m_shape(shape), m_drawing(drawing) {}

void PolylineParts::reduce(AcDbPolyline& copy, std::span<const PolylineVertex> vertices) const {
  check(reduceLight(copy, vertices), m_drawing, m_polyline.objectId(),
        "make a part of the polyline");
}

std::unique_ptr<AcDbPolyline> PolylineParts::cloneOfAtLeast(std::size_t count) {
  const AcDbPolyline& whole = *AcDbPolyline::cast(&m_polyline);
  const std::size_t length = std::bit_ceil(count);
  if (length >= m_shape.vertices.size()) {
    return cloneOf(whole);
  }
  std::unique_ptr<AcDbPolyline>& shortened = m_shortened[length];
  if (!shortened) {
    shortened = cloneOf(whole);
    reduce(*shortened, std::span(m_shape.vertices).first(length));
  }
  return cloneOf(*shortened);
}

template <class Vertex, class Polyline>
void PolylineParts::appendVertices(Polyline& copy, const std::vector<PolylineVertex>& vertices) {
  if (!m_vertex) {
    m_vertex = std::make_unique<Vertex>();
    m_vertex->setPropertiesFrom(&m_polyline);
  }
  for (const PolylineVertex& vertex : vertices) {
    std::unique_ptr<Vertex> made = cloneOf(*Vertex::cast(m_vertex.get()));
    setVertex(*made, vertex);
    copy.appendVertex(made.release());
  }
}

std::unique_ptr<AcDbEntity> PolylineParts::polyline(const std::vector<PolylineVertex>& vertices) {
  if (m_polyline.isKindOf(AcDbPolyline::desc())) {
    // A clone keeps what a light polyline has beyond its vertices: elevation, widths, flags.
    std::unique_ptr<AcDbPolyline> copy = cloneOfAtLeast(vertices.size());
    reduce(*copy, vertices);
    return copy;
  }
  if (const AcDb2dPolyline* flat = AcDb2dPolyline::cast(&m_polyline)) {
    auto copy = std::make_unique<AcDb2dPolyline>();
    copyPropertiesAndXData(*copy, m_polyline);
    copy->setElevation(flat->elevation());
    copy->setThickness(flat->thickness());
    copy->setNormal(flat->normal());
    appendVertices<AcDb2dVertex>(*copy, vertices);
    return copy;
  }
  auto copy = std::make_unique<AcDb3dPolyline>();
  copyPropertiesAndXData(*copy, m_polyline);
  appendVertices<AcDb3dPolylineVertex>(*copy, vertices);
  return copy;
}

std::unique_ptr<AcDbLine> PolylineParts::line(const AcGePoint3d& start, const AcGePoint3d& end) {
  if (!m_line) {
    m_line = std::make_unique<AcDbLine>();
    copyPropertiesAndXData(*m_line, m_polyline);
    if (m_shape.thickness != 0.0) {
      m_line->setThickness(m_shape.thickness);
      m_line->setNormal(m_shape.normal);
    }
  }
  std::unique_ptr<AcDbLine> copy = cloneOf(*m_line);
  copy->setStartPoint(start);
  copy->setEndPoint(end);
  return copy;
}

}  // namespace quoin::commands
