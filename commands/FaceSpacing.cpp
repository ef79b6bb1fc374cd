#include "commands/FaceSpacing.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <utility>

namespace quoin::commands {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kNone = std::numeric_limits<double>::infinity();
/// Neighbours looked at on either side: the first ones may lie on the same straight line, or end
/// where this one begins.
constexpr int kNeighbours = 4;

/// A line in the coordinates of its direction: from `begin` to `end` along, `offset` across.
struct Strip {
  double begin;
  double end;
  double offset;
  std::size_t line;
};

/// The strips of one direction, and the distances they find.
class Pairing {
 public:
  Pairing(std::vector<Strip>& strips, std::vector<double>& nearest)
      : m_strips(strips), m_nearest(nearest) {}

  void run() {
    std::sort(m_strips.begin(), m_strips.end(),
              [](const Strip& a, const Strip& b) { return a.begin < b.begin; });
    for (std::size_t i = 0; i < m_strips.size(); ++i) {
      while (!m_ends.empty() && m_ends.begin()->first < m_strips[i].begin) {
        const std::size_t gone = m_ends.begin()->second;
        m_across.erase({m_strips[gone].offset, gone});
        m_ends.erase(m_ends.begin());
      }
      compareAround(i);
      m_across.emplace(m_strips[i].offset, i);
      m_ends.emplace(m_strips[i].end, i);
    }
  }

 private:
  void compareAround(std::size_t strip) {
    const auto at = m_across.lower_bound({m_strips[strip].offset, strip});
    auto up = at;
    for (int i = 0; i < kNeighbours && up != m_across.end(); ++i, ++up) {
      compare(strip, up->second);
    }
    auto down = at;
    for (int i = 0; i < kNeighbours && down != m_across.begin(); ++i) {
      compare(strip, (--down)->second);
    }
  }

  void compare(std::size_t first, std::size_t second) {
    const Strip& a = m_strips[first];
    const Strip& b = m_strips[second];
    const double distance = std::fabs(a.offset - b.offset);
    const double beside = std::min(a.end, b.end) - std::max(a.begin, b.begin);
    const double shorter = std::min(a.end - a.begin, b.end - b.begin);
    // Lines on one straight line differ by rounding alone.
    const double rounding = 1e-9 * (std::fabs(a.offset) + (a.end - a.begin) + (b.end - b.begin));
    if (distance > rounding && beside >= 0.5 * shorter) {
      m_nearest[a.line] = std::min(m_nearest[a.line], distance);
      m_nearest[b.line] = std::min(m_nearest[b.line], distance);
    }
  }

  std::vector<Strip>& m_strips;
  std::vector<double>& m_nearest;
  std::set<std::pair<double, std::size_t>> m_across;  // of those that the sweep is within
  std::set<std::pair<double, std::size_t>> m_ends;
};

/// The direction from 0 to pi as a whole number of steps of the angle that counts as parallel.
int directionOf(const AcGeVector3d& along) {
  double angle = std::atan2(along.y, along.x);
  if (angle < 0.0) {
    angle += kPi;
  }
  static const int kSteps = static_cast<int>(std::lround(kPi / kMostParallelAngleRad));
  return static_cast<int>(std::lround(angle / kMostParallelAngleRad)) % kSteps;
}

}  // namespace

std::vector<double> faceSpacings(const std::vector<WallLine>& lines) {
  std::map<int, std::vector<Strip>> ofDirection;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const AcGeVector3d along = lines[i].end - lines[i].start;
    const double length = std::hypot(along.x, along.y);
    if (!(length > 0.0) || !std::isfinite(length)) {
      continue;
    }
    const int direction = directionOf(along);
    const double angle = direction * kMostParallelAngleRad;
    // Lines of one direction share its exact angle only where the first of them has it; so the
    // middle of a line says where it lies across.
    const double x = std::cos(angle);
    const double y = std::sin(angle);
    const double from = lines[i].start.x * x + lines[i].start.y * y;
    const double to = lines[i].end.x * x + lines[i].end.y * y;
    const double across =
        0.5 * ((lines[i].start.y + lines[i].end.y) * x - (lines[i].start.x + lines[i].end.x) * y);
    if (!std::isfinite(from + to + across)) {
      continue;
    }
    ofDirection[direction].push_back({std::min(from, to), std::max(from, to), across, i});
  }
  std::vector<double> nearest(lines.size(), kNone);
  for (auto& [direction, strips] : ofDirection) {
    Pairing(strips, nearest).run();
  }
  nearest.erase(std::remove(nearest.begin(), nearest.end(), kNone), nearest.end());
  return nearest;
}

}  // namespace quoin::commands
