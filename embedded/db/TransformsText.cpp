// transformBy of text, attributes and multiline text.
#include <cmath>
#include <numbers>

#include "embedded/db/EntityGeometry.h"
#include "embedded/db/MTextCodes.h"
#include "embedded/db/PlaneFields.h"
#include "embedded/db/PlaneMap.h"

namespace quoin::db {
namespace {

constexpr int kPosition = 10;
constexpr int kAlignment = 11;
constexpr int kHeight = 40;
constexpr int kRotation = 50;
constexpr double kTurn = 2.0 * std::numbers::pi;

bool hasEmbeddedObject(const TagList& tags) {
  return tags.body().last < tags.size() && tags[tags.body().last].code == kEmbeddedCode;
}

/// The copy of a multiline text's geometry that newest files keep behind a mark of its own.
void transformEmbedded(RecordEdit& edit, const AcGeMatrix3d& matrix, double scale) {
  constexpr int kDirectionX = 10;
  constexpr int kInsertionX = 11;
  const TagList& tags = edit.tags();
  for (std::size_t i = tags.body().last; i < tags.xData().first; ++i) {
    const int code = tags[i].code;
    const bool isPoint = (code == kDirectionX || code == kInsertionX) && i + 2 < tags.size();
    if (isPoint) {
      const AcGePoint3d before(tags.doubleAt(i), tags.doubleAt(i + 1), tags.doubleAt(i + 2));
      const AcGeVector3d direction = (matrix * before.asVector()).normal();
      const AcGePoint3d after =
          code == kInsertionX ? matrix * before : AcGePoint3d::kOrigin + direction;
      edit.setDoubleAt(i, after.x);
      edit.setDoubleAt(i + 1, after.y);
      edit.setDoubleAt(i + 2, after.z);
    }
    constexpr int kFirstLength = 40;
    constexpr int kLastLength = 46;
    if (code >= kFirstLength && code <= kLastLength) {
      edit.setDoubleAt(i, tags.doubleAt(i) * scale);
    }
  }
}

}  // namespace

Acad::ErrorStatus transformText(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr int kGeneration = 71;
  constexpr std::int64_t kBackwards = 2;
  const TagList& tags = edit.tags();
  if (hasEmbeddedObject(tags)) {
    return Acad::eNotApplicable;  // an attribute of several lines
  }
  const TagRange range = place::kText.in(tags);
  const PlaneMap plane(normalOf(tags, range), matrix);
  if (!plane.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  edit.setPoint(place::kText, kPosition, plane.map * tags.point(kPosition, range));
  if (tags.find(kAlignment, range) != TagList::kNone) {
    edit.setPoint(place::kText, kAlignment, plane.map * tags.point(kAlignment, range));
  }
  edit.scaleDouble(place::kText, kHeight, plane.scale);
  edit.scaleDouble(place::kText, code::kThickness, plane.heightScale);
  double rotation = plane.angle(toRadians(tags.number(kRotation, range, 0.0)));
  if (plane.isMirrored) {
    // Written backwards, it reads along the mirrored line from the other end.
    rotation = std::fmod(rotation + std::numbers::pi, kTurn);
    edit.setInteger(place::kText, kGeneration, tags.integer(kGeneration, range, 0) ^ kBackwards, 0);
  }
  edit.setAngle(place::kText, kRotation, rotation, 0.0);
  edit.setVector(place::kText, code::kNormal, plane.normal, AcGeVector3d::kZAxis);
  return Acad::eOk;
}

Acad::ErrorStatus transformAttribute(RecordEdit& edit, const TagList&, const AcGeMatrix3d& matrix) {
  return transformText(edit, matrix);
}

Acad::ErrorStatus transformMText(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr int kDirection = 11;
  constexpr int kLengths[] = {40, 41, 42, 43, 46, 48, 49};
  const TagList& tags = edit.tags();
  const TagRange range = place::kMText.in(tags);
  const AcGeVector3d before = normalOf(tags, range);
  PlaneMap plane(before, matrix);
  if (!plane.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  // Multiline text cannot be written backwards: its mirror image is its back.
  const AcGeVector3d normal = plane.isMirrored ? -plane.normal : plane.normal;
  edit.setPoint(place::kMText, kPosition, matrix * tags.point(kPosition, range));
  const AcGeVector3d oldDirection = mtextDirectionOf(tags);
  const AcGeVector3d direction = (matrix * oldDirection).normal();
  constexpr double kSameDirection = 1.0e-14;
  const bool isVector = tags.find(kDirection, range) != TagList::kNone;
  if ((direction - oldDirection).length() > kSameDirection || !(normal == before)) {
    if (isVector || plane.isMirrored || !(plane.normal == before)) {
      edit.remove(place::kMText, kRotation);
      edit.setPoint(place::kMText, kDirection, AcGePoint3d::kOrigin + direction);
    } else {
      const AcGeVector3d inPlane = worldToPlane(normal) * direction;
      const double angle = std::atan2(inPlane.y, inPlane.x);
      edit.setAngle(place::kMText, kRotation, angle < 0.0 ? angle + kTurn : angle, 0.0);
    }
  }
  for (const int code : kLengths) {
    edit.scaleDouble(place::kMText, code, plane.scale);
  }
  edit.setVector(place::kMText, code::kNormal, normal, AcGeVector3d::kZAxis);
  transformEmbedded(edit, matrix, plane.scale);
  return Acad::eOk;
}

}  // namespace quoin::db
