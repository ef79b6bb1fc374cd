// The contacts of end points: none that the exact test accepts is missed.
#include "EndPointContacts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "support/LineRecords.h"
#include "support/WallLineSets.h"

namespace {

using quoin::test::linesOf;
using quoin::test::pointersTo;

const double kInfinity = std::numeric_limits<double>::infinity();

/// The contact of each end, by its index; every end once.
std::vector<std::uint32_t> contactsOf(std::vector<WallLineLikeSeg>& lines, double captureDistance) {
  const CEndPointIndex index(pointersTo(lines), captureDistance, CEndPointIndex::eForPoints);
  constexpr std::uint32_t kNotVisited = 0xFFFFFFFD;
  std::vector<std::uint32_t> contacts(2 * lines.size(), kNotVisited);
  CEndPointContacts(index, captureDistance)
      .VisitAll([&](const CEndPointContacts::End& end, std::uint32_t contact) {
        EXPECT_EQ(contacts[end.index], kNotVisited) << "visited twice";
        contacts[end.index] = contact;
      });
  for (std::uint32_t end = 0; end < contacts.size(); ++end) {
    const WallLineLikeSeg& line = lines[end / 2];
    EXPECT_EQ(contacts[end] != kNotVisited,
              CEndPointIndex::IsIndexed(end % 2 == 0 ? line.ptStart : line.ptEnd));
  }
  return contacts;
}

/// No end of another line that is near may be left out; returns how many are named alone.
int expectContactsNameAllThatIsNear(std::vector<WallLineLikeSeg>& lines, double captureDistance) {
  const std::vector<std::uint32_t> contacts = contactsOf(lines, captureDistance);
  const auto pointOf = [&](std::uint32_t end) {
    return end % 2 == 0 ? lines[end / 2].ptStart : lines[end / 2].ptEnd;
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
      EXPECT_EQ(contacts[own], CEndPointContacts::kAmbiguous) << own;
    } else if (near.size() == 1) {
      EXPECT_TRUE(contacts[own] == near.front() || contacts[own] == CEndPointContacts::kAmbiguous);
      named += contacts[own] == near.front() ? 1 : 0;
    }
  }
  return named;
}

TEST(EndPointContacts, AContactIsTheOnlyEndOfAnotherLineThatIsNear) {
  auto lines = linesOf("0,0 1000,0; 1005,0 2000,0; 2000,5 2000,900; 2000,-5 2000,-900; 5,5 6,6");
  const auto contacts = contactsOf(lines, 10.0);
  EXPECT_EQ(contacts[1], 2U);
  EXPECT_EQ(contacts[2], 1U);
  EXPECT_EQ(contacts[3], CEndPointContacts::kAmbiguous);
  EXPECT_EQ(contacts[5], CEndPointContacts::kNone);
  EXPECT_EQ(contacts[0], CEndPointContacts::kAmbiguous) << "both ends of the last line";
}

TEST(EndPointContacts, ChainsInEveryDirectionHaveAllTheirContacts) {
  std::mt19937_64 random(92);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int round = 0; round < 300; ++round) {
    // Horizontal, vertical and slanted chains, and some dense enough to have no gap in x or y.
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

TEST(EndPointContacts, RandomSetsHaveAllTheirContacts) {
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

TEST(EndPointContacts, LinesAtTheEndsOfTheNumbersHaveAllTheirContacts) {
  std::mt19937_64 random(86);
  int named = 0;
  for (int round = 0; round < 2000; ++round) {
    std::vector<WallLineLikeSeg> lines = quoin::test::extremeWallLines(random, 2 + round % 12);
    named += expectContactsNameAllThatIsNear(lines, 10.0);
  }
  EXPECT_GT(named, 100);
}

}  // namespace
