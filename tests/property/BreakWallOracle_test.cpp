// The break algorithm against its direct form, bit for bit, and its laws.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "BreakWallAlgorithm.h"
#include "oracle/BreakWallOracle.h"
#include "support/GeometryText.h"
#include "support/RunningHost.h"
#include "support/WallLineSets.h"

namespace {

using quoin::oracle::Piece;
using quoin::test::RunningHost;

using Appended = std::map<std::size_t, std::vector<AcGePoint3d>>;

std::vector<Piece> breakWithModule(const std::vector<WallLineLikeSeg>& lines,
                                   const Appended& appended = {}) {
  CBreakWallAlgorithm algorithm;
  std::map<const WallLineLikeSeg*, std::size_t> numberOf;
  for (const WallLineLikeSeg& line : lines) {
    algorithm.GetSrcWallLines().push_back(new WallLineLikeSeg(line));
    numberOf[algorithm.GetSrcWallLines().back()] = numberOf.size();
  }
  for (const auto& [number, points] : appended) {
    AcArray<AcGePoint3d> array;
    for (const AcGePoint3d& pt : points) {
      array.append(pt);
    }
    algorithm.AppendWallBreakPnt(algorithm.GetSrcWallLines()[number], array);
  }
  algorithm.SplitWallLines();
  std::vector<Piece> pieces;
  for (const WallLineLikeSeg* piece : algorithm.GetNewWallLines()) {
    pieces.push_back({piece->ptStart, piece->ptEnd, numberOf.at(piece->pSrcLine)});
  }
  return pieces;
}

std::string print(const std::vector<WallLineLikeSeg>& lines) {
  std::string result;
  for (const WallLineLikeSeg& line : lines) {
    result += quoin::test::text(line.ptStart, line.ptEnd) + "; ";
  }
  return result;
}

void expectSameBits(const std::vector<Piece>& actual, const std::vector<Piece>& expected,
                    const std::vector<WallLineLikeSeg>& lines) {
  ASSERT_EQ(actual.size(), expected.size()) << print(lines);
  for (std::size_t i = 0; i < actual.size(); ++i) {
    ASSERT_EQ(std::memcmp(&actual[i].ptStart, &expected[i].ptStart, sizeof(AcGePoint3d)), 0)
        << "piece " << i << " of " << print(lines);
    ASSERT_EQ(std::memcmp(&actual[i].ptEnd, &expected[i].ptEnd, sizeof(AcGePoint3d)), 0)
        << "piece " << i << " of " << print(lines);
    ASSERT_EQ(actual[i].source, expected[i].source);
  }
}

TEST(BreakWallOracle, SmallSetsOfEveryKindAtEveryScaleGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(20);
  std::size_t pieces = 0;
  for (int round = 0; round < 4000; ++round) {
    const std::vector<WallLineLikeSeg> lines = quoin::test::randomWallLines(random, 2 + round % 12);
    for (const double scale : quoin::test::projectScales()) {
      host.setScale(scale);
      const std::vector<Piece> expected = quoin::oracle::breakWallLines(lines, {}, scale);
      ASSERT_NO_FATAL_FAILURE(expectSameBits(breakWithModule(lines), expected, lines))
          << "round " << round << ", scale " << scale;
      pieces += expected.size();
    }
  }
  EXPECT_GT(pieces, 10000u);  // the sets do put something to the test
}

TEST(BreakWallOracle, AppendedPointsGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(21);
  std::uniform_int_distribution<int> lattice(-40, 40);
  for (int round = 0; round < 1000; ++round) {
    const std::vector<WallLineLikeSeg> lines = quoin::test::randomWallLines(random, 6);
    Appended appended;
    for (int i = 0; i < round % 5; ++i) {
      appended[static_cast<std::size_t>(round + i) % lines.size()].push_back(
          AcGePoint3d(lattice(random), lattice(random), 0));
    }
    ASSERT_NO_FATAL_FAILURE(expectSameBits(breakWithModule(lines, appended),
                                           quoin::oracle::breakWallLines(lines, appended, 1.0),
                                           lines))
        << "round " << round;
  }
}

TEST(BreakWallOracle, LargeSetsGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(22);
  for (int round = 0; round < 12; ++round) {
    const std::vector<WallLineLikeSeg> lines = quoin::test::randomWallLines(random, 300);
    for (const double scale : {1.0, 0.05, 50.0}) {
      host.setScale(scale);
      ASSERT_NO_FATAL_FAILURE(expectSameBits(
          breakWithModule(lines), quoin::oracle::breakWallLines(lines, {}, scale), lines));
    }
  }
}

TEST(BreakWallLaws, PiecesCoverTheirLineWithoutGapInItsDirection) {
  RunningHost host;
  std::mt19937_64 random(23);
  for (int round = 0; round < 500; ++round) {
    const std::vector<WallLineLikeSeg> lines = quoin::test::randomWallLines(random, 20, false);
    const std::vector<Piece> pieces = breakWithModule(lines);
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      const WallLineLikeSeg& line = lines[pieces[i].source];
      const bool isFirst = i == 0 || pieces[i - 1].source != pieces[i].source;
      const bool isLast = i + 1 == pieces.size() || pieces[i + 1].source != pieces[i].source;
      // Cuts that count as one point leave a step of a tolerance each between two pieces.
      constexpr double kStep = 1e-8;
      const AcGePoint3d ptNext = isLast ? line.ptEnd : pieces[i + 1].ptStart;
      ASSERT_TRUE(!isFirst || pieces[i].ptStart.distanceTo(line.ptStart) < kStep);
      ASSERT_LT(pieces[i].ptEnd.distanceTo(ptNext), kStep);
      ASSERT_TRUE((pieces[i].ptEnd - pieces[i].ptStart).dotProduct(line.ptEnd - line.ptStart) >
                  0.0);
    }
  }
}

