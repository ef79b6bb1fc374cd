// Two records of which one says in other words what the other says: a spline by the points that it
// fits and by its control points, a leader with the beginning of its hook line, which DWG files
// leave out, and without it. Both are then spelled the same, so that what is left is a difference.
#pragma once

#include "commands/compare/SaidRecord.h"
#include "commands/compare/Signature.h"

namespace quoin::commands {

struct SpelledAlike {
  /// Whether two records may be such ones at all.
  static bool isNeeded(const SaidRecord& before, const SaidRecord& after);

  SpelledAlike(const SaidRecord& old, const SaidRecord& now, const Nearness& nearness);

  SaidRecord before;
  SaidRecord after;
};

}  // namespace quoin::commands
