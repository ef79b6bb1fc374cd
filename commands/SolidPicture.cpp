#include "commands/SolidPicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

namespace quoin::commands {

namespace {

using Face = WallPrism::Face;

// A parallel view: depth runs up the page, shortened and to the side, heights nearly keep
// their length.
constexpr double kDepthUp = 0.62;
constexpr double kDepthAcross = 0.28;
constexpr double kHeightUp = 0.75;

constexpr double kEdgeWidth = 0.8;

AcGePoint2d onSheet(const AcGePoint3d& point) {
  return {point.x + kDepthAcross * point.y, kDepthUp * point.y + kHeightUp * point.z};
}

/// Twice the area on the sheet, positive for a face that looks at the viewer.
double areaOnSheet(const Face& face) {
  double area = 0.0;
  for (std::size_t i = 0; i < face.size(); ++i) {
    const AcGePoint2d a = onSheet(face[i]);
    const AcGePoint2d b = onSheet(face[(i + 1) % face.size()]);
    area += a.x * b.y - b.x * a.y;
  }
  return area;
}

/// Along the direction that the view flattens, away from the viewer.
double depthOf(const Face& face) {
  const AcGeVector3d away(-kDepthAcross, 1.0, -kDepthUp / kHeightUp);
  double sum = 0.0;
  for (const AcGePoint3d& corner : face) {
    sum += corner.asVector().dotProduct(away);
  }
  return sum;
}

AcGeVector3d normalOf(const Face& face) {
  return (face[1] - face[0]).crossProduct(face[2] - face[0]).normal();
}

/// Faces are lighter the more they look up, and a little darker the more they look right.
Color shadeOf(const AcGeVector3d& normal) {
  const double light = 0.72 + 0.22 * std::max(0.0, normal.z) - 0.10 * normal.x;
  const double shade = std::clamp(light, 0.45, 0.97);
  return {shade, shade * 0.985, shade * 0.95};
}

Path filled(std::span<const AcGePoint3d> corners, const Color& fill, const Color& edge) {
  Path path;
  for (const AcGePoint3d& corner : corners) {
    path.points.push_back(onSheet(corner));
  }
  path.isClosed = true;
  path.isFilled = true;
  path.fill = fill;
  path.color = edge;
  path.width = kEdgeWidth;
  return path;
}

void addEdge(Picture& picture, const AcGePoint3d& from, const AcGePoint3d& to, double width) {
  Path path;
  path.points = {onSheet(from), onSheet(to)};
  path.color = palette::kWall;
  path.width = width;
  picture.paths.push_back(std::move(path));
}

using Edge = std::pair<AcGePoint3d, AcGePoint3d>;

/// Which edges of a body are edges for the eye: faces in one plane meet in the others.
class Creases {
 public:
  explicit Creases(const std::vector<Face>& faces) {
    for (const Face& face : faces) {
      forEachSide(face, [&](const AcGePoint3d& from, const AcGePoint3d& to) {
        m_faces.emplace(key(from, to), &face);
      });
    }
  }

  /// Calls visit(from, to, the face behind it) for those of a face.
  template <class Visit>
  void forEach(const Face& face, Visit visit) const {
    constexpr double kSamePlane = 0.9999;  // of the normals' product: within a degree
    forEachSide(face, [&](const AcGePoint3d& from, const AcGePoint3d& to) {
      const auto other = m_faces.find(key(to, from));
      if (other == m_faces.end() ||
          normalOf(*other->second).dotProduct(normalOf(face)) < kSamePlane) {
        visit(from, to, other == m_faces.end() ? nullptr : other->second);
      }
    });
  }

 private:
  using Key = std::array<double, 6>;
  static Key key(const AcGePoint3d& from, const AcGePoint3d& to) {
    return {from.x, from.y, from.z, to.x, to.y, to.z};
  }
  template <class Visit>
  static void forEachSide(const Face& face, Visit visit) {
    for (std::size_t i = 0; i < face.size(); ++i) {
      const AcGePoint3d& to = face[(i + 1) % face.size()];
      if (face[i].x != to.x || face[i].y != to.y || face[i].z != to.z) {
        visit(face[i], to);
      }
    }
  }

  std::map<Key, const Face*> m_faces;
};

struct SeenFace {
  Face face;
  bool isCeiling;
  std::size_t rank;  // of its wall, far ones first
  double depth;
  std::vector<Edge> edges;
};

/// Where walls stand in the plan as the view sees it: `across` it, and away from the viewer.
/// Walls that stand apart can be painted one after the other, far ones first, so that each hides
/// what it should: in the plane, along one direction, "behind" makes no circles among convex
/// shapes. A sweep across the view finds which wall is next to which (neighbours, all the way), and
/// sorting those gives the order. By their depths alone a wall behind a long one would show.
class PaintOrder {
 public:
  explicit PaintOrder(const std::vector<WallPrism>& walls) : m_before(walls.size()) {
    std::vector<Event> events;
    for (std::size_t i = 0; i < walls.size(); ++i) {
      m_shapes.push_back(shapeOf(walls[i]));
      events.push_back({m_shapes[i].low, false, i});
      events.push_back({m_shapes[i].high, true, i});
    }
    std::sort(events.begin(), events.end(), [](const Event& a, const Event& b) {
      return std::tuple(a.across, !a.isEnd, a.wall) < std::tuple(b.across, !b.isEnd, b.wall);
    });
    for (const Event& event : events) {
      event.isEnd ? leave(event.wall) : enter(event.wall);
    }
  }

