#include "host/GeomDegree.h"

#include <numbers>

namespace {

constexpr double kDegreesPerRadian = 180.0 / std::numbers::pi;
constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;

}  // namespace

CGeomDegree::CGeomDegree(double angle, DegreeType type) : m_angle(angle), m_type(type) {}

CGeomDegree::CGeomDegree(double angle, int type)
    : CGeomDegree(angle, type == eAngleRadian ? eAngleRadian : eAngleDegree) {}

double CGeomDegree::GetAngleDegree() const {
  return m_type == eAngleRadian ? m_angle * kDegreesPerRadian : m_angle;
}

double CGeomDegree::GetAngleRadian() const {
  return m_type == eAngleRadian ? m_angle : m_angle * kRadiansPerDegree;
}
