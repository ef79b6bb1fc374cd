#include "EndPointColumns.h"

#include <stdexcept>
#include <utility>

namespace {

/// So many that a column's width comes out right to within this part.
constexpr std::size_t kBinsPerColumn = 16;
/// A bin with more ends than this many columns should have is a crowd that bins cannot part.
constexpr std::size_t kCrowdedColumns = 16;

/// Measured on the walls of a city: between a half and twice this makes no difference.
constexpr double kWiderForLines = 4.0;
/// A column costs as much as a few ends.
constexpr double kFewestEndsPerColumn = 16.0;

/// The extent of the middle eight tenths of the points in a coordinate; the points are sorted by
/// it afterwards.
double MiddleSpread(std::vector<AcGePoint3d>& points, double AcGePoint3d::*coordinate) {
  if (points.empty()) {
    return 0.0;
  }
  std::sort(points.begin(), points.end(), [&](const AcGePoint3d& a, const AcGePoint3d& b) {
    return a.*coordinate < b.*coordinate;
  });
  return points[points.size() * 9 / 10].*coordinate - points[points.size() / 10].*coordinate;
}

/// By y; equal ones by x, so that what lies along x is in order too.
bool IsBefore(const CEndPointColumns::End& a, const CEndPointColumns::End& b) {
  return a.y < b.y || (a.y == b.y && a.x < b.x);
}

}  // namespace

void CEndPointColumns::CheckCount(std::size_t lines) {
  if (lines > std::numeric_limits<std::uint32_t>::max() / 2) {
    throw std::length_error("more lines than the index of end points can number");
  }
}

/// A column has so many ends that, were they spread evenly, it would be about as wide as its rows
/// are high, or kWiderForLines times as wide; in a set that is higher than wide as in a square one,
/// since what lies far off must not make columns of crowds.
CEndPointColumns::CXHistogram::CXHistogram(std::vector<AcGePoint3d> sample, std::size_t mostEnds,
                                           ESearch search) {
  const double most =
      std::sqrt(static_cast<double>(mostEnds)) * (search == eForLines ? kWiderForLines : 1.0) + 1.0;
  const double height = MiddleSpread(sample, &AcGePoint3d::y);
  const double width = MiddleSpread(sample, &AcGePoint3d::x);
  const double square = height < width ? most * std::sqrt(height / width) : most;
  m_endsPerColumn =
      static_cast<std::size_t>(std::max(square, std::min(most, kFewestEndsPerColumn)));
  m_counts.resize(std::min(kBinsPerColumn * (mostEnds / m_endsPerColumn + 1), 2 * mostEnds + 1));
  const double bins = static_cast<double>(m_counts.size());
  m_lastBin = bins - 1.0;
  if (!sample.empty()) {
    m_minX = sample.front().x;
    m_binWidth = (sample.back().x - m_minX) / bins;
    // Without a width, or with one that overflows, one bin takes all.
    const double perUnit = 1.0 / m_binWidth;
    m_binsPerUnit = std::isfinite(perUnit) && perUnit > 0.0 ? perUnit : 0.0;
  }
}

void CEndPointColumns::Allocate(std::size_t ends) {
  m_ends.reset(new End[ends]);
  m_endCount = ends;
}

void CEndPointColumns::BeginColumn(std::size_t first) {
  m_columns.emplace_back().first = static_cast<std::uint32_t>(first);
}

/// Columns of whole bins. Returns false where a bin alone has far more ends than a column
/// should and may be parted.
bool CEndPointColumns::CutAtBins(CXHistogram& histogram) {
  const std::size_t enough = histogram.m_endsPerColumn;
  const double width = histogram.m_binWidth;
  const std::vector<std::uint32_t>& counts = histogram.m_counts;
  const std::size_t mostInBin = kCrowdedColumns * enough;
  if (std::max(counts.front(), counts.back()) > mostInBin ||
      (!(width <= m_minColumnWidth) &&
       *std::max_element(counts.begin(), counts.end()) > mostInBin)) {
    return false;
  }
  if (m_endCount == 0) {
    return true;
  }
  histogram.m_nextPlaces.reserve(counts.size());
  std::size_t place = 0;
  double columnWidth = 0.0;
  for (std::size_t bin = 0; bin < counts.size(); ++bin) {
    if (m_columns.empty() || (place - m_columns.back().first >= enough &&
                              columnWidth >= m_minColumnWidth && place < m_endCount)) {
      BeginColumn(place);
      columnWidth = 0.0;
    }
    histogram.m_nextPlaces.push_back(static_cast<std::uint32_t>(place));
    place += counts[bin];
    columnWidth += width;
  }
  return true;
}

