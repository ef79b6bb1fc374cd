// The CAD product's angle value, which converts between radians and degrees.
#pragma once

#include "PlatformApi.h"

class PLATFORM_API CGeomDegree {
 public:
  /// The unit of the number that an angle is made from.
  enum DegreeType { eAngleDegree = 0, eAngleRadian = 1 };

  CGeomDegree(double angle, DegreeType type);
  /// As above with the plain number of the type: 1 is radians, anything else degrees.
  CGeomDegree(double angle, int type);

  /// Degrees. The sign is kept and nothing is wrapped: 3 pi gives 540.
  double GetAngleDegree() const;
  /// Radians, likewise.
  double GetAngleRadian() const;

 private:
  double m_angle;
  DegreeType m_type;
};
