// What a region consists of, in coordinates of its plane: polygons with holes, computed with by
// GEOS.
#pragma once

#include <memory>
#include <vector>

#include "dbmain.h"

namespace quoin::db {

/// A plane with coordinates. Horizontal planes have the world's x and y, so that coordinates
/// come through bit for bit.
class RegionPlane {
 public:
  /// The plane that the loop runs in; its normal points to where the loop is counter-clockwise,
  /// except for horizontal planes, where it points up.
  /// Fails: eDegenerateGeometry (all on one line), eNonCoplanarGeometry.
  Acad::ErrorStatus set(const std::vector<AcGePoint3d>& loop);

  const AcGeVector3d& normal() const { return m_normal; }
  AcGePoint3d toPlane(const AcGePoint3d& world) const;
  AcGePoint3d toWorld(double x, double y) const;
  /// Whether the other plane is this one within the tolerance of `reach` around its origin.
  bool isSame(const RegionPlane& other, double reach) const;

 private:
  AcGeVector3d m_normal = AcGeVector3d::kZAxis;
  AcGePoint3d m_origin;
  bool m_isHorizontal = true;
  AcGeMatrix3d m_toWorld;
  AcGeMatrix3d m_toPlane;
};

/// The corners of one boundary in order, the first not repeated.
using RegionLoop = std::vector<AcGePoint3d>;

/// One face: its outer boundary, then its holes.
using RegionFace = std::vector<RegionLoop>;

class RegionShape {
 public:
  /// Fails: eSelfIntersecting, eDegenerateGeometry, eNonCoplanarGeometry; null then.
  static Acad::ErrorStatus make(const RegionLoop& loop, std::unique_ptr<RegionShape>& shape);
  ~RegionShape();
  std::unique_ptr<RegionShape> copy() const;

  /// The result takes this shape's place; null where nothing is left.
  /// Fails: eNonCoplanarGeometry, eGeneralModelingFailure; null then.
  Acad::ErrorStatus combined(const RegionShape& other, AcDb::BoolOperType operation,
                             std::unique_ptr<RegionShape>& result) const;

  /// The faces in world coordinates, in the order that explode() promises.
  std::vector<RegionFace> faces() const;
  /// One of the faces as a region of its own.
  std::unique_ptr<RegionShape> shapeOf(const RegionFace& face) const;
  double area() const;
  const AcGeVector3d& normal() const { return m_plane.normal(); }
  /// Fails: eDegenerateGeometry, eGeneralModelingFailure; the shape stays as it is.
  Acad::ErrorStatus transformBy(const AcGeMatrix3d& matrix);

 private:
  struct Impl;
  RegionShape();

  RegionPlane m_plane;
  std::unique_ptr<Impl> m_impl;
};

}  // namespace quoin::db
