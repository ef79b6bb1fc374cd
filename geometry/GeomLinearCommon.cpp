#include "GeomLinearCommon.h"

#include "DataConvert.h"
#include "GeomConst.h"

using GeomConst::kHalfPi;

namespace {

/// The acute angle between two lines and how it was reached.
struct AcuteAngle {
  double angle;
  bool clockwise;
};

/// The first of the four candidates (either direction of the second line, about +Z and then about
/// -Z) that is at most a right angle; the last one is taken untested.
AcuteAngle FindAcuteAngle(const AcGeLine3d& line1, const AcGeLine3d& line2) {
  const AcGeVector3d vec1 = line1.direction();
  const AcGeVector3d vec2 = line2.direction();
  const AcGeVector3d& vecUp = AcGeVector3d::kZAxis;
  const AcGeVector3d vecDown = -vecUp;

  double angle = vec1.angleTo(vec2, vecUp);
  if (kHalfPi >= angle) {
    return {angle, false};
  }
  angle = vec1.angleTo(-vec2, vecUp);
  if (kHalfPi >= angle) {
    return {angle, false};
  }
  angle = vec1.angleTo(vec2, vecDown);
  if (kHalfPi >= angle) {
    return {angle, true};
  }
  return {vec1.angleTo(-vec2, vecDown), true};
}

}  // namespace

CGeomLinearCommon& CGeomLinearCommon::operator=(const CGeomLinearCommon&) = default;

EPntPrjOnSegType CGeomLinearCommon::GetPntPrjOnSegType(const AcGePoint3d& pt,
                                                       const AcGePoint3d& ptSegStart,
                                                       const AcGePoint3d& ptSegEnd) {
  const AcGeVector3d vecSeg = ptSegEnd - ptSegStart;
  const AcGeVector3d vecToStart = ptSegStart - pt;
  const AcGeVector3d vecToEnd = ptSegEnd - pt;
  const double product = vecToStart.dotProduct(vecSeg) * vecToEnd.dotProduct(vecSeg);
  if (DataConvert::FloatEqual(product, 0.0, -1) || vecToStart.isPerpendicularTo(vecSeg)) {
    return ePrjOnEndpoint;
  }
  if (vecToEnd.isPerpendicularTo(vecSeg)) {
    return ePrjOnEndpoint;
  }
  if (product < 0) {
    return ePrjInside;
  }
  return product > 0 ? ePrjOutside : ePrjOnEndpoint;
}

double CGeomLinearCommon::GetLineChamferAngle(const AcGeLine3d& line1, const AcGeLine3d& line2) {
  const AcuteAngle acute = FindAcuteAngle(line1, line2);
  // An angle that no candidate made acute comes back as it is.
  return acute.clockwise && acute.angle <= kHalfPi ? -acute.angle : acute.angle;
}

double CGeomLinearCommon::GetLineIncludedAngle(const AcGeLine3d& line1, const AcGeLine3d& line2) {
  return FindAcuteAngle(line1, line2).angle;
}

bool CGeomLinearCommon::IsThreePointInSameLine(const AcGePoint3d& pt1, const AcGePoint3d& pt2,
                                               const AcGePoint3d& pt3) {
  const AcGeLine3d line(pt1, pt2);
  return line.closestPointTo(pt3).isEqualTo(pt3);
}
