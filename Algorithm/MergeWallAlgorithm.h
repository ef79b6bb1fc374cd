// Joins collinear wall lines that touch end to end and agree in their property values. Fill
// GetSrcWallLines(), add break points, call MergeWallLines(), read GetMergeWallLines(). It
// is the merge of CMergeGougeAlgorithm with two more traits: values bound to a side of the
// line, and ends that the caller locks.
#pragma once

#include <set>
#include <vector>

#include "afxext.h"
#include "gepnt3d.h"

struct MergeWallSeg {
  AcGePoint3d ptStart;
  AcGePoint3d ptEnd;
  /// Values of the two sides, relative to the direction from start to end. When a merge turns
  /// the direction round they change places, so that each stays on its side.
  double dSide1 = 0.0;
  double dSide2 = 0.0;
  /// Property values, free of direction; equal ones may merge.
  double dAttr1 = 0.0;
  double dAttr2 = 0.0;
  /// True: this record is not extended at that end while it is the one being processed.
  bool bStartFixed = false;
  bool bEndFixed = false;
  /// What this record absorbed, directly or through records that it absorbed.
  std::vector<MergeWallSeg*> mergedSegs;
};

/// Owns:  the records of the source array; the destructor deletes them. Copies share the
///        records, so copy only while the array is empty.
class AFX_EXT_CLASS CMergeWallAlgorithm {
 public:
  CMergeWallAlgorithm();
  CMergeWallAlgorithm(const CMergeWallAlgorithm& other);
  CMergeWallAlgorithm& operator=(const CMergeWallAlgorithm& other);
  ~CMergeWallAlgorithm();

  /// The lines to merge, for filling; no null pointers while merging.
  std::vector<MergeWallSeg*>& GetSrcWallLines();
  /// The records that absorbed others and were not absorbed themselves.
  const std::set<MergeWallSeg*>& GetMergeWallLines();
  /// No merge happens at a segment end that lies on this point.
  void AppendBreakPnt(const AcGePoint3d& pt);
  /// As CMergeGougeAlgorithm::MergeGougeLines, skipping the locked ends of the record that is
  /// being processed; the locks of the records it meets are not looked at.
  void MergeWallLines();

 protected:
  /// The three steps, as in CMergeGougeAlgorithm.
  void ColStartEndPntWallArray(std::vector<MergeWallSeg*>& startTouchList,
                               std::vector<MergeWallSeg*>& endTouchList,
                               const std::vector<MergeWallSeg*>& searchList, MergeWallSeg* pSeg);
  bool Merge2WallOnPnt(MergeWallSeg* pSeg1, MergeWallSeg* pSeg2, bool bAtStart);
  void Merge2WallStruct(MergeWallSeg* pSeg1, MergeWallSeg* pSeg2);

 private:
  std::vector<MergeWallSeg*> m_srcWallLines;
  std::set<MergeWallSeg*> m_mergeWallLines;
  std::vector<AcGePoint3d> m_breakPnts;
};
