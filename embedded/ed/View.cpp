#include "embedded/ed/View.h"

#include <cmath>

namespace quoin::ed {

AcGeMatrix3d View::toWorld() const {
  const AcGeMatrix3d plane = AcGeMatrix3d().setToPlaneToWorld(direction);
  const AcGeMatrix3d turn = AcGeMatrix3d().setToRotation(-twistRad, direction, target);
  return turn * AcGeMatrix3d().setToTranslation(target.asVector()) * plane;
}

bool View::isValid() const {
  return !direction.isZeroLength() && std::isfinite(direction.length()) && height > 0.0 &&
         std::isfinite(height) && std::isfinite(twistRad) && widthPixels > 0.0 &&
         heightPixels > 0.0;
}

AcGeMatrix3d UserSystem::toWorld() const {
  return AcGeMatrix3d().setCoordSystem(origin, xAxis, yAxis, xAxis.crossProduct(yAxis));
}

bool UserSystem::isValid() const {
  return xAxis.isUnitLength() && yAxis.isUnitLength() && xAxis.isPerpendicularTo(yAxis);
}

bool UserSystem::isWorld() const {
  return origin == AcGePoint3d::kOrigin && xAxis == AcGeVector3d::kXAxis &&
         yAxis == AcGeVector3d::kYAxis;
}

}  // namespace quoin::ed
