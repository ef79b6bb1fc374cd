// Writes a vector of the XY plane as a combination of two base vectors.
#pragma once

#include "afxext.h"
#include "gevec3d.h"

class AFX_EXT_CLASS CXyResolveVector {
 public:
  CXyResolveVector(const AcGeVector3d& vecX, const AcGeVector3d& vecY);
  CXyResolveVector(const CXyResolveVector& other);
  CXyResolveVector& operator=(const CXyResolveVector& other);

  /// Finds the two parameters with vec = x * vecX + y * vecY.
  /// Fails: false with both parameters 0 when the base vectors are parallel.
  bool ResolveVector(const AcGeVector3d& vec);
  /// The parameters of the last ResolveVector; 0 before the first.
  double GetXParam();
  double GetYParam();

 private:
  AcGeVector3d m_vecX;
  AcGeVector3d m_vecY;
  AcGeVector3d m_vecXPerp;  // m_vecX turned by +pi/2 about Z
  AcGeVector3d m_vecYPerp;  // m_vecY turned by +pi/2 about Z
  double m_dXParam;
  double m_dYParam;
};
