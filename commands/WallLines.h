// The wall lines of a drawing: LINE entities and the straight segments of polylines in model
// space on the chosen layers.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "commands/LeftOut.h"
#include "gepnt3d.h"

namespace quoin::commands {

/// What in model space shows a line that does not stand there itself: an insert or a multiline.
struct ShownBy {
  AcDbObjectId entity;
  std::wstring layer;  // the line's in the plan: the insert's for what is on layer 0
};

/// One straight line and where in the drawing it comes from.
struct WallLine {
  AcGePoint3d start;
  AcGePoint3d end;
  AcDbObjectId entity;
  /// The segment of a polyline, from 0; kWholeEntity for a LINE.
  int segment = 0;
  /// On a locked layer: it takes part, but is not changed.
  bool isLocked = false;
  /// Null for a line of model space; else it takes part, but is not changed.
  std::shared_ptr<const ShownBy> within = {};

  static constexpr int kWholeEntity = -1;
  bool isPolylineSegment() const { return segment != kWholeEntity; }
  /// The layer that it is on in the plan.
  std::wstring layer() const { return within ? within->layer : hostx::layerName(entity); }
};

struct WallLines : LeftOut {
  std::vector<WallLine> lines;
};

/// Collects the wall lines in file order, a polyline's segments along it. Layers that are off
/// or frozen count like any other, since walls there meet those that show. What cannot be used is
/// skipped with the reason; entities of other kinds are counted. `takesInside`: behind them those
/// that blocks and multilines show (InsideWalls.h); else these are counted too.
WallLines collectWallLines(Drawing& drawing, const std::set<std::wstring>& layers,
                           bool takesInside = false);

/// Fails: throws CommandError (NothingToDo) that names what is on the layers instead where there
/// is no wall line.
void checkAnyWallLine(const Drawing& drawing, const std::set<std::wstring>& layers,
                      const WallLines& walls);

}  // namespace quoin::commands
