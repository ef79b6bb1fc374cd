// AcDbSpline: knots, control points and weights as the file lists them; points by repeated
// linear interpolation between control points (de Boor's algorithm), in homogeneous coordinates.
#include <algorithm>
#include <vector>

#include "dbspline.h"
#include "embedded/db/ExtentsShapes.h"

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
constexpr int kMostDegrees = 25;
// Its tags are only read.
constexpr Place kSpline{"AcDbSpline", {}};

std::vector<double> numbersOf(const TagList& tags, int code) {
  return quoin::db::numbersOf(tags, code, kSpline.in(tags));
}

std::vector<AcGePoint3d> pointsOf(const TagList& tags, int code) {
  return quoin::db::pointsOf(tags, code, kSpline.in(tags));
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
  nurbs.points = pointsOf(tags, kControlPoint);
  if (nurbs.points.empty()) {
    return Acad::eNotApplicable;
  }
  const int degree = spline.degree();
  nurbs.knots = numbersOf(tags, kKnot);
  nurbs.weights = numbersOf(tags, kWeight);
  if (nurbs.weights.size() != nurbs.points.size()) {
    nurbs.weights.assign(nurbs.points.size(), 1.0);
  }
  const bool isDegree = degree >= 1 && degree <= kMostDegrees;
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

/// Runs `answer(nurbs)` on a spline that has control points.
template <class Answer>
Acad::ErrorStatus with(const AcDbSpline& spline, Answer&& answer) {
  try {
    Nurbs nurbs;
    const Acad::ErrorStatus status = read(spline, nurbs);
    if (status == Acad::eOk) {
      answer(nurbs);
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
  return static_cast<int>(pointsOf(tagsOf(*this), kControlPoint).size());
}

Acad::ErrorStatus AcDbSpline::getControlPointAt(int index, AcGePoint3d& point) const {
  return pointAt(pointsOf(tagsOf(*this), kControlPoint), index, point);
}

double AcDbSpline::weightAt(int index) const {
  const std::vector<double> weights = numbersOf(tagsOf(*this), kWeight);
  const auto at = static_cast<std::size_t>(index);
  return index >= 0 && at < weights.size() ? weights[at] : 1.0;
}

int AcDbSpline::numFitPoints() const {
  return static_cast<int>(pointsOf(tagsOf(*this), kFitPoint).size());
}

Acad::ErrorStatus AcDbSpline::getFitPointAt(int index, AcGePoint3d& point) const {
  return pointAt(pointsOf(tagsOf(*this), kFitPoint), index, point);
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
