// VIEWPORT: a window of a layout onto model space.
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using enum Meaning;

Acad::ErrorStatus extentsOfViewport(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                    AcDbExtents& box) {
  constexpr int kCenter = 10;
  constexpr int kWidth = 40;
  constexpr int kHeight = 41;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbViewport");
  const AcGePoint3d center = tags.point(kCenter, range);
  const AcGeVector3d half(0.5 * tags.number(kWidth, range, 0.0),
                          0.5 * tags.number(kHeight, range, 0.0), 0.0);
  const AcGePoint3d low = center - half;
  const AcGePoint3d high = center + half;
  AcGeMatrix3d toPlane;
  toPlane.setToTranslation(AcGeVector3d(0.0, 0.0, center.z));
  addRectangle(low.x, low.y, high.x, high.y, toWorld * toPlane, box);
  return Acad::eOk;
}

constexpr std::array kRules{Rule{"AcDbViewport", 10, Point}, Rule{"AcDbViewport", 40, Length},
                            Rule{"AcDbViewport", 41, Length}};
constexpr TransformSchema kSchema{.rules = kRules};

constexpr std::array kOwnCodes{348};  // its visual style

constexpr std::array kKinds{
    RecordKind{.name = "VIEWPORT",
               .ownCodes = kOwnCodes,
               .extents = extentsOfViewport,
               .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kViewportRows{kKinds};

}  // namespace quoin::db
