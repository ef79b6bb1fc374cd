// The drawing of a new wall line among existing ones in its direct form.
#pragma once

#include <vector>

#include "WallLineLikeSeg.h"
#include "oracle/BreakWallOracle.h"

namespace quoin::oracle {

struct DrawnLine {
  std::vector<AcGePoint3d> points;      // the cut points, sorted, both ends among them
  std::vector<WallLineLikeSeg> lines;   // the existing lines as they are afterwards
  std::vector<std::size_t> modified;    // indices of those that were taken into account
  std::vector<Piece> cutOff;            // far parts of existing lines
  std::vector<WallLineLikeSeg> pieces;  // the new line's pieces
};

DrawnLine drawWallLine(std::vector<WallLineLikeSeg> lines, AcGePoint3d ptStart, AcGePoint3d ptEnd,
                       double projectScale);

}  // namespace quoin::oracle
