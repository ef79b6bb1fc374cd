#include "plan/FindWalls.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "plan/CurvedWalls.h"
#include "plan/Faces.h"
#include "plan/PlanPoint.h"
#include "plan/Strips.h"
#include "plan/WallNetwork.h"
#include "plan/WallRuns.h"

namespace quoin::plan {

namespace {

/// The lines of each face, one after the other.
class LinesOfFaces {
 public:
  explicit LinesOfFaces(const Faces& faces) : m_first(faces.faces.size() + 1, 0) {
    for (const std::size_t face : faces.faceOfLine) {
      if (face != Faces::kNone) {
        ++m_first[face + 1];
      }
    }
    for (std::size_t i = 1; i < m_first.size(); ++i) {
      m_first[i] += m_first[i - 1];
    }
    m_lines.resize(m_first.back());
    std::vector<std::size_t> next(m_first.begin(), m_first.end() - 1);
    for (std::size_t line = 0; line < faces.faceOfLine.size(); ++line) {
      if (faces.faceOfLine[line] != Faces::kNone) {
        m_lines[next[faces.faceOfLine[line]]++] = line;
      }
    }
  }
  template <class Visit>
  void visit(std::size_t face, Visit visit) const {
    for (std::size_t i = m_first[face]; i < m_first[face + 1]; ++i) {
      visit(m_lines[i]);
    }
  }

