// Axis lines that run along X or Y, arranged for finding the outermost crossings of each: of a
// grid of n by n axes every one has n crossings, of which two matter. Not exported.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "AxisLineCutAlg.h"
#include "gelnsg3d.h"

/// Lines of the grid are horizontal or vertical, at one height and of some length. Two of them, one
/// of either kind, cross where one holds x and the other y, in these very doubles (see
/// AcGeLinearEnt3d::intersectWith); whether they do is certain from plain comparisons, but for
/// ends nearer to the other line than a margin, where the exact test decides. The margin
/// covers the tolerance of that test and its rounding, a few 2^-53 of the largest coordinate.
/// All other lines are odd ones, of which each is tested exactly.
class CAxisGrid {
 public:
  /// The records are referred to, null ones left out.
  explicit CAxisGrid(const std::vector<AxisLikeLineSeg*>& lines) {
    double size = 0.0;
    m_z = std::numeric_limits<double>::quiet_NaN();
    for (const AxisLikeLineSeg* pLine : lines) {
      if (pLine) {
        m_z = std::isnan(m_z) ? pLine->ptStart.z : m_z;
        Add(pLine, size);
      }
    }
    m_margin = kMarginTolerances * AcGeContext::gTol.equalPoint() + kMarginOfSize * size;
    Sort(m_horizontals);
    Sort(m_verticals);
  }

  enum class EOutcome : std::uint8_t {
    Nothing,   // fewer than two crossings
    Found,     // the two outermost
    Ambiguous  // some are so near to each other that all must be looked at
  };
  struct Crossings {
    AcGePoint3d ptFirst;  // in the line's direction
    AcGePoint3d ptLast;
  };
  EOutcome FindOutermost(const AxisLikeLineSeg& line, Crossings& crossings) const {
    switch (KindOf(line)) {
      case EKind::Horizontal:
        return FindOutermost(line, m_verticals, &AcGePoint3d::x, &AcGePoint3d::y, crossings);
      case EKind::Vertical:
        return FindOutermost(line, m_horizontals, &AcGePoint3d::y, &AcGePoint3d::x, crossings);
      default:
        return EOutcome::Ambiguous;
    }
  }

 private:
  static constexpr double kMarginTolerances = 16.0;
  static constexpr double kMarginOfSize = 1.0e-13;  // 900 times 2^-53
  static constexpr double kLeastLength = 0.01;
  static constexpr double kLargestSize = 1.0e30;       // products stay far from overflow
  static constexpr double kLargestTolerance = 1.0e-4;  // far below the least length

  enum class EKind : std::uint8_t { Horizontal, Vertical, Odd };
  struct GridLine {
    double at;   // y of a horizontal line, x of a vertical one
    double low;  // from here to there in the other coordinate
    double high;
    const AxisLikeLineSeg* pLine;
  };

  EKind KindOf(const AxisLikeLineSeg& line) const {
    const AcGePoint3d& pt1 = line.ptStart;
    const AcGePoint3d& pt2 = line.ptEnd;
    const AcGeTol& tol = AcGeContext::gTol;
    if (!(pt1.z == m_z && pt2.z == m_z) || !(SizeOf(line) < kLargestSize) ||
        !(tol.equalPoint() <= kLargestTolerance && tol.equalVector() <= kLargestTolerance)) {
      return EKind::Odd;
    }
    if (pt1.y == pt2.y && std::fabs(pt2.x - pt1.x) > kLeastLength) {
      return EKind::Horizontal;
    }
    return pt1.x == pt2.x && std::fabs(pt2.y - pt1.y) > kLeastLength ? EKind::Vertical : EKind::Odd;
  }
  static double SizeOf(const AxisLikeLineSeg& line) {
    return (std::fabs(line.ptStart.x) + std::fabs(line.ptEnd.x)) +
           (std::fabs(line.ptStart.y) + std::fabs(line.ptEnd.y));
  }

  void Add(const AxisLikeLineSeg* pLine, double& size) {
    const AcGePoint3d& pt1 = pLine->ptStart;
    const AcGePoint3d& pt2 = pLine->ptEnd;
    const EKind kind = KindOf(*pLine);
    if (kind == EKind::Odd) {
      m_odd.push_back(pLine);
      return;
    }
    size = std::max(size, SizeOf(*pLine));
    if (kind == EKind::Horizontal) {
      m_horizontals.push_back({pt1.y, std::min(pt1.x, pt2.x), std::max(pt1.x, pt2.x), pLine});
    } else {
      m_verticals.push_back({pt1.x, std::min(pt1.y, pt2.y), std::max(pt1.y, pt2.y), pLine});
    }
  }
  static void Sort(std::vector<GridLine>& lines) {
    const auto isBefore = [](const GridLine& a, const GridLine& b) { return a.at < b.at; };
    // Axes are mostly drawn one after the other.
    if (!std::is_sorted(lines.begin(), lines.end(), isBefore)) {
      std::sort(lines.begin(), lines.end(), isBefore);
    }
  }

