#include "BreakWallAlgorithm.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <span>
#include <utility>

#include "DistanceLimit.h"
#include "EndPointIndex.h"
#include "GeomConst.h"
#include "Prefetch.h"
#include "ProjectScale.h"
#include "SortAlongDirection.h"
#include "gelnsg3d.h"

namespace {

/// A line and what it takes to find its break points.
class CLineToBreak {
 public:
  CLineToBreak(const WallLineLikeSeg& line, double captureDistance)
      : m_line(line),
        m_captureDistance(captureDistance),
        m_limit(captureDistance),
        m_seg(line.ptStart, line.ptEnd),
        m_box(line.ptStart, line.ptEnd, captureDistance) {}

  const CCaptureBox& GetBox() const { return m_box; }

  /// Whether any point of the line keeps the capture distance from both of its ends: none does of a
  /// line that is shorter than twice that, nor of one whose length is not finite (every foot
  /// is its start). The slack covers the rounding of feet and distances many times over.
  bool IsLongEnough() const {
    const AcGePoint3d& pt1 = m_line.ptStart;
    const AcGePoint3d& pt2 = m_line.ptEnd;
    const double length = (pt2 - pt1).length();
    const double size = std::fabs(pt1.x) + std::fabs(pt1.y) + std::fabs(pt1.z) + length;
    return std::isfinite(length) &&
           length + GeomConst::kRoundingSlack * size >= 2.0 * m_captureDistance;
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
    // NaN, which decides for the line's end point; so the one in the box decides alone.
    if (!bothHeld && IsFinite(ptFar)) {
      ptBreak = m_seg.closestPointTo(ptHeld);
      return m_limit.IsAbove(ptHeld - ptBreak) && IsClearOfEnds(ptBreak);
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

  /// Of a foot that something is near, so that it has finite coordinates.
  bool IsClearOfEnds(const AcGePoint3d& pt) const {
    return m_limit.IsReachedBy(pt - m_line.ptStart) && m_limit.IsReachedBy(pt - m_line.ptEnd);
  }

  const WallLineLikeSeg& m_line;
  double m_captureDistance;
  CDistanceLimit m_limit;
  AcGeLineSeg3d m_seg;
  CCaptureBox m_box;
};

/// The capture distance for each line: read from the project once a line, in their order, and
/// nearly always the same.
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

/// How many ends are worked on together: enough prefetches to keep memory busy, few enough to stay
/// in the innermost cache until they are needed.
constexpr std::size_t kBatch = 64;

struct PreparedLine {
  PreparedLine(const WallLineLikeSeg& line, double captureDistance, std::size_t lineIndex)
      : toBreak(line, captureDistance), index(lineIndex) {}

  CLineToBreak toBreak;
  std::size_t index;
  std::size_t nearCount = 0;  // how many of the ends found are near it
};

/// The break points of one line after another, each cut at its own.
class CPieceMaker {
 public:
  CPieceMaker(const std::map<WallLineLikeSeg*, AcArray<AcGePoint3d>>& appended,
              std::vector<WallLineLikeSeg*>& pieces)
      : m_appended(appended), m_pieces(pieces) {}

  void Begin(WallLineLikeSeg* pLine) {
    m_pLine = pLine;
    m_pnts.clear();
    m_foundOn.clear();
    if (!m_appended.empty()) {
      const auto appended = m_appended.find(pLine);
      if (appended != m_appended.end()) {
        m_pnts.assign(appended->second.begin(), appended->second.end());
      }
    }
  }
  /// A point that the line with this index breaks it at.
  void Add(std::size_t otherLine, const AcGePoint3d& ptBreak) {
    m_pnts.push_back(ptBreak);
    m_foundOn.push_back(otherLine);
  }
  /// Cuts the line and appends the pieces; returns how many.
  std::size_t End() {
    if (m_pnts.empty()) {
      return 0;
    }
    const std::size_t before = m_pieces.size();
    m_pnts.push_back(m_pLine->ptStart);
    m_pnts.push_back(m_pLine->ptEnd);
    const AcGeVector3d direction = m_pLine->ptEnd - m_pLine->ptStart;
    if (!TrySortFewAlongDirection(m_pnts.begin(), m_pnts.end(), direction)) {
      // Points that the caller named may be NaN, which contradict the order of the others: then
      // the result depends on the order in which all of them came.
      OrderByOtherLine();
      SortAlongDirection(m_pnts.begin(), m_pnts.end(), direction);
    }
    for (std::size_t i = 1; i < m_pnts.size(); ++i) {
      if (!m_pnts[i].isEqualTo(m_pnts[i - 1])) {
        m_pieces.push_back(new WallLineLikeSeg(m_pnts[i - 1], m_pnts[i], m_pLine));
      }
    }
    return m_pieces.size() - before;
  }

 private:
  void OrderByOtherLine() {
    const std::size_t appended = m_pnts.size() - 2 - m_foundOn.size();
    std::vector<std::pair<std::size_t, AcGePoint3d>> found;
    found.reserve(m_foundOn.size());
    for (std::size_t i = 0; i < m_foundOn.size(); ++i) {
      found.emplace_back(m_foundOn[i], m_pnts[appended + i]);
    }
    std::sort(found.begin(), found.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    for (std::size_t i = 0; i < found.size(); ++i) {
      m_pnts[appended + i] = found[i].second;
    }
  }

  const std::map<WallLineLikeSeg*, AcArray<AcGePoint3d>>& m_appended;
  std::vector<WallLineLikeSeg*>& m_pieces;
  WallLineLikeSeg* m_pLine = nullptr;
  std::vector<AcGePoint3d> m_pnts;     // those appended by the caller, those found, the line's ends
  std::vector<std::size_t> m_foundOn;  // by point found: the other line
};

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
  CPieceMaker maker(m_wallBreakPnts, m_newWallLines);

  const auto breakLine = [&](const PreparedLine& line, std::span<const std::uint32_t> endsNear) {
    WallLineLikeSeg* const pLine = m_srcWallLines[line.index];
    maker.Begin(pLine);
    for (const std::uint32_t end : endsNear) {
      const std::size_t otherLine = CEndPointIndex::LineOf(end);
      const WallLineLikeSeg* const pOther = m_srcWallLines[otherLine];
      AcGePoint3d ptBreak;
      if (pOther != pLine &&
          line.toBreak.FindBreakPntNearEnd(*pOther, CEndPointIndex::IsStart(end), ptBreak)) {
        maker.Add(otherLine, ptBreak);
      }
    }
    order.Note(line.index, maker.End());
  };

  // Column by column, so that lines that meet are in the cache together, and a few lines at a time,
  // whose records are prefetched.
  std::vector<PreparedLine> prepared;
  CEndPointIndex::CFound found;
  for (std::size_t column = 0; column < index.ColumnCount(); ++column) {
    std::span<const CEndPointIndex::End> ends = index.EndsOfColumn(column);
    while (!ends.empty()) {
      const auto batch = ends.first(std::min(ends.size(), kBatch));
      ends = ends.subspan(batch.size());
      for (const CEndPointIndex::End& end : batch) {
        Prefetch(*m_srcWallLines[end.Line()]);
      }
      prepared.clear();
      found.Clear();
      for (const CEndPointIndex::End& start : batch) {
        if (start.IsStart()) {
          const std::size_t own = start.Line();
          PreparedLine& line =
              prepared.emplace_back(*m_srcWallLines[own], captureDistances.Of(own), own);
          if (line.toBreak.IsLongEnough()) {
            line.nearCount = index.CollectNear(line.toBreak.GetBox(), column, own, found);
          }
        }
      }
      for (const std::uint32_t end : found.All()) {
        Prefetch(*m_srcWallLines[CEndPointIndex::LineOf(end)]);
      }
      std::span<const std::uint32_t> left = found.All();
      for (const PreparedLine& line : prepared) {
        breakLine(line, left.first(line.nearCount));
        left = left.subspan(line.nearCount);
      }
    }
  }
  // What is not in the index is near nothing, but may have points that the caller named.
  for (std::size_t i = 0; i < m_srcWallLines.size() && !m_wallBreakPnts.empty(); ++i) {
    if (!CEndPointIndex::IsIndexed(m_srcWallLines[i]->ptStart)) {
      maker.Begin(m_srcWallLines[i]);
      order.Note(i, maker.End());
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
