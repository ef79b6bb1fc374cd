// What dimensions, leaders, tolerances and tables share: variables of their style, arrows, and the
// blocks that show them.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "embedded/db/geometry/EntityGeometry.h"
#include "hostdraw.h"

namespace quoin::db {

/// A dimension variable: the entity's own value, else its style's, else `otherwise`.
double dimensionVariable(const Drawn& entity, TagRange range, int code, double otherwise);
/// The same times the overall scale of dimensions.
double scaledVariable(const Drawn& entity, TagRange range, int code, double otherwise);

/// A frame at a place with its X axis along a direction, in the plane of a normal.
AcGeMatrix3d frameAt(const AcGePoint3d& origin, const AcGeVector3d& along,
                     const AcGeVector3d& normal);

/// The block record that a handle names; null if it is none.
const dxf::Block* blockWithHandle(const Drawn& entity, std::uint64_t handle);
/// The block that a name of the record names; null if it is none.
const dxf::Block* blockOf(const Drawn& entity, int code, TagRange range);
/// The same for the record's name (2), if it is one that the host has made up for this entity: a
/// block that a user has named shows elsewhere too.
const dxf::Block* anonymousBlock(DatabaseImpl& database, const TagList& tags, TagRange range);

/// An arrow with its tip at the first of the points: a block of unit size that points along X, or
/// without one the closed arrow, three times as long as it is wide.
struct Arrow {
  const dxf::Block* block = nullptr;
  double size = 0.0;
  AcGeVector3d normal;
};
/// Fails: adds nothing where a line has no room for its arrow.
void addArrow(const Arrow& arrow, std::span<const AcGePoint3d> points, const AcGeMatrix3d& toWorld,
              ExtentsWalk& walk, AcDbExtents& box);
/// Where an arrow stands: its tip at the origin, its body towards -X; nothing where addArrow() adds
/// nothing.
std::optional<AcGeMatrix3d> arrowFrame(const Arrow& arrow, std::span<const AcGePoint3d> points);
void drawArrow(const Arrow& arrow, std::span<const AcGePoint3d> points, const AcGeMatrix3d& toWorld,
               DrawWalk& walk);
/// The block of a leader's arrow by its own or its style's variable; null for the closed arrow.
const dxf::Block* arrowBlockOf(const Drawn& entity, TagRange range);

/// Adds the line of a leader: straight from point to point, or a smooth curve through them.
void addLeaderLine(const std::vector<AcGePoint3d>& points, bool isCurved,
                   const AcGeMatrix3d& toWorld, AcDbExtents& box);
hostx::DrawPath leaderPath(const std::vector<AcGePoint3d>& points, bool isCurved,
                           const AcGeMatrix3d& toWorld, const DrawWalk& walk);

}  // namespace quoin::db
