// The boundaries in a hatch's record, stretch by stretch.
#pragma once

#include <vector>

#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/records/TagList.h"

namespace quoin::db {

/// The subclass of a hatch's tags.
inline TagRange hatchRange(const TagList& tags) {
  const bool isPolygon = dxf::trimmedValue(tags[0]) == "MPOLYGON";
  return tags.subclass(isPolygon ? "AcDbMPolygon" : "AcDbHatch");
}

/// From the number of boundaries (91) to what stands behind the last one; empty without any.
inline TagRange boundariesOf(const TagList& tags, TagRange hatch) {
  constexpr int kBoundaries = 91;
  constexpr int kStyle = 75;
  constexpr int kPattern = 76;
  const std::size_t begin = tags.find(kBoundaries, hatch);
  if (begin == TagList::kNone) {
    return {};
  }
  std::size_t end = begin + 1;
  while (end < hatch.last && tags[end].code != kStyle && tags[end].code != kPattern) {
    ++end;
  }
  return {begin, end};
}

/// Calls `onPolyline` with every boundary that is a closed polyline, [its flags (92), the next
/// boundary's), and `onEdge` with every edge of the others, [its type (72), the next one's).
template <class OnPolyline, class OnEdge>
void forEachBoundary(const TagList& tags, TagRange boundaries, OnPolyline&& onPolyline,
                     OnEdge&& onEdge) {
  constexpr int kBoundary = 92;
  constexpr int kEdge = 72;
  constexpr std::int64_t kIsPolyline = 2;
  for (std::size_t at = tags.find(kBoundary, boundaries); at != TagList::kNone;) {
    const std::size_t next = tags.find(kBoundary, boundaries, at + 1);
    const TagRange boundary{at, next == TagList::kNone ? boundaries.last : next};
    if (tags.integerAt(at) & kIsPolyline) {
      onPolyline(boundary);
    } else {
      for (std::size_t edge = tags.find(kEdge, boundary); edge != TagList::kNone;) {
        const std::size_t nextEdge = tags.find(kEdge, boundary, edge + 1);
        onEdge(TagRange{edge, nextEdge == TagList::kNone ? boundary.last : nextEdge});
        edge = nextEdge;
      }
    }
    at = next;
  }
}

/// What an edge of a boundary is (72).
enum class HatchEdge { kLine = 1, kArc = 2, kEllipse = 3, kSpline = 4 };

/// One edge in the hatch's plane.
struct HatchPiece {
  HatchEdge type = HatchEdge::kLine;
  AcGePoint3d start;  // of a line; the centre of an arc
  AcGePoint3d end;
  ArcImage arc;
  SplineImage spline;
};
/// [its type (72), the next edge's).
HatchPiece hatchPieceOf(const TagList& tags, TagRange edge, double elevation);
/// A boundary that is a closed polyline with bulges: [its flags (92), the next boundary's).
std::vector<Segment> hatchLoopOf(const TagList& tags, TagRange loop, double elevation);

}  // namespace quoin::db
