#include "embedded/db/geometry/PolylineDraw.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "embedded/db/geometry/DrawWalk.h"

namespace quoin::db {
namespace {

bool isWide(const Segment& segment) {
  return segment.startWidth > 0.0 || segment.endWidth > 0.0;
}

/// The corners of a wide segment: at its start to the right and left, at its end so too.
struct Corners {
  AcGePoint3d startRight;
  AcGePoint3d startLeft;
  AcGePoint3d endRight;
  AcGePoint3d endLeft;
};

AcGeVector3d leftOf(const Segment& segment) {
  const AcGeVector3d left(segment.start.y - segment.end.y, segment.end.x - segment.start.x, 0.0);
  const double length = left.length();
  return length > 0.0 ? left / length : AcGeVector3d();
}

Corners cornersOf(const Segment& segment) {
  const AcGeVector3d left = leftOf(segment);
  return {segment.start - left * (0.5 * segment.startWidth),
          segment.start + left * (0.5 * segment.startWidth),
          segment.end - left * (0.5 * segment.endWidth),
          segment.end + left * (0.5 * segment.endWidth)};
}

/// Where the sides of two segments meet at their common vertex; nothing where the turn is so sharp
/// that they would meet far away.
std::optional<AcGeVector3d> miterOf(const Segment& before, const Segment& after) {
  constexpr double kSharpest = 0.25;  // cosine between a side's normal and the miter
  const AcGeVector3d sum = leftOf(before) + leftOf(after);
  const double length = sum.length();
  const AcGeVector3d miter = length > 0.0 ? sum / length : AcGeVector3d();
  const double cosine = miter.dotProduct(leftOf(before));
  return cosine > kSharpest ? std::optional(miter / cosine) : std::nullopt;
}

class WideSegments {
 public:
  WideSegments(const PlanePolyline& polyline, const AcGeMatrix3d& toWorld, DrawWalk& walk)
      : m_polyline(polyline), m_toWorld(toWorld), m_walk(walk) {}

  void draw(std::size_t i) {
    const Segment& segment = m_polyline.segments[i];
    if (!isStraight(segment)) {
      paint(arcArea(segment));
      return;
    }
    Corners corners = cornersOf(segment);
    meet(neighbour(i, true), segment, true, corners);
    meet(neighbour(i, false), segment, false, corners);
    const std::array ring{m_toWorld * corners.startRight, m_toWorld * corners.endRight,
                          m_toWorld * corners.endLeft, m_toWorld * corners.startLeft};
    paint(polygonPath(ring, true));
  }

 private:
  const Segment* neighbour(std::size_t i, bool isBefore) const {
    const std::size_t count = m_polyline.segments.size();
    if (isBefore) {
      return i > 0                 ? &m_polyline.segments[i - 1]
             : m_polyline.isClosed ? &m_polyline.segments[count - 1]
                                   : nullptr;
    }
    return i + 1 < count         ? &m_polyline.segments[i + 1]
           : m_polyline.isClosed ? &m_polyline.segments[0]
                                 : nullptr;
  }

  /// Straight segments of one width meet in a corner.
  static void meet(const Segment* other, const Segment& segment, bool atStart, Corners& corners) {
    if (!other || other == &segment || !isStraight(*other)) {
      return;
    }
    const double width = atStart ? segment.startWidth : segment.endWidth;
    const double otherWidth = atStart ? other->endWidth : other->startWidth;
    const auto miter = width == otherWidth
                           ? (atStart ? miterOf(*other, segment) : miterOf(segment, *other))
                           : std::nullopt;
    if (!miter) {
      return;
    }
    const AcGeVector3d half = *miter * (0.5 * width);
    if (half.length() > (segment.end - segment.start).length()) {
      return;
    }
    const AcGePoint3d& vertex = atStart ? segment.start : segment.end;
    (atStart ? corners.startRight : corners.endRight) = vertex - half;
    (atStart ? corners.startLeft : corners.endLeft) = vertex + half;
  }

  /// Between two arcs about one centre; where the width changes, between two spirals.
  DrawPath arcArea(const Segment& segment) const {
    const ArcImage middle = arcOf(segment);
    const double radius = middle.u.length();
    const double startReach = radius > 0.0 ? 0.5 * segment.startWidth / radius : 0.0;
    const double endReach = radius > 0.0 ? 0.5 * segment.endWidth / radius : 0.0;
    DrawPath path;
    if (startReach == endReach && startReach < 1.0) {
      ArcImage outer = arcOf(segment, 1.0 + startReach);
      ArcImage inner = arcOf(segment, 1.0 - startReach);
      outer = imageOf(outer, m_toWorld);
      inner = imageOf(inner, m_toWorld);
      startPath(path, outer.at(0.0));
      addArc(path, outer);
      addLine(path, inner.at(inner.sweep));
      addArc(path, inner, true);
    } else {
      constexpr int kSteps = 48;
      const auto at = [&](int step, double side) {
        const double share = static_cast<double>(step) / kSteps;
        const double t = middle.sweep * share;
        const double factor = 1.0 + side * (startReach + (endReach - startReach) * share);
        return m_toWorld *
               (middle.center + (middle.u * std::cos(t) + middle.v * std::sin(t)) * factor);
      };
      startPath(path, at(0, 1.0));
      for (int step = 1; step <= kSteps; ++step) {
        addLine(path, at(step, 1.0));
      }
      for (int step = kSteps; step >= 0; --step) {
        addLine(path, at(step, -1.0));
      }
    }
    path.isClosed = true;
    return path;
  }

  void paint(const DrawPath& area) {
    if (m_walk.isFilled()) {
      m_walk.fill(area);
    } else {
      m_walk.strokePlain(area);
    }
  }

  const PlanePolyline& m_polyline;
  const AcGeMatrix3d& m_toWorld;
  DrawWalk& m_walk;
};

}  // namespace

void drawPolyline(const PlanePolyline& polyline, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const std::vector<Segment>& segments = polyline.segments;
  if (segments.empty()) {
    return;
  }
  const bool hasWidth = std::any_of(segments.begin(), segments.end(), isWide);
  const bool isSplit = !polyline.isPatternContinuous && !walk.look().dashes.empty();
  DrawPath path;
  path.pieces.reserve(isSplit ? 1 : segments.size());
  bool isOpen = false;
  const auto finish = [&] {
    if (isOpen) {
      walk.stroke(path);
      isOpen = false;
    }
  };
  WideSegments wide(polyline, toWorld, walk);
  for (std::size_t i = 0; i < segments.size(); ++i) {
    if (hasWidth && isWide(segments[i])) {
      finish();
      wide.draw(i);
      continue;
    }
    if (!isOpen) {
      startPath(path, toWorld * segments[i].start);
      isOpen = true;
    }
    addSegment(path, segments[i], toWorld);
    if (isSplit) {
      finish();
    }
  }
  path.isClosed = polyline.isClosed && path.pieces.size() == segments.size() && !hasWidth &&
                  segments.size() > 1;
  finish();
}

void drawVertices(PlanePolyline& polyline, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  std::vector<Segment>& segments = polyline.segments;
  if (segments.size() == 1) {
    DrawPath dot;
    dot.start = toWorld * segments.front().start;
    walk.stroke(dot);
    return;
  }
  if (polyline.isClosed && !segments.empty()) {
    segments.back().end = segments.front().start;
  } else if (!segments.empty()) {
    segments.pop_back();
  }
  drawPolyline(polyline, toWorld, walk);
}

}  // namespace quoin::db
