// Joins collinear gouge lines that touch end to end and agree in their property values. Fill
// GetSrcGougeLines(), add break points, call MergeGougeLines(), read GetMergeGougeLines().
// For wall lines use CMergeWallAlgorithm.
#pragma once

#include <set>
#include <vector>

#include "afxext.h"
#include "gepnt3d.h"

struct MergeGougeSeg {
  AcGePoint3d ptStart;
  AcGePoint3d ptEnd;
  /// Property values, free of direction; equal ones (in all three) may merge.
  double dAttr1 = 0.0;
  double dAttr2 = 0.0;
  double dAttr3 = 0.0;
  /// What this record absorbed, directly or through records that it absorbed.
  std::vector<MergeGougeSeg*> mergedSegs;
};

/// Owns:  the records of the source array; the destructor deletes them. Copies share the
///        records, so copy only while the array is empty.
class AFX_EXT_CLASS CMergeGougeAlgorithm {
 public:
  CMergeGougeAlgorithm();
  CMergeGougeAlgorithm(const CMergeGougeAlgorithm& other);
  CMergeGougeAlgorithm& operator=(const CMergeGougeAlgorithm& other);
  ~CMergeGougeAlgorithm();

  /// The lines to merge, for filling; no null pointers while merging.
  std::vector<MergeGougeSeg*>& GetSrcGougeLines();
  /// The records that absorbed others and were not absorbed themselves.
  const std::set<MergeGougeSeg*>& GetMergeGougeLines();
  /// No merge happens at a segment end that lies on this point.
  void AppendBreakPnt(const AcGePoint3d& pt);
  /// Merges in place: a survivor's points are rewritten, the absorbed records keep theirs and
  /// are listed in its mergedSegs. The last record of the array is tried first and retried
  /// until neither of its ends merges; an end at which two or more others meet never does.
  void MergeGougeLines();

 protected:
  /// Appends the records of `searchList` that touch pSeg's start and its end (an end of
  /// theirs nearer than the capture distance) to the two lists.
  void ColStartEndPntGougeArray(std::vector<MergeGougeSeg*>& startTouchList,
                                std::vector<MergeGougeSeg*>& endTouchList,
                                const std::vector<MergeGougeSeg*>& searchList, MergeGougeSeg* pSeg);
  /// Extends pSeg1 over pSeg2 if that continues it beyond the named end; false, with nothing
  /// changed, if it does not. The merged segment runs from far end to far end.
  bool Merge2GougeOnPnt(MergeGougeSeg* pSeg1, MergeGougeSeg* pSeg2, bool bAtStart);
  /// Notes that pSeg1 absorbed pSeg2.
  void Merge2GougeStruct(MergeGougeSeg* pSeg1, MergeGougeSeg* pSeg2);

 private:
  std::vector<MergeGougeSeg*> m_srcGougeLines;
  std::set<MergeGougeSeg*> m_mergeGougeLines;
  std::vector<AcGePoint3d> m_breakPnts;
};
