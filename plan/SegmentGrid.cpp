#include "plan/SegmentGrid.h"

#include <algorithm>
#include <cmath>

namespace quoin::plan {

namespace {

/// Cells a segment, on average, at most: beyond that cells are made larger.
constexpr double kMostCells = 8.0;
/// Columns an entry, at most, for which their places are kept.
constexpr std::size_t kMostColumns = 4;

std::uint64_t keyOf(std::int64_t column, std::int64_t row) {
  return (static_cast<std::uint64_t>(column) << 32U) ^
         (static_cast<std::uint64_t>(row) & 0xffffffffU);
}

}  // namespace

Box::Box(const AcGePoint2d& a, const AcGePoint2d& b)
    : least(std::min(a.x, b.x), std::min(a.y, b.y)),
      greatest(std::max(a.x, b.x), std::max(a.y, b.y)) {}

Box Box::grownBy(double margin) const {
  const AcGeVector2d step(margin, margin);
  Box box;
  box.least = least - step;
  box.greatest = greatest + step;
  return box;
}

bool Box::meets(const Box& other) const {
  return least.x <= other.greatest.x && other.least.x <= greatest.x &&
         least.y <= other.greatest.y && other.least.y <= greatest.y;
}

void SegmentGrid::add(const AcGePoint2d& start, const AcGePoint2d& end) {
  m_segments.push_back({start, end, Box(start, end)});
}

std::int64_t SegmentGrid::cellOf(double coordinate, double origin) const {
  return static_cast<std::int64_t>(std::floor((coordinate - origin) / m_cellSize));
}

template <class Add>
void SegmentGrid::cellsOf(const Segment& segment, Add add) const {
  const bool isForward = segment.start.x <= segment.end.x;
  const AcGePoint2d& left = isForward ? segment.start : segment.end;
  const AcGePoint2d& right = isForward ? segment.end : segment.start;
  const std::int64_t first = cellOf(left.x, m_origin.x);
  const std::int64_t last = cellOf(right.x, m_origin.x);
  double y = left.y;
  for (std::int64_t column = first; column <= last; ++column) {
    double yThere = right.y;
    if (column < last) {
      const double x = m_origin.x + static_cast<double>(column + 1) * m_cellSize;
      const double part = std::clamp((x - left.x) / (right.x - left.x), 0.0, 1.0);
      yThere = left.y + (right.y - left.y) * part;
    }
    // A little further than computed, since both are rounded.
    const double slack = 1e-9 * m_cellSize;
    const std::int64_t low = cellOf(std::min(y, yThere) - slack, m_origin.y);
    const std::int64_t high = cellOf(std::max(y, yThere) + slack, m_origin.y);
    for (std::int64_t row = low; row <= high; ++row) {
      add(keyOf(column, row));
    }
    y = yThere;
  }
}

void SegmentGrid::arrange(double cellSize) {
  m_entries.clear();
  if (m_segments.empty()) {
    return;
  }
  double total = 0.0;
  m_origin = m_segments.front().start;
  Box all(m_origin, m_origin);
  for (const Segment& segment : m_segments) {
    const Box& box = segment.box;
    total += (box.greatest.x - box.least.x) + (box.greatest.y - box.least.y);
    all.least.set(std::min(all.least.x, box.least.x), std::min(all.least.y, box.least.y));
    all.greatest.set(std::max(all.greatest.x, box.greatest.x),
                     std::max(all.greatest.y, box.greatest.y));
  }
  const double span = std::max(all.greatest.x - all.least.x, all.greatest.y - all.least.y);
  // The numbers of columns and rows fit 31 bits.
  m_cellSize = std::max({cellSize, total / (kMostCells * static_cast<double>(m_segments.size())),
                         span / 1e9, 1e-300});
  // One cell further, so that rounding leads to no number below zero.
  m_origin = all.least - AcGeVector2d(m_cellSize, m_cellSize);
  m_greatest = all.greatest + AcGeVector2d(m_cellSize, m_cellSize);
  for (std::size_t i = 0; i < m_segments.size(); ++i) {
    cellsOf(m_segments[i], [&](std::uint64_t key) { m_entries.push_back({key, i}); });
  }
  std::sort(m_entries.begin(), m_entries.end(), [](const Entry& a, const Entry& b) {
    return a.cell != b.cell ? a.cell < b.cell : a.segment < b.segment;
  });
  m_columns.clear();
  const auto columns = static_cast<std::size_t>(cellOf(m_greatest.x, m_origin.x)) + 1;
  if (columns <= kMostColumns * m_entries.size()) {
    m_columns.reserve(columns + 1);
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
      const auto column = static_cast<std::size_t>(m_entries[i].cell >> 32U);
      m_columns.resize(std::max(m_columns.size(), column + 1), i);
    }
    m_columns.resize(columns + 1, m_entries.size());
  }
}

std::vector<std::size_t> SegmentGrid::collect(const Box& box) const {
  std::vector<std::size_t> found;
  if (m_entries.empty() || !box.meets(Box(m_origin, m_greatest))) {
    return found;
  }
  const std::int64_t lastColumn = cellOf(std::min(box.greatest.x, m_greatest.x), m_origin.x);
  const std::int64_t firstRow = cellOf(std::max(box.least.y, m_origin.y), m_origin.y);
  const std::int64_t lastRow = cellOf(std::min(box.greatest.y, m_greatest.y), m_origin.y);
  for (std::int64_t column = cellOf(std::max(box.least.x, m_origin.x), m_origin.x);
       column <= lastColumn; ++column) {
    auto first = m_entries.begin();
    auto last = m_entries.end();
    if (!m_columns.empty()) {
      const auto number = static_cast<std::size_t>(column);
      last = first + static_cast<std::ptrdiff_t>(m_columns[number + 1]);
      first += static_cast<std::ptrdiff_t>(m_columns[number]);
    }
    auto entry = std::lower_bound(first, last, keyOf(column, firstRow),
                                  [](const Entry& e, std::uint64_t key) { return e.cell < key; });
    for (; entry != last && entry->cell <= keyOf(column, lastRow); ++entry) {
      if (m_segments[entry->segment].box.meets(box)) {
        found.push_back(entry->segment);
      }
    }
  }
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

}  // namespace quoin::plan
