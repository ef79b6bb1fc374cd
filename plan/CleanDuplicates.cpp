// Lines that stand for each other: with the same ends, one within the other, or overlapping.
#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <tuple>
#include <utility>

#include "plan/CleanStateInternal.h"

namespace quoin::plan::cleaning {

namespace {

class Duplicates {
 public:
  explicit Duplicates(State& state) : m_state(state) {}

  bool remove() {
    countKeys();
    removeSameEnds();
    findPairs();
    removeCovered();
    absorbOverlapping();
    return m_changed;
  }

 private:
  using Pair = std::pair<std::size_t, std::size_t>;

  /// How a line lies along another, at least as long one.
  struct Lie {
    bool isOn = false;  // no farther from it than the snapping distance
    double from = 0.0;  // along the other, from its start
    double to = 0.0;
  };

  const Item& item(std::size_t line) const { return m_state.item(line); }
  static bool isFree(const Item& one) { return !one.isKept && !one.isFixed[0] && !one.isFixed[1]; }

  void countKeys() {
    if (m_state.options().ignoresKeys) {
      for (const Item& one : m_state.items()) {
        if (one.isLive) {
          ++m_linesOfKey[one.key];
        }
      }
    }
  }
  /// The key that more lines have says more.
  std::size_t linesOfKey(std::size_t line) const {
    const auto found = m_linesOfKey.find(item(line).key);
    return found == m_linesOfKey.end() ? 0 : found->second;
  }

  /// Of lines with the same two ends the first stays; one that cannot be removed before others.
  void removeSameEnds() {
    struct Entry {
      std::uint32_t nodes[2];
      std::uint32_t line;
    };
    std::vector<Entry> entries;
    for (std::size_t i = 0; i < m_state.items().size(); ++i) {
      if (item(i).isLive) {
        const auto [least, greatest] =
            std::minmax({m_state.nodeOf(2 * i), m_state.nodeOf(2 * i + 1)});
        entries.push_back({{least, greatest}, static_cast<std::uint32_t>(i)});
      }
    }
    const auto sameNodes = [](const Entry& a, const Entry& b) {
      return a.nodes[0] == b.nodes[0] && a.nodes[1] == b.nodes[1];
    };
    std::sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) {
      return std::tie(a.nodes[0], a.nodes[1], item(a.line).number) <
             std::tie(b.nodes[0], b.nodes[1], item(b.line).number);
    });
    for (auto first = entries.begin(); first != entries.end();) {
      auto last = first + 1;
      while (last != entries.end() && sameNodes(*first, *last)) {
        ++last;
      }
      if (last - first > 1) {
        std::stable_sort(first, last, [&](const Entry& a, const Entry& b) {
          return rankOf(a.line) < rankOf(b.line);
        });
        removeAllButFirst(first, last);
      }
      first = last;
    }
  }

  /// Lines with a lesser rank stay.
  std::tuple<bool, std::size_t, std::size_t> rankOf(std::size_t line) const {
    return {isFree(item(line)), ~linesOfKey(line), item(line).key};
  }

  template <class Iterator>
  void removeAllButFirst(Iterator first, Iterator last) {
    std::map<std::size_t, std::size_t> survivorOfKey;
    for (auto entry = first; entry != last; ++entry) {
      const std::size_t line = entry->line;
      const std::size_t key = m_state.options().ignoresKeys ? 0 : item(line).key;
      const auto [survivor, isFirst] = survivorOfKey.emplace(key, line);
      if (isFirst) {
        if (survivorOfKey.size() > 1) {
          note(first->line, line);
        }
      } else if (item(line).isKept || !isFree(item(line))) {
        ++m_state.keptOverlaps;
      } else {
        remove(line, survivor->second, CleanStep::Duplicate);
      }
    }
  }

  void remove(std::size_t line, std::size_t survivor, CleanStep step) {
    m_state.remove(line, survivor, step);
    m_changed = true;
  }

  void note(std::size_t line, std::size_t other) {
    if (item(line).isKept && item(other).isKept) {
      ++m_state.keptOverlaps;
      return;
    }
    if (m_state.length(line) < m_state.length(other)) {
      std::swap(line, other);
    }
    const AcGePoint2d* const ends = item(other).ends;
    m_state.undecided().push_back(
        {UndecidedKind::OtherKey, ends[0] + (ends[1] - ends[0]) * 0.5, other, line});
  }

  /// Pairs of lines that run the same way where one ends, the longer one first; without those with
  /// the same ends.
  void findPairs() {
    for (const Node& node : m_state.nodes()) {
      if (node.count == 0) {
        continue;
      }
      const auto ends = m_state.endsOf(node);
      m_state.visitNear(node.at, m_state.options().snap, [&](std::size_t other) {
        for (const std::uint32_t end : ends) {
          addPair(end, other);
        }
      });
    }
    std::sort(m_pairs.begin(), m_pairs.end());
    m_pairs.erase(std::unique(m_pairs.begin(), m_pairs.end()), m_pairs.end());
  }

  void addPair(std::size_t end, std::size_t other) {
    const std::size_t line = end / 2;
    if (line == other || !item(line).isLive || !item(other).isLive ||
        std::fabs(cross(m_state.direction(line), m_state.direction(other))) > kLeastSine) {
      return;
    }
    if (item(line).isKept && item(other).isKept) {
      return;
    }
    // Most of these continue each other.
    const AcGeVector2d to = m_state.at(end) - item(other).ends[0];
    const double inward = -dot(m_state.outward(end), m_state.direction(other));
    const double along = dot(to, m_state.direction(other));
    const double rest = inward > 0.0 ? m_state.length(other) - along : along;
    if (rest <= m_state.same()) {
      return;
    }
    const bool isSameEnds = std::minmax(m_state.nodeOf(2 * line), m_state.nodeOf(2 * line + 1)) ==
                            std::minmax(m_state.nodeOf(2 * other), m_state.nodeOf(2 * other + 1));
    if (!isSameEnds) {
      m_pairs.emplace_back(isLonger(line, other) ? Pair(line, other) : Pair(other, line));
    }
  }

