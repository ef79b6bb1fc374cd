// quoin info: what a drawing is and what is in it.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "commands/DrawingCommand.h"
#include "commands/ReportFields.h"
#include "commands/RoughExtents.h"
#include "commands/UnreadRecords.h"
#include "commands/WallWords.h"
#include "commands/Words.h"
#include "dbobjptr.h"
#include "embedded/db/core/DrawingStream.h"
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

class InfoCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("info", "Tell what a drawing is and what is in its model space");
    m_options.declarePlans(*command);
    command->footer("Examples:\n  quoin info plan.dxf\n  quoin info plan.dxf --report json");
    return command;
  }

  std::string name() const override { return "info"; }
  void work(Drawing& drawing, const DrawingJob& /*job*/, Report& report) override {
    const DrawingInfo info = look(drawing);
    tell(drawing, info, report);
    warnOfRoughExtents(drawing, report);
    addJson(drawing, info, report.json);
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

  static void tell(Drawing& drawing, const DrawingInfo& info, Report& report) {
    const hostx::FileInfo& file = drawing.info();
    report.line("{}", drawing.file().string());
    report.line("  format     {} {} ({}){}, {} bytes", os::toUtf8(file.format),
                os::toUtf8(file.release), os::toUtf8(file.acadVersion),
                isDxf(file) ? (file.isBinary ? ", binary" : ", ASCII") : "", file.fileBytes);
    if (const std::string application = savedBy(drawing.database()); !application.empty()) {
      report.line("  saved by   {}", application);
    }
    if (const std::string why = whyReadOnly(drawing.database()); !why.empty()) {
      report.line("  read only  {}", why);
    }
    report.line("  code page  {}", file.isTextUtf8 ? "UTF-8" : os::toUtf8(file.codePage));
    report.line("  units      {}", os::toUtf8(hostx::unitsName(file.units)));
    report.line("  records    {}, {} in model space", file.recordCount,
                countText(info.entities, "entity", "entities"));
    if (!info.extents.isFresh()) {
      const AcGePoint3d& low = info.extents.minPoint();
      const AcGePoint3d& high = info.extents.maxPoint();
      report.line("  extents    {},{} to {},{}", pointText(low), numberText(low.z), pointText(high),
                  numberText(high.z));
    }
    if (!info.withoutExtents.empty()) {
      report.line("             left out, they have none: {}", kindsText(info.withoutExtents));
    }
    report.line("  layers with something in model space:");
    std::size_t emptyCount = 0;
    for (const LayerContent& layer : info.layers) {
      if (layer.count() == 0) {
        ++emptyCount;
        continue;
      }
      report.line("    {}{}{}: {}", os::toUtf8(layer.name), stateOf(layer),
                  looksLikeWalls(layer.name) ? " [walls]" : "", kindsText(layer.countOfKind));
    }
    report.line("    and {} with nothing on them", emptyCount);
    if (!info.fixed.empty()) {
      report.line("  kept as they are, not to be moved or scaled: {}", kindsText(info.fixed));
    }
    if (const auto unread = unreadKinds(drawing.database()); !unread.empty()) {
      report.line("  closed, kept and neither shown nor edited: {}", unreadText(unread));
    }
    if (const auto partly = partlyReadKinds(drawing.database()); !partly.empty()) {
      report.line("  read in part, kept as a whole: {}", unreadText(partly));
    }
  }

  static bool isDxf(const hostx::FileInfo& file) { return file.format == L"DXF"; }

  static void addJson(Drawing& drawing, const DrawingInfo& info, nlohmann::json& report) {
    const hostx::FileInfo& file = drawing.info();
    report.update({{"format", os::toUtf8(file.format)},
                   {"savedBy", savedBy(drawing.database())},
                   {"readOnly", whyReadOnly(drawing.database())},
                   {"closed", unreadJson(unreadKinds(drawing.database()))},
                   {"readInPart", unreadJson(partlyReadKinds(drawing.database()))},
                   {"acadVersion", os::toUtf8(file.acadVersion)},
                   {"codePage", os::toUtf8(file.codePage)},
                   {"bytes", file.fileBytes},
                   {"records", file.recordCount},
                   {"entities", info.entities},
                   {"extents", boxJson(info.extents)},
                   {"kindsWithoutExtents", kindsJson(info.withoutExtents)},
                   {"kindsWithoutTransform", kindsJson(info.fixed)},
                   {"layers", nlohmann::json::array()}});
    for (const LayerContent& layer : info.layers) {
      report["layers"].push_back({{"name", os::toUtf8(layer.name)},
                                  {"off", layer.isOff},
                                  {"frozen", layer.isFrozen},
                                  {"locked", layer.isLocked},
                                  {"kinds", kindsJson(layer.countOfKind)}});
    }
  }
};

}  // namespace

std::unique_ptr<Command> makeInfoCommand() {
  return std::make_unique<InfoCommand>();
}

}  // namespace quoin::commands
