// The merge of gouge and of wall lines in its direct form: one for both, with what differs beside
// it.
#pragma once

#include <set>
#include <vector>

#include "gepnt3d.h"

namespace quoin::oracle {

/// What stands in both kinds of record; `merged` holds indices of absorbed records.
struct GougeLine {
  AcGePoint3d ptStart;
  AcGePoint3d ptEnd;
  double attr1 = 0.0;
  double attr2 = 0.0;
  double attr3 = 0.0;
  std::vector<std::size_t> merged;
};

struct WallLine {
  AcGePoint3d ptStart;
  AcGePoint3d ptEnd;
  double side1 = 0.0;
  double side2 = 0.0;
  double attr1 = 0.0;
  double attr2 = 0.0;
  bool startFixed = false;
  bool endFixed = false;
  std::vector<std::size_t> merged;
};

/// Merges in place; returns the indices of the result set.
std::set<std::size_t> mergeGougeLines(std::vector<GougeLine>& lines,
                                      const std::vector<AcGePoint3d>& breakPoints,
                                      double projectScale);
std::set<std::size_t> mergeWallLines(std::vector<WallLine>& lines,
                                     const std::vector<AcGePoint3d>& breakPoints,
                                     double projectScale);

}  // namespace quoin::oracle
