// AcGeVector2d: a vector of the plane; plain value.
#pragma once

#include <cmath>

#include "gegbl.h"

class AcGeVector2d {
 public:
  constexpr AcGeVector2d() = default;
  constexpr AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}

  static const AcGeVector2d kIdentity;  // the zero vector
  static const AcGeVector2d kXAxis;
  static const AcGeVector2d kYAxis;

  constexpr AcGeVector2d& set(double xx, double yy) { return *this = {xx, yy}; }
  constexpr AcGeVector2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
  constexpr AcGeVector2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
  constexpr AcGeVector2d operator-() const { return {-x, -y}; }
  constexpr AcGeVector2d operator*(double s) const { return {x * s, y * s}; }
  constexpr AcGeVector2d operator/(double s) const { return {x / s, y / s}; }
  friend constexpr AcGeVector2d operator*(double s, const AcGeVector2d& v) { return v * s; }
  constexpr AcGeVector2d& operator+=(const AcGeVector2d& v) { return *this = *this + v; }
  constexpr AcGeVector2d& operator-=(const AcGeVector2d& v) { return *this = *this - v; }
  constexpr AcGeVector2d& operator*=(double s) { return *this = *this * s; }
  constexpr AcGeVector2d& operator/=(double s) { return *this = *this / s; }
  constexpr double dotProduct(const AcGeVector2d& v) const { return x * v.x + y * v.y; }
  constexpr double lengthSqrd() const { return dotProduct(*this); }
  double length() const { return std::sqrt(lengthSqrd()); }
  bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const {
    return length() <= tol.equalVector();
  }
  /// The unit vector; a zero vector (by tol) stays as it is.
  AcGeVector2d normal(const AcGeTol& tol = AcGeContext::gTol) const {
    const double len = length();
    return len > tol.equalVector() ? *this / len : *this;
  }
  AcGeVector2d& normalize(const AcGeTol& tol = AcGeContext::gTol) { return *this = normal(tol); }
  /// Angle from +X, counter-clockwise, [0, 2 pi); 0 for the zero vector.
  double angle() const { return x == 0.0 && y == 0.0 ? 0.0 : AcGe::wrapTurn(std::atan2(y, x)); }
  /// The vector turned left by a quarter.
  constexpr AcGeVector2d perpVector() const { return {-y, x}; }
  bool isEqualTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return (*this - v).length() <= tol.equalVector();
  }
  bool operator==(const AcGeVector2d& v) const { return isEqualTo(v); }
  bool operator!=(const AcGeVector2d& v) const { return !isEqualTo(v); }

  double x = 0.0;
  double y = 0.0;
};

inline constexpr AcGeVector2d AcGeVector2d::kIdentity{0.0, 0.0};
inline constexpr AcGeVector2d AcGeVector2d::kXAxis{1.0, 0.0};
inline constexpr AcGeVector2d AcGeVector2d::kYAxis{0.0, 1.0};
