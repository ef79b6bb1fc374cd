// Which openings of a plan are cut out of its walls, and where.
#pragma once

#include <string>
#include <vector>

#include "commands/PlannedWalls.h"
#include "commands/WallPrism.h"

namespace quoin::commands {

/// Heights above a wall's foot of openings that do not say theirs, drawing units. Doors and plain
/// openings begin at the foot.
struct OpeningHeights {
  double windowSill = 0.0;
  double windowHead = 0.0;
  double doorHead = 0.0;  // of plain openings too
};

/// Heights that count where neither a drawing nor an option says more, millimetres.
inline constexpr double kWindowSill = 900.0;
inline constexpr double kOpeningHead = 2100.0;  // of windows and doors

/// Lengths up to this do not count where openings are cut, for this capture distance: a hundredth
/// of a millimetre, as the project scale goes.
double noLength(double captureDistance);

/// Where an opening has room in the straight part of its wall.
struct OpeningPlace {
  double from = 0.0;
  double to = 0.0;
  /// It reached into the joint at an end of its wall.
  bool isShortened = false;
  /// Why it has none; empty where it has.
  std::string reason;
};
OpeningPlace placeOf(const plan::Opening& opening, double straightFrom, double straightTo,
                     double tolerance);

/// An opening that is cut out.
struct WallCut {
  std::size_t opening;  // index into FoundOpenings::openings
  WallHole hole;
  /// It reached into the joint at an end of its wall, and is cut as far as both faces run.
  bool isShortened = false;
  /// Its head was above the wall, or its sill below it.
  bool isLowered = false;
};

struct WallCuts {
  std::vector<WallCut> cuts;  // in the order of the openings
  std::vector<SkippedEntity> leftOut;
};

/// So many openings may lie over one another; more than that are no plan of anything.
inline constexpr std::size_t kMostOverlapping = 16;

/// Gives the walls their holes. Openings of one wall that overlap or touch are cut as one hole.
/// Left out are those without room in their wall (wider than its straight part, in a joint, above
/// its top, of no height), those that touch another one in an edge alone, and all of a wall of
/// which nothing would be left. Lengths up to `tolerance` do not count: jambs and heights that
/// close are the same. `prisms[i]` is the wall i of the openings.
WallCuts cutOpenings(std::vector<WallPrism>& prisms, const FoundOpenings& found,
                     const OpeningHeights& heights, double captureDistance);

}  // namespace quoin::commands
