// Walls as a net: pieces of them that meet at nodes and nowhere else, as far as reference lines
// tell. What comes near enough to meet is made to.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "plan/WallPlan.h"

namespace quoin::plan {

struct NetPiece {
  /// Index of the wall that it is a piece of, and its reference line and widths.
  std::size_t wall = 0;
  Wall body;
  /// The nodes at its start and its end; their points are the body's ends.
  std::size_t startNode = 0;
  std::size_t endNode = 0;
};

struct WallNet {
  std::vector<AcGePoint2d> nodes;
  std::vector<NetPiece> pieces;
  /// Walls that are none: an end that is not finite, no width, no longer than the capture distance.
  std::size_t leftOut = 0;
};

/// The net of the walls; each wall's pieces follow each other along it.
///
/// 1. An end that meets nothing and stands in another wall's body, or less than the capture
///    distance from its face, goes on (or back) along its own line to that wall's reference line.
///    Walls at less than 5 degrees to each other are left as they are.
/// 2. Walls are cut where reference lines cross, and where an end is nearer to them than the
///    capture distance (CBreakWallAlgorithm).
/// 3. Ends nearer to each other than the capture distance become one node: the point nearest to
///    all their lines, so that directions stay; the middle of the ends where the lines are nearly
///    parallel. Where all ends are the same point already, that is the node, bit for bit.
/// 4. Of pieces between the same two nodes one stays, with the greatest widths.
///
/// `captureDistance` is that of the current project. Near-linear in walls and crossings.
WallNet makeNet(const std::vector<Wall>& walls, double captureDistance);

}  // namespace quoin::plan
