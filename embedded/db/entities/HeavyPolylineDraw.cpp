#include "embedded/db/entities/HeavyPolylineDraw.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/PolylineKind.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/PolylineDraw.h"

namespace quoin::db {
namespace {

constexpr int kPosition = 10;
constexpr std::int64_t kClosed = 1;
constexpr std::int64_t kSplineFit = 4;
constexpr std::int64_t kClosedAcross = 32;
constexpr std::int64_t kFaces = 64;
constexpr std::int64_t kPatternContinuous = 128;
// Flags of a vertex.
constexpr std::int64_t kSplineFrame = 16;
constexpr std::int64_t kIsLocation = 64;
constexpr std::int64_t kIsFace = 128;

/// Calls `visit(tags, range, flags)` for the vertices that are no frame of a spline.
template <class Visit>
void forEachVertex(const Drawn& entity, Visit&& visit) {
  const auto one = [&](const TagList& part) {
    const TagRange range = part.subclassAndBeyond("AcDbVertex");
    const std::int64_t flags = part.integer(code::kFlags, range, 0);
    if (!(flags & kSplineFrame)) {
      visit(part, range, flags);
    }
  };
  if (entity.stub) {
    forEachPart(*entity.stub, one);
  } else if (entity.object) {
    forEachPart(*entity.object, one);
  }
}

void drawFlat(const Drawn& entity, std::int64_t flags, const AcGeMatrix3d& toWorld,
              DrawWalk& walk) {
  const TagList& tags = entity.tags;
  const TagRange range = layout::kPolyline2d.in(tags);
  const double startWidth = tags.number(code::kStartWidth, range, 0.0);
  const double endWidth = tags.number(code::kEndWidth, range, 0.0);
  PlanePolyline polyline;
  polyline.isClosed = (flags & kClosed) != 0;
  polyline.isPatternContinuous = (flags & kPatternContinuous) != 0;
  forEachVertex(entity, [&](const TagList& part, TagRange own, std::int64_t) {
    const AcGePoint3d point = part.point(kPosition, own);
    if (!polyline.segments.empty()) {
      polyline.segments.back().end = point;
    }
    polyline.segments.push_back({point, point, part.number(code::kBulge, own, 0.0),
                                 part.number(code::kStartWidth, own, startWidth),
                                 part.number(code::kEndWidth, own, endWidth)});
  });
  drawVertices(polyline, toWorld * planeToWorld(normalOf(tags, range)), walk);
}

std::vector<AcGePoint3d> locationsOf(const Drawn& entity, const AcGeMatrix3d& toWorld) {
  std::vector<AcGePoint3d> points;
  forEachVertex(entity, [&](const TagList& part, TagRange own, std::int64_t flags) {
    if (!(flags & kIsFace) || (flags & kIsLocation)) {
      points.push_back(toWorld * part.point(kPosition, own));
    }
  });
  return points;
}

void drawSpatial(const Drawn& entity, std::int64_t flags, const AcGeMatrix3d& toWorld,
                 DrawWalk& walk) {
  const std::vector<AcGePoint3d> points = locationsOf(entity, toWorld);
  if (!points.empty()) {
    walk.stroke(polygonPath(points, (flags & kClosed) != 0 && points.size() > 2));
  }
}

/// A grid of points: a line along each row and each column. What was made of it by smoothing has
/// another size.
void drawGrid(const Drawn& entity, std::int64_t flags, const AcGeMatrix3d& toWorld,
              DrawWalk& walk) {
  constexpr int kRows = 71;
  constexpr int kColumns = 72;
  constexpr int kSmoothRows = 73;
  constexpr int kSmoothColumns = 74;
  const TagRange body = entity.tags.body();
  const std::vector<AcGePoint3d> points = locationsOf(entity, toWorld);
  const bool isSmooth = (flags & kSplineFit) != 0;
  const auto count = [&](int code) {
    const std::int64_t value = entity.tags.integer(code, body, 0);
    return static_cast<std::size_t>(std::clamp<std::int64_t>(value, 0, 1 << 20));
  };
  const std::size_t rows = count(isSmooth ? kSmoothRows : kRows);
  const std::size_t columns = count(isSmooth ? kSmoothColumns : kColumns);
  if (rows == 0 || columns == 0 || rows * columns > points.size()) {
    walk.stroke(polygonPath(points, false));
    return;
  }
  std::vector<AcGePoint3d> line;
  for (std::size_t row = 0; row < rows; ++row) {
    line.assign(points.begin() + static_cast<std::ptrdiff_t>(row * columns),
                points.begin() + static_cast<std::ptrdiff_t>((row + 1) * columns));
    walk.stroke(polygonPath(line, (flags & kClosedAcross) != 0));
  }
  for (std::size_t column = 0; column < columns; ++column) {
    line.clear();
    for (std::size_t row = 0; row < rows; ++row) {
      line.push_back(points[row * columns + column]);
    }
    walk.stroke(polygonPath(line, (flags & kClosed) != 0));
  }
}

/// Faces name their corners, counted from 1; a negative one begins an edge that does not show.
void drawFaces(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  constexpr int kFirstCorner = 71;
  constexpr int kMostCorners = 4;
  const std::vector<AcGePoint3d> points = locationsOf(entity, toWorld);
  forEachVertex(entity, [&](const TagList& part, TagRange, std::int64_t flags) {
    if (!(flags & kIsFace) || (flags & kIsLocation)) {
      return;
    }
    std::array<std::int64_t, kMostCorners> corners{};
    std::size_t count = 0;
    for (int i = 0; i < kMostCorners; ++i) {
      const std::int64_t corner = part.integer(kFirstCorner + i, part.body(), 0);
      const bool isPoint = corner != 0 && corner >= -static_cast<std::int64_t>(points.size()) &&
                           corner <= static_cast<std::int64_t>(points.size());
      if (isPoint) {
        corners[count++] = corner;
      }
    }
    const auto at = [&](std::size_t i) {
      return points[static_cast<std::size_t>(std::abs(corners[i % count])) - 1];
    };
    for (std::size_t i = 0; count > 1 && i < count; ++i) {
      if (corners[i] > 0 && !(count == 2 && i == 1)) {
        walk.stroke(linePath(at(i), at(i + 1)));
      }
    }
  });
}

}  // namespace

void drawHeavyPolyline(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const std::int64_t flags =
      entity.tags.integer(code::kFlags, layout::kPolyline2d.in(entity.tags), 0);
  switch (polylineKindOf(entity.tags)) {
    case PolylineKind::Flat:
      drawFlat(entity, flags, toWorld, walk);
      break;
    case PolylineKind::Spatial:
      drawSpatial(entity, entity.tags.integer(code::kFlags, entity.tags.body(), 0), toWorld, walk);
      break;
    case PolylineKind::Mesh: {
      const std::int64_t all = entity.tags.integer(code::kFlags, entity.tags.body(), 0);
      if (all & kFaces) {
        drawFaces(entity, toWorld, walk);
      } else {
        drawGrid(entity, all, toWorld, walk);
      }
      break;
    }
  }
}

}  // namespace quoin::db
