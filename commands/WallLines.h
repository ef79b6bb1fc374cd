// The wall lines of a drawing: LINE entities and the straight segments of polylines in model
// space on the chosen layers.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "gepnt3d.h"

namespace quoin::commands {

/// One straight line and where in the drawing it comes from.
struct WallLine {
  AcGePoint3d start;
  AcGePoint3d end;
  AcDbObjectId entity;
  /// The segment of a polyline, from 0; kWholeEntity for a LINE.
  int segment = 0;
  /// On a locked layer: it takes part, but is not changed.
  bool isLocked = false;

  static constexpr int kWholeEntity = -1;
  bool isPolylineSegment() const { return segment != kWholeEntity; }
};

/// Something on the chosen layers that is no wall line.
struct SkippedEntity {
  AcDbObjectId entity;
  std::string reason;
};

/// Why an entity is skipped of which the file gives a number that is none: it would be taken for 0,
/// and the walls would meet where they do not.
inline constexpr const char* kUnreadableNumber = "has a number that cannot be read";

struct WallLines {
  std::vector<WallLine> lines;
  std::vector<SkippedEntity> skipped;
  std::size_t arcSegments = 0;  // of polylines: they stay as they are
};

/// Collects the wall lines in file order, a polyline's segments along it. Layers that are off
/// or frozen count like any other, since walls there meet those that show. Segments of no
/// length and polylines with curve fitting are skipped with the reason.
WallLines collectWallLines(Drawing& drawing, const std::set<std::wstring>& layers);

}  // namespace quoin::commands
