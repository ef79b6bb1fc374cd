// RAY and XLINE: lines without an end. They have no extents.
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

constexpr std::array kRayRules{Rule{"AcDbRay", 10, Point}, Rule{"AcDbRay", 11, Direction}};
constexpr std::array kXlineRules{Rule{"AcDbXline", 10, Point}, Rule{"AcDbXline", 11, Direction}};
constexpr TransformSchema kRaySchema{.isAffine = true, .rules = kRayRules};
constexpr TransformSchema kXlineSchema{.isAffine = true, .rules = kXlineRules};

constexpr std::array kKinds{
    RecordKind{.name = "RAY",
               .since = Version::R13,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .schema = &kRaySchema},
    RecordKind{.name = "XLINE",
               .since = Version::R13,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .schema = &kXlineSchema},
};

}  // namespace

const std::span<const RecordKind> kRayRows{kKinds};

}  // namespace quoin::db
