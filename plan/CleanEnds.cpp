// Dangling ends: snapped onto what is next to them, or extended and trimmed to where their line
// meets others.
#include <algorithm>
#include <cmath>
#include <limits>

#include "plan/CleanStateInternal.h"

namespace quoin::plan::cleaning {

namespace {

constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();
/// More lines than these near one end are a hatch or a scribble; looking at all of them from all
/// of their ends would take the square of their number.
constexpr std::size_t kMostNear = 256;

/// What both steps know of a dangling node.
class Ends {
 public:
  explicit Ends(State& state) : m_state(state), m_groups(state.nodes().size()) {}

 protected:
  const Node& node(std::uint32_t index) const { return m_state.nodes()[index]; }
  /// The end of the longest of its lines, whose direction is known best.
  std::uint32_t mainEnd(std::uint32_t index) const {
    const auto ends = m_state.endsOf(node(index));
    return *std::min_element(ends.begin(), ends.end(), [&](std::uint32_t a, std::uint32_t b) {
      return m_state.length(a / 2) != m_state.length(b / 2)
                 ? m_state.length(a / 2) > m_state.length(b / 2)
                 : isBefore(m_state.at(a ^ 1U), m_state.at(b ^ 1U));
    });
  }
  /// The other ends of its lines.
  bool isJoinedTo(std::uint32_t index, std::uint32_t other) const {
    const auto ends = m_state.endsOf(node(index));
    return std::any_of(ends.begin(), ends.end(),
                       [&](std::uint32_t end) { return m_state.nodeOf(end ^ 1U) == other; });
  }

  bool moveNode(std::uint32_t index, const AcGePoint2d& to, CleanStep step) {
    const std::size_t before = m_state.actions().size();
    for (const std::uint32_t end : m_state.endsOf(node(index))) {
      m_state.moveEnd(end, to, step);
    }
    return m_state.actions().size() > before;
  }

  void note(std::uint32_t index, UndecidedKind kind) {
    const std::size_t line = mainEnd(index) / 2;
    m_state.undecided().push_back({kind, node(index).at, line, line});
  }

  /// The members of every group with more than one, ordered by place.
  std::vector<std::vector<std::uint32_t>> groupsOf(const std::vector<std::uint32_t>& members) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pairs;
    pairs.reserve(members.size());
    for (const std::uint32_t member : members) {
      pairs.emplace_back(m_groups.find(member), member);
    }
    std::sort(pairs.begin(), pairs.end());
    std::vector<std::vector<std::uint32_t>> groups;
    for (auto first = pairs.begin(); first != pairs.end();) {
      auto last = first;
      std::vector<std::uint32_t> group;
      for (; last != pairs.end() && last->first == first->first; ++last) {
        group.push_back(last->second);
      }
      std::sort(group.begin(), group.end(),
                [&](std::uint32_t a, std::uint32_t b) { return isBefore(node(a).at, node(b).at); });
      groups.push_back(std::move(group));
      first = last;
    }
    return groups;
  }

  State& m_state;
  Groups m_groups;
};

class Snapping : public Ends {
 public:
  using Ends::Ends;

  bool snap() {
    std::vector<std::uint32_t> alone;  // no place where ends meet is near
    std::vector<std::pair<std::uint32_t, std::uint32_t>> moves;
    for (std::uint32_t i = 0; i < m_state.nodes().size(); ++i) {
      if (node(i).isDangling) {
        look(i, alone, moves);
      }
    }
    bool changed = false;
    for (const auto& [from, to] : moves) {
      changed = moveNode(from, node(to).at, CleanStep::Snap) || changed;
    }
    std::vector<char> isAlone(m_state.nodes().size(), 0);
    for (const std::uint32_t index : alone) {
      isAlone[index] = 1;
    }
    for (const std::uint32_t index : alone) {
      for (const std::uint32_t other : near(index)) {
        if (isAlone[other] != 0) {
          m_groups.join(index, other);
        }
      }
    }
    for (const std::vector<std::uint32_t>& group : groupsOf(alone)) {
      changed = snapGroup(group) || changed;
    }
    return changed;
  }

