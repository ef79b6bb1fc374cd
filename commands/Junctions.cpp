#include "commands/Junctions.h"

#include <fmt/format.h>

#include <map>
#include <unordered_set>
#include <utility>

#include "BreakWallAlgorithm.h"
#include "commands/FaceSpacing.h"
#include "commands/Progress.h"
#include "commands/Words.h"

namespace quoin::commands {

namespace {

/// Fewer lines than these may run beside each other by chance.
constexpr std::size_t kFewestFaces = 8;
/// With that share of lines that have a partner as far away as a wall is thick, they are faces:
/// of single lines a few do, around shafts and cupboards.
constexpr double kFacesShare = 0.6;

}  // namespace

OpenJunctions findOpenJunctions(const std::vector<WallLine>& lines, bool onlyChangeable) {
  CBreakWallAlgorithm algorithm;
  std::unordered_set<const WallLineLikeSeg*> held;
  for (const WallLine& line : lines) {
    algorithm.GetSrcWallLines().push_back(new WallLineLikeSeg(line.start, line.end));
    if (onlyChangeable && (line.isLocked || line.within)) {
      held.insert(algorithm.GetSrcWallLines().back());
    }
  }
  algorithm.SplitWallLines();
  Progress::checkInterrupt();
  // The pieces of one line stand together; a line that is cut at its own end has one.
  OpenJunctions found;
  const std::vector<WallLineLikeSeg*>& pieces = algorithm.GetNewWallLines();
  for (std::size_t i = 0; i < pieces.size();) {
    std::size_t next = i;
    while (next < pieces.size() && pieces[next]->pSrcLine == pieces[i]->pSrcLine) {
      ++next;
    }
    if (next - i > 1 && !held.count(pieces[i]->pSrcLine)) {
      ++found.lines;
      found.points += next - i - 1;
    }
    i = next;
  }
  return found;
}

std::vector<WallLine> linesAfter(const std::vector<WallLine>& lines,
                                 const std::vector<WallChange>& changes) {
  std::map<std::pair<AcDbObjectId, int>, const WallChange*> changeOf;
  for (const WallChange& change : changes) {
    changeOf.emplace(std::pair(change.source.entity, change.source.segment), &change);
  }
  std::vector<WallLine> after;
  after.reserve(lines.size() + changes.size());
  for (const WallLine& line : lines) {
    const auto found = changeOf.find({line.entity, line.segment});
    if (found == changeOf.end() || line.within) {
      after.push_back(line);
      continue;
    }
    for (const WallPiece& piece : found->second->pieces) {
      after.push_back(line);
      after.back().start = piece.start;
      after.back().end = piece.end;
    }
  }
  return after;
}

void warnOfReferenceLines(const Drawing& drawing, const std::vector<WallLine>& lines,
                          Report& report) {
  const OpenJunctions open = findOpenJunctions(lines, false);
  if (open.lines > 0) {
    report.warn(
        fmt::format("{} not broken at {} where others end on them, so walls do not meet "
                    "there; run quoin break first",
                    countText(open.lines, "reference line is", "reference lines are"),
                    countText(open.points, "point")));
  }
  std::size_t faces = 0;
  for (const double spacing : faceSpacings(lines)) {
    const double thickness = spacing * drawing.millimetersPerUnit();
    faces += thickness >= kThinnestWallMillimeters && thickness <= kThickestWallMillimeters;
  }
  if (lines.size() >= kFewestFaces &&
      static_cast<double>(faces) >= kFacesShare * static_cast<double>(lines.size())) {
    report.warn(
        fmt::format("{} of {} run beside another one as far away as a wall is thick: they "
                    "look like the two faces of walls, not like reference lines",
                    faces, countText(lines.size(), "line")));
  }
}

void addSlivers(std::vector<Sliver>& slivers, const std::vector<WallPiece>& pieces,
                const std::string& source, const nlohmann::json& of, double captureDistance) {
  for (const WallPiece& piece : pieces) {
    const double length = piece.start.distanceTo(piece.end);
    if (length < captureDistance) {
      slivers.push_back({source, of, piece.handle, length});
    }
  }
}

void addSlivers(std::vector<Sliver>& slivers, const WallChange& change, double captureDistance) {
  addSlivers(slivers, change.pieces, handleText(change.source.entity), change.report,
             captureDistance);
}

void tellSlivers(const std::vector<Sliver>& slivers, Report& report) {
  if (slivers.empty()) {
    return;
  }
  report.line("{} shorter than the capture distance:",
              countText(slivers.size(), "piece is", "pieces are"));
  report.list(slivers.size(), [&](std::size_t i) {
    const Sliver& sliver = slivers[i];
    return fmt::format("  {}{} long, of {}", sliver.handle.empty() ? "" : sliver.handle + " ",
                       numberText(sliver.length), sliver.source);
  });
}

nlohmann::json sliversJson(const std::vector<Sliver>& slivers) {
  nlohmann::json json = nlohmann::json::array();
  for (const Sliver& sliver : slivers) {
    json.push_back({{"of", sliver.of}, {"handle", sliver.handle}, {"length", sliver.length}});
  }
  return json;
}

}  // namespace quoin::commands
