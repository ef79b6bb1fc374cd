// The break algorithm against its direct form, bit for bit, and its laws.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numeric>
#include <random>

#include "support/CorpusText.h"
#include "support/RunningHost.h"
#include "support/SameBits.h"
#include "support/WallLineSets.h"

namespace {

using quoin::oracle::Piece;
using quoin::test::asInput;
using quoin::test::asLines;
using quoin::test::breakWithModule;
using quoin::test::joined;
using quoin::test::NamedCuts;
using quoin::test::RunningHost;
using quoin::test::sameLines;

void expectSameBits(const std::vector<Piece>& actual, const std::vector<Piece>& expected,
                    const std::vector<WallLineLikeSeg>& lines) {
  ASSERT_TRUE(sameLines(actual, expected)) << asInput(lines) << "=>\n" << joined(asLines(expected));
  for (std::size_t i = 0; i < actual.size(); ++i) {
    ASSERT_EQ(actual[i].source, expected[i].source) << asInput(lines);
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

TEST(BreakWallOracle, AppendedPointsThatAreNoNumbersGiveTheSameBits) {
  // NaN is neither before nor behind anything, so where the others end up depends on where they
  // began.
  RunningHost host;
  std::mt19937_64 random(101);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  const double noNumber = std::nan("");
  std::size_t pieces = 0;
  for (int round = 0; round < 1000; ++round) {
    std::vector<WallLineLikeSeg> lines{{{0, 0, 0}, {9000, 0, 0}}};
    for (int i = 0; i < 12; ++i) {
      const double x = 100.0 + 8800.0 * unit(random);
      lines.push_back({{x, 0, 0}, {x, 500, 0}});
    }
    std::shuffle(lines.begin(), lines.end(), random);
    NamedCuts appended;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (lines[i].ptEnd.y == 0.0) {
        appended[i] = {{noNumber, 0, 0}, {9000.0 * unit(random), 0, 0}, {noNumber, 0, 0}};
      }
    }
    const std::vector<Piece> expected = quoin::oracle::breakWallLines(lines, appended, 1.0);
    ASSERT_NO_FATAL_FAILURE(expectSameBits(breakWithModule(lines, appended), expected, lines));
    pieces += expected.size();
  }
  EXPECT_GT(pieces, 10000U);
}

TEST(BreakWallOracle, CutsARoundingApartGiveTheSameBits) {
  // Several lines end beside the same place of a slanted one, at different distances from it: their
  // feet differ by roundings alone, and which of them bounds a piece shows in its bits.
  RunningHost host;
  std::mt19937_64 random(96);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::size_t pieces = 0;
  for (int round = 0; round < 4000; ++round) {
    const AcGePoint3d start(1e4 * unit(random), 1e4 * unit(random), 0.0);
    const AcGeVector3d along(3000.0 * unit(random), 3000.0 * unit(random), 0.0);
    const AcGeVector3d across = AcGeVector3d(-along.y, along.x, 0.0) / along.length();
    std::vector<WallLineLikeSeg> lines{{start, start + along}};
    for (int place = 1; place < 4; ++place) {
      const AcGePoint3d meeting = start + along * (0.25 * place);
      for (int i = 0; i < 4; ++i) {
        const AcGePoint3d end = meeting + across * (9.0 * unit(random));
        lines.emplace_back(end, end + across * (random() % 2 == 0 ? 400.0 : -400.0));
      }
    }
    std::shuffle(lines.begin(), lines.end(), random);
    const std::vector<Piece> expected = quoin::oracle::breakWallLines(lines, {}, 1.0);
    ASSERT_NO_FATAL_FAILURE(expectSameBits(breakWithModule(lines), expected, lines)) << round;
    pieces += expected.size();
  }
  EXPECT_GT(pieces, 15000U);
}

TEST(BreakWallOracle, AppendedPointsGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(21);
  std::uniform_int_distribution<int> lattice(-40, 40);
  for (int round = 0; round < 1000; ++round) {
    const std::vector<WallLineLikeSeg> lines = quoin::test::randomWallLines(random, 6);
    NamedCuts appended;
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

TEST(BreakWallOracle, UnevenSetsGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(28);
  std::size_t pieces = 0;
  for (int kind = 0; kind < quoin::test::kUnevenKinds; ++kind) {
    const std::vector<WallLineLikeSeg> lines = quoin::test::unevenWallLines(random, kind, 300);
    for (const double scale : {1.0, 1000.0, 0.01}) {
      host.setScale(scale);
      const std::vector<Piece> expected = quoin::oracle::breakWallLines(lines, {}, scale);
      ASSERT_NO_FATAL_FAILURE(expectSameBits(breakWithModule(lines), expected, lines)) << kind;
      pieces += expected.size();
    }
  }
  EXPECT_GT(pieces, 1000u);
}

TEST(BreakWallOracle, SetsAtTheEndsOfTheNumbersGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(29);
  std::size_t pieces = 0;
  for (int round = 0; round < 1000; ++round) {
    const std::vector<WallLineLikeSeg> lines =
        quoin::test::extremeWallLines(random, 2 + round % 20);
    for (const double scale : quoin::test::projectScales()) {
      host.setScale(scale);
      const std::vector<Piece> expected = quoin::oracle::breakWallLines(lines, {}, scale);
      ASSERT_NO_FATAL_FAILURE(expectSameBits(breakWithModule(lines), expected, lines)) << round;
      pieces += expected.size();
    }
  }
  EXPECT_GT(pieces, 50u);
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

/// The pieces line by line, in the numbering of another order of the same lines.
std::vector<Piece> renumbered(std::vector<Piece> pieces, const std::vector<std::size_t>& indices) {
  for (Piece& piece : pieces) {
    piece.source = indices[piece.source];
  }
  std::stable_sort(pieces.begin(), pieces.end(),
                   [](const Piece& a, const Piece& b) { return a.source < b.source; });
  return pieces;
}

TEST(BreakWallLaws, TheOrderOfTheLinesDecidesOnlyTheOrderOfTheResult) {
  RunningHost host;
  std::mt19937_64 random(24);
  for (int round = 0; round < 300; ++round) {
    // Cuts that are nearly one point may be merged in either order; whole coordinates are not.
    const std::vector<WallLineLikeSeg> lines = quoin::test::cityBlock(random);
    std::vector<std::size_t> indices(lines.size());
    std::iota(indices.begin(), indices.end(), 0u);
    std::shuffle(indices.begin(), indices.end(), random);
    std::vector<WallLineLikeSeg> permuted;
    for (const std::size_t index : indices) {
      permuted.push_back(lines[index]);
    }
    ASSERT_NO_FATAL_FAILURE(expectSameBits(renumbered(breakWithModule(permuted), indices),
                                           breakWithModule(lines), lines));
  }
}

TEST(BreakWallLaws, ALineTurnedRoundGivesTheSamePiecesTurnedRound) {
  RunningHost host;
  std::mt19937_64 random(26);
  for (int round = 0; round < 300; ++round) {
    std::vector<WallLineLikeSeg> lines = quoin::test::cityBlock(random);
    const std::vector<Piece> before = breakWithModule(lines);
    for (WallLineLikeSeg& line : lines) {
      std::swap(line.ptStart, line.ptEnd);
    }
    std::vector<Piece> after = breakWithModule(lines);
    ASSERT_EQ(before.size(), after.size());
    ASSERT_GT(before.size(), 0u);
    std::reverse(after.begin(), after.end());
    std::stable_sort(after.begin(), after.end(),
                     [](const Piece& a, const Piece& b) { return a.source < b.source; });
    for (std::size_t i = 0; i < before.size(); ++i) {
      ASSERT_EQ(before[i].source, after[i].source);
      ASSERT_LT(before[i].ptStart.distanceTo(after[i].ptEnd), 1e-9) << asInput(lines);
      ASSERT_LT(before[i].ptEnd.distanceTo(after[i].ptStart), 1e-9) << asInput(lines);
    }
  }
}

TEST(BreakWallLaws, TurningRoundALineThatIsAsNearWithBothEndsMovesTheCut) {
  // The tie goes to the end point, so there the direction counts.
  RunningHost host;
  std::vector<WallLineLikeSeg> lines{{{0, 0, 0}, {1000, 0, 0}}, {{400, 5, 0}, {600, 5, 0}}};
  EXPECT_EQ(joined(asLines(breakWithModule(lines))), "piece 0: 0,0 600,0\npiece 0: 600,0 1000,0\n");
  std::swap(lines[1].ptStart, lines[1].ptEnd);
  EXPECT_EQ(joined(asLines(breakWithModule(lines))), "piece 0: 0,0 400,0\npiece 0: 400,0 1000,0\n");
}

TEST(BreakWallSpeed, TenThousandLinesBreakInSeconds) {
  RunningHost host;
  std::mt19937_64 random(27);
  std::uniform_int_distribution<int> coordinate(0, 5000);
  std::vector<WallLineLikeSeg> lines;
  for (int i = 0; i < 10000; ++i) {
    const double x = 100.0 * coordinate(random);
    const double y = 100.0 * coordinate(random);
    const double length = 100.0 * (1 + coordinate(random) % 40);
    const bool isVertical = coordinate(random) % 2 == 0;
    lines.emplace_back(AcGePoint3d(x, y, 0),
                       isVertical ? AcGePoint3d(x, y + length, 0) : AcGePoint3d(x + length, y, 0));
  }
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_GT(breakWithModule(lines).size(), 0u);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  // It takes a fraction of a second; the bound leaves room for slow machines and sanitizers.
  EXPECT_LT(seconds.count(), 20.0);
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
