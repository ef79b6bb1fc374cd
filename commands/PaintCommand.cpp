// quoin paint: gives the entities of layers one true colour.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <charconv>

#include "ChangeEntityColor.h"
#include "commands/ChosenEntities.h"
#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/LayerChoice.h"
#include "commands/ReportFields.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

struct Rgb {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;

  Color onPaper() const {
    constexpr double kFull = 255.0;
    return {red / kFull, green / kFull, blue / kFull};
  }
  std::string text() const { return fmt::format("{},{},{}", red, green, blue); }
};

/// "R,G,B" with 0 to 255 each.
/// Fails: throws CommandError (Usage).
Rgb parseRgb(const std::string& text) {
  Rgb rgb;
  const char* at = text.data();
  const char* const end = at + text.size();
  bool isGood = true;
  for (std::uint8_t* const component : {&rgb.red, &rgb.green, &rgb.blue}) {
    const auto taken = std::from_chars(at, end, *component);
    isGood = isGood && taken.ec == std::errc();
    at = taken.ptr;
    const bool isLast = component == &rgb.blue;
    isGood = isGood && (isLast ? at == end : at != end && *at == ',');
    at += isGood && !isLast ? 1 : 0;
  }
  if (!isGood) {
    throw CommandError(ExitCode::Usage,
                       fmt::format("'{}' is no colour; write R,G,B with 0 to 255 each", text));
  }
  return rgb;
}

class PaintCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("paint", "Give every entity of layers one true colour");
    m_options.declareFiles(*command);
    m_options.declareLayers(*command, "Layers to paint, * and ? allowed; may be repeated");
    command->get_option("--layer")->required();
    command->add_option("--rgb", m_rgb, "The colour, 0 to 255 each")
        ->type_name("R,G,B")
        ->required();
    command->footer(
        "Vertices of polylines and attributes of block references are painted along.\n"
        "Drawings before R2004 know no true colours and get the nearest of the palette.\n"
        "Entities on locked layers stay as they are.\n\n"
        "Example:\n"
        "  quoin paint plan.dxf --layer 'A-WALL*' --rgb 200,60,20 -o red.dxf --picture red.png");
    return command;
  }

  std::string name() const override { return "paint"; }
  void prepare() override { parseRgb(m_rgb); }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const Rgb rgb = parseRgb(m_rgb);
    const std::set<std::wstring> layers = chooseLayers(drawing.layers(), m_options.layers, drawing);
    const ChosenEntities chosen = chooseEntities(drawing, layers);
    CChangeEntityColor paint(rgb.red, rgb.green, rgb.blue);
    changeEach(drawing, chosen, [&](AcDbEntity& entity) { paint(&entity); });
    job.save(drawing);
    if (job.hasPicture()) {
      job.render(pictureOf(drawing, layers, chosen, rgb), report);
    }
    tell(drawing, layers, chosen, rgb, report);
    if (report.isJson()) {
      addJson(drawing, layers, chosen, rgb, report.json);
    }
  }

 private:
  /// The palette's index that stands in the file as the nearest, or alone.
  static int nearestIndex(const Rgb& rgb) {
    return AcCmEntityColor::lookUpACI(rgb.red, rgb.green, rgb.blue);
  }

  static bool knowsTrueColors(Drawing& drawing) {
    return drawing.database().originalFileVersion() >= AcDb::kDHL_1800;
  }

  static Picture pictureOf(Drawing& drawing, const std::set<std::wstring>& layers,
                           const ChosenEntities& chosen, const Rgb& rgb) {
    // Pale colours would be lost on the paper: they get a darker bed.
    constexpr double kPale = 0.8;
    const Color color = rgb.onPaper();
    const bool isPale = (color.red + color.green + color.blue) / 3.0 > kPale;
    Picture picture = newPicture(drawing, "painted",
                                 fmt::format("{} entities in {}; layers {}", chosen.entities.size(),
                                             rgb.text(), namesText(layers)));
    addPlanShapes(picture, drawing, {chosen.entities.begin(), chosen.entities.end()});
    if (isPale) {
      addEntityShapes(picture, drawing, chosen.entities, palette::kInk, kPieceWidth + 1.2);
    }
    addEntityShapes(picture, drawing, chosen.entities, color, kPieceWidth);
    picture.legend = {
        {fmt::format("painted {}", rgb.text()), color, false, MarkShape::Dot, kPieceWidth},
        {"rest of the plan", palette::kPlan, false, MarkShape::Dot, 2.0}};
    return picture;
  }

  static void tell(Drawing& drawing, const std::set<std::wstring>& layers,
                   const ChosenEntities& chosen, const Rgb& rgb, Report& report) {
    report.line("layers: {}", namesText(layers));
    report.line("{} painted {}{}{}", countText(chosen.entities.size(), "entity", "entities"),
                rgb.text(), chosen.entities.empty() ? "" : ": ", kindsText(chosen.countOfKind));
    if (!knowsTrueColors(drawing)) {
      report.line("{} knows no true colours: colour {} of the palette is the nearest",
                  os::toUtf8(drawing.info().release), nearestIndex(rgb));
    }
    if (chosen.onLockedLayers > 0) {
      report.line("not painted, on locked layers: {}",
                  countText(chosen.onLockedLayers, "entity", "entities"));
    }
  }

  static void addJson(Drawing& drawing, const std::set<std::wstring>& layers,
                      const ChosenEntities& chosen, const Rgb& rgb, nlohmann::json& report) {
    report.update({{"layers", namesJson(layers)},
                   {"rgb", {rgb.red, rgb.green, rgb.blue}},
                   {"nearestIndex", nearestIndex(rgb)},
                   {"trueColor", knowsTrueColors(drawing)},
                   {"changed", chosen.entities.size()},
                   {"kinds", kindsJson(chosen.countOfKind)},
                   {"heldByLockedLayers", chosen.onLockedLayers},
                   {"changes", changesJson(drawing, chosen.entities)}});
  }

  std::string m_rgb;
};

}  // namespace

std::unique_ptr<Command> makePaintCommand() {
  return std::make_unique<PaintCommand>();
}

}  // namespace quoin::commands
