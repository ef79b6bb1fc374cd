// Comparing computed distances with a limit, mostly without the root. Not exported.
#pragma once

#include <limits>

#include "GeomConst.h"
#include "gepnt3d.h"

/// The comparisons with v.length(), bit for bit. A square that differs from that of the limit by
/// more than the rounding slack has a root on the same side of the limit, since square
/// and root are each off by a few 2^-53 of their size (squares that vanish by half of the least
/// double, which is less than two of them differ by); all others take the root.
class CDistanceLimit {
 public:
  explicit CDistanceLimit(double limit) : m_limit(limit) {
    if (limit > 0.0) {
      m_surelyBelow = limit * limit * (1.0 - GeomConst::kRoundingSlack);
      m_surelyAbove = limit * limit * (1.0 + GeomConst::kRoundingSlack);
    }
  }

  /// limit > v.length()
  bool IsAbove(const AcGeVector3d& v) const {
    const double square = v.lengthSqrd();
    return square < m_surelyBelow || (!(square > m_surelyAbove) && m_limit > v.length());
  }
  /// v.length() >= limit
  bool IsReachedBy(const AcGeVector3d& v) const {
    const double square = v.lengthSqrd();
    return square > m_surelyAbove || (!(square < m_surelyBelow) && v.length() >= m_limit);
  }

 private:
  double m_limit;
  double m_surelyBelow = -std::numeric_limits<double>::infinity();
  double m_surelyAbove = std::numeric_limits<double>::infinity();
};
