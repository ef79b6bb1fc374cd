// The merges of gouge and wall lines against their direct forms, bit for bit, and their laws.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "support/CorpusText.h"
#include "support/RunningHost.h"
#include "support/SameBits.h"
#include "support/WallLineSets.h"

namespace {

using quoin::oracle::GougeLine;
using quoin::oracle::WallLine;
using quoin::test::asInput;
using quoin::test::asLines;
using quoin::test::joined;
using quoin::test::mergeGougesWithModule;
using quoin::test::mergeWallsWithModule;
using quoin::test::RunningHost;
using quoin::test::sameBits;

/// A set with everything that either merge looks at.
struct MergeSet {
  std::vector<WallLine> walls;
  std::vector<GougeLine> gouges;
  std::vector<AcGePoint3d> breakPoints;

  void add(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd) {
    WallLine wall;
    wall.ptStart = ptStart;
    wall.ptEnd = ptEnd;
    walls.push_back(wall);
    GougeLine gouge;
    gouge.ptStart = ptStart;
    gouge.ptEnd = ptEnd;
    gouges.push_back(gouge);
  }
  std::string text() const {
    std::string result = asInput(walls);
    for (const AcGePoint3d& pt : breakPoints) {
      result += "break " + quoin::test::text(pt) + "\n";
    }
    return result;
  }
};

/// Stretches of a few rows of a lattice that touch, miss or overlap each other by about the
/// touch tolerance of scale 10 (1 unit), some bent, with few different property values.
MergeSet randomChains(std::mt19937_64& random, int count) {
  std::uniform_int_distribution<int> column(0, 7);
  std::uniform_int_distribution<int> row(0, 2);
  std::uniform_int_distribution<int> die(0, 11);
  const double slops[] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.5, -0.5, 0.999999, 1.0, 1e-11, 0.1, -1.0};
  const double values[] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.5e-9, 1.5e-9, 0.0};
  const auto slop = [&] { return slops[die(random)]; };
  const auto value = [&] { return values[die(random)]; };
  MergeSet set;
  for (int i = 0; i < count; ++i) {
    const double y = 40.0 * row(random);
    const double from = 20.0 * column(random);
    AcGePoint3d ptStart(from + slop(), y, 0.0);
    AcGePoint3d ptEnd(from + 20.0 + slop(), y, 0.0);
    switch (die(random)) {
      case 0:
        ptEnd.y += 0.1 * slop();
        break;
      case 1:
        ptEnd.set(ptStart.x, ptStart.y + 20.0, 0.0);  // vertical: makes junctions
        break;
      case 2:
        ptEnd = ptStart;
        break;
      default:
        break;
    }
    if (random() & 1) {
      std::swap(ptStart, ptEnd);
    }
    set.add(ptStart, ptEnd);
    WallLine& wall = set.walls.back();
    wall.side1 = value();
    wall.side2 = value();
    wall.attr1 = value();
    wall.attr2 = value();
    wall.startFixed = die(random) == 0;
    wall.endFixed = die(random) == 0;
    GougeLine& gouge = set.gouges.back();
    gouge.attr1 = value();
    gouge.attr2 = value();
    gouge.attr3 = value();
    if (die(random) == 0) {
      set.breakPoints.push_back(die(random) < 6 ? ptStart : ptEnd);
    }
  }
  return set;
}

/// The line sets of the other algorithms, without property values.
MergeSet randomSet(std::mt19937_64& random, int count) {
  MergeSet set;
  for (const WallLineLikeSeg& line : quoin::test::randomWallLines(random, count)) {
    set.add(line.ptStart, line.ptEnd);
  }
  return set;
}

template <class Line>
void expectSameRecords(const std::vector<Line>& actual, const std::set<std::size_t>& actualResult,
                       const std::vector<Line>& expected,
                       const std::set<std::size_t>& expectedResult, const std::string& input) {
  ASSERT_EQ(actualResult, expectedResult) << input;
  for (std::size_t i = 0; i < actual.size(); ++i) {
    ASSERT_TRUE(quoin::test::sameLine(actual[i], expected[i]))
        << input << joined(asLines(expected, expectedResult));
    ASSERT_EQ(actual[i].merged, expected[i].merged) << input;
  }
}

