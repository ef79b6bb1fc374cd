// TOLERANCE: a frame of cells with tolerances of shape and position.
#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/Annotation.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/MTextLayout.h"
#include "embedded/db/geometry/TextMeasure.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

constexpr int kText = 1;
constexpr int kPoint = 10;
constexpr int kSecondPoint = 11;

/// The frame of a tolerance: rows of cells, one above the other. A cell is twice as high as its
/// text, with half a height at either side.
struct ToleranceFrame {
  struct Cell {
    std::wstring code;  // with its format
    double width = 0.0;
  };
  double height = 0.0;  // of the text
  std::vector<std::vector<Cell>> rows;
  double width = 0.0;
  AcGeMatrix3d place;  // the middle of the first row's left side
};

MTextSettings settingsFor(double height) {
  MTextSettings settings;
  settings.height = height;
  settings.alignment = 0.5;
  settings.style = textStyleOf(nullptr, {});
  return settings;
}

/// The width of a cell's text in its heights. Letters of the font of signs are wider than in
/// others.
double advanceOf(const std::wstring& code) {
  const bool hasSigns =
      code.find(L"gdt") != std::wstring::npos || code.find(L"GDT") != std::wstring::npos;
  if (!hasSigns) {
    return lineAdvance(plainMText(code));
  }
  const MTextLayout layout = layoutMText(code, settingsFor(1.0));
  return layout.right - layout.left;
}

/// Files write the ends of rows as "^J", which reads as a line end, too.
ToleranceFrame frameOf(const Drawn& entity) {
  constexpr int kTextHeight = 140;
  constexpr double kUsualHeight = 0.18;
  constexpr std::wstring_view kRowEnd = L"^J";
  constexpr std::wstring_view kCellEnd = L"%%v";
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbFcf");
  ToleranceFrame frame;
  frame.height = scaledVariable(entity, range, kTextHeight, kUsualHeight);
  std::wstring text = tags.text(kText, range).value_or(std::wstring());
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t lineEnd = std::min(text.find(L'\n', at), text.size());
    const std::size_t end = std::min(text.find(kRowEnd, at), lineEnd);
    const std::wstring row = text.substr(at, end - at);
    std::vector<ToleranceFrame::Cell> cells;
    double rowWidth = 0.0;
    for (std::size_t cell = 0; cell <= row.size();) {
      const std::size_t cellEnd = std::min(row.find(kCellEnd, cell), row.size());
      std::wstring code = row.substr(cell, cellEnd - cell);
      const double advance = advanceOf(code);
      const double width = advance > 0.0 ? (advance + 1.0) * frame.height : 0.0;
      if (width > 0.0) {
        cells.push_back({std::move(code), width});
      }
      rowWidth += width;
      cell = cellEnd + kCellEnd.size();
    }
    if (rowWidth > 0.0) {
      frame.rows.push_back(std::move(cells));
    }
    frame.width = std::fmax(frame.width, rowWidth);
    at = end + (end == lineEnd ? 1 : kRowEnd.size());
  }
  frame.place =
      frameAt(tags.point(kPoint, range),
              tags.point(kSecondPoint, range, {1.0, 0.0, 0.0}).asVector(), normalOf(tags, range));
  return frame;
}

Acad::ErrorStatus extentsOfTolerance(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                     AcDbExtents& box) {
  const ToleranceFrame frame = frameOf(entity);
  const auto rows = static_cast<double>(frame.rows.size());
  addRectangle(0.0, frame.height - 2.0 * frame.height * std::fmax(rows, 1.0), frame.width,
               frame.height, toWorld * frame.place, box);
  return Acad::eOk;
}

void drawTolerance(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const ToleranceFrame frame = frameOf(entity);
  const AcGeMatrix3d place = toWorld * frame.place;
  const MTextSettings settings = settingsFor(frame.height);
  double top = frame.height;
  for (const std::vector<ToleranceFrame::Cell>& row : frame.rows) {
    double left = 0.0;
    for (const ToleranceFrame::Cell& cell : row) {
      walk.strokePlain(
          rectanglePath(left, top - 2.0 * frame.height, left + cell.width, top, place));
      AcGeMatrix3d middle;
      middle.setToTranslation({left + 0.5 * cell.width, top - 0.5 * frame.height, 0.0});
      drawMText(layoutMText(cell.code, settings), place * middle, walk);
      left += cell.width;
    }
    top -= 2.0 * frame.height;
  }
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
               .draw = drawTolerance,
               .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kToleranceRows{kKinds};

}  // namespace quoin::db
