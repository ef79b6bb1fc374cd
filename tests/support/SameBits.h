// Bit for bit comparison of results. Two NaN count as the same: which
// of its operands' NaN an addition hands on is the compiler's choice.
#pragma once

#include <cmath>
#include <cstring>

#include "gepnt3d.h"

namespace quoin::test {

inline bool sameBits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

inline bool sameBits(const AcGePoint3d& a, const AcGePoint3d& b) {
  return sameBits(a.x, b.x) && sameBits(a.y, b.y) && sameBits(a.z, b.z);
}

/// Records with ptStart and ptEnd.
template <class Line1, class Line2>
bool sameLine(const Line1& a, const Line2& b) {
  return sameBits(a.ptStart, b.ptStart) && sameBits(a.ptEnd, b.ptEnd);
}

/// Lists of such records.
template <class Lines1, class Lines2>
bool sameLines(const Lines1& a, const Lines2& b) {
  if (a.size() != b.size()) {
    return false;
  }
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!sameLine(a[i], b[i])) {
      return false;
    }
  }
  return true;
}

}  // namespace quoin::test
