// Names that all geometry headers share.
#pragma once

#include "getol.h"

namespace AcGe {
/// What a geometric object is, for the run-time check through a base class.
enum EntityId { kEntity3d, kCurve3d, kLinearEnt3d, kLine3d, kLineSeg3d };
/// Why an operation could not do what its name says.
enum ErrorCondition {
  kOk,    ///< it did
  k0This  ///< the object itself has no length
};

inline constexpr double kFullTurn = 6.283185307179586476925286766559;  // 2 pi
/// An angle of atan2's range (-pi to pi) as one of [0, 2 pi). What lies below zero by less
/// than rounding is 0, never 2 pi; -0.0 is 0.0; NaN stays NaN.
constexpr double wrapTurn(double angle) {
  if (angle == 0.0) {
    return 0.0;
  }
  const double wrapped = angle < 0.0 ? angle + kFullTurn : angle;
  return wrapped >= kFullTurn ? 0.0 : wrapped;
}
}  // namespace AcGe
