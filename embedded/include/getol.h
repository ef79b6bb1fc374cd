// AcGeTol: the pair of tolerances that every geometric comparison takes.
#pragma once

#include "adesk.h"

class AcGeTol {
 public:
  constexpr AcGeTol() = default;

  /// Points this close (inclusive) are one point; drawing units.
  constexpr double equalPoint() const { return m_equalPoint; }
  /// Vectors whose difference is this short (inclusive) are one vector; also the length up
  /// to which a vector counts as zero.
  constexpr double equalVector() const { return m_equalVector; }
  constexpr void setEqualPoint(double value) { m_equalPoint = value; }
  constexpr void setEqualVector(double value) { m_equalVector = value; }

 private:
  double m_equalPoint = 1.0e-10;
  double m_equalVector = 1.0e-10;
};

/// The global context: the tolerance that is meant where none is passed.
struct HOST_API AcGeContext {
  static AcGeTol gTol;
};
