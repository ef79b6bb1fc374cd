// The merge that gouge and wall lines share: joining collinear segments that touch end to
// end. The two classes differ in their record type, in how property values are compared and
// carried over, and in the lock flags of walls; a policy says that. Not exported.
//
// A policy `Policy` for the record `Seg` offers
//   bool IsFixed(const Seg&, bool bAtStart)   the end may not be extended;
//   bool AgreeAt(const Seg& seg1, bool bAtStart, const Seg& seg2, bool bNearIsStart)
//   void CarryOver(Seg& seg1, bool bAtStart)  what changes beside the points of a merge.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "DataConvert.h"
#include "DistanceLimit.h"
#include "EndPointIndex.h"
#include "GeomConst.h"
#include "GeomDegree.h"
#include "ProjectScale.h"
#include "ReadAhead.h"
#include "gepnt3d.h"

namespace MergeSegInternal {

/// DataConvert::FloatEqual at its own precision: what has no difference is equal at any.
inline bool FloatEqual(double value1, double value2) {
  return value1 - value2 == 0.0 || DataConvert::FloatEqual(value1, value2, -1);
}

/// Two segments continue each other when they leave the meeting point in opposite directions
/// to within this many degrees.
constexpr double kMaxBendDegrees = 1.0;

/// Whether an end of the candidate is nearer to the point than the tolerance. A candidate whose
/// start is no number touches nothing.
template <class Seg>
bool Touches(const AcGePoint3d& pt, const Seg& cand, const CDistanceLimit& tolerance) {
  const AcGeVector3d toStart = pt - cand.ptStart;
  return tolerance.IsAbove(toStart) ||
         (tolerance.IsAbove(pt - cand.ptEnd) && !std::isnan(toStart.lengthSqrd()));
}

template <class Seg>
void CollectTouching(std::vector<Seg*>& startTouchList, std::vector<Seg*>& endTouchList,
                     const std::vector<Seg*>& searchList, const Seg& seg) {
  const CDistanceLimit tolerance(GetCaptureDistance(GetProjectScale()));
  for (Seg* pCand : searchList) {
    if (Touches(seg.ptStart, *pCand, tolerance)) {
      startTouchList.push_back(pCand);
    }
    if (Touches(seg.ptEnd, *pCand, tolerance)) {
      endTouchList.push_back(pCand);
    }
  }
}

/// Whether the end at ptMeet is the start of the segment; so it is when both ends are as near.
template <class Seg>
bool NearIsStart(const Seg& seg, const AcGePoint3d& ptMeet) {
  const AcGeVector3d fromStart = seg.ptStart - ptMeet;
  const AcGeVector3d fromEnd = seg.ptEnd - ptMeet;
  const double squareFromStart = fromStart.lengthSqrd();
  const double squareFromEnd = fromEnd.lengthSqrd();
  // Of two squares the smaller has no larger root, and one that is clearly larger has a larger one.
  constexpr double kClearly = 1.0 + 1.0e-12;
  if (squareFromStart <= squareFromEnd) {
    return true;
  }
  return !(squareFromStart > kClearly * squareFromEnd) && !(fromStart.length() > fromEnd.length());
}

/// Whether two segments that leave their meeting point in these directions continue each other.
inline bool LeadOppositeWays(const AcGeVector3d& vec1, const AcGeVector3d& vec2) {
  // Nearly all that do are far from the limit, and then need no arc tangent: the tangent of the
  // bend is |cross| / -dot, and that of 0.9 degrees is above 0.0157. Vectors that are tiny, huge
  // or no numbers are left to the angle.
  constexpr double kSurelySmallTangent = 0.0157;
  constexpr double kLeastProduct = 1.0e-200;
  const double cross = vec1.x * vec2.y - vec1.y * vec2.x;
  const double dot = vec1.x * vec2.x + vec1.y * vec2.y;
  // Heights do not count, but as numbers.
  if (std::fabs(dot) > kLeastProduct && std::isfinite(cross + dot + (vec1.z + vec2.z))) {
    if (dot > 0.0) {
      return false;
    }
    if (std::fabs(cross) < -dot * kSurelySmallTangent) {
      return true;
    }
  }
  const double turn = vec1.angleTo(vec2, AcGeVector3d::kZAxis) - GeomConst::kPi;
  return !(std::fabs(CGeomDegree(turn, CGeomDegree::eAngleRadian).GetAngleDegree()) >
           kMaxBendDegrees);
}

/// Extends seg1 over seg2 at the end named, where seg2's start or its end is the nearer one,
/// if it continues it there.
template <class Policy, class Seg, class IsBreakPnt>
bool MergeUnlessBroken(Seg& seg1, const Seg& seg2, bool bAtStart, bool nearIsStart,
                       IsBreakPnt isBreakPnt) {
  const AcGePoint3d ptMeet = bAtStart ? seg1.ptStart : seg1.ptEnd;
  const AcGePoint3d ptFar1 = bAtStart ? seg1.ptEnd : seg1.ptStart;
  if (isBreakPnt(ptMeet)) {
    return false;
  }
  const AcGePoint3d ptNear2 = nearIsStart ? seg2.ptStart : seg2.ptEnd;
  const AcGePoint3d ptFar2 = nearIsStart ? seg2.ptEnd : seg2.ptStart;
  if (!LeadOppositeWays(ptFar1 - ptMeet, ptFar2 - ptNear2) ||
      !Policy::AgreeAt(seg1, bAtStart, seg2, nearIsStart)) {
    return false;
  }
  // From far end to far end: merging at the start turns the direction round.
  seg1.ptStart = ptFar1;
  seg1.ptEnd = ptFar2;
  Policy::CarryOver(seg1, bAtStart);
  return true;
}

template <class Policy, class Seg>
bool MergeOnPnt(Seg& seg1, const Seg& seg2, bool bAtStart,
                const std::vector<AcGePoint3d>& breakPnts) {
  const bool nearIsStart = NearIsStart(seg2, bAtStart ? seg1.ptStart : seg1.ptEnd);
  return MergeUnlessBroken<Policy>(seg1, seg2, bAtStart, nearIsStart, [&](const AcGePoint3d& pt) {
    return std::any_of(breakPnts.begin(), breakPnts.end(),
                       [&](const AcGePoint3d& ptBreak) { return ptBreak.isEqualTo(pt); });
  });
}

template <class Seg>
void AppendMerged(Seg* pSeg1, Seg* pSeg2) {
  pSeg1->mergedSegs.push_back(pSeg2);
  // By number: a record that stands in the source list twice may absorb itself.
  const std::size_t count = pSeg2->mergedSegs.size();
  for (std::size_t i = 0; i < count; ++i) {
    pSeg1->mergedSegs.push_back(pSeg2->mergedSegs[i]);
  }
}

template <class Seg>
void MergeBookkeeping(Seg* pSeg1, Seg* pSeg2, std::set<Seg*>& mergedLines) {
  AppendMerged(pSeg1, pSeg2);
  mergedLines.insert(pSeg1);
  mergedLines.erase(pSeg2);
}

/// The break points, arranged for finding those that equal a point.
class CBreakPnts {
 public:
  explicit CBreakPnts(const std::vector<AcGePoint3d>& pnts) : m_equalPoint(TouchDistance()) {
    m_points.reserve(pnts.size());
    for (const AcGePoint3d& pt : pnts) {
      m_points.push_back({pt, pt});
    }
    std::vector<const PointAsLine*> lines;
    lines.reserve(m_points.size());
    for (const PointAsLine& point : m_points) {
      lines.push_back(&point);
    }
    m_index.emplace(lines, m_equalPoint, CEndPointIndex::eForPoints);
  }

