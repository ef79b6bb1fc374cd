// Walls as closed bodies: prisms over a plan outline, with holes for their openings.
#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "commands/WallBodies.h"
#include "gepnt2d.h"

namespace quoin::commands {

/// A hole through a wall, square to its length: where along the wall, and at which heights above
/// its foot. from < to, sill < head.
struct WallHole {
  double from = 0.0;
  double to = 0.0;
  double sill = 0.0;
  double head = 0.0;

  friend bool operator==(const WallHole&, const WallHole&) = default;
};

/// A piece of a wall between two places where jambs stand.
struct WallSlab {
  double from;
  double to;
  /// The heights that are wall, from below, no two of them touching.
  std::vector<std::pair<double, double>> solid;
};

/// The pieces of a wall of this height from the first jamb to the last. Holes may overlap and
/// touch. Takes time in proportion to the holes and to how many lie over one another.
std::vector<WallSlab> slabsBetween(const std::vector<WallHole>& holes, double height);

/// A wall as a body: a floor outline of six corners (the end faces bend at their middle
/// points) extruded upwards. Corners run counter-clockwise seen from above:
///
///      startLeft -------------------------- endLeft
///   startMid <                                  > endMid       (the wall runs to the right)
///      startRight ------------------------- endRight
struct WallPrism {
  using Face = std::array<AcGePoint3d, 4>;

  AcDbObjectId source;
  std::string name;   // of its group: layer and handle
  std::string layer;  // UTF-8
  AcGePoint3d startLeft, startMid, startRight, endRight, endMid, endLeft;
  double height = 0.0;
  bool isStartFree = true;  // no other wall meets the start
  bool isEndFree = true;
  /// The wall's reference line, along which holes are measured.
  AcGePoint2d origin;
  AcGeVector2d direction = AcGeVector2d::kXAxis;
  /// Within straightFrom() to straightTo() and 0 to height. No two may touch in an edge alone.
  std::vector<WallHole> holes;
  /// Jambs that come so close to an end of a face stand at it.
  double tolerance = 0.0;
  /// How far from the middle point of an end that is bent inwards holes begin: at that point itself
  /// the wall would hang together by an edge.
  double clearance = 0.0;

  /// Between these both faces and the middle line are there: mitres begin beyond them.
  double straightFrom() const;
  double straightTo() const;

  /// The faces of the closed body, outward sides counter-clockwise; of a triangle the third and
  /// the fourth corner are one. Every edge belongs to two faces, which run it in opposite
  /// directions.
  ///
  /// Without holes ten quadrilaterals: floor and ceiling in two halves each along the middle line,
  /// two sides, two halves of each end. With holes the wall is cut across at every jamb, and faces
  /// that stand meet in all corners of the vertical lines between them.
  std::vector<Face> faces() const;
  /// Whether one of the faces lies inside the joint with another wall.
  bool isHiddenInJoint(const Face& face) const;

 private:
  double along(const AcGePoint3d& point) const;
  friend class HoledBody;
};

/// `height` above the wall's foot.
WallPrism makePrism(const BodyWall& wall, const PrepareFrom2dTo3dData& ends, double height);

}  // namespace quoin::commands
