#include "MergeGougeAlgorithm.h"

#include "MergePredicatesInternal.h"
#include "MergerInternal.h"

namespace {

struct GougePolicy {
  static bool IsFixed(const MergeGougeSeg&, bool) { return false; }
  static bool AgreeAt(const MergeGougeSeg& seg1, bool, const MergeGougeSeg& seg2, bool) {
    return MergeSegInternal::FloatEqual(seg1.dAttr1, seg2.dAttr1) &&
           MergeSegInternal::FloatEqual(seg1.dAttr3, seg2.dAttr3) &&
           MergeSegInternal::FloatEqual(seg1.dAttr2, seg2.dAttr2);
  }
  static void CarryOver(MergeGougeSeg&, bool) {}
};

}  // namespace

CMergeGougeAlgorithm::CMergeGougeAlgorithm() = default;
CMergeGougeAlgorithm::CMergeGougeAlgorithm(const CMergeGougeAlgorithm& other) = default;
CMergeGougeAlgorithm& CMergeGougeAlgorithm::operator=(const CMergeGougeAlgorithm& other) = default;

CMergeGougeAlgorithm::~CMergeGougeAlgorithm() {
  MergeSegInternal::DeleteLines(m_srcGougeLines);
}

std::vector<MergeGougeSeg*>& CMergeGougeAlgorithm::GetSrcGougeLines() {
  return m_srcGougeLines;
}

const std::set<MergeGougeSeg*>& CMergeGougeAlgorithm::GetMergeGougeLines() {
  return m_mergeGougeLines;
}

void CMergeGougeAlgorithm::AppendBreakPnt(const AcGePoint3d& pt) {
  m_breakPnts.push_back(pt);
}

void CMergeGougeAlgorithm::MergeGougeLines() {
  MergeSegInternal::CMerger<GougePolicy, MergeGougeSeg>(m_srcGougeLines, m_breakPnts,
                                                        m_mergeGougeLines)
      .Merge();
}

void CMergeGougeAlgorithm::ColStartEndPntGougeArray(std::vector<MergeGougeSeg*>& startTouchList,
                                                    std::vector<MergeGougeSeg*>& endTouchList,
                                                    const std::vector<MergeGougeSeg*>& searchList,
                                                    MergeGougeSeg* pSeg) {
  MergeSegInternal::CollectTouching(startTouchList, endTouchList, searchList, *pSeg);
}

bool CMergeGougeAlgorithm::Merge2GougeOnPnt(MergeGougeSeg* pSeg1, MergeGougeSeg* pSeg2,
                                            bool bAtStart) {
  return MergeSegInternal::MergeOnPnt<GougePolicy>(*pSeg1, *pSeg2, bAtStart, m_breakPnts);
}

void CMergeGougeAlgorithm::Merge2GougeStruct(MergeGougeSeg* pSeg1, MergeGougeSeg* pSeg2) {
  MergeSegInternal::MergeBookkeeping(pSeg1, pSeg2, m_mergeGougeLines);
}