  bool Hold(const AcGePoint3d& pt) const {
    bool isHeld = false;
    if (!m_points.empty()) {
      m_index->VisitNear(CCaptureBox(pt, m_equalPoint), m_index->ColumnNear(pt.x),
                         [&](std::uint32_t found) {
                           isHeld = m_points[CEndPointIndex::LineOf(found)].ptStart.isEqualTo(pt);
                           return !isHeld;
                         });
    }
    return isHeld;
  }

 private:
  struct PointAsLine {
    AcGePoint3d ptStart;
    AcGePoint3d ptEnd;
  };
  /// Points are equal up to the tolerance itself, which is therefore below this.
  static double TouchDistance() {
    return std::nextafter(AcGeContext::gTol.equalPoint(), std::numeric_limits<double>::infinity());
  }

  double m_equalPoint;
  std::vector<PointAsLine> m_points;
  std::optional<CEndPointIndex> m_index;
};

/// The whole operation. In its plain form it keeps two lists, of pending and of finished records,
/// takes the last pending one, looks through both lists for what touches its ends, merges with a
/// pending record that alone touches an end, and puts it back to the end of the pending list if
/// it merged, or into the finished one.
///
/// Here nothing is looked through. A merged record is taken again at once, so records are taken
/// from the last to the first of the source array, those already absorbed left out. And a merge
/// makes no new end points: the survivor gets one end of either record, the two that met are
/// gone. So what touches what is found once, by an index of all ends, and ends only change hands.
/// Records are numbered by where they start, in the order of the index, so that a chain's records
/// are neighbours in memory; end 2 * n is the start of record n as it was, 2 * n + 1 its end.
template <class Policy, class Seg>
class CMerger {
 public:
  CMerger(const std::vector<Seg*>& srcLines, const std::vector<AcGePoint3d>& breakPnts,
          std::set<Seg*>& mergedLines)
      : m_srcLines(srcLines),
        m_breakPnts(breakPnts),
        m_mergedLines(mergedLines),
        m_hadMergedLines(!mergedLines.empty()) {}

