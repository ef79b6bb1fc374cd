// The outline of every wall among all others, by the module's own algorithm (mitred where walls
// meet), without looking at all walls for each.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "DrawWallAlgorithm/ShowWallLikeAlgorithm.h"
#include "gepnt2d.h"
#include "plan/WallPlan.h"

namespace quoin::plan {

/// Calls compute(index, algorithm) for each wall in order, with an algorithm object whose show wall
/// it is and that holds the walls which can matter to it. The results are those of an object that
/// holds all walls, bit for bit. `captureDistance` is that of the current project.
void showEachWall(const std::vector<WallEntityLikeRect>& walls, double captureDistance,
                  const std::function<void(std::size_t, CShowWallLikeAlgorithm&)>& compute);

/// The floor outline of a wall, counter-clockwise seen from above:
///
///      startLeft -------------------------- endLeft
///   startMid <                                  > endMid       (the wall runs to the right)
///      startRight ------------------------- endRight
struct FloorOutline {
  AcGePoint2d startLeft, startMid, startRight, endRight, endMid, endLeft;
  bool isStartFree = true;  // no other wall meets the start
  bool isEndFree = true;
};

/// The outlines of all walls, in their order. `captureDistance` as above.
std::vector<FloorOutline> floorOutlines(const std::vector<Wall>& walls, double captureDistance);

}  // namespace quoin::plan
