// AcDbPolyline: the light polyline, with its vertices in one record. It lies in a plane given
// by normal and elevation; 2D points are in the plane's own coordinate system, 3D points in
// world coordinates. Files before R14 have no such entity: appending one there returns
// eIllegalEntityType (use AcDb2dPolyline).
#pragma once

#include "dbmain.h"
#include "gepnt2d.h"

class HOST_API AcDbPolyline : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPolyline);
  /// kLine, kArc: a segment; kCoincident: its ends are one point; kPoint: the only vertex;
  /// kEmpty: the last vertex of an open polyline, or no such vertex.
  enum SegType { kLine, kArc, kCoincident, kPoint, kEmpty };

  AcDbPolyline();
  explicit AcDbPolyline(unsigned int vertexCount);

  // --- vertices -------------------------------------------------------------------------
  unsigned int numVerts() const;
  /// Fails: eInvalidIndex for this and all that take an index.
  Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint3d& point) const;
  Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint2d& point) const;
  Acad::ErrorStatus setPointAt(unsigned int index, const AcGePoint2d& point);
  /// Tangent of a quarter of the arc's angle to the next vertex, positive counter-clockwise.
  Acad::ErrorStatus getBulgeAt(unsigned int index, double& bulge) const;
  Acad::ErrorStatus setBulgeAt(unsigned int index, double bulge);
  Acad::ErrorStatus getWidthsAt(unsigned int index, double& startWidth, double& endWidth) const;
  Acad::ErrorStatus setWidthsAt(unsigned int index, double startWidth, double endWidth);
  /// Before the vertex at `index`; numVerts() appends. A negative width stands for the
  /// constant width.
  Acad::ErrorStatus addVertexAt(unsigned int index, const AcGePoint2d& point, double bulge = 0.0,
                                double startWidth = -1.0, double endWidth = -1.0);
  /// Fails: eDegenerateGeometry too, when only two vertices are left.
  Acad::ErrorStatus removeVertexAt(unsigned int index);
  SegType segType(unsigned int index) const;
  bool hasBulges() const;
  bool hasWidth() const;
  /// Whether all segments are straight.
  bool isOnlyLines() const { return !hasBulges(); }

  // --- the whole --------------------------------------------------------------------------
  Adesk::Boolean isClosed() const override;
  void setClosed(Adesk::Boolean closed);
  Acad::ErrorStatus getConstantWidth(double& width) const;
  Acad::ErrorStatus setConstantWidth(double width);
  double elevation() const;
  Acad::ErrorStatus setElevation(double elevation);
  double thickness() const;
  Acad::ErrorStatus setThickness(double thickness);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
  bool hasPlinegen() const;
  Acad::ErrorStatus setPlinegen(bool on);

  Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
  Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
};
