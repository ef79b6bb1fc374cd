// quoin walls: finds the walls of a plan that draws them as two faces, and the openings in them.
#include <fmt/format.h>

#include <algorithm>

#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/LeftOut.h"
#include "commands/PlanReading.h"
#include "commands/PlannedWalls.h"
#include "commands/ReportFields.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

AcGePoint3d high(const AcGePoint2d& point) {
  return {point.x, point.y, 0.0};
}

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
    command->footer(
        "A reference line stands midway between two faces, with its widths as extended data that\n"
        "'quoin outline', 'rooms' and 'solid' read. Lines in blocks and multilines count too.\n\n"
        "Examples:\n"
        "  quoin walls plan.dxf -o walls.dxf --picture walls.png\n"
        "  quoin walls plan.dxf --layer 'A-WALL*' --max-width 400mm --report json");
    return command;
  }

  std::string name() const override { return "walls"; }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const std::set<std::wstring> layers = chooseFaceLayers(drawing, m_options.layers);
    const Capture capture = setCapture(m_options.capture, drawing);
    const ReadPlan read = readPlan(drawing, layers);
    const plan::FindWallsOptions options = m_reading.inUnitsOf(drawing);
    const plan::FoundWalls found = plan::findWalls(read.drawing, options);
    Picture picture;
    if (job.hasPicture()) {
      picture = paint(drawing, read, found);
    }
    std::vector<std::string> walls;
    std::vector<std::string> openings;
    // Nothing is added in a dry run, and no handle told.
    walls.resize(found.plan.walls.size());
    openings.resize(found.plan.openings.size());
    if (!job.isDryRun) {
      makeLayer(drawing, m_outLayer, 1);
      makeLayer(drawing, m_openingLayer, 4);
      for (std::size_t i = 0; i < walls.size(); ++i) {
        walls[i] = appendWall(drawing, found.plan.walls[i], m_outLayer);
      }
      for (std::size_t i = 0; i < openings.size(); ++i) {
        openings[i] = appendOpening(drawing, found.plan, found.plan.openings[i], m_openingLayer);
      }
    }
    job.save(drawing);
    job.render(picture, report);
    tell(drawing, read, found, report);
    tellLeftOut(drawing, read.found, false, report);
    warnOfUnits(m_options.capture, drawing, read.found.lines, report);
    if (report.isJson()) {
      addJson(drawing, read, found, capture, walls, openings, report.json);
    }
  }

 private:
  static double lengthOf(const plan::WallPlan& plan) {
    double sum = 0.0;
    for (const plan::Wall& wall : plan.walls) {
      sum += wall.length();
    }
    return sum;
  }

  void tell(const Drawing& drawing, const ReadPlan& read, const plan::FoundWalls& found,
            Report& report) const {
    report.line("layers: {}", namesText(read.layers));
    report.line("{} of {}: {}, {} {} long, with {}", countText(found.plan.walls.size(), "wall"),
                countText(read.drawing.lines.size(), "line"), m_outLayer,
                numberText(lengthOf(found.plan)), drawing.unitName(),
                countText(found.plan.openings.size(), "opening"));
    report.list(found.widths.size(), [&](std::size_t i) {
      return fmt::format("  {} {} wide: {} {}", numberText(found.widths[i].width),
                         drawing.unitName(), numberText(found.widths[i].length),
                         drawing.unitName());
    });
    report.line("{} left over", countText(found.leftOver.size(), "line"));
  }

  static Picture paint(Drawing& drawing, const ReadPlan& read, const plan::FoundWalls& found) {
    Picture picture = newPicture(
        drawing, "walls found from their faces",
        fmt::format("{} from {}, {}; {} left over", countText(found.plan.walls.size(), "wall"),
                    countText(read.drawing.lines.size(), "line"),
                    countText(found.plan.openings.size(), "opening"),
                    countText(found.leftOver.size(), "line")));
    addPlanShapes(picture, drawing, {});
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
                      {"left over", palette::kSecond, false, MarkShape::Dot, 1.6},
                      {"rest of the plan", palette::kPlan}};
    return picture;
  }

  static std::vector<std::string> facesOf(const Drawing& drawing, const ReadPlan& read,
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

  static std::string layerOf(const ReadPlan& read, const std::vector<std::size_t>& lines) {
    return lines.empty() ? std::string()
                         : os::toUtf8(read.found.lines[read.sourceOf[lines.front()]].layer());
  }

  void addJson(const Drawing& drawing, const ReadPlan& read, const plan::FoundWalls& found,
               const Capture& capture, const std::vector<std::string>& walls,
               const std::vector<std::string>& openings, nlohmann::json& report) const {
    report.update({{"capture", captureJson(capture)},
                   {"layers", namesJson(read.layers)},
                   {"lines", read.drawing.lines.size()},
                   {"outLayer", m_outLayer},
                   {"openingLayer", m_openingLayer},
                   {"walls", nlohmann::json::array()},
                   {"openings", nlohmann::json::array()},
                   {"widths", nlohmann::json::array()},
                   {"leftOver", nlohmann::json::array()}});
    for (std::size_t i = 0; i < found.plan.walls.size(); ++i) {
      const plan::Wall& wall = found.plan.walls[i];
      nlohmann::json json = lineJson(walls[i], high(wall.start), high(wall.end));
      json.update({{"left", wall.left},
                   {"right", wall.right},
                   {"width", wall.width()},
                   {"confidence", wall.confidence},
                   {"layer", layerOf(read, found.faces[i])},
                   {"faces", facesOf(drawing, read, found.faces[i])}});
      report["walls"].push_back(std::move(json));
    }
    for (std::size_t i = 0; i < found.plan.openings.size(); ++i) {
      const plan::Opening& opening = found.plan.openings[i];
      nlohmann::json json =
          lineJson(openings[i], high(found.plan.startOf(opening)), high(found.plan.endOf(opening)));
      json.update({{"width", opening.width()},
                   {"wall", opening.wall},
                   {"kind", plan::nameOf(opening.kind)}});
      report["openings"].push_back(std::move(json));
    }
    for (const plan::FoundWalls::Width& width : found.widths) {
      report["widths"].push_back({{"width", width.width}, {"length", width.length}});
    }
    for (const std::size_t line : found.leftOver) {
      report["leftOver"].push_back(
          sourceJson(drawing, read.found.lines[read.sourceOf[line]].entity));
    }
    addLeftOut(drawing, read.found, report);
  }

  ReadingOptions m_reading;
  std::string m_outLayer = kWallLayer;
  std::string m_openingLayer = kOpeningLayer;
};

}  // namespace

std::unique_ptr<Command> makeWallsCommand() {
  return std::make_unique<WallsCommand>();
}

}  // namespace quoin::commands
