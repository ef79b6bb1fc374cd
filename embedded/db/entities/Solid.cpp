// SOLID and TRACE: filled figures of three or four corners in a plane.
#include <utility>
#include <vector>

#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using enum Meaning;

/// The corners that the record names, in the order of their codes.
std::vector<AcGePoint3d> cornersOf(const TagList& tags, const AcGeMatrix3d& toWorld) {
  const TagRange range = tags.subclass("AcDbTrace");
  const AcGeMatrix3d plane = toWorld * planeToWorld(normalOf(tags, range));
  constexpr int kElevation = 38;
  // Before R12 the elevation could stand by itself.
  const AcGePoint3d otherwise(0.0, 0.0, tags.number(kElevation, range, 0.0));
  std::vector<AcGePoint3d> corners;
  for (const int corner : {10, 11, 12, 13}) {
    if (tags.find(corner, range) != TagList::kNone) {
      corners.push_back(plane * tags.point(corner, range, otherwise));
    }
  }
  return corners;
}

Acad::ErrorStatus extentsOfSolid(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  AcDbExtents shape;
  for (const AcGePoint3d& corner : cornersOf(entity.tags, toWorld)) {
    shape.addPoint(corner);
  }
  addThick(shape, thicknessOf(entity.tags, entity.tags.subclass("AcDbTrace"), toWorld), box);
  return Acad::eOk;
}

/// The third and fourth corner stand crosswise in the record.
void drawSolid(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  std::vector<AcGePoint3d> corners = cornersOf(entity.tags, toWorld);
  if (corners.size() == 4) {
    std::swap(corners[2], corners[3]);
  }
  const DrawPath area = polygonPath(corners, true);
  if (walk.isFilled()) {
    walk.fill(area);
  } else {
    walk.strokePlain(area);
  }
}

constexpr std::array kRules{Rule{"AcDbTrace", 10, PlanePoint}, Rule{"AcDbTrace", 11, PlanePoint},
                            Rule{"AcDbTrace", 12, PlanePoint}, Rule{"AcDbTrace", 13, PlanePoint},
                            Rule{"AcDbTrace", 39, Length}};
constexpr TransformSchema kSchema{.normalMarker = "AcDbTrace", .isAffine = true, .rules = kRules};

constexpr std::array kKinds{
    RecordKind{.name = "SOLID",
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfSolid,
               .draw = drawSolid,
               .schema = &kSchema},
    RecordKind{.name = "TRACE",
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfSolid,
               .draw = drawSolid,
               .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kSolidRows{kKinds};

}  // namespace quoin::db
