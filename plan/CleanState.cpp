#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "plan/CleanStateInternal.h"

namespace quoin::plan::cleaning {

namespace {

/// Of the snapping distance: what a drawing program's rounding leaves between ends that meet.
constexpr double kSameShare = 1.0e-6;
/// Of the greatest coordinate: a crossing is computed from differences of such numbers, which are
/// exact to 2^-53 of them, through divisions by sines down to kLeastSine.
constexpr double kRoundingShare = 1.0e-13;

constexpr std::uint32_t kNoNode = std::numeric_limits<std::uint32_t>::max();

/// Cells of a grid much larger than the distance that is asked for, so that few points are near a
/// border and need a look into another cell.
class Cells {
 public:
  explicit Cells(double distance) : m_distance(distance), m_size(distance * kDistances) {}

  std::uint64_t of(const AcGePoint2d& at) const { return keyOf(index(at.x), index(at.y)); }
  /// Calls visit(key) for the other cells that hold points within the distance.
  template <class Visit>
  void visitOthers(const AcGePoint2d& at, Visit visit) const {
    const std::int64_t x = index(at.x);
    const std::int64_t y = index(at.y);
    for (std::int64_t i = index(at.x - m_distance); i <= index(at.x + m_distance); ++i) {
      for (std::int64_t j = index(at.y - m_distance); j <= index(at.y + m_distance); ++j) {
        if (i != x || j != y) {
          visit(keyOf(i, j));
        }
      }
    }
  }

 private:
  static constexpr double kDistances = 1024.0;
  /// Round coordinates are frequent and must not lie on borders.
  static constexpr double kOffset = 0.38196601125010515;

  /// Below 2^53, since the distance is 1e-13 of the greatest coordinate at least.
  std::int64_t index(double at) const {
    return static_cast<std::int64_t>(std::floor(at / m_size + kOffset));
  }
  static std::uint64_t keyOf(std::int64_t x, std::int64_t y) {
    // Keys of different cells may be equal: whoever asks compares points.
    return static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15U ^
           (static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4FU >> 7U);
  }

