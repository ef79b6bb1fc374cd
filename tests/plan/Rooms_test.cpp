// Rooms of small plans, with areas worked out by hand, and laws on random ones.
#include "plan/Rooms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <iostream>
#include <random>
#include <tuple>

#include "plan/FreeSpace.h"
#include "plan/WallNet.h"
#include "support/RunningHost.h"

namespace quoin::plan {
namespace {

constexpr double kCapture = 10.0;  // that of the running host

Wall wall(double x0, double y0, double x1, double y1, double left = 100.0, double right = 100.0) {
  return {{x0, y0}, {x1, y1}, left, right};
}
std::vector<Wall> boxWalls(double x0, double y0, double x1, double y1, double half = 100.0) {
  return {wall(x0, y0, x1, y0, half, half), wall(x1, y0, x1, y1, half, half),
          wall(x1, y1, x0, y1, half, half), wall(x0, y1, x0, y0, half, half)};
}
Polygon rectangle(double x0, double y0, double x1, double y1) {
  return {{{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}, {}};
}

class RoomsTest : public ::testing::Test {
 protected:
  FoundRooms find(const WallPlan& plan, const std::vector<Polygon>& columns = {},
                  double leastArea = 0.0, double leastWidth = 0.0) {
    return findRooms(plan, columns, {kCapture, leastArea, leastWidth});
  }
  std::vector<double> netAreas(const std::vector<Wall>& walls,
                               const std::vector<Polygon>& columns = {}) {
    std::vector<double> areas;
    for (const Room& room : find({walls, {}}, columns).rooms) {
      areas.push_back(room.netArea);
    }
    std::sort(areas.begin(), areas.end());
    return areas;
  }

  test::RunningHost m_host;
};

void expectAreas(const std::vector<double>& found, const std::vector<double>& expected) {
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_NEAR(found[i], expected[i], 1e-9 * expected[i]) << "room " << i;
  }
}

TEST_F(RoomsTest, FourWallsMakeARoom) {
  const FoundRooms found = find({boxWalls(0, 0, 4000, 3000), {}});
  ASSERT_EQ(found.rooms.size(), 1u);
  const Room& room = found.rooms[0];
  EXPECT_NEAR(room.netArea, 3800.0 * 2800.0, 1e-3);
  EXPECT_NEAR(room.grossArea, 4000.0 * 3000.0, 1e-3);
  EXPECT_FALSE(room.isGrossByStrips);
  EXPECT_NEAR(room.perimeter, 2 * (3800.0 + 2800.0), 1e-6);
  EXPECT_EQ(room.walls, (std::vector<std::size_t>{0, 1, 2, 3}));
  ASSERT_EQ(room.polygon.outer.size(), 4u);
  EXPECT_TRUE(room.polygon.outer[0].isEqualTo({100, 100}));
  EXPECT_TRUE(room.polygon.outer[2].isEqualTo({3900, 2900}));
}

TEST_F(RoomsTest, NoWallsMakeNoRoom) {
  EXPECT_TRUE(find({}).rooms.empty());
}

TEST_F(RoomsTest, AnOpenOutlineIsNoRoom) {
  std::vector<Wall> walls = boxWalls(0, 0, 4000, 3000);
  walls.pop_back();
  EXPECT_TRUE(find({walls, {}}).rooms.empty());
}

TEST_F(RoomsTest, DegenerateWallsAreLeftOut) {
  std::vector<Wall> walls = boxWalls(0, 0, 4000, 3000);
  walls.push_back(wall(1000, 1000, 1000, 1000));
  walls.push_back(wall(1000, 1000, 1005, 1000));
  walls.push_back(wall(1000, 1000, 2000, 1000, 50, -50));
  walls.push_back(wall(NAN, 0, 2000, 1000));
  walls.push_back(wall(0, 0, HUGE_VAL, 1000));
  const FoundRooms found = find({walls, {}});
  EXPECT_EQ(found.wallsLeftOut, 5u);
  ASSERT_EQ(found.rooms.size(), 1u);
  EXPECT_NEAR(found.rooms[0].netArea, 3800.0 * 2800.0, 1e-3);
}

TEST_F(RoomsTest, AWallThatEndsInAnothersMiddlePartsTheRoom) {
  std::vector<Wall> walls = boxWalls(0, 0, 4000, 3000);
  walls.push_back(wall(1500, 0, 1500, 3000, 50, 50));
  expectAreas(netAreas(walls), {1350.0 * 2800.0, 2350.0 * 2800.0});
}

TEST_F(RoomsTest, AWallThatEndsOnAnothersFacePartsTheRoom) {
  std::vector<Wall> walls = boxWalls(0, 0, 4000, 3000);
  walls.push_back(wall(1500, 100, 1500, 2900, 50, 50));
  const FoundRooms found = find({walls, {}});
  ASSERT_EQ(found.rooms.size(), 2u);
  EXPECT_NEAR(found.rooms[0].netArea, 1350.0 * 2800.0, 1e-3);
  EXPECT_NEAR(found.rooms[0].grossArea, 1500.0 * 3000.0, 1e-3);
  EXPECT_NEAR(found.rooms[1].grossArea, 2500.0 * 3000.0, 1e-3);
}

TEST_F(RoomsTest, GapsAndOvershootsOfSomeMillimetresDoNotOpenARoom) {
  // Corners apart, a partition that ends 6 short of a face and goes 4 into the other wall.
  std::vector<Wall> walls = {wall(3, 0, 3996, 0), wall(4000, 4, 4000, 2997),
                             wall(3997, 3000, 5, 3000), wall(0, 2996, 0, 6)};
  expectAreas(netAreas(walls), {3800.0 * 2800.0});
  walls.push_back(wall(1500, 106, 1500, 2904, 50, 50));
  expectAreas(netAreas(walls), {1350.0 * 2800.0, 2350.0 * 2800.0});
}

TEST_F(RoomsTest, WallsThatCrossMakeFourRooms) {
  std::vector<Wall> walls = boxWalls(0, 0, 4000, 3000);
  walls.push_back(wall(1500, 0, 1500, 3000, 50, 50));
  walls.push_back(wall(0, 1000, 4000, 1000, 60, 30));
  expectAreas(netAreas(walls), {1350.0 * 870.0, 2350.0 * 870.0, 1350.0 * 1840.0, 2350.0 * 1840.0});
}

TEST_F(RoomsTest, UnequalWidthsAlongOneFace) {
  // The south wall changes from 200 to 400 wide at x = 2000, its reference line runs on.
  const std::vector<Wall> walls = {wall(0, 0, 2000, 0, 100, 100), wall(2000, 0, 4000, 0, 200, 200),
                                   wall(4000, 0, 4000, 3000, 100, 100),
                                   wall(4000, 3000, 0, 3000, 100, 100),
                                   wall(0, 3000, 0, 0, 100, 100)};
  expectAreas(netAreas(walls), {1900.0 * 2800.0 + 1900.0 * 2700.0});
}

TEST_F(RoomsTest, ReferenceLinesOnAFace) {
  // All of the width outside of the room.
  const std::vector<Wall> walls = {wall(0, 0, 4000, 0, 0, 240), wall(4000, 0, 4000, 3000, 0, 240),
                                   wall(4000, 3000, 0, 3000, 0, 240), wall(0, 3000, 0, 0, 0, 240)};
  const FoundRooms found = find({walls, {}});
  ASSERT_EQ(found.rooms.size(), 1u);
  EXPECT_NEAR(found.rooms[0].netArea, 4000.0 * 3000.0, 1e-3);
  EXPECT_NEAR(found.rooms[0].grossArea, 4000.0 * 3000.0, 1e-3);
}

TEST_F(RoomsTest, AYJunctionPartsAHexagonInThree) {
  // Six walls of a regular hexagon with three spokes; the rooms are rhombi.
  std::vector<Wall> walls;
  std::vector<AcGePoint2d> corners;
  const double radius = 5000.0;
  for (int i = 0; i < 6; ++i) {
    const double angle = i * std::acos(-1.0) / 3.0;
    corners.push_back({radius * std::cos(angle), radius * std::sin(angle)});
  }
  for (std::size_t i = 0; i < 6; ++i) {
    walls.push_back({corners[i], corners[(i + 1) % 6], 100.0, 100.0});
  }
  for (std::size_t i = 0; i < 6; i += 2) {
    walls.push_back({{0, 0}, corners[i], 100.0, 100.0});
  }
  // A rhombus of side a and 60 degrees is b = a - 2 * 100 / sin 60 within faces 100 away.
  const double side = radius - 200.0 / std::sin(std::acos(-1.0) / 3.0);
  const double area = side * side * std::sin(std::acos(-1.0) / 3.0);
  expectAreas(netAreas(walls), {area, area, area});
}

TEST_F(RoomsTest, ARoomInARoomIsAHole) {
  std::vector<Wall> walls = boxWalls(0, 0, 8000, 6000);
  for (const Wall& inner : boxWalls(3000, 2000, 5000, 4000)) {
    walls.push_back(inner);
  }
  const FoundRooms found = find({walls, {}});
  ASSERT_EQ(found.rooms.size(), 2u);
  const Room& ring = found.rooms[0];
  EXPECT_NEAR(ring.netArea, 7800.0 * 5800.0 - 2200.0 * 2200.0, 1e-3);
  EXPECT_NEAR(ring.grossArea, 8000.0 * 6000.0 - 2000.0 * 2000.0, 1e-3);
  EXPECT_NEAR(ring.perimeter, 2 * (7800.0 + 5800.0) + 4 * 2200.0, 1e-6);
  EXPECT_EQ(ring.walls.size(), 8u);
  ASSERT_EQ(ring.polygon.holes.size(), 1u);
  EXPECT_NEAR(found.rooms[1].netArea, 1800.0 * 1800.0, 1e-3);
}

TEST_F(RoomsTest, AFreeStandingWallIsTakenOutOfTheNetArea) {
  std::vector<Wall> walls = boxWalls(0, 0, 8000, 6000);
  walls.push_back(wall(2000, 3000, 5000, 3000, 50, 50));
  const FoundRooms found = find({walls, {}});
  ASSERT_EQ(found.rooms.size(), 1u);
  EXPECT_NEAR(found.rooms[0].netArea, 7800.0 * 5800.0 - 3000.0 * 100.0, 1e-3);
  EXPECT_NEAR(found.rooms[0].grossArea, 8000.0 * 6000.0, 1e-3);
  EXPECT_EQ(found.rooms[0].walls.size(), 5u);
}

TEST_F(RoomsTest, ColumnsAreTakenOutInTheMiddleAndAtAWall) {
  const std::vector<Wall> walls = boxWalls(0, 0, 8000, 6000);
  // The second stands half in the wall, the third on its face.
  const std::vector<Polygon> columns = {rectangle(2000, 2000, 2400, 2400),
                                        rectangle(7700, 3000, 8100, 3400),
                                        rectangle(100, 1000, 400, 1300)};
  const FoundRooms found = find({walls, {}}, columns);
  ASSERT_EQ(found.rooms.size(), 1u);
  EXPECT_NEAR(found.rooms[0].netArea,
              7800.0 * 5800.0 - 400.0 * 400.0 - 200.0 * 400.0 - 300.0 * 300.0, 1e-3);
  EXPECT_NEAR(found.rooms[0].grossArea, 8000.0 * 6000.0, 1e-3);
}

TEST_F(RoomsTest, WallsThatEndAtAColumnCloseTheRoom) {
  std::vector<Wall> walls = boxWalls(0, 0, 8000, 6000);
  walls.push_back(wall(4000, 0, 4000, 2800, 50, 50));
  walls.push_back(wall(4000, 3205, 4000, 6000, 50, 50));
  const std::vector<Polygon> columns = {rectangle(3800, 2800, 4200, 3200)};
  const double half = 3850.0 * 5800.0 - 150.0 * 400.0;
  const std::vector<double> areas = netAreas(walls, columns);
  ASSERT_EQ(areas.size(), 2u);
  // The gap of 5 is filled.
  EXPECT_NEAR(areas[0], half, 1e-3);
  EXPECT_NEAR(areas[1], half, 1e-3);
}

TEST_F(RoomsTest, ACourtyardOfACorridorRing) {
  // Offices outside, a corridor around a core.
  std::vector<Wall> walls = boxWalls(0, 0, 12000, 9000, 150.0);
  for (const std::vector<Wall>& ring :
       {boxWalls(3000, 3000, 9000, 6000, 60.0), boxWalls(4500, 4000, 7500, 5000, 60.0)}) {
    walls.insert(walls.end(), ring.begin(), ring.end());
  }
  walls.push_back(wall(0, 0, 3000, 3000, 60, 60));
  walls.push_back(wall(12000, 9000, 9000, 6000, 60, 60));
  const FoundRooms found = find({walls, {}});
  ASSERT_EQ(found.rooms.size(), 4u);
  double gross = 0.0;
  for (const Room& room : found.rooms) {
    gross += room.grossArea;
    EXPECT_FALSE(room.isGrossByStrips);
  }
  EXPECT_NEAR(gross, 12000.0 * 9000.0, 1e-2);
}

TEST_F(RoomsTest, OpeningsLeadToTheRoomBehindAndOutside) {
  WallPlan plan;
  plan.walls = boxWalls(0, 0, 4000, 3000);
  plan.walls.push_back(wall(1500, 0, 1500, 3000, 50, 50));
  plan.openings.push_back({4, 1000, 1900, OpeningKind::Door});
  plan.openings.push_back({0, 2000, 3000, OpeningKind::Window});
  plan.openings.push_back({3, 500, 1400, OpeningKind::Door});
  const FoundRooms found = find(plan);
  ASSERT_EQ(found.rooms.size(), 2u);
  const Room& west = found.rooms[0];
  const Room& east = found.rooms[1];
  EXPECT_EQ(west.openings, (std::vector<std::size_t>{0, 2}));
  EXPECT_EQ(east.openings, (std::vector<std::size_t>{0, 1}));
  ASSERT_EQ(west.ways.size(), 2u);
  EXPECT_EQ(west.ways[0].room, std::optional<std::size_t>(1));
  EXPECT_EQ(west.ways[1].room, std::nullopt);
  ASSERT_EQ(east.ways.size(), 1u);
  EXPECT_EQ(east.ways[0].opening, 0u);
  EXPECT_EQ(east.ways[0].room, std::optional<std::size_t>(0));
}

TEST_F(RoomsTest, SliversAreNoRooms) {
  std::vector<Wall> walls = boxWalls(0, 0, 4000, 3000);
  walls.push_back(wall(0, 250, 4000, 250, 50, 50));
  const FoundRooms found = find({walls, {}}, {}, 0.0, 150.0);
  ASSERT_EQ(found.rooms.size(), 1u);
  ASSERT_EQ(found.slivers.size(), 1u);
  EXPECT_NEAR(areaOf(found.slivers[0]), 3800.0 * 100.0, 1e-3);
  EXPECT_EQ(find({walls, {}}, {}, 400000.0).slivers.size(), 1u);
  EXPECT_TRUE(find({walls, {}}, {}, 300000.0).slivers.empty());
}

TEST_F(RoomsTest, DoubledWallsAreOne) {
  std::vector<Wall> walls = boxWalls(0, 0, 4000, 3000);
  walls.push_back(wall(4000, 0, 0, 0));
  walls.push_back(wall(1000, 3, 3000, 3));
  const std::vector<double> areas = netAreas(walls);
  ASSERT_EQ(areas.size(), 1u);
  EXPECT_NEAR(areas[0], 3800.0 * 2800.0, 3800.0 * 4.0);
}

TEST_F(RoomsTest, ThickWallsThatEatUpShortOnes) {
  // Bodies overlap where a short wall joins two thick ones: the overlay sees to it.
  std::vector<Wall> walls = {wall(0, 0, 4000, 0, 300, 300), wall(4000, 0, 4000, 3000, 300, 300),
                             wall(4000, 3000, 0, 3000, 300, 300), wall(0, 3000, 0, 200, 300, 300),
                             wall(0, 200, 0, 0, 300, 300)};
  expectAreas(netAreas(walls), {3400.0 * 2400.0});
}

// --- laws -------------------------------------------------------------------------------------

/// A part of a plan of rooms that are parted again and again, with unequal widths.
void part(std::vector<Wall>& walls, std::mt19937& random, double x0, double y0, double x1,
          double y1) {
  std::uniform_real_distribution<double> share(0.35, 0.65);
  std::uniform_int_distribution<int> width(1, 5);
  const bool isWide = x1 - x0 > y1 - y0;
  if (std::max(x1 - x0, y1 - y0) < 5000.0) {
    return;
  }
  const double half = 25.0 * width(random);
  if (isWide) {
    const double x = x0 + std::round((x1 - x0) * share(random));
    walls.push_back(wall(x, y0, x, y1, half, half + 20.0));
    part(walls, random, x0, y0, x, y1);
    part(walls, random, x, y0, x1, y1);
  } else {
    const double y = y0 + std::round((y1 - y0) * share(random));
    walls.push_back(wall(x0, y, x1, y, half, half));
    part(walls, random, x0, y0, x1, y);
    part(walls, random, x0, y, x1, y1);
  }
}

std::vector<Wall> randomPlan(unsigned seed) {
  std::mt19937 random(seed);
  std::vector<Wall> walls = boxWalls(0, 0, 40000, 30000, 150.0);
  part(walls, random, 0, 0, 40000, 30000);
  return walls;
}

/// What must stay: areas and walls, in an order of their own.
using Signature = std::vector<std::tuple<double, double, double, std::size_t, std::size_t>>;
Signature signatureOf(const FoundRooms& found) {
  Signature all;
  for (const Room& room : found.rooms) {
    all.emplace_back(room.netArea, room.grossArea, room.perimeter, room.walls.size(),
                     room.polygon.outer.size());
  }
  std::sort(all.begin(), all.end());
  return all;
}
void expectSame(const Signature& found, const Signature& expected) {
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_NEAR(std::get<0>(found[i]), std::get<0>(expected[i]), 1e-9 * std::get<0>(expected[i]));
    EXPECT_NEAR(std::get<1>(found[i]), std::get<1>(expected[i]), 1e-9 * std::get<1>(expected[i]));
    EXPECT_NEAR(std::get<2>(found[i]), std::get<2>(expected[i]), 1e-9 * std::get<2>(expected[i]));
    EXPECT_EQ(std::get<3>(found[i]), std::get<3>(expected[i]));
    EXPECT_EQ(std::get<4>(found[i]), std::get<4>(expected[i]));
  }
}

TEST_F(RoomsTest, OrderAndDirectionOfWallsDoNotMatter) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE(seed);
    std::vector<Wall> walls = randomPlan(seed);
    const Signature expected = signatureOf(find({walls, {}}));
    EXPECT_GT(expected.size(), 20u);
    std::mt19937 random(seed);
    std::shuffle(walls.begin(), walls.end(), random);
    for (std::size_t i = 0; i < walls.size(); i += 2) {
      std::swap(walls[i].start, walls[i].end);
      std::swap(walls[i].left, walls[i].right);
    }
    expectSame(signatureOf(find({walls, {}})), expected);
  }
}