  void Merge() {
    for (std::size_t i = m_srcLines.size(); i-- > 0;) {
      // The project is asked for the tolerance by the first pass, not before.
      Tolerances tolerances{};
      if (m_records.empty()) {
        tolerances.pending = ReadTolerance();
        Prepare(tolerances.pending);
        tolerances.finished = ReadTolerance();
      } else if (m_isAbsorbed[i]) {
        continue;
      } else {
        tolerances = ReadTolerances();
      }
      MergeChain(m_numbers[i], tolerances);
    }
    InsertResults();
  }

 private:
  static constexpr std::uint32_t kNobody = CEndPointIndex::kNone;

  enum class EState : std::uint8_t { Pending, AtHand, Finished, Absorbed };
  struct Record {
    Seg* pSeg = nullptr;
    // By end, start first. Contacts and owners are those of the ends that the record began with.
    std::uint32_t contacts[2] = {CEndPointIndex::kNone, CEndPointIndex::kNone};
    std::uint32_t owners[2] = {};  // the record that has it now, or kNobody
    std::uint32_t ends[2] = {};    // the ends that the record has now
    std::uint32_t source = 0;      // its place in the source array
    EState state = EState::Pending;
    bool isResult = false;
  };
  /// The touch tolerances of one pass, read in this order.
  struct Tolerances {
    double pending;
    double finished;
  };

  /// What alone touches an end.
  struct Touching {
    std::uint32_t record = kNobody;
    std::uint32_t end = CEndPointIndex::kNone;  // the end of it that does, where that is known
  };

  /// How many records of a chain are read ahead, either way.
  static constexpr int kChainAhead = 32;

  /// All passes over a record, the first with these tolerances.
  void MergeChain(std::uint32_t number, Tolerances tolerances) {
    Seg& seg = *m_records[number].pSeg;
    const std::size_t ahead = ReadChainAhead(number);
    for (std::size_t merges = 1; MergeOnce(number, tolerances); ++merges) {
      if (merges == 1) {
        seg.mergedSegs.reserve(seg.mergedSegs.size() + ahead);
      }
      if (merges % (kChainAhead / 2) == 0) {
        ReadChainAhead(number);
      }
      tolerances = ReadTolerances();
    }
    if (seg.mergedSegs.capacity() > 2 * seg.mergedSegs.size()) {
      seg.mergedSegs.shrink_to_fit();  // less came than room was made for
    }
    m_records[number].state = EState::Finished;
  }

  /// Reads what the record is going to absorb, if each contact leads on to the next; answers how
  /// many that are.
  std::size_t ReadChainAhead(std::uint32_t number) const {
    std::size_t count = 0;
    for (const std::uint32_t from : m_records[number].ends) {
      std::uint32_t end = from;
      for (int step = 0; step < kChainAhead; ++step) {
        const std::uint32_t contact = m_records[end / 2].contacts[end % 2];
        if (contact == CEndPointIndex::kNone || contact == CEndPointIndex::kSeveral ||
            m_records[contact / 2].state != EState::Pending) {
          break;
        }
        ReadAhead(*m_records[contact / 2].pSeg);
        ++count;
        end = contact ^ 1;
      }
    }
    return count;
  }

