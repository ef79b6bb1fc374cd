// The list of the kinds of entities: a line for each file of this folder that holds rows. A new
// kind is a file that defines k<Name>Rows, and a line here.
#pragma once

#include <array>
#include <span>

#include "embedded/db/core/RecordKinds.h"

#define QUOIN_ENTITY_FAMILIES(FAMILY) \
  FAMILY(Point)                       \
  FAMILY(Line)                        \
  FAMILY(Face)                        \
  FAMILY(CircleArc)                   \
  FAMILY(LightPolyline)               \
  FAMILY(HeavyPolyline)               \
  FAMILY(Ellipse)                     \
  FAMILY(Spline)                      \
  FAMILY(Ray)                         \
  FAMILY(Multiline)                   \
  FAMILY(Text)                        \
  FAMILY(MText)                       \
  FAMILY(BlockReference)              \
  FAMILY(Shape)                       \
  FAMILY(Hatch)                       \
  FAMILY(Solid)                       \
  FAMILY(Dimension)                   \
  FAMILY(Leader)                      \
  FAMILY(MultiLeader)                 \
  FAMILY(Tolerance)                   \
  FAMILY(Table)                       \
  FAMILY(Image)                       \
  FAMILY(Underlay)                    \
  FAMILY(OleFrame)                    \
  FAMILY(Viewport)                    \
  FAMILY(Light)                       \
  FAMILY(Section)                     \
  FAMILY(Mesh)                        \
  FAMILY(PositionMarker)              \
  FAMILY(ModelerBodies)               \
  FAMILY(Proxy)

namespace quoin::db {

#define QUOIN_DECLARE(family) extern const std::span<const RecordKind> k##family##Rows;
QUOIN_ENTITY_FAMILIES(QUOIN_DECLARE)
#undef QUOIN_DECLARE

/// What the records of most kinds begin with, for those that R12 has too.
inline constexpr Subclass kEntitySubclass{"AcDbEntity", order::kEntity};
inline constexpr std::array<int, 0> kNoCodes{};

}  // namespace quoin::db
