// AcGeVector3d: a vector of space, a plain value without allocation. Comparisons take the
// global tolerance unless another is passed; in them a vector no longer than equalVector()
// counts as the zero vector, has no direction and is neither parallel, codirectional nor
// perpendicular to anything. A NaN component makes every comparison false. Angles, rotations
// and mirrorings take no tolerance: to them only a length of exactly 0 is no direction.
#pragma once

#include <cmath>

#include "gegbl.h"

class AcGeMatrix3d;

class AcGeVector3d {
 public:
  constexpr AcGeVector3d() = default;
  constexpr AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}

  static const AcGeVector3d kIdentity;  // the zero vector
  static const AcGeVector3d kXAxis;
  static const AcGeVector3d kYAxis;
  static const AcGeVector3d kZAxis;

  constexpr AcGeVector3d& set(double xx, double yy, double zz) { return *this = {xx, yy, zz}; }

  constexpr AcGeVector3d operator+(const AcGeVector3d& v) const {
    return {x + v.x, y + v.y, z + v.z};
  }
  constexpr AcGeVector3d operator-(const AcGeVector3d& v) const {
    return {x - v.x, y - v.y, z - v.z};
  }
  constexpr AcGeVector3d operator-() const { return {-x, -y, -z}; }
  constexpr AcGeVector3d operator*(double s) const { return {x * s, y * s, z * s}; }
  constexpr AcGeVector3d operator/(double s) const { return {x / s, y / s, z / s}; }
  friend constexpr AcGeVector3d operator*(double s, const AcGeVector3d& v) { return v * s; }
  constexpr AcGeVector3d& operator+=(const AcGeVector3d& v) { return *this = *this + v; }
  constexpr AcGeVector3d& operator-=(const AcGeVector3d& v) { return *this = *this - v; }
  constexpr AcGeVector3d& operator*=(double s) { return *this = *this * s; }
  constexpr AcGeVector3d& operator/=(double s) { return *this = *this / s; }
  constexpr AcGeVector3d& negate() { return *this = -*this; }
  double& operator[](unsigned int i) { return i == 0 ? x : (i == 1 ? y : z); }
  double operator[](unsigned int i) const { return i == 0 ? x : (i == 1 ? y : z); }

  constexpr double dotProduct(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
  constexpr AcGeVector3d crossProduct(const AcGeVector3d& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  constexpr double lengthSqrd() const { return dotProduct(*this); }
  /// sqrt of the sum of squares: exact up to rounding while the squares neither overflow
  /// nor vanish (lengths between about 1e-150 and 1e150).
  double length() const { return std::sqrt(lengthSqrd()); }
  bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const {
    return length() <= tol.equalVector();
  }
  bool isUnitLength(const AcGeTol& tol = AcGeContext::gTol) const {
    return std::fabs(length() - 1.0) <= tol.equalVector();
  }

  /// The unit vector; a zero vector (by tol) stays as it is.
  AcGeVector3d normal(const AcGeTol& tol = AcGeContext::gTol) const {
    const double len = length();
    return len > tol.equalVector() ? *this / len : *this;
  }
  AcGeVector3d& normalize(const AcGeTol& tol = AcGeContext::gTol) { return *this = normal(tol); }
  /// As above; `flag` becomes k0This when the vector stayed as it is, kOk otherwise.
  AcGeVector3d& normalize(const AcGeTol& tol, AcGe::ErrorCondition& flag) {
    flag = length() > tol.equalVector() ? AcGe::kOk : AcGe::k0This;
    return normalize(tol);
  }

  /// Some unit vector perpendicular to this one: the X axis that the arbitrary axis
  /// algorithm gives to this normal (DXF reference, "Arbitrary Axis Algorithm"). The zero
  /// vector gives the zero vector.
  AcGeVector3d perpVector() const {
    constexpr double kNearZAxis = 1.0 / 64.0;
    const AcGeVector3d n = normal();
    const bool nearZ = std::fabs(n.x) < kNearZAxis && std::fabs(n.y) < kNearZAxis;
    const AcGeVector3d across = nearZ ? AcGeVector3d(0.0, 1.0, 0.0).crossProduct(n)
                                      : AcGeVector3d(0.0, 0.0, 1.0).crossProduct(n);
    return across.normal();
  }

  /// The part of this vector that is normal to `planeNormal`: the whole vector for a zero
  /// normal.
  AcGeVector3d orthoProject(const AcGeVector3d& planeNormal) const {
    const double normalLength = planeNormal.length();
    if (!(normalLength > 0.0)) {
      return *this;
    }
    const AcGeVector3d n = planeNormal / normalLength;
    return *this - n * dotProduct(n);
  }

  /// Angle between the vectors in [0, pi]; 0 when either is the zero vector; NaN when a
  /// component is NaN (an infinite one gives NaN or some angle). Exact between the axes.
  double angleTo(const AcGeVector3d& v) const {
    return std::atan2(crossProduct(v).length(), withoutSignOfZero(dotProduct(v)));
  }
  /// Angle from this vector to `v` in [0, 2 pi), counter-clockwise seen against `ref`: the
  /// angle between their projections normal to `ref`; 0 when a projection is the zero
  /// vector. Below zero by less than rounding counts as 0, never as 2 pi. A zero `ref` gives
  /// angleTo(v).
  /// Laws: (1) a.angleTo(b, r) + b.angleTo(a, r) is 0 or 2 pi   (2) a.angleTo(b, -r) ==
  /// b.angleTo(a, r), both up to rounding.
  double angleTo(const AcGeVector3d& v, const AcGeVector3d& ref) const {
    const double refLength = ref.length();
    if (!(refLength > 0.0)) {
      return angleTo(v);
    }
    const AcGeVector3d n = ref / refLength;
    const AcGeVector3d from = orthoProject(ref);
    const AcGeVector3d to = v.orthoProject(ref);
    return AcGe::wrapTurn(
        std::atan2(n.dotProduct(from.crossProduct(to)), withoutSignOfZero(from.dotProduct(to))));
  }

  /// |this - v| <= equalVector.
  bool isEqualTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return (*this - v).length() <= tol.equalVector();
  }
  bool operator==(const AcGeVector3d& v) const { return isEqualTo(v); }
  bool operator!=(const AcGeVector3d& v) const { return !isEqualTo(v); }

  /// Unit vectors equal within equalVector.
  bool isCodirectionalTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return hasDirection(tol) && v.hasDirection(tol) && unit().isEqualTo(v.unit(), tol);
  }
  /// Unit vectors equal or opposite within equalVector.
  bool isParallelTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return hasDirection(tol) && v.hasDirection(tol) &&
           (unit().isEqualTo(v.unit(), tol) || unit().isEqualTo(-v.unit(), tol));
  }
  /// |dot product of the unit vectors| <= equalVector.
  bool isPerpendicularTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return hasDirection(tol) && v.hasDirection(tol) &&
           std::fabs(unit().dotProduct(v.unit())) <= tol.equalVector();
  }

  /// Turns the vector about `axis` by `angle` radians, counter-clockwise seen against the
  /// axis (Rodrigues' formula). The doubles nearest to quarter turns turn by exactly that: the
  /// noise of some 1e-16 that sin and cos leave there is dropped. A zero axis changes nothing.
  AcGeVector3d& rotateBy(double angle, const AcGeVector3d& axis) {
    const double axisLength = axis.length();
    if (!(axisLength > 0.0)) {
      return *this;
    }
    const AcGeVector3d n = axis / axisLength;
    const double c = withoutNoise(std::cos(angle), angle);
    const double s = withoutNoise(std::sin(angle), angle);
    const AcGeVector3d along = n * dotProduct(n);
    return *this = along + (*this - along) * c + n.crossProduct(*this) * s;
  }
  /// Reflects the vector in a plane with this normal. A zero normal changes nothing.
  AcGeVector3d& mirror(const AcGeVector3d& normalToPlane) {
    const double normalLength = normalToPlane.length();
    if (!(normalLength > 0.0)) {
      return *this;
    }
    const AcGeVector3d n = normalToPlane / normalLength;
    return *this -= n * (2.0 * dotProduct(n));
  }
  inline AcGeVector3d& transformBy(const AcGeMatrix3d& matrix);  // in gemat3d.h

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

 private:
  bool hasDirection(const AcGeTol& tol) const { return length() > tol.equalVector(); }
  AcGeVector3d unit() const { return *this / length(); }
  /// A dot product with the zero vector may be -0.0, which atan2 would take for a half turn.
  static constexpr double withoutSignOfZero(double value) { return value + 0.0; }
  /// Near a quarter turn doubles lie 2.2e-16 or more apart, so a sine or cosine below that
  /// belongs to the double that stands for the quarter turn itself.
  static double withoutNoise(double sineOrCosine, double angle) {
    constexpr double kNoise = 2.5e-16;
    constexpr double kOneRadian = 1.0;
    return std::fabs(sineOrCosine) < kNoise && std::fabs(angle) > kOneRadian ? 0.0 : sineOrCosine;
  }
};

inline constexpr AcGeVector3d AcGeVector3d::kIdentity{0.0, 0.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kXAxis{1.0, 0.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kYAxis{0.0, 1.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kZAxis{0.0, 0.0, 1.0};
