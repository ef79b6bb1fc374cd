// CIRCLE and ARC, AcDbCircle and AcDbArc: centre in the plane's own coordinates, angles in degrees.
#include <cmath>

#include "dbents.h"
#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/PlaneTransform.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbCircle, AcDbCurve, L"CIRCLE", L"ObjectDBX Classes")
ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbArc, AcDbCurve, L"ARC", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {

constexpr int kCenter = 10;
constexpr int kRadius = 40;
constexpr int kStartAngle = 50;
constexpr int kEndAngle = 51;
constexpr int kPoints[] = {kCenter};

Acad::ErrorStatus setRadiusOf(AcDbObject& curve, double radius) {
  const Acad::ErrorStatus status = checkWritable(curve);
  if (status != Acad::eOk) {
    return status;
  }
  return radius >= 0.0 ? setNumber(curve, layout::kCircle, kRadius, radius) : Acad::eInvalidInput;
}

AcGePoint3d pointAtAngle(const AcDbObject& curve, double angle) {
  const TagList& tags = tagsOf(curve);
  const TagRange range = layout::kCircle.in(tags);
  const AcGePoint3d center = tags.point(kCenter, range);
  const double radius = tags.number(kRadius, range, 0.0);
  const AcGePoint3d inPlane(center.x + radius * std::cos(angle),
                            center.y + radius * std::sin(angle), center.z);
  return planeToWorld(normalOf(tags, range)) * inPlane;
}

}  // namespace

AcDbCircle::AcDbCircle() = default;

AcDbCircle::AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius) {
  setNormal(normal);
  setCenter(center);
  setRadius(radius);
}

AcGePoint3d AcDbCircle::center() const {
  return worldPointOf(*this, layout::kCircle, kCenter);
}

Acad::ErrorStatus AcDbCircle::setCenter(const AcGePoint3d& center) {
  return setWorldPoint(*this, layout::kCircle, kCenter, center);
}

double AcDbCircle::radius() const {
  return numberOf(*this, layout::kCircle, kRadius);
}

Acad::ErrorStatus AcDbCircle::setRadius(double radius) {
  return setRadiusOf(*this, radius);
}

double AcDbCircle::thickness() const {
  return numberOf(*this, layout::kCircle, code::kThickness);
}

