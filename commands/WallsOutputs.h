// What becomes of walls found from their faces: JSON and a picture.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "commands/PlanReading.h"
#include "commands/picture/Picture.h"

namespace quoin::commands {

/// The layer of a wall's first face, UTF-8; "" for a wall without faces.
std::string faceLayer(const ReadPlan& read, const std::vector<std::size_t>& lines);
/// Of all walls together, drawing units.
double lengthOf(const plan::WallPlan& plan);

/// Faces, walls, openings and what was left over, above the rest of the plan.
Picture wallsPicture(Drawing& drawing, const ReadPlan& read, const plan::FoundWalls& found);

/// The handles of what stands for each in the drawing.
struct FoundHandles {
  const std::vector<std::string>& walls;
  const std::vector<std::string>& openings;
  const std::vector<std::string>& columns;
};
/// Adds the fields walls, openings, columns, curved (angles in degrees), widths and leftOver of a
/// report.
void addFoundWalls(const Drawing& drawing, const ReadPlan& read, const plan::FoundWalls& found,
                   const FoundHandles& handles, nlohmann::json& report);

}  // namespace quoin::commands
