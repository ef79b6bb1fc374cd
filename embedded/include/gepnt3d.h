// AcGePoint3d: a point of space, a plain value without allocation.
#pragma once

#include "gevec3d.h"

class AcGePoint3d {
 public:
  constexpr AcGePoint3d() = default;
  constexpr AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}

  static const AcGePoint3d kOrigin;

  constexpr AcGePoint3d& set(double xx, double yy, double zz) { return *this = {xx, yy, zz}; }

  constexpr AcGePoint3d operator+(const AcGeVector3d& v) const {
    return {x + v.x, y + v.y, z + v.z};
  }
  constexpr AcGePoint3d operator-(const AcGeVector3d& v) const {
    return {x - v.x, y - v.y, z - v.z};
  }
  constexpr AcGeVector3d operator-(const AcGePoint3d& p) const {
    return {x - p.x, y - p.y, z - p.z};
  }
  constexpr AcGePoint3d operator*(double s) const { return {x * s, y * s, z * s}; }
  constexpr AcGePoint3d operator/(double s) const { return {x / s, y / s, z / s}; }
  friend constexpr AcGePoint3d operator*(double s, const AcGePoint3d& p) { return p * s; }
  constexpr AcGePoint3d& operator+=(const AcGeVector3d& v) { return *this = *this + v; }
  constexpr AcGePoint3d& operator-=(const AcGeVector3d& v) { return *this = *this - v; }
  constexpr AcGePoint3d& operator*=(double s) { return *this = *this * s; }
  constexpr AcGePoint3d& operator/=(double s) { return *this = *this / s; }
  double& operator[](unsigned int i) { return i == 0 ? x : (i == 1 ? y : z); }
  double operator[](unsigned int i) const { return i == 0 ? x : (i == 1 ? y : z); }

  constexpr AcGeVector3d asVector() const { return {x, y, z}; }
  double distanceTo(const AcGePoint3d& p) const { return (*this - p).length(); }

  /// Distance <= equalPoint (inclusive); false when a coordinate is NaN or infinite.
  bool isEqualTo(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  bool operator==(const AcGePoint3d& p) const { return isEqualTo(p); }
  bool operator!=(const AcGePoint3d& p) const { return !isEqualTo(p); }

  AcGePoint3d& rotateBy(double angle, const AcGeVector3d& axis,
                        const AcGePoint3d& center = kOrigin) {
    return *this = center + (*this - center).rotateBy(angle, axis);
  }
  AcGePoint3d& scaleBy(double factor, const AcGePoint3d& center = kOrigin) {
    return *this = center + (*this - center) * factor;
  }
  inline AcGePoint3d& transformBy(const AcGeMatrix3d& matrix);  // in gemat3d.h

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

inline constexpr AcGePoint3d AcGePoint3d::kOrigin{0.0, 0.0, 0.0};
