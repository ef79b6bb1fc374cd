#include "plan/FreeSpace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <tuple>

#include "plan/PlanPoint.h"
#include "plan/WallOutlines.h"

namespace quoin::plan {

namespace {

double cross(const AcGeVector2d& a, const AcGeVector2d& b) {
  return a.x * b.y - a.y * b.x;
}
bool isSame(const AcGePoint2d& a, const AcGePoint2d& b) {
  return a.x == b.x && a.y == b.y;
}
bool isBefore(const AcGePoint2d& a, const AcGePoint2d& b) {
  return std::tie(a.x, a.y) < std::tie(b.x, b.y);
}

double distanceToSegment(const AcGePoint2d& point, const AcGePoint2d& from, const AcGePoint2d& to) {
  const AcGeVector2d along = to - from;
  const double square = along.lengthSqrd();
  const double share =
      square > 0.0 ? std::clamp(along.dotProduct(point - from) / square, 0.0, 1.0) : 0.0;
  return point.distanceTo(from + along * share);
}

/// Whether the segments have a point in common, seen by the sides of their ends.
bool doCross(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c,
             const AcGePoint2d& d) {
  const double ofC = cross(b - a, c - a);
  const double ofD = cross(b - a, d - a);
  const double ofA = cross(d - c, a - c);
  const double ofB = cross(d - c, b - c);
  return ((ofC > 0.0) != (ofD > 0.0)) && ((ofA > 0.0) != (ofB > 0.0));
}

bool areNear(const FreeEdge& a, const FreeEdge& b, double distance) {
  return doCross(a.from, a.to, b.from, b.to) ||
         distanceToSegment(a.from, b.from, b.to) < distance ||
         distanceToSegment(a.to, b.from, b.to) < distance ||
         distanceToSegment(b.from, a.from, a.to) < distance ||
         distanceToSegment(b.to, a.from, a.to) < distance;
}

/// Whether `next`, which begins where `edge` ends, goes back along it.
bool isFoldedBack(const FreeEdge& edge, const FreeEdge& next, double distance) {
  return distanceToSegment(next.to, edge.from, edge.to) < distance ||
         distanceToSegment(edge.from, next.from, next.to) < distance;
}

/// Whether no two sides meet but neighbours in their corner, and it is counter-clockwise.
bool isSimple(const Ring& ring) {
  const std::size_t count = ring.size();
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t j = i + 2; j < count; ++j) {
      const bool isNeighbour = i == 0 && j + 1 == count;
      if (!isNeighbour && doCross(ring[i], ring[(i + 1) % count], ring[j], ring[(j + 1) % count])) {
        return false;
      }
    }
  }
  return areaOf(ring) > 0.0;
}

Box boxOf(const Ring& ring) {
  Box box(ring[0], ring[0]);
  for (const AcGePoint2d& corner : ring) {
    box.low = {std::min(box.low.x, corner.x), std::min(box.low.y, corner.y)};
    box.high = {std::max(box.high.x, corner.x), std::max(box.high.y, corner.y)};
  }
  return box;
}

Ring hullOf(Ring points) {
  std::sort(points.begin(), points.end(), isBefore);
  Ring hull;
  for (int half = 0; half < 2; ++half) {
    const std::size_t begin = hull.size();
    for (const AcGePoint2d& point : points) {
      while (hull.size() >= begin + 2 &&
             cross(hull.back() - hull[hull.size() - 2], point - hull.back()) <= 0.0) {
        hull.pop_back();
      }
      hull.push_back(point);
    }
    hull.pop_back();
    std::reverse(points.begin(), points.end());
  }
  return hull;
}

