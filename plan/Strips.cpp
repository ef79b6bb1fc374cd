#include "plan/Strips.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "plan/SegmentGrid.h"

namespace quoin::plan {

namespace {

/// Walks along a group's axis past the ends of its faces and tells what lies side by side.
class Sweep {
 public:
  Sweep(const Faces& faces, const FindWallsOptions& options, std::vector<Strip>& result)
      : m_faces(faces), m_options(options), m_result(result) {}

  /// The faces of one group, by their begin.
  void run(std::size_t first, std::size_t last) {
    std::vector<std::size_t> byEnd;
    for (std::size_t i = first; i < last; ++i) {
      byEnd.push_back(i);
    }
    std::sort(byEnd.begin(), byEnd.end(), [&](std::size_t a, std::size_t b) {
      return m_faces.faces[a].end < m_faces.faces[b].end;
    });
    std::size_t next = first;
    for (const std::size_t ending : byEnd) {
      for (; next < last && m_faces.faces[next].begin < m_faces.faces[ending].end; ++next) {
        insert(next);
      }
      remove(ending);
    }
  }

 private:
  struct Side {
    double offset;
    std::size_t face;
    bool operator<(const Side& other) const {
      return offset != other.offset ? offset < other.offset : face < other.face;
    }
  };
  /// The faces beside one another now, each with where its left neighbour became that.
  using Active = std::map<Side, double>;

  void insert(std::size_t face) {
    const double at = m_faces.faces[face].begin;
    const auto here = m_active.emplace(Side{m_faces.faces[face].offset, face}, at).first;
    if (here != m_active.begin()) {
      const auto before = std::prev(here);
      emit(*before, std::next(here), at);
      before->second = at;
    }
  }
  void remove(std::size_t face) {
    const double at = m_faces.faces[face].end;
    const auto here = m_active.find(Side{m_faces.faces[face].offset, face});
    emit(*here, std::next(here), at);
    if (here != m_active.begin()) {
      const auto before = std::prev(here);
      emit(*before, here, at);
      before->second = at;
    }
    m_active.erase(here);
  }
  void emit(const Active::value_type& right, Active::iterator left, double end) {
    if (left == m_active.end()) {
      return;
    }
    Strip strip;
    strip.right = right.first.face;
    strip.left = left->first.face;
    strip.begin = right.second;
    strip.end = end;
    const Face& rightFace = m_faces.faces[strip.right];
    const Face& leftFace = m_faces.faces[strip.left];
    const double at = 0.5 * (strip.begin + strip.end);
    const double r = rightFace.offsetAt(at);
    const double l = leftFace.offsetAt(at);
    strip.width = l - r;
    strip.middle = 0.5 * (l + r);
    strip.slope = 0.5 * (rightFace.slope + leftFace.slope);
    strip.taper = std::fabs(leftFace.slope - rightFace.slope) * strip.length();
    const double slack = m_options.tolerance;
    if (strip.length() > slack && strip.width >= m_options.minWidth - slack &&
        strip.width <= m_options.maxWidth + slack) {
      m_result.push_back(strip);
    }
  }

