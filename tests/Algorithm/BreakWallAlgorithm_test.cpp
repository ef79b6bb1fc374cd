#include "BreakWallAlgorithm.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "support/GeometryText.h"
#include "support/HeapWatch.h"
#include "support/RunningHost.h"

namespace {

using quoin::test::point;
using quoin::test::RunningHost;
using quoin::test::text;

/// The algorithm with its protected steps open to a test.
class OpenBreak : public CBreakWallAlgorithm {
 public:
  using CBreakWallAlgorithm::CalcBreakPnts;
  using CBreakWallAlgorithm::ClearWallLineArray;
};

class BreakWall : public testing::Test {
 protected:
  /// Fills the algorithm with "x,y x,y; ..." and returns the records.
  std::vector<WallLineLikeSeg*> fill(std::string_view lines) {
    for (const auto& [start, end] : quoin::test::segments(lines)) {
      m_algorithm.GetSrcWallLines().push_back(new WallLineLikeSeg(start, end));
    }
    return m_algorithm.GetSrcWallLines();
  }
  std::string split(std::string_view lines) {
    fill(lines);
    m_algorithm.SplitWallLines();
    return result();
  }
  std::string result() { return quoin::test::textOfSegments(m_algorithm.GetNewWallLines()); }

  RunningHost m_host{1.0};  // capture distance 10
  OpenBreak m_algorithm;
};

TEST_F(BreakWall, ASingleLineYieldsNothing) {
  EXPECT_EQ(split("0,0 1000,0"), "");
}

TEST_F(BreakWall, NoLineYieldsNothing) {
  EXPECT_EQ(split(""), "");
}

TEST_F(BreakWall, TheTopOfATIsCutAtTheFootOfTheStem) {
  EXPECT_EQ(split("0,0 1000,0; 400,5 400,800"), "0,0 400,0; 400,0 1000,0");
}

TEST_F(BreakWall, AStemCutsAtItsOwnEndWhateverItsAngle) {
  const AcGePoint3d foot = point("5000,0");
  for (int degrees = 1; degrees < 180; ++degrees) {
    const double angle = degrees * std::numbers::pi / 180.0;
    const AcGePoint3d top = foot + AcGeVector3d(std::cos(angle), std::sin(angle), 0.0) * 2000.0;
    for (const bool endsThere : {false, true}) {
      OpenBreak algorithm;
      algorithm.GetSrcWallLines() = {
          new WallLineLikeSeg(point("0,0"), point("10000,0")),
          endsThere ? new WallLineLikeSeg(top, foot) : new WallLineLikeSeg(foot, top)};
      algorithm.SplitWallLines();
      EXPECT_EQ(quoin::test::textOfSegments(algorithm.GetNewWallLines()),
                "0,0 5000,0; 5000,0 10000,0")
          << degrees << " degrees";
    }
  }
}

TEST_F(BreakWall, PiecesNameTheLineTheyWereCutFrom) {
  const auto lines = fill("0,0 1000,0; 400,5 400,800");
  m_algorithm.SplitWallLines();
  ASSERT_EQ(m_algorithm.GetNewWallLines().size(), 2u);
  EXPECT_EQ(m_algorithm.GetNewWallLines()[0]->pSrcLine, lines[0]);
  EXPECT_EQ(m_algorithm.GetNewWallLines()[1]->pSrcLine, lines[0]);
}

TEST_F(BreakWall, APieceKeepsItsSourceAfterTheSourceRecordChanges) {
  const auto lines = fill("0,0 1000,0; 400,5 400,800");
  m_algorithm.SplitWallLines();
  lines[0]->ptEnd = point("7,7");
  EXPECT_EQ(m_algorithm.GetNewWallLines()[1]->pSrcLine, lines[0]);
  EXPECT_EQ(text(m_algorithm.GetNewWallLines()[1]->ptEnd), "1000,0");
}

TEST_F(BreakWall, SourceRecordsStayAsTheyAre) {
  const auto lines = fill("0,0 1000,0; 400,5 400,800");
  m_algorithm.SplitWallLines();
  EXPECT_EQ(quoin::test::textOfSegments(lines), "0,0 1000,0; 400,5 400,800");
  EXPECT_EQ(lines[0]->pSrcLine, nullptr);
}

TEST_F(BreakWall, TheStemIsCutOnlyWhereTheTopsNearerEndMeetsItInside) {
  // The top's near end (0,0) lies on the stem, far from the stem's own ends.
  EXPECT_EQ(split("0,0 1000,0; 0,-300 0,800"), "0,-300 0,0; 0,0 0,800");
}

TEST_F(BreakWall, LinesThatCrossWithAllEndsAwayAreNotCut) {
  EXPECT_EQ(split("0,0 1000,0; 500,-400 500,400"), "");
}

TEST_F(BreakWall, ATouchNearTheLinesOwnEndDoesNotCut) {
  EXPECT_EQ(split("0,0 1000,0; 5,5 5,800"), "");
  EXPECT_EQ(split("2000,0 3000,0; 2995,0 2995,800"), "");
}

TEST_F(BreakWall, AStemEndAtExactlyTheCaptureDistanceDoesNotCut) {
  EXPECT_EQ(split("0,0 1000,0; 400,10 400,800"), "");
}

TEST_F(BreakWall, AStemEndJustInsideTheCaptureDistanceCuts) {
  EXPECT_EQ(split("0,0 1000,0; 400,9.999 400,800"), "0,0 400,0; 400,0 1000,0");
}

TEST_F(BreakWall, ACutAtExactlyTheCaptureDistanceFromAnEndIsKept) {
  EXPECT_EQ(split("0,0 1000,0; 10,0 10,800"), "0,0 10,0; 10,0 1000,0");
  m_algorithm.ClearWallLineArray(m_algorithm.GetSrcWallLines());
}

TEST_F(BreakWall, ACutJustInsideTheCaptureDistanceFromAnEndIsDropped) {
  EXPECT_EQ(split("0,0 1000,0; 990.001,0 990.001,800"), "");
}

TEST_F(BreakWall, ALineOfTwiceTheCaptureDistanceIsCutInItsMiddle) {
  EXPECT_EQ(split("0,0 20,0; 10,0 10,800"), "0,0 10,0; 10,0 20,0");
}

TEST_F(BreakWall, AShorterLineIsNotCutAnywhere) {
  EXPECT_EQ(split("0,0 19.999,0; 10,0 10,800; 9.999,0 9.999,-800"), "");
}

TEST_F(BreakWall, ThreeStemsAtOnePointMakeOneCut) {
  EXPECT_EQ(split("0,0 1000,0; 400,0 400,800; 400,0 700,800; 400,0 100,800"),
            "0,0 400,0; 400,0 1000,0");
}

TEST_F(BreakWall, ThreeStemsAtOnePointAreThreeBreakPoints) {
  const auto lines = fill("0,0 1000,0; 400,0 400,800; 400,0 700,800; 400,0 100,800");
  std::vector<AcGePoint3d> pnts{point("1,2")};
  m_algorithm.CalcBreakPnts(pnts, lines[0]);
  ASSERT_EQ(pnts.size(), 4u);  // appended behind what was there, unsorted, with duplicates
  EXPECT_EQ(text(pnts[0]), "1,2");
  EXPECT_EQ(text(pnts[1]), "400,0");
  EXPECT_EQ(text(pnts[3]), "400,0");
}

TEST_F(BreakWall, OnlyTheNearerEndOfTheOtherLineCounts) {
  // Both ends of the short line lie within the capture distance; the nearer one cuts.
  EXPECT_EQ(split("0,0 1000,0; 400,6 600,4"), "0,0 600,0; 600,0 1000,0");
}

TEST_F(BreakWall, OnATieTheOtherLinesEndPointCuts) {
  EXPECT_EQ(split("0,0 1000,0; 400,5 600,5"), "0,0 600,0; 600,0 1000,0");
}

TEST_F(BreakWall, OnATieTurnedRoundTheOtherEndCuts) {
  EXPECT_EQ(split("0,0 1000,0; 600,5 400,5"), "0,0 400,0; 400,0 1000,0");
}

TEST_F(BreakWall, AnEqualLineUnderAnotherPointerIsAnotherLine) {
  // Each lies on the other, but their ends are each other's ends: nothing is cut. A third,
  // shorter copy cuts both where it ends.
  EXPECT_EQ(split("0,0 1000,0; 0,0 1000,0"), "");
  EXPECT_EQ(split("0,0 400,0"), "0,0 400,0; 400,0 1000,0; 0,0 400,0; 400,0 1000,0");
}

TEST_F(BreakWall, PiecesRunInTheDirectionOfTheirLine) {
  EXPECT_EQ(split("1000,0 0,0; 400,0 400,800; 700,0 700,800"),
            "1000,0 700,0; 700,0 400,0; 400,0 0,0");
}

TEST_F(BreakWall, AppendedPointsCutTheirLine) {
  const auto lines = fill("0,0 1000,0");
  AcArray<AcGePoint3d> pnts;
  pnts.append(point("300,0"));
  m_algorithm.AppendWallBreakPnt(lines[0], pnts);
  m_algorithm.SplitWallLines();
  EXPECT_EQ(result(), "0,0 300,0; 300,0 1000,0");
}

TEST_F(BreakWall, AppendedPointsAreUsedAsGivenBeyondTheEndsAndOffTheLine) {
  const auto lines = fill("0,0 1000,0");
  AcArray<AcGePoint3d> pnts;
  pnts.append(point("1200,0"));
  pnts.append(point("500,70"));
  pnts.append(point("5,0"));  // no margin is asked of them either
  m_algorithm.AppendWallBreakPnt(lines[0], pnts);
  m_algorithm.SplitWallLines();
  EXPECT_EQ(result(), "0,0 5,0; 5,0 500,70; 500,70 1000,0; 1000,0 1200,0");
}

TEST_F(BreakWall, AppendedPointsOfOneLineAreAddedUp) {
  const auto lines = fill("0,0 1000,0");
  AcArray<AcGePoint3d> pnts;
  pnts.append(point("300,0"));
  m_algorithm.AppendWallBreakPnt(lines[0], pnts);
  m_algorithm.AppendWallBreakPnt(lines[0], pnts);
  pnts[0] = point("600,0");
  m_algorithm.AppendWallBreakPnt(lines[0], pnts);
  m_algorithm.SplitWallLines();
  EXPECT_EQ(result(), "0,0 300,0; 300,0 600,0; 600,0 1000,0");
}

TEST_F(BreakWall, AppendingNoPointsChangesNothing) {
  const auto lines = fill("0,0 1000,0");
  m_algorithm.AppendWallBreakPnt(lines[0], AcArray<AcGePoint3d>());
  m_algorithm.SplitWallLines();
  EXPECT_EQ(result(), "");
}

TEST_F(BreakWall, PointsAppendedForALineOutsideTheSourceAreIgnored) {
  fill("0,0 1000,0");
  WallLineLikeSeg stranger(point("0,0"), point("1000,0"));
  AcArray<AcGePoint3d> pnts;
  pnts.append(point("300,0"));
  m_algorithm.AppendWallBreakPnt(&stranger, pnts);
  m_algorithm.SplitWallLines();
  EXPECT_EQ(result(), "");
}

TEST_F(BreakWall, SplittingTwiceDoublesTheResult) {
  const std::string once = split("0,0 1000,0; 400,5 400,800");
  m_algorithm.SplitWallLines();
  EXPECT_EQ(result(), once + "; " + once);
}

TEST_F(BreakWall, NoPieceHasZeroLength) {
  const auto lines = fill("0,0 1000,0");
  AcArray<AcGePoint3d> pnts;
  pnts.append(point("0,0"));
  pnts.append(point("300,0"));
  pnts.append(AcGePoint3d(300.0 + 5e-11, 0, 0));
  pnts.append(point("1000,0"));
  m_algorithm.AppendWallBreakPnt(lines[0], pnts);
  m_algorithm.SplitWallLines();
  ASSERT_EQ(m_algorithm.GetNewWallLines().size(), 2u);
  for (const WallLineLikeSeg* piece : m_algorithm.GetNewWallLines()) {
    EXPECT_FALSE(piece->ptStart.isEqualTo(piece->ptEnd));
  }
}

TEST_F(BreakWall, EachPointIsComparedWithTheOneBeforeItEvenIfThatMadeNoPiece) {
  // A chain of points, each within tolerance of the last but not of the first.
  const auto lines = fill("0,0 1000,0");
  AcArray<AcGePoint3d> pnts;
  for (int i = 0; i < 4; ++i) {
    pnts.append(AcGePoint3d(300.0 + i * 0.8e-10, 0, 0));
  }
  m_algorithm.AppendWallBreakPnt(lines[0], pnts);
  m_algorithm.SplitWallLines();
  ASSERT_EQ(m_algorithm.GetNewWallLines().size(), 2u);
  EXPECT_EQ(m_algorithm.GetNewWallLines()[1]->ptStart.x, 300.0 + 3 * 0.8e-10);
}

TEST_F(BreakWall, AZeroLengthLineCutsOthersAndIsNotCut) {
  EXPECT_EQ(split("0,0 1000,0; 400,3 400,3"), "0,0 400,0; 400,0 1000,0");
}

TEST_F(BreakWall, HeightCountsInTheDistance) {
  EXPECT_EQ(split("0,0,0 1000,0,0; 400,0,10 400,800,10"), "");
  EXPECT_EQ(split("0,5000,0 1000,5000,0; 400,5000,9 400,5800,9"),
            "0,5000 400,5000; 400,5000 1000,5000");
}

TEST_F(BreakWall, ADrawingABillionUnitsOutBreaksAlike) {
  EXPECT_EQ(split("1e9,1e9 1000001000,1e9; 1000000400,1000000005 1000000400,1000000800"),
            "1e+09,1e+09 1000000400,1e+09; 1000000400,1e+09 1000001000,1e+09");
}

TEST_F(BreakWall, TheScaleIsReadOnceForEveryLine) {
  split("0,0 1000,0; 400,5 400,800; 0,900 1000,900");
  EXPECT_EQ(m_host.scaleReads(), 3u);
  m_algorithm.SplitWallLines();
  EXPECT_EQ(m_host.scaleReads(), 6u);
}

TEST_F(BreakWall, TheScaleDecidesTheCaptureDistance) {
  m_host.setScale(0.01);  // 1000
  EXPECT_EQ(split("0,0 10000,0; 4000,999 4000,80000"), "0,0 4000,0; 4000,0 10000,0");
  m_algorithm.ClearWallLineArray(m_algorithm.GetSrcWallLines());
  m_host.setScale(100.0);  // 0.1
  fill("0,0 10000,0; 4000,0.2 4000,80000");
  m_algorithm.SplitWallLines();
  EXPECT_EQ(m_algorithm.GetNewWallLines().size(), 2u);
}

TEST_F(BreakWall, AScaleOfZeroCapturesEverythingButLeavesNoRoomForACut) {
  m_host.setScale(0.0);
  EXPECT_EQ(split("0,0 1000,0; 400,5 400,800"), "");
}

TEST_F(BreakWall, NegativeInfiniteAndMissingScalesCaptureNothing) {
  for (const double scale : {-1.0, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    m_host.setScale(scale);
    EXPECT_EQ(split("0,0 1000,0; 400,0 400,800"), "");
    m_algorithm.ClearWallLineArray(m_algorithm.GetSrcWallLines());
  }
}

TEST_F(BreakWall, AWrongRootNodeIsLoggedForEveryLineAndTheLinesAreCutAllTheSame) {
  m_host.project().root().setType(3);
  EXPECT_EQ(split("0,0 1000,0; 400,5 400,800"), "0,0 400,0; 400,0 1000,0");
  EXPECT_EQ(m_host.log().size(), 2u);
}

TEST_F(BreakWall, CopiesOfAnEmptyObjectAreIndependent) {
  CBreakWallAlgorithm copy(m_algorithm);
  copy = m_algorithm;
  fill("0,0 1000,0");
  EXPECT_TRUE(copy.GetSrcWallLines().empty());
}

TEST_F(BreakWall, CopiesOfAFilledObjectShareTheRecords) {
  fill("0,0 1000,0; 400,5 400,800");
  m_algorithm.SplitWallLines();
  CBreakWallAlgorithm copy(m_algorithm);
  EXPECT_EQ(copy.GetSrcWallLines(), m_algorithm.GetSrcWallLines());
  EXPECT_EQ(copy.GetNewWallLines(), m_algorithm.GetNewWallLines());
  // The copy would delete them a second time: it is emptied before it goes.
  copy.GetSrcWallLines().clear();
  const_cast<std::vector<WallLineLikeSeg*>&>(copy.GetNewWallLines()).clear();
}

TEST_F(BreakWall, WithoutMemoryTheAllocatorsExceptionComesThrough) {
  fill("0,0 1000,0; 400,5 400,800");
  {
    const quoin::test::NoMemoryAfter noMemory(0);
    EXPECT_THROW(m_algorithm.SplitWallLines(), std::bad_alloc);
  }
  EXPECT_EQ(result(), "");
  m_algorithm.SplitWallLines();
  EXPECT_EQ(result(), "0,0 400,0; 400,0 1000,0");
}

TEST(WallLineRecord, DefaultHasBothPointsAtTheOriginAndNoSource) {
  const WallLineLikeSeg record;
  EXPECT_EQ(text(record.ptStart, record.ptEnd), "0,0 0,0");
  EXPECT_EQ(record.pSrcLine, nullptr);
}

}  // namespace
