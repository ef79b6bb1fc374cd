#include "plan/WallRuns.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "plan/PlanPoint.h"

namespace quoin::plan {

namespace {

/// Lines at less than this sine to one another are no crossing.
constexpr double kCrossingSine = 0.17;
/// A line across a wall is no further from square than this sine says.
constexpr double kAcrossSine = 0.7;
/// The part of a wall's width that a line across it must cover, and of a gap's length that a
/// window's lines must.
constexpr double kEnoughCover = 0.6;
/// A door's or a window's block is no larger than so many times its gap.
constexpr double kLargeBlock = 2.2;
/// Up to this part of the tolerance numbers are the same.
constexpr double kExact = 1e-4;
/// Where one face runs on, the other may be interrupted so many times the greatest width.
constexpr double kRecess = 5.0;
/// A window between faces that run through is no narrower than this part of the greatest width: two
/// lines across a wall may be a column's.
constexpr double kLeastWindow = 0.75;

struct Interval {
  double from;
  double to;
  double length() const { return to - from; }
};

/// The offset of a line's point above this place of the axis, or of the end that is nearest: a
/// short line that is a little turned says nothing of places far from it.
double offsetAt(const PlanLine& line, const Axis& axis, double at) {
  const double a = axis.alongOf(line.start);
  const double b = axis.alongOf(line.end);
  const double left = axis.leftOf(line.start);
  const double part = std::clamp((at - a) / (b - a), 0.0, 1.0);
  return a == b ? left : left + (axis.leftOf(line.end) - left) * part;
}

/// A number of which rounding took the last digits: the short one beside it.
double rounded(double value, double magnitude) {
  constexpr double kGrains = 1e6;
  const double near = std::round(value * kGrains) / kGrains;
  return std::fabs(near - value) <= 1e-14 * std::max(magnitude, std::fabs(value)) * 8.0 ? near
                                                                                        : value;
}

class RunMaker {
 public:
  RunMaker(const PlanDrawing& drawing, const Faces& faces, const std::vector<StripChain>& chains,
           const GapJudge& judge, const FindWallsOptions& options)
      : m_drawing(drawing), m_faces(faces), m_judge(judge), m_options(options) {
    for (const StripChain& chain : chains) {
      const Axis& axis = faces.axes[chain.group];
      for (const Strip& strip : chain.strips) {
        m_grid.add(axis.at(strip.begin, strip.middle), axis.at(strip.end, strip.middle));
        m_strips.push_back({strip, chain.group});
      }
    }
    m_grid.arrange(4.0 * options.maxWidth);
  }

  void add(const StripChain& chain, std::vector<WallRun>& result) const {
    std::size_t first = 0;
    std::vector<WallRun::Gap> openings;
    addWindowsWithin(chain.group, chain.strips.front(), openings);
    for (std::size_t i = 1; i <= chain.strips.size(); ++i) {
      if (i < chain.strips.size() &&
          isOneWall(chain.group, chain.strips[i - 1], chain.strips[i], openings)) {
        addWindowsWithin(chain.group, chain.strips[i], openings);
        continue;
      }
      result.push_back(makeRun(chain, first, i, openings));
      openings.clear();
      first = i;
      if (i < chain.strips.size()) {
        addWindowsWithin(chain.group, chain.strips[i], openings);
      }
    }
  }

 private:
  struct Entry {
    Strip strip;
    std::size_t group;
  };

  /// Faces may run through as the outer lines of a window between two jambs.
  void addWindowsWithin(std::size_t group, const Strip& strip,
                        std::vector<WallRun::Gap>& openings) const {
    const Axis& axis = m_faces.axes[group];
    const Axis line{axis.at(0.0, strip.middle), axis.along};
    const std::vector<double> ends = m_judge.endsBetween(line, strip.begin + m_options.reach,
                                                         strip.end - m_options.reach, strip.width);
    if (ends.size() % 2 != 0) {
      return;
    }
    for (std::size_t i = 0; i < ends.size(); i += 2) {
      if (ends[i + 1] - ends[i] >= kLeastWindow * m_options.maxWidth) {
        openings.push_back({ends[i], ends[i + 1], OpeningKind::Window});
      }
    }
  }

