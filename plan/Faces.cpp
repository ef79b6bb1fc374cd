#include "plan/Faces.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numbers>

#include "plan/PlanPoint.h"
#include "plan/SegmentGrid.h"

namespace quoin::plan {

namespace {

constexpr double kHalfTurn = std::numbers::pi;
/// So near are the directions of parallel lines, at least and, for short lines, at most.
constexpr double kLeastTurn = 0.35 * kHalfTurn / 180.0;
/// Up to this they are the same.
constexpr double kSameTurn = 1e-7;
constexpr double kGreatestTurn = 8.0 * kHalfTurn / 180.0;

/// Lines with less than this part of the length of those that are parallel up to a little are just
/// parallel by chance.
constexpr double kLeastShare = 0.02;
/// Long lines of one face that rise along the axis pass their middles so many tolerances apart at
/// most.
constexpr double kDrift = 8.0;

/// Lines no further off than so many times the greatest width are around a line.
constexpr double kAround = 4.0;

struct SortedLine {
  double length;
  double angle;  // from 0 to below half a turn
  AcGePoint2d first;
  std::size_t number;
};

/// The lesser end, so that a line and its reverse are the same.
AcGePoint2d firstEnd(const PlanLine& line) {
  const bool isForward =
      line.start.x < line.end.x || (line.start.x == line.end.x && line.start.y <= line.end.y);
  return isForward ? line.start : line.end;
}

/// Longest first; the order of equal ones does not depend on that of the drawing.
std::vector<SortedLine> sortedLines(const std::vector<PlanLine>& lines) {
  std::vector<SortedLine> sorted;
  sorted.reserve(lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const AcGeVector2d step = lines[i].end - lines[i].start;
    const double length = step.length();
    if (!isFinite(lines[i].start) || !isFinite(lines[i].end) || !std::isfinite(length) ||
        !(length > 0.0)) {
      continue;
    }
    const AcGePoint2d first = firstEnd(lines[i]);
    const AcGeVector2d way =
        first.x == lines[i].start.x && first.y == lines[i].start.y ? step : -step;
    double angle = std::atan2(way.y, way.x);
    angle = angle < 0.0 ? angle + kHalfTurn : angle;
    // Just below half a turn is level, too.
    sorted.push_back({length, angle >= kHalfTurn - kSameTurn ? 0.0 : angle, first, i});
  }
  std::sort(sorted.begin(), sorted.end(), [](const SortedLine& a, const SortedLine& b) {
    if (a.length != b.length) {
      return a.length > b.length;
    }
    if (a.angle != b.angle) {
      return a.angle < b.angle;
    }
    if (a.first.x != b.first.x) {
      return a.first.x < b.first.x;
    }
    return a.first.y != b.first.y ? a.first.y < b.first.y : a.number < b.number;
  });
  return sorted;
}

/// Directions that several lines have, or long ones; another line takes one that is near its own.
class Directions {
 public:
  /// Lines that are just parallel, and not all on one line, found a direction; those with most
  /// length the first.
  Directions(const std::vector<SortedLine>& lines, const AcGePoint2d& middle, double leastApart) {
    std::vector<const SortedLine*> byAngle;
    byAngle.reserve(lines.size());
    for (const SortedLine& line : lines) {
      byAngle.push_back(&line);
    }
    // Stable: of each direction the longest line comes first.
    std::stable_sort(byAngle.begin(), byAngle.end(),
                     [](const SortedLine* a, const SortedLine* b) { return a->angle < b->angle; });
    struct Shared {
      double length;
      const SortedLine* longest;
    };
    std::vector<Shared> shared;
    for (std::size_t first = 0; first < byAngle.size();) {
      std::size_t last = first;
      const SortedLine* longest = byAngle[first];
      double length = 0.0;
      double least = std::numeric_limits<double>::infinity();
      double greatest = -least;
      const AcGeVector2d across(-std::sin(longest->angle), std::cos(longest->angle));
      for (; last < byAngle.size() && byAngle[last]->angle - byAngle[first]->angle <= kSameTurn;
           ++last) {
        length += byAngle[last]->length;
        longest = byAngle[last]->length > longest->length ? byAngle[last] : longest;
        const double offset = across.dotProduct(byAngle[last]->first - middle);
        least = std::min(least, offset);
        greatest = std::max(greatest, offset);
      }
      // The pieces of one line that is a little off are on one line.
      if (greatest - least >= leastApart) {
        shared.push_back({length, longest});
      }
      first = last;
    }
    std::stable_sort(shared.begin(), shared.end(),
                     [](const Shared& a, const Shared& b) { return a.length > b.length; });
    std::map<double, double> lengths;  // of founded directions, by their angle
    for (const Shared& direction : shared) {
      const double angle = direction.longest->angle;
      const auto near = lengths.lower_bound(angle - kLeastTurn);
      const bool isChance = near != lengths.end() && near->first <= angle + kLeastTurn &&
                            direction.length < kLeastShare * near->second;
      if (!isChance) {
        lengths.emplace(angle, direction.length);
        found(*direction.longest);
      }
    }
    m_shared = m_founders.size();
  }

