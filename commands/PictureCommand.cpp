// quoin picture: what a drawing shows, as PNG, SVG or PDF, to look at or on paper in true size.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <array>
#include <charconv>
#include <cmath>

#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/LayerChoice.h"
#include "commands/LayoutSpaces.h"
#include "commands/OutputFile.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/UnitsJudgement.h"
#include "commands/Usage.h"
#include "commands/Words.h"
#include "commands/picture/DrawList.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "commands/picture/Render.h"
#include "commands/picture/SheetLayout.h"
#include "commands/picture/ShownImages.h"
#include "commands/picture/ThemeNames.h"
#include "dbsymtb.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// One page, and what it was made of.
struct DrawnPage {
  LayoutSpace space;
  Picture picture;
  hostx::DrawReport report;
  std::map<std::string, std::size_t> images;  // by the paths that name them
  std::string file;
};

class PictureCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "picture", "Make a picture of what a drawing shows, for screen or paper");
    m_options.declarePlans(*command);
    command
        ->add_option("-o,--output", m_options.picture,
                     "The picture to make (.png, .svg or .pdf); of several drawings: a folder, or "
                     "a name with {name} in it")
        ->required();
    command
        ->add_option("--theme", m_theme,
                     "paper: the drawing's colours on white; screen: on dark; faint: one grey")
        ->check(oneOf(themeNames()))
        ->capture_default_str();
    m_options.declareLayers(*command, "Show these layers alone (* and ? match); may be repeated");
    command->add_option("--window", m_window, "Show this part, in drawing units")
        ->type_name("X1,Y1,X2,Y2");
    CLI::Option* const layout =
        command->add_option("--layout", m_layout, "Show this layout instead of model space")
            ->type_name("NAME");
    command
        ->add_flag("--all-layouts", m_isAllLayouts,
                   "Show every layout: the pages of a PDF file, else files with numbers")
        ->excludes(layout);
    command
        ->add_option("--paper", m_paper,
                     "In true size on this paper: A0 to A5, letter, legal, tabloid, arch-a to "
                     "arch-e, with -portrait or -landscape, or WxH in millimetres")
        ->type_name("PAPER");
    command
        ->add_option("--scale", m_scale,
                     "In true size at this scale: 1:100, 1/4in=1ft; without it, the largest usual "
                     "one that fits the paper")
        ->type_name("SCALE");
    command->add_option("--dpi", m_dpi, "Dots an inch of a PNG on paper (150)")
        ->type_name("NUMBER")
        ->check(CLI::Range(10.0, 2400.0));
    command
        ->add_option("--text", m_text,
                     "text: letters that can be searched (PDF, SVG); outlines: their shapes, for "
                     "machines without the fonts")
        ->check(oneOf({"text", "outlines"}))
        ->capture_default_str();
    command->add_flag("--images", m_hasImages,
                      "Show images: opens the files that the drawing names (PNG, JPEG, BMP, TIFF, "
                      "GIF), where they are named or beside the drawing");
    command->footer(
        "Layers that are off or frozen do not show. What cannot be drawn is named and counted\n"
        "under the picture. The same drawing gives the same bytes, wherever the fonts are.\n\n"
        "Examples:\n"
        "  quoin picture plan.dxf -o plan.png\n"
        "  quoin picture plan.dxf -o plan.pdf --paper A3 --scale 1:100\n"
        "  quoin picture plan.dxf -o sheets.pdf --all-layouts\n"
        "  quoin picture plan.dxf -o walls.svg --layer 'A-WALL*' --window 0,0,5000,4000");
    return command;
  }

  std::string name() const override { return "picture"; }

  void prepare() override {
    m_sheet = {};
    m_sheet.theme = themeNamed(m_theme).value_or(Theme::Paper);
    m_sheet.hasTextOutlines = m_text == "outlines";
    m_sheet.dpi = m_dpi;
    if (!m_paper.empty()) {
      m_sheet.paper = parsePaper(m_paper);
    }
    if (!m_scale.empty()) {
      m_sheet.scale = parseScale(m_scale);
    }
    if (m_dpi > 0.0 && m_paper.empty() && m_scale.empty()) {
      throw CommandError(ExitCode::Usage,
                         "--dpi is of pictures in true size; say --paper or --scale");
    }
    if (!m_window.empty()) {
      m_sheet.window = parseWindow(m_window);
    }
  }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    std::set<std::wstring> names;
    std::set<AcDbObjectId> layers;
    if (!m_options.layers.empty()) {
      names = chooseLayers(drawing.layers(), m_options.layers, drawing);
      layers = layerIds(drawing, names);
    }
    m_sheet.images = m_hasImages ? std::make_shared<ImageFiles>(drawing.file()) : nullptr;
    std::vector<DrawnPage> pages;
    for (const LayoutSpace& space : spacesOf(drawing)) {
      DrawnPage page = draw(drawing, space, layers);
      if (!m_isAllLayouts || page.report.drawn > 0) {
        pages.push_back(std::move(page));
      }
    }
    if (pages.empty()) {
      throw CommandError(ExitCode::NothingToDo,
                         drawing.file().string() +
                             ": no layout shows anything; without --all-layouts model space does");
    }
    write(pages, job);
    tell(drawing, names, pages, report);
  }

 private:
  static Box parseWindow(const std::string& text) {
    std::array<double, 4> values{};
    const char* at = text.data();
    const char* const end = at + text.size();
    std::size_t count = 0;
    for (; count < values.size(); ++count) {
      const auto taken = std::from_chars(at, end, values[count]);
      if (taken.ec != std::errc() || !std::isfinite(values[count])) {
        break;
      }
      at = taken.ptr;
      if (count + 1 < values.size()) {
        if (at == end || *at != ',') {
          break;
        }
        ++at;
      }
    }
    Box box;
    if (count == values.size() && at == end) {
      box.add(values[0], values[1]);
      box.add(values[2], values[3]);
    }
    if (box.isEmpty() || !(box.width() > 0.0) || !(box.height() > 0.0)) {
      throw CommandError(
          ExitCode::Usage,
          fmt::format("'{}' is no window; write two corners: X1,Y1,X2,Y2 with no blanks", text));
    }
    return box;
  }

  static std::set<AcDbObjectId> layerIds(Drawing& drawing, const std::set<std::wstring>& names) {
    std::set<AcDbObjectId> ids;
    AcDbLayerTable* table = nullptr;
    if (drawing.database().getLayerTable(table, AcDb::kForRead) == Acad::eOk) {
      for (const std::wstring& name : names) {
        AcDbObjectId id;
        if (table->getAt(name.c_str(), id) == Acad::eOk) {
          ids.insert(id);
        }
      }
      table->close();
    }
    return ids;
  }

  std::vector<LayoutSpace> spacesOf(Drawing& drawing) const {
    if (!m_layout.empty()) {
      return {layoutNamed(drawing, m_layout)};
    }
    std::vector<LayoutSpace> spaces = layoutSpaces(drawing);
    if (m_isAllLayouts) {
      spaces.erase(spaces.begin());
    } else {
      spaces.resize(1);
    }
    if (!spaces.empty() && spaces.front().block.isNull()) {
      throw CommandError(ExitCode::InputUnreadable,
                         drawing.file().string() + ": it has no model space");
    }
    return spaces;
  }

  DrawnPage draw(Drawing& drawing, const LayoutSpace& space,
                 const std::set<AcDbObjectId>& layers) const {
    DrawnPage page;
    page.space = space;
    auto list = std::make_shared<DrawList>();
    if (!m_options.layers.empty()) {
      list->setLayers(layers);
    }
    page.report = drawSpace(space.block, *list, m_sheet.window ? *m_sheet.window : Box(),
                            m_sheet.theme == Theme::Paper);
    page.picture = newPicture(drawing, space.isModel ? "model space" : space.name, "");
    constexpr double kInch = 25.4;
    const bool isInInches = space.isModel && page.picture.lengthKind != LengthKind::Imperial &&
                            writesFeetAndInches(drawing);
    if (isInInches) {
      page.picture.lengthKind = LengthKind::Imperial;
      page.picture.millimetersPerUnit = kInch;
    } else if (!space.isModel && page.picture.lengthKind != LengthKind::Unknown) {
      // Sheets are drawn in units of paper.
      page.picture.millimetersPerUnit =
          page.picture.lengthKind == LengthKind::Imperial ? kInch : 1.0;
    }
    page.picture.subtitle =
        countText(static_cast<std::size_t>(page.report.drawn), "entity", "entities");
    page.picture.warnings = warningsOf(page.report);
    if (isInInches && drawing.info().units != AcDb::kUnitsUndefined) {
      page.picture.warnings.push_back(fmt::format(
          "lengths are written in feet and inches: a unit counts as an inch, though the "
          "drawing names {}",
          drawing.unitName()));
    }
    page.picture.drawn.push_back({list, std::nullopt, 1.0, true, 0});
    if (m_sheet.images) {
      page.images = openImages(page.picture, *list, m_sheet);
    }
    return page;
  }

  nlohmann::json imagesJson(const DrawnPage& page) const {
    nlohmann::json list = nlohmann::json::array();
    for (const auto& [path, count] : page.images) {
      const ImageFiles::File& file = m_sheet.images->fileOf(path);
      const auto textOrNull = [](const std::string& text) {
        return text.empty() ? nlohmann::json() : nlohmann::json(drawable(text));
      };
      list.push_back({{"path", drawable(path)},
                      {"count", count},
                      {"file", textOrNull(file.file)},
                      {"problem", textOrNull(file.problem)}});
    }
    return list;
  }

  void write(std::vector<DrawnPage>& pages, const DrawingJob& job) const {
    if (isPagesFile(job.picture) || pages.size() == 1) {
      std::vector<Picture> pictures;
      for (DrawnPage& page : pages) {
        pictures.push_back(page.picture);
        page.file = job.picture;
      }
      writeWholeFile(pictureBytes(pictures, m_sheet, job.picture), job.picture,
                     "write the picture");
      return;
    }
    const std::filesystem::path place(job.picture);
    for (std::size_t i = 0; i < pages.size(); ++i) {
      std::filesystem::path file = place;
      file.replace_filename(
          fmt::format("{}-{}{}", place.stem().string(), i + 1, place.extension().string()));
      pages[i].file = file.string();
      writeWholeFile(pictureBytes({pages[i].picture}, m_sheet, file), file, "write the picture");
    }
  }

  void tell(const Drawing& drawing, const std::set<std::wstring>& layers,
            const std::vector<DrawnPage>& pages, Report& report) const {
    report.line("{}", drawing.file().string());
    nlohmann::json list = nlohmann::json::array();
    for (const DrawnPage& page : pages) {
      const SheetLayout layout = layOut(page.picture, m_sheet);
      const SheetView& view = layout.view;
      const double scale = trueScale(page, layout);
      report.line("  {}: {}{}", page.space.name,
                  countText(static_cast<std::size_t>(page.report.drawn), "entity", "entities"),
                  scale > 0.0 ? ", at " + scaleText(scale) : "");
      if (pages.size() > 1 && !isPagesFile(page.file)) {
        report.line("    {}", page.file);
      }
      if (!page.report.notPlotted.empty()) {
        report.line("    {}", notPlottedText(page.report));
      }
      for (const std::string& warning : page.picture.warnings) {
        report.warn(fmt::format("{}: {}", page.space.name, warning));
      }
      const auto corner = [&](double x, double y) {
        return nlohmann::json::array(
            {view.minX + (x - view.left) / view.scale, view.minY + (view.bottom - y) / view.scale});
      };
      list.push_back(
          {{"space", page.space.name},
           {"file", page.file},
           {"entities", page.report.drawn},
           {"framed", page.report.framed},
           {"leftOut", kindsJson({page.report.leftOut.begin(), page.report.leftOut.end()})},
           {"notPlotted",
            kindsJson({page.report.notPlotted.begin(), page.report.notPlotted.end()})},
           {"images", imagesJson(page)},
           {"scale", scale > 0.0 ? nlohmann::json(scale) : nlohmann::json()},
           {"pageSize", {millimeters(layout.page.width), millimeters(layout.page.height)}},
           {"view",
            {corner(view.clip.minX, view.clip.maxY), corner(view.clip.maxX, view.clip.minY)}}});
    }
    if (!layers.empty()) {
      report.line("layers: {}", namesText(layers));
    }
    report.json.update({{"theme", m_theme}, {"layers", namesJson(layers)}, {"pages", list}});
  }

  /// 0 where the page is none of paper.
  double trueScale(const DrawnPage& page, const SheetLayout& layout) const {
    if (!m_sheet.paper && !m_sheet.scale) {
      return 0.0;
    }
    const double unit =
        page.picture.millimetersPerUnit > 0.0 ? page.picture.millimetersPerUnit : 1.0;
    const double scale = unit / millimeters(layout.view.scale);
    // As it was asked for, without what rounding leaves of it.
    constexpr double kDigits = 1e9;
    return std::round(scale * kDigits) / kDigits;
  }
  static double millimeters(double points) { return points * 25.4 / 72.0; }

  std::string m_theme = "paper";
  std::string m_window;
  std::string m_layout;
  bool m_isAllLayouts = false;
  std::string m_paper;
  std::string m_scale;
  double m_dpi = 0.0;
  std::string m_text = "text";
  bool m_hasImages = false;
  SheetOptions m_sheet;
};

}  // namespace

std::unique_ptr<Command> makePictureCommand() {
  return std::make_unique<PictureCommand>();
}

}  // namespace quoin::commands
