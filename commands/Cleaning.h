// Lines of a drawing cleaned level by level, and what becomes of the drawing then.
#pragma once

#include <array>
#include <set>
#include <string>
#include <vector>

#include "commands/CleanMarks.h"
#include "commands/CleanSources.h"
#include "commands/Drawing.h"
#include "plan/CleanLines.h"

namespace quoin::commands {

/// Lengths of cleaning, unless options say otherwise.
inline constexpr const char* kCleanSnap = "5mm";
inline constexpr const char* kCleanReach = "20mm";
inline constexpr const char* kCleanSpur = "20mm";

/// What JSON reports call a step, and what the text report says was done.
struct StepWords {
  const char* name;
  const char* told;
};
const StepWords& wordsOf(plan::CleanStep step);

/// What JSON reports call a reason why a place is undecided.
const char* nameOf(plan::UndecidedKind kind);

/// All steps, with the lengths above.
plan::CleanOptions defaultCleanOptions(const Drawing& drawing);

/// One height, cleaned.
struct CleanedLevel {
  double height;
  const CleanLevel* level;  // of the sources
  plan::CleanResult result;
};

/// Cleans every level. The merge takes ends for touching at the capture distance of the project.
/// Fails: throws CommandError (Interrupted).
std::vector<CleanedLevel> cleanLevels(const CleanSources& found, const plan::CleanOptions& options);

/// The lines of a drawing and what cleaning makes of them; the drawing is as it was.
struct Cleaning {
  CleanSources found;
  std::vector<CleanedLevel> levels;  // point into `found`
};
/// Fails: throws CommandError (NothingToDo where there is no line on the layers, Interrupted).
Cleaning findCleaning(Drawing& drawing, const std::set<std::wstring>& layers,
                      const plan::CleanOptions& options);

bool isMoved(const AcGePoint3d& old, const AcGePoint2d& now);
/// The lines of a level that are gone.
std::vector<std::size_t> goneOf(const CleanedLevel& cleaned);
AcGePoint3d inSpace(const AcGePoint2d& at, double height);

/// How often each step was done.
std::array<std::size_t, plan::kCleanSteps> cleanCounts(const CleanSources& found,
                                                       const std::vector<CleanedLevel>& levels);
std::size_t undecidedCount(const std::vector<CleanedLevel>& levels);

/// Moves ends and erases what is gone.
/// Fails: throws CommandError (EntityFailed, Interrupted).
void applyCleaning(Drawing& drawing, const CleanSources& found,
                   const std::vector<CleanedLevel>& levels);
/// Marks the undecided places on the layer.
/// Fails: throws CommandError (EntityFailed).
CleanMarks markUndecided(Drawing& drawing, const std::vector<CleanedLevel>& levels,
                         const plan::CleanOptions& options, const std::string& layer);

}  // namespace quoin::commands
