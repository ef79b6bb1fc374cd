// The break points of a merge, arranged for finding those that equal a point. Not exported.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "EndPointIndex.h"
#include "gepnt3d.h"

namespace MergeSegInternal {

class CBreakPnts {
 public:
  explicit CBreakPnts(const std::vector<AcGePoint3d>& pnts) : m_equalPoint(TouchDistance()) {
    m_points.reserve(pnts.size());
    for (const AcGePoint3d& pt : pnts) {
      m_points.push_back({pt, pt});
    }
    std::vector<const PointAsLine*> lines;
    lines.reserve(m_points.size());
    for (const PointAsLine& point : m_points) {
      lines.push_back(&point);
    }
    m_index.emplace(lines, m_equalPoint, CEndPointIndex::eForPoints);
  }

  bool Hold(const AcGePoint3d& pt) const {
    bool isHeld = false;
    if (!m_points.empty()) {
      m_index->VisitNear(CCaptureBox(pt, m_equalPoint), m_index->ColumnAt(pt.x),
                         [&](std::uint32_t found) {
                           isHeld = m_points[CEndPointIndex::LineOf(found)].ptStart.isEqualTo(pt);
                           return !isHeld;
                         });
    }
    return isHeld;
  }

 private:
  struct PointAsLine {
    AcGePoint3d ptStart;
    AcGePoint3d ptEnd;
  };
  /// Points are equal up to the tolerance itself, which is therefore below this.
  static double TouchDistance() {
    return std::nextafter(AcGeContext::gTol.equalPoint(), std::numeric_limits<double>::infinity());
  }

  double m_equalPoint;
  std::vector<PointAsLine> m_points;
  std::optional<CEndPointIndex> m_index;
};

}  // namespace MergeSegInternal
