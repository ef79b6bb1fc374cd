// Which entity of one list is which of another: by handle, else by what they say. The order of
// either list does not matter, and the other way round the same ones are paired. Near linear
// however many of them are equal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "commands/compare/Signature.h"

namespace quoin::commands {

struct MatchItem {
  std::uint64_t handle = 0;  // 0 where the file gives none
  std::uint64_t kind = 0;
  Signature signature;
};

struct MatchedPair {
  std::size_t before;
  std::size_t after;
};

struct Matches {
  std::vector<MatchedPair> same;    // they say the same
  std::vector<MatchedPair> unsure;  // one handle, or one place: what differs is to be looked at
  std::vector<MatchedPair> moved;   // one shape with the same properties, elsewhere
  std::vector<std::size_t> removed;
  std::vector<std::size_t> added;
  /// Handles were of no use: more entities are found unchanged under another one than under
  /// their own, as where a program has numbered the drawing anew.
  bool isRenumbered = false;
};

struct MatchRules {
  bool usesHandles = true;
  /// Pairs of one handle that were found equal before, and are in neither list.
  std::size_t knownSame = 0;
  /// How far from each other the places of two entities may be that are one, and how far from the
  /// origin places are.
  double near = 1e-9;
  double farthest = 0.0;
  /// Whether an entity of the first list and one of the second are at one place, by their
  /// geometry; what numbers stand for both of them may differ by rounding.
  std::function<bool(std::size_t before, std::size_t after)> isSamePlace;
};

Matches match(const std::vector<MatchItem>& before, const std::vector<MatchItem>& after,
              const MatchRules& rules);

}  // namespace quoin::commands
