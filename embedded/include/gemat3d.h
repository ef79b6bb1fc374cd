// AcGeMatrix3d: an affine map of space as a 4 by 4 matrix, row major, acting on column
// vectors: p' = M p. Products apply the right-hand factor first.
#pragma once

#include <cmath>

#include "gepnt3d.h"

class AcGeLine3d;

class AcGeMatrix3d {
 public:
  constexpr AcGeMatrix3d() = default;  // the identity

  static const AcGeMatrix3d kIdentity;

  constexpr AcGeMatrix3d& setToIdentity() { return *this = AcGeMatrix3d(); }
  constexpr AcGeMatrix3d& setToTranslation(const AcGeVector3d& v) {
    setToIdentity();
    return setTranslation(v);
  }
  /// Rotation by `angle` radians about the axis through `center`, counter-clockwise seen
  /// against the axis. A zero axis gives the identity.
  AcGeMatrix3d& setToRotation(double angle, const AcGeVector3d& axis,
                              const AcGePoint3d& center = AcGePoint3d::kOrigin) {
    AcGeVector3d x = AcGeVector3d::kXAxis;
    AcGeVector3d y = AcGeVector3d::kYAxis;
    AcGeVector3d z = AcGeVector3d::kZAxis;
    x.rotateBy(angle, axis);
    y.rotateBy(angle, axis);
    z.rotateBy(angle, axis);
    return setLinearAbout(x, y, z, center);
  }
  AcGeMatrix3d& setToScaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin) {
    return setLinearAbout(AcGeVector3d::kXAxis * factor, AcGeVector3d::kYAxis * factor,
                          AcGeVector3d::kZAxis * factor, center);
  }
  /// Reflection in the plane through `point` with this normal; a zero normal gives the
  /// identity.
  AcGeMatrix3d& setToMirroring(const AcGePoint3d& point, const AcGeVector3d& normalToPlane) {
    AcGeVector3d x = AcGeVector3d::kXAxis;
    AcGeVector3d y = AcGeVector3d::kYAxis;
    AcGeVector3d z = AcGeVector3d::kZAxis;
    return setLinearAbout(x.mirror(normalToPlane), y.mirror(normalToPlane), z.mirror(normalToPlane),
                          point);
  }
  /// Point reflection.
  AcGeMatrix3d& setToMirroring(const AcGePoint3d& point) { return setToScaling(-1.0, point); }
  /// Reflection in a line: the half turn about it. A degenerate line gives the identity.
  inline AcGeMatrix3d& setToMirroring(const AcGeLine3d& line);  // in geline3d.h

  constexpr AcGeMatrix3d& setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& x,
                                         const AcGeVector3d& y, const AcGeVector3d& z) {
    setToIdentity();
    setColumn(0, x);
    setColumn(1, y);
    setColumn(2, z);
    return setTranslation(origin.asVector());
  }
  constexpr void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& x, AcGeVector3d& y,
                                AcGeVector3d& z) const {
    origin.set(entry[0][3], entry[1][3], entry[2][3]);
    x = column(0);
    y = column(1);
    z = column(2);
  }
  /// The object coordinate system of an extrusion direction, to world coordinates
  /// (DXF reference, "Arbitrary Axis Algorithm").
  AcGeMatrix3d& setToPlaneToWorld(const AcGeVector3d& normalToPlane) {
    const AcGeVector3d z = normalToPlane.normal();
    const AcGeVector3d x = z.perpVector();
    return setCoordSystem(AcGePoint3d::kOrigin, x, z.crossProduct(x).normal(), z);
  }
  /// The inverse of setToPlaneToWorld: its transpose, as the system is orthonormal.
  AcGeMatrix3d& setToWorldToPlane(const AcGeVector3d& normalToPlane) {
    const AcGeMatrix3d toWorld = AcGeMatrix3d().setToPlaneToWorld(normalToPlane);
    setToIdentity();
    for (int row = 0; row < 3; ++row) {
      for (int col = 0; col < 3; ++col) {
        entry[row][col] = toWorld.entry[col][row];
      }
    }
    return *this;
  }
  /// The map that takes one coordinate system to another. A first system whose axes lie in
  /// one plane has no such map and counts as the world's.
  AcGeMatrix3d& setToAlignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromX,
                                   const AcGeVector3d& fromY, const AcGeVector3d& fromZ,
                                   const AcGePoint3d& toOrigin, const AcGeVector3d& toX,
                                   const AcGeVector3d& toY, const AcGeVector3d& toZ) {
    const AcGeMatrix3d from = AcGeMatrix3d().setCoordSystem(fromOrigin, fromX, fromY, fromZ);
    const AcGeMatrix3d to = AcGeMatrix3d().setCoordSystem(toOrigin, toX, toY, toZ);
    return *this = to * from.inverse();
  }

  // The same maps as new values.
  static constexpr AcGeMatrix3d translation(const AcGeVector3d& v) {
    return AcGeMatrix3d().setToTranslation(v);
  }
  static AcGeMatrix3d rotation(double angle, const AcGeVector3d& axis,
                               const AcGePoint3d& center = AcGePoint3d::kOrigin) {
    return AcGeMatrix3d().setToRotation(angle, axis, center);
  }
  static AcGeMatrix3d scaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin) {
    return AcGeMatrix3d().setToScaling(factor, center);
  }
  static AcGeMatrix3d planeToWorld(const AcGeVector3d& normalToPlane) {
    return AcGeMatrix3d().setToPlaneToWorld(normalToPlane);
  }
  static AcGeMatrix3d worldToPlane(const AcGeVector3d& normalToPlane) {
    return AcGeMatrix3d().setToWorldToPlane(normalToPlane);
  }
  static AcGeMatrix3d alignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromX,
                                    const AcGeVector3d& fromY, const AcGeVector3d& fromZ,
                                    const AcGePoint3d& toOrigin, const AcGeVector3d& toX,
                                    const AcGeVector3d& toY, const AcGeVector3d& toZ) {
    return AcGeMatrix3d().setToAlignCoordSys(fromOrigin, fromX, fromY, fromZ, toOrigin, toX, toY,
                                             toZ);
  }

  constexpr AcGeMatrix3d operator*(const AcGeMatrix3d& right) const {
    AcGeMatrix3d product;
    for (int row = 0; row < 4; ++row) {
      for (int col = 0; col < 4; ++col) {
        double sum = 0.0;
        for (int k = 0; k < 4; ++k) {
          sum += entry[row][k] * right.entry[k][col];
        }
        product.entry[row][col] = sum;
      }
    }
    return product;
  }
  constexpr AcGeMatrix3d& setToProduct(const AcGeMatrix3d& a, const AcGeMatrix3d& b) {
    return *this = a * b;
  }
  constexpr AcGeMatrix3d& preMultBy(const AcGeMatrix3d& left) { return *this = left * *this; }
  constexpr AcGeMatrix3d& postMultBy(const AcGeMatrix3d& right) { return *this = *this * right; }

  constexpr AcGePoint3d operator*(const AcGePoint3d& p) const {
    return {entry[0][0] * p.x + entry[0][1] * p.y + entry[0][2] * p.z + entry[0][3],
            entry[1][0] * p.x + entry[1][1] * p.y + entry[1][2] * p.z + entry[1][3],
            entry[2][0] * p.x + entry[2][1] * p.y + entry[2][2] * p.z + entry[2][3]};
  }
  /// Vectors turn and stretch but do not move.
  constexpr AcGeVector3d operator*(const AcGeVector3d& v) const {
    return {entry[0][0] * v.x + entry[0][1] * v.y + entry[0][2] * v.z,
            entry[1][0] * v.x + entry[1][1] * v.y + entry[1][2] * v.z,
            entry[2][0] * v.x + entry[2][1] * v.y + entry[2][2] * v.z};
  }

  /// Determinant of the linear part.
  constexpr double det() const { return column(0).dotProduct(column(1).crossProduct(column(2))); }
  /// Whether the linear part flattens space: its volume factor, measured against the
  /// product of its columns' lengths, is within equalVector of zero.
  bool isSingular(const AcGeTol& tol = AcGeContext::gTol) const {
    const double lengths = column(0).length() * column(1).length() * column(2).length();
    return !(std::fabs(det()) > tol.equalVector() * lengths) || !std::isfinite(lengths);
  }
  /// The inverse; a singular matrix gives the identity (ask isSingular() first).
  AcGeMatrix3d inverse() const {
    const double volume = det();
    if (volume == 0.0 || !std::isfinite(volume)) {
      return AcGeMatrix3d();
    }
    const AcGeVector3d a = column(0);
    const AcGeVector3d b = column(1);
    const AcGeVector3d c = column(2);
    const AcGeVector3d rows[3] = {b.crossProduct(c) / volume, c.crossProduct(a) / volume,
                                  a.crossProduct(b) / volume};
    AcGeMatrix3d result;
    const AcGeVector3d move = translation();
    for (int row = 0; row < 3; ++row) {
      result.entry[row][0] = rows[row].x;
      result.entry[row][1] = rows[row].y;
      result.entry[row][2] = rows[row].z;
      result.entry[row][3] = -rows[row].dotProduct(move);
    }
    return result;
  }
  AcGeMatrix3d& invert() { return *this = inverse(); }

  /// Whether the map keeps shapes: columns perpendicular and equally long (mirroring allowed).
  bool isUniScaledOrtho(const AcGeTol& tol = AcGeContext::gTol) const {
    const double longest = column(0).length();
    return isScaledOrtho(tol) &&
           std::fabs(column(1).length() - longest) <= tol.equalVector() * longest &&
           std::fabs(column(2).length() - longest) <= tol.equalVector() * longest;
  }
  /// Whether the columns are perpendicular, of whatever lengths.
  bool isScaledOrtho(const AcGeTol& tol = AcGeContext::gTol) const {
    return column(0).isPerpendicularTo(column(1), tol) &&
           column(1).isPerpendicularTo(column(2), tol) &&
           column(2).isPerpendicularTo(column(0), tol);
  }
  /// Length of the longest column: the factor of a uniform scaling.
  double scale() const {
    return std::fmax(column(0).length(), std::fmax(column(1).length(), column(2).length()));
  }
  constexpr AcGeVector3d translation() const { return {entry[0][3], entry[1][3], entry[2][3]}; }
  constexpr AcGeMatrix3d& setTranslation(const AcGeVector3d& v) {
    entry[0][3] = v.x;
    entry[1][3] = v.y;
    entry[2][3] = v.z;
    return *this;
  }
  constexpr double operator()(unsigned int row, unsigned int col) const { return entry[row][col]; }
  constexpr double& operator()(unsigned int row, unsigned int col) { return entry[row][col]; }

  /// All entries equal within equalVector.
  bool isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol = AcGeContext::gTol) const {
    for (int row = 0; row < 4; ++row) {
      for (int col = 0; col < 4; ++col) {
        if (!(std::fabs(entry[row][col] - m.entry[row][col]) <= tol.equalVector())) {
          return false;
        }
      }
    }
    return true;
  }
  bool operator==(const AcGeMatrix3d& m) const { return isEqualTo(m); }
  bool operator!=(const AcGeMatrix3d& m) const { return !isEqualTo(m); }

  double entry[4][4] = {
      {1.0, 0.0, 0.0, 0.0}, {0.0, 1.0, 0.0, 0.0}, {0.0, 0.0, 1.0, 0.0}, {0.0, 0.0, 0.0, 1.0}};

 private:
  constexpr AcGeVector3d column(int col) const {
    return {entry[0][col], entry[1][col], entry[2][col]};
  }
  constexpr void setColumn(int col, const AcGeVector3d& v) {
    entry[0][col] = v.x;
    entry[1][col] = v.y;
    entry[2][col] = v.z;
  }
  /// The linear map with these columns, applied about `center`, which stays in place.
  constexpr AcGeMatrix3d& setLinearAbout(const AcGeVector3d& x, const AcGeVector3d& y,
                                         const AcGeVector3d& z, const AcGePoint3d& center) {
    setCoordSystem(AcGePoint3d::kOrigin, x, y, z);
    return setTranslation(center - *this * center);
  }
};

inline constexpr AcGeMatrix3d AcGeMatrix3d::kIdentity{};

inline AcGeVector3d& AcGeVector3d::transformBy(const AcGeMatrix3d& matrix) {
  return *this = matrix * *this;
}
inline AcGePoint3d& AcGePoint3d::transformBy(const AcGeMatrix3d& matrix) {
  return *this = matrix * *this;
}
