// quoin match-properties: gives the entities of layers the properties of one entity, by way of
// a node of the project's model that the entity represents.
#include <fmt/format.h>

#include "ChangeEntityProperty.h"
#include "commands/ChosenEntities.h"
#include "commands/Command.h"
#include "commands/CommandError.h"
#include "commands/CommonOptions.h"
#include "commands/LayerChoice.h"
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

class MatchPropertiesCommand : public Command {
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

  void run() override {
    m_options.checkFiles();
    const AcDbHandle handle = parseHandle();
    Drawing drawing(m_options.plan);
    const AcDbObjectId source = findSource(drawing, handle);
    const Properties properties = readSource(drawing, source);
    const std::set<std::wstring> layers = chooseLayers(drawing.layers(), m_options.layers, drawing);
    const ChosenEntities chosen = chooseEntities(drawing, layers, source);
    {
      MappedNode mapped(source);
      CChangeEntityProperty change(mapped.node());
      changeEach(drawing, chosen, [&](AcDbEntity& entity) { change(&entity); });
    }
    m_options.save(drawing);
    if (!m_options.picture.empty()) {
      m_options.render(pictureOf(drawing, source, layers, chosen));
    }
    m_options.isJson() ? printJson(jsonReport(drawing, source, properties, layers, chosen))
                       : printText(drawing, source, properties, layers, chosen);
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

  void printText(Drawing& drawing, const AcDbObjectId& source, const Properties& properties,
                 const std::set<std::wstring>& layers, const ChosenEntities& chosen) const {
    fmt::print("from {}:\n", describe(drawing, source));
    fmt::print("  layer        {}\n", properties.layer);
    fmt::print("  colour       {}\n", properties.colorText());
    fmt::print("  line weight  {}\n", properties.lineWeightText());
    fmt::print("  linetype     {}\n", properties.linetype);
    fmt::print("  material     {}\n", properties.material);
    fmt::print("layers: {}\n", namesText(layers));
    fmt::print("{} entities changed{}{}\n", chosen.entities.size(),
               chosen.entities.empty() ? "" : ": ", kindsText(chosen));
    if (const std::string lacking = leftOut(drawing); !lacking.empty()) {
      fmt::print("{} knows no {}\n", os::toUtf8(drawing.info().release), lacking);
    }
    if (chosen.onLockedLayers > 0) {
      fmt::print("{} entities on locked layers were not changed\n", chosen.onLockedLayers);
    }
    m_options.printOutcome();
  }

  nlohmann::json jsonReport(const Drawing& drawing, const AcDbObjectId& source,
                            const Properties& properties, const std::set<std::wstring>& layers,
                            const ChosenEntities& chosen) const {
    nlohmann::json report = {{"command", "match-properties"},
                             {"input", fileJson(drawing)},
                             {"from", handleText(source)},
                             {"properties",
                              {{"layer", properties.layer},
                               {"colorIndex", properties.colorIndex},
                               {"lineWeight", properties.lineWeight},
                               {"linetype", properties.linetype},
                               {"material", properties.material}}},
                             {"layers", namesJson(layers)},
                             {"changed", chosen.entities.size()},
                             {"kinds", kindsJson(chosen)},
                             {"heldByLockedLayers", chosen.onLockedLayers}};
    m_options.addOutcome(report);
    return report;
  }

  CommonOptions m_options;
  std::string m_handle;
};

}  // namespace

std::unique_ptr<Command> makeMatchPropertiesCommand() {
  return std::make_unique<MatchPropertiesCommand>();
}

}  // namespace quoin::commands