  const Faces& m_faces;
  const FindWallsOptions& m_options;
  std::vector<Strip>& m_result;
  Active m_active;
};

/// So many strips of one width side by side are stairs, a hatch or panes, and no walls.
constexpr std::size_t kLadder = 4;

/// A strip stays with what others leave of it where that is so much of its length.
constexpr double kEnoughFree = 0.6;
/// A chain is no shorter than so many times its width.
constexpr double kLeastSlender = 0.8;

/// Takes ladders out of the strips of one group.
void dropLadders(std::vector<Strip>& strips, const FindWallsOptions& options) {
  std::vector<std::pair<std::size_t, std::size_t>> byRight;  // a strip by its right face
  for (std::size_t i = 0; i < strips.size(); ++i) {
    byRight.emplace_back(strips[i].right, i);
  }
  std::sort(byRight.begin(), byRight.end());
  const std::size_t none = strips.size();
  std::vector<std::size_t> next(strips.size(), none);
  std::vector<bool> isFirst(strips.size(), true);
  for (std::size_t i = 0; i < strips.size(); ++i) {
    const Strip& strip = strips[i];
    for (auto at = std::lower_bound(byRight.begin(), byRight.end(),
                                    std::pair<std::size_t, std::size_t>(strip.left, 0));
         at != byRight.end() && at->first == strip.left; ++at) {
      const Strip& beside = strips[at->second];
      const double shared = std::min(strip.end, beside.end) - std::max(strip.begin, beside.begin);
      if (std::fabs(beside.width - strip.width) <= options.tolerance &&
          shared >= 0.8 * std::max(strip.length(), beside.length())) {
        next[i] = at->second;
        isFirst[at->second] = false;
      }
    }
  }
  std::vector<bool> isRung(strips.size(), false);
  for (std::size_t i = 0; i < strips.size(); ++i) {
    if (!isFirst[i]) {
      continue;
    }
    std::size_t count = 0;
    for (std::size_t at = i; at != none; at = next[at]) {
      ++count;
    }
    for (std::size_t at = i; count >= kLadder && at != none; at = next[at]) {
      isRung[at] = true;
    }
  }
  std::size_t kept = 0;
  for (std::size_t i = 0; i < strips.size(); ++i) {
    if (!isRung[i]) {
      strips[kept++] = strips[i];
    }
  }
  strips.resize(kept);
}

/// Strips of one group, by their begin, as chains.
class Chainer {
 public:
  Chainer(const FindWallsOptions& options, std::vector<StripChain>& result)
      : m_options(options), m_result(result) {}

  void add(const Strip& strip, std::size_t group) {
    const auto open = findOpen(strip);
    std::size_t chain = m_result.size();
    if (open != m_open.end()) {
      chain = open->second;
      m_open.erase(open);
    } else {
      m_result.emplace_back().group = group;
    }
    m_result[chain].strips.push_back(strip);
    m_open.emplace(strip.middleAt(strip.end), chain);
  }
  void endGroup() { m_open.clear(); }

 private:
  using Open = std::multimap<double, std::size_t>;

  Open::iterator findOpen(const Strip& strip) {
    auto found = m_open.end();
    double least = m_options.maxDrawnOpening;
    const double middle = strip.middleAt(strip.begin);
    const double aside = 2.0 * m_options.tolerance;
    for (auto open = m_open.lower_bound(middle - aside);
         open != m_open.end() && open->first <= middle + aside;) {
      const Strip& last = m_result[open->second].strips.back();
      const double gap = strip.begin - last.end;
      if (gap > m_options.maxDrawnOpening) {
        open = m_open.erase(open);
        continue;
      }
      if (gap >= -m_options.tolerance && gap < least &&
          std::fabs(last.width - strip.width) <= 1.5 * m_options.tolerance) {
        least = gap;
        found = open;
      }
      ++open;
    }
    return found;
  }

  const FindWallsOptions& m_options;
  std::vector<StripChain>& m_result;
  Open m_open;
};

/// Intervals that walls take of the sides of faces.
class TakenSides {
 public:
  explicit TakenSides(std::size_t faceCount) : m_taken(2 * faceCount) {}

  void take(const Strip& strip) {
    m_taken[leftOf(strip.right)].push_back({strip.begin, strip.end});
    m_taken[rightOf(strip.left)].push_back({strip.begin, strip.end});
  }
  /// The longest part of the strip beside whose faces no wall lies on the other side.
  std::pair<double, double> freePart(const Strip& strip) const {
    std::vector<std::pair<double, double>> taken;
    for (const std::size_t side : {rightOf(strip.right), leftOf(strip.left)}) {
      for (const auto& [begin, end] : m_taken[side]) {
        if (begin < strip.end && end > strip.begin) {
          taken.emplace_back(begin, end);
        }
      }
    }
    std::sort(taken.begin(), taken.end());
    std::pair<double, double> best(strip.begin, strip.begin);
    double at = strip.begin;
    for (const auto& [begin, end] : taken) {
      if (begin - at > best.second - best.first) {
        best = {at, begin};
      }
      at = std::max(at, end);
    }
    if (strip.end - at > best.second - best.first) {
      best = {at, strip.end};
    }
    return best;
  }

 private:
  static std::size_t rightOf(std::size_t face) { return 2 * face; }
  static std::size_t leftOf(std::size_t face) { return 2 * face + 1; }

