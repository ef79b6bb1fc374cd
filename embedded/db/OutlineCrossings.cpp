#include "embedded/db/OutlineCrossings.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace quoin::db {
namespace {

/// How far a corner must be from an edge, as a share of how far the outlines reach, so that
/// rounding (a few 2^-52 of the products) takes less than 2^-14 of what tells its side.
constexpr double kClear = 0x1p-36;
/// How far two crossings must be from each other, as a share of the edge: more than what that
/// rounding moves them.
constexpr double kClearAlong = 0x1p-12;

struct Box {
  double minX = std::numeric_limits<double>::infinity();
  double minY = std::numeric_limits<double>::infinity();
  double maxX = -std::numeric_limits<double>::infinity();
  double maxY = -std::numeric_limits<double>::infinity();

  void add(const double* corner) {
    minX = std::min(minX, corner[0]);
    minY = std::min(minY, corner[1]);
    maxX = std::max(maxX, corner[0]);
    maxY = std::max(maxY, corner[1]);
  }
  void add(const Box& other) {
    minX = std::min(minX, other.minX);
    minY = std::min(minY, other.minY);
    maxX = std::max(maxX, other.maxX);
    maxY = std::max(maxY, other.maxY);
  }
  bool meets(const Box& other) const {
    return minX <= other.maxX && other.minX <= maxX && minY <= other.maxY && other.minY <= maxY;
  }
};

/// An outline with boxes around a few edges, around two such boxes, and so on up to all.
class Outline {
 public:
  static constexpr std::size_t kEdgesPerBox = 4;

  explicit Outline(const RingBuffer& ring) : m_ring(ring) {
    std::vector<Box>& boxes = m_levels.emplace_back((edges() + kEdgesPerBox - 1) / kEdgesPerBox);
    for (std::size_t edge = 0; edge < edges(); ++edge) {
      boxes[edge / kEdgesPerBox].add(corner(edge));
      boxes[edge / kEdgesPerBox].add(corner(edge + 1));
    }
    while (m_levels.back().size() > 1) {
      std::vector<Box> wider((m_levels.back().size() + 1) / 2);
      for (std::size_t i = 0; i < m_levels.back().size(); ++i) {
        wider[i / 2].add(m_levels.back()[i]);
      }
      m_levels.push_back(std::move(wider));
    }
  }

  std::size_t edges() const { return m_ring.size() / 2 - 1; }
  const double* corner(std::size_t index) const { return m_ring.data() + 2 * index; }
  std::size_t topLevel() const { return m_levels.size() - 1; }
  const std::vector<Box>& level(std::size_t index) const { return m_levels[index]; }
  double reach() const {
    const Box& all = m_levels.back().front();
    return std::max(std::max(std::fabs(all.minX), std::fabs(all.maxX)),
                    std::max(std::fabs(all.minY), std::fabs(all.maxY)));
  }

  /// 1 for counter-clockwise, -1 for clockwise, 0 for an area that is next to nothing.
  int sense() const {
    double doubleArea = 0.0;
    double size = 0.0;
    const double* const first = corner(0);
    for (std::size_t edge = 1; edge + 1 < edges(); ++edge) {
      const double* const from = corner(edge);
      const double left = (from[0] - first[0]) * (from[3] - first[1]);
      const double right = (from[1] - first[1]) * (from[2] - first[0]);
      doubleArea += left - right;
      size += std::fabs(left) + std::fabs(right);
    }
    if (!(std::fabs(doubleArea) > kClear * size)) {
      return 0;
    }
    return doubleArea > 0.0 ? 1 : -1;
  }

 private:
  const RingBuffer& m_ring;
  std::vector<std::vector<Box>> m_levels;
};

struct Crossing {
  std::size_t edges[2];  // of either outline
  double along[2];       // the share of the edge that lies before it
  double point[2];
  bool entersOther;  // walking along the first outline with its area on the left
};

/// All crossings of two outlines.
class CrossingSearch {
 public:
  CrossingSearch(const Outline& own, const Outline& other, CrossingPoint crossingPoint)
      : m_own(own),
        m_other(other),
        m_crossingPoint(crossingPoint),
        m_margin(kClear * std::max(own.reach(), other.reach())),
        m_left(kPairsPerBox * (own.level(0).size() + other.level(0).size())) {}

