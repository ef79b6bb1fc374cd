// What the benchmarks need of GEOS's C interface.
#pragma once

#include <geos_c.h>

#include <memory>
#include <vector>

#include "bench/Workloads.h"

namespace quoin::bench {

class GeosContext {
 public:
  GeosContext() : m_handle(GEOS_init_r()) {}
  ~GeosContext() { GEOS_finish_r(m_handle); }
  GeosContext(const GeosContext&) = delete;
  GeosContext& operator=(const GeosContext&) = delete;

  GEOSContextHandle_t handle() const { return m_handle; }

  struct Delete {
    GEOSContextHandle_t handle = nullptr;
    void operator()(GEOSGeometry* geometry) const { GEOSGeom_destroy_r(handle, geometry); }
  };
  using Owned = std::unique_ptr<GEOSGeometry, Delete>;
  Owned own(GEOSGeometry* geometry) const { return Owned(geometry, Delete{m_handle}); }

  Owned multiLine(const std::vector<Line>& lines) const {
    std::vector<GEOSGeometry*> parts;
    parts.reserve(lines.size());
    for (const Line& line : lines) {
      GEOSCoordSequence* const points = GEOSCoordSeq_create_r(m_handle, 2, 2);
      GEOSCoordSeq_setXY_r(m_handle, points, 0, line.x0, line.y0);
      GEOSCoordSeq_setXY_r(m_handle, points, 1, line.x1, line.y1);
      parts.push_back(GEOSGeom_createLineString_r(m_handle, points));
    }
    return own(GEOSGeom_createCollection_r(m_handle, GEOS_MULTILINESTRING, parts.data(),
                                           static_cast<unsigned>(parts.size())));
  }
  Owned polygon(const std::vector<std::pair<double, double>>& points) const {
    GEOSCoordSequence* const ring =
        GEOSCoordSeq_create_r(m_handle, static_cast<unsigned>(points.size() + 1), 2);
    for (unsigned i = 0; i <= points.size(); ++i) {
      const auto& [x, y] = points[i % points.size()];
      GEOSCoordSeq_setXY_r(m_handle, ring, i, x, y);
    }
    return own(GEOSGeom_createPolygon_r(m_handle, GEOSGeom_createLinearRing_r(m_handle, ring),
                                        nullptr, 0));
  }
  /// How many parts it has; deletes it.
  std::size_t countOf(GEOSGeometry* geometry) const {
    const Owned owned = own(geometry);
    return static_cast<std::size_t>(GEOSGetNumGeometries_r(m_handle, geometry));
  }

 private:
  GEOSContextHandle_t m_handle;
};

}  // namespace quoin::bench
