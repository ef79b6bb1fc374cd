#include "embedded/db/geometry/TransformSchema.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "embedded/db/core/ObjectImpl.h"

namespace quoin::db {
namespace {

using enum Meaning;

/// How many of the schema's subclasses a record with markers has.
int subclassesIn(const TransformSchema& schema, const TagList& tags) {
  int count = 0;
  std::string_view marker;
  for (const Rule& rule : schema.rules) {
    count += rule.marker != marker && !stretchOf(tags, rule.marker).isEmpty() ? 1 : 0;
    marker = rule.marker;
  }
  return count;
}

/// Sets the point whose x stands at the tag. A z that is not there is 0, and is written where
/// it no longer is.
void setPointAt(RecordEdit& edit, std::size_t index, const AcGePoint3d& point, bool hasY,
                bool hasZ) {
  const TagList& tags = edit.tags();
  edit.setDoubleAt(index, point.x);
  if (hasY) {
    edit.setDoubleAt(index + 1, point.y);
  }
  if (hasZ) {
    edit.setDoubleAt(index + 2, point.z);
  } else if (hasY && point.z != 0.0) {
    edit.noteNumber(point.z);
    std::string bytes;
    dxf::putDouble(bytes, tags[index].code + 20, point.z, tags.format());
    edit.insertBefore(index + 2, std::move(bytes));
  }
}

/// The image of a direction, or of a normal, with the length that it had.
AcGeVector3d turned(const AcGeVector3d& before, Meaning meaning, const AcGeMatrix3d& matrix) {
  const AcGeVector3d image = matrix * before;
  const double sign = meaning == Normal && matrix.det() < 0.0 ? -1.0 : 1.0;
  const double share = image.length() > 0.0 ? sign * before.length() / image.length() : sign;
  return share == 1.0 ? image : image * share;
}

/// Writes a direction that was missing, where it is no longer what that stands for.
void insertTurned(RecordEdit& edit, const Rule& rule, TagRange range, const AcGeMatrix3d& matrix) {
  const AcGeVector3d after = turned(*rule.absent, rule.meaning, matrix);
  if ((after - *rule.absent).length() == 0.0) {
    return;
  }
  std::string bytes;
  const double values[] = {after.x, after.y, after.z};
  for (int i = 0; i < 3; ++i) {
    dxf::putDouble(bytes, rule.code + 10 * i, values[i], edit.tags().format());
  }
  edit.insertBefore(range.last, std::move(bytes));
}

}  // namespace

TagRange stretchOf(const TagList& tags, std::string_view marker) {
  const TagRange range = tags.subclass(marker);
  return tags.hasMarkers() && range.first == tags.body().first ? TagRange{} : range;
}

bool isReadable(const TransformSchema& schema, const TagList& tags) {
  return !tags.hasMarkers() || schema.subclassesNeeded == 1 ||
         subclassesIn(schema, tags) >= schema.subclassesNeeded;
}

TransformParts::TransformParts(const AcGeVector3d& normal, const AcGeMatrix3d& map)
    : matrix(map),
      plane(normal, map),
      length(plane.scale),
      isSimilar(plane.isSimilar && plane.keepsPerpendicular &&
                std::fabs(plane.heightScale - plane.scale) <= kSameShape * plane.scale) {}

void transformTag(RecordEdit& edit, std::size_t index, Meaning meaning,
                  const TransformParts& parts) {
  const TagList& tags = edit.tags();
  const int code = tags[index].code;
  const auto hasTag = [&](std::size_t i, int wanted) {
    return i < tags.size() && tags[i].code == wanted;
  };
  const double value = meaning == Handedness ? 0.0 : tags.doubleAt(index);
  switch (meaning) {
    case Length:
      edit.setDoubleAt(index, value * parts.length);
      return;
    case Angle: {
      const double after = parts.plane.angle(toRadians(value));
      if (after != toRadians(value)) {
        edit.setDoubleAt(index, toDegrees(after));
      }
      return;
    }
    case AngleRadians:
      edit.setDoubleAt(index, parts.plane.angle(value));
      return;
    case TurnedAngle:
      edit.setDoubleAt(index, parts.plane.isMirrored ? -value : value);
      return;
    case Handedness:
      if (parts.matrix.det() < 0.0) {
        std::string bytes;
        dxf::putInteger(bytes, code, tags.integerAt(index) == 0 ? 1 : 0, tags.format());
        edit.replace({index, index + 1}, std::move(bytes));
      }
      return;
    case Point:
    case Displacement:
    case Direction:
    case Normal:
    case PlanePoint:
    case PlaneDisplacement:
      break;
  }
  const bool hasY = hasTag(index + 1, code + 10);
  const bool hasZ = hasY && hasTag(index + 2, code + 20);
  const AcGePoint3d before(value, hasY ? tags.doubleAt(index + 1) : 0.0,
                           hasZ ? tags.doubleAt(index + 2) : 0.0);
  AcGePoint3d after;
  switch (meaning) {
    case Point:
      after = parts.matrix * before;
      break;
    case PlanePoint:
      after = parts.plane.map * before;
      break;
    case PlaneDisplacement:
      after = AcGePoint3d() + parts.plane.map * before.asVector();
      break;
    case Direction:
    case Normal:
      after = AcGePoint3d() + turned(before.asVector(), meaning, parts.matrix);
      break;
    default:
      after = AcGePoint3d() + parts.matrix * before.asVector();
      break;
  }
  setPointAt(edit, index, after, hasY, hasZ);
}

void transformNormal(RecordEdit& edit, TagRange range, const PlaneMap& plane) {
  const TagList& tags = edit.tags();
  const AcGeVector3d before = normalOf(tags, range);
  if ((before - plane.normal).length() == 0.0) {
    return;
  }
  const std::size_t index = tags.find(code::kNormal, range);
  if (index != TagList::kNone) {
    setPointAt(edit, index, AcGePoint3d() + plane.normal,
               index + 1 < tags.size() && tags[index + 1].code == code::kNormal + 10,
               index + 2 < tags.size() && tags[index + 2].code == code::kNormal + 20);
    return;
  }
  std::string bytes;
  const double values[] = {plane.normal.x, plane.normal.y, plane.normal.z};
  for (int i = 0; i < 3; ++i) {
    dxf::putDouble(bytes, code::kNormal + 10 * i, values[i], tags.format());
  }
  edit.insertBefore(range.last, std::move(bytes));
}

Acad::ErrorStatus transformBySchema(const TransformSchema& schema, RecordEdit& edit,
                                    const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const bool isPlane = !schema.normalMarker.empty();
  const TagRange planeRange = isPlane ? tags.subclass(schema.normalMarker) : TagRange{};
  const TransformParts parts(isPlane ? normalOf(tags, planeRange) : AcGeVector3d::kZAxis, matrix);
  if (!schema.isAffine && !parts.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  const bool isElsewhere = tags.hasMarkers() && subclassesIn(schema, tags) == 0;
  std::string_view marker;
  TagRange range;
  // Where there are no markers, rules of several subclasses see the same tags.
  std::vector<bool> isDone(tags.size(), false);
  for (const Rule& rule : schema.rules) {
    if (rule.marker != marker) {
      marker = rule.marker;
      range = isElsewhere ? tags.body() : stretchOf(tags, marker);
    }
    if (rule.meaning == Length && !parts.isSimilar && tags.number(rule.code, range, 0.0) != 0.0) {
      return Acad::eCannotScaleNonUniformly;  // a length has a direction then
    }
    if (rule.absent && !range.isEmpty() && tags.find(rule.code, range) == TagList::kNone) {
      insertTurned(edit, rule, range, matrix);
    }
    for (std::size_t i = tags.find(rule.code, range); i != TagList::kNone;
         i = tags.find(rule.code, range, i + 1)) {
      if (!isDone[i]) {
        isDone[i] = true;
        transformTag(edit, i, rule.meaning, parts);
      }
    }
  }
  if (schema.finish) {
    schema.finish(edit, parts);
  }
  if (isPlane) {
    transformNormal(edit, planeRange, parts.plane);
  }
  return Acad::eOk;
}

}  // namespace quoin::db
