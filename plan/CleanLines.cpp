#include "plan/CleanLines.h"

#include <algorithm>
#include <tuple>

#include "plan/CleanStateInternal.h"

namespace quoin::plan {

namespace {

/// Rounds of all steps. Each removes lines or makes ends meet, and hardly a plan needs three.
constexpr int kMostRounds = 16;

using cleaning::State;

/// Every step once; whether any changed something.
bool runSteps(State& state) {
  const CleanOptions& options = state.options();
  bool changed = false;
  bool isFresh = false;
  const auto run = [&](bool isWanted, bool (*step)(State&)) {
    if (!isWanted) {
      return;
    }
    if (!isFresh) {
      state.refresh();
    }
    isFresh = !step(state);
    changed = changed || !isFresh;
  };
  state.undecided().clear();
  state.keptOverlaps = 0;
  run(options.removesDuplicates, cleaning::removeDuplicates);
  run(options.snap > 0.0, cleaning::snapEnds);
  run(options.reach > 0.0, cleaning::closeJunctions);
  run(options.spur > 0.0, cleaning::removeSpurs);
  run(options.joins, cleaning::joinLines);

  return changed;
}

/// An end that neither snapping nor closing could decide is one place.
void dropRepeated(std::vector<UndecidedPlace>& places) {
  const auto order = [](const UndecidedPlace& place) {
    return std::make_tuple(place.line, place.other, place.at.x, place.at.y, place.kind);
  };
  std::sort(places.begin(), places.end(),
            [&](const UndecidedPlace& a, const UndecidedPlace& b) { return order(a) < order(b); });
  places.erase(std::unique(places.begin(), places.end(),
                           [](const UndecidedPlace& a, const UndecidedPlace& b) {
                             return a.line == b.line && a.other == b.other && a.at.x == b.at.x &&
                                    a.at.y == b.at.y;
                           }),
               places.end());
}

}  // namespace

CleanResult cleanLines(const std::vector<CleanLine>& lines, const CleanOptions& options,
                       const std::vector<AcGePoint2d>& anchors) {
  State state(lines, options, anchors);
  CleanResult result;
  int rounds = 0;
  while (runSteps(state)) {
    if (++rounds == kMostRounds) {
      result.isSettled = false;
      break;
    }
  }
  result.lines.reserve(lines.size());
  for (const cleaning::Item& item : state.items()) {
    if (item.isLive) {
      result.lines.push_back({item.number, item.ends[0], item.ends[1]});
    }
  }
  std::sort(result.lines.begin(), result.lines.end(),
            [](const CleanedLine& a, const CleanedLine& b) { return a.line < b.line; });
  result.actions = std::move(state.actions());
  for (CleanAction& action : result.actions) {
    action.line = state.item(action.line).number;
    action.survivor = state.item(action.survivor).number;
  }
  std::stable_sort(result.actions.begin(), result.actions.end(),
                   [](const CleanAction& a, const CleanAction& b) { return a.line < b.line; });
  std::stable_sort(result.actions.begin(), result.actions.end(),
                   [](const CleanAction& a, const CleanAction& b) { return a.step < b.step; });
  result.undecided = std::move(state.undecided());
  for (UndecidedPlace& place : result.undecided) {
    place.line = state.item(place.line).number;
    place.other = state.item(place.other).number;
  }
  dropRepeated(result.undecided);
  result.keptOverlaps = state.keptOverlaps;
  return result;
}

}  // namespace quoin::plan
