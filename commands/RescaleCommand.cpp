// quoin rescale: scales drawing files, in place unless told otherwise.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <cmath>

#include "EntityTool.h"
#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/ReportFields.h"
#include "commands/SpaceChange.h"
#include "commands/Units.h"
#include "commands/Usage.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// What --factor is multiplied with, as by CEntityTool::AdjustDwgSize: it makes true size of plans
/// that were drawn in the measure of a sheet at 1:80.
constexpr double kDrawingFactor = 80.0;
/// From angstroms to parsecs it is 3e26; beyond, somebody has slipped.
constexpr double kLeastFactor = 1.0e-30;
constexpr double kMostFactor = 1.0e30;

/// How one drawing is scaled.
struct Scaling {
  double factor = 1.0;
  AcDb::UnitsValue from = AcDb::kUnitsUndefined;
  std::string words;  // where the factor comes from
};

std::string boxText(const AcDbExtents& box) {
  return box.isFresh() ? "none" : pointText(box.minPoint()) + " to " + pointText(box.maxPoint());
}

AcDbExtents extentsOf(Drawing& drawing) {
  AcDbExtents box;
  CEntityTool::GetEntExtents(&drawing.database(), box, false);
  return box;
}

bool isMetric(AcDb::UnitsValue units) {
  return units != AcDb::kUnitsInches && units != AcDb::kUnitsFeet;
}

class RescaleCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("rescale", "Scale drawing files, or change their units");
    m_options.declareFiles(*command);
    CLI::Option_group* const factors = command->add_option_group("factor");
    factors->add_option("--drawing-factor", m_drawingFactor, "Scale by just this");
    factors->add_option(
        "--factor", m_factor,
        "Scale by 80 times this: 1 makes a plan in millimetres of one that was drawn "
        "in millimetres of a sheet at 1:80");
    std::vector<std::string> names;
    for (const NamedUnit& unit : namedUnits()) {
      names.emplace_back(unit.name);
    }
    factors
        ->add_option("--to-units", m_toUnits,
                     "Scale from the drawing's units to these, and say so in the drawing")
        ->check(oneOf(names));
    factors->require_option(1);
    command
        ->add_option("--from-units", m_fromUnits,
                     "What the units are, where the drawing names none or wrong ones")
        ->check(oneOf(names));
    command->add_flag("--leave-behind", m_isLeavingBehind,
                      "Save even if entities that cannot be scaled stay as they are");
    command->footer(
        "Model space is scaled about 0,0,0, with extents, limits, views and viewports. Without -o\n"
        "each drawing is replaced and stays beside the new one as a backup. A drawing is scaled\n"
        "wholly or not at all; one that fails does not keep the others back. Linetype scale,\n"
        "dimension styles and the size of new texts stay.\n\n"
        "Examples:\n"
        "  quoin rescale *.dxf --to-units m --jobs 0      (mm, as each drawing says, to m)\n"
        "  quoin rescale plan.dxf --drawing-factor 0.001 -o metres.dxf\n"
        "  quoin rescale a.dxf b.dxf --factor 1.25        (80 x 1.25: scales by 100)");
    command->final_callback(
        [this] { m_options.isInPlace = m_options.output.empty() && !m_options.isDryRun; });
    return command;
  }

 protected:
  std::string name() const override { return "rescale"; }

  void prepare() override {
    if (!m_fromUnits.empty() && m_toUnits.empty()) {
      throw CommandError(ExitCode::Usage, "--from-units is of use with --to-units alone");
    }
    const double factor =
        m_drawingFactor ? *m_drawingFactor : kDrawingFactor * m_factor.value_or(1.0);
    if (!(factor >= kLeastFactor && factor <= kMostFactor)) {
      throw CommandError(ExitCode::Usage,
                         fmt::format("a drawing cannot be scaled by {}: factors go from {:g} to "
                                     "{:g}, and negative ones would turn texts over",
                                     numberText(factor), kLeastFactor, kMostFactor));
    }
  }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const Scaling scaling = scalingOf(drawing);
    report.line("scaling by {}{}", numberText(scaling.factor), scaling.words);
    const AcDbExtents before = job.isDryRun ? extentsOf(drawing) : AcDbExtents();
    const SpaceChange change{scaling.factor, {}, "scale", m_isLeavingBehind};
    const SpaceChanged changed = changeModelSpace(drawing, change);
    const bool namesUnits = setUnits(drawing);
    // What is told from here on has happened.
    job.save(drawing);
    if (job.hasPicture()) {
      job.render(pictureOf(drawing, scaling), report);
    }
    report.line("{} scaled", countText(changed.entities.size(), "entity", "entities"));
    report.json["drawingFactor"] = scaling.factor;
    tellSpaceChange(drawing, change, changed, report);
    if (job.isDryRun) {
      const AcDbExtents after = extentsOf(drawing);
      report.line("extents before  {}", boxText(before));
      report.line("extents after   {}", boxText(after));
      report.json["extentsBefore"] = boxJson(before);
      report.json["extentsAfter"] = boxJson(after);
    }
    tellUnits(drawing, namesUnits, report);
    tellSettings(drawing, report);
  }

 private:
  Scaling scalingOf(const Drawing& drawing) const {
    Scaling scaling;
    scaling.from = drawing.info().units;
    if (m_drawingFactor) {
      scaling.factor = *m_drawingFactor;
    } else if (m_factor) {
      scaling.factor = kDrawingFactor * *m_factor;
      scaling.words = fmt::format(" (80 times {})", numberText(*m_factor));
    } else {
      if (const NamedUnit* const unit = unitNamed(m_fromUnits)) {
        scaling.from = unit->value;
      }
      if (scaling.from == AcDb::kUnitsUndefined) {
        throw CommandError(ExitCode::Usage, drawing.file().string() +
                                                ": the drawing names no units; say what they are: "
                                                "--from-units mm");
      }
      scaling.factor = hostx::millimetersPerUnit(scaling.from) / unitNamed(m_toUnits)->millimeters;
      scaling.words = fmt::format(", from {} to {}", os::toUtf8(hostx::unitsName(scaling.from)),
                                  os::toUtf8(hostx::unitsName(unitNamed(m_toUnits)->value)));
    }
    return scaling;
  }

  /// Writes the new units into the drawing; false where drawings of its release name none.
  bool setUnits(Drawing& drawing) const {
    AcDbDatabase& database = drawing.database();
    if (m_toUnits.empty()) {
      return true;
    }
    if (database.insunits() == AcDb::kUnitsUndefined &&
        database.originalFileVersion() < AcDb::kDHL_1015) {
      return false;
    }
    const AcDb::UnitsValue units = unitNamed(m_toUnits)->value;
    if (units != database.insunits()) {
      check(database.setInsunits(units), drawing, AcDbObjectId::kNull, "set the units");
    }
    database.setMeasurement(isMetric(units) ? 1 : 0);  // before R14 there is none
    return true;
  }

  void tellUnits(Drawing& drawing, bool namesUnits, Report& report) const {
    const std::string units = os::toUtf8(hostx::unitsName(drawing.database().insunits()));
    if (m_toUnits.empty()) {
      report.line("units stay {}; --to-units scales and changes them", units);
    } else if (namesUnits) {
      report.line("units are {} now", units);
    } else {
      report.warn(fmt::format("{} drawings name no units: nothing in it says that they are {} now",
                              os::toUtf8(drawing.info().release), m_toUnits));
    }
    report.json["units"] = units;
  }

  /// What shows at another size afterwards, because it belongs to sheets and styles too.
  static void tellSettings(Drawing& drawing, Report& report) {
    const AcDbDatabase& database = drawing.database();
    report.line("stay as they are: linetype scale {}, dimension scale {}, size of new texts {}",
                numberText(database.ltscale()), numberText(database.dimscale()),
                numberText(database.textsize()));
    report.json["settings"] = {{"ltscale", database.ltscale()},
                               {"dimscale", database.dimscale()},
                               {"textsize", database.textsize()}};
  }

  static Picture pictureOf(Drawing& drawing, const Scaling& scaling) {
    Picture picture = newPicture(drawing, "rescaled", "by " + numberText(scaling.factor));
    addPlanShapes(picture, drawing, {});
    return picture;
  }

  std::optional<double> m_factor;
  std::optional<double> m_drawingFactor;
  std::string m_toUnits;
  std::string m_fromUnits;
  bool m_isLeavingBehind = false;
};

}  // namespace

std::unique_ptr<Command> makeRescaleCommand() {
  return std::make_unique<RescaleCommand>();
}

}  // namespace quoin::commands
