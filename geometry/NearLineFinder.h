// Rules out, by plain comparisons of doubles, wall lines that cannot touch a given line. Not
// exported: the seam at which the algorithms ask for neighbours.
#pragma once

#include <algorithm>
#include <cmath>

#include "WallLineLikeSeg.h"

/// The box around a line, grown by the capture distance. A line of which neither end lies in
/// it cannot have an end nearer than that distance:
/// an accepted end e has a computed distance |e - foot| < t with the foot on the line, so it
/// is no farther than t, give or take the rounding of the distance (a few parts in 2^52),
/// from the box in each coordinate; the foot itself leaves the box by no more than the
/// rounding of base + t * direction (a few parts in 2^52 of the coordinates' size). The
/// slack covers both many times over. Comparisons are written so that NaN keeps the line in:
/// an end with a NaN coordinate, or a box of NaN, rules nothing out; an infinite distance
/// makes the box the whole plane. A distance that is zero, negative or NaN accepts nothing
/// (no computed distance is below it), so there everything may be ruled out.
class CNearLineFinder {
 public:
  CNearLineFinder(const WallLineLikeSeg& line, double captureDistance)
      : m_bCapturesAny(captureDistance > 0.0) {
    const AcGePoint3d& pt1 = line.ptStart;
    const AcGePoint3d& pt2 = line.ptEnd;
    const double size = std::max(std::max(std::fabs(pt1.x), std::fabs(pt2.x)),
                                 std::max(std::fabs(pt1.y), std::fabs(pt2.y)));
    const double reach = captureDistance * (1.0 + kRelativeSlack) + size * kRelativeSlack;
    m_minX = std::min(pt1.x, pt2.x) - reach;
    m_maxX = std::max(pt1.x, pt2.x) + reach;
    m_minY = std::min(pt1.y, pt2.y) - reach;
    m_maxY = std::max(pt1.y, pt2.y) + reach;
    if (!std::isfinite(pt1.x + pt2.x + pt1.y + pt2.y + pt1.z + pt2.z)) {
      m_minX = m_maxX = m_minY = m_maxY = std::nan("");
    }
  }

  /// Whether an end of the line may lie within the capture distance.
  bool MayTouch(const WallLineLikeSeg& other) const {
    return m_bCapturesAny && (MayBeNear(other.ptStart) || MayBeNear(other.ptEnd));
  }

 private:
  static constexpr double kRelativeSlack = 1.0e-12;  // some 4,500 units in the last place

  bool MayBeNear(const AcGePoint3d& pt) const {
    return !(pt.x < m_minX || pt.x > m_maxX || pt.y < m_minY || pt.y > m_maxY);
  }

  bool m_bCapturesAny;
  double m_minX;
  double m_maxX;
  double m_minY;
  double m_maxY;
};
