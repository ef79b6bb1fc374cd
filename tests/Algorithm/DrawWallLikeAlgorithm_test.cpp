#include "DrawWallAlgorithm/DrawWallLikeAlgorithm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "support/GeometryText.h"
#include "support/HeapWatch.h"
#include "support/RunningHost.h"

namespace {

using quoin::test::point;
using quoin::test::RunningHost;
using quoin::test::text;
using quoin::test::textOfSegments;

class OpenDraw : public CDrawWallLikeAlgorithm {
 public:
  using CDrawWallLikeAlgorithm::BreakSrcWallLines;
  using CDrawWallLikeAlgorithm::CreateNewWallLines;
};

class DrawWall : public testing::Test {
 protected:
  ~DrawWall() override { dropUnmodifiedSources(); }

  /// Puts lines into the source array. The test owns those that no calculation modifies.
  std::vector<WallLineLikeSeg*> fill(std::string_view lines) {
    for (const auto& [start, end] : quoin::test::segments(lines)) {
      m_algorithm.GetSrcWallLines().push_back(new WallLineLikeSeg(start, end));
    }
    return m_algorithm.GetSrcWallLines();
  }
  /// Draws and returns the cut points.
  std::string draw(std::string_view from, std::string_view to) {
    std::string result;
    for (const AcGePoint3d& pt : m_algorithm.CalcNewWallLine(point(from), point(to))) {
      result += (result.empty() ? "" : "; ") + text(pt);
    }
    return result;
  }
  /// Takes the modified records out of the source array, as a caller must before drawing
  /// again, and deletes the others.
  void dropUnmodifiedSources() {
    const auto& modified = m_algorithm.GetSrcModifyiedWallLines();
    for (WallLineLikeSeg* line : m_algorithm.GetSrcWallLines()) {
      if (std::find(modified.begin(), modified.end(), line) == modified.end()) {
        delete line;
      }
    }
    m_algorithm.GetSrcWallLines().clear();
  }
  std::string modified() { return textOfSegments(m_algorithm.GetSrcModifyiedWallLines()); }
  std::string cutOff() { return textOfSegments(m_algorithm.GetSrcNewWallLines()); }
  std::string pieces() { return textOfSegments(m_algorithm.GetNewWallLines()); }

