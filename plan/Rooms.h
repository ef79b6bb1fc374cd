// The rooms of a plan: what its walls and columns enclose, with areas, what stands around them and
// where one goes from each to the next.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "plan/Geos.h"
#include "plan/WallPlan.h"

namespace quoin::plan {

/// A way out of a room.
struct RoomWay {
  /// Index into WallPlan::openings.
  std::size_t opening = 0;
  /// Index of the room behind it; nothing for what is no room: outside, as a rule.
  std::optional<std::size_t> room = {};
};

struct Room {
  /// Between the faces of walls, columns and free-standing walls taken out. Corners alone: none is
  /// in line with those beside it. Each ring begins at its corner least in x, of those in y.
  Polygon polygon;
  double netArea = 0.0;
  /// The area of the face of the reference lines' planar graph that the room is in; free-standing
  /// walls and columns count as room, what other rings of walls enclose does not. Where the
  /// reference lines do not enclose the room for itself: the net area and, along each of its edges,
  /// the strip up to the reference line (isGrossByStrips).
  double grossArea = 0.0;
  bool isGrossByStrips = false;
  /// Of the polygon's rings, holes too.
  double perimeter = 0.0;
  /// Walls with a face to the room, ascending indices into WallPlan::walls.
  std::vector<std::size_t> walls;
  /// Openings in those faces, ascending indices into WallPlan::openings.
  std::vector<std::size_t> openings;
  /// Those of them that one can go through: all but windows.
  std::vector<RoomWay> ways;

  std::string name;  // UTF-8; empty for none (RoomNames.h)
  std::string number;
  /// What a text in the room says of its area, in square metres.
  std::optional<double> statedArea = {};
};

struct RoomOptions {
  /// That of the current project: what is nearer meets.
  double captureDistance = 0.0;
  /// Less is no room: an area, and a mean width (twice the area by the perimeter).
  double leastArea = 0.0;
  double leastWidth = 0.0;
};

struct FoundRooms {
  /// In the order of their polygons' first corners.
  std::vector<Room> rooms;
  /// Enclosed, and too small or too narrow to be rooms.
  std::vector<Polygon> slivers;
  /// Walls that are none (WallNet.h).
  std::size_t wallsLeftOut = 0;
};

/// The bounded parts of the plane that the bodies of the plan's walls and the columns leave free.
/// Bodies run on through openings. What comes near enough to meet does (WallNet.h): so rooms close
/// where ends are apart by less than the capture distance.
/// Laws: (1) the rooms, as a set, do not depend on the order or the direction of the walls
///       (2) turned, mirrored or moved plans have the rooms turned, mirrored or moved, up to
///       rounding (3) areas of rooms and slivers and of the union of all bodies add up to what the
///       bodies' outlines enclose.
/// Fails: throws GeosError.
FoundRooms findRooms(const WallPlan& plan, const std::vector<Polygon>& columns,
                     const RoomOptions& options);

/// The area of the outer ring without the holes.
double areaOf(const Polygon& polygon);
/// A point inside, far from the edges where there is room: for a label.
AcGePoint2d labelPoint(const Polygon& polygon);

/// Rooms by place.
class RoomIndex {
 public:
  /// The rooms must outlive this.
  explicit RoomIndex(const std::vector<Room>& rooms);
  /// The room that the point is in; nothing for none.
  std::optional<std::size_t> roomAt(const AcGePoint2d& point) const;

 private:
  const std::vector<Room>& m_rooms;
  BoxIndex m_index;
};

}  // namespace quoin::plan
