#include "plan/CleanLines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <random>
#include <string>

#include "support/GeometryText.h"
#include "support/RunningHost.h"

namespace {

using namespace quoin::plan;

/// Millimetres: 5 to snap, 20 to reach, as the program has them.
CleanOptions usual() {
  CleanOptions options;
  options.snap = 5.0;
  options.reach = 20.0;
  options.spur = 20.0;
  return options;
}

std::vector<CleanLine> linesOf(std::string_view text) {
  std::vector<CleanLine> lines;
  for (const auto& [start, end] : quoin::test::segments(text)) {
    lines.push_back({{start.x, start.y}, {end.x, end.y}});
  }
  return lines;
}

/// Without regard to order and direction; coordinates to a thousandth.
std::string textOf(std::vector<std::pair<AcGePoint2d, AcGePoint2d>> lines) {
  const auto rounded = [](const AcGePoint2d& at) {
    const auto round = [](double value) { return std::round(value * 1000.0) / 1000.0 + 0.0; };
    return AcGePoint2d(round(at.x), round(at.y));
  };
  const auto isBefore = [](const AcGePoint2d& a, const AcGePoint2d& b) {
    return a.x != b.x ? a.x < b.x : a.y < b.y;
  };
  for (auto& [start, end] : lines) {
    start = rounded(start);
    end = rounded(end);
    if (isBefore(end, start)) {
      std::swap(start, end);
    }
  }
  std::sort(lines.begin(), lines.end(), [&](const auto& a, const auto& b) {
    return isBefore(a.first, b.first) ||
           (!isBefore(b.first, a.first) && isBefore(a.second, b.second));
  });
  std::string text;
  for (const auto& [start, end] : lines) {
    text += (text.empty() ? "" : "; ") + quoin::test::text(AcGePoint3d(start.x, start.y, 0.0)) +
            " " + quoin::test::text(AcGePoint3d(end.x, end.y, 0.0));
  }
  return text;
}

std::string textOf(const CleanResult& result) {
  std::vector<std::pair<AcGePoint2d, AcGePoint2d>> lines;
  for (const CleanedLine& line : result.lines) {
    lines.emplace_back(line.start, line.end);
  }
  return textOf(lines);
}

class Clean : public testing::Test {
 protected:
  std::string clean(std::string_view lines, const CleanOptions& options = usual(),
                    const std::vector<AcGePoint2d>& anchors = {}) {
    result = cleanLines(linesOf(lines), options, anchors);
    return textOf(result);
  }
  std::size_t count(CleanStep step) const {
    return static_cast<std::size_t>(
        std::count_if(result.actions.begin(), result.actions.end(),
                      [&](const CleanAction& action) { return action.step == step; }));
  }

