#include "MergeWallAlgorithm.h"

#include <utility>

#include "MergePredicatesInternal.h"
#include "MergerInternal.h"

namespace {

struct WallPolicy {
  static bool IsFixed(const MergeWallSeg& seg, bool bAtStart) {
    return bAtStart ? seg.bStartFixed : seg.bEndFixed;
  }
  /// Compares side values across the meeting point: seen away from it the two segments point
  /// in opposite directions, so the left of one is on the side of the right of the other.
  static bool AgreeAt(const MergeWallSeg& seg1, bool bAtStart, const MergeWallSeg& seg2,
                      bool bNearIsStart) {
    const double left1 = bAtStart ? seg1.dSide1 : seg1.dSide2;
    const double right1 = bAtStart ? seg1.dSide2 : seg1.dSide1;
    const double left2 = bNearIsStart ? seg2.dSide1 : seg2.dSide2;
    const double right2 = bNearIsStart ? seg2.dSide2 : seg2.dSide1;
    return MergeSegInternal::FloatEqual(left1, right2) &&
           MergeSegInternal::FloatEqual(right1, left2) &&
           MergeSegInternal::FloatEqual(seg1.dAttr2, seg2.dAttr2) &&
           MergeSegInternal::FloatEqual(seg1.dAttr1, seg2.dAttr1);
  }
  /// A merge at the start turns the direction round, one at the end keeps it.
  static void CarryOver(MergeWallSeg& seg1, bool bAtStart) {
    if (bAtStart) {
      std::swap(seg1.dSide1, seg1.dSide2);
    }
  }
};

}  // namespace

CMergeWallAlgorithm::CMergeWallAlgorithm() = default;
CMergeWallAlgorithm::CMergeWallAlgorithm(const CMergeWallAlgorithm& other) = default;
CMergeWallAlgorithm& CMergeWallAlgorithm::operator=(const CMergeWallAlgorithm& other) = default;

CMergeWallAlgorithm::~CMergeWallAlgorithm() {
  MergeSegInternal::DeleteLines(m_srcWallLines);
}

std::vector<MergeWallSeg*>& CMergeWallAlgorithm::GetSrcWallLines() {
  return m_srcWallLines;
}

const std::set<MergeWallSeg*>& CMergeWallAlgorithm::GetMergeWallLines() {
  return m_mergeWallLines;
}

void CMergeWallAlgorithm::AppendBreakPnt(const AcGePoint3d& pt) {
  m_breakPnts.push_back(pt);
}

void CMergeWallAlgorithm::MergeWallLines() {
  MergeSegInternal::CMerger<WallPolicy, MergeWallSeg>(m_srcWallLines, m_breakPnts, m_mergeWallLines)
      .Merge();
}

void CMergeWallAlgorithm::ColStartEndPntWallArray(std::vector<MergeWallSeg*>& startTouchList,
                                                  std::vector<MergeWallSeg*>& endTouchList,
                                                  const std::vector<MergeWallSeg*>& searchList,
                                                  MergeWallSeg* pSeg) {
  MergeSegInternal::CollectTouching(startTouchList, endTouchList, searchList, *pSeg);
}

bool CMergeWallAlgorithm::Merge2WallOnPnt(MergeWallSeg* pSeg1, MergeWallSeg* pSeg2, bool bAtStart) {
  return MergeSegInternal::MergeOnPnt<WallPolicy>(*pSeg1, *pSeg2, bAtStart, m_breakPnts);
}

void CMergeWallAlgorithm::Merge2WallStruct(MergeWallSeg* pSeg1, MergeWallSeg* pSeg2) {
  MergeSegInternal::MergeBookkeeping(pSeg1, pSeg2, m_mergeWallLines);
}
