// quoin compare: what differs between two drawings.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <optional>

#include "commands/Command.h"
#include "commands/CommandError.h"
#include "commands/CommonOptions.h"
#include "commands/DrawingJob.h"
#include "commands/LayerChoice.h"
#include "commands/Outcome.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/Usage.h"
#include "commands/Words.h"
#include "commands/compare/DifferencePicture.h"
#include "commands/compare/DrawingDifference.h"
#include "commands/picture/Render.h"
#include "embedded/os/File.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// Entities of one kind of change that are named without --all.
constexpr std::size_t kMostNamed = 10;

/// The two drawings that are compared.
struct DrawingPair {
  Drawing& before;
  Drawing& after;
};

std::string spaceText(const ComparedSpace& space) {
  switch (space.kind) {
    case ComparedSpace::Kind::Model:
      return "model space";
    case ComparedSpace::Kind::Layout:
      return "layout " + space.name;
    case ComparedSpace::Kind::Block:
      break;
  }
  return "block " + space.name;
}

/// A block that differs stands in the plan as often as references show it.
std::string placesText(const ComparedSpace& space, const PlaceCounts& places) {
  if (!space.isChangedBlock()) {
    return "";
  }
  const double count = places.at(space.after);
  return count == 0.0   ? ", not in model space"
         : count == 1.0 ? ", at 1 place of model space"
                        : ", at " + numberText(count) + " places of model space";
}

std::string vectorText(const AcGeVector3d& vector) {
  return numberText(vector.x) + "," + numberText(vector.y) +
         (vector.z == 0.0 ? "" : "," + numberText(vector.z));
}

/// Texts of drawings on one line, and not whole books of them.
std::string shortText(std::string text) {
  constexpr std::size_t kMost = 60;
  std::replace_if(
      text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
  if (text.size() > kMost) {
    std::size_t end = kMost;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
      --end;  // whole letters
    }
    text = text.substr(0, end) + "...";
  }
  return text;
}

std::string propertyText(const PropertyChange& change) {
  if (change.before.empty() && change.after.empty()) {
    return change.name;
  }
  const auto side = [](const std::string& text) { return text.empty() ? "none" : shortText(text); };
  return fmt::format("{} {} -> {}", change.name, side(change.before), side(change.after));
}

std::string propertiesText(const std::vector<PropertyChange>& changes) {
  std::string text;
  for (const PropertyChange& change : changes) {
    text += (text.empty() ? "" : "; ") + propertyText(change);
  }
  return text;
}

std::string entityText(const DrawingPair& pair, const ComparedEntity& entity) {
  const bool isOld = entity.after.isNull();
  const AcDbObjectId id = isOld ? entity.before : entity.after;
  std::string text =
      os::toUtf8(hostx::kindName(id)) + " " + nameText(isOld ? pair.before : pair.after, id);
  if (!entity.before.isNull() && !entity.after.isNull() &&
      handleText(entity.before) != handleText(entity.after)) {
    text += ", before " + nameText(pair.before, entity.before);
  }
  text += " on " + entity.layer;
  if (entity.change.move) {
    text += ": by " + vectorText(*entity.change.move);
  }
  if (!entity.change.properties.empty()) {
    text += (entity.change.move ? "; " : ": ") + propertiesText(entity.change.properties);
  }
  return text;
}

// --- the JSON report ------------------------------------------------------------------------

nlohmann::json countsJson(const ChangeCounts& counts) {
  return {{"added", counts.added},
          {"removed", counts.removed},
          {"moved", counts.moved},
          {"changed", counts.changed},
          {"same", counts.same}};
}

nlohmann::json propertiesJson(const std::vector<PropertyChange>& changes) {
  nlohmann::json list = nlohmann::json::array();
  for (const PropertyChange& change : changes) {
    list.push_back({{"name", change.name}, {"before", change.before}, {"after", change.after}});
  }
  return list;
}

nlohmann::json entitiesJson(const DrawingPair& pair, const std::vector<ComparedEntity>& entities) {
  nlohmann::json list = nlohmann::json::array();
  for (const ComparedEntity& entity : entities) {
    nlohmann::json one = {{"layer", entity.layer}};
    if (!entity.before.isNull()) {
      one["before"] = sourceJson(pair.before, entity.before);
    }
    if (!entity.after.isNull()) {
      one["after"] = sourceJson(pair.after, entity.after);
    }
    if (entity.change.move) {
      one["by"] = pointJson(AcGePoint3d::kOrigin + *entity.change.move);
    }
    if (!entity.change.properties.empty()) {
      one["properties"] = propertiesJson(entity.change.properties);
    }
    list.push_back(std::move(one));
  }
  return list;
}

