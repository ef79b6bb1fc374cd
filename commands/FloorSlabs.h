// Floor slabs below closed polylines.
#pragma once

#include <array>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "commands/LeftOut.h"
#include "gepnt3d.h"

namespace quoin::commands {

/// A polygon as a closed body of one thickness, its top in the polygon.
struct FloorSlab {
  using Face = std::array<AcGePoint3d, 4>;

  AcDbObjectId source;
  std::string name;              // of its group: layer and handle
  std::string layer;             // UTF-8
  std::vector<AcGePoint3d> top;  // counter-clockwise from above
  /// The top's, as indices of its corners, counter-clockwise.
  std::vector<std::array<std::size_t, 3>> triangles;
  double thickness = 0.0;

  double area() const;
  /// As WallPrism::faces(): top and bottom in triangles, a quadrilateral a side.
  std::vector<Face> faces() const;
};

/// Where no option says more, millimetres.
inline constexpr double kSlabThickness = 200.0;

struct FloorSlabs {
  std::vector<FloorSlab> slabs;
  /// Polylines that enclose no plane area, or not one alone.
  std::vector<SkippedEntity> leftOut;
  /// What else is on the layers, "TEXT".
  std::map<std::wstring, std::size_t> countOfKind;
};

/// The slabs of these layers in file order. Arcs become chords that leave them by 0.14 % of the
/// radius at most.
FloorSlabs collectSlabs(Drawing& drawing, const std::set<std::wstring>& layers, double thickness);

}  // namespace quoin::commands
