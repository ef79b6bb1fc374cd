// All of a drawing's model space moved or scaled, with what looks at it: wholly or not at all.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "commands/LeftOut.h"
#include "commands/Report.h"
#include "embedded/db/tables/ModelViews.h"
#include "gevec3d.h"

namespace quoin::commands {

/// What is asked for: every point p of model space goes to factor * p + move.
struct SpaceChange {
  double factor = 1.0;  // above 0
  AcGeVector3d move;
  std::string action = "move";  // "scale": what messages call it
  /// Entities that cannot follow stay behind; else one of them fails the whole change.
  bool isLeavingBehind = false;
};

struct SpaceChanged {
  std::vector<AcDbObjectId> entities;  // that follow, in file order
  std::vector<SkippedEntity> left;     // that stay where they were
  db::ViewChanges views;
};

/// Changes the drawing; what it says of an entity is what the host returned for that entity.
/// Fails: throws CommandError; EntityFailed with the entities that cannot follow, Interrupted. The
/// drawing is changed in part then and not to be saved.
SpaceChanged changeModelSpace(Drawing& drawing, const SpaceChange& change);

/// Tells which entities stayed, each by name, and what else followed.
void tellSpaceChange(const Drawing& drawing, const SpaceChange& change, const SpaceChanged& changed,
                     Report& report);

}  // namespace quoin::commands
