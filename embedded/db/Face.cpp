// AcDbFace: corners in world coordinates, one bit an edge that does not show.
#include "dbents.h"
#include "embedded/db/ObjectImpl.h"

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
  point = pointOf(*this, place::kFace, kFirstCorner + index);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::setVertexAt(Adesk::UInt16 index, const AcGePoint3d& point) {
  if (index >= kCornerCount) {
    return Acad::eInvalidIndex;
  }
  return setPoint(*this, place::kFace, kFirstCorner + index, point);
}

Acad::ErrorStatus AcDbFace::isEdgeVisibleAt(Adesk::UInt16 index, Adesk::Boolean& visible) const {
  if (index >= kCornerCount) {
    return Acad::eInvalidIndex;
  }
  visible = (integerOf(*this, place::kFace, kHiddenEdges) >> index & 1) == 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::makeEdgeVisibleAt(Adesk::UInt16 index) {
  if (index >= kCornerCount) {
    return Acad::eInvalidIndex;
  }
  const std::int64_t hidden = integerOf(*this, place::kFace, kHiddenEdges);
  return setInteger(*this, place::kFace, kHiddenEdges, hidden & ~(std::int64_t{1} << index), 0);
}

Acad::ErrorStatus AcDbFace::makeEdgeInvisibleAt(Adesk::UInt16 index) {
  if (index >= kCornerCount) {
    return Acad::eInvalidIndex;
  }
  const std::int64_t hidden = integerOf(*this, place::kFace, kHiddenEdges);
  return setInteger(*this, place::kFace, kHiddenEdges, hidden | std::int64_t{1} << index, 0);
}
