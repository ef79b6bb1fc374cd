// quoin to-origin: moves a drawing so that a corner or the centre of its extents is at 0,0.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "EntityTool.h"
#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/SpaceChange.h"
#include "commands/Usage.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"

namespace quoin::commands {

namespace {

const std::map<std::string, EDwgPosition> kPositions{{"left-top", eLeftTop},
                                                     {"left-bottom", eLeftBottom},
                                                     {"right-top", eRightTop},
                                                     {"right-bottom", eRightBottom},
                                                     {"center", eCenter}};

class ToOriginCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "to-origin", "Move a drawing so that a corner or the centre of its extents is at 0,0");
    m_options.declareFiles(*command);
    command->add_option("--at", m_at, "Which point comes to the origin")
        ->check(oneOf({"left-top", "left-bottom", "right-top", "right-bottom", "center"}))
        ->type_name("POINT")
        ->required();
    command->add_flag("--leave-behind", m_isLeavingBehind,
                      "Save even if entities that cannot be moved stay where they are");
    command->footer(
        "Everything in model space moves, what is invisible or on hidden layers too; the extents\n"
        "are those of what shows (quoin extents). Heights stay as they are. Views and viewports "
        "show\n"
        "the same part of the plan as before.\n\n"
        "Example:\n  quoin to-origin plan.dxf --at left-bottom -o moved.dxf");
    return command;
  }

  std::string name() const override { return "to-origin"; }
  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    AcDbExtents before;
    Progress::during("Measuring",
                     [&] { CEntityTool::GetEntExtents(&drawing.database(), before, false); });
    if (before.isFresh()) {
      throw CommandError(ExitCode::NothingToDo, drawing.file().string() +
                                                    ": nothing shows in model space, so it has no "
                                                    "extents");
    }
    const EDwgPosition position = kPositions.at(m_at);
    const AcGePoint3d base = CEntityTool::GetBasePos(&drawing.database(), position);
    const SpaceChange change{1.0, movedBy(base).asVector(), "move", m_isLeavingBehind};
    const SpaceChanged changed = changeModelSpace(drawing, change);
    job.save(drawing);
    if (job.hasPicture()) {
      job.render(pictureOf(drawing, base), report);
    }
    report.line("{} of the extents was at {} {}", m_at, pointText(base), drawing.unitName());
    report.line("{} moved by {}", countText(changed.entities.size(), "entity", "entities"),
                pointText(movedBy(base)));
    report.json["at"] = m_at;
    report.json["basePoint"] = pointJson(base);
    tellSpaceChange(drawing, change, changed, report);
  }

 private:
  static AcGePoint3d movedBy(const AcGePoint3d& base) { return {-base.x, -base.y, 0.0}; }

  Picture pictureOf(Drawing& drawing, const AcGePoint3d& base) const {
    Picture picture =
        newPicture(drawing, m_at + " at the origin", "moved by " + pointText(movedBy(base)));
    addPlanShapes(picture, drawing, {});
    addMark(picture, AcGePoint3d(0.0, 0.0, 0.0), MarkShape::Cross, palette::kMark, 9.0);
    picture.legend = {{"the origin", palette::kMark, true, MarkShape::Cross}};
    return picture;
  }

  std::string m_at;
  bool m_isLeavingBehind = false;
};

}  // namespace

std::unique_ptr<Command> makeToOriginCommand() {
  return std::make_unique<ToOriginCommand>();
}

}  // namespace quoin::commands