  /// Whether the wall runs on from one strip to the next; appends the openings between them.
  bool isOneWall(std::size_t group, const Strip& a, const Strip& b,
                 std::vector<WallRun::Gap>& openings) const {
    const Axis& axis = m_faces.axes[group];
    const Interval gap{a.end, b.begin};
    if (gap.length() <= m_options.reach) {
      return true;
    }
    const double width = 0.5 * (a.width + b.width);
    const double middle = 0.5 * (a.middle + b.middle);
    const Axis line{axis.at(0.0, middle), axis.along};
    double play = 0.0;
    const std::vector<Interval> free = withoutCrossings(line, group, gap, width, play);
    if (free.empty()) {
      // Two walls on one line up to what drawing by hand leaves, each exact in itself, are two.
      return !areDrawnApart(a, b);
    }
    if (a.right == b.right && a.left == b.left) {
      const bool hasJambs =
          m_judge.hasEnd(line, gap.from, width) && m_judge.hasEnd(line, gap.to, width);
      if (hasJambs) {
        // Faces that run through are the outer lines of a window, or the door's threshold.
        const GapJudge::Drawn drawn = m_judge.drawnIn(line, gap.from, gap.to, width);
        openings.push_back(
            {gap.from, gap.to, drawn.isDoor ? OpeningKind::Door : OpeningKind::Window});
      }
      return true;
    }
    std::vector<WallRun::Gap> found;
    for (Interval part : free) {
      const bool isAtStart = part.from <= gap.from + play;
      const bool isAtEnd = part.to >= gap.to - play;
      const Interval all{std::max(gap.from, part.from - play), std::min(gap.to, part.to + play)};
      const std::vector<double> jambs =
          m_judge.endsBetween(line, all.from - m_options.reach, all.to + m_options.reach, width);
      narrow(jambs, part.from, part.to);
      const bool hasStart = isAtStart && m_judge.hasEnd(line, part.from, width);
      const bool hasEnd = isAtEnd && m_judge.hasEnd(line, part.to, width);
      const GapJudge::Drawn drawn = m_judge.drawnIn(line, part.from, part.to, width);
      const bool isDrawn = drawn.isDoor || drawn.isWindow;
      const bool isPlain = hasStart && hasEnd && part.length() <= m_options.maxOpening;
      const bool isBeside = (hasStart || hasEnd) && !(isAtStart && isAtEnd) &&
                            part.length() <= 0.5 * m_options.maxOpening;
      const bool isShown =
          isDrawn && (isAtStart || isAtEnd) && part.length() <= m_options.maxDrawnOpening;
      if (isPlain || isBeside || isShown) {
        found.push_back({part.from, part.to, drawn.kind()});
        continue;
      }
      const bool runsOn = a.right == b.right || a.left == b.left;
      if (!runsOn || part.length() > kRecess * m_options.maxWidth) {
        return false;
      }
    }
    openings.insert(openings.end(), found.begin(), found.end());
    return true;
  }

  bool areDrawnApart(const Strip& a, const Strip& b) const {
    const double exact = kExact * m_options.tolerance;
    const bool isExact = a.taper <= exact && b.taper <= exact &&
                         std::fabs(a.slope - b.slope) * (a.length() + b.length()) <= exact;
    const double at = 0.5 * (a.end + b.begin);
    return isExact && (std::fabs(a.middleAt(at) - b.middleAt(at)) > exact ||
                       std::fabs(a.width - b.width) > exact);
  }

  /// What the bodies of crossing walls leave of a gap. Those of slanting ones may reach over a
  /// jamb, as far as `play` says.
  std::vector<Interval> withoutCrossings(const Axis& line, std::size_t group, const Interval& gap,
                                         double width, double& play) const {
    std::vector<Interval> bodies;
    const double margin = m_options.maxWidth + m_options.reach;
    const Box box = Box(line.at(gap.from), line.at(gap.to)).grownBy(margin);
    m_grid.visitIn(box, [&](std::size_t number) {
      const Entry& entry = m_strips[number];
      const Axis& other = m_faces.axes[entry.group];
      const double sine = sineOf(line.along, other.along);
      if (entry.group == group || std::fabs(sine) < kCrossingSine) {
        return;
      }
      const Axis across{other.at(0.0, entry.strip.middle), other.along};
      const double slant = std::fabs(line.along.dotProduct(across.along) / sine);
      // Where the lines cross: along the gap's, and along the other's.
      const double at = sineOf(across.origin - line.origin, across.along) / sine;
      const double there = across.alongOf(line.at(at));
      const double half = 0.5 * entry.strip.width / std::fabs(sine) + 0.5 * width * slant;
      const double beyond =
          0.5 * width / std::fabs(sine) + 0.5 * entry.strip.width * slant + m_options.reach;
      // What ends at the faces of this wall on both sides is the space between two jambs.
      const double inside = 0.5 * width / std::fabs(sine) + 2.0 * m_options.tolerance;
      if (entry.strip.begin > there - inside && entry.strip.end < there + inside) {
        return;
      }
      if (there >= entry.strip.begin - beyond && there <= entry.strip.end + beyond &&
          at + half > gap.from && at - half < gap.to) {
        bodies.push_back({at - half, at + half});
        play = std::max(play, width * slant);
      }
    });
    std::sort(bodies.begin(), bodies.end(),
              [](const Interval& a, const Interval& b) { return a.from < b.from; });
    std::vector<Interval> free;
    double at = gap.from;
    for (const Interval& body : bodies) {
      if (body.from - at > m_options.reach) {
        free.push_back({at, body.from});
      }
      at = std::max(at, body.to);
    }
    if (gap.to - at > m_options.reach) {
      free.push_back({at, gap.to});
    }
    return free;
  }