 private:
  /// The nodes within the snapping distance of another, itself left out.
  std::vector<std::uint32_t> near(std::uint32_t index) const {
    std::vector<std::uint32_t> found;
    const double limit = m_state.options().snap;
    m_state.visitNodesNear(node(index).at, limit, [&](std::uint32_t other) {
      if (other != index && found.size() < kMostNear &&
          std::find(found.begin(), found.end(), other) == found.end()) {
        found.push_back(other);
      }
    });
    return found;
  }

  void look(std::uint32_t index, std::vector<std::uint32_t>& alone,
            std::vector<std::pair<std::uint32_t, std::uint32_t>>& moves) {
    std::uint32_t only = kNone;
    std::size_t held = 0;
    bool isLine = false;
    for (const std::uint32_t other : near(index)) {
      // A line that is this short has nowhere to go; it may be a spur.
      isLine = isLine || isJoinedTo(index, other);
      if (!node(other).isDangling) {
        only = other;
        ++held;
      }
    }
    if (isLine) {
      return;
    }
    if (held == 0) {
      alone.push_back(index);
    } else if (held == 1) {
      moves.emplace_back(index, only);
    } else {
      note(index, UndecidedKind::SeveralEnds);
    }
  }

  bool snapGroup(const std::vector<std::uint32_t>& group) {
    if (group.size() < 2) {
      return false;
    }
    std::vector<std::uint32_t> ends;
    ends.reserve(group.size());
    for (const std::uint32_t index : group) {
      ends.push_back(mainEnd(index));
    }
    const AcGeVector2d first = m_state.outward(ends.front());
    const bool leadsOneWay = std::all_of(ends.begin(), ends.end(), [&](std::uint32_t end) {
      const AcGeVector2d other = m_state.outward(end);
      return std::fabs(cross(first, other)) <= kLeastSine && dot(first, other) > 0.0;
    });
    if (leadsOneWay) {
      return false;  // side by side, as the ends of two faces
    }
    AcGePoint2d to = commonPoint(m_state, ends);
    if (!isWithin(ends, to)) {
      // Lines at a sharp angle meet far away.
      to = middleOf(ends);
    }
    if (!isWithin(ends, to)) {
      for (const std::uint32_t index : group) {
        note(index, UndecidedKind::SeveralEnds);
      }
      return false;
    }
    bool changed = false;
    for (const std::uint32_t index : group) {
      changed = moveNode(index, to, CleanStep::Snap) || changed;
    }
    return changed;
  }

  bool isWithin(const std::vector<std::uint32_t>& ends, const AcGePoint2d& to) const {
    return std::all_of(ends.begin(), ends.end(), [&](std::uint32_t end) {
      return distance(m_state.at(end), to) <= m_state.options().snap;
    });
  }
  AcGePoint2d middleOf(const std::vector<std::uint32_t>& ends) const {
    const AcGePoint2d origin = m_state.at(ends.front());
    AcGeVector2d sum;
    for (const std::uint32_t end : ends) {
      sum += m_state.at(end) - origin;
    }
    return origin + sum * (1.0 / static_cast<double>(ends.size()));
  }
};

class Junctions : public Ends {
 public:
  explicit Junctions(State& state) : Ends(state), m_reach(state.options().reach) {}

  bool close() {
    std::vector<std::uint32_t> dangling;
    m_numbers.assign(m_state.nodes().size(), kNone);
    for (std::uint32_t i = 0; i < m_state.nodes().size(); ++i) {
      if (node(i).isDangling) {
        m_numbers[i] = static_cast<std::uint32_t>(m_looks.size());
        m_looks.push_back(look(i));
        dangling.push_back(i);
      }
    }
    // An end that is the partner of one that others bar from moving does not move either.
    for (const std::uint32_t index : dangling) {
      for (const std::uint32_t partner : lookOf(index).partners) {
        m_groups.join(index, partner);
      }
    }
    bool changed = false;
    for (const std::vector<std::uint32_t>& group : groupsOf(dangling)) {
      changed = closeGroup(group) || changed;
    }
    return changed;
  }

