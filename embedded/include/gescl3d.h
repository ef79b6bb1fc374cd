// AcGeScale3d: factors along the three axes; plain value.
#pragma once

#include "getol.h"

class AcGeScale3d {
 public:
  constexpr AcGeScale3d() = default;
  constexpr explicit AcGeScale3d(double factor) : sx(factor), sy(factor), sz(factor) {}
  constexpr AcGeScale3d(double x, double y, double z) : sx(x), sy(y), sz(z) {}

  constexpr AcGeScale3d& set(double x, double y, double z) { return *this = {x, y, z}; }
  double operator[](unsigned int i) const { return i == 0 ? sx : (i == 1 ? sy : sz); }
  /// Equal factors within equalVector, signs left aside.
  bool isProportional(const AcGeTol& tol = AcGeContext::gTol) const {
    const auto size = [](double v) { return v < 0.0 ? -v : v; };
    return size(size(sx) - size(sy)) <= tol.equalVector() &&
           size(size(sx) - size(sz)) <= tol.equalVector();
  }

  double sx = 1.0;
  double sy = 1.0;
  double sz = 1.0;
};
