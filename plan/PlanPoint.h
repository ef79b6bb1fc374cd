// Points as plans have them: seen from above, and finite.
#pragma once

#include <cmath>

#include "gepnt2d.h"
#include "gepnt3d.h"

namespace quoin::plan {

inline AcGePoint2d flat(const AcGePoint3d& point) {
  return {point.x, point.y};
}

inline bool isFinite(const AcGePoint2d& point) {
  return std::isfinite(point.x) && std::isfinite(point.y);
}

}  // namespace quoin::plan
