// Merging the fragments of chains. Peer: GEOS's line merge, its input built from the same numbers.
#include <memory>
#include <utility>

#include "MergeGougeAlgorithm.h"
#include "MergeWallAlgorithm.h"
#include "bench/Geos.h"
#include "bench/Measure.h"
#include "bench/Registration.h"
#include "bench/Workloads.h"

namespace quoin::bench {
namespace {

using Lines = std::vector<Line>;

/// Plain lines, and what they are merged into.
struct Joined {
  explicit Joined(Lines chains) : lines(std::move(chains)) {}
  GeosContext context;
  Lines lines;
  GeosContext::Owned merged;
};

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
  return std::make_unique<Joined>(chains(size));
}

void mergeWalls(CMergeWallAlgorithm& algorithm) {
  algorithm.MergeWallLines();
}
Found foundByModule(CMergeWallAlgorithm& algorithm) {
  Found found;
  for (const MergeWallSeg* line : algorithm.GetMergeWallLines()) {
    found.count += 1.0;
    found.sum += line->ptStart.distanceTo(line->ptEnd);
  }
  return found;
}
void mergeGouges(CMergeGougeAlgorithm& algorithm) {
  algorithm.MergeGougeLines();
}
void mergeByGeos(Joined& joined) {
  const GeosContext& context = joined.context;
  joined.merged =
      context.own(GEOSLineMerge_r(context.handle(), context.multiLine(joined.lines).get()));
}
Found foundByGeos(const Joined& joined) {
  const GEOSContextHandle_t handle = joined.context.handle();
  Found found;
  GEOSLength_r(handle, joined.merged.get(), &found.sum);
  found.count = GEOSGetNumGeometries_r(handle, joined.merged.get());
  return found;
}

}  // namespace

void registerMerge() {
  for (const std::size_t size : {10000u, 100000u, 1000000u}) {
    Row("merge", size)
        .form("ours", wallsFor<chains>, mergeWalls, foundByModule)
        .form("linemerge", linesFor, mergeByGeos, foundByGeos)
        .add();
    Row("merge-gouges", size).form("ours", gougesFor, mergeGouges).add();
  }
  for (const std::size_t size : {10000u, 100000u, 1000000u}) {
    Row("merge-crowd", size).form("ours", wallsFor<crowd>, mergeWalls).add();
    Row("merge-one-line", size).form("ours", wallsFor<oneLine>, mergeWalls).add();
  }
}

}  // namespace quoin::bench
