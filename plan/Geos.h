// What plan reading takes of GEOS: finding segments by their boxes, and the faces of a heap of
// lines. GEOS's own types do not show; each object has a context of its own, so that threads may
// work side by side.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include "gepnt2d.h"

namespace quoin::plan {

/// GEOS could not do what it was asked to; what() has its words.
class GeosError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Box {
  AcGePoint2d low;
  AcGePoint2d high;

  Box(const AcGePoint2d& a, const AcGePoint2d& b, double margin = 0.0);
};

/// Boxes arranged so that those which meet a box are found without looking at the others
/// (sort-tile-recursive R-tree).
class BoxIndex {
 public:
  /// Boxes that are not finite are left out.
  /// Fails: throws GeosError.
  explicit BoxIndex(const std::vector<Box>& boxes);
  ~BoxIndex();
  BoxIndex(const BoxIndex&) = delete;
  BoxIndex& operator=(const BoxIndex&) = delete;

  /// Calls visit(index) for the boxes that meet this one, sides included, in no order that means
  /// anything.
  void visit(const Box& box, const std::function<void(std::size_t)>& visit) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

/// The corners of a closed polygon in order, the first not repeated.
using Ring = std::vector<AcGePoint2d>;

/// A part of the plane: its outer ring counter-clockwise, its holes clockwise.
struct Polygon {
  Ring outer;
  std::vector<Ring> holes;
};

/// The bounded faces into which closed rings part the plane: rings may cross, touch and run along
/// each other. Points move to a grid with cells of size `grid`, so that what is nearer becomes one.
/// Fails: throws GeosError.
std::vector<Polygon> facesOf(const std::vector<Ring>& rings, double grid);

/// The area that GEOS computes: for comparison.
double geosArea(const Polygon& polygon);
/// The union of polygons, each of whatever shape: the direct form of what rooms are made of.
/// Fails: throws GeosError.
std::vector<Polygon> unionOf(const std::vector<Polygon>& polygons);

}  // namespace quoin::plan
