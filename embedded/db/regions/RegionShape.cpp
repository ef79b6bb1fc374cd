#include "embedded/db/regions/RegionShape.h"

#include <geos_c.h>
#include <algorithm>
#include <cmath>
#include <utility>

#include "gegbl.h"

namespace quoin::db {
namespace {

/// Points may be off their plane by the rounding of the transforms that brought them there:
/// this share of how far they reach, but at least the global tolerance.
constexpr double kPlaneShare = 1.0e-11;

double planeTolerance(double reach) {
  return std::max(AcGeContext::gTol.equalPoint(), kPlaneShare * reach);
}

/// One context of the library for the whole process: the host computes on one thread.
GEOSContextHandle_t geos() {
  struct Context {
    Context() : handle(GEOS_init_r()) {
      // What it says of failures shows in the results.
      GEOSContext_setErrorMessageHandler_r(
          handle, [](const char*, void*) {}, nullptr);
      GEOSContext_setNoticeMessageHandler_r(
          handle, [](const char*, void*) {}, nullptr);
    }
    ~Context() { GEOS_finish_r(handle); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;
    GEOSContextHandle_t handle;
  };
  static const Context context;
  return context.handle;
}

struct GeometryDeleter {
  void operator()(GEOSGeometry* geometry) const { GEOSGeom_destroy_r(geos(), geometry); }
};
using Geometry = std::unique_ptr<GEOSGeometry, GeometryDeleter>;

/// The corners of an outline, x and y in turn; the last corner is the first.
using RingBuffer = std::vector<double>;

RingBuffer ringBuffer(const RegionLoop& loop, const RegionPlane& plane) {
  RingBuffer buffer;
  buffer.reserve(2 * (loop.size() + 1));
  for (const AcGePoint3d& corner : loop) {
    const AcGePoint3d point = plane.toPlane(corner);
    buffer.push_back(point.x);
    buffer.push_back(point.y);
  }
  buffer.push_back(buffer[0]);
  buffer.push_back(buffer[1]);
  return buffer;
}

Geometry ringOf(const RingBuffer& buffer) {
  GEOSCoordSequence* const points = GEOSCoordSeq_copyFromBuffer_r(
      geos(), buffer.data(), static_cast<unsigned int>(buffer.size() / 2), 0, 0);
  return Geometry(points ? GEOSGeom_createLinearRing_r(geos(), points) : nullptr);
}

/// Whether all points of a ring can be seen from the mean of its corners, and in one turn: then it
/// crosses and touches itself nowhere. Most outlines of rooms and houses are so, and this takes a
/// tenth of the time of looking for crossings. False proves nothing.
///
/// The orientation of each edge about the mean is the sign of a determinant that is further from
/// zero than it may be off by rounding (J. R. Shewchuk, Adaptive Precision Floating-Point
/// Arithmetic and Fast Robust Geometric Predicates, 1997: (3 + 16 e) e times the sum of its two
/// products). Edges of one orientation, less than half a turn each, go round as often as they pass
/// the ray along x.
bool isStarShaped(const RingBuffer& ring) {
  constexpr double kRounding = 4.0 * 0x1p-53;
  constexpr double kLeast = 1.0e-280;  // where products lose digits
  const std::size_t corners = ring.size() / 2 - 1;
  double x = 0.0;
  double y = 0.0;
  for (std::size_t i = 0; i < corners; ++i) {
    x += ring[2 * i];
    y += ring[2 * i + 1];
  }
  x /= static_cast<double>(corners);
  y /= static_cast<double>(corners);
  bool isLeft = true;
  bool isRight = true;
  std::size_t upwards = 0;
  std::size_t downwards = 0;
  for (std::size_t i = 0; i < corners; ++i) {
    const double* const from = ring.data() + 2 * i;
    const double* const to = from + 2;
    const double left = (from[0] - x) * (to[1] - y);
    const double right = (from[1] - y) * (to[0] - x);
    const double margin = kRounding * (std::fabs(left) + std::fabs(right)) + kLeast;
    isLeft = isLeft && left - right > margin;
    isRight = isRight && right - left > margin;
    if (!isLeft && !isRight) {
      return false;
    }
    upwards += from[1] < y && to[1] >= y ? 1 : 0;
    downwards += from[1] >= y && to[1] < y ? 1 : 0;
  }
  return upwards == 1 && downwards == 1;
}

/// The polygon of an outer ring and of holes, which it takes over; null where the library refused
/// any of them.
Geometry polygonOf(Geometry outer, std::vector<GEOSGeometry*> holes = {}) {
  if (!outer || std::count(holes.begin(), holes.end(), nullptr) > 0) {
    for (GEOSGeometry* const hole : holes) {
      GeometryDeleter()(hole);
    }
    return nullptr;
  }
  return Geometry(GEOSGeom_createPolygon_r(geos(), outer.release(), holes.data(),
                                           static_cast<unsigned int>(holes.size())));
}

/// A face as a polygon; null where the library refuses its rings.
Geometry polygonOf(const RegionFace& face, const RegionPlane& plane) {
  std::vector<GEOSGeometry*> holes;
  for (std::size_t i = 1; i < face.size(); ++i) {
    holes.push_back(ringOf(ringBuffer(face[i], plane)).release());
  }
  return polygonOf(ringOf(ringBuffer(face.front(), plane)), std::move(holes));
}

/// The polygons as one geometry, which takes them over; null where one of them is.
Geometry collected(std::vector<GEOSGeometry*> polygons) {
  if (std::count(polygons.begin(), polygons.end(), nullptr) > 0) {
    for (GEOSGeometry* const polygon : polygons) {
      GeometryDeleter()(polygon);
    }
    return nullptr;
  }
  if (polygons.size() == 1) {
    return Geometry(polygons.front());
  }
  return Geometry(GEOSGeom_createCollection_r(geos(), GEOS_MULTIPOLYGON, polygons.data(),
                                              static_cast<unsigned int>(polygons.size())));
}

Geometry geometryOf(const std::vector<RegionFace>& faces, const RegionPlane& plane) {
  std::vector<GEOSGeometry*> polygons;
  polygons.reserve(faces.size());
  for (const RegionFace& face : faces) {
    polygons.push_back(polygonOf(face, plane).release());
  }
  return collected(std::move(polygons));
}

/// The corners of a ring, the first of which comes again at the end.
std::vector<std::pair<double, double>> cornersOf(const GEOSGeometry* ring) {
  const GEOSCoordSequence* const points = GEOSGeom_getCoordSeq_r(geos(), ring);
  unsigned int count = 0;
  GEOSCoordSeq_getSize_r(geos(), points, &count);
  std::vector<std::pair<double, double>> corners(count);
  static_assert(sizeof(corners[0]) == 2 * sizeof(double));
  GEOSCoordSeq_copyToBuffer_r(geos(), points, &corners[0].first, 0, 0);
  return corners;
}

/// A ring in the plane from its smallest point (x, then y), with the given orientation.
RingBuffer orderedRing(const GEOSGeometry* ring, bool counterClockwise) {
  std::vector<std::pair<double, double>> corners = cornersOf(ring);
  corners.pop_back();
  char isCounterClockwise = 0;
  GEOSCoordSeq_isCCW_r(geos(), GEOSGeom_getCoordSeq_r(geos(), ring), &isCounterClockwise);
  if ((isCounterClockwise == 1) != counterClockwise) {
    std::reverse(corners.begin(), corners.end());
  }
  std::rotate(corners.begin(), std::min_element(corners.begin(), corners.end()), corners.end());
  RingBuffer buffer;
  buffer.reserve(2 * corners.size());
  for (const auto& [x, y] : corners) {
    buffer.push_back(x);
    buffer.push_back(y);
  }
  return buffer;
}

/// The rings of a polygon, in order; a ring's first point decides among holes.
std::vector<RingBuffer> orderedRings(const GEOSGeometry* polygon) {
  std::vector<RingBuffer> rings{orderedRing(GEOSGetExteriorRing_r(geos(), polygon), true)};
  const int holes = GEOSGetNumInteriorRings_r(geos(), polygon);
  for (int i = 0; i < holes; ++i) {
    rings.push_back(orderedRing(GEOSGetInteriorRingN_r(geos(), polygon, i), false));
  }
  std::sort(rings.begin() + 1, rings.end());
  return rings;
}

/// The polygons of a geometry with an area; points and lines are left out.
void collectPolygons(const GEOSGeometry* geometry, std::vector<const GEOSGeometry*>& polygons) {
  const int type = GEOSGeomTypeId_r(geos(), geometry);
  if (type == GEOS_POLYGON) {
    if (GEOSisEmpty_r(geos(), geometry) == 0) {
      polygons.push_back(geometry);
    }
  } else if (type == GEOS_MULTIPOLYGON || type == GEOS_GEOMETRYCOLLECTION) {
    const int count = GEOSGetNumGeometries_r(geos(), geometry);
    for (int i = 0; i < count; ++i) {
      collectPolygons(GEOSGetGeometryN_r(geos(), geometry, i), polygons);
    }
  }
}

double reachOf(const AcGePoint3d& corner) {
  return std::max(std::max(std::fabs(corner.x), std::fabs(corner.y)), std::fabs(corner.z));
}
double reachOf(const RegionLoop& loop) {
  double reach = 0.0;
  for (const AcGePoint3d& corner : loop) {
    reach = std::max(reach, reachOf(corner));
  }
  return reach;
}

/// How far the outer boundary reaches in the world.
double reachOf(const GEOSGeometry* polygon, const RegionPlane& plane) {
  double reach = 0.0;
  for (const auto& [x, y] : cornersOf(GEOSGetExteriorRing_r(geos(), polygon))) {
    reach = std::max(reach, reachOf(plane.toWorld(x, y)));
  }
  return reach;
}

}  // namespace

// --- the plane --------------------------------------------------------------------------------

Acad::ErrorStatus RegionPlane::set(const std::vector<AcGePoint3d>& loop) {
  const double tolerance = planeTolerance(reachOf(loop));
  m_origin = loop.front();
  // The corner farthest from the first, and the one farthest from the line through both: the first
  // of them, should several be as far. What has no larger square is no farther.
  const auto farthest = [&](auto&& difference) {
    const AcGePoint3d* best = &loop.front();
    double mostSqrd = difference(*best).lengthSqrd();
    for (const AcGePoint3d& corner : loop) {
      const double ownSqrd = difference(corner).lengthSqrd();
      if (mostSqrd < ownSqrd && std::sqrt(mostSqrd) < std::sqrt(ownSqrd)) {
        best = &corner;
        mostSqrd = ownSqrd;
      }
    }
    return *best;
  };
  const AcGeVector3d along =
      farthest([&](const AcGePoint3d& corner) { return corner - m_origin; }) - m_origin;
  if (along.length() <= tolerance) {
    return Acad::eDegenerateGeometry;
  }
  const AcGeVector3d direction = along.normal();
  const auto across = [&](const AcGePoint3d& corner) {
    return (corner - m_origin).crossProduct(direction);
  };
  const AcGeVector3d cross = across(farthest(across));
  if (cross.length() <= tolerance) {
    return Acad::eDegenerateGeometry;
  }
  m_isHorizontal = std::all_of(loop.begin(), loop.end(), [&](const AcGePoint3d& corner) {
    return std::fabs(corner.z - m_origin.z) <= tolerance;
  });
  if (m_isHorizontal) {
    m_normal = AcGeVector3d::kZAxis;
    return Acad::eOk;
  }
  m_normal = cross.normal();
  AcGeVector3d doubleArea;  // (Newell's method)
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const AcGeVector3d from = loop[i] - m_origin;
    const AcGeVector3d to = loop[(i + 1) % loop.size()] - m_origin;
    doubleArea += from.crossProduct(to);
    if (std::fabs(from.dotProduct(m_normal)) > tolerance) {
      return Acad::eNonCoplanarGeometry;
    }
  }
  if (doubleArea.dotProduct(m_normal) < 0.0) {
    m_normal.negate();
  }
  m_toPlane.setToWorldToPlane(m_normal);
  m_toWorld.setToPlaneToWorld(m_normal);
  return Acad::eOk;
}

AcGePoint3d RegionPlane::toPlane(const AcGePoint3d& world) const {
  return m_isHorizontal ? world : AcGePoint3d() + m_toPlane * (world - m_origin);
}

AcGePoint3d RegionPlane::toWorld(double x, double y) const {
  return m_isHorizontal ? AcGePoint3d(x, y, m_origin.z)
                        : m_origin + m_toWorld * AcGeVector3d(x, y, 0.0);
}

bool RegionPlane::isSame(const RegionPlane& other, double reach) const {
  const double tolerance = planeTolerance(reach);
  const AcGeVector3d between = other.m_origin - m_origin;
  return std::fabs(between.dotProduct(m_normal)) <= tolerance &&
         m_normal.crossProduct(other.m_normal).length() * reach <= tolerance;
}

// --- the shape --------------------------------------------------------------------------------

struct RegionShape::Impl {
  Geometry geometry;
};

RegionShape::RegionShape() : m_impl(std::make_unique<Impl>()) {}
RegionShape::~RegionShape() = default;

Acad::ErrorStatus RegionShape::make(const RegionLoop& loop, std::unique_ptr<RegionShape>& shape) {
  shape.reset();
  std::unique_ptr<RegionShape> made(new RegionShape);
  const Acad::ErrorStatus status = made->m_plane.set(loop);
  if (status != Acad::eOk) {
    return status;
  }
  const RingBuffer ring = ringBuffer(loop, made->m_plane);
  made->m_impl->geometry = polygonOf(ringOf(ring));
  if (!made->m_impl->geometry) {
    return Acad::eDegenerateGeometry;  // fewer than three corners
  }
  if (!isStarShaped(ring) && GEOSisValid_r(geos(), made->m_impl->geometry.get()) != 1) {
    return Acad::eSelfIntersecting;
  }
  shape = std::move(made);
  return Acad::eOk;
}

std::unique_ptr<RegionShape> RegionShape::copy() const {
  std::unique_ptr<RegionShape> made(new RegionShape);
  made->m_plane = m_plane;
  made->m_impl->geometry.reset(GEOSGeom_clone_r(geos(), m_impl->geometry.get()));
  return made;
}

Acad::ErrorStatus RegionShape::combined(const RegionShape& other, AcDb::BoolOperType operation,
                                        std::unique_ptr<RegionShape>& result) const {
  result.reset();
  const std::vector<RegionFace> otherFaces = other.faces();
  double reach = 0.0;
  for (const RegionFace& face : otherFaces) {
    reach = std::max(reach, reachOf(face.front()));
  }
  std::vector<const GEOSGeometry*> own;
  collectPolygons(m_impl->geometry.get(), own);
  for (const GEOSGeometry* const polygon : own) {
    reach = std::max(reach, reachOf(polygon, m_plane));
  }
  if (!m_plane.isSame(other.m_plane, reach)) {
    return Acad::eNonCoplanarGeometry;
  }
  // In this plane's coordinates.
  Geometry combination;
  const Geometry operand = quoin::db::geometryOf(otherFaces, m_plane);
  if (operand) {
    switch (operation) {
      case AcDb::kBoolUnite:
        combination.reset(GEOSUnion_r(geos(), m_impl->geometry.get(), operand.get()));
        break;
      case AcDb::kBoolIntersect:
        combination.reset(GEOSIntersection_r(geos(), m_impl->geometry.get(), operand.get()));
        break;
      case AcDb::kBoolSubtract:
        combination.reset(GEOSDifference_r(geos(), m_impl->geometry.get(), operand.get()));
        break;
    }
  }
  if (!combination) {
    return Acad::eGeneralModelingFailure;
  }
  std::vector<const GEOSGeometry*> polygons;
  collectPolygons(combination.get(), polygons);
  if (polygons.empty()) {
    return Acad::eOk;
  }
  std::unique_ptr<RegionShape> made(new RegionShape);
  made->m_plane = m_plane;
  if (polygons.size() == 1 && polygons.front() == combination.get()) {
    made->m_impl->geometry = std::move(combination);
  } else {
    std::vector<GEOSGeometry*> clones;
    clones.reserve(polygons.size());
    for (const GEOSGeometry* const polygon : polygons) {
      clones.push_back(GEOSGeom_clone_r(geos(), polygon));
    }
    made->m_impl->geometry = collected(std::move(clones));
  }
  result = std::move(made);
  return Acad::eOk;
}

std::vector<RegionFace> RegionShape::faces() const {
  std::vector<const GEOSGeometry*> polygons;
  collectPolygons(m_impl->geometry.get(), polygons);
  std::vector<std::vector<RingBuffer>> ordered;
  ordered.reserve(polygons.size());
  for (const GEOSGeometry* const polygon : polygons) {
    ordered.push_back(orderedRings(polygon));
  }
  std::sort(ordered.begin(), ordered.end());
  std::vector<RegionFace> faces;
  for (const std::vector<RingBuffer>& rings : ordered) {
    RegionFace& face = faces.emplace_back();
    for (const RingBuffer& ring : rings) {
      RegionLoop& loop = face.emplace_back();
      loop.reserve(ring.size() / 2);
      for (std::size_t i = 0; i < ring.size(); i += 2) {
        loop.push_back(m_plane.toWorld(ring[i], ring[i + 1]));
      }
    }
  }
  return faces;
}

std::unique_ptr<RegionShape> RegionShape::shapeOf(const RegionFace& face) const {
  std::unique_ptr<RegionShape> made(new RegionShape);
  made->m_plane = m_plane;
  made->m_impl->geometry = polygonOf(face, m_plane);
  return made;
}

double RegionShape::area() const {
  double area = 0.0;
  GEOSArea_r(geos(), m_impl->geometry.get(), &area);
  return area;
}

Acad::ErrorStatus RegionShape::transformBy(const AcGeMatrix3d& matrix) {
  std::vector<RegionFace> moved = faces();
  for (RegionFace& face : moved) {
    for (RegionLoop& loop : face) {
      for (AcGePoint3d& corner : loop) {
        corner = matrix * corner;
      }
    }
  }
  RegionPlane plane;
  const Acad::ErrorStatus status = plane.set(moved.front().front());
  if (status != Acad::eOk) {
    return status;
  }
  Geometry geometry = quoin::db::geometryOf(moved, plane);
  if (!geometry) {
    return Acad::eGeneralModelingFailure;
  }
  m_plane = plane;
  m_impl->geometry = std::move(geometry);
  return Acad::eOk;
}

}  // namespace quoin::db
