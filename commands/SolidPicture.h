// The picture of a model: its bodies seen from above at an angle.
#pragma once

#include "commands/WallModel.h"
#include "commands/picture/Picture.h"

namespace quoin::commands {

/// Adds the faces that look at the viewer, with their edges and a legend. Walls are painted from
/// the far ones to the near ones, so that each hides what stands behind it; their tops come last,
/// since all are of one height and nothing stands above them, and slabs first.
void addBodies(Picture& picture, const Model& model);

}  // namespace quoin::commands
