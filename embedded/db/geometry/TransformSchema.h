// What the group codes of an entity kind mean for a transform, as data, and the engine that
// runs it. Kinds whose tags mean different things in different places of a record (hatches,
// multileaders) have code of their own.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "acadstrc.h"
#include "embedded/db/geometry/PlaneMap.h"
#include "embedded/db/records/RecordEdit.h"

namespace quoin::db {

/// What the numbers under a group code are (DXF reference, entity by entity).
enum class Meaning {
  Point,              // world point: codes c, c + 10, c + 20
  Displacement,       // world vector that keeps its relative length
  Direction,          // world vector of length one
  Normal,             // as Direction, but turned round by maps that mirror
  PlanePoint,         // point in the coordinates of the entity's plane (normal 210)
  PlaneDisplacement,  // vector in the coordinates of the entity's plane
  Length,             // grows with the drawing
  Angle,              // degrees in the entity's plane, counter-clockwise
  AngleRadians,       // the same in radians
  TurnedAngle,  // degrees by which something leans against its usual angle: mirrored, the other way
  Handedness,   // 1 or 0: changed by maps that mirror
};

struct Rule {
  std::string_view marker;  // of the subclass that holds the tags
  int code;
  Meaning meaning;
  /// What a missing tag stands for; it is written where it is that no longer.
  const AcGeVector3d* absent = nullptr;
};

/// One kind: its rules and what limits its transforms.
struct TransformParts;

struct TransformSchema {
  std::string_view normalMarker = {};  // the subclass with 210; empty for kinds without a plane
  /// Whether it keeps its nature under maps that change angles.
  bool isAffine = false;
  std::span<const Rule> rules = {};
  /// How many of the rules' subclasses a record with markers must have. Where one is enough, a
  /// record that has none of them has its tags behind markers of other names, wherever they are.
  int subclassesNeeded = 1;
  /// What is left to do behind the rules; null for most kinds.
  void (*finish)(RecordEdit& edit, const TransformParts& parts) = nullptr;
};

/// The tags of a subclass; nothing where the record has others but not this one.
TagRange stretchOf(const TagList& tags, std::string_view marker);

/// Whether the schema finds the tags of this record: its subclasses are there, or it has none.
bool isReadable(const TransformSchema& schema, const TagList& tags);

/// Runs a schema on a record that is readable by it.
/// Fails: eCannotScaleNonUniformly; the edit is to be thrown away then.
Acad::ErrorStatus transformBySchema(const TransformSchema& schema, RecordEdit& edit,
                                    const AcGeMatrix3d& matrix);

// --- single tags, for kinds with code of their own --------------------------------------------

/// What a transform does to the parts of an entity.
struct TransformParts {
  TransformParts(const AcGeVector3d& normal, const AcGeMatrix3d& map);

  AcGeMatrix3d matrix;
  PlaneMap plane;
  double length;  // factor of lengths
  bool isSimilar;
};

/// Transforms what stands at a tag (and, for points, at the two behind it).
void transformTag(RecordEdit& edit, std::size_t index, Meaning meaning,
                  const TransformParts& parts);

/// The normal (210) of a stretch with what it is in the image.
void transformNormal(RecordEdit& edit, TagRange range, const PlaneMap& plane);

}  // namespace quoin::db