  std::vector<std::vector<std::pair<double, double>>> m_taken;
};

/// The area that two convex polygons share.
double sharedArea(std::vector<AcGePoint2d> a, const std::vector<AcGePoint2d>& b) {
  for (std::size_t i = 0; i < b.size() && !a.empty(); ++i) {
    const AcGePoint2d& from = b[i];
    const AcGeVector2d side = b[(i + 1) % b.size()] - from;
    std::vector<AcGePoint2d> inside;
    for (std::size_t j = 0; j < a.size(); ++j) {
      const AcGePoint2d& p = a[j];
      const AcGePoint2d& q = a[(j + 1) % a.size()];
      const double dp = sineOf(side, p - from);
      const double dq = sineOf(side, q - from);
      if (dp >= 0.0) {
        inside.push_back(p);
      }
      if ((dp > 0.0 && dq < 0.0) || (dp < 0.0 && dq > 0.0)) {
        inside.push_back(p + (q - p) * (dp / (dp - dq)));
      }
    }
    a.swap(inside);
  }
  double area = 0.0;
  for (std::size_t i = 0; i + 1 < a.size(); ++i) {
    area += 0.5 * sineOf(a[i] - a[0], a[i + 1] - a[0]);
  }
  return area;
}

/// Which chains' strips stand where others of another direction were taken before.
class TakenPlaces {
 public:
  TakenPlaces(const std::vector<StripChain>& chains, const Faces& faces, double cellSize)
      : m_faces(faces) {
    for (std::size_t chain = 0; chain < chains.size(); ++chain) {
      m_first.push_back(m_strips.size());
      for (const Strip& strip : chains[chain].strips) {
        const Axis& axis = faces.axes[chains[chain].group];
        m_grid.add(axis.at(strip.begin, strip.middle), axis.at(strip.end, strip.middle));
        m_strips.push_back({strip, chains[chain].group, false});
      }
    }
    m_grid.arrange(cellSize);
  }

  bool isTaken(std::size_t chain, std::size_t number) const {
    const Entry& mine = m_strips[m_first[chain] + number];
    const std::vector<AcGePoint2d> corners = cornersOf(mine.strip, m_faces.axes[mine.group]);
    const double area = mine.strip.length() * mine.strip.width;
    Box box(corners[0], corners[2]);
    const Box other(corners[1], corners[3]);
    box.least.set(std::min(box.least.x, other.least.x), std::min(box.least.y, other.least.y));
    box.greatest.set(std::max(box.greatest.x, other.greatest.x),
                     std::max(box.greatest.y, other.greatest.y));
    bool isTaken = false;
    m_grid.visitIn(box, [&](std::size_t i) {
      const Entry& entry = m_strips[i];
      if (isTaken || !entry.isTaken || entry.group == mine.group) {
        return;
      }
      const double shared = sharedArea(corners, cornersOf(entry.strip, m_faces.axes[entry.group]));
      isTaken = shared > 0.5 * std::min(area, entry.strip.length() * entry.strip.width);
    });
    return isTaken;
  }
  void take(std::size_t chain, std::size_t number) {
    m_strips[m_first[chain] + number].isTaken = true;
  }

