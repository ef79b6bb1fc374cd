#include "commands/compare/Matching.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>
#include <unordered_map>

#include "gevec3d.h"

namespace quoin::commands {

namespace {

using Index = std::size_t;
using Indices = std::vector<Index>;
using Items = std::vector<MatchItem>;
using Key = std::uint64_t;

/// A drawing rarely has more groups of things that moved for themselves.
constexpr std::size_t kMostVectors = 16;
/// Of equal entities that moved, so many pairs are compared by distance; of more they are taken
/// in the order of their places.
constexpr std::size_t kMostPairs = 4096;
/// How many neighbours one entity is compared with, tag by tag.
constexpr std::size_t kMostNeighbours = 8;
/// Cells that vectors are put into, as a share of the largest coordinate.
constexpr double kVectorCell = 1e-8;

Key mixed(Key a, Key b) {
  return (a ^ (b + 0x9E3779B97F4A7C15ULL + (a << 6) + (a >> 2))) * 0xFF51AFD7ED558CCDULL;
}

Key cell(double value, double size, double shift = 0.0) {
  const double at = std::floor(value / size + shift);
  return std::hash<double>()(std::isfinite(at) ? (at == 0.0 ? 0.0 : at) : 0.5);
}

Key cellKey(const AcGePoint3d& point, double size) {
  return mixed(mixed(cell(point.x, size, 0.5), cell(point.y, size, 0.5)), cell(point.z, size, 0.5));
}

auto placeOf(const MatchItem& item) {
  const AcGePoint3d& at = item.signature.anchor;
  return std::make_tuple(at.x, at.y, at.z, item.handle);
}

class Matcher {
 public:
  Matcher(const Items& before, const Items& after, const MatchRules& rules)
      : m_before(before), m_after(after), m_rules(rules) {}

  Matches run() {
    Indices before(m_before.size());
    Indices after(m_after.size());
    std::iota(before.begin(), before.end(), Index{0});
    std::iota(after.begin(), after.end(), Index{0});
    if (m_rules.usesHandles) {
      pairHandles(before, after);
    }
    pairEqual(before, after, &Matcher::wholeKey, m_matches.same);
    pairEqual(before, after, &Matcher::placeKey, m_matches.unsure);
    pairNeighbours(before, after);
    pairMoved(before, after);
    m_matches.removed = std::move(before);
    m_matches.added = std::move(after);
    return std::move(m_matches);
  }

 private:
  using KeyOf = Key (*)(const MatchItem&);
  struct Keyed {
    Key key;
    std::uint64_t handle;
    Index index;
    bool operator<(const Keyed& other) const {
      return std::tie(key, handle, index) < std::tie(other.key, other.handle, other.index);
    }
  };

  static Key wholeKey(const MatchItem& item) {
    return mixed(item.signature.place, item.signature.properties);
  }
  static Key placeKey(const MatchItem& item) { return item.signature.place; }
  static Key shapeKey(const MatchItem& item) {
    return mixed(item.signature.shape, item.signature.properties);
  }

  static std::vector<Keyed> keyed(const Items& items, const Indices& indices, KeyOf keyOf) {
    std::vector<Keyed> keys;
    keys.reserve(indices.size());
    for (const Index i : indices) {
      keys.push_back({keyOf(items[i]), items[i].handle, i});
    }
    std::sort(keys.begin(), keys.end());
    return keys;
  }

  /// Calls `visit(begin, end, begin, end)` for every key that both have.
  template <class Visit>
  static void forEachCommonKey(const std::vector<Keyed>& before, const std::vector<Keyed>& after,
                               Visit&& visit) {
    const auto endOf = [](const std::vector<Keyed>& keys, std::size_t begin) {
      std::size_t end = begin;
      while (end < keys.size() && keys[end].key == keys[begin].key) {
        ++end;
      }
      return end;
    };
    for (std::size_t i = 0, j = 0; i < before.size() && j < after.size();) {
      if (before[i].key != after[j].key) {
        ++(before[i].key < after[j].key ? i : j);
        continue;
      }
      const std::size_t oldEnd = endOf(before, i);
      const std::size_t newEnd = endOf(after, j);
      visit(i, oldEnd, j, newEnd);
      i = oldEnd;
      j = newEnd;
    }
  }

  /// Takes those out that are paired.
  void keepRest(Indices& before, Indices& after) {
    std::erase_if(before, [&](Index i) { return m_isTaken[0].size() > i && m_isTaken[0][i]; });
    std::erase_if(after, [&](Index i) { return m_isTaken[1].size() > i && m_isTaken[1][i]; });
  }

  void take(Index before, Index after, std::vector<MatchedPair>& pairs) {
    m_isTaken[0].resize(m_before.size());
    m_isTaken[1].resize(m_after.size());
    m_isTaken[0][before] = m_isTaken[1][after] = true;
    pairs.push_back({before, after});
  }