 private:
  /// Where a dangling end may go.
  struct Look {
    std::uint32_t end = 0;
    bool hasPlace = false;
    bool isAmbiguous = false;
    AcGePoint2d place;      // the nearest of them
    double distance = 0.0;  // to it, outwards above zero
    std::size_t places = 0;
    std::vector<std::uint32_t> partners;  // dangling nodes that may come to meet it
    std::vector<AcGePoint2d> others;      // further places, for the check
  };
  struct Crossing {
    bool isPlace = false;
    AcGePoint2d at;
    double distance = 0.0;
    std::uint32_t partner = kNone;
  };

  const Look& lookOf(std::uint32_t index) const { return m_looks[m_numbers[index]]; }

  /// How far a line may be cut at one end.
  double mostTrim(std::size_t line) const { return std::min(m_reach, 0.5 * m_state.length(line)); }

  Look look(std::uint32_t index) const {
    Look look;
    look.end = mainEnd(index);
    const std::size_t own = look.end / 2;
    std::vector<std::size_t> near;
    bool isCrowded = false;
    m_state.visitNear(node(index).at, m_reach, [&](std::size_t line) {
      if (near.size() < kMostNear) {
        near.push_back(line);
      } else {
        isCrowded = true;
      }
    });
    if (isCrowded) {
      look.hasPlace = look.isAmbiguous = true;
      return look;
    }
    const double inner = innermostTrim(look.end, near);
    for (const std::size_t line : near) {
      const Crossing crossing = crossingWith(look.end, line);
      if (line == own || !crossing.isPlace || crossing.distance < inner) {
        continue;
      }
      add(look, crossing);
    }
    for (const AcGePoint2d& other : look.others) {
      look.isAmbiguous = look.isAmbiguous || distance(other, look.place) > m_state.options().snap;
    }
    std::sort(look.partners.begin(), look.partners.end());
    look.partners.erase(std::unique(look.partners.begin(), look.partners.end()),
                        look.partners.end());
    return look;
  }

  static void add(Look& look, const Crossing& crossing) {
    const double far = std::fabs(crossing.distance);
    const double known = std::fabs(look.distance);
    if (!look.hasPlace || far < known || (far == known && crossing.distance > look.distance)) {
      look.place = crossing.at;
      look.distance = crossing.distance;
    }
    look.hasPlace = true;
    look.others.push_back(crossing.at);
    if (crossing.partner != kNone) {
      look.partners.push_back(crossing.partner);
    }
  }

  /// How far inwards the end may go (below zero) before it leaves another line's end behind, which
  /// lies on what would be cut off.
  double innermostTrim(std::uint32_t end, const std::vector<std::size_t>& near) const {
    const AcGePoint2d& at = m_state.at(end);
    const AcGeVector2d outward = m_state.outward(end);
    double inner = -mostTrim(end / 2);
    for (const std::size_t line : near) {
      for (std::size_t other = 2 * line; other < 2 * line + 2; ++other) {
        const AcGeVector2d to = m_state.at(other) - at;
        const double along = dot(to, outward);
        if (line != end / 2 && m_state.nodeOf(other) != m_state.nodeOf(end) && along < 0.0 &&
            along > inner && std::fabs(cross(outward, to)) <= m_state.same()) {
          inner = along - m_state.same();
        }
      }
    }
    return inner;
  }

