#include "plan/WallNetwork.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>

#include "plan/PointIndex.h"

namespace quoin::plan {

namespace {

/// Walls cross at more than this sine, and continue one another at less than that.
constexpr double kCrossingSine = 0.1;
constexpr double kParallelSine = 0.02;
/// A wall that stands free is longer than so many times its width.
constexpr double kFreeSlender = 16.0;
/// Walls that hang together may be furniture where they are no longer in all than so many times the
/// greatest width, and one side of their box is no longer than so many.
constexpr double kSmallGroup = 40.0;
constexpr double kSmallSide = 5.0;
/// What a wall that meets no other counts among those that say which widths are common, beside 2
/// for one that meets others at both ends.
constexpr double kLeastWeight = 0.05;
/// What hangs on other walls by one alone is furniture where it is of widths that are less common
/// than this, and its confidence is less by that.
constexpr double kHangCommon = 0.5;
constexpr double kHangLoss = 0.3;
/// What an end that nothing closes takes of a wall's confidence: of a long wall less by that part,
/// and of one that others cross or end at, which adds some.
constexpr double kOpenLoss = 0.35;
constexpr double kLongWall = 0.5;
constexpr double kBorneGain = 0.2;
constexpr std::size_t kMostBorne = 4;
constexpr double kNowhere = std::numeric_limits<double>::infinity();

/// Where two reference lines cross, and how far beyond its own body each wall may end for them to
/// meet there.
struct Crossing {
  std::array<std::size_t, 2> run;
  std::array<double, 2> at;
  std::array<double, 2> allowance;
  AcGePoint2d point;
};

/// One end of a run: at its `from` or its `to`.
struct End {
  std::size_t run;
  bool isTo;
};

class Network {
 public:
  Network(std::vector<WallRun>& runs, const GapJudge& judge, const FindWallsOptions& options)
      : m_runs(runs), m_judge(judge), m_options(options) {}

  void join() {
    arrangeGrid();
    continueRuns();
    findCrossings();
    chooseEnds();
    extendToFacing();
    measureComponents();
    findHanging();
    countBorne();
  }
  double joinedEnds(std::size_t run) const {
    return (m_joints[2 * run].isJoined ? 1.0 : 0.0) + (m_joints[2 * run + 1].isJoined ? 1.0 : 0.0);
  }
  double confidenceOf(std::size_t run) const;
  /// Whether another run begins about where this end is, and goes on the same way.
  bool continues(const End& end) const;
  /// The same for runs that hang together.
  std::size_t groupOf(std::size_t run) const { return m_group[run]; }
  std::vector<WallPiece> pieces() const;

 private:
  struct Joint {
    bool isJoined = false;
    double at = 0.0;
  };

  static std::size_t numberOf(const End& end) { return 2 * end.run + (end.isTo ? 1 : 0); }
  AcGePoint2d pointOf(const End& end) const {
    return end.isTo ? m_runs[end.run].end() : m_runs[end.run].start();
  }
  /// Away from the run.
  AcGeVector2d outOf(const End& end) const {
    return end.isTo ? m_runs[end.run].axis.along : -m_runs[end.run].axis.along;
  }

  void arrangeGrid() {
    m_grid = SegmentGrid();
    for (const WallRun& run : m_runs) {
      m_grid.add(run.start(), run.end());
    }
    m_grid.arrange(4.0 * m_options.maxWidth);
  }

  // --- runs that continue one another -------------------------------------------------
  void continueRuns() {
    std::vector<std::vector<std::size_t>> next(m_runs.size());
    m_joints.assign(2 * m_runs.size(), Joint());
    for (std::size_t run = 0; run < m_runs.size(); ++run) {
      for (const bool isTo : {false, true}) {
        linkEnd({run, isTo}, next);
      }
    }
    // Each group takes the line of its longest run; of equal ones that which comes first.
    std::vector<std::size_t> order(m_runs.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
      return m_runs[a].length() > m_runs[b].length();
    });
    std::vector<bool> isDone(m_runs.size(), false);
    for (const std::size_t master : order) {
      if (isDone[master]) {
        continue;
      }
      isDone[master] = true;
      std::vector<std::size_t> open{master};
      while (!open.empty()) {
        const std::size_t from = open.back();
        open.pop_back();
        for (const std::size_t other : next[from]) {
          if (!isDone[other]) {
            isDone[other] = true;
            takeLine(other, m_runs[from]);
            open.push_back(other);
          }
        }
      }
    }
  }

