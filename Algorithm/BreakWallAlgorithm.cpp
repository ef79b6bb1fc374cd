#include "BreakWallAlgorithm.h"

#include "NearLineFinder.h"
#include "ProjectScale.h"
#include "SortAlongDirection.h"
#include "gelnsg3d.h"

CBreakWallAlgorithm::CBreakWallAlgorithm() = default;
CBreakWallAlgorithm::CBreakWallAlgorithm(const CBreakWallAlgorithm& other) = default;
CBreakWallAlgorithm& CBreakWallAlgorithm::operator=(const CBreakWallAlgorithm& other) = default;

CBreakWallAlgorithm::~CBreakWallAlgorithm() {
  ClearWallLineArray(m_srcWallLines);
  ClearWallLineArray(m_newWallLines);
}

std::vector<WallLineLikeSeg*>& CBreakWallAlgorithm::GetSrcWallLines() {
  return m_srcWallLines;
}

const std::vector<WallLineLikeSeg*>& CBreakWallAlgorithm::GetNewWallLines() {
  return m_newWallLines;
}

void CBreakWallAlgorithm::AppendWallBreakPnt(WallLineLikeSeg* pLine,
                                             const AcArray<AcGePoint3d>& pnts) {
  m_wallBreakPnts[pLine].append(pnts);
}

void CBreakWallAlgorithm::CalcBreakPnts(std::vector<AcGePoint3d>& pnts, WallLineLikeSeg* pLine) {
  const double captureDistance = GetCaptureDistance(GetProjectScale());
  const AcGeLineSeg3d seg(pLine->ptStart, pLine->ptEnd);
  const CNearLineFinder finder(m_srcWallLines);
  finder.VisitNear(*pLine, captureDistance, [&](const WallLineLikeSeg* pOther) {
    if (pOther == pLine) {
      return;
    }
    const double distStart = seg.distanceTo(pOther->ptStart);
    const double distEnd = seg.distanceTo(pOther->ptEnd);
    const bool startIsNearer = distEnd > distStart;
    const AcGePoint3d& ptNear = startIsNearer ? pOther->ptStart : pOther->ptEnd;
    if (!(captureDistance > (startIsNearer ? distStart : distEnd))) {
      return;
    }
    const AcGePoint3d ptBreak = seg.closestPointTo(ptNear);
    const double toStart = ptBreak.distanceTo(pLine->ptStart);
    const double toEnd = ptBreak.distanceTo(pLine->ptEnd);
    if ((toEnd > toStart ? toStart : toEnd) >= captureDistance) {
      pnts.push_back(ptBreak);
    }
  });
}

void CBreakWallAlgorithm::SplitWallLines() {
  for (WallLineLikeSeg* pLine : m_srcWallLines) {
    const AcArray<AcGePoint3d>& appended = m_wallBreakPnts[pLine];
    std::vector<AcGePoint3d> pnts(appended.begin(), appended.end());
    CalcBreakPnts(pnts, pLine);
    if (pnts.empty()) {
      continue;
    }
    pnts.push_back(pLine->ptStart);
    pnts.push_back(pLine->ptEnd);
    SortAlongDirection(pnts.begin(), pnts.end(), pLine->ptEnd - pLine->ptStart);
    for (std::size_t i = 1; i < pnts.size(); ++i) {
      if (!pnts[i].isEqualTo(pnts[i - 1])) {
        m_newWallLines.push_back(new WallLineLikeSeg(pnts[i - 1], pnts[i], pLine));
      }
    }
  }
}

void CBreakWallAlgorithm::ClearWallLineArray(std::vector<WallLineLikeSeg*>& lines) {
  for (WallLineLikeSeg* pLine : lines) {
    delete pLine;
  }
  lines.clear();
}
