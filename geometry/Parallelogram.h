// Tells whether a point lies in a parallelogram, its boundary included.
#pragma once

#include "afxext.h"
#include "gepnt3d.h"

class AFX_EXT_CLASS CParallelogram {
 public:
  /// A parallelogram of no size at the origin, in which no point lies.
  CParallelogram();
  CParallelogram(const CParallelogram& other);
  CParallelogram& operator=(const CParallelogram& other);

  /// One corner and the two sides that leave it.
  CParallelogram& set(const AcGePoint3d& ptBase, const AcGeVector3d& vecSide1,
                      const AcGeVector3d& vecSide2);
  /// False for every point when a side has no length. With parallel sides the result follows
  /// from where the origin projects onto them.
  bool DoPntInRegion(const AcGePoint3d& pt) const;

 private:
  AcGePoint3d m_ptBase;
  AcGeVector3d m_vecSide1;
  AcGeVector3d m_vecSide2;
};
