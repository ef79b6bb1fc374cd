// quoin walls: finds the walls of a plan that draws them as two faces, and the openings in them.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <cmath>

#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/LeftOut.h"
#include "commands/OutputFile.h"
#include "commands/PlanReading.h"
#include "commands/PlannedWalls.h"
#include "commands/ReportFields.h"
#include "commands/SurveySchedule.h"
#include "commands/WallsOutputs.h"
#include "commands/Words.h"

namespace quoin::commands {

namespace {

class WallsCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "walls", "Find the walls of a plan that draws them as two faces, and their openings");
    m_options.declareFiles(*command);
    m_options.declareLayers(
        *command,
        "Layers with the walls' faces, * and ? allowed; may be repeated. "
        "Default: layers whose name has a word for wall (wall, mur, muro, Wand, 墙, ...)");
    m_options.declareScale(*command);
    m_reading.declare(*command);
    command->add_option("--out-layer", m_outLayer, "The layer of the reference lines")
        ->type_name("NAME")
        ->capture_default_str();
    command->add_option("--opening-layer", m_openingLayer, "The layer of the openings")
        ->type_name("NAME")
        ->capture_default_str();
    command->add_option("--column-layer", m_columnLayer, "The layer of the columns' outlines")
        ->type_name("NAME")
        ->capture_default_str();
    command->add_option("--csv", m_csv,
                        "Write the schedule as a table: walls by layer and width with length and "
                        "area, openings by kind and width; of several drawings: a folder, or a "
                        "name with {name} in it");
    command->footer(
        "A reference line stands midway between two faces, with its widths as extended data that\n"
        "'quoin outline', 'rooms' and 'solid' read. Lines in blocks and multilines count too.\n\n"
        "Examples:\n"
        "  quoin walls plan.dxf -o walls.dxf --picture walls.png\n"
        "  quoin walls plan.dxf --layer 'A-WALL*' --max-width 400mm --report json");
    return command;
  }

  std::string name() const override { return "walls"; }
  void prepare() override { m_options.checkTables({m_csv}); }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const std::set<std::wstring> layers = chooseFaceLayers(drawing, m_options.layers);
    const Capture capture = setCapture(m_options.capture, drawing);
    const auto [read, found] = findPlanWalls(drawing, layers, m_reading.inUnitsOf(drawing));
    Picture picture;
    if (job.hasPicture()) {
      picture = wallsPicture(drawing, read, found);
    }
    // Nothing is added in a dry run but for a picture of it, and no handle told.
    std::vector<std::string> walls(found.plan.walls.size());
    std::vector<std::string> openings(found.plan.openings.size());
    std::vector<std::string> columns(found.columns.size());
    if (!job.isDryRun || job.isBeforeAfter) {
      makeLayer(drawing, m_outLayer, kWallColor);
      makeLayer(drawing, m_openingLayer, kOpeningColor);
      for (std::size_t i = 0; i < walls.size(); ++i) {
        walls[i] = appendWall(drawing, found.plan.walls[i], m_outLayer);
      }
      for (std::size_t i = 0; i < openings.size(); ++i) {
        openings[i] = appendOpening(drawing, found.plan, found.plan.openings[i], m_openingLayer);
      }
      if (!columns.empty()) {
        makeLayer(drawing, m_columnLayer, kColumnColor);
      }
      for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i] = appendOutline(drawing, found.columns[i], m_columnLayer);
      }
    }
    if (job.isDryRun) {
      for (std::vector<std::string>* handles : {&walls, &openings, &columns}) {
        handles->assign(handles->size(), "");
      }
    }
    job.save(drawing);
    job.render(picture, report);
    if (!m_csv.empty()) {
      writeWholeFile(scheduleCsv(drawing, makeSchedule(drawing, read, found), RoomPlan()),
                     m_options.tableOf(job, m_csv, ".csv"), "write the schedule");
    }
    tell(drawing, read, found, report);
    tellLeftOut(drawing, read.found, false, report);
    warnOfUnits(m_options.capture, drawing, read.found.lines, report);
    if (report.isJson()) {
      addJson(drawing, read, found, capture, {walls, openings, columns}, report.json);
    }
  }

 private:
  /// Nobody draws finer than this.
  static std::string shortText(double value) {
    constexpr double kParts = 1000.0;
    return numberText(std::round(value * kParts) / kParts);
  }

  void tell(const Drawing& drawing, const ReadPlan& read, const plan::FoundWalls& found,
            Report& report) const {
    report.line("layers: {}", namesText(read.layers));
    report.line("{} of {}: {}, {} {} long, with {}", countText(found.plan.walls.size(), "wall"),
                countText(read.drawing.lines.size(), "line"), m_outLayer,
                shortText(lengthOf(found.plan)), drawing.unitName(),
                countText(found.plan.openings.size(), "opening"));
    report.list(found.widths.size(), [&](std::size_t i) {
      return fmt::format("  {} {} wide: {} {}", shortText(found.widths[i].width),
                         drawing.unitName(), shortText(found.widths[i].length), drawing.unitName());
    });
    if (!found.columns.empty()) {
      report.line("{} on {}", countText(found.columns.size(), "column"), m_columnLayer);
    }
    report.line("{} left over", countText(found.leftOver.size(), "line"));
  }

  void addJson(const Drawing& drawing, const ReadPlan& read, const plan::FoundWalls& found,
               const Capture& capture, const FoundHandles& handles, nlohmann::json& report) const {
    report.update({{"capture", captureJson(capture)},
                   {"layers", namesJson(read.layers)},
                   {"lines", read.drawing.lines.size()},
                   {"outLayer", m_outLayer},
                   {"openingLayer", m_openingLayer},
                   {"columnLayer", m_columnLayer}});
    addFoundWalls(drawing, read, found, handles, report);
    addLeftOut(drawing, read.found, report);
  }

  std::string m_csv;
  ReadingOptions m_reading;
  std::string m_outLayer = kWallLayer;
  std::string m_openingLayer = kOpeningLayer;
  std::string m_columnLayer = kColumnLayer;
};

}  // namespace

std::unique_ptr<Command> makeWallsCommand() {
  return std::make_unique<WallsCommand>();
}

}  // namespace quoin::commands
