// Regions, bodies and surfaces: their geometry is the text of a solid modeler, which is kept and
// not read.
#include "embedded/db/entities/EntityKinds.h"

namespace quoin::db {
namespace {

using dxf::Version;

// 48 is a factor in surfaces, so that they take no shared properties elsewhere.

constexpr std::array kKinds{
    RecordKind{.name = "REGION", .since = Version::R13, .ownCodes = kNoOwnCodes},
    RecordKind{.name = "BODY", .since = Version::R13, .ownCodes = kNoOwnCodes},
    RecordKind{.name = "3DSOLID", .since = Version::R13, .ownCodes = kNoOwnCodes},
    RecordKind{.name = "SURFACE", .since = Version::R2007},
    RecordKind{.name = "EXTRUDEDSURFACE", .since = Version::R2007},
    RecordKind{.name = "LOFTEDSURFACE", .since = Version::R2007},
    RecordKind{.name = "REVOLVEDSURFACE", .since = Version::R2007},
    RecordKind{.name = "SWEPTSURFACE", .since = Version::R2007},
    RecordKind{.name = "PLANESURFACE", .since = Version::R2007},
};

}  // namespace

const std::span<const RecordKind> kModelerBodiesRows{kKinds};

}  // namespace quoin::db
