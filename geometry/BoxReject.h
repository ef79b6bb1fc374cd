// The box reject of algorithms that go through all lines once: plain comparisons of doubles that
// rule out, before any geometry is built, lines that no exact test (a computed distance below the
// capture distance) accepts. Not exported.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

#include "CaptureBox.h"
#include "DoublePair.h"
#include "GeomConst.h"
#include "Prefetch.h"
#include "gepnt3d.h"

/// How many lines ahead are prefetched.
inline constexpr std::size_t kPrefetchDistance = 8;

/// Rules out lines that are nowhere near a segment.
///
/// The exact test accepts when the computed distance of two computed points is below t. A point
/// computed on a segment is one of its ends or start + (end - start) * p with 0 < p < 1, which
/// leaves the range of the ends, in any coordinate, by a few 2^-53 of their size in it; or it is
/// NaN, and so is its distance. So accepted segments are no further apart in a coordinate than
/// t and a few 2^-53 of both sizes (see CCaptureBox for the rounding of the distance itself, and
/// for the slacks). Comparisons with NaN rule nothing out; a line whose end alone is NaN may be
/// ruled out by its start, because its feet are there or are NaN.
class CLineBoxReject {
 public:
  CLineBoxReject(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd, double captureDistance)
      : m_minX(std::min(ptStart.x, ptEnd.x)),
        m_maxX(std::max(ptStart.x, ptEnd.x)),
        m_minY(std::min(ptStart.y, ptEnd.y)),
        m_maxY(std::max(ptStart.y, ptEnd.y)),
        m_allowance(captureDistance * kAllowanceShare) {
    // Of a segment whose length overflows nothing is certain.
    const double size = std::isfinite((ptEnd - ptStart).lengthSqrd())
                            ? std::max(std::max(std::fabs(m_minX), std::fabs(m_maxX)),
                                       std::max(std::fabs(m_minY), std::fabs(m_maxY)))
                            : std::numeric_limits<double>::infinity();
    const double margin = CCaptureBox::Margin(size, captureDistance);
    m_minX -= margin;
    m_maxX += margin;
    m_minY -= margin;
    m_maxY += margin;
  }

  /// Calls visit(line) for the lines, in their order, that are not rejected.
  ///
  /// Nearly all are rejected in x, and two lines at a time are compared there with a range widened
  /// by an allowance: enough for the rounding of all lines up to a size, so that nothing is to be
  /// computed for each. The sizes of a chunk of lines are added up on the way; when the sum is
  /// too large, or NaN, the chunk is gone through again, each line by its own size.
  template <class Line, class Visit>
  void VisitNear(const std::vector<Line*>& lines, Visit visit) const {
    const CDoublePair min(m_minX - m_allowance, m_minX - m_allowance);
    const CDoublePair max(m_maxX + m_allowance, m_maxX + m_allowance);
    const CDoublePair none(0.0, 0.0);
    const double largest = m_allowance / GeomConst::kRoundingSlack;
    constexpr std::size_t kChunk = 256;
    Line* found[kChunk];
    for (std::size_t first = 0; first < lines.size(); first += kChunk) {
      const std::span<Line* const> chunk(lines.data() + first,
                                         std::min(kChunk, lines.size() - first));
      std::size_t count = 0;
      const auto keepUnlessRejected = [&](Line* pLine) {
        if (!IsRejected(pLine->ptStart, pLine->ptEnd)) {
          found[count++] = pLine;
        }
      };
      CDoublePair sizes = none;
      std::size_t i = 0;
      for (; i + 1 < chunk.size(); i += 2) {
        if (i + kPrefetchDistance + 1 < chunk.size()) {
          Prefetch(chunk[i + kPrefetchDistance]->ptStart);
          Prefetch(chunk[i + kPrefetchDistance + 1]->ptStart);
        }
        const CDoublePair start(chunk[i]->ptStart.x, chunk[i + 1]->ptStart.x);
        const CDoublePair end(chunk[i]->ptEnd.x, chunk[i + 1]->ptEnd.x);
        const CDoublePair low = Min(start, end);
        const CDoublePair high = Max(start, end);
        sizes = sizes + (high - low);
        if (!AreOutside(low, high, min, max)) {
          keepUnlessRejected(chunk[i]);
          keepUnlessRejected(chunk[i + 1]);
        }
      }
      if (!AreWithin(sizes, none, CDoublePair(largest, largest))) {
        count = 0;
        i = 0;
      }
      for (; i < chunk.size(); ++i) {
        keepUnlessRejected(chunk[i]);
      }
      for (i = 0; i < count; ++i) {
        visit(found[i]);
      }
    }
  }

  /// Whether the line, whatever its size, is certainly not within the capture distance.
  bool IsRejected(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd) const {
    return Gap(ptStart.x, ptEnd.x, m_minX, m_maxX) > 0.0 ||
           Gap(ptStart.y, ptEnd.y, m_minY, m_maxY) > 0.0;
  }

 private:
  /// How far two values lie above or below a range, less their own rounding.
  static double Gap(double start, double end, double min, double max) {
    const double low = std::min(start, end);
    const double high = std::max(start, end);
    return std::max(min - high, low - max) - GeomConst::kRoundingSlack * std::max(high, -low);
  }

  /// The allowance, as a share of the capture distance: small, so that few lines more are looked
  /// at, and with the usual sizes far more than their rounding.
  static constexpr double kAllowanceShare = 1.0 / 16.0;

  double m_minX;
  double m_maxX;
  double m_minY;
  double m_maxY;
  double m_allowance;
};

/// Rules out points that are not near any of a few points: the box around them, each grown by
/// its margin (see CCaptureBox; points with a coordinate that is not finite are near nothing).
class CPointBoxReject {
 public:
  explicit CPointBoxReject(double captureDistance) : m_captureDistance(captureDistance) {}

  void Add(const AcGePoint3d& pt) {
    if (m_captureDistance > 0.0 && std::isfinite(pt.x) && std::isfinite(pt.y)) {
      const double margin =
          CCaptureBox::Margin(std::max(std::fabs(pt.x), std::fabs(pt.y)), m_captureDistance);
      m_minX = std::min(m_minX, pt.x - margin);
      m_maxX = std::max(m_maxX, pt.x + margin);
      m_minY = std::min(m_minY, pt.y - margin);
      m_maxY = std::max(m_maxY, pt.y + margin);
    }
  }
  /// Calls visit(line) for the lines, in their order, one of whose ends may be near; null
  /// pointers are left out.
  template <class Line, class Visit>
  void VisitNear(const std::vector<Line*>& lines, Visit visit) const {
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (i + kPrefetchDistance < lines.size() && lines[i + kPrefetchDistance]) {
        Prefetch(lines[i + kPrefetchDistance]->ptStart);
      }
      Line* const pLine = lines[i];
      if (pLine && (Holds(pLine->ptStart) || Holds(pLine->ptEnd))) {
        visit(pLine);
      }
    }
  }

 private:
  bool Holds(const AcGePoint3d& pt) const {
    return pt.x >= m_minX && pt.x <= m_maxX && pt.y >= m_minY && pt.y <= m_maxY;
  }

  double m_captureDistance;
  double m_minX = std::numeric_limits<double>::infinity();
  double m_maxX = -std::numeric_limits<double>::infinity();
  double m_minY = std::numeric_limits<double>::infinity();
  double m_maxY = -std::numeric_limits<double>::infinity();
};
