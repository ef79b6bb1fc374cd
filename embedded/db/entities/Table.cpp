// ACAD_TABLE: a table, shown by a block of its own.
#include <vector>

#include "embedded/db/core/Blocks.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/Annotation.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/MTextLayout.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

constexpr int kPoint = 10;
constexpr int kSecondPoint = 11;

/// The upper left corner, with X along the rows.
AcGeMatrix3d placeOf(const TagList& tags) {
  const TagRange place = tags.subclass("AcDbBlockReference");
  const TagRange range = tags.subclass("AcDbTable");
  return frameAt(tags.point(kPoint, place),
                 tags.point(kSecondPoint, range, {1.0, 0.0, 0.0}).asVector(),
                 normalOf(tags, range));
}

AcGeMatrix3d toBaseOf(const Drawn& entity, const dxf::Block& block) {
  return AcGeMatrix3d().setToTranslation(AcGePoint3d::kOrigin - baseOf(*entity.database, block));
}

Acad::ErrorStatus extentsOfTable(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                 ExtentsWalk& walk, AcDbExtents&) {
  const TagList& tags = entity.tags;
  const TagRange place = tags.subclass("AcDbBlockReference");
  const dxf::Block* const block = blockOf(entity, code::kName, place);
  if (!block) {
    return Acad::eOk;
  }
  walk.show(*block, toWorld * placeOf(tags) * toBaseOf(entity, *block));
  return Acad::eOk;
}

/// A table without a block: its lines, and the texts of its cells in their middles. Cells that are
/// merged are drawn one by one.
void drawGrid(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  constexpr int kRowHeight = 141;
  constexpr int kColumnWidth = 142;
  constexpr int kCell = 171;
  constexpr int kText = 1;
  constexpr int kLongText = 302;
  constexpr double kTextShare = 0.4;  // of a row's height
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbTable");
  const std::vector<double> heights = numbersOf(tags, kRowHeight, range);
  const std::vector<double> widths = numbersOf(tags, kColumnWidth, range);
  if (heights.empty() || widths.empty()) {
    walk.leaveOut(L"ACAD_TABLE");
    return;
  }
  const AcGeMatrix3d place = toWorld * placeOf(tags);
  std::vector<double> tops{0.0};
  for (const double height : heights) {
    tops.push_back(tops.back() - height);
  }
  std::vector<double> lefts{0.0};
  for (const double width : widths) {
    lefts.push_back(lefts.back() + width);
  }
  const auto line = [&](double x1, double y1, double x2, double y2) {
    walk.strokePlain(linePath(place * AcGePoint3d(x1, y1, 0.0), place * AcGePoint3d(x2, y2, 0.0)));
  };
  for (const double top : tops) {
    line(lefts.front(), top, lefts.back(), top);
  }
  for (const double left : lefts) {
    line(left, tops.front(), left, tops.back());
  }
  MTextSettings settings;
  settings.alignment = 0.5;
  settings.rise = 0.5;
  settings.style = textStyleOf(nullptr, {});
  std::size_t cell = 0;
  for (std::size_t i = range.first; i < range.last; ++i) {
    const int code = tags[i].code;
    if (code == kCell) {
      ++cell;
    } else if ((code == kText || code == kLongText) && cell > 0 &&
               (cell - 1) / widths.size() < heights.size()) {
      const std::size_t row = (cell - 1) / widths.size();
      const std::size_t column = (cell - 1) % widths.size();
      settings.height = kTextShare * heights[row];
      const AcGePoint3d middle(lefts[column] + 0.5 * widths[column], tops[row] - 0.5 * heights[row],
                               0.0);
      drawMText(layoutMText(tags.textAt(i), settings),
                place * AcGeMatrix3d().setToTranslation(middle.asVector()), walk);
    }
  }
}

void drawTable(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const TagList& tags = entity.tags;
  const dxf::Block* const block = blockOf(entity, code::kName, tags.subclass("AcDbBlockReference"));
  if (!block) {
    drawGrid(entity, toWorld, walk);
    return;
  }
  walk.showOr(*block, toWorld * placeOf(tags) * toBaseOf(entity, *block), entity, drawGrid);
}

/// A table places and turns its block by itself.
OwnBlock ownBlockOf(DatabaseImpl& database, const TagList& tags, const AcGeMatrix3d& matrix) {
  const dxf::Block* const block =
      anonymousBlock(database, tags, tags.subclass("AcDbBlockReference"));
  return {block, block ? AcGeMatrix3d().setToScaling(matrix.scale(), baseOf(database, *block))
                       : AcGeMatrix3d()};
}

constexpr std::array kRules{Rule{"AcDbBlockReference", 10, Point},
                            Rule{"AcDbBlockReference", 210, Normal, &AcGeVector3d::kZAxis},
                            Rule{"AcDbTable", 11, Direction},
                            Rule{"AcDbTable", 140, Length},
                            Rule{"AcDbTable", 141, Length},
                            Rule{"AcDbTable", 142, Length}};
constexpr TransformSchema kSchema{.rules = kRules, .subclassesNeeded = 2};

constexpr std::array kKinds{
    // Its cells use shared codes (62, 60, 284 and more) for borders and texts.
    RecordKind{.name = "ACAD_TABLE",
               .since = Version::R2004,
               .extents = extentsOfTable,
               .draw = drawTable,
               .schema = &kSchema,
               .ownBlock = ownBlockOf},
};

}  // namespace

const std::span<const RecordKind> kTableRows{kKinds};

}  // namespace quoin::db