 private:
  struct Entry {
    Strip strip;
    std::size_t group;
    bool isTaken;
  };
  const Faces& m_faces;
  std::vector<std::size_t> m_first;
  std::vector<Entry> m_strips;
  SegmentGrid m_grid;
};

void score(StripChain& chain, const LengthsByWidth& lengths, const FindWallsOptions& options) {
  const double length = chain.length();
  double area = 0.0;
  for (const Strip& strip : chain.strips) {
    area += strip.length() * strip.width;
  }
  const double width = area / length;
  chain.share = lengths.shareOf(width, options.tolerance);
  // Common widths count more, thick walls less, what is shorter than wide least.
  chain.score = length * (0.1 + std::sqrt(chain.share)) * (1.2 - 0.4 * width / options.maxWidth) *
                std::min(1.0, length / (2.0 * width));
}

bool isBefore(const StripChain& a, const StripChain& b) {
  if (a.score != b.score) {
    return a.score > b.score;
  }
  if (a.group != b.group) {
    return a.group < b.group;
  }
  const Strip& left = a.strips.front();
  const Strip& right = b.strips.front();
  return left.begin != right.begin ? left.begin < right.begin : left.middle < right.middle;
}

}  // namespace

LengthsByWidth::LengthsByWidth(std::vector<std::pair<double, double>> lengths) {
  std::sort(lengths.begin(), lengths.end());
  m_sums.push_back(0.0);
  for (const auto& [width, length] : lengths) {
    m_widths.push_back(width);
    m_sums.push_back(m_sums.back() + length);
  }
}

double LengthsByWidth::shareOf(double width, double tolerance) const {
  const auto low = std::lower_bound(m_widths.begin(), m_widths.end(), width - tolerance);
  const auto high = std::upper_bound(m_widths.begin(), m_widths.end(), width + tolerance);
  const double sum = m_sums[static_cast<std::size_t>(high - m_widths.begin())] -
                     m_sums[static_cast<std::size_t>(low - m_widths.begin())];
  return m_sums.back() > 0.0 ? sum / m_sums.back() : 0.0;
}

double StripChain::length() const {
  double sum = 0.0;
  for (const Strip& strip : strips) {
    sum += strip.length();
  }
  return sum;
}

std::vector<AcGePoint2d> cornersOf(const Strip& strip, const Axis& axis) {
  const double half = 0.5 * strip.width;
  return {axis.at(strip.begin, strip.middle - half), axis.at(strip.end, strip.middle - half),
          axis.at(strip.end, strip.middle + half), axis.at(strip.begin, strip.middle + half)};
}

std::vector<StripChain> findStrips(const Faces& faces, const FindWallsOptions& options) {
  std::vector<StripChain> chains;
  std::vector<Strip> all;
  Chainer chainer(options, chains);
  for (std::size_t first = 0; first < faces.faces.size();) {
    const std::size_t group = faces.faces[first].group;
    std::size_t last = first;
    while (last < faces.faces.size() && faces.faces[last].group == group) {
      ++last;
    }
    std::vector<Strip> strips;
    Sweep(faces, options, strips).run(first, last);
    dropLadders(strips, options);
    std::sort(strips.begin(), strips.end(), [](const Strip& a, const Strip& b) {
      return a.begin != b.begin ? a.begin < b.begin : a.middle < b.middle;
    });
    for (Strip& strip : strips) {
      strip.number = all.size();
      all.push_back(strip);
      chainer.add(strip, group);
    }
    chainer.endGroup();
    first = last;
  }
  std::vector<std::pair<double, double>> lengths;
  lengths.reserve(all.size());
  for (const Strip& strip : all) {
    // What is shorter than wide says little of its width.
    lengths.emplace_back(strip.width, strip.length() * std::min(1.0, strip.length() / strip.width));
  }
  const LengthsByWidth shares(std::move(lengths));
  for (StripChain& chain : chains) {
    score(chain, shares, options);
  }
  return chains;
}

std::vector<StripChain> chooseStrips(std::vector<StripChain> chains, const Faces& faces,
                                     const FindWallsOptions& options) {
  // What is much shorter than wide, and alone on its line, is no wall, but the space between a
  // wall's end and a face.
  const auto isStump = [](const StripChain& chain) {
    return chain.length() < kLeastSlender * chain.strips.front().width;
  };
  chains.erase(std::remove_if(chains.begin(), chains.end(), isStump), chains.end());
  std::sort(chains.begin(), chains.end(), isBefore);
  TakenSides sides(faces.faces.size());
  TakenPlaces places(chains, faces, 4.0 * options.maxWidth);
  std::vector<StripChain> chosen;
  for (std::size_t i = 0; i < chains.size(); ++i) {
    StripChain kept = chains[i];
    kept.strips.clear();
    for (std::size_t j = 0; j < chains[i].strips.size(); ++j) {
      Strip strip = chains[i].strips[j];
      const auto [begin, end] = sides.freePart(strip);
      const bool isEnough =
          end - begin > options.tolerance && end - begin >= kEnoughFree * strip.length();
      if (!isEnough || places.isTaken(i, j)) {
        continue;
      }
      strip.middle = strip.middleAt(0.5 * (begin + end));
      strip.begin = begin;
      strip.end = end;
      sides.take(strip);
      places.take(i, j);
      kept.strips.push_back(strip);
    }
    if (!kept.strips.empty()) {
      chosen.push_back(std::move(kept));
    }
  }
  return chosen;
}

}  // namespace quoin::plan
