// Segments of a plan in the cells of a square grid, so that those near a place are found without
// looking at the others.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "gepnt2d.h"

namespace quoin::plan {

/// The part of the plane between two corners, sides included.
struct Box {
  AcGePoint2d least;
  AcGePoint2d greatest;

  Box() = default;
  Box(const AcGePoint2d& a, const AcGePoint2d& b);
  Box grownBy(double margin) const;
  bool meets(const Box& other) const;
};

class SegmentGrid {
 public:
  /// Adds a segment under the next number; coordinates must be finite.
  void add(const AcGePoint2d& start, const AcGePoint2d& end);
  /// Arranges what was added in cells of at least this size; larger where many segments are long
  /// beside it, so that time and memory grow with the number of segments. A few that are far longer
  /// than the others, or far away, change nothing for the rest.
  void arrange(double cellSize);

  /// Calls visit(number) once for each segment whose box meets this box, and which passes a cell
  /// that does, in ascending order.
  template <class Visit>
  void visitIn(const Box& box, Visit visit) const {
    for (const std::size_t number : collect(box)) {
      visit(number);
    }
  }

 private:
  struct Segment {
    AcGePoint2d start;
    AcGePoint2d end;
    Box box;
  };
  struct Entry {
    std::uint64_t cell;
    std::size_t segment;
  };
  std::vector<std::size_t> collect(const Box& box) const;
  std::int64_t cellOf(double coordinate, double origin) const;
  template <class Add>
  void cellsOf(const Segment& segment, Add add) const;

  std::vector<Segment> m_segments;
  std::vector<Entry> m_entries;
  std::vector<std::size_t> m_long;  // in no cell: looked at by every search
  AcGePoint2d m_origin;
  double m_cellSize = 1.0;
};

}  // namespace quoin::plan
