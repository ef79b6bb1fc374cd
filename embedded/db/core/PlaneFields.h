// Fields of entities that lie in a plane: their points are kept in the plane's own
// coordinate system, which their extrusion direction gives (DXF reference, "Object
// Coordinate Systems").
#pragma once

#include "embedded/db/core/ObjectImpl.h"
#include "gemat3d.h"

namespace quoin::db {

inline AcGeMatrix3d planeToWorld(const AcGeVector3d& normal) {
  return AcGeMatrix3d().setToPlaneToWorld(normal);
}
inline AcGeMatrix3d worldToPlane(const AcGeVector3d& normal) {
  return AcGeMatrix3d().setToWorldToPlane(normal);
}

/// The world coordinates of a point that is kept in the entity's plane.
inline AcGePoint3d worldPointOf(const AcDbObject& entity, const SubclassLayout& layout, int code) {
  return planeToWorld(normalOf(entity, layout)) * pointOf(entity, layout, code);
}
inline Acad::ErrorStatus setWorldPoint(AcDbObject& entity, const SubclassLayout& layout, int code,
                                       const AcGePoint3d& point) {
  return setPoint(entity, layout, code, worldToPlane(normalOf(entity, layout)) * point);
}

/// Turns the plane and keeps the points of these codes where they are in the world.
/// Fails: eInvalidNormal (zero) too.
template <std::size_t N>
Acad::ErrorStatus turnPlane(AcDbObject& entity, const SubclassLayout& layout,
                            const AcGeVector3d& normal, const int (&pointCodes)[N]) {
  const Acad::ErrorStatus status = checkWritable(entity);
  if (status != Acad::eOk) {
    return status;
  }
  if (!(normal.length() > AcGeContext::gTol.equalVector())) {
    return Acad::eInvalidNormal;
  }
  const AcGeMatrix3d move = worldToPlane(normal.normal()) * planeToWorld(normalOf(entity, layout));
  return change(entity, [&](RecordEdit& edit) {
    const TagRange range = layout.in(edit.tags());
    for (const int code : pointCodes) {
      if (edit.tags().find(code, range) != TagList::kNone) {
        edit.setPoint(layout, code, move * edit.tags().point(code, range));
      }
    }
    edit.setVector(layout, code::kNormal, normal.normal(), AcGeVector3d::kZAxis);
  });
}

}  // namespace quoin::db
