#include "XyResolveVector.h"

#include "GeomConst.h"

CXyResolveVector::CXyResolveVector(const AcGeVector3d& vecX, const AcGeVector3d& vecY)
    : m_vecX(vecX),
      m_vecY(vecY),
      m_vecXPerp(vecX),
      m_vecYPerp(vecY),
      m_dXParam(0.0),
      m_dYParam(0.0) {
  m_vecXPerp.rotateBy(GeomConst::kHalfPi, AcGeVector3d::kZAxis);
  m_vecYPerp.rotateBy(GeomConst::kHalfPi, AcGeVector3d::kZAxis);
}

CXyResolveVector::CXyResolveVector(const CXyResolveVector& other) = default;
CXyResolveVector& CXyResolveVector::operator=(const CXyResolveVector& other) = default;

bool CXyResolveVector::ResolveVector(const AcGeVector3d& vec) {
  m_dXParam = 0.0;
  m_dYParam = 0.0;
  if (m_vecX.isParallelTo(m_vecY)) {
    return false;
  }
  // The perpendicular of one base vector wipes that vector out of the sum.
  m_dXParam = m_vecYPerp.dotProduct(vec) / m_vecYPerp.dotProduct(m_vecX);
  m_dYParam = m_vecXPerp.dotProduct(vec) / m_vecXPerp.dotProduct(m_vecY);
  return true;
}

double CXyResolveVector::GetXParam() {
  return m_dXParam;
}

double CXyResolveVector::GetYParam() {
  return m_dYParam;
}
