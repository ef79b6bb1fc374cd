// How an affine map of space acts on entities that lie in a plane: the plane's new normal, and
// the map from the old plane's coordinates to the new plane's.
#pragma once

#include <numbers>

#include "gemat3d.h"

namespace quoin::db {

inline constexpr double kFullTurn = 2.0 * std::numbers::pi;
/// Rounding in a product of three matrices of unit size stays below this; a normal that turns
/// less is the same normal.
inline constexpr double kSameDirection = 1.0e-14;
/// Relative deviation up to which a map counts as keeping shapes (what gTol is for unit vectors).
inline constexpr double kSameShape = 1.0e-10;

struct PlaneMap {
  PlaneMap(const AcGeVector3d& oldNormal, const AcGeMatrix3d& matrix);

  AcGeVector3d normal;  // of the image, on the side to which the old normal goes
  AcGeMatrix3d map;     // plane coordinates to plane coordinates
  bool isMirrored = false;
  /// Whether angles in the plane stay; only then do circles stay circles.
  bool isSimilar = false;
  /// Whether what is perpendicular to the plane stays so.
  bool keepsPerpendicular = false;
  double scale = 1.0;        // of lengths in the plane, where isSimilar
  double heightScale = 1.0;  // of lengths along the normal
  double turn = 0.0;         // the image of the plane's X axis, radians

  /// Where a direction in the plane goes, in [0, 2 pi).
  double angle(double before) const;
};

}  // namespace quoin::db
