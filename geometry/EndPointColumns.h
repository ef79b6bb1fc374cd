// The end points of a set of lines, arranged in columns and rows so that those in a part of the
// plane are found without looking at the others. CEndPointIndex searches them, CEndPointContacts
// pairs them. Not exported.
//
//      column 0    column 1   column 2      The plane is cut into columns of about equally many
//     +----------+----------+---------+     ends, and each column into rows of equal height,
//     |  .       |        . | .       |     about half as many as it has ends. A column keeps
//     |      .   |  .       |     .   |     its ends row by row.
//     |----------| .        |---------|
//     |          |----------|  .  .   |
//     |  .   .   |  .  . .  |         |
//     +----------+----------+---------+
//
// Whatever the data, columns and rows adapt: what is wider than high gets more columns, crowds get
// narrow columns (but none narrower than the capture distance, which every search crosses anyway)
// and equal places stay together in one column, in order. There are about as many columns as a
// column has ends.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "gepnt3d.h"

class CEndPointColumns {
 public:
  /// One end of a line.
  struct End {
    double x;
    double y;
    std::uint32_t index;  // twice the line's, and one more for the line's end than for its start
    std::uint32_t row;    // while the rows are made: one more than its row

    std::size_t Line() const { return LineOf(index); }
    bool IsStart() const { return CEndPointColumns::IsStart(index); }
  };
  enum ESearch { eForLines, eForPoints };
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  static std::size_t LineOf(std::uint32_t endIndex) { return endIndex / 2; }
  static bool IsStart(std::uint32_t endIndex) { return endIndex % 2 == 0; }

