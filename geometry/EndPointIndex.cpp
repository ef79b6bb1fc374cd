#include "EndPointIndex.h"

#include <stdexcept>

namespace {

/// So many that a column's width comes out right to within this part.
constexpr std::size_t kStripsPerColumn = 16;
/// A strip with more ends than this many columns should have is a crowd that strips cannot part.
constexpr std::size_t kCrowdedColumns = 16;

/// Measured on the walls of a city: between a half and twice this makes no difference.
constexpr double kWiderForLines = 4.0;
/// A column costs as much as a few ends.
constexpr double kFewestEndsPerColumn = 16.0;

/// How far the middle eight tenths of the points reach in a coordinate; the points are sorted by
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
bool IsBefore(const CEndPointIndex::End& a, const CEndPointIndex::End& b) {
  return a.y < b.y || (a.y == b.y && a.x < b.x);
}

}  // namespace

void CEndPointIndex::CheckCount(std::size_t lines) {
  if (lines > std::numeric_limits<std::uint32_t>::max() / 2) {
    throw std::length_error("more lines than the index of end points can number");
  }
}

/// A column has so many ends that, were they spread evenly, it would be about as wide as its rows
/// are high, or kWiderForLines times as wide; in a set that is higher than wide as in a square one,
/// since what lies far off must not make columns of crowds.
CEndPointIndex::CStrips::CStrips(std::vector<AcGePoint3d> sample, std::size_t mostEnds,
                                 ESearch search) {
  const double most =
      std::sqrt(static_cast<double>(mostEnds)) * (search == eForLines ? kWiderForLines : 1.0) + 1.0;
  const double height = MiddleSpread(sample, &AcGePoint3d::y);
  const double width = MiddleSpread(sample, &AcGePoint3d::x);
  const double square = height < width ? most * std::sqrt(height / width) : most;
  m_endsPerColumn =
      static_cast<std::size_t>(std::max(square, std::min(most, kFewestEndsPerColumn)));
  m_counts.resize(std::min(kStripsPerColumn * (mostEnds / m_endsPerColumn + 1), 2 * mostEnds + 1));
  const double strips = static_cast<double>(m_counts.size());
  m_lastStrip = strips - 1.0;
  if (!sample.empty()) {
    m_minX = sample.front().x;
    m_stripWidth = (sample.back().x - m_minX) / strips;
    // Without a width, or with one beyond all numbers, one strip takes all.
    const double perUnit = 1.0 / m_stripWidth;
    m_stripsPerUnit = std::isfinite(perUnit) && perUnit > 0.0 ? perUnit : 0.0;
  }
}

void CEndPointIndex::MakeRoom(std::size_t ends) {
  m_ends.reset(new End[ends]);
  m_endCount = ends;
}

void CEndPointIndex::BeginColumn(std::size_t first) {
  m_columns.emplace_back().first = static_cast<std::uint32_t>(first);
}

/// Columns of whole strips. Answers false where a strip alone has far more ends than a column
/// should and may be parted.
bool CEndPointIndex::CutStrips(CStrips& strips) {
  const std::size_t enough = strips.m_endsPerColumn;
  const double width = strips.m_stripWidth;
  const std::vector<std::uint32_t>& counts = strips.m_counts;
  const std::size_t mostInStrip = kCrowdedColumns * enough;
  if (std::max(counts.front(), counts.back()) > mostInStrip ||
      (!(width <= m_minColumnWidth) &&
       *std::max_element(counts.begin(), counts.end()) > mostInStrip)) {
    return false;
  }
  if (m_endCount == 0) {
    return true;
  }
  strips.m_nextPlaces.reserve(counts.size());
  std::size_t place = 0;
  double columnWidth = 0.0;
  for (std::size_t strip = 0; strip < counts.size(); ++strip) {
    if (m_columns.empty() || (place - m_columns.back().first >= enough &&
                              columnWidth >= m_minColumnWidth && place < m_endCount)) {
      BeginColumn(place);
      columnWidth = 0.0;
    }
    strips.m_nextPlaces.push_back(static_cast<std::uint32_t>(place));
    place += counts[strip];
    columnWidth += width;
  }
  return true;
}

/// Columns of ends in the order of x; equal x stay together.
void CEndPointIndex::CutSorted(std::size_t endsPerColumn) {
  End* const ends = m_ends.get();
  std::sort(ends, ends + m_endCount, [](const End& a, const End& b) { return a.x < b.x; });
  for (std::size_t i = 0; i < m_endCount; ++i) {
    if (i == 0 || (i - m_columns.back().first >= endsPerColumn && ends[i].x > ends[i - 1].x &&
                   ends[i].x - ends[m_columns.back().first].x >= m_minColumnWidth)) {
      BeginColumn(i);
    }
  }
}

void CEndPointIndex::MakeRows(bool inOrder) {
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
void CEndPointIndex::MakeRowsOf(Column& column, std::span<End> ends, bool inOrder,
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
    end.part = static_cast<std::uint32_t>(column.RowOf(end.y)) + 1;
    ++m_rowFirst[end.part];
  }
  std::uint32_t place = column.first;
  bool isCrowded = false;
  for (std::uint32_t part = column.firstRow + 1; part < m_rowFirst.size(); ++part) {
    isCrowded = isCrowded || m_rowFirst[part] > kCrowdedRow;
    place += std::exchange(m_rowFirst[part], place);
  }
  if (!isCrowded) {
    for (const End& end : moved) {
      // Into its row's order at once; a place that nothing has moved to has no part yet.
      End* free = m_ends.get() + m_rowFirst[end.part]++;
      for (;
           free != m_ends.get() && free[-1].part == end.part && inOrder && IsBefore(end, free[-1]);
           --free) {
        *free = free[-1];
      }
      *free = end;
    }
    return;
  }
  for (const End& end : moved) {
    m_ends[m_rowFirst[end.part]++] = end;
  }
  for (std::uint32_t row = column.firstRow; row + 1 < m_rowFirst.size(); ++row) {
    std::sort(m_ends.get() + m_rowFirst[row], m_ends.get() + m_rowFirst[row + 1], IsBefore);
  }
}
