// AcDbExtents, and the extents of lines, arcs and polylines. Curves in a plane are measured
// under any affine map: the image of an arc is centre + u cos t + v sin t.
#include <cmath>
#include <optional>

#include "dbsymtb.h"
#include "embedded/db/ExtentsShapes.h"
#include "embedded/db/LightVertices.h"
#include "embedded/db/PlaneFields.h"
#include "embedded/db/PolylineKind.h"

// --- AcDbExtents ----------------------------------------------------------------------------

Acad::ErrorStatus AcDbExtents::set(const AcGePoint3d& minPoint, const AcGePoint3d& maxPoint) {
  if (!(minPoint.x <= maxPoint.x && minPoint.y <= maxPoint.y && minPoint.z <= maxPoint.z)) {
    return Acad::eInvalidInput;
  }
  m_min = minPoint;
  m_max = maxPoint;
  return Acad::eOk;
}

void AcDbExtents::addPoint(const AcGePoint3d& point) {
  for (unsigned int axis = 0; axis < 3; ++axis) {
    if (point[axis] < m_min[axis]) {
      m_min[axis] = point[axis];
    }
    if (point[axis] > m_max[axis]) {
      m_max[axis] = point[axis];
    }
  }
}

void AcDbExtents::addExt(const AcDbExtents& other) {
  if (!other.isFresh()) {
    addPoint(other.m_min);
    addPoint(other.m_max);
  }
}

void AcDbExtents::expandBy(const AcGeVector3d& move) {
  if (!isFresh()) {
    const AcGePoint3d low = m_min + move;
    const AcGePoint3d high = m_max + move;
    addPoint(low);
    addPoint(high);
  }
}

void AcDbExtents::transformBy(const AcGeMatrix3d& matrix) {
  if (isFresh()) {
    return;
  }
  const AcDbExtents before = *this;
  *this = AcDbExtents();
  for (int corner = 0; corner < 8; ++corner) {
    addPoint(matrix * AcGePoint3d(corner & 1 ? before.m_max.x : before.m_min.x,
                                  corner & 2 ? before.m_max.y : before.m_min.y,
                                  corner & 4 ? before.m_max.z : before.m_min.z));
  }
}