void expectSameBits(const MergeSet& set, double scale, std::size_t& merges) {
  std::vector<GougeLine> gouges = set.gouges;
  std::vector<GougeLine> gougesExpected = set.gouges;
  const auto gougeResult = mergeGougesWithModule(gouges, set.breakPoints);
  const auto gougeExpected = quoin::oracle::mergeGougeLines(gougesExpected, set.breakPoints, scale);
  ASSERT_NO_FATAL_FAILURE(expectSameRecords(gouges, gougeResult, gougesExpected, gougeExpected,
                                            asInput(set.gouges) + set.text()));

  std::vector<WallLine> walls = set.walls;
  std::vector<WallLine> wallsExpected = set.walls;
  const auto wallResult = mergeWallsWithModule(walls, set.breakPoints);
  const auto wallExpected = quoin::oracle::mergeWallLines(wallsExpected, set.breakPoints, scale);
  ASSERT_NO_FATAL_FAILURE(
      expectSameRecords(walls, wallResult, wallsExpected, wallExpected, set.text()));
  for (std::size_t i = 0; i < walls.size(); ++i) {
    ASSERT_TRUE(sameBits(walls[i].side1, wallsExpected[i].side1)) << set.text();
    ASSERT_TRUE(sameBits(walls[i].side2, wallsExpected[i].side2)) << set.text();
  }
  merges += gougeExpected.size() + wallExpected.size();
}

TEST(MergeOracle, SmallChainsGiveTheSameBits) {
  RunningHost host{10.0};
  std::mt19937_64 random(60);
  std::size_t merges = 0;
  for (int round = 0; round < 8000; ++round) {
    ASSERT_NO_FATAL_FAILURE(expectSameBits(randomChains(random, 1 + round % 14), 10.0, merges))
        << "round " << round;
  }
  EXPECT_GT(merges, 2000u);  // the sets do put something to the test
}

TEST(MergeOracle, SetsOfEveryKindAtEveryScaleGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(61);
  std::size_t merges = 0;
  for (int round = 0; round < 2000; ++round) {
    const MergeSet set =
        round % 2 ? randomSet(random, 2 + round % 12) : randomChains(random, 2 + round % 12);
    for (const double scale : quoin::test::projectScales()) {
      host.setScale(scale);
      ASSERT_NO_FATAL_FAILURE(expectSameBits(set, scale, merges))
          << "round " << round << ", scale " << scale;
    }
  }
  EXPECT_GT(merges, 1000u);
}

TEST(MergeOracle, LargeSetsGiveTheSameBits) {
  RunningHost host{10.0};
  std::mt19937_64 random(62);
  std::size_t merges = 0;
  for (int round = 0; round < 6; ++round) {
    ASSERT_NO_FATAL_FAILURE(expectSameBits(randomSet(random, 300), 10.0, merges));
    ASSERT_NO_FATAL_FAILURE(expectSameBits(randomChains(random, 300), 10.0, merges));
  }
}

/// Many long chains at all angles, some of whose links do not quite meet or agree, in random order
/// and orientation.
MergeSet longChains(std::mt19937_64& random) {
  std::uniform_real_distribution<double> anywhere(-1e4, 1e4);
  std::uniform_real_distribution<double> length(20.0, 90.0);
  std::vector<std::pair<AcGePoint3d, AcGePoint3d>> links;
  for (int chain = 0; chain < 12; ++chain) {
    const double angle = chain % 3 == 0 ? anywhere(random) : 1.5707963267948966 * (chain % 2);
    const AcGeVector3d along(std::cos(angle), std::sin(angle), 0.0);
    AcGePoint3d pt(anywhere(random), anywhere(random), 0.0);
    for (int link = 0; link < 30; ++link) {
      const AcGePoint3d ptNext = pt + along * length(random);
      links.emplace_back(pt, ptNext);
      pt = random() % 5 == 0 ? ptNext + along * 0.9 : ptNext;
      if (random() % 12 == 0) {
        pt = ptNext + along * 1.1;  // beyond the tolerance
      }
    }
  }
  std::shuffle(links.begin(), links.end(), random);
  MergeSet set;
  for (auto& [ptStart, ptEnd] : links) {
    if (random() & 1) {
      std::swap(ptStart, ptEnd);
    }
    set.add(ptStart, ptEnd);
    set.gouges.back().attr2 = random() % 15 == 0 ? 1.0 : 0.0;
    set.walls.back().endFixed = random() % 15 == 0;
    if (random() % 20 == 0) {
      set.breakPoints.push_back(ptStart);
    }
  }
  return set;
}

TEST(MergeOracle, LongChainsGiveTheSameBits) {
  RunningHost host{10.0};
  std::mt19937_64 random(66);
  std::size_t merges = 0;
  for (int round = 0; round < 20; ++round) {
    ASSERT_NO_FATAL_FAILURE(expectSameBits(longChains(random), 10.0, merges)) << round;
  }
  EXPECT_GT(merges, 1000u);
}

