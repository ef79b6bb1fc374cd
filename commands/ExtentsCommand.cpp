// quoin extents: how far what a drawing shows reaches.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "EntityTool.h"
#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/RoughExtents.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

using KindCounts = std::map<std::wstring, std::size_t>;

/// What of model space the extents are made of, and what not.
struct Census {
  std::size_t entities = 0;
  std::size_t invisible = 0;
  std::size_t onHiddenLayers = 0;  // off, frozen or hidden
  KindCounts withoutExtents;       // among those that show
};

class ExtentsCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("extents", "Tell how far what a drawing shows reaches");
    m_options.declarePlans(*command);
    command->add_flag("--all", m_isAll, "Count invisible entities too");
    m_options.declarePicture(*command, "Make a picture with the frame");
    command->footer(
        "Model space counts, without what is on layers that are off, frozen or hidden, without\n"
        "invisible entities and without texts that have neither size nor letters.\n\n"
        "Examples:\n  quoin extents plan.dxf\n  quoin extents plan.dxf --all --picture frame.png");
    return command;
  }

  std::string name() const override { return "extents"; }
  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const Census census = take(drawing);
    AcDbExtents extents;
    bool isMeasured = false;
    Progress::during("Measuring", [&] {
      isMeasured = CEntityTool::GetEntExtents(&drawing.database(), extents, m_isAll);
    });
    if (!isMeasured) {
      throw CommandError(ExitCode::InputUnreadable, job.input + ": it has no model space");
    }
    if (job.hasPicture()) {
      job.render(pictureOf(drawing, extents), report);
    }
    tell(drawing, census, extents, report);
    warnOfRoughExtents(drawing, report);
    addJson(census, extents, report.json);
  }

 private:
  static Census take(Drawing& drawing) {
    std::set<std::wstring> hidden;
    for (const LayerContent& layer : drawing.layers()) {
      if (layer.isOff || layer.isFrozen) {
        hidden.insert(layer.name);
      }
    }
    Census census;
    drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
      ++census.entities;
      const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
      AcDbExtents extents;
      if (entity.openStatus() != Acad::eOk) {
        ++census.withoutExtents[hostx::kindName(id)];
      } else if (hidden.count(hostx::layerName(id)) != 0) {
        ++census.onHiddenLayers;
      } else if (entity->visibility() == AcDb::kInvisible) {
        ++census.invisible;
      } else if (entity->getGeomExtents(extents) != Acad::eOk) {
        ++census.withoutExtents[hostx::kindName(id)];
      }
    });
    return census;
  }

  static Picture pictureOf(Drawing& drawing, const AcDbExtents& extents) {
    Picture picture = newPicture(drawing, "extents", sizeText(drawing, extents));
    addPlanShapes(picture, drawing, {});
    if (!extents.isFresh()) {
      const AcGePoint3d& low = extents.minPoint();
      const AcGePoint3d& high = extents.maxPoint();
      Path frame;
      frame.points = {{low.x, low.y}, {high.x, low.y}, {high.x, high.y}, {low.x, high.y}};
      frame.isClosed = true;
      frame.color = palette::kMark;
      frame.width = kPieceWidth;
      frame.isDashed = true;
      picture.paths.push_back(frame);
    }
    picture.legend = {{"extents", palette::kMark, false, MarkShape::Dot, kPieceWidth}};
    return picture;
  }

  static std::string sizeText(const Drawing& drawing, const AcDbExtents& extents) {
    if (extents.isFresh()) {
      return "nothing shows";
    }
    const AcGeVector3d size = extents.maxPoint() - extents.minPoint();
    return fmt::format("{} x {} x {} {}", numberText(size.x), numberText(size.y),
                       numberText(size.z), drawing.unitName());
  }

  void tell(const Drawing& drawing, const Census& census, const AcDbExtents& extents,
            Report& report) const {
    report.line("{}", drawing.file().string());
    if (extents.isFresh()) {
      report.line("  nothing in model space shows: no extents");
    } else {
      const auto row = [&](const char* name, const AcGePoint3d& point) {
        report.line("  {:<8} {:>20} {:>20} {:>20}", name, numberText(point.x), numberText(point.y),
                    numberText(point.z));
      };
      report.line("  {:<8} {:>20} {:>20} {:>20}", "", "x", "y", "z");
      row("least", extents.minPoint());
      row("most", extents.maxPoint());
      const AcGeVector3d size = extents.maxPoint() - extents.minPoint();
      row("size", AcGePoint3d() + size);
    }
    report.line("  units    {}", drawing.unitName());
    report.line("  of {} in model space", countText(census.entities, "entity", "entities"));
    const auto line = [&](std::size_t count, const char* words) {
      if (count > 0) {
        report.line("    {} {}", count, words);
      }
    };
    line(census.onHiddenLayers, "left out: their layers are off or frozen");
    line(census.invisible,
         m_isAll ? "invisible, counted all the same" : "left out: invisible (--all counts them)");
    for (const auto& [kind, count] : census.withoutExtents) {
      report.line("    {} {} left out: no extents", count, os::toUtf8(kind));
    }
  }

  void addJson(const Census& census, const AcDbExtents& extents, nlohmann::json& report) const {
    report.update({{"all", m_isAll},
                   {"extents", boxJson(extents)},
                   {"entities", census.entities},
                   {"onHiddenLayers", census.onHiddenLayers},
                   {"invisible", census.invisible},
                   {"kindsWithoutExtents", kindsJson(census.withoutExtents)}});
  }

  bool m_isAll = false;
};

}  // namespace

std::unique_ptr<Command> makeExtentsCommand() {
  return std::make_unique<ExtentsCommand>();
}

}  // namespace quoin::commands
