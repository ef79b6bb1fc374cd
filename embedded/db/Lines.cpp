// AcDbPoint and AcDbLine: their points are world coordinates.
#include <cmath>

#include "dbents.h"
#include "embedded/db/ObjectImpl.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbPoint, AcDbEntity, L"POINT", L"ObjectDBX Classes")
ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbLine, AcDbCurve, L"LINE", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {

constexpr int kStart = code::kLineStart;
constexpr int kEnd = code::kLineEnd;

/// The line as it was made, if it has no record yet.
const ObjectImpl::MadeLine* madeLine(const AcDbLine& line) {
  const ObjectImpl& impl = Access::of(line);
  return impl.madeLine && impl.state == OpenState::Free ? &*impl.madeLine : nullptr;
}

/// Whether a record would give the point back as it is, and whether it would change for it.
bool isPlain(const AcGePoint3d& point) {
  const auto isPlain = [](double value) {
    return std::isfinite(value) && (value != 0.0 || !std::signbit(value));
  };
  return isPlain(point.x) && isPlain(point.y) && isPlain(point.z);
}
bool isAtOrigin(const AcGePoint3d& point) {
  return point.x == 0.0 && point.y == 0.0 && point.z == 0.0;
}

}  // namespace

AcDbPoint::AcDbPoint() = default;

AcDbPoint::AcDbPoint(const AcGePoint3d& position) {
  setPosition(position);
}

AcGePoint3d AcDbPoint::position() const {
  return pointOf(*this, place::kPoint, kStart);
}

Acad::ErrorStatus AcDbPoint::setPosition(const AcGePoint3d& position) {
  return setPoint(*this, place::kPoint, kStart, position);
}

double AcDbPoint::thickness() const {
  return numberOf(*this, place::kPoint, code::kThickness);
}

Acad::ErrorStatus AcDbPoint::setThickness(double thickness) {
  return setNumber(*this, place::kPoint, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbPoint::normal() const {
  return normalOf(*this, place::kPoint);
}

Acad::ErrorStatus AcDbPoint::setNormal(const AcGeVector3d& normal) {
  return quoin::db::setNormal(*this, place::kPoint, normal);
}

AcDbLine::AcDbLine() = default;

AcDbLine::AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) : AcDbCurve(WithoutRecord()) {
  if (isPlain(start) && isPlain(end)) {
    m_madeStart = start;
    m_madeEnd = end;
    return;
  }
  setStartPoint(start);
  setEndPoint(end);
}

void AcDbLine::tellWhatItWasMadeOf(ObjectImpl& impl) const {
  impl.madeLine.emplace(ObjectImpl::MadeLine{m_madeStart, m_madeEnd});
  impl.isModified = !isAtOrigin(m_madeStart) || !isAtOrigin(m_madeEnd);
}

AcGePoint3d AcDbLine::startPoint() const {
  if (isAsMade()) {
    return m_madeStart;
  }
  if (const ObjectImpl::MadeLine* const made = madeLine(*this)) {
    return made->start;
  }
  return pointOf(*this, place::kLine, kStart);
}

AcGePoint3d AcDbLine::endPoint() const {
  if (isAsMade()) {
    return m_madeEnd;
  }
  if (const ObjectImpl::MadeLine* const made = madeLine(*this)) {
    return made->end;
  }
  return pointOf(*this, place::kLine, kEnd);
}

Acad::ErrorStatus AcDbLine::setStartPoint(const AcGePoint3d& point) {
  return setPoint(*this, place::kLine, kStart, point);
}

Acad::ErrorStatus AcDbLine::setEndPoint(const AcGePoint3d& point) {
  return setPoint(*this, place::kLine, kEnd, point);
}

double AcDbLine::thickness() const {
  return numberOf(*this, place::kLine, code::kThickness);
}

Acad::ErrorStatus AcDbLine::setThickness(double thickness) {
  return setNumber(*this, place::kLine, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbLine::normal() const {
  return normalOf(*this, place::kLine);
}

Acad::ErrorStatus AcDbLine::setNormal(const AcGeVector3d& normal) {
  return quoin::db::setNormal(*this, place::kLine, normal);
}

Acad::ErrorStatus AcDbLine::getStartPoint(AcGePoint3d& point) const {
  point = startPoint();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getEndPoint(AcGePoint3d& point) const {
  point = endPoint();
  return Acad::eOk;
}