  /// The run's reference line becomes the other's, its body stays.
  void takeLine(std::size_t number, const WallRun& other) {
    WallRun& run = m_runs[number];
    const AcGePoint2d middle = run.axis.at(0.5 * (run.from + run.to));
    const double aside = other.axis.leftOf(middle);
    if (aside == 0.0 || std::fabs(aside) > 0.5 * run.width() + m_options.tolerance) {
      return;
    }
    const bool isSameWay = run.axis.along.dotProduct(other.axis.along) > 0.0;
    Axis axis{other.axis.origin, isSameWay ? other.axis.along : -other.axis.along};
    const double start = axis.alongOf(run.start());
    const double move = axis.alongOf(run.axis.origin);
    const double left = isSameWay ? aside : -aside;
    for (WallRun::Gap& gap : run.openings) {
      gap.from += move;
      gap.to += move;
    }
    m_joints[2 * number].at += move;
    m_joints[2 * number + 1].at += move;
    run.to = axis.alongOf(run.end());
    run.from = start;
    run.axis = axis;
    run.left += left;
    run.right -= left;
  }

  void linkEnd(const End& end, std::vector<std::vector<std::size_t>>& next) {
    const WallRun& run = m_runs[end.run];
    const AcGePoint2d place = pointOf(end);
    const AcGeVector2d out = outOf(end);
    const Box box = Box(place, place).grownBy(0.5 * m_options.maxWidth + m_options.reach);
    m_grid.visitIn(box, [&](std::size_t other) {
      const WallRun& there = m_runs[other];
      if (other == end.run || std::fabs(sineOf(out, there.axis.along)) > kParallelSine) {
        return;
      }
      const bool isToThere = out.dotProduct(there.axis.along) < 0.0;
      const End facing{other, isToThere};
      const double gap = out.dotProduct(pointOf(facing) - place);
      const double aside = run.axis.leftOf(pointOf(facing));
      const bool isBeside =
          std::fabs(aside) < 0.5 * (run.width() + there.width()) - m_options.tolerance;
      if (std::fabs(gap) > m_options.reach || !isBeside) {
        return;
      }
      next[end.run].push_back(other);
      m_continued.emplace_back(end.run, other);
      const AcGePoint2d joint = place + out * (0.5 * gap);
      m_joints[numberOf(end)] = {true, run.axis.alongOf(joint)};
    });
  }

  // --- crossings ----------------------------------------------------------------------
  void findCrossings() {
    const double step = 4.0 * m_options.maxWidth;
    const double margin = m_options.maxWidth + 2.0 * m_options.reach;
    for (std::size_t run = 0; run < m_runs.size(); ++run) {
      const WallRun& mine = m_runs[run];
      std::vector<std::size_t> near;
      const auto parts = static_cast<std::size_t>(mine.length() / step) + 1;
      for (std::size_t i = 0; i < parts; ++i) {
        const double a =
            mine.from + mine.length() * static_cast<double>(i) / static_cast<double>(parts);
        const double b =
            mine.from + mine.length() * static_cast<double>(i + 1) / static_cast<double>(parts);
        m_grid.visitIn(Box(mine.axis.at(a), mine.axis.at(b)).grownBy(margin),
                       [&](std::size_t other) { near.push_back(other); });
      }
      std::sort(near.begin(), near.end());
      near.erase(std::unique(near.begin(), near.end()), near.end());
      for (const std::size_t other : near) {
        if (other > run) {
          addCrossing(run, other);
        }
      }
    }
  }

