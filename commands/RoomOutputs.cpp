#include "commands/RoomOutputs.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numeric>

#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/Units.h"
#include "commands/WallChanges.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "dbents.h"
#include "dbhatch.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "embedded/os/Utf8.h"
#include "plan/FreeSpace.h"
#include "plan/WallNet.h"

namespace quoin::commands {

namespace {

constexpr Adesk::UInt16 kHatchColorIndex = 254;  // a light grey

/// "13.5 m²".
std::string areaText(double squareMeters) {
  return fmt::format("{:.1f} m\u00B2", squareMeters);
}

std::vector<std::string> labelLines(const Drawing& drawing, const plan::Room& room) {
  std::vector<std::string> lines;
  for (const std::string& line :
       {room.number, room.name, areaText(squareMeters(drawing, room.netArea))}) {
    if (!line.empty()) {
      lines.push_back(line);
    }
  }
  return lines;
}

/// Where the lines of a room's label stand, and how high their letters are: as large as plans have
/// them, smaller where the room is.
struct LabelPlace {
  double height;
  std::vector<AcGePoint2d> middles;
};
LabelPlace labelPlace(const Drawing& drawing, const plan::Room& room, std::size_t lines) {
  constexpr double kLetterMillimeters = 200.0;
  constexpr double kShareOfRoom = 0.09;
  constexpr double kLineSpacing = 1.6;
  const double height = std::min(kLetterMillimeters / drawing.millimetersPerUnit(),
                                 kShareOfRoom * std::sqrt(room.netArea));
  const AcGePoint2d middle = plan::labelPoint(room.polygon);
  LabelPlace place{height, {}};
  for (std::size_t i = 0; i < lines; ++i) {
    const double up = 0.5 * static_cast<double>(lines - 1) - static_cast<double>(i);
    place.middles.push_back(middle + AcGeVector2d(0.0, up * kLineSpacing * height));
  }
  return place;
}

void putOn(AcDbEntity& entity, Drawing& drawing, const std::wstring& layer) {
  entity.setDatabaseDefaults(&drawing.database());
  entity.setLayer(layer.c_str());
}

/// "" for a drawing that knows no hatches.
std::string appendHatch(Drawing& drawing, const plan::Polygon& polygon, const std::wstring& layer,
                        double elevation) {
  if (!hasLightPolylines(drawing)) {
    return "";
  }
  auto hatch = std::make_unique<AcDbHatch>();
  hatch->setElevation(elevation);
  const auto add = [&](const plan::Ring& ring, Adesk::Int32 type) {
    AcArray<AcGePoint2d> corners;
    for (const AcGePoint2d& corner : ring) {
      corners.append(corner);
    }
    hatch->appendLoop(type, corners);
  };
  add(polygon.outer, AcDbHatch::kExternal);
  for (const plan::Ring& hole : polygon.holes) {
    add(hole, AcDbHatch::kDefault);
  }
  putOn(*hatch, drawing, layer);
  AcCmColor color;
  color.setColorIndex(kHatchColorIndex);
  hatch->setColor(color);
  return appendEntity(drawing, drawing.modelSpaceId(), std::move(hatch));
}

std::string appendText(Drawing& drawing, const AcGePoint2d& middle, const std::string& text,
                       double height, const std::wstring& layer, double elevation) {
  const AcGePoint3d place(middle.x, middle.y, elevation);
  auto entity =
      std::make_unique<AcDbText>(place, os::fromUtf8(text).c_str(), AcDbObjectId::kNull, height);
  entity->setHorizontalMode(AcDb::kTextCenter);
  entity->setVerticalMode(AcDb::kTextVertMid);
  entity->setAlignmentPoint(place);
  putOn(*entity, drawing, layer);
  return appendEntity(drawing, drawing.modelSpaceId(), std::move(entity));
}

nlohmann::json neighboursJson(const plan::Room& room) {
  nlohmann::json json = nlohmann::json::array();
  for (const plan::RoomWay& way : room.ways) {
    json.push_back({{"opening", way.opening},
                    {"room", way.room ? nlohmann::json(*way.room) : nlohmann::json()}});
  }
  return json;
}

/// What all reports say of a room alike.
nlohmann::json roomJson(const Drawing& drawing, const plan::Room& room) {
  return {{"name", room.name},
          {"number", room.number},
          {"netArea", squareMeters(drawing, room.netArea)},
          {"grossArea", squareMeters(drawing, room.grossArea)},
          {"grossByStrips", room.isGrossByStrips},
          {"statedArea", room.statedArea ? nlohmann::json(*room.statedArea) : nlohmann::json()},
          {"perimeter", meters(drawing, room.perimeter)},
          {"walls", room.walls},
          {"openings", room.openings},
          {"neighbours", neighboursJson(room)}};
}

std::string indicesText(const std::vector<std::size_t>& indices) {
  std::string text;
  for (const std::size_t index : indices) {
    text += fmt::format("{}{}", text.empty() ? "" : ";", index);
  }
  return text;
}

Path filled(const plan::Ring& ring, const Color& fill) {
  Path path;
  path.points = ring;
  path.isClosed = true;
  path.isFilled = true;
  path.fill = fill;
  path.color = fill;
  path.width = 0.3;
  return path;
}

constexpr std::array<Color, 8> kTints{{{0.80, 0.89, 0.97},
                                       {0.99, 0.90, 0.78},
                                       {0.83, 0.93, 0.82},
                                       {0.95, 0.85, 0.93},
                                       {0.98, 0.96, 0.76},
                                       {0.80, 0.94, 0.93},
                                       {0.98, 0.85, 0.82},
                                       {0.88, 0.86, 0.97}}};
constexpr Color kBody{0.62, 0.63, 0.66};

}  // namespace

nlohmann::json ringJson(const plan::Ring& ring) {
  nlohmann::json json = nlohmann::json::array();
  for (const AcGePoint2d& corner : ring) {
    json.push_back({corner.x, corner.y});
  }
  return json;
}

double squareMeters(const Drawing& drawing, double area) {
  return area * (drawing.millimetersPerUnit() * drawing.millimetersPerUnit() / 1.0e6);
}

double meters(const Drawing& drawing, double length) {
  return length * (drawing.millimetersPerUnit() / kMillimetersPerMeter);
}

std::vector<RoomEntities> appendRooms(Drawing& drawing, const RoomPlan& plan,
                                      const std::string& layer, double elevation) {
  constexpr int kColorIndex = 4;
  makeLayer(drawing, layer, kColorIndex);
  const std::wstring name = os::fromUtf8(layer);
  std::vector<RoomEntities> all;
  Progress progress("Changing the drawing");
  for (const plan::Room& room : plan.found.rooms) {
    if (!progress.step(all.size() + 1, plan.found.rooms.size())) {
      Progress::checkInterrupt();
    }
    RoomEntities entities;
    // Behind the outline and the label.
    entities.hatch = appendHatch(drawing, room.polygon, name, elevation);
    entities.outline = appendOutline(drawing, room.polygon.outer, layer, elevation);
    const std::vector<std::string> lines = labelLines(drawing, room);
    const LabelPlace place = labelPlace(drawing, room, lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
      entities.label.push_back(
          appendText(drawing, place.middles[i], lines[i], place.height, name, elevation));
    }
    all.push_back(std::move(entities));
  }
  return all;
}

void addRooms(const Drawing& drawing, const RoomPlan& plan,
              const std::vector<RoomEntities>& entities,
              const std::vector<AcDbObjectId>& openingEntities, nlohmann::json& report) {
  nlohmann::json& rooms = report["rooms"] = nlohmann::json::array();
  for (std::size_t i = 0; i < plan.found.rooms.size(); ++i) {
    const plan::Room& room = plan.found.rooms[i];
    nlohmann::json json = roomJson(drawing, room);
    json["polygon"] = ringJson(room.polygon.outer);
    json["holes"] = nlohmann::json::array();
    for (const plan::Ring& hole : room.polygon.holes) {
      json["holes"].push_back(ringJson(hole));
    }
    if (i < entities.size()) {
      json["outline"] = entities[i].outline;
      json["hatch"] = entities[i].hatch;
      json["label"] = entities[i].label;
    }
    rooms.push_back(std::move(json));
  }
  nlohmann::json& openings = report["openings"] = nlohmann::json::array();
  for (std::size_t i = 0; i < plan.walls.openings.size(); ++i) {
    const plan::Opening& opening = plan.walls.openings[i];
    const AcGePoint2d start = plan.walls.startOf(opening);
    const AcGePoint2d end = plan.walls.endOf(opening);
    nlohmann::json json = i < openingEntities.size() ? sourceJson(drawing, openingEntities[i])
                                                     : nlohmann::json::object();
    json.update({{"type", plan::nameOf(opening.kind)},
                 {"wall", opening.wall},
                 {"start", {start.x, start.y}},
                 {"end", {end.x, end.y}},
                 {"width", opening.width()}});
    openings.push_back(std::move(json));
  }
  nlohmann::json& tooSmall = report["tooSmall"] = nlohmann::json::array();
  for (const plan::Polygon& sliver : plan.found.slivers) {
    tooSmall.push_back({{"area", squareMeters(drawing, plan::areaOf(sliver))},
                        {"polygon", ringJson(sliver.outer)}});
  }
}

std::string roomsCsv(const Drawing& drawing, const RoomPlan& plan) {
  std::string text =
      "room,number,name,net_area_m2,gross_area_m2,stated_area_m2,perimeter_m,walls,openings,"
      "neighbours\r\n";
  for (std::size_t i = 0; i < plan.found.rooms.size(); ++i) {
    const plan::Room& room = plan.found.rooms[i];
    std::string neighbours;
    for (const plan::RoomWay& way : room.ways) {
      neighbours += fmt::format("{}{}", neighbours.empty() ? "" : ";",
                                way.room ? std::to_string(*way.room) : "outside");
    }
    text += fmt::format("{},{},{},{},{},{},{},{},{},{}\r\n", i, csvField(room.number),
                        csvField(room.name), numberText(squareMeters(drawing, room.netArea)),
                        numberText(squareMeters(drawing, room.grossArea)),
                        room.statedArea ? numberText(*room.statedArea) : "",
                        numberText(meters(drawing, room.perimeter)), indicesText(room.walls),
                        indicesText(room.openings), neighbours);
  }
  return text;
}

std::string roomsGeoJson(const Drawing& drawing, const RoomPlan& plan) {
  nlohmann::json features = nlohmann::json::array();
  for (std::size_t i = 0; i < plan.found.rooms.size(); ++i) {
    const plan::Room& room = plan.found.rooms[i];
    nlohmann::json rings = nlohmann::json::array();
    const auto add = [&](const plan::Ring& ring) {
      nlohmann::json points = ringJson(ring);
      points.push_back(points[0]);  // rings are closed by their first point
      rings.push_back(std::move(points));
    };
    add(room.polygon.outer);
    for (const plan::Ring& hole : room.polygon.holes) {
      add(hole);
    }
    features.push_back({{"type", "Feature"},
                        {"id", i},
                        {"properties", roomJson(drawing, room)},
                        {"geometry", {{"type", "Polygon"}, {"coordinates", std::move(rings)}}}});
  }
  const nlohmann::json collection{
      {"type", "FeatureCollection"}, {"units", drawing.unitName()}, {"features", features}};
  return collection.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

Picture roomsPicture(Drawing& drawing, const RoomPlan& plan, double captureDistance,
                     const std::string& subtitle) {
  Picture picture = newPicture(drawing, "rooms", subtitle);
  // Rooms with others in their holes come first.
  std::vector<std::size_t> order(plan.found.rooms.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return plan::areaOf(plan.found.rooms[a].polygon.outer) >
           plan::areaOf(plan.found.rooms[b].polygon.outer);
  });
  for (const std::size_t i : order) {
    const plan::Room& room = plan.found.rooms[i];
    picture.paths.push_back(filled(room.polygon.outer, kTints[i % kTints.size()]));
    for (const plan::Ring& hole : room.polygon.holes) {
      picture.paths.push_back(filled(hole, palette::kPaper));
    }
    for (const AcGePoint2d& corner : room.polygon.outer) {
      picture.focus.push_back(corner);
    }
  }
  const plan::WallNet net = plan::makeNet(plan.walls.walls, captureDistance);
  for (const plan::Polygon& body : plan::bodiesOf(net, plan.columns, captureDistance)) {
    picture.paths.push_back(filled(body.outer, kBody));
  }
  addPlanShapes(picture, drawing, {});
  picture.drawn.back().hasTexts = false;  // the labels of rooms say what the texts do
  for (const plan::Room& room : plan.found.rooms) {
    Path outline;
    outline.points = room.polygon.outer;
    outline.isClosed = true;
    outline.color = palette::kWall;
    outline.width = kWallWidth;
    picture.paths.push_back(outline);
    for (const plan::Ring& hole : room.polygon.holes) {
      outline.points = hole;
      picture.paths.push_back(outline);
    }
    const std::vector<std::string> lines = labelLines(drawing, room);
    const LabelPlace place = labelPlace(drawing, room, lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
      Label label;
      label.position = place.middles[i];
      label.alongShare = 0.5;
      label.upShare = 0.5;
      label.text = lines[i];
      label.height = place.height;
      label.color = palette::kInk;
      picture.labels.push_back(std::move(label));
    }
  }
  for (const plan::Opening& opening : plan.walls.openings) {
    const AcGePoint2d start = plan.walls.startOf(opening);
    const AcGePoint2d end = plan.walls.endOf(opening);
    const bool isWindow = opening.kind == plan::OpeningKind::Window;
    addLine(picture, {start.x, start.y, 0.0}, {end.x, end.y, 0.0},
            isWindow ? palette::kFirst : palette::kSecond, 2.0 * kPieceWidth);
  }
  picture.legend = {{"wall", kBody, false, MarkShape::Dot, 6.0},
                    {"edge of a room", palette::kWall, false, MarkShape::Dot, kWallWidth},
                    {"door or opening", palette::kSecond, false, MarkShape::Dot, 4.0},
                    {"window", palette::kFirst, false, MarkShape::Dot, 4.0},
                    {"rest of the plan", palette::kPlan}};
  return picture;
}

}  // namespace quoin::commands
