// Breaks wall lines at the points where another line's end meets them (T-junctions) and at
// points that the caller names. Fill GetSrcWallLines(), call SplitWallLines() once, read
// GetNewWallLines(). To cut lines along a new one use CDrawWallLikeAlgorithm.
#pragma once

#include <map>
#include <vector>

#include "WallLineLikeSeg.h"
#include "acarray.h"
#include "afxext.h"

/// Owns:  every record in the source and the result array; the destructor deletes them.
///        Copies share the records, so copy only while the arrays are empty.
class AFX_EXT_CLASS CBreakWallAlgorithm {
 public:
  CBreakWallAlgorithm();
  CBreakWallAlgorithm(const CBreakWallAlgorithm& other);
  CBreakWallAlgorithm& operator=(const CBreakWallAlgorithm& other);
  ~CBreakWallAlgorithm();

  /// The lines to break, for filling; no null pointers.
  std::vector<WallLineLikeSeg*>& GetSrcWallLines();
  /// The pieces, line by line in source order and along each line; pSrcLine tells the line.
  const std::vector<WallLineLikeSeg*>& GetNewWallLines();
  /// Adds break points to those kept for the line. They are used as given: a point beyond the
  /// line's ends or off the line makes pieces that reach it.
  void AppendWallBreakPnt(WallLineLikeSeg* pLine, const AcArray<AcGePoint3d>& pnts);
  /// Appends the pieces of every line that has a break point; a line without one yields
  /// nothing. The source lines stay as they are, and a second call appends everything again.
  void SplitWallLines();

 protected:
  /// Appends the break points that the other source lines put on `pLine`: of each line the
  /// end nearer to `pLine` counts (its end point on a tie), if it is nearer than the capture
  /// distance; the foot must keep at least the capture distance from both ends of `pLine`.
  void CalcBreakPnts(std::vector<AcGePoint3d>& pnts, WallLineLikeSeg* pLine);
  /// Deletes every record and empties the array.
  void ClearWallLineArray(std::vector<WallLineLikeSeg*>& lines);

 private:
  std::vector<WallLineLikeSeg*> m_srcWallLines;
  std::vector<WallLineLikeSeg*> m_newWallLines;
  std::map<WallLineLikeSeg*, AcArray<AcGePoint3d>> m_wallBreakPnts;
};
