// Intersecting star-shaped polygons whose outlines cross at few edges or at nearly all. Peer:
// GEOS's intersection of the same numbers.
#include <cmath>
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
  GeosContext::Owned result;
};

void intersectByModule(Polygons& polygons) {
  bool intersects = false;
  polygons.first.IntersectWith(polygons.second, intersects);
}
Found foundByModule(Polygons& polygons) {
  const std::vector<AcGePoint3d>& points = polygons.first.GetPolygonVertextArray();
  Found found{static_cast<double>(points.size()), 0.0};
  for (std::size_t i = 0; i < points.size(); ++i) {
    const AcGePoint3d& next = points[(i + 1) % points.size()];
    found.sum += 0.5 * (points[i].x * next.y - next.x * points[i].y);
  }
  found.sum = std::abs(found.sum);
  return found;
}
void intersectByGeos(Outlines& outlines) {
  const GeosContext& context = outlines.context;
  const GeosContext::Owned first = context.polygon(outlines.first);
  const GeosContext::Owned second = context.polygon(outlines.second);
  outlines.result = context.own(GEOSIntersection_r(context.handle(), first.get(), second.get()));
}
Found foundByGeos(const Outlines& outlines) {
  const GEOSContextHandle_t handle = outlines.context.handle();
  Found found;
  GEOSArea_r(handle, outlines.result.get(), &found.sum);
  found.count = GEOSGetNumCoordinates_r(handle, outlines.result.get()) - 1.0;
  return found;
}

}  // namespace

void registerPolygon() {
  for (const bool sameCentre : {false, true}) {
    const std::string workload = sameCentre ? "polygon-many-crossings" : "polygon-few-crossings";
    for (const std::size_t edges : {10u, 1000u, 100000u}) {
      const auto polygons = [=](std::size_t size) {
        return std::make_unique<Polygons>(size, sameCentre);
      };
      const auto outlines = [=](std::size_t size) {
        return std::make_unique<Outlines>(size, sameCentre);
      };
      Row(workload, edges)
          .form("ours", polygons, intersectByModule, foundByModule)
          .form("intersection", outlines, intersectByGeos, foundByGeos)
          .add();
    }
  }
}

}  // namespace quoin::bench