  static double ReadTolerance() { return GetCaptureDistance(GetProjectScale()); }
  static Tolerances ReadTolerances() {
    const double pending = ReadTolerance();
    return {pending, ReadTolerance()};
  }

  void Prepare(double tolerance) {
    // Contacts are those of the ends as they were, so they must not serve a record that moves
    // while it stands elsewhere in the array too. One that does touches itself, and so nothing
    // alone, unless a coordinate is no finite number: then every search is made anew.
    m_tolerance = HasUnfiniteDuplicates() ? std::numeric_limits<double>::quiet_NaN() : tolerance;
    m_limit = CDistanceLimit(m_tolerance);
    m_index.emplace(m_srcLines, tolerance, CEndPointIndex::eForPoints);
    m_records.resize(m_srcLines.size());
    std::uint32_t number = 0;
    m_index->NumberByPlace(m_numbers, m_srcLines.size(), [&](std::size_t line) {
      Record& record = m_records[number];
      record.pSeg = m_srcLines[line];
      record.source = static_cast<std::uint32_t>(line);
      record.owners[0] = record.owners[1] = number;
      record.ends[0] = 2 * number;
      record.ends[1] = 2 * number + 1;
      ++number;
    });
    m_isAbsorbed.assign(m_srcLines.size(), 0);
    m_index->VisitContacts(tolerance, [this](const CEndPointIndex::End& end, std::uint32_t other) {
      m_records[end.Line()].contacts[end.number % 2] = other;
    });
  }

  bool HasUnfiniteDuplicates() const {
    std::vector<const Seg*> unfinite;
    for (const Seg* pSeg : m_srcLines) {
      if (!std::isfinite((pSeg->ptEnd - pSeg->ptStart).lengthSqrd())) {
        unfinite.push_back(pSeg);
      }
    }
    std::sort(unfinite.begin(), unfinite.end(), std::less<>());
    return std::adjacent_find(unfinite.begin(), unfinite.end()) != unfinite.end();
  }

  std::uint32_t& Owner(std::uint32_t end) { return m_records[end / 2].owners[end % 2]; }

  /// One pass over a record; whether it merged.
  bool MergeOnce(std::uint32_t number, const Tolerances& tolerances) {
    Record& record = m_records[number];
    record.state = EState::AtHand;
    const Touching atStart = FindOnlyTouching(record.ends[0], record.pSeg->ptStart, tolerances);
    const Touching atEnd = FindOnlyTouching(record.ends[1], record.pSeg->ptEnd, tolerances);
    bool merged = false;
    if (!Policy::IsFixed(*record.pSeg, true)) {
      merged = Absorb(number, atStart, true);
    }
    if (!Policy::IsFixed(*record.pSeg, false)) {
      // A merge at the start moved the end: what touched it meets the record elsewhere.
      merged = Absorb(number, merged ? Touching{atEnd.record} : atEnd, false) || merged;
    }
    return merged;
  }

  bool TouchesNow(const AcGePoint3d& pt, const Record& record, const Tolerances& tolerances) const {
    switch (record.state) {
      case EState::Pending:
        return Touches(pt, *record.pSeg, CDistanceLimit(tolerances.pending));
      case EState::Finished:
        return Touches(pt, *record.pSeg, CDistanceLimit(tolerances.finished));
      default:
        return false;
    }
  }

  /// As Touches(), for the one end of a pending record that is near the point: the other one is
  /// then too far to touch it, and matters only as the start that is no number.
  bool TouchesWith(std::uint32_t end, const Seg& cand, const AcGePoint3d& pt) const {
    const AcGeVector3d toStart = pt - cand.ptStart;
    return CEndPointIndex::IsStart(end)
               ? m_limit.IsAbove(toStart)
               : m_limit.IsAbove(pt - cand.ptEnd) && !std::isnan(toStart.lengthSqrd());
  }

