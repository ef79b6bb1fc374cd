// What both merges, of gouge and of wall lines, decide about two segments that touch end to end:
// whether they touch, whether one continues the other, and what merging them does. The two differ
// in their record type, in how property values are compared and carried over, and in the lock
// flags of walls; a policy says that. CMerger runs the whole operation. Not exported.
//
// A policy `Policy` for the record `Seg` offers
//   bool IsFixed(const Seg&, bool bAtStart)   the end may not be extended;
//   bool AgreeAt(const Seg& seg1, bool bAtStart, const Seg& seg2, bool bNearIsStart)
//   void CarryOver(Seg& seg1, bool bAtStart)  what changes beside the points of a merge.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <set>
#include <vector>

#include "DataConvert.h"
#include "DistanceLimit.h"
#include "GeomConst.h"
#include "GeomDegree.h"
#include "ProjectScale.h"
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
/// start is NaN touches nothing.
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
  // Of two squares the smaller has no larger root, and one larger by the slack has a larger one.
  constexpr double kClearlyLarger = 1.0 + GeomConst::kRoundingSlack;
  if (squareFromStart <= squareFromEnd) {
    return true;
  }
  return !(squareFromStart > kClearlyLarger * squareFromEnd) &&
         !(fromStart.length() > fromEnd.length());
}

/// Whether two segments that leave their meeting point in these directions continue each other.
inline bool LeadOppositeWays(const AcGeVector3d& vec1, const AcGeVector3d& vec2) {
  // Nearly all that do are far from the limit, and then need no arc tangent: the tangent of the
  // bend is |cross| / -dot, and that of 0.9 degrees is above 0.0157. Vectors that are tiny, huge
  // or NaN are left to the angle.
  constexpr double kSurelySmallTangent = 0.0157;
  constexpr double kLeastProduct = 1.0e-200;
  const double cross = vec1.x * vec2.y - vec1.y * vec2.x;
  const double dot = vec1.x * vec2.x + vec1.y * vec2.y;
  // Heights count only where they are not finite.
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
  // By index: a record that stands in the source list twice may absorb itself.
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

template <class Seg>
void DeleteLines(std::vector<Seg*>& srcLines) {
  for (Seg* pSeg : srcLines) {
    delete pSeg;
  }
  srcLines.clear();
}

}  // namespace MergeSegInternal
