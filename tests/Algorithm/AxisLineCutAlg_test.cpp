#include "AxisLineCutAlg.h"

#include <gtest/gtest.h>

#include <random>

#include "support/GeometryText.h"
#include "support/HeapWatch.h"

namespace {

using quoin::test::text;

class CutAxes : public testing::Test {
 protected:
  std::string cut(std::string_view lines) {
    for (const auto& [start, end] : quoin::test::segments(lines)) {
      m_algorithm.AppendSrcAxisLine(new AxisLikeLineSeg{start, end});
    }
    m_algorithm.CutAxisLines();
    return result();
  }
  std::string result() { return quoin::test::textOfSegments(m_algorithm.GetDestAxisLines()); }
  /// The first result only.
  std::string cutFirst(std::string_view lines) {
    cut(lines);
    const AxisLikeLineSeg* first = m_algorithm.GetDestAxisLines().front();
    return text(first->ptStart, first->ptEnd);
  }

  AxisLineCutAlg m_algorithm;
};

TEST_F(CutAxes, NoInputGivesNoResult) {
  EXPECT_EQ(cut(""), "");
}

TEST_F(CutAxes, ASingleLineComesBackAsItIs) {
  EXPECT_EQ(cut("0,0 10,0"), "0,0 10,0");
}

TEST_F(CutAxes, ALineWithOneCrossingComesBackAsItIs) {
  EXPECT_EQ(cut("-5,0 25,0; 0,-5 0,5"), "-5,0 25,0; 0,-5 0,5");
}

TEST_F(CutAxes, ALineIsCutToItsOutermostCrossings) {
  EXPECT_EQ(cutFirst("-5,0 25,0; 0,-5 0,5; 10,-5 10,5; 20,-5 20,5"), "0,0 20,0");
}

TEST_F(CutAxes, TheResultKeepsTheLinesDirection) {
  EXPECT_EQ(cutFirst("25,0 -5,0; 0,-5 0,5; 10,-5 10,5; 20,-5 20,5"), "20,0 0,0");
}

TEST_F(CutAxes, CrossingsCountInAnyInputOrder) {
  EXPECT_EQ(cutFirst("-5,0 25,0; 10,-5 10,5; 20,-5 20,5; 0,-5 0,5"), "0,0 20,0");
}

TEST_F(CutAxes, TouchingAnEndCountsAsACrossing) {
  EXPECT_EQ(cutFirst("-5,0 25,0; 0,0 0,5; 20,-5 20,0.00000000005"), "0,0 20,0");
}

TEST_F(CutAxes, AnAxisIsReachedAlikeAtBothEndsWhicheverWayItRuns) {
  const double tolerance = AcGeContext::gTol.equalPoint();
  std::mt19937_64 random(11);
  std::uniform_real_distribution<double> anyLength(30.0, 30000.0);
  for (int round = 0; round < 5000; ++round) {
    const double length = anyLength(random);
    const double x = length + tolerance;
    const double last = x - length <= tolerance ? x : 20.0;  // an exact difference
    for (const bool isReversed : {false, true}) {
      AxisLineCutAlg algorithm;
      const AcGePoint3d ends[] = {{0.0, 0.0, 0.0}, {length, 0.0, 0.0}};
      algorithm.AppendSrcAxisLine(
          new AxisLikeLineSeg{ends[isReversed ? 1 : 0], ends[isReversed ? 0 : 1]});
      for (const double at : {10.0, 20.0, x}) {
        algorithm.AppendSrcAxisLine(new AxisLikeLineSeg{{at, -5.0, 0.0}, {at, 5.0, 0.0}});
      }
      algorithm.CutAxisLines();
      const AxisLikeLineSeg& axis = *algorithm.GetDestAxisLines().front();
      ASSERT_EQ((isReversed ? axis.ptEnd : axis.ptStart).x, 10.0);
      ASSERT_EQ((isReversed ? axis.ptStart : axis.ptEnd).x, last) << x - length;
    }
  }
}

TEST_F(CutAxes, ParallelAndCollinearLinesGiveNoCrossing) {
  EXPECT_EQ(cutFirst("-5,0 25,0; -5,1 25,1; 25,0 40,0; 3,-5 3,5"), "-5,0 25,0");
}

TEST_F(CutAxes, TwoEqualCrossingsInSuccessionAreOnePoint) {
  EXPECT_EQ(cutFirst("-5,0 25,0; 10,-5 10,5; 5,-5 15,5"), "-5,0 25,0");
}

TEST_F(CutAxes, EqualCrossingsWithAnotherBetweenThemBothStay) {
  EXPECT_EQ(cutFirst("-5,0 25,0; 10,-5 10,5; 20,-5 20,5; 5,-5 15,5"), "10,0 20,0");
}

TEST_F(CutAxes, ANullEntryIsSkipped) {
  m_algorithm.AppendSrcAxisLine(nullptr);
  EXPECT_EQ(cut("-5,0 25,0; 0,-5 0,5; 20,-5 20,5"), "0,0 20,0; 0,-5 0,5; 20,-5 20,5");
}

TEST_F(CutAxes, CuttingTwiceGivesTheSameResultOnce) {
  const std::string once = cut("-5,0 25,0; 0,-5 0,5; 20,-5 20,5");
  m_algorithm.CutAxisLines();
  EXPECT_EQ(result(), once);
}

TEST_F(CutAxes, InputLinesStayAsTheyAre) {
  AxisLikeLineSeg* line = new AxisLikeLineSeg{{-5, 0, 0}, {25, 0, 0}};
  m_algorithm.AppendSrcAxisLine(line);
  cut("0,-5 0,5; 20,-5 20,5");
  EXPECT_EQ(text(line->ptStart, line->ptEnd), "-5,0 25,0");
}

TEST_F(CutAxes, ALineOfZeroLengthComesBackAsItIsAndCutsNothing) {
  EXPECT_EQ(cut("-5,0 25,0; 3,0 3,0; 10,-5 10,5"), "-5,0 25,0; 3,0 3,0; 10,-5 10,5");
}

TEST_F(CutAxes, TheSameLineUnderTwoPointersIsTwoLines) {
  EXPECT_EQ(cut("-5,0 25,0; -5,0 25,0; 0,-5 0,5; 9,-5 9,5"),
            "0,0 9,0; 0,0 9,0; 0,-5 0,5; 9,-5 9,5");
}

TEST_F(CutAxes, CuttingAgainDeletesTheEarlierResults) {
  using quoin::test::HeapWatch;
  cut("-5,0 25,0; 0,-5 0,5; 20,-5 20,5");
  const long alive = HeapWatch::handedOut - HeapWatch::takenBack;
  m_algorithm.CutAxisLines();
  EXPECT_EQ(HeapWatch::handedOut - HeapWatch::takenBack, alive);
}

TEST_F(CutAxes, CopiesOfAFilledObjectShareTheRecords) {
  for (const auto& [start, end] : quoin::test::segments("-5,0 25,0; 0,-5 0,5; 20,-5 20,5")) {
    m_algorithm.AppendSrcAxisLine(new AxisLikeLineSeg{start, end});
  }
  AxisLineCutAlg copy(m_algorithm);
  copy.CutAxisLines();
  EXPECT_EQ(quoin::test::textOfSegments(copy.GetDestAxisLines()), "0,0 20,0; 0,-5 0,5; 20,-5 20,5");
  AxisLineCutAlg assigned;
  assigned = copy;
  EXPECT_EQ(assigned.GetDestAxisLines(), copy.GetDestAxisLines());
  // Each would delete them: all but one forget them.
  assigned = AxisLineCutAlg();
  m_algorithm = AxisLineCutAlg();
}

TEST(AxisLine, DefaultHasBothPointsAtTheOrigin) {
  const AxisLikeLineSeg line;
  EXPECT_EQ(text(line.ptStart, line.ptEnd), "0,0 0,0");
}

TEST(AxisLine, CopiesOfAnEmptyObjectAreEmpty) {
  AxisLineCutAlg algorithm;
  AxisLineCutAlg copy(algorithm);
  copy = algorithm;
  EXPECT_TRUE(copy.GetDestAxisLines().empty());
}

}  // namespace
