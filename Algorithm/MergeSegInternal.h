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
#include <set>
#include <vector>

#include "GeomConst.h"
#include "GeomDegree.h"
#include "ProjectScale.h"
#include "gepnt3d.h"

namespace MergeSegInternal {

/// Two segments continue each other when they leave the meeting point in opposite directions
/// to within this many degrees.
constexpr double kMaxBendDegrees = 1.0;

template <class Seg>
void CollectTouching(std::vector<Seg*>& startTouchList, std::vector<Seg*>& endTouchList,
                     const std::vector<Seg*>& searchList, const Seg& seg) {
  const double tolerance = GetCaptureDistance(GetProjectScale());
  for (Seg* pCand : searchList) {
    const double distStart =
        std::min(seg.ptStart.distanceTo(pCand->ptStart), seg.ptStart.distanceTo(pCand->ptEnd));
    const double distEnd =
        std::min(seg.ptEnd.distanceTo(pCand->ptStart), seg.ptEnd.distanceTo(pCand->ptEnd));
    if (tolerance > distStart) {
      startTouchList.push_back(pCand);
    }
    if (tolerance > distEnd) {
      endTouchList.push_back(pCand);
    }
  }
}

template <class Policy, class Seg>
bool MergeOnPnt(Seg& seg1, const Seg& seg2, bool bAtStart,
                const std::vector<AcGePoint3d>& breakPnts) {
  const AcGePoint3d ptMeet = bAtStart ? seg1.ptStart : seg1.ptEnd;
  const AcGePoint3d ptFar1 = bAtStart ? seg1.ptEnd : seg1.ptStart;
  for (const AcGePoint3d& ptBreak : breakPnts) {
    if (ptBreak.isEqualTo(ptMeet)) {
      return false;
    }
  }
  const bool nearIsStart = !(seg2.ptStart.distanceTo(ptMeet) > seg2.ptEnd.distanceTo(ptMeet));
  const AcGePoint3d ptNear2 = nearIsStart ? seg2.ptStart : seg2.ptEnd;
  const AcGePoint3d ptFar2 = nearIsStart ? seg2.ptEnd : seg2.ptStart;

  const double turn =
      (ptFar1 - ptMeet).angleTo(ptFar2 - ptNear2, AcGeVector3d::kZAxis) - GeomConst::kPi;
  if (std::fabs(CGeomDegree(turn, CGeomDegree::eAngleRadian).GetAngleDegree()) > kMaxBendDegrees) {
    return false;
  }
  if (!Policy::AgreeAt(seg1, bAtStart, seg2, nearIsStart)) {
    return false;
  }
  // From far end to far end: merging at the start turns the direction round.
  seg1.ptStart = ptFar1;
  seg1.ptEnd = ptFar2;
  Policy::CarryOver(seg1, bAtStart);
  return true;
}

template <class Seg>
void MergeBookkeeping(Seg* pSeg1, Seg* pSeg2, std::set<Seg*>& mergedLines) {
  pSeg1->mergedSegs.push_back(pSeg2);
  pSeg1->mergedSegs.insert(pSeg1->mergedSegs.end(), pSeg2->mergedSegs.begin(),
                           pSeg2->mergedSegs.end());
  mergedLines.insert(pSeg1);
  mergedLines.erase(pSeg2);
}

/// The whole operation; `steps` gives the three protected steps of the class.
template <class Policy, class Seg, class Steps>
void MergeLines(const std::vector<Seg*>& srcLines, Steps steps) {
  std::vector<Seg*> pendingList(srcLines);
  std::vector<Seg*> doneList;
  while (!pendingList.empty()) {
    Seg* pSeg = pendingList.back();
    pendingList.pop_back();
    std::vector<Seg*> startTouchList;
    std::vector<Seg*> endTouchList;
    steps.Collect(startTouchList, endTouchList, pendingList, pSeg);
    steps.Collect(startTouchList, endTouchList, doneList, pSeg);

    const auto absorbAt = [&](const std::vector<Seg*>& touchList, bool bAtStart) {
      if (touchList.size() != 1) {
        return false;
      }
      // A finished record is never absorbed, only one that is still pending.
      const auto found = std::find(pendingList.begin(), pendingList.end(), touchList.front());
      if (found == pendingList.end() || !steps.MergeOnPnt(pSeg, *found, bAtStart)) {
        return false;
      }
      Seg* pOther = *found;
      pendingList.erase(found);
      steps.Bookkeep(pSeg, pOther);
      return true;
    };
    bool merged = false;
    if (!Policy::IsFixed(*pSeg, true)) {
      merged = absorbAt(startTouchList, true);
    }
    if (!Policy::IsFixed(*pSeg, false)) {
      merged = absorbAt(endTouchList, false) || merged;
    }
    (merged ? pendingList : doneList).push_back(pSeg);
  }
}

template <class Seg>
void DeleteLines(std::vector<Seg*>& srcLines) {
  for (Seg* pSeg : srcLines) {
    delete pSeg;
  }
  srcLines.clear();
}

}  // namespace MergeSegInternal
