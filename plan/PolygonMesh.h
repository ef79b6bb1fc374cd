// A plane polygon without holes as triangles between its corners, as bodies need their floors.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "gepnt2d.h"

namespace quoin::plan {

/// Twice the area; positive for a counter-clockwise outline.
double doubleAreaOf(const std::vector<AcGePoint2d>& outline);

struct PolygonMesh {
  /// Indices into the outline, counter-clockwise whichever way the outline runs.
  std::vector<std::array<std::size_t, 3>> triangles;
  /// Why there are none; empty where there are.
  std::string problem;
};

/// Fills a polygon with triangles, without corners of its own.
/// Shape:  n >= 3 distinct points, the last is not the first; crosses and touches itself nowhere.
/// Laws:   (1) n - 2 triangles   (2) every side of the outline belongs to one triangle, every other
///         edge to two that run it in opposite directions   (3) the areas sum to the outline's
/// Fails:  says in `problem` what is wrong with the outline.
PolygonMesh meshOf(const std::vector<AcGePoint2d>& outline);

}  // namespace quoin::plan
