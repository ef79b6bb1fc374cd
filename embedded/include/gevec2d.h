// AcGeVector2d: a vector of the plane; plain value.
#pragma once

#include <cmath>

#include "gegbl.h"

class AcGeVector2d {
 public:
  constexpr AcGeVector2d() = default;
  constexpr AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}

  constexpr AcGeVector2d& set(double xx, double yy) { return *this = {xx, yy}; }
  constexpr AcGeVector2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
  constexpr AcGeVector2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
  constexpr AcGeVector2d operator-() const { return {-x, -y}; }
  constexpr AcGeVector2d operator*(double s) const { return {x * s, y * s}; }
  constexpr AcGeVector2d operator/(double s) const { return {x / s, y / s}; }
  friend constexpr AcGeVector2d operator*(double s, const AcGeVector2d& v) { return v * s; }
  constexpr double dotProduct(const AcGeVector2d& v) const { return x * v.x + y * v.y; }
  double length() const { return std::sqrt(dotProduct(*this)); }
  /// Angle from +X, counter-clockwise, [0, 2 pi); 0 for the zero vector.
  double angle() const {
    const double a = std::atan2(y, x);
    const double turn = 6.283185307179586476925286766559;
    const double wrapped = a < 0.0 ? a + turn : a;
    return wrapped >= turn ? 0.0 : wrapped;
  }
  constexpr AcGeVector2d perpVector() const { return {-y, x}; }
  bool isEqualTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return (*this - v).length() <= tol.equalVector();
  }
  bool operator==(const AcGeVector2d& v) const { return isEqualTo(v); }

  double x = 0.0;
  double y = 0.0;
};
