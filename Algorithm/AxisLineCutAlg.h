// Trims axis lines against each other: each is shortened to the stretch between its two
// outermost crossings with the others. Append the lines, call CutAxisLines(), read
// GetDestAxisLines(); the lines handed in stay as they are.
#pragma once

#include <vector>

#include "afxext.h"
#include "gepnt3d.h"

struct AxisLikeLineSeg {
  AcGePoint3d ptStart;
  AcGePoint3d ptEnd;
};

/// Owns:  the records of both arrays; the destructor deletes them. Copies share the records,
///        so copy only while the arrays are empty.
class AFX_EXT_CLASS AxisLineCutAlg {
 public:
  AxisLineCutAlg();
  AxisLineCutAlg(const AxisLineCutAlg& other);
  AxisLineCutAlg& operator=(const AxisLineCutAlg& other);
  ~AxisLineCutAlg();

  /// Takes over a line; null entries are kept and skipped.
  void AppendSrcAxisLine(AxisLikeLineSeg* pLine);
  /// Replaces the results: one trimmed line for every line that is not null, in their order
  /// and direction. A line with fewer than two crossings comes back as it is.
  void CutAxisLines();
  const std::vector<AxisLikeLineSeg*>& GetDestAxisLines();

 private:
  void ClearAxisLineArray(std::vector<AxisLikeLineSeg*>& lines);
  void CutAxisLine(AxisLikeLineSeg* pLine);

  std::vector<AxisLikeLineSeg*> m_srcAxisLines;
  std::vector<AxisLikeLineSeg*> m_destAxisLines;
};
