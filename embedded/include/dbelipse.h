// AcDbEllipse: an ellipse or an arc of one, all in world coordinates. Files before R13 have
// none. Parameters are angles of the circle that the ellipse is an image of: 0 at the end of the
// major axis, a quarter turn at that of the minor axis.
#pragma once

#include "dbmain.h"

class HOST_API AcDbEllipse : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbEllipse);
  AcDbEllipse();
  AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
              const AcGeVector3d& majorAxis, double radiusRatio, double startParam = 0.0,
              double endParam = 6.28318530717958647692);

  AcGePoint3d center() const;
  Acad::ErrorStatus setCenter(const AcGePoint3d& center);
  /// From the centre to the end of the longer axis, and of the shorter one.
  AcGeVector3d majorAxis() const;
  AcGeVector3d minorAxis() const;
  /// Of the shorter to the longer axis.
  double radiusRatio() const;
  AcGeVector3d normal() const;
  /// Fails: eNotOpenForWrite, eInvalidInput (no axis, a ratio not above 0 or above 1, a number
  /// that is not finite), eInvalidNormal (not across the axis).
  Acad::ErrorStatus set(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                        const AcGeVector3d& majorAxis, double radiusRatio, double startParam = 0.0,
                        double endParam = 6.28318530717958647692);

  Acad::ErrorStatus getStartParam(double& param) const;
  /// Above the start's, by a full turn for a whole ellipse.
  Acad::ErrorStatus getEndParam(double& param) const;
  Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const;
  Adesk::Boolean isClosed() const override;
  Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
  Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
};
