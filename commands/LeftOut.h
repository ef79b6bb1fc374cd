// What stands on the layers that a command works on and is not worked on: nothing is left out
// without a word.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "commands/Report.h"

namespace quoin::commands {

/// An entity that is left as it is, and why.
struct SkippedEntity {
  AcDbObjectId entity;
  std::string reason;
};

/// Why an entity is skipped of which the file gives a number that is none: it would be taken for 0,
/// and the walls would meet where they do not.
inline constexpr const char* kUnreadableNumber = "has a number that cannot be read";

/// Straight lines that one block, or all multilines (MLINE), show in model space.
struct InsideShare {
  std::string name;       // the block's, UTF-8
  std::size_t times = 0;  // inserts in model space, or multilines
  double lines = 0.0;     // of all of them; a double, since nested arrays pass every integer
};

struct LeftOut {
  std::vector<SkippedEntity> skipped;
  std::size_t arcSegments = 0;                      // of polylines
  std::map<std::wstring, std::size_t> countOfKind;  // other entities, "HATCH"
  std::vector<InsideShare> blocks;                  // with lines on these layers, by name
  InsideShare multilines;
  /// Blocks and multilines were taken along.
  bool isInsideTaken = false;
  /// And cut like others (Explode.h).
  bool isInsideCut = false;
  /// They hold more lines than are taken of a drawing.
  bool isCutShort = false;
};

/// Lines of a report that name them all; "--in-blocks takes them" only where there is such an
/// option.
void tellLeftOut(const Drawing& drawing, const LeftOut& leftOut, bool canTakeInside,
                 Report& report);
/// A line of a report for each of them.
void tellLeftOutOf(const Drawing& drawing, const std::vector<SkippedEntity>& leftOut,
                   Report& report);
/// For reports: each as sourceJson says it, with its reason.
nlohmann::json skippedJson(const Drawing& drawing, const std::vector<SkippedEntity>& skipped);
/// The fields skipped, arcSegments, otherEntities, insideBlocks and multilines.
void addLeftOut(const Drawing& drawing, const LeftOut& leftOut, nlohmann::json& report);
/// "3 ARC, 1 HATCH, 12 lines inside blocks": for the message that there is nothing to work on;
/// "nothing" where there is nothing at all.
std::string leftOutText(const LeftOut& leftOut);

}  // namespace quoin::commands
