#include "plan/WallNet.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <optional>
#include <tuple>
#include <utility>

#include "BreakWallAlgorithm.h"
#include "plan/Geos.h"
#include "plan/PointIndex.h"

namespace quoin::plan {

namespace {

/// sin 5 degrees: at less the module joins walls by connecting records, and so lines at a smaller
/// angle have no crossing here.
constexpr double kLeastSine = 0.08715574274765817;

double cross(const AcGeVector2d& a, const AcGeVector2d& b) {
  return a.x * b.y - a.y * b.x;
}

bool isFinite(const Wall& wall) {
  return std::isfinite(wall.start.x) && std::isfinite(wall.start.y) && std::isfinite(wall.end.x) &&
         std::isfinite(wall.end.y) && std::isfinite(wall.left) && std::isfinite(wall.right);
}

bool isWall(const Wall& wall, double captureDistance) {
  return isFinite(wall) && wall.width() > 0.0 && wall.length() > captureDistance;
}

double distanceTo(const Wall& wall, const AcGePoint2d& point) {
  const double along = wall.direction().dotProduct(point - wall.start);
  return point.distanceTo(wall.at(std::clamp(along, 0.0, wall.length())));
}

/// Where the reference lines cross, at these distances from both starts; nothing for lines that
/// are nearly parallel.
struct Crossing {
  double onFirst;
  double onSecond;
};
std::optional<Crossing> crossingOf(const Wall& first, const Wall& second) {
  const AcGeVector2d a = first.direction();
  const AcGeVector2d b = second.direction();
  const double sine = cross(a, b);
  if (std::fabs(sine) < kLeastSine) {
    return std::nullopt;
  }
  const AcGeVector2d between = second.start - first.start;
  return Crossing{cross(between, b) / sine, cross(between, a) / sine};
}

Box reachOf(const Wall& wall, double captureDistance) {
  return {wall.start, wall.end,
          std::max(std::fabs(wall.left), std::fabs(wall.right)) + captureDistance};
}

BoxIndex indexOf(const std::vector<Wall>& walls, double captureDistance) {
  std::vector<Box> boxes;
  boxes.reserve(walls.size());
  for (const Wall& wall : walls) {
    boxes.push_back(reachOf(wall, captureDistance));
  }
  return BoxIndex(boxes);
}

/// Where an end that meets nothing goes to; nothing for one that stays.
class FreeEnds {
 public:
  FreeEnds(const std::vector<Wall>& walls, double captureDistance)
      : m_walls(walls),
        m_captureDistance(captureDistance),
        m_index(indexOf(walls, captureDistance)) {}

  std::optional<AcGePoint2d> targetOf(std::size_t wall, bool isStart) const {
    const AcGePoint2d& end = isStart ? m_walls[wall].start : m_walls[wall].end;
    bool isMet = false;
    double nearest = HUGE_VAL;
    std::optional<AcGePoint2d> target;
    m_index.visit(Box(end, end), [&](std::size_t other) {
      if (other == wall || isMet) {
        return;
      }
      isMet = distanceTo(m_walls[other], end) < m_captureDistance;
      const std::optional<Crossing> crossing = crossingOf(m_walls[wall], m_walls[other]);
      if (isMet || !crossing || !isInBody(m_walls[other], end) ||
          crossing->onSecond < -m_captureDistance ||
          crossing->onSecond > m_walls[other].length() + m_captureDistance) {
        return;
      }
      const AcGePoint2d place = m_walls[wall].at(crossing->onFirst);
      const double distance = place.distanceTo(end);
      // At least a capture distance of the wall must be left.
      const bool isLeft = isStart ? crossing->onFirst < m_walls[wall].length() - m_captureDistance
                                  : crossing->onFirst > m_captureDistance;
      if (isLeft && distance < nearest) {
        nearest = distance;
        target = place;
      }
    });
    return isMet ? std::nullopt : target;
  }

 private:
  /// Beside the wall's reference line, in its body or less than the capture distance from it.
  bool isInBody(const Wall& wall, const AcGePoint2d& point) const {
    const double toLeft = cross(wall.direction(), point - wall.start);
    return toLeft < wall.left + m_captureDistance && toLeft > -wall.right - m_captureDistance;
  }

  const std::vector<Wall>& m_walls;
  double m_captureDistance;
  BoxIndex m_index;
};

void extendFreeEnds(std::vector<Wall>& walls, double captureDistance) {
  const std::vector<Wall> old = walls;
  const FreeEnds ends(old, captureDistance);
  for (std::size_t i = 0; i < walls.size(); ++i) {
    const std::optional<AcGePoint2d> start = ends.targetOf(i, true);
    const std::optional<AcGePoint2d> end = ends.targetOf(i, false);
    walls[i].start = start.value_or(walls[i].start);
    walls[i].end = end.value_or(walls[i].end);
  }
}

/// The walls of the plan that are walls, cut.
class Cutter {
 public:
  Cutter(const std::vector<Wall>& walls, double captureDistance)
      : m_walls(walls), m_captureDistance(captureDistance) {}

