#include "commands/WallsOutputs.h"

#include <fmt/format.h>

#include <algorithm>
#include <numbers>

#include "commands/ReportFields.h"
#include "commands/RoomOutputs.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

constexpr Color kColumnFill{0.78, 0.90, 0.83};

AcGePoint3d high(const AcGePoint2d& point) {
  return {point.x, point.y, 0.0};
}

std::vector<std::string> facesOf(const Drawing& drawing, const ReadPlan& read,
                                 const std::vector<std::size_t>& lines) {
  std::vector<std::string> names;
  names.reserve(lines.size());
  for (const std::size_t line : lines) {
    names.push_back(nameText(drawing, read.found.lines[read.sourceOf[line]].entity));
  }
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

}  // namespace

std::string faceLayer(const ReadPlan& read, const std::vector<std::size_t>& lines) {
  return lines.empty() ? std::string()
                       : os::toUtf8(read.found.lines[read.sourceOf[lines.front()]].layer());
}

double lengthOf(const plan::WallPlan& plan) {
  double sum = 0.0;
  for (const plan::Wall& wall : plan.walls) {
    sum += wall.length();
  }
  return sum;
}

Picture wallsPicture(Drawing& drawing, const ReadPlan& read, const plan::FoundWalls& found) {
  Picture picture = newPicture(
      drawing, "walls found from their faces",
      fmt::format("{} from {}, {}; {} left over", countText(found.plan.walls.size(), "wall"),
                  countText(read.drawing.lines.size(), "line"),
                  countText(found.plan.openings.size(), "opening"),
                  countText(found.leftOver.size(), "line")));
  addPlanShapes(picture, drawing, {});
  for (const plan::PlanOutline& column : found.columns) {
    Path path;
    path.points = column;
    path.isClosed = true;
    path.color = palette::kThird;
    path.width = kWallWidth;
    path.isFilled = true;
    path.fill = kColumnFill;
    picture.paths.push_back(std::move(path));
  }
  std::vector<bool> isLeft(read.drawing.lines.size(), false);
  for (const std::size_t line : found.leftOver) {
    isLeft[line] = true;
  }
  for (std::size_t i = 0; i < read.drawing.lines.size(); ++i) {
    const plan::PlanLine& line = read.drawing.lines[i];
    addFocus(picture, high(line.start), high(line.end));
    addLine(picture, high(line.start), high(line.end),
            isLeft[i] ? palette::kSecond : palette::kWall, isLeft[i] ? 1.6 : 1.0);
  }
  for (const plan::Wall& wall : found.plan.walls) {
    addLine(picture, high(wall.start), high(wall.end), palette::kFirst, kPieceWidth);
    addMark(picture, high(wall.start), MarkShape::Dot, palette::kFirst, 2.2);
    addMark(picture, high(wall.end), MarkShape::Dot, palette::kFirst, 2.2);
  }
  for (const plan::Opening& opening : found.plan.openings) {
    addLine(picture, high(found.plan.startOf(opening)), high(found.plan.endOf(opening)),
            palette::kMark, kWallWidth + 1.0);
  }
  picture.legend = {{"face", palette::kWall, false, MarkShape::Dot, 1.0},
                    {"wall", palette::kFirst, false, MarkShape::Dot, kPieceWidth},
                    {"opening", palette::kMark, false, MarkShape::Dot, kWallWidth + 1.0},
                    {"column", palette::kThird, false, MarkShape::Dot, kWallWidth},
                    {"left over", palette::kSecond, false, MarkShape::Dot, 1.6},
                    {"rest of the plan", palette::kPlan}};
  return picture;
}

void addFoundWalls(const Drawing& drawing, const ReadPlan& read, const plan::FoundWalls& found,
                   const FoundHandles& handles, nlohmann::json& report) {
  for (const char* list : {"walls", "openings", "columns", "curved", "widths", "leftOver"}) {
    report[list] = nlohmann::json::array();
  }
  for (std::size_t i = 0; i < found.plan.walls.size(); ++i) {
    const plan::Wall& wall = found.plan.walls[i];
    nlohmann::json json = lineJson(handles.walls[i], high(wall.start), high(wall.end));
    json.update({{"left", wall.left},
                 {"right", wall.right},
                 {"width", wall.width()},
                 {"confidence", wall.confidence},
                 {"layer", faceLayer(read, found.faces[i])},
                 {"faces", facesOf(drawing, read, found.faces[i])}});
    report["walls"].push_back(std::move(json));
  }
  for (std::size_t i = 0; i < found.plan.openings.size(); ++i) {
    const plan::Opening& opening = found.plan.openings[i];
    nlohmann::json json = lineJson(handles.openings[i], high(found.plan.startOf(opening)),
                                   high(found.plan.endOf(opening)));
    json.update(
        {{"width", opening.width()}, {"wall", opening.wall}, {"kind", plan::nameOf(opening.kind)}});
    report["openings"].push_back(std::move(json));
  }
  for (std::size_t i = 0; i < found.columns.size(); ++i) {
    report["columns"].push_back(
        {{"handle", handles.columns[i]}, {"polygon", ringJson(found.columns[i])}});
  }
  for (const plan::CurvedWall& wall : found.curved) {
    constexpr double kDegrees = 180.0 / std::numbers::pi;
    report["curved"].push_back({{"center", pointJson(high(wall.arc.center))},
                                {"radius", wall.arc.radius},
                                {"startAngle", wall.arc.startAngle * kDegrees},
                                {"sweep", wall.arc.sweep * kDegrees},
                                {"width", wall.width},
                                {"length", wall.arc.radius * wall.arc.sweep},
                                {"walls", wall.chords}});
  }
  for (const plan::FoundWalls::Width& width : found.widths) {
    report["widths"].push_back({{"width", width.width}, {"length", width.length}});
  }
  for (const std::size_t line : found.leftOver) {
    report["leftOver"].push_back(sourceJson(drawing, read.found.lines[read.sourceOf[line]].entity));
  }
}

}  // namespace quoin::commands
