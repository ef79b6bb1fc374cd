// How far a trimmed grid line goes on beyond its outermost crossing.
#pragma once

#include "gepnt3d.h"
#include "gevec3d.h"

namespace quoin::commands {

/// The crossing, moved by the overhang towards the end that the line had, and not beyond it; the
/// crossing itself for an overhang of 0.
inline AcGePoint3d withOverhang(const AcGePoint3d& crossing, const AcGePoint3d& end,
                                double overhang) {
  if (!(overhang > 0.0)) {
    return crossing;
  }
  const AcGeVector3d cutOff = end - crossing;
  const double length = cutOff.length();
  return length <= overhang ? end : crossing + cutOff * (overhang / length);
}

}  // namespace quoin::commands
