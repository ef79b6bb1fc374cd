#include "EndPointIndex.h"

#include <stdexcept>

namespace {

/// Bins a column: so many that a column's width comes out right to within this part.
constexpr std::size_t kBinsPerColumn = 16;
/// A bin with more ends than this many columns should have is a crowd that the bins cannot
/// part.
constexpr std::size_t kCrowdedColumns = 4;
/// Up to here an insertion sort is the quickest.
constexpr std::ptrdiff_t kShortRow = 12;

/// Measured on the walls of a city: between a half and twice this makes no difference.
constexpr double kWiderForLines = 4.0;
/// A column costs as much as a few ends.
constexpr double kFewestEndsPerColumn = 16.0;

/// How far the middle eight tenths of the points reach in a coordinate.
double MiddleSpread(std::vector<AcGePoint3d>& points, double AcGePoint3d::*coordinate) {
  if (points.empty()) {
    return 0.0;
  }
  std::sort(points.begin(), points.end(), [&](const AcGePoint3d& a, const AcGePoint3d& b) {
    return a.*coordinate < b.*coordinate;
  });
  return points[points.size() * 9 / 10].*coordinate - points[points.size() / 10].*coordinate;
}

constexpr auto kIsBelow = [](const CEndPointIndex::End& a, const CEndPointIndex::End& b) {
  return a.y < b.y;
};

void SortRow(CEndPointIndex::End* first, CEndPointIndex::End* last) {
  if (last - first > kShortRow) {
    std::sort(first, last, kIsBelow);
    return;
  }
  for (CEndPointIndex::End* end = first; end != last; ++end) {
    const CEndPointIndex::End moved = *end;
    CEndPointIndex::End* place = end;
    for (; place != first && kIsBelow(moved, place[-1]); --place) {
      *place = place[-1];
    }
    *place = moved;
  }
}

}  // namespace

void CEndPointIndex::CheckCount(std::size_t lines) {
  if (lines > std::numeric_limits<std::uint32_t>::max() / 2) {
    throw std::length_error("more lines than the index of end points can number");
  }
}

/// So many that, were the ends spread evenly, a column would be about as wide as its rows are high,
/// or kWiderForLines times as wide; in a set that is higher than wide as in a square one, since
/// what lies far off must not make columns of crowds.
std::size_t CEndPointIndex::EndsPerColumn(std::size_t ends, std::vector<AcGePoint3d> sample,
                                          ESearch search) {
  const double most =
      std::sqrt(static_cast<double>(ends)) * (search == eForLines ? kWiderForLines : 1.0) + 1.0;
  const double width = MiddleSpread(sample, &AcGePoint3d::x);
  const double height = MiddleSpread(sample, &AcGePoint3d::y);
  const double square = height < width ? most * std::sqrt(height / width) : most;
  return static_cast<std::size_t>(std::max(square, std::min(most, kFewestEndsPerColumn)));
}

void CEndPointIndex::CBins::Divide(std::size_t endsPerColumn) {
  const std::size_t bins =
      std::min(kBinsPerColumn * (m_total / endsPerColumn + 1), 2 * m_total + 1);
  m_counts.assign(bins, 0);
  m_lastBin = static_cast<double>(bins - 1);
  const double binsPerUnit = static_cast<double>(bins) / (m_maxX - m_minX);
  // Without a width, or with one beyond all numbers, one bin takes all.
  m_binsPerUnit = std::isfinite(binsPerUnit) && binsPerUnit > 0.0 ? binsPerUnit : 0.0;
}

void CEndPointIndex::BeginColumn(std::size_t first) {
  m_columns.emplace_back().first = static_cast<std::uint32_t>(first);
}

