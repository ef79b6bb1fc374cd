// quoin clean: snaps ends, removes duplicates, closes corners and junctions, removes spurs and
// joins pieces on the wall layers.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <set>

#include "commands/CleanSources.h"
#include "commands/Cleaning.h"
#include "commands/DrawingCommand.h"
#include "commands/LayerChoice.h"
#include "commands/PlannedWalls.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/SingleLines.h"
#include "commands/Units.h"
#include "commands/Usage.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"

namespace quoin::commands {

namespace {

using plan::CleanStep;
using plan::UndecidedKind;

constexpr const char* kOff = "off";

const char* toldOf(UndecidedKind kind) {
  constexpr std::array<const char*, 3> kWords{
      "there are several ends to snap to",
      "it meets lines at several places",
      "it lies on a line with other properties, or on a polyline",
  };
  return kWords[static_cast<std::size_t>(kind)];
}

std::string checkLengthOrOff(const std::string& text) {
  return text == kOff || parseLength(text)
             ? ""
             : "'" + text + "' is no length above zero; write 5mm, 0.2in, 5, or off";
}

class CleanCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "clean", "Clean up wall lines: ends that miss each other, duplicates, spurs, pieces");
    m_options.declareFiles(*command);
    m_options.declareLayers(
        *command,
        "Layers with the lines to clean, * and ? allowed; may be repeated. "
        "Default: layers whose name has a word for wall (wall, mur, muro, Wand, 墙, ...)");
    declareUnits(*command);
    addLength(*command, "--snap", m_snap, "Ends closer than this to one place move there, or off");
    addLength(*command, "--reach", m_reach,
              "Ends are extended or trimmed by this much at most, to where lines meet, or off");
    addLength(*command, "--spur", m_spur,
              "Shorter lines that stick out of others are removed, or off");
    command
        ->add_option("--duplicates", m_duplicates,
                     "Which lines are removed that lie on others: those with the same properties, "
                     "any, or off")
        ->check(oneOf({"same", "any", kOff}))
        ->capture_default_str();
    command->add_flag("--no-join", m_isJoinOff, "Leave collinear pieces apart");
    command->add_option("--mark-layer", m_markLayer, "The layer of marks about undecided places")
        ->type_name("NAME")
        ->capture_default_str();
    command->footer(
        "Ends that meet an end or a line are not touched, and no gap in a row is closed that is\n"
        "wider than --snap, so doors stay open. Lengths are in drawing units unless they name "
        "one.\n"
        "Places with several ways out stay as they are, with a circle about them; a circle whose\n"
        "place is decided goes with the next run. Of polylines the free ends move, and copies\n"
        "are removed. Cleaning twice changes nothing.\n\n"
        "Examples:\n"
        "  quoin clean plan.dxf -o cleaned.dxf --picture cleaned.png\n"
        "  quoin clean plan.dxf --layer 'A-WALL*' --snap 2mm --reach 1in --spur off -o "
        "cleaned.dxf");
    return command;
  }

  std::string name() const override { return "clean"; }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const std::set<std::wstring> layers = chooseLayers(drawing.layers(), m_options.layers, drawing);
    // The merge takes ends for touching at the distance at which ends snap.
    m_options.capture.tolerance = m_snap == kOff ? kCleanSnap : m_snap;
    setCapture(m_options.capture, drawing);
    const plan::CleanOptions options = optionsFor(drawing);
    const auto [found, levels] = findCleaning(drawing, layers, options);
    Picture picture;
    if (job.hasPicture()) {
      picture = paint(drawing, found, levels);
    }
    // Handles are asked for before erasing takes the lines away.
    tell(drawing, layers, found, levels, options, report);
    if (report.isJson()) {
      addJson(drawing, layers, found, levels, options, report.json);
    }
    warnOfDoubtfulUnits(drawing, found, report);
    applyCleaning(drawing, found, levels);
    const CleanMarks marks = markUndecided(drawing, levels, options, m_markLayer);
    tellMarks(marks, levels, report);
    job.save(drawing);
    job.render(picture, report);
  }

 private:
  /// In a wrong unit the lengths are many times too large or too small.
  void warnOfDoubtfulUnits(Drawing& drawing, const CleanSources& found, Report& report) const {
    std::vector<WallLine> walls;
    for (const auto& [height, level] : found.levels) {
      for (const CleanSource& source : level.sources) {
        walls.push_back({source.start, source.end, source.entity, source.segment, false, {}});
      }
    }
    CaptureOptions units;
    units.units = m_options.capture.units;
    warnOfUnits(units, drawing, walls, report);
  }

  void declareUnits(CLI::App& command) {
    std::vector<std::string> names;
    for (const NamedUnit& unit : namedUnits()) {
      names.emplace_back(unit.name);
    }
    command
        .add_option("--units", m_options.capture.units,
                    "What a drawing unit is, where the drawing names none or a wrong one")
        ->check(oneOf(names));
  }
  static void addLength(CLI::App& command, const std::string& option, std::string& value,
                        const std::string& what) {
    command.add_option(option, value, what)
        ->type_name("LENGTH")
        ->check(CLI::Validator(checkLengthOrOff, "", ""))
        ->capture_default_str();
  }

  static double lengthOf(const std::string& text, const Drawing& drawing) {
    return text == kOff ? 0.0 : parseLength(text)->inUnitsOf(drawing);
  }
  plan::CleanOptions optionsFor(const Drawing& drawing) const {
    plan::CleanOptions options;
    options.snap = lengthOf(m_snap, drawing);
    options.reach = lengthOf(m_reach, drawing);
    options.spur = lengthOf(m_spur, drawing);
    options.removesDuplicates = m_duplicates != kOff;
    options.ignoresKeys = m_duplicates == "any";
    options.joins = !m_isJoinOff;
    return options;
  }

  static std::string lengthText(double length, const Drawing& drawing) {
    return length > 0.0 ? numberText(length) + " " + drawing.unitName() : kOff;
  }

  static void tell(const Drawing& drawing, const std::set<std::wstring>& layers,
                   const CleanSources& found, const std::vector<CleanedLevel>& levels,
                   const plan::CleanOptions& options, Report& report) {
    report.line("layers: {}", namesText(layers));
    report.line("snap {}, reach {}, spurs below {}", lengthText(options.snap, drawing),
                lengthText(options.reach, drawing), lengthText(options.spur, drawing));
    report.line("{} and {} of polylines", countText(found.lines, "line"),
                countText(found.segments, "segment"));
    const auto counts = cleanCounts(found, levels);
    for (std::size_t step = 0; step < counts.size(); ++step) {
      report.line("{:6} {}", counts[step], wordsOf(static_cast<CleanStep>(step)).told);
    }
    for (const CleanedLevel& cleaned : levels) {
      tellLevel(drawing, cleaned, report);
    }
    report.details(found.doubled.size(), [&](std::size_t i) {
      return fmt::format("  {}: duplicate of {}", nameText(drawing, found.doubled[i].entity),
                         nameText(drawing, found.doubled[i].survivor));
    });
    tellLeftOut(drawing, found, false, report);
  }

  static void tellLevel(const Drawing& drawing, const CleanedLevel& cleaned, Report& report) {
    const plan::CleanResult& result = cleaned.result;
    const auto nameOf = [&](std::size_t line) {
      return nameText(drawing, cleaned.level->sources[line].entity);
    };
    report.details(result.actions.size(), [&](std::size_t i) {
      const plan::CleanAction& action = result.actions[i];
      const std::string what = action.survivor == action.line
                                   ? std::string()
                                   : fmt::format(", {} stays", nameOf(action.survivor));
      return fmt::format("  {}: {} from {} to {}{}", nameOf(action.line), wordsOf(action.step).name,
                         pointText(inSpace(action.from, cleaned.height)),
                         pointText(inSpace(action.to, cleaned.height)), what);
    });
    report.list(result.undecided.size(), [&](std::size_t i) {
      const plan::UndecidedPlace& place = result.undecided[i];
      return fmt::format("undecided: {} at {}: {}{}", nameOf(place.line),
                         pointText(inSpace(place.at, cleaned.height)), toldOf(place.kind),
                         place.other == place.line ? "" : " (" + nameOf(place.other) + ")");
    });
    if (result.keptOverlaps > 0) {
      report.line("left as they are: {} of segments of polylines or on locked layers",
                  countText(result.keptOverlaps, "overlap"));
    }
    if (!result.isSettled) {
      report.warn("the lines did not come to rest; clean the result again");
    }
  }

  void tellMarks(const CleanMarks& marks, const std::vector<CleanedLevel>& levels,
                 Report& report) const {
    const std::size_t count = undecidedCount(levels);
    if (count > 0 || marks.erased > 0) {
      report.line("{} undecided, marked on {}: {} added, {} no longer needed",
                  countText(count, "place"), m_markLayer, countText(marks.added, "mark"),
                  marks.erased);
    }
    if (!report.isJson()) {
      return;
    }
    for (std::size_t i = 0; i < marks.handles.size(); ++i) {
      report.json["undecided"][i]["mark"] = marks.handles[i];
    }
    report.json["marks"] = {
        {"layer", m_markLayer}, {"added", marks.added}, {"erased", marks.erased}};
  }

  static nlohmann::json entityJson(const Drawing& drawing, const CleanSource& source) {
    nlohmann::json json = sourceJson(drawing, source.entity);
    if (source.segment >= 0) {
      json["segment"] = source.segment;
    }
    return json;
  }

  static void addJson(const Drawing& drawing, const std::set<std::wstring>& layers,
                      const CleanSources& found, const std::vector<CleanedLevel>& levels,
                      const plan::CleanOptions& options, nlohmann::json& report) {
    report.update({{"layers", namesJson(layers)},
                   {"snap", options.snap},
                   {"reach", options.reach},
                   {"spur", options.spur},
                   {"lines", found.lines + found.segments},
                   {"counts", nlohmann::json::object()},
                   {"actions", nlohmann::json::array()},
                   {"changes", nlohmann::json::array()},
                   {"removed", nlohmann::json::array()},
                   {"undecided", nlohmann::json::array()}});
    const auto counts = cleanCounts(found, levels);
    for (std::size_t step = 0; step < counts.size(); ++step) {
      report["counts"][wordsOf(static_cast<CleanStep>(step)).name] = counts[step];
    }
    std::size_t keptOverlaps = 0;
    for (const CleanedLevel& cleaned : levels) {
      addLevelJson(drawing, cleaned, report);
      keptOverlaps += cleaned.result.keptOverlaps;
    }
    for (const DoubledPolyline& polyline : found.doubled) {
      report["actions"].push_back(sourceJson(drawing, polyline.entity));
      report["actions"].back().update(
          {{"step", "duplicate"}, {"survivor", handleText(polyline.survivor)}});
      report["removed"].push_back(sourceJson(drawing, polyline.entity));
    }
    report["changed"] = report["changes"].size();
    report["keptOverlaps"] = keptOverlaps;
    addLeftOut(drawing, found, report);
  }

  static void addLevelJson(const Drawing& drawing, const CleanedLevel& cleaned,
                           nlohmann::json& report) {
    const std::vector<CleanSource>& sources = cleaned.level->sources;
    for (const plan::CleanAction& action : cleaned.result.actions) {
      nlohmann::json json = entityJson(drawing, sources[action.line]);
      json["step"] = wordsOf(action.step).name;
      json["from"] = pointJson(inSpace(action.from, cleaned.height));
      json["to"] = pointJson(inSpace(action.to, cleaned.height));
      if (action.survivor != action.line) {
        json["survivor"] = handleText(sources[action.survivor].entity);
      }
      report["actions"].push_back(std::move(json));
    }
    for (const plan::CleanedLine& line : cleaned.result.lines) {
      const CleanSource& source = sources[line.line];
      if (isMoved(source.start, line.start) || isMoved(source.end, line.end)) {
        nlohmann::json json = entityJson(drawing, source);
        json["results"] = nlohmann::json::array(
            {lineJson(handleText(source.entity), inSpace(line.start, cleaned.height),
                      inSpace(line.end, cleaned.height))});
        report["changes"].push_back(std::move(json));
      }
    }
    for (const std::size_t line : goneOf(cleaned)) {
      report["removed"].push_back(entityJson(drawing, sources[line]));
    }
    for (const plan::UndecidedPlace& place : cleaned.result.undecided) {
      nlohmann::json json = entityJson(drawing, sources[place.line]);
      json["why"] = nameOf(place.kind);
      json["at"] = pointJson(inSpace(place.at, cleaned.height));
      if (place.other != place.line) {
        json["other"] = handleText(sources[place.other].entity);
      }
      report["undecided"].push_back(std::move(json));
    }
  }

  static Picture paint(Drawing& drawing, const CleanSources& found,
                       const std::vector<CleanedLevel>& levels) {
    std::size_t acted = found.doubled.size();
    for (const CleanedLevel& cleaned : levels) {
      acted += cleaned.result.actions.size();
    }
    const std::size_t undecided = undecidedCount(levels);
    Picture picture =
        newPicture(drawing, "lines cleaned",
                   fmt::format("{} and {} of polylines: {}, {} undecided",
                               countText(found.lines, "line"), countText(found.segments, "segment"),
                               countText(acted, "action"), countText(undecided, "place")));
    std::set<AcDbObjectId> ids;
    for (const CleanedLevel& cleaned : levels) {
      for (const CleanSource& source : cleaned.level->sources) {
        addFocus(picture, source.start, source.end);
        if (source.segment < 0) {
          ids.insert(source.entity);
        }
      }
    }
    addPlanShapes(picture, drawing, ids);
    const double markSize = markSizeFor(acted + undecided);
    for (const CleanedLevel& cleaned : levels) {
      paintLevel(picture, cleaned, markSize);
    }
    picture.legend = {{"line, as it was", palette::kWall, false, MarkShape::Dot, kWallWidth},
                      {"line that changed", palette::kFirst, false, MarkShape::Dot, kPieceWidth},
                      {"end that moved", palette::kFirst, true},
                      {"line that is gone", palette::kSecond, false, MarkShape::Dot, kPieceWidth},
                      {"middle of one that is gone", palette::kSecond, true, MarkShape::Square},
                      {"undecided", palette::kMark, true, MarkShape::Cross},
                      {"rest of the plan", palette::kPlan}};
    return picture;
  }

  static void paintLevel(Picture& picture, const CleanedLevel& cleaned, double markSize) {
    const std::vector<CleanSource>& sources = cleaned.level->sources;
    for (const std::size_t line : goneOf(cleaned)) {
      addLine(picture, sources[line].start, sources[line].end, palette::kSecond, 3.0 * kPieceWidth);
      addMark(picture, sources[line].start + (sources[line].end - sources[line].start) * 0.5,
              MarkShape::Square, palette::kSecond, markSize);
    }
    for (const plan::CleanedLine& line : cleaned.result.lines) {
      const CleanSource& source = sources[line.line];
      const bool isChanged = isMoved(source.start, line.start) || isMoved(source.end, line.end);
      addLine(picture, inSpace(line.start, cleaned.height), inSpace(line.end, cleaned.height),
              isChanged ? palette::kFirst : palette::kWall, isChanged ? kPieceWidth : kWallWidth);
    }
    for (const plan::CleanAction& action : cleaned.result.actions) {
      if (action.step == CleanStep::Snap || action.step == CleanStep::Extend ||
          action.step == CleanStep::Trim) {
        addMark(picture, inSpace(action.to, cleaned.height), MarkShape::Dot, palette::kFirst,
                markSize);
      }
    }
    for (const plan::UndecidedPlace& place : cleaned.result.undecided) {
      addMark(picture, inSpace(place.at, cleaned.height), MarkShape::Cross, palette::kMark,
              1.5 * markSize);
    }
  }

  std::string m_snap = kCleanSnap;
  std::string m_reach = kCleanReach;
  std::string m_spur = kCleanSpur;
  std::string m_duplicates = "same";
  bool m_isJoinOff = false;
  std::string m_markLayer = kMarkLayer;
};

}  // namespace

std::unique_ptr<Command> makeCleanCommand() {
  return std::make_unique<CleanCommand>();
}

}  // namespace quoin::commands