  /// Pairs of one handle and kind, in the order of handles; with those whose handles both have,
  /// of whatever kind.
  std::vector<MatchedPair> handlePairs(const Indices& before, const Indices& after,
                                       Indices& sharedBefore, Indices& sharedAfter) const {
    const KeyOf handleOf = [](const MatchItem& item) { return item.handle; };
    std::vector<MatchedPair> pairs;
    const std::vector<Keyed> olds = keyed(m_before, before, handleOf);
    const std::vector<Keyed> news = keyed(m_after, after, handleOf);
    forEachCommonKey(olds, news, [&](std::size_t i, std::size_t, std::size_t j, std::size_t) {
      const Index old = olds[i].index;
      const Index now = news[j].index;
      if (olds[i].key == 0) {
        return;
      }
      sharedBefore.push_back(old);
      sharedAfter.push_back(now);
      if (m_before[old].kind == m_after[now].kind) {
        pairs.push_back({old, now});
      }
    });
    return pairs;
  }

  void pairHandles(Indices& before, Indices& after) {
    Indices sharedBefore;
    Indices sharedAfter;
    std::vector<MatchedPair> pairs = handlePairs(before, after, sharedBefore, sharedAfter);
    std::size_t own = m_rules.knownSame;
    std::erase_if(pairs, [&](const MatchedPair& pair) {
      const bool isSame = wholeKey(m_before[pair.before]) == wholeKey(m_after[pair.after]);
      if (isSame) {
        ++own;
        take(pair.before, pair.after, m_matches.same);
      }
      return isSame;
    });
    keepRest(before, after);
    keepRest(sharedBefore, sharedAfter);
    if (std::max(countEqual(sharedBefore, after), countEqual(before, sharedAfter)) > own) {
      m_matches.isRenumbered = true;
      return;
    }
    for (const MatchedPair& pair : pairs) {
      take(pair.before, pair.after, m_matches.unsure);
    }
    keepRest(before, after);
  }

  /// How many of these say the same; none of them under its own handle.
  std::size_t countEqual(const Indices& before, const Indices& after) const {
    std::size_t count = 0;
    forEachCommonKey(keyed(m_before, before, &Matcher::wholeKey),
                     keyed(m_after, after, &Matcher::wholeKey),
                     [&](std::size_t i, std::size_t oldEnd, std::size_t j, std::size_t newEnd) {
                       count += std::min(oldEnd - i, newEnd - j);
                     });
    return count;
  }

  void pairEqual(Indices& before, Indices& after, KeyOf keyOf, std::vector<MatchedPair>& pairs) {
    const std::vector<Keyed> olds = keyed(m_before, before, keyOf);
    const std::vector<Keyed> news = keyed(m_after, after, keyOf);
    forEachCommonKey(olds, news,
                     [&](std::size_t i, std::size_t oldEnd, std::size_t j, std::size_t newEnd) {
                       for (; i < oldEnd && j < newEnd; ++i, ++j) {
                         take(olds[i].index, news[j].index, pairs);
                       }
                     });
    keepRest(before, after);
  }

  /// Entities whose numbers differ by so little that it is nothing, but lie in two cells.
  void pairNeighbours(Indices& before, Indices& after) {
    if (!m_rules.isSamePlace || before.empty() || after.empty()) {
      return;
    }
    const double size = std::max(2.0 * m_rules.near, 2e-11 * m_rules.farthest);
    std::unordered_multimap<Key, Index> places;
    places.reserve(after.size());
    const auto keyAt = [&](const MatchItem& item, int column, int row) {
      const AcGePoint3d& at = item.signature.anchor;
      return mixed(item.signature.words, mixed(cell(at.x, size, column), cell(at.y, size, row)));
    };
    for (const Index i : after) {
      places.emplace(keyAt(m_after[i], 0, 0), i);
    }
    std::sort(before.begin(), before.end(),
              [&](Index a, Index b) { return placeOf(m_before[a]) < placeOf(m_before[b]); });
    for (const Index i : before) {
      std::size_t left = kMostNeighbours;
      bool isFound = false;
      for (int at = 0; at < 9 && !isFound && left > 0; ++at) {
        // No equal_range: it would walk to the end of them all.
        const Key key = keyAt(m_before[i], at % 3 - 1, at / 3 - 1);
        auto place = places.find(key);
        for (; place != places.end() && place->first == key && left > 0; ++place, --left) {
          if (m_rules.isSamePlace(i, place->second)) {
            take(i, place->second, m_matches.unsure);
            places.erase(place);
            isFound = true;
            break;
          }
        }
      }
    }
    keepRest(before, after);
  }

  // --- what moved ---------------------------------------------------------------------------

  struct Group {
    Indices before;
    Indices after;
  };

  AcGeVector3d vectorOf(Index before, Index after) const {
    return m_after[after].signature.anchor - m_before[before].signature.anchor;
  }

