#include "commands/compare/SpelledAlike.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "gepnt3d.h"

namespace quoin::commands {

namespace {

constexpr int kControlPoint = 10;
constexpr int kFitPoint = 11;
constexpr int kStartTangent = 12;
constexpr int kEndTangent = 13;
constexpr int kKnot = 40;
constexpr int kWeight = 41;
constexpr int kFlags = 70;
constexpr int kDegree = 71;
constexpr std::size_t kCubic = 3;

bool has(const SaidRecord& record, int code) {
  return std::any_of(record.said.begin(), record.said.end(),
                     [&](const Said& one) { return one.code == code; });
}

double numberOf(const SaidRecord& record, int code) {
  for (const Said& one : record.said) {
    if (one.code == code) {
      return one.x;
    }
  }
  return defaultNumber(record.kind, code);
}

std::vector<AcGePoint3d> pointsOf(const SaidRecord& record, int code) {
  std::vector<AcGePoint3d> points;
  for (const Said& one : record.said) {
    if (one.code == code) {
      points.emplace_back(one.x, one.y, one.z);
    }
  }
  return points;
}

// --- splines --------------------------------------------------------------------------------

/// A cubic curve by its control points.
class Cubic {
 public:
  explicit Cubic(const SaidRecord& spline) : m_points(pointsOf(spline, kControlPoint)) {
    for (const Said& one : spline.said) {
      if (one.code == kKnot) {
        m_knots.push_back(one.x);
      }
    }
  }

  /// Whether it runs from its first control point to its last one in `spans` pieces.
  bool hasSpans(std::size_t spans) const {
    return m_points.size() == spans + kCubic && m_knots.size() == m_points.size() + kCubic + 1 &&
           std::is_sorted(m_knots.begin(), m_knots.end()) && m_knots.front() == knot(0) &&
           m_knots.back() == knot(spans) && knot(0) < knot(1) && knot(spans - 1) < knot(spans);
  }
  /// Where piece `index` begins.
  double knot(std::size_t index) const { return m_knots[kCubic + index]; }

  /// By de Boor's algorithm, in the piece that ends at this knot; in the first one for the start.
  AcGePoint3d pointAtKnot(std::size_t index) const {
    const std::size_t span = kCubic + (index == 0 ? 0 : index - 1);
    const double at = knot(index);
    AcGePoint3d point[kCubic + 1];
    std::copy_n(m_points.begin() + static_cast<std::ptrdiff_t>(span - kCubic), kCubic + 1, point);
    for (std::size_t level = 1; level <= kCubic; ++level) {
      for (std::size_t i = kCubic; i >= level; --i) {
        const double low = m_knots[span - kCubic + i];
        const double length = m_knots[span + 1 + i - level] - low;
        const double share = length > 0.0 ? (at - low) / length : 0.0;
        point[i] = point[i - 1] + (point[i] - point[i - 1]) * share;
      }
    }
    return point[kCubic];
  }
  AcGeVector3d startTangent() const {
    return (m_points[1] - m_points[0]) * (kCubic / (knot(1) - knot(0)));
  }
  AcGeVector3d endTangent(std::size_t spans) const {
    return (m_points[m_points.size() - 1] - m_points[m_points.size() - 2]) *
           (kCubic / (knot(spans) - knot(spans - 1)));
  }

