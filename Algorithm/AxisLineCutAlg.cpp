#include "AxisLineCutAlg.h"

#include <algorithm>

#include "AxisGridInternal.h"
#include "SortAlongDirection.h"
#include "gelnsg3d.h"

AxisLineCutAlg::AxisLineCutAlg() = default;
AxisLineCutAlg::AxisLineCutAlg(const AxisLineCutAlg& other) = default;
AxisLineCutAlg& AxisLineCutAlg::operator=(const AxisLineCutAlg& other) = default;

AxisLineCutAlg::~AxisLineCutAlg() {
  ClearAxisLineArray(m_srcAxisLines);
  ClearAxisLineArray(m_destAxisLines);
}

void AxisLineCutAlg::AppendSrcAxisLine(AxisLikeLineSeg* pLine) {
  m_srcAxisLines.push_back(pLine);
}

const std::vector<AxisLikeLineSeg*>& AxisLineCutAlg::GetDestAxisLines() {
  return m_destAxisLines;
}

void AxisLineCutAlg::CutAxisLines() {
  ClearAxisLineArray(m_destAxisLines);
  m_destAxisLines.reserve(m_srcAxisLines.size());
  const CAxisGrid grid(m_srcAxisLines);
  for (AxisLikeLineSeg* pLine : m_srcAxisLines) {
    if (!pLine) {
      continue;
    }
    CAxisGrid::Crossings crossings;
    switch (grid.FindOutermost(*pLine, crossings)) {
      case CAxisGrid::EOutcome::Found:
        m_destAxisLines.push_back(new AxisLikeLineSeg{crossings.ptFirst, crossings.ptLast});
        break;
      case CAxisGrid::EOutcome::Nothing:
        m_destAxisLines.push_back(new AxisLikeLineSeg(*pLine));
        break;
      case CAxisGrid::EOutcome::Ambiguous:
        CutAxisLine(pLine);
        break;
    }
  }
}

void AxisLineCutAlg::CutAxisLine(AxisLikeLineSeg* pLine) {
  const AcGeLineSeg3d seg(pLine->ptStart, pLine->ptEnd);
  std::vector<AcGePoint3d> pnts;
  for (const AxisLikeLineSeg* pOther : m_srcAxisLines) {
    AcGePoint3d ptCross;
    if (pOther && pOther != pLine &&
        seg.intersectWith(AcGeLineSeg3d(pOther->ptStart, pOther->ptEnd), ptCross)) {
      pnts.push_back(ptCross);
    }
  }

  AxisLikeLineSeg* pDest = new AxisLikeLineSeg();
  m_destAxisLines.push_back(pDest);
  *pDest = *pLine;

  // Only crossings collected one after the other are compared; std::unique compares each with
  // the last one kept.
  pnts.erase(std::unique(pnts.begin(), pnts.end(),
                         [](const AcGePoint3d& ptKept, const AcGePoint3d& pt) {
                           return pt.isEqualTo(ptKept);
                         }),
             pnts.end());
  if (pnts.size() < 2) {
    return;
  }
  SortAlongDirection(pnts.begin(), pnts.end(), pLine->ptEnd - pLine->ptStart);
  pDest->ptStart = pnts.front();
  pDest->ptEnd = pnts.back();
}

void AxisLineCutAlg::ClearAxisLineArray(std::vector<AxisLikeLineSeg*>& lines) {
  for (AxisLikeLineSeg* pLine : lines) {
    delete pLine;
  }
  lines.clear();
}
