// Cutting axes at their outermost crossings. Peer: every pair of lines once, in plain doubles.
#include <memory>

#include "AxisLineCutAlg.h"
#include "bench/Measure.h"
#include "bench/Registration.h"
#include "bench/Workloads.h"

namespace quoin::bench {
namespace {

/// Plain axes, and what is left of them.
struct Cut {
  std::vector<Line> lines;
  std::vector<Line> cut;
};

auto algorithmFor(std::size_t size) {
  auto algorithm = std::make_unique<AxisLineCutAlg>();
  for (const Line& line : axes(static_cast<int>(size))) {
    algorithm->AppendSrcAxisLine(new AxisLikeLineSeg{AcGePoint3d(line.x0, line.y0, 0.0),
                                                     AcGePoint3d(line.x1, line.y1, 0.0)});
  }
  return algorithm;
}
auto linesFor(std::size_t size) {
  return std::make_unique<Cut>(Cut{axes(static_cast<int>(size)), {}});
}

void cutByModule(AxisLineCutAlg& algorithm) {
  algorithm.CutAxisLines();
}
Found foundByModule(AxisLineCutAlg& algorithm) {
  Found found;
  for (const AxisLikeLineSeg* line : algorithm.GetDestAxisLines()) {
    found.count += 1.0;
    found.sum += line->ptStart.distanceTo(line->ptEnd);
  }
  return found;
}

void cutByPairs(Cut& axes) {
  const std::vector<Line>& lines = axes.lines;
  struct Range {
    double first = 2.0;
    double last = -1.0;
    void add(double at) {
      first = std::min(first, at);
      last = std::max(last, at);
    }
  };
  std::vector<Range> ranges(lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const Line& a = lines[i];
    const double ax = a.x1 - a.x0;
    const double ay = a.y1 - a.y0;
    for (std::size_t j = i + 1; j < lines.size(); ++j) {
      const Line& b = lines[j];
      const double bx = b.x1 - b.x0;
      const double by = b.y1 - b.y0;
      const double cross = ax * by - ay * bx;
      if (cross == 0.0) {
        continue;
      }
      const double px = b.x0 - a.x0;
      const double py = b.y0 - a.y0;
      const double onA = (px * by - py * bx) / cross;
      const double onB = (px * ay - py * ax) / cross;
      if (onA >= 0.0 && onA <= 1.0 && onB >= 0.0 && onB <= 1.0) {
        ranges[i].add(onA);
        ranges[j].add(onB);
      }
    }
  }
  std::vector<Line>& cut = axes.cut;
  cut.reserve(lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const Line& a = lines[i];
    const Range range = ranges[i].first < ranges[i].last ? ranges[i] : Range{0.0, 1.0};
    const double ax = a.x1 - a.x0;
    const double ay = a.y1 - a.y0;
    cut.push_back({a.x0 + ax * range.first, a.y0 + ay * range.first, a.x0 + ax * range.last,
                   a.y0 + ay * range.last});
  }
}
Found foundByPairs(const Cut& axes) {
  Found found;
  for (const Line& line : axes.cut) {
    found.count += 1.0;
    found.sum += lengthOf(line);
  }
  return found;
}

}  // namespace

void registerAxes() {
  for (const std::size_t size : {100u, 300u, 1000u}) {
    Row("axes", size)
        .form("ours", algorithmFor, cutByModule, foundByModule)
        .form("pairs", linesFor, cutByPairs, foundByPairs)
        .add();
  }
}

}  // namespace quoin::bench
