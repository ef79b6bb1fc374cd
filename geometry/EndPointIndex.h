// The one spatial index of the algorithms: the end points of a set of lines, arranged so that
// those near a given line or point are found without looking at the others. What it hands out is
// a superset of the ends that an exact test (a computed distance below the capture distance)
// accepts; how it finds them never shows in a result. Not exported.
//
//      column 0    column 1   column 2      The plane is cut into columns of about equally many
//     +----------+----------+---------+     ends, and each column into rows of equal height,
//     |  .       |        . | .       |     about half as many as it has ends. A column keeps
//     |      .   |  .       |     .   |     its ends row by row. A search goes through the
//     |----------| .        |---------|     columns that the line's box meets; in each it looks
//     |          |----------|  .  .   |     up the row where the line's surroundings begin and
//     |  .   .   |  .  . .  |         |     reads on to where they end.
//     +----------+----------+---------+
//
// Whatever the data, columns and rows adapt: what is wider than high gets more columns, crowds get
// narrow columns (but none narrower than the capture distance, which every search crosses anyway)
// and equal places stay together in one column, in order. A search costs a few steps for each
// column it meets and each end it reads. There are about as many columns as a column has ends, so
// even a line as long as the whole set is wide costs no more than the square root of the number of
// ends, beside what it finds.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "CaptureBox.h"
#include "gepnt3d.h"

/// Every end that CCaptureBox::Holds() is handed out, and only such ends. Why none is missed:
/// the columns part the ends by x, and a search visits all whose [minX, maxX] meets the box's.
/// Of a column all ends are read whose y lies in the range that the box answers for the
/// column's x: RowOf() never falls as y rises (neither does any rounded operation in it), so they
/// stand in the rows from that of the lower bound to that of the upper one. All ends of these
/// rows are read; those of a crowded row, which stand in the order of y, only between the bounds.
class CEndPointIndex {
 public:
  /// One end of line number `Line()`.
  struct End {
    double x;
    double y;
    std::uint32_t number;  // twice the line's, and one more for the line's end than for its start
    std::uint32_t part;    // while the index is made: the row that it belongs to

    std::size_t Line() const { return LineOf(number); }
    bool IsStart() const { return CEndPointIndex::IsStart(number); }
  };
  enum ESearch { eForLines, eForPoints };
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  static constexpr std::uint32_t kSeveral = 0xFFFFFFFE;

  static std::size_t LineOf(std::uint32_t endNumber) { return endNumber / 2; }
  static bool IsStart(std::uint32_t endNumber) { return endNumber % 2 == 0; }

  /// Indexes the ends of all lines: pointers to records with ptStart and ptEnd, none null. An
  /// end with a coordinate that is no finite number is near nothing and left out.
  /// `captureDistance` is that of most searches to come, `search` what they are for: lines meet
  /// several columns, so those are made wider for them; for points, ends of a row are in order.
  /// Fails: std::length_error for more than 2^31 lines.
  template <class Line>
  CEndPointIndex(const std::vector<Line*>& lines, double captureDistance,
                 ESearch search = eForLines)
      : m_minColumnWidth(captureDistance) {
    CheckCount(lines.size());
    // Records lie about in memory, and reading them is the most of the work: they are counted
    // into strips, and then put into their columns.
    const auto visitEnds = [&lines](auto visit) {
      std::uint32_t number = 0;
      for (const Line* pLine : lines) {
        VisitFinite(pLine->ptStart, number++, visit);
        VisitFinite(pLine->ptEnd, number++, visit);
      }
    };
    CStrips strips(SampleOf(lines), 2 * lines.size(), search);
    visitEnds([&strips](const End& end) { strips.Count(end.x); });
    MakeRoom(strips.GetTotal());
    if (CutStrips(strips)) {
      visitEnds([this, &strips](const End& end) { m_ends[strips.NextPlace(end.x)] = end; });
    } else {
      std::size_t place = 0;
      visitEnds([this, &place](const End& end) { m_ends[place++] = end; });
      CutSorted(strips.GetEndsPerColumn());
    }
    MakeRows(search == eForPoints);
  }

  static bool IsIndexed(const AcGePoint3d& pt) {
    return std::isfinite(pt.x) && std::isfinite(pt.y);
  }

