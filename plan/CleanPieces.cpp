// Short lines that stick out of others, and collinear pieces of one line.
#include <algorithm>
#include <cmath>
#include <map>

#include "MergeGougeAlgorithm.h"
#include "plan/CleanStateInternal.h"

namespace quoin::plan::cleaning {

namespace {

/// Pieces that bend less at a joint are straight, whatever there is of them: a curve drawn with
/// chords bends more at each.
constexpr double kStraightBend = 1.0e-4;  // radians
/// The merge joins what bends by a degree at most; a chain that bends less in all is merged the
/// same in whatever order its pieces are taken.
constexpr double kMostBend = 0.0174532925199433;
constexpr std::uint32_t kNone = 0xFFFFFFFFU;

/// Chains of pieces that continue each other.
class Joining {
 public:
  explicit Joining(State& state) : m_state(state) {}

  bool join() {
    findJoints();
    std::vector<std::vector<std::uint32_t>> chains;
    for (std::uint32_t line = 0; line < m_state.items().size(); ++line) {
      const bool isFirst = m_next[2 * line] == kNone && m_next[2 * line + 1] != kNone;
      const bool isLast = m_next[2 * line + 1] == kNone && m_next[2 * line] != kNone;
      if (isFirst || isLast) {
        addChain(2 * line + (isFirst ? 0 : 1), chains);
      }
    }
    return !chains.empty() && merge(chains);
  }

 private:
  /// For every end the end that it continues at, where exactly these two meet. A joint that lies on
  /// another line is a junction of walls, and stays one.
  void findJoints() {
    m_next.assign(2 * m_state.items().size(), kNone);
    for (const Node& node : m_state.nodes()) {
      if (node.count != 2 || node.isAnchor) {
        continue;
      }
      const std::uint32_t a = m_state.endsOf(node)[0];
      const std::uint32_t b = m_state.endsOf(node)[1];
      const Item& first = m_state.item(a / 2);
      const Item& second = m_state.item(b / 2);
      if (a / 2 != b / 2 && !first.isKept && !second.isKept && first.key == second.key &&
          dot(m_state.outward(a), m_state.outward(b)) < 0.0 && bendAt(a, b) <= kMostBend &&
          !m_state.meetsLine(node)) {
        m_next[a] = b;
        m_next[b] = a;
      }
    }
  }

  double bendAt(std::uint32_t a, std::uint32_t b) const {
    return std::asin(std::min(1.0, std::fabs(cross(m_state.outward(a), m_state.outward(b)))));
  }

  /// A chain as the near ends of its pieces, from one of its free ends on. Each is found from
  /// either side; the lesser number keeps it.
  void addChain(std::uint32_t first, std::vector<std::vector<std::uint32_t>>& chains) const {
    std::vector<std::uint32_t> chain{first};
    for (std::uint32_t next = m_next[first ^ 1U]; next != kNone; next = m_next[next ^ 1U]) {
      chain.push_back(next);
    }
    if (chain.back() / 2 < first / 2) {
      return;
    }
    if (isStraight(chain)) {
      chains.push_back(std::move(chain));
      return;
    }
    std::vector<std::uint32_t> part{chain.front()};
    for (std::size_t i = 1; i <= chain.size(); ++i) {
      if (i < chain.size() && bendAt(chain[i - 1] ^ 1U, chain[i]) <= kStraightBend) {
        part.push_back(chain[i]);
        continue;
      }
      if (part.size() > 1 && isStraight(part)) {
        chains.push_back(part);
      }
      part.clear();
      if (i < chain.size()) {
        part.push_back(chain[i]);
      }
    }
  }

  /// Whether all joints are next to the line from end to end, and the pieces bend little.
  bool isStraight(const std::vector<std::uint32_t>& chain) const {
    const AcGePoint2d& from = m_state.at(chain.front());
    const AcGeVector2d way = m_state.at(chain.back() ^ 1U) - from;
    const double length = lengthOf(way);
    double bend = 0.0;
    for (std::size_t i = 1; i < chain.size(); ++i) {
      bend += bendAt(chain[i - 1] ^ 1U, chain[i]);
      if (!(std::fabs(cross(way, m_state.at(chain[i]) - from)) <=
            m_state.options().snap * length)) {
        return false;
      }
    }
    return bend <= kMostBend;
  }

