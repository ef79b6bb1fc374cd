// Junctions that wall lines are not broken at yet, and pieces so short that they hint at drawings
// whose ends miss each other.
#pragma once

#include <nlohmann/json.hpp>
#include <vector>

#include "commands/Report.h"
#include "commands/WallChanges.h"
#include "commands/WallLines.h"

namespace quoin::commands {

/// Lines that breaking would cut, and at how many points.
struct OpenJunctions {
  std::size_t lines = 0;
  std::size_t points = 0;
};

/// What breaking would cut of these lines at the capture distance that is set, or only of those
/// that may be changed. Takes as long as breaking does.
/// Fails: throws CommandError (Interrupted).
OpenJunctions findOpenJunctions(const std::vector<WallLine>& lines, bool onlyChangeable);
/// The lines as they are after these changes.
std::vector<WallLine> linesAfter(const std::vector<WallLine>& lines,
                                 const std::vector<WallChange>& changes);

/// Warns where reference lines are not broken at their junctions, and where they look like the
/// faces of walls, so that walls of walls would come out.
void warnOfReferenceLines(const Drawing& drawing, const std::vector<WallLine>& lines,
                          Report& report);

/// A piece shorter than the capture distance.
struct Sliver {
  std::string source;  // in words: handle of what was cut
  nlohmann::json of;   // in reports: what was cut, null where it is new
  std::string handle;  // of the piece; empty in a dry run
  double length;
};
/// Appends the slivers among these pieces.
void addSlivers(std::vector<Sliver>& slivers, const std::vector<WallPiece>& pieces,
                const std::string& source, const nlohmann::json& of, double captureDistance);
/// Appends the slivers among the pieces of a change.
void addSlivers(std::vector<Sliver>& slivers, const WallChange& change, double captureDistance);
void tellSlivers(const std::vector<Sliver>& slivers, Report& report);
nlohmann::json sliversJson(const std::vector<Sliver>& slivers);

}  // namespace quoin::commands
