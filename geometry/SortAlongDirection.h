// Ordering of points along a line: a goes before b exactly when (b - a) . direction > 0.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "gepnt3d.h"

/// The ordering itself, for any direction vector, used as given.
class CPointAlongDirection {
 public:
  explicit CPointAlongDirection(const AcGeVector3d& vecDirection) : m_vecDirection(vecDirection) {}
  bool operator()(const AcGePoint3d& pt1, const AcGePoint3d& pt2) const {
    return (pt2 - pt1).dotProduct(m_vecDirection) > 0.0;
  }

 private:
  AcGeVector3d m_vecDirection;
};

/// Sorts few points by how far along the direction they lie, each measured once from the first.
/// Returns false, with the points as they were, where these measures may order them differently
/// from the rule above, or where they are too many.
///
/// The rule's product for a and b and each of the two measures are off by less than 4 roundings
/// (each of 2^-53) of a sum of |difference| * |direction| that is at most twice `largest`. So
/// where measures differ by more than kMargin * largest, 45 roundings of it each way, the rule
/// sees the same order; points that are the same in every bit it holds for equal, and an
/// insertion sort keeps their order, as the rule wants it. A measure that is NaN differs by
/// nothing.
template <class Iterator>
bool TrySortFewAlongDirection(Iterator first, Iterator last, const AcGeVector3d& vecDirection) {
  constexpr double kMargin = 1.0e-14;
  constexpr double kLeastMargin = 1.0e-300;  // where products vanish
  constexpr std::size_t kMaxCount = 32;
  const std::size_t count = static_cast<std::size_t>(last - first);
  if (count > kMaxCount) {
    return false;
  }
  const auto pointAt = [first](std::size_t i) -> AcGePoint3d& {
    return first[static_cast<std::ptrdiff_t>(i)];
  };
  double along[kMaxCount];          // sorted
  std::uint8_t sources[kMaxCount];  // by sorted place: the point's index
  double largest = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    const AcGeVector3d vec = pointAt(i) - pointAt(0);
    const double own = vec.dotProduct(vecDirection);
    largest =
        std::max(largest, std::fabs(vec.x * vecDirection.x) + std::fabs(vec.y * vecDirection.y) +
                              std::fabs(vec.z * vecDirection.z));
    std::size_t place = i;
    for (; place > 0 && along[place - 1] > own; --place) {
      along[place] = along[place - 1];
      sources[place] = sources[place - 1];
    }
    along[place] = own;
    sources[place] = static_cast<std::uint8_t>(i);
  }
  const double margin = kMargin * largest + kLeastMargin;
  for (std::size_t i = 1; i < count; ++i) {
    const AcGePoint3d& pt1 = pointAt(sources[i - 1]);
    const AcGePoint3d& pt2 = pointAt(sources[i]);
    const bool isSame = pt1.x == pt2.x && pt1.y == pt2.y && pt1.z == pt2.z;
    if (!(along[i] - along[i - 1] > margin) && !isSame) {
      return false;
    }
  }
  // Cycle by cycle; a place that has its point is marked as its own source.
  for (std::size_t i = 0; i < count; ++i) {
    const AcGePoint3d pt = pointAt(i);
    std::size_t place = i;
    while (sources[place] != i) {
      const std::size_t from = sources[place];
      pointAt(place) = pointAt(from);
      sources[place] = static_cast<std::uint8_t>(place);
      place = from;
    }
    pointAt(place) = pt;
    sources[place] = static_cast<std::uint8_t>(place);
  }
  return true;
}

/// Sorts points in ascending order along the direction. Points with equal projection keep
/// their order, so that results do not depend on the library. Rounding and NaN can make the
/// ordering contradict itself: a merge sort then still ends and loses no point, where a
/// quick sort may run past the ends.
template <class Iterator>
void SortAlongDirection(Iterator first, Iterator last, const AcGeVector3d& vecDirection) {
  if (!TrySortFewAlongDirection(first, last, vecDirection)) {
    std::stable_sort(first, last, CPointAlongDirection(vecDirection));
  }
}