  void addCrossing(std::size_t a, std::size_t b) {
    const WallRun& one = m_runs[a];
    const WallRun& two = m_runs[b];
    const double sine = sineOf(one.axis.along, two.axis.along);
    if (std::fabs(sine) < kCrossingSine) {
      return;
    }
    Crossing crossing;
    crossing.run = {a, b};
    crossing.at[0] = sineOf(two.axis.origin - one.axis.origin, two.axis.along) / sine;
    crossing.point = one.axis.at(crossing.at[0]);
    crossing.at[1] = two.axis.alongOf(crossing.point);
    const double slant = std::fabs(one.axis.along.dotProduct(two.axis.along) / sine);
    const auto reachOf = [&](const WallRun& run, const WallRun& other) {
      return std::max(other.left, other.right) / std::fabs(sine) +
             std::max(run.left, run.right) * slant + m_options.reach;
    };
    crossing.allowance = {reachOf(one, two), reachOf(two, one)};
    for (const std::size_t side : {0U, 1U}) {
      const WallRun& run = m_runs[crossing.run[side]];
      const double at = crossing.at[side];
      // A third wall that is thicker may keep the two further apart.
      const double most = crossing.allowance[side] + m_options.maxWidth;
      if (at < run.from - most || at > run.to + most) {
        return;
      }
    }
    m_crossings.push_back(crossing);
  }

  /// Every end goes to the nearest crossing that it reaches.
  void chooseEnds() {
    std::vector<double> nearest(2 * m_runs.size(), kNowhere);
    m_ends.assign(2 * m_runs.size(), 0.0);
    for (std::size_t i = 0; i < m_runs.size(); ++i) {
      for (const bool isTo : {false, true}) {
        const std::size_t number = numberOf({i, isTo});
        const Joint& joint = m_joints[number];
        m_ends[number] = joint.isJoined ? joint.at : (isTo ? m_runs[i].to : m_runs[i].from);
      }
    }
    for (const Crossing& crossing : m_crossings) {
      if (isInReach(crossing, 0) && isInReach(crossing, 1)) {
        sendEnds(crossing, 0, nearest);
        sendEnds(crossing, 1, nearest);
      }
    }
    // Where a third wall has brought one of two to their crossing, the other may come too.
    for (const Crossing& crossing : m_crossings) {
      for (const std::size_t side : {0U, 1U}) {
        if (isInReach(crossing, side) && isMet(crossing, 1 - side)) {
          sendEnds(crossing, side, nearest);
        }
      }
    }
    // A wall that others reach beyond its own end runs on to them.
    for (const Crossing& crossing : m_crossings) {
      for (const std::size_t side : {0U, 1U}) {
        if (isChosen(crossing, 1 - side) && isInReach(crossing, side) &&
            !isWithin(crossing, side)) {
          const bool isTo = crossing.at[side] > m_ends[numberOf({crossing.run[side], true})];
          m_ends[numberOf({crossing.run[side], isTo})] = crossing.at[side];
          m_joints[numberOf({crossing.run[side], isTo})].isJoined = true;
        }
      }
    }
  }
  bool isInReach(const Crossing& crossing, std::size_t side) const {
    const WallRun& run = m_runs[crossing.run[side]];
    const double at = crossing.at[side];
    return at >= run.from - crossing.allowance[side] && at <= run.to + crossing.allowance[side];
  }
  /// Sends the ends of that side's run to the crossing, for which it is the nearest.
  void sendEnds(const Crossing& crossing, std::size_t side, std::vector<double>& nearest) {
    const WallRun& run = m_runs[crossing.run[side]];
    const WallRun& other = m_runs[crossing.run[1 - side]];
    const double sine = std::fabs(sineOf(run.axis.along, other.axis.along));
    // What stands out on the other wall's far side is a wall of its own.
    const double inside = std::max(other.left, other.right) / sine + 2.0 * m_options.tolerance;
    for (const bool isTo : {false, true}) {
      const double end = isTo ? run.to : run.from;
      const double beyond = isTo ? crossing.at[side] - end : end - crossing.at[side];
      // Of a short wall the nearer end goes there.
      const bool isMine = std::fabs(beyond) <= 0.5 * run.length() || beyond > 0.0;
      const std::size_t number = numberOf({crossing.run[side], isTo});
      if (isMine && beyond <= crossing.allowance[side] && beyond >= -inside &&
          std::fabs(beyond) < nearest[number]) {
        nearest[number] = std::fabs(beyond);
        m_ends[number] = crossing.at[side];
        m_joints[number].isJoined = true;
      }
    }
  }
  /// Whether an end of that side's run went to this crossing.
  bool isChosen(const Crossing& crossing, std::size_t side) const {
    const double at = crossing.at[side];
    return m_ends[2 * crossing.run[side]] == at || m_ends[2 * crossing.run[side] + 1] == at;
  }
  bool isWithin(const Crossing& crossing, std::size_t side) const {
    const double at = crossing.at[side];
    return at >= m_ends[2 * crossing.run[side]] && at <= m_ends[2 * crossing.run[side] + 1];
  }

