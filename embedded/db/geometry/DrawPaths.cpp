#include "embedded/db/geometry/DrawPaths.h"

#include <algorithm>
#include <cmath>

namespace quoin::db {

using hostx::DrawPiece;

namespace {

bool isFinite(double value) {
  return std::isfinite(value);
}
bool isFinite(const AcGePoint3d& point) {
  return isFinite(point.x) && isFinite(point.y) && isFinite(point.z);
}
bool isFinite(const AcGeVector3d& vector) {
  return isFinite(vector.x) && isFinite(vector.y) && isFinite(vector.z);
}

}  // namespace

void startPath(DrawPath& path, const AcGePoint3d& start) {
  path.start = start;
  path.pieces.clear();
  path.isClosed = false;
}

void addLine(DrawPath& path, const AcGePoint3d& end) {
  path.pieces.emplace_back().end = end;
}

void addArc(DrawPath& path, const ArcImage& arc, bool isTurned) {
  DrawPiece& piece = path.pieces.emplace_back();
  piece.kind = DrawPiece::Kind::Arc;
  piece.center = arc.center;
  piece.u = arc.u;
  piece.v = arc.v;
  piece.start = isTurned ? arc.start + arc.sweep : arc.start;
  piece.sweep = isTurned ? -arc.sweep : arc.sweep;
  piece.end = arc.at(isTurned ? arc.start : arc.start + arc.sweep);
}

void addSegment(DrawPath& path, const Segment& segment, const AcGeMatrix3d& toWorld) {
  if (isStraight(segment)) {
    addLine(path, toWorld * segment.end);
  } else {
    addArc(path, imageOf(arcOf(segment), toWorld));
    path.pieces.back().end = toWorld * segment.end;
  }
}

DrawPath linePath(const AcGePoint3d& start, const AcGePoint3d& end) {
  DrawPath path;
  path.start = start;
  addLine(path, end);
  return path;
}

DrawPath arcPath(const ArcImage& arc) {
  DrawPath path;
  path.start = arc.at(arc.start);
  addArc(path, arc);
  path.isClosed = arc.sweep >= kFullTurn;
  return path;
}

DrawPath polygonPath(std::span<const AcGePoint3d> points, bool isClosed) {
  DrawPath path;
  path.isClosed = isClosed;
  if (!points.empty()) {
    path.start = points.front();
    path.pieces.reserve(points.size());
    for (const AcGePoint3d& point : points.subspan(1)) {
      addLine(path, point);
    }
  }
  return path;
}

DrawPath rectanglePath(double left, double bottom, double right, double top,
                       const AcGeMatrix3d& toWorld) {
  const AcGePoint3d corners[] = {
      toWorld * AcGePoint3d(left, bottom, 0.0), toWorld * AcGePoint3d(right, bottom, 0.0),
      toWorld * AcGePoint3d(right, top, 0.0), toWorld * AcGePoint3d(left, top, 0.0)};
  return polygonPath(corners, true);
}

ArcImage imageOf(const ArcImage& arc, const AcGeMatrix3d& matrix) {
  ArcImage image = arc;
  image.center = matrix * arc.center;
  image.u = matrix * arc.u;
  image.v = matrix * arc.v;
  return image;
}

double lengthScale(const AcGeMatrix3d& matrix) {
  const AcGeVector3d x = matrix * AcGeVector3d::kXAxis;
  const AcGeVector3d y = matrix * AcGeVector3d::kYAxis;
  return std::sqrt(x.crossProduct(y).length());
}

bool isFinite(const DrawPath& path) {
  return isFinite(path.start) &&
         std::all_of(path.pieces.begin(), path.pieces.end(), [](const DrawPiece& piece) {
           return isFinite(piece.end) &&
                  (piece.kind == DrawPiece::Kind::Line ||
                   (isFinite(piece.center) && isFinite(piece.u) && isFinite(piece.v) &&
                    isFinite(piece.start) && isFinite(piece.sweep)));
         });
}

std::vector<AcGePoint3d> pointsAlong(const DrawPath& path, double error) {
  constexpr int kMostSteps = 256;
  std::vector<AcGePoint3d> points{path.start};
  points.reserve(path.pieces.size() + 1);
  for (const DrawPiece& piece : path.pieces) {
    if (piece.kind == DrawPiece::Kind::Arc) {
      // A chord of the angle a is off by r (1 - cos a/2), about r a^2 / 8.
      const double radius = std::fmax(piece.u.length(), piece.v.length());
      const double angle = std::sqrt(8.0 * std::fmax(error, radius * 1e-5) / radius);
      const double wanted = std::fabs(piece.sweep) / angle;
      const int steps =
          wanted < kMostSteps ? std::max(static_cast<int>(std::ceil(wanted)), 2) : kMostSteps;
      for (int step = 1; step < steps; ++step) {
        const double t = piece.start + piece.sweep * step / steps;
        points.push_back(piece.center + piece.u * std::cos(t) + piece.v * std::sin(t));
      }
    }
    points.push_back(piece.end);
  }
  return points;
}

}  // namespace quoin::db
