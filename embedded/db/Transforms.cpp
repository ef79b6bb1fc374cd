// transformBy of lines, arcs, polylines and block references. A plane entity's shape is kept
// in its plane: PlaneMap tells what the matrix does there.
#include <cmath>
#include <numbers>

#include "embedded/db/Blocks.h"
#include "embedded/db/EntityGeometry.h"
#include "embedded/db/LightVertices.h"
#include "embedded/db/PlaneMap.h"
#include "embedded/db/PolylineKind.h"

namespace quoin::db {
namespace {

constexpr int kPoint = 10;
constexpr int kEndPoint = 11;
constexpr int kRadius = 40;
constexpr int kStartAngle = 50;
constexpr int kEndAngle = 51;
constexpr int kElevation = 38;

void setNewNormal(RecordEdit& edit, const Place& place, const AcGeVector3d& normal) {
  edit.setVector(place, code::kNormal, normal, AcGeVector3d::kZAxis);
}

/// What plane entities share: normal and thickness.
Acad::ErrorStatus transformPlane(RecordEdit& edit, const Place& place, const PlaneMap& plane) {
  const TagList& tags = edit.tags();
  const double thickness = tags.number(code::kThickness, place.in(tags), 0.0);
  if (thickness != 0.0 && !plane.keepsUpright) {
    return Acad::eCannotScaleNonUniformly;
  }
  edit.scaleDouble(place, code::kThickness, plane.heightScale);
  setNewNormal(edit, place, plane.normal);
  return Acad::eOk;
}

PlaneMap planeOf(const TagList& tags, const Place& place, const AcGeMatrix3d& matrix) {
  return PlaneMap(normalOf(tags, place.in(tags)), matrix);
}

Acad::ErrorStatus transformStraight(RecordEdit& edit, const Place& place, bool hasEnd,
                                    const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const TagRange range = place.in(tags);
  edit.setPoint(place, kPoint, matrix * tags.point(kPoint, range));
  if (hasEnd) {
    edit.setPoint(place, kEndPoint, matrix * tags.point(kEndPoint, range));
  }
  const AcGeVector3d before = normalOf(tags, range);
  const AcGeVector3d up = matrix * before;
  const double length = up.length();
  if (length != 1.0) {
    edit.scaleDouble(place, code::kThickness, length);
  }
  constexpr double kSameDirection = 1.0e-14;
  const AcGeVector3d normal = up / length;
  if ((normal - before).length() > kSameDirection) {
    setNewNormal(edit, place, normal);
  }
  return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus transformPoint(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  return transformStraight(edit, place::kPoint, false, matrix);
}

Acad::ErrorStatus transformLine(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  return transformStraight(edit, place::kLine, true, matrix);
}

Acad::ErrorStatus transformFace(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const TagRange range = place::kFace.in(tags);
  for (const int corner : {10, 11, 12, 13}) {
    if (tags.find(corner, range) != TagList::kNone) {
      edit.setPoint(place::kFace, corner, matrix * tags.point(corner, range));
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus transformCircle(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const PlaneMap plane = planeOf(tags, place::kCircle, matrix);
  if (!plane.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  edit.setPoint(place::kCircle, kPoint, plane.map * tags.point(kPoint, place::kCircle.in(tags)));
  edit.scaleDouble(place::kCircle, kRadius, plane.scale);
  return transformPlane(edit, place::kCircle, plane);
}

Acad::ErrorStatus transformArc(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const TagRange range = place::kCircle.in(tags);
  const PlaneMap plane = planeOf(tags, place::kCircle, matrix);
  const double start = plane.angle(toRadians(tags.number(kStartAngle, range, 0.0)));
  const double end = plane.angle(toRadians(tags.number(kEndAngle, range, 0.0)));
  const Acad::ErrorStatus status = transformCircle(edit, matrix);
  if (status == Acad::eOk) {
    // A mirrored arc runs the other way round.
    edit.setAngle(place::kCircle, kStartAngle, plane.isMirrored ? end : start);
    edit.setAngle(place::kCircle, kEndAngle, plane.isMirrored ? start : end);
  }
  return status;
}

// --- polylines ------------------------------------------------------------------------------

Acad::ErrorStatus transformPolyline(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const TagRange range = place::kPolyline.in(tags);
  const PlaneMap plane = planeOf(tags, place::kPolyline, matrix);
  const double elevation = tags.number(kElevation, range, 0.0);
  const std::vector<LightVertex> vertices = lightVerticesOf(tags);
  for (const LightVertex& vertex : vertices) {
    const bool needsSimilar =
        vertex.bulge != 0.0 || vertex.startWidth != 0.0 || vertex.endWidth != 0.0;
    if (needsSimilar && !plane.isSimilar) {
      return Acad::eCannotScaleNonUniformly;
    }
  }
  double newElevation = (plane.map * AcGePoint3d(0.0, 0.0, elevation)).z;
  edit.setDouble(place::kPolyline, kElevation, newElevation, 0.0);
  for (const LightVertex& vertex : vertices) {
    const AcGePoint3d moved = plane.map * AcGePoint3d(vertex.point.x, vertex.point.y, elevation);
    for (std::size_t i = vertex.tags.first; i < vertex.tags.last; ++i) {
      switch (tags[i].code) {
        case light::kX:
          edit.setDoubleAt(i, moved.x);
          break;
        case light::kY:
          edit.setDoubleAt(i, moved.y);
          break;
        case code::kStartWidth:
        case code::kEndWidth:
          edit.setDoubleAt(i, tags.doubleAt(i) * plane.scale);
          break;
        case code::kBulge:
          edit.setDoubleAt(i, plane.isMirrored ? -tags.doubleAt(i) : tags.doubleAt(i));
          break;
        default:
          break;
      }
    }
  }
  edit.scaleDouble(place::kPolyline, light::kConstantWidth, plane.scale);
  return transformPlane(edit, place::kPolyline, plane);
}

Acad::ErrorStatus transformHeavyPolyline(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  if (polylineKindOf(tags) != PolylineKind::Flat) {
    return Acad::eOk;  // its vertices say everything
  }
  constexpr int kHeight = 30;  // z of the point whose x and y mean nothing
  const TagRange range = place::kPolyline2d.in(tags);
  const PlaneMap plane = planeOf(tags, place::kPolyline2d, matrix);
  const AcGePoint3d height(0.0, 0.0, tags.number(kHeight, range, 0.0));
  edit.setDouble(place::kPolyline2d, kHeight, (plane.map * height).z, 0.0);
  edit.scaleDouble(place::kPolyline2d, code::kStartWidth, plane.scale);
  edit.scaleDouble(place::kPolyline2d, code::kEndWidth, plane.scale);
  return transformPlane(edit, place::kPolyline2d, plane);
}

Acad::ErrorStatus transformVertex(RecordEdit& edit, const TagList& owner,
                                  const AcGeMatrix3d& matrix) {
  constexpr std::int64_t kIsLocation = 64;
  constexpr std::int64_t kIsFaceOnly = 128;
  constexpr int kTangent = 50;
  const TagList& tags = edit.tags();
  const Place vertex{"AcDbVertex", order::kVertex, true};
  const TagRange range = vertex.in(tags);
  const std::int64_t flags = tags.integer(code::kFlags, range, 0);
  if ((flags & kIsFaceOnly) && !(flags & kIsLocation)) {
    return Acad::eOk;  // it lists the corners of a face
  }
  const AcGePoint3d point = tags.point(kPoint, range);
  if (polylineKindOf(owner) != PolylineKind::Flat) {
    edit.setPoint(vertex, kPoint, matrix * point);
    return Acad::eOk;
  }
  const PlaneMap plane = planeOf(owner, place::kPolyline2d, matrix);
  const TagRange ownerRange = place::kPolyline2d.in(owner);
  const double bulge = tags.number(code::kBulge, range, 0.0);
  const bool isWide =
      tags.number(code::kStartWidth, range, owner.number(code::kStartWidth, ownerRange, 0.0)) !=
          0.0 ||
      tags.number(code::kEndWidth, range, owner.number(code::kEndWidth, ownerRange, 0.0)) != 0.0;
  if ((bulge != 0.0 || isWide) && !plane.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  edit.setPoint(vertex, kPoint, plane.map * point);
  edit.scaleDouble(vertex, code::kStartWidth, plane.scale);
  edit.scaleDouble(vertex, code::kEndWidth, plane.scale);
  edit.scaleDouble(vertex, code::kBulge, plane.isMirrored ? -1.0 : 1.0);
  if (const std::size_t tangent = tags.find(kTangent, range); tangent != TagList::kNone) {
    edit.setAngle(vertex, kTangent, plane.angle(toRadians(tags.doubleAt(tangent))));
  }
  return Acad::eOk;
}

// --- block references -----------------------------------------------------------------------

Acad::ErrorStatus transformReference(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr int kScaleX = 41;
  constexpr int kScaleY = 42;
  constexpr int kScaleZ = 43;
  constexpr int kRotation = 50;
  constexpr int kColumnSpacing = 44;
  constexpr int kRowSpacing = 45;
  constexpr double kSameShape = 1.0e-10;
  const ReferenceFields fields(edit.tags());
  const PlaneMap plane(fields.normal, matrix);
  const double cosine = std::cos(fields.rotation);
  const double sine = std::sin(fields.rotation);
  const AcGeVector3d x = plane.map * AcGeVector3d(cosine, sine, 0.0);
  const AcGeVector3d y = plane.map * AcGeVector3d(-sine, cosine, 0.0);
  const double xScale = x.length();
  const double yScale = y.length();
  // The block's axes must stay at right angles; else no reference can show it.
  if (!plane.keepsUpright || std::fabs(x.dotProduct(y)) > kSameShape * xScale * yScale) {
    return Acad::eCannotScaleNonUniformly;
  }
  double rotation = std::atan2(x.y, x.x);
  double xSign = 1.0;
  if (plane.isMirrored) {
    xSign = -1.0;
    rotation = std::atan2(-x.y, -x.x);
  }
  const bool isTurned = plane.isMirrored || plane.turn != 0.0 || !plane.isSimilar;
  const double xFactor = xSign * (plane.isSimilar ? plane.scale : xScale);
  const double yFactor = plane.isSimilar ? plane.scale : yScale;
  const auto setFactor = [&](int code, double before, double factor) {
    if (factor != 1.0) {
      edit.setDouble(place::kReference, code, before * factor, 1.0);
    }
  };
  edit.setPoint(place::kReference, kPoint, plane.map * fields.position);
  setFactor(kScaleX, fields.scale.sx, xFactor);
  setFactor(kScaleY, fields.scale.sy, yFactor);
  setFactor(kScaleZ, fields.scale.sz, plane.heightScale);
  if (isTurned) {
    constexpr double kTurn = 2.0 * std::numbers::pi;
    edit.setAngle(place::kReference, kRotation, rotation < 0.0 ? rotation + kTurn : rotation, 0.0);
  }
  edit.scaleDouble(place::kReference, kColumnSpacing, xFactor);
  edit.scaleDouble(place::kReference, kRowSpacing, yFactor);
  setNewNormal(edit, place::kReference, plane.normal);
  return Acad::eOk;
}

// --- extended data --------------------------------------------------------------------------

void transformXData(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr int kPosition = 1011;
  constexpr int kDisplacement = 1012;
  constexpr int kDirection = 1013;
  constexpr int kDistance = 1041;
  constexpr int kFactor = 1042;
  const TagList& tags = edit.tags();
  const double scale = matrix.scale();
  for (std::size_t i = tags.xData().first; i < tags.xData().last; ++i) {
    const int code = tags[i].code;
    if (code == kDistance || code == kFactor) {
      edit.setDoubleAt(i, tags.doubleAt(i) * scale);
    }
    const bool isPoint = code == kPosition || code == kDisplacement || code == kDirection;
    if (!isPoint || i + 2 >= tags.size()) {
      continue;
    }
    const AcGePoint3d before(tags.doubleAt(i), tags.doubleAt(i + 1), tags.doubleAt(i + 2));
    AcGePoint3d after =
        code == kPosition ? matrix * before : AcGePoint3d::kOrigin + matrix * before.asVector();
    if (code == kDirection && after.asVector().length() > 0.0) {
      after = after * (before.asVector().length() / after.asVector().length());
    }
    edit.setDoubleAt(i, after.x);
    edit.setDoubleAt(i + 1, after.y);
    edit.setDoubleAt(i + 2, after.z);
  }
}

}  // namespace quoin::db
