// The merge of gouge lines, and where the merge of wall lines differs from it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "GeomDegree.h"
#include "MergeGougeAlgorithm.h"
#include "MergeWallAlgorithm.h"
#include "support/GeometryText.h"
#include "support/RunningHost.h"

namespace {

using quoin::test::point;
using quoin::test::RunningHost;
using quoin::test::text;

class OpenGouge : public CMergeGougeAlgorithm {
 public:
  using CMergeGougeAlgorithm::ColStartEndPntGougeArray;
  using CMergeGougeAlgorithm::Merge2GougeOnPnt;
  using CMergeGougeAlgorithm::Merge2GougeStruct;
};

class MergeGouge : public testing::Test {
 protected:
  std::vector<MergeGougeSeg*> fill(std::string_view lines) {
    for (const auto& [start, end] : quoin::test::segments(lines)) {
      MergeGougeSeg* record = new MergeGougeSeg();
      record->ptStart = start;
      record->ptEnd = end;
      m_algorithm.GetSrcGougeLines().push_back(record);
    }
    return m_algorithm.GetSrcGougeLines();
  }
  /// Merges and returns the survivors in source order.
  std::string merge(std::string_view lines) {
    fill(lines);
    m_algorithm.MergeGougeLines();
    return survivors();
  }
  std::string survivors() {
    std::vector<MergeGougeSeg*> inOrder;
    for (MergeGougeSeg* record : m_algorithm.GetSrcGougeLines()) {
      if (m_algorithm.GetMergeGougeLines().count(record)) {
        inOrder.push_back(record);
      }
    }
    EXPECT_EQ(inOrder.size(), m_algorithm.GetMergeGougeLines().size());
    return quoin::test::textOfSegments(inOrder);
  }

