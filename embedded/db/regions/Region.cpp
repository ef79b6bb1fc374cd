// AcDbRegion: curves to loops, set operations, and back to lines.
#include "dbregion.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <optional>

#include "dbents.h"
#include "dbpl.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/regions/RegionShape.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbRegion, AcDbEntity)

using namespace quoin::db;

namespace {

/// Arcs are chords of this angle at most, in radians.
constexpr double kChordAngle = 2.0 * std::numbers::pi / 256.0;

/// A curve as points; closed ones come back to their first point. Most are lines, which have no
/// points between.
struct CurvePoints {
  AcGePoint3d front;
  std::vector<AcGePoint3d> between;
  AcGePoint3d back;

  CurvePoints() = default;
  CurvePoints(const AcGePoint3d& start, const AcGePoint3d& end) : front(start), back(end) {}
  /// Of at least two points.
  explicit CurvePoints(std::vector<AcGePoint3d> points)
      : front(points.front()), between(std::move(points)), back(between.back()) {
    between.erase(between.begin());
    between.pop_back();
  }
  void turnRound() {
    std::swap(front, back);
    std::reverse(between.begin(), between.end());
  }
};
using Points = std::vector<AcGePoint3d>;

/// How many chords stand for an arc; none for an angle that is NaN.
int chordsOf(double sweep) {
  const double chords = std::ceil(std::fabs(sweep) / kChordAngle);
  return std::isfinite(chords) ? static_cast<int>(chords) : 0;
}

void appendArc(Points& points, const AcGePoint3d& center, const AcGeVector3d& normal, double radius,
               double startAngle, double sweep) {
  const AcGeMatrix3d plane = AcGeMatrix3d().setToPlaneToWorld(normal);
  const int chords = std::max(1, chordsOf(sweep));
  for (int i = 0; i <= chords; ++i) {
    const double angle = startAngle + sweep * i / chords;
    points.push_back(center +
                     plane * AcGeVector3d(radius * std::cos(angle), radius * std::sin(angle), 0.0));
  }
}

void appendPolyline(Points& points, const AcDbPolyline& polyline) {
  const AcGeMatrix3d plane = AcGeMatrix3d().setToPlaneToWorld(polyline.normal());
  const auto place = [&](double x, double y) {
    return AcGePoint3d() + plane * AcGeVector3d(x, y, polyline.elevation());
  };
  const unsigned int count = polyline.numVerts();
  const unsigned int segments = polyline.isClosed() || count == 0 ? count : count - 1;
  for (unsigned int i = 0; i < segments; ++i) {
    AcGePoint2d start;
    AcGePoint2d end;
    double bulge = 0.0;
    polyline.getPointAt(i, start);
    polyline.getPointAt((i + 1) % count, end);
    polyline.getBulgeAt(i, bulge);
    points.push_back(place(start.x, start.y));
    // The centre lies on the chord's perpendicular bisector; a bulge is the tangent of a quarter
    // of the arc's angle.
    const double sweep = 4.0 * std::atan(bulge);
    const int chords = chordsOf(sweep);
    if (chords > 1 && !start.isEqualTo(end)) {
      const double offset = (1.0 - bulge * bulge) / (4.0 * bulge);
      const AcGePoint2d center = start + (end - start) * 0.5 + (end - start).perpVector() * offset;
      const AcGeVector2d spoke = start - center;
      for (int chord = 1; chord < chords; ++chord) {
        const double angle = sweep * chord / chords;
        points.push_back(place(center.x + spoke.x * std::cos(angle) - spoke.y * std::sin(angle),
                               center.y + spoke.x * std::sin(angle) + spoke.y * std::cos(angle)));
      }
    }
    if (i + 1 == segments) {
      points.push_back(place(end.x, end.y));
    }
  }
}

bool isFinite(const AcGePoint3d& point) {
  return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

/// Appends the points of a curve, unless that has no length. Answers false for a class that regions
/// are not made of and for points that are no numbers.
bool appendCurve(std::vector<CurvePoints>& curves, const AcRxObject* object) {
  if (const AcDbLine* const line = AcDbLine::cast(object)) {
    const CurvePoints& made = curves.emplace_back(line->startPoint(), line->endPoint());
    const bool areFinite = isFinite(made.front) && isFinite(made.back);
    if (made.front.isEqualTo(made.back)) {
      curves.pop_back();
    }
    return areFinite;
  }
  Points points;
  if (const AcDbArc* const arc = AcDbArc::cast(object)) {
    double sweep = std::fmod(arc->endAngle() - arc->startAngle(), 2.0 * std::numbers::pi);
    if (sweep <= 0.0) {
      sweep += 2.0 * std::numbers::pi;
    }
    appendArc(points, arc->center(), arc->normal(), arc->radius(), arc->startAngle(), sweep);
  } else if (const AcDbPolyline* const polyline = AcDbPolyline::cast(object)) {
    appendPolyline(points, *polyline);
  } else if (const AcDbCircle* const circle = AcDbCircle::cast(object)) {
    appendArc(points, circle->center(), circle->normal(), circle->radius(), 0.0,
              2.0 * std::numbers::pi);
    points.back() = points.front();
  }
  if (points.empty() || !std::all_of(points.begin(), points.end(), isFinite)) {
    return false;
  }
  if (points.size() > 2 || !points.front().isEqualTo(points.back())) {
    curves.emplace_back(std::move(points));
  }
  return true;
}

/// The curves that are not in a loop yet, to be found by where they end.
class LooseCurves {
 public:
  explicit LooseCurves(std::vector<CurvePoints> curves)
      : m_curves(std::move(curves)), m_isTaken(m_curves.size(), false) {}

  /// The first curve that is left; null when none is.
  const CurvePoints* takeFirst() {
    while (m_first < m_curves.size() && m_isTaken[m_first]) {
      ++m_first;
    }
    return m_first < m_curves.size() ? &take(m_first) : nullptr;
  }

  /// The curve that begins or, turned round, ends at the point; the one behind the curve taken
  /// last comes first, then the first in order.
  const CurvePoints* takeFrom(const AcGePoint3d& point) {
    if (m_last + 1 < m_curves.size() && !m_isTaken[m_last + 1] &&
        m_curves[m_last + 1].front.isEqualTo(point)) {
      return &take(m_last + 1);
    }
    constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
    std::size_t best = kNone;
    sortEnds();
    const double tolerance = 2.0 * AcGeContext::gTol.equalPoint();
    for (auto end = std::lower_bound(m_ends.begin(), m_ends.end(),
                                     std::pair(point.x - tolerance, std::size_t{0}));
         end != m_ends.end() && end->first <= point.x + tolerance; ++end) {
      const CurvePoints& points = m_curves[end->second];
      if (end->second < best && !m_isTaken[end->second] &&
          (points.front.isEqualTo(point) || points.back.isEqualTo(point))) {
        best = end->second;
      }
    }
    if (best == kNone) {
      return nullptr;
    }
    CurvePoints& points = take(best);
    if (!points.front.isEqualTo(point)) {
      points.turnRound();
    }
    return &points;
  }

 private:
  /// Once, and only for curves that do not come one behind the other.
  void sortEnds() {
    if (!m_ends.empty()) {
      return;
    }
    m_ends.reserve(2 * m_curves.size());
    for (std::size_t i = 0; i < m_curves.size(); ++i) {
      if (!m_isTaken[i]) {
        m_ends.push_back({m_curves[i].front.x, i});
        m_ends.push_back({m_curves[i].back.x, i});
      }
    }
    std::sort(m_ends.begin(), m_ends.end());
  }

  CurvePoints& take(std::size_t index) {
    m_isTaken[index] = true;
    m_last = index;
    return m_curves[index];
  }

  std::vector<CurvePoints> m_curves;
  std::vector<bool> m_isTaken;
  std::vector<std::pair<double, std::size_t>> m_ends;  // x of an end, its curve; sorted
  std::size_t m_first = 0;
  std::size_t m_last = 0;
};

/// A loop from a first curve on; nothing when it does not close.
std::optional<RegionLoop> closedLoop(const CurvePoints& first, LooseCurves& curves) {
  RegionLoop loop{first.front};
  const auto append = [&loop](const CurvePoints& points) {
    loop.insert(loop.end(), points.between.begin(), points.between.end());
    loop.push_back(points.back);
  };
  append(first);
  while (!loop.back().isEqualTo(loop.front()) || loop.size() < 3) {
    const CurvePoints* const next = curves.takeFrom(loop.back());
    if (!next) {
      return std::nullopt;
    }
    append(*next);
  }
  loop.pop_back();
  return loop;
}

}  // namespace

AcDbRegion::AcDbRegion() = default;
AcDbRegion::~AcDbRegion() = default;

Acad::ErrorStatus AcDbRegion::createFromCurves(const AcDbVoidPtrArray& curves,
                                               AcDbVoidPtrArray& regions) {
  try {
    std::vector<CurvePoints> read;
    read.reserve(static_cast<std::size_t>(curves.length()));
    for (int i = 0; i < curves.length(); ++i) {
      if (!appendCurve(read, static_cast<const AcRxObject*>(curves[i]))) {
        return Acad::eInvalidInput;
      }
    }
    Acad::ErrorStatus status = read.empty() ? Acad::eInvalidInput : Acad::eOk;
    LooseCurves loose(std::move(read));
    while (const CurvePoints* const first = loose.takeFirst()) {
      const std::optional<RegionLoop> loop = closedLoop(*first, loose);
      std::unique_ptr<RegionShape> shape;
      const Acad::ErrorStatus made = loop ? RegionShape::make(*loop, shape) : Acad::eNotClosedCurve;
      if (made == Acad::eOk) {
        auto region = std::make_unique<AcDbRegion>();
        region->m_shape = std::move(shape);
        regions.append(region.release());
      } else if (status == Acad::eOk) {
        status = made;
      }
    }
    return status;
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbRegion::booleanOper(AcDb::BoolOperType operation, AcDbRegion* other) {
  if (!other) {
    return Acad::eNullObjectPointer;
  }
  if (other == this) {
    return Acad::eInvalidInput;
  }
  try {
    std::unique_ptr<RegionShape> result;
    if (m_shape && other->m_shape) {
      const Acad::ErrorStatus status = m_shape->combined(*other->m_shape, operation, result);
      if (status != Acad::eOk) {
        return status;
      }
    } else if (operation == AcDb::kBoolUnite) {
      result = std::move(m_shape ? m_shape : other->m_shape);
    } else if (operation == AcDb::kBoolSubtract) {
      result = std::move(m_shape);
    }
    m_shape = std::move(result);
    other->m_shape.reset();
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbRegion::explode(AcDbVoidPtrArray& pieces) const {
  try {
    if (!m_shape) {
      return Acad::eOk;
    }
    const std::vector<RegionFace> faces = m_shape->faces();
    if (faces.size() > 1) {
      for (const RegionFace& face : faces) {
        auto region = std::make_unique<AcDbRegion>();
        region->m_shape = m_shape->shapeOf(face);
        pieces.append(region.release());
      }
      return Acad::eOk;
    }
    for (const RegionLoop& loop : faces.front()) {
      for (std::size_t i = 0; i < loop.size(); ++i) {
        pieces.append(new AcDbLine(loop[i], loop[(i + 1) % loop.size()]));
      }
    }
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

bool AcDbRegion::isNull() const {
  return !m_shape;
}

Acad::ErrorStatus AcDbRegion::getArea(double& area) const {
  area = m_shape ? m_shape->area() : 0.0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::getNormal(AcGeVector3d& normal) const {
  if (!m_shape) {
    return Acad::eInvalidInput;
  }
  normal = m_shape->normal();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::getGeomExtents(AcDbExtents& extents) const {
  extents = AcDbExtents();
  try {
    if (!m_shape) {
      return Acad::eNullExtents;
    }
    for (const RegionFace& face : m_shape->faces()) {
      for (const AcGePoint3d& corner : face.front()) {
        extents.addPoint(corner);
      }
    }
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbRegion::transformBy(const AcGeMatrix3d& matrix) {
  if (!quoin::db::isFinite(matrix)) {
    return Acad::eInvalidInput;
  }
  if (matrix.isSingular()) {
    return Acad::eSingularMatrix;
  }
  try {
    return m_shape ? m_shape->transformBy(matrix) : Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

AcRxObject* AcDbRegion::clone() const {
  try {
    auto copy = std::make_unique<AcDbRegion>();
    if (m_shape) {
      copy->m_shape = m_shape->copy();
    }
    return copy.release();
  } catch (...) {
    statusOfException();
    return nullptr;
  }
}
