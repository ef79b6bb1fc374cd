#include "plan/BoxTree.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quoin::plan {

namespace {

/// The index of a cell along the Hilbert curve through 2^16 by 2^16 of them: unlike other orders it
/// has no jumps, which would widen boxes.
std::uint64_t hilbertIndex(std::uint32_t x, std::uint32_t y) {
  std::uint64_t index = 0;
  for (std::uint32_t side = 1U << 15U; side > 0; side >>= 1U) {
    const bool isRight = (x & side) != 0;
    const bool isUpper = (y & side) != 0;
    index = index << 2U | (isRight ? (isUpper ? 2U : 3U) : (isUpper ? 1U : 0U));
    if (!isUpper) {
      if (isRight) {
        x = ~x;
        y = ~y;
      }
      std::swap(x, y);
    }
  }
  return index;
}

double sizeOf(const PlaneBox& box) {
  // Halves, since the whole may be beyond all numbers.
  return std::max(0.5 * box.maxX - 0.5 * box.minX, 0.5 * box.maxY - 0.5 * box.minY);
}

/// Boxes that are this many times as large as the middle one stand apart: each class is one more
/// tree to look into, which pays where large ones would widen the boxes of their neighbours.
constexpr double kLargeTimes = 16.0;

double leastLargeSize(const std::vector<PlaneBox>& boxes) {
  std::vector<double> sizes(boxes.size());
  std::transform(boxes.begin(), boxes.end(), sizes.begin(), sizeOf);
  const auto middle = sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() / 2);
  std::nth_element(sizes.begin(), middle, sizes.end());
  return kLargeTimes * *middle;
}

/// Places near each other have near keys.
class Ordering {
 public:
  Ordering(const PlaneBox& whole, double leastLarge)
      : m_whole(whole), m_extent(sizeOf(whole)), m_leastLarge(leastLarge) {}

  std::uint64_t keyOf(const PlaneBox& box) const {
    return (sizeOf(box) > m_leastLarge ? 1ULL << 32U : 0U) |
           hilbertIndex(cell(0.5 * box.minX + 0.5 * box.maxX, m_whole.minX),
                        cell(0.5 * box.minY + 0.5 * box.maxY, m_whole.minY));
  }

 private:
  static constexpr double kCells = 65535.0;

  std::uint32_t cell(double at, double least) const {
    return m_extent > 0.0 ? static_cast<std::uint32_t>(
                                std::clamp((0.5 * at - 0.5 * least) / m_extent, 0.0, 1.0) * kCells)
                          : 0;
  }

  PlaneBox m_whole;
  double m_extent;
  double m_leastLarge;
};

}  // namespace

PlaneBox PlaneBox::of(const AcGePoint2d& a, const AcGePoint2d& b) {
  return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

PlaneBox PlaneBox::around(const AcGePoint2d& at, double distance) {
  return {at.x - distance, at.y - distance, at.x + distance, at.y + distance};
}

void PlaneBox::include(const PlaneBox& other) {
  minX = std::min(minX, other.minX);
  minY = std::min(minY, other.minY);
  maxX = std::max(maxX, other.maxX);
  maxY = std::max(maxY, other.maxY);
}

std::vector<std::uint32_t> spatialOrder(const std::vector<PlaneBox>& boxes) {
  std::vector<std::uint32_t> order;
  if (boxes.empty()) {
    return order;
  }
  PlaneBox whole = boxes.front();
  for (const PlaneBox& box : boxes) {
    whole.include(box);
  }
  const Ordering ordering(whole, leastLargeSize(boxes));
  std::vector<std::pair<std::uint64_t, std::uint32_t>> keys(boxes.size());
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    keys[i] = {ordering.keyOf(boxes[i]), static_cast<std::uint32_t>(i)};
  }
  std::sort(keys.begin(), keys.end());
  order.reserve(boxes.size());
  for (const auto& [key, index] : keys) {
    order.push_back(index);
  }
  return order;
}

BoxTree::BoxTree(const std::vector<PlaneBox>& boxes) : m_order(spatialOrder(boxes)) {
  if (boxes.empty()) {
    return;
  }
  m_levels.emplace_back();
  m_levels.back().reserve(boxes.size());
  for (const std::uint32_t index : m_order) {
    m_levels.back().push_back(boxes[index]);
  }
  while (m_levels.back().size() > kFanOut) {
    const std::vector<PlaneBox>& below = m_levels.back();
    std::vector<PlaneBox> level;
    level.reserve(below.size() / kFanOut + 1);
    for (std::size_t i = 0; i < below.size(); ++i) {
      if (i % kFanOut == 0) {
        level.push_back(below[i]);
      } else {
        level.back().include(below[i]);
      }
    }
    m_levels.push_back(std::move(level));
  }
}

}  // namespace quoin::plan
