// Extents of ellipses, splines and helices, of filled areas, and of hatches by their boundaries.
#include <cmath>

#include "embedded/db/ExtentsShapes.h"
#include "embedded/db/HatchBoundaries.h"
#include "embedded/db/PlaneFields.h"

namespace quoin::db {
namespace {

constexpr int kPoint = 10;
constexpr int kSecondPoint = 11;
constexpr int kNumber = 40;
constexpr int kElevation = 38;
constexpr std::size_t kMostDegrees = 25;

// --- hatches --------------------------------------------------------------------------------

/// An arc or ellipse of a boundary; where it runs clockwise its angles are counted so too.
void setEdgeRange(const TagList& tags, TagRange edge, ArcImage& arc) {
  constexpr int kStartAngle = 50;
  constexpr int kEndAngle = 51;
  constexpr int kIsCounterClockwise = 73;
  // A full turn is told from an empty one by its written ends, before they lose their turns.
  constexpr double kWholeTurn = 360.0 - 1e-9;
  const double start = tags.number(kStartAngle, edge, 0.0);
  const double end = tags.number(kEndAngle, edge, 360.0);
  if (std::fabs(end - start) >= kWholeTurn) {
    return;
  }
  const bool isTurned = tags.integer(kIsCounterClockwise, edge, 1) == 0;
  arc.setRange(toRadians(isTurned ? -end : start), toRadians(isTurned ? -start : end));
}

AcGePoint3d flatPoint(const TagList& tags, int code, TagRange edge, double elevation) {
  AcGePoint3d point = tags.point(code, edge);
  point.z = elevation;
  return point;
}

/// One edge of a boundary: [its type (72), the next edge's).
void addEdge(const TagList& tags, TagRange edge, double elevation, const AcGeMatrix3d& plane,
             AcDbExtents& box) {
  enum { kLine = 1, kArc = 2, kEllipse = 3, kSpline = 4 };
  constexpr int kDegree = 94;
  constexpr int kWeight = 42;
  const auto type = tags.integerAt(edge.first);
  const AcGePoint3d first = flatPoint(tags, kPoint, edge, elevation);
  const AcGePoint3d second = flatPoint(tags, kSecondPoint, edge, elevation);
  if (type == kLine) {
    box.addPoint(plane * first);
    box.addPoint(plane * second);
  } else if (type == kArc) {
    const double radius = tags.number(kNumber, edge, 0.0);
    ArcImage arc{plane * first, plane * (AcGeVector3d::kXAxis * radius),
                 plane * (AcGeVector3d::kYAxis * radius)};
    setEdgeRange(tags, edge, arc);
    addArc(arc, box);
  } else if (type == kEllipse) {
    const AcGeVector3d major(second.x, second.y, 0.0);
    const AcGeVector3d minor =
        AcGeVector3d(-major.y, major.x, 0.0) * tags.number(kNumber, edge, 1.0);
    ArcImage arc{plane * first, plane * major, plane * minor};
    setEdgeRange(tags, edge, arc);
    addArc(arc, box);
  } else if (type == kSpline) {
    SplineImage spline;
    const std::int64_t degree = tags.integer(kDegree, edge, 3);
    spline.degree = degree >= 1 ? static_cast<std::size_t>(degree) : kMostDegrees + 1;
    spline.knots = numbersOf(tags, kNumber, edge);
    spline.weights = numbersOf(tags, kWeight, edge);
    for (AcGePoint3d point : pointsOf(tags, kPoint, edge)) {
      point.z = elevation;
      spline.points.push_back(plane * point);
    }
    addSpline(spline, box);
  }
}

/// A boundary that is a closed polyline with bulges: [its flags (92), the next boundary's).
void addLoop(const TagList& tags, TagRange loop, double elevation, const AcGeMatrix3d& plane,
             AcDbExtents& box) {
  constexpr int kBulge = 42;
  std::vector<Segment> vertices;
  for (std::size_t i = loop.first; i < loop.last; ++i) {
    if (!tags.isOwn(i)) {
      continue;
    }
    const int code = tags[i].code;
    if (code == kPoint) {
      vertices.emplace_back().start = {tags.doubleAt(i), 0.0, elevation};
    } else if (code == kPoint + 10 && !vertices.empty()) {
      vertices.back().start.y = tags.doubleAt(i);
    } else if (code == kBulge && !vertices.empty()) {
      vertices.back().bulge = tags.doubleAt(i);
    }
  }
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    Segment segment = vertices[i];
    segment.end = vertices[(i + 1) % vertices.size()].start;
    addSegment(segment, plane, box);
  }
}

}  // namespace

Acad::ErrorStatus extentsOfHatch(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  const TagList& tags = entity.tags;
  const TagRange range = hatchRange(tags);
  const TagRange boundaries = boundariesOf(tags, range);
  const AcGeMatrix3d plane = toWorld * planeToWorld(normalOf(tags, range));
  const double elevation = tags.point(kPoint, {range.first, boundaries.first}).z;
  forEachBoundary(
      tags, boundaries, [&](TagRange loop) { addLoop(tags, loop, elevation, plane, box); },
      [&](TagRange edge) { addEdge(tags, edge, elevation, plane, box); });
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfEllipse(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                   AcDbExtents& box) {
  constexpr int kStart = 41;
  constexpr int kEnd = 42;
  // Files write the full turn with fewer digits than a double has.
  constexpr double kRounding = 1e-6;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbEllipse");
  const AcGeVector3d major = tags.point(kSecondPoint, range, {1.0, 0.0, 0.0}).asVector();
  const AcGeVector3d minor =
      normalOf(tags, range).crossProduct(major) * tags.number(kNumber, range, 1.0);
  ArcImage arc{toWorld * tags.point(kPoint, range), toWorld * major, toWorld * minor};
  const double start = tags.number(kStart, range, 0.0);
  const double end = tags.number(kEnd, range, kTurn);
  if (std::fabs(std::fabs(end - start) - kTurn) > kRounding) {
    arc.setRange(start, end);
  }
  addArc(arc, box);
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfSpline(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                  AcDbExtents& box) {
  constexpr int kDegree = 71;
  constexpr int kWeight = 41;
  constexpr int kStartDirection = 12;
  constexpr int kEndDirection = 13;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbSpline");
  SplineImage spline;
  const std::int64_t degree = tags.integer(kDegree, range, 3);
  spline.degree = degree >= 1 ? static_cast<std::size_t>(degree) : kMostDegrees + 1;
  spline.knots = numbersOf(tags, kNumber, range);
  spline.weights = numbersOf(tags, kWeight, range);
  for (const AcGePoint3d& point : pointsOf(tags, kPoint, range)) {
    spline.points.push_back(toWorld * point);
  }
  if (!spline.points.empty()) {
    addSpline(spline, box);
    return Acad::eOk;
  }
  addFitSpline(pointsOf(tags, kSecondPoint, range), tags.point(kStartDirection, range).asVector(),
               tags.point(kEndDirection, range).asVector(), toWorld, box);
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfSolid(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbTrace");
  const AcGeMatrix3d plane = toWorld * planeToWorld(normalOf(tags, range));
  // Before R12 the elevation could stand by itself.
  const AcGePoint3d otherwise(0.0, 0.0, tags.number(kElevation, range, 0.0));
  AcDbExtents shape;
  for (const int corner : {10, 11, 12, 13}) {
    if (tags.find(corner, range) != TagList::kNone) {
      shape.addPoint(plane * tags.point(corner, range, otherwise));
    }
  }
  addThick(shape, thicknessOf(tags, range, toWorld), box);
  return Acad::eOk;
}

}  // namespace quoin::db
