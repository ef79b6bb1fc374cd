// MESH: a surface of faces that may be smoothed.
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

constexpr int kVertex = 10;

/// A smoothed mesh counts with the vertices that it is smoothed from; it lies between them.
Acad::ErrorStatus extentsOfMesh(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                AcDbExtents& box) {
  for (const AcGePoint3d& point :
       pointsOf(entity.tags, kVertex, entity.tags.subclass("AcDbSubDMesh"))) {
    box.addPoint(toWorld * point);
  }
  return Acad::eOk;
}

constexpr std::array kRules{Rule{"AcDbSubDMesh", 10, Point}};
constexpr TransformSchema kSchema{.isAffine = true, .rules = kRules};

constexpr std::array kKinds{
    RecordKind{.name = "MESH",
               .since = Version::R2010,
               .isSelfContained = true,
               .extents = extentsOfMesh,
               .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kMeshRows{kKinds};

}  // namespace quoin::db
