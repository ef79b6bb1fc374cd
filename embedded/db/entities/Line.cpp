// LINE, AcDbLine: its points are world coordinates.
#include <cmath>

#include "dbents.h"
#include "embedded/db/core/ObjectImpl.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/PlaneTransform.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbLine, AcDbCurve, L"LINE", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {

constexpr int kStart = code::kLineStart;
constexpr int kEnd = code::kLineEnd;

/// The line as it was made, if it has no record yet.
const ObjectImpl::MadeLine* madeLine(const AcDbLine& line) {
  const ObjectImpl& impl = Access::of(line);
  return impl.madeLine && impl.state == OpenState::Free ? &*impl.madeLine : nullptr;
}

/// Whether a record would give the point back as it is, and whether it would change for it.
bool isPlain(const AcGePoint3d& point) {
  const auto isPlain = [](double value) {
    return std::isfinite(value) && (value != 0.0 || !std::signbit(value));
  };
  return isPlain(point.x) && isPlain(point.y) && isPlain(point.z);
}
bool isAtOrigin(const AcGePoint3d& point) {
  return point.x == 0.0 && point.y == 0.0 && point.z == 0.0;
}

}  // namespace

AcDbLine::AcDbLine() = default;

AcDbLine::AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) {
  if (isPlain(start) && isPlain(end)) {
    ObjectImpl& impl = Access::of(*this);
    impl.madeLine.emplace(ObjectImpl::MadeLine{start, end});
    impl.isModified = !isAtOrigin(start) || !isAtOrigin(end);
    return;
  }
  setStartPoint(start);
  setEndPoint(end);
}

AcGePoint3d AcDbLine::startPoint() const {
  if (const ObjectImpl::MadeLine* const made = madeLine(*this)) {
    return made->start;
  }
  return pointOf(*this, layout::kLine, kStart);
}

AcGePoint3d AcDbLine::endPoint() const {
  if (const ObjectImpl::MadeLine* const made = madeLine(*this)) {
    return made->end;
  }
  return pointOf(*this, layout::kLine, kEnd);
}

Acad::ErrorStatus AcDbLine::setStartPoint(const AcGePoint3d& point) {
  return setPoint(*this, layout::kLine, kStart, point);
}

Acad::ErrorStatus AcDbLine::setEndPoint(const AcGePoint3d& point) {
  return setPoint(*this, layout::kLine, kEnd, point);
}

double AcDbLine::thickness() const {
  return numberOf(*this, layout::kLine, code::kThickness);
}

Acad::ErrorStatus AcDbLine::setThickness(double thickness) {
  return setNumber(*this, layout::kLine, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbLine::normal() const {
  return normalOf(*this, layout::kLine);
}

Acad::ErrorStatus AcDbLine::setNormal(const AcGeVector3d& normal) {
  return quoin::db::setNormal(*this, layout::kLine, normal);
}

Acad::ErrorStatus AcDbLine::getStartPoint(AcGePoint3d& point) const {
  point = startPoint();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getEndPoint(AcGePoint3d& point) const {
  point = endPoint();
  return Acad::eOk;
}

namespace quoin::db {
namespace {

Acad::ErrorStatus extentsOfLine(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                AcDbExtents& box) {
  const TagRange range = layout::kLine.in(entity.tags);
  AcDbExtents shape;
  shape.addPoint(toWorld * entity.tags.point(kStart, range));
  shape.addPoint(toWorld * entity.tags.point(kEnd, range));
  addThick(shape, thicknessOf(entity.tags, range, toWorld), box);
  return Acad::eOk;
}

void drawLine(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const TagRange range = layout::kLine.in(entity.tags);
  walk.stroke(linePath(toWorld * entity.tags.point(kStart, range),
                       toWorld * entity.tags.point(kEnd, range)));
}

Acad::ErrorStatus transformLine(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  return transformStraight(edit, layout::kLine, true, matrix);
}

constexpr std::array kSubclasses{kEntitySubclass, Subclass{"AcDbLine", kNoCodes}};
constexpr std::array kClasses{classRow<AcDbLine>(
    "0 LINE 100 AcDbEntity 8 0 100 AcDbLine 10 0.0 20 0.0 30 0.0 11 0.0 21 0.0 31 0.0",
    kSubclasses)};

constexpr std::array kKinds{
    RecordKind{.name = "LINE",
               .classes = kClasses,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfLine,
               .draw = drawLine,
               .transform = transformLine},
};

}  // namespace

const std::span<const RecordKind> kLineRows{kKinds};

}  // namespace quoin::db
