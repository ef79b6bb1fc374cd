// AcDbHatch: a filled area of a plane. New ones are filled solid; the boundaries of those that a
// file holds are kept as they stand. Files before R14 have no such entity: appending one there
// returns eIllegalEntityType.
#pragma once

#include "acarray.h"
#include "dbmain.h"
#include "gepnt2d.h"

class HOST_API AcDbHatch : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbHatch);
  enum HatchLoopType { kDefault = 0, kExternal = 1, kPolyline = 2, kOutermost = 16 };

  /// Filled solid, in the world's XY plane, without boundaries.
  AcDbHatch();

  /// Height of the hatch's plane above the origin, along its normal.
  double elevation() const;
  Acad::ErrorStatus setElevation(double elevation);

  int numLoops() const;
  /// Appends a closed boundary of straight segments, points of the hatch's plane, the first not
  /// repeated. What an odd number of boundaries holds is filled. `type`: kExternal or kOutermost,
  /// or none; it is a kPolyline in any case.
  /// Fails: eNotOpenForWrite, eInvalidInput (fewer than three points, coordinates that are not
  /// finite).
  Acad::ErrorStatus appendLoop(Adesk::Int32 type, const AcArray<AcGePoint2d>& vertices);
};