TEST(MergeOracle, UnevenSetsGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(67);
  std::size_t merges = 0;
  for (int kind = 0; kind < quoin::test::kUnevenKinds; ++kind) {
    MergeSet set;
    for (const auto& line : quoin::test::unevenWallLines(random, kind, 200)) {
      set.add(line.ptStart, line.ptEnd);
    }
    for (const double scale : {1.0, 1000.0}) {
      host.setScale(scale);
      ASSERT_NO_FATAL_FAILURE(expectSameBits(set, scale, merges)) << kind;
    }
  }
}

TEST(MergeOracle, SetsAtTheEndsOfTheNumbersGiveTheSameBits) {
  RunningHost host;
  std::mt19937_64 random(68);
  std::size_t merges = 0;
  for (int round = 0; round < 1000; ++round) {
    MergeSet set;
    for (const auto& line : quoin::test::extremeWallLines(random, 2 + round % 20)) {
      set.add(line.ptStart, line.ptEnd);
    }
    for (const double scale : quoin::test::projectScales()) {
      host.setScale(scale);
      ASSERT_NO_FATAL_FAILURE(expectSameBits(set, scale, merges)) << round;
    }
  }
  EXPECT_GT(merges, 100u);
}

TEST(MergeLaws, ARecordWithoutNumbersThatStandsTwiceChangesNothingForTheOthers) {
  // With it every search is made anew instead of once for all.
  RunningHost host{10.0};
  std::mt19937_64 random(68);
  std::size_t results = 0;
  for (int round = 0; round < 500; ++round) {
    const MergeSet set = randomChains(random, 2 + round % 14);
    std::vector<GougeLine> plain = set.gouges;
    const std::set<std::size_t> expected = mergeGougesWithModule(plain, set.breakPoints);

    CMergeGougeAlgorithm algorithm;
    std::vector<MergeGougeSeg*>& records = algorithm.GetSrcGougeLines();
    for (const GougeLine& line : set.gouges) {
      records.push_back(
          new MergeGougeSeg{line.ptStart, line.ptEnd, line.attr1, line.attr2, line.attr3, {}});
    }
    for (const AcGePoint3d& pt : set.breakPoints) {
      algorithm.AppendBreakPnt(pt);
    }
    MergeGougeSeg noNumbers;
    noNumbers.ptStart.set(std::nan(""), 0.0, 0.0);
    noNumbers.ptEnd.set(std::nan(""), 0.0, 0.0);
    records.insert(records.end(), {&noNumbers, &noNumbers});
    algorithm.MergeGougeLines();
    records.resize(set.gouges.size());  // what is taken out is not deleted

    std::set<std::size_t> actual;
    for (std::size_t i = 0; i < records.size(); ++i) {
      ASSERT_TRUE(sameBits(records[i]->ptStart, plain[i].ptStart)) << set.text();
      ASSERT_TRUE(sameBits(records[i]->ptEnd, plain[i].ptEnd)) << set.text();
      if (algorithm.GetMergeGougeLines().count(records[i]) > 0) {
        actual.insert(i);
      }
    }
    ASSERT_EQ(actual, expected) << set.text();
    results += expected.size();
  }
  EXPECT_GT(results, 100u);
}

/// Chains on far rows, each link touching the next exactly, links in random order and orientation.
std::vector<WallLine> cleanChains(std::mt19937_64& random) {
  std::uniform_int_distribution<int> length(1, 6);
  std::vector<WallLine> walls;
  for (int row = 0; row < 4; ++row) {
    double x = 0.0;
    for (int link = length(random); link > 0; --link) {
      const double next = x + 20.0 * length(random);
      WallLine wall;
      wall.ptStart.set(x, 100.0 * row, 0.0);
      wall.ptEnd.set(next, 100.0 * row, 0.0);
      wall.side1 = 3.0;
      wall.side2 = 7.0;
      if (random() & 1) {
        std::swap(wall.ptStart, wall.ptEnd);
        std::swap(wall.side1, wall.side2);
      }
      walls.push_back(wall);
      x = next;
    }
  }
  std::shuffle(walls.begin(), walls.end(), random);
  return walls;
}

/// What the survivors and the untouched records cover: one stretch a row, as text.
std::set<std::string> coverage(const std::vector<WallLine>& walls) {
  std::set<std::size_t> absorbed;
  for (const WallLine& wall : walls) {
    absorbed.insert(wall.merged.begin(), wall.merged.end());
  }
  std::set<std::string> result;
  for (std::size_t i = 0; i < walls.size(); ++i) {
    if (!absorbed.count(i)) {
      const bool leftToRight = walls[i].ptStart.x < walls[i].ptEnd.x;
      const double upper = leftToRight ? walls[i].side1 : walls[i].side2;
      result.insert(leftToRight ? quoin::test::text(walls[i].ptStart, walls[i].ptEnd)
                                : quoin::test::text(walls[i].ptEnd, walls[i].ptStart));
      EXPECT_EQ(upper, 3.0) << "a side value left its side";
    }
  }
  return result;
}

