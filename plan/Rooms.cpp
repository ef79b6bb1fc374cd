#include "plan/Rooms.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <tuple>
#include <utility>

#include "plan/FreeSpace.h"
#include "plan/WallNet.h"

namespace quoin::plan {

namespace {

double lengthOf(const Ring& ring) {
  double length = 0.0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    length += ring[i].distanceTo(ring[(i + 1) % ring.size()]);
  }
  return length;
}

/// The ring without corners in line with those beside them, beginning at its least corner.
Ring cornersOf(const FreeRing& edges, double same) {
  const Ring all = pointsOf(edges);
  // The least corner is one of the hull's, and stays.
  const auto first = std::min_element(all.begin(), all.end(), [](const auto& a, const auto& b) {
    return std::tie(a.x, a.y) < std::tie(b.x, b.y);
  });
  Ring ring(first, all.end());
  ring.insert(ring.end(), all.begin(), first);
  Ring corners;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const AcGePoint2d& next = ring[(i + 1) % ring.size()];
    if (!corners.empty()) {
      const AcGeVector2d chord = next - corners.back();
      const AcGeVector2d offset = ring[i] - corners.back();
      const double length = chord.length();
      const bool isInLine =
          length > 0.0 && std::fabs(chord.x * offset.y - chord.y * offset.x) < same * length &&
          offset.dotProduct(chord) >= 0.0 && offset.dotProduct(chord) <= length * length;
      if (isInLine || offset.length() < same) {
        continue;
      }
    }
    corners.push_back(ring[i]);
  }
  return corners;
}

/// The faces of the planar graph of the pieces' reference lines: cycles of directed pieces with the
/// face on their left, 2 * piece for the way from its start, 2 * piece + 1 for the way back.
class Cycles {
 public:
  explicit Cycles(const WallNet& net) : m_cycleOf(2 * net.pieces.size(), kNone) {
    const std::vector<std::size_t> next = nextOf(net);
    for (std::size_t first = 0; first < m_cycleOf.size(); ++first) {
      if (m_cycleOf[first] != kNone) {
        continue;
      }
      Ring ring;
      for (std::size_t way = first; m_cycleOf[way] == kNone; way = next[way]) {
        m_cycleOf[way] = m_areas.size();
        const NetPiece& piece = net.pieces[way / 2];
        ring.push_back(net.nodes[way % 2 == 0 ? piece.startNode : piece.endNode]);
      }
      m_areas.push_back(plan::areaOf(ring));
    }
  }

  std::size_t left(std::size_t piece) const { return m_cycleOf[2 * piece]; }
  std::size_t right(std::size_t piece) const { return m_cycleOf[2 * piece + 1]; }
  /// Negative for the outside of pieces that hang together; 0 where they enclose nothing.
  double area(std::size_t cycle) const { return m_areas[cycle]; }
  std::size_t count() const { return m_areas.size(); }

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  /// At a piece's end the way goes on with the next piece clockwise.
  static std::vector<std::size_t> nextOf(const WallNet& net) {
    struct Leaving {
      std::size_t node;
      double angle;
      std::size_t way;
    };
    std::vector<Leaving> leaving;
    leaving.reserve(2 * net.pieces.size());
    for (std::size_t i = 0; i < net.pieces.size(); ++i) {
      const AcGeVector2d along = net.pieces[i].body.direction();
      leaving.push_back({net.pieces[i].startNode, std::atan2(along.y, along.x), 2 * i});
      leaving.push_back({net.pieces[i].endNode, std::atan2(-along.y, -along.x), 2 * i + 1});
    }
    std::sort(leaving.begin(), leaving.end(), [](const Leaving& a, const Leaving& b) {
      return std::tie(a.node, a.angle, a.way) < std::tie(b.node, b.angle, b.way);
    });
    std::vector<std::size_t> next(leaving.size());
    for (std::size_t begin = 0; begin < leaving.size();) {
      std::size_t end = begin;
      while (end < leaving.size() && leaving[end].node == leaving[begin].node) {
        ++end;
      }
      for (std::size_t i = begin; i < end; ++i) {
        // Who arrives by the way back of this one leaves by the one before it.
        next[leaving[i].way ^ 1U] = leaving[i == begin ? end - 1 : i - 1].way;
      }
      begin = end;
    }
    return next;
  }

  std::vector<std::size_t> m_cycleOf;
  std::vector<double> m_areas;
};