 private:
  std::vector<std::size_t> m_first;
  std::vector<std::size_t> m_lines;
};

/// Takes out of `all` the chosen strips that are in no wall.
void dropRefuted(std::vector<StripChain>& all, const std::vector<StripChain>& chosen,
                 const WallNetwork& network) {
  std::vector<std::size_t> refuted;
  for (const StripChain& chain : chosen) {
    for (const Strip& strip : chain.strips) {
      refuted.push_back(strip.number);
    }
  }
  std::sort(refuted.begin(), refuted.end());
  std::vector<std::size_t> held;
  for (const WallRun& run : network.runs) {
    for (const Strip& strip : run.strips) {
      held.push_back(strip.number);
    }
  }
  std::sort(held.begin(), held.end());
  const auto isRefuted = [&](const Strip& strip) {
    return std::binary_search(refuted.begin(), refuted.end(), strip.number) &&
           !std::binary_search(held.begin(), held.end(), strip.number);
  };
  for (StripChain& chain : all) {
    chain.strips.erase(std::remove_if(chain.strips.begin(), chain.strips.end(), isRefuted),
                       chain.strips.end());
  }
  const auto isEmpty = [](const StripChain& chain) { return chain.strips.empty(); };
  all.erase(std::remove_if(all.begin(), all.end(), isEmpty), all.end());
}

/// The lines that run along the piece, as its faces.
std::vector<std::size_t> facesOf(const WallPiece& piece, const WallRun& run, const Axis& axis,
                                 const LinesOfFaces& lines, const PlanDrawing& drawing) {
  std::vector<std::size_t> found;
  for (const Strip& strip : run.strips) {
    if (run.axis.alongOf(axis.at(strip.end, strip.middle)) <= piece.from ||
        run.axis.alongOf(axis.at(strip.begin, strip.middle)) >= piece.to) {
      continue;
    }
    for (const std::size_t face : {strip.right, strip.left}) {
      lines.visit(face, [&](std::size_t line) {
        const double a = run.axis.alongOf(drawing.lines[line].start);
        const double b = run.axis.alongOf(drawing.lines[line].end);
        if (std::max(a, b) > piece.from && std::min(a, b) < piece.to) {
          found.push_back(line);
        }
      });
    }
  }
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

bool isUsable(const PlanLine& line) {
  return isFinite(line.start) && isFinite(line.end);
}

/// Lines of which both ends lie in the body of a wall, or on its faces.
std::vector<std::size_t> outsideOf(const std::vector<Wall>& walls, const PlanDrawing& drawing,
                                   const FindWallsOptions& options) {
  SegmentGrid grid;
  for (const Wall& wall : walls) {
    grid.add(wall.start, wall.end);
  }
  grid.arrange(4.0 * options.maxWidth);
  const auto isInside = [&](const AcGePoint2d& point) {
    bool isThere = false;
    grid.visitIn(Box(point, point).grownBy(options.maxWidth + options.reach), [&](std::size_t i) {
      if (isThere) {
        return;
      }
      const Wall& wall = walls[i];
      const Axis axis{wall.start, wall.direction()};
      const double at = axis.alongOf(point);
      const double left = axis.leftOf(point);
      const double beyond = std::max(wall.left, wall.right) + options.reach;
      isThere = at >= -beyond && at <= wall.length() + beyond &&
                left <= wall.left + 2.0 * options.tolerance &&
                left >= -wall.right - 2.0 * options.tolerance;
    });
    return isThere;
  };
  std::vector<std::size_t> outside;
  for (std::size_t i = 0; i < drawing.lines.size(); ++i) {
    const PlanLine& line = drawing.lines[i];
    const bool hasLength = line.start.x != line.end.x || line.start.y != line.end.y;
    if (!isUsable(line) || !hasLength || !isInside(line.start) || !isInside(line.end)) {
      outside.push_back(i);
    }
  }
  return outside;
}

/// So much of the lines may be left over for closed outlines among them to be columns, and so large
/// they may be by the greatest width of a wall.
constexpr double kFewLeftOver = 0.1;
constexpr double kGreatestColumn = 2.5;

/// Outlines of which no more than one side is a wall's face.
std::vector<PlanOutline> columnsAmong(const PlanDrawing& drawing, const FoundWalls& found,
                                      const FindWallsOptions& options) {
  std::vector<PlanOutline> columns = drawing.columns;
  const auto few = kFewLeftOver * static_cast<double>(drawing.lines.size());
  if (static_cast<double>(found.leftOver.size()) > few) {
    return columns;
  }
  std::vector<PlanLine> outside;
  SegmentGrid grid;
  for (const std::size_t number : found.leftOver) {
    const PlanLine& line = drawing.lines[number];
    if (isUsable(line)) {
      outside.push_back(line);
      grid.add(line.start, line.end);
    }
  }
  grid.arrange(4.0 * options.maxWidth);
  for (const PlanOutline& outline : drawing.outlines) {
    std::size_t sidesLeft = 0;
    Box box(outline.front(), outline.front());
    for (std::size_t i = 0; i < outline.size(); ++i) {
      const AcGePoint2d& start = outline[i];
      const AcGePoint2d& end = outline[(i + 1) % outline.size()];
      box.least.set(std::min(box.least.x, start.x), std::min(box.least.y, start.y));
      box.greatest.set(std::max(box.greatest.x, start.x), std::max(box.greatest.y, start.y));
      bool isLeft = false;
      grid.visitIn(Box(start, end), [&](std::size_t line) {
        const PlanLine& other = outside[line];
        isLeft = isLeft || (other.start == start && other.end == end) ||
                 (other.start == end && other.end == start);
      });
      sidesLeft += isLeft ? 1 : 0;
    }
    const double size = std::max(box.greatest.x - box.least.x, box.greatest.y - box.least.y);
    if (outline.size() >= 4 && sidesLeft + 1 >= outline.size() &&
        size <= kGreatestColumn * options.maxWidth) {
      columns.push_back(outline);
    }
  }
  return columns;
}

/// Lengths by width; widths are one where they differ by less than the tolerance, and called by the
/// one that most of the length has.
std::vector<FoundWalls::Width> widthsOf(const std::vector<Wall>& walls, double tolerance) {
  std::map<double, double> lengths;
  for (const Wall& wall : walls) {
    lengths[wall.width()] += wall.length();
  }
  std::vector<FoundWalls::Width> widths;
  double first = 0.0;
  double most = 0.0;
  for (const auto& [width, length] : lengths) {
    if (widths.empty() || width - first > tolerance) {
      widths.push_back({width, 0.0});
      first = width;
      most = 0.0;
    }
    widths.back().length += length;
    if (length > most) {
      most = length;
      widths.back().width = width;
    }
  }
  std::stable_sort(widths.begin(), widths.end(),
                   [](const auto& a, const auto& b) { return a.length > b.length; });
  return widths;
}

}  // namespace

AcGePoint2d PlanArc::at(double angle) const {
  return center + AcGeVector2d(std::cos(angle), std::sin(angle)) * radius;
}

FindWallsOptions FindWallsOptions::inUnitsOf(double millimetersPerUnit) {
  FindWallsOptions options;
  for (double* const length :
       {&options.minWidth, &options.maxWidth, &options.tolerance, &options.reach,
        &options.maxOpening, &options.maxDrawnOpening, &options.deviation}) {
    *length /= millimetersPerUnit;
  }
  return options;
}

FoundWalls findWalls(const PlanDrawing& drawing, const FindWallsOptions& options) {
  FoundWalls found;
  const Faces faces = makeFaces(drawing.lines, options);
  std::vector<StripChain> all = findStrips(faces, options);
  std::vector<StripChain> chains = chooseStrips(all, faces, options);
  const GapJudge judge(drawing, options);
  WallNetwork network = joinRuns(makeRuns(drawing, faces, chains, judge, options), judge, options);
  // Once more without what turned out to be no wall: it stood where walls are, hid openings and
  // parted walls.
  dropRefuted(all, chains, network);
  chains = chooseStrips(std::move(all), faces, options);
  network = joinRuns(makeRuns(drawing, faces, chains, judge, options), judge, options);
  const LinesOfFaces lines(faces);
  for (const WallPiece& piece : network.pieces) {
    const WallRun& run = network.runs[piece.run];
    for (const WallRun::Gap& gap : run.openings) {
      const double middle = 0.5 * (gap.from + gap.to);
      if (middle > piece.from && middle <= piece.to) {
        found.plan.openings.push_back({found.plan.walls.size(),
                                       std::max(gap.from, piece.from) - piece.from,
                                       std::min(gap.to, piece.to) - piece.from, gap.kind});
      }
    }
    found.plan.walls.push_back(piece.wall);
    found.faces.push_back(facesOf(piece, run, faces.axes[run.group], lines, drawing));
  }
  found.curved = findCurvedWalls(drawing.faceArcs, options);
  for (CurvedWall& wall : found.curved) {
    const std::vector<AcGePoint2d> corners = chordsOf(wall.arc, options.deviation);
    for (std::size_t i = 1; i < corners.size(); ++i) {
      wall.chords.push_back(found.plan.walls.size());
      found.plan.walls.push_back({corners[i - 1], corners[i], 0.5 * wall.width, 0.5 * wall.width});
      found.faces.emplace_back();
    }
  }
  found.leftOver = outsideOf(found.plan.walls, drawing, options);
  found.columns = columnsAmong(drawing, found, options);
  found.widths = widthsOf(found.plan.walls, options.tolerance);
  return found;
}

}  // namespace quoin::plan
