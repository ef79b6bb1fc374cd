#include "commands/ReferenceWalls.h"

#include <CLI/CLI.hpp>

#include "commands/Junctions.h"
#include "commands/LayerChoice.h"
#include "commands/LeftOut.h"
#include "commands/ReportFields.h"

namespace quoin::commands {

void declareReferenceWalls(CLI::App& command, CommonOptions& options, WidthOptions& widths) {
  options.declareLayers(command,
                        "Layers with the reference lines, * and ? allowed; may be repeated");
  command.get_option("--layer")->required();
  options.declareScale(command);
  options.declareInBlocks(command);
  widths.declare(command);
}

ReferenceWalls collectReferenceWalls(Drawing& drawing, const CommonOptions& options,
                                     const WidthOptions& widths,
                                     const std::set<std::wstring>& others) {
  ReferenceWalls reference;
  reference.layers = chooseLayers(drawing.layers(), options.layers, drawing);
  for (const std::wstring& other : others) {
    reference.layers.erase(other);
  }
  reference.found = collectWallLines(drawing, reference.layers, options.takesInside);
  checkAnyWallLine(drawing, reference.layers, reference.found);
  reference.capture = setCapture(options.capture, drawing);
  reference.walls = makeWalls(drawing, reference.found.lines, widths);
  return reference;
}

void tellReferenceWalls(Drawing& drawing, const CommonOptions& options,
                        const ReferenceWalls& reference, Report& report) {
  tellLeftOut(drawing, reference.found, true, report);
  warnOfReferenceLines(drawing, reference.found.lines, report);
  warnOfUnits(options.capture, drawing, reference.found.lines, report);
}

void addReferenceWalls(const Drawing& drawing, const ReferenceWalls& reference,
                       const std::vector<nlohmann::json>& results, nlohmann::json& report) {
  report.update({{"capture", captureJson(reference.capture)},
                 {"layers", namesJson(reference.layers)},
                 {"lines", reference.walls.size()},
                 {"walls", nlohmann::json::array()}});
  for (std::size_t i = 0; i < reference.walls.size(); ++i) {
    nlohmann::json wall = wallJson(drawing, reference.walls[i]);
    wall.update(results[i]);
    report["walls"].push_back(std::move(wall));
  }
  addLeftOut(drawing, reference.found, report);
}

}  // namespace quoin::commands