/// The pieces, the fillings between them and the columns, as bodies and as directed edges with the
/// body on their left.
class Bodies {
 public:
  Bodies(const WallNet& net, const std::vector<Polygon>& columns, double captureDistance)
      : m_net(net), m_same(sameDistance(net, captureDistance)), m_ends(net.nodes.size()) {
    makeQuads(captureDistance);
    reachColumns(columns, captureDistance);
    for (std::size_t node = 0; node < m_ends.size(); ++node) {
      arrange(node);
    }
    for (std::size_t node = 0; node < m_ends.size(); ++node) {
      fill(node);
    }
    for (std::size_t piece = 0; piece < m_quads.size(); ++piece) {
      addQuad(piece);
    }
    for (std::size_t column = 0; column < columns.size(); ++column) {
      addColumn(columns[column], column);
    }
  }

  double same() const { return m_same; }
  const std::vector<FreeEdge>& edges() const { return m_edges; }
  const std::vector<Polygon>& bodies() const { return m_bodies; }

 private:
  // Corners of a piece in the order of its outline, counter-clockwise.
  enum Corner : std::size_t { StartRight, EndRight, EndLeft, StartLeft };
  /// The end of a piece at a node; left and right are seen from there along the piece.
  struct PieceEnd {
    std::size_t piece;
    bool isStart;
    double angle;
  };

  AcGePoint2d& left(const PieceEnd& end) {
    return m_quads[end.piece][end.isStart ? StartLeft : EndRight];
  }
  AcGePoint2d& right(const PieceEnd& end) {
    return m_quads[end.piece][end.isStart ? StartRight : EndLeft];
  }

  void makeQuads(double captureDistance) {
    std::vector<Wall> walls;
    walls.reserve(m_net.pieces.size());
    for (const NetPiece& piece : m_net.pieces) {
      walls.push_back(piece.body);
    }
    for (const FloorOutline& outline : floorOutlines(walls, captureDistance)) {
      const Wall& wall = walls[m_quads.size()];
      Ring quad{outline.startRight, outline.endRight, outline.endLeft, outline.startLeft};
      if (!std::all_of(quad.begin(), quad.end(), isFinite)) {
        const AcGeVector2d across = wall.direction().perpVector();
        quad = {wall.start - across * wall.right, wall.end - across * wall.right,
                wall.end + across * wall.left, wall.start + across * wall.left};
      }
      m_quads.push_back(quad);
    }
    m_isOpen.resize(2 * m_quads.size());
    for (std::size_t i = 0; i < m_quads.size(); ++i) {
      const NetPiece& piece = m_net.pieces[i];
      const AcGeVector2d along = piece.body.direction();
      m_ends[piece.startNode].push_back({i, true, std::atan2(along.y, along.x)});
      m_ends[piece.endNode].push_back({i, false, std::atan2(-along.y, -along.x)});
    }
  }

  /// Free ends go on into columns that they nearly reach.
  void reachColumns(const std::vector<Polygon>& columns, double captureDistance) {
    if (columns.empty()) {
      return;
    }
    std::vector<Box> boxes;
    boxes.reserve(columns.size());
    for (const Polygon& column : columns) {
      boxes.push_back(column.outer.empty() ? Box({NAN, NAN}, {NAN, NAN}) : boxOf(column.outer));
    }
    const BoxIndex index(boxes);
    for (const std::vector<PieceEnd>& ends : m_ends) {
      if (ends.size() != 1) {
        continue;
      }
      const PieceEnd& end = ends.front();
      const Wall& body = m_net.pieces[end.piece].body;
      const AcGeVector2d out = end.isStart ? -body.direction() : body.direction();
      const AcGePoint2d middle = left(end) + (right(end) - left(end)) * 0.5;
      const AcGePoint2d beyond = middle + out * captureDistance;
      bool isReached = false;
      index.visit(Box(beyond, beyond), [&](std::size_t column) {
        isReached = isReached || windingAround(columns[column].outer, beyond) != 0;
      });
      if (isReached) {
        left(end) += out * captureDistance;
        right(end) += out * captureDistance;
      }
    }
  }

