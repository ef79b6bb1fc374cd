// For algorithms that go through all lines once: plain comparisons of doubles that rule out, before
// any geometry is built, lines that no exact test (a computed distance below the capture distance)
// accepts. Not exported.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "CaptureBox.h"
#include "gepnt3d.h"

/// Rules out lines that are nowhere near a segment.
///
/// The exact test accepts when the computed distance of two computed points is below t. A point
/// computed on a segment is one of its ends or start + (end - start) * p with 0 < p < 1, which
/// leaves the box of the ends by a few 2^-53 of their size; or it is no number, and so is its
/// distance. The boxes of two accepted segments are therefore no further apart, in any
/// coordinate, than t and a few 2^-53 of both sizes (see CCaptureBox for the rounding of the
/// distance itself). The box here is grown by the reach for a size kFarOut times that of segment
/// and t; lines with larger coordinates, or with some that are no numbers, are never ruled out.
class CFarLineFilter {
 public:
  CFarLineFilter(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd, double captureDistance) {
    m_maxSize = kFarOut * (SizeOf(ptStart, ptEnd) + captureDistance);
    const double reach = CCaptureBox::Reach(m_maxSize, captureDistance);
    m_minX = std::min(ptStart.x, ptEnd.x) - reach;
    m_maxX = std::max(ptStart.x, ptEnd.x) + reach;
    m_minY = std::min(ptStart.y, ptEnd.y) - reach;
    m_maxY = std::max(ptStart.y, ptEnd.y) + reach;
    if (!std::isfinite((ptEnd - ptStart).lengthSqrd())) {
      m_maxSize = -1.0;  // nothing is certain
    }
  }

  /// Whether the line is certainly not within the capture distance.
  bool IsFar(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd) const {
    // All at once, without branches that are anyone's guess.
    const unsigned beside = static_cast<unsigned>(std::max(ptStart.x, ptEnd.x) < m_minX) |
                            static_cast<unsigned>(std::min(ptStart.x, ptEnd.x) > m_maxX) |
                            static_cast<unsigned>(std::max(ptStart.y, ptEnd.y) < m_minY) |
                            static_cast<unsigned>(std::min(ptStart.y, ptEnd.y) > m_maxY);
    return (beside & static_cast<unsigned>(SizeOf(ptStart, ptEnd) <= m_maxSize)) != 0;
  }

 private:
  static constexpr double kFarOut = 1.0e6;

  static double SizeOf(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd) {
    return (std::fabs(ptStart.x) + std::fabs(ptEnd.x)) +
           (std::fabs(ptStart.y) + std::fabs(ptEnd.y));
  }

  double m_maxSize;
  double m_minX;
  double m_maxX;
  double m_minY;
  double m_maxY;
};

/// Rules out points that are not near any of a few points: the box around them, each grown by
/// its reach (see CCaptureBox; points with a coordinate that is no finite number are near
/// nothing).
class CFarPointFilter {
 public:
  explicit CFarPointFilter(double captureDistance) : m_captureDistance(captureDistance) {}

  void Add(const AcGePoint3d& pt) {
    if (m_captureDistance > 0.0 && std::isfinite(pt.x) && std::isfinite(pt.y)) {
      const double reach =
          CCaptureBox::Reach(std::max(std::fabs(pt.x), std::fabs(pt.y)), m_captureDistance);
      m_minX = std::min(m_minX, pt.x - reach);
      m_maxX = std::max(m_maxX, pt.x + reach);
      m_minY = std::min(m_minY, pt.y - reach);
      m_maxY = std::max(m_maxY, pt.y + reach);
    }
  }
  /// Whether neither of two points is certainly near.
  bool AreFar(const AcGePoint3d& pt1, const AcGePoint3d& pt2) const {
    return (Holds(pt1) | Holds(pt2)) == 0;
  }

 private:
  unsigned Holds(const AcGePoint3d& pt) const {
    return static_cast<unsigned>(pt.x >= m_minX) & static_cast<unsigned>(pt.x <= m_maxX) &
           static_cast<unsigned>(pt.y >= m_minY) & static_cast<unsigned>(pt.y <= m_maxY);
  }

  double m_captureDistance;
  double m_minX = std::numeric_limits<double>::infinity();
  double m_maxX = -std::numeric_limits<double>::infinity();
  double m_minY = std::numeric_limits<double>::infinity();
  double m_maxY = -std::numeric_limits<double>::infinity();
};