/// Columns of ends in the order of x; equal x stay together.
void CEndPointColumns::CutSorted(std::size_t endsPerColumn) {
  End* const ends = m_ends.get();
  std::sort(ends, ends + m_endCount, [](const End& a, const End& b) { return a.x < b.x; });
  for (std::size_t i = 0; i < m_endCount; ++i) {
    if (i == 0 || (i - m_columns.back().first >= endsPerColumn && ends[i].x > ends[i - 1].x &&
                   ends[i].x - ends[m_columns.back().first].x >= m_minColumnWidth)) {
      BeginColumn(i);
    }
  }
}

void CEndPointColumns::MakeRows(bool inOrder) {
  const std::size_t columns = m_columns.size();
  BeginColumn(m_endCount);
  m_rowFirst.reserve(m_endCount / kEndsPerRow + columns + 1);
  m_rowFirst.push_back(0);
  std::vector<End> moved;
  for (std::size_t c = 0; c < columns; ++c) {
    const std::size_t first = m_columns[c].first;
    MakeRowsOf(m_columns[c], {m_ends.get() + first, m_columns[c + 1].first - first}, inOrder,
               moved);
  }
}

/// Finds the column's bounds and rows and puts its ends into them; `inOrder`: each row in order.
void CEndPointColumns::MakeRowsOf(Column& column, std::span<End> ends, bool inOrder,
                                  std::vector<End>& moved) {
  column.minX = column.maxX = ends.front().x;
  column.minY = ends.front().y;
  double maxY = column.minY;
  for (const End& end : ends) {
    column.minX = std::min(column.minX, end.x);
    column.maxX = std::max(column.maxX, end.x);
    column.minY = std::min(column.minY, end.y);
    maxY = std::max(maxY, end.y);
  }
  column.firstRow = static_cast<std::uint32_t>(m_rowFirst.size() - 1);
  column.rows = static_cast<std::uint32_t>(ends.size() / kEndsPerRow + 1);
  const double rowsPerUnit = column.rows / (maxY - column.minY);
  column.rowsPerUnit = std::isfinite(rowsPerUnit) ? rowsPerUnit : 0.0;

  // Counting sort: m_rowFirst[row + 1] is the row's count first, then where its next end goes, and
  // so at last where the next row begins.
  m_rowFirst.resize(column.firstRow + column.rows + 1, 0);
  moved.assign(ends.begin(), ends.end());
  for (End& end : moved) {
    end.row = static_cast<std::uint32_t>(column.RowOf(end.y)) + 1;
    ++m_rowFirst[end.row];
  }
  std::uint32_t place = column.first;
  bool isCrowded = false;
  for (std::uint32_t row = column.firstRow + 1; row < m_rowFirst.size(); ++row) {
    isCrowded = isCrowded || m_rowFirst[row] > kCrowdedRow;
    place += std::exchange(m_rowFirst[row], place);
  }
  if (!isCrowded) {
    for (const End& end : moved) {
      // Into its row's order at once; a place that nothing has moved to has no row yet.
      End* free = m_ends.get() + m_rowFirst[end.row]++;
      for (; free != m_ends.get() && free[-1].row == end.row && inOrder && IsBefore(end, free[-1]);
           --free) {
        *free = free[-1];
      }
      *free = end;
    }
    return;
  }
  for (const End& end : moved) {
    m_ends[m_rowFirst[end.row]++] = end;
  }
  for (std::uint32_t row = column.firstRow; row + 1 < m_rowFirst.size(); ++row) {
    std::sort(m_ends.get() + m_rowFirst[row], m_ends.get() + m_rowFirst[row + 1], IsBefore);
  }
}