  quoin::test::RunningHost m_host{2.0};  // touching within 5
  CleanResult result;
};

// --- what is clean stays -----------------------------------------------------------------------

TEST_F(Clean, NothingStaysNothing) {
  EXPECT_EQ(clean(""), "");
  EXPECT_TRUE(result.isSettled);
}

TEST_F(Clean, FacesOfAWallWithADoorStayAsTheyAre) {
  // Two faces 100 apart with jambs about a door of 800, and a corner.
  const std::string plan =
      "0,0 0,1000; 0,0 3000,0; 100,100 100,1000; 100,100 1000,100; 1000,0 1000,100; "
      "1800,0 1800,100; 1800,100 3000,100; 3000,0 3000,100";
  EXPECT_EQ(clean(plan), plan);
  EXPECT_TRUE(result.actions.empty());
  EXPECT_TRUE(result.undecided.empty());
}

TEST_F(Clean, TheFacesOfAThinWallKeepApart) {
  const std::string plan = "0,0 3000,0; 0,40 3000,40";
  EXPECT_EQ(clean(plan), plan);
}

TEST_F(Clean, AFreeEndOfAWallStaysFree) {
  const std::string plan = "0,0 3000,0; 1000,0 1000,2000";
  EXPECT_EQ(clean(plan), plan);
}

TEST_F(Clean, AGapInARowThatIsWiderThanTheToleranceStays) {
  const std::string plan = "0,0 1000,0; 1006,0 2000,0";
  EXPECT_EQ(clean(plan), plan);
}

// --- snapping ----------------------------------------------------------------------------------

TEST_F(Clean, TwoEndsAtACornerMoveToWhereTheirLinesCross) {
  EXPECT_EQ(clean("3,0 1000,0; 0,-2 0,1000"), "0,0 0,1000; 0,0 1000,0");
  EXPECT_EQ(count(CleanStep::Snap), 2u);
}

TEST_F(Clean, AnEndNextToACornerMovesOntoIt) {
  EXPECT_EQ(clean("0,0 1000,0; 0,0 0,1000; -1000,3 -2,3"), "-1000,3 0,0; 0,0 0,1000; 0,0 1000,0");
  EXPECT_EQ(count(CleanStep::Snap), 1u);
}

TEST_F(Clean, ASmallGapInARowIsClosedAndThePiecesJoined) {
  EXPECT_EQ(clean("0,0 1000,0; 1004,0 2000,0"), "0,0 2000,0");
  EXPECT_EQ(count(CleanStep::Join), 1u);
}

TEST_F(Clean, AnEndWithTwoCornersNextToItIsUndecided) {
  const std::string plan = "-1000,0 0,0; 3,-1000 3,-2; 3,-2 1000,-300; 3,2 3,1000; 3,2 1000,300";
  CleanOptions options = usual();
  options.reach = 0.0;
  EXPECT_EQ(clean(plan, options), plan);
  ASSERT_EQ(result.undecided.size(), 1u);
  EXPECT_EQ(result.undecided[0].kind, UndecidedKind::SeveralEnds);
  EXPECT_EQ(result.undecided[0].line, 0u);
}

TEST_F(Clean, ARowOfEndsWithoutAMiddleIsUndecided) {
  clean("0,0 0,1000; 4,0 8,-1000; 8,0 1000,1000; 12,0 1000,0");
  EXPECT_EQ(result.undecided.size(), 4u);
  EXPECT_TRUE(result.actions.empty());
}

TEST_F(Clean, EndsMoveOntoAnchors) {
  EXPECT_EQ(clean("3,0 1000,0", usual(), {{0.0, 1.0}}), "0,1 1000,0");
}

TEST_F(Clean, FixedEndsAreMetAndDoNotMove) {
  std::vector<CleanLine> lines = linesOf("0,0 1000,0; 3,3 0,1000");
  lines[0].isStartFixed = lines[0].isEndFixed = lines[0].isKept = true;
  EXPECT_EQ(textOf(cleanLines(lines, usual())), "0,0 0,1000; 0,0 1000,0");
}

// --- junctions ---------------------------------------------------------------------------------

TEST_F(Clean, AnEndShortOfALineIsExtendedToIt) {
  EXPECT_EQ(clean("0,0 3000,0; 1000,15 1000,2000"), "0,0 3000,0; 1000,0 1000,2000");
  EXPECT_EQ(count(CleanStep::Extend), 1u);
}

TEST_F(Clean, AnEndFartherThanTheReachStays) {
  const std::string plan = "0,0 3000,0; 1000,20.5 1000,2000";
  EXPECT_EQ(clean(plan), plan);
}

TEST_F(Clean, AnOvershootIsTrimmed) {
  EXPECT_EQ(clean("0,0 3000,0; 1000,-15 1000,2000"), "0,0 3000,0; 1000,0 1000,2000");
  EXPECT_EQ(count(CleanStep::Trim), 1u);
}

TEST_F(Clean, ACornerWithAGapAndOneWithOvershootsAreClosed) {
  EXPECT_EQ(clean("15,0 1000,0; 0,18 0,1000"), "0,0 0,1000; 0,0 1000,0");
  EXPECT_EQ(clean("-15,0 1000,0; 0,-18 0,1000"), "0,0 0,1000; 0,0 1000,0");
  EXPECT_EQ(clean("-15,0 1000,0; 0,18 0,1000"), "0,0 0,1000; 0,0 1000,0");
}

TEST_F(Clean, FourEndsAboutACrossingMeetInIt) {
  EXPECT_EQ(clean("-1000,0 -15,0; 15,0 1000,0; 0,-1000 0,-12; 0,12 0,1000"),
            "-1000,0 0,0; 0,-1000 0,0; 0,0 0,1000; 0,0 1000,0");
}

TEST_F(Clean, EndsOnBothSidesOfALineMeetIt) {
  EXPECT_EQ(clean("-1000,0 -15,0; 15,0 1000,0; 0,-1000 0,1000"),
            "-1000,0 0,0; 0,-1000 0,1000; 0,0 1000,0");
}

TEST_F(Clean, AnEndThatMeetsLinesAtTwoPlacesIsUndecided) {
  const std::string plan = "-1000,1500 -3,1500; 0,0 0,3000; 12,0 12,3000";
  EXPECT_EQ(clean(plan), plan);
  ASSERT_EQ(result.undecided.size(), 1u);
  EXPECT_EQ(result.undecided[0].kind, UndecidedKind::SeveralPlaces);
  EXPECT_EQ(result.undecided[0].at.x, -3.0);
}

TEST_F(Clean, AStubThatAnotherLineEndsOnIsTrimmedToThatLineAlone) {
  EXPECT_EQ(clean("0,0 3000,0; 1000,-18 1000,2000; 1000,-10 1500,-700"),
            "0,0 3000,0; 1000,-10 1000,2000; 1000,-10 1500,-700");
}

TEST_F(Clean, ParallelLinesHaveNoCorner) {
  const std::string plan = "0,0 1000,0; 1010,10 2000,30";
  EXPECT_EQ(clean(plan), plan);
}

// --- duplicates --------------------------------------------------------------------------------

TEST_F(Clean, OfLinesWithTheSameEndsTheFirstStays) {
  EXPECT_EQ(clean("0,0 1000,0; 1000,0 0,0; 0,0 1000,0"), "0,0 1000,0");
  EXPECT_EQ(result.lines[0].line, 0u);
  EXPECT_EQ(count(CleanStep::Duplicate), 2u);
}

TEST_F(Clean, ALineWithinAnotherIsRemoved) {
  EXPECT_EQ(clean("200,1 800,-2; 0,0 1000,0"), "0,0 1000,0");
  EXPECT_EQ(result.actions[0].survivor, 1u);
}

TEST_F(Clean, OverlappingLinesBecomeOne) {
  EXPECT_EQ(clean("0,0 1000,0; 900,0 2000,0; 2500,0 1900,0"), "0,0 2500,0");
  EXPECT_EQ(count(CleanStep::Overlap), 2u);
}

TEST_F(Clean, DuplicatesWithOtherPropertiesAreUndecidedUnlessKeysAreIgnored) {
  std::vector<CleanLine> lines = linesOf("0,0 1000,0; 0,0 1000,0; 0,500 1000,500");
  lines[0].key = 1;
  CleanResult kept = cleanLines(lines, usual());
  EXPECT_EQ(kept.lines.size(), 3u);
  ASSERT_EQ(kept.undecided.size(), 1u);
  EXPECT_EQ(kept.undecided[0].kind, UndecidedKind::OtherKey);
  EXPECT_EQ(kept.undecided[0].at.x, 500.0);
  CleanOptions any = usual();
  any.ignoresKeys = true;
  kept = cleanLines(lines, any);
  ASSERT_EQ(kept.lines.size(), 2u);
  EXPECT_EQ(kept.lines[0].line, 1u) << "more lines have its key";
}

TEST_F(Clean, DoubledLinesWithOtherPropertiesReachTheCornerTogether) {
  std::vector<CleanLine> lines = linesOf("15,0 1000,0; 15,0 1000,0; 0,-500 0,500");
  lines[0].key = 1;
  EXPECT_EQ(textOf(cleanLines(lines, usual())), "0,-500 0,500; 0,0 1000,0; 0,0 1000,0");
}

// --- spurs and pieces --------------------------------------------------------------------------

TEST_F(Clean, AShortLineThatSticksOutOfAnotherIsRemoved) {
  EXPECT_EQ(clean("0,0 1000,0; 500,0 505,12"), "0,0 1000,0");
  EXPECT_EQ(count(CleanStep::Spur), 1u);
}

TEST_F(Clean, TheShortLastPieceOfARowIsNoSpur) {
  const std::string plan = "0,0 1000,0; 1000,0 1010,8";
  EXPECT_EQ(clean(plan), plan);
}

TEST_F(Clean, CollinearPiecesAreJoinedAndBentOnesNot) {
  EXPECT_EQ(clean("0,0 1000,0; 1000,0 2000,0; 2000,0 3000,0; 3000,0 4000,100"),
            "0,0 3000,0; 3000,0 4000,100");
}

TEST_F(Clean, PiecesThatAThirdLineMeetsStayApart) {
  const std::string plan = "0,0 1000,0; 1000,0 1000,800; 1000,0 2000,0";
  EXPECT_EQ(clean(plan), plan);
}

TEST_F(Clean, ACurveOfChordsKeepsThem) {
  std::vector<CleanLine> lines;
  for (int i = 0; i < 180; ++i) {
    const auto at = [&](int step) {
      const double angle = step * 3.14159265358979 / 360.0;
      return AcGePoint2d(10000.0 * std::cos(angle), 10000.0 * std::sin(angle));
    };
    lines.push_back({at(i), at(i + 1)});
  }
  EXPECT_EQ(cleanLines(lines, usual()).lines.size(), lines.size());
}

// --- switches and trouble ----------------------------------------------------------------------

TEST_F(Clean, AStepThatIsOffDoesNothing) {
  CleanOptions off;
  off.removesDuplicates = off.joins = false;
  const std::string plan = "0,0 0,1000; 0,0 1000,0; 0,0 1000,0; 3,-500 3,-2; 1000,0 2000,0";
  EXPECT_EQ(clean(plan, off), plan);
  EXPECT_TRUE(result.actions.empty());
}

TEST_F(Clean, HugeCoordinatesPass) {
  for (const double far : {1e9, 1e15, 1e150, 1e300}) {
    std::vector<CleanLine> lines = linesOf("0,0 3000,0; 1000,15 1000,2000");
    for (CleanLine& line : lines) {
      line.start += AcGeVector2d(far, -far);
      line.end += AcGeVector2d(far, far);
    }
    EXPECT_TRUE(cleanLines(lines, usual()).isSettled) << far;
  }
}

TEST_F(Clean, ThousandsOfLinesThroughOnePointPass) {
  std::vector<CleanLine> crossing;
  std::vector<CleanLine> star;
  std::vector<CleanLine> near;
  for (int i = 0; i < 5000; ++i) {
    const double angle = i * 3.14159265358979 / 5000.0;
    const AcGeVector2d along(std::cos(angle), std::sin(angle));
    crossing.push_back({AcGePoint2d() + along * 20000.0, AcGePoint2d() - along * 20000.0});
    star.push_back({AcGePoint2d(), AcGePoint2d() + along * 40000.0});
    near.push_back({AcGePoint2d() + along * 10.0, AcGePoint2d() + along * 40000.0});
  }
  EXPECT_EQ(cleanLines(crossing, usual()).lines.size(), 5000u);
  EXPECT_EQ(cleanLines(star, usual()).lines.size(), 5000u);
  EXPECT_EQ(cleanLines(near, usual()).lines.size(), 5000u);
}

// --- laws, over random plans -------------------------------------------------------------------

/// A plan of rooms in rows, faces and reference lines, with ends off by some millimetres, gaps,
/// overshoots, duplicates, spurs, scribbles and texts drawn as strokes.
class RandomPlan {
 public:
  explicit RandomPlan(std::uint64_t seed, double noise) : m_random(seed), m_noise(noise) {}

