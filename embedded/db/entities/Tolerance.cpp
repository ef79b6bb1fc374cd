// TOLERANCE: a frame of cells with tolerances of shape and position.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/Annotation.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/TextDraw.h"
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
    std::wstring text;
    double width = 0.0;
  };
  double height = 0.0;  // of the text
  std::vector<std::vector<Cell>> rows;
  double width = 0.0;
  AcGeMatrix3d place;  // the middle of the first row's left side
};

/// The text of a cell; letters of the font of tolerance signs stand for signs.
std::wstring withSigns(std::wstring_view code, std::wstring plain) {
  struct Sign {
    wchar_t letter;
    wchar_t sign;
  };
  constexpr std::array kSigns{
      Sign{L'a', L'\u2220'}, Sign{L'b', L'\u27C2'}, Sign{L'c', L'\u23E5'}, Sign{L'd', L'\u2313'},
      Sign{L'e', L'\u25CB'}, Sign{L'f', L'\u2225'}, Sign{L'g', L'\u232D'}, Sign{L'h', L'\u2197'},
      Sign{L'i', L'\u232F'}, Sign{L'j', L'\u2316'}, Sign{L'k', L'\u2312'}, Sign{L'l', L'\u24C1'},
      Sign{L'm', L'\u24C2'}, Sign{L'n', L'\u2300'}, Sign{L'p', L'\u24C5'}, Sign{L'r', L'\u25CE'},
      Sign{L's', L'\u24C8'}, Sign{L't', L'\u2330'}, Sign{L'u', L'\u23E4'}};
  constexpr std::wstring_view kFont = L"gdt;";
  for (std::size_t at = code.find(kFont); at != std::wstring_view::npos;
       at = code.find(kFont, at + 1)) {
    if (at + kFont.size() >= code.size()) {
      break;
    }
    const wchar_t letter = code[at + kFont.size()];
    const auto sign = std::find_if(kSigns.begin(), kSigns.end(),
                                   [&](const Sign& one) { return one.letter == letter; });
    const std::size_t place = plain.find(letter);
    if (sign != kSigns.end() && place != std::wstring::npos) {
      plain[place] = sign->sign;
    }
  }
  return plain;
}

/// Files write the ends of rows as line ends too, which count as rows where the frame is drawn;
/// extents take such a text as one row.
ToleranceFrame frameOf(const Drawn& entity, bool isDrawn) {
  constexpr int kTextHeight = 140;
  constexpr double kUsualHeight = 0.18;
  constexpr std::wstring_view kRowEnd = L"^J";
  constexpr std::wstring_view kCellEnd = L"%%v";
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbFcf");
  ToleranceFrame frame;
  frame.height = scaledVariable(entity, range, kTextHeight, kUsualHeight);
  std::wstring text = tags.text(kText, range).value_or(std::wstring());
  for (std::size_t at = isDrawn ? text.find(L'\n') : std::wstring::npos; at != std::wstring::npos;
       at = text.find(L'\n', at)) {
    text.replace(at, 1, kRowEnd);
  }
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find(kRowEnd, at), text.size());
    const std::wstring row = text.substr(at, end - at);
    std::vector<ToleranceFrame::Cell> cells;
    double rowWidth = 0.0;
    for (std::size_t cell = 0; cell <= row.size();) {
      const std::size_t cellEnd = std::min(row.find(kCellEnd, cell), row.size());
      const std::wstring code = row.substr(cell, cellEnd - cell);
      std::wstring plain = plainMText(code);
      const double advance = lineAdvance(plain);
      const double width = advance > 0.0 ? (advance + 1.0) * frame.height : 0.0;
      if (width > 0.0) {
        cells.push_back({withSigns(code, std::move(plain)), width});
      }
      rowWidth += width;
      cell = cellEnd + kCellEnd.size();
    }
    if (rowWidth > 0.0) {
      frame.rows.push_back(std::move(cells));
    }
    frame.width = std::fmax(frame.width, rowWidth);
    at = end + kRowEnd.size();
  }
  frame.place =
      frameAt(tags.point(kPoint, range),
              tags.point(kSecondPoint, range, {1.0, 0.0, 0.0}).asVector(), normalOf(tags, range));
  return frame;
}

Acad::ErrorStatus extentsOfTolerance(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                     AcDbExtents& box) {
  const ToleranceFrame frame = frameOf(entity, false);
  const auto rows = static_cast<double>(frame.rows.size());
  addRectangle(0.0, frame.height - 2.0 * frame.height * std::fmax(rows, 1.0), frame.width,
               frame.height, toWorld * frame.place, box);
  return Acad::eOk;
}

void drawTolerance(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const ToleranceFrame frame = frameOf(entity, true);
  const AcGeMatrix3d place = toWorld * frame.place;
  const TextStyle style = textStyleOf(nullptr, {});
  double top = frame.height;
  for (const std::vector<ToleranceFrame::Cell>& row : frame.rows) {
    double left = 0.0;
    for (const ToleranceFrame::Cell& cell : row) {
      walk.strokePlain(
          rectanglePath(left, top - 2.0 * frame.height, left + cell.width, top, place));
      TextLine line;
      line.origin = place * AcGePoint3d(left + 0.5 * cell.width, top - frame.height, 0.0);
      line.along = place * AcGeVector3d::kXAxis;
      line.up = place * (AcGeVector3d::kYAxis * frame.height);
      line.width = cell.width - frame.height;
      line.alongShare = 0.5;
      line.upShare = 0.5;
      drawLine(runsOf(cell.text, *style.metrics), style, line, walk);
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
