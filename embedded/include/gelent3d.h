// AcGeLinearEnt3d: straight curves. A line is unbounded (base point and direction as
// given), a segment ends at its two points. Both keep the given doubles untouched; the
// direction is made a unit vector only when asked for.
#pragma once

#include "gecurv3d.h"

class AcGeLine3d;

class AcGeLinearEnt3d : public AcGeCurve3d {
 public:
  /// Unit vector; the zero vector for a degenerate entity.
  AcGeVector3d direction() const { return m_along.normal(); }
  /// Base point of a line, start point of a segment.
  AcGePoint3d pointOnLine() const { return m_base; }
  /// Both points equal (or a zero direction), so that the entity has no direction.
  bool isDegenerate() const { return m_along.lengthSqrd() == 0.0; }

  bool isParallelTo(const AcGeLinearEnt3d& line, const AcGeTol& tol = AcGeContext::gTol) const {
    return m_along.isParallelTo(line.m_along, tol);
  }
  bool isPerpendicularTo(const AcGeLinearEnt3d& line,
                         const AcGeTol& tol = AcGeContext::gTol) const {
    return m_along.isPerpendicularTo(line.m_along, tol);
  }
  /// Parallel and with less than equalPoint between the unbounded lines.
  bool isColinearTo(const AcGeLinearEnt3d& line, const AcGeTol& tol = AcGeContext::gTol) const {
    return isParallelTo(line, tol) && unboundedFoot(line.m_base).isEqualTo(line.m_base, tol);
  }

  /// The point in which the two meet. Answers false and leaves `intPnt` untouched when they
  /// are parallel, collinear (also when they touch end to end), degenerate, skew by more
  /// than equalPoint, or when the point lies beyond an end of a segment among them by more
  /// than equalPoint. The point lies on this entity; a coordinate that either of the two
  /// holds constant comes back exactly. NaN in either gives false.
  bool intersectWith(const AcGeLinearEnt3d& line, AcGePoint3d& intPnt,
                     const AcGeTol& tol = AcGeContext::gTol) const {
    if (!(m_along.length() > tol.equalVector()) || !(line.m_along.length() > tol.equalVector()) ||
        isParallelTo(line, tol)) {
      return false;
    }
    const AcGeVector3d across = m_along.crossProduct(line.m_along);
    const double acrossSqrd = across.lengthSqrd();
    const AcGeVector3d apart = line.m_base - m_base;
    if (!(std::fabs(apart.dotProduct(across)) <= tol.equalPoint() * std::sqrt(acrossSqrd))) {
      return false;
    }
    const double onThis = apart.crossProduct(line.m_along).dotProduct(across) / acrossSqrd;
    const double onOther = apart.crossProduct(m_along).dotProduct(across) / acrossSqrd;
    if (!reaches(onThis, tol) || !line.reaches(onOther, tol)) {
      return false;
    }
    const AcGePoint3d meeting = m_base + m_along * onThis;
    intPnt.set(exactWhereConstant(meeting.x, m_base.x, m_along.x, line.m_base.x, line.m_along.x),
               exactWhereConstant(meeting.y, m_base.y, m_along.y, line.m_base.y, line.m_along.y),
               exactWhereConstant(meeting.z, m_base.z, m_along.z, line.m_base.z, line.m_along.z));
    return true;
  }

  inline void getLine(AcGeLine3d& line) const;  // in geline3d.h

  AcGeLinearEnt3d& transformBy(const AcGeMatrix3d& matrix) {
    const AcGePoint3d end = matrix * m_end;
    m_along = matrix * m_along;
    m_base = matrix * m_base;
    m_end = end;
    return *this;
  }
  AcGeLinearEnt3d& translateBy(const AcGeVector3d& move) {
    m_base += move;
    m_end += move;
    return *this;
  }

 protected:
  constexpr AcGeLinearEnt3d(AcGe::EntityId type, const AcGePoint3d& base, const AcGeVector3d& along,
                            const AcGePoint3d& end)
      : AcGeCurve3d(type), m_base(base), m_along(along), m_end(end) {}
  constexpr void setAll(const AcGePoint3d& base, const AcGeVector3d& along,
                        const AcGePoint3d& end) {
    m_base = base;
    m_along = along;
    m_end = end;
  }
  const AcGePoint3d& lastPoint() const { return m_end; }

 private:
  friend class AcGeCurve3d;
  bool isBounded() const { return type() == AcGe::kLineSeg3d; }

  /// Closest point: parameter t = (pnt - base) . d / d . d; on a segment t <= 0 (and a t
  /// that is no number) gives the start and t >= 1 the end, with their very bits.
  AcGePoint3d foot(const AcGePoint3d& pnt) const {
    const double t = (pnt - m_base).dotProduct(m_along) / m_along.lengthSqrd();
    if (isBounded()) {
      if (!(t > 0.0)) {
        return m_base;
      }
      if (t >= 1.0) {
        return m_end;
      }
    } else if (!std::isfinite(t)) {
      return m_base;
    }
    return m_base + m_along * t;
  }
  AcGePoint3d unboundedFoot(const AcGePoint3d& pnt) const {
    const double t = (pnt - m_base).dotProduct(m_along) / m_along.lengthSqrd();
    return std::isfinite(t) ? m_base + m_along * t : m_base;
  }
  /// Whether parameter t stays within the ends, give or take equalPoint.
  bool reaches(double t, const AcGeTol& tol) const {
    if (!isBounded()) {
      return std::isfinite(t);
    }
    const double len = m_along.length();
    return -t * len <= tol.equalPoint() && (t - 1.0) * len <= tol.equalPoint();
  }
  static double exactWhereConstant(double computed, double ownBase, double ownAlong,
                                   double otherBase, double otherAlong) {
    if (ownAlong == 0.0) {
      return ownBase;
    }
    return otherAlong == 0.0 ? otherBase : computed;
  }
  struct Nearest {
    AcGePoint3d onThis;
    AcGePoint3d onOther;
    double distance;
  };
  HOST_API Nearest nearestTo(const AcGeLinearEnt3d& other) const;

  AcGePoint3d m_base;
  AcGeVector3d m_along;  // not normalised: a segment's end minus its start
  AcGePoint3d m_end;     // of a segment; a line keeps base + direction here
};

inline AcGePoint3d AcGeCurve3d::closestPointTo(const AcGePoint3d& pnt, const AcGeTol&) const {
  return static_cast<const AcGeLinearEnt3d&>(*this).foot(pnt);
}
inline double AcGeCurve3d::distanceTo(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  return pnt.distanceTo(closestPointTo(pnt, tol));
}
inline bool AcGeCurve3d::isOn(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  return distanceTo(pnt, tol) <= tol.equalPoint();
}
inline AcGePoint3d AcGeCurve3d::closestPointTo(const AcGeCurve3d& curve, AcGePoint3d& pntOnOther,
                                               const AcGeTol&) const {
  const auto nearest = static_cast<const AcGeLinearEnt3d&>(*this).nearestTo(
      static_cast<const AcGeLinearEnt3d&>(curve));
  pntOnOther = nearest.onOther;
  return nearest.onThis;
}
inline double AcGeCurve3d::distanceTo(const AcGeCurve3d& curve, const AcGeTol&) const {
  return static_cast<const AcGeLinearEnt3d&>(*this)
      .nearestTo(static_cast<const AcGeLinearEnt3d&>(curve))
      .distance;
}
