// quoin draw: draws wall lines that cut the ones they cross and are cut by them.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <iterator>
#include <map>
#include <sstream>

#include "AcadCommonTool.h"
#include "DrawWallAlgorithm/DrawWallLikeAlgorithm.h"
#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/Junctions.h"
#include "commands/LayerChoice.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/WallChanges.h"
#include "commands/WallLines.h"
#include "commands/WallWords.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// One wall line that was drawn.
struct DrawnLine {
  AcGePoint3d from;
  AcGePoint3d to;
  std::size_t captured = 0;  // existing lines near it
  std::vector<WallChange> changes;
  std::vector<WallPiece> pieces;
};

class DrawCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "draw", "Draw wall lines that cut the wall lines they cross and are cut by them");
    m_options.declareFiles(*command);
    command->add_option("--layer", m_layer, "The layer of the new lines; made where it is missing")
        ->type_name("NAME")
        ->required();
    command->add_option("--from", m_from, "Where the line starts")->type_name("X,Y");
    command->add_option("--to", m_to, "Where it ends")->type_name("X,Y");
    addRepeated(*command, "--path", m_path,
                "Several lines from point to point, each against the result of the last; points "
                "are separated by blanks; may be repeated for further paths",
                "'X,Y X,Y...'");
    command->add_flag("--angle-lock", m_isAngleLocked,
                      "Turn each line to the nearest multiple of 15 degrees");
    addRepeated(*command, "--walls", m_options.layers,
                "Layers with existing wall lines, * and ? allowed; may be repeated. Default: "
                "layers whose name has a word for wall, and the layer of the new lines",
                "GLOB");
    m_options.declareScale(*command);
    m_options.declareInBlocks(*command);
    command->add_flag("--same-layer", m_isSameLayer,
                      "Only wall lines on the layer of the new lines cut them and are cut");
    command->footer(
        "Examples:\n"
        "  quoin draw plan.dxf --from 0,2500 --to 9000,2500 --layer A-WALL-NEW -o drawn.dxf\n"
        "  quoin draw plan.dxf --path '0,0 4000,0 4000,3000' --layer A-WALL \\\n"
        "        --angle-lock -o drawn.dxf --picture drawn.png");
    return command;
  }

  std::string name() const override { return "draw"; }
  void prepare() override {
    if (m_isSameLayer && !m_options.layers.empty()) {
      throw CommandError(ExitCode::Usage, "--same-layer and --walls exclude each other");
    }
    m_paths = paths();
  }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const Capture capture = setCapture(m_options.capture, drawing);
    const std::set<std::wstring> layers = wallLayers(drawing);
    const WallLines before = collectWallLines(drawing, layers, m_options.takesInside);
    if (!m_options.layers.empty()) {
      checkAnyWallLine(drawing, layers, before);
    }

    Picture picture = newPicture(drawing, "wall lines drawn",
                                 fmt::format("on layer {}; lines closer than {} touch", m_layer,
                                             captureText(capture, drawing)));
    if (job.hasPicture()) {
      addPlanShapes(picture, drawing, {});
    }
    std::vector<DrawnLine> drawn;
    for (const std::vector<AcGePoint3d>& path : m_paths) {
      for (std::size_t i = 1; i < path.size(); ++i) {
        Progress::checkInterrupt();
        drawn.push_back(drawLine(drawing, layers, path[i - 1], path[i]));
      }
    }
    if (job.hasPicture()) {
      paint(picture, drawn);
    }
    job.save(drawing);
    job.render(picture, report);
    const std::vector<Sliver> slivers = sliversOf(drawn, capture.distance);
    tell(drawing, capture, drawn, report);
    tellSlivers(slivers, report);
    tellLeftOut(drawing, before, true, report);
    if (before.lines.empty()) {
      report.warn(fmt::format("there is no wall line on {}: nothing is cut", namesText(layers)));
    }
    warnOfUnits(m_options.capture, drawing, before.lines, report);
    if (report.isJson()) {
      addJson(capture, drawn, report.json);
      addLeftOut(drawing, before, report.json);
      report.json["lines"] = before.lines.size();
      report.json["slivers"] = sliversJson(slivers);
    }
  }

 private:
  std::vector<std::vector<AcGePoint3d>> paths() const {
    if (m_path.empty()) {
      if (m_from.empty() || m_to.empty()) {
        throw CommandError(ExitCode::Usage, "say what to draw: --from and --to, or --path");
      }
      return {pointsOf({m_from, m_to})};
    }
    if (!m_from.empty() || !m_to.empty()) {
      throw CommandError(ExitCode::Usage, "--path excludes --from and --to");
    }
    std::vector<std::vector<AcGePoint3d>> paths;
    for (const std::string& text : m_path) {
      std::istringstream stream(text);
      const std::vector<std::string> words{std::istream_iterator<std::string>(stream), {}};
      if (words.size() < 2) {
        throw CommandError(ExitCode::Usage,
                           fmt::format("--path '{}': a path has two points or more, all in one "
                                       "value: --path '0,0 4000,0'",
                                       text));
      }
      paths.push_back(pointsOf(words));
    }
    return paths;
  }

  std::vector<AcGePoint3d> pointsOf(const std::vector<std::string>& words) const {
    std::vector<AcGePoint3d> points;
    for (const std::string& word : words) {
      AcGePoint3d point = parsePoint(word);
      if (m_isAngleLocked && !points.empty()) {
        point = CAcadCommonTool::GetAngleLockPnt(points.back(), point);
      }
      points.push_back(point);
    }
    return points;
  }

  /// The layers of existing walls; a plan without any is no error here.
  std::set<std::wstring> wallLayers(Drawing& drawing) const {
    std::set<std::wstring> layers{os::fromUtf8(m_layer)};
    if (!m_options.layers.empty()) {
      return chooseLayers(drawing.layers(), m_options.layers, drawing);
    }
    for (const LayerContent& layer : drawing.layers()) {
      if (!m_isSameLayer && looksLikeWalls(layer.name)) {
        layers.insert(layer.name);
      }
    }
    return layers;
  }

  DrawnLine drawLine(Drawing& drawing, const std::set<std::wstring>& layers,
                     const AcGePoint3d& from, const AcGePoint3d& to) const {
    DrawnLine drawn{from, to, 0, {}, {}};
    const std::vector<WallLine> lines =
        collectWallLines(drawing, layers, m_options.takesInside).lines;
    // Records that the calculation modifies pass to the algorithm, the others stay ours.
    std::vector<std::unique_ptr<WallLineLikeSeg>> records;
    std::map<const WallLineLikeSeg*, std::size_t> numberOf;
    CDrawWallLikeAlgorithm algorithm;
    for (const WallLine& line : lines) {
      if (line.isLocked) {
        continue;
      }
      numberOf[records.emplace_back(std::make_unique<WallLineLikeSeg>(line.start, line.end))
                   .get()] = static_cast<std::size_t>(&line - lines.data());
      algorithm.GetSrcWallLines().push_back(records.back().get());
    }
    Progress::during("Drawing a wall", [&] { algorithm.CalcNewWallLine(from, to); });
    const auto& modified = algorithm.GetSrcModifyiedWallLines();
    const std::set<const WallLineLikeSeg*> passed(modified.begin(), modified.end());
    for (std::unique_ptr<WallLineLikeSeg>& record : records) {
      if (passed.count(record.get())) {
        record.release();
      }
    }
    drawn.captured = modified.size();
    for (const WallLineLikeSeg* far : algorithm.GetSrcNewWallLines()) {
      const WallLine& line = lines[numberOf.at(far->pSrcLine)];
      if (line.within) {
        continue;  // shown by a block or a multiline: it cuts and stays
      }
      drawn.changes.push_back({line,
                               {{line.start, far->ptStart, ""}, {far->ptStart, far->ptEnd, ""}},
                               sourceJson(drawing, line.entity)});
    }
    applyWallChanges(drawing, drawn.changes);
    for (const WallLineLikeSeg* piece : algorithm.GetNewWallLines()) {
      drawn.pieces.push_back({piece->ptStart, piece->ptEnd, appendPiece(drawing, *piece)});
    }
    return drawn;
  }

  static std::vector<Sliver> sliversOf(const std::vector<DrawnLine>& drawn,
                                       double captureDistance) {
    std::vector<Sliver> slivers;
    for (const DrawnLine& line : drawn) {
      for (const WallChange& change : line.changes) {
        addSlivers(slivers, change, captureDistance);
      }
      addSlivers(slivers, line.pieces, "the new line", nullptr, captureDistance);
    }
    return slivers;
  }

  std::string appendPiece(Drawing& drawing, const WallLineLikeSeg& piece) const {
    auto line = std::make_unique<AcDbLine>(piece.ptStart, piece.ptEnd);
    line->setDatabaseDefaults(&drawing.database());
    line->setLayer(os::fromUtf8(m_layer).c_str());
    return appendEntity(drawing, drawing.modelSpaceId(), std::move(line));
  }

  static void paint(Picture& picture, const std::vector<DrawnLine>& drawn) {
    std::size_t cuts = 0;
    for (const DrawnLine& line : drawn) {
      addFocus(picture, line.from, line.to);
      for (const WallChange& change : line.changes) {
        addLine(picture, change.pieces[0].start, change.pieces[0].end, palette::kThird,
                kPieceWidth);
        addLine(picture, change.pieces[1].start, change.pieces[1].end, palette::kSecond,
                kPieceWidth);
        ++cuts;
      }
      for (const WallPiece& piece : line.pieces) {
        addLine(picture, piece.start, piece.end, palette::kFirst, kPieceWidth + 0.8);
      }
    }
    for (const DrawnLine& line : drawn) {
      for (std::size_t i = 1; i < line.pieces.size(); ++i) {
        addMark(picture, line.pieces[i].start, MarkShape::Dot, palette::kMark, markSizeFor(cuts));
      }
      addMark(picture, line.from, MarkShape::Square, palette::kFirst, 5.0);
      addMark(picture, line.to, MarkShape::Square, palette::kFirst, 5.0);
    }
    picture.legend = {{"new wall line", palette::kFirst, false, MarkShape::Dot, kPieceWidth},
                      {"cut line, kept part", palette::kThird, false, MarkShape::Dot, kPieceWidth},
                      {"cut line, far part", palette::kSecond, false, MarkShape::Dot, kPieceWidth},
                      {"cut of the new line", palette::kMark, true},
                      {"plan before", palette::kPlan}};
  }

  static void tell(const Drawing& drawing, const Capture& capture,
                   const std::vector<DrawnLine>& drawn, Report& report) {
    report.line("lines closer than {} touch", captureText(capture, drawing));
    for (const DrawnLine& line : drawn) {
      report.line("drawn from {} to {}: {}; {} near it, {} of them cut", pointText(line.from),
                  pointText(line.to), countText(line.pieces.size(), "piece"),
                  countText(line.captured, "line"), line.changes.size());
    }
  }

  void addJson(const Capture& capture, const std::vector<DrawnLine>& drawn,
               nlohmann::json& report) const {
    report.update({{"capture", captureJson(capture)},
                   {"layer", m_layer},
                   {"drawn", nlohmann::json::array()}});
    std::size_t changed = 0;
    for (const DrawnLine& line : drawn) {
      changed += line.changes.size();
      report["drawn"].push_back({{"from", pointJson(line.from)},
                                 {"to", pointJson(line.to)},
                                 {"captured", line.captured},
                                 {"results", piecesJson(line.pieces)},
                                 {"changes", changesJson(line.changes)}});
    }
    report["changed"] = changed;
  }

  std::string m_layer;
  std::string m_from;
  std::string m_to;
  std::vector<std::string> m_path;
  std::vector<std::vector<AcGePoint3d>> m_paths;
  bool m_isAngleLocked = false;
  bool m_isSameLayer = false;
};

}  // namespace

std::unique_ptr<Command> makeDrawCommand() {
  return std::make_unique<DrawCommand>();
}

}  // namespace quoin::commands
