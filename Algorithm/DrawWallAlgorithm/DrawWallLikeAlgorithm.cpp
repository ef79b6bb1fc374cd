#include "DrawWallLikeAlgorithm.h"

#include "BoxReject.h"
#include "ProjectScale.h"
#include "SortAlongDirection.h"

CDrawWallLikeAlgorithm::CDrawWallLikeAlgorithm() = default;
CDrawWallLikeAlgorithm::CDrawWallLikeAlgorithm(const CDrawWallLikeAlgorithm& other) = default;
CDrawWallLikeAlgorithm& CDrawWallLikeAlgorithm::operator=(const CDrawWallLikeAlgorithm& other) =
    default;

CDrawWallLikeAlgorithm::~CDrawWallLikeAlgorithm() {
  ClearCalcInfo();
}

std::vector<WallLineLikeSeg*>& CDrawWallLikeAlgorithm::GetSrcWallLines() {
  return m_srcWallLines;
}

const std::vector<WallLineLikeSeg*>& CDrawWallLikeAlgorithm::GetSrcModifyiedWallLines() {
  return m_srcModifyiedWallLines;
}

const std::vector<WallLineLikeSeg*>& CDrawWallLikeAlgorithm::GetSrcNewWallLines() {
  return m_srcNewWallLines;
}

const std::vector<WallLineLikeSeg*>& CDrawWallLikeAlgorithm::GetNewWallLines() {
  return m_newWallLines;
}

AcArray<AcGePoint3d> CDrawWallLikeAlgorithm::CalcNewWallLine(const AcGePoint3d& ptStart,
                                                             const AcGePoint3d& ptEnd) {
  ClearCalcInfo();
  m_newSeg.set(ptStart, ptEnd);
  m_newLine.set(ptStart, ptEnd);
  AcArray<AcGePoint3d> pnts;
  BreakSrcWallLines(pnts);
  pnts.append(ptStart);
  pnts.append(ptEnd);
  SortAlongDirection(pnts.begin(), pnts.end(), ptEnd - ptStart);
  CreateNewWallLines(pnts);
  return pnts;
}

void CDrawWallLikeAlgorithm::BreakSrcWallLines(AcArray<AcGePoint3d>& pnts) {
  const double captureDistance = GetCaptureDistance(GetProjectScale());
  const CLineBoxReject reject(m_newSeg.startPoint(), m_newSeg.endPoint(), captureDistance);
  reject.VisitNear(m_srcWallLines, [&](WallLineLikeSeg* pSrc) {
    const AcGeLineSeg3d segSrc(pSrc->ptStart, pSrc->ptEnd);
    if (!(captureDistance > m_newSeg.distanceTo(segSrc))) {
      return;
    }
    // Without a crossing the point stays at the origin, and the line is judged by it.
    AcGePoint3d ptCross;
    m_newLine.intersectWith(AcGeLine3d(pSrc->ptStart, pSrc->ptEnd), ptCross);
    const AcGeVector3d vecBefore = ptCross - pSrc->ptStart;
    const AcGeVector3d vecBehind = pSrc->ptEnd - ptCross;
    m_srcModifyiedWallLines.push_back(pSrc);
    if (vecBefore.isCodirectionalTo(vecBehind)) {
      m_srcNewWallLines.push_back(new WallLineLikeSeg(ptCross, pSrc->ptEnd, pSrc));
      pSrc->ptEnd = ptCross;
    }
    pnts.append(m_newSeg.closestPointTo(ptCross));
  });
}

void CDrawWallLikeAlgorithm::CreateNewWallLines(const AcArray<AcGePoint3d>& pnts) {
  for (int i = 1; i < pnts.length(); ++i) {
    if (!pnts[i - 1].isEqualTo(pnts[i])) {
      m_newWallLines.push_back(new WallLineLikeSeg(pnts[i - 1], pnts[i]));
    }
  }
}

void CDrawWallLikeAlgorithm::DelAndClearWallLineArray(std::vector<WallLineLikeSeg*>& lines) {
  for (WallLineLikeSeg*& pLine : lines) {
    delete pLine;
    pLine = nullptr;
  }
  lines.clear();
}

void CDrawWallLikeAlgorithm::ClearCalcInfo() {
  DelAndClearWallLineArray(m_srcModifyiedWallLines);
  DelAndClearWallLineArray(m_srcNewWallLines);
  DelAndClearWallLineArray(m_newWallLines);
}
