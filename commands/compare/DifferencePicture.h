// A difference as a picture of model space: what was there in red, what is there now in green, the
// rest of the plan faint. One over the other, since a small shift is seen in no two pictures.
#pragma once

#include <string>

#include "commands/compare/DrawingDifference.h"
#include "commands/picture/Picture.h"

namespace quoin::commands {

/// The picture's title is "NEW: what".
Picture differencePicture(Drawing& before, Drawing& after, const DrawingDifference& difference,
                          const std::string& what);

/// "3 added, 1 removed, ...".
std::string countsText(const ChangeCounts& counts);

}  // namespace quoin::commands
