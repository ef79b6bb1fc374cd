// AcGeLinearEnt3d: straight curves. A line is unbounded (base point and direction as
// given), a segment ends at its two points and is determined by them: its direction is
// always their difference. Both keep the given doubles untouched; the direction is made a
// unit vector only on demand.
#pragma once

#include "gecurv3d.h"

class AcGeLine3d;

class AcGeLinearEnt3d : public AcGeCurve3d {
 public:
  /// Unit vector; a direction no longer than the global equalVector comes back as it is, so
  /// a degenerate entity gives the zero vector.
  AcGeVector3d direction() const { return m_along.normal(); }
  /// Base point of a line, start point of a segment.
  constexpr AcGePoint3d pointOnLine() const { return m_base; }
  /// Both points equal (or a zero direction), so that the entity has no direction.
  constexpr bool isDegenerate() const { return m_along.lengthSqrd() == 0.0; }

  bool isParallelTo(const AcGeLinearEnt3d& line, const AcGeTol& tol = AcGeContext::gTol) const {
    return m_along.isParallelTo(line.m_along, tol);
  }
  bool isPerpendicularTo(const AcGeLinearEnt3d& line,
                         const AcGeTol& tol = AcGeContext::gTol) const {
    return m_along.isPerpendicularTo(line.m_along, tol);
  }
  /// Parallel, and the base of `line` within equalPoint (inclusive) of this unbounded line.
  /// Measured between the two bases, so that a common distance from the origin costs nothing.
  bool isColinearTo(const AcGeLinearEnt3d& line, const AcGeTol& tol = AcGeContext::gTol) const {
    return isParallelTo(line, tol) && (line.m_base - m_base).crossProduct(m_along).length() <=
                                          tol.equalPoint() * m_along.length();
  }

  /// The point in which the two meet. Returns false and leaves `intPnt` untouched when they
  /// are parallel, collinear (also when they touch end to end), degenerate (no longer than
  /// equalVector), skew by more than equalPoint, or when the point lies beyond an end of a
  /// segment among them by more than equalPoint. The point is the one of this entity that is
  /// nearest to the other; a coordinate that either of the two holds constant comes back
  /// exactly. NaN or infinity in either gives false. Gaps are measured from the nearer end to
  /// the other's base: neither an offset from the origin that both share nor a segment's length
  /// costs accuracy there, while the point itself is rounded to the nearest doubles.
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
    if (!reaches(onThis, line, across, tol) || !line.reaches(onOther, *this, -across, tol)) {
      return false;
    }
    const AcGePoint3d meeting = m_base + m_along * onThis;
    intPnt.set(exactWhereConstant(meeting.x, m_base.x, m_along.x, line.m_base.x, line.m_along.x),
               exactWhereConstant(meeting.y, m_base.y, m_along.y, line.m_base.y, line.m_along.y),
               exactWhereConstant(meeting.z, m_base.z, m_along.z, line.m_base.z, line.m_along.z));
    return true;
  }

  inline void getLine(AcGeLine3d& line) const;  // in geline3d.h

  /// A segment becomes the one between the images of its ends, a line the one through the
  /// image of its base point along the image of its direction.
  AcGeLinearEnt3d& transformBy(const AcGeMatrix3d& matrix) {
    moveTo(matrix * m_base, matrix * m_along, matrix * m_end);
    return *this;
  }
  AcGeLinearEnt3d& translateBy(const AcGeVector3d& move) {
    moveTo(m_base + move, m_along, m_end + move);
    return *this;
  }
  AcGeLinearEnt3d& rotateBy(double angle, const AcGeVector3d& axis,
                            const AcGePoint3d& center = AcGePoint3d::kOrigin) {
    return transformBy(AcGeMatrix3d::rotation(angle, axis, center));
  }
  AcGeLinearEnt3d& scaleBy(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin) {
    return transformBy(AcGeMatrix3d::scaling(factor, center));
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
  constexpr const AcGePoint3d& lastPoint() const { return m_end; }

 private:
  friend class AcGeCurve3d;
  constexpr bool isBounded() const { return type() == AcGe::kLineSeg3d; }
  constexpr void moveTo(const AcGePoint3d& base, const AcGeVector3d& along,
                        const AcGePoint3d& end) {
    setAll(base, isBounded() ? end - base : along, end);
  }

  /// The point at parameter t, held within the ends of a segment. NaN gives the base, so does
  /// infinity on a line.
  AcGePoint3d pointAt(double t) const {
    if (!isBounded()) {
      return std::isfinite(t) ? m_base + m_along * t : m_base;
    }
    if (!(t > 0.0)) {
      return m_base;
    }
    if (t < 1.0) {
      return m_base + m_along * t;
    }
    // A direction too short for its square to be distinct from zero gives t = infinity.
    return isDegenerate() ? m_base : m_end;
  }
  AcGePoint3d foot(const AcGePoint3d& pnt) const {
    return pointAt((pnt - m_base).dotProduct(m_along) / m_along.lengthSqrd());
  }
  /// Whether parameter t, where this entity meets `line`, stays within the ends, give or take
  /// equalPoint. `across` is the cross product of the two directions. A gap is measured from the
  /// end that is nearer: t - 1 would lose the digits of a gap that is small beside the length.
  bool reaches(double t, const AcGeLinearEnt3d& line, const AcGeVector3d& across,
               const AcGeTol& tol) const {
    if (!isBounded()) {
      return std::isfinite(t);
    }
    const double gap = t > 0.5
                           ? (line.m_base - m_end).crossProduct(line.m_along).dotProduct(across) /
                                 across.lengthSqrd()
                           : -t;
    return gap * m_along.length() <= tol.equalPoint();
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
inline AcGePoint3d AcGeCurve3d::evalPoint(double param) const {
  const auto& linear = static_cast<const AcGeLinearEnt3d&>(*this);
  return linear.isBounded() && param == 1.0 ? linear.m_end : linear.m_base + linear.m_along * param;
}
inline bool AcGeCurve3d::hasStartPoint(AcGePoint3d& pnt) const {
  const auto& linear = static_cast<const AcGeLinearEnt3d&>(*this);
  if (!linear.isBounded()) {
    return false;
  }
  pnt = linear.m_base;
  return true;
}
inline bool AcGeCurve3d::hasEndPoint(AcGePoint3d& pnt) const {
  const auto& linear = static_cast<const AcGeLinearEnt3d&>(*this);
  if (!linear.isBounded()) {
    return false;
  }
  pnt = linear.m_end;
  return true;
}
