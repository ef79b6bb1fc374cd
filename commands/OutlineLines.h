// The outlines of walls as single lines: what is drawn of them.
#pragma once

#include <string>
#include <vector>

#include "commands/OutlineGaps.h"
#include "commands/WallBodies.h"

namespace quoin::commands {

enum class LineRole { Left, Right, Start, End, Connection, Jamb };

/// "left", "right", "start", "end", "connection", "jamb".
const char* nameOf(LineRole role);

/// One line of an outline.
struct OutlineLine {
  std::size_t wall;
  LineRole role;
  WallDrawingSeg seg;
  std::string handle;  // of what stands for it in a drawing
};

/// All lines, wall by wall, without those that have no length and those that another wall has
/// already.
std::vector<OutlineLine> outlineLines(const std::vector<WallOutline>& outlines);
/// The same with sides that are parted, one for each outline.
std::vector<OutlineLine> outlineLines(const std::vector<WallOutline>& outlines,
                                      const std::vector<PartedOutline>& parted);

}  // namespace quoin::commands
