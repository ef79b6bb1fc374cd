// quoin info: what a drawing is and what is in it.
#include <fmt/format.h>

#include "commands/Command.h"
#include "commands/CommonOptions.h"
#include "commands/WallWords.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

using KindCounts = std::map<std::wstring, std::size_t>;

struct DrawingInfo {
  std::vector<LayerContent> layers;
  AcDbExtents extents;
  std::size_t entities = 0;
  KindCounts withoutExtents;  // they show nothing, or the host cannot tell how far they reach
  KindCounts fixed;           // the host cannot move, turn or scale them
};

class InfoCommand : public Command {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("info", "Tell what a drawing is and what is in its model space");
    command->add_option("PLAN", m_plan, "The drawing to read (DXF, ASCII or binary)")->required();
    command->add_option("--report", m_report, "text or json")
        ->check(CLI::IsMember({"text", "json"}))
        ->capture_default_str();
    command->footer("Examples:\n  quoin info plan.dxf\n  quoin info plan.dxf --report json");
    return command;
  }

  void run() override {
    Drawing drawing(m_plan);
    const DrawingInfo info = look(drawing);
    m_report == "json" ? printJson(jsonReport(drawing, info)) : printText(drawing, info);
  }

 private:
  static DrawingInfo look(Drawing& drawing) {
    DrawingInfo info;
    info.layers = drawing.layers();
    drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
      ++info.entities;
      if (!hostx::canTransform(id)) {
        ++info.fixed[hostx::kindName(id)];
      }
      AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
      AcDbExtents extents;
      if (entity.openStatus() == Acad::eOk && entity->getGeomExtents(extents) == Acad::eOk) {
        info.extents.addExt(extents);
      } else {
        ++info.withoutExtents[hostx::kindName(id)];
      }
    });
    return info;
  }

  static std::string stateOf(const LayerContent& layer) {
    std::string state;
    const auto add = [&](bool isSo, const char* word) {
      if (isSo) {
        state += (state.empty() ? " (" : ", ") + std::string(word);
      }
    };
    add(layer.isOff, "off");
    add(layer.isFrozen, "frozen");
    add(layer.isLocked, "locked");
    return state.empty() ? state : state + ")";
  }

  /// "3 ARC, 12 LINE".
  static std::string kindsText(const KindCounts& counts) {
    std::string text;
    for (const auto& [kind, count] : counts) {
      text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, os::toUtf8(kind));
    }
    return text;
  }

  static nlohmann::json kindsJson(const KindCounts& counts) {
    nlohmann::json kinds = nlohmann::json::object();
    for (const auto& [kind, count] : counts) {
      kinds[os::toUtf8(kind)] = count;
    }
    return kinds;
  }

  static void printText(Drawing& drawing, const DrawingInfo& info) {
    const hostx::FileInfo& file = drawing.info();
    fmt::print("{}\n", drawing.file().string());
    fmt::print("  format     {} {} ({}), {}, {} bytes\n", os::toUtf8(file.format),
               os::toUtf8(file.release), os::toUtf8(file.acadVersion),
               file.isBinary ? "binary" : "ASCII", file.fileBytes);
    fmt::print("  code page  {}\n", file.isTextUtf8 ? "UTF-8" : os::toUtf8(file.codePage));
    fmt::print("  units      {}\n", os::toUtf8(hostx::unitsName(file.units)));
    fmt::print("  records    {}, {} entities in model space\n", file.recordCount, info.entities);
    if (!info.extents.isFresh()) {
      const AcGePoint3d& low = info.extents.minPoint();
      const AcGePoint3d& high = info.extents.maxPoint();
      fmt::print("  extents    {:g},{:g},{:g} to {:g},{:g},{:g}\n", low.x, low.y, low.z, high.x,
                 high.y, high.z);
    }
    if (!info.withoutExtents.empty()) {
      fmt::print("             left out, they have none: {}\n", kindsText(info.withoutExtents));
    }
    fmt::print("  layers with something in model space:\n");
    std::size_t emptyCount = 0;
    for (const LayerContent& layer : info.layers) {
      if (layer.count() == 0) {
        ++emptyCount;
        continue;
      }
      fmt::print("    {}{}{}: {}\n", os::toUtf8(layer.name), stateOf(layer),
                 looksLikeWalls(layer.name) ? " [walls]" : "", kindsText(layer.countOfKind));
    }
    fmt::print("    and {} with nothing on them\n", emptyCount);
    if (!info.fixed.empty()) {
      fmt::print("  kept as they are, not to be moved or scaled: {}\n", kindsText(info.fixed));
    }
    for (const std::wstring& warning : hostx::warnings(&drawing.database())) {
      fmt::print("  warning: {}\n", os::toUtf8(warning));
    }
  }

  static nlohmann::json jsonReport(Drawing& drawing, const DrawingInfo& info) {
    const hostx::FileInfo& file = drawing.info();
    nlohmann::json report = {{"command", "info"},
                             {"input", fileJson(drawing)},
                             {"acadVersion", os::toUtf8(file.acadVersion)},
                             {"codePage", os::toUtf8(file.codePage)},
                             {"bytes", file.fileBytes},
                             {"records", file.recordCount},
                             {"entities", info.entities},
                             {"extents", nullptr},
                             {"kindsWithoutExtents", kindsJson(info.withoutExtents)},
                             {"kindsWithoutTransform", kindsJson(info.fixed)},
                             {"layers", nlohmann::json::array()},
                             {"warnings", nlohmann::json::array()}};
    if (!info.extents.isFresh()) {
      report["extents"] = {pointJson(info.extents.minPoint()), pointJson(info.extents.maxPoint())};
    }
    for (const LayerContent& layer : info.layers) {
      report["layers"].push_back({{"name", os::toUtf8(layer.name)},
                                  {"off", layer.isOff},
                                  {"frozen", layer.isFrozen},
                                  {"locked", layer.isLocked},
                                  {"kinds", kindsJson(layer.countOfKind)}});
    }
    for (const std::wstring& warning : hostx::warnings(&drawing.database())) {
      report["warnings"].push_back(os::toUtf8(warning));
    }
    return report;
  }

  std::string m_plan;
  std::string m_report = "text";
};

}  // namespace

std::unique_ptr<Command> makeInfoCommand() {
  return std::make_unique<InfoCommand>();
}

}  // namespace quoin::commands
