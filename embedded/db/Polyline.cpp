// AcDbPolyline: vertices as tags 10, 20, 40, 41, 42 (and 91, an identifier) in one record.
#include <algorithm>

#include "dbpl.h"
#include "embedded/db/LightVertices.h"
#include "embedded/db/PlaneFields.h"

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
    made->toWorld = planeToWorld(normalOf(polyline, place::kPolyline));
    made->elevation = numberOf(polyline, place::kPolyline, kElevation);
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
  const TagRange range = place::kPolyline.in(edit.tags());
  if (edit.tags().find(light::kConstantWidth, range) == TagList::kNone) {
    return false;
  }
  edit.remove(place::kPolyline, light::kConstantWidth);
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
  edit.setInteger(place::kPolyline, kCount, static_cast<std::int64_t>(count));
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
  const TagRange range = place::kPolyline.in(tags);
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
    const TagRange range = place::kPolyline.in(edit.tags());
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
    const TagRange range = place::kPolyline.in(tags);
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
      edit.insert(place::kPolyline, light::kX, std::move(bytes));
    } else if (index < vertices.size()) {
      edit.insertBefore(vertices[index].tags.first, std::move(bytes));
    } else {
      edit.insertBefore(vertices.back().tags.last, std::move(bytes));
    }
    edit.setInteger(place::kPolyline, kCount, static_cast<std::int64_t>(vertices.size() + 1));
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
    edit.setInteger(place::kPolyline, kCount, static_cast<std::int64_t>(vertices.size() - 1));
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
  return (integerOf(*this, place::kPolyline, code::kFlags) & kClosed) != 0;
}

void AcDbPolyline::setClosed(Adesk::Boolean closed) {
  setFlag(*this, place::kPolyline, code::kFlags, kClosed, closed);
}

Acad::ErrorStatus AcDbPolyline::getConstantWidth(double& width) const {
  const auto& vertices = verticesOf(*this);
  width = vertices.empty() ? numberOf(*this, place::kPolyline, light::kConstantWidth)
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
    edit.remove(place::kPolyline, code::kStartWidth);
    edit.remove(place::kPolyline, code::kEndWidth);
    edit.setDouble(place::kPolyline, light::kConstantWidth, width, 0.0);
  });
}

double AcDbPolyline::elevation() const {
  return numberOf(*this, place::kPolyline, kElevation);
}

Acad::ErrorStatus AcDbPolyline::setElevation(double elevation) {
  return setNumber(*this, place::kPolyline, kElevation, elevation, 0.0);
}

double AcDbPolyline::thickness() const {
  return numberOf(*this, place::kPolyline, code::kThickness);
}

Acad::ErrorStatus AcDbPolyline::setThickness(double thickness) {
  return setNumber(*this, place::kPolyline, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbPolyline::normal() const {
  return normalOf(*this, place::kPolyline);
}

Acad::ErrorStatus AcDbPolyline::setNormal(const AcGeVector3d& normal) {
  return quoin::db::setNormal(*this, place::kPolyline, normal);
}

bool AcDbPolyline::hasPlinegen() const {
  return (integerOf(*this, place::kPolyline, code::kFlags) & kPlinegen) != 0;
}

Acad::ErrorStatus AcDbPolyline::setPlinegen(bool on) {
  return setFlag(*this, place::kPolyline, code::kFlags, kPlinegen, on);
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
