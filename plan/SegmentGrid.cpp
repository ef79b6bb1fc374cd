#include "plan/SegmentGrid.h"

#include <algorithm>
#include <cmath>

namespace quoin::plan {

namespace {

/// Cells a segment, on average, at most: beyond that cells are made larger.
constexpr double kMostCells = 8.0;
/// Segments are long that would pass so many cells, and are so many times the usual length.
constexpr double kLongCells = 4096.0;
constexpr double kLongTimes = 256.0;
/// Cells further from the origin than this count as one: numbers of columns and rows fit 31 bits.
constexpr std::int64_t kFurthest = std::int64_t{1} << 29U;

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
  constexpr auto kMost = static_cast<double>(kFurthest);
  const double cell = std::floor((coordinate - origin) / m_cellSize);
  return static_cast<std::int64_t>(std::clamp(cell, -kMost, kMost)) + kFurthest;
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
      const double x = m_origin.x + static_cast<double>(column + 1 - kFurthest) * m_cellSize;
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
  m_long.clear();
  if (m_segments.empty()) {
    return;
  }
  const auto sizeOf = [](const Segment& segment) {
    const AcGeVector2d sides = segment.box.greatest - segment.box.least;
    return sides.x + sides.y;
  };
  // Halfway through the segments: far ones do not move it.
  std::vector<double> sizes;
  std::vector<double> x;
  std::vector<double> y;
  for (std::vector<double>* const numbers : {&sizes, &x, &y}) {
    numbers->reserve(m_segments.size());
  }
  for (const Segment& segment : m_segments) {
    sizes.push_back(sizeOf(segment));
    x.push_back(segment.start.x);
    y.push_back(segment.start.y);
  }
  const auto middleOf = [](std::vector<double>& numbers) {
    const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
    std::nth_element(numbers.begin(), middle, numbers.end());
    return *middle;
  };
  m_origin.set(middleOf(x), middleOf(y));
  const double most = std::max(kLongCells * cellSize, kLongTimes * middleOf(sizes));
  double total = 0.0;
  for (std::size_t i = 0; i < m_segments.size(); ++i) {
    const double size = sizeOf(m_segments[i]);
    if (size <= most) {
      total += size;
    } else {
      m_long.push_back(i);
    }
  }
  m_cellSize =
      std::max({cellSize, total / (kMostCells * static_cast<double>(m_segments.size())), 1e-300});
  for (std::size_t i = 0; i < m_segments.size(); ++i) {
    if (sizeOf(m_segments[i]) <= most) {
      cellsOf(m_segments[i], [&](std::uint64_t key) { m_entries.push_back({key, i}); });
    }
  }
  std::sort(m_entries.begin(), m_entries.end(), [](const Entry& a, const Entry& b) {
    return a.cell != b.cell ? a.cell < b.cell : a.segment < b.segment;
  });
}

std::vector<std::size_t> SegmentGrid::collect(const Box& box) const {
  std::vector<std::size_t> found;
  const auto take = [&](std::size_t segment) {
    if (m_segments[segment].box.meets(box)) {
      found.push_back(segment);
    }
  };
  std::for_each(m_long.begin(), m_long.end(), take);
  const std::int64_t lastColumn = cellOf(box.greatest.x, m_origin.x);
  const std::int64_t firstRow = cellOf(box.least.y, m_origin.y);
  const std::int64_t lastRow = cellOf(box.greatest.y, m_origin.y);
  auto entry = m_entries.begin();
  for (std::int64_t column = cellOf(box.least.x, m_origin.x);
       column <= lastColumn && entry != m_entries.end(); ++column) {
    entry = std::lower_bound(entry, m_entries.end(), keyOf(column, firstRow),
                             [](const Entry& e, std::uint64_t key) { return e.cell < key; });
    for (; entry != m_entries.end() && entry->cell <= keyOf(column, lastRow); ++entry) {
      take(entry->segment);
    }
  }
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

}  // namespace quoin::plan
