// LWPOLYLINE, AcDbPolyline: vertices as tags 10, 20, 40, 41, 42 (and 91, an identifier) in one
// record.
#include <algorithm>
#include <optional>

#include "dbpl.h"
#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/entities/LightVertices.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/PlaneTransform.h"
#include "embedded/db/geometry/PolylineDraw.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbPolyline, AcDbCurve, L"LWPOLYLINE", L"ObjectDBX Classes")

using namespace quoin::db;
namespace dxf = quoin::dxf;

namespace {

constexpr int kElevation = 38;
constexpr int kCount = 90;
constexpr std::int64_t kClosed = 1;
constexpr std::int64_t kPlinegen = 128;
constexpr std::size_t kFewestVertices = 2;

struct DecodedVertices : Decoded {
  std::vector<LightVertex> vertices;
  AcGeMatrix3d toWorld;
  double elevation = 0.0;
};

const DecodedVertices& decodedOf(const AcDbObject& polyline) {
  const TagList& tags = tagsOf(polyline);
  ObjectImpl& impl = Access::of(polyline);
  auto* decoded = static_cast<DecodedVertices*>(impl.decoded.get());
  if (!decoded) {
    auto made = std::make_unique<DecodedVertices>();
    made->vertices = lightVerticesOf(tags);
    made->toWorld = planeToWorld(normalOf(polyline, layout::kPolyline));
    made->elevation = numberOf(polyline, layout::kPolyline, kElevation);
    decoded = made.get();
    impl.decoded = std::move(made);
  }
  return *decoded;
}

const std::vector<LightVertex>& verticesOf(const AcDbObject& polyline) {
  return decodedOf(polyline).vertices;
}

/// The polyline's vertices if it may be changed and has this one.
Acad::ErrorStatus checkVertex(const AcDbObject& polyline, unsigned int index,
                              std::size_t extra = 0) {
  const Acad::ErrorStatus status = checkWritable(polyline);
  if (status != Acad::eOk) {
    return status;
  }
  return index < verticesOf(polyline).size() + extra ? Acad::eOk : Acad::eInvalidIndex;
}

/// Sets a number of one vertex; where it has no such tag, it goes in front of the first tag
/// of the vertex that conventionally comes later.
void setVertexNumber(RecordEdit& edit, const LightVertex& vertex, int code, double value,
                     std::optional<double> absent = {}) {
  const TagList& tags = edit.tags();
  const std::size_t present = tags.find(code, vertex.tags);
  if (present != TagList::kNone) {
    edit.setDoubleAt(present, value);
    return;
  }
  if (absent == value) {
    return;
  }
  edit.noteNumber(value);
  std::string bytes;
  dxf::putDouble(bytes, code, value, tags.format());
  std::size_t at = vertex.tags.first;
  while (at < vertex.tags.last && tags[at].code <= code) {
    ++at;
  }
  edit.insertBefore(at, std::move(bytes));
}

bool haveSameWidths(const hostx::LightPolylineVertex& a, const hostx::LightPolylineVertex& b) {
  return a.startWidth == b.startWidth && a.endWidth == b.endWidth;
}

void setWidths(RecordEdit& edit, const LightVertex& vertex) {
  setVertexNumber(edit, vertex, code::kStartWidth, vertex.startWidth, 0.0);
  setVertexNumber(edit, vertex, code::kEndWidth, vertex.endWidth, 0.0);
}

/// Whether there was one: then every vertex needs widths of its own.
bool removeConstantWidth(RecordEdit& edit) {
  const TagRange range = layout::kPolyline.in(edit.tags());
  if (edit.tags().find(light::kConstantWidth, range) == TagList::kNone) {
    return false;
  }
  edit.remove(layout::kPolyline, light::kConstantWidth);
  return true;
}

/// Gives every vertex its own widths in place of the constant one.
void spellWidths(RecordEdit& edit, const std::vector<LightVertex>& vertices) {
  if (removeConstantWidth(edit)) {
    for (const LightVertex& vertex : vertices) {
      setWidths(edit, vertex);
    }
  }
}

/// Removes the vertices behind the first `count`.
void removeBehind(RecordEdit& edit, const std::vector<LightVertex>& vertices, std::size_t count) {
  for (std::size_t i = count; i < vertices.size(); ++i) {
    TagRange removed = vertices[i].tags;
    while (i + 1 < vertices.size() && vertices[i + 1].tags.first == removed.last) {
      removed.last = vertices[++i].tags.last;
    }
    edit.replace(removed, {});
  }
  edit.setInteger(layout::kPolyline, kCount, static_cast<std::int64_t>(count));
}

/// Writes what differs of one vertex, in the order of its tags: those that are missing may all go
/// in at one place.
void setVertex(RecordEdit& edit, const LightVertex& is, const LightVertex& wanted,
               bool spellsWidths) {
  if (is.point.x != wanted.point.x || is.point.y != wanted.point.y) {
    setVertexNumber(edit, is, light::kX, wanted.point.x);
    setVertexNumber(edit, is, light::kY, wanted.point.y);
  }
  if (spellsWidths || !haveSameWidths(is, wanted)) {
    setWidths(edit, wanted);
  }
  if (is.bulge != wanted.bulge) {
    setVertexNumber(edit, is, code::kBulge, wanted.bulge, 0.0);
  }
}

}  // namespace

