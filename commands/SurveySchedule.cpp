#include "commands/SurveySchedule.h"

#include <fmt/format.h>

#include <cmath>
#include <map>
#include <utility>

#include "commands/WallsOutputs.h"
#include "commands/Words.h"

namespace quoin::commands {

namespace {

long wholeMillimeters(const Drawing& drawing, double length) {
  return std::lround(length * drawing.millimetersPerUnit());
}

}  // namespace

SurveySchedule makeSchedule(const Drawing& drawing, const ReadPlan& read,
                            const plan::FoundWalls& found) {
  std::map<std::pair<std::string, long>, SurveySchedule::WallRow> walls;
  for (std::size_t i = 0; i < found.plan.walls.size(); ++i) {
    const plan::Wall& wall = found.plan.walls[i];
    const std::string layer = faceLayer(read, found.faces[i]);
    const long width = wholeMillimeters(drawing, wall.width());
    SurveySchedule::WallRow& row = walls[{layer, width}];
    row.layer = layer;
    row.width = width;
    ++row.count;
    row.length += meters(drawing, wall.length());
    row.area += squareMeters(drawing, wall.length() * wall.width());
  }
  std::map<std::pair<plan::OpeningKind, long>, SurveySchedule::OpeningRow> openings;
  for (const plan::Opening& opening : found.plan.openings) {
    const long width = wholeMillimeters(drawing, opening.width());
    SurveySchedule::OpeningRow& row = openings[{opening.kind, width}];
    row.kind = opening.kind;
    row.width = width;
    ++row.count;
    row.length += meters(drawing, opening.width());
  }
  SurveySchedule schedule;
  for (auto& [key, row] : walls) {
    schedule.walls.push_back(std::move(row));
  }
  for (const auto& [key, row] : openings) {
    schedule.openings.push_back(row);
  }
  return schedule;
}

std::string scheduleCsv(const Drawing& drawing, const SurveySchedule& schedule,
                        const RoomPlan& rooms) {
  std::string text = "item,layer,number,name,width_mm,count,length_m,area_m2\r\n";
  for (const SurveySchedule::WallRow& row : schedule.walls) {
    text += fmt::format("wall,{},,,{},{},{:.3f},{:.3f}\r\n", csvField(row.layer), row.width,
                        row.count, row.length, row.area);
  }
  for (const SurveySchedule::OpeningRow& row : schedule.openings) {
    text += fmt::format("{},,,,{},{},{:.3f},\r\n", plan::nameOf(row.kind), row.width, row.count,
                        row.length);
  }
  for (const plan::Room& room : rooms.found.rooms) {
    text +=
        fmt::format("room,,{},{},,1,{:.3f},{:.3f}\r\n", csvField(room.number), csvField(room.name),
                    meters(drawing, room.perimeter), squareMeters(drawing, room.netArea));
  }
  return text;
}

}  // namespace quoin::commands
