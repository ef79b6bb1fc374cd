// The wall line record: one straight line of a wall-like element, such as one of the two
// faces of a wall, as a directed segment. The break and the draw algorithm take such records
// in and give them out; SortAlongDirection.h orders points along one.
#pragma once

#include "gepnt3d.h"

struct WallLineLikeSeg {
  WallLineLikeSeg() = default;
  WallLineLikeSeg(const AcGePoint3d& start, const AcGePoint3d& end,
                  WallLineLikeSeg* srcLine = nullptr)
      : ptStart(start), ptEnd(end), pSrcLine(srcLine) {}

  AcGePoint3d ptStart;
  AcGePoint3d ptEnd;
  /// For a piece that was cut off a line: that line, as it was handed in. Null for a line of
  /// the caller's and for one made from nothing. Never owned, never followed.
  WallLineLikeSeg* pSrcLine = nullptr;
};
