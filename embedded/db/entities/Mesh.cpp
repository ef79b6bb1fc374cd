// MESH: a surface of faces that may be smoothed.
#include <algorithm>
#include <utility>
#include <vector>

#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

constexpr int kVertex = 10;

/// A smoothed mesh counts with the vertices that it is smoothed from; it lies between them.
Acad::ErrorStatus extentsOfMesh(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                AcDbExtents& box) {
  for (const AcGePoint3d& point :
       pointsOf(entity.tags, kVertex, entity.tags.subclass("AcDbSubDMesh"))) {
    box.addPoint(toWorld * point);
  }
  return Acad::eOk;
}

/// Edges as pairs of indices, the lower one first, each once. They stand in a list of their own,
/// or follow from the corners of the faces.
std::vector<std::pair<std::int64_t, std::int64_t>> edgesOf(const TagList& tags, TagRange range) {
  constexpr int kFaces = 93;
  constexpr int kEdges = 94;
  constexpr int kCreases = 95;
  constexpr int kIndex = 90;
  std::vector<std::pair<std::int64_t, std::int64_t>> edges;
  const auto add = [&](std::int64_t a, std::int64_t b) {
    if (a != b) {
      edges.emplace_back(std::min(a, b), std::max(a, b));
    }
  };
  int list = 0;
  std::int64_t left = 0;   // indices of the face or edge
  std::int64_t first = 0;  // of its indices
  std::int64_t before = -1;
  for (std::size_t i = range.first; i < range.last; ++i) {
    const int code = tags[i].code;
    if (code == kFaces || code == kEdges || code == kCreases) {
      list = code;
      left = 0;
      before = -1;
    } else if (code == kIndex && list == kFaces) {
      const std::int64_t value = tags.integerAt(i);
      if (left == 0) {
        left = value;
        before = -1;
        continue;
      }
      if (before < 0) {
        first = value;
      } else {
        add(before, value);
      }
      before = value;
      if (--left == 0) {
        add(before, first);
      }
    } else if (code == kIndex && list == kEdges) {
      const std::int64_t value = tags.integerAt(i);
      if (before >= 0) {
        add(before, value);
      }
      before = before >= 0 ? -1 : value;
    }
  }
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
  return edges;
}

/// A smoothed mesh is drawn with the edges that it is smoothed from.
void drawMesh(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const TagRange range = entity.tags.subclass("AcDbSubDMesh");
  const std::vector<AcGePoint3d> points = pointsOf(entity.tags, kVertex, range);
  const auto isPoint = [&](std::int64_t index) {
    return index >= 0 && static_cast<std::size_t>(index) < points.size();
  };
  for (const auto& [a, b] : edgesOf(entity.tags, range)) {
    if (isPoint(a) && isPoint(b)) {
      walk.stroke(linePath(toWorld * points[static_cast<std::size_t>(a)],
                           toWorld * points[static_cast<std::size_t>(b)]));
    }
  }
}

constexpr std::array kRules{Rule{"AcDbSubDMesh", 10, Point}};
constexpr TransformSchema kSchema{.isAffine = true, .rules = kRules};

constexpr std::array kKinds{
    RecordKind{.name = "MESH",
               .since = Version::R2010,
               .isSelfContained = true,
               .extents = extentsOfMesh,
               .draw = drawMesh,
               .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kMeshRows{kKinds};

}  // namespace quoin::db