  /// False where one of them is not clear, or where too many edges lie about each other.
  bool run() { return visit(m_own.topLevel(), 0, m_other.topLevel(), 0); }
  std::vector<Crossing>& found() { return m_found; }

 private:
  /// Far more than outlines have that cross, even at every edge.
  static constexpr std::size_t kPairsPerBox = 16;

  bool visit(std::size_t ownLevel, std::size_t own, std::size_t otherLevel, std::size_t other) {
    if (!m_own.level(ownLevel)[own].meets(m_other.level(otherLevel)[other])) {
      return true;
    }
    if (ownLevel == 0 && otherLevel == 0) {
      return m_left-- > 0 && visitEdges(own, other);
    }
    if (ownLevel >= otherLevel) {
      const std::size_t below = ownLevel - 1;
      return visit(below, 2 * own, otherLevel, other) &&
             (2 * own + 1 == m_own.level(below).size() ||
              visit(below, 2 * own + 1, otherLevel, other));
    }
    const std::size_t below = otherLevel - 1;
    return visit(ownLevel, own, below, 2 * other) &&
           (2 * other + 1 == m_other.level(below).size() ||
            visit(ownLevel, own, below, 2 * other + 1));
  }

  bool visitEdges(std::size_t ownBox, std::size_t otherBox) {
    const Box& around = m_other.level(0)[otherBox];
    for (std::size_t edge = ownBox * Outline::kEdgesPerBox;
         edge < std::min((ownBox + 1) * Outline::kEdgesPerBox, m_own.edges()); ++edge) {
      Box box;
      box.add(m_own.corner(edge));
      box.add(m_own.corner(edge + 1));
      if (!box.meets(around)) {
        continue;
      }
      for (std::size_t otherEdge = otherBox * Outline::kEdgesPerBox;
           otherEdge < std::min((otherBox + 1) * Outline::kEdgesPerBox, m_other.edges());
           ++otherEdge) {
        Box otherEdgeBox;
        otherEdgeBox.add(m_other.corner(otherEdge));
        otherEdgeBox.add(m_other.corner(otherEdge + 1));
        if (box.meets(otherEdgeBox) && !visitPair(edge, otherEdge)) {
          return false;
        }
      }
    }
    return true;
  }

  /// Twice the area of the triangle of an edge and a corner, above zero where the corner lies
  /// clearly on the left, below where it lies clearly on the right, and zero otherwise.
  double side(const double* edge, const double* corner) const {
    const double dx = edge[2] - edge[0];
    const double dy = edge[3] - edge[1];
    const double doubleArea = dx * (corner[1] - edge[1]) - dy * (corner[0] - edge[0]);
    const double margin = m_margin * (std::fabs(dx) + std::fabs(dy));
    return std::fabs(doubleArea) > margin ? doubleArea : 0.0;
  }

  bool visitPair(std::size_t ownEdge, std::size_t otherEdge) {
    const double* const own = m_own.corner(ownEdge);
    const double* const other = m_other.corner(otherEdge);
    const double otherFrom = side(own, other);
    const double otherTo = side(own, other + 2);
    if (otherFrom * otherTo > 0.0) {
      return true;
    }
    const double ownFrom = side(other, own);
    const double ownTo = side(other, own + 2);
    if (ownFrom * ownTo > 0.0) {
      return true;
    }
    Crossing crossing{{ownEdge, otherEdge},
                      {ownFrom / (ownFrom - ownTo), otherFrom / (otherFrom - otherTo)},
                      {},
                      ownTo > 0.0};
    if (!(otherFrom * otherTo < 0.0 && ownFrom * ownTo < 0.0) ||
        !m_crossingPoint(own, other, crossing.point)) {
      return false;
    }
    m_found.push_back(crossing);
    return true;
  }

  const Outline& m_own;
  const Outline& m_other;
  CrossingPoint m_crossingPoint;
  double m_margin;
  std::size_t m_left;  // how many more boxes of edges may meet
  std::vector<Crossing> m_found;
};

/// Goes along one outline from crossing to crossing, with its area on the left.
class Walk {
 public:
  Walk(const Outline& outline, int which, int sense, const std::vector<Crossing>& crossings)
      : m_outline(outline), m_which(which), m_forward(sense > 0), m_crossings(crossings) {}

