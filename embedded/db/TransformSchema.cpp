#include "embedded/db/TransformSchema.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "embedded/db/ObjectImpl.h"

namespace quoin::db {
namespace {

using enum Meaning;

constexpr std::array kSolid{Rule{"AcDbTrace", 10, PlanePoint}, Rule{"AcDbTrace", 11, PlanePoint},
                            Rule{"AcDbTrace", 12, PlanePoint}, Rule{"AcDbTrace", 13, PlanePoint},
                            Rule{"AcDbTrace", 39, Length}};
constexpr std::array kRay{Rule{"AcDbRay", 10, Point}, Rule{"AcDbRay", 11, Direction}};
constexpr std::array kXline{Rule{"AcDbXline", 10, Point}, Rule{"AcDbXline", 11, Direction}};
// The knots are parameters and stay.
constexpr std::array kSpline{Rule{"AcDbSpline", 10, Point}, Rule{"AcDbSpline", 11, Point},
                             Rule{"AcDbSpline", 12, Direction}, Rule{"AcDbSpline", 13, Direction}};
constexpr std::array kHelix{Rule{"AcDbSpline", 10, Point},     Rule{"AcDbSpline", 11, Point},
                            Rule{"AcDbSpline", 12, Direction}, Rule{"AcDbSpline", 13, Direction},
                            Rule{"AcDbHelix", 10, Point},      Rule{"AcDbHelix", 11, Point},
                            Rule{"AcDbHelix", 12, Direction},  Rule{"AcDbHelix", 40, Length},
                            Rule{"AcDbHelix", 42, Length},     Rule{"AcDbHelix", 290, Handedness}};
// The elements' parameters (41, 42) lie along the miters.
constexpr std::array kMultiline{Rule{"AcDbMline", 40, Length},    Rule{"AcDbMline", 10, Point},
                                Rule{"AcDbMline", 11, Point},     Rule{"AcDbMline", 12, Direction},
                                Rule{"AcDbMline", 13, Direction}, Rule{"AcDbMline", 41, Length},
                                Rule{"AcDbMline", 42, Length}};
constexpr std::array kLeader{Rule{"AcDbLeader", 10, Point},
                             Rule{"AcDbLeader", 40, Length},
                             Rule{"AcDbLeader", 41, Length},
                             Rule{"AcDbLeader", 211, Direction, &AcGeVector3d::kXAxis},
                             Rule{"AcDbLeader", 212, Displacement},
                             Rule{"AcDbLeader", 213, Displacement}};
constexpr std::array kTolerance{Rule{"AcDbFcf", 10, Point},
                                Rule{"AcDbFcf", 11, Direction, &AcGeVector3d::kXAxis}};
// The clip boundary (14) counts in pixels.
constexpr std::array kImage{Rule{"AcDbRasterImage", 10, Point},
                            Rule{"AcDbRasterImage", 11, Displacement},
                            Rule{"AcDbRasterImage", 12, Displacement}};
constexpr std::array kWipeout{Rule{"AcDbWipeout", 10, Point},
                              Rule{"AcDbWipeout", 11, Displacement},
                              Rule{"AcDbWipeout", 12, Displacement},
                              Rule{"AcDbRasterImage", 10, Point},
                              Rule{"AcDbRasterImage", 11, Displacement},
                              Rule{"AcDbRasterImage", 12, Displacement}};
constexpr std::array kViewport{Rule{"AcDbViewport", 10, Point}, Rule{"AcDbViewport", 40, Length},
                               Rule{"AcDbViewport", 41, Length}};
constexpr std::array kLight{Rule{"AcDbLight", 10, Point}, Rule{"AcDbLight", 11, Point},
                            Rule{"AcDbLight", 41, Length}, Rule{"AcDbLight", 42, Length}};
constexpr std::array kMesh{Rule{"AcDbSubDMesh", 10, Point}};
constexpr std::array kSection{Rule{"AcDbSection", 10, Direction}, Rule{"AcDbSection", 11, Point},
                              Rule{"AcDbSection", 12, Point}, Rule{"AcDbSection", 40, Length},
                              Rule{"AcDbSection", 41, Length}};
constexpr std::array kPositionMarker{Rule{"AcDbGeoPositionMarker", 10, Point},
                                     Rule{"AcDbGeoPositionMarker", 40, Length},
                                     Rule{"AcDbGeoPositionMarker", 41, Length}};
// The measured value (42) is computed anew by who draws the dimension.
constexpr std::array kDimension{Rule{"AcDbDimension", 10, Point},
                                Rule{"AcDbDimension", 11, PlanePoint},
                                Rule{"AcDbDimension", 53, TurnedAngle},
                                Rule{"AcDbDimension", 12, PlaneDisplacement},
                                Rule{"AcDbAlignedDimension", 12, PlaneDisplacement},
                                Rule{"AcDbAlignedDimension", 13, Point},
                                Rule{"AcDbAlignedDimension", 14, Point},
                                Rule{"AcDbAlignedDimension", 50, Angle},
                                Rule{"AcDbRadialDimension", 15, Point},
                                Rule{"AcDbRadialDimension", 40, Length},
                                Rule{"AcDbDiametricDimension", 15, Point},
                                Rule{"AcDbDiametricDimension", 40, Length},
                                Rule{"AcDb3PointAngularDimension", 13, Point},
                                Rule{"AcDb3PointAngularDimension", 14, Point},
                                Rule{"AcDb3PointAngularDimension", 15, Point},
                                Rule{"AcDb3PointAngularDimension", 16, PlanePoint},
                                Rule{"AcDb2LineAngularDimension", 13, Point},
                                Rule{"AcDb2LineAngularDimension", 14, Point},
                                Rule{"AcDb2LineAngularDimension", 15, Point},
                                Rule{"AcDb2LineAngularDimension", 16, PlanePoint},
                                Rule{"AcDbOrdinateDimension", 13, Point},
                                Rule{"AcDbOrdinateDimension", 14, Point},
                                Rule{"AcDbArcDimension", 13, Point},
                                Rule{"AcDbArcDimension", 14, Point},
                                Rule{"AcDbArcDimension", 15, Point},
                                Rule{"AcDbArcDimension", 16, Point},
                                Rule{"AcDbArcDimension", 17, Point},
                                Rule{"AcDbRadialDimensionLarge", 13, Point},
                                Rule{"AcDbRadialDimensionLarge", 14, Point},
                                Rule{"AcDbRadialDimensionLarge", 15, Point}};

constexpr std::array kTable{Rule{"AcDbBlockReference", 10, Point},
                            Rule{"AcDbBlockReference", 210, Normal, &AcGeVector3d::kZAxis},
                            Rule{"AcDbTable", 11, Direction},
                            Rule{"AcDbTable", 140, Length},
                            Rule{"AcDbTable", 141, Length},
                            Rule{"AcDbTable", 142, Length}};

constexpr std::array kSchemas{
    TransformSchema{"SOLID", "AcDbTrace", true, kSolid},
    TransformSchema{"TRACE", "AcDbTrace", true, kSolid},
    TransformSchema{"RAY", {}, true, kRay},
    TransformSchema{"XLINE", {}, true, kXline},
    TransformSchema{"SPLINE", "AcDbSpline", true, kSpline},
    TransformSchema{"HELIX", "AcDbSpline", false, kHelix, 2},
    TransformSchema{"MLINE", "AcDbMline", false, kMultiline},
    TransformSchema{"LEADER", "AcDbLeader", false, kLeader},
    TransformSchema{"TOLERANCE", "AcDbFcf", false, kTolerance},
    TransformSchema{"IMAGE", {}, true, kImage},
    TransformSchema{"WIPEOUT", {}, true, kWipeout},
    TransformSchema{"VIEWPORT", {}, false, kViewport},
    TransformSchema{"LIGHT", {}, false, kLight},
    TransformSchema{"MESH", {}, true, kMesh},
    TransformSchema{"SECTION", {}, false, kSection},
    TransformSchema{"SECTIONOBJECT", {}, false, kSection},
    TransformSchema{"POSITIONMARKER", {}, false, kPositionMarker},
    TransformSchema{"GEOPOSITIONMARKER", {}, false, kPositionMarker},
    TransformSchema{"ACAD_TABLE", {}, false, kTable, 2},
    TransformSchema{"DIMENSION", "AcDbDimension", false, kDimension, 2},
    TransformSchema{"ARC_DIMENSION", "AcDbDimension", false, kDimension, 2},
    TransformSchema{"LARGE_RADIAL_DIMENSION", "AcDbDimension", false, kDimension, 2}};

/// The tags of a subclass; nothing where the record has others but not this one.
TagRange stretchOf(const TagList& tags, std::string_view marker) {
  const TagRange range = tags.subclass(marker);
  return tags.hasMarkers() && range.first == tags.body().first ? TagRange{} : range;
}

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

/// The X axis by which a dimension calls directions horizontal (51, counted clockwise) turns
/// along. A missing one is the plane's; ordinates say by it what they measure.
void transformHorizontal(RecordEdit& edit, const TransformParts& parts) {
  constexpr int kHorizontal = 51;
  const TagList& tags = edit.tags();
  const TagRange range = stretchOf(tags, "AcDbDimension");
  const std::size_t index = tags.find(kHorizontal, range);
  const bool isOrdinate = !stretchOf(tags, "AcDbOrdinateDimension").isEmpty() && tags.hasMarkers();
  const double before = index == TagList::kNone ? 0.0 : tags.doubleAt(index);
  const double turned = parts.plane.angle(-toRadians(before));
  if ((index == TagList::kNone && !isOrdinate) || turned == -toRadians(before)) {
    return;
  }
  if (index != TagList::kNone) {
    edit.setDoubleAt(index, -toDegrees(turned));
    return;
  }
  std::string bytes;
  edit.noteNumber(turned);
  dxf::putDouble(bytes, kHorizontal, -toDegrees(turned), tags.format());
  edit.insertBefore(range.last, std::move(bytes));
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

const TransformSchema* schemaOf(std::string_view kind) {
  const auto found = std::find_if(kSchemas.begin(), kSchemas.end(),
                                  [&](const TransformSchema& row) { return row.kind == kind; });
  return found == kSchemas.end() ? nullptr : &*found;
}

bool isReadable(const TransformSchema& schema, const TagList& tags) {
  return !tags.hasMarkers() || schema.subclassesNeeded == 1 ||
         subclassesIn(schema, tags) >= schema.subclassesNeeded;
}

TransformParts::TransformParts(const AcGeVector3d& normal, const AcGeMatrix3d& map)
    : matrix(map),
      plane(normal, map),
      length(plane.scale),
      isSimilar(plane.isSimilar && plane.keepsUpright &&
                std::fabs(plane.heightScale - plane.scale) <= 1.0e-10 * plane.scale) {}

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
  if (schema.normalMarker == "AcDbDimension") {
    transformHorizontal(edit, parts);
  }
  if (isPlane) {
    transformNormal(edit, planeRange, parts.plane);
  }
  return Acad::eOk;
}

}  // namespace quoin::db
