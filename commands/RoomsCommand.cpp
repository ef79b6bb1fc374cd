// quoin rooms: the rooms that walls enclose, with areas, names and the ways between them.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <cmath>

#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/OutputFile.h"
#include "commands/ReportFields.h"
#include "commands/RoomOutputs.h"
#include "commands/RoomWalls.h"
#include "commands/Words.h"

namespace quoin::commands {

namespace {

class RoomsCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "rooms", "Find the rooms that walls enclose: areas, names, doors between them");
    m_options.declareFiles(*command);
    declareReferenceWalls(*command, m_options, m_widths);
    command->get_option("--layer")->required(false)->description(
        "Layers with the walls, * and ? allowed; may be repeated. Default: QUOIN-WALL, "
        "else those whose name has a word for wall");
    command->add_flag(
        "--faces", m_takesFaces,
        "The lines are the walls' faces, as 'quoin walls' reads them; so are lines of "
        "which none has a width");
    m_openings.declare(*command, "Bridge nothing");
    command->add_option("--room-layer", m_layer, "The layer of outlines, hatches and labels")
        ->type_name("NAME")
        ->capture_default_str();
    command
        ->add_option("--min-area", m_leastArea,
                     "What encloses less is no room, square metres; it is counted as left out")
        ->capture_default_str();
    command
        ->add_option("--min-width", m_leastWidth,
                     "What is narrower in the mean is no room, millimetres")
        ->capture_default_str();
    command->add_option("--csv", m_csv,
                        "Write the rooms as a table; of several drawings: a folder, or a name "
                        "with {name} in it");
    command->add_option("--geojson", m_geoJson,
                        "Write the rooms' polygons in the drawing's own coordinates; of several "
                        "drawings: as --csv");
    command->footer(
        "Reads reference lines with widths; from a plan that draws walls as two faces it finds "
        "them\n"
        "first, with their openings (see 'quoin walls').\n\n"
        "Walls meet where their reference lines end or cross, and where one ends at the face of\n"
        "another; gaps below the tolerance close. Net areas lie between faces, gross areas\n"
        "between reference lines. Texts in a room give its name and number.\n\n"
        "Examples:\n"
        "  quoin rooms flat.dxf -o rooms.dxf --csv rooms.csv\n"
        "  quoin rooms studio.dxf --layer 'W-*' --width W-EXT=300 --width W-INT=120 \\\n"
        "        -o rooms.dxf --picture rooms.png\n"
        "  quoin rooms walls.dxf --layer QUOIN-WALL --dry-run --csv rooms.csv --report json");
    return command;
  }

  std::string name() const override { return "rooms"; }
  void prepare() override {
    for (const auto& [option, value] :
         {std::pair("--min-area", m_leastArea), std::pair("--min-width", m_leastWidth)}) {
      if (!(value >= 0.0) || !std::isfinite(value)) {
        throw CommandError(ExitCode::Usage,
                           fmt::format("{} {}: a size is 0 or more", option, value));
      }
    }
    m_options.checkTables({m_csv, m_geoJson});
  }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const RoomWalls source = readRoomWalls(drawing, m_options, m_widths, m_openings, m_takesFaces);
    RoomPlan plan = source.plan;
    findRooms(drawing, roomOptions(drawing, source.capture.distance, m_leastArea, m_leastWidth),
              m_layer, plan);
    Picture picture;
    if (job.hasPicture()) {
      picture = roomsPicture(drawing, plan, source.capture.distance, summaryOf(drawing, plan));
    }
    std::vector<RoomEntities> entities;
    if (!job.isDryRun || job.isBeforeAfter) {
      entities = appendRooms(drawing, plan, m_layer, source.lines().lines.front().start.z);
    }
    if (job.isDryRun) {
      entities.clear();  // of no drawing that is written
    }
    job.save(drawing);
    job.render(picture, report);
    if (!m_csv.empty()) {
      writeWholeFile(roomsCsv(drawing, plan), m_options.tableOf(job, m_csv, ".csv"),
                     "write the table");
    }
    if (!m_geoJson.empty()) {
      writeWholeFile(roomsGeoJson(drawing, plan), m_options.tableOf(job, m_geoJson, ".geojson"),
                     "write the table");
    }
    tell(drawing, source, plan, report);
    tellLeftOut(drawing, source.lines(), !source.isFromFaces, report);
    warnOfUnits(m_options.capture, drawing, source.lines().lines, report);
    if (report.isJson()) {
      addWalls(drawing, source, report.json);
      addRooms(drawing, plan, entities, source.openings.entities, report.json);
      report.json.update({{"outLayer", m_layer},
                          {"wallsLeftOut", plan.found.wallsLeftOut},
                          {"skippedOpenings", skippedJson(drawing, source.openings.skipped)}});
    }
  }

 private:
  void addWalls(const Drawing& drawing, const RoomWalls& source, nlohmann::json& report) const {
    if (!source.isFromFaces) {
      const std::vector<nlohmann::json> results(source.reference.walls.size(),
                                                nlohmann::json::object());
      addReferenceWalls(drawing, source.reference, results, report);
      return;
    }
    report.update({{"capture", captureJson(source.capture)},
                   {"layers", namesJson(source.layers())},
                   {"lines", source.lines().lines.size()},
                   {"walls", nlohmann::json::array()}});
    for (const plan::Wall& wall : source.plan.walls.walls) {
      nlohmann::json json =
          lineJson("", {wall.start.x, wall.start.y, 0.0}, {wall.end.x, wall.end.y, 0.0});
      json.update({{"left", wall.left}, {"right", wall.right}, {"confidence", wall.confidence}});
      report["walls"].push_back(std::move(json));
    }
    addLeftOut(drawing, source.lines(), report);
  }

  static double totalNetArea(const Drawing& drawing, const RoomPlan& plan) {
    double area = 0.0;
    for (const plan::Room& room : plan.found.rooms) {
      area += squareMeters(drawing, room.netArea);
    }
    return area;
  }
  static std::string summaryOf(const Drawing& drawing, const RoomPlan& plan) {
    return fmt::format("{}, {:.1f} m\u00B2 net, {}", countText(plan.found.rooms.size(), "room"),
                       totalNetArea(drawing, plan),
                       countText(plan.walls.openings.size(), "opening"));
  }

  void tell(const Drawing& drawing, const RoomWalls& source, const RoomPlan& plan,
            Report& report) const {
    report.line("layers: {}", namesText(source.layers()));
    report.line("ends closer than {} meet", captureText(source.capture, drawing));
    if (source.isFromFaces) {
      report.line("walls found from {}; {} left over",
                  countText(source.lines().lines.size(), "face"),
                  countText(source.fromFaces.found.leftOver.size(), "line"));
    }
    report.line("{} with {}, outlined on {}", countText(plan.walls.walls.size(), "wall"),
                summaryOf(drawing, plan), m_layer);
    report.list(plan.found.rooms.size(), [&](std::size_t i) {
      const plan::Room& room = plan.found.rooms[i];
      std::string words = room.number;
      words += (words.empty() || room.name.empty() ? "" : " ") + room.name;
      return fmt::format("  {}: {:.2f} m\u00B2 net, {:.2f} gross, {}",
                         words.empty() ? fmt::format("room {}", i) : words,
                         squareMeters(drawing, room.netArea), squareMeters(drawing, room.grossArea),
                         waysText(room));
    });
    if (!plan.found.slivers.empty()) {
      report.line("left out: {} too small or too narrow for a room",
                  countText(plan.found.slivers.size(), "space"));
    }
    if (plan.found.wallsLeftOut > 0) {
      report.line("left out: {} no longer than the distance at which ends meet",
                  countText(plan.found.wallsLeftOut, "wall"));
    }
    const std::vector<SkippedEntity>& skipped = source.openings.skipped;
    report.list(skipped.size(), [&](std::size_t i) {
      return fmt::format("opening left out: {} {}", describe(drawing, skipped[i].entity),
                         skipped[i].reason);
    });
  }

  static std::string waysText(const plan::Room& room) {
    return room.ways.empty() ? "no door" : countText(room.ways.size(), "door");
  }

  WidthOptions m_widths;
  bool m_takesFaces = false;
  OpeningLayers m_openings;
  std::string m_layer = kRoomLayer;
  double m_leastArea = kLeastRoomSquareMeters;
  double m_leastWidth = kLeastRoomMillimeters;
  std::string m_csv;
  std::string m_geoJson;
};

}  // namespace

std::unique_ptr<Command> makeRoomsCommand() {
  return std::make_unique<RoomsCommand>();
}

}  // namespace quoin::commands
