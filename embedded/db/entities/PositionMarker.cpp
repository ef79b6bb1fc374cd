// POSITIONMARKER and GEOPOSITIONMARKER: places on the globe with a label.
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using enum Meaning;

constexpr std::array kRules{Rule{"AcDbGeoPositionMarker", 10, Point},
                            Rule{"AcDbGeoPositionMarker", 40, Length},
                            Rule{"AcDbGeoPositionMarker", 41, Length}};
constexpr TransformSchema kSchema{.rules = kRules};

constexpr std::array kKinds{
    RecordKind{.name = "POSITIONMARKER", .schema = &kSchema},
    RecordKind{.name = "GEOPOSITIONMARKER", .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kPositionMarkerRows{kKinds};

}  // namespace quoin::db
