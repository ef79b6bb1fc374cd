// Walls given by reference lines and widths: collected from a drawing and shown, each among
// all others, in plan or as end faces for a body.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "DrawWallAlgorithm/ShowWallLikeAlgorithm.h"
#include "commands/CommandLineNames.h"
#include "commands/CommonOptions.h"
#include "commands/Drawing.h"
#include "commands/WallLines.h"

namespace quoin::commands {

/// Distances of a wall's faces from its reference line, in drawing units.
struct WallWidths {
  double left = 0.0;
  double right = 0.0;
};

/// Where widths come from, the first that has them counting: extended data of the entity under
/// the application QUOIN (two real numbers, left and right), --width of its layer, --left and
/// --right.
struct WidthOptions {
  std::optional<double> left;
  std::optional<double> right;
  std::vector<std::string> ofLayer;  // "LAYER=W" or "LAYER=LEFT,RIGHT"

  void declare(CLI::App& command);
};

/// A wall of the plan.
struct BodyWall {
  WallLine line;
  WallWidths widths;
};

/// What JSON reports say of a wall: its reference line's entity, widths and length.
nlohmann::json wallJson(const Drawing& drawing, const BodyWall& wall);

/// The name under which entities carry their widths.
inline constexpr const wchar_t* kWidthApplication = L"QUOIN";

/// Whether the entity carries widths as extended data.
bool carriesWidths(const AcDbObjectId& entity);

/// Gives every line its widths.
/// Fails: throws CommandError (Usage for options that make no sense or leave a wall without
/// widths).
std::vector<BodyWall> makeWalls(const Drawing& drawing, const std::vector<WallLine>& lines,
                                const WidthOptions& options);

/// The outline of one wall: up to four lines and the connecting records at its ends.
struct WallOutline {
  WallDrawingSeg left;
  WallDrawingSeg right;
  std::optional<WallDrawingSeg> start;  // closes a free end
  std::optional<WallDrawingSeg> end;
  std::vector<WallDrawingSeg> connections;
};

/// Shows every wall among all others. `captureDistance` is that of the current project.
std::vector<WallOutline> showWalls(const std::vector<BodyWall>& walls, double captureDistance);
/// The end faces of every wall among all others. `captureDistance` as above.
std::vector<PrepareFrom2dTo3dData> prepareWalls(const std::vector<BodyWall>& walls,
                                                double captureDistance);

}  // namespace quoin::commands
