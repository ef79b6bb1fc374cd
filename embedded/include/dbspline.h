// AcDbSpline: a rational B-spline, or the points that one is to be laid through. Splines are
// read here; a new one cannot be made. Files before R13 have none.
#pragma once

#include "dbmain.h"

class HOST_API AcDbSpline : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSpline);
  AcDbSpline();

  int degree() const;
  Adesk::Boolean isRational() const;
  int numControlPoints() const;
  /// Fails: eInvalidIndex, for fit points too.
  Acad::ErrorStatus getControlPointAt(int index, AcGePoint3d& point) const;
  /// 1 where the spline has no weights.
  double weightAt(int index) const;
  int numFitPoints() const;
  Acad::ErrorStatus getFitPointAt(int index, AcGePoint3d& point) const;

  /// Fails: eNotApplicable (it has fit points only), eDegenerateGeometry (its knots do not go
  /// with its control points).
  Acad::ErrorStatus getStartParam(double& param) const;
  Acad::ErrorStatus getEndParam(double& param) const;
  /// A parameter outside is taken as the nearest end.
  Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const;
  Adesk::Boolean isClosed() const override;
  Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
  Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
};