/// A stretch of a wall's face that a room is on.
struct FaceStretch {
  double from;
  double to;
  bool isLeft;
  std::size_t room;
};

class RoomMaker {
 public:
  RoomMaker(const WallPlan& plan, const WallNet& net, const RoomOptions& options)
      : m_plan(plan),
        m_net(net),
        m_options(options),
        m_same(sameDistance(net, options.captureDistance)),
        m_cycles(net) {}

  FoundRooms make(const std::vector<FreeRegion>& regions) {
    FoundRooms found;
    std::vector<std::pair<Room, const FreeRegion*>> made;
    for (const FreeRegion& region : regions) {
      Room room;
      room.polygon = polygonOf(region);
      room.netArea = areaOf(room.polygon);
      room.perimeter = lengthOf(room.polygon.outer);
      for (const Ring& hole : room.polygon.holes) {
        room.perimeter += lengthOf(hole);
      }
      if (room.polygon.outer.size() < 3 || !(room.netArea > 0.0)) {
        continue;
      }
      if (room.netArea < m_options.leastArea ||
          2.0 * room.netArea < m_options.leastWidth * room.perimeter) {
        found.slivers.push_back(std::move(room.polygon));
      } else {
        made.emplace_back(std::move(room), &region);
      }
    }
    std::sort(made.begin(), made.end(), [](const auto& a, const auto& b) {
      const AcGePoint2d& first = a.first.polygon.outer[0];
      const AcGePoint2d& second = b.first.polygon.outer[0];
      return std::tie(first.x, first.y, a.first.netArea) <
             std::tie(second.x, second.y, b.first.netArea);
    });
    setGrossAreas(made);
    std::map<std::size_t, std::vector<FaceStretch>> stretches;
    for (std::size_t i = 0; i < made.size(); ++i) {
      lookAround(made[i].first, *made[i].second, i, stretches);
      found.rooms.push_back(std::move(made[i].first));
    }
    placeOpenings(found.rooms, stretches);
    return found;
  }

 private:
  static bool isOfPiece(const FreeEdge& edge) {
    return edge.face == FreeEdge::Face::Left || edge.face == FreeEdge::Face::Right ||
           edge.face == FreeEdge::Face::End;
  }

  Polygon polygonOf(const FreeRegion& region) const {
    Polygon polygon;
    polygon.outer = cornersOf(region.outer, m_same);
    for (const FreeRing& hole : region.holes) {
      Ring ring = cornersOf(hole, m_same);
      if (ring.size() > 2) {
        polygon.holes.push_back(std::move(ring));
      }
    }
    std::sort(polygon.holes.begin(), polygon.holes.end(), [](const Ring& a, const Ring& b) {
      return std::tie(a[0].x, a[0].y) < std::tie(b[0].x, b[0].y);
    });
    return polygon;
  }

  /// The cycles that the region's edges lie on.
  std::vector<std::size_t> cyclesOf(const FreeRing& ring) const {
    std::vector<std::size_t> cycles;
    for (const FreeEdge& edge : ring) {
      if (isOfPiece(edge)) {
        // Both sides of a free end are in one face.
        cycles.push_back(edge.face == FreeEdge::Face::Right ? m_cycles.right(edge.of)
                                                            : m_cycles.left(edge.of));
      }
    }
    std::sort(cycles.begin(), cycles.end());
    cycles.erase(std::unique(cycles.begin(), cycles.end()), cycles.end());
    return cycles;
  }

  void setGrossAreas(std::vector<std::pair<Room, const FreeRegion*>>& made) const {
    std::vector<std::size_t> roomsOfCycle(m_cycles.count());
    std::vector<std::vector<std::size_t>> outer;
    for (const auto& [room, region] : made) {
      outer.push_back(cyclesOf(region->outer));
      for (const std::size_t cycle : outer.back()) {
        ++roomsOfCycle[cycle];
      }
    }
    for (std::size_t i = 0; i < made.size(); ++i) {
      Room& room = made[i].first;
      double area = 0.0;
      bool isEnclosed = outer[i].size() == 1 && roomsOfCycle[outer[i][0]] == 1;
      if (isEnclosed) {
        area = m_cycles.area(outer[i][0]);
        for (const FreeRing& hole : made[i].second->holes) {
          for (const std::size_t cycle : cyclesOf(hole)) {
            area += cycle == outer[i][0] ? 0.0 : m_cycles.area(cycle);
          }
        }
      }
      isEnclosed = isEnclosed && m_cycles.area(outer[i][0]) > 0.0 && area > 0.0;
      room.grossArea = isEnclosed ? area : room.netArea + stripsAround(*made[i].second);
      room.isGrossByStrips = !isEnclosed;
    }
  }

