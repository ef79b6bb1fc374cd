// Where something near a line can lie: plain comparisons of doubles that rule out points which
// no exact test (a computed distance below the capture distance) accepts. Not exported.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "GeomConst.h"
#include "gepnt3d.h"

/// The box around a line, grown by the capture distance t, and the strip along it.
///
/// Say that the exact test accepts a point e: the computed |e - f| is below t, f the computed
/// foot on the line. Then t > 0 (a computed distance is never negative, and NaN is below
/// nothing), so where t is zero, negative or NaN everything may be ruled out. e has finite
/// coordinates, since |e - f| is infinite or NaN otherwise, also for an infinite t. And e lies
/// in the box in every coordinate, because
/// - f = start + (end - start) * p with 0 < p < 1, or start or end itself: it leaves the box of
///   start and end by a few 2^-53 of their size at most;
/// - the computed length is sqrt(dx * dx + dy * dy + dz * dz): a difference exceeds it by a
///   few 2^-53 of its size at most, or, where its square vanishes, by some 1e-161;
/// - the sides of the box are rounded, by a few 2^-53 of size and margin.
/// The strip holds e too: seen from above, e is no further from the unbounded line than from f,
/// and |cross| = |(end - start) x (e - start)| is that distance times the line's length. Its
/// rounding is a few 2^-53 of the products that it is made of, and e - start is no longer than
/// line and margin together, since e is in the box.
/// The slacks cover each of these many times over. Infinite t makes the box the whole plane.
/// Where the square of the line's length is not finite (a coordinate is not, or is too large), p is
/// 0 or NaN, so that f is the start: the box is then that of the start, and nothing is near a
/// start with a coordinate that is not finite.
/// Height is not looked at, which only lets more through.
class CCaptureBox {
 public:
  CCaptureBox(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd, double captureDistance)
      : m_x1(ptStart.x), m_y1(ptStart.y), m_x2(ptEnd.x), m_y2(ptEnd.y) {
    if (!std::isfinite((ptEnd - ptStart).lengthSqrd())) {
      m_x2 = m_x1;
      m_y2 = m_y1;
    }
    if (!(captureDistance > 0.0) || !std::isfinite(m_x1) || !std::isfinite(m_y1)) {
      return;
    }
    m_margin = Margin(std::max(std::max(std::fabs(m_x1), std::fabs(m_x2)),
                               std::max(std::fabs(m_y1), std::fabs(m_y2))),
                      captureDistance);
    m_minX = std::min(m_x1, m_x2) - m_margin;
    m_maxX = std::max(m_x1, m_x2) + m_margin;
    m_minY = std::min(m_y1, m_y2) - m_margin;
    m_maxY = std::max(m_y1, m_y2) + m_margin;
    m_dx = m_x2 - m_x1;
    m_dy = m_y2 - m_y1;
    if (m_dx != 0.0 && m_dy != 0.0) {
      const double sides = std::fabs(m_dx) + std::fabs(m_dy);
      const double maxCross = std::sqrt(m_dx * m_dx + m_dy * m_dy) * m_margin;
      // Below that the products lose digits; a box alone will do for so short a line.
      if (maxCross > GeomConst::kVanishingSlack) {
        m_maxCross = maxCross + GeomConst::kRoundingSlack * (maxCross + sides * (sides + m_margin));
      }
    }
  }
  /// Around a point.
  CCaptureBox(const AcGePoint3d& pt, double captureDistance)
      : CCaptureBox(pt, pt, captureDistance) {}

  /// How far the box extends beyond its line on every side. Below zero where nothing lies within
  /// the capture distance.
  static double Margin(double maxAbsCoordinate, double captureDistance) {
    return captureDistance > 0.0
               ? captureDistance * (1.0 + GeomConst::kRoundingSlack) +
                     maxAbsCoordinate * GeomConst::kRoundingSlack + GeomConst::kVanishingSlack
               : -1.0;
  }

  bool Holds(double x, double y) const {
    // Branch-free: which of the comparisons fails is unpredictable.
    return (static_cast<unsigned>(y >= m_minY) & static_cast<unsigned>(y <= m_maxY) &
            static_cast<unsigned>(x >= m_minX) & static_cast<unsigned>(x <= m_maxX) &
            static_cast<unsigned>(
                !(std::fabs(m_dx * (y - m_y1) - m_dy * (x - m_x1)) > m_maxCross))) != 0;
  }
  bool Holds(const AcGePoint3d& pt) const { return Holds(pt.x, pt.y); }

  double MinX() const { return m_minX; }
  double MaxX() const { return m_maxX; }

  struct Range {
    double low;
    double high;
  };
  /// Where along y a point of the strip can lie whose x is in [minX, maxX]: its foot is no
  /// further than the margin outside of that in x, y is monotonic along the line, and the point is
  /// no further than the margin from its foot in y.
  Range YRangeWithin(double minX, double maxX) const {
    if (m_dx == 0.0 || m_dy == 0.0 || (minX <= m_minX && m_maxX <= maxX)) {
      return {m_minY, m_maxY};
    }
    const double y1 = YAt(minX - m_margin);
    const double y2 = YAt(maxX + m_margin);
    return {std::min(y1, y2) - m_margin, std::max(y1, y2) + m_margin};
  }

 private:
  /// The line's y where its x comes nearest to `x`.
  double YAt(double x) const {
    const double part = std::clamp((x - m_x1) / m_dx, 0.0, 1.0);
    return m_y1 + m_dy * part;
  }

  double m_x1;
  double m_y1;
  double m_x2;
  double m_y2;
  double m_dx = 0.0;
  double m_dy = 0.0;
  double m_margin = 0.0;
  double m_maxCross = std::numeric_limits<double>::infinity();
  double m_minX = std::numeric_limits<double>::infinity();
  double m_maxX = -std::numeric_limits<double>::infinity();
  double m_minY = std::numeric_limits<double>::infinity();
  double m_maxY = -std::numeric_limits<double>::infinity();
};
