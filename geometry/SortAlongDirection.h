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

/// The order of few points by how far along the direction they lie, each measured once from the
/// first.
///
/// The rule's product for a and b and each of the two measures are off by less than 4 roundings
/// (each of 2^-53) of a sum of |difference| * |direction| that is at most twice `largest`. So
/// where measures differ by more than kMargin * largest, 45 roundings of it each way, the rule
/// sees the same order; points that are the same in every bit it holds for equal, and an
/// insertion sort keeps their order, as the rule wants it. All else is left to the rule itself:
/// measures that are no numbers differ by nothing.
class CFewAlongDirection {
 public:
  /// Answers false where the measures may order the points differently from the rule, or where they
  /// are too many.
  template <class Iterator>
  bool Order(Iterator first, Iterator last, const AcGeVector3d& vecDirection) {
    constexpr double kMargin = 1.0e-14;
    constexpr double kLeastMargin = 1.0e-300;  // where products vanish
    const std::size_t count = static_cast<std::size_t>(last - first);
    if (count > kMaxCount) {
      return false;
    }
    const auto pointAt = [first](std::size_t i) -> const AcGePoint3d& {
      return first[static_cast<std::ptrdiff_t>(i)];
    };
    double along[kMaxCount];  // in order
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
        m_places[place] = m_places[place - 1];
      }
      along[place] = own;
      m_places[place] = static_cast<std::uint8_t>(i);
    }
    const double margin = kMargin * largest + kLeastMargin;
    for (std::size_t i = 1; i < count; ++i) {
      const AcGePoint3d& pt1 = pointAt(m_places[i - 1]);
      const AcGePoint3d& pt2 = pointAt(m_places[i]);
      const bool isSame = pt1.x == pt2.x && pt1.y == pt2.y && pt1.z == pt2.z;
      if (!(along[i] - along[i - 1] > margin) && !isSame) {
        return false;
      }
    }
    return true;
  }

  /// Which of the points ordered last comes at this place.
  std::size_t At(std::size_t place) const { return m_places[place]; }

  /// Brings the points ordered last into their order, once.
  template <class Iterator>
  void Apply(Iterator first, Iterator last) {
    const std::size_t count = static_cast<std::size_t>(last - first);
    const auto pointAt = [first](std::size_t i) -> AcGePoint3d& {
      return first[static_cast<std::ptrdiff_t>(i)];
    };
    // Each place gets its point; a place that has its own already is marked so.
    for (std::size_t i = 0; i < count; ++i) {
      const AcGePoint3d pt = pointAt(i);
      std::size_t place = i;
      while (m_places[place] != i) {
        const std::size_t from = m_places[place];
        pointAt(place) = pointAt(from);
        m_places[place] = static_cast<std::uint8_t>(place);
        place = from;
      }
      pointAt(place) = pt;
      m_places[place] = static_cast<std::uint8_t>(place);
    }
  }

 private:
  static constexpr std::size_t kMaxCount = 32;
  std::uint8_t m_places[kMaxCount];
};

/// Sorts points in ascending order along the direction. Points with equal projection keep
/// their order, so that results do not depend on the library. Rounding and NaN can make the
/// ordering contradict itself: a merge sort then still ends and loses no point, where a
/// quick sort may run past the ends.
template <class Iterator>
void SortAlongDirection(Iterator first, Iterator last, const AcGeVector3d& vecDirection) {
  CFewAlongDirection order;
  if (!order.Order(first, last, vecDirection)) {
    std::stable_sort(first, last, CPointAlongDirection(vecDirection));
    return;
  }
  order.Apply(first, last);
}
