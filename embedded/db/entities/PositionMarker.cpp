// POSITIONMARKER and GEOPOSITIONMARKER: places on the globe with a label.
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using enum Meaning;

/// The circle of its place; its label stands in an object of its own.
void drawMarker(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  constexpr int kPosition = 10;
  constexpr int kRadius = 40;
  const TagRange range = entity.tags.subclass("AcDbGeoPositionMarker");
  const double radius = entity.tags.number(kRadius, range, 0.0);
  walk.strokePlain(arcPath({toWorld * entity.tags.point(kPosition, range),
                            toWorld * (AcGeVector3d::kXAxis * radius),
                            toWorld * (AcGeVector3d::kYAxis * radius)}));
}

constexpr std::array kRules{Rule{"AcDbGeoPositionMarker", 10, Point},
                            Rule{"AcDbGeoPositionMarker", 40, Length},
                            Rule{"AcDbGeoPositionMarker", 41, Length}};
constexpr TransformSchema kSchema{.rules = kRules};

constexpr std::array kKinds{
    RecordKind{.name = "POSITIONMARKER", .draw = drawMarker, .schema = &kSchema},
    RecordKind{.name = "GEOPOSITIONMARKER", .draw = drawMarker, .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kPositionMarkerRows{kKinds};

}  // namespace quoin::db
