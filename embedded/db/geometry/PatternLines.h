// The lines of a hatch pattern inside a boundary.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "gepnt3d.h"
#include "gevec3d.h"

namespace quoin::db {

/// One family of parallel lines, in the plane of the hatch (its z is not looked at).
struct PatternFamily {
  double angle = 0.0;          // radians
  AcGePoint3d base;            // on one of the lines, where its dashes begin
  AcGeVector3d offset;         // from there to the same place of the next line
  std::vector<double> dashes;  // strokes, gaps (negative) and dots (0); empty for whole lines
};

/// Closed rings of straight edges; inside is what lies in an odd number of them.
using PatternRings = std::vector<std::vector<AcGePoint3d>>;

/// Calls `visit(start, end)` with every stroke inside the rings; dots begin where they end.
/// Fails: returns false, before the first call, for a family that makes more than `most` strokes or
/// none at all (no distance, a number that is not finite).
bool forEachPatternStroke(const PatternFamily& family, const PatternRings& rings, std::size_t most,
                          const std::function<void(const AcGePoint3d&, const AcGePoint3d&)>& visit);

/// The distance between lines of a family.
double spacingOf(const PatternFamily& family);

}  // namespace quoin::db
