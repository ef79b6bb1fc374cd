// How far apart parallel lines lie that run beside each other: what tells the two faces of a
// wall from a single line, and a drawing in inches from one in millimetres.
#pragma once

#include <vector>

#include "commands/WallLines.h"

namespace quoin::commands {

/// For each line that has one, in the lines' order, the distance in plan to its nearest parallel
/// line (by at most kMostParallelAngleRad) that runs beside at least half of the shorter of the
/// two. Lines on the same straight line are no such pair. n lines take n log n steps: a line is
/// compared with those that are next to it where either begins, so that in a dense crowd the
/// nearest may be missed.
std::vector<double> faceSpacings(const std::vector<WallLine>& lines);

/// How thick walls are: from a boarded partition to a wall of quarry stone.
inline constexpr double kThinnestWallMillimeters = 40.0;
inline constexpr double kThickestWallMillimeters = 650.0;

/// As drawn by hand with ortho off: 0.1 degrees.
inline constexpr double kMostParallelAngleRad = 0.001745;

}  // namespace quoin::commands
