// AcGeCurve3d: what all curves can do. The only curves so far are the linear ones, so the
// operations are defined with AcGeLinearEnt3d in gelent3d.h.
#pragma once

#include "geent3d.h"

class AcGeCurve3d : public AcGeEntity3d {
 public:
  /// The point of the curve nearest to `pnt`: with d the direction from base (start) A to end B
  /// and t = ((pnt - A) . d) / (d . d), on a segment A itself for t <= 0, B itself for t >= 1,
  /// otherwise A + t d. Where t is NaN (a degenerate curve, a NaN, infinities that
  /// cancel) it is A; so it is on a line where t is infinite.
  /// Error:  the rounding of A + t d, so about one unit in the last place of the coordinates:
  ///         1e-7 at a billion units out, except where d or A . d is free of rounding.
  /// The tolerance is part of the interface; the foot needs none.
  AcGePoint3d closestPointTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  /// The point of this curve nearest to `curve`; `pntOnOther` becomes its partner. Where
  /// several pairs are equally near (parallel lines) the first found is taken: this curve's
  /// start, its end, then the other's. distanceTo(curve) is the distance of the two points.
  AcGePoint3d closestPointTo(const AcGeCurve3d& curve, AcGePoint3d& pntOnOther,
                             const AcGeTol& tol = AcGeContext::gTol) const;
  /// |pnt - closestPointTo(pnt)|: NaN when a coordinate in play is NaN.
  double distanceTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  /// Least distance of the two curves, in space, degenerate and parallel ones included: the
  /// smallest among the distances from each end to the other curve and of the common
  /// perpendicular, whose feet are held within the curves. Curves that cross give 0 up to
  /// rounding. NaN only when every candidate is NaN.
  /// Error:  some roundings of the coordinates, however near to parallel the two run:
  ///         |result - exact| <= 4e-15 * largest coordinate.
  /// Laws:   (1) a.distanceTo(b) == b.distanceTo(a)   (2) reversing either changes it by no
  ///         more than the error.
  double distanceTo(const AcGeCurve3d& curve, const AcGeTol& tol = AcGeContext::gTol) const;
  /// Whether `pnt` lies within equalPoint of the curve.
  bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;

  /// The point at a parameter: A + param * d. Parameters 0 and 1 of a segment are its ends
  /// with their very bits; others run on beyond them.
  AcGePoint3d evalPoint(double param) const;
  /// Whether the curve starts (ends) somewhere, as segments do; `pnt` becomes that point,
  /// for a line it stays as it is.
  bool hasStartPoint(AcGePoint3d& pnt) const;
  bool hasEndPoint(AcGePoint3d& pnt) const;

 protected:
  constexpr explicit AcGeCurve3d(AcGe::EntityId type) : AcGeEntity3d(type) {}
};
