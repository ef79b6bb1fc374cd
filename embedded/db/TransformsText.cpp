// transformBy of text, attributes and multiline text.
#include <algorithm>
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

/// The multiline text inside an attribute of several lines, which is laid out as an MTEXT
/// record.
void transformInner(RecordEdit& edit, const AcGeMatrix3d& matrix, const PlaneMap& plane) {
  constexpr int kDirection = 11;
  constexpr int kBehindText = 73;  // the first tag that follows text and direction
  const TagList& tags = edit.tags();
  if (tags.body().last == tags.xData().first) {
    return;  // nothing is inside
  }
  std::size_t directionAt = TagList::kNone;
  std::size_t angleAt = TagList::kNone;
  std::size_t insertAt = tags.xData().first;
  const auto pointAt = [&](std::size_t i) {
    return AcGePoint3d(tags.doubleAt(i), tags.doubleAt(i + 1), tags.doubleAt(i + 2));
  };
  const auto setPointAt = [&](std::size_t i, const AcGePoint3d& point) {
    for (unsigned int axis = 0; axis < 3; ++axis) {
      edit.setDoubleAt(i + axis, point[axis]);
    }
  };
  for (std::size_t i = tags.body().last; i < tags.xData().first; ++i) {
    const int code = tags[i].code;
    const bool isLength = (code >= 40 && code <= 43) || code == 46;
    if (code == kPosition && i + 2 < tags.size()) {
      setPointAt(i, matrix * pointAt(i));
    } else if (isLength) {
      edit.setDoubleAt(i, tags.doubleAt(i) * plane.scale);
    } else if (code == kDirection && i + 2 < tags.size()) {
      directionAt = i;
    } else if (code == kRotation) {
      angleAt = i;
    } else if (code == kBehindText) {
      insertAt = std::min(insertAt, i);
    }
  }
  const bool isTurned = plane.isMirrored || plane.turn != 0.0;
  if (angleAt != TagList::kNone && isTurned) {
    edit.setDoubleAt(angleAt, toDegrees(plane.angle(toRadians(tags.doubleAt(angleAt)))));
  } else if (directionAt != TagList::kNone) {
    const AcGeVector3d direction = (matrix * pointAt(directionAt).asVector()).normal();
    setPointAt(directionAt, AcGePoint3d::kOrigin + direction);
  } else if (isTurned) {
    const AcGeVector3d direction =
        planeToWorld(plane.normal) * AcGeVector3d(std::cos(plane.turn), std::sin(plane.turn), 0.0);
    std::string bytes;
    for (int axis = 0; axis < 3; ++axis) {
      dxf::putDouble(bytes, kDirection + 10 * axis, direction[static_cast<unsigned int>(axis)],
                     tags.format());
    }
    edit.insertBefore(insertAt, std::move(bytes));
  }
}

}  // namespace

Acad::ErrorStatus transformText(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr int kGeneration = 71;
  constexpr std::int64_t kBackwards = 2;
  const TagList& tags = edit.tags();
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
  // Attributes of several lines keep a second point, and their text, in newer files.
  for (const Place& attribute : {place::kAttribute, place::kAttributeDefinition}) {
    const TagRange own = attribute.in(tags);
    if (tags.hasMarkers() && own.first > range.last &&
        tags.find(kAlignment, own) != TagList::kNone) {
      edit.setPoint(attribute, kAlignment, plane.map * tags.point(kAlignment, own));
    }
  }
  transformInner(edit, matrix, plane);
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
