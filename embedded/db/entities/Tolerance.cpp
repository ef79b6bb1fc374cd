// TOLERANCE: a frame of cells with tolerances of shape and position.
#include <algorithm>
#include <cmath>

#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/Annotation.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/TextMeasure.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

constexpr int kText = 1;
constexpr int kPoint = 10;
constexpr int kSecondPoint = 11;

Acad::ErrorStatus extentsOfTolerance(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                     AcDbExtents& box) {
  constexpr int kTextHeight = 140;
  constexpr double kUsualHeight = 0.18;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbFcf");
  const double height = scaledVariable(entity, range, kTextHeight, kUsualHeight);
  std::wstring text = tags.text(kText, range).value_or(std::wstring());
  // Rows of cells; a cell is twice as high as its text, with half a height at either side.
  constexpr std::wstring_view kRowEnd = L"^J";
  constexpr std::wstring_view kCellEnd = L"%%v";
  double width = 0.0;
  double rows = 0.0;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find(kRowEnd, at), text.size());
    const std::wstring row = text.substr(at, end - at);
    double rowWidth = 0.0;
    for (std::size_t cell = 0; cell <= row.size();) {
      const std::size_t cellEnd = std::min(row.find(kCellEnd, cell), row.size());
      const double advance = lineAdvance(plainMText(row.substr(cell, cellEnd - cell)));
      rowWidth += advance > 0.0 ? (advance + 1.0) * height : 0.0;
      cell = cellEnd + kCellEnd.size();
    }
    rows += rowWidth > 0.0 ? 1.0 : 0.0;
    width = std::fmax(width, rowWidth);
    at = end + kRowEnd.size();
  }
  const AcGeMatrix3d frame =
      frameAt(tags.point(kPoint, range),
              tags.point(kSecondPoint, range, {1.0, 0.0, 0.0}).asVector(), normalOf(tags, range));
  // The place is the middle of the first row's left side.
  addRectangle(0.0, height - 2.0 * height * std::fmax(rows, 1.0), width, height, toWorld * frame,
               box);
  return Acad::eOk;
}

constexpr std::array kRules{Rule{"AcDbFcf", 10, Point},
                            Rule{"AcDbFcf", 11, Direction, &AcGeVector3d::kXAxis}};
constexpr TransformSchema kSchema{.normalMarker = "AcDbFcf", .rules = kRules};

constexpr std::array kKinds{
    RecordKind{.name = "TOLERANCE",
               .since = Version::R13,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfTolerance,
               .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kToleranceRows{kKinds};

}  // namespace quoin::db