  RunningHost m_host{10.0};  // touch tolerance 1
  OpenGouge m_algorithm;
};

TEST_F(MergeGouge, AnEmptyListLeavesTheResultAsItWas) {
  EXPECT_EQ(merge(""), "");
  EXPECT_EQ(m_host.scaleReads(), 0u);
}

TEST_F(MergeGouge, TheLastRecordAbsorbsTheOneAtItsStartAndTurnsRound) {
  const auto lines = fill("0,0 10,0; 10,0 20,0");
  m_algorithm.MergeGougeLines();
  EXPECT_EQ(survivors(), "20,0 0,0");
  EXPECT_EQ(lines[1]->mergedSegs, (std::vector<MergeGougeSeg*>{lines[0]}));
  // The absorbed record keeps its place and its geometry.
  EXPECT_EQ(text(lines[0]->ptStart, lines[0]->ptEnd), "0,0 10,0");
  EXPECT_EQ(m_algorithm.GetSrcGougeLines().size(), 2u);
}

TEST_F(MergeGouge, AMergeAtTheEndKeepsTheDirection) {
  EXPECT_EQ(merge("10,0 20,0; 0,0 10,0"), "0,0 20,0");
  EXPECT_EQ(merge("130,5 120,5; 110,5 120,5"), "0,0 20,0; 110,5 130,5");
}

TEST_F(MergeGouge, ThreeSegmentsAtOnePointDoNotMerge) {
  EXPECT_EQ(merge("0,0 10,0; 10,0 20,0; 10,0 10,10"), "");
}

TEST_F(MergeGouge, ABreakPointAtTheMeetingEndPreventsTheMerge) {
  m_algorithm.AppendBreakPnt(point("10,0"));
  EXPECT_EQ(merge("0,0 10,0; 10,0 20,0"), "");
}

TEST_F(MergeGouge, ABreakPointAtAFarEndDoesNot) {
  m_algorithm.AppendBreakPnt(point("0,0"));
  m_algorithm.AppendBreakPnt(point("20,0"));
  m_algorithm.AppendBreakPnt(point("10,0.000001"));  // not within the point tolerance
  EXPECT_EQ(merge("0,0 10,0; 10,0 20,0"), "20,0 0,0");
}

TEST_F(MergeGouge, TheBreakPointIsComparedWithTheProcessedRecordsEnd) {
  // The ends differ by half a unit; only the one of the record being processed counts.
  m_algorithm.AppendBreakPnt(point("10,0"));
  EXPECT_EQ(merge("0,0 10,0; 10.5,0 20,0"), "20,0 0,0");
}

TEST_F(MergeGouge, SegmentsThatBendByHalfADegreeMergeAndByTwoDegreesDoNot) {
  const double degree = std::acos(-1.0) / 180.0;
  for (const auto& [bend, merges] :
       {std::pair(0.5, true), std::pair(-0.5, true), std::pair(0.999, true),
        std::pair(1.001, false), std::pair(2.0, false), std::pair(-2.0, false)}) {
    CMergeGougeAlgorithm algorithm;
    MergeGougeSeg* first = new MergeGougeSeg();
    first->ptEnd = AcGePoint3d(10, 0, 0);
    MergeGougeSeg* second = new MergeGougeSeg();
    second->ptStart = first->ptEnd;
    second->ptEnd = AcGePoint3d(10 + 10 * std::cos(bend * degree), 10 * std::sin(bend * degree), 0);
    algorithm.GetSrcGougeLines() = {first, second};
    algorithm.MergeGougeLines();
    EXPECT_EQ(!algorithm.GetMergeGougeLines().empty(), merges) << bend;
  }
}

TEST_F(MergeGouge, ABendOfJustOneDegreeIsTheLimitToTheLastBit) {
  // The smallest steps that doubles allow around one degree, as the merge computes it. Angles
  // near half a turn lie 2.5e-14 degrees apart and none of them is one degree exactly.
  const double half = std::acos(-1.0);
  double nearestBelow = 0.0;
  double nearestAbove = 2.0;
  double y = 10.0 * std::tan(half / 180.0) * (1.0 - 1e-13);
  for (int step = 0; step < 1200; ++step, y = std::nextafter(y, 1.0)) {
    MergeGougeSeg first;
    first.ptStart = AcGePoint3d(-10, 0, 0);
    MergeGougeSeg second;
    second.ptEnd = AcGePoint3d(10, y, 0);
    const double turn =
        AcGeVector3d(-10, 0, 0).angleTo(AcGeVector3d(10, y, 0), AcGeVector3d::kZAxis);
    const double bend = CGeomDegree(turn - half, CGeomDegree::eAngleRadian).GetAngleDegree();
    EXPECT_EQ(m_algorithm.Merge2GougeOnPnt(&first, &second, false), bend <= 1.0) << text(bend);
    (bend <= 1.0 ? nearestBelow : nearestAbove) =
        bend <= 1.0 ? std::max(nearestBelow, bend) : std::min(nearestAbove, bend);
  }
  EXPECT_NEAR(nearestBelow, 1.0, 3e-14);
  EXPECT_NEAR(nearestAbove, 1.0, 3e-14);
}

TEST_F(MergeGouge, OverlappingSegmentsNeverMerge) {
  EXPECT_EQ(merge("0,0 10,0; 0,0 20,0"), "");
  EXPECT_EQ(merge("10,5 0,5; 20,5 0,5"), "");
}

TEST_F(MergeGouge, AGapOrOverlapBelowTheToleranceIsAbsorbed) {
  EXPECT_EQ(merge("0,0 10,0; 10.9,0 20,0"), "20,0 0,0");
  EXPECT_EQ(merge("0,50 10.9,50; 10,50 20,50"), "20,0 0,0; 20,50 0,50");
}

TEST_F(MergeGouge, AGapOfExactlyTheToleranceIsNot) {
  EXPECT_EQ(merge("0,0 10,0; 11,0 20,0"), "");
}

TEST_F(MergeGouge, AChainCollapsesIntoItsLastRecord) {
  const auto lines = fill("0,0 10,0; 10,0 20,0; 20,0 30,0; 30,0 40,0");
  m_algorithm.MergeGougeLines();
  // Merged once at its start (which turns it round), then twice at its end.
  EXPECT_EQ(survivors(), "40,0 0,0");
  EXPECT_EQ(lines[3]->mergedSegs, (std::vector<MergeGougeSeg*>{lines[2], lines[1], lines[0]}));
}

TEST_F(MergeGouge, ARecordTakesOverWhatTheAbsorbedOneHadAbsorbed) {
  const auto lines = fill("0,0 10,0; 20,0 30,0; 10,0 20,0");
  m_algorithm.MergeGougeLines();
  ASSERT_EQ(m_algorithm.GetMergeGougeLines().size(), 1u);
  EXPECT_EQ((*m_algorithm.GetMergeGougeLines().begin())->mergedSegs.size(), 2u);
  MergeGougeSeg other;
  m_algorithm.Merge2GougeStruct(&other, lines[2]);
  EXPECT_EQ(other.mergedSegs.size(), 3u);
  EXPECT_EQ(other.mergedSegs[0], lines[2]);
  EXPECT_EQ(lines[2]->mergedSegs.size(), 2u);  // its own list is left as it is
  EXPECT_EQ(m_algorithm.GetMergeGougeLines(), (std::set<MergeGougeSeg*>{&other}));
}

TEST_F(MergeGouge, AFinishedRecordIsNeverAbsorbed) {
  // The last record's own end lies on the break point: it is finished. The other record's end
  // does not, and it meets nobody else, but the one that it meets is no longer to be had.
  m_algorithm.AppendBreakPnt(point("10.5,0"));
  EXPECT_EQ(merge("0,0 10,0; 10.5,0 20,0"), "");
}

TEST_F(MergeGouge, APendingRecordInTheSamePlaceIs) {
  m_algorithm.AppendBreakPnt(point("10.5,0"));
  EXPECT_EQ(merge("10.5,0 20,0; 0,0 10,0"), "0,0 20,0");
}

TEST_F(MergeGouge, EveryPropertyValueMustAgree) {
  for (double MergeGougeSeg::*value :
       {&MergeGougeSeg::dAttr1, &MergeGougeSeg::dAttr2, &MergeGougeSeg::dAttr3}) {
    CMergeGougeAlgorithm algorithm;
    for (const auto& [start, end] : quoin::test::segments("0,0 10,0; 10,0 20,0")) {
      MergeGougeSeg* record = new MergeGougeSeg();
      record->ptStart = start;
      record->ptEnd = end;
      algorithm.GetSrcGougeLines().push_back(record);
    }
    algorithm.GetSrcGougeLines()[0]->*value = 2e-9;
    algorithm.MergeGougeLines();
    EXPECT_TRUE(algorithm.GetMergeGougeLines().empty());
    algorithm.GetSrcGougeLines()[0]->*value = 0.5e-9;  // equal within the comparison
    algorithm.MergeGougeLines();
    EXPECT_EQ(algorithm.GetMergeGougeLines().size(), 1u);
    EXPECT_EQ(algorithm.GetSrcGougeLines()[1]->*value, 0.0);  // the survivor keeps its own
  }
}

TEST_F(MergeGouge, CollectingListsACandidateAtBothEndsWhereItTouchesBoth) {
  const auto lines = fill("0,0 10,0; 10,0 0,0.5; 50,0 60,0; 10,0.5 30,0");
  std::vector<MergeGougeSeg*> atStart;
  std::vector<MergeGougeSeg*> atEnd;
  m_algorithm.ColStartEndPntGougeArray(atStart, atEnd, {lines[1], lines[2], lines[3]}, lines[0]);
  EXPECT_EQ(atStart, (std::vector<MergeGougeSeg*>{lines[1]}));
  EXPECT_EQ(atEnd, (std::vector<MergeGougeSeg*>{lines[1], lines[3]}));
  EXPECT_EQ(m_host.scaleReads(), 1u);
}

TEST_F(MergeGouge, TheNearerEndOfTheOtherRecordIsItsStartOnATie) {
  const auto lines = fill("0,0 10,0; 11,0 9,0");
  // Both ends of the second lie 1 from (10,0): its start counts as the near one, its end
  // lies behind, so it points the wrong way.
  EXPECT_FALSE(m_algorithm.Merge2GougeOnPnt(lines[0], lines[1], false));
  std::swap(lines[1]->ptStart, lines[1]->ptEnd);
  EXPECT_TRUE(m_algorithm.Merge2GougeOnPnt(lines[0], lines[1], false));
  EXPECT_EQ(text(lines[0]->ptStart, lines[0]->ptEnd), "0,0 11,0");
}

TEST_F(MergeGouge, TheScaleIsReadForEveryListThatIsSearched) {
  m_host.project().root().setType(3);
  merge("0,0 10,0; 50,0 60,0");
  // Two records, none merged: pending and finished ones are searched for each.
  EXPECT_EQ(m_host.scaleReads(), 4u);
  EXPECT_EQ(m_host.log().size(), 4u);
}

TEST_F(MergeGouge, AScaleOfZeroMakesEverythingTouch) {
  m_host.setScale(0.0);
  EXPECT_EQ(merge("0,0 10,0; 500,0 600,0"), "600,0 0,0");
  EXPECT_EQ(merge("0,90 10,90; 0,300 10,300"), "600,0 0,0");
}

TEST_F(MergeGouge, ASecondCallMergesFurtherIntoTheSameResult) {
  m_algorithm.AppendBreakPnt(point("20,0"));
  EXPECT_EQ(merge("0,0 10,0; 10,0 20,0; 50,5 60,5"), "20,0 0,0");
  EXPECT_EQ(merge("60,5 70,5"), "20,0 0,0; 70,5 50,5");
}

TEST_F(MergeGouge, CopiesOfAFilledObjectShareTheRecords) {
  m_algorithm.AppendBreakPnt(point("30,0"));
  merge("0,0 10,0; 10,0 20,0");
  CMergeGougeAlgorithm copy(m_algorithm);
  CMergeGougeAlgorithm assigned;
  assigned = m_algorithm;
  for (CMergeGougeAlgorithm* other : {&copy, &assigned}) {
    EXPECT_EQ(other->GetSrcGougeLines(), m_algorithm.GetSrcGougeLines());
    EXPECT_EQ(other->GetMergeGougeLines(), m_algorithm.GetMergeGougeLines());
    other->GetSrcGougeLines().clear();  // or each would delete them
  }
  // The break points come along: nothing merges at (30,0).
  for (const auto& [start, end] : quoin::test::segments("25,0 30,0; 30,0 40,0")) {
    copy.GetSrcGougeLines().push_back(new MergeGougeSeg{start, end, 0, 0, 0, {}});
  }
  copy.MergeGougeLines();
  EXPECT_EQ(copy.GetMergeGougeLines(), m_algorithm.GetMergeGougeLines());
}

TEST_F(MergeGouge, ANullRecordIsToleratedByTheDestructor) {
  CMergeGougeAlgorithm algorithm;
  algorithm.GetSrcGougeLines().push_back(nullptr);
}

// --- walls --------------------------------------------------------------------------------

class OpenWall : public CMergeWallAlgorithm {
 public:
  using CMergeWallAlgorithm::Merge2WallOnPnt;
};

class MergeWall : public testing::Test {
 protected:
  MergeWallSeg* add(std::string_view line, double side1, double side2) {
    MergeWallSeg* record = new MergeWallSeg();
    const auto [start, end] = quoin::test::segments(line).front();
    record->ptStart = start;
    record->ptEnd = end;
    record->dSide1 = side1;
    record->dSide2 = side2;
    m_algorithm.GetSrcWallLines().push_back(record);
    return record;
  }
  std::size_t merged() {
    m_algorithm.MergeWallLines();
    return m_algorithm.GetMergeWallLines().size();
  }

