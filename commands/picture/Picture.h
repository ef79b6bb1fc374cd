// A picture of a plan as plain data: what the drawing shows, and above it paths, texts and marks in
// drawing coordinates, with what explains them. Rendering is somebody else's business (Render.h),
// so every command makes its picture the same way and it comes out alike as PNG, SVG and PDF.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/picture/ScaleBar.h"
#include "dbid.h"
#include "gepnt2d.h"

namespace quoin::commands {

struct Color {
  double red;
  double green;
  double blue;
};

/// The colours that all pictures share.
namespace palette {
inline constexpr Color kPaper{1.0, 1.0, 1.0};
inline constexpr Color kInk{0.13, 0.13, 0.15};
/// What is not worked on: light beside marks, and still three times as dark as paper (WCAG 2.1).
inline constexpr Color kPlan{0.56, 0.57, 0.59};
inline constexpr Color kWall{0.20, 0.21, 0.24};   // what is worked on, unchanged
inline constexpr Color kFirst{0.05, 0.40, 0.75};  // distinct results: blue, orange, ...
inline constexpr Color kSecond{0.88, 0.46, 0.05};
inline constexpr Color kThird{0.10, 0.55, 0.35};
inline constexpr Color kMark{0.80, 0.05, 0.20};
}  // namespace palette

/// Widths and sizes are in points of a picture 1600 points wide.
struct Path {
  std::vector<AcGePoint2d> points;
  bool isClosed = false;
  Color color = palette::kPlan;
  double width = 1.0;
  bool isDashed = false;
  bool isFilled = false;
  Color fill = palette::kPaper;
};

struct Label {
  AcGePoint2d position;
  /// Which point of the text stands there: 0 the left end, 1 the right end; 0 the base line,
  /// 1 the top of the capitals.
  double alongShare = 0.0;
  double upShare = 0.0;
  std::string text;       // UTF-8
  double height = 0.0;    // drawing units
  double rotation = 0.0;  // radians
  Color color = palette::kPlan;
};

enum class MarkShape { Dot, Cross, Square, Triangle };

struct Mark {
  AcGePoint2d position;
  MarkShape shape = MarkShape::Dot;
  Color color = palette::kMark;
  double size = 5.0;  // radius
};

/// One line of the legend: a stroke, or a mark where `isMark` says so.
struct LegendEntry {
  std::string text;
  Color color;
  bool isMark = false;
  MarkShape shape = MarkShape::Dot;
  double width = 2.0;
};

class DrawList;

/// What the drawing itself shows, or some of its entities.
struct DrawnPart {
  std::shared_ptr<const DrawList> list;
  /// Everything in this colour and width, whatever the drawing says.
  std::optional<Color> color;
  double width = 1.0;
  bool hasTexts = true;
  /// It is drawn above so many paths, and beneath the others.
  std::size_t pathsBefore = 0;
};

struct Picture {
  std::string title;
  std::string subtitle;
  std::vector<DrawnPart> drawn;
  std::vector<Path> paths;  // drawn in this order, marks on top of all
  std::vector<Label> labels;
  std::vector<Mark> marks;
  std::vector<LegendEntry> legend;
  /// Millimetres of a drawing unit; 0 where the drawing has no unit.
  double millimetersPerUnit = 0.0;
  LengthKind lengthKind = LengthKind::Unknown;
  /// The name of a layer of the drawing.
  std::function<std::string(const AcDbObjectId&)> layerName;
  /// What must be seen, beside the paths themselves: when the plan reaches very far out, the
  /// view keeps to this.
  std::vector<AcGePoint2d> focus;
  /// What it does not show as it is; stands under the picture too.
  std::vector<std::string> warnings;
};

}  // namespace quoin::commands
