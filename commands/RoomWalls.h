// The walls of a plan whose rooms are looked for: reference lines with widths where there are any,
// else found from faces.
#pragma once

#include <set>
#include <string>

#include "commands/OpeningLayers.h"
#include "commands/PlanReading.h"
#include "commands/PlannedWalls.h"
#include "commands/ReferenceWalls.h"
#include "commands/RoomPlan.h"

namespace quoin::commands {

struct RoomWalls {
  bool isFromFaces = false;
  Capture capture;
  /// Walls, openings and columns; no rooms yet.
  RoomPlan plan;
  FoundOpenings openings;    // of reference lines
  ReferenceWalls reference;  // as above
  FoundPlan fromFaces;       // else

  const std::set<std::wstring>& layers() const {
    return isFromFaces ? fromFaces.read.layers : reference.layers;
  }
  const WallLines& lines() const { return isFromFaces ? fromFaces.read.found : reference.found; }
};

/// Reads them and sets the project's scale. The layers are those of the options, else QUOIN-WALL
/// where it holds anything, else those that look like walls. They hold faces where `takesFaces`
/// says so, and where neither `widths` nor any line says how wide walls are. Fails: throws
/// CommandError, as collectReferenceWalls, readPlan and OpeningLayers do.
RoomWalls readRoomWalls(Drawing& drawing, CommonOptions options, const WidthOptions& widths,
                        const OpeningLayers& openings, bool takesFaces);

}  // namespace quoin::commands
