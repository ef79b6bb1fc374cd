// What a POLYLINE is, and with it the VERTEX records behind it.
#pragma once

#include <cstdint>

#include "embedded/db/records/SubclassLayout.h"

namespace quoin::db {

enum class PolylineKind : std::uint8_t { Flat, Spatial, Mesh };

/// By the flags of the POLYLINE's record; where they tell nothing, by its marker.
inline PolylineKind polylineKindOf(const TagList& polyline) {
  constexpr std::int64_t kIsSpatial = 8;
  constexpr std::int64_t kIsMesh = 16 | 64;  // of a grid, of faces
  const std::int64_t flags = polyline.integer(code::kFlags, polyline.body(), 0);
  const auto hasMarker = [&](std::string_view marker) {
    return polyline.subclass(marker).first > polyline.body().first;
  };
  if (flags & kIsMesh) {
    return PolylineKind::Mesh;
  }
  if (flags & kIsSpatial) {
    return PolylineKind::Spatial;
  }
  return hasMarker("AcDb3dPolyline")                                     ? PolylineKind::Spatial
         : hasMarker("AcDbPolyFaceMesh") || hasMarker("AcDbPolygonMesh") ? PolylineKind::Mesh
                                                                         : PolylineKind::Flat;
}

}  // namespace quoin::db