  std::vector<Group> groupsOfShapes(const Indices& before, const Indices& after) const {
    const std::vector<Keyed> olds = keyed(m_before, before, &Matcher::shapeKey);
    const std::vector<Keyed> news = keyed(m_after, after, &Matcher::shapeKey);
    std::vector<Group> groups;
    const auto gather = [](const Items& items, const std::vector<Keyed>& keys, std::size_t begin,
                           std::size_t end) {
      Indices indices;
      for (std::size_t i = begin; i < end; ++i) {
        if (items[keys[i].index].signature.hasAnchor) {
          indices.push_back(keys[i].index);
        }
      }
      std::sort(indices.begin(), indices.end(),
                [&](Index a, Index b) { return placeOf(items[a]) < placeOf(items[b]); });
      return indices;
    };
    forEachCommonKey(
        olds, news, [&](std::size_t i, std::size_t oldEnd, std::size_t j, std::size_t newEnd) {
          groups.push_back({gather(m_before, olds, i, oldEnd), gather(m_after, news, j, newEnd)});
        });
    return groups;
  }

  /// The vectors that most of them may have moved by.
  std::vector<AcGeVector3d> popularVectors(const std::vector<Group>& groups, double size) const {
    struct Votes {
      std::size_t count = 0;
      AcGeVector3d vector;
    };
    std::unordered_map<Key, Votes> votes;
    for (const Group& group : groups) {
      // In the order of places those that moved alike stand alike.
      for (std::size_t i = 0; group.before.size() == group.after.size() && i < group.before.size();
           ++i) {
        const AcGeVector3d vector = vectorOf(group.before[i], group.after[i]);
        Votes& vote = votes[cellKey(AcGePoint3d::kOrigin + vector, size)];
        vote.vector = vote.count++ == 0 ? vector : vote.vector;
      }
    }
    std::vector<Votes> sorted;
    for (const auto& [key, vote] : votes) {
      if (vote.count > 1) {
        sorted.push_back(vote);
      }
    }
    std::sort(sorted.begin(), sorted.end(), [](const Votes& a, const Votes& b) {
      return std::make_tuple(b.count, a.vector.length(), a.vector.x, a.vector.y, a.vector.z) <
             std::make_tuple(a.count, b.vector.length(), b.vector.x, b.vector.y, b.vector.z);
    });
    sorted.resize(std::min(sorted.size(), kMostVectors));
    std::vector<AcGeVector3d> vectors;
    vectors.reserve(sorted.size());
    for (const Votes& vote : sorted) {
      vectors.push_back(vote.vector);
    }
    return vectors;
  }

  void pairMoved(Indices& before, Indices& after) {
    const double size = std::max({m_rules.farthest * kVectorCell, m_rules.near, 1e-300});
    std::vector<Group> groups = groupsOfShapes(before, after);
    const std::vector<AcGeVector3d> vectors = popularVectors(groups, size);
    m_isTaken[0].resize(m_before.size());
    m_isTaken[1].resize(m_after.size());
    for (Group& group : groups) {
      if (group.before.size() > 1 || group.after.size() > 1) {
        pairByVectors(group, vectors, size);
        keepRest(group.before, group.after);
      }
      if (group.before.size() * group.after.size() <= kMostPairs) {
        pairNearest(group);
      } else {
        for (std::size_t i = 0; i < std::min(group.before.size(), group.after.size()); ++i) {
          take(group.before[i], group.after[i], m_matches.moved);
        }
      }
    }
    keepRest(before, after);
  }

  void pairByVectors(const Group& group, const std::vector<AcGeVector3d>& vectors, double size) {
    std::unordered_multimap<Key, Index> places;
    for (const Index i : group.after) {
      places.emplace(cellKey(m_after[i].signature.anchor, size), i);
    }
    for (const AcGeVector3d& vector : vectors) {
      for (const Index i : group.before) {
        const auto place = places.find(cellKey(m_before[i].signature.anchor + vector, size));
        if (!m_isTaken[0][i] && place != places.end()) {
          take(i, place->second, m_matches.moved);
          places.erase(place);
        }
      }
    }
  }

  void pairNearest(const Group& group) {
    using Candidate = std::tuple<double, double, double, Index, Index>;
    std::vector<Candidate> candidates;
    for (std::size_t i = 0; i < group.before.size(); ++i) {
      for (std::size_t j = 0; j < group.after.size(); ++j) {
        const AcGeVector3d way = vectorOf(group.before[i], group.after[j]);
        candidates.emplace_back(way.length(), std::fabs(way.x), std::fabs(way.y), i, j);
      }
    }
    std::sort(candidates.begin(), candidates.end());
    for (const auto& [length, x, y, i, j] : candidates) {
      if (!m_isTaken[0][group.before[i]] && !m_isTaken[1][group.after[j]]) {
        take(group.before[i], group.after[j], m_matches.moved);
      }
    }
  }

  const Items& m_before;
  const Items& m_after;
  const MatchRules& m_rules;
  Matches m_matches;
  std::vector<bool> m_isTaken[2];
};

}  // namespace

Matches match(const std::vector<MatchItem>& before, const std::vector<MatchItem>& after,
              const MatchRules& rules) {
  return Matcher(before, after, rules).run();
}

}  // namespace quoin::commands