  bool isLonger(std::size_t a, std::size_t b) const {
    if (m_state.length(a) != m_state.length(b)) {
      return m_state.length(a) > m_state.length(b);
    }
    const auto least = [&](std::size_t line) {
      return std::min(item(line).ends[0], item(line).ends[1], isBefore);
    };
    const AcGePoint2d atA = least(a);
    const AcGePoint2d atB = least(b);
    return atA.x != atB.x || atA.y != atB.y ? isBefore(atA, atB) : item(a).number < item(b).number;
  }

  Lie lieAlong(std::size_t longer, std::size_t shorter) const {
    Lie lie;
    const AcGeVector2d& along = m_state.direction(longer);
    double places[2];
    lie.isOn = true;
    for (int side = 0; side < 2; ++side) {
      const AcGeVector2d to = item(shorter).ends[side] - item(longer).ends[0];
      places[side] = dot(to, along);
      lie.isOn = lie.isOn && std::fabs(cross(along, to)) <= m_state.options().snap;
    }
    lie.from = std::min(places[0], places[1]);
    lie.to = std::max(places[0], places[1]);
    return lie;
  }
  bool mayStandFor(std::size_t a, std::size_t b) const {
    return m_state.options().ignoresKeys || item(a).key == item(b).key;
  }

  void removeCovered() {
    // Longer ones first: what is removed covers nothing any more.
    std::stable_sort(m_pairs.begin(), m_pairs.end(), [&](const Pair& a, const Pair& b) {
      return a.second != b.second ? isLonger(a.second, b.second) : isLonger(a.first, b.first);
    });
    std::vector<Pair> rest;
    for (const Pair& pair : m_pairs) {
      const auto [longer, shorter] = pair;
      if (!item(longer).isLive || !item(shorter).isLive) {
        continue;
      }
      const Lie lie = lieAlong(longer, shorter);
      const double slack = m_state.options().snap;
      if (!lie.isOn ||
          std::min(lie.to, m_state.length(longer)) - std::max(lie.from, 0.0) <= slack) {
        continue;
      }
      const bool isCovered = lie.from >= -slack && lie.to <= m_state.length(longer) + slack;
      if (isCovered && isFree(item(shorter)) && mayStandFor(longer, shorter)) {
        remove(shorter, longer, CleanStep::Duplicate);
      } else {
        rest.push_back(pair);
      }
    }
    m_pairs = std::move(rest);
  }

  /// Lines that overlap become one: the longest, from the first of their ends to the last.
  void absorbOverlapping() {
    Groups groups(m_state.items().size());
    std::vector<std::size_t> members;
    for (const auto& [longer, shorter] : m_pairs) {
      if (!item(longer).isLive || !item(shorter).isLive) {
        continue;
      }
      if (!mayStandFor(longer, shorter) || !isFree(item(longer)) || !isFree(item(shorter)) ||
          item(longer).key != item(shorter).key) {
        note(longer, shorter);
        continue;
      }
      groups.join(static_cast<std::uint32_t>(longer), static_cast<std::uint32_t>(shorter));
      members.push_back(longer);
      members.push_back(shorter);
    }
    std::sort(members.begin(), members.end());
    members.erase(std::unique(members.begin(), members.end()), members.end());
    std::map<std::uint32_t, std::vector<std::size_t>> linesOfGroup;
    for (const std::size_t line : members) {
      linesOfGroup[groups.find(static_cast<std::uint32_t>(line))].push_back(line);
    }
    for (const auto& [group, lines] : linesOfGroup) {
      absorb(lines);
    }
  }

  void absorb(const std::vector<std::size_t>& lines) {
    const std::size_t longest =
        *std::min_element(lines.begin(), lines.end(),
                          [&](std::size_t a, std::size_t b) { return a != b && isLonger(a, b); });
    const Item& survivor = item(longest);
    std::array<AcGePoint2d, 2> reached{survivor.ends[0], survivor.ends[1]};
    double from = 0.0;
    double to = m_state.length(longest);
    bool isStraight = true;
    for (const std::size_t line : lines) {
      const Lie lie = lieAlong(longest, line);
      isStraight = isStraight && lie.isOn;
      for (const AcGePoint2d& end : item(line).ends) {
        const double place = dot(end - survivor.ends[0], m_state.direction(longest));
        if (place < from) {
          from = place;
          reached[0] = end;
        } else if (place > to) {
          to = place;
          reached[1] = end;
        }
      }
    }
    if (!isStraight) {
      return;
    }
    for (const std::size_t line : lines) {
      if (line != longest) {
        remove(line, longest, CleanStep::Overlap);
      }
    }
    for (std::size_t side = 0; side < 2; ++side) {
      if (!m_state.items()[longest].isFixed[side]) {
        m_state.items()[longest].ends[side] = reached[side];
      }
    }
  }

  State& m_state;
  std::map<std::size_t, std::size_t> m_linesOfKey;
  std::vector<Pair> m_pairs;
  bool m_changed = false;
};

}  // namespace

bool removeDuplicates(State& state) {
  return Duplicates(state).remove();
}

}  // namespace quoin::plan::cleaning
