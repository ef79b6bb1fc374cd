// The lines while they are cleaned, and what meets what; each step of the cleaning looks at it and
// changes it. For the sources of CleanLines.h alone.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "plan/BoxTree.h"
#include "plan/CleanLines.h"

namespace quoin::plan::cleaning {

/// Lines at a smaller angle run the same way: their crossing says nothing about where an end
/// belongs, and one may be a duplicate of the other.
inline constexpr double kLeastSine = 0.0871557427476582;  // 5 degrees
/// Two lines that leave a place at a smaller angle overlap there and do not hold each other's end.
inline constexpr double kOverlapSine = 0.0174524064372835;  // 1 degree

struct Item {
  AcGePoint2d ends[2];
  bool isFixed[2];
  bool isKept;
  bool isLive;
  std::size_t key;
  std::uint32_t number;  // its index in the input; items stand in spatial order
};

/// Ends that meet, and anchors there.
struct Node {
  AcGePoint2d at;
  std::uint32_t first;  // into State::m_endsOfNodes
  std::uint32_t count;
  bool isAnchor;    // nothing moves it
  bool isDangling;  // its ends (lines that leave the same way) meet nothing
};

class State {
 public:
  State(const std::vector<CleanLine>& lines, const CleanOptions& options,
        const std::vector<AcGePoint2d>& anchors);

  /// Finds anew what meets what; to be called when a step has changed lines.
  void refresh();

  const CleanOptions& options() const { return m_options; }
  /// Ends at this distance are one place.
  double same() const { return m_same; }
  std::vector<Item>& items() { return m_items; }
  const Item& item(std::size_t line) const { return m_items[line]; }

  // As they were at the last refresh:
  const std::vector<Node>& nodes() const { return m_nodes; }
  /// End 2 * line is the start of a line, 2 * line + 1 its end.
  std::uint32_t nodeOf(std::size_t end) const { return m_nodeOfEnd[end]; }
  std::span<const std::uint32_t> endsOf(const Node& node) const {
    return std::span(m_endsOfNodes).subspan(node.first, node.count);
  }
  /// Unit vector from start to end, and the length.
  const AcGeVector2d& direction(std::size_t line) const { return m_directions[line]; }
  double length(std::size_t line) const { return m_lengths[line]; }
  /// Unit vector from the end beyond its line.
  AcGeVector2d outward(std::size_t end) const {
    return end % 2 == 1 ? m_directions[end / 2] : -m_directions[end / 2];
  }
  const AcGePoint2d& at(std::size_t end) const { return m_items[end / 2].ends[end % 2]; }

  /// Calls visit(line) for the lines whose boxes come within `distance` of the place.
  template <class Visit>
  void visitNear(const AcGePoint2d& place, double distance, Visit visit) const {
    m_tree.visitMeeting(PlaneBox::around(place, distance),
                        [&](std::size_t leaf) { visit(static_cast<std::size_t>(m_live[leaf])); });
  }

  /// Calls visit(node) for the nodes within `limit` of the place, for some more than once.
  template <class Visit>
  void visitNodesNear(const AcGePoint2d& place, double limit, Visit visit) const {
    const auto visitNode = [&](std::uint32_t node) {
      const AcGePoint2d& at = m_nodes[node].at;
      if (std::hypot(at.x - place.x, at.y - place.y) <= limit) {
        visit(node);
      }
    };
    visitNear(place, limit, [&](std::size_t line) {
      visitNode(m_nodeOfEnd[2 * line]);
      visitNode(m_nodeOfEnd[2 * line + 1]);
    });
    m_anchorTree.visitMeeting(PlaneBox::around(place, limit),
                              [&](std::size_t anchor) { visitNode(m_nodeOfAnchor[anchor]); });
  }

  /// Whether the node is on a line that does not lead the way that its first line does.
  bool meetsLine(const Node& node) const;

  /// Moves an end and notes it.
  void moveEnd(std::size_t end, const AcGePoint2d& to, CleanStep step);
  void remove(std::size_t line, std::size_t survivor, CleanStep step);

  std::vector<CleanAction>& actions() { return m_actions; }
  std::vector<UndecidedPlace>& undecided() { return m_undecided; }
  std::size_t keptOverlaps = 0;

 private:
  void findNodes();
  void findDangling();

  CleanOptions m_options;
  std::vector<AcGePoint2d> m_anchors;
  double m_same = 0.0;
  std::vector<Item> m_items;
  std::vector<Node> m_nodes;
  std::vector<std::uint32_t> m_nodeOfEnd;
  std::vector<std::uint32_t> m_endsOfNodes;
  std::vector<AcGeVector2d> m_directions;
  std::vector<double> m_lengths;
  std::vector<std::uint32_t> m_live;
  BoxTree m_tree;
  BoxTree m_anchorTree;
  std::vector<std::uint32_t> m_nodeOfAnchor;
  std::vector<CleanAction> m_actions;
  std::vector<UndecidedPlace> m_undecided;
};

inline double cross(const AcGeVector2d& a, const AcGeVector2d& b) {
  return a.x * b.y - a.y * b.x;
}
inline double dot(const AcGeVector2d& a, const AcGeVector2d& b) {
  return a.x * b.x + a.y * b.y;
}
/// The length of a vector, also where its square is beyond all numbers.
double lengthOf(const AcGeVector2d& vector);
inline double distance(const AcGePoint2d& a, const AcGePoint2d& b) {
  return lengthOf(a - b);
}
/// Orders places; for choices between equals, which must not depend on the order of lines.
inline bool isBefore(const AcGePoint2d& a, const AcGePoint2d& b) {
  return a.x != b.x ? a.x < b.x : a.y < b.y;
}

/// Where two lines, given by a point and a unit vector each, cross. What both a horizontal (or
/// vertical) line and the crossing have in common is exactly equal.
AcGePoint2d crossingOf(const AcGePoint2d& a, const AcGeVector2d& alongA, const AcGePoint2d& b,
                       const AcGeVector2d& alongB);

/// Groups of numbers from 0, joined pair by pair.
class Groups {
 public:
  explicit Groups(std::size_t count);
  std::uint32_t find(std::uint32_t member);
  void join(std::uint32_t a, std::uint32_t b);

 private:
  std::vector<std::uint32_t> m_parents;
};

/// The point nearest to all lines that leave these ends (the least sum of squared distances); where
/// they are parallel, the middle of the ends.
AcGePoint2d commonPoint(const State& state, std::span<const std::uint32_t> ends);

// The steps. Each works on a fresh state, notes what it could not decide, and returns whether it
// changed anything.
bool removeDuplicates(State& state);
bool snapEnds(State& state);
bool closeJunctions(State& state);
bool removeSpurs(State& state);
bool joinLines(State& state);

}  // namespace quoin::plan::cleaning
