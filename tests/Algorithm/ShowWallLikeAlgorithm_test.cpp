#include "DrawWallAlgorithm/ShowWallLikeAlgorithm.h"
#include "DrawWallAlgorithm/WallTerminalInternal.h"

#include <gtest/gtest.h>

#include <cmath>

#include "GeomDegree.h"
#include "GeomLinearCommon.h"
#include "support/GeometryText.h"
#include "support/RunningHost.h"

namespace {

using quoin::test::point;
using quoin::test::RunningHost;
using quoin::test::text;

const double kPi = std::acos(-1.0);

class OpenShow : public CShowWallLikeAlgorithm {
 public:
  using CShowWallLikeAlgorithm::ClearWallRectArray;
  using CShowWallLikeAlgorithm::GetTerminalStartMidPt;
  using CShowWallLikeAlgorithm::ProcessWallTerminalDrawing;
};

void expectNear(const AcGePoint3d& actual, std::string_view expected) {
  EXPECT_LT(actual.distanceTo(point(expected)), 1e-9) << text(actual) << " is not " << expected;
}

class ShowWall : public testing::Test {
 protected:
  /// The show wall from (0,0) to (1000,0), 100 to the left and 50 to the right, belongs to the
  /// array of all walls, so that the algorithm releases it too.
  ShowWall() {
    WallEntityLikeRect* wall = m_algorithm.GetShowWall();
    wall->ptEnd = AcGePoint3d(1000, 0, 0);
    wall->dLeftWidth = 100;
    wall->dRightWidth = 50;
    m_algorithm.GetAllWallRect().push_back(wall);
  }
  WallEntityLikeRect* addWall(std::string_view line, double left = 30, double right = 20) {
    const auto [start, end] = quoin::test::segments(line).front();
    m_algorithm.GetAllWallRect().push_back(new WallEntityLikeRect{start, end, left, right});
    return m_algorithm.GetAllWallRect().back();
  }
  /// A wall that leaves (1000,0) at an angle in degrees.
  WallEntityLikeRect* addWallAtEnd(double degrees, double left = 30, double right = 20) {
    WallEntityLikeRect* wall = addWall("0,0 0,0", left, right);
    wall->ptStart = AcGePoint3d(1000, 0, 0);
    wall->ptEnd = wall->ptStart + AcGeVector3d(std::cos(degrees * kPi / 180) * 2000,
                                               std::sin(degrees * kPi / 180) * 2000, 0);
    return wall;
  }
  /// Makes an object empty without deleting what it holds, which another one owns.
  static void forgetAll(CShowWallLikeAlgorithm& algorithm) {
    const CShowWallLikeAlgorithm empty;
    algorithm = empty;
    delete algorithm.GetShowWall();
  }
  std::string endRecords() { return quoin::test::textOfSegments(m_algorithm.GetEndWallArray()); }

