// quoin break: cuts wall lines where another wall line's end meets them.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <map>

#include "BreakWallAlgorithm.h"
#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/Explode.h"
#include "commands/Junctions.h"
#include "commands/LayerChoice.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/WallChanges.h"
#include "commands/WallLines.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "embedded/os/Utf8.h"
#include "gelnsg3d.h"

namespace quoin::commands {

namespace {

/// A point that the user asked for and the wall line that it cuts.
struct NamedBreak {
  AcGePoint3d asked;
  AcGePoint3d foot;
  std::size_t line;
};

/// What one run found and did.
struct BreakResult {
  std::set<std::wstring> layers;
  WallLines walls;
  Capture capture{};
  std::vector<NamedBreak> named;
  std::vector<WallChange> changes;
  std::size_t heldByLock = 0;       // lines on locked layers that would have been cut
  std::vector<std::size_t> inside;  // lines that blocks and multilines show and that would be cut
  std::vector<ExplodedEntity> exploded;
  std::vector<LeftWhole> leftWhole;
  std::vector<Sliver> slivers;
  OpenJunctions second;  // what a second run would cut

  std::size_t pieceCount() const {
    std::size_t count = 0;
    for (const WallChange& change : changes) {
      count += change.pieces.size();
    }
    return count;
  }
  std::size_t cutCount() const { return pieceCount() - changes.size(); }
};

class BreakCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "break", "Cut wall lines where the end of another wall line meets them (T-junctions)");
    m_options.declareFiles(*command);
    m_options.declareLayers(
        *command,
        "Layers with wall lines, * and ? allowed; may be repeated. Default: "
        "layers whose name has a word for wall (wall, mur, muro, Wand, 墙, ...)");
    m_options.declareScale(*command);
    m_options.declareInBlocks(*command, "what shows a line that is cut is exploded");
    command->add_flag("--same-layer", m_isSameLayer,
                      "A line is cut only by ends of lines on its own layer");
    addRepeated(*command, "--at", m_at,
                "Also cut the wall line nearest to this point, at the foot of the point; may be "
                "repeated",
                "X,Y");
    command->footer(
        "Wall lines are the LINE entities and the straight segments of polylines in model\n"
        "space. Walls on locked layers cut others but are not changed themselves.\n\n"
        "Examples:\n"
        "  quoin break plan.dxf -o broken.dxf --picture broken.png\n"
        "  quoin break plan.dxf --dry-run --layer 'A-WALL*' --report json\n"
        "  quoin break plan.dxf --in-place --at 1200,350");
    return command;
  }

  std::string name() const override { return "break"; }
  void prepare() override {
    for (const std::string& text : m_at) {
      m_asked.push_back(parsePoint(text));
    }
  }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    BreakResult result;
    result.layers = chooseLayers(drawing.layers(), m_options.layers, drawing);
    result.walls = collectWallLines(drawing, result.layers, m_options.takesInside);
    checkAnyWallLine(drawing, result.layers, result.walls);
    result.capture = setCapture(m_options.capture, drawing);
    splitAll(drawing, result);
    lookAtPieces(result);
    if (report.isJson()) {
      for (WallChange& change : result.changes) {
        change.report = sourceJson(drawing, change.source.entity);
      }
    }
    // The picture's background is what the drawing was.
    Picture picture = !job.hasPicture() ? Picture() : paint(drawing, result);
    if (!job.isDryRun || job.isBeforeAfter) {
      applyWallChanges(drawing, result.changes);
    }
    job.save(drawing);
    job.render(picture, report);
    for (const WallChange& change : result.changes) {
      addSlivers(result.slivers, change, result.capture.distance);
    }
    tell(drawing, result, report);
    warnOfUnits(m_options.capture, drawing, result.walls.lines, report);
    if (report.isJson()) {
      addJson(drawing, result, report.json);
    }
  }

 private:
  static NamedBreak findNearest(const std::vector<WallLine>& lines, const Exploder& exploder,
                                const AcGePoint3d& asked) {
    NamedBreak named{asked, asked, 0};
    double least = HUGE_VAL;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (lines[i].within && exploder.isLeftWhole(lines[i].within->entity)) {
        continue;
      }
      const AcGePoint3d foot = AcGeLineSeg3d(lines[i].start, lines[i].end).closestPointTo(asked);
      // Points are given in plan: their height is not looked at.
      const double distance = std::hypot(foot.x - asked.x, foot.y - asked.y);
      if (distance < least) {
        least = distance;
        named.foot = foot;
        named.line = i;
      }
    }
    if (least == HUGE_VAL) {
      throw CommandError(ExitCode::NothingToDo, "there is no wall line to cut with --at");
    }
    return named;
  }

  /// Breaks the lines. What shows lines that are cut is exploded first, and all are broken anew:
  /// the same lines, which stand in model space then.
  void splitAll(Drawing& drawing, BreakResult& result) const {
    Exploder exploder(drawing, result.layers);
    result.walls.isInsideCut = m_options.takesInside;
    split(result, exploder);
    while (exploder.explode(result.walls, result.inside)) {
      result.walls.lines = collectWallLines(drawing, result.layers, true).lines;
      split(result, exploder);
    }
    result.exploded = exploder.exploded();
    result.leftWhole = exploder.leftWhole(result.walls, result.inside);
  }

  /// Breaks the lines as they are, each layer's among themselves where the options say so.
  void split(BreakResult& result, const Exploder& exploder) const {
    result.named.clear();
    result.changes.clear();
    result.inside.clear();
    result.heldByLock = 0;
    const std::vector<WallLine>& lines = result.walls.lines;
    std::map<std::wstring, std::vector<std::size_t>> groups;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      groups[m_isSameLayer ? lines[i].layer() : std::wstring()].push_back(i);
    }
    for (const AcGePoint3d& point : m_asked) {
      result.named.push_back(findNearest(lines, exploder, point));
    }
    for (const auto& [layer, group] : groups) {
      splitGroup(result, group);
    }
    std::sort(result.inside.begin(), result.inside.end());
  }

  static void splitGroup(BreakResult& result, const std::vector<std::size_t>& group) {
    const std::vector<WallLine>& lines = result.walls.lines;
    CBreakWallAlgorithm algorithm;
    std::map<const WallLineLikeSeg*, std::size_t> numberOf;
    for (const std::size_t i : group) {
      algorithm.GetSrcWallLines().push_back(new WallLineLikeSeg(lines[i].start, lines[i].end));
      numberOf[algorithm.GetSrcWallLines().back()] = i;
    }
    for (const NamedBreak& named : result.named) {
      const auto record = std::lower_bound(group.begin(), group.end(), named.line);
      if (record != group.end() && *record == named.line) {
        AcArray<AcGePoint3d> points;
        points.append(named.foot);
        algorithm.AppendWallBreakPnt(
            algorithm.GetSrcWallLines()[static_cast<std::size_t>(record - group.begin())], points);
      }
    }
    Progress::during("Breaking walls", [&] { algorithm.SplitWallLines(); });
    Progress::checkInterrupt();

    const std::vector<WallLineLikeSeg*>& pieces = algorithm.GetNewWallLines();
    for (std::size_t i = 0; i < pieces.size();) {
      const std::size_t index = numberOf.at(pieces[i]->pSrcLine);
      const WallLine& line = lines[index];
      WallChange change{line, {}};
      const WallLineLikeSeg* const source = pieces[i]->pSrcLine;
      for (; i < pieces.size() && pieces[i]->pSrcLine == source; ++i) {
        change.pieces.push_back({pieces[i]->ptStart, pieces[i]->ptEnd, ""});
      }
      if (change.pieces.size() < 2) {
        continue;  // cut at its own end: the line stays as it is
      }
      if (line.isLocked) {
        ++result.heldByLock;
        continue;
      }
      if (line.within) {
        result.inside.push_back(index);
        continue;
      }
      result.changes.push_back(std::move(change));
    }
  }

  /// What a second run would cut: pieces end at feet, where other lines may now be near them.
  void lookAtPieces(BreakResult& result) const {
    // Twice the run time is not worth a sentence in large drawings.
    constexpr std::size_t kMostLines = 100000;
    if (result.changes.empty() || m_isSameLayer || result.walls.lines.size() > kMostLines) {
      return;
    }
    result.second = findOpenJunctions(linesAfter(result.walls.lines, result.changes), true);
  }

  Picture paint(Drawing& drawing, const BreakResult& result) const {
    Picture picture = newPicture(
        drawing, "walls broken at their junctions",
        fmt::format("{} wall lines, {} cut into {} pieces; layers {}; touching within {}",
                    result.walls.lines.size(), result.changes.size(), result.pieceCount(),
                    namesText(result.layers), captureText(result.capture, drawing)));
    std::set<AcDbObjectId> lineEntities;
    std::set<std::pair<AcDbObjectId, int>> changed;
    for (const WallChange& change : result.changes) {
      changed.emplace(change.source.entity, change.source.segment);
    }
    for (const WallLine& line : result.walls.lines) {
      if (!line.isPolylineSegment() && !line.within) {
        lineEntities.insert(line.entity);
      }
    }
    addPlanShapes(picture, drawing, lineEntities);
    for (const WallLine& line : result.walls.lines) {
      addFocus(picture, line.start, line.end);
      if (!changed.count({line.entity, line.segment})) {
        addLine(picture, line.start, line.end, palette::kWall, kWallWidth);
      }
    }
    // Neighbouring pieces of a line take turns between two colours.
    for (const WallChange& change : result.changes) {
      for (std::size_t i = 0; i < change.pieces.size(); ++i) {
        addLine(picture, change.pieces[i].start, change.pieces[i].end,
                i % 2 == 0 ? palette::kFirst : palette::kSecond, kPieceWidth);
      }
    }
    const double markSize = markSizeFor(result.cutCount());
    for (const WallChange& change : result.changes) {
      for (std::size_t i = 1; i < change.pieces.size(); ++i) {
        const AcGePoint3d& cut = change.pieces[i].start;
        addMark(picture, cut, MarkShape::Dot, palette::kMark, markSize);
      }
    }
    for (const NamedBreak& named : result.named) {
      addMark(picture, named.asked, MarkShape::Cross, palette::kMark, 6.0);
    }
    picture.legend = {{"wall, not cut", palette::kWall, false, MarkShape::Dot, kWallWidth},
                      {"piece of a cut wall", palette::kFirst, false, MarkShape::Dot, kPieceWidth},
                      {"the next piece", palette::kSecond, false, MarkShape::Dot, kPieceWidth},
                      {"break point", palette::kMark, true, MarkShape::Dot},
                      {"rest of the plan", palette::kPlan, false, MarkShape::Dot, 2.0}};
    if (!result.named.empty()) {
      picture.legend.push_back({"point asked for", palette::kMark, true, MarkShape::Cross});
    }
    return picture;
  }

  static void tell(const Drawing& drawing, const BreakResult& result, Report& report) {
    report.line("{}: {}{}, {}", drawing.file().string(), os::toUtf8(drawing.info().release),
                drawing.info().format == L"DWG" ? " DWG"
                : drawing.info().isBinary       ? " binary"
                                                : "",
                drawing.unitName());
    report.line("layers: {}", namesText(result.layers));
    report.line("lines closer than {} touch", captureText(result.capture, drawing));
    report.line("{}, {} of them cut at {} into {}",
                countText(result.walls.lines.size(), "wall line"), result.changes.size(),
                countText(result.cutCount(), "point"), countText(result.pieceCount(), "piece"));
    for (const NamedBreak& named : result.named) {
      report.line("break asked for at {}: cuts {} at {}", pointText(named.asked),
                  describe(drawing, result.walls.lines[named.line].entity), pointText(named.foot));
    }
    if (result.heldByLock > 0) {
      report.line("not cut, on locked layers: {}", countText(result.heldByLock, "line"));
    }
    if (!result.inside.empty()) {
      report.line("not cut, inside blocks or multilines: {}",
                  countText(result.inside.size(), "line"));
    }
    tellExploded(drawing, result.exploded, result.leftWhole, report);
    tellSlivers(result.slivers, report);
    if (result.second.lines > 0) {
      report.line("a second run would cut {} more, at pieces of this one",
                  countText(result.second.lines, "line"));
    }
    tellLeftOut(drawing, result.walls, true, report);
  }

  static void addJson(const Drawing& drawing, const BreakResult& result, nlohmann::json& report) {
    report.update({{"capture", captureJson(result.capture)},
                   {"layers", namesJson(result.layers)},
                   {"lines", result.walls.lines.size()},
                   {"changed", result.changes.size()},
                   {"breakPoints", result.cutCount()},
                   {"pieces", result.pieceCount()},
                   {"heldByLockedLayers", result.heldByLock},
                   {"heldInside", result.inside.size()},
                   {"slivers", sliversJson(result.slivers)},
                   {"secondRun", result.second.lines},
                   {"changes", changesJson(result.changes)}});
    addExploded(drawing, result.exploded, result.leftWhole, report);
    addLeftOut(drawing, result.walls, report);
  }

  std::vector<std::string> m_at;
  std::vector<AcGePoint3d> m_asked;
  bool m_isSameLayer = false;
};

}  // namespace

std::unique_ptr<Command> makeBreakCommand() {
  return std::make_unique<BreakCommand>();
}

}  // namespace quoin::commands