  /// Columns with the ends in them, so that neighbours can be worked on one soon after another.
  std::size_t ColumnCount() const { return m_columns.size() - 1; }
  std::span<const End> EndsOfColumn(std::size_t column) const {
    return {m_ends.get() + m_columns[column].first, m_ends.get() + m_columns[column + 1].first};
  }

  /// Numbers the lines anew, by the places of their starts, so that what is done for one after
  /// another stays together; lines whose starts are not indexed come last. `numbers` has the new
  /// number of each line then. Calls visit(line) in the order of the new numbers.
  template <class Visit>
  void NumberByPlace(std::vector<std::uint32_t>& numbers, std::size_t lines, Visit visit) {
    numbers.assign(lines, kNone);
    std::uint32_t count = 0;
    for (std::size_t place = 0; place < m_endCount; ++place) {
      if (m_ends[place].IsStart()) {
        const std::size_t line = m_ends[place].Line();
        numbers[line] = count++;
        visit(line);
      }
    }
    for (std::size_t line = 0; line < lines; ++line) {
      if (numbers[line] == kNone) {
        numbers[line] = count++;
        visit(line);
      }
    }
    for (std::size_t place = 0; place < m_endCount; ++place) {
      End& end = m_ends[place];
      end.number = 2 * numbers[end.Line()] + end.number % 2;
    }
  }

  /// Calls visit(end number) for the ends that the box holds, in no order that means anything,
  /// until it answers false. `column` is one that the box meets, if it meets any: that of an
  /// end of the line itself.
  template <class Visit>
  void VisitNear(const CCaptureBox& box, std::size_t column, Visit visit) const {
    VisitColumns(box, column, [&](std::size_t index) {
      const auto [first, last] = EndsWithin(box, index);
      for (const End* end = first; end != last; ++end) {
        if (box.Holds(end->x, end->y) && !visit(end->number)) {
          return false;
        }
      }
      return true;
    });
  }

  /// Where to begin a search at this x.
  std::size_t ColumnNear(double x) const {
    const auto behind =
        std::upper_bound(m_columns.begin(), m_columns.end() - 1, x,
                         [](double value, const Column& column) { return value < column.minX; });
    return behind == m_columns.begin() ? 0
                                       : static_cast<std::size_t>(behind - m_columns.begin()) - 1;
  }

  /// For every end of an index for points, column by column, calls visit(end, contact): the number
  /// of the one end of another line near it, or kNone, or kSeveral.
  template <class Visit>
  void VisitContacts(double captureDistance, Visit visit) const {
    std::vector<End> byX;
    for (std::size_t column = 0; column < ColumnCount(); ++column) {
      const double reach = ReachInColumn(column, captureDistance);
      std::span<const End> left = EndsOfColumn(column);
      while (!left.empty()) {
        // What a gap parts in y has no contact across it.
        std::size_t count = 1;
        while (count < left.size() && left[count].y - left[count - 1].y <= reach) {
          ++count;
        }
        const std::span<const End> group = left.first(count);
        left = left.subspan(count);
        if (IsAlongX(group)) {
          byX.assign(group.begin(), group.end());
          if (group.front().y < group.back().y) {
            std::sort(byX.begin(), byX.end(), [](const End& a, const End& b) {
              return a.x < b.x || (a.x == b.x && a.y < b.y);
            });
          }
          VisitContactsInGroup(column, byX, &End::x, &End::y, reach, captureDistance, visit);
        } else {
          VisitContactsInGroup(column, group, &End::y, &End::x, reach, captureDistance, visit);
        }
      }
    }
  }

  /// A list of end numbers that keeps its memory when it is cleared.
  class CFound {
   public:
    void Clear() { m_count = 0; }
    std::span<const std::uint32_t> All() const { return {m_numbers.data(), m_count}; }