TEST(BreakWallLaws, TheOrderOfTheLinesDecidesOnlyTheOrderOfTheResult) {
  RunningHost host;
  std::mt19937_64 random(24);
  for (int round = 0; round < 300; ++round) {
    std::vector<WallLineLikeSeg> lines = quoin::test::randomWallLines(random, 15, false);
    const std::vector<Piece> before = breakWithModule(lines);
    std::rotate(lines.begin(), lines.begin() + 4, lines.end());
    const std::vector<Piece> after = breakWithModule(lines);
    ASSERT_EQ(before.size(), after.size());
  }
}

TEST(BreakWallLaws, ShiftedByAMillionTheSameCutsAreMade) {
  RunningHost host;
  const auto lines =
      quoin::test::segments("0,0 1000,0; 400,5 400,800; 1000,3 1000,900; 0,800 990,800");
  std::vector<WallLineLikeSeg> here;
  std::vector<WallLineLikeSeg> there;
  const AcGeVector3d shift(1e6, -1e6, 0);
  for (const auto& [start, end] : lines) {
    here.emplace_back(start, end);
    there.emplace_back(start + shift, end + shift);
  }
  const std::vector<Piece> piecesHere = breakWithModule(here);
  const std::vector<Piece> piecesThere = breakWithModule(there);
  ASSERT_EQ(piecesHere.size(), 4u);
  ASSERT_EQ(piecesThere.size(), piecesHere.size());
  for (std::size_t i = 0; i < piecesHere.size(); ++i) {
    EXPECT_TRUE((piecesHere[i].ptStart + shift).isEqualTo(piecesThere[i].ptStart));
    EXPECT_TRUE((piecesHere[i].ptEnd + shift).isEqualTo(piecesThere[i].ptEnd));
  }
}

TEST(BreakWallLaws, RotatedOrMirroredTheSameCutsAreMade) {
  RunningHost host;
  std::mt19937_64 random(25);
  for (int round = 0; round < 300; ++round) {
    const std::vector<WallLineLikeSeg> lines = quoin::test::cityBlock(random);
    for (const AcGeMatrix3d& motion :
         {AcGeMatrix3d().setToRotation(0.37, AcGeVector3d::kZAxis),
          AcGeMatrix3d().setToMirroring(AcGePoint3d(), AcGeVector3d(1, 2, 0))}) {
      std::vector<WallLineLikeSeg> moved;
      for (const WallLineLikeSeg& line : lines) {
        moved.emplace_back(motion * line.ptStart, motion * line.ptEnd);
      }
      const std::vector<Piece> before = breakWithModule(lines);
      const std::vector<Piece> after = breakWithModule(moved);
      ASSERT_EQ(before.size(), after.size());
      for (std::size_t i = 0; i < before.size(); ++i) {
        ASSERT_LT((motion * before[i].ptStart).distanceTo(after[i].ptStart), 1e-7);
      }
    }
  }
}

}  // namespace
