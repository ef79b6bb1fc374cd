// LEADER: a line from an annotation to what it is about, with an arrow.
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/Annotation.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

constexpr int kPoint = 10;

/// What a leader shows.
struct LeaderShape {
  std::vector<AcGePoint3d> points;
  bool isCurved = false;
  std::optional<Arrow> arrow;
};

LeaderShape shapeOf(const Drawn& entity) {
  constexpr int kHasArrow = 71;
  constexpr int kIsCurved = 72;
  constexpr int kAnnotation = 73;
  constexpr int kHookDirection = 74;
  constexpr int kHasHook = 75;
  constexpr int kTextWidth = 41;
  constexpr int kHorizontal = 211;
  constexpr int kArrowSize = 41;
  constexpr int kGap = 147;
  constexpr int kTextAbove = 77;
  constexpr double kUsualArrow = 0.18;
  constexpr double kUsualGap = 0.09;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbLeader");
  std::vector<AcGePoint3d> points = pointsOf(tags, kPoint, range);
  LeaderShape shape;
  if (points.empty()) {
    return shape;
  }
  const AcGeVector3d normal = normalOf(tags, range);
  // A text that stands above the line is underlined as far as it goes.
  const double textWidth = tags.number(kTextWidth, range, 0.0);
  const bool hasText = tags.integer(kAnnotation, range, 3) == 0;
  if (hasText && tags.integer(kHasHook, range, 0) != 0 && textWidth > 0.0 &&
      dimensionVariable(entity, range, kTextAbove, 0.0) != 0.0) {
    const AcGeVector3d along = tags.point(kHorizontal, range, {1.0, 0.0, 0.0}).asVector();
    const double side = tags.integer(kHookDirection, range, 1) == 1 ? -1.0 : 1.0;
    const double gap = scaledVariable(entity, range, kGap, kUsualGap);
    points.push_back(points.back() + along * (side * (gap + textWidth)));
  }
  shape.points = std::move(points);
  shape.isCurved = tags.integer(kIsCurved, range, 0) == 1;
  if (tags.integer(kHasArrow, range, 1) != 0) {
    shape.arrow = Arrow{arrowBlockOf(entity, range),
                        scaledVariable(entity, range, kArrowSize, kUsualArrow), normal};
  }
  return shape;
}

Acad::ErrorStatus extentsOfLeader(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                  ExtentsWalk& walk, AcDbExtents& box) {
  const LeaderShape shape = shapeOf(entity);
  if (shape.points.empty()) {
    return Acad::eOk;
  }
  addLeaderLine(shape.points, shape.isCurved, toWorld, box);
  if (shape.arrow) {
    addArrow(*shape.arrow, shape.points, toWorld, walk, box);
  }
  return Acad::eOk;
}

/// Leaders have the colour that their style has for dimension lines; by block there stands for
/// their own.
void setLineColor(const Drawn& entity, DrawWalk& walk) {
  constexpr int kLineColor = 176;
  const auto index = static_cast<int>(std::clamp(
      dimensionVariable(entity, entity.tags.subclass("AcDbLeader"), kLineColor, 0.0), 0.0, 257.0));
  if (index > 0 && index <= AcCmEntityColor::kACIbyLayer) {
    AcCmColor color;
    color.setColorIndex(static_cast<Adesk::UInt16>(index));
    walk.setColor(walk.lookOf(color).color);
  }
}

void drawLeader(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const LeaderShape shape = shapeOf(entity);
  setLineColor(entity, walk);
  if (shape.points.size() > 1) {
    walk.stroke(leaderPath(shape.points, shape.isCurved, toWorld, walk));
  }
  if (shape.arrow) {
    drawArrow(*shape.arrow, shape.points, toWorld, walk);
  }
}

constexpr std::array kRules{Rule{"AcDbLeader", 10, Point},
                            Rule{"AcDbLeader", 40, Length},
                            Rule{"AcDbLeader", 41, Length},
                            Rule{"AcDbLeader", 211, Direction, &AcGeVector3d::kXAxis},
                            Rule{"AcDbLeader", 212, Displacement},
                            Rule{"AcDbLeader", 213, Displacement}};
constexpr TransformSchema kSchema{.normalMarker = "AcDbLeader", .rules = kRules};

constexpr std::array kKinds{
    RecordKind{.name = "LEADER",
               .since = Version::R13,
               .ownCodes = kNoOwnCodes,
               .extents = extentsOfLeader,
               .draw = drawLeader,
               .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kLeaderRows{kKinds};

}  // namespace quoin::db
