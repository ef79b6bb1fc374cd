#include "commands/WallCuts.h"

#include <gtest/gtest.h>

#include <random>

#include "commands/ClosedBody.h"

namespace {

using quoin::commands::cutOpenings;
using quoin::commands::FoundOpenings;
using quoin::commands::kMostOverlapping;
using quoin::commands::OpeningHeights;
using quoin::commands::WallCuts;
using quoin::commands::WallHole;
using quoin::commands::WallPrism;
using quoin::plan::Opening;
using quoin::plan::OpeningKind;

constexpr OpeningHeights kHeights{900, 2000, 2100};
constexpr double kCapture = 10.0;

/// 5 m long, 2.8 m high, mitred by 100 at its start.
std::vector<WallPrism> oneWall() {
  WallPrism prism;
  prism.startLeft = AcGePoint3d(100, 100, 0);
  prism.startMid = AcGePoint3d(0, 0, 0);
  prism.startRight = AcGePoint3d(-100, -100, 0);
  prism.endLeft = AcGePoint3d(5000, 100, 0);
  prism.endMid = AcGePoint3d(5000, 0, 0);
  prism.endRight = AcGePoint3d(5000, -100, 0);
  prism.height = 2800;
  return {prism};
}

struct Result {
  std::vector<WallPrism> prisms = oneWall();
  WallCuts cuts;
};

Result cut(const std::vector<Opening>& openings) {
  Result result;
  FoundOpenings found{openings, std::vector<AcDbObjectId>(openings.size()), {}};
  result.cuts = cutOpenings(result.prisms, found, kHeights, kCapture);
  EXPECT_EQ(result.cuts.cuts.size() + result.cuts.leftOut.size(), openings.size());
  EXPECT_EQ(quoin::test::factsOf(result.prisms[0].faces()).wrongEdges, 0u);
  return result;
}

TEST(WallCuts, TakeHeightsFromTheKindWhereTheOpeningSaysNone) {
  const Result result = cut({{0, 1000, 2000, OpeningKind::Window},
                             {0, 2500, 3000, OpeningKind::Door},
                             {0, 3500, 4000, OpeningKind::Opening},
                             {0, 4200, 4800, OpeningKind::Window, 300.0, 2500.0}});
  ASSERT_EQ(result.cuts.cuts.size(), 4u);
  EXPECT_EQ(result.cuts.cuts[0].hole, (WallHole{1000, 2000, 900, 2000}));
  EXPECT_EQ(result.cuts.cuts[1].hole, (WallHole{2500, 3000, 0, 2100}));
  EXPECT_EQ(result.cuts.cuts[2].hole, (WallHole{3500, 4000, 0, 2100}));
  EXPECT_EQ(result.cuts.cuts[3].hole, (WallHole{4200, 4800, 300, 2500}));
  for (const auto& one : result.cuts.cuts) {
    EXPECT_FALSE(one.isShortened);
    EXPECT_FALSE(one.isLowered);
  }
}

TEST(WallCuts, StayOutOfTheJointAndWithinTheHeight) {
  const Result result =
      cut({{0, 50, 1000, OpeningKind::Door}, {0, 2000, 3000, OpeningKind::Door, -50.0, 3000.0}});
  ASSERT_EQ(result.cuts.cuts.size(), 2u);
  EXPECT_EQ(result.cuts.cuts[0].hole, (WallHole{100, 1000, 0, 2100}));
  EXPECT_TRUE(result.cuts.cuts[0].isShortened);
  EXPECT_EQ(result.cuts.cuts[1].hole, (WallHole{2000, 3000, 0, 2800}));
  EXPECT_TRUE(result.cuts.cuts[1].isLowered);
}

TEST(WallCuts, LeaveOutWhatHasNoRoom) {
  const auto reason = [](const Opening& opening) {
    const Result result = cut({opening});
    EXPECT_TRUE(result.prisms[0].holes.empty());
    return result.cuts.leftOut.empty() ? "" : result.cuts.leftOut[0].reason;
  };
  EXPECT_EQ(reason({0, 0, 5000}), "is wider than the straight part of its wall");
  EXPECT_EQ(reason({0, 20, 80}), "lies in the joint at the end of its wall");
  EXPECT_EQ(reason({0, 1000, 2000, OpeningKind::Window, 2900.0, 3500.0}), "begins above its wall");
  EXPECT_EQ(reason({0, 1000, 2000, OpeningKind::Window, 900.0, 900.0}),
            "has its head no higher than its sill");
}

TEST(WallCuts, LeaveOutAllOfAWallOfWhichNothingWouldBeLeft) {
  std::vector<WallPrism> prisms = oneWall();
  prisms[0].startLeft.x = prisms[0].startRight.x = 0.0;
  const FoundOpenings found{{{0, 0, 3000, OpeningKind::Opening, 0.0, 2800.0},
                             {0, 3000, 5000, OpeningKind::Opening, 0.0, 2800.0}},
                            std::vector<AcDbObjectId>(2),
                            {}};
  const WallCuts cuts = cutOpenings(prisms, found, kHeights, kCapture);
  EXPECT_EQ(cuts.leftOut.size(), 2u);
  EXPECT_TRUE(prisms[0].holes.empty());
}

TEST(WallCuts, JoinJambsThatAreNearlyOne) {
  const Result result =
      cut({{0, 1000, 2000, OpeningKind::Door}, {0, 2000.004, 3000, OpeningKind::Door}});
  ASSERT_EQ(result.cuts.cuts.size(), 2u);
  EXPECT_EQ(result.cuts.cuts[1].hole.from, 2000.0);
}

TEST(WallCuts, LeaveOutOpeningsThatTouchInAnEdgeAlone) {
  const Result result = cut({{0, 1000, 2000, OpeningKind::Door, 0.0, 1000.0},
                             {0, 2000, 3000, OpeningKind::Window, 1000.0, 2000.0},
                             {0, 3500, 4000, OpeningKind::Door}});
  EXPECT_EQ(result.cuts.cuts.size(), 1u);
  ASSERT_EQ(result.cuts.leftOut.size(), 2u);
  EXPECT_EQ(result.cuts.leftOut[0].reason, "touches another opening in an edge alone");
}

TEST(WallCuts, TakeSomeOverlappingOpeningsAndNoHeaps) {
  std::vector<Opening> openings;
  for (std::size_t i = 0; i < 3 * kMostOverlapping; ++i) {
    const double step = 10.0 * static_cast<double>(i);
    openings.push_back({0, 1000.0 + step, 3000.0 + step, OpeningKind::Window, step, 2000.0});
  }
  EXPECT_EQ(cut(openings).cuts.cuts.size(), kMostOverlapping);
}

TEST(WallCuts, KeepAwayFromAnEndThatIsBentInwards) {
  std::vector<WallPrism> prisms = oneWall();
  prisms[0].startLeft.x = prisms[0].startRight.x = 0.0;
  prisms[0].startMid.x = 50.0;
  const FoundOpenings found{{{0, 0, 1000, OpeningKind::Door}}, std::vector<AcDbObjectId>(1), {}};
  EXPECT_EQ(cutOpenings(prisms, found, kHeights, kCapture).cuts.at(0).hole.from, 60.0);
  EXPECT_EQ(quoin::test::factsOf(prisms[0].faces()).wrongEdges, 0u);
}

TEST(WallCuts, LeaveEveryWallClosed) {
  std::mt19937 random(7);
  // A coarse grid, so that jambs, sills and heads often fall together.
  const auto pick = [&](double step, int count) {
    return step * static_cast<double>(random() % static_cast<unsigned>(count));
  };
  for (int run = 0; run < 3000; ++run) {
    std::vector<Opening> openings;
    for (unsigned i = 0; i < 1 + random() % 8; ++i) {
      const double from = pick(250.0, 20);
      const double sill = pick(700.0, 5);
      openings.push_back({0, from, from + 250.0 + pick(250.0, 6), OpeningKind::Window, sill,
                          sill + pick(700.0, 5)});
    }
    cut(openings);
    ASSERT_FALSE(HasFailure()) << "run " << run;
  }
}

}  // namespace