  WallRun makeRun(const StripChain& chain, std::size_t first, std::size_t last,
                  const std::vector<WallRun::Gap>& openings) const {
    WallRun run;
    run.group = chain.group;
    run.share = chain.share;
    run.strips.assign(chain.strips.begin() + static_cast<std::ptrdiff_t>(first),
                      chain.strips.begin() + static_cast<std::ptrdiff_t>(last));
    const Axis& axis = m_faces.axes[chain.group];
    fit(run, axis);
    const auto ownOf = [&](double at, double middle) {
      return run.axis.alongOf(axis.at(at, middle));
    };
    run.from = ownOf(run.strips.front().begin, run.strips.front().middle);
    run.to = ownOf(run.strips.back().end, run.strips.back().middle);
    const double middle = run.strips.front().middle;
    for (const WallRun::Gap& gap : openings) {
      run.openings.push_back({ownOf(gap.from, middle), ownOf(gap.to, middle), gap.kind});
    }
    return run;
  }

  /// The line midway between the faces, and the width, from the drawing's own numbers: those of the
  /// longest faces where half of the others agree with them, else the best line through all.
  void fit(WallRun& run, const Axis& axis) const {
    const Strip* longest = &run.strips.front();
    for (const Strip& strip : run.strips) {
      longest = strip.length() > longest->length() ? &strip : longest;
    }
    const PlanLine& right = m_drawing.lines[m_faces.faces[longest->right].line];
    const PlanLine& left = m_drawing.lines[m_faces.faces[longest->left].line];
    const bool isRightLonger = right.start.distanceTo(right.end) >= left.start.distanceTo(left.end);
    const PlanLine& guide = isRightLonger ? right : left;
    AcGeVector2d along = (guide.end - guide.start) / guide.start.distanceTo(guide.end);
    along = along.dotProduct(axis.along) < 0.0 ? -along : along;
    const double at = 0.5 * (longest->begin + longest->end);
    const auto middleOf = [&](const Strip& strip, double place, double& width) {
      const double r = offsetAt(m_drawing.lines[m_faces.faces[strip.right].line], axis, place);
      const double l = offsetAt(m_drawing.lines[m_faces.faces[strip.left].line], axis, place);
      width = l - r;
      return 0.5 * (l + r);
    };
    double width = 0.0;
    const double middle = middleOf(*longest, at, width);
    run.axis = {axis.at(at, middle), along};
    // Across the wall rather than across its group.
    width *= along.dotProduct(axis.along);
    // Do all agree?
    double weight = 0.0;
    double meanAt = 0.0;
    double meanMiddle = 0.0;
    double meanWidth = 0.0;
    double agreeing = 0.0;
    std::vector<std::array<double, 3>> points;
    for (const Strip& strip : run.strips) {
      double worst = 0.0;
      for (const double place : {strip.begin, strip.end}) {
        double there = 0.0;
        const double offset = middleOf(strip, place, there);
        there *= along.dotProduct(axis.along);
        worst = std::max(
            {worst, std::fabs(run.axis.leftOf(axis.at(place, offset))), std::fabs(there - width)});
        const double share = strip.length();
        points.push_back({place, offset, share});
        weight += share;
        meanAt += share * place;
        meanMiddle += share * offset;
        meanWidth += share * there;
      }
      agreeing += worst <= kExact * m_options.tolerance ? 2.0 * strip.length() : 0.0;
    }
    const double magnitude = std::fabs(axis.origin.x) + std::fabs(axis.origin.y) +
                             std::fabs(longest->begin) + std::fabs(longest->middle);
    if (agreeing < 0.5 * weight) {
      meanAt /= weight;
      meanMiddle /= weight;
      width = meanWidth / weight;
      double squares = 0.0;
      double products = 0.0;
      for (const auto& [place, offset, share] : points) {
        squares += share * (place - meanAt) * (place - meanAt);
        products += share * (place - meanAt) * (offset - meanMiddle);
      }
      const double slope = squares > 0.0 ? products / squares : 0.0;
      const AcGeVector2d turned = axis.along + axis.along.perpVector() * slope;
      run.axis = {axis.at(meanAt, meanMiddle), turned / turned.length()};
    }
    run.left = run.right = 0.5 * rounded(width, magnitude);
  }

