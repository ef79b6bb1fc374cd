// Paths as entities draw them, for tests of what takes them.
#pragma once

#include "hostdraw.h"

namespace quoin::test {

inline hostx::DrawPath lineOf(const AcGePoint3d& start, const AcGePoint3d& end) {
  hostx::DrawPath path;
  path.start = start;
  path.pieces.push_back({});
  path.pieces.back().end = end;
  return path;
}

}  // namespace quoin::test
