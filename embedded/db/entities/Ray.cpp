// RAY and XLINE: lines without an end. They have no extents.
#include <cmath>
#include <limits>

#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

/// Cuts a line of the plan off at a box, whose edges it may run along.
void drawLong(const AcGePoint3d& point, const AcGeVector3d& direction, bool isRay, DrawWalk& walk) {
  const AcDbExtents& view = walk.view();
  if (view.isFresh()) {
    return;
  }
  double first = isRay ? 0.0 : -std::numeric_limits<double>::infinity();
  double last = std::numeric_limits<double>::infinity();
  for (unsigned int axis = 0; axis < 2; ++axis) {
    const double step = direction[axis];
    const double low = view.minPoint()[axis] - point[axis];
    const double high = view.maxPoint()[axis] - point[axis];
    if (step == 0.0) {
      last = low > 0.0 || high < 0.0 ? -std::numeric_limits<double>::infinity() : last;
      continue;
    }
    first = std::fmax(first, std::fmin(low / step, high / step));
    last = std::fmin(last, std::fmax(low / step, high / step));
  }
  if (first < last && std::isfinite(first) && std::isfinite(last)) {
    walk.stroke(linePath(point + direction * first, point + direction * last));
  }
}

void drawRay(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  constexpr int kPoint = 10;
  constexpr int kDirection = 11;
  const bool isRay = dxf::trimmedValue(entity.tags[0]) == "RAY";
  const TagRange range = entity.tags.subclass(isRay ? "AcDbRay" : "AcDbXline");
  drawLong(toWorld * entity.tags.point(kPoint, range),
           toWorld * entity.tags.point(kDirection, range).asVector(), isRay, walk);
}

constexpr std::array kRayRules{Rule{"AcDbRay", 10, Point}, Rule{"AcDbRay", 11, Direction}};
constexpr std::array kXlineRules{Rule{"AcDbXline", 10, Point}, Rule{"AcDbXline", 11, Direction}};
constexpr TransformSchema kRaySchema{.isAffine = true, .rules = kRayRules};
constexpr TransformSchema kXlineSchema{.isAffine = true, .rules = kXlineRules};

constexpr std::array kKinds{
    RecordKind{.name = "RAY",
               .since = Version::R13,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .draw = drawRay,
               .schema = &kRaySchema},
    RecordKind{.name = "XLINE",
               .since = Version::R13,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .draw = drawRay,
               .schema = &kXlineSchema},
};

}  // namespace

const std::span<const RecordKind> kRayRows{kKinds};

}  // namespace quoin::db
