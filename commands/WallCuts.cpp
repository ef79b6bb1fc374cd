#include "commands/WallCuts.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>

namespace quoin::commands {

namespace {

class Cutter {
 public:
  Cutter(std::vector<WallPrism>& prisms, const FoundOpenings& found, const OpeningHeights& heights,
         double captureDistance)
      : m_prisms(prisms),
        m_found(found),
        m_heights(heights),
        m_tolerance(noLength(captureDistance)) {
    m_reasons.resize(found.openings.size());
    for (WallPrism& prism : prisms) {
      prism.tolerance = m_tolerance;
      prism.clearance = captureDistance;
    }
  }

  WallCuts run() {
    std::vector<std::vector<WallCut>> ofWall(m_prisms.size());
    for (std::size_t i = 0; i < m_found.openings.size(); ++i) {
      if (const std::optional<WallCut> cut = cutFor(i)) {
        ofWall[m_found.openings[i].wall].push_back(*cut);
      }
    }
    WallCuts result;
    for (std::size_t wall = 0; wall < ofWall.size(); ++wall) {
      if (!ofWall[wall].empty()) {
        cutWall(m_prisms[wall], ofWall[wall]);
        result.cuts.insert(result.cuts.end(), ofWall[wall].begin(), ofWall[wall].end());
      }
    }
    std::sort(result.cuts.begin(), result.cuts.end(),
              [](const WallCut& a, const WallCut& b) { return a.opening < b.opening; });
    for (std::size_t i = 0; i < m_reasons.size(); ++i) {
      if (!m_reasons[i].empty()) {
        result.leftOut.push_back({m_found.entities[i], m_reasons[i]});
      }
    }
    return result;
  }

 private:
  /// Where the opening is cut if it is alone in its wall.
  std::optional<WallCut> cutFor(std::size_t index) {
    const plan::Opening& opening = m_found.openings[index];
    const WallPrism& prism = m_prisms[opening.wall];
    const OpeningPlace place =
        placeOf(opening, prism.straightFrom(), prism.straightTo(), m_tolerance);
    const bool isWindow = opening.kind == plan::OpeningKind::Window;
    const double sill = opening.sill.value_or(isWindow ? m_heights.windowSill : 0.0);
    const double head = opening.head.value_or(isWindow ? m_heights.windowHead : m_heights.doorHead);
    const WallHole hole{place.from, place.to, std::max(sill, 0.0), std::min(head, prism.height)};
    const auto leaveOut = [&](const std::string& reason) {
      m_reasons[index] = reason;
      return std::nullopt;
    };
    if (!place.reason.empty()) {
      return leaveOut(place.reason);
    }
    if (!(prism.height - sill > m_tolerance)) {
      return leaveOut("begins above its wall");
    }
    if (!(hole.head - hole.sill > m_tolerance)) {
      return leaveOut("has its head no higher than its sill");
    }
    return WallCut{index, hole, place.isShortened,
                   head - hole.head > m_tolerance || hole.sill - sill > m_tolerance};
  }

  /// Moves numbers that are close together onto the first of them; the bounds stay.
  void join(std::vector<double*> values, double least, double greatest) const {
    std::sort(values.begin(), values.end(),
              [](const double* a, const double* b) { return *a < *b; });
    double at = least;
    for (double* const value : values) {
      if (*value - at > m_tolerance) {
        at = *value;
      }
      *value = greatest - at > m_tolerance ? at : greatest;
    }
  }

  void cutWall(WallPrism& prism, std::vector<WallCut>& cuts) {
    std::vector<double*> jambs;
    std::vector<double*> levels;
    for (WallCut& cut : cuts) {
      jambs.insert(jambs.end(), {&cut.hole.from, &cut.hole.to});
      levels.insert(levels.end(), {&cut.hole.sill, &cut.hole.head});
    }
    join(std::move(jambs), prism.straightFrom(), prism.straightTo());
    join(std::move(levels), 0.0, prism.height);
    leaveOutWhere(cuts, "has no size beside the openings next to it", [](const WallHole& hole) {
      return !(hole.from < hole.to && hole.sill < hole.head);
    });
    leaveOutHeaps(cuts);
    while (leaveOutEdges(cuts, prism.height)) {
    }
    prism.holes = holesOf(cuts);
    const std::vector<WallSlab> slabs = slabsBetween(prism.holes, prism.height);
    const bool mayBeGone = std::all_of(slabs.begin(), slabs.end(),
                                       [](const WallSlab& slab) { return slab.solid.empty(); });
    if (!slabs.empty() && mayBeGone && prism.faces().empty()) {
      leaveOutWhere(cuts, "would, with others, leave nothing of its wall",
                    [](const WallHole&) { return true; });
      prism.holes.clear();
    }
  }

