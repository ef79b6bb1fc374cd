// What pictures are painted on: a page that takes paths, fills and texts in points from its upper
// left corner. One form for PNG and PDF (CairoCanvas.h), one for SVG (SvgCanvas.h).
#pragma once

#include <memory>
#include <span>
#include <string>

#include "commands/picture/Box.h"
#include "commands/picture/Lettering.h"
#include "commands/picture/Picture.h"
#include "commands/picture/Raster.h"

namespace quoin::commands {

struct PageSize {
  double width = 0.0;  // points of 1/72 inch
  double height = 0.0;
};

struct Pen {
  Color color{};
  double opacity = 1.0;
  double width = 1.0;
  std::span<const double> dashes{};  // points
  double dashStart = 0.0;
};

/// From the letters of a set line (x along it, y down, in its font size), or from an image one wide
/// and one high (x along its rows, y down), to the page.
struct SheetPlace {
  double x = 0.0;
  double y = 0.0;
  double alongX = 1.0;
  double alongY = 0.0;
  double downX = 0.0;
  double downY = 1.0;
};

class Canvas {
 public:
  virtual ~Canvas() = default;

  /// The page that everything stands on from here.
  virtual void beginPage(const PageSize& size, const Color& paper) = 0;
  virtual void endPage() = 0;
  /// What follows is of this layer; an empty name ends the group.
  virtual void setGroup(const std::string& /*layer*/) {}
  /// Keeps to a box until endClip().
  virtual void beginClip(const Box& box) = 0;
  virtual void endClip() = 0;
  /// Keeps to what lies inside what was drawn, until endClip().
  virtual void beginPathClip() = 0;

  virtual void moveTo(double x, double y) = 0;
  virtual void lineTo(double x, double y) = 0;
  virtual void curveTo(double x1, double y1, double x2, double y2, double x, double y) = 0;
  virtual void closePath() = 0;
  /// Strokes, or fills by the even-odd rule, what was drawn since the last of these.
  virtual void stroke(const Pen& pen) = 0;
  virtual void fill(const Color& color, double opacity) = 0;
  virtual void text(const SetLine& line, const SheetPlace& place, const Color& color,
                    double opacity) = 0;
  /// `isNear` says that no corner is far outside of the page.
  virtual void image(const std::shared_ptr<const Raster>& raster, const SheetPlace& place,
                     double opacity, bool isNear) = 0;

  /// Dots of the page's own grid in a point; 0 where there is none, as on paper.
  virtual double dotsPerPoint() const = 0;
  /// The file. Fails: throws CommandError (OutputUnwritable) with `name` and the cause.
  virtual std::string bytes(const std::string& name) = 0;
};

struct CanvasOptions {
  double dotsPerPoint = 1.0;     // of a PNG
  bool hasTextOutlines = false;  // letters as paths
  bool isMillimeters = false;    // an SVG says its size in millimetres, as paper
};

std::unique_ptr<Canvas> makePngCanvas(const CanvasOptions& options);
std::unique_ptr<Canvas> makePdfCanvas(const CanvasOptions& options);
std::unique_ptr<Canvas> makeSvgCanvas(const CanvasOptions& options);

}  // namespace quoin::commands