TEST_F(RoomsTest, TurnedMirroredAndMovedPlansHaveTheSameRooms) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE(seed);
    const std::vector<Wall> walls = randomPlan(seed);
    const Signature expected = signatureOf(find({walls, {}}));
    const auto expectLike = [&](auto move, bool isMirrored) {
      std::vector<Wall> moved = walls;
      for (Wall& each : moved) {
        each.start = move(each.start);
        each.end = move(each.end);
        if (isMirrored) {
          std::swap(each.left, each.right);
        }
      }
      expectSame(signatureOf(find({moved, {}})), expected);
    };
    using Point = AcGePoint2d;
    expectLike([](const Point& p) { return Point(-p.y, p.x); }, false);
    expectLike([](const Point& p) { return Point(-p.x, p.y); }, true);
    expectLike([](const Point& p) { return Point(p.x + 1.0e6, p.y - 3.0e5); }, false);
    const double cosine = std::cos(0.3);
    const double sine = std::sin(0.3);
    expectLike(
        [&](const Point& p) { return Point(cosine * p.x - sine * p.y, sine * p.x + cosine * p.y); },
        false);
  }
}

TEST_F(RoomsTest, RoomsAreTheHolesOfTheUnionOfAllBodies) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE(seed);
    std::vector<Wall> walls = randomPlan(seed);
    std::vector<Polygon> columns;
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(1000.0, 29000.0);
    for (int i = 0; i < 20; ++i) {
      const double x = place(random);
      const double y = place(random);
      columns.push_back(rectangle(x, y, x + 500.0, y + 400.0));
    }
    const std::vector<Polygon> whole =
        unionOf(bodiesOf(makeNet(walls, kCapture), columns, kCapture));
    double bodies = 0.0;
    double outline = 0.0;
    for (const Polygon& part : whole) {
      bodies += geosArea(part);
    }
    outline = 40300.0 * 30300.0;
    const FoundRooms found = find({walls, {}}, columns);
    double net = 0.0;
    for (const Room& room : found.rooms) {
      net += room.netArea;
      EXPECT_NEAR(room.netArea, geosArea(room.polygon), 1e-9 * room.netArea);
    }
    EXPECT_NEAR(net + bodies, outline, 1e-9 * outline);
  }
}