  static std::vector<WallHole> holesOf(const std::vector<WallCut>& cuts) {
    std::vector<WallHole> holes;
    holes.reserve(cuts.size());
    for (const WallCut& cut : cuts) {
      holes.push_back(cut.hole);
    }
    const auto key = [](const WallHole& hole) {
      return std::tuple(hole.from, hole.to, hole.sill, hole.head);
    };
    std::sort(holes.begin(), holes.end(),
              [&](const WallHole& a, const WallHole& b) { return key(a) < key(b); });
    holes.erase(std::unique(holes.begin(), holes.end()), holes.end());
    return holes;
  }

  template <class Condition>
  bool leaveOutWhere(std::vector<WallCut>& cuts, const char* reason, Condition isOut) {
    return std::erase_if(cuts, [&](const WallCut& cut) {
             if (isOut(cut.hole)) {
               m_reasons[cut.opening] = reason;
             }
             return isOut(cut.hole);
           }) > 0;
  }

  /// Keeps what lies over one another bounded, and the time that takes.
  void leaveOutHeaps(std::vector<WallCut>& cuts) {
    std::vector<WallHole> kept;
    std::vector<WallHole> here;
    for (const WallHole& hole : holesOf(cuts)) {
      std::erase_if(here, [&](const WallHole& other) { return other.to <= hole.from; });
      if (here.size() < kMostOverlapping) {
        here.push_back(hole);
        kept.push_back(hole);
      }
    }
    const auto isBefore = [](const WallHole& a, const WallHole& b) {
      return std::tuple(a.from, a.to, a.sill, a.head) < std::tuple(b.from, b.to, b.sill, b.head);
    };
    leaveOutWhere(cuts, "overlaps too many others", [&](const WallHole& hole) {
      return !std::binary_search(kept.begin(), kept.end(), hole, isBefore);
    });
  }

  /// Where two holes touch in an edge alone, four faces would meet there. Both go, since neither
  /// is better than the other.
  bool leaveOutEdges(std::vector<WallCut>& cuts, double height) {
    const std::vector<WallSlab> slabs = slabsBetween(holesOf(cuts), height);
    std::vector<std::pair<double, double>> edges;  // sorted, as the slabs are
    for (std::size_t i = 0; i + 1 < slabs.size(); ++i) {
      const auto& before = slabs[i].solid;
      const auto& behind = slabs[i + 1].solid;
      for (const auto& [low, high] : before) {
        for (const auto& [otherLow, otherHigh] : behind) {
          if (low == otherHigh || high == otherLow) {
            edges.emplace_back(slabs[i].to, low == otherHigh ? low : high);
          }
        }
      }
    }
    std::sort(edges.begin(), edges.end());
    const auto isEdge = [&](double at, double level) {
      return std::binary_search(edges.begin(), edges.end(), std::pair(at, level));
    };
    return !edges.empty() &&
           leaveOutWhere(cuts, "touches another opening in an edge alone",
                         [&](const WallHole& hole) {
                           return isEdge(hole.from, hole.sill) || isEdge(hole.from, hole.head) ||
                                  isEdge(hole.to, hole.sill) || isEdge(hole.to, hole.head);
                         });
  }

  std::vector<WallPrism>& m_prisms;
  const FoundOpenings& m_found;
  const OpeningHeights& m_heights;
  double m_tolerance;
  std::vector<std::string> m_reasons;  // why an opening is left out; empty for the others
};

}  // namespace

double noLength(double captureDistance) {
  constexpr double kShare = 1.0e-3;
  return kShare * captureDistance;
}

OpeningPlace placeOf(const plan::Opening& opening, double straightFrom, double straightTo,
                     double tolerance) {
  OpeningPlace place{
      std::max(opening.from, straightFrom), std::min(opening.to, straightTo), false, {}};
  if (!(straightTo - straightFrom > tolerance)) {
    place.reason = "stands in a wall that has no straight part between its ends";
  } else if (opening.to - opening.from > straightTo - straightFrom + tolerance) {
    place.reason = "is wider than the straight part of its wall";
  } else if (!(place.to - place.from > tolerance)) {
    place.reason = "lies in the joint at the end of its wall";
  }
  place.isShortened = place.from - opening.from > tolerance || opening.to - place.to > tolerance;
  return place;
}

WallCuts cutOpenings(std::vector<WallPrism>& prisms, const FoundOpenings& found,
                     const OpeningHeights& heights, double captureDistance) {
  return Cutter(prisms, found, heights, captureDistance).run();
}

}  // namespace quoin::commands
