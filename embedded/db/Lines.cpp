// AcDbPoint and AcDbLine: their points are world coordinates.
#include "dbents.h"
#include "embedded/db/ObjectImpl.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbPoint, AcDbEntity, L"POINT", L"ObjectDBX Classes")
ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbLine, AcDbCurve, L"LINE", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {
constexpr int kStart = 10;
constexpr int kEnd = 11;
}  // namespace

AcDbPoint::AcDbPoint() = default;

AcDbPoint::AcDbPoint(const AcGePoint3d& position) {
  setPosition(position);
}

AcGePoint3d AcDbPoint::position() const {
  return pointOf(*this, place::kPoint, kStart);
}

Acad::ErrorStatus AcDbPoint::setPosition(const AcGePoint3d& position) {
  return setPoint(*this, place::kPoint, kStart, position);
}

double AcDbPoint::thickness() const {
  return numberOf(*this, place::kPoint, code::kThickness);
}

Acad::ErrorStatus AcDbPoint::setThickness(double thickness) {
  return setNumber(*this, place::kPoint, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbPoint::normal() const {
  return normalOf(*this, place::kPoint);
}

Acad::ErrorStatus AcDbPoint::setNormal(const AcGeVector3d& normal) {
  return quoin::db::setNormal(*this, place::kPoint, normal);
}

AcDbLine::AcDbLine() = default;

AcDbLine::AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) {
  setStartPoint(start);
  setEndPoint(end);
}

AcGePoint3d AcDbLine::startPoint() const {
  return pointOf(*this, place::kLine, kStart);
}

AcGePoint3d AcDbLine::endPoint() const {
  return pointOf(*this, place::kLine, kEnd);
}

Acad::ErrorStatus AcDbLine::setStartPoint(const AcGePoint3d& point) {
  return setPoint(*this, place::kLine, kStart, point);
}

Acad::ErrorStatus AcDbLine::setEndPoint(const AcGePoint3d& point) {
  return setPoint(*this, place::kLine, kEnd, point);
}

double AcDbLine::thickness() const {
  return numberOf(*this, place::kLine, code::kThickness);
}

Acad::ErrorStatus AcDbLine::setThickness(double thickness) {
  return setNumber(*this, place::kLine, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbLine::normal() const {
  return normalOf(*this, place::kLine);
}

Acad::ErrorStatus AcDbLine::setNormal(const AcGeVector3d& normal) {
  return quoin::db::setNormal(*this, place::kLine, normal);
}

Acad::ErrorStatus AcDbLine::getStartPoint(AcGePoint3d& point) const {
  point = startPoint();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getEndPoint(AcGePoint3d& point) const {
  point = endPoint();
  return Acad::eOk;
}