  /// Sorts the ends at a node counter-clockwise, and makes corners that two of them share the same
  /// to the last bit.
  void arrange(std::size_t node) {
    std::vector<PieceEnd>& ends = m_ends[node];
    std::sort(ends.begin(), ends.end(), [](const PieceEnd& a, const PieceEnd& b) {
      return std::tie(a.angle, a.piece) < std::tie(b.angle, b.piece);
    });
    for (std::size_t i = 0; ends.size() > 1 && i < ends.size(); ++i) {
      const AcGePoint2d& corner = left(ends[i]);
      AcGePoint2d& next = right(ends[(i + 1) % ends.size()]);
      if (corner.distanceTo(next) < m_same) {
        next = corner;
      }
    }
  }

  /// Fills what is between the ends at a node. Where the filling and the pieces share their faces
  /// and do not overlap, those are inside and drop out; else all are told, and the overlay sees to
  /// them.
  void fill(std::size_t node) {
    constexpr std::size_t kMostCorners = 24;  // comparing all sides with all others
    const std::vector<PieceEnd>& ends = m_ends[node];
    if (ends.size() < 2) {
      return;
    }
    Ring filling;
    bool areSimple = true;
    for (std::size_t i = 0; i < ends.size(); ++i) {
      for (const AcGePoint2d& corner : {right(ends[i]), left(ends[i])}) {
        if (filling.empty() || !isSame(filling.back(), corner)) {
          filling.push_back(corner);
        }
      }
      areSimple = areSimple && isSimple(m_quads[ends[i].piece]);
    }
    while (filling.size() > 1 && isSame(filling.back(), filling.front())) {
      filling.pop_back();
    }
    if (filling.size() < 3) {
      // Two pieces that share their corners, and so their end faces.
      if (!areSimple || filling.size() < 2) {
        open(ends);
      }
      return;
    }
    if (ends.size() > 2 && filling.size() <= kMostCorners && areSimple && isSimple(filling)) {
      for (std::size_t i = 0; i < ends.size(); ++i) {
        addEdge(left(ends[i]), right(ends[(i + 1) % ends.size()]), FreeEdge::Face::Connection,
                ends[i].piece);
      }
      m_bodies.push_back({std::move(filling), {}});
      return;
    }
    open(ends);
    if (ends.size() == 2) {
      filling = hullOf(filling);
    }
    if (filling.size() > 2) {
      addRing(filling, FreeEdge::Face::Connection, ends.front().piece);
      m_bodies.push_back({std::move(filling), {}});
    }
  }

  void open(const std::vector<PieceEnd>& ends) {
    for (const PieceEnd& end : ends) {
      m_isOpen[2 * end.piece + (end.isStart ? 0 : 1)] = true;
    }
  }

  void addQuad(std::size_t piece) {
    const Ring& quad = m_quads[piece];
    const NetPiece& net = m_net.pieces[piece];
    addEdge(quad[StartRight], quad[EndRight], FreeEdge::Face::Right, piece);
    if (m_isOpen[2 * piece + 1] || m_ends[net.endNode].size() < 2) {
      addEdge(quad[EndRight], quad[EndLeft], FreeEdge::Face::End, piece);
    }
    addEdge(quad[EndLeft], quad[StartLeft], FreeEdge::Face::Left, piece);
    if (m_isOpen[2 * piece] || m_ends[net.startNode].size() < 2) {
      addEdge(quad[StartLeft], quad[StartRight], FreeEdge::Face::End, piece);
    }
    m_bodies.push_back({quad, {}});
  }

  void addColumn(const Polygon& column, std::size_t index) {
    if (column.outer.size() < 3 ||
        !std::all_of(column.outer.begin(), column.outer.end(), isFinite)) {
      return;
    }
    Ring ring = column.outer;
    if (areaOf(ring) < 0.0) {
      std::reverse(ring.begin(), ring.end());
    }
    addRing(ring, FreeEdge::Face::Column, index);
    m_bodies.push_back({std::move(ring), {}});
  }