  // --- openings between a wall's end and the wall that it faces ---------------------------
  void extendToFacing() {
    for (std::size_t run = 0; run < m_runs.size(); ++run) {
      for (const bool isTo : {false, true}) {
        // Of walls alone: what is short and hangs on nothing at its other end may be furniture.
        const bool isWall = m_joints[numberOf({run, !isTo})].isJoined ||
                            m_runs[run].drawnLength() >= 16.0 * m_runs[run].width();
        if (isWall && !m_joints[numberOf({run, isTo})].isJoined) {
          extendEnd({run, isTo});
        }
      }
    }
  }

  void extendEnd(const End& end) {
    WallRun& run = m_runs[end.run];
    const AcGePoint2d place = pointOf(end);
    const AcGeVector2d out = outOf(end);
    const double most = m_options.maxOpening;
    Crossing nearest{};
    double least = most;
    const auto parts = static_cast<std::size_t>(most / m_options.maxWidth) + 1;
    for (std::size_t i = 0; i < parts && least == most; ++i) {
      const double a = most * static_cast<double>(i) / static_cast<double>(parts);
      const double b = most * static_cast<double>(i + 1) / static_cast<double>(parts);
      m_grid.visitIn(
          Box(place + out * a, place + out * b).grownBy(m_options.reach), [&](std::size_t other) {
            const WallRun& there = m_runs[other];
            const double sine = sineOf(out, there.axis.along);
            if (other == end.run || std::fabs(sine) < 0.5) {
              return;
            }
            const double ahead = sineOf(there.axis.origin - place, there.axis.along) / sine;
            const double at = there.axis.alongOf(place + out * ahead);
            if (ahead > 0.0 && ahead < least && at >= m_ends[2 * other] - m_options.reach &&
                at <= m_ends[2 * other + 1] + m_options.reach) {
              least = ahead;
              nearest.run = {end.run, other};
              nearest.point = place + out * ahead;
              nearest.at = {run.axis.alongOf(nearest.point), at};
            }
          });
    }
    if (least == most) {
      return;
    }
    const WallRun& there = m_runs[nearest.run[1]];
    const double sine = std::fabs(sineOf(out, there.axis.along));
    double begin = 0.0;
    double stop = least - std::max(there.left, there.right) / sine;
    const Axis line{place + run.axis.along.perpVector() * (0.5 * (run.left - run.right)), out};
    const double slack = 0.5 * m_options.reach;
    narrow(m_judge.endsBetween(line, -slack, stop + slack, run.width()), begin, stop);
    const GapJudge::Drawn drawn = m_judge.drawnIn(line, begin, stop, run.width());
    if (stop - begin <= m_options.reach || !(drawn.isDoor || drawn.isWindow) ||
        !m_judge.hasEnd(line, 0.0, run.width())) {
      return;
    }
    const double edge = run.axis.alongOf(place + out * begin);
    const double far = run.axis.alongOf(place + out * stop);
    run.openings.push_back({std::min(edge, far), std::max(edge, far), drawn.kind()});
    m_ends[numberOf(end)] = nearest.at[0];
    m_joints[numberOf(end)].isJoined = true;
    m_crossings.push_back(nearest);
  }