  RunningHost m_host{10.0};
  OpenWall m_algorithm;
};

TEST_F(MergeWall, AMergeAtTheStartExchangesTheSideValues) {
  add("-10,0 0,0", 1, 2);
  MergeWallSeg* last = add("0,0 10,0", 1, 2);
  EXPECT_EQ(merged(), 1u);
  EXPECT_EQ(text(last->ptStart, last->ptEnd), "10,0 -10,0");
  EXPECT_EQ(last->dSide1, 2);
  EXPECT_EQ(last->dSide2, 1);
}

TEST_F(MergeWall, AMergeAtTheEndKeepsThem) {
  add("10,0 20,0", 1, 2);
  MergeWallSeg* last = add("0,0 10,0", 1, 2);
  EXPECT_EQ(merged(), 1u);
  EXPECT_EQ(text(last->ptStart, last->ptEnd), "0,0 20,0");
  EXPECT_EQ(last->dSide1, 1);
  EXPECT_EQ(last->dSide2, 2);
}

TEST_F(MergeWall, CopiesOfAFilledObjectShareTheRecords) {
  add("10,0 20,0", 1, 2);
  add("0,0 10,0", 1, 2);
  EXPECT_EQ(merged(), 1u);
  CMergeWallAlgorithm copy(m_algorithm);
  CMergeWallAlgorithm assigned;
  assigned = m_algorithm;
  for (CMergeWallAlgorithm* other : {&copy, &assigned}) {
    EXPECT_EQ(other->GetSrcWallLines(), m_algorithm.GetSrcWallLines());
    EXPECT_EQ(other->GetMergeWallLines(), m_algorithm.GetMergeWallLines());
    other->GetSrcWallLines().clear();  // or each would delete them
  }
}

TEST_F(MergeWall, SideValuesMustAgreeOnTheSamePhysicalSide) {
  add("10,0 20,0", 2, 1);
  add("0,0 10,0", 1, 2);
  EXPECT_EQ(merged(), 0u);
}

TEST_F(MergeWall, AWallDrawnTheOtherWayAgreesWithItsValuesExchanged) {
  add("20,0 10,0", 2, 1);
  MergeWallSeg* last = add("0,0 10,0", 1, 2);
  EXPECT_EQ(merged(), 1u);
  EXPECT_EQ(text(last->ptStart, last->ptEnd), "0,0 20,0");
}

TEST_F(MergeWall, TheDirectionFreeValuesMustAgreeToo) {
  for (double MergeWallSeg::*value : {&MergeWallSeg::dAttr1, &MergeWallSeg::dAttr2}) {
    MergeWallSeg first;
    first.ptEnd = point("10,0");
    MergeWallSeg second;
    second.ptStart = point("10,0");
    second.ptEnd = point("20,0");
    second.*value = 1.0;
    EXPECT_FALSE(m_algorithm.Merge2WallOnPnt(&first, &second, false));
    EXPECT_EQ(text(first.ptStart, first.ptEnd), "0,0 10,0");
    first.*value = 1.0;
    EXPECT_TRUE(m_algorithm.Merge2WallOnPnt(&first, &second, false));
  }
}

TEST_F(MergeWall, ALockedStartStillMergesAtItsEnd) {
  add("-10,0 0,0", 1, 1);
  add("10,0 20,0", 1, 1);
  MergeWallSeg* last = add("0,0 10,0", 1, 1);
  last->bStartFixed = true;
  m_algorithm.MergeWallLines();
  // Processed first, it grows at its end only; the record at its start, processed later,
  // reads only its own locks, but the locked one is finished by then.
  EXPECT_EQ(text(last->ptStart, last->ptEnd), "0,0 20,0");
}

TEST_F(MergeWall, AnotherRecordMayMergeOntoALockedEnd) {
  MergeWallSeg* locked = add("0,0 10,0", 1, 1);
  locked->bStartFixed = true;
  locked->bEndFixed = true;
  MergeWallSeg* last = add("10,0 20,0", 1, 1);
  EXPECT_EQ(merged(), 1u);
  EXPECT_EQ(last->mergedSegs, (std::vector<MergeWallSeg*>{locked}));
}

TEST_F(MergeWall, BothLocksKeepTheProcessedRecordAsItIs) {
  add("0,0 10,0", 1, 1);
  MergeWallSeg* last = add("10,0 20,0", 1, 1);
  last->bStartFixed = true;
  last->bEndFixed = true;
  EXPECT_EQ(merged(), 0u);
}

}  // namespace
