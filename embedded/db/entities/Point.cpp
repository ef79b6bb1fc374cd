// POINT, AcDbPoint: its place in world coordinates.
#include <cmath>

#include "dbents.h"
#include "embedded/db/core/ObjectImpl.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
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

/// Half the size of the signs of points, world: as $PDSIZE says, or a share of what is looked at.
double signReach(DrawWalk& walk) {
  constexpr double kUsualShare = 0.05;
  constexpr double kPercent = 0.01;
  const double size = walk.variable("$PDSIZE", 0.0);
  if (size > 0.0) {
    return 0.5 * size * walk.windowScale();
  }
  const AcDbExtents& view = walk.view();
  const double height = view.isFresh() ? 0.0 : view.maxPoint().y - view.minPoint().y;
  return 0.5 * height * (size < 0.0 ? -size * kPercent : kUsualShare);
}

/// A dot, or the sign that $PDMODE names: one of five figures, in a circle, a square or both.
void drawPoint(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  enum { kDot, kNothing, kPlus, kCross, kTick };
  constexpr int kAngle = 50;
  constexpr int kFigures = 7;
  constexpr int kCircle = 32;
  constexpr int kSquare = 64;
  const TagRange range = layout::kPoint.in(entity.tags);
  const AcGePoint3d place = toWorld * entity.tags.point(kPosition, range);
  const auto mode = static_cast<int>(walk.variable("$PDMODE", 0.0));
  const int figure = mode & kFigures;
  const double reach = mode == kDot || mode == kNothing ? 0.0 : signReach(walk);
  if (figure == kDot || (mode != kNothing && !(reach > 0.0))) {
    DrawPath dot;
    dot.start = place;
    walk.strokePlain(dot);
  }
  if (!(reach > 0.0)) {
    return;
  }
  // Signs are as large in every block; they turn with the entity's own X axis.
  const double angle = -toRadians(entity.tags.number(kAngle, range, 0.0));
  const AcGeVector3d x = AcGeVector3d(std::cos(angle), std::sin(angle), 0.0) * reach;
  const AcGeVector3d y(-x.y, x.x, 0.0);
  if (figure == kPlus) {
    walk.strokePlain(linePath(place - x, place + x));
    walk.strokePlain(linePath(place - y, place + y));
  } else if (figure == kCross) {
    walk.strokePlain(linePath(place - x - y, place + x + y));
    walk.strokePlain(linePath(place - x + y, place + x - y));
  } else if (figure == kTick) {
    walk.strokePlain(linePath(place, place + y));
  }
  if (mode & kCircle) {
    walk.strokePlain(arcPath({place, x, y}));
  }
  if (mode & kSquare) {
    const AcGePoint3d corners[] = {place - x - y, place + x - y, place + x + y, place - x + y};
    walk.strokePlain(polygonPath(corners, true));
  }
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
               .draw = drawPoint,
               .transform = transformPoint},
};

}  // namespace

const std::span<const RecordKind> kPointRows{kKinds};

}  // namespace quoin::db