  void measureComponents();
  void findHanging();
  /// How many others each run passes, or bears the ends of.
  void countBorne() {
    m_borne.assign(m_runs.size(), 0);
    for (const Crossing& crossing : m_crossings) {
      for (const std::size_t side : {0U, 1U}) {
        if (isMet(crossing, 1 - side) && isMet(crossing, side) && !isChosen(crossing, side)) {
          ++m_borne[crossing.run[side]];
        }
      }
    }
  }
  /// Whether the crossing lies on that side's run, as far as it goes in the end.
  bool isMet(const Crossing& crossing, std::size_t side) const {
    const double slack = m_options.tolerance;
    const double at = crossing.at[side];
    return at >= m_ends[2 * crossing.run[side]] - slack &&
           at <= m_ends[2 * crossing.run[side] + 1] + slack;
  }

  std::vector<WallRun>& m_runs;
  const GapJudge& m_judge;
  const FindWallsOptions& m_options;
  SegmentGrid m_grid;
  std::vector<Crossing> m_crossings;
  std::vector<Joint> m_joints;  // of every end
  std::vector<double> m_ends;   // where it goes
  std::vector<std::pair<std::size_t, std::size_t>> m_continued;
  std::vector<std::size_t> m_group;
  std::vector<bool> m_isInSmallGroup;
  std::vector<bool> m_isHanging;
  std::vector<std::size_t> m_borne;
};

/// How common the width of a run is, from 0 to 1.
double commonnessOf(const WallRun& run) {
  return std::min(1.0, run.share / 0.08);
}

bool Network::continues(const End& end) const {
  const WallRun& run = m_runs[end.run];
  const AcGePoint2d place = pointOf(end);
  const AcGeVector2d out = outOf(end);
  const double farthest = m_options.maxWidth;
  bool isMet = false;
  m_grid.visitIn(Box(place, place).grownBy(farthest), [&](std::size_t other) {
    const WallRun& there = m_runs[other];
    const AcGePoint2d begin = out.dotProduct(there.axis.along) < 0.0 ? there.end() : there.start();
    isMet =
        isMet || (other != end.run && std::fabs(sineOf(out, there.axis.along)) <= kParallelSine &&
                  std::fabs(out.dotProduct(begin - place)) <= farthest &&
                  std::fabs(run.axis.leftOf(begin)) <= 0.5 * (run.width() + there.width()));
  });
  return isMet;
}

double Network::confidenceOf(std::size_t number) const {
  const WallRun& run = m_runs[number];
  const double drawn = run.drawnLength();
  const double slender = std::min(1.0, drawn / (4.0 * run.width()));
  const double common = commonnessOf(run);
  const double alone =
      m_isInSmallGroup[number] ? kHangLoss : (m_isHanging[number] ? kHangLoss : 0.0);
  // A long wall may stand by itself, closed at both ends.
  const double half = 0.5 * (run.left - run.right);
  const Axis middle{run.axis.at(0.0, half), run.axis.along};
  const bool isFree = joinedEnds(number) == 0.0 && drawn >= kFreeSlender * run.width() &&
                      m_judge.hasEnd(middle, run.from, run.width()) &&
                      m_judge.hasEnd(middle, run.to, run.width());
  const double others =
      static_cast<double>(std::min(m_borne[number], kMostBorne)) / static_cast<double>(kMostBorne);
  const double borne = kBorneGain * others;
  double open = 0.0;
  const double whole = kOpenLoss * (1.0 - others) *
                       (1.0 - kLongWall * std::min(1.0, drawn / (kFreeSlender * run.width())));
  for (const bool isTo : {false, true}) {
    const bool isOpen = !m_joints[numberOf({number, isTo})].isJoined &&
                        !m_judge.hasEnd(middle, isTo ? run.to : run.from, run.width()) &&
                        !continues({number, isTo});
    open += isOpen ? whole : 0.0;
  }
  // Ends that meet others say little of what is neither common nor much longer than wide.
  const double joined = joinedEnds(number) * std::max(slender, common);
  return std::clamp(0.1 + 0.2 * joined + 0.3 * common + 0.2 * slender +
                        (run.openings.empty() ? 0.0 : 0.05) + (isFree ? 0.6 : 0.0) + borne - alone -
                        open,
                    0.0, 1.0);
}

/// Which walls hang together, and how long they are in all.
void Network::measureComponents() {
  std::vector<std::size_t> root(m_runs.size());
  std::iota(root.begin(), root.end(), 0U);
  const auto find = [&](std::size_t i) {
    while (root[i] != i) {
      i = root[i] = root[root[i]];
    }
    return i;
  };
  const auto unite = [&](std::size_t a, std::size_t b) { root[find(a)] = find(b); };
  for (const Crossing& crossing : m_crossings) {
    if (isMet(crossing, 0) && isMet(crossing, 1)) {
      unite(crossing.run[0], crossing.run[1]);
    }
  }
  for (const auto& [a, b] : m_continued) {
    unite(a, b);
  }
  std::vector<double> lengths(m_runs.size(), 0.0);
  std::vector<Box> boxes;
  for (const WallRun& run : m_runs) {
    boxes.emplace_back(run.start(), run.end());
  }
  for (std::size_t i = 0; i < m_runs.size(); ++i) {
    lengths[find(i)] += m_runs[i].drawnLength();
    Box& all = boxes[find(i)];
    for (const AcGePoint2d& end : {m_runs[i].start(), m_runs[i].end()}) {
      all.least.set(std::min(all.least.x, end.x), std::min(all.least.y, end.y));
      all.greatest.set(std::max(all.greatest.x, end.x), std::max(all.greatest.y, end.y));
    }
  }
  m_isInSmallGroup.resize(m_runs.size());
  m_group.resize(m_runs.size());
  for (std::size_t i = 0; i < m_runs.size(); ++i) {
    m_group[i] = find(i);
    const AcGeVector2d sides = boxes[find(i)].greatest - boxes[find(i)].least;
    m_isInSmallGroup[i] = lengths[find(i)] < kSmallGroup * m_options.maxWidth &&
                          std::min(sides.x, sides.y) < kSmallSide * m_options.maxWidth;
  }
}

/// Which runs are in a group that hangs on the others by one run alone, is short in all, and of
/// widths that are not common.
void Network::findHanging() {
  const std::size_t count = m_runs.size();
  std::vector<std::vector<std::size_t>> next(count);
  const auto link = [&](std::size_t a, std::size_t b) {
    next[a].push_back(b);
    next[b].push_back(a);
  };
  for (const Crossing& crossing : m_crossings) {
    if (isMet(crossing, 0) && isMet(crossing, 1)) {
      link(crossing.run[0], crossing.run[1]);
    }
  }
  for (const auto& [a, b] : m_continued) {
    link(a, b);
  }
  std::vector<std::size_t> order(count);
  std::iota(order.begin(), order.end(), 0U);
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return m_runs[a].drawnLength() > m_runs[b].drawnLength();
  });
  // A walk in depth from the longest: what was visited behind a run and reaches nothing before it
  // hangs on it.
  constexpr std::size_t kNot = static_cast<std::size_t>(-1);
  std::vector<std::size_t> visited(count, kNot);  // when
  std::vector<std::size_t> reached(count);        // the earliest that it or those behind it meet
  std::vector<std::size_t> sequence;
  m_isHanging.assign(count, false);
  struct Step {
    std::size_t run;
    std::size_t nextLink;
  };
  std::vector<Step> path;
  const auto visit = [&](std::size_t run) {
    visited[run] = reached[run] = sequence.size();
    sequence.push_back(run);
    path.push_back({run, 0});
  };
  for (const std::size_t root : order) {
    if (visited[root] != kNot) {
      continue;
    }
    visit(root);
    while (!path.empty()) {
      Step& step = path.back();
      const std::size_t run = step.run;
      if (step.nextLink < next[run].size()) {
        const std::size_t other = next[run][step.nextLink++];
        if (visited[other] == kNot) {
          visit(other);
        } else {
          reached[run] = std::min(reached[run], visited[other]);
        }
        continue;
      }
      path.pop_back();
      if (path.empty()) {
        break;
      }
      const std::size_t before = path.back().run;
      reached[before] = std::min(reached[before], reached[run]);
      if (reached[run] < visited[before]) {
        continue;
      }
      double length = 0.0;
      double common = 0.0;
      for (std::size_t i = visited[run];
           i < sequence.size() && length < kSmallGroup * m_options.maxWidth; ++i) {
        const double drawn = m_runs[sequence[i]].drawnLength();
        length += drawn;
        common += drawn * commonnessOf(m_runs[sequence[i]]);
      }
      if (length < kSmallGroup * m_options.maxWidth && common < kHangCommon * length) {
        for (std::size_t i = visited[run]; i < sequence.size(); ++i) {
          m_isHanging[sequence[i]] = true;
        }
      }
    }
  }
}

