// Walls given by reference lines and widths: what the commands that build something of such walls
// have in common, from their options to what they report.
#pragma once

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "commands/CommandLineNames.h"
#include "commands/CommonOptions.h"
#include "commands/Drawing.h"
#include "commands/Report.h"
#include "commands/WallBodies.h"
#include "commands/WallLines.h"

namespace quoin::commands {

struct ReferenceWalls {
  std::set<std::wstring> layers;
  WallLines found;
  Capture capture;
  std::vector<BodyWall> walls;
};

/// Adds --layer, which is required, --scale and its like, --in-blocks and the widths.
void declareReferenceWalls(CLI::App& command, CommonOptions& options, WidthOptions& widths);

/// Collects the lines and sets the project's scale. Layers of `others` hold something else,
/// whatever the options say. Fails: throws CommandError (NothingToDo where there is no line; as
/// makeWalls and setCapture do).
ReferenceWalls collectReferenceWalls(Drawing& drawing, const CommonOptions& options,
                                     const WidthOptions& widths,
                                     const std::set<std::wstring>& others = {});

/// Names what was left out, and warns of lines and units that do not look like reference lines'.
void tellReferenceWalls(Drawing& drawing, const CommonOptions& options,
                        const ReferenceWalls& reference, Report& report);

/// Adds the capture distance, the layers, the count of lines, what was left out and an array
/// "walls" in which `results[i]` joins what is said of every wall.
void addReferenceWalls(const Drawing& drawing, const ReferenceWalls& reference,
                       const std::vector<nlohmann::json>& results, nlohmann::json& report);

}  // namespace quoin::commands