  void addRing(const Ring& ring, FreeEdge::Face face, std::size_t of) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      addEdge(ring[i], ring[(i + 1) % ring.size()], face, of);
    }
  }
  void addEdge(const AcGePoint2d& from, const AcGePoint2d& to, FreeEdge::Face face,
               std::size_t of) {
    if (!isSame(from, to)) {
      m_edges.push_back({from, to, face, of});
    }
  }

  const WallNet& m_net;
  double m_same;
  std::vector<std::vector<PieceEnd>> m_ends;  // of every node
  std::vector<Ring> m_quads;                  // of every piece
  std::vector<bool> m_isOpen;                 // start and end face of every piece is told
  std::vector<FreeEdge> m_edges;
  std::vector<Polygon> m_bodies;
};

/// Puts directed edges that begin and end in each other's points together to rings.
class Chain {
 public:
  explicit Chain(const std::vector<FreeEdge>& edges) : m_edges(edges) {
    m_order.resize(edges.size());
    for (std::size_t i = 0; i < edges.size(); ++i) {
      m_order[i] = i;
    }
    std::sort(m_order.begin(), m_order.end(), [&](std::size_t a, std::size_t b) {
      return isBefore(edges[a].from, edges[b].from) ||
             (isSame(edges[a].from, edges[b].from) && a < b);
    });
    m_isUsed.resize(edges.size());
  }

  /// Indices of edges. Where several go on from a point, the sharpest turn to the right is taken,
  /// around what is on the right hand: pieces that touch in a point come apart.
  std::vector<std::vector<std::size_t>> rings() {
    std::vector<std::vector<std::size_t>> all;
    for (std::size_t first = 0; first < m_edges.size(); ++first) {
      if (m_isUsed[first]) {
        continue;
      }
      std::vector<std::size_t> ring;
      std::size_t edge = first;
      do {
        m_isUsed[edge] = true;
        ring.push_back(edge);
        edge = nextOf(edge, first);
      } while (edge != first && edge != kNone);
      all.push_back(std::move(ring));
    }
    return all;
  }

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  std::size_t nextOf(std::size_t edge, std::size_t first) const {
    const FreeEdge& before = m_edges[edge];
    auto next = std::partition_point(m_order.begin(), m_order.end(), [&](std::size_t other) {
      return isBefore(m_edges[other].from, before.to);
    });
    std::size_t best = kNone;
    double sharpest = HUGE_VAL;
    for (; next != m_order.end() && isSame(m_edges[*next].from, before.to); ++next) {
      if (m_isUsed[*next] && *next != first) {
        continue;
      }
      const AcGeVector2d in = before.to - before.from;
      const AcGeVector2d out = m_edges[*next].to - m_edges[*next].from;
      const double turn = std::atan2(cross(in, out), in.dotProduct(out));
      if (turn < sharpest) {
        sharpest = turn;
        best = *next;
      }
    }
    return best;
  }

  const std::vector<FreeEdge>& m_edges;
  std::vector<std::size_t> m_order;
  std::vector<bool> m_isUsed;
};

/// The boundary rings of the union of the bodies, with the bodies on their left.
class Overlay {
 public:
  explicit Overlay(const Bodies& bodies) : m_bodies(bodies), m_edges(bodies.edges()) {}

  std::vector<FreeRing> rings() {
    std::vector<std::vector<std::size_t>> all = Chain(m_edges).rings();
    const std::vector<bool> isNear = edgesNearOthers(all);
    std::vector<FreeRing> result;
    std::vector<Ring> toOverlay;
    std::vector<FreeEdge> overlaid;
    for (const std::vector<std::size_t>& indices : all) {
      FreeRing ring;
      bool isClean = true;
      for (const std::size_t edge : indices) {
        ring.push_back(m_edges[edge]);
        isClean = isClean && !isNear[edge];
      }
      if (isClean && ring.size() > 2) {
        result.push_back(std::move(ring));
      } else {
        toOverlay.push_back(pointsOf(ring));
        overlaid.insert(overlaid.end(), ring.begin(), ring.end());
      }
    }
    if (!toOverlay.empty()) {
      addOverlaid(toOverlay, overlaid, result);
    }
    return result;
  }