TEST_F(RoomsTest, EndsOffBySomeMillimetresKeepTheRooms) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE(seed);
    std::vector<Wall> walls = randomPlan(seed);
    const Signature expected = signatureOf(find({walls, {}}));
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> off(-4.0, 4.0);
    const double turn = 0.1 * seed;
    for (std::size_t i = 0; i < walls.size(); ++i) {
      const AcGeVector2d along = walls[i].direction();
      // Partitions end at faces, some 25 to 150 from the reference lines.
      const double shortened = i < 4 || seed % 2 == 0 ? 0.0 : 20.0;
      walls[i].start += along * (shortened + off(random));
      walls[i].end -= along * (shortened + off(random));
      for (AcGePoint2d* point : {&walls[i].start, &walls[i].end}) {
        *point = {std::cos(turn) * point->x - std::sin(turn) * point->y,
                  std::sin(turn) * point->x + std::cos(turn) * point->y};
      }
    }
    const Signature found = signatureOf(find({walls, {}}));
    ASSERT_EQ(found.size(), expected.size());
    double net = 0.0;
    double expectedNet = 0.0;
    for (std::size_t i = 0; i < found.size(); ++i) {
      net += std::get<0>(found[i]);
      expectedNet += std::get<0>(expected[i]);
    }
    EXPECT_NEAR(net, expectedNet, 1e-4 * expectedNet);
  }
}