  RunningHost m_host{1.0};  // capture distance 10
  OpenDraw m_algorithm;
};

TEST_F(DrawWall, WithoutOtherLinesTheNewLineStaysWhole) {
  EXPECT_EQ(draw("0,0", "100,0"), "0,0; 100,0");
  EXPECT_EQ(pieces(), "0,0 100,0");
  EXPECT_EQ(modified(), "");
  EXPECT_EQ(cutOff(), "");
  EXPECT_EQ(m_algorithm.GetNewWallLines()[0]->pSrcLine, nullptr);
}

TEST_F(DrawWall, ALineFromAPointToItselfMakesNoPiece) {
  EXPECT_EQ(draw("5,5", "5,5"), "5,5; 5,5");
  EXPECT_EQ(pieces(), "");
}

TEST_F(DrawWall, ACrossedLineEndsAtTheCrossingAndItsFarPartIsCutOff) {
  const auto lines = fill("50,-40 50,60");
  EXPECT_EQ(draw("0,0", "100,0"), "0,0; 50,0; 100,0");
  EXPECT_EQ(modified(), "50,-40 50,0");
  EXPECT_EQ(cutOff(), "50,0 50,60");
  EXPECT_EQ(pieces(), "0,0 50,0; 50,0 100,0");
  EXPECT_EQ(m_algorithm.GetSrcModifyiedWallLines()[0], lines[0]);
  EXPECT_EQ(m_algorithm.GetSrcNewWallLines()[0]->pSrcLine, lines[0]);
}

TEST_F(DrawWall, ALineThatTouchesWithItsEndIsTakenIntoAccountButNotCut) {
  fill("50,0 50,60");
  EXPECT_EQ(draw("0,0", "100,0"), "0,0; 50,0; 100,0");
  EXPECT_EQ(modified(), "50,0 50,60");
  EXPECT_EQ(cutOff(), "");
  EXPECT_EQ(pieces(), "0,0 50,0; 50,0 100,0");
}

TEST_F(DrawWall, ALineThatEndsShortOfTheNewOneIsNotCutButCutsIt) {
  fill("50,4 50,60");
  EXPECT_EQ(draw("0,0", "100,0"), "0,0; 50,0; 100,0");
  EXPECT_EQ(modified(), "50,4 50,60");
  EXPECT_EQ(cutOff(), "");
}

TEST_F(DrawWall, ACrossingBeyondTheNewLinesEndAddsThatEndAndNoPiece) {
  fill("104,-40 104,60");
  EXPECT_EQ(draw("0,0", "100,0"), "0,0; 100,0; 100,0");
  EXPECT_EQ(modified(), "104,-40 104,0");
  EXPECT_EQ(cutOff(), "104,0 104,60");
  EXPECT_EQ(pieces(), "0,0 100,0");
}

TEST_F(DrawWall, AParallelLineAwayFromTheOriginOnlyReceivesTheCutNearestToIt) {
  fill("20,105 80,105");
  EXPECT_EQ(draw("0,100", "100,100"), "0,100; 0,100; 100,100");
  EXPECT_EQ(modified(), "20,105 80,105");
  EXPECT_EQ(cutOff(), "");
  EXPECT_EQ(pieces(), "0,100 100,100");
}

TEST_F(DrawWall, AParallelLineThroughTheOriginIsCutThere) {
  fill("-60,0 80,0");
  EXPECT_EQ(draw("-100,5", "100,5"), "-100,5; 0,5; 100,5");
  EXPECT_EQ(modified(), "-60,0 0,0");
  EXPECT_EQ(cutOff(), "0,0 80,0");
  EXPECT_EQ(pieces(), "-100,5 0,5; 0,5 100,5");
}

TEST_F(DrawWall, AtExactlyTheCaptureDistanceALineIsIgnored) {
  const auto lines = fill("50,10 50,60");
  EXPECT_EQ(draw("0,0", "100,0"), "0,0; 100,0");
  EXPECT_EQ(modified(), "");
}

TEST_F(DrawWall, JustInsideTheCaptureDistanceALineIsTakenIntoAccount) {
  fill("50,9.999 50,60");
  EXPECT_EQ(draw("0,0", "100,0"), "0,0; 50,0; 100,0");
  EXPECT_EQ(modified(), "50,9.999 50,60");
}

TEST_F(DrawWall, CutPointsComeSortedAndDuplicatesStay) {
  fill("70,-5 70,5; 30,-5 30,5; 30,0 60,40");
  EXPECT_EQ(draw("0,0", "100,0"), "0,0; 30,0; 30,0; 70,0; 100,0");
  EXPECT_EQ(pieces(), "0,0 30,0; 30,0 70,0; 70,0 100,0");
  EXPECT_EQ(modified(), "70,-5 70,0; 30,-5 30,0; 30,0 60,40");  // source order
  EXPECT_EQ(cutOff(), "70,0 70,5; 30,0 30,5");
}

TEST_F(DrawWall, CutPointsRunFromStartToEndWhateverTheDirection) {
  fill("30,-5 30,5; 70,-5 70,5");
  EXPECT_EQ(draw("100,0", "0,0"), "100,0; 70,0; 30,0; 0,0");
}

TEST_F(DrawWall, EachCaptureIsByTheSegmentAndEachCutByTheUnboundedLine) {
  // Near the new segment's end, but its own line crosses the new line far outside itself.
  fill("102,3 130,10");
  draw("0,0", "100,0");
  EXPECT_EQ(modified(), "102,3 130,10");
  EXPECT_EQ(cutOff(), "");
}

TEST_F(DrawWall, ASecondCalculationDeletesTheFirstResultsAndTheModifiedSources) {
  fill("50,-40 50,60; 500,0 600,0");
  draw("0,0", "100,0");
  const WallLineLikeSeg* untouched = m_algorithm.GetSrcWallLines()[1];
  // The modified record has passed to the algorithm: the caller takes it out.
  m_algorithm.GetSrcWallLines().erase(m_algorithm.GetSrcWallLines().begin());
  EXPECT_EQ(draw("0,50", "100,50"), "0,50; 100,50");
  EXPECT_EQ(modified(), "");
  EXPECT_EQ(cutOff(), "");
  EXPECT_EQ(pieces(), "0,50 100,50");
  EXPECT_EQ(m_algorithm.GetSrcWallLines()[0], untouched);
}

TEST_F(DrawWall, ASecondCalculationGivesTheRecordsOfTheFirstBack) {
  using quoin::test::HeapWatch;
  fill("50,-40 50,60");
  draw("0,0", "100,0");
  m_algorithm.GetSrcWallLines().clear();
  const long alive = HeapWatch::handedOut - HeapWatch::takenBack;
  draw("0,500", "0,500");
  EXPECT_EQ(HeapWatch::handedOut - HeapWatch::takenBack, alive - 4)
      << "the modified line, its far part and two pieces";
}

TEST_F(DrawWall, TheScaleIsReadOnceACalculation) {
  fill("50,-40 50,60; 500,0 600,0");
  draw("0,0", "100,0");
  EXPECT_EQ(m_host.scaleReads(), 1u);
}

TEST_F(DrawWall, AWrongRootNodeIsLoggedAndTheLineIsDrawnAllTheSame) {
  m_host.project().root().setType(3);
  fill("50,-40 50,60");
  EXPECT_EQ(draw("0,0", "100,0"), "0,0; 50,0; 100,0");
  EXPECT_EQ(m_host.log().size(), 1u);
}

TEST_F(DrawWall, AFarPartKeepsItsSourceThoughTheSourceWasChanged) {
  const auto lines = fill("50,-40 50,60");
  draw("0,0", "100,0");
  lines[0]->ptEnd = point("7,7");
  EXPECT_EQ(m_algorithm.GetSrcNewWallLines()[0]->pSrcLine, lines[0]);
  EXPECT_EQ(cutOff(), "50,0 50,60");
}

TEST_F(DrawWall, AZeroScaleCapturesEverythingAndOthersNothing) {
  m_host.setScale(0.0);
  fill("5000,-40 5000,60");
  EXPECT_EQ(draw("0,0", "100,0"), "0,0; 100,0; 100,0");
  EXPECT_EQ(modified(), "5000,-40 5000,0");
  m_algorithm.GetSrcWallLines().clear();
  for (const double scale : {-1.0, HUGE_VAL, std::nan("")}) {
    m_host.setScale(scale);
    fill("50,-40 50,60");
    EXPECT_EQ(draw("0,0", "100,0"), "0,0; 100,0");
    dropUnmodifiedSources();
  }
}

TEST_F(DrawWall, CreatingPiecesNeedsTwoDifferentNeighbours) {
  AcArray<AcGePoint3d> pnts;
  m_algorithm.CreateNewWallLines(pnts);
  pnts.append(point("1,1"));
  m_algorithm.CreateNewWallLines(pnts);
  EXPECT_EQ(pieces(), "");
  pnts.append(point("1,1"));
  pnts.append(point("2,1"));
  m_algorithm.CreateNewWallLines(pnts);
  EXPECT_EQ(pieces(), "1,1 2,1");
}

TEST_F(DrawWall, TheReturnedArrayHasGrowthStepEight) {
  EXPECT_EQ(m_algorithm.CalcNewWallLine(point("0,0"), point("1,0")).growLength(), 8);
}

TEST_F(DrawWall, CopiesOfAFilledObjectShareTheRecords) {
  fill("50,-40 50,60; 500,0 600,0");
  draw("0,0", "100,0");
  CDrawWallLikeAlgorithm copy(m_algorithm);
  CDrawWallLikeAlgorithm assigned;
  assigned = m_algorithm;
  for (CDrawWallLikeAlgorithm* other : {&copy, &assigned}) {
    EXPECT_EQ(other->GetSrcWallLines(), m_algorithm.GetSrcWallLines());
    EXPECT_EQ(other->GetSrcModifyiedWallLines(), m_algorithm.GetSrcModifyiedWallLines());
    EXPECT_EQ(other->GetSrcNewWallLines(), m_algorithm.GetSrcNewWallLines());
    EXPECT_EQ(other->GetNewWallLines(), m_algorithm.GetNewWallLines());
    EXPECT_EQ(other->GetSrcModifyiedWallLines().size(), 1u);
    *other = CDrawWallLikeAlgorithm();  // each would delete the results: it forgets them
  }
}

TEST_F(DrawWall, WithoutMemoryTheAllocatorsExceptionComesThrough) {
  fill("50,-40 50,60");
  {
    const quoin::test::NoMemoryAfter noMemory(0);
    EXPECT_THROW(m_algorithm.CalcNewWallLine(point("0,0"), point("100,0")), std::bad_alloc);
  }
  EXPECT_EQ(pieces(), "");
  EXPECT_EQ(draw("0,0", "100,0"), "0,0; 50,0; 100,0");
}

}  // namespace
