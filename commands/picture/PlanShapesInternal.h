// The limit of what a picture shows, for tests.
#pragma once

#include <cstddef>
#include <set>

#include "commands/picture/PlanShapes.h"

namespace quoin::commands {

/// Entities inside blocks that a picture shows one by one; a few kilobytes of nested blocks can
/// show more than anybody could paint.
inline constexpr std::size_t kMostBlockEntities = 1'000'000;

/// addPlanShapes() with another limit; returns how many block references were drawn as their frames
/// because blocks show more.
std::size_t addPlanShapesUpTo(std::size_t mostBlockEntities, Picture& picture, Drawing& drawing,
                              const std::set<AcDbObjectId>& except);

}  // namespace quoin::commands
