// AcGeLineSeg3d: a segment between two points, which it keeps with their very bits.
#pragma once

#include "geline3d.h"

class AcGeLineSeg3d : public AcGeLinearEnt3d {
 public:
  /// From the origin to (1, 0, 0).
  constexpr AcGeLineSeg3d() : AcGeLineSeg3d(AcGePoint3d(), AcGePoint3d(1.0, 0.0, 0.0)) {}
  constexpr AcGeLineSeg3d(const AcGePoint3d& start, const AcGePoint3d& end)
      : AcGeLinearEnt3d(AcGe::kLineSeg3d, start, end - start, end) {}
  constexpr AcGeLineSeg3d(const AcGePoint3d& start, const AcGeVector3d& along)
      : AcGeLinearEnt3d(AcGe::kLineSeg3d, start, along, start + along) {}

  constexpr AcGeLineSeg3d& set(const AcGePoint3d& start, const AcGePoint3d& end) {
    setAll(start, end - start, end);
    return *this;
  }
  constexpr AcGeLineSeg3d& set(const AcGePoint3d& start, const AcGeVector3d& along) {
    setAll(start, along, start + along);
    return *this;
  }

  AcGePoint3d startPoint() const { return pointOnLine(); }
  AcGePoint3d endPoint() const { return lastPoint(); }
  AcGePoint3d midPoint() const { return startPoint() + (endPoint() - startPoint()) * 0.5; }
  double length() const { return startPoint().distanceTo(endPoint()); }
};