/// Columns of whole bins. Answers false where a bin alone has far more ends than a column should
/// and is wide enough to be parted.
bool CEndPointIndex::CutBins(CBins& bins) {
  const std::size_t enough = m_endsPerColumn;
  const double binWidth = (bins.m_maxX - bins.m_minX) / (bins.m_lastBin + 1);
  for (const std::uint32_t count : bins.m_counts) {
    if (count > kCrowdedColumns * enough && !(binWidth <= m_minColumnWidth)) {
      return false;
    }
  }
  if (m_ends.empty()) {
    return true;
  }
  bins.m_columnOfBin.resize(bins.m_counts.size());
  std::size_t place = 0;
  double width = 0.0;
  for (std::size_t bin = 0; bin < bins.m_counts.size(); ++bin) {
    if (m_columns.empty() || (place - m_columns.back().first >= enough &&
                              width >= m_minColumnWidth && place < m_ends.size())) {
      BeginColumn(place);
      bins.m_nextPlaces.push_back(static_cast<std::uint32_t>(place));
      width = 0.0;
    }
    bins.m_columnOfBin[bin] = static_cast<std::uint32_t>(m_columns.size() - 1);
    place += bins.m_counts[bin];
    width += binWidth;
  }
  return true;
}

/// Columns of ends in the order of x; equal x stay together.
void CEndPointIndex::SortAndCut() {
  std::sort(m_ends.begin(), m_ends.end(), [](const End& a, const End& b) { return a.x < b.x; });
  const std::size_t enough = m_endsPerColumn;
  for (std::size_t i = 0; i < m_ends.size(); ++i) {
    if (i == 0 || (i - m_columns.back().first >= enough && m_ends[i].x > m_ends[i - 1].x &&
                   m_ends[i].x - m_ends[m_columns.back().first].x >= m_minColumnWidth)) {
      BeginColumn(i);
    }
  }
}

/// Finds every column's bounds and rows and puts its ends into the order of y.
void CEndPointIndex::SortColumns() {
  const std::size_t columns = m_columns.size();
  BeginColumn(m_ends.size());
  m_rowFirst.reserve(m_ends.size() / kEndsPerRow + columns + 1);
  std::vector<End> sorted;
  std::vector<std::uint32_t> nextPlaces;
  for (std::size_t c = 0; c < columns; ++c) {
    Column& column = m_columns[c];
    End* const first = m_ends.data() + column.first;
    End* const last = m_ends.data() + m_columns[c + 1].first;
    column.minX = column.minY = std::numeric_limits<double>::max();
    column.maxX = std::numeric_limits<double>::lowest();
    double maxY = std::numeric_limits<double>::lowest();
    for (const End* end = first; end != last; ++end) {
      column.minX = std::min(column.minX, end->x);
      column.maxX = std::max(column.maxX, end->x);
      column.minY = std::min(column.minY, end->y);
      maxY = std::max(maxY, end->y);
    }
    const std::size_t count = static_cast<std::size_t>(last - first);
    column.firstRow = static_cast<std::uint32_t>(m_rowFirst.size());
    column.rows = static_cast<std::uint32_t>(count / kEndsPerRow + 1);
    const double rowsPerUnit = column.rows / (maxY - column.minY);
    column.rowsPerUnit = std::isfinite(rowsPerUnit) ? rowsPerUnit : 0.0;

    // Counting sort into the rows, then each row by itself.
    nextPlaces.assign(column.rows + 1, 0);
    for (const End* end = first; end != last; ++end) {
      ++nextPlaces[column.RowOf(end->y) - column.firstRow + 1];
    }
    for (std::size_t row = 0; row < column.rows; ++row) {
      nextPlaces[row + 1] += nextPlaces[row];
      m_rowFirst.push_back(column.first + nextPlaces[row]);
    }
    sorted.resize(count);
    for (const End* end = first; end != last; ++end) {
      sorted[nextPlaces[column.RowOf(end->y) - column.firstRow]++] = *end;
    }
    std::size_t rowFirst = 0;
    for (std::size_t row = 0; row < column.rows; ++row) {
      SortRow(sorted.data() + rowFirst, sorted.data() + nextPlaces[row]);
      rowFirst = nextPlaces[row];
    }
    std::copy(sorted.begin(), sorted.end(), first);
  }
  m_rowFirst.push_back(static_cast<std::uint32_t>(m_ends.size()));
}