std::vector<WallPiece> Network::pieces() const {
  std::vector<std::vector<double>> cuts(m_runs.size());
  for (const Crossing& crossing : m_crossings) {
    for (const std::size_t side : {0U, 1U}) {
      if (isMet(crossing, 1 - side)) {
        cuts[crossing.run[side]].push_back(crossing.at[side]);
      }
    }
  }
  std::vector<WallPiece> pieces;
  for (std::size_t i = 0; i < m_runs.size(); ++i) {
    const WallRun& run = m_runs[i];
    const double from = m_ends[2 * i];
    const double to = m_ends[2 * i + 1];
    std::vector<double> stops{from};
    std::sort(cuts[i].begin(), cuts[i].end());
    for (const double cut : cuts[i]) {
      if (cut > stops.back() + m_options.tolerance && cut < to - m_options.tolerance) {
        stops.push_back(cut);
      }
    }
    if (!(to > from)) {
      continue;
    }
    stops.push_back(to);
    const double confidence = confidenceOf(i);
    for (std::size_t j = 1; j < stops.size(); ++j) {
      pieces.push_back(
          {i,
           {run.axis.at(stops[j - 1]), run.axis.at(stops[j]), run.left, run.right, confidence},
           stops[j - 1],
           stops[j]});
    }
  }
  return pieces;
}

