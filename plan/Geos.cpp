#include "plan/Geos.h"

#include <geos_c.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace quoin::plan {

namespace {

class Context {
 public:
  Context() : m_handle(GEOS_init_r()) {
    GEOSContext_setErrorMessageHandler_r(
        m_handle,
        [](const char* message, void* words) { *static_cast<std::string*>(words) = message; },
        &m_error);
  }
  ~Context() { GEOS_finish_r(m_handle); }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  GEOSContextHandle_t get() const { return m_handle; }
  /// Lets a result through that is there.
  template <class Result>
  Result* checked(Result* result) const {
    if (!result) {
      throw GeosError(m_error.empty() ? "GEOS failed" : m_error);
    }
    return result;
  }

 private:
  GEOSContextHandle_t m_handle;
  std::string m_error;
};

struct Destroy {
  GEOSContextHandle_t context;
  void operator()(GEOSGeometry* geometry) const { GEOSGeom_destroy_r(context, geometry); }
  void operator()(GEOSSTRtree* tree) const { GEOSSTRtree_destroy_r(context, tree); }
  void operator()(GEOSCoordSequence* points) const { GEOSCoordSeq_destroy_r(context, points); }
};
using Geometry = std::unique_ptr<GEOSGeometry, Destroy>;

Geometry own(const Context& context, GEOSGeometry* geometry) {
  return {context.checked(geometry), Destroy{context.get()}};
}

/// Takes the parts over, also where it fails.
Geometry collection(const Context& context, int type, std::vector<Geometry> parts) {
  std::vector<GEOSGeometry*> bare;
  bare.reserve(parts.size());
  for (Geometry& part : parts) {
    bare.push_back(part.release());
  }
  return own(context, GEOSGeom_createCollection_r(context.get(), type, bare.data(),
                                                  static_cast<unsigned>(bare.size())));
}

GEOSCoordSequence* pointsOf(const Context& context, const Ring& ring) {
  std::vector<double> numbers;
  numbers.reserve(2 * ring.size() + 2);
  for (std::size_t i = 0; i <= ring.size(); ++i) {
    numbers.push_back(ring[i % ring.size()].x);
    numbers.push_back(ring[i % ring.size()].y);
  }
  return context.checked(GEOSCoordSeq_copyFromBuffer_r(
      context.get(), numbers.data(), static_cast<unsigned>(ring.size() + 1), 0, 0));
}

double twiceArea(const Ring& ring) {
  double sum = 0.0;
  for (std::size_t i = 1; i + 1 < ring.size(); ++i) {
    const AcGeVector2d a = ring[i] - ring[0];
    const AcGeVector2d b = ring[i + 1] - ring[0];
    sum += a.x * b.y - a.y * b.x;
  }
  return sum;
}

Ring ringOf(const Context& context, const GEOSGeometry* line, bool isCounterClockwise) {
  const GEOSCoordSequence* const points =
      context.checked(GEOSGeom_getCoordSeq_r(context.get(), line));
  unsigned count = 0;
  GEOSCoordSeq_getSize_r(context.get(), points, &count);
  Ring ring;
  ring.reserve(count);
  for (unsigned i = 0; i + 1 < count; ++i) {
    AcGePoint2d point;
    GEOSCoordSeq_getXY_r(context.get(), points, i, &point.x, &point.y);
    ring.push_back(point);
  }
  if ((twiceArea(ring) > 0.0) != isCounterClockwise) {
    std::reverse(ring.begin(), ring.end());
  }
  return ring;
}

std::vector<Polygon> polygonsOf(const Context& context, const GEOSGeometry* all) {
  std::vector<Polygon> polygons;
  const int count = GEOSGetNumGeometries_r(context.get(), all);
  for (int i = 0; i < count; ++i) {
    const GEOSGeometry* const part = GEOSGetGeometryN_r(context.get(), all, i);
    if (GEOSGeomTypeId_r(context.get(), part) != GEOS_POLYGON ||
        GEOSisEmpty_r(context.get(), part) == 1) {
      continue;
    }
    Polygon polygon;
    polygon.outer = ringOf(context, GEOSGetExteriorRing_r(context.get(), part), true);
    const int holes = GEOSGetNumInteriorRings_r(context.get(), part);
    for (int hole = 0; hole < holes; ++hole) {
      polygon.holes.push_back(
          ringOf(context, GEOSGetInteriorRingN_r(context.get(), part, hole), false));
    }
    polygons.push_back(std::move(polygon));
  }
  return polygons;
}

Geometry polygonOf(const Context& context, const Polygon& polygon) {
  const auto linearRing = [&](const Ring& ring) {
    return own(context, GEOSGeom_createLinearRing_r(context.get(), pointsOf(context, ring)));
  };
  Geometry outer = linearRing(polygon.outer);
  std::vector<Geometry> owned;
  owned.reserve(polygon.holes.size());
  for (const Ring& hole : polygon.holes) {
    owned.push_back(linearRing(hole));
  }
  std::vector<GEOSGeometry*> holes;
  holes.reserve(owned.size());
  for (Geometry& hole : owned) {
    holes.push_back(hole.release());
  }
  return own(context, GEOSGeom_createPolygon_r(context.get(), outer.release(), holes.data(),
                                               static_cast<unsigned>(holes.size())));
}

bool isFinite(const Box& box) {
  return std::isfinite(box.low.x) && std::isfinite(box.low.y) && std::isfinite(box.high.x) &&
         std::isfinite(box.high.y);
}

}  // namespace