  /// Of each group the line that gives its direction.
  const std::vector<const SortedLine*>& founders() const { return m_founders; }

  /// Of a line the group that it takes by its direction, and others that it might.
  struct Choice {
    std::size_t group;
    std::vector<std::size_t> others;
  };

  Choice choose(const SortedLine& line, double tolerance) {
    const double turn =
        std::clamp(std::asin(std::min(1.0, tolerance / line.length)), kLeastTurn, kGreatestTurn);
    // Of those that are well within it, the one that the longest line has, unless another is just
    // the line's: what is a little off belongs to it rather than to another line that is.
    const double sure = std::max(kLeastTurn, 0.5 * turn);
    std::size_t first = Faces::kNone;
    std::size_t nearest = Faces::kNone;
    double least = turn;
    Choice choice{Faces::kNone, {}};
    const auto look = [&](double from, double to, double shift) {
      for (auto at = m_groups.lower_bound(from); at != m_groups.end() && at->first <= to; ++at) {
        const double off = std::fabs(at->first + shift - line.angle);
        if (at->second < m_shared) {
          choice.others.push_back(at->second);
        }
        if (off <= sure) {
          first = std::min(first, at->second);
        }
        if (off <= least) {
          least = off;
          nearest = at->second;
        }
      }
    };
    const double wide = std::min(kGreatestTurn, 2.0 * turn);
    look(line.angle - wide, line.angle + wide, 0.0);
    look(0.0, line.angle + wide - kHalfTurn, kHalfTurn);
    look(line.angle - wide + kHalfTurn, kHalfTurn, -kHalfTurn);
    if (nearest == Faces::kNone) {
      choice.group = m_founders.size();
      found(line);
      return choice;
    }
    // A direction of one line's own says nothing.
    const bool isExact = least <= kSameTurn && nearest < m_shared;
    choice.group = first != Faces::kNone && !isExact ? first : nearest;
    const bool isOnly = choice.others.size() == 1 && choice.others.front() == choice.group;
    if (isExact || isOnly) {
      choice.others.clear();
    }
    return choice;
  }

 private:
  void found(const SortedLine& line) {
    m_groups.emplace(line.angle, m_founders.size());
    m_founders.push_back(&line);
  }

  std::vector<const SortedLine*> m_founders;
  std::size_t m_shared = 0;  // of them, the directions of several lines
  std::map<double, std::size_t> m_groups;
};

/// Puts pieces of one group together, in the order in which they begin.
class FaceMaker {
 public:
  FaceMaker(Faces& result, const FindWallsOptions& options)
      : m_result(result), m_options(options) {}

  void add(const Face& piece) {
    const auto open = findOpen(piece);
    if (open == m_open.end()) {
      m_result.faceOfLine[piece.line] = m_result.faces.size();
      m_open.emplace(piece.offset, m_result.faces.size());
      m_result.faces.push_back(piece);
      m_longest.push_back(piece.length());
      return;
    }
    Face& face = m_result.faces[open->second];
    m_result.faceOfLine[piece.line] = open->second;
    face.end = std::max(face.end, piece.end);
    if (piece.length() > m_longest[open->second]) {
      m_longest[open->second] = piece.length();
      face.line = piece.line;
      face.offset = piece.offset;
      face.middle = piece.middle;
      face.slope = piece.slope;
    }
  }
  void endGroup() { m_open.clear(); }

 private:
  using Open = std::multimap<double, std::size_t>;

  /// The face that the piece continues, the nearest one beside it.
  Open::iterator findOpen(const Face& piece) {
    auto found = m_open.end();
    double least = m_options.tolerance;
    for (auto open = m_open.lower_bound(piece.offset - kDrift * m_options.tolerance);
         open != m_open.end() && open->first <= piece.offset + kDrift * m_options.tolerance;) {
      const Face& face = m_result.faces[open->second];
      if (face.end + m_options.reach < piece.begin) {
        open = m_open.erase(open);
        continue;
      }
      const double at = std::min(std::max(piece.begin, face.begin), face.end);
      const double off = std::fabs(face.offsetAt(at) - piece.offsetAt(piece.begin));
      if (off < least || (off == least && found == m_open.end())) {
        least = off;
        found = open;
      }
      ++open;
    }
    return found;
  }