TEST(MergeLaws, EveryCleanChainBecomesOneRecordWhateverTheOrderAndSenseOfItsLinks) {
  RunningHost host{10.0};
  std::mt19937_64 random(63);
  for (int round = 0; round < 500; ++round) {
    std::vector<WallLine> walls = cleanChains(random);
    std::vector<WallLine> permuted = walls;
    std::shuffle(permuted.begin(), permuted.end(), random);
    mergeWallsWithModule(walls, {});
    mergeWallsWithModule(permuted, {});
    ASSERT_EQ(coverage(walls).size(), 4u);  // one a row
    ASSERT_EQ(coverage(walls), coverage(permuted)) << asInput(walls);
  }
}

TEST(MergeLaws, MergingAgainChangesNothing) {
  RunningHost host{10.0};
  std::mt19937_64 random(64);
  for (int round = 0; round < 200; ++round) {
    CMergeWallAlgorithm algorithm;
    for (const WallLine& wall : cleanChains(random)) {
      MergeWallSeg* record = new MergeWallSeg();
      record->ptStart = wall.ptStart;
      record->ptEnd = wall.ptEnd;
      algorithm.GetSrcWallLines().push_back(record);
    }
    // Only what is left takes part again, as for a caller who has redrawn the result.
    algorithm.MergeWallLines();
    const std::set<MergeWallSeg*> once = algorithm.GetMergeWallLines();
    std::vector<MergeWallSeg*>& records = algorithm.GetSrcWallLines();
    std::set<MergeWallSeg*> absorbed;
    for (const MergeWallSeg* record : once) {
      absorbed.insert(record->mergedSegs.begin(), record->mergedSegs.end());
    }
    std::vector<MergeWallSeg*> all = records;
    std::erase_if(records, [&](MergeWallSeg* record) { return absorbed.count(record) > 0; });
    algorithm.MergeWallLines();
    EXPECT_EQ(algorithm.GetMergeWallLines(), once);
    records = all;  // for the destructor
  }
}

TEST(MergeLaws, TheOrderDecidesWhichRecordSurvivesAndHowItRuns) {
  RunningHost host{10.0};
  std::vector<GougeLine> lines(2);
  lines[0].ptEnd.x = lines[1].ptStart.x = 10.0;
  lines[1].ptEnd.x = 20.0;
  std::vector<GougeLine> reversed{lines[1], lines[0]};
  EXPECT_EQ(joined(asLines(lines, mergeGougesWithModule(lines, {}))), "merged 1: 20,0 0,0 <- 0\n");
  EXPECT_EQ(joined(asLines(reversed, mergeGougesWithModule(reversed, {}))),
            "merged 1: 0,0 20,0 <- 0\n");
}

TEST(MergeLaws, MovedRotatedOrMirroredTheSameRecordsMerge) {
  RunningHost host{10.0};
  std::mt19937_64 random(65);
  for (int round = 0; round < 200; ++round) {
    const std::vector<WallLine> walls = cleanChains(random);
    std::vector<GougeLine> here;
    for (const WallLine& wall : walls) {
      here.push_back({wall.ptStart, wall.ptEnd, 0, 0, 0, {}});
    }
    const std::vector<GougeLine> source = here;
    const auto before = mergeGougesWithModule(here, {});
    for (const AcGeMatrix3d& motion :
         {AcGeMatrix3d().setToTranslation(AcGeVector3d(1e6, -1e6, 0)),
          AcGeMatrix3d().setToRotation(0.37, AcGeVector3d::kZAxis),
          AcGeMatrix3d().setToMirroring(AcGePoint3d(), AcGeVector3d(1, 2, 0))}) {
      std::vector<GougeLine> there = source;
      for (GougeLine& line : there) {
        line.ptStart = motion * line.ptStart;
        line.ptEnd = motion * line.ptEnd;
      }
      ASSERT_EQ(mergeGougesWithModule(there, {}), before);
      for (std::size_t i = 0; i < here.size(); ++i) {
        ASSERT_EQ(there[i].merged, here[i].merged);
        ASSERT_LT((motion * here[i].ptStart).distanceTo(there[i].ptStart), 1e-8);
      }
    }
  }
}

}  // namespace
