// Tells on which side of a line, seen in the Y direction, a picked point lies.
#pragma once

#include "afxext.h"
#include "gepnt3d.h"

class AFX_EXT_CLASS CJudgeYOpen {
 public:
  /// The reference line through two points.
  CJudgeYOpen(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd);
  CJudgeYOpen(const CJudgeYOpen& other);
  CJudgeYOpen& operator=(const CJudgeYOpen& other);

  /// True on or above the line; for a vertical line, on it or to its left.
  bool GetYOpenBySelPnt(const AcGePoint3d& ptSel);

 private:
  AcGePoint3d m_ptStart;
  AcGePoint3d m_ptEnd;
};