/// Ends that are one get the same coordinates: those of the end that comes first.
void snapEnds(std::vector<WallPiece>& pieces, double distance) {
  std::vector<AcGePoint3d> points;
  points.reserve(2 * pieces.size());
  for (const WallPiece& piece : pieces) {
    points.emplace_back(piece.wall.start.x, piece.wall.start.y, 0.0);
    points.emplace_back(piece.wall.end.x, piece.wall.end.y, 0.0);
  }
  const PointIndex index(points);
  std::vector<bool> isSnapped(points.size(), false);
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (isSnapped[i]) {
      continue;
    }
    index.visitIn(PointBox(points[i], distance), [&](std::size_t other) {
      // The ends of one wall stay two.
      if (!isSnapped[other] && (other / 2 != i / 2 || other == i) &&
          points[other].distanceTo(points[i]) <= distance) {
        isSnapped[other] = true;
        WallPiece& piece = pieces[other / 2];
        (other % 2 == 0 ? piece.wall.start : piece.wall.end).set(points[i].x, points[i].y);
      }
    });
  }
}

/// Runs that lie in another's opening, or in its body, are lines of a window; shorter ones with
/// their backs on its face are furniture or lining.
void dropInner(std::vector<WallRun>& runs, const FindWallsOptions& options) {
  SegmentGrid grid;
  for (const WallRun& run : runs) {
    grid.add(run.start(), run.end());
  }
  grid.arrange(4.0 * options.maxWidth);
  std::vector<bool> isInner(runs.size(), false);
  const auto look = [&](std::size_t outer, double from, double to) {
    const WallRun& run = runs[outer];
    const double slack = options.reach;
    const Box box = Box(run.axis.at(from), run.axis.at(to)).grownBy(options.maxWidth);
    grid.visitIn(box, [&](std::size_t other) {
      const WallRun& there = runs[other];
      const double a = run.axis.alongOf(there.start());
      const double b = run.axis.alongOf(there.end());
      const auto isAside = [&](const AcGePoint2d& point) {
        const double left = run.axis.leftOf(point);
        return left > run.left + options.tolerance || left < -run.right - options.tolerance;
      };
      if (other != outer && std::min(a, b) >= run.from - slack &&
          std::max(a, b) <= run.to + slack && there.length() < run.length() &&
          !isAside(there.start()) && !isAside(there.end())) {
        isInner[other] = true;
      }
      if (other != outer && there.group == run.group && there.drawnLength() < run.drawnLength()) {
        const AcGePoint2d middle = there.axis.at(0.5 * (there.from + there.to));
        const double aside = std::fabs(run.axis.leftOf(middle));
        const double shared = std::min(run.to, std::max(a, b)) - std::max(run.from, std::min(a, b));
        if (std::fabs(aside - 0.5 * (run.width() + there.width())) <= 2.0 * options.tolerance &&
            shared >= 0.5 * there.length()) {
          isInner[other] = true;
        }
      }
    });
  };
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const double step = 8.0 * options.maxWidth;
    const auto parts = static_cast<std::size_t>(runs[i].length() / step) + 1;
    for (std::size_t part = 0; part < parts; ++part) {
      const double from = runs[i].from + step * static_cast<double>(part);
      look(i, from, std::min(runs[i].to, from + step));
    }
  }
  std::size_t kept = 0;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (!isInner[i]) {
      if (kept != i) {
        runs[kept] = std::move(runs[i]);
      }
      ++kept;
    }
  }
  runs.resize(kept);
}

