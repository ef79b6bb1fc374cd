// The index of end points: what a search hands out, and that it never leaves out an end that the
// exact test accepts.
#include "EndPointIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "gelnsg3d.h"
#include "support/GeometryText.h"
#include "support/WallLineSets.h"

namespace {

using quoin::test::point;
using quoin::test::text;

const double kInfinity = std::numeric_limits<double>::infinity();
const double kNoNumber = std::nan("");

std::vector<WallLineLikeSeg*> pointersTo(std::vector<WallLineLikeSeg>& lines) {
  std::vector<WallLineLikeSeg*> pointers;
  for (WallLineLikeSeg& line : lines) {
    pointers.push_back(&line);
  }
  return pointers;
}

/// The numbers of the ends near line `number` of the set, in order: twice that of their line,
/// and one more for its end.
std::vector<std::uint32_t> found(std::vector<WallLineLikeSeg>& lines, std::size_t number,
                                 double captureDistance) {
  const CEndPointIndex index(pointersTo(lines), captureDistance);
  const CCaptureBox box(lines[number].ptStart, lines[number].ptEnd, captureDistance);
  std::vector<std::uint32_t> numbers;
  for (std::size_t column = 0; column < index.ColumnCount(); ++column) {
    for (const CEndPointIndex::End& end : index.EndsOfColumn(column)) {
      if (end.number != 2 * number) {
        continue;
      }
      index.VisitNear(box, column, [&](std::uint32_t near) {
        numbers.push_back(near);
        return true;
      });
      // The other form of the search finds the same, but for the line itself.
      CEndPointIndex::CFound list;
      const std::size_t count = index.CollectNear(box, column, number, list);
      EXPECT_EQ(count, list.All().size());
      std::vector<std::uint32_t> others;
      std::copy_if(numbers.begin(), numbers.end(), std::back_inserter(others),
                   [&](std::uint32_t near) { return CEndPointIndex::LineOf(near) != number; });
      EXPECT_EQ(std::vector<std::uint32_t>(list.All().begin(), list.All().end()), others);
    }
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

std::vector<WallLineLikeSeg> linesOf(std::string_view source) {
  std::vector<WallLineLikeSeg> lines;
  for (const auto& [start, end] : quoin::test::segments(source)) {
    lines.emplace_back(start, end);
  }
  return lines;
}

void expectNoneMissing(std::vector<WallLineLikeSeg>& lines, double captureDistance,
                       std::size_t& accepted) {
  for (std::size_t number = 0; number < lines.size(); ++number) {
    const WallLineLikeSeg& line = lines[number];
    const AcGeLineSeg3d segment(line.ptStart, line.ptEnd);
    const std::vector<std::uint32_t> numbers = found(lines, number, captureDistance);
    ASSERT_EQ(std::adjacent_find(numbers.begin(), numbers.end()), numbers.end());
    for (std::uint32_t end = 0; end < 2 * lines.size(); ++end) {
      const WallLineLikeSeg& other = lines[CEndPointIndex::LineOf(end)];
      const AcGePoint3d& pt = CEndPointIndex::IsStart(end) ? other.ptStart : other.ptEnd;
      if (captureDistance > segment.distanceTo(pt)) {
        ++accepted;
        ASSERT_TRUE(std::binary_search(numbers.begin(), numbers.end(), end))
            << text(pt) << " is missing near " << text(line.ptStart, line.ptEnd)
            << ", capture distance " << text(captureDistance);
      }
    }
  }
}

using Numbers = std::vector<std::uint32_t>;

TEST(EndPointIndex, HandsOutTheEndsNearALineItsOwnAmongThem) {
  auto lines = linesOf("900,5 900,800; 0,0 1000,0; 0,500 1000,500; 400,800 400,5");
  EXPECT_EQ(found(lines, 1, 10.0), (Numbers{0, 2, 3, 7}));
}

TEST(EndPointIndex, LeavesOutWhatLiesFarAway) {
  auto lines = linesOf("0,0 1000,0; 0,500 1000,500; 1100,-50 1100,50; 500,-400 500,400");
  EXPECT_EQ(found(lines, 0, 10.0), (Numbers{0, 1}));
}

TEST(EndPointIndex, ALineAtAnAngleFindsWhatLiesAlongItNotAllInItsBox) {
  auto lines = linesOf("0,0 1000,1000; 500,495 900,100; 100,900 900,100; 0,1000 1000,0");
  EXPECT_EQ(found(lines, 0, 10.0), (Numbers{0, 1, 2}));
}

TEST(EndPointIndex, HandsOutALineAsOftenAsItStandsInTheSet) {
  WallLineLikeSeg line(point("0,0"), point("10,0"));
  const std::vector<WallLineLikeSeg*> twice{&line, &line};
  const CEndPointIndex index(twice, 1.0);
  int visits = 0;
  index.VisitNear(CCaptureBox(line.ptStart, 1.0), 0, [&](std::uint32_t) { return ++visits > 0; });
  EXPECT_EQ(visits, 2);
}

TEST(EndPointIndex, ASearchStopsWhenItIsTold) {
  auto lines = linesOf("0,0 1000,0; 0,0 1000,0; 0,0 1000,0");
  const CEndPointIndex index(pointersTo(lines), 1.0);
  int visits = 0;
  index.VisitNear(CCaptureBox(point("0,0"), 1.0), 0, [&](std::uint32_t) { return ++visits < 2; });
  EXPECT_EQ(visits, 2);
}

TEST(EndPointIndex, NoDistanceBelowWhichNothingLiesHandsOutNothing) {
  auto lines = linesOf("0,0 1000,0; 0,0 1000,0");
  for (const double captureDistance : {0.0, -0.0, -10.0, -kInfinity, kNoNumber}) {
    EXPECT_TRUE(found(lines, 0, captureDistance).empty());
  }
}

TEST(EndPointIndex, AnInfiniteDistanceHandsOutEverything) {
  auto lines = linesOf("0,0 1000,0; 0,500 1000,500; -1e300,1e300 1e300,-1e300");
  EXPECT_EQ(found(lines, 0, kInfinity).size(), 6u);
  EXPECT_EQ(found(lines, 2, kInfinity).size(), 6u);
}

TEST(EndPointIndex, EndsWithACoordinateThatIsNoFiniteNumberAreLeftOut) {
  std::vector<WallLineLikeSeg> lines{{{0, 0, 0}, {kNoNumber, 0, 0}},
                                     {{0, 0, 0}, {0, kInfinity, 0}}};
  EXPECT_EQ(found(lines, 0, kInfinity), (Numbers{0, 2}));
}

TEST(EndPointIndex, NoLinesMakeAnEmptyIndex) {
  EXPECT_EQ(CEndPointIndex(std::vector<WallLineLikeSeg*>(), 1.0).ColumnCount(), 0u);
}

TEST(EndPointIndex, RandomSetsMissNothingThatTheExactTestAccepts) {
  std::mt19937_64 random(80);
  std::size_t accepted = 0;
  for (int round = 0; round < 3000; ++round) {
    std::vector<WallLineLikeSeg> lines = quoin::test::randomWallLines(random, 12);
    for (const double captureDistance : {10.0, 1e-10, 1e-300, 250.0, 1e300, kInfinity}) {
      ASSERT_NO_FATAL_FAILURE(expectNoneMissing(lines, captureDistance, accepted));
    }
  }
  EXPECT_GT(accepted, 100000u);
}

TEST(EndPointIndex, UnevenSetsMissNothingThatTheExactTestAccepts) {
  std::mt19937_64 random(83);
  std::size_t accepted = 0;
  for (int kind = 0; kind < quoin::test::kUnevenKinds; ++kind) {
    std::vector<WallLineLikeSeg> lines = quoin::test::unevenWallLines(random, kind, 400);
    for (const double captureDistance : {1e-3, 10.0, kInfinity}) {
      ASSERT_NO_FATAL_FAILURE(expectNoneMissing(lines, captureDistance, accepted)) << kind;
    }
  }
  EXPECT_GT(accepted, 100000u);
}

TEST(EndPointIndex, EndsOnTheVeryEdgeOfTheCaptureDistanceAreNotMissed) {
  // Ends at the distance itself and at the doubles next to it, beside lines far out: where
  // rounding decides, the exact test must be the one that is asked.
  std::mt19937_64 random(81);
  std::uniform_real_distribution<double> anywhere(-1e9, 1e9);
  std::size_t accepted = 0;
  for (int round = 0; round < 3000; ++round) {
    const double x = anywhere(random);
    const double y = anywhere(random);
    const double captureDistance = std::ldexp(1.0 + 1e-3 * round, round % 40 - 20);
    std::vector<WallLineLikeSeg> lines{{{x, y, 0}, {x + 1000.0, y, 0}}};
    double edge = y + captureDistance;
    for (int step = 0; step < 4; ++step) {
      lines.push_back({{x + 100.0 * step, edge, 0}, {x, y + 1e9, 0}});
      edge = std::nextafter(edge, -kInfinity);
    }
    ASSERT_NO_FATAL_FAILURE(expectNoneMissing(lines, captureDistance, accepted));
  }
  EXPECT_GT(accepted, 10000u);
}

TEST(EndPointIndex, DistancesSoSmallThatTheirSquaresVanishAreNotMissed) {
  std::size_t accepted = 0;
  std::vector<WallLineLikeSeg> lines{{{0, 0, 0}, {1e-155, 0, 0}},
                                     {{5e-156, 1e-163, 0}, {5e-156, 1, 0}}};
  expectNoneMissing(lines, 1e-180, accepted);
  EXPECT_EQ(accepted, 5u);  // each its own ends, one the other's start
}

TEST(EndPointIndex, CoordinatesThatAreNoFiniteNumbersMissNothing) {
  const double coordinates[] = {0.0, 5.0, 1e300, -1.7e308, kInfinity, -kInfinity, kNoNumber};
  std::mt19937_64 random(82);
  const auto any = [&] { return coordinates[random() % 7]; };
  std::size_t accepted = 0;
  for (int round = 0; round < 5000; ++round) {
    std::vector<WallLineLikeSeg> lines;
    for (int i = 0; i < 6; ++i) {
      lines.push_back({{any(), any(), any()}, {any(), any(), any()}});
    }
    for (const double captureDistance : {10.0, 1e300, kInfinity}) {
      ASSERT_NO_FATAL_FAILURE(expectNoneMissing(lines, captureDistance, accepted));
    }
  }
  EXPECT_GT(accepted, 1000u);
}

TEST(EndPointIndex, LinesAtTheEndsOfTheNumbersMissNothing) {
  std::mt19937_64 random(85);
  std::size_t accepted = 0;
  for (int round = 0; round < 2000; ++round) {
    std::vector<WallLineLikeSeg> lines = quoin::test::extremeWallLines(random, 2 + round % 12);
    for (const double captureDistance : {10.0, 1e300, kInfinity}) {
      ASSERT_NO_FATAL_FAILURE(expectNoneMissing(lines, captureDistance, accepted));
    }
  }
  EXPECT_GT(accepted, 1000u);
}

/// What VisitContacts() says of each end, by its number; every end once.
std::vector<std::uint32_t> contactsOf(std::vector<WallLineLikeSeg>& lines, double captureDistance) {
  const CEndPointIndex index(pointersTo(lines), captureDistance, CEndPointIndex::eForPoints);
  constexpr std::uint32_t kNotVisited = 0xFFFFFFFD;
  std::vector<std::uint32_t> contacts(2 * lines.size(), kNotVisited);
  index.VisitContacts(captureDistance, [&](const CEndPointIndex::End& end, std::uint32_t contact) {
    EXPECT_EQ(contacts[end.number], kNotVisited) << "visited twice";
    contacts[end.number] = contact;
  });
  for (std::uint32_t number = 0; number < contacts.size(); ++number) {
    const WallLineLikeSeg& line = lines[number / 2];
    EXPECT_EQ(contacts[number] != kNotVisited,
              CEndPointIndex::IsIndexed(number % 2 == 0 ? line.ptStart : line.ptEnd));
  }
  return contacts;
}

/// No end of another line that is near may be kept quiet; answers how many are named alone.
int expectContactsNameAllThatIsNear(std::vector<WallLineLikeSeg>& lines, double captureDistance) {
  const std::vector<std::uint32_t> contacts = contactsOf(lines, captureDistance);
  const auto pointOf = [&](std::uint32_t number) {
    return number % 2 == 0 ? lines[number / 2].ptStart : lines[number / 2].ptEnd;
  };
  int named = 0;
  for (std::uint32_t own = 0; own < contacts.size(); ++own) {
    std::vector<std::uint32_t> near;
    for (std::uint32_t other = 0; other < contacts.size(); ++other) {
      if (other / 2 != own / 2 && captureDistance > pointOf(own).distanceTo(pointOf(other))) {
        near.push_back(other);
      }
    }
    if (near.size() > 1) {
      EXPECT_EQ(contacts[own], CEndPointIndex::kSeveral) << own;
    } else if (near.size() == 1) {
      EXPECT_TRUE(contacts[own] == near.front() || contacts[own] == CEndPointIndex::kSeveral);
      named += contacts[own] == near.front() ? 1 : 0;
    }
  }
  return named;
}

TEST(EndPointIndex, AContactIsTheOnlyEndOfAnotherLineThatIsNear) {
  auto lines = linesOf("0,0 1000,0; 1005,0 2000,0; 2000,5 2000,900; 2000,-5 2000,-900; 5,5 6,6");
  const auto contacts = contactsOf(lines, 10.0);
  EXPECT_EQ(contacts[1], 2U);
  EXPECT_EQ(contacts[2], 1U);
  EXPECT_EQ(contacts[3], CEndPointIndex::kSeveral);
  EXPECT_EQ(contacts[5], CEndPointIndex::kNone);
  EXPECT_EQ(contacts[0], CEndPointIndex::kSeveral) << "both ends of the last line";
}

TEST(EndPointIndex, ChainsInEveryDirectionHaveAllTheirContacts) {
  std::mt19937_64 random(92);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int round = 0; round < 300; ++round) {
    // Level, upright and slanted chains, and some dense enough to have no gap in x or y.
    std::vector<WallLineLikeSeg> lines;
    for (int chain = 0; chain < 8; ++chain) {
      const double angle = chain % 4 == 3 ? 3.0 * unit(random) : chain % 2 * 1.5707963267948966;
      const double step = chain < 4 ? 200.0 : 15.0;
      AcGePoint3d at(1000.0 * std::floor(4.0 * unit(random)), 700.0 * chain, 0.0);
      for (int i = 0; i < 30; ++i) {
        const AcGePoint3d next(at.x + step * std::cos(angle), at.y + step * std::sin(angle), 0.0);
        lines.push_back(unit(random) < 0.5 ? WallLineLikeSeg(at, next) : WallLineLikeSeg(next, at));
        at = next;
      }
    }
    std::shuffle(lines.begin(), lines.end(), random);
    EXPECT_GT(expectContactsNameAllThatIsNear(lines, 10.0), 200);
  }
}

TEST(EndPointIndex, RandomSetsHaveAllTheirContacts) {
  std::mt19937_64 random(93);
  int named = 0;
  for (int round = 0; round < 2000; ++round) {
    std::vector<WallLineLikeSeg> lines = quoin::test::randomWallLines(random, 12);
    for (const double captureDistance : {10.0, 1e-10, 250.0, 1e300, kInfinity, 0.0, -1.0}) {
      named += expectContactsNameAllThatIsNear(lines, captureDistance);
    }
  }
  EXPECT_GT(named, 1000);
}

TEST(EndPointIndex, LinesAtTheEndsOfTheNumbersHaveAllTheirContacts) {
  std::mt19937_64 random(86);
  int named = 0;
  for (int round = 0; round < 2000; ++round) {
    std::vector<WallLineLikeSeg> lines = quoin::test::extremeWallLines(random, 2 + round % 12);
    named += expectContactsNameAllThatIsNear(lines, 10.0);
  }
  EXPECT_GT(named, 100);
}

TEST(EndPointIndex, NumberedByPlaceEveryLineHasANumberAndEveryEndItsLines) {
  auto lines = linesOf("500,0 0,0; 0,0 0,500; 100,100 900,900; 7,7 8,8");
  lines[1].ptStart.x = kNoNumber;
  lines[3].ptEnd.x = kNoNumber;
  CEndPointIndex index(pointersTo(lines), 10.0, CEndPointIndex::eForPoints);
  std::vector<std::uint32_t> numbers;
  std::vector<std::size_t> inOrder;
  index.NumberByPlace(numbers, lines.size(), [&](std::size_t line) { inOrder.push_back(line); });
  ASSERT_EQ(inOrder.size(), 4U);
  for (std::uint32_t number = 0; number < 4; ++number) {
    EXPECT_EQ(numbers[inOrder[number]], number);
  }
  EXPECT_EQ(inOrder.back(), 1U) << "the line without a start comes last";
  std::uint32_t next = 0;
  std::size_t ends = 0;
  for (std::size_t column = 0; column < index.ColumnCount(); ++column) {
    for (const CEndPointIndex::End& end : index.EndsOfColumn(column)) {
      const WallLineLikeSeg& line = lines[inOrder[end.Line()]];
      EXPECT_EQ(end.x, end.IsStart() ? line.ptStart.x : line.ptEnd.x);
      if (end.IsStart()) {
        EXPECT_EQ(end.Line(), next++);
      }
      ++ends;
    }
  }
  EXPECT_EQ(ends, 6U);
}

}  // namespace
