// Finds the walls of a plan that draws each as two faces: reference lines with widths, meeting at
// their ends, and the openings in them.
#pragma once

#include <cstddef>
#include <vector>

#include "gepnt2d.h"
#include "plan/WallPlan.h"

namespace quoin::plan {

/// A straight line of the plan.
struct PlanLine {
  AcGePoint2d start;
  AcGePoint2d end;
};

/// An arc of the plan, counter-clockwise from `startAngle` through `sweep`, above 0 and at most a
/// full turn.
struct PlanArc {
  AcGePoint2d center;
  double radius = 0.0;
  double startAngle = 0.0;
  double sweep = 0.0;

  AcGePoint2d at(double angle) const;
};

/// What stands on other layers and says what a gap between faces is: by its shape, or by a name.
struct Symbol {
  /// A line of it; a block's box goes in as its diagonal with `isBox`.
  PlanLine line;
  bool isBox = false;
  /// What its layer's or block's name says of it.
  OpeningKind hint = OpeningKind::Opening;
};

/// A closed outline, without its first corner at the end.
using PlanOutline = std::vector<AcGePoint2d>;

struct PlanDrawing {
  /// What may be a face of a wall, a jamb, an end; other lines may be among them.
  std::vector<PlanLine> lines;
  /// Of the walls' layers and of all others: door swings.
  std::vector<PlanArc> arcs;
  /// What may be a face of a curved wall.
  std::vector<PlanArc> faceArcs;
  std::vector<Symbol> symbols;
  /// Closed outlines whose sides are among the lines too.
  std::vector<PlanOutline> outlines;
  /// What is drawn as a column, whatever else it looks like.
  std::vector<PlanOutline> columns;
};

/// Lengths in drawing units. The defaults are those of a plan in millimetres.
struct FindWallsOptions {
  /// Distances of two faces that may be one wall.
  double minWidth = 50.0;
  double maxWidth = 600.0;
  /// How far lines that are one may lie beside one another.
  double tolerance = 5.0;
  /// How far faces may end before or behind the wall that they meet.
  double reach = 50.0;
  /// The widest gap that is an opening with nothing in it.
  double maxOpening = 4000.0;
  /// The widest gap that is an opening where a window or a door is drawn in it.
  double maxDrawnOpening = 6500.0;
  /// Walls of a lower confidence are left over.
  double minConfidence = 0.55;
  /// Chords take the place of an arc whose distance from it is this at most.
  double deviation = 5.0;

  /// The defaults for a drawing of which one unit is so many millimetres.
  static FindWallsOptions inUnitsOf(double millimetersPerUnit);
};

/// A wall between two concentric arcs, without openings; its chords stand among the plan's walls.
struct CurvedWall {
  PlanArc arc;  // the reference line, midway between the faces
  double width = 0.0;
  /// Indices into WallPlan::walls, along the arc.
  std::vector<std::size_t> chords;
};

struct FoundWalls {
  WallPlan plan;
  std::vector<CurvedWall> curved;
  /// Those of the drawing; and closed outlines on the walls' layers that are no wall, where few
  /// other lines are left over: with much furniture on a layer its outlines are no columns.
  std::vector<PlanOutline> columns;
  /// Of each wall, the lines that are its faces: indices into PlanDrawing::lines, ascending.
  std::vector<std::vector<std::size_t>> faces;
  /// Lines that are no part of a wall, an opening or a column.
  std::vector<std::size_t> leftOver;
  /// The widths that walls have, by the length of the walls, greatest first.
  struct Width {
    double width;
    double length;
  };
  std::vector<Width> widths;
};

/// Finds walls in near-linear time. What is found does not depend on the order of the lines, nor on
/// which of its ends a line begins with. Lines without length, and those with coordinates that are
/// no numbers, are left over.
///
/// Two faces are a wall where they run side by side at a plausible distance with nothing between
/// them. Where a line could be the face of two walls, one on each side, the one counts that has
/// more walls of its width and on its line. Pieces on one line are one wall across junctions and
/// openings. A reference line lies midway between the faces, or on the line of the wall that it
/// continues where that has another width, and ends where it meets others.
FoundWalls findWalls(const PlanDrawing& drawing, const FindWallsOptions& options);

}  // namespace quoin::plan
