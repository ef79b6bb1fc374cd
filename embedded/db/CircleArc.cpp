// AcDbCircle and AcDbArc: centre in the plane's own coordinates, angles in degrees.
#include <cmath>

#include "dbents.h"
#include "embedded/db/PlaneFields.h"

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
  return radius >= 0.0 ? setNumber(curve, place::kCircle, kRadius, radius) : Acad::eInvalidInput;
}

AcGePoint3d pointAtAngle(const AcDbObject& curve, double angle) {
  const TagList& tags = tagsOf(curve);
  const TagRange range = place::kCircle.in(tags);
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
  return worldPointOf(*this, place::kCircle, kCenter);
}

Acad::ErrorStatus AcDbCircle::setCenter(const AcGePoint3d& center) {
  return setWorldPoint(*this, place::kCircle, kCenter, center);
}

double AcDbCircle::radius() const {
  return numberOf(*this, place::kCircle, kRadius);
}

Acad::ErrorStatus AcDbCircle::setRadius(double radius) {
  return setRadiusOf(*this, radius);
}

double AcDbCircle::thickness() const {
  return numberOf(*this, place::kCircle, code::kThickness);
}

Acad::ErrorStatus AcDbCircle::setThickness(double thickness) {
  return setNumber(*this, place::kCircle, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbCircle::normal() const {
  return normalOf(*this, place::kCircle);
}

Acad::ErrorStatus AcDbCircle::setNormal(const AcGeVector3d& normal) {
  return turnPlane(*this, place::kCircle, normal, kPoints);
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
  return worldPointOf(*this, place::kCircle, kCenter);
}

Acad::ErrorStatus AcDbArc::setCenter(const AcGePoint3d& center) {
  return setWorldPoint(*this, place::kCircle, kCenter, center);
}

double AcDbArc::radius() const {
  return numberOf(*this, place::kCircle, kRadius);
}

Acad::ErrorStatus AcDbArc::setRadius(double radius) {
  return setRadiusOf(*this, radius);
}

double AcDbArc::startAngle() const {
  return toRadians(numberOf(*this, place::kCircle, kStartAngle));
}

Acad::ErrorStatus AcDbArc::setStartAngle(double angle) {
  return setAngle(*this, place::kCircle, kStartAngle, angle);
}

double AcDbArc::endAngle() const {
  return toRadians(numberOf(*this, place::kCircle, kEndAngle));
}

Acad::ErrorStatus AcDbArc::setEndAngle(double angle) {
  return setAngle(*this, place::kCircle, kEndAngle, angle);
}

double AcDbArc::thickness() const {
  return numberOf(*this, place::kCircle, code::kThickness);
}

Acad::ErrorStatus AcDbArc::setThickness(double thickness) {
  return setNumber(*this, place::kCircle, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbArc::normal() const {
  return normalOf(*this, place::kCircle);
}

Acad::ErrorStatus AcDbArc::setNormal(const AcGeVector3d& normal) {
  return turnPlane(*this, place::kCircle, normal, kPoints);
}

Acad::ErrorStatus AcDbArc::getStartPoint(AcGePoint3d& point) const {
  point = pointAtAngle(*this, startAngle());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getEndPoint(AcGePoint3d& point) const {
  point = pointAtAngle(*this, endAngle());
  return Acad::eOk;
}
