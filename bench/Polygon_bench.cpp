// Intersecting star-shaped polygons whose outlines cross at few edges or at nearly all. Peer:
// GEOS's intersection of the same numbers.
#include <memory>
#include <utility>
#include <vector>

#include "GeomPolygon.h"
#include "bench/Geos.h"
#include "bench/Measure.h"
#include "bench/Registration.h"
#include "bench/Workloads.h"

namespace quoin::bench {
namespace {

struct Polygons {
  Polygons(std::size_t edges, bool sameCentre) {
    for (const int which : {0, 1}) {
      for (const auto& [x, y] : star(edges, which, sameCentre)) {
        (which == 0 ? first : second).AppendVertex(AcGePoint3d(x, y, 0.0));
      }
    }
  }
  CGeomPolygon first;
  CGeomPolygon second;
};

struct Outlines {
  Outlines(std::size_t edges, bool sameCentre)
      : first(star(edges, 0, sameCentre)), second(star(edges, 1, sameCentre)) {}
  GeosContext context;
  std::vector<std::pair<double, double>> first;
  std::vector<std::pair<double, double>> second;
};

std::size_t intersectByModule(Polygons& polygons) {
  bool intersects = false;
  polygons.first.IntersectWith(polygons.second, intersects);
  return polygons.first.GetPolygonVertextArray().size();
}
std::size_t intersectByGeos(Outlines& outlines) {
  const GeosContext& context = outlines.context;
  const GeosContext::Owned first = context.polygon(outlines.first);
  const GeosContext::Owned second = context.polygon(outlines.second);
  const GeosContext::Owned result =
      context.own(GEOSIntersection_r(context.handle(), first.get(), second.get()));
  return static_cast<std::size_t>(GEOSGetNumCoordinates_r(context.handle(), result.get())) - 1;
}

}  // namespace

void registerPolygon() {
  for (const bool sameCentre : {false, true}) {
    const std::string workload = sameCentre ? "polygon-many-crossings" : "polygon-few-crossings";
    for (const std::size_t edges : {10u, 1000u, 100000u}) {
      measure(
          workload, "ours", edges,
          [=](std::size_t size) { return std::make_unique<Polygons>(size, sameCentre); },
          intersectByModule, edges > 1000 ? 20 : 100);
      measure(
          workload, "intersection", edges,
          [=](std::size_t size) { return std::make_unique<Outlines>(size, sameCentre); },
          intersectByGeos, edges > 1000 ? 20 : 100);
    }
  }
}

}  // namespace quoin::bench
