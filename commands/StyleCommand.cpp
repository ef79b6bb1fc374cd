// quoin style: multiline and dimension styles, found or made.
#include <fmt/format.h>

#include <cmath>

#include "AcadCommonTool.h"
#include "KxAcadBlockTool.h"
#include "commands/Command.h"
#include "commands/CommandError.h"
#include "commands/CommonOptions.h"
#include "commands/StylePictures.h"
#include "dbapserv.h"
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
  const auto number = [](double value) { return fmt::format("{:g}", value); };
  const auto integer = [](int value) { return fmt::format("{}", value); };
  const std::string arrow = blockName(style.dimblk());
  return {{"DIMSCALE", "scale of the graphics", number(style.dimscale())},
          {"DIMLFAC", "factor of measured lengths", number(style.dimlfac())},
          {"DIMBLK", "arrow block", arrow.empty() ? "none: filled arrows" : arrow},
          {"DIMASZ", "arrow size", number(style.dimasz())},
          {"DIMEXE", "extension lines beyond the dimension line", number(style.dimexe())},
          {"DIMEXO", "extension lines' distance from the origin", number(style.dimexo())},
          {"DIMTXT", "text height", number(style.dimtxt())},
          {"DIMGAP", "gap around the text", number(style.dimgap())},
          {"DIMTAD", "text above the line", integer(style.dimtad())},
          {"DIMJUST", "text along the line", integer(style.dimjust())},
          {"DIMTIX", "text always between extension lines", yesNo(style.dimtix())},
          {"DIMTIH", "text inside horizontal", yesNo(style.dimtih())},
          {"DIMTOH", "text outside horizontal", yesNo(style.dimtoh())},
          {"DIMTOFL", "line between extension lines always", yesNo(style.dimtofl())},
          {"DIMTMOVE", "how text moves", integer(style.dimtmove())},
          {"DIMUNIT", "unit format", integer(style.dimunit())},
          {"DIMDEC", "decimal places", integer(style.dimdec())},
          {"DIMRND", "rounding", number(style.dimrnd())}};
}

/// The host's working database for as long as this lives: where names of blocks are looked up
/// for records that are in no drawing yet.
class WorkingDatabase {
 public:
  explicit WorkingDatabase(AcDbDatabase& database)
      : m_before(acdbHostApplicationServices()->workingDatabase()) {
    acdbHostApplicationServices()->setWorkingDatabase(&database);
  }
  ~WorkingDatabase() { acdbHostApplicationServices()->setWorkingDatabase(m_before); }
  WorkingDatabase(const WorkingDatabase&) = delete;
  WorkingDatabase& operator=(const WorkingDatabase&) = delete;

 private:
  AcDbDatabase* m_before;
};