  /// Whether the line, at `at` from low to high, crosses one of the others.
  bool Crosses(const GridLine& line, const GridLine& other) const {
    const double inside = std::min(std::min(other.at - line.low, line.high - other.at),
                                   std::min(line.at - other.low, other.high - line.at));
    if (inside > m_margin) {
      return true;
    }
    if (inside < -m_margin) {
      return false;
    }
    AcGePoint3d ptCross;
    return AcGeLineSeg3d(line.pLine->ptStart, line.pLine->ptEnd)
        .intersectWith(AcGeLineSeg3d(other.pLine->ptStart, other.pLine->ptEnd), ptCross);
  }

  /// `along` is the coordinate that changes along the line, `across` the one that it holds.
  EOutcome FindOutermost(const AxisLikeLineSeg& axis, const std::vector<GridLine>& others,
                         double AcGePoint3d::*along, double AcGePoint3d::*across,
                         Crossings& crossings) const {
    const GridLine line{axis.ptStart.*across, std::min(axis.ptStart.*along, axis.ptEnd.*along),
                        std::max(axis.ptStart.*along, axis.ptEnd.*along), &axis};
    double first = std::numeric_limits<double>::infinity();
    double last = -std::numeric_limits<double>::infinity();
    if (!FindFirst(line, others, first) || !FindLast(line, others, last) ||
        !CompareWithOdd(line, along, first, last)) {
      return EOutcome::Ambiguous;
    }
    if (!(first < last)) {
      return EOutcome::Nothing;
    }
    if (last - first <= m_margin) {
      return EOutcome::Ambiguous;
    }
    const bool runsUp = axis.ptEnd.*along > axis.ptStart.*along;
    crossings.ptFirst = crossings.ptLast = axis.ptStart;
    crossings.ptFirst.*along = runsUp ? first : last;
    crossings.ptLast.*along = runsUp ? last : first;
    return EOutcome::Found;
  }

  /// Returns false when another crossing is too near to the first to be distinct.
  bool FindFirst(const GridLine& line, const std::vector<GridLine>& others, double& first) const {
    auto it = others.begin();
    if (!others.empty() && others.front().at < line.low - m_margin) {
      it = std::lower_bound(it, others.end(), line.low - m_margin,
                            [](const GridLine& other, double low) { return other.at < low; });
    }
    const double end = line.high + m_margin;
    for (; it != others.end() && it->at <= end && it->at <= first + m_margin; ++it) {
      if (Crosses(line, *it)) {
        if (first < std::numeric_limits<double>::infinity()) {
          return false;
        }
        first = it->at;
      }
    }
    return true;
  }
  bool FindLast(const GridLine& line, const std::vector<GridLine>& others, double& last) const {
    auto it = others.end();
    if (!others.empty() && others.back().at > line.high + m_margin) {
      it = std::upper_bound(others.begin(), it, line.high + m_margin,
                            [](double high, const GridLine& other) { return high < other.at; });
    }
    const double end = line.low - m_margin;
    while (it != others.begin()) {
      --it;
      if (!(it->at >= end && it->at >= last - m_margin)) {
        break;
      }
      if (Crosses(line, *it)) {
        if (last > -std::numeric_limits<double>::infinity()) {
          return false;
        }
        last = it->at;
      }
    }
    return true;
  }
  bool CompareWithOdd(const GridLine& line, double AcGePoint3d::*along, double& first,
                      double& last) const {
    const AcGeLineSeg3d seg(line.pLine->ptStart, line.pLine->ptEnd);
    for (const AxisLikeLineSeg* pOdd : m_odd) {
      AcGePoint3d ptCross;
      if (!seg.intersectWith(AcGeLineSeg3d(pOdd->ptStart, pOdd->ptEnd), ptCross)) {
        continue;
      }
      const double at = ptCross.*along;
      if (std::fabs(at - first) <= m_margin || std::fabs(at - last) <= m_margin) {
        return false;
      }
      first = std::min(first, at);
      last = std::max(last, at);
    }
    return true;
  }

  double m_z;
  double m_margin;
  std::vector<GridLine> m_horizontals;
  std::vector<GridLine> m_verticals;
  std::vector<const AxisLikeLineSeg*> m_odd;
};
