// Walls with openings as they stand in a drawing, so that one command reads what another wrote:
// a wall is a LINE with its widths (WallBodies.h), an opening a LINE along the wall's reference
// line from jamb to jamb, on a layer of its own. Extended data of the application QUOIN says more
// of an opening: its kind ("door", "window", "opening"), then, where they are known, the heights of
// sill and head as two real numbers.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "commands/LeftOut.h"
#include "commands/Polylines.h"
#include "commands/WallBodies.h"
#include "plan/FindWalls.h"
#include "plan/WallPlan.h"

namespace quoin::commands {

/// Where commands put walls, openings and what they could not decide, and look for them, unless
/// options say otherwise.
inline constexpr const char* kWallLayer = "QUOIN-WALL";
inline constexpr const char* kOpeningLayer = "QUOIN-OPENING";
inline constexpr const char* kColumnLayer = "QUOIN-COLUMN";
inline constexpr const char* kRoomLayer = "QUOIN-ROOM";
inline constexpr const char* kMarkLayer = "QUOIN-MARK";
/// Colour indices of new layers.
inline constexpr int kWallColor = 1;
inline constexpr int kOpeningColor = 4;
inline constexpr int kColumnColor = 3;

/// The walls as plan reading takes them, in the same order, seen from above.
std::vector<plan::Wall> planWalls(const std::vector<BodyWall>& walls);

/// What collectOpenings found.
struct FoundOpenings {
  std::vector<plan::Opening> openings;
  /// The entity of each.
  std::vector<AcDbObjectId> entities;
  /// Lines on the layers that lie on no wall, or have no length.
  std::vector<SkippedEntity> skipped;
};

/// The openings on these layers in file order, each in the wall that its line lies on: both ends
/// are at less than `captureDistance` from the reference line. Where there are several such walls,
/// it is the nearest to the middle, of those the first.
FoundOpenings collectOpenings(Drawing& drawing, const std::set<std::wstring>& layers,
                              const std::vector<plan::Wall>& walls, double captureDistance);

/// Makes sure that the layer is there; a new one gets this colour index.
void makeLayer(Drawing& drawing, const std::string& layer, int colorIndex);

/// Adds a wall to model space, on the layer, at this height; returns the handle.
/// Fails: throws CommandError (EntityFailed).
std::string appendWall(Drawing& drawing, const plan::Wall& wall, const std::string& layer,
                       double elevation = 0.0);
/// As appendWall, for an opening of the plan.
std::string appendOpening(Drawing& drawing, const plan::WallPlan& plan,
                          const plan::Opening& opening, const std::string& layer,
                          double elevation = 0.0);

/// Whether the drawing's version has light polylines and hatches: from R14 on.
bool hasLightPolylines(const Drawing& drawing);
/// As appendWall, for a closed outline: a light polyline, or a heavy one where there are none.
std::string appendOutline(Drawing& drawing, const std::vector<AcGePoint2d>& corners,
                          const std::string& layer, double elevation = 0.0);

/// The corners of a closed polyline of straight sides; none for another one.
plan::PlanOutline straightOutline(const PolylineShape& shape);
/// The outlines of columns on QUOIN-COLUMN.
std::vector<plan::PlanOutline> collectColumns(Drawing& drawing);

}  // namespace quoin::commands
