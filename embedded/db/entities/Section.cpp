// SECTION and SECTIONOBJECT: planes that cut the model.
#include <vector>

#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

Acad::ErrorStatus extentsOfSection(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                   AcDbExtents& box) {
  constexpr int kUp = 10;
  constexpr int kVertex = 11;
  constexpr int kBackVertex = 12;
  constexpr int kTop = 40;
  constexpr int kBottom = 41;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbSection");
  const AcGeVector3d up = tags.point(kUp, range, {0.0, 0.0, 1.0}).asVector();
  for (const int vertex : {kVertex, kBackVertex}) {
    for (const AcGePoint3d& point : pointsOf(tags, vertex, range)) {
      box.addPoint(toWorld * (point + up * tags.number(kTop, range, 0.0)));
      box.addPoint(toWorld * (point - up * tags.number(kBottom, range, 0.0)));
    }
  }
  return Acad::eOk;
}

/// The line along which it cuts, and that behind it.
void drawSection(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  constexpr int kVertex = 11;
  constexpr int kBackVertex = 12;
  for (const int vertex : {kVertex, kBackVertex}) {
    std::vector<AcGePoint3d> points =
        pointsOf(entity.tags, vertex, entity.tags.subclass("AcDbSection"));
    for (AcGePoint3d& point : points) {
      point = toWorld * point;
    }
    if (points.size() > 1) {
      walk.stroke(polygonPath(points, false));
    }
  }
}

constexpr std::array kRules{Rule{"AcDbSection", 10, Direction}, Rule{"AcDbSection", 11, Point},
                            Rule{"AcDbSection", 12, Point}, Rule{"AcDbSection", 40, Length},
                            Rule{"AcDbSection", 41, Length}};
constexpr TransformSchema kSchema{.rules = kRules};

constexpr std::array kKinds{
    RecordKind{.name = "SECTION", .since = Version::R2007, .draw = drawSection, .schema = &kSchema},
    RecordKind{.name = "SECTIONOBJECT",
               .extents = extentsOfSection,
               .draw = drawSection,
               .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kSectionRows{kKinds};

}  // namespace quoin::db
