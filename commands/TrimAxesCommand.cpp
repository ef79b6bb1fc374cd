// quoin trim-axes: cuts grid lines to their outermost crossings with each other.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <cmath>

#include "AxisLineCutAlg.h"
#include "commands/AxisOverhang.h"
#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/LayerChoice.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/SingleLines.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"

namespace quoin::commands {

namespace {

/// A line and what is left of it.
struct TrimmedAxis {
  const SingleLine* line;
  AcGePoint3d start;
  AcGePoint3d end;

  bool isChanged() const { return !(start == line->start) || !(end == line->end); }
};

class TrimAxesCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("trim-axes", "Cut grid lines to their outermost crossings");
    m_options.declareFiles(*command);
    m_options.declareLayers(*command,
                            "Layers with the grid lines, * and ? allowed; may be repeated");
    command->get_option("--layer")->required();
    command
        ->add_option("--overhang", m_overhang,
                     "How far a grid line goes on beyond its outermost crossings, drawing units, "
                     "so that its bubble stays attached; never beyond its old end")
        ->capture_default_str();
    command->footer(
        "A grid line with fewer than two crossings stays as it is. Lines on locked layers are\n"
        "left alone and cut nothing.\n\n"
        "Example:\n"
        "  quoin trim-axes plan.dxf --layer 'S-GRID*' --overhang 800 -o trimmed.dxf");
    return command;
  }

  std::string name() const override { return "trim-axes"; }
  void prepare() override {
    if (!(m_overhang >= 0.0) || !std::isfinite(m_overhang)) {
      throw CommandError(ExitCode::Usage,
                         fmt::format("--overhang {}: a length is 0 or more", m_overhang));
    }
  }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const std::set<std::wstring> layers = chooseLayers(drawing.layers(), m_options.layers, drawing);
    const SingleLines found = collectSingleLines(drawing, layers, false);
    checkAnyLine(drawing, layers, found);
    const std::vector<TrimmedAxis> axes = trim(found.lines, m_overhang);
    Picture picture;
    if (job.hasPicture()) {
      picture = paint(drawing, axes);
    }
    Progress progress("Changing the drawing");
    std::size_t done = 0;
    for (const TrimmedAxis& axis : axes) {
      if (!progress.step(++done, axes.size())) {
        Progress::checkInterrupt();
      }
      if (axis.isChanged()) {
        setLineEnds(drawing, axis.line->entity, axis.start, axis.end);
      }
    }
    job.save(drawing);
    job.render(picture, report);
    tell(drawing, layers, found, axes, report);
    if (report.isJson()) {
      addJson(drawing, layers, found, axes, m_overhang, report.json);
    }
  }

 private:
  static std::vector<TrimmedAxis> trim(const std::vector<SingleLine>& lines, double overhang) {
    AxisLineCutAlg algorithm;
    for (const SingleLine& line : lines) {
      algorithm.AppendSrcAxisLine(new AxisLikeLineSeg{line.start, line.end});
    }
    Progress::during("Cutting axes", [&] { algorithm.CutAxisLines(); });
    Progress::checkInterrupt();
    std::vector<TrimmedAxis> axes;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const AxisLikeLineSeg& trimmed = *algorithm.GetDestAxisLines()[i];
      axes.push_back({&lines[i], withOverhang(trimmed.ptStart, lines[i].start, overhang),
                      withOverhang(trimmed.ptEnd, lines[i].end, overhang)});
    }
    return axes;
  }

  static std::size_t changedCount(const std::vector<TrimmedAxis>& axes) {
    std::size_t count = 0;
    for (const TrimmedAxis& axis : axes) {
      count += axis.isChanged() ? 1U : 0U;
    }
    return count;
  }

  static Picture paint(Drawing& drawing, const std::vector<TrimmedAxis>& axes) {
    Picture picture = newPicture(drawing, "grid lines trimmed",
                                 fmt::format("{} grid lines, {} cut to their outermost crossings",
                                             axes.size(), changedCount(axes)));
    std::set<AcDbObjectId> ids;
    for (const TrimmedAxis& axis : axes) {
      ids.insert(axis.line->entity);
      addFocus(picture, axis.line->start, axis.line->end);
    }
    addPlanShapes(picture, drawing, ids);
    for (const TrimmedAxis& axis : axes) {
      addLine(picture, axis.line->start, axis.line->end, palette::kSecond, 1.2, true);
      addLine(picture, axis.start, axis.end, axis.isChanged() ? palette::kFirst : palette::kWall,
              kPieceWidth);
    }
    for (const TrimmedAxis& axis : axes) {
      if (!(axis.start == axis.line->start)) {
        addMark(picture, axis.start, MarkShape::Dot, palette::kMark, markSizeFor(2 * axes.size()));
      }
      if (!(axis.end == axis.line->end)) {
        addMark(picture, axis.end, MarkShape::Dot, palette::kMark, markSizeFor(2 * axes.size()));
      }
    }
    picture.legend = {{"trimmed grid line", palette::kFirst, false, MarkShape::Dot, kPieceWidth},
                      {"as it was", palette::kWall, false, MarkShape::Dot, kPieceWidth},
                      {"cut off", palette::kSecond, false, MarkShape::Dot, 1.2},
                      {"outermost crossing", palette::kMark, true},
                      {"rest of the plan", palette::kPlan}};
    return picture;
  }

  static void tell(const Drawing& drawing, const std::set<std::wstring>& layers,
                   const SingleLines& found, const std::vector<TrimmedAxis>& axes, Report& report) {
    report.line("layers: {}", namesText(layers));
    report.line("{}, {} cut to their outermost crossings", countText(axes.size(), "grid line"),
                changedCount(axes));
    tellLeftOut(drawing, found, false, report);
  }

  static void addJson(const Drawing& drawing, const std::set<std::wstring>& layers,
                      const SingleLines& found, const std::vector<TrimmedAxis>& axes,
                      double overhang, nlohmann::json& report) {
    report.update({{"layers", namesJson(layers)},
                   {"lines", axes.size()},
                   {"overhang", overhang},
                   {"changes", nlohmann::json::array()}});
    addLeftOut(drawing, found, report);
    for (const TrimmedAxis& axis : axes) {
      if (axis.isChanged()) {
        nlohmann::json change = sourceJson(drawing, axis.line->entity);
        change["results"] =
            nlohmann::json::array({lineJson(handleText(axis.line->entity), axis.start, axis.end)});
        report["changes"].push_back(std::move(change));
      }
    }
    report["changed"] = report["changes"].size();
  }

  double m_overhang = 0.0;
};

}  // namespace

std::unique_ptr<Command> makeTrimAxesCommand() {
  return std::make_unique<TrimAxesCommand>();
}

}  // namespace quoin::commands
