// POINT, AcDbPoint: its place in world coordinates.
#include "dbents.h"
#include "embedded/db/core/ObjectImpl.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/PlaneTransform.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbPoint, AcDbEntity, L"POINT", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {
constexpr int kPosition = 10;
}  // namespace

AcDbPoint::AcDbPoint() = default;

AcDbPoint::AcDbPoint(const AcGePoint3d& position) {
  setPosition(position);
}

AcGePoint3d AcDbPoint::position() const {
  return pointOf(*this, layout::kPoint, kPosition);
}

Acad::ErrorStatus AcDbPoint::setPosition(const AcGePoint3d& position) {
  return setPoint(*this, layout::kPoint, kPosition, position);
}

double AcDbPoint::thickness() const {
  return numberOf(*this, layout::kPoint, code::kThickness);
}

Acad::ErrorStatus AcDbPoint::setThickness(double thickness) {
  return setNumber(*this, layout::kPoint, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbPoint::normal() const {
  return normalOf(*this, layout::kPoint);
}

Acad::ErrorStatus AcDbPoint::setNormal(const AcGeVector3d& normal) {
  return quoin::db::setNormal(*this, layout::kPoint, normal);
}

namespace quoin::db {
namespace {

Acad::ErrorStatus extentsOfPoint(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  const TagRange range = layout::kPoint.in(entity.tags);
  AcDbExtents shape;
  shape.addPoint(toWorld * entity.tags.point(kPosition, range));
  addThick(shape, thicknessOf(entity.tags, range, toWorld), box);
  return Acad::eOk;
}

Acad::ErrorStatus transformPoint(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  return transformStraight(edit, layout::kPoint, false, matrix);
}

constexpr std::array kSubclasses{kEntitySubclass, Subclass{"AcDbPoint", kNoCodes}};
constexpr std::array kClasses{classRow<AcDbPoint>(
    "0 POINT 100 AcDbEntity 8 0 100 AcDbPoint 10 0.0 20 0.0 30 0.0", kSubclasses)};

constexpr std::array kKinds{
    RecordKind{.name = "POINT",
               .classes = kClasses,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfPoint,
               .transform = transformPoint},
};

}  // namespace

const std::span<const RecordKind> kPointRows{kKinds};

}  // namespace quoin::db
