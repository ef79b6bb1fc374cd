#include "commands/RoomWalls.h"

#include <algorithm>
#include <utility>

#include "commands/Progress.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

bool hasLines(Drawing& drawing, const char* name) {
  const std::vector<LayerContent> layers = drawing.layers();
  return std::any_of(layers.begin(), layers.end(), [&](const LayerContent& layer) {
    return layer.name == os::fromUtf8(name) && layer.count() > 0;
  });
}

/// Whether options or any line say how wide walls are.
bool hasWidths(Drawing& drawing, const std::set<std::wstring>& layers, const WidthOptions& widths) {
  if (widths.left || widths.right || !widths.ofLayer.empty()) {
    return true;
  }
  bool isAny = false;
  drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
    isAny = isAny || (layers.count(hostx::layerName(id)) != 0 && carriesWidths(id));
  });
  return isAny;
}

}  // namespace

RoomWalls readRoomWalls(Drawing& drawing, CommonOptions options, const WidthOptions& widths,
                        const OpeningLayers& openings, bool takesFaces) {
  if (options.layers.empty() && !takesFaces && hasLines(drawing, kWallLayer)) {
    options.layers = {kWallLayer};
  }
  const std::set<std::wstring> layers = chooseFaceLayers(drawing, options.layers);
  RoomWalls walls;
  walls.isFromFaces = takesFaces || !hasWidths(drawing, layers, widths);
  if (walls.isFromFaces) {
    walls.capture = setCapture(options.capture, drawing);
    walls.fromFaces = findPlanWalls(drawing, layers, ReadingOptions().inUnitsOf(drawing));
    walls.plan.walls = walls.fromFaces.found.plan;
    for (const plan::PlanOutline& column : walls.fromFaces.found.columns) {
      walls.plan.columns.push_back({column, {}});
    }
    return walls;
  }
  for (const std::wstring& layer : layers) {
    options.layers.push_back(os::toUtf8(layer));
  }
  walls.reference = collectReferenceWalls(drawing, options, widths);
  walls.capture = walls.reference.capture;
  walls.plan.walls.walls = planWalls(walls.reference.walls);
  walls.openings = collectOpenings(drawing, openings.in(drawing), walls.plan.walls.walls,
                                   walls.capture.distance);
  walls.plan.walls.openings = walls.openings.openings;
  for (const plan::PlanOutline& column : collectColumns(drawing)) {
    walls.plan.columns.push_back({column, {}});
  }
  return walls;
}

}  // namespace quoin::commands