Box::Box(const AcGePoint2d& a, const AcGePoint2d& b, double margin)
    : low(std::min(a.x, b.x) - margin, std::min(a.y, b.y) - margin),
      high(std::max(a.x, b.x) + margin, std::max(a.y, b.y) + margin) {}

struct BoxIndex::Impl {
  Context context;
  std::vector<std::size_t> indices;
  std::vector<Geometry> diagonals;  // older versions keep addresses of their boxes
  std::unique_ptr<GEOSSTRtree, Destroy> tree;

  Geometry diagonal(const Box& box) const {
    const double numbers[] = {box.low.x, box.low.y, box.high.x, box.high.y};
    return own(context, GEOSGeom_createLineString_r(context.get(),
                                                    context.checked(GEOSCoordSeq_copyFromBuffer_r(
                                                        context.get(), numbers, 2, 0, 0))));
  }
};

BoxIndex::BoxIndex(const std::vector<Box>& boxes) : m_impl(std::make_unique<Impl>()) {
  constexpr std::size_t kNodeCapacity = 10;
  const Context& context = m_impl->context;
  m_impl->tree = {context.checked(GEOSSTRtree_create_r(context.get(), kNodeCapacity)),
                  Destroy{context.get()}};
  m_impl->indices.resize(boxes.size());  // the tree keeps addresses of these
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    m_impl->indices[i] = i;
    if (isFinite(boxes[i])) {
      m_impl->diagonals.push_back(m_impl->diagonal(boxes[i]));
      GEOSSTRtree_insert_r(context.get(), m_impl->tree.get(), m_impl->diagonals.back().get(),
                           &m_impl->indices[i]);
    }
  }
}

BoxIndex::~BoxIndex() = default;

void BoxIndex::visit(const Box& box, const std::function<void(std::size_t)>& visit) const {
  if (!isFinite(box)) {
    return;
  }
  GEOSSTRtree_query_r(
      m_impl->context.get(), m_impl->tree.get(), m_impl->diagonal(box).get(),
      [](void* item, void* call) {
        (*static_cast<const std::function<void(std::size_t)>*>(call))(
            *static_cast<std::size_t*>(item));
      },
      const_cast<std::function<void(std::size_t)>*>(&visit));
}

std::vector<Polygon> facesOf(const std::vector<Ring>& rings, double grid) {
  if (rings.empty()) {
    return {};
  }
  const Context context;
  std::vector<Geometry> lines;
  lines.reserve(rings.size());
  for (const Ring& ring : rings) {
    lines.push_back(
        own(context, GEOSGeom_createLineString_r(context.get(), pointsOf(context, ring))));
  }
  const Geometry all = collection(context, GEOS_MULTILINESTRING, std::move(lines));
  const Geometry noded = own(context, GEOSUnaryUnionPrec_r(context.get(), all.get(), grid));
  const GEOSGeometry* const parts[] = {noded.get()};
  const Geometry faces = own(context, GEOSPolygonize_r(context.get(), parts, 1));
  return polygonsOf(context, faces.get());
}

double geosArea(const Polygon& polygon) {
  const Context context;
  double area = 0.0;
  GEOSArea_r(context.get(), polygonOf(context, polygon).get(), &area);
  return area;
}

std::vector<Polygon> unionOf(const std::vector<Polygon>& polygons) {
  const Context context;
  std::vector<Geometry> parts;
  for (const Polygon& polygon : polygons) {
    const Geometry part = polygonOf(context, polygon);
    parts.push_back(own(context, GEOSMakeValid_r(context.get(), part.get())));
  }
  const Geometry all = collection(context, GEOS_GEOMETRYCOLLECTION, std::move(parts));
  const Geometry whole = own(context, GEOSUnaryUnion_r(context.get(), all.get()));
  return polygonsOf(context, whole.get());
}

}  // namespace quoin::plan
