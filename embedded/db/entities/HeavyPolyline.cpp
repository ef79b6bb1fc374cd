// POLYLINE, VERTEX and SEQEND: polylines whose vertices are records of their own, and those
// vertices.
#include <optional>

#include "dbents.h"
#include "embedded/db/core/Append.h"
#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/entities/HeavyPolylineDraw.h"
#include "embedded/db/entities/PolylineKind.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/PlaneTransform.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbVertex, AcDbEntity)
ACRX_DXF_CONS_DEFINE_MEMBERS(AcDb2dVertex, AcDbVertex, L"VERTEX", L"ObjectDBX Classes")
ACRX_DXF_CONS_DEFINE_MEMBERS(AcDb3dPolylineVertex, AcDbVertex, L"VERTEX", L"ObjectDBX Classes")
ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbSequenceEnd, AcDbEntity, L"SEQEND", L"ObjectDBX Classes")
ACRX_DXF_CONS_DEFINE_MEMBERS(AcDb2dPolyline, AcDbCurve, L"POLYLINE", L"ObjectDBX Classes")
ACRX_DXF_CONS_DEFINE_MEMBERS(AcDb3dPolyline, AcDbCurve, L"POLYLINE", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {

constexpr int kPosition = 10;
constexpr int kElevation = 30;  // z of the polyline's point, whose x and y mean nothing
constexpr int kCurveType = 75;
constexpr std::int64_t kQuadratic = 5;

// Flags of a polyline.
constexpr std::int64_t kClosed = 1;
constexpr std::int64_t kCurveFit = 2;
constexpr std::int64_t kSplineFit = 4;
// Flags of a vertex.
constexpr std::int64_t kAddedByCurveFit = 1;
constexpr std::int64_t kAddedBySplineFit = 8;
constexpr std::int64_t kSplineFrame = 16;

/// The width of vertices that name none: their polyline's.
double usualWidth(const AcDb2dVertex& vertex, int code) {
  const ObjectImpl& impl = Access::of(vertex);
  const AcDbStub* const owner = impl.stub ? impl.stub->owner : nullptr;
  if (owner && impl.database->kindOf(*owner) == "POLYLINE") {
    const TagList tags = impl.database->tagsOf(*owner);
    return tags.number(code, layout::kPolyline2d.in(tags), 0.0);
  }
  return impl.own().partOf ? numberOf(*impl.own().partOf, layout::kPolyline2d, code) : 0.0;
}

double widthOf(const AcDb2dVertex& vertex, int code) {
  const TagList& tags = tagsOf(vertex);
  const std::size_t index = tags.find(code, layout::kVertex2d.in(tags));
  return index == TagList::kNone ? usualWidth(vertex, code) : tags.doubleAt(index);
}

/// The vertex at one end of a polyline that lies on its curve.
Acad::ErrorStatus vertexAtEnd(const AcDbObject& polyline, bool atStart, AcGePoint3d& position) {
  Acad::ErrorStatus status = Acad::eDegenerateGeometry;
  try {
    forEachPart(polyline, [&](const TagList& tags) {
      const bool isFrame = (tags.integer(code::kFlags, tags.body(), 0) & kSplineFrame) != 0;
      if (!isFrame && (!atStart || status != Acad::eOk)) {
        position = tags.point(kPosition, tags.subclassAndBeyond("AcDbVertex"));
        status = Acad::eOk;
      }
    });
    return status;
  } catch (...) {
    return statusOfException();
  }
}

}  // namespace

// --- vertices -------------------------------------------------------------------------------

AcDbVertex::AcDbVertex() = default;
AcDb2dVertex::AcDb2dVertex() = default;

AcDb2dVertex::AcDb2dVertex(const AcGePoint3d& position, double bulge, double startWidth,
                           double endWidth) {
  setPosition(position);
  setBulge(bulge);
  setStartWidth(startWidth);
  setEndWidth(endWidth);
}

AcDb::Vertex2dType AcDb2dVertex::vertexType() const {
  const std::int64_t flags = integerOf(*this, layout::kVertex2d, code::kFlags);
  return (flags & kSplineFrame)        ? AcDb::k2dSplineCtlVertex
         : (flags & kAddedBySplineFit) ? AcDb::k2dSplineFitVertex
         : (flags & kAddedByCurveFit)  ? AcDb::k2dCurveFitVertex
                                       : AcDb::k2dVertex;
}

AcGePoint3d AcDb2dVertex::position() const {
  return pointOf(*this, layout::kVertex2d, kPosition);
}

Acad::ErrorStatus AcDb2dVertex::setPosition(const AcGePoint3d& position) {
  return setPoint(*this, layout::kVertex2d, kPosition, position);
}

double AcDb2dVertex::bulge() const {
  return numberOf(*this, layout::kVertex2d, code::kBulge);
}

Acad::ErrorStatus AcDb2dVertex::setBulge(double bulge) {
  return setNumber(*this, layout::kVertex2d, code::kBulge, bulge, 0.0);
}

double AcDb2dVertex::startWidth() const {
  return widthOf(*this, code::kStartWidth);
}

Acad::ErrorStatus AcDb2dVertex::setStartWidth(double width) {
  return setNumber(*this, layout::kVertex2d, code::kStartWidth, width,
                   usualWidth(*this, code::kStartWidth));
}

double AcDb2dVertex::endWidth() const {
  return widthOf(*this, code::kEndWidth);
}

Acad::ErrorStatus AcDb2dVertex::setEndWidth(double width) {
  return setNumber(*this, layout::kVertex2d, code::kEndWidth, width,
                   usualWidth(*this, code::kEndWidth));
}

AcDb3dPolylineVertex::AcDb3dPolylineVertex() = default;

AcDb3dPolylineVertex::AcDb3dPolylineVertex(const AcGePoint3d& position) {
  setPosition(position);
}

AcDb::Vertex3dType AcDb3dPolylineVertex::vertexType() const {
  const std::int64_t flags = integerOf(*this, layout::kVertex3d, code::kFlags);
  return (flags & kSplineFrame)        ? AcDb::k3dControlVertex
         : (flags & kAddedBySplineFit) ? AcDb::k3dFitVertex
                                       : AcDb::k3dSimpleVertex;
}

AcGePoint3d AcDb3dPolylineVertex::position() const {
  return pointOf(*this, layout::kVertex3d, kPosition);
}

Acad::ErrorStatus AcDb3dPolylineVertex::setPosition(const AcGePoint3d& position) {
  return setPoint(*this, layout::kVertex3d, kPosition, position);
}

AcDbSequenceEnd::AcDbSequenceEnd() = default;

// --- 2D polylines ---------------------------------------------------------------------------

AcDb2dPolyline::AcDb2dPolyline() = default;

AcDb2dPolyline::AcDb2dPolyline(const AcGePoint3dArray& vertices, double elevation, bool closed,
                               const double* bulges) {
  setElevation(elevation);
  if (closed) {
    makeClosed();
  }
  for (int i = 0; i < vertices.length(); ++i) {
    appendVertex(new AcDb2dVertex(AcGePoint3d(vertices[i].x, vertices[i].y, elevation),
                                  bulges ? bulges[i] : 0.0));
  }
}

AcDb::Poly2dType AcDb2dPolyline::polyType() const {
  const std::int64_t flags = integerOf(*this, layout::kPolyline2d, code::kFlags);
  if (flags & kSplineFit) {
    const bool isQuadratic = integerOf(*this, layout::kPolyline2d, kCurveType) == kQuadratic;
    return isQuadratic ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly;
  }
  return flags & kCurveFit ? AcDb::k2dFitCurvePoly : AcDb::k2dSimplePoly;
}

Adesk::Boolean AcDb2dPolyline::isClosed() const {
  return (integerOf(*this, layout::kPolyline2d, code::kFlags) & kClosed) != 0;
}

Acad::ErrorStatus AcDb2dPolyline::makeClosed() {
  return setFlag(*this, layout::kPolyline2d, code::kFlags, kClosed, true);
}

Acad::ErrorStatus AcDb2dPolyline::makeOpen() {
  return setFlag(*this, layout::kPolyline2d, code::kFlags, kClosed, false);
}

double AcDb2dPolyline::elevation() const {
  return numberOf(*this, layout::kPolyline2d, kElevation);
}

Acad::ErrorStatus AcDb2dPolyline::setElevation(double elevation) {
  return setNumber(*this, layout::kPolyline2d, kElevation, elevation, 0.0);
}

double AcDb2dPolyline::thickness() const {
  return numberOf(*this, layout::kPolyline2d, code::kThickness);
}

Acad::ErrorStatus AcDb2dPolyline::setThickness(double thickness) {
  return setNumber(*this, layout::kPolyline2d, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDb2dPolyline::normal() const {
  return normalOf(*this, layout::kPolyline2d);
}

Acad::ErrorStatus AcDb2dPolyline::setNormal(const AcGeVector3d& normal) {
  return quoin::db::setNormal(*this, layout::kPolyline2d, normal);
}

double AcDb2dPolyline::defaultStartWidth() const {
  return numberOf(*this, layout::kPolyline2d, code::kStartWidth);
}

double AcDb2dPolyline::defaultEndWidth() const {
  return numberOf(*this, layout::kPolyline2d, code::kEndWidth);
}

AcGePoint3d AcDb2dPolyline::vertexPosition(const AcDb2dVertex& vertex) const {
  return planeToWorld(normal()) * vertex.position();
}

AcDbObjectIterator* AcDb2dPolyline::vertexIterator() const {
  return Access::newPartIterator(*this);
}

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDbObjectId& id, AcDb2dVertex* vertex) {
  return appendPart(*this, id, vertex);
}

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDb2dVertex* vertex) {
  AcDbObjectId id;
  return appendPart(*this, id, vertex);
}

Acad::ErrorStatus AcDb2dPolyline::getStartPoint(AcGePoint3d& point) const {
  const Acad::ErrorStatus status = vertexAtEnd(*this, true, point);
  point = status == Acad::eOk ? planeToWorld(normal()) * point : point;
  return status;
}

Acad::ErrorStatus AcDb2dPolyline::getEndPoint(AcGePoint3d& point) const {
  const Acad::ErrorStatus status = vertexAtEnd(*this, isClosed(), point);
  point = status == Acad::eOk ? planeToWorld(normal()) * point : point;
  return status;
}

// --- 3D polylines ---------------------------------------------------------------------------

AcDb3dPolyline::AcDb3dPolyline() = default;

AcDb3dPolyline::AcDb3dPolyline(const AcGePoint3dArray& vertices, bool closed) {
  if (closed) {
    makeClosed();
  }
  for (const AcGePoint3d& vertex : vertices) {
    appendVertex(new AcDb3dPolylineVertex(vertex));
  }
}

AcDb::Poly3dType AcDb3dPolyline::polyType() const {
  if ((integerOf(*this, layout::kPolyline3d, code::kFlags) & kSplineFit) == 0) {
    return AcDb::k3dSimplePoly;
  }
  const bool isQuadratic = integerOf(*this, layout::kPolyline3d, kCurveType) == kQuadratic;
  return isQuadratic ? AcDb::k3dQuadSplinePoly : AcDb::k3dCubicSplinePoly;
}

Adesk::Boolean AcDb3dPolyline::isClosed() const {
  return (integerOf(*this, layout::kPolyline3d, code::kFlags) & kClosed) != 0;
}

Acad::ErrorStatus AcDb3dPolyline::makeClosed() {
  return setFlag(*this, layout::kPolyline3d, code::kFlags, kClosed, true);
}

Acad::ErrorStatus AcDb3dPolyline::makeOpen() {
  return setFlag(*this, layout::kPolyline3d, code::kFlags, kClosed, false);
}

AcDbObjectIterator* AcDb3dPolyline::vertexIterator() const {
  return Access::newPartIterator(*this);
}

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDbObjectId& id, AcDb3dPolylineVertex* vertex) {
  return appendPart(*this, id, vertex);
}

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDb3dPolylineVertex* vertex) {
  AcDbObjectId id;
  return appendPart(*this, id, vertex);
}

