#include "BreakWallAlgorithm.h"

#include <cstdint>
#include <span>
#include <utility>

#include "EndPointIndex.h"
#include "ProjectScale.h"
#include "ReadAhead.h"
#include "SortAlongDirection.h"
#include "gelnsg3d.h"

namespace {

/// A line and what it takes to find its break points.
class CLineToBreak {
 public:
  CLineToBreak(const WallLineLikeSeg& line, double captureDistance)
      : m_line(line),
        m_captureDistance(captureDistance),
        m_seg(line.ptStart, line.ptEnd),
        m_box(line.ptStart, line.ptEnd, captureDistance) {}

  const CCaptureBox& GetBox() const { return m_box; }

  /// Whether any point of the line keeps the capture distance from both of its ends: none does of a
  /// line that is shorter than twice that, nor of one whose length is no finite number (every
  /// foot is its start). The slack covers the rounding of feet and distances many times over.
  bool IsLongEnough() const {
    constexpr double kRelativeSlack = 1.0e-12;
    const AcGePoint3d& pt1 = m_line.ptStart;
    const AcGePoint3d& pt2 = m_line.ptEnd;
    const double length = (pt2 - pt1).length();
    const double size = std::fabs(pt1.x) + std::fabs(pt1.y) + std::fabs(pt1.z) + length;
    return std::isfinite(length) && length + kRelativeSlack * size >= 2.0 * m_captureDistance;
  }

  /// Whether the other line breaks this one, and where.
  bool FindBreakPnt(const WallLineLikeSeg& other, AcGePoint3d& ptBreak) const {
    if (m_box.Holds(other.ptStart)) {
      return FindBreakPntNearEnd(other, true, ptBreak);
    }
    return m_box.Holds(other.ptEnd) && FindBreakPntNearEnd(other, false, ptBreak);
  }
  /// The same for one of the other line's ends that the box holds; of a line with both in the box
  /// the start counts.
  bool FindBreakPntNearEnd(const WallLineLikeSeg& other, bool bAtStart,
                           AcGePoint3d& ptBreak) const {
    const AcGePoint3d& ptHeld = bAtStart ? other.ptStart : other.ptEnd;
    const AcGePoint3d& ptFar = bAtStart ? other.ptEnd : other.ptStart;
    const bool bothHeld = m_box.Holds(ptFar);
    if (bothHeld && !bAtStart) {
      return false;
    }
    // An end outside of the box is no nearer than the capture distance, unless its distance is
    // no number, which decides for the line's end point; so the one in the box decides alone.
    if (!bothHeld && IsFinite(ptFar)) {
      ptBreak = m_seg.closestPointTo(ptHeld);
      return m_captureDistance > ptHeld.distanceTo(ptBreak) && IsClearOfEnds(ptBreak);
    }
    const AcGePoint3d footOfStart = m_seg.closestPointTo(other.ptStart);
    const AcGePoint3d footOfEnd = m_seg.closestPointTo(other.ptEnd);
    const double distStart = other.ptStart.distanceTo(footOfStart);
    const double distEnd = other.ptEnd.distanceTo(footOfEnd);
    const bool startIsNearer = distEnd > distStart;
    ptBreak = startIsNearer ? footOfStart : footOfEnd;
    return m_captureDistance > (startIsNearer ? distStart : distEnd) && IsClearOfEnds(ptBreak);
  }

 private:
  static bool IsFinite(const AcGePoint3d& pt) { return std::isfinite(pt.x + pt.y + pt.z); }

  bool IsClearOfEnds(const AcGePoint3d& pt) const {
    const double toStart = pt.distanceTo(m_line.ptStart);
    const double toEnd = pt.distanceTo(m_line.ptEnd);
    return (toEnd > toStart ? toStart : toEnd) >= m_captureDistance;
  }

  const WallLineLikeSeg& m_line;
  double m_captureDistance;
  AcGeLineSeg3d m_seg;
  CCaptureBox m_box;
};

/// The capture distance for each line: the project is asked once a line, in their order, and
/// gives nearly always the same.
class CCaptureDistances {
 public:
  explicit CCaptureDistances(std::size_t lines) {
    for (std::size_t i = 0; i < lines; ++i) {
      const double distance = GetCaptureDistance(GetProjectScale());
      if (i == 0) {
        m_first = distance;
      } else if (m_all.empty() && distance != m_first) {
        m_all.assign(lines, m_first);
      }
      if (!m_all.empty()) {
        m_all[i] = distance;
      }
    }
  }
  double Of(std::size_t line) const { return m_all.empty() ? m_first : m_all[line]; }

