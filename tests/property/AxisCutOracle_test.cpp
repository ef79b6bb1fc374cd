// The trimming of axis lines against its direct form, bit for bit, and its laws.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "oracle/AxisCutOracle.h"
#include "support/CorpusText.h"
#include "support/SameBits.h"
#include "support/WallLineSets.h"

namespace {

using quoin::test::asInput;
using quoin::test::asLines;
using quoin::test::cutAxesWithModule;
using quoin::test::joined;
using quoin::test::sameLines;

using Axes = std::vector<std::optional<AxisLikeLineSeg>>;

/// Random lines, one in twenty missing.
Axes randomAxes(std::mt19937_64& random, int count) {
  Axes axes;
  for (const WallLineLikeSeg& line : quoin::test::randomWallLines(random, count)) {
    axes.push_back(AxisLikeLineSeg{line.ptStart, line.ptEnd});
    if (random() % 20 == 0) {
      axes.back().reset();
    }
  }
  return axes;
}

void expectSameBits(const Axes& axes) {
  const auto expected = quoin::oracle::cutAxisLines(axes);
  const auto actual = cutAxesWithModule(axes);
  ASSERT_TRUE(sameLines(actual, expected)) << asInput(axes) << "=>\n"
                                           << joined(asLines(expected)) << "but:\n"
                                           << joined(asLines(actual));
}

TEST(AxisCutOracle, SmallSetsOfEveryKindGiveTheSameBits) {
  std::mt19937_64 random(50);
  for (int round = 0; round < 8000; ++round) {
    ASSERT_NO_FATAL_FAILURE(expectSameBits(randomAxes(random, 1 + round % 12))) << round;
  }
}

TEST(AxisCutOracle, LargeSetsGiveTheSameBits) {
  std::mt19937_64 random(51);
  for (int round = 0; round < 20; ++round) {
    ASSERT_NO_FATAL_FAILURE(expectSameBits(randomAxes(random, 300))) << round;
  }
}

/// Horizontal and vertical axes on a lattice: ends on other axes, short of them or past them by
/// about the point tolerance, crossings as near to each other, the odd slanted line and other
/// height.
Axes latticeAxes(std::mt19937_64& random, int count) {
  const double slops[] = {0.0,    0.0,  0.0,   1e-11, -1e-10, 1e-10,
                          -2e-10, 1e-9, -5e-9, 1e-8,  0.3,    -0.3};
  std::uniform_int_distribution<int> cell(-3, 3);
  std::uniform_int_distribution<int> die(0, 19);
  const double offset = die(random) == 0 ? 1e6 : 0.0;
  const auto at = [&] { return offset + 10.0 * cell(random) + slops[random() % 12]; };
  Axes axes;
  for (int i = 0; i < count; ++i) {
    AxisLikeLineSeg axis{{at(), at(), 0.0}, {at(), at(), 0.0}};
    const int kind = die(random);
    if (kind < 9) {
      axis.ptEnd.y = axis.ptStart.y;
    } else if (kind < 18) {
      axis.ptEnd.x = axis.ptStart.x;
    }
    if (die(random) == 0) {
      axis.ptStart.z = axis.ptEnd.z = 1e-10 * cell(random);
    }
    axes.push_back(axis);
  }
  return axes;
}

TEST(AxisCutOracle, GridsWithCrossingsAndEndsAboutTheToleranceApartGiveTheSameBits) {
  std::mt19937_64 random(57);
  for (int round = 0; round < 12000; ++round) {
    ASSERT_NO_FATAL_FAILURE(expectSameBits(latticeAxes(random, 2 + round % 14))) << round;
  }
  for (int round = 0; round < 30; ++round) {
    ASSERT_NO_FATAL_FAILURE(expectSameBits(latticeAxes(random, 200))) << round;
  }
}

/// A grid of axes that run past each other, somewhat askew, each in either direction.
Axes grid(std::mt19937_64& random) {
  std::uniform_real_distribution<double> slop(-300.0, 300.0);
  Axes axes;
  for (int i = 0; i < 5; ++i) {
    const double at = 3000.0 * i;
    axes.push_back(AxisLikeLineSeg{{at + slop(random), -2000, 0}, {at + slop(random), 14000, 0}});
    axes.push_back(AxisLikeLineSeg{{-2000, at + slop(random), 0}, {14000, at + slop(random), 0}});
  }
  for (auto& axis : axes) {
    if (random() & 1) {
      std::swap(axis->ptStart, axis->ptEnd);
    }
  }
  return axes;
}

TEST(AxisCutLaws, ResultsLieWithinTheirLinesAndKeepTheirDirection) {
  std::mt19937_64 random(52);
  for (int round = 0; round < 300; ++round) {
    const Axes axes = grid(random);
    const auto results = cutAxesWithModule(axes);
    ASSERT_EQ(results.size(), axes.size());
    for (std::size_t i = 0; i < axes.size(); ++i) {
      const AcGeVector3d along = axes[i]->ptEnd - axes[i]->ptStart;
      ASSERT_GT((results[i].ptEnd - results[i].ptStart).dotProduct(along), 0.0);
      ASSERT_GT((results[i].ptStart - axes[i]->ptStart).dotProduct(along), 0.0);
      ASSERT_GT((axes[i]->ptEnd - results[i].ptEnd).dotProduct(along), 0.0);
    }
  }
}

TEST(AxisCutLaws, CuttingTheResultsAgainChangesNothing) {
  std::mt19937_64 random(53);
  for (int round = 0; round < 300; ++round) {
    const auto once = cutAxesWithModule(grid(random));
    const auto twice = cutAxesWithModule(Axes(once.begin(), once.end()));
    for (std::size_t i = 0; i < once.size(); ++i) {
      ASSERT_LT(once[i].ptStart.distanceTo(twice[i].ptStart), 1e-9);
      ASSERT_LT(once[i].ptEnd.distanceTo(twice[i].ptEnd), 1e-9);
    }
  }
}

TEST(AxisCutLaws, TheOrderOfTheLinesDecidesOnlyTheOrderOfTheResults) {
  std::mt19937_64 random(54);
  for (int round = 0; round < 300; ++round) {
    Axes axes = grid(random);
    auto before = cutAxesWithModule(axes);
    std::reverse(axes.begin(), axes.end());
    const auto after = cutAxesWithModule(axes);
    std::reverse(before.begin(), before.end());
    ASSERT_TRUE(sameLines(before, after)) << asInput(axes);
  }
}

TEST(AxisCutLaws, ALineTurnedRoundGivesItsResultTurnedRound) {
  std::mt19937_64 random(55);
  for (int round = 0; round < 300; ++round) {
    Axes axes = grid(random);
    const auto before = cutAxesWithModule(axes);
    for (auto& axis : axes) {
      std::swap(axis->ptStart, axis->ptEnd);
    }
    const auto after = cutAxesWithModule(axes);
    for (std::size_t i = 0; i < before.size(); ++i) {
      ASSERT_LT(before[i].ptStart.distanceTo(after[i].ptEnd), 1e-8);
      ASSERT_LT(before[i].ptEnd.distanceTo(after[i].ptStart), 1e-8);
    }
  }
}

TEST(AxisCutLaws, MovedRotatedOrMirroredTheSameCutsAreMade) {
  std::mt19937_64 random(56);
  for (int round = 0; round < 300; ++round) {
    const Axes axes = grid(random);
    const auto before = cutAxesWithModule(axes);
    for (const AcGeMatrix3d& motion :
         {AcGeMatrix3d().setToTranslation(AcGeVector3d(1e6, -1e6, 0)),
          AcGeMatrix3d().setToRotation(0.37, AcGeVector3d::kZAxis),
          AcGeMatrix3d().setToMirroring(AcGePoint3d(), AcGeVector3d(1, 2, 0))}) {
      Axes moved;
      for (const auto& axis : axes) {
        moved.push_back(AxisLikeLineSeg{motion * axis->ptStart, motion * axis->ptEnd});
      }
      const auto after = cutAxesWithModule(moved);
      for (std::size_t i = 0; i < before.size(); ++i) {
        ASSERT_LT((motion * before[i].ptStart).distanceTo(after[i].ptStart), 1e-7);
        ASSERT_LT((motion * before[i].ptEnd).distanceTo(after[i].ptEnd), 1e-7);
      }
    }
  }
}

}  // namespace
