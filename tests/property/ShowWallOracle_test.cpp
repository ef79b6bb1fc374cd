// The outline of a wall and its preparation for 3D against their direct forms, bit for bit,
// and their laws.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "support/CorpusText.h"
#include "support/RunningHost.h"
#include "support/SameBits.h"
#include "support/WallLineSets.h"

namespace {

using quoin::oracle::PreparedWall;
using quoin::oracle::ShownWall;
using quoin::test::asInput;
using quoin::test::asLines;
using quoin::test::joined;
using quoin::test::prepareWithModule;
using quoin::test::RunningHost;
using quoin::test::sameBits;
using quoin::test::sameLine;
using quoin::test::sameLines;
using quoin::test::showWithModule;

const double kPi = std::acos(-1.0);

struct ShowSet {
  WallEntityLikeRect show;
  std::vector<WallEntityLikeRect> walls;
  std::string text() const { return asInput(show, walls); }
};

AcGePoint3d polar(const AcGePoint3d& from, double angle, double length) {
  return from + AcGeVector3d(std::cos(angle) * length, std::sin(angle) * length, 0);
}

/// A wall of some length with stars at its ends: up to five walls each, at angles that favour
/// straight on, right angles and about 5 degrees, their ends up to the capture distance of
/// scale 1 away, drawn in either direction, with unequal widths.
ShowSet randomStar(std::mt19937_64& random, bool withSlop = true) {
  std::uniform_real_distribution<double> turn(0.0, 2.0 * kPi);
  std::uniform_real_distribution<double> width(0.0, 150.0);
  std::uniform_real_distribution<double> length(300.0, 3000.0);
  std::uniform_real_distribution<double> slop(0.0, 12.0);
  std::uniform_int_distribution<int> die(0, 7);
  const double own = die(random) < 3 ? 0.0 : turn(random);
  ShowSet set;
  set.show = {{0, 0, 0}, polar({0, 0, 0}, own, length(random)), width(random), width(random)};
  for (const AcGePoint3d& end : {set.show.ptStart, set.show.ptEnd}) {
    for (int i = die(random) % 6; i > 0; --i) {
      double angle = turn(random);
      switch (withSlop ? die(random) : 7) {
        case 0:
          angle = own;
          break;
        case 1:
          angle = own + kPi / 2;
          break;
        case 2:
          angle = own + kPi + (die(random) - 3.5) / 3.5 * 5.0 * kPi / 180;
          break;
        case 3:
          angle = own + (die(random) < 4 ? 5.0 : -5.0) * kPi / 180;
          break;
        default:
          break;
      }
      const AcGePoint3d at =
          withSlop && die(random) < 3 ? polar(end, turn(random), slop(random)) : end;
      WallEntityLikeRect wall{at, polar(at, angle, length(random)), width(random), width(random)};
      if (random() & 1) {
        std::swap(wall.ptStart, wall.ptEnd);
      }
      set.walls.push_back(wall);
    }
  }
  std::shuffle(set.walls.begin(), set.walls.end(), random);
  return set;
}

/// The line sets of the other algorithms with a few widths, zero and negative ones too.
ShowSet randomSet(std::mt19937_64& random, int count) {
  const double widths[] = {0.0, 100.0, 120.0, -30.0, 1e-11, std::nan("")};
  const auto width = [&] { return widths[random() % 6]; };
  ShowSet set;
  for (const WallLineLikeSeg& line : quoin::test::randomWallLines(random, count + 1)) {
    set.walls.push_back({line.ptStart, line.ptEnd, width(), width()});
  }
  set.show = set.walls.back();
  set.walls.pop_back();
  return set;
}

void expectSameBits(const ShowSet& set, double scale, std::size_t& met) {
  const ShownWall expected = quoin::oracle::showWall(set.show, set.walls, scale);
  const ShownWall actual = showWithModule(set.show, set.walls);
  const std::string input =
      set.text() + "=>\n" + joined(asLines(expected)) + "but:\n" + joined(asLines(actual));
  ASSERT_TRUE(sameLine(actual.left, expected.left)) << input;
  ASSERT_TRUE(sameLine(actual.right, expected.right)) << input;
  ASSERT_EQ(actual.start.has_value(), expected.start.has_value()) << input;
  ASSERT_EQ(actual.end.has_value(), expected.end.has_value()) << input;
  ASSERT_TRUE(!actual.start || sameLine(*actual.start, *expected.start)) << input;
  ASSERT_TRUE(!actual.end || sameLine(*actual.end, *expected.end)) << input;
  ASSERT_TRUE(sameLines(actual.startConnections, expected.startConnections)) << input;
  ASSERT_TRUE(sameLines(actual.endConnections, expected.endConnections)) << input;
  met += (expected.start ? 0u : 1u) + (expected.end ? 0u : 1u);
}

void expectSameBitsFor3d(const ShowSet& set, double scale) {
  const PreparedWall expected = quoin::oracle::prepareWallFor3d(set.show, set.walls, scale);
  const PreparedWall actual = prepareWithModule(set.show, set.walls);
  const std::string input =
      set.text() + "=>\n" + joined(asLines(expected)) + "but:\n" + joined(asLines(actual));
  ASSERT_EQ(actual.data.bHasStartWall, expected.data.bHasStartWall) << input;
  ASSERT_EQ(actual.data.bHasEndWall, expected.data.bHasEndWall) << input;
  for (AcGePoint3d PrepareFrom2dTo3dData::*pt :
       {&PrepareFrom2dTo3dData::ptStartLeft, &PrepareFrom2dTo3dData::ptStartMid,
        &PrepareFrom2dTo3dData::ptStartRight, &PrepareFrom2dTo3dData::ptEndLeft,
        &PrepareFrom2dTo3dData::ptEndMid, &PrepareFrom2dTo3dData::ptEndRight}) {
    ASSERT_TRUE(sameBits(actual.data.*pt, expected.data.*pt)) << input;
  }
  ASSERT_TRUE(sameLines(actual.startConnections, expected.startConnections)) << input;
  ASSERT_TRUE(sameLines(actual.endConnections, expected.endConnections)) << input;
}

TEST(ShowWallOracle, StarsGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(70);
  std::size_t met = 0;
  for (int round = 0; round < 8000; ++round) {
    const ShowSet set = randomStar(random);
    ASSERT_NO_FATAL_FAILURE(expectSameBits(set, 1.0, met)) << "round " << round;
    ASSERT_NO_FATAL_FAILURE(expectSameBitsFor3d(set, 1.0)) << "round " << round;
  }
  EXPECT_GT(met, 8000u);  // the sets do put something to the test
}

TEST(ShowWallOracle, SetsOfEveryKindAtEveryScaleGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(71);
  std::size_t met = 0;
  for (int round = 0; round < 2000; ++round) {
    const ShowSet set = randomSet(random, round % 12);
    for (const double scale : quoin::test::projectScales()) {
      host.setScale(scale);
      ASSERT_NO_FATAL_FAILURE(expectSameBits(set, scale, met))
          << "round " << round << ", scale " << scale;
      ASSERT_NO_FATAL_FAILURE(expectSameBitsFor3d(set, scale))
          << "round " << round << ", scale " << scale;
    }
  }
  EXPECT_GT(met, 4000u);
}

TEST(ShowWallOracle, LargeSetsGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(72);
  std::size_t met = 0;
  for (int round = 0; round < 30; ++round) {
    const ShowSet set = randomSet(random, 300);
    for (const double scale : {1.0, 0.0, 0.05}) {
      host.setScale(scale);
      ASSERT_NO_FATAL_FAILURE(expectSameBits(set, scale, met));
      ASSERT_NO_FATAL_FAILURE(expectSameBitsFor3d(set, scale));
    }
  }
}

TEST(ShowWallLaws, ThePlanAndTheSolidHaveTheSameCorners) {
  RunningHost host;
  std::mt19937_64 random(73);
  for (int round = 0; round < 2000; ++round) {
    const ShowSet set = randomStar(random);
    const ShownWall shown = showWithModule(set.show, set.walls);
    const PrepareFrom2dTo3dData data = prepareWithModule(set.show, set.walls).data;
    ASSERT_TRUE(sameBits(shown.left.ptStart, data.ptStartLeft)) << set.text();
    ASSERT_TRUE(sameBits(shown.right.ptStart, data.ptStartRight)) << set.text();
    ASSERT_TRUE(sameBits(shown.left.ptEnd, data.ptEndLeft)) << set.text();
    ASSERT_TRUE(sameBits(shown.right.ptEnd, data.ptEndRight)) << set.text();
    ASSERT_EQ(shown.start.has_value(), data.bHasStartWall);
    ASSERT_EQ(shown.end.has_value(), data.bHasEndWall);
  }
}

TEST(ShowWallLaws, TheOrderOfTheWallsChangesNothing) {
  // As long as no two of them leave in the same direction; then the first one found goes first.
  RunningHost host;
  std::mt19937_64 random(74);
  for (int round = 0; round < 2000; ++round) {
    ShowSet set = randomStar(random, false);
    const std::string before = joined(asLines(showWithModule(set.show, set.walls)));
    std::shuffle(set.walls.begin(), set.walls.end(), random);
    ASSERT_EQ(joined(asLines(showWithModule(set.show, set.walls))), before) << set.text();
  }
}

TEST(ShowWallLaws, OfTwoWallsInTheSameDirectionTheFirstFoundIsTheNextOne) {
  RunningHost host;
  ShowSet set;
  set.show = {{0, 0, 0}, {1000, 0, 0}, 100, 50};
  set.walls = {{{0, 0, 0}, {0, 900, 0}, 30, 20}, {{0, 0, 0}, {0, 900, 0}, 30, 40}};
  EXPECT_EQ(joined(asLines(showWithModule(set.show, set.walls)))
                .find("left 20,100 1000,100\nright -30,-50 1000,-50\n"),
            0u);
  std::swap(set.walls[0], set.walls[1]);
  EXPECT_EQ(joined(asLines(showWithModule(set.show, set.walls)))
                .find("left 40,100 1000,100\nright -30,-50 1000,-50\n"),
            0u);
}

TEST(ShowWallLaws, ANeighbourDrawnTheOtherWayChangesNothing) {
  RunningHost host;
  std::mt19937_64 random(75);
  for (int round = 0; round < 2000; ++round) {
    ShowSet set = randomStar(random);
    const std::string before = joined(asLines(showWithModule(set.show, set.walls)));
    for (WallEntityLikeRect& wall : set.walls) {
      std::swap(wall.ptStart, wall.ptEnd);
      std::swap(wall.dLeftWidth, wall.dRightWidth);
    }
    ASSERT_EQ(joined(asLines(showWithModule(set.show, set.walls))), before) << set.text();
  }
}

TEST(ShowWallLaws, TheWallDrawnTheOtherWayExchangesStartAndEndLeftAndRight) {
  RunningHost host;
  std::mt19937_64 random(76);
  for (int round = 0; round < 2000; ++round) {
    ShowSet set = randomStar(random, false);
    const ShownWall before = showWithModule(set.show, set.walls);
    std::swap(set.show.ptStart, set.show.ptEnd);
    std::swap(set.show.dLeftWidth, set.show.dRightWidth);
    const ShownWall after = showWithModule(set.show, set.walls);
    ASSERT_TRUE(sameBits(after.left.ptStart, before.right.ptEnd)) << set.text();
    ASSERT_TRUE(sameBits(after.left.ptEnd, before.right.ptStart)) << set.text();
    ASSERT_TRUE(sameBits(after.right.ptStart, before.left.ptEnd)) << set.text();
    ASSERT_TRUE(sameBits(after.right.ptEnd, before.left.ptStart)) << set.text();
    ASSERT_EQ(after.start.has_value(), before.end.has_value());
    ASSERT_TRUE(sameLines(after.startConnections, before.endConnections)) << set.text();
  }
}

/// Whether the corner is far from where it is all or nothing: faces at less than 5 degrees
/// are joined, others mitred, and a mitre at a small angle lies far away.
bool isWellConditioned(const ShowSet& set) {
  const AcGeVector3d own = set.show.ptEnd - set.show.ptStart;
  return std::all_of(set.walls.begin(), set.walls.end(), [&](const WallEntityLikeRect& wall) {
    const AcGeVector3d other = wall.ptEnd - wall.ptStart;
    const double sine = own.crossProduct(other).length() / own.length() / other.length();
    return sine < 0.08 || sine > 0.1;
  });
}

TEST(ShowWallLaws, MovedOrRotatedTheOutlineMovesAlong) {
  RunningHost host;
  std::mt19937_64 random(77);
  for (int round = 0; round < 2000; ++round) {
    const ShowSet set = randomStar(random, false);
    if (!isWellConditioned(set)) {
      continue;
    }
    const ShownWall before = showWithModule(set.show, set.walls);
    for (const AcGeMatrix3d& motion : {AcGeMatrix3d().setToTranslation(AcGeVector3d(1e6, -1e6, 0)),
                                       AcGeMatrix3d().setToRotation(0.37, AcGeVector3d::kZAxis)}) {
      ShowSet moved = set;
      moved.show.ptStart = motion * set.show.ptStart;
      moved.show.ptEnd = motion * set.show.ptEnd;
      for (WallEntityLikeRect& wall : moved.walls) {
        wall.ptStart = motion * wall.ptStart;
        wall.ptEnd = motion * wall.ptEnd;
      }
      const ShownWall after = showWithModule(moved.show, moved.walls);
      ASSERT_LT((motion * before.left.ptStart).distanceTo(after.left.ptStart), 1e-5) << set.text();
      ASSERT_LT((motion * before.left.ptEnd).distanceTo(after.left.ptEnd), 1e-5) << set.text();
      ASSERT_LT((motion * before.right.ptStart).distanceTo(after.right.ptStart), 1e-5)
          << set.text();
      ASSERT_LT((motion * before.right.ptEnd).distanceTo(after.right.ptEnd), 1e-5) << set.text();
    }
  }
}

TEST(ShowWallLaws, MirroredLeftAndRightAreExchanged) {
  RunningHost host;
  std::mt19937_64 random(78);
  const AcGeMatrix3d mirror = AcGeMatrix3d().setToMirroring(AcGePoint3d(), AcGeVector3d(1, 2, 0));
  const auto mirrored = [&](const WallEntityLikeRect& wall) {
    return WallEntityLikeRect{mirror * wall.ptStart, mirror * wall.ptEnd, wall.dRightWidth,
                              wall.dLeftWidth};
  };
  for (int round = 0; round < 2000; ++round) {
    const ShowSet set = randomStar(random, false);
    if (!isWellConditioned(set)) {
      continue;
    }
    const ShownWall before = showWithModule(set.show, set.walls);
    std::vector<WallEntityLikeRect> walls;
    std::transform(set.walls.begin(), set.walls.end(), std::back_inserter(walls), mirrored);
    const ShownWall after = showWithModule(mirrored(set.show), walls);
    ASSERT_LT((mirror * before.left.ptStart).distanceTo(after.right.ptStart), 1e-6) << set.text();
    ASSERT_LT((mirror * before.left.ptEnd).distanceTo(after.right.ptEnd), 1e-6) << set.text();
    ASSERT_LT((mirror * before.right.ptStart).distanceTo(after.left.ptStart), 1e-6) << set.text();
    ASSERT_LT((mirror * before.right.ptEnd).distanceTo(after.left.ptEnd), 1e-6) << set.text();
  }
}

}  // namespace
