// Walls that are filled alone: hatches, solids and traces whose outlines stand for faces that
// nobody has drawn.
#pragma once

#include <set>
#include <string>

#include "commands/Drawing.h"
#include "commands/WallLines.h"

namespace quoin::commands {

/// Adds the sides of filled areas of model space on these layers behind the other lines, and takes
/// those areas out of the other kinds of `found`. An area that has most of its outline drawn by
/// lines fills walls that are there already, and adds nothing; sides at which two areas meet are
/// inside a wall.
void addFilledAreas(Drawing& drawing, const std::set<std::wstring>& layers, WallLines& found);

}  // namespace quoin::commands
