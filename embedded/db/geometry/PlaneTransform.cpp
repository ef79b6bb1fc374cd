#include "embedded/db/geometry/PlaneTransform.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

void setNewNormal(RecordEdit& edit, const SubclassLayout& layout, const AcGeVector3d& normal) {
  edit.setVector(layout, code::kNormal, normal, AcGeVector3d::kZAxis);
}

}  // namespace

double wrapped(double value, double turn) {
  const double rest = std::fmod(value, turn);
  return rest < 0.0 ? rest + turn : rest;
}

PlaneMap planeOf(const TagList& tags, const SubclassLayout& layout, const AcGeMatrix3d& matrix) {
  return PlaneMap(normalOf(tags, layout.in(tags)), matrix);
}

Acad::ErrorStatus transformPlane(RecordEdit& edit, const SubclassLayout& layout,
                                 const PlaneMap& plane) {
  const TagList& tags = edit.tags();
  const double thickness = tags.number(code::kThickness, layout.in(tags), 0.0);
  if (thickness != 0.0 && !plane.keepsPerpendicular) {
    return Acad::eCannotScaleNonUniformly;
  }
  edit.scaleDouble(layout, code::kThickness, plane.heightScale);
  setNewNormal(edit, layout, plane.normal);
  return Acad::eOk;
}

Acad::ErrorStatus transformStraight(RecordEdit& edit, const SubclassLayout& layout, bool hasEnd,
                                    const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const TagRange range = layout.in(tags);
  edit.setPoint(layout, code::kLineStart, matrix * tags.point(code::kLineStart, range));
  if (hasEnd) {
    edit.setPoint(layout, code::kLineEnd, matrix * tags.point(code::kLineEnd, range));
  }
  const AcGeVector3d before = normalOf(tags, range);
  const AcGeVector3d up = matrix * before;
  const double length = up.length();
  if (length != 1.0) {
    edit.scaleDouble(layout, code::kThickness, length);
  }
  const AcGeVector3d normal = up / length;
  if ((normal - before).length() > kSameDirection) {
    setNewNormal(edit, layout, normal);
  }
  return Acad::eOk;
}

Acad::ErrorStatus transformPlaced(RecordEdit& edit, const AcGeMatrix3d& matrix,
                                  const PlacedCodes& codes) {
  const TagList& tags = edit.tags();
  const TagRange range = tags.subclass(codes.marker);
  const TransformParts parts(normalOf(tags, range), matrix);
  if (!parts.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  if (const std::size_t at = tags.find(10, range); at != TagList::kNone) {
    transformTag(edit, at, Meaning::PlanePoint, parts);
  }
  for (const int code : codes.lengths) {
    const std::size_t at = tags.find(code, range);
    if (at != TagList::kNone) {
      const bool isTurned = code == codes.sideFactor && parts.plane.isMirrored;
      edit.setDoubleAt(at, tags.doubleAt(at) * (isTurned ? -parts.length : parts.length));
    }
  }
  const std::array order{10, 20, 30, 40, 41, 42, 43, codes.rotation, 210, 220, 230};
  const SubclassLayout layout{codes.marker, order};
  const bool isInLengths = std::find(codes.lengths.begin(), codes.lengths.end(),
                                     codes.sideFactor) != codes.lengths.end();
  if (parts.plane.isMirrored && !isInLengths) {
    edit.setDouble(layout, codes.sideFactor, -tags.number(codes.sideFactor, range, 1.0), 1.0);
  }
  if (parts.plane.isMirrored || parts.plane.turn != 0.0) {
    // The X axis of a mirrored one points the other way.
    const double rotation = toRadians(tags.number(codes.rotation, range, 0.0));
    const double half = parts.plane.isMirrored ? std::numbers::pi : 0.0;
    edit.setAngle(layout, codes.rotation, wrapped(parts.plane.angle(rotation) + half, kFullTurn),
                  0.0);
  }
  transformNormal(edit, range, parts.plane);
  return Acad::eOk;
}

}  // namespace quoin::db
