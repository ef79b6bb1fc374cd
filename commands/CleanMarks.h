// Circles about the places that cleaning could not decide, on a layer of their own. Those of an
// earlier run are known by their extended data (application QUOIN, "clean"): one that still applies
// stays, others are erased.
#pragma once

#include <string>
#include <vector>

#include "commands/Drawing.h"

namespace quoin::commands {

struct CleanMarks {
  /// The handle of the mark at each place; empty in a dry run and where the file gives none.
  std::vector<std::string> handles;
  std::size_t added = 0;
  std::size_t erased = 0;
};

/// Marks places; one mark for those within `slack` of each other.
/// Fails: throws CommandError (EntityFailed).
CleanMarks markPlaces(Drawing& drawing, const std::vector<AcGePoint3d>& places,
                      const std::string& layer, double radius, double slack);

}  // namespace quoin::commands