  std::vector<CleanLine> make() {
    const int columns = between(1, 5);
    const int rows = between(1, 5);
    const double width = between(0, 1) == 0 ? 0.0 : between(4, 12) * 25.0;
    for (int i = 0; i <= columns; ++i) {
      for (int j = 0; j < rows; ++j) {
        wall({i * 3000.0, j * 2500.0}, {i * 3000.0, (j + 1) * 2500.0}, width);
      }
    }
    for (int j = 0; j <= rows; ++j) {
      for (int i = 0; i < columns; ++i) {
        wall({i * 3000.0, j * 2500.0}, {(i + 1) * 3000.0, j * 2500.0}, width);
      }
    }
    const std::size_t walls = m_lines.size();
    for (std::size_t i = 0; i < walls; ++i) {
      const CleanLine line = m_lines[i];
      const AcGeVector2d way = line.end - line.start;
      switch (between(0, 11)) {
        case 0:
          add(line.start, line.end);
          break;
        case 1:
          add(line.end, line.start + way * 0.4);
          break;
        case 2:
          add(line.start + way * 0.5, line.end + way * 0.2);
          break;
        case 3:
          add(line.start + way * 0.3, line.start + way * 0.3 + AcGeVector2d(way.y, -way.x) * 0.005);
          break;
        default:
          break;
      }
    }
    for (int i = between(0, 30); i-- > 0;) {
      const AcGeVector2d from = twoNumbers();
      const AcGeVector2d way = twoNumbers() - AcGeVector2d(0.5, 0.5);
      const AcGePoint2d start(from.x * 9000.0, from.y * 7500.0);
      add(start, start + way * 120.0);
    }
    return std::move(m_lines);
  }

