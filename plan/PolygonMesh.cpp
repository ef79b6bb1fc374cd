#include "plan/PolygonMesh.h"

#include <geos_c.h>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

namespace quoin::plan {

namespace {

struct FinishContext {
  void operator()(GEOSContextHandle_HS* context) const { GEOS_finish_r(context); }
};
/// A context a call: callers may run on threads of their own.
using Context = std::unique_ptr<GEOSContextHandle_HS, FinishContext>;

Context newContext() {
  Context context(GEOS_init_r());
  // What it says of failures shows in the results.
  GEOSContext_setErrorMessageHandler_r(
      context.get(), [](const char*, void*) {}, nullptr);
  GEOSContext_setNoticeMessageHandler_r(
      context.get(), [](const char*, void*) {}, nullptr);
  return context;
}

class Geometry {
 public:
  Geometry(const Context& context, GEOSGeometry* geometry)
      : m_context(context.get()), m_geometry(geometry) {}
  ~Geometry() {
    if (m_geometry) {
      GEOSGeom_destroy_r(m_context, m_geometry);
    }
  }
  Geometry(const Geometry&) = delete;
  Geometry& operator=(const Geometry&) = delete;
  GEOSGeometry* get() const { return m_geometry; }
  GEOSGeometry* release() { return std::exchange(m_geometry, nullptr); }

 private:
  GEOSContextHandle_t m_context;
  GEOSGeometry* m_geometry;
};

GEOSGeometry* newPolygon(const Context& context, const std::vector<AcGePoint2d>& outline) {
  std::vector<double> corners;
  corners.reserve(2 * (outline.size() + 1));
  for (std::size_t i = 0; i <= outline.size(); ++i) {
    corners.push_back(outline[i % outline.size()].x);
    corners.push_back(outline[i % outline.size()].y);
  }
  GEOSCoordSequence* const points = GEOSCoordSeq_copyFromBuffer_r(
      context.get(), corners.data(), static_cast<unsigned int>(corners.size() / 2), 0, 0);
  Geometry ring(context, points ? GEOSGeom_createLinearRing_r(context.get(), points) : nullptr);
  return ring.get() ? GEOSGeom_createPolygon_r(context.get(), ring.release(), nullptr, 0) : nullptr;
}

/// What GEOS says of a polygon that is not valid, "Self-intersection".
std::string reasonFor(const Context& context, const GEOSGeometry* polygon) {
  char* const text = GEOSisValidReason_r(context.get(), polygon);
  std::string reason = text ? text : "";
  GEOSFree_r(context.get(), text);
  return reason.substr(0, reason.find('['));
}

/// Law (2), and with it that nothing is left open.
bool isClosed(const std::vector<std::array<std::size_t, 3>>& triangles, std::size_t corners,
              bool isCounterClockwise) {
  std::map<std::pair<std::size_t, std::size_t>, int> edges;
  const auto add = [&](std::size_t a, std::size_t b) {
    ++edges[{std::min(a, b), std::max(a, b)}];
    edges[{std::min(a, b), std::max(a, b)}] += a < b ? 2 : 0;
  };
  // An inner edge runs once each way: 1 + 3. The outline itself is added the other way round.
  for (const auto& [a, b, c] : triangles) {
    add(a, b);
    add(b, c);
    add(c, a);
  }
  for (std::size_t i = 0; i < corners; ++i) {
    const std::size_t next = (i + 1) % corners;
    isCounterClockwise ? add(next, i) : add(i, next);
  }
  return triangles.size() + 2 == corners &&
         std::all_of(edges.begin(), edges.end(), [](const auto& edge) { return edge.second == 4; });
}

}  // namespace

double doubleAreaOf(const std::vector<AcGePoint2d>& outline) {
  double sum = 0.0;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    // From the first corner, so that nothing is lost far from the origin.
    const AcGeVector2d a = outline[i] - outline[0];
    const AcGeVector2d b = outline[(i + 1) % outline.size()] - outline[0];
    sum += a.x * b.y - a.y * b.x;
  }
  return sum;
}

PolygonMesh meshOf(const std::vector<AcGePoint2d>& outline) {
  PolygonMesh mesh;
  const auto refuse = [&](const std::string& problem) {
    mesh.triangles.clear();
    mesh.problem = problem;
    return mesh;
  };
  if (outline.size() < 3) {
    return refuse("has fewer than three corners");
  }
  const Context context = newContext();
  const Geometry polygon(context, newPolygon(context, outline));
  if (!polygon.get()) {
    return refuse("is no polygon");
  }
  if (GEOSisValid_r(context.get(), polygon.get()) != 1) {
    return refuse("is no simple polygon: " + reasonFor(context, polygon.get()));
  }
  const Geometry parts(context,
                       GEOSConstrainedDelaunayTriangulation_r(context.get(), polygon.get()));
  if (!parts.get()) {
    return refuse("cannot be filled with triangles");
  }
  std::map<std::pair<double, double>, std::size_t> numbers;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    numbers.emplace(std::pair(outline[i].x, outline[i].y), i);
  }
  const int count = GEOSGetNumGeometries_r(context.get(), parts.get());
  for (int i = 0; i < count; ++i) {
    const GEOSGeometry* const part = GEOSGetGeometryN_r(context.get(), parts.get(), i);
    const GEOSCoordSequence* const ring =
        GEOSGeom_getCoordSeq_r(context.get(), GEOSGetExteriorRing_r(context.get(), part));
    std::array<std::size_t, 3> triangle{};
    std::vector<AcGePoint2d> corners(3);
    for (unsigned int corner = 0; corner < 3; ++corner) {
      AcGePoint2d& point = corners[corner];
      GEOSCoordSeq_getXY_r(context.get(), ring, corner, &point.x, &point.y);
      const auto found = numbers.find({point.x, point.y});
      if (found == numbers.end()) {
        return refuse("cannot be filled with triangles");
      }
      triangle[corner] = found->second;
    }
    if (doubleAreaOf(corners) < 0.0) {
      std::swap(triangle[1], triangle[2]);
    }
    mesh.triangles.push_back(triangle);
  }
  if (!isClosed(mesh.triangles, outline.size(), doubleAreaOf(outline) > 0.0)) {
    return refuse("cannot be filled with triangles");
  }
  return mesh;
}

}  // namespace quoin::plan
