// Polylines whose vertices are records of their own, and those vertices.
#include "dbents.h"
#include "embedded/db/DatabaseImpl.h"
#include "embedded/db/PlaneFields.h"
#include "embedded/db/Transfer.h"

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
    return tags.number(code, place::kPolyline2d.in(tags), 0.0);
  }
  return impl.partOf ? numberOf(*impl.partOf, place::kPolyline2d, code) : 0.0;
}

double widthOf(const AcDb2dVertex& vertex, int code) {
  const TagList& tags = tagsOf(vertex);
  const std::size_t index = tags.find(code, place::kVertex2d.in(tags));
  return index == TagList::kNone ? usualWidth(vertex, code) : tags.doubleAt(index);
}

/// The vertex at one end of a polyline that is part of its course.
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

Acad::ErrorStatus quoin::db::appendPart(AcDbObject& owner, AcDbObjectId& id, AcDbObject* part) {
  id.setNull();
  const Acad::ErrorStatus status = checkWritable(owner);
  if (status != Acad::eOk) {
    return status;
  }
  if (!part) {
    return Acad::eNullObjectPointer;
  }
  ObjectImpl& impl = Access::of(owner);
  ObjectImpl& partImpl = Access::of(*part);
  if (partImpl.state != OpenState::Free || partImpl.partOf) {
    return Acad::eAlreadyInDb;
  }
  try {
    if (impl.stub) {
      appendFreePart(*impl.stub, *part);
      id = AcDbObjectId(partImpl.stub);
    } else {
      impl.parts.emplace_back(part);
      partImpl.partOf = &owner;
    }
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

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
  const std::int64_t flags = integerOf(*this, place::kVertex2d, code::kFlags);
  return (flags & kSplineFrame)        ? AcDb::k2dSplineCtlVertex
         : (flags & kAddedBySplineFit) ? AcDb::k2dSplineFitVertex
         : (flags & kAddedByCurveFit)  ? AcDb::k2dCurveFitVertex
                                       : AcDb::k2dVertex;
}

AcGePoint3d AcDb2dVertex::position() const {
  return pointOf(*this, place::kVertex2d, kPosition);
}

Acad::ErrorStatus AcDb2dVertex::setPosition(const AcGePoint3d& position) {
  return setPoint(*this, place::kVertex2d, kPosition, position);
}

double AcDb2dVertex::bulge() const {
  return numberOf(*this, place::kVertex2d, code::kBulge);
}

Acad::ErrorStatus AcDb2dVertex::setBulge(double bulge) {
  return setNumber(*this, place::kVertex2d, code::kBulge, bulge, 0.0);
}

double AcDb2dVertex::startWidth() const {
  return widthOf(*this, code::kStartWidth);
}

Acad::ErrorStatus AcDb2dVertex::setStartWidth(double width) {
  return setNumber(*this, place::kVertex2d, code::kStartWidth, width,
                   usualWidth(*this, code::kStartWidth));
}

double AcDb2dVertex::endWidth() const {
  return widthOf(*this, code::kEndWidth);
}

Acad::ErrorStatus AcDb2dVertex::setEndWidth(double width) {
  return setNumber(*this, place::kVertex2d, code::kEndWidth, width,
                   usualWidth(*this, code::kEndWidth));
}

AcDb3dPolylineVertex::AcDb3dPolylineVertex() = default;

AcDb3dPolylineVertex::AcDb3dPolylineVertex(const AcGePoint3d& position) {
  setPosition(position);
}

AcDb::Vertex3dType AcDb3dPolylineVertex::vertexType() const {
  const std::int64_t flags = integerOf(*this, place::kVertex3d, code::kFlags);
  return (flags & kSplineFrame)        ? AcDb::k3dControlVertex
         : (flags & kAddedBySplineFit) ? AcDb::k3dFitVertex
                                       : AcDb::k3dSimpleVertex;
}

AcGePoint3d AcDb3dPolylineVertex::position() const {
  return pointOf(*this, place::kVertex3d, kPosition);
}

Acad::ErrorStatus AcDb3dPolylineVertex::setPosition(const AcGePoint3d& position) {
  return setPoint(*this, place::kVertex3d, kPosition, position);
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
  const std::int64_t flags = integerOf(*this, place::kPolyline2d, code::kFlags);
  if (flags & kSplineFit) {
    const bool isQuadratic = integerOf(*this, place::kPolyline2d, kCurveType) == kQuadratic;
    return isQuadratic ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly;
  }
  return flags & kCurveFit ? AcDb::k2dFitCurvePoly : AcDb::k2dSimplePoly;
}

Adesk::Boolean AcDb2dPolyline::isClosed() const {
  return (integerOf(*this, place::kPolyline2d, code::kFlags) & kClosed) != 0;
}

Acad::ErrorStatus AcDb2dPolyline::makeClosed() {
  return setFlag(*this, place::kPolyline2d, code::kFlags, kClosed, true);
}

Acad::ErrorStatus AcDb2dPolyline::makeOpen() {
  return setFlag(*this, place::kPolyline2d, code::kFlags, kClosed, false);
}

double AcDb2dPolyline::elevation() const {
  return numberOf(*this, place::kPolyline2d, kElevation);
}

Acad::ErrorStatus AcDb2dPolyline::setElevation(double elevation) {
  return setNumber(*this, place::kPolyline2d, kElevation, elevation, 0.0);
}

double AcDb2dPolyline::thickness() const {
  return numberOf(*this, place::kPolyline2d, code::kThickness);
}

Acad::ErrorStatus AcDb2dPolyline::setThickness(double thickness) {
  return setNumber(*this, place::kPolyline2d, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDb2dPolyline::normal() const {
  return normalOf(*this, place::kPolyline2d);
}

Acad::ErrorStatus AcDb2dPolyline::setNormal(const AcGeVector3d& normal) {
  return quoin::db::setNormal(*this, place::kPolyline2d, normal);
}

double AcDb2dPolyline::defaultStartWidth() const {
  return numberOf(*this, place::kPolyline2d, code::kStartWidth);
}

double AcDb2dPolyline::defaultEndWidth() const {
  return numberOf(*this, place::kPolyline2d, code::kEndWidth);
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
  if ((integerOf(*this, place::kPolyline3d, code::kFlags) & kSplineFit) == 0) {
    return AcDb::k3dSimplePoly;
  }
  const bool isQuadratic = integerOf(*this, place::kPolyline3d, kCurveType) == kQuadratic;
  return isQuadratic ? AcDb::k3dQuadSplinePoly : AcDb::k3dCubicSplinePoly;
}

Adesk::Boolean AcDb3dPolyline::isClosed() const {
  return (integerOf(*this, place::kPolyline3d, code::kFlags) & kClosed) != 0;
}

Acad::ErrorStatus AcDb3dPolyline::makeClosed() {
  return setFlag(*this, place::kPolyline3d, code::kFlags, kClosed, true);
}

Acad::ErrorStatus AcDb3dPolyline::makeOpen() {
  return setFlag(*this, place::kPolyline3d, code::kFlags, kClosed, false);
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
