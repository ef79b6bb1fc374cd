// quoin merge: joins collinear lines that touch end to end and have the same properties.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>
#include <tuple>

#include "MergeGougeAlgorithm.h"
#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/LayerChoice.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/SingleLines.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// A line that grew, and those that it absorbed.
struct MergedLine {
  std::size_t survivor;
  AcGePoint3d start;
  AcGePoint3d end;
  std::vector<std::size_t> absorbed;
};

class MergeCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "merge", "Join collinear lines that touch end to end and have the same properties");
    m_options.declareFiles(*command);
    m_options.declareLayers(
        *command,
        "Layers with the lines to join, * and ? allowed; may be repeated. "
        "Default: layers whose name has a word for wall (wall, mur, muro, Wand, 墙, ...)");
    m_options.declareScale(*command);
    addRepeated(*command, "--keep-at", m_keepAt,
                "Keep lines apart that meet at this point; may be repeated", "X,Y");
    command->footer(
        "Lines join when they bend by at most one degree, when no third line ends there, and\n"
        "when layer, colour, linetype, line weight, thickness and elevation agree. The line that\n"
        "stays keeps its handle; the ones it absorbs are erased. Lines on locked layers, and\n"
        "lines with ends at different heights, are left alone.\n\n"
        "Examples:\n"
        "  quoin merge broken.dxf -o merged.dxf --picture merged.png\n"
        "  quoin merge plan.dxf --layer 'A-WALL*' --keep-at 3000,0 -o merged.dxf");
    return command;
  }

  std::string name() const override { return "merge"; }
  void prepare() override {
    for (const std::string& text : m_keepAt) {
      m_keepPoints.push_back(parsePoint(text));
    }
  }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const std::set<std::wstring> layers = chooseLayers(drawing.layers(), m_options.layers, drawing);
    const SingleLines found = collectSingleLines(drawing, layers, true);
    checkAnyLine(drawing, layers, found);
    const Capture capture = setCapture(m_options.capture, drawing);
    const std::vector<MergedLine> merged = merge(found.lines, m_keepPoints);
    Picture picture;
    if (job.hasPicture()) {
      picture = paint(drawing, found, merged, capture);
    }
    // Handles are asked for before erasing takes the lines away.
    tell(drawing, layers, found, merged, capture, report);
    warnOfUnits(m_options.capture, drawing, wallLinesOf(found), report);
    if (report.isJson()) {
      addJson(drawing, layers, found, merged, capture, report.json);
    }
    apply(drawing, found.lines, merged);
    job.save(drawing);
    job.render(picture, report);
  }

 private:
  static std::vector<MergedLine> merge(const std::vector<SingleLine>& lines,
                                       const std::vector<AcGePoint3d>& keepAt) {
    CMergeGougeAlgorithm algorithm;
    std::map<const MergeGougeSeg*, std::size_t> numberOf;
    // The algorithm compares numbers: each combination of properties gets its own.
    std::map<SingleLine::Properties, double> numberOfProperties;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      auto* record = new MergeGougeSeg();
      algorithm.GetSrcGougeLines().push_back(record);
      record->ptStart = lines[i].start;
      record->ptEnd = lines[i].end;
      record->dAttr1 =
          numberOfProperties
              .emplace(lines[i].properties, static_cast<double>(numberOfProperties.size()))
              .first->second;
      record->dAttr2 = lines[i].start.z;
      record->dAttr3 = lines[i].thickness;
      numberOf[record] = i;
    }
    for (const AcGePoint3d& point : keepAt) {
      algorithm.AppendBreakPnt(point);
    }
    Progress::during("Merging lines", [&] { algorithm.MergeGougeLines(); });
    Progress::checkInterrupt();

    std::vector<MergedLine> merged;
    for (const MergeGougeSeg* record : algorithm.GetMergeGougeLines()) {
      MergedLine line{numberOf.at(record), record->ptStart, record->ptEnd, {}};
      for (const MergeGougeSeg* absorbed : record->mergedSegs) {
        line.absorbed.push_back(numberOf.at(absorbed));
      }
      merged.push_back(std::move(line));
    }
    // The result is a set ordered by address: file order reads the same every time.
    std::sort(merged.begin(), merged.end(),
              [](const MergedLine& a, const MergedLine& b) { return a.survivor < b.survivor; });
    return merged;
  }

  static void apply(Drawing& drawing, const std::vector<SingleLine>& lines,
                    const std::vector<MergedLine>& merged) {
    Progress progress("Changing the drawing");
    std::size_t done = 0;
    for (const MergedLine& line : merged) {
      if (!progress.step(++done, merged.size())) {
        Progress::checkInterrupt();
      }
      setLineEnds(drawing, lines[line.survivor].entity, line.start, line.end);
      for (const std::size_t absorbed : line.absorbed) {
        eraseEntity(drawing, lines[absorbed].entity);
      }
    }
  }

  static std::size_t absorbedCount(const std::vector<MergedLine>& merged) {
    std::size_t count = 0;
    for (const MergedLine& line : merged) {
      count += line.absorbed.size();
    }
    return count;
  }

  Picture paint(Drawing& drawing, const SingleLines& found, const std::vector<MergedLine>& merged,
                const Capture& capture) const {
    Picture picture = newPicture(
        drawing, "collinear lines merged",
        fmt::format("{} lines: {} grew and absorbed {}; touching within {}", found.lines.size(),
                    merged.size(), absorbedCount(merged), captureText(capture, drawing)));
    std::set<AcDbObjectId> ids;
    std::set<std::size_t> involved;
    for (const SingleLine& line : found.lines) {
      ids.insert(line.entity);
      addFocus(picture, line.start, line.end);
    }
    addPlanShapes(picture, drawing, ids);
    for (const MergedLine& line : merged) {
      involved.insert(line.survivor);
      involved.insert(line.absorbed.begin(), line.absorbed.end());
    }
    for (std::size_t i = 0; i < found.lines.size(); ++i) {
      if (!involved.count(i)) {
        addLine(picture, found.lines[i].start, found.lines[i].end, palette::kWall, kWallWidth);
      }
    }
    bool turn = false;
    for (const MergedLine& line : merged) {
      addLine(picture, line.start, line.end, turn ? palette::kThird : palette::kFirst, kPieceWidth);
      turn = !turn;
    }
    const double markSize = markSizeFor(absorbedCount(merged));
    // Where lines met before: the ends of those that are gone, inside the survivor.
    for (const MergedLine& line : merged) {
      for (const std::size_t absorbed : line.absorbed) {
        for (const AcGePoint3d& end : {found.lines[absorbed].start, found.lines[absorbed].end}) {
          if (!end.isEqualTo(line.start) && !end.isEqualTo(line.end)) {
            addMark(picture, end, MarkShape::Dot, palette::kSecond, markSize);
          }
        }
      }
    }
    for (const AcGePoint3d& point : m_keepPoints) {
      addMark(picture, point, MarkShape::Cross, palette::kMark, 6.0);
    }
    picture.legend = {{"line, not merged", palette::kWall, false, MarkShape::Dot, kWallWidth},
                      {"merged line", palette::kFirst, false, MarkShape::Dot, kPieceWidth},
                      {"the next one", palette::kThird, false, MarkShape::Dot, kPieceWidth},
                      {"joint that is gone", palette::kSecond, true},
                      {"rest of the plan", palette::kPlan}};
    if (!m_keepPoints.empty()) {
      picture.legend.push_back({"kept apart", palette::kMark, true, MarkShape::Cross});
    }
    return picture;
  }

  static void tell(const Drawing& drawing, const std::set<std::wstring>& layers,
                   const SingleLines& found, const std::vector<MergedLine>& merged,
                   const Capture& capture, Report& report) {
    report.line("layers: {}", namesText(layers));
    report.line("ends closer than {} touch", captureText(capture, drawing));
    report.line("{}: {} grew and absorbed {}", countText(found.lines.size(), "line"), merged.size(),
                absorbedCount(merged));
    report.details(merged.size(), [&](std::size_t i) {
      std::string absorbed;
      for (const std::size_t number : merged[i].absorbed) {
        absorbed += (absorbed.empty() ? "" : ", ") + nameText(drawing, found.lines[number].entity);
      }
      return fmt::format("  {} absorbed {}",
                         nameText(drawing, found.lines[merged[i].survivor].entity), absorbed);
    });
    tellLeftOut(drawing, found, false, report);
  }

  static void addJson(const Drawing& drawing, const std::set<std::wstring>& layers,
                      const SingleLines& found, const std::vector<MergedLine>& merged,
                      const Capture& capture, nlohmann::json& report) {
    report.update({{"capture", captureJson(capture)},
                   {"layers", namesJson(layers)},
                   {"lines", found.lines.size()},
                   {"changed", merged.size()},
                   {"absorbed", absorbedCount(merged)},
                   {"changes", nlohmann::json::array()}});
    addLeftOut(drawing, found, report);
    for (const MergedLine& line : merged) {
      nlohmann::json absorbed = nlohmann::json::array();
      for (const std::size_t number : line.absorbed) {
        absorbed.push_back(sourceJson(drawing, found.lines[number].entity));
      }
      const AcDbObjectId& survivor = found.lines[line.survivor].entity;
      nlohmann::json change = sourceJson(drawing, survivor);
      change["results"] =
          nlohmann::json::array({lineJson(handleText(survivor), line.start, line.end)});
      change["absorbed"] = std::move(absorbed);
      report["changes"].push_back(std::move(change));
    }
  }

  std::vector<std::string> m_keepAt;
  std::vector<AcGePoint3d> m_keepPoints;
};

}  // namespace

std::unique_ptr<Command> makeMergeCommand() {
  return std::make_unique<MergeCommand>();
}

}  // namespace quoin::commands
