// Takes a path of the drawing to the page: in the page's points, without what lies far outside and
// without points that nobody can tell apart.
#pragma once

#include <vector>

#include "commands/picture/Canvas.h"
#include "commands/picture/DrawList.h"
#include "commands/picture/ListPainter.h"

namespace quoin::commands {

class SheetPath {
 public:
  /// `apart` is how far points of a path stand from each other at least, in points.
  SheetPath(Canvas& canvas, const SheetView& view, double apart);

  /// What a box of the drawing is on the page.
  Box onSheet(const Box& box) const;
  /// Whether a box of the page is near enough for paths in it to be drawn as they are.
  bool isNear(const Box& sheet) const {
    return m_near.contains(sheet.minX, sheet.minY) && m_near.contains(sheet.maxX, sheet.maxY);
  }

  /// Draws a path that is near; returns its pieces.
  std::size_t draw(const DrawList::PathView& path);
  /// Strokes a path that reaches far outside piece by piece.
  void strokeFar(const DrawList::PathView& path, const Pen& pen);
  /// Draws what is to be filled of such a path.
  void drawFarFill(const DrawList::PathView& path);

 private:
  struct Point {
    double x;
    double y;
  };
  using Course = std::vector<Point>;

  void addArc(const double* numbers);
  void lineTo(double x, double y);
  /// The courses of a path as chords, no finer than needed where it shows.
  std::vector<Course> coursesOf(const DrawList::PathView& path) const;
  void addChords(Course& course, const double* numbers, double from, double to, int depth) const;
  Point arcPoint(const double* numbers, double angle) const;

  Canvas& m_canvas;
  const SheetView& m_view;
  double m_apart;
  Box m_near;
  // The point where the path has come to, and the last one that was drawn.
  Point m_at{};
  Point m_drawn{};
};

}  // namespace quoin::commands