/// Sets each run's share anew, from those that others hold at both ends and that are much longer
/// than wide: stairs and furniture have widths too.
void shareWidths(std::vector<WallRun>& runs, const GapJudge& judge,
                 const FindWallsOptions& options) {
  std::vector<WallRun> trial = runs;
  Network network(trial, judge, options);
  network.join();
  std::vector<std::pair<double, double>> lengths;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const double drawn = runs[i].drawnLength();
    const double slender = std::min(1.0, drawn / (10.0 * runs[i].width()));
    lengths.emplace_back(runs[i].width(), drawn * slender * (kLeastWeight + network.joinedEnds(i)));
  }
  // Each building has widths of its own.
  std::map<std::size_t, std::vector<std::size_t>> groups;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    groups[network.groupOf(i)].push_back(i);
  }
  const LengthsByWidth all(lengths);
  for (const auto& [number, group] : groups) {
    double drawn = 0.0;
    std::vector<std::pair<double, double>> its;
    for (const std::size_t run : group) {
      its.push_back(lengths[run]);
      drawn += runs[run].drawnLength();
    }
    const LengthsByWidth here(std::move(its));
    const bool isBuilding = drawn >= kSmallGroup * options.maxWidth;
    for (const std::size_t run : group) {
      const double width = runs[run].width();
      runs[run].share = std::max(all.shareOf(width, options.tolerance),
                                 isBuilding ? here.shareOf(width, options.tolerance) : 0.0);
    }
  }
}

}  // namespace

WallNetwork joinRuns(std::vector<WallRun> runs, const GapJudge& judge,
                     const FindWallsOptions& options) {
  dropInner(runs, options);
  shareWidths(runs, judge, options);
  // Without the doubtful ones others may be doubtful that met them.
  constexpr int kRounds = 3;
  WallNetwork result;
  for (int round = 0; round <= kRounds; ++round) {
    result.runs = runs;
    Network network(result.runs, judge, options);
    network.join();
    std::vector<WallRun> kept;
    for (std::size_t i = 0; i < runs.size(); ++i) {
      if (network.confidenceOf(i) >= options.minConfidence) {
        kept.push_back(std::move(runs[i]));
      }
    }
    if (kept.size() == runs.size() || round == kRounds) {
      result.pieces = network.pieces();
      break;
    }
    runs = std::move(kept);
  }
  snapEnds(result.pieces, 2.0 * options.tolerance);
  return result;
}

}  // namespace quoin::plan