   private:
    friend class CEndPointIndex;
    std::vector<std::uint32_t> m_numbers;
    std::size_t m_count = 0;
  };
  /// Appends the numbers of the ends that the box holds, except those of the line itself, and
  /// answers how many. `column` as above.
  std::size_t CollectNear(const CCaptureBox& box, std::size_t column, std::size_t ownLine,
                          CFound& found) const {
    const std::size_t before = found.m_count;
    VisitColumns(box, column, [&](std::size_t index) {
      const auto [first, last] = EndsWithin(box, index);
      const std::size_t most = found.m_count + static_cast<std::size_t>(last - first);
      if (most > found.m_numbers.size()) {
        found.m_numbers.resize(2 * most);
      }
      // Every number is written, and the next one over it where it is not wanted: cheaper than
      // a branch that is anyone's guess.
      std::uint32_t* next = found.m_numbers.data() + found.m_count;
      for (const End* end = first; end != last; ++end) {
        *next = end->number;
        next += static_cast<unsigned>(box.Holds(end->x, end->y)) &
                static_cast<unsigned>(end->Line() != ownLine);
      }
      found.m_count = static_cast<std::size_t>(next - found.m_numbers.data());
      return true;
    });
    return found.m_count - before;
  }

 private:
  /// A place among equal ones, 0 to `last`. NaN is the first: it comes from a distance that is
  /// beyond all numbers where there are no places per unit, so that all are in the first one.
  static std::uint32_t PlaceWithin(double place, double last) {
    return static_cast<std::uint32_t>(std::min(std::max(0.0, place), last));
  }

  static constexpr std::size_t kEndsPerRow = 2;
  /// Rows with more ends than this are sorted as a whole, and searched by halving.
  static constexpr std::uint32_t kCrowdedRow = 32;

  struct Column {
    double minX = 0.0;
    double maxX = 0.0;
    double minY = 0.0;
    double rowsPerUnit = 0.0;
    std::uint32_t first = 0;  // the place of its first end; the next column's is behind its last
    std::uint32_t firstRow = 0;
    std::uint32_t rows = 1;

    std::size_t RowOf(double y) const {
      return firstRow + PlaceWithin((y - minY) * rowsPerUnit, rows - 1.0);
    }
  };

  /// Equal strips of x, many to a column, in which the ends are counted to find the columns. A
  /// sample tells how far they reach; what lies beyond counts to the outermost.
  class CStrips {
   public:
    CStrips(std::vector<AcGePoint3d> sample, std::size_t mostEnds, ESearch search);
    void Count(double x) {
      ++m_counts[StripOf(x)];
      ++m_total;
    }
    std::size_t GetTotal() const { return m_total; }
    std::size_t GetEndsPerColumn() const { return m_endsPerColumn; }
    /// Once the strips have been cut: where the next end of this x goes.
    std::size_t NextPlace(double x) { return m_nextPlaces[StripOf(x)]++; }

   private:
    friend class CEndPointIndex;
    std::size_t StripOf(double x) const {
      return PlaceWithin((x - m_minX) * m_stripsPerUnit, m_lastStrip);
    }

    std::size_t m_endsPerColumn = 0;
    double m_minX = 0.0;
    double m_stripWidth = 0.0;
    double m_stripsPerUnit = 0.0;
    double m_lastStrip = 0.0;
    std::size_t m_total = 0;
    std::vector<std::uint32_t> m_counts;
    std::vector<std::uint32_t> m_nextPlaces;
  };

  template <class Visit>
  static void VisitFinite(const AcGePoint3d& pt, std::uint32_t number, Visit& visit) {
    if (IsIndexed(pt)) {
      visit(End{pt.x, pt.y, number, 0});
    }
  }

  /// Some starts, evenly from the whole set.
  template <class Line>
  static std::vector<AcGePoint3d> SampleOf(const std::vector<Line*>& lines) {
    constexpr std::size_t kSampleSize = 256;
    std::vector<AcGePoint3d> sample;
    const std::size_t step = lines.size() / kSampleSize + 1;
    for (std::size_t i = 0; i < lines.size(); i += step) {
      if (IsIndexed(lines[i]->ptStart)) {
        sample.push_back(lines[i]->ptStart);
      }
    }
    return sample;
  }

  /// Calls visit(index) for the columns that the box meets until it answers false.
  template <class Visit>
  void VisitColumns(const CCaptureBox& box, std::size_t column, Visit visit) const {
    for (std::size_t i = std::min(column + 1, ColumnCount());
         i-- > 0 && m_columns[i].maxX >= box.MinX();) {
      if (!visit(i)) {
        return;
      }
    }
    for (std::size_t i = column + 1; i + 1 < m_columns.size() && m_columns[i].minX <= box.MaxX();
         ++i) {
      if (!visit(i)) {
        return;
      }
    }
  }

