// What becomes of found rooms: entities of the drawing, JSON, CSV, GeoJSON, a picture. Where the
// walls came from does not matter here.
#pragma once

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "commands/PlannedWalls.h"
#include "commands/RoomPlan.h"
#include "commands/picture/Picture.h"

namespace quoin::commands {

/// A polygon's corners for reports: [x, y] of each.
nlohmann::json ringJson(const plan::Ring& ring);

/// Square metres of an area in square drawing units, metres of a length in drawing units.
double squareMeters(const Drawing& drawing, double area);
double meters(const Drawing& drawing, double length);

/// Handles of what stands for one room in the drawing.
struct RoomEntities {
  std::string outline;
  std::string hatch;
  std::vector<std::string> label;  // a text a line
};

/// Adds for every room a closed polyline, a solid hatch (from R14 on) that leaves its holes free,
/// and its name, number and net area as texts, on the layer, at this height.
/// Fails: throws CommandError (EntityFailed).
std::vector<RoomEntities> appendRooms(Drawing& drawing, const RoomPlan& plan,
                                      const std::string& layer, double elevation = 0.0);

/// The fields rooms, openings and tooSmall of a report. `entities` may be empty, and
/// `openingEntities` too.
void addRooms(const Drawing& drawing, const RoomPlan& plan,
              const std::vector<RoomEntities>& entities,
              const std::vector<AcDbObjectId>& openingEntities, nlohmann::json& report);

/// A header and a line a room; a comma between fields, CRLF between lines (RFC 4180), UTF-8.
std::string roomsCsv(const Drawing& drawing, const RoomPlan& plan);
/// A feature a room (RFC 7946), in the drawing's own coordinates.
std::string roomsGeoJson(const Drawing& drawing, const RoomPlan& plan);

/// Rooms tinted and labelled, walls, openings and columns, over the rest of the plan.
Picture roomsPicture(Drawing& drawing, const RoomPlan& plan, double captureDistance,
                     const std::string& subtitle);

}  // namespace quoin::commands