  Faces& m_result;
  const FindWallsOptions& m_options;
  Open m_open;
  std::vector<double> m_longest;
};

/// The group of every line. One that is a little off two directions takes that of the lines around
/// it: buildings stand at angles of their own.
std::vector<std::size_t> groupsOf(const std::vector<SortedLine>& sorted,
                                  const std::vector<PlanLine>& lines, Directions& directions,
                                  const FindWallsOptions& options) {
  std::vector<Directions::Choice> choices;
  choices.reserve(sorted.size());
  for (const SortedLine& line : sorted) {
    choices.push_back(directions.choose(line, options.tolerance));
  }
  std::vector<std::size_t> certain;
  SegmentGrid grid;
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    if (choices[i].others.empty()) {
      const PlanLine& line = lines[sorted[i].number];
      grid.add(line.start, line.end);
      certain.push_back(i);
    }
  }
  grid.arrange(4.0 * options.maxWidth);
  std::vector<std::size_t> groups;
  groups.reserve(sorted.size());
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    std::size_t group = choices[i].group;
    if (!choices[i].others.empty()) {
      const PlanLine& line = lines[sorted[i].number];
      std::vector<std::size_t> near;
      grid.visitIn(Box(line.start, line.end).grownBy(kAround * options.maxWidth),
                   [&](std::size_t other) { near.push_back(other); });
      std::sort(near.begin(), near.end());
      double most = 0.0;
      for (const std::size_t candidate : choices[i].others) {
        double length = 0.0;
        for (const std::size_t other : near) {
          const std::size_t its = certain[other];
          length += choices[its].group == candidate ? sorted[its].length : 0.0;
        }
        if (length > most) {
          most = length;
          group = candidate;
        }
      }
    }
    groups.push_back(group);
  }
  return groups;
}

/// Halfway through the lines: numbers near it keep their digits, and lines far off do not move it.
AcGePoint2d middleOf(const std::vector<SortedLine>& lines) {
  if (lines.empty()) {
    return {};
  }
  std::vector<double> x;
  std::vector<double> y;
  x.reserve(lines.size());
  y.reserve(lines.size());
  for (const SortedLine& line : lines) {
    x.push_back(line.first.x);
    y.push_back(line.first.y);
  }
  const auto half = static_cast<std::ptrdiff_t>(lines.size() / 2);
  std::nth_element(x.begin(), x.begin() + half, x.end());
  std::nth_element(y.begin(), y.begin() + half, y.end());
  return {x[lines.size() / 2], y[lines.size() / 2]};
}

}  // namespace

Faces makeFaces(const std::vector<PlanLine>& lines, const FindWallsOptions& options) {
  Faces result;
  result.faceOfLine.assign(lines.size(), Faces::kNone);
  const std::vector<SortedLine> sorted = sortedLines(lines);
  const AcGePoint2d middle = middleOf(sorted);
  Directions directions(sorted, middle, 0.5 * options.minWidth);
  std::vector<Face> pieces;
  pieces.reserve(sorted.size());
  const std::vector<std::size_t> groups = groupsOf(sorted, lines, directions, options);
  for (const SortedLine* const founder : directions.founders()) {
    const PlanLine& ends = lines[founder->number];
    const AcGeVector2d along = (ends.end - ends.start) / founder->length;
    const bool isDown = along.y < 0.0 || (along.y == 0.0 && along.x < 0.0);
    result.axes.push_back({middle, isDown ? -along : along});
  }
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    const SortedLine& line = sorted[i];
    const std::size_t group = groups[i];
    const PlanLine& ends = lines[line.number];
    const Axis& axis = result.axes[group];
    const double a = axis.alongOf(ends.start);
    const double b = axis.alongOf(ends.end);
    const double left = axis.leftOf(ends.start);
    const double rise = axis.leftOf(ends.end) - left;
    pieces.push_back({group, std::min(a, b), std::max(a, b), left + 0.5 * rise, 0.5 * (a + b),
                      rise / (b - a), line.number});
  }
  // Stable: of pieces that begin together the longer comes first.
  std::stable_sort(pieces.begin(), pieces.end(), [](const Face& a, const Face& b) {
    return a.group != b.group ? a.group < b.group : a.begin < b.begin;
  });
  FaceMaker maker(result, options);
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    if (i > 0 && pieces[i].group != pieces[i - 1].group) {
      maker.endGroup();
    }
    maker.add(pieces[i]);
  }
  return result;
}

}  // namespace quoin::plan
