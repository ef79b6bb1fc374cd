// Walls between two concentric arcs.
#pragma once

#include <vector>

#include "plan/FindWalls.h"

namespace quoin::plan {

/// Pairs arcs of about one centre that run side by side, each with its nearest: in the order of how
/// long they do. Without chords.
std::vector<CurvedWall> findCurvedWalls(const std::vector<PlanArc>& arcs,
                                        const FindWallsOptions& options);

/// The corners of a line along the arc that leaves it by `deviation` at most: from its start to its
/// end, equal steps.
std::vector<AcGePoint2d> chordsOf(const PlanArc& arc, double deviation);

}  // namespace quoin::plan
