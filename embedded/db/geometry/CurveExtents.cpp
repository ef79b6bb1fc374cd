#include "embedded/db/geometry/CurveExtents.h"

#include <cmath>

#include "embedded/db/core/PlaneFields.h"

namespace quoin::db {

// --- arcs -----------------------------------------------------------------------------------

AcGePoint3d ArcImage::at(double t) const {
  return center + u * std::cos(t) + v * std::sin(t);
}

void ArcImage::setRange(double from, double to) {
  start = from;
  const double turn = std::fmod(to - from, kFullTurn);
  sweep = turn > 0.0 ? turn : turn + kFullTurn;
}

void addArc(const ArcImage& arc, AcDbExtents& box) {
  if (arc.sweep >= kFullTurn) {
    const AcGeVector3d reach(std::hypot(arc.u.x, arc.v.x), std::hypot(arc.u.y, arc.v.y),
                             std::hypot(arc.u.z, arc.v.z));
    box.addPoint(arc.center - reach);
    box.addPoint(arc.center + reach);
    return;
  }
  box.addPoint(arc.at(arc.start));
  box.addPoint(arc.at(arc.start + arc.sweep));
  for (unsigned int axis = 0; axis < 3; ++axis) {
    const double extreme = std::atan2(arc.v[axis], arc.u[axis]);
    for (const double t : {extreme, extreme + std::numbers::pi}) {
      const double turn = std::fmod(t - arc.start, kFullTurn);
      if ((turn < 0.0 ? turn + kFullTurn : turn) < arc.sweep) {
        box.addPoint(arc.at(t));
      }
    }
  }
}

// --- segments -------------------------------------------------------------------------------

namespace {

void addStraight(const Segment& segment, const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  AcGeVector3d left(segment.start.y - segment.end.y, segment.end.x - segment.start.x, 0.0);
  const double length = left.length();
  left = length > 0.0 ? left / length : AcGeVector3d();
  for (const double side : {-0.5, 0.5}) {
    box.addPoint(toWorld * (segment.start + left * (side * segment.startWidth)));
    box.addPoint(toWorld * (segment.end + left * (side * segment.endWidth)));
  }
}

void addBulged(const Segment& segment, const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  const double radius = arcOf(segment).u.length();
  const double width = std::fmax(segment.startWidth, segment.endWidth);
  const double reach = radius > 0.0 ? 0.5 * width / radius : 0.0;
  for (const double factor : {1.0 - reach, 1.0 + reach}) {
    const ArcImage plane = arcOf(segment, factor);
    ArcImage arc{toWorld * plane.center, toWorld * plane.u, toWorld * plane.v};
    arc.sweep = plane.sweep;
    addArc(arc, box);
  }
}

}  // namespace

bool isStraight(const Segment& segment) {
  return segment.bulge == 0.0 || !std::isfinite(1.0 / segment.bulge);
}

ArcImage arcOf(const Segment& segment, double factor) {
  const double bulge = segment.bulge;
  const AcGeVector3d chord = segment.end - segment.start;
  const AcGeVector3d left(-chord.y, chord.x, 0.0);
  const AcGePoint3d center =
      segment.start + chord * 0.5 + left * ((1.0 - bulge * bulge) / (4.0 * bulge));
  const AcGeVector3d toStart = segment.start - center;
  const double side = bulge > 0.0 ? 1.0 : -1.0;
  const AcGeVector3d across(-toStart.y * side, toStart.x * side, 0.0);
  ArcImage arc{center, toStart * factor, across * factor};
  arc.sweep = 4.0 * std::atan(std::fabs(bulge));
  return arc;
}

void addSegment(const Segment& segment, const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  (isStraight(segment) ? addStraight : addBulged)(segment, toWorld, box);
}

void addRectangle(double left, double bottom, double right, double top, const AcGeMatrix3d& toWorld,
                  AcDbExtents& box) {
  for (const double x : {left, right}) {
    for (const double y : {bottom, top}) {
      box.addPoint(toWorld * AcGePoint3d(x, y, 0.0));
    }
  }
}

void addThick(const AcDbExtents& shape, const AcGeVector3d& thickness, AcDbExtents& box) {
  box.addExt(shape);
  if (!shape.isFresh() && (thickness.x != 0.0 || thickness.y != 0.0 || thickness.z != 0.0)) {
    AcDbExtents other = shape;
    other.expandBy(thickness);
    box.addExt(other);
  }
}

AcGeVector3d thicknessOf(const TagList& tags, TagRange range, const AcGeMatrix3d& toWorld) {
  return toWorld * (normalOf(tags, range) * tags.number(code::kThickness, range, 0.0));
}

std::vector<double> numbersOf(const TagList& tags, int code, TagRange range) {
  std::vector<double> numbers;
  for (std::size_t at = tags.find(code, range); at != TagList::kNone;
       at = tags.find(code, range, at + 1)) {
    numbers.push_back(tags.doubleAt(at));
  }
  return numbers;
}

std::vector<AcGePoint3d> pointsOf(const TagList& tags, int code, TagRange range) {
  constexpr int kAxisStep = 10;
  std::vector<AcGePoint3d> points;
  for (std::size_t at = tags.find(code, range); at != TagList::kNone;
       at = tags.find(code, range, at + 1)) {
    AcGePoint3d& point = points.emplace_back(tags.doubleAt(at), 0.0, 0.0);
    for (unsigned int axis = 1; axis < 3 && at + axis < range.last; ++axis) {
      if (tags[at + axis].code == code + kAxisStep * static_cast<int>(axis)) {
        point[axis] = tags.doubleAt(at + axis);
      }
    }
  }
  return points;
}

}  // namespace quoin::db
