#include "Parallelogram.h"

#include "GeomLinearCommon.h"
#include "geline3d.h"

namespace {

/// Whether `pt`, moved along `vecOther` onto the side's line, falls beyond the side's ends.
/// Lines that do not meet leave the origin to be judged.
bool IsBeyondSide(const AcGePoint3d& pt, const AcGePoint3d& ptBase, const AcGeVector3d& vecSide,
                  const AcGeVector3d& vecOther) {
  AcGePoint3d ptOnSide;
  AcGeLine3d(ptBase, vecSide).intersectWith(AcGeLine3d(pt, vecOther), ptOnSide);
  return CGeomLinearCommon::GetPntPrjOnSegType(ptOnSide, ptBase, ptBase + vecSide) == ePrjOutside;
}

}  // namespace

CParallelogram::CParallelogram() = default;
CParallelogram::CParallelogram(const CParallelogram& other) = default;
CParallelogram& CParallelogram::operator=(const CParallelogram& other) = default;

CParallelogram& CParallelogram::set(const AcGePoint3d& ptBase, const AcGeVector3d& vecSide1,
                                    const AcGeVector3d& vecSide2) {
  m_ptBase = ptBase;
  m_vecSide1 = vecSide1;
  m_vecSide2 = vecSide2;
  return *this;
}

bool CParallelogram::DoPntInRegion(const AcGePoint3d& pt) const {
  if (m_vecSide1.isEqualTo(AcGeVector3d::kIdentity) ||
      m_vecSide2.isEqualTo(AcGeVector3d::kIdentity)) {
    return false;
  }
  if (IsBeyondSide(pt, m_ptBase, m_vecSide1, m_vecSide2)) {
    return false;
  }
  return !IsBeyondSide(pt, m_ptBase, m_vecSide2, m_vecSide1);
}
