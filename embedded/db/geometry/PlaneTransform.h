// How entities that lie in a plane, or are placed in one, are transformed: what their kinds share.
#pragma once

#include <span>

#include "embedded/db/core/ObjectImpl.h"
#include "embedded/db/geometry/PlaneMap.h"

namespace quoin::db {

/// The value in [0, turn).
double wrapped(double value, double turn);

/// The image of the plane of a record.
PlaneMap planeOf(const TagList& tags, const SubclassLayout& layout, const AcGeMatrix3d& matrix);

/// Normal and thickness.
/// Fails: eCannotScaleNonUniformly where what has a thickness would lean.
Acad::ErrorStatus transformPlane(RecordEdit& edit, const SubclassLayout& layout,
                                 const PlaneMap& plane);

/// Points and lines: in world coordinates, with a thickness along their normal.
Acad::ErrorStatus transformStraight(RecordEdit& edit, const SubclassLayout& layout, bool hasEnd,
                                    const AcGeMatrix3d& matrix);

/// Where the factors and the rotation of an entity stand that is placed as a whole.
struct PlacedCodes {
  std::string_view marker;
  int rotation;    // degrees
  int sideFactor;  // the factor along X, which a mirrored one has with the other sign
  std::span<const int> lengths;
};
/// Fails: eCannotScaleNonUniformly.
Acad::ErrorStatus transformPlaced(RecordEdit& edit, const AcGeMatrix3d& matrix,
                                  const PlacedCodes& codes);

}  // namespace quoin::db
