// The lines of a plan as faces: sorted by direction, pieces of one line put together.
#pragma once

#include <cstddef>
#include <vector>

#include "plan/Axis.h"
#include "plan/FindWalls.h"

namespace quoin::plan {

/// Lines of one direction that continue one another, by where they lie along their group's axis and
/// to its left.
struct Face {
  std::size_t group = 0;
  double begin = 0.0;
  double end = 0.0;
  /// Where its longest line passes its middle, and how much it rises along the axis.
  double offset = 0.0;
  double middle = 0.0;
  double slope = 0.0;
  /// That line, an index into PlanDrawing::lines.
  std::size_t line = 0;

  double length() const { return end - begin; }
  double offsetAt(double at) const { return offset + slope * (at - middle); }
};

struct Faces {
  /// Of each group of parallel lines.
  std::vector<Axis> axes;
  /// By group, then by begin.
  std::vector<Face> faces;
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  /// Of each line of the drawing; kNone for one that cannot be used.
  std::vector<std::size_t> faceOfLine;
};

/// Lines are of one direction where they are within a tenth of a degree, or as much as the
/// tolerance turns them; they are one face where they lie within the tolerance of one line and at
/// most `reach` apart.
Faces makeFaces(const std::vector<PlanLine>& lines, const FindWallsOptions& options);

}  // namespace quoin::plan