class StyleCommand : public Command {
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
                     "S: measured lengths are divided by it, the graphics grow with it")
        ->required();
    m_dim->footer(
        "A style of this name that the drawing has stays as it is. A new one has ticks for\n"
        "arrows if the drawing has a block named ArchTick or 建筑标记.\n\n"
        "Example:\n  quoin style dim plan.dxf --name ARCH-100 --scale 100 -o styled.dxf");
    return command;
  }

  void run() override {
    m_options.checkFiles();
    if (!(m_scale > 0.0 && std::isfinite(m_scale))) {
      throw CommandError(ExitCode::Usage, fmt::format("--scale {:g}: a scale is above 0", m_scale));
    }
    Drawing drawing(m_options.plan);
    m_mline->parsed() ? runMline(drawing) : runDim(drawing);
  }

 private:
  void declareOptions(CLI::App& command) {
    m_options.declareFiles(command);
    command.add_option("--name", m_name, "The name of the style")->required();
  }

  std::wstring name() const { return os::fromUtf8(m_name); }

  [[noreturn]] void refuse(const Drawing& drawing, const char* kind, const std::string& cause) {
    throw CommandError(ExitCode::EntityFailed,
                       fmt::format("{}: cannot make the {} style '{}': {}", drawing.file().string(),
                                   kind, m_name, cause));
  }

  static const char* foundOrMade(bool isNew) { return isNew ? "made" : "found, left as it is"; }

  // --- multilines ---------------------------------------------------------------------------

  void runMline(Drawing& drawing) {
    AcDbDictionary* styles = nullptr;
    AcDbObjectId former;
    if (drawing.database().getMLStyleDictionary(styles) == Acad::eOk) {
      styles->getAt(name().c_str(), former);
      styles->close();
    }
    const AcDbObjectId id = CAcadCommonTool::GetMlineStyleId(
        &drawing.database(), CString(name().c_str()), m_startCap, m_endCap);
    if (id.isNull()) {
      const bool isOld = drawing.database().originalFileVersion() < AcDb::kDHL_1012;
      refuse(drawing, "multiline",
             isOld ? os::toUtf8(drawing.info().release) + " drawings have no multiline styles"
                   : "no style may have this name");
    }
    const AcDbObjectPointer<AcDbMlineStyle> style(id, AcDb::kForRead);
    check(style.openStatus(), drawing, id, "read");
    m_options.save(drawing);
    m_options.render(mlineSample(drawing, *style.object()));
    const bool isNew = former.isNull();
    if (m_options.isJson()) {
      printJson(mlineJson(drawing, *style.object(), id, isNew));
      return;
    }
    fmt::print("multiline style {} ({}): {}\n", os::toUtf8(style->name()), handleText(id),
               foundOrMade(isNew));
    fmt::print("  start cap    {}\n", yesNo(style->startSquareCap()));
    fmt::print("  end cap      {}\n", yesNo(style->endSquareCap()));
    forEachElement(*style.object(), [](int index, double offset, const AcCmColor& color,
                                       const std::string& linetype) {
      fmt::print("  element {}    offset {:+g}, colour {}, linetype {}\n", index + 1, offset,
                 colorText(color), linetype);
    });
    m_options.printOutcome();
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

  nlohmann::json mlineJson(const Drawing& drawing, const AcDbMlineStyle& style,
                           const AcDbObjectId& id, bool isNew) const {
    nlohmann::json report = {{"command", "style mline"},
                             {"input", fileJson(drawing)},
                             {"name", os::toUtf8(style.name())},
                             {"handle", handleText(id)},
                             {"isNew", isNew},
                             {"startCap", style.startSquareCap()},
                             {"endCap", style.endSquareCap()},
                             {"elements", nlohmann::json::array()}};
    forEachElement(style,
                   [&](int, double offset, const AcCmColor& color, const std::string& linetype) {
                     report["elements"].push_back(
                         {{"offset", offset}, {"color", colorText(color)}, {"linetype", linetype}});
                   });
    m_options.addOutcome(report);
    return report;
  }

  // --- dimensions ---------------------------------------------------------------------------

  void runDim(Drawing& drawing) {
    const WorkingDatabase working(drawing.database());
    AcDbObjectId former;
    {
      const AcDbObjectPointer<AcDbDimStyleTable> styles(drawing.database().dimStyleTableId());
      if (styles.openStatus() == Acad::eOk) {
        styles->getAt(name().c_str(), former);
      }
    }
    const AcDbObjectId id =
        CKxAcadBlockTool::GetCustomDimStyle(&drawing.database(), CString(name().c_str()), m_scale);
    if (id.isNull()) {
      refuse(drawing, "dimension", "no style may have this name");
    }
    const AcDbObjectPointer<AcDbDimStyleTableRecord> style(id, AcDb::kForRead);
    check(style.openStatus(), drawing, id, "read");
    m_options.save(drawing);
    const ACHAR* styleName = L"";
    style->getName(styleName);
    const std::string shownName = os::toUtf8(styleName);
    m_options.render(dimensionSample(drawing, shownName, *style.object()));
    const bool isNew = former.isNull();
    const std::vector<Setting> settings = settingsOf(*style.object());
    const std::vector<std::string> warnings = dimWarnings(drawing, *style.object(), isNew);
    if (m_options.isJson()) {
      printJson(dimJson(drawing, shownName, id, isNew, settings, warnings));
      return;
    }
    fmt::print("dimension style {} ({}): {}\n", shownName, handleText(id), foundOrMade(isNew));
    for (const Setting& setting : settings) {
      fmt::print("  {:<9} {:<42} {}\n", setting.variable, setting.meaning, setting.value);
    }
    for (const std::string& warning : warnings) {
      fmt::print("warning: {}\n", warning);
    }
    m_options.printOutcome();
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

  nlohmann::json dimJson(const Drawing& drawing, const std::string& shownName,
                         const AcDbObjectId& id, bool isNew, const std::vector<Setting>& settings,
                         const std::vector<std::string>& warnings) const {
    nlohmann::json report = {{"command", "style dim"}, {"input", fileJson(drawing)},
                             {"name", shownName},      {"handle", handleText(id)},
                             {"isNew", isNew},         {"settings", nlohmann::json::object()},
                             {"warnings", warnings}};
    for (const Setting& setting : settings) {
      report["settings"][setting.variable] = setting.value;
    }
    m_options.addOutcome(report);
    return report;
  }

  CommonOptions m_options;
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
