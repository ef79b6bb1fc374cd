#include "commands/Cleaning.h"

#include <fmt/format.h>

#include <algorithm>

#include "commands/CommandError.h"
#include "commands/CommonOptions.h"
#include "commands/Progress.h"
#include "commands/SingleLines.h"

namespace quoin::commands {

namespace {

using plan::CleanStep;

/// A mark is to be seen beside a wall, and not hide it.
constexpr double kMarkMillimeters = 100.0;

constexpr std::array<StepWords, plan::kCleanSteps> kStepWords{{
    {"duplicate", "duplicates removed"},
    {"overlap", "overlapping lines joined"},
    {"snap", "ends snapped"},
    {"extend", "ends extended to corners and junctions"},
    {"trim", "ends trimmed to corners and junctions"},
    {"spur", "spurs removed"},
    {"join", "collinear pieces joined"},
}};

}  // namespace

const StepWords& wordsOf(CleanStep step) {
  return kStepWords[static_cast<std::size_t>(step)];
}

const char* nameOf(plan::UndecidedKind kind) {
  constexpr std::array<const char*, 3> kNames{"severalEnds", "severalPlaces", "otherProperties"};
  return kNames[static_cast<std::size_t>(kind)];
}

plan::CleanOptions defaultCleanOptions(const Drawing& drawing) {
  const auto lengthOf = [&](const char* text) { return parseLength(text)->inUnitsOf(drawing); };
  return {lengthOf(kCleanSnap), lengthOf(kCleanReach), lengthOf(kCleanSpur), true, true, false};
}

std::vector<CleanedLevel> cleanLevels(const CleanSources& found,
                                      const plan::CleanOptions& options) {
  std::vector<CleanedLevel> levels;
  Progress::during("Cleaning lines", [&] {
    for (const auto& [height, level] : found.levels) {
      levels.push_back({height, &level, plan::cleanLines(level.lines, options, level.anchors)});
    }
  });
  Progress::checkInterrupt();
  return levels;
}

Cleaning findCleaning(Drawing& drawing, const std::set<std::wstring>& layers,
                      const plan::CleanOptions& options) {
  Cleaning cleaning{collectCleanSources(drawing, layers, options.removesDuplicates), {}};
  const CleanSources& found = cleaning.found;
  if (found.lines + found.segments + found.doubled.size() == 0) {
    throw CommandError(
        ExitCode::NothingToDo,
        fmt::format("{}: no LINE and no straight polyline segment on {}; what is there: {}",
                    drawing.file().string(), namesText(layers), leftOutText(found)));
  }
  cleaning.levels = cleanLevels(found, options);
  return cleaning;
}

AcGePoint3d inSpace(const AcGePoint2d& at, double height) {
  return {at.x, at.y, height};
}

bool isMoved(const AcGePoint3d& old, const AcGePoint2d& now) {
  return old.x != now.x || old.y != now.y;
}

std::vector<std::size_t> goneOf(const CleanedLevel& cleaned) {
  std::vector<std::size_t> gone;
  auto left = cleaned.result.lines.begin();
  for (std::size_t i = 0; i < cleaned.level->lines.size(); ++i) {
    if (left != cleaned.result.lines.end() && left->line == i) {
      ++left;
    } else {
      gone.push_back(i);
    }
  }
  return gone;
}

std::array<std::size_t, plan::kCleanSteps> cleanCounts(const CleanSources& found,
                                                       const std::vector<CleanedLevel>& levels) {
  std::array<std::size_t, plan::kCleanSteps> counts{};
  for (const CleanedLevel& level : levels) {
    for (const plan::CleanAction& action : level.result.actions) {
      ++counts[static_cast<std::size_t>(action.step)];
    }
  }
  counts[static_cast<std::size_t>(CleanStep::Duplicate)] += found.doubled.size();
  return counts;
}

std::size_t undecidedCount(const std::vector<CleanedLevel>& levels) {
  std::size_t count = 0;
  for (const CleanedLevel& level : levels) {
    count += level.result.undecided.size();
  }
  return count;
}

void applyCleaning(Drawing& drawing, const CleanSources& found,
                   const std::vector<CleanedLevel>& levels) {
  Progress progress("Changing the drawing");
  std::size_t done = 0;
  for (const CleanedLevel& cleaned : levels) {
    for (const plan::CleanedLine& line : cleaned.result.lines) {
      if (!progress.step(++done, found.lines + found.segments)) {
        Progress::checkInterrupt();
      }
      const CleanSource& source = cleaned.level->sources[line.line];
      if (isMoved(source.start, line.start)) {
        moveCleanEnd(drawing, source, false, line.start);
      }
      if (isMoved(source.end, line.end)) {
        moveCleanEnd(drawing, source, true, line.end);
      }
    }
    for (const std::size_t line : goneOf(cleaned)) {
      eraseEntity(drawing, cleaned.level->sources[line].entity);
    }
  }
  for (const DoubledPolyline& polyline : found.doubled) {
    eraseEntity(drawing, polyline.entity);
  }
}

CleanMarks markUndecided(Drawing& drawing, const std::vector<CleanedLevel>& levels,
                         const plan::CleanOptions& options, const std::string& layer) {
  std::vector<AcGePoint3d> places;
  for (const CleanedLevel& cleaned : levels) {
    for (const plan::UndecidedPlace& place : cleaned.result.undecided) {
      places.push_back(inSpace(place.at, cleaned.height));
    }
  }
  return markPlaces(drawing, places, layer, kMarkMillimeters / drawing.millimetersPerUnit(),
                    options.snap);
}

}  // namespace quoin::commands