  /// False where crossings of an edge lie too close together for their order to be clear.
  bool arrange() {
    std::vector<std::size_t> order(m_crossings.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
      order[i] = i;
    }
    std::sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
      return edge(a) < edge(b) || (edge(a) == edge(b) && along(a) < along(b));
    });
    for (std::size_t i = 1; i < order.size(); ++i) {
      if (edge(order[i]) == edge(order[i - 1]) &&
          !(along(order[i]) - along(order[i - 1]) > kClearAlong)) {
        return false;
      }
    }
    m_next.resize(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
      const std::size_t following = order[(i + 1) % order.size()];
      (m_forward ? m_next[order[i]] : m_next[following]) = m_forward ? following : order[i];
    }
    return true;
  }

  /// Appends the corners from a crossing to the next one, and answers that one.
  std::size_t next(std::size_t crossing, RingBuffer& ring) const {
    const std::size_t target = m_next[crossing];
    const std::size_t edges = m_outline.edges();
    const std::size_t from = edge(crossing);
    const std::size_t to = edge(target);
    std::size_t count = m_forward ? (to + edges - from) % edges : (from + edges - to) % edges;
    if (from == to && (along(target) > along(crossing)) != m_forward) {
      count = edges;  // all the way round to the edge that it began on
    }
    // Forward the first corner is that behind the edge, backward the one before.
    std::size_t index = m_forward ? (from + 1) % edges : from;
    for (; count > 0; --count) {
      const double* const corner = m_outline.corner(index);
      ring.insert(ring.end(), {corner[0], corner[1]});
      index = m_forward ? (index + 1) % edges : (index + edges - 1) % edges;
    }
    return target;
  }

 private:
  std::size_t edge(std::size_t crossing) const { return m_crossings[crossing].edges[m_which]; }
  double along(std::size_t crossing) const { return m_crossings[crossing].along[m_which]; }

  const Outline& m_outline;
  int m_which;
  bool m_forward;
  const std::vector<Crossing>& m_crossings;
  std::vector<std::size_t> m_next;
};

/// From counter-clockwise and open to clockwise and closed.
void turnAndClose(RingBuffer& ring) {
  for (std::size_t i = 0, j = ring.size() - 2; i < j; i += 2, j -= 2) {
    std::swap(ring[i], ring[j]);
    std::swap(ring[i + 1], ring[j + 1]);
  }
  ring.insert(ring.end(), {ring[0], ring[1]});
}

}  // namespace

std::optional<std::vector<RingBuffer>> clearIntersection(const RingBuffer& own,
                                                         const RingBuffer& other,
                                                         CrossingPoint crossingPoint) {
  const Outline ownOutline(own);
  const Outline otherOutline(other);
  const int ownSense = ownOutline.sense();
  const int otherSense = otherOutline.sense();
  CrossingSearch search(ownOutline, otherOutline, crossingPoint);
  if (ownSense == 0 || otherSense == 0 || !search.run() || search.found().empty()) {
    return std::nullopt;
  }
  std::vector<Crossing>& crossings = search.found();
  for (Crossing& crossing : crossings) {
    crossing.entersOther = crossing.entersOther == (ownSense == otherSense);
  }
  Walk ownWalk(ownOutline, 0, ownSense, crossings);
  Walk otherWalk(otherOutline, 1, otherSense, crossings);
  if (!ownWalk.arrange() || !otherWalk.arrange()) {
    return std::nullopt;
  }
  std::vector<RingBuffer> rings;
  std::vector<bool> isUsed(crossings.size(), false);
  const auto append = [&](std::size_t crossing, RingBuffer& ring) {
    ring.insert(ring.end(), {crossings[crossing].point[0], crossings[crossing].point[1]});
  };
  for (std::size_t first = 0; first < crossings.size(); ++first) {
    if (!crossings[first].entersOther || isUsed[first]) {
      continue;
    }
    RingBuffer ring;
    std::size_t entry = first;
    do {
      isUsed[entry] = true;
      append(entry, ring);
      const std::size_t exit = ownWalk.next(entry, ring);
      append(exit, ring);
      entry = otherWalk.next(exit, ring);
      // Outlines that do not cross themselves enter and leave in turn.
      if (crossings[exit].entersOther || !crossings[entry].entersOther ||
          (isUsed[entry] && entry != first)) {
        return std::nullopt;
      }
    } while (entry != first);
    turnAndClose(ring);
    rings.push_back(std::move(ring));
  }
  return rings;
}

}  // namespace quoin::db