  Crossing crossingWith(std::uint32_t end, std::size_t line) const {
    Crossing crossing;
    const AcGePoint2d& at = m_state.at(end);
    const AcGeVector2d outward = m_state.outward(end);
    const AcGeVector2d along = m_state.direction(line);
    if (line == end / 2 || std::fabs(cross(outward, along)) <= kLeastSine) {
      return crossing;
    }
    const AcGePoint2d& start = m_state.item(line).ends[0];
    crossing.at = crossingOf(at, outward, start, along);
    crossing.distance = dot(crossing.at - at, outward);
    if (crossing.distance > m_reach || crossing.distance < -mostTrim(end / 2)) {
      return crossing;
    }
    const double place = dot(crossing.at - start, along);
    const double length = m_state.length(line);
    const std::size_t nearEnd = 2 * line + (place > 0.5 * length ? 1 : 0);
    const double beyond = place > 0.5 * length ? place - length : -place;
    const std::uint32_t nearNode = m_state.nodeOf(nearEnd);
    const bool isPartner = node(nearNode).isDangling && beyond <= m_reach &&
                           beyond >= -mostTrim(line) && nearNode != m_state.nodeOf(end);
    if (isPartner) {
      crossing.partner = nearNode;
    }
    crossing.isPlace = isPartner || beyond <= m_state.same();
    return crossing;
  }

  bool closeGroup(const std::vector<std::uint32_t>& group) {
    // A partner may lie farther from the line that it meets than its own look goes.
    if (std::none_of(group.begin(), group.end(),
                     [&](std::uint32_t index) { return lookOf(index).hasPlace; })) {
      return false;
    }
    std::vector<std::uint32_t> ends;
    bool isDecided = true;
    for (const std::uint32_t index : group) {
      ends.push_back(lookOf(index).end);
      isDecided = isDecided && !lookOf(index).isAmbiguous;
    }
    AcGePoint2d to = group.size() == 1 ? lookOf(group.front()).place : commonPoint(m_state, ends);
    if (isDecided) {
      to = heldPlaceAt(group, to);
    }
    for (const std::uint32_t index : group) {
      isDecided = isDecided && mayMove(lookOf(index), to);
    }
    if (!isDecided) {
      for (const std::uint32_t index : group) {
        note(index, UndecidedKind::SeveralPlaces);
      }
      return false;
    }
    bool changed = false;
    for (const std::uint32_t index : group) {
      const double along = dot(to - node(index).at, m_state.outward(lookOf(index).end));
      changed = moveNode(index, to, along > 0.0 ? CleanStep::Extend : CleanStep::Trim) || changed;
    }
    return changed;
  }

  /// The place where ends meet already, if one is next to this one; else itself.
  AcGePoint2d heldPlaceAt(const std::vector<std::uint32_t>& group, const AcGePoint2d& at) const {
    std::uint32_t nearest = kNone;
    double least = m_state.options().snap;
    m_state.visitNodesNear(at, least, [&](std::uint32_t other) {
      const double far = distance(node(other).at, at);
      if (node(other).isDangling || far > least ||
          std::any_of(group.begin(), group.end(),
                      [&](std::uint32_t index) { return isJoinedTo(index, other); })) {
        return;
      }
      if (nearest == kNone || far < least || isBefore(node(other).at, node(nearest).at)) {
        nearest = other;
        least = far;
      }
    });
    return nearest == kNone ? at : node(nearest).at;
  }

  bool mayMove(const Look& look, const AcGePoint2d& to) const {
    const AcGeVector2d way = to - m_state.at(look.end);
    const double along = dot(way, m_state.outward(look.end));
    return lengthOf(way) <= m_reach * (1.0 + kRoundingSlack) &&
           std::fabs(cross(m_state.outward(look.end), way)) <=
               m_state.options().snap + m_state.same() &&
           -along <= mostTrim(look.end / 2) * (1.0 + kRoundingSlack);
  }

  static constexpr double kRoundingSlack = 1.0e-9;

  double m_reach;
  std::vector<Look> m_looks;
  std::vector<std::uint32_t> m_numbers;
};

}  // namespace

bool snapEnds(State& state) {
  return Snapping(state).snap();
}

bool closeJunctions(State& state) {
  return Junctions(state).close();
}

}  // namespace quoin::plan::cleaning
