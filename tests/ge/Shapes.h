// Short names for the shapes that the geometry tests are about.
#pragma once

#include <cstring>
#include <limits>

#include "gelnsg3d.h"

namespace shapes {

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kPi = 3.14159265358979323846;

inline AcGePoint3d P(double x, double y, double z = 0.0) {
  return {x, y, z};
}
inline AcGeLineSeg3d seg(double x1, double y1, double x2, double y2) {
  return {P(x1, y1), P(x2, y2)};
}
inline AcGeLine3d line(double x1, double y1, double x2, double y2) {
  return {P(x1, y1), P(x2, y2)};
}
inline bool sameBits(const AcGePoint3d& a, const AcGePoint3d& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace shapes
