// Extents of multilines, and of what stands in a frame of its own: viewports, pictures,
// underlays and objects of other programs; of meshes, lights, sections and proxies.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "embedded/db/ExtentsShapes.h"
#include "embedded/db/PlaneFields.h"

namespace quoin::db {
namespace {

constexpr int kPoint = 10;
constexpr int kSecondPoint = 11;
constexpr int kThirdPoint = 12;
constexpr int kFourthPoint = 13;

/// One vertex of a multiline: where its elements cross the mitre line.
struct MultilineVertex {
  AcGePoint3d point;
  AcGeVector3d course;
  AcGeVector3d mitre;
  std::vector<double> offsets;  // along the mitre, one for each element
};

std::vector<MultilineVertex> multilineVerticesOf(const TagList& tags, TagRange range) {
  constexpr int kParameters = 74;
  constexpr int kParameter = 41;
  std::vector<MultilineVertex> vertices;
  bool isFirst = false;
  for (std::size_t i = range.first; i < range.last; ++i) {
    if (!tags.isOwn(i)) {
      continue;
    }
    const int code = tags[i].code;
    if (code == kSecondPoint) {
      vertices.emplace_back().point = tags.point(kSecondPoint, {i, range.last});
    } else if (vertices.empty()) {
      continue;
    } else if (code == kThirdPoint) {
      vertices.back().course = tags.point(kThirdPoint, {i, range.last}).asVector();
    } else if (code == kFourthPoint) {
      vertices.back().mitre = tags.point(kFourthPoint, {i, range.last}).asVector();
    } else if (code == kParameters) {
      isFirst = true;
    } else if (code == kParameter && isFirst) {
      // The first parameter of an element is its place; the others cut it into pieces.
      vertices.back().offsets.push_back(tags.doubleAt(i));
      isFirst = false;
    }
  }
  return vertices;
}

/// The half circle from the outermost element to the other, outwards.
void addRoundCap(const MultilineVertex& vertex, const AcGeVector3d& outwards,
                 const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  const auto [low, high] = std::minmax_element(vertex.offsets.begin(), vertex.offsets.end());
  if (low == vertex.offsets.end() || !(*high > *low)) {
    return;
  }
  const AcGePoint3d center = vertex.point + vertex.mitre * (0.5 * (*low + *high));
  const AcGeVector3d across = vertex.mitre * (0.5 * (*high - *low));
  ArcImage arc{toWorld * center, toWorld * across, toWorld * (outwards * across.length())};
  arc.sweep = 0.5 * kTurn;
  addArc(arc, box);
}

}  // namespace

Acad::ErrorStatus extentsOfMultiline(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                     AcDbExtents& box) {
  constexpr std::int64_t kIsClosed = 2;
  constexpr std::int64_t kNoStartCap = 4;
  constexpr std::int64_t kNoEndCap = 8;
  constexpr std::int64_t kRoundStart = 64;
  constexpr std::int64_t kRoundEnd = 1024;
  constexpr int kFlags = 71;
  constexpr int kStyle = 340;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbMline");
  const std::vector<MultilineVertex> vertices = multilineVerticesOf(tags, range);
  for (const MultilineVertex& vertex : vertices) {
    if (vertex.offsets.empty()) {
      box.addPoint(toWorld * vertex.point);
    }
    for (const double offset : vertex.offsets) {
      box.addPoint(toWorld * (vertex.point + vertex.mitre * offset));
    }
  }
  const std::int64_t flags = tags.integer(kFlags, range, 0);
  const AcDbStub* const style =
      entity.database ? entity.database->byHandle(tags.handle(kStyle, range)) : nullptr;
  if (style && !vertices.empty() && !(flags & kIsClosed)) {
    const TagList styleTags = entity.database->tagsOf(*style);
    const std::int64_t caps =
        styleTags.integer(code::kFlags, styleTags.subclass("AcDbMlineStyle"), 0);
    if ((caps & kRoundStart) && !(flags & kNoStartCap)) {
      addRoundCap(vertices.front(), -vertices.front().course, toWorld, box);
    }
    if ((caps & kRoundEnd) && !(flags & kNoEndCap)) {
      addRoundCap(vertices.back(), vertices.back().course, toWorld, box);
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfViewport(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                    AcDbExtents& box) {
  constexpr int kWidth = 40;
  constexpr int kHeight = 41;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbViewport");
  const AcGePoint3d center = tags.point(kPoint, range);
  const AcGeVector3d half(0.5 * tags.number(kWidth, range, 0.0),
                          0.5 * tags.number(kHeight, range, 0.0), 0.0);
  const AcGePoint3d low = center - half;
  const AcGePoint3d high = center + half;
  AcGeMatrix3d toPlane;
  toPlane.setToTranslation(AcGeVector3d(0.0, 0.0, center.z));
  addRectangle(low.x, low.y, high.x, high.y, toWorld * toPlane, box);
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfImage(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  constexpr int kBoundaryPoint = 14;
  constexpr int kIsClipped = 280;
  constexpr int kIsOutside = 290;
  const TagList& tags = entity.tags;
  const bool isWipeout = dxf::trimmedValue(tags[0]) == "WIPEOUT";
  const TagRange range = tags.subclass(isWipeout ? "AcDbWipeout" : "AcDbRasterImage");
  const AcGePoint3d corner = tags.point(kPoint, range);
  const AcGeVector3d u = tags.point(kSecondPoint, range, {1.0, 0.0, 0.0}).asVector();
  const AcGeVector3d v = tags.point(kThirdPoint, range, {0.0, 1.0, 0.0}).asVector();
  const AcGePoint3d size = tags.point(kFourthPoint, range, {1.0, 1.0, 0.0});
  const bool isClipped =
      (isWipeout || tags.integer(kIsClipped, range, 0) != 0) && !tags.integer(kIsOutside, range, 0);
  const std::vector<AcGePoint3d> boundary =
      isClipped ? pointsOf(tags, kBoundaryPoint, range) : std::vector<AcGePoint3d>();
  // Boundaries count pixels from the middle of the upper left one, downwards; what lies
  // between two corners is a rectangle.
  AcDbExtents pixels;
  AcGeMatrix3d frame;
  frame.setCoordSystem(corner, u, v, AcGeVector3d::kZAxis);
  const AcGeMatrix3d toPicture = toWorld * frame;
  constexpr double kHalfPixel = 0.5;
  for (const AcGePoint3d& point : boundary) {
    const AcGePoint3d place(point.x + kHalfPixel, size.y - kHalfPixel - point.y, 0.0);
    pixels.addPoint(place);
    if (boundary.size() > 2) {
      box.addPoint(toPicture * place);
    }
  }
  if (boundary.empty()) {
    addRectangle(0.0, 0.0, size.x, size.y, toPicture, box);
  } else if (boundary.size() <= 2) {
    addRectangle(pixels.minPoint().x, pixels.minPoint().y, pixels.maxPoint().x, pixels.maxPoint().y,
                 toPicture, box);
  }
  return Acad::eOk;
}

/// The sheet itself stands in another file: only a boundary that clips it has a size here.
Acad::ErrorStatus extentsOfUnderlay(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                    AcDbExtents& box) {
  constexpr int kScaleX = 41;
  constexpr int kScaleY = 42;
  constexpr int kRotation = 50;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbUnderlayReference");
  const std::vector<AcGePoint3d> boundary = pointsOf(tags, kSecondPoint, range);
  const double rotation = toRadians(tags.number(kRotation, range, 0.0));
  const AcGeVector3d x(std::cos(rotation), std::sin(rotation), 0.0);
  const AcGeVector3d y(-std::sin(rotation), std::cos(rotation), 0.0);
  AcGeMatrix3d frame;
  frame.setCoordSystem(tags.point(kPoint, range), x * tags.number(kScaleX, range, 1.0),
                       y * tags.number(kScaleY, range, 1.0), AcGeVector3d::kZAxis);
  const AcGeMatrix3d toSheet = toWorld * planeToWorld(normalOf(tags, range)) * frame;
  if (boundary.size() == 2) {
    addRectangle(boundary[0].x, boundary[0].y, boundary[1].x, boundary[1].y, toSheet, box);
  } else {
    for (const AcGePoint3d& point : boundary) {
      box.addPoint(toSheet * AcGePoint3d(point.x, point.y, 0.0));
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfOleFrame(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                    AcDbExtents& box) {
  const TagRange range = entity.tags.subclass("AcDbOle2Frame");
  if (entity.tags.find(kPoint, range) == TagList::kNone) {
    return Acad::eOk;
  }
  AcDbExtents corners;
  corners.addPoint(entity.tags.point(kPoint, range));
  corners.addPoint(entity.tags.point(kSecondPoint, range));
  corners.transformBy(toWorld);
  box.addExt(corners);
  return Acad::eOk;
}

/// A light counts with its place: how large its sign is drawn depends on the view.
Acad::ErrorStatus extentsOfLight(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  box.addPoint(toWorld * entity.tags.point(kPoint, entity.tags.subclass("AcDbLight")));
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfSection(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                   AcDbExtents& box) {
  constexpr int kTop = 40;
  constexpr int kBottom = 41;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbSection");
  const AcGeVector3d up = tags.point(kPoint, range, {0.0, 0.0, 1.0}).asVector();
  for (const int vertex : {kSecondPoint, kThirdPoint}) {
    for (const AcGePoint3d& point : pointsOf(tags, vertex, range)) {
      box.addPoint(toWorld * (point + up * tags.number(kTop, range, 0.0)));
      box.addPoint(toWorld * (point - up * tags.number(kBottom, range, 0.0)));
    }
  }
  return Acad::eOk;
}

/// A smoothed mesh counts with the vertices that it is smoothed from; it lies between them.
Acad::ErrorStatus extentsOfMesh(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                AcDbExtents& box) {
  for (const AcGePoint3d& point :
       pointsOf(entity.tags, kPoint, entity.tags.subclass("AcDbSubDMesh"))) {
    box.addPoint(toWorld * point);
  }
  return Acad::eOk;
}

/// The picture that a program left of its own entity begins with its box, if it has one:
/// behind its size and count, pieces of a length, a kind and a body.
Acad::ErrorStatus extentsOfProxy(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  constexpr int kGraphics = 310;
  constexpr std::int32_t kExtents = 1;
  constexpr std::size_t kHead = 2 * sizeof(std::int32_t);
  constexpr std::size_t kExtentsBytes = kHead + 6 * sizeof(double);
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbProxyEntity");
  std::string graphics;
  for (std::size_t at = tags.find(kGraphics, range); at != TagList::kNone;
       at = tags.find(kGraphics, range, at + 1)) {
    graphics += dxf::binaryOf(tags[at], tags.format());
  }
  for (std::size_t at = kHead; at + kHead <= graphics.size();) {
    std::int32_t head[2];
    std::memcpy(head, graphics.data() + at, kHead);
    const auto length = static_cast<std::size_t>(std::max(head[0], 0));
    if (length < kHead || length > graphics.size() - at) {
      break;
    }
    if (head[1] == kExtents && length >= kExtentsBytes) {
      double ends[6];
      std::memcpy(ends, graphics.data() + at + kHead, sizeof ends);
      AcDbExtents own;
      if (own.set({ends[0], ends[1], ends[2]}, {ends[3], ends[4], ends[5]}) == Acad::eOk) {
        own.transformBy(toWorld);
        box.addExt(own);
      }
      return Acad::eOk;
    }
    at += length;
  }
  return Acad::eNotApplicable;
}

}  // namespace quoin::db
