// Runs a corpus case: with the module's algorithms, whose project the caller has opened with
// the scale of the case, or with the direct forms.
#pragma once

#include <stdexcept>

#include "oracle/AxisCutOracle.h"
#include "support/CorpusText.h"

namespace quoin::test {

enum class Runner { Module, Oracle };

/// The lines that the case should expect.
/// Fails:  throws std::runtime_error for an unknown algorithm and for a key that the algorithm
///         does not read.
inline Lines runCorpusCase(const CorpusCase& entry, Runner runner) {
  const auto reads = [&entry](std::initializer_list<std::string_view> keys) {
    for (const auto& item : entry.input) {
      if (std::find(keys.begin(), keys.end(), item.first) == keys.end()) {
        throw std::runtime_error(entry.place + ": unknown key " + item.first);
      }
    }
  };
  const bool byModule = runner == Runner::Module;
  const double scale = entry.scale;
  if (entry.algorithm == "break") {
    reads({"line", "cut"});
    const auto lines = wallLinesOf(entry);
    return asLines(byModule ? breakWithModule(lines, cutsOf(entry))
                            : oracle::breakWallLines(lines, cutsOf(entry), scale));
  }
  if (entry.algorithm == "draw") {
    reads({"line", "new"});
    const auto lines = wallLinesOf(entry);
    const RecordText drawn = recordText(valuesOf(entry, "new").at(0));
    return asLines(byModule ? drawWithModule(lines, drawn.ptStart, drawn.ptEnd)
                            : oracle::drawWallLine(lines, drawn.ptStart, drawn.ptEnd, scale));
  }
  if (entry.algorithm == "axes") {
    reads({"line", "null"});
    const auto lines = axesOf(entry);
    return asLines(byModule ? cutAxesWithModule(lines) : oracle::cutAxisLines(lines));
  }
  if (entry.algorithm == "gouges") {
    reads({"line", "break"});
    auto lines = gougesOf(entry);
    const auto breaks = breakPointsOf(entry);
    const auto result = byModule ? mergeGougesWithModule(lines, breaks)
                                 : oracle::mergeGougeLines(lines, breaks, scale);
    return asLines(lines, result);
  }
  if (entry.algorithm == "walls") {
    reads({"line", "break"});
    auto lines = mergeWallsOf(entry);
    const auto breaks = breakPointsOf(entry);
    const auto result = byModule ? mergeWallsWithModule(lines, breaks)
                                 : oracle::mergeWallLines(lines, breaks, scale);
    return asLines(lines, result);
  }
  if (entry.algorithm == "show" || entry.algorithm == "show3d") {
    reads({"show", "wall"});
    const WallEntityLikeRect show = wallsOf(entry, "show").at(0);
    const auto walls = wallsOf(entry, "wall");
    if (entry.algorithm == "show") {
      return asLines(byModule ? showWithModule(show, walls) : oracle::showWall(show, walls, scale));
    }
    return asLines(byModule ? prepareWithModule(show, walls)
                            : oracle::prepareWallFor3d(show, walls, scale));
  }
  throw std::runtime_error(entry.place + ": unknown algorithm " + entry.algorithm);
}

}  // namespace quoin::test
