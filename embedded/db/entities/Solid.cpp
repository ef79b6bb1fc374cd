// SOLID and TRACE: filled figures of three or four corners in a plane.
#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using enum Meaning;

Acad::ErrorStatus extentsOfSolid(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbTrace");
  const AcGeMatrix3d plane = toWorld * planeToWorld(normalOf(tags, range));
  constexpr int kElevation = 38;
  // Before R12 the elevation could stand by itself.
  const AcGePoint3d otherwise(0.0, 0.0, tags.number(kElevation, range, 0.0));
  AcDbExtents shape;
  for (const int corner : {10, 11, 12, 13}) {
    if (tags.find(corner, range) != TagList::kNone) {
      shape.addPoint(plane * tags.point(corner, range, otherwise));
    }
  }
  addThick(shape, thicknessOf(tags, range, toWorld), box);
  return Acad::eOk;
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
               .schema = &kSchema},
    RecordKind{.name = "TRACE",
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfSolid,
               .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kSolidRows{kKinds};

}  // namespace quoin::db
