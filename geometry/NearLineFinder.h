// Where the algorithms ask for neighbours: hands out, of a set of wall lines, those that may
// have an end near a given line, in the order of the set. What it hands out is a superset of
// the lines that the exact test (a computed distance below the capture distance) accepts; how
// it finds them never shows in a result. Not exported.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "WallLineLikeSeg.h"

/// The box around a line, grown by the capture distance t: plain comparisons that rule out
/// ends which no exact test can accept.
///
/// Say that the exact test accepts an end e: the computed |e - f| is below t, f the computed
/// foot on the line. Then t > 0 (a computed distance is never negative, and NaN is below
/// nothing), so where t is zero, negative or NaN everything may be ruled out. And e lies in the
/// box in every coordinate, because
/// - f = start + (end - start) * p with p in [0, 1], or start or end itself: it leaves the box
///   of start and end by a few 2^-53 of their size at most;
/// - the computed length is sqrt(dx * dx + dy * dy + dz * dz): a difference exceeds it by a
///   few 2^-53 of its size at most, or, where its square vanishes, by some 1e-161;
/// - the sides of the box are rounded, by a few 2^-53 of size and reach.
/// The slacks cover each of these many times over. Infinite t makes the box the whole plane.
/// The comparisons let NaN pass: a line with a coordinate that is no finite number (or so
/// large that their sum is none) has a box of NaN, which rules nothing out. An end with such a
/// coordinate is ruled out only by another coordinate, and then by rights: its distance is
/// infinite, NaN or above t. Height is not looked at, which only lets more lines through.
class CCaptureBox {
 public:
  CCaptureBox(const WallLineLikeSeg& line, double captureDistance)
      : m_bCapturesAny(captureDistance > 0.0) {
    const AcGePoint3d& pt1 = line.ptStart;
    const AcGePoint3d& pt2 = line.ptEnd;
    const double size = std::max(std::max(std::fabs(pt1.x), std::fabs(pt2.x)),
                                 std::max(std::fabs(pt1.y), std::fabs(pt2.y)));
    const double reach =
        captureDistance * (1.0 + kRelativeSlack) + size * kRelativeSlack + kAbsoluteSlack;
    m_minX = std::min(pt1.x, pt2.x) - reach;
    m_maxX = std::max(pt1.x, pt2.x) + reach;
    m_minY = std::min(pt1.y, pt2.y) - reach;
    m_maxY = std::max(pt1.y, pt2.y) + reach;
    if (!std::isfinite(pt1.x + pt2.x + pt1.y + pt2.y + pt1.z + pt2.z)) {
      m_minX = m_maxX = m_minY = m_maxY = std::numeric_limits<double>::quiet_NaN();
    }
  }

  /// Whether an end of the line may lie within the capture distance.
  bool MayTouch(const WallLineLikeSeg& other) const {
    return m_bCapturesAny && (MayHold(other.ptStart) || MayHold(other.ptEnd));
  }

 private:
  static constexpr double kRelativeSlack = 1.0e-12;   // 9,000 times 2^-53
  static constexpr double kAbsoluteSlack = 1.0e-150;  // far above where squares vanish

  bool MayHold(const AcGePoint3d& pt) const {
    return !(pt.x < m_minX || pt.x > m_maxX || pt.y < m_minY || pt.y > m_maxY);
  }

  bool m_bCapturesAny;
  double m_minX;
  double m_maxX;
  double m_minY;
  double m_maxY;
};

/// The search itself, in its direct form: every line of the set against the box.
class CNearLineFinder {
 public:
  /// The set is referred to, not copied; it holds no null pointers.
  explicit CNearLineFinder(const std::vector<WallLineLikeSeg*>& lines) : m_lines(lines) {}

  /// Calls visit(pOther) for every line of the set of which an end may be nearer to `line`
  /// than the capture distance, in the order of the set, as often as it stands there, `line`
  /// itself included when it is one of them.
  template <class Visit>
  void VisitNear(const WallLineLikeSeg& line, double captureDistance, Visit visit) const {
    const CCaptureBox box(line, captureDistance);
    for (const WallLineLikeSeg* pOther : m_lines) {
      if (box.MayTouch(*pOther)) {
        visit(pOther);
      }
    }
  }

 private:
  const std::vector<WallLineLikeSeg*>& m_lines;
};
