// Where everything stands on the page of a picture: the plan, the words above, and scale bar,
// legend and notes below.
#pragma once

#include <string>
#include <vector>

#include "commands/picture/Canvas.h"
#include "commands/picture/ListPainter.h"
#include "commands/picture/Picture.h"
#include "commands/picture/Render.h"

namespace quoin::commands {

/// A line of words that stands at a place; x and y of the start of the base line.
struct PlacedText {
  std::string text;
  double x = 0.0;
  double y = 0.0;
  double size = 0.0;
  bool isBold = false;
};

struct PlacedEntry {
  const LegendEntry* entry = nullptr;
  double x = 0.0;
  double y = 0.0;  // of the middle of the line
};

struct SheetLayout {
  PageSize page;
  /// Points of the page for one of a picture 1600 points wide: of words, marks and strokes.
  double unit = 1.0;
  SheetView view;
  RoundLength bar;
  double barX = 0.0;
  double barY = 0.0;  // of its upper edge
  std::vector<PlacedText> texts;
  std::vector<PlacedEntry> legend;
  /// What the page leaves out; a warning.
  std::string leftOut;
};

/// The stretch of the drawing that a picture shows; `leftOut` says what lies far off it.
Box viewOf(const Picture& picture, std::string& leftOut);

/// Fails: throws CommandError (Usage) where the plan does not fit the paper in that scale.
SheetLayout layOut(const Picture& picture, const SheetOptions& options);

}  // namespace quoin::commands