  /// The place of each wall in the order.
  std::vector<std::size_t> ranks() const {
    std::vector<std::size_t> waiting(m_shapes.size(), 0);
    for (const std::vector<std::size_t>& nearer : m_before) {
      for (const std::size_t wall : nearer) {
        ++waiting[wall];
      }
    }
    const auto isFarther = [&](std::size_t a, std::size_t b) {
      return std::pair(-m_shapes[a].middle, a) < std::pair(-m_shapes[b].middle, b);
    };
    std::vector<std::size_t> byDepth(m_shapes.size());
    std::iota(byDepth.begin(), byDepth.end(), std::size_t{0});
    std::sort(byDepth.begin(), byDepth.end(), isFarther);
    std::set<std::size_t, decltype(isFarther)> ready(isFarther);
    for (std::size_t i = 0; i < waiting.size(); ++i) {
      if (waiting[i] == 0) {
        ready.insert(i);
      }
    }
    std::vector<std::size_t> ranks(m_shapes.size(), kNone);
    std::size_t next = 0;
    for (std::size_t done = 0; done < ranks.size(); ++done) {
      while (ready.empty()) {
        // Walls that overlap may stand in a circle; the farthest begins.
        if (ranks[byDepth[next]] == kNone) {
          ready.insert(byDepth[next]);
        }
        ++next;
      }
      const std::size_t wall = *ready.begin();
      ready.erase(ready.begin());
      ranks[wall] = done;
      for (const std::size_t nearer : m_before[wall]) {
        if (--waiting[nearer] == 0 && ranks[nearer] == kNone) {
          ready.insert(nearer);
        }
      }
    }
    return ranks;
  }

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  struct Event {
    double across;
    bool isEnd;
    std::size_t wall;
  };
  struct Shape {
    std::vector<AcGePoint2d> corners;  // across, away
    double low = 0.0;
    double high = 0.0;
    double middle = 0.0;

    /// The middle of what the shape takes up at a place across.
    double depthAt(double across) const {
      double nearest = std::numeric_limits<double>::infinity();
      double farthest = -nearest;
      for (std::size_t i = 0; i < corners.size(); ++i) {
        const AcGePoint2d& a = corners[i];
        const AcGePoint2d& b = corners[(i + 1) % corners.size()];
        if (std::min(a.x, b.x) <= across && across <= std::max(a.x, b.x)) {
          const double share = a.x == b.x ? 0.0 : (across - a.x) / (b.x - a.x);
          const double depth = a.y + (b.y - a.y) * share;
          for (const double end : {depth, a.x == b.x ? b.y : depth}) {
            nearest = std::min(nearest, end);
            farthest = std::max(farthest, end);
          }
        }
      }
      return nearest <= farthest ? 0.5 * (nearest + farthest) : middle;
    }
  };

  static Shape shapeOf(const WallPrism& wall) {
    Shape shape;
    // The hull of the floor's corners, by the monotone chain.
    std::vector<AcGePoint2d> points;
    for (const AcGePoint3d& corner : {wall.startLeft, wall.startMid, wall.startRight, wall.endRight,
                                      wall.endMid, wall.endLeft}) {
      points.emplace_back(corner.x + kDepthAcross * corner.y, corner.y);
    }
    const auto isBefore = [](const AcGePoint2d& a, const AcGePoint2d& b) {
      return a.x != b.x ? a.x < b.x : a.y < b.y;
    };
    std::sort(points.begin(), points.end(), isBefore);
    std::vector<AcGePoint2d>& hull = shape.corners;
    for (int side = 0; side < 2; ++side) {
      const std::size_t first = hull.size();
      for (const AcGePoint2d& point : points) {
        while (hull.size() >= first + 2) {
          const AcGeVector2d a = hull.back() - hull[hull.size() - 2];
          const AcGeVector2d b = point - hull.back();
          if (a.x * b.y - a.y * b.x > 0.0) {
            break;
          }
          hull.pop_back();
        }
        hull.push_back(point);
      }
      hull.pop_back();
      std::reverse(points.begin(), points.end());
    }
    if (hull.empty()) {
      hull.push_back(points.front());
    }
    shape.low = points.front().x;
    shape.high = points.back().x;
    for (const AcGePoint2d& corner : hull) {
      shape.middle += corner.y / static_cast<double>(hull.size());
    }
    return shape;
  }

