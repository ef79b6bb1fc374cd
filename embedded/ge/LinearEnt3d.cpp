#include <cmath>
#include <limits>

#include "gelent3d.h"

AcGeTol AcGeContext::gTol;

AcGeLinearEnt3d::Nearest AcGeLinearEnt3d::nearestTo(const AcGeLinearEnt3d& other) const {
  Nearest nearest{m_base, other.m_base, std::numeric_limits<double>::quiet_NaN()};
  const auto offer = [&nearest](const AcGePoint3d& onThis, const AcGePoint3d& onOther) {
    const double distance = onThis.distanceTo(onOther);
    // The first number beats NaN, later ones only win by being smaller.
    if (distance < nearest.distance || (std::isnan(nearest.distance) && !std::isnan(distance))) {
      nearest = {onThis, onOther, distance};
    }
  };

  // The end points: where no common perpendicular falls inside both, one of these is it.
  // An unbounded line takes part with its base point, which is right when the two are
  // parallel and harmless otherwise.
  offer(m_base, other.foot(m_base));
  if (isBounded()) {
    offer(m_end, other.foot(m_end));
  }
  offer(foot(other.m_base), other.m_base);
  if (other.isBounded()) {
    offer(foot(other.m_end), other.m_end);
  }

  // The common perpendicular of the unbounded lines, held within the ends. Where the two are
  // nearly parallel, rounding moves each of its feet far along the line, but not each by the
  // same; so either foot is paired with its own nearest point instead of with the other.
  const AcGeVector3d across = m_along.crossProduct(other.m_along);
  const double acrossSqrd = across.lengthSqrd();
  const AcGeVector3d apart = other.m_base - m_base;
  const double onThis = apart.crossProduct(other.m_along).dotProduct(across) / acrossSqrd;
  const double onOther = apart.crossProduct(m_along).dotProduct(across) / acrossSqrd;
  const AcGePoint3d perpendicularOnThis = pointAt(onThis);
  const AcGePoint3d partnerOnOther = other.foot(perpendicularOnThis);
  offer(perpendicularOnThis, partnerOnOther);
  offer(foot(partnerOnOther), partnerOnOther);
  const AcGePoint3d perpendicularOnOther = other.pointAt(onOther);
  const AcGePoint3d partnerOnThis = foot(perpendicularOnOther);
  offer(partnerOnThis, perpendicularOnOther);
  offer(partnerOnThis, other.foot(partnerOnThis));
  return nearest;
}
