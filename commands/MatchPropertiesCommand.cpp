// quoin match-properties: gives the entities of layers the properties of one entity, by way of
// a node of the project's model that the entity represents.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "ChangeEntityProperty.h"
#include "commands/ChosenEntities.h"
#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/LayerChoice.h"
#include "commands/ReportFields.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"
#include "embedded/product/HostApplication.h"

namespace quoin::commands {

namespace {

/// What is matched, in words.
struct Properties {
  std::string layer;
  int colorIndex = 0;
  int lineWeight = 0;
  std::string linetype;
  std::string material;

  std::string colorText() const {
    return colorIndex == AcCmEntityColor::kACIbyLayer   ? "by layer"
           : colorIndex == AcCmEntityColor::kACIbyBlock ? "by block"
                                                        : fmt::format("{}", colorIndex);
  }
  std::string lineWeightText() const {
    constexpr double kHundredths = 100.0;
    return lineWeight == AcDb::kLnWtByLayer   ? "by layer"
           : lineWeight == AcDb::kLnWtByBlock ? "by block"
           : lineWeight == AcDb::kLnWtByLwDefault
               ? "default"
               : fmt::format("{:.2f} mm", lineWeight / kHundredths);
  }
};

Properties propertiesOf(const AcDbEntity& entity) {
  return {os::toUtf8(takeText(entity.layer())), entity.colorIndex(), entity.lineWeight(),
          os::toUtf8(takeText(entity.linetype())), os::toUtf8(takeText(entity.material()))};
}

/// A node of the current project that an entity represents for as long as this lives.
class MappedNode {
 public:
  explicit MappedNode(const AcDbObjectId& entity)
      : m_node(HostApplication::current()->platform().projects().current()->addNode(kEntityNode)) {
    mappings().map(m_node, entity);
  }
  ~MappedNode() { mappings().map(m_node, AcDbObjectId::kNull); }
  MappedNode(const MappedNode&) = delete;
  MappedNode& operator=(const MappedNode&) = delete;

  IModelNode* node() { return &m_node; }