nlohmann::json spaceJson(const DrawingPair& pair, const ComparedSpace& space,
                         const PlaceCounts& places) {
  const char* const kinds[] = {"model", "layout", "block"};
  nlohmann::json json = {{"space", kinds[static_cast<int>(space.kind)]},
                         {"name", space.name},
                         {"counts", countsJson(space.counts())},
                         {"renumbered", space.isRenumbered},
                         {"added", entitiesJson(pair, space.added)},
                         {"removed", entitiesJson(pair, space.removed)},
                         {"moved", entitiesJson(pair, space.moved)},
                         {"changed", entitiesJson(pair, space.changed)}};
  if (space.isChangedBlock()) {
    json["places"] = places.at(space.after);
  }
  return json;
}

nlohmann::json tableJson(const ComparedTable& table) {
  nlohmann::json changed = nlohmann::json::array();
  for (const ComparedRecord& record : table.changed) {
    changed.push_back({{"name", record.name}, {"properties", propertiesJson(record.properties)}});
  }
  return {{"name", table.name},
          {"added", table.added},
          {"removed", table.removed},
          {"changed", std::move(changed)}};
}

std::map<std::string, ChangeCounts> countsOfLayers(const DrawingDifference& difference) {
  std::map<std::string, ChangeCounts> sums;
  for (const ComparedSpace& space : difference.spaces) {
    for (const auto& [layer, counts] : space.layers) {
      sums[layer] += counts;
    }
  }
  return sums;
}