 private:
  // Shares of the distance within which points are the same. Faces are asked beside an edge, nearer
  // to it than what was not overlaid, and farther than the grid moved it.
  static constexpr double kGridShare = 0.01;
  static constexpr double kBeside = 0.5;
  static constexpr double kLeastBeside = 2.0 * kGridShare;

  /// Edges that meet others than those before and behind them.
  std::vector<bool> edgesNearOthers(const std::vector<std::vector<std::size_t>>& rings) const {
    std::vector<std::size_t> next(m_edges.size());
    for (const std::vector<std::size_t>& ring : rings) {
      for (std::size_t i = 0; i < ring.size(); ++i) {
        next[ring[i]] = ring[(i + 1) % ring.size()];
      }
    }
    std::vector<Box> boxes;
    boxes.reserve(m_edges.size());
    for (const FreeEdge& edge : m_edges) {
      boxes.emplace_back(edge.from, edge.to, m_bodies.same());
    }
    const BoxIndex index(boxes);
    std::vector<bool> isNear(m_edges.size());
    for (std::size_t i = 0; i < m_edges.size(); ++i) {
      index.visit(boxes[i], [&](std::size_t other) {
        if (other <= i || (isNear[i] && isNear[other])) {
          return;
        }
        bool areMet = false;
        if (next[i] == other || next[other] == i) {
          areMet =
              (next[i] == other && isFoldedBack(m_edges[i], m_edges[other], m_bodies.same())) ||
              (next[other] == i && isFoldedBack(m_edges[other], m_edges[i], m_bodies.same()));
        } else {
          areMet = areNear(m_edges[i], m_edges[other], m_bodies.same());
        }
        if (areMet) {
          isNear[i] = isNear[other] = true;
        }
      });
    }
    return isNear;
  }

  void addOverlaid(const std::vector<Ring>& rings, const std::vector<FreeEdge>& sources,
                   std::vector<FreeRing>& result) const {
    std::vector<Box> bodyBoxes;
    bodyBoxes.reserve(m_bodies.bodies().size());
    for (const Polygon& body : m_bodies.bodies()) {
      bodyBoxes.push_back(boxOf(body.outer));
    }
    const BoxIndex bodyIndex(bodyBoxes);
    std::vector<FreeEdge> edges =
        boundariesOf(facesOf(rings, kGridShare * m_bodies.same()), bodyIndex);
    nameSources(edges, sources);
    for (const std::vector<std::size_t>& indices : Chain(edges).rings()) {
      FreeRing ring;
      for (const std::size_t edge : indices) {
        ring.push_back(edges[edge]);
      }
      result.push_back(std::move(ring));
    }
  }

  /// An edge of a face, the face on its left.
  struct FaceEdge {
    AcGePoint2d from;
    AcGePoint2d to;
    std::size_t face;

    bool operator<(const FaceEdge& other) const {
      return std::tie(from.x, from.y, to.x, to.y) <
             std::tie(other.from.x, other.from.y, other.to.x, other.to.y);
    }
  };

