// A plan with the rooms that were found in it, and named by the drawing's texts.
#pragma once

#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "plan/Rooms.h"
#include "plan/WallPlan.h"

namespace quoin::commands {

/// A plan and what was found in it.
struct RoomPlan {
  plan::WallPlan walls;
  std::vector<plan::Polygon> columns;
  plan::FoundRooms found;
};

/// Less is no room: a shaft, the hollow of a wall.
inline constexpr double kLeastRoomSquareMeters = 0.25;
inline constexpr double kLeastRoomMillimeters = 150.0;

/// What makes a room, in the units of the drawing: `captureDistance` is that of the project.
plan::RoomOptions roomOptions(const Drawing& drawing, double captureDistance,
                              double leastSquareMeters = kLeastRoomSquareMeters,
                              double leastMillimeters = kLeastRoomMillimeters);

/// Finds the rooms of `walls` and `columns` and names them by the drawing's texts: TEXT, MTEXT line
/// by line, and the attributes of inserts in model space, but not those on `ownLayer`, nor on
/// layers that are off or frozen. Fails: throws CommandError (EntityFailed) where the walls cannot
/// be overlaid.
void findRooms(Drawing& drawing, const plan::RoomOptions& options, const std::string& ownLayer,
               RoomPlan& plan);

}  // namespace quoin::commands
