// 3DFACE, AcDbFace: corners in world coordinates, one bit an edge that does not show.
#include <vector>

#include "dbents.h"
#include "embedded/db/core/ObjectImpl.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbFace, AcDbEntity, L"3DFACE", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {
constexpr int kFirstCorner = 10;
constexpr int kHiddenEdges = 70;
constexpr Adesk::UInt16 kCornerCount = 4;
}  // namespace

AcDbFace::AcDbFace() = default;

AcDbFace::AcDbFace(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2,
                   const AcGePoint3d& pt3, Adesk::Boolean e0vis, Adesk::Boolean e1vis,
                   Adesk::Boolean e2vis, Adesk::Boolean e3vis) {
  const AcGePoint3d corners[kCornerCount] = {pt0, pt1, pt2, pt3};
  const Adesk::Boolean isVisible[kCornerCount] = {e0vis, e1vis, e2vis, e3vis};
  for (Adesk::UInt16 i = 0; i < kCornerCount; ++i) {
    setVertexAt(i, corners[i]);
    if (!isVisible[i]) {
      makeEdgeInvisibleAt(i);
    }
  }
}

Acad::ErrorStatus AcDbFace::getVertexAt(Adesk::UInt16 index, AcGePoint3d& point) const {
  if (index >= kCornerCount) {
    return Acad::eInvalidIndex;
  }
  point = pointOf(*this, layout::kFace, kFirstCorner + index);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::setVertexAt(Adesk::UInt16 index, const AcGePoint3d& point) {
  if (index >= kCornerCount) {
    return Acad::eInvalidIndex;
  }
  return setPoint(*this, layout::kFace, kFirstCorner + index, point);
}

Acad::ErrorStatus AcDbFace::isEdgeVisibleAt(Adesk::UInt16 index, Adesk::Boolean& visible) const {
  if (index >= kCornerCount) {
    return Acad::eInvalidIndex;
  }
  visible = (integerOf(*this, layout::kFace, kHiddenEdges) >> index & 1) == 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::makeEdgeVisibleAt(Adesk::UInt16 index) {
  if (index >= kCornerCount) {
    return Acad::eInvalidIndex;
  }
  const std::int64_t hidden = integerOf(*this, layout::kFace, kHiddenEdges);
  return setInteger(*this, layout::kFace, kHiddenEdges, hidden & ~(std::int64_t{1} << index), 0);
}

Acad::ErrorStatus AcDbFace::makeEdgeInvisibleAt(Adesk::UInt16 index) {
  if (index >= kCornerCount) {
    return Acad::eInvalidIndex;
  }
  const std::int64_t hidden = integerOf(*this, layout::kFace, kHiddenEdges);
  return setInteger(*this, layout::kFace, kHiddenEdges, hidden | std::int64_t{1} << index, 0);
}

namespace quoin::db {
namespace {

Acad::ErrorStatus extentsOfFace(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                AcDbExtents& box) {
  const TagRange range = layout::kFace.in(entity.tags);
  for (const int corner : {10, 11, 12, 13}) {
    if (entity.tags.find(corner, range) != TagList::kNone) {
      box.addPoint(toWorld * entity.tags.point(corner, range));
    }
  }
  return Acad::eOk;
}

/// The edges that are not hidden, those behind one another in one path.
void drawFace(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const TagRange range = layout::kFace.in(entity.tags);
  const std::int64_t hidden = entity.tags.integer(kHiddenEdges, range, 0);
  std::vector<AcGePoint3d> corners;
  for (const int corner : {10, 11, 12, 13}) {
    if (entity.tags.find(corner, range) != TagList::kNone) {
      corners.push_back(toWorld * entity.tags.point(corner, range));
    }
  }
  if (corners.empty()) {
    return;
  }
  DrawPath path;
  bool isOpen = false;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const AcGePoint3d& end = corners[(i + 1) % corners.size()];
    const bool isShown = (hidden >> i & 1) == 0 && !(corners[i] == end);
    if (isShown && !isOpen) {
      startPath(path, corners[i]);
    }
    if (isShown) {
      addLine(path, end);
    } else if (isOpen && !(corners[i] == end)) {
      walk.stroke(path);
    }
    isOpen = isShown || (isOpen && corners[i] == end);
  }
  if (isOpen) {
    path.isClosed = path.start == path.pieces.back().end;
    walk.stroke(path);
  }
}

Acad::ErrorStatus transformFace(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const TagRange range = layout::kFace.in(tags);
  for (const int corner : {10, 11, 12, 13}) {
    if (tags.find(corner, range) != TagList::kNone) {
      edit.setPoint(layout::kFace, corner, matrix * tags.point(corner, range));
    }
  }
  return Acad::eOk;
}

constexpr std::array kSubclasses{kEntitySubclass, Subclass{"AcDbFace", kNoCodes}};
constexpr std::array kClasses{classRow<AcDbFace>(
    "0 3DFACE 100 AcDbEntity 8 0 100 AcDbFace 10 0.0 20 0.0 30 0.0 11 0.0 21 0.0 31 0.0 "
    "12 0.0 22 0.0 32 0.0 13 0.0 23 0.0 33 0.0",
    kSubclasses)};

constexpr std::array kKinds{
    RecordKind{.name = "3DFACE",
               .classes = kClasses,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfFace,
               .draw = drawFace,
               .transform = transformFace},
};

}  // namespace

const std::span<const RecordKind> kFaceRows{kKinds};

}  // namespace quoin::db