TEST_F(RoomsTest, HeapsOfWallsLeaveFreeWhatTheUnionOfTheirBodiesDoes) {
  for (unsigned seed = 1; seed <= 30; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(0.0, 20000.0);
    std::uniform_real_distribution<double> width(0.0, 400.0);
    std::vector<Wall> walls;
    for (int i = 0; i < 40; ++i) {
      // Some from corner to corner of a coarse grid, some anywhere.
      AcGePoint2d start(place(random), place(random));
      AcGePoint2d end(place(random), place(random));
      if (i % 2 == 0) {
        for (AcGePoint2d* point : {&start, &end}) {
          *point = {std::round(point->x / 4000.0) * 4000.0, std::round(point->y / 4000.0) * 4000.0};
        }
      }
      walls.push_back({start, end, width(random), width(random)});
    }
    const WallNet net = makeNet(walls, kCapture);
    double free = 0.0;
    for (const FreeRegion& region : freeRegions(net, {}, kCapture)) {
      Ring ring;
      for (const FreeEdge& edge : region.outer) {
        ring.push_back(edge.from);
      }
      free += areaOf(ring);
      for (const FreeRing& hole : region.holes) {
        ring.clear();
        for (const FreeEdge& edge : hole) {
          ring.push_back(edge.from);
        }
        free += areaOf(ring);
      }
    }
    double expected = 0.0;
    // A body that crosses itself covers all that it goes around.
    std::vector<Polygon> simple;
    for (const Polygon& body : bodiesOf(net, {}, kCapture)) {
      for (Polygon& face : facesOf({body.outer}, 1e-7)) {
        if (windingAround(body.outer, labelPoint(face)) != 0) {
          simple.push_back(std::move(face));
        }
      }
    }
    const std::vector<Polygon> bodies = unionOf(simple);
    for (const Polygon& part : bodies) {
      for (const Ring& hole : part.holes) {
        expected -= areaOf(hole);
      }
    }
    // What stands in a hole is no part of it, with all that is in it.
    for (const Polygon& part : bodies) {
      bool isInHole = false;
      for (const Polygon& around : bodies) {
        for (const Ring& hole : around.holes) {
          isInHole = isInHole || (&around != &part && windingAround(hole, labelPoint(part)) != 0);
        }
      }
      expected -= isInHole ? areaOf(part.outer) : 0.0;
    }
    EXPECT_NEAR(free, expected, 1e-6 * expected);
  }
}

