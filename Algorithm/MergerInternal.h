// The whole merge of gouge or of wall lines; MergePredicatesInternal.h decides about two segments.
// Not exported.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <set>
#include <vector>

#include "BreakPntsInternal.h"
#include "DistanceLimit.h"
#include "EndPointContacts.h"
#include "EndPointIndex.h"
#include "MergePredicatesInternal.h"
#include "Prefetch.h"
#include "ProjectScale.h"
#include "gepnt3d.h"

namespace MergeSegInternal {

/// The whole operation. In its plain form it keeps two lists, of pending and of finished records,
/// takes the last pending one, looks through both lists for what touches its ends, merges with a
/// pending record that alone touches an end, and puts it back to the end of the pending list if
/// it merged, or into the finished one.
///
/// Here no list is searched. A merged record is taken again at once, so records are taken from the
/// last to the first of the source array, those already absorbed left out. And a merge makes no new
/// end points: the survivor gets one end of either record, the two that met are gone. So what
/// touches what is found once, by an index of all ends, and ends only change their owner. Records
/// are ordered by where they start, as in the index, so that a chain's records are neighbours in
/// memory; end 2 * i is the start of record i as it was, 2 * i + 1 its end.
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
      // The tolerance is read from the project by the first pass, not before.
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
      MergeChain(m_indices[i], tolerances);
    }
    InsertResults();
  }

 private:
  static constexpr std::uint32_t kNobody = CEndPointIndex::kNone;

  enum class EState : std::uint8_t { Pending, InProgress, Finished, Absorbed };
  struct Record {
    Seg* pSeg = nullptr;
    // By end, start first. Contacts and owners are those of the ends that the record began with.
    std::uint32_t contacts[2] = {CEndPointContacts::kNone, CEndPointContacts::kNone};
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

  /// How many records of a chain are prefetched, either way.
  static constexpr int kPrefetchDistance = 32;

  /// All passes over a record, the first with these tolerances.
  void MergeChain(std::uint32_t index, Tolerances tolerances) {
    Seg& seg = *m_records[index].pSeg;
    const std::size_t ahead = PrefetchChain(index);
    for (std::size_t merges = 1; MergeOnce(index, tolerances); ++merges) {
      if (merges == 1) {
        seg.mergedSegs.reserve(seg.mergedSegs.size() + ahead);
      }
      if (merges % (kPrefetchDistance / 2) == 0) {
        PrefetchChain(index);
      }
      tolerances = ReadTolerances();
    }
    if (seg.mergedSegs.capacity() > 2 * seg.mergedSegs.size()) {
      seg.mergedSegs.shrink_to_fit();  // less came than room was made for
    }
    m_records[index].state = EState::Finished;
  }

  /// Prefetches what the record is going to absorb, if each contact leads on to the next; returns
  /// how many that are.
  std::size_t PrefetchChain(std::uint32_t index) const {
    std::size_t count = 0;
    for (const std::uint32_t from : m_records[index].ends) {
      std::uint32_t end = from;
      for (int step = 0; step < kPrefetchDistance; ++step) {
        const std::uint32_t contact = m_records[end / 2].contacts[end % 2];
        if (contact == CEndPointContacts::kNone || contact == CEndPointContacts::kAmbiguous ||
            m_records[contact / 2].state != EState::Pending) {
          break;
        }
        Prefetch(*m_records[contact / 2].pSeg);
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
    // alone, unless a coordinate is not finite: then every search is made anew.
    m_tolerance = HasNonFiniteDuplicates() ? std::numeric_limits<double>::quiet_NaN() : tolerance;
    m_limit = CDistanceLimit(m_tolerance);
    m_index.emplace(m_srcLines, tolerance, CEndPointIndex::eForPoints);
    m_records.resize(m_srcLines.size());
    std::uint32_t index = 0;
    m_index->Renumber(m_indices, m_srcLines.size(), [&](std::size_t line) {
      Record& record = m_records[index];
      record.pSeg = m_srcLines[line];
      record.source = static_cast<std::uint32_t>(line);
      record.owners[0] = record.owners[1] = index;
      record.ends[0] = 2 * index;
      record.ends[1] = 2 * index + 1;
      ++index;
    });
    m_isAbsorbed.assign(m_srcLines.size(), 0);
    CEndPointContacts(*m_index, tolerance)
        .VisitAll([this](const CEndPointContacts::End& end, std::uint32_t contact) {
          m_records[end.Line()].contacts[end.index % 2] = contact;
        });
  }

  bool HasNonFiniteDuplicates() const {
    std::vector<const Seg*> nonFinite;
    for (const Seg* pSeg : m_srcLines) {
      if (!std::isfinite((pSeg->ptEnd - pSeg->ptStart).lengthSqrd())) {
        nonFinite.push_back(pSeg);
      }
    }
    std::sort(nonFinite.begin(), nonFinite.end(), std::less<>());
    return std::adjacent_find(nonFinite.begin(), nonFinite.end()) != nonFinite.end();
  }

  std::uint32_t& Owner(std::uint32_t end) { return m_records[end / 2].owners[end % 2]; }

  /// One pass over a record; whether it merged.
  bool MergeOnce(std::uint32_t index, const Tolerances& tolerances) {
    Record& record = m_records[index];
    record.state = EState::InProgress;
    const std::uint32_t atStart =
        FindOnlyTouching(record.ends[0], record.pSeg->ptStart, tolerances);
    const std::uint32_t atEnd = FindOnlyTouching(record.ends[1], record.pSeg->ptEnd, tolerances);
    bool merged = false;
    if (!Policy::IsFixed(*record.pSeg, true)) {
      merged = Absorb(index, atStart, true);
    }
    if (!Policy::IsFixed(*record.pSeg, false)) {
      merged = Absorb(index, atEnd, false) || merged;
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

  /// The one pending or finished record that touches the end, which is at `pt`; kNobody when
  /// none does or several do, or when it could not be absorbed anyway.
  std::uint32_t FindOnlyTouching(std::uint32_t end, const AcGePoint3d& pt,
                                 const Tolerances& tolerances) {
    const std::uint32_t contact = m_records[end / 2].contacts[end % 2];
    // A project whose scale changes on the way is rare, but then contacts are not what they were.
    if (!(tolerances.pending == m_tolerance && tolerances.finished == m_tolerance) ||
        contact == CEndPointContacts::kAmbiguous) {
      return SearchOnlyTouching(pt, tolerances);
    }
    if (contact == CEndPointContacts::kNone) {
      return kNobody;
    }
    // Absorbed are pending records alone, whose ends are those that they began with.
    const Record& other = m_records[contact / 2];
    return other.state == EState::Pending && Touches(pt, *other.pSeg, m_limit) ? contact / 2
                                                                               : kNobody;
  }

  std::uint32_t SearchOnlyTouching(const AcGePoint3d& pt, const Tolerances& tolerances) {
    const CCaptureBox box(pt, std::fmax(tolerances.pending, tolerances.finished));
    std::uint32_t only = kNobody;
    m_index->VisitNear(box, m_index->ColumnAt(pt.x), [&](std::uint32_t found) {
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

  bool Absorb(std::uint32_t index, std::uint32_t touching, bool bAtStart) {
    if (touching == kNobody || m_records[touching].state != EState::Pending) {
      return false;
    }
    Record& record = m_records[index];
    Record& gone = m_records[touching];
    const bool nearIsStart =
        NearIsStart(*gone.pSeg, bAtStart ? record.pSeg->ptStart : record.pSeg->ptEnd);
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
    Owner(record.ends[1]) = index;
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
  std::vector<std::uint32_t> m_indices;  // the records' indices by place in the source array
  std::vector<Record> m_records;
  std::vector<char> m_isAbsorbed;  // by place in the source array
  std::vector<Seg*> m_results;     // that are still to go into the set
};

}  // namespace MergeSegInternal