  double m_distance;
  double m_size;
};

}  // namespace

double lengthOf(const AcGeVector2d& vector) {
  const double square = vector.x * vector.x + vector.y * vector.y;
  constexpr double kLeast = 1.0e-290;
  return square > kLeast && square < std::numeric_limits<double>::infinity()
             ? std::sqrt(square)
             : std::hypot(vector.x, vector.y);
}

AcGePoint2d crossingOf(const AcGePoint2d& a, const AcGeVector2d& alongA, const AcGePoint2d& b,
                       const AcGeVector2d& alongB) {
  AcGePoint2d at = a + alongA * (cross(b - a, alongB) / cross(alongA, alongB));
  for (const auto& [point, along] : {std::pair(a, alongA), std::pair(b, alongB)}) {
    if (along.x == 0.0) {
      at.x = point.x;
    } else if (along.y == 0.0) {
      at.y = point.y;
    }
  }
  return at;
}

Groups::Groups(std::size_t count) : m_parents(count) {
  std::iota(m_parents.begin(), m_parents.end(), 0U);
}

std::uint32_t Groups::find(std::uint32_t member) {
  while (m_parents[member] != member) {
    m_parents[member] = m_parents[m_parents[member]];
    member = m_parents[member];
  }
  return member;
}

void Groups::join(std::uint32_t a, std::uint32_t b) {
  a = find(a);
  b = find(b);
  m_parents[std::max(a, b)] = std::min(a, b);
}

AcGePoint2d commonPoint(const State& state, std::span<const std::uint32_t> ends) {
  // Sums in the order of places: they round alike whatever the order of lines is.
  std::vector<std::uint32_t> ordered(ends.begin(), ends.end());
  std::sort(ordered.begin(), ordered.end(),
            [&](std::uint32_t a, std::uint32_t b) { return isBefore(state.at(a), state.at(b)); });
  if (ordered.size() == 2) {
    const AcGeVector2d first = state.outward(ordered[0]);
    const AcGeVector2d second = state.outward(ordered[1]);
    if (std::fabs(cross(first, second)) > kLeastSine) {
      return crossingOf(state.at(ordered[0]), first, state.at(ordered[1]), second);
    }
  }
  const AcGePoint2d origin = state.at(ordered.front());
  AcGeVector2d middle;
  double xx = 0.0;
  double xy = 0.0;
  double yy = 0.0;
  double x = 0.0;
  double y = 0.0;
  for (const std::uint32_t end : ordered) {
    const AcGeVector2d to = state.at(end) - origin;
    const AcGeVector2d along = state.outward(end);
    middle += to * (1.0 / static_cast<double>(ordered.size()));
    // The normal part of (at - to) is to vanish.
    xx += along.y * along.y;
    xy -= along.x * along.y;
    yy += along.x * along.x;
    const double offset = cross(along, to);
    x -= along.y * offset;
    y += along.x * offset;
  }
  const double determinant = xx * yy - xy * xy;
  if (determinant <= kLeastSine * kLeastSine) {
    return origin + middle;
  }
  return origin + AcGeVector2d((x * yy - y * xy) / determinant, (y * xx - x * xy) / determinant);
}

State::State(const std::vector<CleanLine>& lines, const CleanOptions& options,
             const std::vector<AcGePoint2d>& anchors)
    : m_options(options), m_anchors(anchors) {
  double greatest = 0.0;
  std::vector<PlaneBox> lineBoxes;
  lineBoxes.reserve(lines.size());
  for (const CleanLine& line : lines) {
    lineBoxes.push_back(PlaneBox::of(line.start, line.end));
  }
  // Near each other in memory where they are in the plan.
  m_items.reserve(lines.size());
  for (const std::uint32_t index : spatialOrder(lineBoxes)) {
    const CleanLine& line = lines[index];
    m_items.push_back({{line.start, line.end},
                       {line.isStartFixed, line.isEndFixed},
                       line.isKept,
                       true,
                       line.key,
                       index});
    for (const AcGePoint2d& end : m_items.back().ends) {
      greatest = std::max({greatest, std::fabs(end.x), std::fabs(end.y)});
    }
  }
  for (const AcGePoint2d& anchor : anchors) {
    greatest = std::max({greatest, std::fabs(anchor.x), std::fabs(anchor.y)});
  }
  m_same = std::max(
      {options.snap * kSameShare, greatest * kRoundingShare, std::numeric_limits<double>::min()});
  std::vector<PlaneBox> boxes;
  boxes.reserve(anchors.size());
  for (const AcGePoint2d& anchor : anchors) {
    boxes.push_back(PlaneBox::of(anchor, anchor));
  }
  m_anchorTree = BoxTree(boxes);
  m_nodeOfAnchor.resize(anchors.size());
  m_directions.resize(lines.size());
  m_lengths.resize(lines.size());
}

void State::refresh() {
  m_live.clear();
  std::vector<PlaneBox> boxes;
  boxes.reserve(m_items.size());
  for (std::size_t i = 0; i < m_items.size(); ++i) {
    const Item& item = m_items[i];
    if (!item.isLive) {
      continue;
    }
    const AcGeVector2d vector = item.ends[1] - item.ends[0];
    m_lengths[i] = lengthOf(vector);
    m_directions[i] = m_lengths[i] > 0.0 ? vector * (1.0 / m_lengths[i]) : AcGeVector2d();
    m_live.push_back(static_cast<std::uint32_t>(i));
    boxes.push_back(PlaneBox::of(item.ends[0], item.ends[1]));
  }
  m_tree = BoxTree(boxes);
  findNodes();
  findDangling();
}

void State::findNodes() {
  // Ends of lines first, then anchors.
  const std::size_t endCount = 2 * m_items.size();
  struct Point {
    std::uint64_t cell;
    AcGePoint2d at;
    std::uint32_t end;
  };
  const Cells cells(m_same);
  std::vector<Point> points;
  points.reserve(2 * m_live.size() + m_anchors.size());
  for (const std::uint32_t line : m_live) {
    for (std::uint32_t side = 0; side < 2; ++side) {
      const AcGePoint2d& at = m_items[line].ends[side];
      points.push_back({cells.of(at), at, 2 * line + side});
    }
  }
  for (std::size_t i = 0; i < m_anchors.size(); ++i) {
    points.push_back(
        {cells.of(m_anchors[i]), m_anchors[i], static_cast<std::uint32_t>(endCount + i)});
  }
  const auto isEarlier = [](const Point& a, const Point& b) {
    return a.cell != b.cell                       ? a.cell < b.cell
           : a.at.x != b.at.x || a.at.y != b.at.y ? isBefore(a.at, b.at)
                                                  : a.end < b.end;
  };
  std::sort(points.begin(), points.end(), isEarlier);
  Groups groups(points.size());
  // One of the points at each place, and where the next place begins.
  std::vector<std::uint32_t> places;
  for (std::uint32_t i = 0; i < points.size(); ++i) {
    if (i == 0 || points[i].at.x != points[i - 1].at.x || points[i].at.y != points[i - 1].at.y) {
      places.push_back(i);
    } else {
      groups.join(i, places.back());
    }
  }
  const auto joinNear = [&](std::uint32_t point, std::size_t place) {
    if (distance(points[point].at, points[places[place]].at) <= m_same) {
      groups.join(point, places[place]);
    }
  };
  for (std::size_t place = 0; place < places.size(); ++place) {
    const Point& point = points[places[place]];
    // In a cell places are ordered by x.
    for (std::size_t next = place + 1;
         next < places.size() && points[places[next]].cell == point.cell &&
         points[places[next]].at.x <= point.at.x + m_same;
         ++next) {
      joinNear(places[place], next);
    }
    cells.visitOthers(point.at, [&](std::uint64_t cell) {
      auto next = std::partition_point(places.begin(), places.end(), [&](std::uint32_t other) {
        return points[other].cell < cell;
      });
      for (; next != places.end() && points[*next].cell == cell; ++next) {
        joinNear(places[place], static_cast<std::size_t>(next - places.begin()));
      }
    });
  }
  // Nodes are numbered as their ends are, which are near each other where their lines are.
  std::vector<std::uint32_t> placeOfEnd(endCount + m_anchors.size(), kNoNode);
  for (std::uint32_t i = 0; i < points.size(); ++i) {
    placeOfEnd[points[i].end] = groups.find(i);
  }
  m_nodes.clear();
  m_nodeOfEnd.assign(endCount, kNoNode);
  std::vector<std::uint32_t> nodeOfGroup(points.size(), kNoNode);
  for (std::size_t end = 0; end < placeOfEnd.size(); ++end) {
    if (placeOfEnd[end] == kNoNode) {
      continue;  // of a line that is gone
    }
    std::uint32_t& number = nodeOfGroup[placeOfEnd[end]];
    if (number == kNoNode) {
      number = static_cast<std::uint32_t>(m_nodes.size());
      m_nodes.push_back({points[placeOfEnd[end]].at, 0, 0, false, false});
    }
    Node& node = m_nodes[number];
    if (end < endCount) {
      m_nodeOfEnd[end] = number;
      node.isAnchor = node.isAnchor || m_items[end / 2].isFixed[end % 2];
      ++node.count;
    } else {
      m_nodeOfAnchor[end - endCount] = number;
      node.isAnchor = true;
    }
  }
  std::uint32_t first = 0;
  for (Node& node : m_nodes) {
    node.first = first;
    first += node.count;
    node.count = 0;
  }
  m_endsOfNodes.resize(first);
  for (std::uint32_t end = 0; end < endCount; ++end) {
    if (m_nodeOfEnd[end] != kNoNode) {
      Node& node = m_nodes[m_nodeOfEnd[end]];
      m_endsOfNodes[node.first + node.count++] = end;
    }
  }
}

void State::findDangling() {
  for (Node& node : m_nodes) {
    if (node.isAnchor || node.count == 0) {
      continue;
    }
    const std::span<const std::uint32_t> ends = endsOf(node);
    const AcGeVector2d first = outward(ends.front());
    const bool leadsOneWay = std::all_of(ends.begin(), ends.end(), [&](std::uint32_t end) {
      const AcGeVector2d other = outward(end);
      return std::fabs(cross(first, other)) <= kOverlapSine && dot(first, other) > 0.0;
    });
    node.isDangling = leadsOneWay && !meetsLine(node);
  }
}

bool State::meetsLine(const Node& node) const {
  const AcGeVector2d along = outward(endsOf(node).front());
  bool meets = false;
  visitNear(node.at, m_same, [&](std::size_t line) {
    if (meets || std::fabs(cross(along, m_directions[line])) <= kOverlapSine) {
      return;
    }
    const AcGeVector2d to = node.at - m_items[line].ends[0];
    const double share = std::clamp(dot(to, m_directions[line]), 0.0, m_lengths[line]);
    meets = lengthOf(to - m_directions[line] * share) <= m_same;
  });
  return meets;
}

void State::moveEnd(std::size_t end, const AcGePoint2d& to, CleanStep step) {
  AcGePoint2d& at = m_items[end / 2].ends[end % 2];
  if (at.x == to.x && at.y == to.y) {
    return;
  }
  m_actions.push_back({step, end / 2, end / 2, at, to});
  at = to;
}

void State::remove(std::size_t line, std::size_t survivor, CleanStep step) {
  m_items[line].isLive = false;
  m_actions.push_back({step, line, survivor, m_items[line].ends[0], m_items[line].ends[1]});
}

}  // namespace quoin::plan::cleaning