  /// The edges between what is covered and what is free, the covered side on their left. Beyond the
  /// faces that hang together all is covered, or all is free: as far as anything that was not
  /// overlaid.
  std::vector<FreeEdge> boundariesOf(const std::vector<Polygon>& faces,
                                     const BoxIndex& bodyIndex) const {
    std::vector<FaceEdge> all;
    std::vector<bool> covered;
    for (std::size_t face = 0; face < faces.size(); ++face) {
      covered.push_back(isCovered(faces[face], bodyIndex));
      addRing(faces[face].outer, face, all);
      for (const Ring& hole : faces[face].holes) {
        addRing(hole, face, all);
      }
    }
    std::sort(all.begin(), all.end());
    const std::vector<std::size_t> groups = groupsOf(all, faces.size());
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::vector<std::size_t> twins(all.size(), kNone);
    std::vector<std::size_t> longest(faces.size(), kNone);  // at the outside, by group
    for (std::size_t i = 0; i < all.size(); ++i) {
      const FaceEdge back{all[i].to, all[i].from, 0};
      const auto twin = std::lower_bound(all.begin(), all.end(), back);
      if (twin != all.end() && !(back < *twin)) {
        twins[i] = static_cast<std::size_t>(twin - all.begin());
        continue;
      }
      std::size_t& best = longest[groups[all[i].face]];
      if (best == kNone ||
          all[i].from.distanceTo(all[i].to) > all[best].from.distanceTo(all[best].to)) {
        best = i;
      }
    }
    std::vector<bool> isOutsideCovered(faces.size());
    for (std::size_t group = 0; group < faces.size(); ++group) {
      if (longest[group] != kNone) {
        const FaceEdge& edge = all[longest[group]];
        isOutsideCovered[group] = isCoveredAt(placeBeside(edge.to, edge.from, kBeside), bodyIndex);
      }
    }
    std::vector<FreeEdge> edges;
    for (std::size_t i = 0; i < all.size(); ++i) {
      const bool isOpposite =
          twins[i] == kNone ? isOutsideCovered[groups[all[i].face]] : covered[all[twins[i]].face];
      if (covered[all[i].face] && !isOpposite) {
        edges.push_back({all[i].from, all[i].to});
      } else if (twins[i] == kNone && !covered[all[i].face] && isOpposite) {
        edges.push_back({all[i].to, all[i].from});
      }
    }
    return edges;
  }

