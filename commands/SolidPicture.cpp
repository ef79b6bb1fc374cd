#include "commands/SolidPicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <span>
#include <utility>

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
  double depth;
  bool isParted;  // by jambs: only these edges are seen
  std::vector<Edge> edges;
};

class WallPainter {
 public:
  explicit WallPainter(const std::vector<WallPrism>& walls) {
    for (const WallPrism& wall : walls) {
      wall.holes.empty() ? addWhole(wall) : addWithHoles(wall);
    }
    std::stable_sort(m_seen.begin(), m_seen.end(), [](const SeenFace& a, const SeenFace& b) {
      return a.isCeiling != b.isCeiling ? b.isCeiling : a.depth > b.depth;
    });
  }

  void paint(Picture& picture) const {
    for (const SeenFace& part : m_seen) {
      const Color fill = shadeOf(normalOf(part.face));
      const bool hasOutline = !part.isCeiling && !part.isParted;
      picture.paths.push_back(filled(part.face, fill, hasOutline ? palette::kWall : fill));
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

  void addWhole(const WallPrism& wall) {
    for (const Face& face : wall.faces()) {
      if (isSeen(wall, face)) {
        m_seen.push_back({face, looksUp(face), depthOf(face), false, {}});
      }
    }
    // The ceiling's long edges, without the line between its halves.
    const AcGeVector3d up(0.0, 0.0, wall.height);
    m_ceilingEdges.emplace_back(wall.startLeft + up, wall.endLeft + up);
    m_ceilingEdges.emplace_back(wall.startRight + up, wall.endRight + up);
  }

  void addWithHoles(const WallPrism& wall) {
    const std::vector<Face> faces = wall.faces();
    const Creases creases(faces);
    for (const Face& face : faces) {
      if (!isSeen(wall, face)) {
        continue;
      }
      const bool isCeiling = looksUp(face) && face[0].z == wall.startLeft.z + wall.height;
      SeenFace seen{face, isCeiling, depthOf(face), true, {}};
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
    constexpr Color kFloor{0.93, 0.91, 0.86};
    picture.paths.push_back(filled(slab.top, kFloor, palette::kWall));
  }
}

}  // namespace

void addBodies(Picture& picture, const Model& model) {
  addSlabs(picture, model.slabs);
  WallPainter(model.walls).paint(picture);
}

}  // namespace quoin::commands