  void enter(std::size_t wall) {
    // A little inside, so that walls which share a corner stand apart.
    constexpr double kInside = 1e-3;
    const Shape& own = m_shapes[wall];
    const double across = own.low + kInside * (own.high - own.low);
    const double depth = own.depthAt(across);
    const auto place =
        std::partition_point(m_active.begin(), m_active.end(), [&](std::size_t other) {
          const Shape& shape = m_shapes[other];
          return shape.depthAt(std::min(across, shape.high)) > depth;
        });
    const auto at = m_active.insert(place, wall);
    if (at != m_active.begin()) {
      m_before[*(at - 1)].push_back(wall);
    }
    if (at + 1 != m_active.end()) {
      m_before[wall].push_back(*(at + 1));
    }
  }
  void leave(std::size_t wall) {
    const auto at = std::find(m_active.begin(), m_active.end(), wall);
    if (at != m_active.begin() && at + 1 != m_active.end()) {
      m_before[*(at - 1)].push_back(*(at + 1));
    }
    m_active.erase(at);
  }

  std::vector<Shape> m_shapes;
  std::vector<std::size_t> m_active;               // far ones first
  std::vector<std::vector<std::size_t>> m_before;  // which walls are painted after each
};

class WallPainter {
 public:
  explicit WallPainter(const std::vector<WallPrism>& walls) {
    const std::vector<std::size_t> ranks = PaintOrder(walls).ranks();
    for (std::size_t i = 0; i < walls.size(); ++i) {
      add(walls[i], ranks[i]);
    }
    // All walls are of one height, so that nothing stands above their tops.
    std::stable_sort(m_seen.begin(), m_seen.end(), [](const SeenFace& a, const SeenFace& b) {
      return std::tuple(a.isCeiling, a.rank, -a.depth) < std::tuple(b.isCeiling, b.rank, -b.depth);
    });
  }

  void paint(Picture& picture) const {
    for (const SeenFace& part : m_seen) {
      const Color fill = shadeOf(normalOf(part.face));
      picture.paths.push_back(filled(part.face, fill, fill));
      for (const auto& [from, to] : part.edges) {
        addEdge(picture, from, to, kEdgeWidth);
      }
    }
    for (const auto& [from, to] : m_ceilingEdges) {
      addEdge(picture, from, to, Path().width);
    }
  }

 private:
  static bool isSeen(const WallPrism& wall, const Face& face) {
    return !wall.isHiddenInJoint(face) && areaOnSheet(face) > 0.0;
  }
  static bool looksUp(const Face& face) {
    const AcGeVector3d normal = normalOf(face);
    return normal.x == 0.0 && normal.y == 0.0;
  }

  void add(const WallPrism& wall, std::size_t rank) {
    const std::vector<Face> faces = wall.faces();
    const Creases creases(faces);
    for (const Face& face : faces) {
      if (!isSeen(wall, face)) {
        continue;
      }
      const bool isCeiling = looksUp(face) && face[0].z == wall.startLeft.z + wall.height;
      SeenFace seen{face, isCeiling, rank, depthOf(face), {}};
      creases.forEach(face,
                      [&](const AcGePoint3d& from, const AcGePoint3d& to, const Face* behind) {
                        if (!isCeiling) {
                          seen.edges.emplace_back(from, to);
                        } else if (!behind || !wall.isHiddenInJoint(*behind)) {
                          m_ceilingEdges.emplace_back(from, to);
                        }
                      });
      m_seen.push_back(std::move(seen));
    }
  }

  std::vector<SeenFace> m_seen;
  std::vector<Edge> m_ceilingEdges;
};

constexpr Color kFloor{0.93, 0.91, 0.86};

/// Sides before tops, since slabs next to one another are at one height.
void addSlabs(Picture& picture, const std::vector<FloorSlab>& slabs) {
  for (const FloorSlab& slab : slabs) {
    for (const Face& face : slab.faces()) {
      const AcGeVector3d normal = normalOf(face);
      if (normal.z == 0.0 && areaOnSheet(face) > 0.0) {
        picture.paths.push_back(filled(face, shadeOf(normal), palette::kWall));
      }
    }
  }
  for (const FloorSlab& slab : slabs) {
    picture.paths.push_back(filled(slab.top, kFloor, palette::kWall));
  }
}

}  // namespace

void addBodies(Picture& picture, const Model& model) {
  addSlabs(picture, model.slabs);
  WallPainter(model.walls).paint(picture);
  constexpr double kSwatch = 10.0;
  picture.legend.push_back(
      {"top of a wall", shadeOf(AcGeVector3d::kZAxis), false, MarkShape::Dot, kSwatch});
  picture.legend.push_back(
      {"side of a wall", shadeOf(-AcGeVector3d::kYAxis), false, MarkShape::Dot, kSwatch});
  if (!model.slabs.empty()) {
    picture.legend.push_back({"floor slab", kFloor, false, MarkShape::Dot, kSwatch});
  }
}

}  // namespace quoin::commands
