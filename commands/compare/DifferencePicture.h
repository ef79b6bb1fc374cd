// A difference as a picture of model space: what was there in red, what is there now in green, the
// rest of the plan faint. One over the other, since a small shift is seen in no two pictures. What
// differs inside a block is drawn wherever a reference shows it, with a frame around the block.
#pragma once

#include <map>
#include <string>

#include "commands/compare/DrawingDifference.h"
#include "commands/picture/Picture.h"

namespace quoin::commands {

/// The picture's title is "NEW: what".
Picture differencePicture(Drawing& before, Drawing& after, const DrawingDifference& difference,
                          const std::string& what);

/// How often model space shows each block that differs, by its id in the drawing as it is.
using PlaceCounts = std::map<AcDbObjectId, double>;
PlaceCounts placesOfChangedBlocks(Drawing& after, const DrawingDifference& difference);

/// "3 added, 1 removed, ...".
std::string countsText(const ChangeCounts& counts);

}  // namespace quoin::commands
