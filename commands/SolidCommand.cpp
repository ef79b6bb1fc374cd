// quoin solid: builds walls given by reference lines and widths as closed bodies, with their
// openings cut out, and floor slabs.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <optional>

#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/FloorSlabs.h"
#include "commands/LayerChoice.h"
#include "commands/LeftOut.h"
#include "commands/OpeningLayers.h"
#include "commands/PlannedWalls.h"
#include "commands/ReferenceWalls.h"
#include "commands/ReportFields.h"
#include "commands/SolidPicture.h"
#include "commands/Units.h"
#include "commands/Usage.h"
#include "commands/WallBodies.h"
#include "commands/WallCuts.h"
#include "commands/WallModel.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// What one drawing's model is made of.
struct SolidParts {
  ReferenceWalls reference;
  std::vector<PrepareFrom2dTo3dData> ends;
  std::set<std::wstring> openingLayers;
  FoundOpenings openings;
  WallCuts cuts;
  std::set<std::wstring> slabLayers;
  FloorSlabs slabs;  // their bodies are in the model
  Model model;

  std::size_t leftOutOpenings() const { return openings.skipped.size() + cuts.leftOut.size(); }
  template <class Condition>
  std::size_t countCuts(Condition isCounted) const {
    return static_cast<std::size_t>(std::count_if(cuts.cuts.begin(), cuts.cuts.end(), isCounted));
  }
  std::size_t shortened() const {
    return countCuts([](const WallCut& cut) { return cut.isShortened; });
  }
  std::size_t lowered() const {
    return countCuts([](const WallCut& cut) { return cut.isLowered; });
  }
};

class SolidCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "solid",
        "Build walls given by reference lines and widths as closed bodies (DXF, OBJ or glTF)");
    m_options.declarePlans(*command);
    m_options
        .declareOutput(*command,
                       "The model to write: .obj (Wavefront, a group a wall, its materials beside "
                       "it in .mtl), .glb (binary glTF, a mesh a layer) or .dxf (3DFACE entities, "
                       "a layer a wall layer); of several drawings: a folder, or a name with "
                       "{name} in it")
        ->required();
    m_options.resultEnding = ".obj";
    command->add_option("--height", m_height, "Height of the walls, drawing units")->required();
    m_options.declarePicture(*command, "Make a picture of the bodies, seen from above at an angle");
    declareReferenceWalls(*command, m_options, m_widths);
    declareOpenings(*command);
    declareSlabs(*command);
    command
        ->add_option("--model-units", m_modelUnits,
                     "Units of the model: m, mm or drawing (default: m for .glb, else drawing)")
        ->check(oneOf({"m", "mm", "drawing"}));
    command
        ->add_option("--up", m_up,
                     "Which way is up in the model: y or z (default: y for .glb, else z)")
        ->check(oneOf({"y", "z"}));
    command->footer(
        "Walls stand on their reference lines' height. Bodies are closed, with holes too; those "
        "of\n"
        "walls that meet share the faces' middle points. An opening is a LINE along a reference\n"
        "line from jamb to jamb; extended data under QUOIN says its kind (door, window, opening)\n"
        "and the heights of sill and head. One without heights is cut by its kind: windows from\n"
        "--sill to --head, doors and plain openings from the floor to --door-head.\n\n"
        "Examples:\n"
        "  quoin solid axes.dxf --layer WALL-AXIS --left 120 --right 120 --height 2800 \\\n"
        "        -o model.obj --picture model.png\n"
        "  quoin solid found.dxf --layer QUOIN-WALL --height 2800 --slab-layer QUOIN-ROOM \\\n"
        "        -o model.glb");
    return command;
  }

  std::string name() const override { return "solid"; }
  void prepare() override {
    if (!(m_height > 0.0) || !std::isfinite(m_height)) {
      throw CommandError(ExitCode::Usage, fmt::format("--height {} builds no wall", m_height));
    }
    if (!(m_slab.value_or(1.0) > 0.0) || !std::isfinite(m_slab.value_or(1.0))) {
      throw CommandError(ExitCode::Usage, fmt::format("--slab {} builds no slab", *m_slab));
    }
    for (const auto& [option, height] : {std::pair("--sill", m_sill), std::pair("--head", m_head),
                                         std::pair("--door-head", m_doorHead)}) {
      if (height && (!(*height >= 0.0) || !std::isfinite(*height))) {
        throw CommandError(ExitCode::Usage,
                           fmt::format("{} {} is no height above the floor", option, *height));
      }
    }
    for (const DrawingJob& job : m_options.drawingJobs()) {
      if (!isModelFile(job.output)) {
        throw CommandError(ExitCode::Usage, job.output + ": models end in .dxf, .obj or .glb");
      }
    }
  }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const SolidParts parts = build(drawing);
    writeModel(parts.model, formFor(drawing, job.output), job.output);
    if (job.hasPicture()) {
      job.render(paint(drawing, parts), report);
    }
    tell(drawing, job, parts, report);
    tellReferenceWalls(drawing, m_options, parts.reference, report);
    if (report.isJson()) {
      addJson(drawing, job, parts, report.json);
    }
  }

 private:
  void declareOpenings(CLI::App& command) {
    m_openings.declare(command, "Cut nothing out");
    command.add_option("--sill", m_sill,
                       "Lower edge of windows that do not say theirs, above the floor, drawing "
                       "units (default: 900 mm)");
    command.add_option("--head", m_head, "Upper edge of such windows (default: 2100 mm)");
    command.add_option("--door-head", m_doorHead,
                       "Upper edge of doors and plain openings that do not say theirs (default: "
                       "2100 mm)");
  }

  void declareSlabs(CLI::App& command) {
    CLI::Option* const layers =
        addRepeated(command, "--slab-layer", m_slabLayers,
                    "Layers whose closed polylines become floor slabs below them, * and ? allowed; "
                    "may be repeated",
                    "GLOB");
    command.add_option("--slab", m_slab, "Thickness of the slabs, drawing units (default: 200 mm)")
        ->needs(layers);
  }

  SolidParts build(Drawing& drawing) const {
    SolidParts parts;
    const double unit = 1.0 / drawing.millimetersPerUnit();
    parts.openingLayers = m_openings.in(drawing);
    if (!m_slabLayers.empty()) {
      parts.slabLayers = chooseLayers(drawing.layers(), m_slabLayers, drawing);
    }
    parts.reference = collectReferenceWalls(drawing, m_options, m_widths, parts.openingLayers);
    const std::vector<BodyWall>& walls = parts.reference.walls;
    const double capture = parts.reference.capture.distance;
    parts.ends = prepareWalls(walls, capture);
    parts.model.walls.reserve(walls.size());
    for (std::size_t i = 0; i < walls.size(); ++i) {
      parts.model.walls.push_back(makePrism(walls[i], parts.ends[i], m_height));
    }
    if (!parts.openingLayers.empty()) {
      parts.openings = collectOpenings(drawing, parts.openingLayers, planWalls(walls), capture);
      parts.cuts =
          cutOpenings(parts.model.walls, parts.openings,
                      {m_sill.value_or(kWindowSill * unit), m_head.value_or(kOpeningHead * unit),
                       m_doorHead.value_or(kOpeningHead * unit)},
                      capture);
    }
    if (!parts.slabLayers.empty()) {
      parts.slabs = collectSlabs(drawing, parts.slabLayers, m_slab.value_or(kSlabThickness * unit));
      parts.model.slabs = std::move(parts.slabs.slabs);
    }
    parts.model.materials = materialsOf(drawing, parts.model);
    return parts;
  }

  std::string unitsFor(const std::string& file) const {
    return !m_modelUnits.empty() ? m_modelUnits : isGltfFile(file) ? "m" : "drawing";
  }
  std::string upFor(const std::string& file) const {
    return !m_up.empty() ? m_up : isGltfFile(file) ? "y" : "z";
  }

  ModelForm formFor(const Drawing& drawing, const std::string& file) const {
    ModelForm form;
    const std::string units = unitsFor(file);
    if (units == "m") {
      form.scale = drawing.millimetersPerUnit() / kMillimetersPerMeter;
      form.units = AcDb::kUnitsMeters;
    } else if (units == "mm") {
      form.scale = drawing.millimetersPerUnit();
      form.units = AcDb::kUnitsMillimeters;
    }
    form.isYUp = upFor(file) == "y";
    return form;
  }

  static std::size_t freeEnds(const std::vector<PrepareFrom2dTo3dData>& ends) {
    std::size_t count = 0;
    for (const PrepareFrom2dTo3dData& end : ends) {
      count += (end.bHasStartWall ? 1U : 0U) + (end.bHasEndWall ? 1U : 0U);
    }
    return count;
  }

  Picture paint(const Drawing& drawing, const SolidParts& parts) const {
    std::string subtitle =
        fmt::format("{}, {} {} high", countText(parts.model.walls.size(), "closed prism"),
                    numberText(m_height), drawing.unitName());
    if (!parts.cuts.cuts.empty()) {
      subtitle += fmt::format(", {} cut out", countText(parts.cuts.cuts.size(), "opening"));
    }
    if (!parts.model.slabs.empty()) {
      subtitle += ", " + countText(parts.model.slabs.size(), "floor slab");
    }
    Picture picture = newPicture(drawing, "walls as bodies", subtitle);
    addBodies(picture, parts.model);
    return picture;
  }

  void tell(const Drawing& drawing, const DrawingJob& job, const SolidParts& parts,
            Report& report) const {
    const std::vector<PrepareFrom2dTo3dData>& ends = parts.ends;
    report.line("ends closer than {} meet", captureText(parts.reference.capture, drawing));
    report.line("{} as closed prisms {} {} high; {}, {} joined",
                countText(parts.model.walls.size(), "wall"), numberText(m_height),
                drawing.unitName(), countText(freeEnds(ends), "free end"),
                2 * ends.size() - freeEnds(ends));
    tellOpenings(drawing, parts, report);
    tellSlabs(drawing, parts, report);
    const ModelForm form = formFor(drawing, job.output);
    if (form.units || form.isYUp) {
      report.line("the model is in {}, {} upwards",
                  form.units ? unitsFor(job.output) : drawing.unitName(), upFor(job.output));
    }
    if (hasMaterialFile(job.output)) {
      report.line("materials: {}", materialFileOf(job.output).string());
    }
  }

  static void tellOpenings(const Drawing& drawing, const SolidParts& parts, Report& report) {
    if (parts.openingLayers.empty()) {
      return;
    }
    std::string text = fmt::format("{} of {} cut out", countText(parts.cuts.cuts.size(), "opening"),
                                   namesText(parts.openingLayers));
    const auto add = [&](std::size_t count, const char* what) {
      text += count > 0 ? fmt::format(", {} {}", count, what) : "";
    };
    add(parts.shortened(), "shortened at joints");
    add(parts.lowered(), "kept within the wall's height");
    add(parts.leftOutOpenings(), "left out");
    report.line("{}", text);
    tellLeftOutOf(drawing, parts.openings.skipped, report);
    tellLeftOutOf(drawing, parts.cuts.leftOut, report);
    report.details(parts.cuts.cuts.size(), [&](std::size_t i) {
      const WallCut& cut = parts.cuts.cuts[i];
      const plan::Opening& opening = parts.openings.openings[cut.opening];
      return fmt::format("{}: {} {} wide, from {} to {} high", parts.model.walls[opening.wall].name,
                         plan::nameOf(opening.kind), numberText(cut.hole.to - cut.hole.from),
                         numberText(cut.hole.sill), numberText(cut.hole.head));
    });
  }

  void tellSlabs(const Drawing& drawing, const SolidParts& parts, Report& report) const {
    if (parts.slabLayers.empty()) {
      return;
    }
    report.line("{} {} {} thick below {}", countText(parts.model.slabs.size(), "floor slab"),
                numberText(m_slab.value_or(kSlabThickness / drawing.millimetersPerUnit())),
                drawing.unitName(), namesText(parts.slabLayers));
    if (!parts.slabs.countOfKind.empty()) {
      report.line("no slab of other kinds there: {}", kindsText(parts.slabs.countOfKind));
    }
    tellLeftOutOf(drawing, parts.slabs.leftOut, report);
  }

  void addJson(const Drawing& drawing, const DrawingJob& job, const SolidParts& parts,
               nlohmann::json& report) const {
    std::vector<nlohmann::json> results;
    results.reserve(parts.ends.size());
    for (const PrepareFrom2dTo3dData& end : parts.ends) {
      results.push_back(
          {{"freeStart", end.bHasStartWall},
           {"freeEnd", end.bHasEndWall},
           {"start",
            {pointJson(end.ptStartLeft), pointJson(end.ptStartMid), pointJson(end.ptStartRight)}},
           {"end",
            {pointJson(end.ptEndLeft), pointJson(end.ptEndMid), pointJson(end.ptEndRight)}}});
    }
    report["height"] = m_height;
    addReferenceWalls(drawing, parts.reference, results, report);
    addOpenings(drawing, parts, report);
    addSlabs(drawing, parts, report);
    report["model"] = {{"units", unitsFor(job.output)},
                       {"up", upFor(job.output)},
                       {"materials", hasMaterialFile(job.output)
                                         ? nlohmann::json(materialFileOf(job.output).string())
                                         : nlohmann::json()}};
  }

  static void addOpenings(const Drawing& drawing, const SolidParts& parts, nlohmann::json& report) {
    const std::vector<BodyWall>& walls = parts.reference.walls;
    const plan::WallPlan plan{planWalls(walls), {}};
    nlohmann::json openings = nlohmann::json::array();
    for (const WallCut& cut : parts.cuts.cuts) {
      plan::Opening opening = parts.openings.openings[cut.opening];
      opening.from = cut.hole.from;
      opening.to = cut.hole.to;
      const double foot = walls[opening.wall].line.start.z;
      const AcGePoint2d start = plan.startOf(opening);
      const AcGePoint2d end = plan.endOf(opening);
      nlohmann::json json = sourceJson(drawing, parts.openings.entities[cut.opening]);
      json.update({{"opening", plan::nameOf(opening.kind)},
                   {"wall", opening.wall},
                   {"start", pointJson({start.x, start.y, foot})},
                   {"end", pointJson({end.x, end.y, foot})},
                   {"width", opening.width()},
                   {"sill", cut.hole.sill},
                   {"head", cut.hole.head},
                   {"shortened", cut.isShortened},
                   {"lowered", cut.isLowered}});
      openings.push_back(std::move(json));
    }
    std::vector<SkippedEntity> leftOut = parts.openings.skipped;
    leftOut.insert(leftOut.end(), parts.cuts.leftOut.begin(), parts.cuts.leftOut.end());
    report.update({{"openingLayers", namesJson(parts.openingLayers)},
                   {"openings", std::move(openings)},
                   {"openingCounts",
                    {{"cut", parts.cuts.cuts.size()},
                     {"shortened", parts.shortened()},
                     {"lowered", parts.lowered()},
                     {"leftOut", parts.leftOutOpenings()}}},
                   {"openingsLeftOut", skippedJson(drawing, leftOut)}});
  }

  static void addSlabs(const Drawing& drawing, const SolidParts& parts, nlohmann::json& report) {
    nlohmann::json slabs = nlohmann::json::array();
    for (const FloorSlab& slab : parts.model.slabs) {
      slabs.push_back(sourceJson(drawing, slab.source));
      slabs.back()["area"] = slab.area();
      slabs.back()["thickness"] = slab.thickness;
    }
    report.update({{"slabLayers", namesJson(parts.slabLayers)},
                   {"slabs", std::move(slabs)},
                   {"slabsLeftOut", skippedJson(drawing, parts.slabs.leftOut)}});
  }

  WidthOptions m_widths;
  double m_height = 0.0;
  OpeningLayers m_openings;
  std::optional<double> m_sill;
  std::optional<double> m_head;
  std::optional<double> m_doorHead;
  std::vector<std::string> m_slabLayers;
  std::optional<double> m_slab;
  std::string m_modelUnits;
  std::string m_up;
};

}  // namespace

std::unique_ptr<Command> makeSolidCommand() {
  return std::make_unique<SolidCommand>();
}

}  // namespace quoin::commands