class CompareCommand : public Command {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("compare", "Tell what differs between two drawings");
    command->add_option("OLD", m_old, "The drawing as it was (DXF or DWG); - is the standard input")
        ->type_name("")
        ->required();
    command->add_option("NEW", m_new, "The drawing as it is")->type_name("")->required();
    addRepeated(*command, "--layer", m_layers,
                "Layers to compare, * and ? allowed; may be repeated. Default: all, with the other "
                "tables and the settings",
                "GLOB");
    command
        ->add_option("--tolerance", m_tolerance,
                     "Up to which difference, in drawing units, places and lengths are the same")
        ->type_name("LENGTH")
        ->check(CLI::NonNegativeNumber);
    command
        ->add_option("--ignore", m_ignored,
                     "handles: pair entities by what they say alone, as for a drawing that was "
                     "made anew")
        ->check(oneOf({"handles"}));
    command->add_flag("--all", m_isAll, "Name every difference in the text report");
    command->add_option("--picture", m_picture,
                        "Make a picture of both, old red, new green (.png, .svg or .pdf)");
    command
        ->add_option("--code-page", m_codePage,
                     "What the drawings' text is written in, where they say nothing or are "
                     "wrong")
        ->type_name("NAME");
    command->add_option("--report", m_report, "text or json")
        ->check(oneOf({"text", "json"}))
        ->capture_default_str();
    command->add_flag("-q,--quiet", m_isQuiet, "Print errors and warnings alone");
    command->footer(
        "Entities are paired by handle and kind, those with new handles by their geometry, then "
        "by\n"
        "their shape. Order in the file, handles, views and format are no differences, so that a\n"
        "DXF and a DWG file of one drawing are the same.\n\n"
        "The exit code is 0 where nothing differs and 1 where something does.\n\n"
        "Examples:\n"
        "  quoin compare plan.dxf plan-new.dxf --picture changes.png\n"
        "  quoin compare plan.dxf plan.dwg --layer 'A-WALL*' --all");
    return command;
  }

  void run() override {
    check();
    if (m_isQuiet) {
      Progress::silence();
    }
    const Report::Wanted wanted{m_report == "json", m_isAll};
    bool isSame = false;
    std::vector<Outcome> outcomes;
    outcomes.push_back(tryWork(m_new, wanted, [&](Outcome& outcome) { isSame = work(outcome); }));
    if (outcomes.front().isDone() && !isSame) {
      outcomes.front().code = ExitCode::Different;
    }
    printOutcomes(outcomes, {"compare", wanted.json, m_isQuiet});
    throwWhereFailed(outcomes);
    if (!isSame) {
      throw CommandError(ExitCode::Different, "");
    }
  }

 private:
  void check() const {
    if (m_old == kStandardStream && m_new == kStandardStream) {
      throw CommandError(ExitCode::Usage, "the standard input is one drawing, not both");
    }
    if (m_picture.empty()) {
      return;
    }
    if (!isPictureFile(m_picture)) {
      throw CommandError(ExitCode::Usage, m_picture + ": pictures end in .png, .svg or .pdf");
    }
    for (const std::string& plan : {m_old, m_new}) {
      std::error_code ignored;
      if (plan == m_picture || std::filesystem::equivalent(plan, m_picture, ignored)) {
        throw CommandError(ExitCode::Usage, m_picture + " is a drawing that is read");
      }
    }
  }

  /// Whether nothing differs.
  bool work(Outcome& outcome) const {
    checkPlace();
    Drawing before(m_old, m_codePage);
    Drawing after(m_new, m_codePage);
    const DrawingPair pair{before, after};
    Report& report = outcome.report;
    for (Drawing* drawing : {&before, &after}) {
      for (const std::wstring& warning : hostx::warnings(&drawing->database())) {
        report.warn(drawing->file().filename().string() + ": " + os::toUtf8(warning));
      }
    }
    const DrawingDifference difference = differenceOf(before, after, rules());
    checkLayers(difference);
    warnOfUnits(pair, report);
    warnOfUnread(difference, report);
    const PlaceCounts places = placesOfChangedBlocks(after, difference);
    if (report.isJson()) {
      addJson(pair, difference, places, report.json);
    } else {
      tell(pair, difference, places, report);
    }
    if (!m_picture.empty()) {
      DrawingJob job;
      job.input = m_new;
      job.picture = m_picture;
      job.render(differencePicture(before, after, difference,
                                   "against " + before.file().filename().string()),
                 report);
      report.line("picture: {}", m_picture);
    }
    report.json["picture"] = m_picture.empty() ? nlohmann::json() : nlohmann::json(m_picture);
    return difference.isSame();
  }

  void checkPlace() const {
    try {
      if (!m_picture.empty()) {
        const os::AtomicFile begun(m_picture);
      }
    } catch (const os::FileFailure& failure) {
      throw CommandError(ExitCode::OutputUnwritable, failure.message());
    }
  }

  CompareRules rules() const {
    CompareRules rules;
    rules.ignoresHandles = !m_ignored.empty();
    if (m_tolerance) {
      rules.nearness.length = *m_tolerance;
    }
    if (!m_layers.empty()) {
      std::vector<std::wstring> patterns;
      for (const std::string& pattern : m_layers) {
        patterns.push_back(os::fromUtf8(pattern));
      }
      rules.isChosen = [patterns](const std::string& layer) {
        const std::wstring name = os::fromUtf8(layer);
        return std::any_of(patterns.begin(), patterns.end(),
                           [&](const std::wstring& pattern) { return matchesGlob(name, pattern); });
      };
    }
    return rules;
  }

  /// A pattern that nothing matches is a mistake, and must not read as "the same".
  void checkLayers(const DrawingDifference& difference) const {
    const ChangeCounts counts = difference.counts();
    if (!m_layers.empty() && counts.isSame() && counts.same == 0 &&
        difference.tables.front().isSame()) {
      throw CommandError(
          ExitCode::NothingToDo,
          fmt::format("neither {} nor {} has anything on these layers", m_old, m_new));
    }
  }

  static void warnOfUnits(const DrawingPair& pair, Report& report) {
    if (pair.before.info().units != pair.after.info().units) {
      report.warn(
          fmt::format("the drawings have different units, {} and {}; numbers are compared "
                      "as they stand",
                      pair.before.unitName(), pair.after.unitName()));
    }
  }

  static void warnOfUnread(const DrawingDifference& difference, Report& report) {
    const std::string kinds = fmt::format("{}", fmt::join(difference.notCompared, ", "));
    if (!kinds.empty()) {
      report.warn(kinds + ": not read whole from DWG, so that geometry is not compared");
    }
  }

  void list(const char* title, const DrawingPair& pair, const std::vector<ComparedEntity>& entities,
            Report& report) const {
    if (entities.empty()) {
      return;
    }
    report.line("  {}:", title);
    const std::size_t shown =
        m_isAll || entities.size() <= kMostNamed + 1 ? entities.size() : kMostNamed;
    for (std::size_t i = 0; i < shown; ++i) {
      report.line("    {}", entityText(pair, entities[i]));
    }
    if (shown < entities.size()) {
      report.line("    ... and {} more; --all lists them", entities.size() - shown);
    }
  }

  void tell(const DrawingPair& pair, const DrawingDifference& difference, const PlaceCounts& places,
            Report& report) const {
    report.line("{} -> {}", pair.before.file().string(), pair.after.file().string());
    for (const ComparedSpace& space : difference.spaces) {
      const ChangeCounts counts = space.counts();
      if (counts.isSame() && space.kind != ComparedSpace::Kind::Model) {
        continue;
      }
      report.line("{}{}: {}", spaceText(space), placesText(space, places), countsText(counts));
      if (space.isRenumbered && !counts.isSame()) {
        report.line("  handles are others than before: paired by geometry");
      }
      list("added", pair, space.added, report);
      list("removed", pair, space.removed, report);
      list("moved", pair, space.moved, report);
      list("changed", pair, space.changed, report);
    }
    tellLayers(difference, report);
    for (const ComparedTable& table : difference.tables) {
      tellTable(table, report);
    }
    for (const PropertyChange& change : difference.settings) {
      report.line("setting: {}", propertyText(change));
    }
    report.line("{}", difference.isSame()
                          ? "the drawings are the same"
                          : "the drawings are different: " + countsText(difference.counts()));
  }

  static void tellLayers(const DrawingDifference& difference, Report& report) {
    const std::map<std::string, ChangeCounts> layers = countsOfLayers(difference);
    const bool isAnyDifferent = std::any_of(
        layers.begin(), layers.end(), [](const auto& layer) { return !layer.second.isSame(); });
    if (!isAnyDifferent) {
      return;
    }
    report.line("by layer, blocks counted once:");
    for (const auto& [layer, counts] : layers) {
      if (!counts.isSame()) {
        report.line("  {}: {}", layer, countsText(counts));
      }
    }
  }

  void tellTable(const ComparedTable& table, Report& report) const {
    if (table.isSame()) {
      return;
    }
    report.line("{}:", table.name);
    std::vector<std::string> lines;
    for (const std::string& name : table.added) {
      lines.push_back("added " + name);
    }
    for (const std::string& name : table.removed) {
      lines.push_back("removed " + name);
    }
    for (const ComparedRecord& record : table.changed) {
      lines.push_back("changed " + record.name + ": " + propertiesText(record.properties));
    }
    const std::size_t shown = m_isAll || lines.size() <= kMostNamed + 1 ? lines.size() : kMostNamed;
    for (std::size_t i = 0; i < shown; ++i) {
      report.line("  {}", lines[i]);
    }
    if (shown < lines.size()) {
      report.line("  ... and {} more; --all lists them", lines.size() - shown);
    }
  }

  static void addJson(const DrawingPair& pair, const DrawingDifference& difference,
                      const PlaceCounts& places, nlohmann::json& report) {
    nlohmann::json spaces = nlohmann::json::array();
    for (const ComparedSpace& space : difference.spaces) {
      spaces.push_back(spaceJson(pair, space, places));
    }
    nlohmann::json tables = nlohmann::json::array();
    for (const ComparedTable& table : difference.tables) {
      tables.push_back(tableJson(table));
    }
    nlohmann::json layers = nlohmann::json::array();
    for (const auto& [layer, counts] : countsOfLayers(difference)) {
      layers.push_back({{"name", layer}, {"counts", countsJson(counts)}});
    }
    report.update({{"input", fileJson(pair.after)},
                   {"old", fileJson(pair.before)},
                   {"same", difference.isSame()},
                   {"tolerance", difference.tolerance},
                   {"counts", countsJson(difference.counts())},
                   {"layers", std::move(layers)},
                   {"spaces", std::move(spaces)},
                   {"tables", std::move(tables)},
                   {"settings", propertiesJson(difference.settings)}});
  }

  std::string m_old;
  std::string m_new;
  std::vector<std::string> m_layers;
  std::optional<double> m_tolerance;
  std::string m_ignored;
  bool m_isAll = false;
  std::string m_picture;
  std::string m_codePage;
  std::string m_report = "text";
  bool m_isQuiet = false;
};

}  // namespace

std::unique_ptr<Command> makeCompareCommand() {
  return std::make_unique<CompareCommand>();
}

}  // namespace quoin::commands
