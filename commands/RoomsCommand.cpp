// quoin rooms: the rooms that walls enclose, with areas, names and the ways between them.
#include <fmt/format.h>

#include <cmath>
#include <map>

#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/LayerChoice.h"
#include "commands/OutputFile.h"
#include "commands/ReferenceWalls.h"
#include "commands/ReportFields.h"
#include "commands/RoomOutputs.h"
#include "commands/Words.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

class RoomsCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "rooms", "Find the rooms that walls enclose: areas, names, doors between them");
    m_options.declareFiles(*command);
    declareReferenceWalls(*command, m_options, m_widths);
    addRepeated(*command, "--openings", m_openings,
                fmt::format("Layers with the openings, * and ? allowed; may be repeated. Default: "
                            "{}, where there is one",
                            kOpeningLayer),
                "GLOB");
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
        "Walls meet where their reference lines end or cross, and where one ends at the face of\n"
        "another; gaps below the tolerance close. Net areas lie between faces, gross areas\n"
        "between reference lines. Texts in a room give its name and number.\n\n"
        "Examples:\n"
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
    const ReferenceWalls reference = collectReferenceWalls(drawing, m_options, m_widths);
    RoomPlan plan;
    plan.walls.walls = planWalls(reference.walls);
    FoundOpenings openings = findOpenings(drawing, plan.walls.walls, reference.capture.distance);
    plan.walls.openings = openings.openings;
    findRooms(drawing, roomOptions(drawing, reference.capture.distance, m_leastArea, m_leastWidth),
              m_layer, plan);
    Picture picture;
    if (job.hasPicture()) {
      picture = roomsPicture(drawing, plan, reference.capture.distance, summaryOf(drawing, plan));
    }
    std::vector<RoomEntities> entities;
    if (!job.isDryRun) {
      entities = appendRooms(drawing, plan, m_layer, reference.walls.front().line.start.z);
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
    tell(drawing, reference, plan, openings, report);
    tellLeftOut(drawing, reference.found, true, report);
    warnOfUnits(m_options.capture, drawing, reference.found.lines, report);
    if (report.isJson()) {
      const std::vector<nlohmann::json> results(reference.walls.size(), nlohmann::json::object());
      addReferenceWalls(drawing, reference, results, report.json);
      addRooms(drawing, plan, entities, openings.entities, report.json);
      report.json.update({{"outLayer", m_layer},
                          {"wallsLeftOut", plan.found.wallsLeftOut},
                          {"skippedOpenings", skippedJson(drawing, openings.skipped)}});
    }
  }

 private:
  FoundOpenings findOpenings(Drawing& drawing, const std::vector<plan::Wall>& walls,
                             double captureDistance) const {
    std::set<std::wstring> layers;
    if (!m_openings.empty()) {
      layers = chooseLayers(drawing.layers(), m_openings, drawing);
    } else {
      layers.insert(os::fromUtf8(kOpeningLayer));
    }
    return collectOpenings(drawing, layers, walls, captureDistance);
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

  void tell(const Drawing& drawing, const ReferenceWalls& reference, const RoomPlan& plan,
            const FoundOpenings& openings, Report& report) const {
    report.line("layers: {}", namesText(reference.layers));
    report.line("ends closer than {} meet", captureText(reference.capture, drawing));
    report.line("{} with {}, outlined on {}", countText(reference.walls.size(), "wall"),
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
    report.list(openings.skipped.size(), [&](std::size_t i) {
      return fmt::format("opening left out: {} {}", describe(drawing, openings.skipped[i].entity),
                         openings.skipped[i].reason);
    });
  }

  static std::string waysText(const plan::Room& room) {
    return room.ways.empty() ? "no door" : countText(room.ways.size(), "door");
  }

  WidthOptions m_widths;
  std::vector<std::string> m_openings;
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
