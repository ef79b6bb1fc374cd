// AcGeLineSeg3d: a segment between two points, which it keeps with their very bits. Equal
// end points give equal results, however the segment was made. Both points equal make a
// degenerate segment: it is measured as that point and crosses nothing.
#pragma once

#include "geline3d.h"

class AcGeLineSeg3d : public AcGeLinearEnt3d {
 public:
  /// From the origin to (1, 0, 0).
  constexpr AcGeLineSeg3d() : AcGeLineSeg3d(AcGePoint3d(), AcGePoint3d(1.0, 0.0, 0.0)) {}
  constexpr AcGeLineSeg3d(const AcGePoint3d& start, const AcGePoint3d& end)
      : AcGeLinearEnt3d(AcGe::kLineSeg3d, start, end - start, end) {}
  /// From `start` to `start + along`.
  constexpr AcGeLineSeg3d(const AcGePoint3d& start, const AcGeVector3d& along)
      : AcGeLineSeg3d(start, start + along) {}

  constexpr AcGeLineSeg3d& set(const AcGePoint3d& start, const AcGePoint3d& end) {
    setAll(start, end - start, end);
    return *this;
  }
  constexpr AcGeLineSeg3d& set(const AcGePoint3d& start, const AcGeVector3d& along) {
    return set(start, start + along);
  }

  constexpr AcGePoint3d startPoint() const { return pointOnLine(); }
  constexpr AcGePoint3d endPoint() const { return lastPoint(); }
  /// The same bits for the reversed segment.
  constexpr AcGePoint3d midPoint() const { return (startPoint() + endPoint().asVector()) * 0.5; }
  /// Distance of the two points.
  double length() const { return startPoint().distanceTo(endPoint()); }
};
