// SPLINE and HELIX, AcDbSpline: knots, control points and weights as the file lists them; points by
// repeated linear interpolation between control points (de Boor's algorithm), in homogeneous
// coordinates.
#include <algorithm>
#include <vector>

#include "dbspline.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/SplineDraw.h"
#include "embedded/db/geometry/TransformSchema.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbSpline, AcDbCurve, L"SPLINE", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {

constexpr int kKnot = 40;
constexpr int kWeight = 41;
constexpr int kControlPoint = 10;
constexpr int kFitPoint = 11;
constexpr int kDegree = 71;
constexpr std::int64_t kIsClosed = 1;
constexpr std::int64_t kIsRational = 4;
// Its tags are only read.
constexpr SubclassLayout kSpline{"AcDbSpline", {}};

std::vector<double> splineNumbers(const TagList& tags, int code) {
  return numbersOf(tags, code, kSpline.in(tags));
}

std::vector<AcGePoint3d> splinePoints(const TagList& tags, int code) {
  return pointsOf(tags, code, kSpline.in(tags));
}

Acad::ErrorStatus pointAt(const std::vector<AcGePoint3d>& points, int index, AcGePoint3d& point) {
  if (index < 0 || static_cast<std::size_t>(index) >= points.size()) {
    return Acad::eInvalidIndex;
  }
  point = points[static_cast<std::size_t>(index)];
  return Acad::eOk;
}

struct Nurbs {
  std::size_t degree = 0;
  std::vector<double> knots;
  std::vector<AcGePoint3d> points;
  std::vector<double> weights;

  double start() const { return knots[degree]; }
  double end() const { return knots[points.size()]; }
};

Acad::ErrorStatus read(const AcDbSpline& spline, Nurbs& nurbs) {
  const TagList& tags = tagsOf(spline);
  nurbs.points = splinePoints(tags, kControlPoint);
  if (nurbs.points.empty()) {
    return Acad::eNotApplicable;
  }
  const int degree = spline.degree();
  nurbs.knots = splineNumbers(tags, kKnot);
  nurbs.weights = splineNumbers(tags, kWeight);
  if (nurbs.weights.size() != nurbs.points.size()) {
    nurbs.weights.assign(nurbs.points.size(), 1.0);
  }
  const bool isDegree = degree >= 1 && degree <= static_cast<int>(SplineImage::kMostDegrees);
  nurbs.degree = isDegree ? static_cast<std::size_t>(degree) : 1;
  const bool fits = isDegree && nurbs.points.size() > nurbs.degree &&
                    nurbs.knots.size() == nurbs.points.size() + nurbs.degree + 1 &&
                    std::is_sorted(nurbs.knots.begin(), nurbs.knots.end()) &&
                    nurbs.start() < nurbs.end();
  return fits ? Acad::eOk : Acad::eDegenerateGeometry;
}

AcGePoint3d pointOn(const Nurbs& nurbs, double param) {
  struct Weighted {
    AcGeVector3d place;
    double weight;
  };
  const std::size_t degree = nurbs.degree;
  const double at = std::clamp(param, nurbs.start(), nurbs.end());
  // The last span [knot, next) that holds the parameter; the end belongs to the last one.
  std::size_t span = degree;
  while (span + 1 < nurbs.points.size() && nurbs.knots[span + 1] <= at) {
    ++span;
  }
  std::vector<Weighted> row;
  for (std::size_t i = span - degree; i <= span; ++i) {
    row.push_back({nurbs.points[i].asVector() * nurbs.weights[i], nurbs.weights[i]});
  }
  for (std::size_t level = 1; level <= degree; ++level) {
    for (std::size_t i = degree; i >= level; --i) {
      const double low = nurbs.knots[span - degree + i];
      const double high = nurbs.knots[span + 1 + i - level];
      const double share = high > low ? (at - low) / (high - low) : 0.0;
      row[i] = {row[i - 1].place * (1.0 - share) + row[i].place * share,
                row[i - 1].weight * (1.0 - share) + row[i].weight * share};
    }
  }
  const Weighted& last = row.back();
  return AcGePoint3d::kOrigin + (last.weight != 0.0 ? last.place / last.weight : last.place);
}

/// Runs `visit(nurbs)` on a spline that has control points.
template <class Visit>
Acad::ErrorStatus with(const AcDbSpline& spline, Visit&& visit) {
  try {
    Nurbs nurbs;
    const Acad::ErrorStatus status = read(spline, nurbs);
    if (status == Acad::eOk) {
      visit(nurbs);
    }
    return status;
  } catch (...) {
    return statusOfException();
  }
}

}  // namespace

AcDbSpline::AcDbSpline() = default;

int AcDbSpline::degree() const {
  return static_cast<int>(integerOf(*this, kSpline, kDegree, 3));
}

Adesk::Boolean AcDbSpline::isRational() const {
  return (integerOf(*this, kSpline, code::kFlags) & kIsRational) != 0;
}

int AcDbSpline::numControlPoints() const {
  return static_cast<int>(splinePoints(tagsOf(*this), kControlPoint).size());
}

Acad::ErrorStatus AcDbSpline::getControlPointAt(int index, AcGePoint3d& point) const {
  return pointAt(splinePoints(tagsOf(*this), kControlPoint), index, point);
}