 private:
  static constexpr std::int32_t kEntityNode = 1;  // any type but that of the root
  static product::EntityMappings& mappings() {
    return HostApplication::current()->platform().entityMappings();
  }
  product::ModelNode& m_node;
};

class MatchPropertiesCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "match-properties",
        "Give every entity of layers the layer, colour, line weight, linetype and material of "
        "one entity");
    m_options.declareFiles(*command);
    m_options.declareLayers(*command,
                            "Layers whose entities change, * and ? allowed; may be repeated");
    command->get_option("--layer")->required();
    command->add_option("--from", m_handle, "The entity whose properties they get")
        ->type_name("HANDLE")
        ->required();
    command->footer(
        "Of a true colour the palette's nearest is taken. Vertices of polylines and attributes\n"
        "of block references change along. Entities on locked layers stay as they are.\n\n"
        "Example:\n"
        "  quoin match-properties plan.dxf --from 2F --layer 'A-NEW*' -o matched.dxf");
    return command;
  }

  std::string name() const override { return "match-properties"; }
  void prepare() override { parseHandle(); }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const AcDbObjectId source = findSource(drawing, parseHandle());
    const Properties properties = readSource(drawing, source);
    const std::set<std::wstring> layers = chooseLayers(drawing.layers(), m_options.layers, drawing);
    const ChosenEntities chosen = chooseEntities(drawing, layers, source);
    {
      MappedNode mapped(source);
      CChangeEntityProperty change(mapped.node());
      changeEach(drawing, chosen, [&](AcDbEntity& entity) { change(&entity); });
    }
    job.save(drawing);
    if (job.hasPicture()) {
      job.render(pictureOf(drawing, source, layers, chosen), report);
    }
    tell(drawing, source, properties, layers, chosen, report);
    if (report.isJson()) {
      addJson(drawing, source, properties, layers, chosen, report.json);
    }
  }

 private:
  AcDbHandle parseHandle() const {
    const AcDbHandle handle(os::fromUtf8(m_handle).c_str());
    if (handle.isNull()) {
      throw CommandError(ExitCode::Usage,
                         fmt::format("'{}' is no handle; handles are hexadecimal digits, "
                                     "as in the report of other commands",
                                     m_handle));
    }
    return handle;
  }

  AcDbObjectId findSource(Drawing& drawing, const AcDbHandle& handle) const {
    AcDbObjectId id;
    if (drawing.database().getAcDbObjectId(id, false, handle) != Acad::eOk || id.isErased()) {
      throw CommandError(ExitCode::NothingToDo, fmt::format("{}: nothing has the handle {}",
                                                            drawing.file().string(), m_handle));
    }
    return id;
  }

  static Properties readSource(const Drawing& drawing, const AcDbObjectId& source) {
    const AcDbObjectPointer<AcDbEntity> entity(source, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) {
      throw CommandError(
          ExitCode::NothingToDo,
          fmt::format("{} has no properties to match: it is no entity", describe(drawing, source)));
    }
    return propertiesOf(*entity.object());
  }

  static Picture pictureOf(Drawing& drawing, const AcDbObjectId& source,
                           const std::set<std::wstring>& layers, const ChosenEntities& chosen) {
    Picture picture =
        newPicture(drawing, "properties matched",
                   fmt::format("{} entities changed, as {}; from layers {}", chosen.entities.size(),
                               describe(drawing, source), namesText(layers)));
    std::set<AcDbObjectId> shown(chosen.entities.begin(), chosen.entities.end());
    shown.insert(source);
    addPlanShapes(picture, drawing, shown);
    addEntityShapes(picture, drawing, chosen.entities, palette::kFirst, kWallWidth);
    addEntityShapes(picture, drawing, {source}, palette::kMark, 2.0 * kPieceWidth);
    picture.legend = {{"the entity whose properties they got", palette::kMark, false,
                       MarkShape::Dot, 2.0 * kPieceWidth},
                      {"changed", palette::kFirst, false, MarkShape::Dot, kWallWidth},
                      {"rest of the plan", palette::kPlan, false, MarkShape::Dot, 2.0}};
    return picture;
  }

  /// What the drawing's release has no place for; empty if it has all.
  static std::string leftOut(Drawing& drawing) {
    const AcDb::AcDbDwgVersion version = drawing.database().originalFileVersion();
    return version < AcDb::kDHL_1015   ? "line weights or materials"
           : version < AcDb::kDHL_1021 ? "materials"
                                       : "";
  }

  static void tell(Drawing& drawing, const AcDbObjectId& source, const Properties& properties,
                   const std::set<std::wstring>& layers, const ChosenEntities& chosen,
                   Report& report) {
    report.line("from {}:", describe(drawing, source));
    report.line("  layer        {}", properties.layer);
    report.line("  colour       {}", properties.colorText());
    report.line("  line weight  {}", properties.lineWeightText());
    report.line("  linetype     {}", properties.linetype);
    report.line("  material     {}", properties.material);
    report.line("layers: {}", namesText(layers));
    report.line("{} changed{}{}", countText(chosen.entities.size(), "entity", "entities"),
                chosen.entities.empty() ? "" : ": ", kindsText(chosen.countOfKind));
    if (const std::string lacking = leftOut(drawing); !lacking.empty()) {
      report.line("{} knows no {}", os::toUtf8(drawing.info().release), lacking);
    }
    if (chosen.onLockedLayers > 0) {
      report.line("not changed, on locked layers: {}",
                  countText(chosen.onLockedLayers, "entity", "entities"));
    }
  }

  static void addJson(const Drawing& drawing, const AcDbObjectId& source,
                      const Properties& properties, const std::set<std::wstring>& layers,
                      const ChosenEntities& chosen, nlohmann::json& report) {
    report.update({{"from", sourceJson(drawing, source)},
                   {"properties",
                    {{"layer", properties.layer},
                     {"colorIndex", properties.colorIndex},
                     {"lineWeight", properties.lineWeight},
                     {"linetype", properties.linetype},
                     {"material", properties.material}}},
                   {"layers", namesJson(layers)},
                   {"changed", chosen.entities.size()},
                   {"kinds", kindsJson(chosen.countOfKind)},
                   {"heldByLockedLayers", chosen.onLockedLayers},
                   {"changes", changesJson(drawing, chosen.entities)}});
  }

  std::string m_handle;
};

}  // namespace

std::unique_ptr<Command> makeMatchPropertiesCommand() {
  return std::make_unique<MatchPropertiesCommand>();
}

}  // namespace quoin::commands
