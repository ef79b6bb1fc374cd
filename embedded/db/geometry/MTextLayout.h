// Multiline texts laid out as a reader sees them: paragraphs wrapped at the width, inline heights,
// fonts and colours, stacked fractions, columns. One piece a stretch of a line that looks alike.
// TextMeasure.h tells how much room such a text takes without laying it out.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dbcolor.h"
#include "embedded/db/geometry/TextDraw.h"
#include "gemat3d.h"

namespace quoin::db {

struct MTextSettings {
  double height = 0.0;  // of capitals
  double limit = 0.0;   // the width at which lines are wrapped; 0: not at all
  double spacing = 1.0;
  bool isExact = false;  // lines lie as far apart as `height` says, however high their letters are
  double alignment = 0.0;  // 0 left, 0.5 centred, 1 right
  double rise = 0.0;       // where the place is in the box: 0 at its top, 1 at its bottom
  TextStyle style;
  // Columns; one has no width of its own.
  std::size_t columns = 1;
  double columnWidth = 0.0;
  double gutter = 0.0;
  std::vector<double> columnHeights;  // of each; the last one goes for those behind it
};

/// Lengths in drawing units; the place of the text is 0,0, lines run along X.
struct MTextPiece {
  std::wstring text;
  double x = 0.0;
  double y = 0.0;  // of the base line
  double width = 0.0;
  double height = 0.0;
  double oblique = 0.0;
  TextStyle style;
  bool isUnderlined = false;
  bool isOverlined = false;
  bool isStruckThrough = false;
  std::optional<AcCmColor> color;
};
/// The bar of a stacked fraction.
struct MTextBar {
  AcGePoint3d start;
  AcGePoint3d end;
  std::optional<AcCmColor> color;
};
struct MTextLayout {
  std::vector<MTextPiece> pieces;
  std::vector<MTextBar> bars;
  // The box of it all.
  double left = 0.0;
  double right = 0.0;
  double top = 0.0;
  double bottom = 0.0;
};
MTextLayout layoutMText(std::wstring_view contents, const MTextSettings& settings);

/// Draws a layout whose place and axes are those of `frame`; the axes are unit vectors of the
/// text's space.
void drawMText(const MTextLayout& layout, const AcGeMatrix3d& frame, DrawWalk& walk);

}  // namespace quoin::db