  bool merge(const std::vector<std::vector<std::uint32_t>>& chains) {
    std::vector<std::pair<std::uint32_t, std::size_t>> members;
    for (std::size_t i = 0; i < chains.size(); ++i) {
      for (const std::uint32_t end : chains[i]) {
        members.emplace_back(end / 2, i);
      }
    }
    // The merge takes the last record first; the first line in the input is to stay.
    std::sort(members.begin(), members.end(), [&](const auto& a, const auto& b) {
      return m_state.item(a.first).number > m_state.item(b.first).number;
    });
    CMergeGougeAlgorithm algorithm;
    std::map<const MergeGougeSeg*, std::uint32_t> lineOf;
    for (const auto& [line, chain] : members) {
      auto* const record = new MergeGougeSeg();
      algorithm.GetSrcGougeLines().push_back(record);
      const Item& item = m_state.item(line);
      record->ptStart.set(item.ends[0].x, item.ends[0].y, 0.0);
      record->ptEnd.set(item.ends[1].x, item.ends[1].y, 0.0);
      // Pieces of one chain alone merge.
      record->dAttr1 = static_cast<double>(chain);
      lineOf.emplace_hint(lineOf.end(), record, line);
    }
    algorithm.MergeGougeLines();
    bool changed = false;
    std::vector<std::pair<std::uint32_t, const MergeGougeSeg*>> merged;
    for (const MergeGougeSeg* record : algorithm.GetMergeGougeLines()) {
      merged.emplace_back(lineOf.at(record), record);
    }
    std::sort(merged.begin(), merged.end());
    for (const auto& [survivor, record] : merged) {
      Item& item = m_state.items()[survivor];
      AcGePoint2d ends[2] = {{record->ptStart.x, record->ptStart.y},
                             {record->ptEnd.x, record->ptEnd.y}};
      // The merge may turn a line round.
      if (dot(ends[1] - ends[0], m_state.direction(survivor)) < 0.0) {
        std::swap(ends[0], ends[1]);
      }
      item.ends[0] = ends[0];
      item.ends[1] = ends[1];
      for (const MergeGougeSeg* absorbed : record->mergedSegs) {
        m_state.remove(lineOf.at(absorbed), survivor, CleanStep::Join);
        changed = true;
      }
    }
    return changed;
  }

  State& m_state;
  std::vector<std::uint32_t> m_next;
};

/// How many lines hold a place beside one: two of them make it a joint that stays one without it.
bool isHeldWithout(const State& state, const Node& node, std::size_t line) {
  std::size_t others = 0;
  for (const std::uint32_t end : state.endsOf(node)) {
    others += end / 2 != line && state.length(end / 2) >= state.options().spur ? 1 : 0;
  }
  if (others >= 2) {
    return true;
  }
  bool isInside = false;
  state.visitNear(node.at, state.same(), [&](std::size_t other) {
    const AcGeVector2d to = node.at - state.item(other).ends[0];
    const double place = dot(to, state.direction(other));
    isInside =
        isInside ||
        (other != line && place > state.same() && place < state.length(other) - state.same() &&
         std::fabs(cross(state.direction(other), to)) <= state.same() &&
         std::fabs(cross(state.direction(other), state.direction(line))) > kLeastSine);
  });
  return isInside;
}

}  // namespace

bool removeSpurs(State& state) {
  std::vector<std::size_t> spurs;
  for (std::size_t line = 0; line < state.items().size(); ++line) {
    const Item& item = state.item(line);
    if (!item.isLive || item.isKept || !(state.length(line) < state.options().spur)) {
      continue;
    }
    const Node& start = state.nodes()[state.nodeOf(2 * line)];
    const Node& end = state.nodes()[state.nodeOf(2 * line + 1)];
    if (start.isDangling != end.isDangling &&
        isHeldWithout(state, start.isDangling ? end : start, line)) {
      spurs.push_back(line);
    }
  }
  for (const std::size_t line : spurs) {
    state.remove(line, line, CleanStep::Spur);
  }
  return !spurs.empty();
}

bool joinLines(State& state) {
  return Joining(state).join();
}

}  // namespace quoin::plan::cleaning
