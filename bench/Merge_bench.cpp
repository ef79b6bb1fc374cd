// Merging the fragments of chains. Peer: GEOS's line merge, its input built from the same numbers.
#include <memory>

#include "MergeGougeAlgorithm.h"
#include "MergeWallAlgorithm.h"
#include "bench/Geos.h"
#include "bench/Measure.h"
#include "bench/Registration.h"
#include "bench/Workloads.h"

namespace quoin::bench {
namespace {

using Lines = std::vector<Line>;

template <class Record>
Record* recordOf(const Line& line) {
  auto* const record = new Record();
  record->ptStart.set(line.x0, line.y0, 0.0);
  record->ptEnd.set(line.x1, line.y1, 0.0);
  return record;
}

template <Lines (*Make)(std::size_t)>
auto wallsFor(std::size_t size) {
  auto algorithm = std::make_unique<CMergeWallAlgorithm>();
  for (const Line& line : Make(size)) {
    algorithm->GetSrcWallLines().push_back(recordOf<MergeWallSeg>(line));
  }
  return algorithm;
}
auto gougesFor(std::size_t size) {
  auto algorithm = std::make_unique<CMergeGougeAlgorithm>();
  for (const Line& line : chains(size)) {
    algorithm->GetSrcGougeLines().push_back(recordOf<MergeGougeSeg>(line));
  }
  return algorithm;
}
auto linesFor(std::size_t size) {
  return std::make_unique<Lines>(chains(size));
}

std::size_t mergeWalls(CMergeWallAlgorithm& algorithm) {
  algorithm.MergeWallLines();
  return algorithm.GetMergeWallLines().size();
}
std::size_t mergeGouges(CMergeGougeAlgorithm& algorithm) {
  algorithm.MergeGougeLines();
  return algorithm.GetMergeGougeLines().size();
}
std::size_t mergeByGeos(const Lines& lines) {
  const GeosContext context;
  return context.countOf(GEOSLineMerge_r(context.handle(), context.multiLine(lines).get()));
}

}  // namespace

void registerMerge() {
  for (const std::size_t size : {10000u, 100000u, 1000000u}) {
    measure("merge", "ours", size, wallsFor<chains>, mergeWalls);
    measure("merge", "gouges", size, gougesFor, mergeGouges);
    measure("merge", "linemerge", size, linesFor, mergeByGeos, size > 100000 ? 1 : 0);
  }
  for (const std::size_t size : {10000u, 100000u, 1000000u}) {
    measure("merge-crowd", "ours", size, wallsFor<crowd>, mergeWalls);
    measure("merge-one-line", "ours", size, wallsFor<oneLine>, mergeWalls);
  }
}

}  // namespace quoin::bench