  RunningHost m_host{1.0};  // capture distance 10
  OpenShow m_algorithm;
};

TEST_F(ShowWall, AloneItIsARectangleClosedAtBothEnds) {
  m_algorithm.CalcShowWall();
  EXPECT_EQ(text(m_algorithm.GetLeftWall()->ptStart, m_algorithm.GetLeftWall()->ptEnd),
            "0,100 1000,100");
  EXPECT_EQ(text(m_algorithm.GetRightWall()->ptStart, m_algorithm.GetRightWall()->ptEnd),
            "0,-50 1000,-50");
  ASSERT_NE(m_algorithm.GetStartWall(), nullptr);
  ASSERT_NE(m_algorithm.GetEndWall(), nullptr);
  EXPECT_EQ(text(m_algorithm.GetStartWall()->ptStart, m_algorithm.GetStartWall()->ptEnd),
            "0,100 0,-50");
  EXPECT_EQ(text(m_algorithm.GetEndWall()->ptStart, m_algorithm.GetEndWall()->ptEnd),
            "1000,100 1000,-50");
  EXPECT_TRUE(m_algorithm.GetStartWallArray().empty());
  EXPECT_TRUE(m_algorithm.GetEndWallArray().empty());
}

TEST_F(ShowWall, BeforeTheComputationNoEndIsClosed) {
  EXPECT_EQ(m_algorithm.GetStartWall(), nullptr);
  EXPECT_EQ(m_algorithm.GetEndWall(), nullptr);
  EXPECT_EQ(text(m_algorithm.GetLeftWall()->ptStart), "0,0");
}

TEST_F(ShowWall, AWallAtExactlyTheCaptureDistanceDoesNotMeetIt) {
  addWall("1010,0 1010,900");
  m_algorithm.CalcShowWall();
  EXPECT_NE(m_algorithm.GetEndWall(), nullptr);
}

TEST_F(ShowWall, AWallJustInsideTheCaptureDistanceMeetsIt) {
  addWall("1009.999,0 1009.999,900");
  m_algorithm.CalcShowWall();
  EXPECT_EQ(m_algorithm.GetEndWall(), nullptr);
  EXPECT_NE(m_algorithm.GetStartWall(), nullptr);
}

TEST_F(ShowWall, AWallAsFarFromBothEndsCountsAtTheEndOnly) {
  m_host.setScale(0.01);  // capture distance 1000
  addWall("500,300 500,900");
  m_algorithm.CalcShowWall();
  EXPECT_NE(m_algorithm.GetStartWall(), nullptr);
  EXPECT_EQ(m_algorithm.GetEndWall(), nullptr);
}

TEST_F(ShowWall, AWallThatContinuesItIsJoinedByTwoConnectingRecords) {
  addWall("1000,0 2000,0", 30, 20);
  m_algorithm.CalcShowWall();
  EXPECT_EQ(m_algorithm.GetEndWall(), nullptr);
  // Seen from the end, the right is the show wall's left. First the right side: from the
  // neighbour's near left corner to the own; then the left: from the own to the near right.
  EXPECT_EQ(endRecords(), "1000,30 1000,100; 1000,-50 1000,-20");
  EXPECT_EQ(text(m_algorithm.GetLeftWall()->ptEnd), "1000,100");
  EXPECT_EQ(text(m_algorithm.GetRightWall()->ptEnd), "1000,-50");
  EXPECT_TRUE(m_algorithm.GetStartWallArray().empty());
}

TEST_F(ShowWall, AWallAtARightAngleIsMitredOnBothSides) {
  addWall("1000,0 1000,900", 30, 20);  // upwards: its left face at x = 970, right at 1020
  m_algorithm.CalcShowWall();
  EXPECT_EQ(m_algorithm.GetEndWall(), nullptr);
  EXPECT_EQ(endRecords(), "");
  expectNear(m_algorithm.GetLeftWall()->ptEnd, "970,100");
  expectNear(m_algorithm.GetRightWall()->ptEnd, "1020,-50");
}

TEST_F(ShowWall, AWallThatEndsAtTheTerminalIsSeenFromThere) {
  addWall("1000,900 1000,0", 30, 20);  // downwards: its left face at x = 1030, right at 980
  m_algorithm.CalcShowWall();
  expectNear(m_algorithm.GetLeftWall()->ptEnd, "980,100");
  expectNear(m_algorithm.GetRightWall()->ptEnd, "1030,-50");
}

TEST_F(ShowWall, AtTheStartCornersAreMitredAlike) {
  addWall("0,0 0,900", 30, 20);
  m_algorithm.CalcShowWall();
  EXPECT_EQ(m_algorithm.GetStartWall(), nullptr);
  EXPECT_NE(m_algorithm.GetEndWall(), nullptr);
  expectNear(m_algorithm.GetLeftWall()->ptStart, "20,100");
  expectNear(m_algorithm.GetRightWall()->ptStart, "-30,-50");
}

TEST_F(ShowWall, BetweenTwoWallsEachSideMeetsItsOwnNeighbour) {
  addWall("1000,0 1000,900", 30, 20);
  addWall("1000,0 1000,-900", 30, 20);  // downwards: its left face at x = 1030, right at 980
  m_algorithm.CalcShowWall();
  expectNear(m_algorithm.GetLeftWall()->ptEnd, "970,100");
  expectNear(m_algorithm.GetRightWall()->ptEnd, "980,-50");
}

TEST_F(ShowWall, FacesAtExactlyFiveDegreesAreMitredAndAtTheNextSmallerAngleConnected) {
  // Walls of no width, whose faces are their reference lines to the last bit, in the smallest
  // steps that doubles allow around 5 degrees.
  const AcGePoint3d corner;
  bool sawExactlyFive = false;
  double y = 1000.0 * std::tan(5.0 * kPi / 180) - 50 * 1.5e-14;
  for (int step = 0; step < 100; ++step, y = std::nextafter(y, 100.0)) {
    OpenShow algorithm;
    *algorithm.GetShowWall() = {{-1000, 0, 0}, corner, 0, 0};
    algorithm.GetAllWallRect() = {algorithm.GetShowWall(),
                                  new WallEntityLikeRect{corner, {1000, y, 0}, 0, 0}};
    algorithm.CalcShowWall();
    const double angle = CGeomLinearCommon::GetLineIncludedAngle(
        AcGeLine3d(corner, AcGePoint3d(-1000, 0, 0)), AcGeLine3d(corner, AcGePoint3d(1000, y, 0)));
    const double degrees = CGeomDegree(angle, CGeomDegree::eAngleRadian).GetAngleDegree();
    EXPECT_EQ(algorithm.GetEndWallArray().size(), degrees < 5.0 ? 2u : 0u) << text(degrees);
    sawExactlyFive = sawExactlyFive || degrees == 5.0;
  }
  EXPECT_TRUE(sawExactlyFive);
}

TEST_F(ShowWall, FacesJustBelowFiveDegreesAreConnected) {
  for (const double degrees : {4.999, -4.999, 180 - 4.999, 0.0}) {
    OpenShow algorithm;
    *algorithm.GetShowWall() = *m_algorithm.GetShowWall();
    algorithm.GetAllWallRect().push_back(algorithm.GetShowWall());
    WallEntityLikeRect* wall = addWallAtEnd(degrees);
    m_algorithm.GetAllWallRect().pop_back();
    algorithm.GetAllWallRect().push_back(wall);
    algorithm.CalcShowWall();
    EXPECT_EQ(algorithm.GetEndWallArray().size(), 2u) << degrees;
  }
}

TEST_F(ShowWall, CalculatingTwiceDoublesTheConnectingRecords) {
  addWall("1000,0 2000,0");
  m_algorithm.CalcShowWall();
  m_algorithm.CalcShowWall();
  EXPECT_EQ(m_algorithm.GetEndWallArray().size(), 4u);
}

TEST_F(ShowWall, AFlagThatTurnsFalseLeavesTheOldLine) {
  m_algorithm.CalcShowWall();
  const WallDrawingSeg before = *m_algorithm.GetEndWall();
  WallEntityLikeRect* wall = addWall("1000,0 1000,900");
  m_algorithm.CalcShowWall();
  EXPECT_EQ(m_algorithm.GetEndWall(), nullptr);
  wall->ptStart.x = wall->ptEnd.x = 99999;
  m_algorithm.CalcShowWall();
  EXPECT_EQ(text(m_algorithm.GetEndWall()->ptStart), text(before.ptStart));
}

TEST_F(ShowWall, NullEntriesAreSkipped) {
  m_algorithm.GetAllWallRect().push_back(nullptr);
  m_algorithm.CalcShowWall();
  EXPECT_NE(m_algorithm.GetStartWall(), nullptr);
}

TEST_F(ShowWall, AScaleOfZeroTakesEveryWallAndANegativeOneNone) {
  addWall("5000,0 5000,900");
  m_host.setScale(0.0);
  m_algorithm.CalcShowWall();
  EXPECT_EQ(m_algorithm.GetEndWall(), nullptr);
  m_host.setScale(-1.0);
  m_algorithm.CalcShowWall();
  EXPECT_NE(m_algorithm.GetEndWall(), nullptr);
  EXPECT_EQ(m_host.scaleReads(), 2u);
}

TEST_F(ShowWall, TheMeetListComesBackSortedWithTheShowWallInIt) {
  WallEntityLikeRect* up = addWallAtEnd(90);
  WallEntityLikeRect* right = addWallAtEnd(0);
  std::vector<WallEntityLikeRect*> meet{up, right};
  std::vector<WallEntityLikeRect*> records;
  bool isFree = true;
  AcGePoint3d left, rightCorner;
  m_algorithm.ProcessWallTerminalDrawing(point("1000,0"), isFree, left, rightCorner, meet, records);
  EXPECT_FALSE(isFree);
  EXPECT_EQ(meet, (std::vector<WallEntityLikeRect*>{right, up, m_algorithm.GetShowWall()}));
  EXPECT_TRUE(m_host.log().empty());
  m_algorithm.ClearWallRectArray(records);
  EXPECT_TRUE(records.empty());
}

TEST_F(ShowWall, TheCaptureDistanceIsReadOnceAComputationAndAWrongRootIsLogged) {
  m_host.project().root().setType(3);
  m_algorithm.CalcShowWall();
  EXPECT_EQ(m_host.scaleReads(), 1u);
  EXPECT_EQ(m_host.log().size(), 1u);
  m_algorithm.CalcShowWallPrepareFor3d();
  EXPECT_EQ(m_host.scaleReads(), 2u);
  EXPECT_EQ(m_host.log().size(), 2u);
}

TEST(NewShowWall, HasAWallOfItsOwnAtTheOriginThatTheCallerMayRelease) {
  CShowWallLikeAlgorithm algorithm;
  ASSERT_NE(algorithm.GetShowWall(), nullptr);
  EXPECT_EQ(text(algorithm.GetShowWall()->ptStart, algorithm.GetShowWall()->ptEnd), "0,0 0,0");
  EXPECT_TRUE(algorithm.GetAllWallRect().empty());
  delete algorithm.GetShowWall();  // the object releases only what stands among all walls
}

TEST_F(ShowWall, CopiesOfAFilledObjectShareTheRecords) {
  addWall("1000,0 2000,0", 30, 20);
  addWall("0,0 -1000,0", 30, 20);
  m_algorithm.CalcShowWall();
  addWall("0,900 0,90", 30, 20);
  CShowWallLikeAlgorithm copy(m_algorithm);
  CShowWallLikeAlgorithm assigned;
  delete assigned.GetShowWall();  // the assignment forgets it
  assigned = m_algorithm;
  for (CShowWallLikeAlgorithm* other : {&copy, &assigned}) {
    EXPECT_EQ(other->GetShowWall(), m_algorithm.GetShowWall());
    EXPECT_EQ(other->GetAllWallRect(), m_algorithm.GetAllWallRect());
    EXPECT_EQ(other->GetStartWallArray(), m_algorithm.GetStartWallArray());
    EXPECT_EQ(other->GetEndWallArray(), m_algorithm.GetEndWallArray());
    EXPECT_EQ(other->GetStartWallArray().size(), 2u);
    EXPECT_EQ(other->GetEndWallArray().size(), 2u);
    EXPECT_EQ(text(other->GetLeftWall()->ptEnd), text(m_algorithm.GetLeftWall()->ptEnd));
    EXPECT_EQ(text(other->GetRightWall()->ptEnd), text(m_algorithm.GetRightWall()->ptEnd));
    EXPECT_EQ(other->GetStartWall(), nullptr);
    forgetAll(*other);
  }
}

TEST_F(ShowWall, CopiesHaveTheClosedEndsOfTheOriginal) {
  addWall("1000,0 2000,0", 30, 20);
  m_algorithm.CalcShowWall();
  CShowWallLikeAlgorithm copy(m_algorithm);
  ASSERT_NE(copy.GetStartWall(), nullptr);
  EXPECT_NE(copy.GetStartWall(), m_algorithm.GetStartWall()) << "by value";
  EXPECT_EQ(text(copy.GetStartWall()->ptStart, copy.GetStartWall()->ptEnd), "0,100 0,-50");
  EXPECT_EQ(copy.GetEndWall(), nullptr);
  forgetAll(copy);
}

TEST_F(ShowWall, AListWithoutTheShowWallIsLoggedWithTheLineOfItsComputation) {
  using namespace WallTerminalInternal;
  const std::vector<WallEntityLikeRect*> meet{addWallAtEnd(0), addWallAtEnd(90)};
  EXPECT_EQ(FindShowWall(meet, meet[1], kAssertLineInPlan), 1u);
  EXPECT_TRUE(m_host.log().empty());
  EXPECT_EQ(FindShowWall(meet, m_algorithm.GetShowWall(), kAssertLineInPlan), meet.size());
  EXPECT_EQ(FindShowWall({}, m_algorithm.GetShowWall(), kAssertLineFor3d), 0u);
  EXPECT_EQ(m_host.log(),
            (std::vector<std::wstring>{L"断言：FALSE Algorithm\\DrawWallAlgorithm - 567",
                                       L"断言：FALSE Algorithm\\DrawWallAlgorithm - 486"}));
}

// --- for 3D ---------------------------------------------------------------------------------

TEST_F(ShowWall, For3dFreeEndsHaveTheirMiddleBetweenTheSquareCorners) {
  const PrepareFrom2dTo3dData data = m_algorithm.CalcShowWallPrepareFor3d();
  EXPECT_TRUE(data.bHasStartWall);
  EXPECT_TRUE(data.bHasEndWall);
  EXPECT_EQ(text(data.ptStartLeft, data.ptStartRight), "0,100 0,-50");
  EXPECT_EQ(text(data.ptStartMid), "0,25");
  EXPECT_EQ(text(data.ptEndLeft, data.ptEndRight), "1000,100 1000,-50");
  EXPECT_EQ(text(data.ptEndMid), "1000,25");
}

TEST_F(ShowWall, For3dItSetsTheFlagsAndLeavesTheOutline) {
  const CShowWallLikeAlgorithm& constant = m_algorithm;
  constant.CalcShowWallPrepareFor3d();
  EXPECT_NE(m_algorithm.GetStartWall(), nullptr);
  EXPECT_EQ(text(m_algorithm.GetStartWall()->ptStart, m_algorithm.GetStartWall()->ptEnd),
            "0,0 0,0");
  EXPECT_EQ(text(m_algorithm.GetLeftWall()->ptEnd), "0,0");
}

TEST_F(ShowWall, For3dAWallAtOneEndClosesThatEndOnly) {
  WallEntityLikeRect* wall = addWall("1000,0 1000,900");
  PrepareFrom2dTo3dData data = m_algorithm.CalcShowWallPrepareFor3d();
  EXPECT_TRUE(data.bHasStartWall);
  EXPECT_FALSE(data.bHasEndWall);
  EXPECT_NE(m_algorithm.GetStartWall(), nullptr);
  EXPECT_EQ(m_algorithm.GetEndWall(), nullptr);
  wall->ptStart.x = wall->ptEnd.x = 0;
  data = m_algorithm.CalcShowWallPrepareFor3d();
  EXPECT_FALSE(data.bHasStartWall);
  EXPECT_TRUE(data.bHasEndWall);
  EXPECT_EQ(m_algorithm.GetStartWall(), nullptr);
  EXPECT_NE(m_algorithm.GetEndWall(), nullptr);
}

TEST_F(ShowWall, For3dCalculatingTwiceDoublesTheConnectingRecords) {
  addWall("1000,0 2000,0");
  m_algorithm.CalcShowWallPrepareFor3d();
  m_algorithm.CalcShowWallPrepareFor3d();
  EXPECT_EQ(m_algorithm.GetEndWallArray().size(), 4u);
}

TEST_F(ShowWall, For3dAWallParallelToTheFaceLeavesTheMiddleOfTheFace) {
  addWall("0,0 0,900", 30, 20);
  const PrepareFrom2dTo3dData data = m_algorithm.CalcShowWallPrepareFor3d();
  EXPECT_FALSE(data.bHasStartWall);
  EXPECT_EQ(text(data.ptStartMid), "0,25");
  expectNear(data.ptStartLeft, "20,100");
  expectNear(data.ptStartRight, "-30,-50");
}

TEST_F(ShowWall, For3dOnlyTheWallClockwiseMovesTheMiddle) {
  // Seen from the end, looking along the show wall (towards -X), clockwise is up the page.
  WallEntityLikeRect* clockwise = addWall("1003,0 1903,900");
  addWall("1000,5 1900,-895");
  const PrepareFrom2dTo3dData data = m_algorithm.CalcShowWallPrepareFor3d();
  expectNear(data.ptEndMid, "1000,-3");
  clockwise->ptStart.x += 2;
  clockwise->ptEnd.x += 2;
  expectNear(m_algorithm.CalcShowWallPrepareFor3d().ptEndMid, "1000,-5");
}

TEST_F(ShowWall, For3dLeftAndRightAreTheWallsOwnAtBothEnds) {
  addWall("1000,0 1000,900", 30, 20);
  const PrepareFrom2dTo3dData data = m_algorithm.CalcShowWallPrepareFor3d();
  expectNear(data.ptEndLeft, "970,100");
  expectNear(data.ptEndRight, "1020,-50");
}

TEST_F(ShowWall, TheMiddleMovesToTheReferenceLineOfARecordAndStaysWithoutOne) {
  AcGePoint3d middle = point("7,7");
  AcGeLine3d line(point("0,0"), AcGeVector3d::kYAxis);
  m_algorithm.GetTerminalStartMidPt(middle, nullptr, line);
  EXPECT_EQ(text(middle), "7,7");
  WallEntityLikeRect parallel{point("5,0"), point("5,9"), 1, 1};
  m_algorithm.GetTerminalStartMidPt(middle, &parallel, line);
  EXPECT_EQ(text(middle), "7,7");
  WallEntityLikeRect crossing{point("5,4"), point("9,4"), 1, 1};
  m_algorithm.GetTerminalStartMidPt(middle, &crossing, line);
  EXPECT_EQ(text(middle), "0,4");
}

}  // namespace
