#include "embedded/db/geometry/PlaneMap.h"

#include <cmath>
#include <initializer_list>

namespace quoin::db {
namespace {

AcGeVector3d snapped(const AcGeVector3d& normal, const AcGeVector3d& before) {
  for (const AcGeVector3d& exact : {before, AcGeVector3d::kZAxis, -AcGeVector3d::kZAxis}) {
    if ((normal - exact).length() <= kSameDirection) {
      return exact;
    }
  }
  return normal;
}

}  // namespace

PlaneMap::PlaneMap(const AcGeVector3d& oldNormal, const AcGeMatrix3d& matrix) {
  const AcGeMatrix3d toWorld = AcGeMatrix3d().setToPlaneToWorld(oldNormal);
  AcGePoint3d origin;
  AcGeVector3d x;
  AcGeVector3d y;
  AcGeVector3d z;
  (matrix * toWorld).getCoordSystem(origin, x, y, z);
  normal = x.crossProduct(y);
  normal = normal / normal.length();
  if (normal.dotProduct(z) < 0.0) {
    normal = -normal;
  }
  normal = snapped(normal, oldNormal);
  map = AcGeMatrix3d().setToWorldToPlane(normal) * matrix * toWorld;
  // The plane goes to the plane; what is left of its slope is rounding.
  map.entry[2][0] = map.entry[2][1] = 0.0;
  const double a = map.entry[0][0];
  const double b = map.entry[0][1];
  const double c = map.entry[1][0];
  const double d = map.entry[1][1];
  isMirrored = a * d - b * c < 0.0;
  scale = std::hypot(a, c);
  const double sign = isMirrored ? -1.0 : 1.0;
  isSimilar = std::fabs(d - sign * a) <= kSameShape * scale &&
              std::fabs(b + sign * c) <= kSameShape * scale;
  heightScale = map.entry[2][2];
  keepsPerpendicular =
      std::hypot(map.entry[0][2], map.entry[1][2]) <= kSameShape * std::fabs(heightScale);
  turn = std::atan2(c, a);
}

double PlaneMap::angle(double before) const {
  if (!isMirrored && turn == 0.0) {
    return before;
  }
  const double after = std::fmod(isMirrored ? turn - before : turn + before, kFullTurn);
  const double wrapped = after < 0.0 ? after + kFullTurn : after;
  return wrapped >= kFullTurn ? 0.0 : wrapped;
}

}  // namespace quoin::db
