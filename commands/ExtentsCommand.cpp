// quoin extents: how far what a drawing shows reaches.
#include <fmt/format.h>

#include "EntityTool.h"
#include "commands/Command.h"
#include "commands/CommandError.h"
#include "commands/CommonOptions.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "commands/picture/Render.h"
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

class ExtentsCommand : public Command {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("extents", "Tell how far what a drawing shows reaches");
    command->add_option("PLAN", m_plan, "The drawing to read (DXF, ASCII or binary)")->required();
    command->add_flag("--all", m_isAll, "Count invisible entities too");
    command->add_option("--picture", m_picture, "Make a picture with the frame (.png, .svg, .pdf)");
    command->add_option("--report", m_report, "text or json")
        ->check(CLI::IsMember({"text", "json"}))
        ->capture_default_str();
    command->footer(
        "Model space counts, without what is on layers that are off, frozen or hidden, without\n"
        "invisible entities and without texts that have neither size nor letters.\n\n"
        "Examples:\n  quoin extents plan.dxf\n  quoin extents plan.dxf --all --picture frame.png");
    return command;
  }

  void run() override {
    if (!m_picture.empty() && !isPictureFile(m_picture)) {
      throw CommandError(ExitCode::Usage, m_picture + ": pictures end in .png, .svg or .pdf");
    }
    Drawing drawing(m_plan);
    const Census census = take(drawing);
    AcDbExtents extents;
    if (!CEntityTool::GetEntExtents(&drawing.database(), extents, m_isAll)) {
      throw CommandError(ExitCode::InputUnreadable, m_plan + ": it has no model space");
    }
    if (!m_picture.empty()) {
      renderPicture(pictureOf(drawing, extents), m_picture);
    }
    m_report == "json" ? printJson(jsonReport(drawing, census, extents))
                       : printText(drawing, census, extents);
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
    return fmt::format("{:.10g} x {:.10g} x {:.10g} {}", size.x, size.y, size.z,
                       drawing.unitName());
  }

  void printText(const Drawing& drawing, const Census& census, const AcDbExtents& extents) const {
    fmt::print("{}\n", drawing.file().string());
    if (extents.isFresh()) {
      fmt::print("  nothing in model space shows: no extents\n");
    } else {
      const auto row = [](const char* name, const AcGePoint3d& point) {
        fmt::print("  {:<8} {:>16.10g} {:>16.10g} {:>16.10g}\n", name, point.x, point.y, point.z);
      };
      fmt::print("  {:<8} {:>16} {:>16} {:>16}\n", "", "x", "y", "z");
      row("least", extents.minPoint());
      row("most", extents.maxPoint());
      const AcGeVector3d size = extents.maxPoint() - extents.minPoint();
      row("size", AcGePoint3d() + size);
    }
    fmt::print("  units    {}\n", drawing.unitName());
    fmt::print("  of {} entities in model space\n", census.entities);
    const auto line = [](std::size_t count, const char* words) {
      if (count > 0) {
        fmt::print("    {} {}\n", count, words);
      }
    };
    line(census.onHiddenLayers, "left out: their layers are off or frozen");
    line(census.invisible,
         m_isAll ? "invisible, counted all the same" : "left out: invisible (--all counts them)");
    for (const auto& [kind, count] : census.withoutExtents) {
      fmt::print("    {} {} left out: no extents\n", count, os::toUtf8(kind));
    }
  }

  nlohmann::json jsonReport(const Drawing& drawing, const Census& census,
                            const AcDbExtents& extents) const {
    nlohmann::json report = {
        {"command", "extents"},
        {"input", fileJson(drawing)},
        {"all", m_isAll},
        {"extents", nullptr},
        {"entities", census.entities},
        {"onHiddenLayers", census.onHiddenLayers},
        {"invisible", census.invisible},
        {"kindsWithoutExtents", nlohmann::json::object()},
        {"picture", m_picture.empty() ? nlohmann::json() : nlohmann::json(m_picture)}};
    if (!extents.isFresh()) {
      report["extents"] = {pointJson(extents.minPoint()), pointJson(extents.maxPoint())};
    }
    for (const auto& [kind, count] : census.withoutExtents) {
      report["kindsWithoutExtents"][os::toUtf8(kind)] = count;
    }
    return report;
  }

  std::string m_plan;
  bool m_isAll = false;
  std::string m_picture;
  std::string m_report = "text";
};

}  // namespace

std::unique_ptr<Command> makeExtentsCommand() {
  return std::make_unique<ExtentsCommand>();
}

}  // namespace quoin::commands
