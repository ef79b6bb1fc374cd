// Paints a list of primitives onto a page: which colours and widths they have there, what lies
// outside of it, and what is too small to be told apart.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "commands/picture/Canvas.h"
#include "commands/picture/DrawList.h"
#include "commands/picture/ImageFiles.h"

namespace quoin::commands {

/// The drawing's own colours on white or on dark, or one grey behind marks.
enum class Theme { Paper, Screen, Faint };

/// What a page of this theme is made of.
Color paperOf(Theme theme);

struct ListStyle {
  Theme theme = Theme::Paper;
  /// Everything in this colour and width, in points, whatever the drawing says.
  std::optional<Color> color;
  double width = 1.0;
  bool hasTexts = true;
  double pointsPerMillimeter = 4.0;  // of line weights
  double thinnest = 0.7;             // points
  ImageFiles* images = nullptr;      // null: they are frames with the names of their files
  /// The name of a layer, for pages that keep layers apart; empty where they do not.
  std::function<std::string(const AcDbObjectId& layer)> layerName;
};

/// Where the drawing stands on the page.
struct SheetView {
  double scale = 1.0;  // points of a drawing unit
  double left = 0.0;   // on the page, of what is at minX and minY in the drawing
  double bottom = 0.0;
  double minX = 0.0;
  double minY = 0.0;
  Box clip;  // on the page

  double x(double drawingX) const { return left + (drawingX - minX) * scale; }
  double y(double drawingY) const { return bottom - (drawingY - minY) * scale; }
};

/// Dots of an image in one point of a page that has none of its own.
inline constexpr double kImageDotsPerPoint = 300.0 / 72.0;
/// Asks for all images of a list, so that what cannot be shown is known before anything is painted.
/// Fails: throws CommandError (Interrupted).
void findImages(ImageFiles& images, const DrawList& list, double dotsPerUnit);

/// Fails: throws CommandError (Interrupted).
void paintList(Canvas& canvas, const DrawList& list, const ListStyle& style, const SheetView& view);

/// The light that a colour sends over that of white, and how far two colours stand apart, 1 to 21
/// (relative luminance and contrast ratio of WCAG 2.1).
double luminanceOf(const Color& color);
double contrastOf(const Color& a, const Color& b);

}  // namespace quoin::commands
