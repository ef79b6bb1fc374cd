// The picture of a model: its bodies seen from above at an angle.
#pragma once

#include "commands/WallModel.h"
#include "commands/picture/Picture.h"

namespace quoin::commands {

/// Adds the faces that look at the viewer, far ones first, with their edges. Ceilings come last,
/// since all walls are of one height and nothing stands above them; slabs first.
void addBodies(Picture& picture, const Model& model);

}  // namespace quoin::commands
