// AcDbExtents, and the extents of lines, arcs and polylines. Curves in a plane are measured
// under any affine map: the image of an arc is centre + u cos t + v sin t.
#include <cmath>
#include <numbers>

#include "dbsymtb.h"
#include "embedded/db/EntityGeometry.h"
#include "embedded/db/LightVertices.h"
#include "embedded/db/PlaneFields.h"

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
      ExtentsWalk().addBlock(*impl.database, *found, AcGeMatrix3d::kIdentity, own);
    }
    addExt(own);
    return own.isFresh() ? Acad::eNullExtents : Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

namespace quoin::db {
namespace {

constexpr double kTurn = 2.0 * std::numbers::pi;

constexpr int kPoint = 10;
constexpr int kEndPoint = 11;
constexpr int kRadius = 40;
constexpr int kStartAngle = 50;
constexpr int kEndAngle = 51;
constexpr int kStartWidth = 40;
constexpr int kEndWidth = 41;
constexpr int kBulge = 42;
constexpr int kElevation = 38;

/// centre + u cos t + v sin t for t from `start` over `sweep` (0 to a full turn).
struct ArcImage {
  AcGePoint3d center;
  AcGeVector3d u;
  AcGeVector3d v;
  double start = 0.0;
  double sweep = kTurn;

  AcGePoint3d at(double t) const { return center + u * std::cos(t) + v * std::sin(t); }
};

void addArc(const ArcImage& arc, AcDbExtents& box) {
  if (arc.sweep >= kTurn) {
    const AcGeVector3d reach(std::hypot(arc.u.x, arc.v.x), std::hypot(arc.u.y, arc.v.y),
                             std::hypot(arc.u.z, arc.v.z));
    box.addPoint(arc.center - reach);
    box.addPoint(arc.center + reach);
    return;
  }
  box.addPoint(arc.at(arc.start));
  box.addPoint(arc.at(arc.start + arc.sweep));
  for (unsigned int axis = 0; axis < 3; ++axis) {
    const double extreme = std::atan2(arc.v[axis], arc.u[axis]);
    for (const double t : {extreme, extreme + std::numbers::pi}) {
      const double turn = std::fmod(t - arc.start, kTurn);
      if ((turn < 0.0 ? turn + kTurn : turn) < arc.sweep) {
        box.addPoint(arc.at(t));
      }
    }
  }
}

/// Adds a flat shape, and its copy at the other end of the thickness.
void addThick(const AcDbExtents& shape, const AcGeVector3d& thickness, AcDbExtents& box) {
  box.addExt(shape);
  if (!shape.isFresh() && (thickness.x != 0.0 || thickness.y != 0.0 || thickness.z != 0.0)) {
    AcDbExtents other = shape;
    other.expandBy(thickness);
    box.addExt(other);
  }
}

AcGeVector3d thicknessOf(const TagList& tags, TagRange range, const AcGeMatrix3d& toWorld) {
  return toWorld * (normalOf(tags, range) * tags.number(code::kThickness, range, 0.0));
}

/// One segment of a polyline in its plane.
struct Segment {
  AcGePoint3d start;
  AcGePoint3d end;
  double bulge = 0.0;
  double startWidth = 0.0;
  double endWidth = 0.0;
};

void addStraight(const Segment& segment, const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  AcGeVector3d left(segment.start.y - segment.end.y, segment.end.x - segment.start.x, 0.0);
  const double length = left.length();
  left = length > 0.0 ? left / length : AcGeVector3d();
  for (const double side : {-0.5, 0.5}) {
    box.addPoint(toWorld * (segment.start + left * (side * segment.startWidth)));
    box.addPoint(toWorld * (segment.end + left * (side * segment.endWidth)));
  }
}

/// An arc of changing width counts with its greater width throughout.
void addBulged(const Segment& segment, const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  const double bulge = segment.bulge;
  const AcGeVector3d chord = segment.end - segment.start;
  const AcGeVector3d left(-chord.y, chord.x, 0.0);
  const AcGePoint3d center =
      segment.start + chord * 0.5 + left * ((1.0 - bulge * bulge) / (4.0 * bulge));
  const AcGeVector3d toStart = segment.start - center;
  const double side = bulge > 0.0 ? 1.0 : -1.0;
  const AcGeVector3d across(-toStart.y * side, toStart.x * side, 0.0);
  const double radius = toStart.length();
  const double width = std::fmax(segment.startWidth, segment.endWidth);
  const double reach = radius > 0.0 ? 0.5 * width / radius : 0.0;
  for (const double factor : {1.0 - reach, 1.0 + reach}) {
    ArcImage arc{toWorld * center, toWorld * (toStart * factor), toWorld * (across * factor)};
    arc.sweep = 4.0 * std::atan(std::fabs(bulge));
    addArc(arc, box);
  }
}

void addSegment(const Segment& segment, const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  const bool isStraight = segment.bulge == 0.0 || !std::isfinite(1.0 / segment.bulge);
  (isStraight ? addStraight : addBulged)(segment, toWorld, box);
}

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
    arc.start = toRadians(tags.number(kStartAngle, range, 0.0));
    const double sweep =
        std::fmod(toRadians(tags.number(kEndAngle, range, 0.0)) - arc.start, kTurn);
    arc.sweep = sweep > 0.0 ? sweep : sweep + kTurn;
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
  const std::vector<LightVertex> vertices = lightVerticesOf(tags);
  const auto pointOf = [&](const LightVertex& vertex) {
    return AcGePoint3d(vertex.point.x, vertex.point.y, elevation);
  };
  constexpr std::int64_t kClosed = 1;
  const bool isClosed = (tags.integer(code::kFlags, range, 0) & kClosed) != 0;
  AcDbExtents shape;
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    shape.addPoint(plane * pointOf(vertices[i]));
    if (i + 1 < vertices.size() || isClosed) {
      const LightVertex& vertex = vertices[i];
      addSegment({pointOf(vertex), pointOf(vertices[(i + 1) % vertices.size()]), vertex.bulge,
                  vertex.startWidth, vertex.endWidth},
                 plane, shape);
    }
  }
  addThick(shape, thicknessOf(tags, range, toWorld), box);
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfHeavyPolyline(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                         ExtentsWalk&, AcDbExtents& box) {
  constexpr std::int64_t kClosed = 1;
  constexpr std::int64_t kIsSpatial = 8 | 16 | 64;  // 3D polyline, mesh, faces
  constexpr std::int64_t kIsFaceOnly = 128;         // a vertex that lists corners of a face
  constexpr std::int64_t kIsLocation = 64;
  constexpr std::int64_t kIsFrame = 16;
  const TagList& tags = entity.tags;
  const TagRange range = place::kPolyline2d.in(tags);
  const std::int64_t flags = tags.integer(code::kFlags, range, 0);
  const bool isFlat = (flags & kIsSpatial) == 0;
  const AcGeMatrix3d plane = isFlat ? toWorld * planeToWorld(normalOf(tags, range)) : toWorld;
  const double defaultStart = tags.number(kStartWidth, range, 0.0);
  const double defaultEnd = tags.number(kEndWidth, range, 0.0);
  std::vector<Segment> vertices;
  const auto addVertex = [&](const TagList& part) {
    const TagRange own = part.subclassAndBeyond("AcDbVertex");
    const std::int64_t partFlags = part.integer(code::kFlags, own, 0);
    const bool isCorners = (partFlags & kIsFaceOnly) && !(partFlags & kIsLocation);
    if (isCorners || (partFlags & kIsFrame)) {
      return;
    }
    Segment& vertex = vertices.emplace_back();
    vertex.start = part.point(kPoint, own);
    if (isFlat) {
      vertex.bulge = part.number(kBulge, own, 0.0);
      vertex.startWidth = part.number(kStartWidth, own, defaultStart);
      vertex.endWidth = part.number(kEndWidth, own, defaultEnd);
    }
  };
  if (entity.stub) {
    forEachPart(*entity.stub, addVertex);
  } else if (entity.object) {
    forEachPart(*entity.object, addVertex);
  }
  AcDbExtents shape;
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    shape.addPoint(plane * vertices[i].start);
    if (isFlat && (i + 1 < vertices.size() || (flags & kClosed))) {
      Segment segment = vertices[i];
      segment.end = vertices[(i + 1) % vertices.size()].start;
      addSegment(segment, plane, shape);
    }
  }
  addThick(shape, isFlat ? thicknessOf(tags, range, toWorld) : AcGeVector3d(), box);
  return Acad::eOk;
}

}  // namespace quoin::db
