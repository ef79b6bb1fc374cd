// The break of wall lines in its direct form: every line against every other, no shortcuts.
#pragma once

#include <map>
#include <vector>

#include "WallLineLikeSeg.h"

namespace quoin::oracle {

/// A piece and the index of the line that it was cut from.
struct Piece {
  AcGePoint3d ptStart;
  AcGePoint3d ptEnd;
  std::size_t source;
};

/// The pieces of all lines, in the order in which they are made. `appended` holds the points
/// that the caller names, by line index.
std::vector<Piece> breakWallLines(const std::vector<WallLineLikeSeg>& lines,
                                  const std::map<std::size_t, std::vector<AcGePoint3d>>& appended,
                                  double projectScale);

}  // namespace quoin::oracle