TEST_F(RoomsTest, AGridOf100000WallsTakesAboutASecond) {
  constexpr int kCells = 223;
  constexpr double kSize = 4000.0;
  WallPlan plan;
  for (int i = 0; i <= kCells; ++i) {
    for (int j = 0; j < kCells; ++j) {
      plan.walls.push_back(wall(j * kSize, i * kSize, (j + 1) * kSize, i * kSize, 60, 60));
      plan.walls.push_back(wall(i * kSize, j * kSize, i * kSize, (j + 1) * kSize, 60, 60));
    }
  }
  const std::clock_t begin = std::clock();
  const FoundRooms found = find(plan);
  const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
  std::cout << plan.walls.size() << " walls, " << found.rooms.size() << " rooms: " << seconds
            << " s of CPU\n";
  ASSERT_EQ(found.rooms.size(), static_cast<std::size_t>(kCells * kCells));
  for (const Room& room : found.rooms) {
    ASSERT_NEAR(room.netArea, 3880.0 * 3880.0, 1e-2);
    ASSERT_NEAR(room.grossArea, 4000.0 * 4000.0, 1e-2);
    ASSERT_EQ(room.walls.size(), 4u);
  }
  // What a loop over all pairs would take is minutes; sanitizers and busy machines are slow.
  EXPECT_LT(seconds, 60.0);
}

}  // namespace
}  // namespace quoin::plan
