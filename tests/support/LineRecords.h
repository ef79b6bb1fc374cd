// Wall line records from text, and pointers to them as the algorithms take them.
#pragma once

#include <string_view>
#include <vector>

#include "WallLineLikeSeg.h"
#include "support/GeometryText.h"

namespace quoin::test {

inline std::vector<WallLineLikeSeg*> pointersTo(std::vector<WallLineLikeSeg>& lines) {
  std::vector<WallLineLikeSeg*> pointers;
  for (WallLineLikeSeg& line : lines) {
    pointers.push_back(&line);
  }
  return pointers;
}

inline std::vector<WallLineLikeSeg> linesOf(std::string_view source) {
  std::vector<WallLineLikeSeg> lines;
  for (const auto& [start, end] : segments(source)) {
    lines.emplace_back(start, end);
  }
  return lines;
}

}  // namespace quoin::test