  std::vector<NetPiece> pieces(const std::vector<std::size_t>& original) {
    CBreakWallAlgorithm algorithm;
    std::vector<WallLineLikeSeg*>& lines = algorithm.GetSrcWallLines();
    lines.reserve(m_walls.size());
    for (const Wall& wall : m_walls) {
      lines.push_back(new WallLineLikeSeg(AcGePoint3d(wall.start.x, wall.start.y, 0.0),
                                          AcGePoint3d(wall.end.x, wall.end.y, 0.0)));
    }
    appendCrossings(algorithm);
    algorithm.SplitWallLines();
    std::vector<NetPiece> result;
    const std::vector<WallLineLikeSeg*>& cut = algorithm.GetNewWallLines();
    std::size_t next = 0;
    for (std::size_t i = 0; i < m_walls.size(); ++i) {
      NetPiece piece{original[i], m_walls[i]};
      if (next == cut.size() || cut[next]->pSrcLine != lines[i]) {
        result.push_back(piece);
      }
      for (; next < cut.size() && cut[next]->pSrcLine == lines[i]; ++next) {
        piece.body.start = {cut[next]->ptStart.x, cut[next]->ptStart.y};
        piece.body.end = {cut[next]->ptEnd.x, cut[next]->ptEnd.y};
        result.push_back(piece);
      }
    }
    return result;
  }

 private:
  /// Where reference lines cross and no end is near enough to be seen by the algorithm itself.
  void appendCrossings(CBreakWallAlgorithm& algorithm) const {
    const BoxIndex index = indexOf(m_walls, m_captureDistance);
    std::vector<AcArray<AcGePoint3d>> points(m_walls.size());
    for (std::size_t i = 0; i < m_walls.size(); ++i) {
      index.visit(Box(m_walls[i].start, m_walls[i].end), [&](std::size_t other) {
        if (other <= i || endsAreNear(m_walls[i], m_walls[other])) {
          return;
        }
        const std::optional<Crossing> crossing = crossingOf(m_walls[i], m_walls[other]);
        if (crossing && isWithin(crossing->onFirst, m_walls[i]) &&
            isWithin(crossing->onSecond, m_walls[other])) {
          const AcGePoint2d place = m_walls[i].at(crossing->onFirst);
          points[i].append(AcGePoint3d(place.x, place.y, 0.0));
          points[other].append(AcGePoint3d(place.x, place.y, 0.0));
        }
      });
    }
    for (std::size_t i = 0; i < m_walls.size(); ++i) {
      if (points[i].length() > 0) {
        algorithm.AppendWallBreakPnt(algorithm.GetSrcWallLines()[i], points[i]);
      }
    }
  }
  static bool isWithin(double distance, const Wall& wall) {
    return distance > 0.0 && distance < wall.length();
  }
  bool endsAreNear(const Wall& a, const Wall& b) const {
    return distanceTo(a, b.start) < m_captureDistance || distanceTo(a, b.end) < m_captureDistance ||
           distanceTo(b, a.start) < m_captureDistance || distanceTo(b, a.end) < m_captureDistance;
  }

  const std::vector<Wall>& m_walls;
  double m_captureDistance;
};

/// An end of a piece, with the direction of its line.
struct End {
  AcGePoint2d point;
  AcGeVector2d normal;
};

/// The node of ends that are near each other.
AcGePoint2d nodeOf(std::vector<End>& ends, double captureDistance) {
  // The same in whatever order the ends come, and whichever way their walls run.
  for (End& end : ends) {
    if (end.normal.x < 0.0 || (end.normal.x == 0.0 && end.normal.y < 0.0)) {
      end.normal = -end.normal;
    }
  }
  std::sort(ends.begin(), ends.end(), [](const End& a, const End& b) {
    return std::tie(a.point.x, a.point.y, a.normal.x, a.normal.y) <
           std::tie(b.point.x, b.point.y, b.normal.x, b.normal.y);
  });
  const AcGePoint2d& first = ends.front().point;
  if (first.x == ends.back().point.x && std::all_of(ends.begin(), ends.end(), [&](const End& end) {
        return end.point.y == first.y;
      })) {
    return first;
  }
  double xx = 0.0;
  double xy = 0.0;
  double yy = 0.0;
  AcGeVector2d sum;
  AcGeVector2d middle;
  for (const End& end : ends) {
    const AcGeVector2d offset = end.point - first;
    const AcGeVector2d& n = end.normal;
    xx += n.x * n.x;
    xy += n.x * n.y;
    yy += n.y * n.y;
    sum += n * n.dotProduct(offset);
    middle += offset;
  }
  middle = middle / static_cast<double>(ends.size());
  // For two lines the determinant is the squared sine of their angle.
  const double determinant = xx * yy - xy * xy;
  if (determinant >= kLeastSine * kLeastSine) {
    const AcGeVector2d best((yy * sum.x - xy * sum.y) / determinant,
                            (xx * sum.y - xy * sum.x) / determinant);
    // Lines at a small angle meet far away: then the ends are closer to what was meant.
    if ((best - middle).length() <= 2.0 * captureDistance) {
      return first + best;
    }
  }
  return first + middle;
}

/// Joins ends into nodes.
class Joiner {
 public:
  Joiner(std::vector<NetPiece>& pieces, double captureDistance)
      : m_pieces(pieces), m_captureDistance(captureDistance), m_parents(2 * pieces.size()) {
    std::iota(m_parents.begin(), m_parents.end(), std::size_t{0});
  }

