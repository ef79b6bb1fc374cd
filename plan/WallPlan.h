// A plan as walls with openings: what reading a plan finds, and what rooms, schedules and models
// are made of. Lengths are in drawing units, angles in radians.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "gepnt2d.h"

namespace quoin::plan {

/// A straight wall by its reference line. Left and right are seen along it from start to end.
struct Wall {
  AcGePoint2d start;
  AcGePoint2d end;
  /// Distances of the faces from the reference line; their sum is the wall's width.
  double left = 0.0;
  double right = 0.0;
  /// From 0 to 1: how sure it is that this is a wall. 1 for one that the caller states.
  double confidence = 1.0;

  double width() const { return left + right; }
  double length() const { return start.distanceTo(end); }
  /// The unit vector along the wall; zero for a wall without length.
  AcGeVector2d direction() const;
  /// The point of the reference line at this distance from the start.
  AcGePoint2d at(double distance) const { return start + direction() * distance; }
};

enum class OpeningKind : std::uint8_t {
  Opening,  // a gap, and nothing that says more
  Door,
  Window,
};

/// A hole through a wall, from jamb to jamb.
struct Opening {
  /// Index into WallPlan::walls.
  std::size_t wall = 0;
  /// Where along the reference line it begins and ends, from the wall's start; from < to.
  double from = 0.0;
  double to = 0.0;
  OpeningKind kind = OpeningKind::Opening;
  /// Heights above the floor of the lower and the upper edge, where the plan says them.
  std::optional<double> sill = {};
  std::optional<double> head = {};

  double width() const { return to - from; }
};

struct WallPlan {
  std::vector<Wall> walls;
  std::vector<Opening> openings;

  /// The two ends of an opening on the wall's reference line.
  AcGePoint2d startOf(const Opening& opening) const { return walls[opening.wall].at(opening.from); }
  AcGePoint2d endOf(const Opening& opening) const { return walls[opening.wall].at(opening.to); }
};

/// "door", "window", "opening": the words of drawings and reports.
const char* nameOf(OpeningKind kind);
/// Nothing for a word that is none of them.
std::optional<OpeningKind> openingKindNamed(std::string_view name);

}  // namespace quoin::plan
