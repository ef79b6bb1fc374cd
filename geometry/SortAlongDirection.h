// Ordering of points along a line: a goes before b exactly when (b - a) . direction > 0.
#pragma once

#include <algorithm>

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

/// Sorts points in ascending order along the direction. Points with equal projection keep
/// their order, so that results do not depend on the library. Rounding and NaN can make the
/// ordering contradict itself: a merge sort then still ends and loses no point, where a
/// quick sort may run past the ends.
template <class Iterator>
void SortAlongDirection(Iterator first, Iterator last, const AcGeVector3d& vecDirection) {
  std::stable_sort(first, last, CPointAlongDirection(vecDirection));
}
