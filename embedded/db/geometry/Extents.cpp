// AcDbExtents: a box along the axes.
#include "dbsymtb.h"
#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/db/geometry/ExtentsWalk.h"

Acad::ErrorStatus AcDbExtents::set(const AcGePoint3d& minPoint, const AcGePoint3d& maxPoint) {
  if (!(minPoint.x <= maxPoint.x && minPoint.y <= maxPoint.y && minPoint.z <= maxPoint.z)) {
    return Acad::eInvalidInput;
  }
  m_min = minPoint;
  m_max = maxPoint;
  return Acad::eOk;
}

void AcDbExtents::addPoint(const AcGePoint3d& point) {
  for (unsigned int axis = 0; axis < 3; ++axis) {
    if (point[axis] < m_min[axis]) {
      m_min[axis] = point[axis];
    }
    if (point[axis] > m_max[axis]) {
      m_max[axis] = point[axis];
    }
  }
}

void AcDbExtents::addExt(const AcDbExtents& other) {
  if (!other.isFresh()) {
    addPoint(other.m_min);
    addPoint(other.m_max);
  }
}

void AcDbExtents::expandBy(const AcGeVector3d& move) {
  if (!isFresh()) {
    const AcGePoint3d low = m_min + move;
    const AcGePoint3d high = m_max + move;
    addPoint(low);
    addPoint(high);
  }
}

void AcDbExtents::transformBy(const AcGeMatrix3d& matrix) {
  if (isFresh()) {
    return;
  }
  const AcDbExtents before = *this;
  *this = AcDbExtents();
  for (int corner = 0; corner < 8; ++corner) {
    addPoint(matrix * AcGePoint3d(corner & 1 ? before.m_max.x : before.m_min.x,
                                  corner & 2 ? before.m_max.y : before.m_min.y,
                                  corner & 4 ? before.m_max.z : before.m_min.z));
  }
}

Acad::ErrorStatus AcDbExtents::addBlockExt(AcDbBlockTableRecord* block) {
  if (!block) {
    return Acad::eNullObjectPointer;
  }
  using namespace quoin::db;
  try {
    const ObjectImpl& impl = Access::of(*block);
    const quoin::dxf::Block* const found =
        impl.stub ? impl.database->store.blockOf(*impl.stub) : nullptr;
    AcDbExtents own;
    if (found) {
      ExtentsWalk(impl.database).addBlock(*found, own);
    }
    addExt(own);
    return own.isFresh() ? Acad::eNullExtents : Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}