  /// Arranges the ends of all lines: pointers to records with ptStart and ptEnd, none null. An
  /// end with a coordinate that is not finite is near nothing and left out.
  /// `captureDistance` is that of most searches to come, `search` what they are for: lines meet
  /// several columns, so those are made wider for them; for points, ends of a row are in order.
  /// Fails: std::length_error for more than 2^31 lines.
  template <class Line>
  CEndPointColumns(const std::vector<Line*>& lines, double captureDistance, ESearch search)
      : m_minColumnWidth(captureDistance) {
    CheckCount(lines.size());
    // Two passes over the records instead of a sort: counting into bins, then into columns.
    const auto visitEnds = [&lines](auto visit) {
      std::uint32_t index = 0;
      for (const Line* pLine : lines) {
        VisitFinite(pLine->ptStart, index++, visit);
        VisitFinite(pLine->ptEnd, index++, visit);
      }
    };
    CXHistogram histogram(SampleOf(lines), 2 * lines.size(), search);
    visitEnds([&histogram](const End& end) { histogram.Count(end.x); });
    Allocate(histogram.GetTotal());
    if (CutAtBins(histogram)) {
      visitEnds([this, &histogram](const End& end) { m_ends[histogram.NextPlace(end.x)] = end; });
    } else {
      std::size_t place = 0;
      visitEnds([this, &place](const End& end) { m_ends[place++] = end; });
      CutSorted(histogram.GetEndsPerColumn());
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
  double MinXOf(std::size_t column) const { return m_columns[column].minX; }
  double MaxXOf(std::size_t column) const { return m_columns[column].maxX; }
  /// The column to the left of whose successor this x is.
  std::size_t ColumnAt(double x) const {
    const auto behind =
        std::upper_bound(m_columns.begin(), m_columns.end() - 1, x,
                         [](double value, const Column& column) { return value < column.minX; });
    return behind == m_columns.begin() ? 0
                                       : static_cast<std::size_t>(behind - m_columns.begin()) - 1;
  }

  /// The ends of the rows that the range of y meets; of a crowded row, which is in the order of y,
  /// only those in the range.
  std::span<const End> EndsWithin(std::size_t index, double lowY, double highY) const {
    const Column& column = m_columns[index];
    const std::size_t lowRow = column.RowOf(lowY);
    const std::size_t highRow = column.RowOf(highY);
    const End* first = m_ends.get() + m_rowFirst[lowRow];
    const End* last = m_ends.get() + m_rowFirst[highRow + 1];
    if (m_rowFirst[lowRow + 1] - m_rowFirst[lowRow] > kCrowdedRow) {
      first =
          std::lower_bound(first, last, lowY, [](const End& end, double y) { return end.y < y; });
    }
    if (m_rowFirst[highRow + 1] - m_rowFirst[highRow] > kCrowdedRow) {
      last =
          std::upper_bound(first, last, highY, [](double y, const End& end) { return y < end.y; });
    }
    return {first, last};
  }

  /// Gives the lines new indices, by the places of their starts, so that what is done for one after
  /// another stays together; lines whose starts are not indexed come last. `indices` has the new
  /// index of each line then. Calls visit(line) in the order of the new indices.
  template <class Visit>
  void Renumber(std::vector<std::uint32_t>& indices, std::size_t lines, Visit visit) {
    indices.assign(lines, kNone);
    std::uint32_t count = 0;
    for (std::size_t place = 0; place < m_endCount; ++place) {
      if (m_ends[place].IsStart()) {
        const std::size_t line = m_ends[place].Line();
        indices[line] = count++;
        visit(line);
      }
    }
    for (std::size_t line = 0; line < lines; ++line) {
      if (indices[line] == kNone) {
        indices[line] = count++;
        visit(line);
      }
    }
    for (std::size_t place = 0; place < m_endCount; ++place) {
      End& end = m_ends[place];
      end.index = 2 * indices[end.Line()] + end.index % 2;
    }
  }

 private:
  static constexpr std::size_t kEndsPerRow = 2;
  /// Rows with more ends than this are sorted as a whole, and searched by halving.
  static constexpr std::uint32_t kCrowdedRow = 32;

  /// The integer part, held within 0 and `last`. NaN gives 0: it is infinity times the zero of
  /// a scale that puts all into the first bin or row.
  static std::uint32_t ClampedIndex(double value, double last) {
    return static_cast<std::uint32_t>(std::min(std::max(0.0, value), last));
  }

  struct Column {
    double minX = 0.0;
    double maxX = 0.0;
    double minY = 0.0;
    double rowsPerUnit = 0.0;
    std::uint32_t first = 0;  // the place of its first end; the next column's is behind its last
    std::uint32_t firstRow = 0;
    std::uint32_t rows = 1;

    /// Never falls as y rises, nor does any rounded operation in it.
    std::size_t RowOf(double y) const {
      return firstRow + ClampedIndex((y - minY) * rowsPerUnit, rows - 1.0);
    }
  };

  /// Bins of equal width in x, many to a column, in which the ends are counted to find the columns.
  /// Their range is that of a sample; what lies beyond counts to the outermost.
  class CXHistogram {
   public:
    CXHistogram(std::vector<AcGePoint3d> sample, std::size_t mostEnds, ESearch search);
    void Count(double x) {
      ++m_counts[BinOf(x)];
      ++m_total;
    }
    std::size_t GetTotal() const { return m_total; }
    std::size_t GetEndsPerColumn() const { return m_endsPerColumn; }
    /// After CutAtBins(): where the next end of this x goes.
    std::size_t NextPlace(double x) { return m_nextPlaces[BinOf(x)]++; }

   private:
    friend class CEndPointColumns;
    std::size_t BinOf(double x) const {
      return ClampedIndex((x - m_minX) * m_binsPerUnit, m_lastBin);
    }

    std::size_t m_endsPerColumn = 0;
    double m_minX = 0.0;
    double m_binWidth = 0.0;
    double m_binsPerUnit = 0.0;
    double m_lastBin = 0.0;
    std::size_t m_total = 0;
    std::vector<std::uint32_t> m_counts;
    std::vector<std::uint32_t> m_nextPlaces;
  };

  template <class Visit>
  static void VisitFinite(const AcGePoint3d& pt, std::uint32_t index, Visit& visit) {
    if (IsIndexed(pt)) {
      visit(End{pt.x, pt.y, index, 0});
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

  static void CheckCount(std::size_t lines);
  void Allocate(std::size_t ends);
  void BeginColumn(std::size_t first);
  bool CutAtBins(CXHistogram& histogram);
  void CutSorted(std::size_t endsPerColumn);
  void MakeRows(bool inOrder);
  void MakeRowsOf(Column& column, std::span<End> ends, bool inOrder, std::vector<End>& moved);

  double m_minColumnWidth;
  std::unique_ptr<End[]> m_ends;  // column by column, each row by row
  std::size_t m_endCount = 0;
  std::vector<Column> m_columns;          // and one behind the last
  std::vector<std::uint32_t> m_rowFirst;  // the place of each row's first end, and one more
};