  std::vector<AcGePoint2d> join() {
    std::vector<AcGePoint3d> points;
    for (const NetPiece& piece : m_pieces) {
      points.emplace_back(piece.body.start.x, piece.body.start.y, 0.0);
      points.emplace_back(piece.body.end.x, piece.body.end.y, 0.0);
    }
    const PointIndex index(points);
    for (std::size_t i = 0; i < points.size(); ++i) {
      index.visitIn(PointBox(points[i], m_captureDistance), [&](std::size_t other) {
        if (other > i && points[i].distanceTo(points[other]) < m_captureDistance) {
          unite(i, other);
        }
      });
    }
    return makeNodes();
  }

 private:
  std::size_t rootOf(std::size_t end) {
    while (m_parents[end] != end) {
      m_parents[end] = m_parents[m_parents[end]];
      end = m_parents[end];
    }
    return end;
  }
  void unite(std::size_t a, std::size_t b) {
    const std::size_t first = rootOf(a);
    const std::size_t second = rootOf(b);
    m_parents[std::max(first, second)] = std::min(first, second);
  }
  std::vector<AcGePoint2d> makeNodes() {
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::vector<std::size_t> nodeOfRoot(m_parents.size(), kNone);
    std::vector<std::vector<End>> ends;
    for (std::size_t i = 0; i < m_parents.size(); ++i) {
      const std::size_t root = rootOf(i);
      if (nodeOfRoot[root] == kNone) {
        nodeOfRoot[root] = ends.size();
        ends.emplace_back();
      }
      NetPiece& piece = m_pieces[i / 2];
      const bool isStart = i % 2 == 0;
      (isStart ? piece.startNode : piece.endNode) = nodeOfRoot[root];
      ends[nodeOfRoot[root]].push_back(
          {isStart ? piece.body.start : piece.body.end, piece.body.direction().perpVector()});
    }
    std::vector<AcGePoint2d> nodes;
    nodes.reserve(ends.size());
    for (std::vector<End>& near : ends) {
      nodes.push_back(nodeOf(near, m_captureDistance));
    }
    return nodes;
  }

  std::vector<NetPiece>& m_pieces;
  double m_captureDistance;
  std::vector<std::size_t> m_parents;
};

/// Takes out pieces without length, and all but one of those between the same nodes.
void dropDoubles(WallNet& net) {
  std::map<std::pair<std::size_t, std::size_t>, std::size_t> kept;
  std::vector<NetPiece> pieces;
  for (NetPiece& piece : net.pieces) {
    piece.body.start = net.nodes[piece.startNode];
    piece.body.end = net.nodes[piece.endNode];
    if (!(piece.body.length() > 0.0)) {
      continue;
    }
    const auto [found, isNew] =
        kept.try_emplace(std::minmax(piece.startNode, piece.endNode), pieces.size());
    if (isNew) {
      pieces.push_back(piece);
      continue;
    }
    Wall& body = pieces[found->second].body;
    const bool isSameWay = pieces[found->second].startNode == piece.startNode;
    body.left = std::max(body.left, isSameWay ? piece.body.left : piece.body.right);
    body.right = std::max(body.right, isSameWay ? piece.body.right : piece.body.left);
  }
  net.pieces = std::move(pieces);
}

}  // namespace

WallNet makeNet(const std::vector<Wall>& walls, double captureDistance) {
  WallNet net;
  std::vector<Wall> taken;
  std::vector<std::size_t> original;
  for (std::size_t i = 0; i < walls.size(); ++i) {
    if (isWall(walls[i], captureDistance)) {
      taken.push_back(walls[i]);
      original.push_back(i);
    }
  }
  net.leftOut = walls.size() - taken.size();
  extendFreeEnds(taken, captureDistance);
  net.pieces = Cutter(taken, captureDistance).pieces(original);
  net.nodes = Joiner(net.pieces, captureDistance).join();
  dropDoubles(net);
  return net;
}

}  // namespace quoin::plan