 private:
  int between(int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(m_random);
  }
  /// Drawn one after the other, as compilers may evaluate arguments in any order.
  AcGeVector2d twoNumbers() {
    const double first = m_uniform(m_random);
    return {first, m_uniform(m_random)};
  }
  AcGePoint2d off(const AcGePoint2d& at) {
    return between(0, 2) == 0 ? at : at + (twoNumbers() * 2.0 - AcGeVector2d(1.0, 1.0)) * m_noise;
  }
  void add(const AcGePoint2d& start, const AcGePoint2d& end) {
    m_lines.push_back({off(start), off(end), static_cast<std::size_t>(between(0, 9) / 8)});
  }
  void wall(const AcGePoint2d& start, const AcGePoint2d& end, double width) {
    if (width == 0.0) {
      add(start, end);
      return;
    }
    const AcGeVector2d along = (end - start) * (1.0 / start.distanceTo(end));
    const AcGeVector2d half = AcGeVector2d(-along.y, along.x) * (0.5 * width);
    const AcGeVector2d in = along * (0.5 * width);
    add(start + in + half, end - in + half);
    add(start + in - half, end - in - half);
  }

  std::mt19937_64 m_random;
  std::uniform_real_distribution<double> m_uniform{0.0, 1.0};
  double m_noise;
  std::vector<CleanLine> m_lines;
};

std::vector<CleanLine> again(const std::vector<CleanLine>& lines, const CleanResult& result) {
  std::vector<CleanLine> next;
  for (const CleanedLine& line : result.lines) {
    next.push_back({line.start, line.end, lines[line.line].key});
  }
  return next;
}

class CleanLaws : public testing::TestWithParam<int> {
 protected:
  /// Runs with every seed over plans whose noise is the parameter.
  template <class Check>
  void forEachPlan(Check check) {
    for (std::uint64_t seed = 1; seed <= 400; ++seed) {
      SCOPED_TRACE("seed " + std::to_string(seed));
      check(RandomPlan(seed, GetParam()).make());
      if (HasFailure()) {
        return;
      }
    }
  }
  quoin::test::RunningHost m_host{2.0};
};

TEST_P(CleanLaws, CleaningTwiceChangesNothing) {
  forEachPlan([](const std::vector<CleanLine>& plan) {
    const CleanResult once = cleanLines(plan, usual());
    EXPECT_TRUE(once.isSettled);
    const CleanResult twice = cleanLines(again(plan, once), usual());
    EXPECT_TRUE(twice.actions.empty()) << textOf(once) << "\n" << textOf(twice);
    EXPECT_EQ(twice.undecided.size(), once.undecided.size());
  });
}

TEST_P(CleanLaws, OrderAndDirectionOfLinesDoNotMatter) {
  std::mt19937_64 random(7);
  forEachPlan([&](const std::vector<CleanLine>& plan) {
    std::vector<CleanLine> other = plan;
    std::shuffle(other.begin(), other.end(), random);
    for (CleanLine& line : other) {
      if (random() % 2 == 0) {
        std::swap(line.start, line.end);
      }
    }
    EXPECT_EQ(textOf(cleanLines(other, usual())), textOf(cleanLines(plan, usual())));
  });
}

/// The same lines, either way round; sums round differently.
void expectSameLines(const CleanResult& result, const CleanResult& expected) {
  const auto isNear = [](const AcGePoint2d& a, const AcGePoint2d& b) {
    return std::fabs(a.x - b.x) < 1e-5 && std::fabs(a.y - b.y) < 1e-5;
  };
  ASSERT_EQ(result.lines.size(), expected.lines.size());
  std::vector<CleanedLine> open = expected.lines;
  for (const CleanedLine& line : result.lines) {
    const auto same = std::find_if(open.begin(), open.end(), [&](const CleanedLine& other) {
      return (isNear(line.start, other.start) && isNear(line.end, other.end)) ||
             (isNear(line.start, other.end) && isNear(line.end, other.start));
    });
    ASSERT_NE(same, open.end()) << textOf(result) << "\nrather than\n" << textOf(expected);
    open.erase(same);
  }
}

TEST_P(CleanLaws, ItTurnsAndMirrorsAndShiftsWithThePlan) {
  const std::vector<AcGePoint2d (*)(const AcGePoint2d&)> ways{
      [](const AcGePoint2d& at) { return AcGePoint2d(-at.y, at.x); },
      [](const AcGePoint2d& at) { return AcGePoint2d(-at.x, at.y); },
      [](const AcGePoint2d& at) { return AcGePoint2d(at.y, at.x); },
      [](const AcGePoint2d& at) { return AcGePoint2d(at.x + 12345.5, at.y - 54321.25); }};
  forEachPlan([&](const std::vector<CleanLine>& plan) {
    const CleanResult straight = cleanLines(plan, usual());
    for (const auto& way : ways) {
      std::vector<CleanLine> other = plan;
      for (CleanLine& line : other) {
        line.start = way(line.start);
        line.end = way(line.end);
      }
      CleanResult expected = straight;
      for (CleanedLine& line : expected.lines) {
        line.start = way(line.start);
        line.end = way(line.end);
      }
      const CleanResult turned = cleanLines(other, usual());
      expectSameLines(turned, expected);
      EXPECT_EQ(turned.undecided.size(), straight.undecided.size());
    }
  });
}

TEST_P(CleanLaws, NoEndMovesFartherThanTheReach) {
  forEachPlan([](const std::vector<CleanLine>& plan) {
    const CleanResult result = cleanLines(plan, usual());
    const double most = usual().reach + usual().snap + 1e-6;
    std::vector<bool> hasGrown(plan.size(), false);
    for (const CleanAction& action : result.actions) {
      if (action.step == CleanStep::Snap) {
        EXPECT_LE(action.from.distanceTo(action.to), usual().snap + 1e-6);
      } else if (action.step == CleanStep::Extend || action.step == CleanStep::Trim) {
        EXPECT_LE(action.from.distanceTo(action.to), usual().reach + 1e-6);
      } else {
        hasGrown[action.survivor] = true;
      }
    }
    for (const CleanedLine& line : result.lines) {
      if (!hasGrown[line.line]) {
        EXPECT_LE(line.start.distanceTo(plan[line.line].start), most);
        EXPECT_LE(line.end.distanceTo(plan[line.line].end), most);
      }
    }
  });
}

INSTANTIATE_TEST_SUITE_P(Noise, CleanLaws, testing::Values(0, 2, 4, 15),
                         testing::PrintToStringParamName());

/// What cleaning takes; printed, and run where it is asked for (--gtest_also_run_disabled_tests).
TEST_F(Clean, DISABLED_Measure) {
  for (const std::size_t wanted : {100'000U, 1'000'000U}) {
    std::vector<CleanLine> lines;
    for (std::uint64_t seed = 1; lines.size() < wanted; ++seed) {
      const std::uint64_t row = seed / 100;
      const AcGeVector2d shift(static_cast<double>(seed % 100) * 20000.0,
                               static_cast<double>(row) * 20000.0);
      for (CleanLine line : RandomPlan(seed, 4.0).make()) {
        line.start += shift;
        line.end += shift;
        lines.push_back(line);
      }
    }
    for (const bool isClean : {false, true}) {
      const std::clock_t begin = std::clock();
      result = cleanLines(lines, usual());
      std::printf("%zu %s lines: %.2f s of CPU, %zu actions, %zu undecided\n", lines.size(),
                  isClean ? "clean" : "noisy",
                  static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC, result.actions.size(),
                  result.undecided.size());
      lines = again(lines, result);
    }
  }
}

}  // namespace
