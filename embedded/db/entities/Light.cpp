// LIGHT: a lamp of a picture of the model.
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

/// A light counts with its place: how large its sign is drawn depends on the view.
Acad::ErrorStatus extentsOfLight(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  constexpr int kPosition = 10;
  box.addPoint(toWorld * entity.tags.point(kPosition, entity.tags.subclass("AcDbLight")));
  return Acad::eOk;
}

/// It is no part of what a plan shows.
void drawNothing(const Drawn&, const AcGeMatrix3d&, DrawWalk&) {}

constexpr std::array kRules{Rule{"AcDbLight", 10, Point}, Rule{"AcDbLight", 11, Point},
                            Rule{"AcDbLight", 41, Length}, Rule{"AcDbLight", 42, Length}};
constexpr TransformSchema kSchema{.rules = kRules};

constexpr std::array kKinds{
    RecordKind{.name = "LIGHT",
               .since = Version::R2007,
               .extents = extentsOfLight,
               .draw = drawNothing,
               .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kLightRows{kKinds};

}  // namespace quoin::db
