// Openings as gaps in the outlines of their walls: side lines parted from jamb to jamb, and a line
// across at every jamb.
#pragma once

#include <vector>

#include "commands/PlannedWalls.h"
#include "commands/WallBodies.h"

namespace quoin::commands {

/// The sides of a wall between its openings.
struct PartedOutline {
  std::vector<WallDrawingSeg> left;
  std::vector<WallDrawingSeg> right;
  std::vector<WallDrawingSeg> jambs;  // from the left face to the right one
};

struct OutlineGaps {
  std::vector<PartedOutline> outlines;  // one for each wall
  /// The openings that are gaps, ascending: indices into FoundOpenings::openings.
  std::vector<std::size_t> opened;
  /// Openings that reached into the joint at an end of their wall, and end where both faces run.
  std::size_t shortened = 0;
  std::vector<SkippedEntity> leftOut;
};

/// Parts the outlines of `walls`. Openings of a wall that overlap or touch are one gap. Left out
/// are those without room where both faces of their wall run. Lengths up to a thousandth of the
/// capture distance do not count.
OutlineGaps openOutlines(const std::vector<BodyWall>& walls,
                         const std::vector<WallOutline>& outlines, const FoundOpenings& found,
                         double captureDistance);

}  // namespace quoin::commands