  static void addRing(const Ring& ring, std::size_t face, std::vector<FaceEdge>& edges) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      edges.push_back({ring[i], ring[(i + 1) % ring.size()], face});
    }
  }

  /// Faces with a corner in common hang together: the least face of those that do, for every face.
  static std::vector<std::size_t> groupsOf(const std::vector<FaceEdge>& sorted, std::size_t count) {
    std::vector<std::size_t> parents(count);
    for (std::size_t i = 0; i < count; ++i) {
      parents[i] = i;
    }
    const auto rootOf = [&](std::size_t face) {
      while (parents[face] != face) {
        parents[face] = parents[parents[face]];
        face = parents[face];
      }
      return face;
    };
    for (std::size_t i = 1; i < sorted.size(); ++i) {
      if (isSame(sorted[i - 1].from, sorted[i].from)) {
        const std::size_t a = rootOf(sorted[i - 1].face);
        const std::size_t b = rootOf(sorted[i].face);
        parents[std::max(a, b)] = std::min(a, b);
      }
    }
    for (std::size_t i = 0; i < count; ++i) {
      parents[i] = rootOf(i);
    }
    return parents;
  }

  /// To the left of the middle of an edge.
  AcGePoint2d placeBeside(const AcGePoint2d& from, const AcGePoint2d& to, double share) const {
    const AcGeVector2d along = to - from;
    return from + along * 0.5 + along.perpVector() * (share * m_bodies.same() / along.length());
  }
  bool isCoveredAt(const AcGePoint2d& place, const BoxIndex& bodyIndex) const {
    bool isFound = false;
    bodyIndex.visit(Box(place, place), [&](std::size_t body) {
      isFound = isFound || windingAround(m_bodies.bodies()[body].outer, place) != 0;
    });
    return isFound;
  }

  /// Whether a body covers the face: asked beside its longest edge, nearer to it than anything that
  /// was not overlaid. A face that has no room for that is a crack between bodies, and covered.
  bool isCovered(const Polygon& face, const BoxIndex& bodyIndex) const {
    std::size_t longest = 0;
    double most = 0.0;
    for (std::size_t i = 0; i < face.outer.size(); ++i) {
      const double length = face.outer[i].distanceTo(face.outer[(i + 1) % face.outer.size()]);
      if (length > most) {
        most = length;
        longest = i;
      }
    }
    for (double share = kBeside; share > kLeastBeside; share *= 0.5) {
      const AcGePoint2d place =
          placeBeside(face.outer[longest], face.outer[(longest + 1) % face.outer.size()], share);
      const bool isInside = windingAround(face.outer, place) != 0 &&
                            std::none_of(face.holes.begin(), face.holes.end(), [&](const Ring& h) {
                              return windingAround(h, place) != 0;
                            });
      if (isInside) {
        return isCoveredAt(place, bodyIndex);
      }
    }
    return true;
  }

  /// What each edge is a part of, by its middle.
  void nameSources(std::vector<FreeEdge>& edges, const std::vector<FreeEdge>& sources) const {
    std::vector<Box> boxes;
    boxes.reserve(sources.size());
    for (const FreeEdge& source : sources) {
      boxes.emplace_back(source.from, source.to, m_bodies.same());
    }
    const BoxIndex index(boxes);
    for (FreeEdge& edge : edges) {
      const AcGePoint2d middle = edge.from + (edge.to - edge.from) * 0.5;
      const AcGeVector2d along = edge.to - edge.from;
      // A face that runs the same way; of those the first in a fixed order of kinds.
      auto best = std::make_tuple(2, HUGE_VAL, std::size_t{0});
      index.visit(Box(middle, middle, m_bodies.same()), [&](std::size_t i) {
        const FreeEdge& source = sources[i];
        const double distance = distanceToSegment(middle, source.from, source.to);
        if (distance < m_bodies.same()) {
          const bool isSameWay = along.dotProduct(source.to - source.from) > 0.0;
          const bool isFace =
              source.face == FreeEdge::Face::Left || source.face == FreeEdge::Face::Right;
          best = std::min(best, std::make_tuple(isSameWay && isFace ? 0 : 1, distance, i));
        }
      });
      if (std::get<0>(best) < 2) {
        edge.face = sources[std::get<2>(best)].face;
        edge.of = sources[std::get<2>(best)].of;
      } else {
        edge.face = FreeEdge::Face::Connection;
      }
    }
  }

  const Bodies& m_bodies;
  const std::vector<FreeEdge>& m_edges;
};

/// Rings that do not cross each other, to ask which is the least around a place.
class Nest {
 public:
  explicit Nest(std::vector<Ring> rings) : m_rings(std::move(rings)), m_index(boxesOf(m_rings)) {
    for (const Ring& ring : m_rings) {
      m_areas.push_back(std::fabs(areaOf(ring)));
    }
  }

  const std::vector<double>& areas() const { return m_areas; }
  /// The least ring around the place with more than this area.
  std::optional<std::size_t> leastAround(const AcGePoint2d& place, double area) const {
    std::optional<std::size_t> least;
    m_index.visit(Box(place, place), [&](std::size_t ring) {
      if (m_areas[ring] > area && (!least || m_areas[ring] < m_areas[*least]) &&
          windingAround(m_rings[ring], place) != 0) {
        least = ring;
      }
    });
    return least;
  }

 private:
  static std::vector<Box> boxesOf(const std::vector<Ring>& rings) {
    std::vector<Box> boxes;
    boxes.reserve(rings.size());
    for (const Ring& ring : rings) {
      boxes.push_back(boxOf(ring));
    }
    return boxes;
  }

  std::vector<Ring> m_rings;
  std::vector<double> m_areas;
  BoxIndex m_index;
};