std::vector<LightVertex> quoin::db::lightVerticesOf(const TagList& tags) {
  const TagRange range = layout::kPolyline.in(tags);
  std::size_t count = 0;
  for (std::size_t i = range.first; i < range.last; ++i) {
    count += tags[i].code == light::kX ? 1 : 0;
  }
  std::vector<LightVertex> vertices;
  vertices.reserve(count);
  forEachLightVertex(tags, [&](const LightVertex& vertex) { vertices.push_back(vertex); });
  return vertices;
}

AcDbPolyline::AcDbPolyline() = default;

AcDbPolyline::AcDbPolyline(unsigned int) {}  // vertices need no room in advance

// --- vertices -------------------------------------------------------------------------------

unsigned int AcDbPolyline::numVerts() const {
  return static_cast<unsigned int>(verticesOf(*this).size());
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint3d& point) const {
  AcGePoint2d inPlane;
  const Acad::ErrorStatus status = getPointAt(index, inPlane);
  if (status == Acad::eOk) {
    const DecodedVertices& decoded = decodedOf(*this);
    point = decoded.toWorld * AcGePoint3d(inPlane.x, inPlane.y, decoded.elevation);
  }
  return status;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint2d& point) const {
  const auto& vertices = verticesOf(*this);
  if (index >= vertices.size()) {
    return Acad::eInvalidIndex;
  }
  point = vertices[index].point;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setPointAt(unsigned int index, const AcGePoint2d& point) {
  const Acad::ErrorStatus status = checkVertex(*this, index);
  if (status != Acad::eOk) {
    return status;
  }
  return change(*this, [&](RecordEdit& edit) {
    const LightVertex& vertex = verticesOf(*this)[index];
    setVertexNumber(edit, vertex, light::kX, point.x);
    setVertexNumber(edit, vertex, light::kY, point.y);
  });
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned int index, double& bulge) const {
  const auto& vertices = verticesOf(*this);
  if (index >= vertices.size()) {
    return Acad::eInvalidIndex;
  }
  bulge = vertices[index].bulge;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned int index, double bulge) {
  const Acad::ErrorStatus status = checkVertex(*this, index);
  if (status != Acad::eOk) {
    return status;
  }
  return change(*this, [&](RecordEdit& edit) {
    setVertexNumber(edit, verticesOf(*this)[index], code::kBulge, bulge, 0.0);
  });
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(unsigned int index, double& startWidth,
                                            double& endWidth) const {
  const auto& vertices = verticesOf(*this);
  if (index >= vertices.size()) {
    return Acad::eInvalidIndex;
  }
  startWidth = vertices[index].startWidth;
  endWidth = vertices[index].endWidth;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setWidthsAt(unsigned int index, double startWidth,
                                            double endWidth) {
  const Acad::ErrorStatus status = checkVertex(*this, index);
  if (status != Acad::eOk) {
    return status;
  }
  return change(*this, [&](RecordEdit& edit) {
    std::vector<LightVertex> vertices = verticesOf(*this);
    vertices[index].startWidth = startWidth;
    vertices[index].endWidth = endWidth;
    const TagRange range = layout::kPolyline.in(edit.tags());
    const bool isConstant = edit.tags().find(light::kConstantWidth, range) != TagList::kNone;
    if (isConstant) {
      spellWidths(edit, vertices);
    } else {
      setWidths(edit, vertices[index]);
    }
  });
}

Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned int index, const AcGePoint2d& point,
                                            double bulge, double startWidth, double endWidth) {
  const Acad::ErrorStatus status = checkVertex(*this, index, 1);
  if (status != Acad::eOk) {
    return status;
  }
  return change(*this, [&](RecordEdit& edit) {
    const std::vector<LightVertex>& vertices = verticesOf(*this);
    const TagList& tags = edit.tags();
    const TagRange range = layout::kPolyline.in(tags);
    const double constantWidth = tags.number(light::kConstantWidth, range, 0.0);
    const double start = startWidth < 0.0 ? constantWidth : startWidth;
    const double end = endWidth < 0.0 ? constantWidth : endWidth;
    if (start != constantWidth || end != constantWidth) {
      spellWidths(edit, vertices);
    }
    const bool isSpelled = tags.find(light::kConstantWidth, range) == TagList::kNone ||
                           start != constantWidth || end != constantWidth;
    std::string bytes;
    const auto put = [&](int code, double value) {
      edit.noteNumber(value);
      dxf::putDouble(bytes, code, value, tags.format());
    };
    put(light::kX, point.x);
    put(light::kY, point.y);
    if (isSpelled && (start != 0.0 || end != 0.0)) {
      put(code::kStartWidth, start);
      put(code::kEndWidth, end);
    }
    if (bulge != 0.0) {
      put(code::kBulge, bulge);
    }
    if (vertices.empty()) {
      edit.insert(layout::kPolyline, light::kX, std::move(bytes));
    } else if (index < vertices.size()) {
      edit.insertBefore(vertices[index].tags.first, std::move(bytes));
    } else {
      edit.insertBefore(vertices.back().tags.last, std::move(bytes));
    }
    edit.setInteger(layout::kPolyline, kCount, static_cast<std::int64_t>(vertices.size() + 1));
  });
}

Acad::ErrorStatus AcDbPolyline::removeVertexAt(unsigned int index) {
  const Acad::ErrorStatus status = checkVertex(*this, index);
  if (status != Acad::eOk) {
    return status;
  }
  if (verticesOf(*this).size() <= kFewestVertices) {
    return Acad::eDegenerateGeometry;
  }
  return change(*this, [&](RecordEdit& edit) {
    const std::vector<LightVertex>& vertices = verticesOf(*this);
    edit.replace(vertices[index].tags, {});
    edit.setInteger(layout::kPolyline, kCount, static_cast<std::int64_t>(vertices.size() - 1));
  });
}

AcDbPolyline::SegType AcDbPolyline::segType(unsigned int index) const {
  const auto& vertices = verticesOf(*this);
  if (index >= vertices.size()) {
    return kEmpty;
  }
  if (vertices.size() == 1) {
    return kPoint;
  }
  const bool isLast = index + 1 == vertices.size();
  if (isLast && !isClosed()) {
    return kEmpty;
  }
  const LightVertex& next = vertices[isLast ? 0 : index + 1];
  if (vertices[index].point.isEqualTo(next.point)) {
    return kCoincident;
  }
  return vertices[index].bulge != 0.0 ? kArc : kLine;
}

bool AcDbPolyline::hasBulges() const {
  for (const LightVertex& vertex : verticesOf(*this)) {
    if (vertex.bulge != 0.0) {
      return true;
    }
  }
  return false;
}

bool AcDbPolyline::hasWidth() const {
  for (const LightVertex& vertex : verticesOf(*this)) {
    if (vertex.startWidth != 0.0 || vertex.endWidth != 0.0) {
      return true;
    }
  }
  return false;
}

// --- the whole ------------------------------------------------------------------------------

Adesk::Boolean AcDbPolyline::isClosed() const {
  return (integerOf(*this, layout::kPolyline, code::kFlags) & kClosed) != 0;
}

void AcDbPolyline::setClosed(Adesk::Boolean closed) {
  setFlag(*this, layout::kPolyline, code::kFlags, kClosed, closed);
}

Acad::ErrorStatus AcDbPolyline::getConstantWidth(double& width) const {
  const auto& vertices = verticesOf(*this);
  width = vertices.empty() ? numberOf(*this, layout::kPolyline, light::kConstantWidth)
                           : vertices.front().startWidth;
  for (const LightVertex& vertex : vertices) {
    if (vertex.startWidth != width || vertex.endWidth != width) {
      return Acad::eInvalidInput;
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setConstantWidth(double width) {
  return change(*this, [&](RecordEdit& edit) {
    edit.remove(layout::kPolyline, code::kStartWidth);
    edit.remove(layout::kPolyline, code::kEndWidth);
    edit.setDouble(layout::kPolyline, light::kConstantWidth, width, 0.0);
  });
}

double AcDbPolyline::elevation() const {
  return numberOf(*this, layout::kPolyline, kElevation);
}

Acad::ErrorStatus AcDbPolyline::setElevation(double elevation) {
  return setNumber(*this, layout::kPolyline, kElevation, elevation, 0.0);
}

double AcDbPolyline::thickness() const {
  return numberOf(*this, layout::kPolyline, code::kThickness);
}

Acad::ErrorStatus AcDbPolyline::setThickness(double thickness) {
  return setNumber(*this, layout::kPolyline, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbPolyline::normal() const {
  return normalOf(*this, layout::kPolyline);
}

Acad::ErrorStatus AcDbPolyline::setNormal(const AcGeVector3d& normal) {
  return quoin::db::setNormal(*this, layout::kPolyline, normal);
}

bool AcDbPolyline::hasPlinegen() const {
  return (integerOf(*this, layout::kPolyline, code::kFlags) & kPlinegen) != 0;
}

Acad::ErrorStatus AcDbPolyline::setPlinegen(bool on) {
  return setFlag(*this, layout::kPolyline, code::kFlags, kPlinegen, on);
}

Acad::ErrorStatus AcDbPolyline::getStartPoint(AcGePoint3d& point) const {
  return getPointAt(0, point) == Acad::eOk ? Acad::eOk : Acad::eDegenerateGeometry;
}

Acad::ErrorStatus AcDbPolyline::getEndPoint(AcGePoint3d& point) const {
  const unsigned int count = numVerts();
  if (count == 0) {
    return Acad::eDegenerateGeometry;
  }
  return getPointAt(isClosed() ? 0 : count - 1, point);
}

// --- many vertices at once ------------------------------------------------------------------

Acad::ErrorStatus hostx::reduceVertices(AcDbPolyline& polyline,
                                        const std::vector<LightPolylineVertex>& vertices) {
  const Acad::ErrorStatus status = checkWritable(polyline);
  if (status != Acad::eOk) {
    return status;
  }
  const std::size_t count = verticesOf(polyline).size();
  if (vertices.size() > count) {
    return Acad::eInvalidIndex;
  }
  if (vertices.size() < std::min(count, kFewestVertices)) {
    return Acad::eDegenerateGeometry;
  }
  return change(polyline, [&](RecordEdit& edit) {
    const std::vector<LightVertex>& are = verticesOf(polyline);
    if (vertices.size() < count) {
      removeBehind(edit, are, vertices.size());
    }
    const bool spellsWidths =
        !std::equal(vertices.begin(), vertices.end(), are.begin(), haveSameWidths) &&
        removeConstantWidth(edit);
    for (std::size_t i = 0; i < vertices.size(); ++i) {
      setVertex(edit, are[i], {vertices[i], are[i].tags}, spellsWidths);
    }
  });
}

namespace quoin::db {
namespace {

using dxf::Version;

Acad::ErrorStatus extentsOfPolyline(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                    AcDbExtents& box) {
  const TagList& tags = entity.tags;
  const TagRange range = layout::kPolyline.in(tags);
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

void drawLightPolyline(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const TagList& tags = entity.tags;
  const TagRange range = layout::kPolyline.in(tags);
  const AcGeMatrix3d plane = toWorld * planeToWorld(normalOf(tags, range));
  const double elevation = tags.number(kElevation, range, 0.0);
  const std::int64_t flags = tags.integer(code::kFlags, range, 0);
  PlanePolyline polyline;
  polyline.isClosed = (flags & kClosed) != 0;
  polyline.isPatternContinuous = (flags & kPlinegen) != 0;
  forEachLightVertex(tags, [&](const LightVertex& vertex) {
    const AcGePoint3d point(vertex.point.x, vertex.point.y, elevation);
    if (!polyline.segments.empty()) {
      polyline.segments.back().end = point;
    }
    polyline.segments.push_back({point, point, vertex.bulge, vertex.startWidth, vertex.endWidth});
  });
  drawVertices(polyline, plane, walk);
}

Acad::ErrorStatus transformPolyline(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const TagRange range = layout::kPolyline.in(tags);
  const PlaneMap plane = planeOf(tags, layout::kPolyline, matrix);
  const double elevation = tags.number(kElevation, range, 0.0);
  const std::vector<LightVertex> vertices = lightVerticesOf(tags);
  for (const LightVertex& vertex : vertices) {
    const bool needsSimilar =
        vertex.bulge != 0.0 || vertex.startWidth != 0.0 || vertex.endWidth != 0.0;
    if (needsSimilar && !plane.isSimilar) {
      return Acad::eCannotScaleNonUniformly;
    }
  }
  double newElevation = (plane.map * AcGePoint3d(0.0, 0.0, elevation)).z;
  edit.setDouble(layout::kPolyline, kElevation, newElevation, 0.0);
  for (const LightVertex& vertex : vertices) {
    const AcGePoint3d moved = plane.map * AcGePoint3d(vertex.point.x, vertex.point.y, elevation);
    for (std::size_t i = vertex.tags.first; i < vertex.tags.last; ++i) {
      switch (tags[i].code) {
        case light::kX:
          edit.setDoubleAt(i, moved.x);
          break;
        case light::kY:
          edit.setDoubleAt(i, moved.y);
          break;
        case code::kStartWidth:
        case code::kEndWidth:
          edit.setDoubleAt(i, tags.doubleAt(i) * plane.scale);
          break;
        case code::kBulge:
          edit.setDoubleAt(i, plane.isMirrored ? -tags.doubleAt(i) : tags.doubleAt(i));
          break;
        default:
          break;
      }
    }
  }
  edit.scaleDouble(layout::kPolyline, light::kConstantWidth, plane.scale);
  return transformPlane(edit, layout::kPolyline, plane);
}

constexpr std::array kClasses{
    classRow<AcDbPolyline>("0 LWPOLYLINE 100 AcDbEntity 8 0 100 AcDbPolyline 90 0 70 0")};

constexpr std::array kKinds{
    RecordKind{.name = "LWPOLYLINE",
               .since = Version::R14,
               .classes = kClasses,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfPolyline,
               .draw = drawLightPolyline,
               .transform = transformPolyline},
};

}  // namespace

const std::span<const RecordKind> kLightPolylineRows{kKinds};

}  // namespace quoin::db
