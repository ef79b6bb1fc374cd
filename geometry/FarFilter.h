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
/// leaves the range of the ends, in any coordinate, by a few 2^-53 of their size in it; or it is no
/// number, and so is its distance. So accepted segments are no further apart in a coordinate than
/// t and a few 2^-53 of both sizes (see CCaptureBox for the rounding of the distance itself, and
/// for the slacks). Comparisons with what is no number rule nothing out; a line whose end alone is
/// none may be ruled out by its start, because its feet are there or are no numbers.
class CFarLineFilter {
 public:
  CFarLineFilter(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd, double captureDistance)
      : m_minX(std::min(ptStart.x, ptEnd.x)),
        m_maxX(std::max(ptStart.x, ptEnd.x)),
        m_minY(std::min(ptStart.y, ptEnd.y)),
        m_maxY(std::max(ptStart.y, ptEnd.y)) {
    // Of a segment whose length overflows nothing is certain.
    const double size = std::isfinite((ptEnd - ptStart).lengthSqrd())
                            ? std::max(std::max(std::fabs(m_minX), std::fabs(m_maxX)),
                                       std::max(std::fabs(m_minY), std::fabs(m_maxY)))
                            : std::numeric_limits<double>::infinity();
    const double reach = CCaptureBox::Reach(size, captureDistance);
    m_minX -= reach;
    m_maxX += reach;
    m_minY -= reach;
    m_maxY += reach;
  }

  /// Whether the line is certainly not within the capture distance. Nearly all are told by x.
  bool IsFar(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd) const {
    return Gap(ptStart.x, ptEnd.x, m_minX, m_maxX) > 0.0 ||
           Gap(ptStart.y, ptEnd.y, m_minY, m_maxY) > 0.0;
  }

 private:
  /// How far two values lie above or below a range, less their own rounding.
  static double Gap(double start, double end, double min, double max) {
    const double low = std::min(start, end);
    const double high = std::max(start, end);
    return std::max(min - high, low - max) - CCaptureBox::kRelativeSlack * std::max(high, -low);
  }

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
  /// Whether neither of two points is near. Nearly all are told by x.
  bool AreFar(const AcGePoint3d& pt1, const AcGePoint3d& pt2) const {
    const unsigned first = IsWithin(pt1.x, m_minX, m_maxX);
    const unsigned second = IsWithin(pt2.x, m_minX, m_maxX);
    if ((first | second) == 0) {
      return true;
    }
    return ((first & IsWithin(pt1.y, m_minY, m_maxY)) |
            (second & IsWithin(pt2.y, m_minY, m_maxY))) == 0;
  }

 private:
  static unsigned IsWithin(double value, double min, double max) {
    return static_cast<unsigned>(value >= min) & static_cast<unsigned>(value <= max);
  }

  double m_captureDistance;
  double m_minX = std::numeric_limits<double>::infinity();
  double m_maxX = -std::numeric_limits<double>::infinity();
  double m_minY = std::numeric_limits<double>::infinity();
  double m_maxY = -std::numeric_limits<double>::infinity();
};