  double stripsAround(const FreeRegion& region) const {
    double area = 0.0;
    const auto add = [&](const FreeRing& ring) {
      for (const FreeEdge& edge : ring) {
        const double length = edge.from.distanceTo(edge.to);
        if (edge.face == FreeEdge::Face::Left) {
          area += length * m_net.pieces[edge.of].body.left;
        } else if (edge.face == FreeEdge::Face::Right) {
          area += length * m_net.pieces[edge.of].body.right;
        }
      }
    };
    add(region.outer);
    for (const FreeRing& hole : region.holes) {
      add(hole);
    }
    return area;
  }

  void lookAround(Room& room, const FreeRegion& region, std::size_t index,
                  std::map<std::size_t, std::vector<FaceStretch>>& stretches) const {
    const auto look = [&](const FreeRing& ring) {
      for (const FreeEdge& edge : ring) {
        if (!isOfPiece(edge)) {
          continue;
        }
        const std::size_t wall = m_net.pieces[edge.of].wall;
        room.walls.push_back(wall);
        if (edge.face != FreeEdge::Face::End && !m_openWalls.empty() && m_openWalls[wall]) {
          const Wall& body = m_plan.walls[wall];
          const AcGeVector2d along = body.direction();
          const double a = along.dotProduct(edge.from - body.start);
          const double b = along.dotProduct(edge.to - body.start);
          stretches[wall].push_back(
              {std::min(a, b), std::max(a, b), edge.face == FreeEdge::Face::Left, index});
        }
      }
    };
    look(region.outer);
    for (const FreeRing& hole : region.holes) {
      look(hole);
    }
    std::sort(room.walls.begin(), room.walls.end());
    room.walls.erase(std::unique(room.walls.begin(), room.walls.end()), room.walls.end());
  }

  /// An opening is in the rooms that have the most of it on either side.
  void placeOpenings(std::vector<Room>& rooms,
                     const std::map<std::size_t, std::vector<FaceStretch>>& stretches) const {
    for (std::size_t i = 0; i < m_plan.openings.size(); ++i) {
      const Opening& opening = m_plan.openings[i];
      const auto ofWall = stretches.find(opening.wall);
      if (ofWall == stretches.end()) {
        continue;
      }
      std::array<std::map<std::size_t, double>, 2> shares;
      for (const FaceStretch& stretch : ofWall->second) {
        const double share =
            std::min(stretch.to, opening.to) - std::max(stretch.from, opening.from);
        if (share > m_same) {
          shares[stretch.isLeft ? 0 : 1][stretch.room] += share;
        }
      }
      std::array<std::optional<std::size_t>, 2> sides;
      for (std::size_t side = 0; side < 2; ++side) {
        const auto most =
            std::max_element(shares[side].begin(), shares[side].end(),
                             [](const auto& a, const auto& b) { return a.second < b.second; });
        if (most != shares[side].end()) {
          sides[side] = most->first;
        }
      }
      addOpening(rooms, i, sides[0], sides[1]);
      if (sides[1] != sides[0]) {
        addOpening(rooms, i, sides[1], sides[0]);
      }
    }
  }
  void addOpening(std::vector<Room>& rooms, std::size_t opening, std::optional<std::size_t> room,
                  std::optional<std::size_t> behind) const {
    if (room) {
      rooms[*room].openings.push_back(opening);
      if (m_plan.openings[opening].kind != OpeningKind::Window) {
        rooms[*room].ways.push_back({opening, behind});
      }
    }
  }

  std::vector<bool> wallsWithOpenings() const {
    std::vector<bool> walls(m_plan.walls.size());
    for (const Opening& opening : m_plan.openings) {
      walls[opening.wall] = true;
    }
    return walls;
  }

  const WallPlan& m_plan;
  const WallNet& m_net;
  RoomOptions m_options;
  double m_same;
  Cycles m_cycles;
  std::vector<bool> m_openWalls = wallsWithOpenings();
};

