// The one spatial index of the algorithms: searches the end points of a set of lines, which stand
// in columns and rows, for those near a line or point. What it returns is a superset of the ends
// that an exact test (a computed distance below the capture distance) accepts; how it finds them
// never shows in a result. Not exported.
//
// A search goes through the columns that the line's box meets; in each it looks up the row where
// the line's surroundings begin and reads on to where they end: a few steps for each column and
// each end read. Even a line as long as the whole set is wide costs no more than the square root
// of the number of ends, beside what it finds.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "CaptureBox.h"
#include "EndPointColumns.h"

/// Returns every end that CCaptureBox::Holds(), and only such ends. Why none is missed: the
/// columns part the ends by x, and a search visits all whose [minX, maxX] meets the box's. Of a
/// column all ends are read whose y lies in the range that the box gives for the column's x: row
/// indices never fall as y rises, so they stand in the rows from that of the lower bound to that
/// of the upper one.
class CEndPointIndex : public CEndPointColumns {
 public:
  template <class Line>
  CEndPointIndex(const std::vector<Line*>& lines, double captureDistance,
                 ESearch search = eForLines)
      : CEndPointColumns(lines, captureDistance, search) {}

  /// Calls visit(end index) for the ends that the box holds, in no particular order, until it
  /// returns false. `column` is one that the box meets, if it meets any: that of an end of the
  /// line itself, or ColumnAt() its x.
  template <class Visit>
  void VisitNear(const CCaptureBox& box, std::size_t column, Visit visit) const {
    VisitColumns(box, column, [&](std::size_t index) {
      for (const End& end : EndsNear(box, index)) {
        if (box.Holds(end.x, end.y) && !visit(end.index)) {
          return false;
        }
      }
      return true;
    });
  }

  /// A list of end indices that keeps its memory when it is cleared.
  class CFound {
   public:
    void Clear() { m_count = 0; }
    std::span<const std::uint32_t> All() const { return {m_indices.data(), m_count}; }

   private:
    friend class CEndPointIndex;
    std::vector<std::uint32_t> m_indices;
    std::size_t m_count = 0;
  };
  /// Appends the indices of the ends that the box holds, except those of the line itself, and
  /// returns how many. `column` as above.
  std::size_t CollectNear(const CCaptureBox& box, std::size_t column, std::size_t ownLine,
                          CFound& found) const {
    const std::size_t before = found.m_count;
    VisitColumns(box, column, [&](std::size_t index) {
      const std::span<const End> ends = EndsNear(box, index);
      const std::size_t most = found.m_count + ends.size();
      if (most > found.m_indices.size()) {
        found.m_indices.resize(2 * most);
      }
      // Branch-free: every index is written, and the next one over it where it is not wanted.
      std::uint32_t* next = found.m_indices.data() + found.m_count;
      for (const End& end : ends) {
        *next = end.index;
        next += static_cast<unsigned>(box.Holds(end.x, end.y)) &
                static_cast<unsigned>(end.Line() != ownLine);
      }
      found.m_count = static_cast<std::size_t>(next - found.m_indices.data());
      return true;
    });
    return found.m_count - before;
  }

 private:
  /// Calls visit(column) for the columns that the box meets until it returns false.
  template <class Visit>
  void VisitColumns(const CCaptureBox& box, std::size_t column, Visit visit) const {
    for (std::size_t i = std::min(column + 1, ColumnCount()); i-- > 0 && MaxXOf(i) >= box.MinX();) {
      if (!visit(i)) {
        return;
      }
    }
    for (std::size_t i = column + 1; i < ColumnCount() && MinXOf(i) <= box.MaxX(); ++i) {
      if (!visit(i)) {
        return;
      }
    }
  }

  /// The ends of a column among which those are that the box holds.
  std::span<const End> EndsNear(const CCaptureBox& box, std::size_t column) const {
    const CCaptureBox::Range y = box.YRangeWithin(MinXOf(column), MaxXOf(column));
    return EndsWithin(column, y.low, y.high);
  }
};
