// A closed polygon in space: its intersection with another one through the host's regions, its
// vertices in the order of a direction, and its projection onto a line.
#pragma once

#include <vector>

#include "afxext.h"
#include "gepnt3d.h"

class AcDbRegion;
class AcGeLine3d;
class AcGeLineSeg3d;

class AFX_EXT_CLASS CGeomPolygon {
 public:
  CGeomPolygon();
  CGeomPolygon(const CGeomPolygon& other);
  CGeomPolygon& operator=(const CGeomPolygon& other);
  ~CGeomPolygon();

  /// Adds a vertex at the end; equal and collinear ones are taken as they come.
  void AppendVertex(const AcGePoint3d& pt);
  /// The vertices in boundary order; the last one joins the first, which is not repeated.
  const std::vector<AcGePoint3d>& GetPolygonVertextArray();

  /// Makes this polygon its intersection with `other` and tells whether that has a boundary of
  /// straight edges. The result starts at the end of the region's last edge.
  /// Fails: unchanged when either polygon encloses no area in a plane; empty when nothing is
  ///        left of it, and when more than one face is, also faces that share a corner: the
  ///        host takes those apart into regions, not into edges. Edges that do not chain, of a
  ///        face with a hole, would never return; two polygons leave no such face.
  CGeomPolygon& IntersectWith(const CGeomPolygon& other, bool& bIntersect);

  /// Appends the vertices to `vertices` and sorts all of it in ascending order along `dir`,
  /// which is taken with its length. Equal projections keep their order.
  void GetVArrayByDir(std::vector<AcGePoint3d>& vertices, const AcGeVector3d& dir);

  /// The stretch that the polygon covers when projected onto a line, in the line's direction.
  /// Fails: leaves `seg` as it is for fewer than two vertices.
  void GetPrjLineSeg(AcGeLineSeg3d& seg, const AcGeLine3d& line);

 protected:
  /// One region of the edges; null where they enclose none.
  /// Owns:  the region is the caller's to delete.
  void CreatePolygonRegion(AcDbRegion*& pRegion) const;

 private:
  std::vector<AcGePoint3d> m_vertexArray;
};
