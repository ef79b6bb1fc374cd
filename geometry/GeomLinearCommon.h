// Static helpers on points and lines of the XY plane, with Z as the normal. Angles are in
// radians, tolerances the global ones.
#pragma once

#include "afxext.h"
#include "geline3d.h"

/// Where a point's projection falls on a segment.
enum EPntPrjOnSegType {
  ePrjInside = 0,      // strictly between the ends
  ePrjOnEndpoint = 1,  // on an end
  ePrjOutside = 2      // beyond an end
};

class AFX_EXT_CLASS CGeomLinearCommon {
 public:
  CGeomLinearCommon& operator=(const CGeomLinearCommon& other);

  /// Where the projection of `pt` falls on the segment. The tests for the ends come first, so
  /// that a projection within tolerance of an end is on it, never inside or outside. Every
  /// point is on the end of a segment of zero length.
  static EPntPrjOnSegType GetPntPrjOnSegType(const AcGePoint3d& pt, const AcGePoint3d& ptSegStart,
                                             const AcGePoint3d& ptSegEnd);
  /// Signed acute angle between two lines in [-pi/2, pi/2]: positive when the second is
  /// reached from the first by turning counter-clockwise.
  static double GetLineChamferAngle(const AcGeLine3d& line1, const AcGeLine3d& line2);
  /// Unsigned acute angle between two undirected lines in [0, pi/2].
  static double GetLineIncludedAngle(const AcGeLine3d& line1, const AcGeLine3d& line2);
  /// Whether `pt3` lies on the unbounded line through the other two, within the point
  /// tolerance.
  static bool IsThreePointInSameLine(const AcGePoint3d& pt1, const AcGePoint3d& pt2,
                                     const AcGePoint3d& pt3);
};