std::vector<Box> boxesOf(const std::vector<Room>& rooms) {
  std::vector<Box> boxes;
  boxes.reserve(rooms.size());
  for (const Room& room : rooms) {
    const Ring& ring = room.polygon.outer;
    Box box(ring[0], ring[0]);
    for (const AcGePoint2d& corner : ring) {
      box.low = {std::min(box.low.x, corner.x), std::min(box.low.y, corner.y)};
      box.high = {std::max(box.high.x, corner.x), std::max(box.high.y, corner.y)};
    }
    boxes.push_back(box);
  }
  return boxes;
}

/// The stretches of a line across the polygon that are inside, by where its edges cross it;
/// `isLevel`: the line at this y, else at this x.
std::vector<double> crossingsAt(const Polygon& polygon, double at, bool isLevel) {
  std::vector<double> places;
  const auto add = [&](const Ring& ring) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const AcGePoint2d& a = ring[i];
      const AcGePoint2d& b = ring[(i + 1) % ring.size()];
      const double a0 = isLevel ? a.y : a.x;
      const double b0 = isLevel ? b.y : b.x;
      if ((a0 <= at) != (b0 <= at)) {
        const double share = (at - a0) / (b0 - a0);
        places.push_back(isLevel ? a.x + share * (b.x - a.x) : a.y + share * (b.y - a.y));
      }
    }
  };
  add(polygon.outer);
  for (const Ring& hole : polygon.holes) {
    add(hole);
  }
  std::sort(places.begin(), places.end());
  return places;
}

/// The middle and the length of the longest stretch.
std::pair<double, double> longestStretch(const std::vector<double>& places) {
  std::pair<double, double> best(0.0, -1.0);
  for (std::size_t i = 0; i + 1 < places.size(); i += 2) {
    if (places[i + 1] - places[i] > best.second) {
      best = {0.5 * (places[i] + places[i + 1]), places[i + 1] - places[i]};
    }
  }
  return best;
}

}  // namespace

FoundRooms findRooms(const WallPlan& plan, const std::vector<Polygon>& columns,
                     const RoomOptions& options) {
  const WallNet net = makeNet(plan.walls, options.captureDistance);
  FoundRooms found =
      RoomMaker(plan, net, options).make(freeRegions(net, columns, options.captureDistance));
  found.wallsLeftOut = net.leftOut;
  return found;
}

double areaOf(const Polygon& polygon) {
  double area = areaOf(polygon.outer);
  for (const Ring& hole : polygon.holes) {
    area += areaOf(hole);
  }
  return area;
}

AcGePoint2d labelPoint(const Polygon& polygon) {
  // Across the polygon at some heights, and there up and down: the place with the most room to its
  // sides and upwards and downwards.
  constexpr int kHeights = 9;
  double low = HUGE_VAL;
  double high = -HUGE_VAL;
  for (const AcGePoint2d& corner : polygon.outer) {
    low = std::min(low, corner.y);
    high = std::max(high, corner.y);
  }
  AcGePoint2d best = polygon.outer.empty() ? AcGePoint2d() : polygon.outer[0];
  double most = -1.0;
  for (int i = 1; i <= kHeights; ++i) {
    const double y = low + (high - low) * i / (kHeights + 1);
    const auto [x, width] = longestStretch(crossingsAt(polygon, y, true));
    if (width < 0.0) {
      continue;
    }
    const std::vector<double> places = crossingsAt(polygon, x, false);
    for (std::size_t k = 0; k + 1 < places.size(); k += 2) {
      if (places[k] <= y && y <= places[k + 1]) {
        const double room = std::min(width, 3.0 * std::min(y - places[k], places[k + 1] - y));
        const double isMiddle = i == (kHeights + 1) / 2 ? 1.0 + 1e-6 : 1.0;
        if (room * isMiddle > most) {
          most = room * isMiddle;
          best = {x, y};
        }
      }
    }
  }
  return best;
}

RoomIndex::RoomIndex(const std::vector<Room>& rooms) : m_rooms(rooms), m_index(boxesOf(rooms)) {}

std::optional<std::size_t> RoomIndex::roomAt(const AcGePoint2d& point) const {
  std::optional<std::size_t> found;
  m_index.visit(Box(point, point), [&](std::size_t i) {
    int winding = windingAround(m_rooms[i].polygon.outer, point);
    for (const Ring& hole : m_rooms[i].polygon.holes) {
      winding += windingAround(hole, point);
    }
    if (winding != 0) {
      found = i;
    }
  });
  return found;
}

}  // namespace quoin::plan
