// What reports say about entities that were measured roughly.
#pragma once

#include "commands/Drawing.h"
#include "commands/Report.h"

namespace quoin::commands {

/// Warns where blocks show more than is visited one by one, so that some were measured by boxes.
void warnOfRoughExtents(Drawing& drawing, Report& report);

}  // namespace quoin::commands
