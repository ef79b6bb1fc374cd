// What happens to the existing wall lines when one new wall-like line is drawn: lines near it
// are cut where its unbounded line crosses them, and it is cut at every such crossing. Fill
// GetSrcWallLines(), call CalcNewWallLine(), read the three result arrays. To break lines at
// each other's ends use CBreakWallAlgorithm.
#pragma once

#include <vector>

#include "WallLineLikeSeg.h"
#include "acarray.h"
#include "afxext.h"
#include "gelnsg3d.h"

/// Owns:  the records of the three result arrays, deleted by the next calculation and by the
///        destructor. The caller owns the source records, except those that a calculation
///        put among the modified ones: they have passed to the object, so before calculating
///        again the caller takes them out of the source array. Copies share the records, so
///        copy only while the result arrays are empty.
class AFX_EXT_CLASS CDrawWallLikeAlgorithm {
 public:
  CDrawWallLikeAlgorithm();
  CDrawWallLikeAlgorithm(const CDrawWallLikeAlgorithm& other);
  CDrawWallLikeAlgorithm& operator=(const CDrawWallLikeAlgorithm& other);
  ~CDrawWallLikeAlgorithm();

  /// The existing lines, for filling; no null pointers.
  std::vector<WallLineLikeSeg*>& GetSrcWallLines();
  /// Every source line nearer to the new one than the capture distance, cut or not, in source
  /// order; a cut one now ends at the crossing.
  const std::vector<WallLineLikeSeg*>& GetSrcModifyiedWallLines();
  /// The far parts of the cut lines, from the crossing to the old end, in source order.
  const std::vector<WallLineLikeSeg*>& GetSrcNewWallLines();
  /// The pieces of the new line from start to end.
  const std::vector<WallLineLikeSeg*>& GetNewWallLines();

  /// Deletes the last results, then draws the new line. Returns its cut points, both ends
  /// among them, sorted from start to end, duplicates included.
  AcArray<AcGePoint3d> CalcNewWallLine(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd);

 protected:
  /// Cuts the source lines and appends the new line's cut points. A line that does not cross
  /// the new line (parallel to it, say) is treated as if they crossed at the origin.
  void BreakSrcWallLines(AcArray<AcGePoint3d>& pnts);
  /// Makes a piece of the new line between every two neighbouring points that differ.
  void CreateNewWallLines(const AcArray<AcGePoint3d>& pnts);

 private:
  void DelAndClearWallLineArray(std::vector<WallLineLikeSeg*>& lines);
  void ClearCalcInfo();

  AcGeLineSeg3d m_newSeg;
  AcGeLine3d m_newLine;
  std::vector<WallLineLikeSeg*> m_srcWallLines;
  std::vector<WallLineLikeSeg*> m_srcModifyiedWallLines;
  std::vector<WallLineLikeSeg*> m_srcNewWallLines;
  std::vector<WallLineLikeSeg*> m_newWallLines;
};
