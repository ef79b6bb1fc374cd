// Breaking the walls of a city: the module's algorithm, and beside it the same work as a plain
// double loop over numbers.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "BreakWallAlgorithm.h"
#include "bench/City.h"
#include "embedded/product/HostApplication.h"

namespace quoin::bench {
namespace {

constexpr double kCapture = 10.0;  // what project scale 1 gives
constexpr double kSamePoint = 1.0e-10;

std::size_t breakByModule(const std::vector<Line>& lines) {
  CBreakWallAlgorithm algorithm;
  for (const Line& line : lines) {
    algorithm.GetSrcWallLines().push_back(new WallLineLikeSeg(
        AcGePoint3d(line.x0, line.y0, 0.0), AcGePoint3d(line.x1, line.y1, 0.0), nullptr));
  }
  algorithm.SplitWallLines();
  return algorithm.GetNewWallLines().size();
}

/// Where on the line, from 0 to 1, the point nearest to (x, y) lies.
double footOn(const Line& line, double x, double y) {
  const double dx = line.x1 - line.x0;
  const double dy = line.y1 - line.y0;
  const double at = ((x - line.x0) * dx + (y - line.y0) * dy) / (dx * dx + dy * dy);
  return std::clamp(at, 0.0, 1.0);
}

double distanceTo(const Line& line, double at, double x, double y) {
  return std::hypot(line.x0 + (line.x1 - line.x0) * at - x, line.y0 + (line.y1 - line.y0) * at - y);
}

std::size_t breakByPlainLoop(const std::vector<Line>& lines) {
  std::vector<Line> pieces;
  std::vector<double> cuts;
  for (const Line& line : lines) {
    const double length = std::hypot(line.x1 - line.x0, line.y1 - line.y0);
    cuts.clear();
    for (const Line& other : lines) {
      if (&other == &line) {
        continue;
      }
      const double atFirst = footOn(line, other.x0, other.y0);
      const double atSecond = footOn(line, other.x1, other.y1);
      const double toFirst = distanceTo(line, atFirst, other.x0, other.y0);
      const double toSecond = distanceTo(line, atSecond, other.x1, other.y1);
      const double at = toSecond > toFirst ? atFirst : atSecond;
      if (kCapture > std::min(toFirst, toSecond) && std::min(at, 1.0 - at) * length >= kCapture) {
        cuts.push_back(at);
      }
    }
    if (cuts.empty()) {
      continue;
    }
    cuts.push_back(1.0);
    std::sort(cuts.begin(), cuts.end());
    double last = 0.0;
    for (const double at : cuts) {
      if ((at - last) * length > kSamePoint) {
        pieces.push_back({line.x0 + (line.x1 - line.x0) * last,
                          line.y0 + (line.y1 - line.y0) * last, line.x0 + (line.x1 - line.x0) * at,
                          line.y0 + (line.y1 - line.y0) * at});
        last = at;
      }
    }
  }
  benchmark::DoNotOptimize(pieces.data());
  return pieces.size();
}

void run(benchmark::State& state, std::size_t (*breakLines)(const std::vector<Line>&)) {
  const HostApplication host;
  const std::vector<Line> lines = city(static_cast<std::size_t>(state.range(0)));
  std::size_t pieces = 0;
  for (auto _ : state) {
    pieces = breakLines(lines);
  }
  // Checked on the small city only: the plain loop takes long on the large one.
  if (lines.size() <= 1000 && breakByModule(lines) != breakByPlainLoop(lines)) {
    state.SkipWithError("the two forms disagree on the number of pieces");
  }
  state.counters["pieces"] = static_cast<double>(pieces);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BreakCityByModule(benchmark::State& state) {
  run(state, breakByModule);
}
void BreakCityByPlainLoop(benchmark::State& state) {
  run(state, breakByPlainLoop);
}

BENCHMARK(BreakCityByModule)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BreakCityByPlainLoop)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quoin::bench
