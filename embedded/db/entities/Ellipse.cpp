// ELLIPSE, AcDbEllipse: centre and axis in world coordinates, parameters in radians.
#include <cmath>

#include "dbelipse.h"
#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/PlaneTransform.h"
#include "embedded/db/geometry/TransformSchema.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbEllipse, AcDbCurve, L"ELLIPSE", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {

constexpr int kCenter = 10;
constexpr int kMajorAxis = 11;
constexpr int kRatio = 40;
constexpr int kStart = 41;
constexpr int kEnd = 42;
constexpr std::array kEllipseOrder{10, 20, 30, 11, 21, 31, 210, 220, 230, 40, 41, 42};
constexpr SubclassLayout kEllipse{"AcDbEllipse", kEllipseOrder};

/// Files write the full turn with fewer digits than a double has.
bool isFullTurn(double sweep) {
  constexpr double kRounding = 1e-6;
  return std::fabs(sweep - kFullTurn) <= kRounding;
}

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
  double start = 0.0;
  double end = 0.0;
  getStartParam(start);
  getEndParam(end);
  return isFullTurn(end - start);
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

namespace quoin::db {
namespace {

using dxf::Version;

ArcImage arcOf(const TagList& tags, const AcGeMatrix3d& toWorld) {
  const TagRange range = kEllipse.in(tags);
  const AcGeVector3d major = tags.point(kMajorAxis, range, {1.0, 0.0, 0.0}).asVector();
  const AcGeVector3d minor =
      normalOf(tags, range).crossProduct(major) * tags.number(kRatio, range, 1.0);
  ArcImage arc{toWorld * tags.point(kCenter, range), toWorld * major, toWorld * minor};
  const double start = tags.number(kStart, range, 0.0);
  const double end = tags.number(kEnd, range, kFullTurn);
  if (!isFullTurn(std::fabs(end - start))) {
    arc.setRange(start, end);
  }
  return arc;
}

Acad::ErrorStatus extentsOfEllipse(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                   AcDbExtents& box) {
  addArc(arcOf(entity.tags, toWorld), box);
  return Acad::eOk;
}

void drawEllipse(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  walk.stroke(arcPath(arcOf(entity.tags, toWorld)));
}

Acad::ErrorStatus transformEllipse(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const TagRange range = kEllipse.in(tags);
  const TransformParts parts(normalOf(tags, range), matrix);
  const std::size_t center = tags.find(kCenter, range);
  const std::size_t major = tags.find(kMajorAxis, range);
  const std::size_t ratioAt = tags.find(kRatio, range);
  if (center == TagList::kNone || major == TagList::kNone || major + 2 >= range.last ||
      ratioAt == TagList::kNone) {
    return Acad::eInvalidInput;
  }
  transformTag(edit, center, Meaning::Point, parts);
  const AcGeVector3d u = tags.point(kMajorAxis, range).asVector();
  const double ratio = tags.doubleAt(ratioAt);
  const AcGeVector3d v = normalOf(tags, range).crossProduct(u) * ratio;
  // The image is centre + U cos t + V sin t with conjugate half diameters; its axes are where
  // the derivative of the distance vanishes: tan 2t = 2 U.V / (U.U - V.V).
  AcGeVector3d newMajor = matrix * u;
  double shift = 0.0;
  if (!parts.plane.isSimilar) {
    const AcGeVector3d imageU = newMajor;
    const AcGeVector3d imageV = matrix * v;
    shift = 0.5 * std::atan2(2.0 * imageU.dotProduct(imageV),
                             imageU.dotProduct(imageU) - imageV.dotProduct(imageV));
    newMajor = imageU * std::cos(shift) + imageV * std::sin(shift);
    const AcGeVector3d newMinor = imageV * std::cos(shift) - imageU * std::sin(shift);
    edit.setDoubleAt(ratioAt, newMinor.length() / newMajor.length());
  }
  edit.setDoubleAt(major, newMajor.x);
  edit.setDoubleAt(major + 1, newMajor.y);
  edit.setDoubleAt(major + 2, newMajor.z);
  const std::size_t startAt = tags.find(kStart, range);
  const std::size_t endAt = tags.find(kEnd, range);
  const double start = startAt == TagList::kNone ? 0.0 : tags.doubleAt(startAt);
  const double end = endAt == TagList::kNone ? kFullTurn : tags.doubleAt(endAt);
  const bool isWhole = isFullTurn(std::fabs(end - start));
  if (!isWhole && startAt != TagList::kNone && endAt != TagList::kNone &&
      (parts.plane.isMirrored || shift != 0.0)) {
    // A mirrored curve runs the other way round.
    const double newStart = parts.plane.isMirrored ? shift - end : start - shift;
    const double newEnd = parts.plane.isMirrored ? shift - start : end - shift;
    const double first = wrapped(newStart, kFullTurn);
    const double last = wrapped(newEnd, kFullTurn);
    edit.setDoubleAt(startAt, first);
    edit.setDoubleAt(endAt, last <= first ? last + kFullTurn : last);
  }
  transformNormal(edit, range, parts.plane);
  return Acad::eOk;
}

constexpr std::array kClasses{classRow<AcDbEllipse>(
    "0 ELLIPSE 100 AcDbEntity 8 0 100 AcDbEllipse 10 0.0 20 0.0 30 0.0 11 1.0 21 0.0 31 0.0 "
    "40 1.0 41 0.0 42 6.283185307179586")};

constexpr std::array kKinds{
    RecordKind{.name = "ELLIPSE",
               .since = Version::R13,
               .classes = kClasses,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfEllipse,
               .draw = drawEllipse,
               .transform = transformEllipse},
};

}  // namespace

const std::span<const RecordKind> kEllipseRows{kKinds};

}  // namespace quoin::db
