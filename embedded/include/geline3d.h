// AcGeLine3d: an unbounded line through a point.
#pragma once

#include "gelent3d.h"

class AcGeLine3d : public AcGeLinearEnt3d {
 public:
  /// The X axis.
  constexpr AcGeLine3d() : AcGeLine3d(AcGePoint3d(), AcGeVector3d(1.0, 0.0, 0.0)) {}
  constexpr AcGeLine3d(const AcGePoint3d& pnt, const AcGeVector3d& vec)
      : AcGeLinearEnt3d(AcGe::kLine3d, pnt, vec, pnt + vec) {}
  /// Through two points, running from the first to the second. Equal points make a
  /// degenerate line: it crosses nothing, its closest point is its base point.
  constexpr AcGeLine3d(const AcGePoint3d& pnt1, const AcGePoint3d& pnt2)
      : AcGeLinearEnt3d(AcGe::kLine3d, pnt1, pnt2 - pnt1, pnt2) {}

  constexpr AcGeLine3d& set(const AcGePoint3d& pnt, const AcGeVector3d& vec) {
    setAll(pnt, vec, pnt + vec);
    return *this;
  }
  constexpr AcGeLine3d& set(const AcGePoint3d& pnt1, const AcGePoint3d& pnt2) {
    setAll(pnt1, pnt2 - pnt1, pnt2);
    return *this;
  }

  static const AcGeLine3d kXAxis;
  static const AcGeLine3d kYAxis;
  static const AcGeLine3d kZAxis;
};

inline constexpr AcGeLine3d AcGeLine3d::kXAxis{AcGePoint3d(), AcGeVector3d(1.0, 0.0, 0.0)};
inline constexpr AcGeLine3d AcGeLine3d::kYAxis{AcGePoint3d(), AcGeVector3d(0.0, 1.0, 0.0)};
inline constexpr AcGeLine3d AcGeLine3d::kZAxis{AcGePoint3d(), AcGeVector3d(0.0, 0.0, 1.0)};

inline void AcGeLinearEnt3d::getLine(AcGeLine3d& line) const {
  line.set(m_base, m_along);
}
inline AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGeLine3d& line) {
  constexpr double kHalfTurn = AcGe::kFullTurn / 2.0;
  return setToRotation(kHalfTurn, line.direction(), line.pointOnLine());
}