 private:
  std::vector<AcGePoint3d> m_points;
  std::vector<double> m_knots;
};

bool isOnePoint(const AcGePoint3d& a, const AcGePoint3d& b, const Nearness& nearness) {
  return nearness.isOneLength(a.x, b.x) && nearness.isOneLength(a.y, b.y) &&
         nearness.isOneLength(a.z, b.z);
}

/// Whether the pieces are as long as one of the usual ways to choose them says: by the chords
/// (power 1), their roots (1/2) or all alike (0).
bool hasUsualKnots(const Cubic& curve, const std::vector<AcGePoint3d>& fit) {
  const std::size_t spans = fit.size() - 1;
  const double length = curve.knot(spans) - curve.knot(0);
  for (const double power : {1.0, 0.5, 0.0}) {
    std::vector<double> sums{0.0};
    for (std::size_t i = 1; i <= spans; ++i) {
      sums.push_back(sums.back() + std::pow((fit[i] - fit[i - 1]).length(), power));
    }
    bool isSo = sums.back() > 0.0;
    for (std::size_t i = 1; isSo && i < spans; ++i) {
      constexpr double kNear = 1e-9;
      isSo = std::fabs((curve.knot(i) - curve.knot(0)) / length - sums[i] / sums.back()) <= kNear;
    }
    if (isSo) {
      return true;
    }
  }
  return false;
}

/// Whether one spline, known by the points that it fits and its tangents, is the other one, known
/// by its control points: these are the solution of just so many equations.
bool isFitCurve(const SaidRecord& fitted, const SaidRecord& curve, const Nearness& nearness) {
  const std::vector<AcGePoint3d> fit = pointsOf(fitted, kFitPoint);
  const std::vector<AcGePoint3d> tangents[] = {pointsOf(fitted, kStartTangent),
                                               pointsOf(fitted, kEndTangent)};
  if (fit.size() < 2 || tangents[0].size() != 1 || tangents[1].size() != 1 ||
      numberOf(fitted, kDegree) != kCubic || numberOf(curve, kDegree) != kCubic ||
      has(curve, kWeight) || numberOf(fitted, kFlags) != numberOf(curve, kFlags)) {
    return false;
  }
  const std::vector<AcGePoint3d> own = pointsOf(curve, kFitPoint);
  if (!own.empty() &&
      (own.size() != fit.size() || !std::equal(own.begin(), own.end(), fit.begin(),
                                               [&](const AcGePoint3d& a, const AcGePoint3d& b) {
                                                 return isOnePoint(a, b, nearness);
                                               }))) {
    return false;
  }
  const Cubic cubic(curve);
  const std::size_t spans = fit.size() - 1;
  if (!cubic.hasSpans(spans) || !hasUsualKnots(cubic, fit)) {
    return false;
  }
  for (std::size_t i = 0; i <= spans; ++i) {
    if (!isOnePoint(cubic.pointAtKnot(i), fit[i], nearness)) {
      return false;
    }
  }
  return isOnePoint(AcGePoint3d::kOrigin + cubic.startTangent(), tangents[0].front(), nearness) &&
         isOnePoint(AcGePoint3d::kOrigin + cubic.endTangent(spans), tangents[1].front(), nearness);
}

void dropCurve(SaidRecord& spline) {
  std::erase_if(spline.said, [](const Said& one) {
    return (one.code >= kControlPoint && one.code <= kEndTangent) || one.code == kKnot;
  });
}

// --- leaders --------------------------------------------------------------------------------

/// Where a hook line begins, level with the last vertex, in the list of what the leader says.
std::optional<std::size_t> hookOf(const SaidRecord& leader) {
  constexpr int kHasHook = 75;
  constexpr int kHorizontal = 211;
  std::vector<std::size_t> vertices;
  AcGeVector3d along = AcGeVector3d::kXAxis;
  for (std::size_t i = 0; i < leader.said.size(); ++i) {
    const Said& one = leader.said[i];
    if (one.code == kControlPoint) {
      vertices.push_back(i);
    } else if (one.code == kHorizontal) {
      along.set(one.x, one.y, one.z);
    }
  }
  if (vertices.size() < 3 || numberOf(leader, kHasHook) == 0.0) {
    return std::nullopt;
  }
  const Said& from = leader.said[vertices[vertices.size() - 2]];
  const Said& to = leader.said[vertices.back()];
  const AcGeVector3d hook(to.x - from.x, to.y - from.y, to.z - from.z);
  constexpr double kLevel = 1e-9;
  if (hook.crossProduct(along).length() > kLevel * hook.length() * along.length()) {
    return std::nullopt;
  }
  return vertices[vertices.size() - 2];
}

void dropHook(SaidRecord& leader, const SaidRecord& other) {
  const auto count = [](const SaidRecord& record) {
    return pointsOf(record, kControlPoint).size();
  };
  const std::optional<std::size_t> hook = hookOf(leader);
  if (hook && count(leader) == count(other) + 1) {
    leader.said.erase(leader.said.begin() + static_cast<std::ptrdiff_t>(*hook));
  }
}

}  // namespace

bool SpelledAlike::isNeeded(const SaidRecord& before, const SaidRecord& after) {
  if (before.kind != after.kind) {
    return false;
  }
  return before.kind == "SPLINE"   ? has(before, kControlPoint) != has(after, kControlPoint)
         : before.kind == "LEADER" ? before.isFromDwg != after.isFromDwg
                                   : false;
}

SpelledAlike::SpelledAlike(const SaidRecord& old, const SaidRecord& now, const Nearness& nearness)
    : before(old), after(now) {
  if (old.kind == "LEADER") {
    old.isFromDwg ? dropHook(after, before) : dropHook(before, after);
  } else if (has(old, kControlPoint) ? isFitCurve(now, old, nearness)
                                     : isFitCurve(old, now, nearness)) {
    dropCurve(before);
    dropCurve(after);
  }
}

}  // namespace quoin::commands