 private:
  double m_first = 0.0;
  std::vector<double> m_all;  // empty while all are as the first
};

/// Brings the pieces into the order of the lines: they are made line by line, but in another
/// order. Works through its lists from front to back, so that the few reads and writes that
/// jump about do not wait for each other.
class CPieceOrder {
 public:
  CPieceOrder(std::vector<WallLineLikeSeg*>& pieces, std::size_t lines)
      : m_pieces(pieces), m_before(pieces.size()), m_lines(lines) {}

  /// The next `count` pieces are those of the line.
  void Note(std::size_t line, std::size_t count) {
    if (count > 0) {
      m_runs.push_back({static_cast<std::uint32_t>(line), static_cast<std::uint32_t>(count)});
    }
  }
  void OrderByLine() {
    std::vector<std::uint32_t> places(m_lines);
    for (const Run& run : m_runs) {
      places[run.line] = run.count;
    }
    std::uint32_t place = 0;
    for (std::uint32_t& count : places) {
      place += std::exchange(count, place);
    }
    std::vector<WallLineLikeSeg*> ordered(m_pieces.size());
    std::copy_n(m_pieces.begin(), m_before, ordered.begin());
    WallLineLikeSeg* const* next = m_pieces.data() + m_before;
    for (const Run& run : m_runs) {
      std::copy_n(next, run.count, ordered.data() + m_before + places[run.line]);
      next += run.count;
    }
    m_pieces.swap(ordered);
  }

 private:
  struct Run {
    std::uint32_t line;
    std::uint32_t count;
  };
  std::vector<WallLineLikeSeg*>& m_pieces;
  std::size_t m_before;
  std::size_t m_lines;
  std::vector<Run> m_runs;
};

struct FoundBreakPnt {
  std::size_t otherLine;
  AcGePoint3d ptBreak;
};

/// How many ends are worked on together: enough reads to keep memory busy, few enough to stay
/// in the innermost caches until they are needed.
constexpr std::size_t kBatch = 64;

struct LineAtHand {
  LineAtHand(const WallLineLikeSeg& line, double captureDistance, std::size_t lineNumber)
      : toBreak(line, captureDistance), number(lineNumber) {}

  CLineToBreak toBreak;
  std::size_t number;
  std::size_t nearCount = 0;  // how many of the ends found are near it
};

/// Cuts the line at the points, which come in any order, and appends the pieces.
void MakePieces(std::vector<AcGePoint3d>& pnts, WallLineLikeSeg* pLine,
                std::vector<WallLineLikeSeg*>& pieces) {
  if (pnts.empty()) {
    return;
  }
  pnts.push_back(pLine->ptStart);
  pnts.push_back(pLine->ptEnd);
  SortAlongDirection(pnts.begin(), pnts.end(), pLine->ptEnd - pLine->ptStart);
  for (std::size_t i = 1; i < pnts.size(); ++i) {
    if (!pnts[i].isEqualTo(pnts[i - 1])) {
      pieces.push_back(new WallLineLikeSeg(pnts[i - 1], pnts[i], pLine));
    }
  }
}

}  // namespace

CBreakWallAlgorithm::CBreakWallAlgorithm() = default;
CBreakWallAlgorithm::CBreakWallAlgorithm(const CBreakWallAlgorithm& other) = default;
CBreakWallAlgorithm& CBreakWallAlgorithm::operator=(const CBreakWallAlgorithm& other) = default;

CBreakWallAlgorithm::~CBreakWallAlgorithm() {
  ClearWallLineArray(m_srcWallLines);
  ClearWallLineArray(m_newWallLines);
}

std::vector<WallLineLikeSeg*>& CBreakWallAlgorithm::GetSrcWallLines() {
  return m_srcWallLines;
}

const std::vector<WallLineLikeSeg*>& CBreakWallAlgorithm::GetNewWallLines() {
  return m_newWallLines;
}

void CBreakWallAlgorithm::AppendWallBreakPnt(WallLineLikeSeg* pLine,
                                             const AcArray<AcGePoint3d>& pnts) {
  m_wallBreakPnts[pLine].append(pnts);
}

