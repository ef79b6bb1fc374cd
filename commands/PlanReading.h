// A drawing as plan reading takes it: what may be a wall's face, and what says what a gap is.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "commands/CommandLineNames.h"
#include "commands/CommonOptions.h"
#include "commands/Drawing.h"
#include "commands/WallLines.h"
#include "plan/FindWalls.h"

namespace quoin::commands {

/// How walls are looked for, as options say it.
struct ReadingOptions {
  std::string minWidth;
  std::string maxWidth;
  std::string maxOpening;
  double minConfidence = plan::FindWallsOptions().minConfidence;

  void declare(CLI::App& command);
  /// Fails: throws CommandError (Usage) for widths between which nothing fits.
  plan::FindWallsOptions inUnitsOf(const Drawing& drawing) const;
};

struct ReadPlan {
  /// Those with the walls.
  std::set<std::wstring> layers;
  /// On these layers, in blocks and multilines too, and the sides of what is filled;
  /// `found.lines[i]` is `drawing.lines[i]`, and behind them stand the sides of polylines with a
  /// width.
  WallLines found;
  plan::PlanDrawing drawing;
  /// Of each line of `drawing` the number in `found.lines`.
  std::vector<std::size_t> sourceOf;
};

/// The wall layers: those that the patterns name, else those that look like walls, without the one
/// that found walls are put on.
std::set<std::wstring> chooseFaceLayers(Drawing& drawing, const std::vector<std::string>& patterns);

/// Whether the name of a layer says that columns stand on it.
bool looksLikeColumns(std::wstring_view name);

/// Reads model space: lines on the layers as faces, all else that can be drawn in an opening as
/// symbols.
/// Fails: throws CommandError (NothingToDo) where there is no line on the layers.
ReadPlan readPlan(Drawing& drawing, const std::set<std::wstring>& layers);

struct FoundPlan {
  ReadPlan read;
  plan::FoundWalls found;
};
/// Reads model space and finds its walls.
/// Fails: as readPlan; throws CommandError (Interrupted).
FoundPlan findPlanWalls(Drawing& drawing, const std::set<std::wstring>& layers,
                        const plan::FindWallsOptions& options);

}  // namespace quoin::commands