Acad::ErrorStatus AcDbCircle::setThickness(double thickness) {
  return setNumber(*this, layout::kCircle, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbCircle::normal() const {
  return normalOf(*this, layout::kCircle);
}

Acad::ErrorStatus AcDbCircle::setNormal(const AcGeVector3d& normal) {
  return turnPlane(*this, layout::kCircle, normal, kPoints);
}

Adesk::Boolean AcDbCircle::isClosed() const {
  return true;
}

Acad::ErrorStatus AcDbCircle::getStartPoint(AcGePoint3d& point) const {
  point = pointAtAngle(*this, 0.0);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getEndPoint(AcGePoint3d& point) const {
  return getStartPoint(point);
}

AcDbArc::AcDbArc() = default;

AcDbArc::AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle)
    : AcDbArc(center, AcGeVector3d::kZAxis, radius, startAngle, endAngle) {}

AcDbArc::AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius,
                 double startAngle, double endAngle) {
  setNormal(normal);
  setCenter(center);
  setRadius(radius);
  setStartAngle(startAngle);
  setEndAngle(endAngle);
}

AcGePoint3d AcDbArc::center() const {
  return worldPointOf(*this, layout::kCircle, kCenter);
}

Acad::ErrorStatus AcDbArc::setCenter(const AcGePoint3d& center) {
  return setWorldPoint(*this, layout::kCircle, kCenter, center);
}

double AcDbArc::radius() const {
  return numberOf(*this, layout::kCircle, kRadius);
}

Acad::ErrorStatus AcDbArc::setRadius(double radius) {
  return setRadiusOf(*this, radius);
}

double AcDbArc::startAngle() const {
  return toRadians(numberOf(*this, layout::kCircle, kStartAngle));
}

Acad::ErrorStatus AcDbArc::setStartAngle(double angle) {
  return setAngle(*this, layout::kCircle, kStartAngle, angle);
}

double AcDbArc::endAngle() const {
  return toRadians(numberOf(*this, layout::kCircle, kEndAngle));
}

Acad::ErrorStatus AcDbArc::setEndAngle(double angle) {
  return setAngle(*this, layout::kCircle, kEndAngle, angle);
}

double AcDbArc::thickness() const {
  return numberOf(*this, layout::kCircle, code::kThickness);
}

Acad::ErrorStatus AcDbArc::setThickness(double thickness) {
  return setNumber(*this, layout::kCircle, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbArc::normal() const {
  return normalOf(*this, layout::kCircle);
}

Acad::ErrorStatus AcDbArc::setNormal(const AcGeVector3d& normal) {
  return turnPlane(*this, layout::kCircle, normal, kPoints);
}

Acad::ErrorStatus AcDbArc::getStartPoint(AcGePoint3d& point) const {
  point = pointAtAngle(*this, startAngle());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getEndPoint(AcGePoint3d& point) const {
  point = pointAtAngle(*this, endAngle());
  return Acad::eOk;
}

namespace quoin::db {
namespace {

ArcImage arcOf(const TagList& tags, const AcGeMatrix3d& toWorld) {
  const TagRange range = layout::kCircle.in(tags);
  const AcGeMatrix3d plane = toWorld * planeToWorld(normalOf(tags, range));
  const double radius = tags.number(kRadius, range, 0.0);
  ArcImage arc{plane * tags.point(kCenter, range), plane * (AcGeVector3d::kXAxis * radius),
               plane * (AcGeVector3d::kYAxis * radius)};
  if (tags.find(kStartAngle, range) != TagList::kNone) {
    arc.setRange(toRadians(tags.number(kStartAngle, range, 0.0)),
                 toRadians(tags.number(kEndAngle, range, 0.0)));
  }
  return arc;
}

Acad::ErrorStatus extentsOfArc(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                               AcDbExtents& box) {
  const TagRange range = layout::kCircle.in(entity.tags);
  AcDbExtents shape;
  addArc(arcOf(entity.tags, toWorld), shape);
  addThick(shape, thicknessOf(entity.tags, range, toWorld), box);
  return Acad::eOk;
}

void drawArc(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  walk.stroke(arcPath(arcOf(entity.tags, toWorld)));
}

Acad::ErrorStatus transformCircle(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const PlaneMap plane = planeOf(tags, layout::kCircle, matrix);
  if (!plane.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  edit.setPoint(layout::kCircle, kCenter,
                plane.map * tags.point(kCenter, layout::kCircle.in(tags)));
  edit.scaleDouble(layout::kCircle, kRadius, plane.scale);
  return transformPlane(edit, layout::kCircle, plane);
}

Acad::ErrorStatus transformArc(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const TagRange range = layout::kCircle.in(tags);
  const PlaneMap plane = planeOf(tags, layout::kCircle, matrix);
  const double start = plane.angle(toRadians(tags.number(kStartAngle, range, 0.0)));
  const double end = plane.angle(toRadians(tags.number(kEndAngle, range, 0.0)));
  const Acad::ErrorStatus status = transformCircle(edit, matrix);
  if (status == Acad::eOk) {
    // A mirrored arc runs the other way round.
    edit.setAngle(layout::kCircle, kStartAngle, plane.isMirrored ? end : start);
    edit.setAngle(layout::kCircle, kEndAngle, plane.isMirrored ? start : end);
  }
  return status;
}

constexpr std::array kArcCodes{kStartAngle, kEndAngle};
constexpr std::array kCircleSubclasses{kEntitySubclass, Subclass{"AcDbCircle", kNoCodes}};
constexpr std::array kArcSubclasses{kEntitySubclass, Subclass{"AcDbCircle", kNoCodes},
                                    Subclass{"AcDbArc", kArcCodes}};
constexpr std::array kCircleClasses{classRow<AcDbCircle>(
    "0 CIRCLE 100 AcDbEntity 8 0 100 AcDbCircle 10 0.0 20 0.0 30 0.0 40 0.0", kCircleSubclasses)};
constexpr std::array kArcClasses{classRow<AcDbArc>(
    "0 ARC 100 AcDbEntity 8 0 100 AcDbCircle 10 0.0 20 0.0 30 0.0 40 0.0 100 AcDbArc 50 0.0 51 0.0",
    kArcSubclasses)};

constexpr std::array kKinds{
    RecordKind{.name = "CIRCLE",
               .classes = kCircleClasses,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfArc,
               .draw = drawArc,
               .transform = transformCircle},
    RecordKind{.name = "ARC",
               .classes = kArcClasses,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfArc,
               .draw = drawArc,
               .transform = transformArc},
};

}  // namespace

const std::span<const RecordKind> kCircleArcRows{kKinds};

}  // namespace quoin::db