void CBreakWallAlgorithm::CalcBreakPnts(std::vector<AcGePoint3d>& pnts, WallLineLikeSeg* pLine) {
  const CLineToBreak line(*pLine, GetCaptureDistance(GetProjectScale()));
  for (const WallLineLikeSeg* pOther : m_srcWallLines) {
    AcGePoint3d ptBreak;
    if (pOther != pLine && line.FindBreakPnt(*pOther, ptBreak)) {
      pnts.push_back(ptBreak);
    }
  }
}

void CBreakWallAlgorithm::SplitWallLines() {
  const CCaptureDistances captureDistances(m_srcWallLines.size());
  const CEndPointIndex index(m_srcWallLines, captureDistances.Of(0));
  m_newWallLines.reserve(m_newWallLines.size() + 2 * m_srcWallLines.size());
  CPieceOrder order(m_newWallLines, m_srcWallLines.size());
  std::vector<FoundBreakPnt> found;
  std::vector<AcGePoint3d> pnts;
  const auto beginLine = [&](WallLineLikeSeg* pLine) {
    pnts.clear();
    if (!m_wallBreakPnts.empty()) {
      const auto appended = m_wallBreakPnts.find(pLine);
      if (appended != m_wallBreakPnts.end()) {
        pnts.assign(appended->second.begin(), appended->second.end());
      }
    }
  };
  const auto endLine = [&](std::size_t number) {
    const std::size_t first = m_newWallLines.size();
    MakePieces(pnts, m_srcWallLines[number], m_newWallLines);
    order.Note(number, m_newWallLines.size() - first);
  };

  const auto breakLine = [&](const LineAtHand& line, std::span<const std::uint32_t> near) {
    WallLineLikeSeg* const pLine = m_srcWallLines[line.number];
    beginLine(pLine);
    found.clear();
    for (const std::uint32_t end : near) {
      const WallLineLikeSeg* const pOther = m_srcWallLines[CEndPointIndex::LineOf(end)];
      AcGePoint3d ptBreak;
      if (pOther != pLine &&
          line.toBreak.FindBreakPntNearEnd(*pOther, CEndPointIndex::IsStart(end), ptBreak)) {
        found.push_back({CEndPointIndex::LineOf(end), ptBreak});
      }
    }
    if (found.size() > 1) {
      std::sort(found.begin(), found.end(), [](const FoundBreakPnt& a, const FoundBreakPnt& b) {
        return a.otherLine < b.otherLine;
      });
    }
    for (const FoundBreakPnt& one : found) {
      pnts.push_back(one.ptBreak);
    }
    endLine(line.number);
  };

  // Column by column, so that lines that meet are at hand together, and a few lines at a time:
  // what they need is read before it is used.
  std::vector<LineAtHand> atHand;
  CEndPointIndex::CFound near;
  for (std::size_t column = 0; column < index.ColumnCount(); ++column) {
    std::span<const CEndPointIndex::End> ends = index.EndsOfColumn(column);
    while (!ends.empty()) {
      const auto batch = ends.first(std::min(ends.size(), kBatch));
      ends = ends.subspan(batch.size());
      for (const CEndPointIndex::End& end : batch) {
        ReadAhead(*m_srcWallLines[end.Line()]);
      }
      atHand.clear();
      near.Clear();
      for (const CEndPointIndex::End& start : batch) {
        if (start.IsStart()) {
          const std::size_t number = start.Line();
          LineAtHand& line =
              atHand.emplace_back(*m_srcWallLines[number], captureDistances.Of(number), number);
          if (line.toBreak.IsLongEnough()) {
            line.nearCount = index.CollectNear(line.toBreak.GetBox(), column, number, near);
          }
        }
      }
      for (const std::uint32_t end : near.All()) {
        ReadAhead(*m_srcWallLines[CEndPointIndex::LineOf(end)]);
      }
      std::span<const std::uint32_t> left = near.All();
      for (const LineAtHand& line : atHand) {
        breakLine(line, left.first(line.nearCount));
        left = left.subspan(line.nearCount);
      }
    }
  }
  // What is not in the index is near nothing, but may have points that the caller named.
  for (std::size_t i = 0; i < m_srcWallLines.size() && !m_wallBreakPnts.empty(); ++i) {
    if (!CEndPointIndex::IsIndexed(m_srcWallLines[i]->ptStart)) {
      beginLine(m_srcWallLines[i]);
      endLine(i);
    }
  }
  order.OrderByLine();
}

void CBreakWallAlgorithm::ClearWallLineArray(std::vector<WallLineLikeSeg*>& lines) {
  for (WallLineLikeSeg* pLine : lines) {
    delete pLine;
  }
  lines.clear();
}
