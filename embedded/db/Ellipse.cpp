// AcDbEllipse: centre and axis in world coordinates, parameters in radians.
#include <cmath>
#include <numbers>

#include "dbelipse.h"
#include "embedded/db/DatabaseImpl.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbEllipse, AcDbCurve, L"ELLIPSE", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {

constexpr int kCenter = 10;
constexpr int kMajorAxis = 11;
constexpr int kRatio = 40;
constexpr int kStart = 41;
constexpr int kEnd = 42;
constexpr double kFullTurn = 2.0 * std::numbers::pi;
constexpr std::array kEllipseOrder{10, 20, 30, 11, 21, 31, 210, 220, 230, 40, 41, 42};
constexpr Place kEllipse{"AcDbEllipse", kEllipseOrder};

}  // namespace

AcDbEllipse::AcDbEllipse() = default;

AcDbEllipse::AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                         const AcGeVector3d& majorAxis, double radiusRatio, double startParam,
                         double endParam) {
  set(center, unitNormal, majorAxis, radiusRatio, startParam, endParam);
}

AcGePoint3d AcDbEllipse::center() const {
  return pointOf(*this, kEllipse, kCenter);
}

Acad::ErrorStatus AcDbEllipse::setCenter(const AcGePoint3d& center) {
  return setPoint(*this, kEllipse, kCenter, center);
}

AcGeVector3d AcDbEllipse::majorAxis() const {
  return pointOf(*this, kEllipse, kMajorAxis, {1.0, 0.0, 0.0}).asVector();
}

AcGeVector3d AcDbEllipse::minorAxis() const {
  return normal().crossProduct(majorAxis()) * radiusRatio();
}

double AcDbEllipse::radiusRatio() const {
  return numberOf(*this, kEllipse, kRatio, 1.0);
}

AcGeVector3d AcDbEllipse::normal() const {
  return normalOf(*this, kEllipse);
}

Acad::ErrorStatus AcDbEllipse::set(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                                   const AcGeVector3d& majorAxis, double radiusRatio,
                                   double startParam, double endParam) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  if (!(majorAxis.length() > 0.0) || !(radiusRatio > 0.0 && radiusRatio <= 1.0)) {
    return Acad::eInvalidInput;
  }
  if (!unitNormal.isPerpendicularTo(majorAxis)) {
    return Acad::eInvalidNormal;
  }
  return change(*this, [&](RecordEdit& edit) {
    edit.setPoint(kEllipse, kCenter, center);
    edit.setPoint(kEllipse, kMajorAxis, AcGePoint3d(majorAxis.x, majorAxis.y, majorAxis.z));
    edit.setVector(kEllipse, code::kNormal, unitNormal.normal(), AcGeVector3d::kZAxis);
    edit.setDouble(kEllipse, kRatio, radiusRatio);
    edit.setDouble(kEllipse, kStart, startParam);
    edit.setDouble(kEllipse, kEnd, endParam);
  });
}

Acad::ErrorStatus AcDbEllipse::getStartParam(double& param) const {
  param = numberOf(*this, kEllipse, kStart);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getEndParam(double& param) const {
  const double start = numberOf(*this, kEllipse, kStart);
  param = numberOf(*this, kEllipse, kEnd, kFullTurn);
  if (!(param > start)) {
    param += kFullTurn * (std::floor((start - param) / kFullTurn) + 1.0);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getPointAtParam(double param, AcGePoint3d& point) const {
  point = center() + majorAxis() * std::cos(param) + minorAxis() * std::sin(param);
  return Acad::eOk;
}

Adesk::Boolean AcDbEllipse::isClosed() const {
  // Files write the full turn with fewer digits than a double has.
  constexpr double kRounding = 1e-6;
  double start = 0.0;
  double end = 0.0;
  getStartParam(start);
  getEndParam(end);
  return std::fabs(end - start - kFullTurn) < kRounding;
}

Acad::ErrorStatus AcDbEllipse::getStartPoint(AcGePoint3d& point) const {
  double param = 0.0;
  getStartParam(param);
  return getPointAtParam(param, point);
}

Acad::ErrorStatus AcDbEllipse::getEndPoint(AcGePoint3d& point) const {
  double param = 0.0;
  getEndParam(param);
  return getPointAtParam(param, point);
}
