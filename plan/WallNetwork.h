// Wall runs joined where they meet, and parted there.
#pragma once

#include <vector>

#include "plan/FindWalls.h"
#include "plan/WallRuns.h"

namespace quoin::plan {

/// A run's part between two junctions.
struct WallPiece {
  std::size_t run = 0;
  Wall wall;
  /// Along the run.
  double from = 0.0;
  double to = 0.0;
};

struct WallNetwork {
  /// Without those that are too doubtful, or are part of another's opening.
  std::vector<WallRun> runs;
  /// By run, then along it.
  std::vector<WallPiece> pieces;
};

WallNetwork joinRuns(std::vector<WallRun> runs, const GapJudge& judge,
                     const FindWallsOptions& options);

}  // namespace quoin::plan