  const PlanDrawing& m_drawing;
  const Faces& m_faces;
  const GapJudge& m_judge;
  const FindWallsOptions& m_options;
  std::vector<Entry> m_strips;
  SegmentGrid m_grid;
};

}  // namespace

double WallRun::drawnLength() const {
  double sum = 0.0;
  for (const Strip& strip : strips) {
    sum += strip.length();
  }
  return sum;
}

GapJudge::GapJudge(const PlanDrawing& drawing, const FindWallsOptions& options)
    : m_drawing(drawing), m_options(options) {
  const auto add = [&](const PlanLine& line) {
    // One that cannot be used keeps its number, at a place where others are.
    const bool isUsable = isFinite(line.start) && isFinite(line.end);
    const AcGePoint2d nowhere;
    m_lines.add(isUsable ? line.start : nowhere, isUsable ? line.end : nowhere);
  };
  for (const PlanLine& line : drawing.lines) {
    add(line);
  }
  for (const Symbol& symbol : drawing.symbols) {
    add(symbol.line);
  }
  for (const PlanArc& arc : drawing.arcs) {
    const AcGePoint2d center = isFinite(arc.center) ? arc.center : AcGePoint2d();
    m_centers.add(center, center);
  }
  m_lines.arrange(2.0 * options.maxWidth);
  m_centers.arrange(2.0 * options.maxWidth);
}

bool GapJudge::hasEnd(const Axis& axis, double at, double width) const {
  const double slack = 0.5 * m_options.reach;
  return !endsBetween(axis, at - slack, at + slack, width).empty();
}

std::vector<double> GapJudge::endsBetween(const Axis& axis, double from, double to,
                                          double width) const {
  struct Across {
    double at;
    Interval covers;
  };
  const double half = 0.5 * width;
  std::vector<Across> across;
  m_lines.visitIn(Box(axis.at(from, -half), axis.at(to, half)), [&](std::size_t number) {
    if (number >= m_drawing.lines.size()) {
      return;
    }
    const PlanLine& line = m_drawing.lines[number];
    const double length = line.start.distanceTo(line.end);
    if (length > width + 2.0 * m_options.reach ||
        std::fabs(sineOf(axis.along, line.end - line.start)) < kAcrossSine * length) {
      return;
    }
    const double a = axis.leftOf(line.start);
    const double b = axis.leftOf(line.end);
    const Interval covers{std::max(-half, std::min(a, b)), std::min(half, std::max(a, b))};
    const double at = 0.5 * (axis.alongOf(line.start) + axis.alongOf(line.end));
    if (covers.length() > 0.0 && at >= from && at <= to) {
      across.push_back({at, covers});
    }
  });
  std::sort(across.begin(), across.end(),
            [](const Across& a, const Across& b) { return a.at < b.at; });
  // An end may be drawn in pieces, and some of them twice.
  std::vector<double> ends;
  for (std::size_t first = 0; first < across.size();) {
    std::size_t last = first;
    std::vector<Interval> covers;
    double sum = 0.0;
    double weight = 0.0;
    for (; last < across.size() && across[last].at - across[first].at <= 0.5 * m_options.reach;
         ++last) {
      covers.push_back(across[last].covers);
      sum += across[last].at * covers.back().length();
      weight += covers.back().length();
    }
    std::sort(covers.begin(), covers.end(),
              [](const Interval& a, const Interval& b) { return a.from < b.from; });
    double covered = 0.0;
    double reached = -half;
    for (const Interval& part : covers) {
      covered += std::max(0.0, part.to - std::max(reached, part.from));
      reached = std::max(reached, part.to);
    }
    if (covered >= kEnoughCover * width) {
      ends.push_back(last - first == 1 ? across[first].at : sum / weight);
    }
    first = last;
  }
  return ends;
}

void narrow(const std::vector<double>& ends, double& from, double& to) {
  const double first = ends.empty() ? to : ends.front();
  const double last = ends.empty() ? from : ends.back();
  const double middle = 0.5 * (from + to);
  from = first < middle ? first : from;
  to = last > middle ? last : to;
}

void GapJudge::lookAtArcs(const Axis& axis, double from, double to, double width,
                          Drawn& drawn) const {
  const double length = to - from;
  const double slack = 0.08 * length + 0.5 * m_options.reach;
  const double aside = 0.5 * width + m_options.reach;
  const Box box = Box(axis.at(from), axis.at(to)).grownBy(aside + slack);
  m_centers.visitIn(box, [&](std::size_t number) {
    const PlanArc& arc = m_drawing.arcs[number];
    const double at = axis.alongOf(arc.center);
    const bool isHinge = (std::fabs(at - from) <= slack || std::fabs(at - to) <= slack) &&
                         std::fabs(axis.leftOf(arc.center)) <= aside;
    // One leaf, two, or two of which one is narrow.
    const bool isLeaf = arc.radius >= 0.25 * length && arc.radius <= 1.15 * length;
    const bool isSwing = arc.sweep > 0.3 && arc.sweep < 1.2 * std::numbers::pi;
    drawn.isDoor = drawn.isDoor || (isHinge && isLeaf && isSwing);
  });
}

GapJudge::Drawn GapJudge::drawnIn(const Axis& axis, double from, double to, double width) const {
  Drawn drawn;
  lookAtArcs(axis, from, to, width, drawn);
  const double length = to - from;
  const double half = 0.5 * width + m_options.tolerance;
  const Box gap = Box(axis.at(from), axis.at(to)).grownBy(half);
  std::size_t parallels = 0;
  m_lines.visitIn(gap, [&](std::size_t number) {
    const bool isSymbol = number >= m_drawing.lines.size();
    const Symbol* const symbol =
        isSymbol ? &m_drawing.symbols[number - m_drawing.lines.size()] : nullptr;
    const PlanLine& line = symbol ? symbol->line : m_drawing.lines[number];
    const OpeningKind hint = symbol ? symbol->hint : OpeningKind::Opening;
    const double a = axis.alongOf(line.start);
    const double b = axis.alongOf(line.end);
    const double low = std::max(from, std::min(a, b));
    const double high = std::min(to, std::max(a, b));
    const double l = axis.leftOf(line.start);
    const double r = axis.leftOf(line.end);
    if (symbol && symbol->isBox) {
      // A block's box holds the gap's middle, or has it on its border, and is not much larger.
      const Box block = Box(line.start, line.end).grownBy(half);
      const AcGePoint2d middle = axis.at(0.5 * (from + to));
      const bool isOver = block.meets(Box(middle, middle)) &&
                          std::fabs(line.end.x - line.start.x) <= kLargeBlock * length &&
                          std::fabs(line.end.y - line.start.y) <= kLargeBlock * length;
      drawn.isDoor = drawn.isDoor || (isOver && hint == OpeningKind::Door);
      drawn.isWindow = drawn.isWindow || (isOver && hint == OpeningKind::Window);
      return;
    }
    const bool isWithin = std::fabs(l) <= half && std::fabs(r) <= half;
    const bool isParallel = std::fabs(l - r) <= 2.0 * m_options.tolerance &&
                            high - low >= kEnoughCover * length && std::fabs(b - a) <= 1.2 * length;
    if (isWithin && isParallel) {
      parallels += hint == OpeningKind::Door ? 0 : 1;
      drawn.isWindow = drawn.isWindow || hint == OpeningKind::Window;
      drawn.isDoor = drawn.isDoor || hint == OpeningKind::Door;
    }
    // A leaf begins at a jamb and is as long as the gap.
    if (hint == OpeningKind::Door && high - low >= 0.0) {
      const double far = line.start.distanceTo(line.end);
      const double near = std::min(std::min(std::fabs(a - from), std::fabs(a - to)),
                                   std::min(std::fabs(b - from), std::fabs(b - to)));
      const bool isLeaf = near <= 0.12 * length && far >= 0.4 * length && far <= 1.15 * length;
      drawn.isDoor = drawn.isDoor || isLeaf;
    }
  });
  drawn.isWindow = drawn.isWindow || parallels >= 2;
  return drawn;
}

std::vector<WallRun> makeRuns(const PlanDrawing& drawing, const Faces& faces,
                              const std::vector<StripChain>& chains, const GapJudge& judge,
                              const FindWallsOptions& options) {
  std::vector<WallRun> runs;
  const RunMaker maker(drawing, faces, chains, judge, options);
  for (const StripChain& chain : chains) {
    maker.add(chain, runs);
  }
  return runs;
}

}  // namespace quoin::plan
