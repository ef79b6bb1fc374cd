// quoin style: multiline and dimension styles, found or made.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <cmath>

#include "AcadCommonTool.h"
#include "KxAcadBlockTool.h"
#include "commands/CommandError.h"
#include "commands/CurrentDrawing.h"
#include "commands/DrawingCommand.h"
#include "commands/StylePictures.h"
#include "commands/Words.h"
#include "dbdict.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// One line of the table of a dimension style.
struct Setting {
  const char* variable;
  const char* meaning;
  std::string value;
};

/// With its sign, as offsets to either side are written.
std::string signedText(double value) {
  return (value > 0.0 ? "+" : "") + numberText(value);
}

std::string yesNo(bool value) {
  return value ? "yes" : "no";
}

std::string blockName(const AcDbObjectId& id) {
  const AcDbObjectPointer<AcDbBlockTableRecord> block(id, AcDb::kForRead);
  const ACHAR* name = L"";
  if (block.openStatus() == Acad::eOk) {
    block->getName(name);
  }
  return os::toUtf8(name);
}

std::vector<Setting> settingsOf(const AcDbDimStyleTableRecord& style) {
  const auto integer = [](int value) { return fmt::format("{}", value); };
  const std::string arrow = blockName(style.dimblk());
  return {{"DIMSCALE", "scale of the graphics", numberText(style.dimscale())},
          {"DIMLFAC", "factor of measured lengths", numberText(style.dimlfac())},
          {"DIMBLK", "arrow block", arrow.empty() ? "none: filled arrows" : arrow},
          {"DIMASZ", "arrow size", numberText(style.dimasz())},
          {"DIMEXE", "extension lines beyond the dimension line", numberText(style.dimexe())},
          {"DIMEXO", "extension lines' distance from the origin", numberText(style.dimexo())},
          {"DIMTXT", "text height", numberText(style.dimtxt())},
          {"DIMGAP", "gap around the text", numberText(style.dimgap())},
          {"DIMTAD", "text above the line", integer(style.dimtad())},
          {"DIMJUST", "text along the line", integer(style.dimjust())},
          {"DIMTIX", "text always between extension lines", yesNo(style.dimtix())},
          {"DIMTIH", "text inside horizontal", yesNo(style.dimtih())},
          {"DIMTOH", "text outside horizontal", yesNo(style.dimtoh())},
          {"DIMTOFL", "line between extension lines always", yesNo(style.dimtofl())},
          {"DIMTMOVE", "how text moves", integer(style.dimtmove())},
          {"DIMUNIT", "unit format", integer(style.dimunit())},
          {"DIMDEC", "decimal places", integer(style.dimdec())},
          {"DIMRND", "rounding", numberText(style.dimrnd())}};
}

class StyleCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "style", "Find or make a multiline style or an architectural dimension style");
    command->require_subcommand(1);
    m_mline = command->add_subcommand("mline", "A multiline style of two lines, one unit wide");
    declareOptions(*m_mline);
    m_mline->add_flag("--start-cap", m_startCap, "A line across the start of a multiline");
    m_mline->add_flag("--end-cap", m_endCap, "A line across the end of a multiline");
    m_mline->footer(
        "A style of this name that the drawing has stays as it is, caps included.\n\n"
        "Example:\n  quoin style mline plan.dxf --name WALL --start-cap --end-cap -o styled.dxf");
    m_dim = command->add_subcommand("dim", "A dimension style for architectural dimensions");
    declareOptions(*m_dim);
    m_dim
        ->add_option("--scale", m_scale,
                     "S: how many drawing units a millimetre of the building is, 1 in mm, 0.001 in "
                     "m. Measured lengths are divided by it; texts and arrows are 80 times it, in "
                     "millimetres of a sheet at 1:80")
        ->required();
    m_dim->footer(
        "A style of this name that the drawing has stays as it is. A new one has ticks for\n"
        "arrows if the drawing has a block named ArchTick or 建筑标记.\n\n"
        "Example:\n  quoin style dim plan.dxf --name ARCH --scale 1 -o styled.dxf");
    return command;
  }

  std::string name() const override { return m_mline->parsed() ? "style mline" : "style dim"; }
  void prepare() override {
    if (!(m_scale > 0.0 && std::isfinite(m_scale))) {
      throw CommandError(ExitCode::Usage, fmt::format("--scale {}: a scale is above 0", m_scale));
    }
  }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    m_mline->parsed() ? workOnMline(drawing, job, report) : workOnDim(drawing, job, report);
  }

 private:
  void declareOptions(CLI::App& command) {
    m_options.declareFiles(command);
    command.add_option("--name", m_name, "The name of the style")->required();
  }

  std::wstring wideName() const { return os::fromUtf8(m_name); }

  [[noreturn]] void refuse(const Drawing& drawing, const char* kind,
                           const std::string& cause) const {
    throw CommandError(ExitCode::EntityFailed,
                       fmt::format("{}: cannot make the {} style '{}': {}", drawing.file().string(),
                                   kind, m_name, cause));
  }

  static const char* foundOrMade(bool isNew) { return isNew ? "made" : "found, left as it is"; }

  // --- multilines ---------------------------------------------------------------------------

  void workOnMline(Drawing& drawing, const DrawingJob& job, Report& report) const {
    AcDbDictionary* styles = nullptr;
    AcDbObjectId former;
    if (drawing.database().getMLStyleDictionary(styles) == Acad::eOk) {
      styles->getAt(wideName().c_str(), former);
      styles->close();
    }
    const AcDbObjectId id = CAcadCommonTool::GetMlineStyleId(
        &drawing.database(), CString(wideName().c_str()), m_startCap, m_endCap);
    if (id.isNull()) {
      const bool isOld = drawing.database().originalFileVersion() < AcDb::kDHL_1012;
      refuse(drawing, "multiline",
             isOld ? os::toUtf8(drawing.info().release) + " drawings have no multiline styles"
                   : "no style may have this name");
    }
    const AcDbObjectPointer<AcDbMlineStyle> style(id, AcDb::kForRead);
    check(style.openStatus(), drawing, id, "read");
    job.save(drawing);
    job.render(mlineSample(drawing, *style.object()), report);
    const bool isNew = former.isNull();
    addMlineJson(*style.object(), id, isNew, report.json);
    report.line("multiline style {} ({}): {}", os::toUtf8(style->name()), handleText(id),
                foundOrMade(isNew));
    report.line("  start cap    {}", yesNo(style->startSquareCap()));
    report.line("  end cap      {}", yesNo(style->endSquareCap()));
    forEachElement(*style.object(), [&](int index, double offset, const AcCmColor& color,
                                        const std::string& linetype) {
      report.line("  element {}    offset {}, colour {}, linetype {}", index + 1,
                  signedText(offset), colorText(color), linetype);
    });
  }

  static std::string colorText(const AcCmColor& color) {
    return color.isByLayer()   ? "by layer"
           : color.isByBlock() ? "by block"
           : color.isByColor() ? fmt::format("{},{},{}", color.red(), color.green(), color.blue())
                               : fmt::format("{}", color.colorIndex());
  }

  template <class Visit>
  static void forEachElement(const AcDbMlineStyle& style, Visit&& visit) {
    for (int i = 0; i < style.numElements(); ++i) {
      double offset = 0.0;
      AcCmColor color;
      AcDbObjectId id;
      style.getElementAt(i, offset, color, id);
      const AcDbObjectPointer<AcDbLinetypeTableRecord> linetype(id, AcDb::kForRead);
      const ACHAR* name = L"";
      if (linetype.openStatus() == Acad::eOk) {
        linetype->getName(name);
      }
      visit(i, offset, color, os::toUtf8(name));
    }
  }

  static void addMlineJson(const AcDbMlineStyle& style, const AcDbObjectId& id, bool isNew,
                           nlohmann::json& report) {
    report.update({{"name", os::toUtf8(style.name())},
                   {"handle", handleText(id)},
                   {"new", isNew},
                   {"startCap", style.startSquareCap()},
                   {"endCap", style.endSquareCap()},
                   {"elements", nlohmann::json::array()}});
    forEachElement(style,
                   [&](int, double offset, const AcCmColor& color, const std::string& linetype) {
                     report["elements"].push_back(
                         {{"offset", offset}, {"color", colorText(color)}, {"linetype", linetype}});
                   });
  }

  // --- dimensions ---------------------------------------------------------------------------

  void workOnDim(Drawing& drawing, const DrawingJob& job, Report& report) const {
    const WorkingDatabase working(drawing.database());
    AcDbObjectId former;
    {
      const AcDbObjectPointer<AcDbDimStyleTable> styles(drawing.database().dimStyleTableId());
      if (styles.openStatus() == Acad::eOk) {
        styles->getAt(wideName().c_str(), former);
      }
    }
    const AcDbObjectId id = CKxAcadBlockTool::GetCustomDimStyle(
        &drawing.database(), CString(wideName().c_str()), m_scale);
    if (id.isNull()) {
      refuse(drawing, "dimension", "no style may have this name");
    }
    const AcDbObjectPointer<AcDbDimStyleTableRecord> style(id, AcDb::kForRead);
    check(style.openStatus(), drawing, id, "read");
    job.save(drawing);
    const ACHAR* styleName = L"";
    style->getName(styleName);
    const std::string shownName = os::toUtf8(styleName);
    job.render(dimensionSample(drawing, shownName, *style.object()), report);
    const bool isNew = former.isNull();
    const std::vector<Setting> settings = settingsOf(*style.object());
    const std::vector<std::string> warnings = dimWarnings(drawing, *style.object(), isNew);
    addDimJson(shownName, id, isNew, settings, report.json);
    report.line("dimension style {} ({}): {}", shownName, handleText(id), foundOrMade(isNew));
    for (const Setting& setting : settings) {
      report.line("  {:<9} {:<42} {}", setting.variable, setting.meaning, setting.value);
    }
    for (const std::string& warning : warnings) {
      report.warn(warning);
    }
  }

  static std::vector<std::string> dimWarnings(Drawing& drawing,
                                              const AcDbDimStyleTableRecord& style, bool isNew) {
    std::vector<std::string> warnings;
    const auto has = [&](const wchar_t* block) {
      const AcDbObjectPointer<AcDbBlockTable> blocks(drawing.database().blockTableId());
      return blocks.openStatus() == Acad::eOk && blocks->has(block);
    };
    if (isNew && !has(L"ArchTick") && !has(L"_ArchTick") && !has(L"建筑标记")) {
      const std::string arrow = blockName(style.dimblk());
      warnings.push_back(
          fmt::format("the drawing has no block named ArchTick or 建筑标记; arrows are {}",
                      arrow.empty() ? "filled" : "those of Standard (" + arrow + ")"));
    }
    if (drawing.database().originalFileVersion() < AcDb::kDHL_1015) {
      warnings.push_back(
          fmt::format("{} drawings do not know all of these variables; the table "
                      "has what is in the drawing",
                      os::toUtf8(drawing.info().release)));
    }
    return warnings;
  }

  static void addDimJson(const std::string& shownName, const AcDbObjectId& id, bool isNew,
                         const std::vector<Setting>& settings, nlohmann::json& report) {
    report.update({{"name", shownName},
                   {"handle", handleText(id)},
                   {"new", isNew},
                   {"settings", nlohmann::json::object()}});
    for (const Setting& setting : settings) {
      report["settings"][setting.variable] = setting.value;
    }
  }

  CLI::App* m_mline = nullptr;
  CLI::App* m_dim = nullptr;
  std::string m_name;
  bool m_startCap = false;
  bool m_endCap = false;
  double m_scale = 1.0;
};

}  // namespace

std::unique_ptr<Command> makeStyleCommand() {
  return std::make_unique<StyleCommand>();
}

}  // namespace quoin::commands