/// Gives islands to the least region around them. What is buried in a body that is larger is
/// dropped: an island with another island next around it, and the regions in it.
void placeIslands(std::vector<FreeRegion>& regions, std::vector<FreeRing> islands) {
  std::vector<Ring> outer;
  std::vector<Ring> shores;
  outer.reserve(regions.size());
  shores.reserve(islands.size());
  for (const FreeRegion& region : regions) {
    outer.push_back(pointsOf(region.outer));
  }
  for (const FreeRing& island : islands) {
    shores.push_back(pointsOf(island));
  }
  const Nest regionNest(std::move(outer));
  const Nest islandNest(std::move(shores));
  std::vector<bool> isBuried(islands.size());
  for (std::size_t i = 0; i < islands.size(); ++i) {
    const AcGePoint2d place = islands[i].front().from;
    const double own = islandNest.areas()[i];
    const std::optional<std::size_t> region = regionNest.leastAround(place, own);
    const std::optional<std::size_t> island = islandNest.leastAround(place, own);
    isBuried[i] = island && (!region || islandNest.areas()[*island] < regionNest.areas()[*region]);
    if (region && !isBuried[i]) {
      regions[*region].holes.push_back(std::move(islands[i]));
    }
  }
  if (std::find(isBuried.begin(), isBuried.end(), true) == isBuried.end()) {
    return;
  }
  std::vector<FreeRegion> kept;
  for (std::size_t i = 0; i < regions.size(); ++i) {
    const std::optional<std::size_t> island =
        islandNest.leastAround(regions[i].outer.front().from, regionNest.areas()[i]);
    if (!island || !isBuried[*island]) {
      kept.push_back(std::move(regions[i]));
    }
  }
  regions = std::move(kept);
}

FreeRing reversed(const FreeRing& ring) {
  FreeRing result(ring.rbegin(), ring.rend());
  for (FreeEdge& edge : result) {
    std::swap(edge.from, edge.to);
  }
  return result;
}

}  // namespace

Ring pointsOf(const FreeRing& ring) {
  Ring points;
  points.reserve(ring.size());
  for (const FreeEdge& edge : ring) {
    points.push_back(edge.from);
  }
  return points;
}

double areaOf(const Ring& ring) {
  double sum = 0.0;
  for (std::size_t i = 1; i + 1 < ring.size(); ++i) {
    sum += cross(ring[i] - ring[0], ring[i + 1] - ring[0]);
  }
  return 0.5 * sum;
}

int windingAround(const Ring& ring, const AcGePoint2d& point) {
  int winding = 0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const AcGePoint2d& from = ring[i];
    const AcGePoint2d& to = ring[i + 1 == ring.size() ? 0 : i + 1];
    if ((from.y <= point.y) != (to.y <= point.y)) {
      const double side = cross(to - from, point - from);
      if (from.y <= point.y && side > 0.0) {
        ++winding;
      } else if (to.y <= point.y && side < 0.0) {
        --winding;
      }
    }
  }
  return winding;
}

double sameDistance(const WallNet& net, double captureDistance) {
  constexpr double kShare = 1.0e-6;
  constexpr double kRoundings = 0x1p-40;
  double farthest = 0.0;
  for (const AcGePoint2d& node : net.nodes) {
    farthest = std::max({farthest, std::fabs(node.x), std::fabs(node.y)});
  }
  return std::max(kShare * captureDistance, kRoundings * farthest);
}

std::vector<FreeRegion> freeRegions(const WallNet& net, const std::vector<Polygon>& columns,
                                    double captureDistance) {
  const Bodies bodies(net, columns, captureDistance);
  std::vector<FreeRegion> regions;
  std::vector<FreeRing> islands;
  for (const FreeRing& ring : Overlay(bodies).rings()) {
    const double area = areaOf(pointsOf(ring));
    if (area < 0.0) {
      regions.push_back({reversed(ring), {}});
    } else if (area > 0.0) {
      islands.push_back(reversed(ring));
    }
  }
  placeIslands(regions, std::move(islands));
  return regions;
}

std::vector<Polygon> bodiesOf(const WallNet& net, const std::vector<Polygon>& columns,
                              double captureDistance) {
  return Bodies(net, columns, captureDistance).bodies();
}

}  // namespace quoin::plan