  /// The one pending or finished record that touches the end, which is at `pt`; kNobody when
  /// none does or several do, or when it could not be absorbed anyway.
  Touching FindOnlyTouching(std::uint32_t end, const AcGePoint3d& pt,
                            const Tolerances& tolerances) {
    const std::uint32_t contact = m_records[end / 2].contacts[end % 2];
    // A project whose scale changes on the way is rare, but then contacts are not what they were.
    if (!(tolerances.pending == m_tolerance && tolerances.finished == m_tolerance) ||
        contact == CEndPointIndex::kSeveral) {
      return {SearchOnlyTouching(pt, tolerances)};
    }
    if (contact == CEndPointIndex::kNone) {
      return {};
    }
    // Absorbed are pending records alone, whose ends are those that they began with.
    const Record& other = m_records[contact / 2];
    return other.state == EState::Pending && TouchesWith(contact, *other.pSeg, pt)
               ? Touching{contact / 2, contact}
               : Touching{};
  }

  std::uint32_t SearchOnlyTouching(const AcGePoint3d& pt, const Tolerances& tolerances) {
    const CCaptureBox box(pt, std::fmax(tolerances.pending, tolerances.finished));
    std::uint32_t only = kNobody;
    m_index->VisitNear(box, m_index->ColumnNear(pt.x), [&](std::uint32_t found) {
      const std::uint32_t other = Owner(found);
      if (other == kNobody || other == only || !TouchesNow(pt, m_records[other], tolerances)) {
        return true;
      }
      const bool isSecond = only != kNobody;
      only = isSecond ? kNobody : other;
      return !isSecond;
    });
    return only;
  }

  bool Absorb(std::uint32_t number, const Touching& touching, bool bAtStart) {
    if (touching.record == kNobody || m_records[touching.record].state != EState::Pending) {
      return false;
    }
    Record& record = m_records[number];
    Record& gone = m_records[touching.record];
    const bool nearIsStart =
        touching.end != CEndPointIndex::kNone
            ? CEndPointIndex::IsStart(touching.end)
            : NearIsStart(*gone.pSeg, bAtStart ? record.pSeg->ptStart : record.pSeg->ptEnd);
    if (!MergeUnlessBroken<Policy>(
            *record.pSeg, *gone.pSeg, bAtStart, nearIsStart,
            [this](const AcGePoint3d& pt) { return m_breakPnts.Hold(pt); })) {
      return false;
    }
    gone.state = EState::Absorbed;
    m_isAbsorbed[gone.source] = 1;
    Owner(record.ends[bAtStart ? 0 : 1]) = kNobody;
    Owner(gone.ends[nearIsStart ? 0 : 1]) = kNobody;
    record.ends[0] = record.ends[bAtStart ? 1 : 0];
    record.ends[1] = gone.ends[nearIsStart ? 1 : 0];
    Owner(record.ends[1]) = number;
    Note(record, gone);
    return true;
  }

  /// The bookkeeping of a merge. What is surely new to the set, since this operation absorbs
  /// nothing that has merged before, is put into it all at once.
  void Note(Record& record, const Record& gone) {
    if (m_hadMergedLines || record.pSeg == gone.pSeg) {
      InsertResults();
      MergeBookkeeping(record.pSeg, gone.pSeg, m_mergedLines);
      return;
    }
    AppendMerged(record.pSeg, gone.pSeg);
    if (!record.isResult) {
      m_results.push_back(record.pSeg);
      record.isResult = true;
    }
  }
  /// In their order, so that none has to look for its place.
  void InsertResults() {
    std::sort(m_results.begin(), m_results.end(), std::less<>());
    for (Seg* pSeg : m_results) {
      m_mergedLines.insert(m_mergedLines.end(), pSeg);
    }
    m_results.clear();
  }

  const std::vector<Seg*>& m_srcLines;
  CBreakPnts m_breakPnts;
  std::set<Seg*>& m_mergedLines;
  bool m_hadMergedLines;
  double m_tolerance = 0.0;
  CDistanceLimit m_limit{0.0};  // of the same
  std::optional<CEndPointIndex> m_index;
  std::vector<std::uint32_t> m_numbers;  // the records' numbers by place in the source array
  std::vector<Record> m_records;
  std::vector<char> m_isAbsorbed;  // by place in the source array
  std::vector<Seg*> m_results;     // that are still to go into the set
};

template <class Seg>
void DeleteLines(std::vector<Seg*>& srcLines) {
  for (Seg* pSeg : srcLines) {
    delete pSeg;
  }
  srcLines.clear();
}

}  // namespace MergeSegInternal
