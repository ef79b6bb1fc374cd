#include "JudgeYOpen.h"

#include "geline3d.h"

CJudgeYOpen::CJudgeYOpen(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd)
    : m_ptStart(ptStart), m_ptEnd(ptEnd) {}

CJudgeYOpen::CJudgeYOpen(const CJudgeYOpen& other) = default;
CJudgeYOpen& CJudgeYOpen::operator=(const CJudgeYOpen& other) = default;

bool CJudgeYOpen::GetYOpenBySelPnt(const AcGePoint3d& ptSel) {
  const AcGeLine3d lineReference(m_ptStart, m_ptEnd);
  const AcGeLine3d lineVertical(ptSel, AcGeVector3d::kYAxis);
  // Where the lines do not meet, the point stays at the origin and is compared all the same.
  AcGePoint3d ptIntersect;
  if (lineVertical.isParallelTo(lineReference)) {
    const AcGeLine3d lineHorizontal(ptSel, AcGeVector3d::kXAxis);
    lineHorizontal.intersectWith(lineReference, ptIntersect);
    return !(ptSel.x > ptIntersect.x);
  }
  lineVertical.intersectWith(lineReference, ptIntersect);
  return !(ptIntersect.y > ptSel.y);
}
