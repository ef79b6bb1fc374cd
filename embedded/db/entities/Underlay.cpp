// PDFUNDERLAY, DWFUNDERLAY and DGNUNDERLAY: a sheet of another file behind the drawing.
#include <array>
#include <cmath>

#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/PlaneTransform.h"

namespace quoin::db {
namespace {

using dxf::Version;

constexpr int kPoint = 10;
constexpr int kBoundaryPoint = 11;

/// The sheet itself stands in another file: only a boundary that clips it has a size here. Its
/// corners; none without one.
std::vector<AcGePoint3d> boundaryOf(const TagList& tags, const AcGeMatrix3d& toWorld) {
  constexpr int kScaleX = 41;
  constexpr int kScaleY = 42;
  constexpr int kRotation = 50;
  const TagRange range = tags.subclass("AcDbUnderlayReference");
  const std::vector<AcGePoint3d> boundary = pointsOf(tags, kBoundaryPoint, range);
  const double rotation = toRadians(tags.number(kRotation, range, 0.0));
  const AcGeVector3d x(std::cos(rotation), std::sin(rotation), 0.0);
  const AcGeVector3d y(-std::sin(rotation), std::cos(rotation), 0.0);
  AcGeMatrix3d frame;
  frame.setCoordSystem(tags.point(kPoint, range), x * tags.number(kScaleX, range, 1.0),
                       y * tags.number(kScaleY, range, 1.0), AcGeVector3d::kZAxis);
  const AcGeMatrix3d toSheet = toWorld * planeToWorld(normalOf(tags, range)) * frame;
  std::vector<AcGePoint3d> corners;
  if (boundary.size() == 2) {
    const AcGePoint3d& a = boundary[0];
    const AcGePoint3d& b = boundary[1];
    corners = {{a.x, a.y, 0.0}, {b.x, a.y, 0.0}, {b.x, b.y, 0.0}, {a.x, b.y, 0.0}};
  } else {
    for (const AcGePoint3d& point : boundary) {
      corners.emplace_back(point.x, point.y, 0.0);
    }
  }
  for (AcGePoint3d& corner : corners) {
    corner = toSheet * corner;
  }
  return corners;
}

Acad::ErrorStatus extentsOfUnderlay(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                    AcDbExtents& box) {
  for (const AcGePoint3d& corner : boundaryOf(entity.tags, toWorld)) {
    box.addPoint(corner);
  }
  return Acad::eOk;
}

void drawUnderlay(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const std::vector<AcGePoint3d> corners = boundaryOf(entity.tags, toWorld);
  if (corners.size() < 2) {
    const std::string_view kind = dxf::trimmedValue(entity.tags[0]);
    walk.leaveOut(std::wstring(kind.begin(), kind.end()));
    return;
  }
  walk.strokePlain(polygonPath(corners, true));
}

Acad::ErrorStatus transformUnderlay(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr std::array kFactors{41, 42, 43};
  return transformPlaced(edit, matrix, {"AcDbUnderlayReference", 50, 41, kFactors});
}

constexpr std::array kKinds{
    RecordKind{.name = "PDFUNDERLAY",
               .since = Version::R2007,
               .ownCodes = kNoOwnCodes,
               .extents = extentsOfUnderlay,
               .draw = drawUnderlay,
               .transform = transformUnderlay},
    RecordKind{.name = "DWFUNDERLAY",
               .since = Version::R2007,
               .ownCodes = kNoOwnCodes,
               .extents = extentsOfUnderlay,
               .draw = drawUnderlay,
               .transform = transformUnderlay},
    RecordKind{.name = "DGNUNDERLAY",
               .since = Version::R2007,
               .ownCodes = kNoOwnCodes,
               .extents = extentsOfUnderlay,
               .draw = drawUnderlay,
               .transform = transformUnderlay},
};

}  // namespace

const std::span<const RecordKind> kUnderlayRows{kKinds};

}  // namespace quoin::db