double AcDbSpline::weightAt(int index) const {
  const std::vector<double> weights = splineNumbers(tagsOf(*this), kWeight);
  const auto at = static_cast<std::size_t>(index);
  return index >= 0 && at < weights.size() ? weights[at] : 1.0;
}

int AcDbSpline::numFitPoints() const {
  return static_cast<int>(splinePoints(tagsOf(*this), kFitPoint).size());
}

Acad::ErrorStatus AcDbSpline::getFitPointAt(int index, AcGePoint3d& point) const {
  return pointAt(splinePoints(tagsOf(*this), kFitPoint), index, point);
}

Acad::ErrorStatus AcDbSpline::getStartParam(double& param) const {
  return with(*this, [&](const Nurbs& nurbs) { param = nurbs.start(); });
}

Acad::ErrorStatus AcDbSpline::getEndParam(double& param) const {
  return with(*this, [&](const Nurbs& nurbs) { param = nurbs.end(); });
}

Acad::ErrorStatus AcDbSpline::getPointAtParam(double param, AcGePoint3d& point) const {
  return with(*this, [&](const Nurbs& nurbs) { point = pointOn(nurbs, param); });
}

Adesk::Boolean AcDbSpline::isClosed() const {
  return (integerOf(*this, kSpline, code::kFlags) & kIsClosed) != 0;
}

Acad::ErrorStatus AcDbSpline::getStartPoint(AcGePoint3d& point) const {
  return with(*this, [&](const Nurbs& nurbs) { point = pointOn(nurbs, nurbs.start()); });
}

Acad::ErrorStatus AcDbSpline::getEndPoint(AcGePoint3d& point) const {
  return with(*this, [&](const Nurbs& nurbs) { point = pointOn(nurbs, nurbs.end()); });
}

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

constexpr int kStartDirection = 12;
constexpr int kEndDirection = 13;

/// Without points where fit points alone say what it is.
SplineImage splineOf(const TagList& tags, const AcGeMatrix3d& toWorld) {
  const TagRange range = kSpline.in(tags);
  SplineImage spline;
  const std::int64_t degree = tags.integer(kDegree, range, 3);
  spline.degree = SplineImage::degreeOf(degree);
  spline.knots = splineNumbers(tags, kKnot);
  spline.weights = splineNumbers(tags, kWeight);
  for (const AcGePoint3d& point : splinePoints(tags, kControlPoint)) {
    spline.points.push_back(toWorld * point);
  }
  return spline;
}

Acad::ErrorStatus extentsOfSpline(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                  AcDbExtents& box) {
  const TagList& tags = entity.tags;
  const TagRange range = kSpline.in(tags);
  const SplineImage spline = splineOf(tags, toWorld);
  if (!spline.points.empty()) {
    addSpline(spline, box);
    return Acad::eOk;
  }
  addFitSpline(splinePoints(tags, kFitPoint), tags.point(kStartDirection, range).asVector(),
               tags.point(kEndDirection, range).asVector(), toWorld, box);
  return Acad::eOk;
}

void drawSpline(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const TagList& tags = entity.tags;
  const TagRange range = kSpline.in(tags);
  const SplineImage spline = splineOf(tags, toWorld);
  if (!spline.points.empty()) {
    walk.stroke(splinePath(spline, walk));
    return;
  }
  const std::vector<AcGePoint3d> points = splinePoints(tags, kFitPoint);
  if (!points.empty()) {
    walk.stroke(fitSplinePath(points, tags.point(kStartDirection, range).asVector(),
                              tags.point(kEndDirection, range).asVector(), toWorld, walk));
  }
}

// The knots are parameters and stay.
constexpr std::array kSplineRules{Rule{"AcDbSpline", 10, Point}, Rule{"AcDbSpline", 11, Point},
                                  Rule{"AcDbSpline", 12, Direction},
                                  Rule{"AcDbSpline", 13, Direction}};
constexpr std::array kHelixRules{
    Rule{"AcDbSpline", 10, Point},     Rule{"AcDbSpline", 11, Point},
    Rule{"AcDbSpline", 12, Direction}, Rule{"AcDbSpline", 13, Direction},
    Rule{"AcDbHelix", 10, Point},      Rule{"AcDbHelix", 11, Point},
    Rule{"AcDbHelix", 12, Direction},  Rule{"AcDbHelix", 40, Length},
    Rule{"AcDbHelix", 42, Length},     Rule{"AcDbHelix", 290, Handedness}};
constexpr TransformSchema kSplineSchema{
    .normalMarker = "AcDbSpline", .isAffine = true, .rules = kSplineRules};
constexpr TransformSchema kHelixSchema{
    .normalMarker = "AcDbSpline", .rules = kHelixRules, .subclassesNeeded = 2};

// Read, copied and changed, but not made.
constexpr std::array kClasses{classRow<AcDbSpline>("")};

constexpr std::array kKinds{
    RecordKind{.name = "SPLINE",
               .since = Version::R13,
               .classes = kClasses,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfSpline,
               .draw = drawSpline,
               .schema = &kSplineSchema},
    RecordKind{.name = "HELIX",
               .since = Version::R2007,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfSpline,
               .draw = drawSpline,
               .schema = &kHelixSchema},
};

}  // namespace

const std::span<const RecordKind> kSplineRows{kKinds};

}  // namespace quoin::db
