// quoin outline: turns reference lines into walls with side lines, end lines and mitred or
// connected corners.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>

#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/OpeningLayers.h"
#include "commands/OutlineGaps.h"
#include "commands/OutlineLines.h"
#include "commands/Progress.h"
#include "commands/ReferenceWalls.h"
#include "commands/ReportFields.h"
#include "commands/WallBodies.h"
#include "commands/WallChanges.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "dbents.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

class OutlineCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "outline", "Draw the outline of walls given by reference lines and widths");
    m_options.declareFiles(*command);
    declareReferenceWalls(*command, m_options, m_widths);
    m_openings.declare(*command, "Draw walls without gaps");
    command->add_option("--out-layer", m_outLayer, "The layer of the outline")
        ->type_name("NAME")
        ->capture_default_str();
    command->footer(
        "Left and right are seen along a line from its start to its end. Where walls meet, side\n"
        "lines are mitred; faces at less than 5 degrees get a short connecting line instead.\n"
        "An opening is a LINE along a reference line from jamb to jamb, as 'quoin walls' writes\n"
        "it: the faces have a gap there, closed by a line across at each jamb.\n\n"
        "Examples:\n"
        "  quoin outline axes.dxf --layer WALL-AXIS --left 120 --right 120 -o walls.dxf\n"
        "  quoin outline axes.dxf --layer 'W-*' --width W-EXT=300 --width 'W-INT*=60,60' \\\n"
        "        -o walls.dxf --picture walls.png");
    return command;
  }

  std::string name() const override { return "outline"; }
  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const std::set<std::wstring> openingLayers = m_openings.in(drawing);
    const ReferenceWalls reference =
        collectReferenceWalls(drawing, m_options, m_widths, openingLayers);
    const std::vector<BodyWall>& walls = reference.walls;
    const Capture& capture = reference.capture;
    const std::vector<WallOutline> outlines = showWalls(walls, capture.distance);
    FoundOpenings openings;
    if (!openingLayers.empty()) {
      openings = collectOpenings(drawing, openingLayers, planWalls(walls), capture.distance);
    }
    const OutlineGaps gaps = openOutlines(walls, outlines, openings, capture.distance);
    std::vector<OutlineLine> lines = outlineLines(outlines, gaps.outlines);
    Picture picture;
    if (job.hasPicture()) {
      picture = paint(drawing, walls, lines, capture);
    }
    Progress progress("Changing the drawing");
    std::size_t done = 0;
    for (OutlineLine& line : lines) {
      if (!progress.step(++done, lines.size())) {
        Progress::checkInterrupt();
      }
      auto entity = std::make_unique<AcDbLine>(line.seg.ptStart, line.seg.ptEnd);
      entity->setDatabaseDefaults(&drawing.database());
      entity->setLayer(os::fromUtf8(m_outLayer).c_str());
      line.handle = appendEntity(drawing, drawing.modelSpaceId(), std::move(entity));
    }
    job.save(drawing);
    job.render(picture, report);
    tell(drawing, reference, lines, report);
    tellOpenings(drawing, openingLayers, openings, gaps, report);
    tellReferenceWalls(drawing, m_options, reference, report);
    if (report.isJson()) {
      addJson(drawing, reference, lines, report.json);
      std::vector<SkippedEntity> leftOut = openings.skipped;
      leftOut.insert(leftOut.end(), gaps.leftOut.begin(), gaps.leftOut.end());
      report.json.update({{"openingLayers", namesJson(openingLayers)},
                          {"openingCounts",
                           {{"cut", gaps.opened.size()},
                            {"shortened", gaps.shortened},
                            {"leftOut", leftOut.size()}}},
                          {"openingsLeftOut", skippedJson(drawing, leftOut)}});
    }
  }

 private:
  static std::size_t count(const std::vector<OutlineLine>& lines, LineRole role) {
    return static_cast<std::size_t>(std::count_if(
        lines.begin(), lines.end(), [&](const OutlineLine& line) { return line.role == role; }));
  }

  static Color colorOf(LineRole role) {
    switch (role) {
      case LineRole::Left:
      case LineRole::Right:
        return palette::kWall;
      case LineRole::Connection:
        return palette::kMark;
      case LineRole::Jamb:
        return palette::kThird;
      default:
        return palette::kFirst;
    }
  }

  static Picture paint(Drawing& drawing, const std::vector<BodyWall>& walls,
                       const std::vector<OutlineLine>& lines, const Capture& capture) {
    Picture picture = newPicture(
        drawing, "walls outlined from their reference lines",
        fmt::format("{} walls, {} lines, {} of them connections; ends closer than {} meet",
                    walls.size(), lines.size(), count(lines, LineRole::Connection),
                    captureText(capture, drawing)));
    addPlanShapes(picture, drawing, {});
    for (const BodyWall& wall : walls) {
      addFocus(picture, wall.line.start, wall.line.end);
      addLine(picture, wall.line.start, wall.line.end, palette::kSecond, 1.0, true);
    }
    for (const OutlineLine& line : lines) {
      const bool isSide = line.role == LineRole::Left || line.role == LineRole::Right;
      addLine(picture, line.seg.ptStart, line.seg.ptEnd, colorOf(line.role),
              isSide ? kWallWidth : kPieceWidth);
      if (isSide) {
        addMark(picture, line.seg.ptStart, MarkShape::Dot, palette::kThird, 2.6);
        addMark(picture, line.seg.ptEnd, MarkShape::Dot, palette::kThird, 2.6);
      }
    }
    picture.legend = {{"side line", palette::kWall, false, MarkShape::Dot, kWallWidth},
                      {"end of a free wall", palette::kFirst, false, MarkShape::Dot, kPieceWidth},
                      {"connection", palette::kMark, false, MarkShape::Dot, kPieceWidth},
                      {"jamb", palette::kThird, false, MarkShape::Dot, kPieceWidth},
                      {"corner", palette::kThird, true},
                      {"reference line", palette::kSecond, false, MarkShape::Dot, 1.0},
                      {"rest of the plan", palette::kPlan}};
    return picture;
  }

  void tell(const Drawing& drawing, const ReferenceWalls& reference,
            const std::vector<OutlineLine>& lines, Report& report) const {
    report.line("layers: {}", namesText(reference.layers));
    report.line("ends closer than {} meet", captureText(reference.capture, drawing));
    report.line("{} outlined by {} on {}: {} of free walls, {}",
                countText(reference.walls.size(), "wall"), countText(lines.size(), "line"),
                m_outLayer,
                countText(count(lines, LineRole::Start) + count(lines, LineRole::End), "end"),
                countText(count(lines, LineRole::Connection), "connection"));
  }

  static void tellOpenings(const Drawing& drawing, const std::set<std::wstring>& layers,
                           const FoundOpenings& openings, const OutlineGaps& gaps, Report& report) {
    if (layers.empty()) {
      return;
    }
    std::string text = fmt::format("{} of {} left open", countText(gaps.opened.size(), "opening"),
                                   namesText(layers));
    const auto add = [&](std::size_t count, const char* what) {
      text += count > 0 ? fmt::format(", {} {}", count, what) : "";
    };
    add(gaps.shortened, "shortened at joints");
    add(openings.skipped.size() + gaps.leftOut.size(), "left out");
    report.line("{}", text);
    tellLeftOutOf(drawing, openings.skipped, report);
    tellLeftOutOf(drawing, gaps.leftOut, report);
  }

  void addJson(const Drawing& drawing, const ReferenceWalls& reference,
               const std::vector<OutlineLine>& lines, nlohmann::json& report) const {
    std::vector<nlohmann::json> results(reference.walls.size(),
                                        nlohmann::json{{"results", nlohmann::json::array()}});
    for (const OutlineLine& line : lines) {
      nlohmann::json entry = lineJson(line.handle, line.seg.ptStart, line.seg.ptEnd);
      entry["role"] = nameOf(line.role);
      results[line.wall]["results"].push_back(std::move(entry));
    }
    report.update({{"outLayer", m_outLayer}, {"added", lines.size()}});
    addReferenceWalls(drawing, reference, results, report);
  }

  WidthOptions m_widths;
  OpeningLayers m_openings;
  std::string m_outLayer = "WALL-OUTLINE";
};

}  // namespace

std::unique_ptr<Command> makeOutlineCommand() {
  return std::make_unique<OutlineCommand>();
}

}  // namespace quoin::commands