  /// How far an end of the column may lie from what is near it, in x or y.
  double ReachInColumn(std::size_t index, double captureDistance) const {
    const Column& column = m_columns[index];
    const std::span<const End> ends = EndsOfColumn(index);
    return CCaptureBox::Reach(
        std::max(std::max(std::fabs(column.minX), std::fabs(column.maxX)),
                 std::max(std::fabs(ends.front().y), std::fabs(ends.back().y))),
        captureDistance);
  }

  /// Whether neighbours are told apart by x rather than by y, in whose order the ends stand.
  static bool IsAlongX(std::span<const End> group) {
    constexpr std::size_t kFew = 4;
    if (group.size() <= kFew) {
      return false;
    }
    double minX = group.front().x;
    double maxX = minX;
    for (const End& end : group) {
      minX = std::min(minX, end.x);
      maxX = std::max(maxX, end.x);
    }
    return maxX - minX > group.back().y - group.front().y;
  }

  /// The contacts of ends in the order of one coordinate. Nearly always all is said within the
  /// group, a few steps up and down from the end itself.
  template <class Visit>
  void VisitContactsInGroup(std::size_t column, std::span<const End> group, double End::*along,
                            double End::*across, double reach, double captureDistance,
                            Visit& visit) const {
    const double beforeX = column > 0 ? m_columns[column - 1].maxX + reach : 0.0;
    const double behindX = column + 1 < ColumnCount() ? m_columns[column + 1].minX - reach : 0.0;
    for (std::size_t own = 0; own < group.size(); ++own) {
      const End& end = group[own];
      std::uint32_t contact = kNone;
      const auto meet = [&](std::uint32_t number) {
        if (LineOf(number) != end.Line()) {
          contact = contact == kNone ? number : kSeveral;
        }
        return contact != kSeveral;
      };
      if ((column > 0 && end.x <= beforeX) || (column + 1 < ColumnCount() && end.x >= behindX)) {
        VisitNear(CCaptureBox(AcGePoint3d(end.x, end.y, 0.0), captureDistance), column, meet);
        visit(end, contact);
        continue;
      }
      bool more = true;
      for (std::size_t i = own; more && i-- > 0 && end.*along - group[i].*along <= reach;) {
        if (std::fabs(group[i].*across - end.*across) <= reach) {
          more = meet(group[i].number);
        }
      }
      for (std::size_t i = own + 1;
           more && i < group.size() && group[i].*along - end.*along <= reach; ++i) {
        if (std::fabs(group[i].*across - end.*across) <= reach) {
          more = meet(group[i].number);
        }
      }
      visit(end, contact);
    }
  }

  struct EndRange {
    const End* first;
    const End* last;
  };
  /// The ends of a column among which those are that the box holds.
  EndRange EndsWithin(const CCaptureBox& box, std::size_t index) const {
    const Column& column = m_columns[index];
    const CCaptureBox::Range y = box.YRangeWithin(column.minX, column.maxX);
    const std::size_t lowRow = column.RowOf(y.low);
    const std::size_t highRow = column.RowOf(y.high);
    const End* first = m_ends.get() + m_rowFirst[lowRow];
    const End* last = m_ends.get() + m_rowFirst[highRow + 1];
    if (m_rowFirst[lowRow + 1] - m_rowFirst[lowRow] > kCrowdedRow) {
      first = std::lower_bound(first, last, y.low,
                               [](const End& end, double low) { return end.y < low; });
    }
    if (m_rowFirst[highRow + 1] - m_rowFirst[highRow] > kCrowdedRow) {
      last = std::upper_bound(first, last, y.high,
                              [](double high, const End& end) { return high < end.y; });
    }
    return {first, last};
  }

  static void CheckCount(std::size_t lines);
  void MakeRoom(std::size_t ends);
  void BeginColumn(std::size_t first);
  bool CutStrips(CStrips& strips);
  void CutSorted(std::size_t endsPerColumn);
  void MakeRows(bool inOrder);
  void MakeRowsOf(Column& column, std::span<End> ends, bool inOrder, std::vector<End>& moved);

  double m_minColumnWidth;
  std::unique_ptr<End[]> m_ends;  // column by column, each in the order of y
  std::size_t m_endCount = 0;
  std::vector<Column> m_columns;          // and one behind the last
  std::vector<std::uint32_t> m_rowFirst;  // the place of each row's first end, and one more
};