Acad::ErrorStatus AcDb3dPolyline::getStartPoint(AcGePoint3d& point) const {
  return vertexAtEnd(*this, true, point);
}

Acad::ErrorStatus AcDb3dPolyline::getEndPoint(AcGePoint3d& point) const {
  return vertexAtEnd(*this, isClosed(), point);
}

namespace quoin::db {
namespace {

/// Whether a vertex of a mesh lists the corners of a face and has no place itself.
bool isFaceOnly(std::int64_t flags) {
  constexpr std::int64_t kIsLocation = 64;
  constexpr std::int64_t kIsFace = 128;
  return (flags & kIsFace) && !(flags & kIsLocation);
}

Acad::ErrorStatus extentsOfHeavyPolyline(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                         ExtentsWalk&, AcDbExtents& box) {
  const TagList& tags = entity.tags;
  const TagRange range = layout::kPolyline2d.in(tags);
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
    if (isFaceOnly(partFlags) || (partFlags & kSplineFrame)) {
      return;
    }
    Segment vertex;
    vertex.start = part.point(kPosition, own);
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

Acad::ErrorStatus transformHeavyPolyline(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  if (polylineKindOf(tags) != PolylineKind::Flat) {
    return Acad::eOk;  // its vertices say everything
  }
  const TagRange range = layout::kPolyline2d.in(tags);
  const PlaneMap plane = planeOf(tags, layout::kPolyline2d, matrix);
  const AcGePoint3d height(0.0, 0.0, tags.number(kElevation, range, 0.0));
  edit.setDouble(layout::kPolyline2d, kElevation, (plane.map * height).z, 0.0);
  edit.scaleDouble(layout::kPolyline2d, code::kStartWidth, plane.scale);
  edit.scaleDouble(layout::kPolyline2d, code::kEndWidth, plane.scale);
  return transformPlane(edit, layout::kPolyline2d, plane);
}

Acad::ErrorStatus transformVertex(RecordEdit& edit, const TagList& owner,
                                  const AcGeMatrix3d& matrix) {
  constexpr int kTangent = 50;
  const TagList& tags = edit.tags();
  const SubclassLayout vertex{"AcDbVertex", order::kVertex, true};
  const TagRange range = vertex.in(tags);
  const std::int64_t flags = tags.integer(code::kFlags, range, 0);
  if (isFaceOnly(flags)) {
    return Acad::eOk;
  }
  const AcGePoint3d point = tags.point(kPosition, range);
  if (polylineKindOf(owner) != PolylineKind::Flat) {
    edit.setPoint(vertex, kPosition, matrix * point);
    return Acad::eOk;
  }
  const PlaneMap plane = planeOf(owner, layout::kPolyline2d, matrix);
  const TagRange ownerRange = layout::kPolyline2d.in(owner);
  const double bulge = tags.number(code::kBulge, range, 0.0);
  const bool isWide =
      tags.number(code::kStartWidth, range, owner.number(code::kStartWidth, ownerRange, 0.0)) !=
          0.0 ||
      tags.number(code::kEndWidth, range, owner.number(code::kEndWidth, ownerRange, 0.0)) != 0.0;
  if ((bulge != 0.0 || isWide) && !plane.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  edit.setPoint(vertex, kPosition, plane.map * point);
  edit.scaleDouble(vertex, code::kStartWidth, plane.scale);
  edit.scaleDouble(vertex, code::kEndWidth, plane.scale);
  edit.scaleDouble(vertex, code::kBulge, plane.isMirrored ? -1.0 : 1.0);
  if (const std::size_t tangent = tags.find(kTangent, range); tangent != TagList::kNone) {
    edit.setAngle(vertex, kTangent, plane.angle(toRadians(tags.doubleAt(tangent))));
  }
  return Acad::eOk;
}

constexpr std::array kVertexCodes{10, 20, 30, 40, 41, 42, 70, 50, 71, 72, 73, 74};
constexpr std::array kFlatSubclasses{kEntitySubclass, Subclass{"AcDb2dPolyline", kNoCodes}};
constexpr std::array kSpatialSubclasses{kEntitySubclass, Subclass{"AcDb3dPolyline", kNoCodes}};
constexpr std::array kFlatVertexSubclasses{kEntitySubclass, Subclass{"AcDbVertex", kNoCodes},
                                           Subclass{"AcDb2dVertex", kVertexCodes}};
constexpr std::array kSpatialVertexSubclasses{kEntitySubclass, Subclass{"AcDbVertex", kNoCodes},
                                              Subclass{"AcDb3dPolylineVertex", kVertexCodes}};
constexpr std::array kEndSubclasses{kEntitySubclass};

// In pairs: flat, spatial. No class shows a mesh.
constexpr std::array kPolylineClasses{
    classRow<AcDb2dPolyline>(
        "0 POLYLINE 100 AcDbEntity 8 0 100 AcDb2dPolyline 66 1 10 0.0 20 0.0 30 0.0 70 0",
        kFlatSubclasses),
    classRow<AcDb3dPolyline>(
        "0 POLYLINE 100 AcDbEntity 8 0 100 AcDb3dPolyline 66 1 10 0.0 20 0.0 30 0.0 70 8",
        kSpatialSubclasses)};
constexpr std::array kVertexClasses{
    classRow<AcDb2dVertex>(
        "0 VERTEX 100 AcDbEntity 8 0 100 AcDbVertex 100 AcDb2dVertex 10 0.0 20 0.0 30 0.0",
        kFlatVertexSubclasses),
    classRow<AcDb3dPolylineVertex>("0 VERTEX 100 AcDbEntity 8 0 100 AcDbVertex "
                                   "100 AcDb3dPolylineVertex 10 0.0 20 0.0 30 0.0 70 32",
                                   kSpatialVertexSubclasses)};
constexpr std::array kEndClasses{
    classRow<AcDbSequenceEnd>("0 SEQEND 100 AcDbEntity 8 0", kEndSubclasses)};

const ClassRow* classFor(PolylineKind kind, std::span<const ClassRow, 2> classes) {
  return kind == PolylineKind::Mesh ? nullptr : &classes[kind == PolylineKind::Spatial ? 1 : 0];
}

const ClassRow* classOfPolyline(const TagList& tags, const AcDbStub*) {
  return classFor(polylineKindOf(tags), kPolylineClasses);
}

/// What a vertex is its polyline says: some writers leave the vertices' flags out. Without its
/// polyline its own flags are all there is.
const ClassRow* classOfVertex(const TagList& tags, const AcDbStub* stub) {
  constexpr std::int64_t kIsSpatial = 32;
  constexpr std::int64_t kIsOfMesh = 64 | 128;
  const std::int64_t flags = tags.integer(code::kFlags, tags.body(), 0);
  if (flags & kIsOfMesh) {
    return nullptr;
  }
  if (stub && stub->role == dxf::Role::SubEntity && stub->owner) {
    const DatabaseImpl& database = DatabaseImpl::of(*stub);
    if (database.kindOf(*stub->owner) == "POLYLINE") {
      return classFor(polylineKindOf(database.tagsOf(*stub->owner)), kVertexClasses);
    }
  }
  return classFor(flags & kIsSpatial ? PolylineKind::Spatial : PolylineKind::Flat, kVertexClasses);
}

constexpr std::array kKinds{
    RecordKind{.name = "POLYLINE",
               .classes = kPolylineClasses,
               .classOf = classOfPolyline,
               .ownCodes = kNoOwnCodes,
               .parts = Parts::Always,
               .isSelfContained = true,
               .extents = extentsOfHeavyPolyline,
               .draw = drawHeavyPolyline,
               .transform = transformHeavyPolyline,
               .transformPart = transformVertex},
    RecordKind{.name = "VERTEX",
               .classes = kVertexClasses,
               .classOf = classOfVertex,
               .ownCodes = kNoOwnCodes},
    RecordKind{.name = "SEQEND", .classes = kEndClasses, .ownCodes = kNoOwnCodes},
};

}  // namespace

const std::span<const RecordKind> kHeavyPolylineRows{kKinds};

}  // namespace quoin::db
