// Breaking the walls of a city. Peers: Boost.Geometry's R-tree of all end points with the cuts made
// by hand, as a careful user would write it, and GEOS's union of all lines, as a quick one would.
#include <geos_c.h>

#include <algorithm>
#include <boost/geometry.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <memory>

#include "BreakWallAlgorithm.h"
#include "bench/Geos.h"
#include "bench/Measure.h"
#include "bench/Registration.h"
#include "bench/Workloads.h"

namespace quoin::bench {
namespace {

namespace bg = boost::geometry;
using Point = bg::model::point<double, 2, bg::cs::cartesian>;
using Box = bg::model::box<Point>;
using Entry = std::pair<Point, std::uint32_t>;

constexpr double kCapture = 10.0;  // what project scale 1 gives
constexpr double kSamePoint = 1.0e-10;

using Lines = std::vector<Line>;

template <Lines (*Make)(std::size_t)>
auto algorithmFor(std::size_t size) {
  auto algorithm = std::make_unique<CBreakWallAlgorithm>();
  for (const Line& line : Make(size)) {
    algorithm->GetSrcWallLines().push_back(new WallLineLikeSeg(
        AcGePoint3d(line.x0, line.y0, 0.0), AcGePoint3d(line.x1, line.y1, 0.0), nullptr));
  }
  return algorithm;
}

void breakByModule(CBreakWallAlgorithm& algorithm) {
  algorithm.SplitWallLines();
}
Found foundByModule(CBreakWallAlgorithm& algorithm) {
  Found found;
  for (const WallLineLikeSeg* piece : algorithm.GetNewWallLines()) {
    found.count += 1.0;
    found.sum += piece->ptStart.distanceTo(piece->ptEnd);
  }
  return found;
}

/// Plain lines, and the pieces that they are cut into.
struct Broken {
  Lines lines;
  Lines pieces;
};

void breakByTree(Broken& broken) {
  const Lines& lines = broken.lines;
  std::vector<Entry> entries;
  entries.reserve(2 * lines.size());
  for (std::uint32_t i = 0; i < lines.size(); ++i) {
    entries.emplace_back(Point(lines[i].x0, lines[i].y0), 2 * i);
    entries.emplace_back(Point(lines[i].x1, lines[i].y1), 2 * i + 1);
  }
  const bg::index::rtree<Entry, bg::index::rstar<16>> tree(entries);  // bulk loaded
  Lines& pieces = broken.pieces;
  std::vector<Entry> near;
  std::vector<double> cuts;
  for (std::uint32_t i = 0; i < lines.size(); ++i) {
    const Line& line = lines[i];
    near.clear();
    tree.query(
        bg::index::intersects(Box(
            Point(std::min(line.x0, line.x1) - kCapture, std::min(line.y0, line.y1) - kCapture),
            Point(std::max(line.x0, line.x1) + kCapture, std::max(line.y0, line.y1) + kCapture))),
        std::back_inserter(near));
    const double dx = line.x1 - line.x0;
    const double dy = line.y1 - line.y0;
    const double lengthSqrd = dx * dx + dy * dy;
    const double length = std::sqrt(lengthSqrd);
    cuts.clear();
    for (const Entry& entry : near) {
      if (entry.second / 2 == i) {
        continue;
      }
      const double x = bg::get<0>(entry.first);
      const double y = bg::get<1>(entry.first);
      const double at =
          std::clamp(((x - line.x0) * dx + (y - line.y0) * dy) / lengthSqrd, 0.0, 1.0);
      const double ex = line.x0 + at * dx - x;
      const double ey = line.y0 + at * dy - y;
      if (ex * ex + ey * ey < kCapture * kCapture && at * length >= kCapture &&
          (1.0 - at) * length >= kCapture) {
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
        pieces.push_back(
            {line.x0 + last * dx, line.y0 + last * dy, line.x0 + at * dx, line.y0 + at * dy});
      }
      last = at;
    }
  }
}
Found foundByTree(const Broken& broken) {
  Found found;
  for (const Line& piece : broken.pieces) {
    found.count += 1.0;
    found.sum += lengthOf(piece);
  }
  return found;
}

/// Cuts where lines cross and nowhere else, so that it finds other pieces.
void uniteByGeos(const Broken& broken) {
  const GeosContext context;
  context.countOf(GEOSUnaryUnion_r(context.handle(), context.multiLine(broken.lines).get()));
}

Lines shuffledCity(std::size_t size) {
  return city(size);
}
auto linesFor(std::size_t size) {
  return std::make_unique<Broken>(Broken{city(size), {}});
}

}  // namespace

void registerBreak() {
  for (const std::size_t size : {10000u, 100000u, 1000000u}) {
    Row row("break", size);
    row.form("ours", algorithmFor<shuffledCity>, breakByModule, foundByModule);
    row.form("rtree", linesFor, breakByTree, foundByTree);
    row.add();
  }
  Row("break-union", 100000, 5)
      .form("ours", algorithmFor<shuffledCity>, breakByModule)
      .form("union", linesFor, uniteByGeos)
      .add();
  for (const std::size_t size : {10000u, 100000u, 1000000u}) {
    Row("break-crowd", size).form("ours", algorithmFor<crowd>, breakByModule).add();
    Row("break-city-wall", size).form("ours", algorithmFor<cityWall>, breakByModule).add();
    Row("break-far-out", size).form("ours", algorithmFor<farCity>, breakByModule).add();
    Row("break-one-line", size).form("ours", algorithmFor<oneLine>, breakByModule).add();
  }
}

}  // namespace quoin::bench
