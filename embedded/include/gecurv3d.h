// AcGeCurve3d: what all curves answer. The only curves so far are the linear ones, so the
// operations are defined with AcGeLinearEnt3d in gelent3d.h.
#pragma once

#include "geent3d.h"

class AcGeCurve3d : public AcGeEntity3d {
 public:
  /// The point of the curve nearest to `pnt`. A degenerate line or segment answers its base
  /// (start) point, and so does one with a NaN or infinite coordinate wherever the foot
  /// cannot be computed. The tolerance is part of the interface; the exact foot needs none.
  AcGePoint3d closestPointTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  /// The point of this curve nearest to `curve`; `pntOnOther` becomes its partner. Where
  /// several pairs are equally near (parallel lines) the first found is taken: this curve's
  /// start, its end, then the other's.
  AcGePoint3d closestPointTo(const AcGeCurve3d& curve, AcGePoint3d& pntOnOther,
                             const AcGeTol& tol = AcGeContext::gTol) const;
  /// |pnt - closestPointTo(pnt)|: NaN when a coordinate in play is NaN.
  double distanceTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  /// Least distance of the two curves, in space, degenerate and parallel ones included:
  /// the smallest among the distances from each end to the other curve and, where both feet
  /// lie inside, of the common perpendicular. Curves that cross give 0 up to rounding. NaN
  /// only when every candidate is NaN.
  double distanceTo(const AcGeCurve3d& curve, const AcGeTol& tol = AcGeContext::gTol) const;
  /// Whether `pnt` lies within equalPoint of the curve.
  bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;

 protected:
  constexpr explicit AcGeCurve3d(AcGe::EntityId type) : AcGeEntity3d(type) {}
};