Acad::ErrorStatus AcDbExtents::addBlockExt(AcDbBlockTableRecord* block) {
  if (!block) {
    return Acad::eNullObjectPointer;
  }
  using namespace quoin::db;
  try {
    const ObjectImpl& impl = Access::of(*block);
    const quoin::dxf::Block* const found =
        impl.stub ? impl.database->store.blockOf(*impl.stub) : nullptr;
    AcDbExtents own;
    if (found) {
      ExtentsWalk(impl.database).addBlock(*found, own);
    }
    addExt(own);
    return own.isFresh() ? Acad::eNullExtents : Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

namespace quoin::db {
namespace {

constexpr int kPoint = 10;
constexpr int kEndPoint = 11;
constexpr int kRadius = 40;
constexpr int kStartAngle = 50;
constexpr int kEndAngle = 51;
constexpr int kElevation = 38;

}  // namespace

Acad::ErrorStatus extentsOfPoint(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  const TagRange range = place::kPoint.in(entity.tags);
  AcDbExtents shape;
  shape.addPoint(toWorld * entity.tags.point(kPoint, range));
  addThick(shape, thicknessOf(entity.tags, range, toWorld), box);
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfLine(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                AcDbExtents& box) {
  const TagRange range = place::kLine.in(entity.tags);
  AcDbExtents shape;
  shape.addPoint(toWorld * entity.tags.point(kPoint, range));
  shape.addPoint(toWorld * entity.tags.point(kEndPoint, range));
  addThick(shape, thicknessOf(entity.tags, range, toWorld), box);
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfFace(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                AcDbExtents& box) {
  const TagRange range = place::kFace.in(entity.tags);
  for (const int corner : {10, 11, 12, 13}) {
    if (entity.tags.find(corner, range) != TagList::kNone) {
      box.addPoint(toWorld * entity.tags.point(corner, range));
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfArc(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                               AcDbExtents& box) {
  const TagList& tags = entity.tags;
  const TagRange range = place::kCircle.in(tags);
  const AcGeMatrix3d plane = toWorld * planeToWorld(normalOf(tags, range));
  const double radius = tags.number(kRadius, range, 0.0);
  ArcImage arc{plane * tags.point(kPoint, range), plane * (AcGeVector3d::kXAxis * radius),
               plane * (AcGeVector3d::kYAxis * radius)};
  if (tags.find(kStartAngle, range) != TagList::kNone) {
    arc.setRange(toRadians(tags.number(kStartAngle, range, 0.0)),
                 toRadians(tags.number(kEndAngle, range, 0.0)));
  }
  AcDbExtents shape;
  addArc(arc, shape);
  addThick(shape, thicknessOf(tags, range, toWorld), box);
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfCircle(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                  ExtentsWalk& walk, AcDbExtents& box) {
  return extentsOfArc(entity, toWorld, walk, box);
}

Acad::ErrorStatus extentsOfPolyline(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                    AcDbExtents& box) {
  const TagList& tags = entity.tags;
  const TagRange range = place::kPolyline.in(tags);
  const AcGeMatrix3d plane = toWorld * planeToWorld(normalOf(tags, range));
  const double elevation = tags.number(kElevation, range, 0.0);
  const auto addBetween = [&](const LightVertex& from, const LightVertex& to, AcDbExtents& shape) {
    addSegment({{from.point.x, from.point.y, elevation},
                {to.point.x, to.point.y, elevation},
                from.bulge,
                from.startWidth,
                from.endWidth},
               plane, shape);
  };
  constexpr std::int64_t kClosed = 1;
  const bool isClosed = (tags.integer(code::kFlags, range, 0) & kClosed) != 0;
  AcDbExtents shape;
  std::optional<LightVertex> first;
  LightVertex last;
  forEachLightVertex(tags, [&](const LightVertex& vertex) {
    if (first) {
      addBetween(last, vertex, shape);
    } else {
      first = vertex;
    }
    shape.addPoint(plane * AcGePoint3d(vertex.point.x, vertex.point.y, elevation));
    last = vertex;
  });
  if (first && isClosed) {
    addBetween(last, *first, shape);
  }
  addThick(shape, thicknessOf(tags, range, toWorld), box);
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfHeavyPolyline(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                         ExtentsWalk&, AcDbExtents& box) {
  constexpr std::int64_t kClosed = 1;
  constexpr std::int64_t kIsFaceOnly = 128;  // a vertex that lists corners of a face
  constexpr std::int64_t kIsLocation = 64;
  constexpr std::int64_t kIsFrame = 16;
  const TagList& tags = entity.tags;
  const TagRange range = place::kPolyline2d.in(tags);
  const std::int64_t flags = tags.integer(code::kFlags, range, 0);
  const bool isFlat = polylineKindOf(tags) == PolylineKind::Flat;
  const AcGeMatrix3d plane = isFlat ? toWorld * planeToWorld(normalOf(tags, range)) : toWorld;
  const double defaultStart = tags.number(code::kStartWidth, range, 0.0);
  const double defaultEnd = tags.number(code::kEndWidth, range, 0.0);
  AcDbExtents shape;
  std::optional<Segment> first;
  Segment last;
  const auto addVertex = [&](const TagList& part) {
    const TagRange own = part.subclassAndBeyond("AcDbVertex");
    const std::int64_t partFlags = part.integer(code::kFlags, own, 0);
    const bool isCorners = (partFlags & kIsFaceOnly) && !(partFlags & kIsLocation);
    if (isCorners || (partFlags & kIsFrame)) {
      return;
    }
    Segment vertex;
    vertex.start = part.point(kPoint, own);
    if (isFlat) {
      vertex.bulge = part.number(code::kBulge, own, 0.0);
      vertex.startWidth = part.number(code::kStartWidth, own, defaultStart);
      vertex.endWidth = part.number(code::kEndWidth, own, defaultEnd);
    }
    if (!first) {
      first = vertex;
    } else if (isFlat) {
      last.end = vertex.start;
      addSegment(last, plane, shape);
    }
    shape.addPoint(plane * vertex.start);
    last = vertex;
  };
  if (entity.stub) {
    forEachPart(*entity.stub, addVertex);
  } else if (entity.object) {
    forEachPart(*entity.object, addVertex);
  }
  if (first && isFlat && (flags & kClosed)) {
    last.end = first->start;
    addSegment(last, plane, shape);
  }
  addThick(shape, isFlat ? thicknessOf(tags, range, toWorld) : AcGeVector3d(), box);
  return Acad::eOk;
}

}  // namespace quoin::db
