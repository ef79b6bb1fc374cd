// The drawing of a wall line against its direct form, bit for bit, and its laws.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "support/CorpusText.h"
#include "support/RunningHost.h"
#include "support/SameBits.h"
#include "support/WallLineSets.h"

namespace {

using quoin::oracle::DrawnLine;
using quoin::test::asInput;
using quoin::test::asLines;
using quoin::test::drawWithModule;
using quoin::test::joined;
using quoin::test::RunningHost;
using quoin::test::sameLines;

bool samePoints(const std::vector<AcGePoint3d>& a, const std::vector<AcGePoint3d>& b) {
  return std::equal(
      a.begin(), a.end(), b.begin(), b.end(),
      [](const AcGePoint3d& p, const AcGePoint3d& q) { return quoin::test::sameBits(p, q); });
}

void expectSameBits(const DrawnLine& actual, const DrawnLine& expected,
                    const std::vector<WallLineLikeSeg>& lines, const WallLineLikeSeg& drawn) {
  const std::string input = asInput(lines) + "new " + quoin::test::lineText(drawn) + "\n=>\n" +
                            joined(asLines(expected)) + "but:\n" + joined(asLines(actual));
  ASSERT_TRUE(samePoints(actual.points, expected.points)) << input;
  ASSERT_EQ(actual.modified, expected.modified) << input;
  ASSERT_TRUE(sameLines(actual.lines, expected.lines)) << input;
  ASSERT_TRUE(sameLines(actual.cutOff, expected.cutOff)) << input;
  ASSERT_TRUE(sameLines(actual.pieces, expected.pieces)) << input;
  for (std::size_t i = 0; i < actual.cutOff.size(); ++i) {
    ASSERT_EQ(actual.cutOff[i].source, expected.cutOff[i].source) << input;
  }
}

/// Random lines, the last of which is the one to draw.
struct DrawSet {
  DrawSet(std::mt19937_64& random, int count)
      : lines(quoin::test::randomWallLines(random, count + 1)), drawn(lines.back()) {
    lines.pop_back();
  }
  std::vector<WallLineLikeSeg> lines;
  WallLineLikeSeg drawn;
};

TEST(DrawWallOracle, SmallSetsOfEveryKindAtEveryScaleGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(40);
  std::size_t cuts = 0;
  for (int round = 0; round < 4000; ++round) {
    const DrawSet set(random, 1 + round % 12);
    for (const double scale : quoin::test::projectScales()) {
      host.setScale(scale);
      const DrawnLine expected =
          quoin::oracle::drawWallLine(set.lines, set.drawn.ptStart, set.drawn.ptEnd, scale);
      ASSERT_NO_FATAL_FAILURE(
          expectSameBits(drawWithModule(set.lines, set.drawn.ptStart, set.drawn.ptEnd), expected,
                         set.lines, set.drawn))
          << "round " << round << ", scale " << scale;
      cuts += expected.cutOff.size();
    }
  }
  EXPECT_GT(cuts, 10000u);  // the sets do put something to the test
}

TEST(DrawWallOracle, LargeSetsGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(41);
  for (int round = 0; round < 30; ++round) {
    const DrawSet set(random, 300);
    for (const double scale : {1.0, 0.05, 50.0}) {
      host.setScale(scale);
      ASSERT_NO_FATAL_FAILURE(expectSameBits(
          drawWithModule(set.lines, set.drawn.ptStart, set.drawn.ptEnd),
          quoin::oracle::drawWallLine(set.lines, set.drawn.ptStart, set.drawn.ptEnd, scale),
          set.lines, set.drawn));
    }
  }
}

/// Lines that cross the X axis between 0 and 1000 at angles of 45 to 135 degrees, or stop
/// short of it: none is parallel to it, so the origin plays no part.
std::vector<WallLineLikeSeg> fence(std::mt19937_64& random, bool isVertical = false) {
  std::uniform_real_distribution<double> along(20.0, 980.0);
  std::uniform_real_distribution<double> extent(-200.0, 200.0);
  std::vector<WallLineLikeSeg> lines;
  for (int i = 0; i < 8; ++i) {
    const double foot = along(random);
    const double slope = isVertical ? 0.0 : extent(random) / 200.0;
    const double from = extent(random);
    const double to = extent(random);
    lines.emplace_back(AcGePoint3d(foot + slope * from, from, 0),
                       AcGePoint3d(foot + slope * to, to, 0));
  }
  return lines;
}

const AcGePoint3d kStart(0, 0, 0);
const AcGePoint3d kEnd(1000, 0, 0);

TEST(DrawWallLaws, ThePiecesCoverTheNewLine) {
  RunningHost host;
  std::mt19937_64 random(42);
  for (int round = 0; round < 300; ++round) {
    const DrawnLine drawn = drawWithModule(fence(random), kStart, kEnd);
    ASSERT_FALSE(drawn.pieces.empty());
    EXPECT_TRUE(quoin::test::sameBits(drawn.pieces.front().ptStart, kStart));
    EXPECT_TRUE(quoin::test::sameBits(drawn.pieces.back().ptEnd, kEnd));
    for (std::size_t i = 1; i < drawn.pieces.size(); ++i) {
      ASSERT_TRUE(drawn.pieces[i].ptStart.isEqualTo(drawn.pieces[i - 1].ptEnd));
    }
  }
}

TEST(DrawWallLaws, ACutLineAndItsFarPartMakeUpTheOldLine) {
  RunningHost host;
  std::mt19937_64 random(43);
  for (int round = 0; round < 300; ++round) {
    const std::vector<WallLineLikeSeg> lines = fence(random);
    for (const quoin::oracle::Piece& part : drawWithModule(lines, kStart, kEnd).cutOff) {
      EXPECT_TRUE(quoin::test::sameBits(part.ptEnd, lines[part.source].ptEnd));
      EXPECT_LT(std::fabs(part.ptStart.y), 1e-9);
    }
  }
}

TEST(DrawWallLaws, TheOrderOfTheLinesDecidesOnlyTheOrderOfTheResults) {
  RunningHost host;
  std::mt19937_64 random(44);
  for (int round = 0; round < 300; ++round) {
    std::vector<WallLineLikeSeg> lines = fence(random);
    const DrawnLine before = drawWithModule(lines, kStart, kEnd);
    std::reverse(lines.begin(), lines.end());
    const DrawnLine after = drawWithModule(lines, kStart, kEnd);
    ASSERT_TRUE(samePoints(before.points, after.points));
    ASSERT_TRUE(sameLines(before.pieces, after.pieces));
    ASSERT_EQ(before.cutOff.size(), after.cutOff.size());
  }
}

TEST(DrawWallLaws, DrawnTheOtherWayTheSameCutsAreMadeInReverse) {
  RunningHost host;
  std::mt19937_64 random(45);
  for (int round = 0; round < 300; ++round) {
    const std::vector<WallLineLikeSeg> lines = fence(random);
    const DrawnLine before = drawWithModule(lines, kStart, kEnd);
    const DrawnLine after = drawWithModule(lines, kEnd, kStart);
    ASSERT_EQ(before.modified, after.modified);
    ASSERT_EQ(before.points.size(), after.points.size());
    for (std::size_t i = 0; i < before.points.size(); ++i) {
      ASSERT_LT(before.points[i].distanceTo(after.points[after.points.size() - 1 - i]), 1e-9);
    }
  }
}

TEST(DrawWallLaws, ShiftedByAMillionTheSameCutsAreMade) {
  // Of vertical lines: a slanted one crosses at a rounded point, and a million units out that
  // may turn the direction of its shorter part by more than the tolerance of equal directions.
  RunningHost host;
  std::mt19937_64 random(47);
  const AcGeVector3d shift(1e6, -1e6, 0);
  for (int round = 0; round < 300; ++round) {
    const std::vector<WallLineLikeSeg> lines = fence(random, true);
    std::vector<WallLineLikeSeg> moved;
    for (const WallLineLikeSeg& line : lines) {
      moved.emplace_back(line.ptStart + shift, line.ptEnd + shift);
    }
    const DrawnLine before = drawWithModule(lines, kStart, kEnd);
    const DrawnLine after = drawWithModule(moved, kStart + shift, kEnd + shift);
    ASSERT_EQ(before.modified, after.modified);
    ASSERT_EQ(before.cutOff.size(), after.cutOff.size());
    ASSERT_EQ(before.points.size(), after.points.size());
    for (std::size_t i = 0; i < before.points.size(); ++i) {
      ASSERT_LT((before.points[i] + shift).distanceTo(after.points[i]), 1e-8);
    }
  }
}

TEST(DrawWallLaws, RotatedOrMirroredTheSameCutsAreMade) {
  RunningHost host;
  std::mt19937_64 random(46);
  for (int round = 0; round < 300; ++round) {
    const std::vector<WallLineLikeSeg> lines = fence(random);
    const DrawnLine before = drawWithModule(lines, kStart, kEnd);
    for (const AcGeMatrix3d& motion :
         {AcGeMatrix3d().setToRotation(0.37, AcGeVector3d::kZAxis),
          AcGeMatrix3d().setToMirroring(AcGePoint3d(), AcGeVector3d(1, 2, 0))}) {
      std::vector<WallLineLikeSeg> moved;
      for (const WallLineLikeSeg& line : lines) {
        moved.emplace_back(motion * line.ptStart, motion * line.ptEnd);
      }
      const DrawnLine after = drawWithModule(moved, motion * kStart, motion * kEnd);
      ASSERT_EQ(before.modified, after.modified);
      ASSERT_EQ(before.cutOff.size(), after.cutOff.size());
      ASSERT_EQ(before.points.size(), after.points.size());
      for (std::size_t i = 0; i < before.points.size(); ++i) {
        ASSERT_LT((motion * before.points[i]).distanceTo(after.points[i]), 1e-7);
      }
    }
  }
}

TEST(DrawWallLaws, AParallelLineIsCutByWhereTheOriginLies) {
  // Where the lines do not cross the origin stands in for the crossing, so moving the whole
  // drawing changes the result: the one rule here that depends on the place.
  RunningHost host;
  const std::vector<WallLineLikeSeg> lines{{{-60, 0, 0}, {80, 0, 0}}};
  EXPECT_EQ(drawWithModule(lines, {-100, 5, 0}, {100, 5, 0}).cutOff.size(), 1u);
  const std::vector<WallLineLikeSeg> moved{{{940, 1000, 0}, {1080, 1000, 0}}};
  EXPECT_EQ(drawWithModule(moved, {900, 1005, 0}, {1100, 1005, 0}).cutOff.size(), 0u);
}

}  // namespace
