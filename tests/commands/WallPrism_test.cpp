#include "commands/WallPrism.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "commands/ClosedBody.h"

namespace {

using quoin::commands::slabsBetween;
using quoin::commands::WallPrism;
using quoin::commands::WallSlab;
using quoin::test::expectClosed;

/// 10 long, 2 thick, 3 high.
WallPrism straightWall() {
  WallPrism prism;
  prism.startLeft = AcGePoint3d(0, 1, 0);
  prism.startMid = AcGePoint3d(0, 0, 0);
  prism.startRight = AcGePoint3d(0, -1, 0);
  prism.endLeft = AcGePoint3d(10, 1, 0);
  prism.endMid = AcGePoint3d(10, 0, 0);
  prism.endRight = AcGePoint3d(10, -1, 0);
  prism.height = 3;
  return prism;
}

/// The same with a mitred start, bent at the middle, and a pointed end: straight from 2 to 9.
WallPrism mitredWall() {
  WallPrism prism = straightWall();
  prism.startLeft.x = 2;
  prism.startMid.x = 1;
  prism.startRight.x = -1;
  prism.endLeft.x = 9;
  prism.endRight.x = 9;
  return prism;
}
constexpr double kMitredArea = 0.5 * (7.0 + 9.0) + 0.5 * (9.0 + 10.0);

void expectClosed(const WallPrism& prism, double volume, std::size_t parts = 1) {
  expectClosed(prism.faces(), volume, parts);
}

TEST(WallPrism, EnclosesItsVolumeWithFacesThatLookOutwards) {
  expectClosed(straightWall(), 10.0 * 2.0 * 3.0);
  expectClosed(mitredWall(), kMitredArea * 3.0);
}

TEST(WallPrism, HasTenFaces) {
  EXPECT_EQ(straightWall().faces().size(), 10u);
}

TEST(WallPrism, IsStraightBetweenItsMitres) {
  EXPECT_EQ(mitredWall().straightFrom(), 2.0);
  EXPECT_EQ(mitredWall().straightTo(), 9.0);
}

TEST(WallPrism, IsClosedAroundAWindow) {
  WallPrism prism = straightWall();
  prism.holes = {{3, 5, 1, 2}};
  expectClosed(prism, 60.0 - 2.0 * 2.0 * 1.0);
  prism = mitredWall();
  prism.holes = {{3, 5, 1, 2}};
  expectClosed(prism, kMitredArea * 3.0 - 4.0);
}

TEST(WallPrism, IsClosedAroundADoorDownToTheFloor) {
  WallPrism prism = straightWall();
  prism.holes = {{3, 5, 0, 2}};
  expectClosed(prism, 60.0 - 8.0);
}

TEST(WallPrism, FallsIntoTwoClosedPartsWhereAnOpeningIsAsHighAsTheWall) {
  WallPrism prism = mitredWall();
  prism.holes = {{3, 5, 0, 3}};
  expectClosed(prism, kMitredArea * 3.0 - 12.0, 2);
}

TEST(WallPrism, IsClosedAroundManyOpenings) {
  WallPrism prism = mitredWall();
  prism.holes = {{2.5, 3, 0, 2}, {3.5, 4, 1, 2}, {4.5, 5, 0, 3}, {6, 7, 0.5, 3}, {7, 8, 0, 2.5}};
  // The last two leave no more than edges of wall between them.
  expectClosed(prism, kMitredArea * 3.0 - 2.0 * (1.0 + 0.5 + 1.5 + 2.5 + 2.5), 3);
}

TEST(WallPrism, IsClosedWhereOpeningsReachTheMitres) {
  WallPrism prism = mitredWall();
  prism.holes = {{2, 4, 0, 2}, {6, 9, 1, 2}};
  expectClosed(prism, kMitredArea * 3.0 - 8.0 - 6.0);
  prism.holes = {{2, 9, 0, 3}};
  expectClosed(prism, (kMitredArea - 14.0) * 3.0, 2);
}

TEST(WallPrism, IsClosedWhereAnOpeningTakesAFreeEndAway) {
  WallPrism prism = straightWall();
  prism.holes = {{0, 4, 0, 2}};
  expectClosed(prism, 60.0 - 16.0);
  prism.holes = {{0, 4, 0, 3}};
  expectClosed(prism, 36.0);
  prism.holes = {{6, 10, 1, 2}};
  expectClosed(prism, 60.0 - 8.0);
}

TEST(WallPrism, CutsOpeningsThatOverlapAsOne) {
  WallPrism prism = straightWall();
  prism.holes = {{2, 5, 0, 2}, {4, 7, 1, 2.5}};
  expectClosed(prism, 60.0 - 2.0 * (3.0 * 2.0 + 3.0 * 1.5 - 1.0));
  // A fanlight right above a door, a door beside a window, two of one height end to end.
  prism.holes = {{2, 5, 0, 1}, {2, 5, 1, 2}};
  expectClosed(prism, 60.0 - 12.0);
  prism.holes = {{2, 5, 0, 2}, {5, 7, 1, 2}};
  expectClosed(prism, 60.0 - 12.0 - 4.0);
  prism.holes = {{2, 5, 0, 2}, {5, 7, 0, 2}};
  expectClosed(prism, 60.0 - 20.0);
}

TEST(WallPrism, HidesWhatLiesInsideJoints) {
  WallPrism prism = mitredWall();
  prism.holes = {{2, 4, 0, 2}};
  prism.isStartFree = false;
  const std::vector<WallPrism::Face> faces = prism.faces();
  // The end's left half has a corner at the head of the opening that reaches it: two triangles.
  EXPECT_EQ(std::count_if(faces.begin(), faces.end(),
                          [&](const auto& face) { return prism.isHiddenInJoint(face); }),
            3);
}

TEST(WallSlabs, AreWhatHolesLeave) {
  const std::vector<WallSlab> slabs = slabsBetween({{1, 4, 0, 2}, {2, 3, 1, 2.5}}, 3);
  ASSERT_EQ(slabs.size(), 3u);
  EXPECT_EQ(slabs[0].solid, (std::vector<std::pair<double, double>>{{2, 3}}));
  EXPECT_EQ(slabs[1].solid, (std::vector<std::pair<double, double>>{{2.5, 3}}));
  EXPECT_EQ(slabs[2].from, 3.0);
  EXPECT_EQ(slabs[2].to, 4.0);
}

/// Turned by an angle and moved far out, with ends as joints leave them, on a slope.
TEST(WallPrism, IsClosedWhateverItsEndsAndOpenings) {
  std::mt19937 random(2026);
  std::uniform_real_distribution<double> share(0.0, 1.0);
  for (int run = 0; run < 2000; ++run) {
    const double length = 1000.0 + 9000.0 * share(random);
    const double left = 20.0 + 200.0 * share(random);
    const double right = 20.0 + 200.0 * share(random);
    const double angle = run % 4 == 0 ? 0.0 : 7.0 * share(random);
    const double slope = run % 3 == 0 ? 0.1 * share(random) : 0.0;
    const AcGePoint3d origin(run % 5 == 0 ? 5.0e6 : 0.0, run % 5 == 0 ? -4.0e6 : 0.0,
                             100.0 * share(random));
    const auto at = [&](double along, double across) {
      return AcGePoint3d(origin.x + along * std::cos(angle) - across * std::sin(angle),
                         origin.y + along * std::sin(angle) + across * std::cos(angle),
                         origin.z + slope * along);
    };
    // A third of the ends is square.
    const auto reach = [&](bool isSquare) {
      return isSquare ? 0.0 : 300.0 * (share(random) - 0.5);
    };
    std::array<double, 3> starts{};
    std::array<double, 3> ends{};
    const bool isSquareStart = random() % 3 == 0;
    const bool isSquareEnd = random() % 3 == 0;
    for (std::size_t i = 0; i < 3; ++i) {
      starts[i] = reach(isSquareStart);
      ends[i] = length + reach(isSquareEnd);
    }
    // In some, one half of the end is square.
    if (random() % 4 == 0) {
      starts[0] = starts[1] = std::max(starts[0], starts[2]);
      ends[2] = ends[1] = std::min(ends[0], ends[2]);
    }
    WallPrism prism;
    prism.startLeft = at(starts[0], left);
    prism.startMid = at(starts[1], 0.0);
    prism.startRight = at(starts[2], -right);
    prism.endLeft = at(ends[0], left);
    prism.endMid = at(ends[1], 0.0);
    prism.endRight = at(ends[2], -right);
    prism.height = 2000.0 + 1000.0 * share(random);
    prism.origin = {origin.x, origin.y};
    prism.direction = {std::cos(angle), std::sin(angle)};
    prism.tolerance = 0.01;
    prism.clearance = 10.0;
    // The area of the hexagon: two trapezoids along the middle line.
    double volume = (0.5 * left * (ends[0] - starts[0] + ends[1] - starts[1]) +
                     0.5 * right * (ends[1] - starts[1] + ends[2] - starts[2])) *
                    prism.height;
    // Side by side, some touching, some to the floor, the top or the mitre.
    const double straightFrom = prism.straightFrom();
    const double straightTo = prism.straightTo();
    const int count = static_cast<int>(random() % 6);
    std::vector<double> jambs;
    for (int i = 0; i < 2 * count; ++i) {
      jambs.push_back(straightFrom + (straightTo - straightFrom) * (0.05 + 0.9 * share(random)));
    }
    std::sort(jambs.begin(), jambs.end());
    if (count > 0 && random() % 4 == 0) {
      jambs.front() = straightFrom;
    }
    if (count > 0 && random() % 4 == 0) {
      jambs.back() = straightTo;
    }
    for (int i = 0; i < count; ++i) {
      const std::size_t hole = 2 * static_cast<std::size_t>(i);
      if (i > 0 && random() % 4 == 0) {
        jambs[hole] = jambs[hole - 1];
      }
      const double sill = random() % 2 == 0 ? 0.0 : 0.4 * prism.height * share(random);
      const double head =
          random() % 5 == 0 ? prism.height : prism.height * (0.5 + 0.4 * share(random));
      if (jambs[hole + 1] - jambs[hole] > prism.tolerance) {
        prism.holes.push_back({jambs[hole], jambs[hole + 1], sill, head});
        volume -= (jambs[hole + 1] - jambs[hole]) * (left + right) * (head - sill);
      }
    }
    const quoin::test::BodyFacts facts = quoin::test::factsOf(prism.faces());
    ASSERT_EQ(facts.wrongEdges, 0u) << "run " << run;
    // Jambs stand up to the tolerance beside an end of a face.
    ASSERT_NEAR(facts.volume, volume, 1e-6 * volume) << "run " << run;
  }
}

}  // namespace
