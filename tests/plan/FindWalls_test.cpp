// Walls found from their faces: small plans by hand, and laws on random ones.
#include "plan/FindWalls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <random>
#include <string>

namespace quoin::plan {
namespace {

constexpr double kQuarter = 0.5 * std::numbers::pi;

/// A plan that is drawn line by line.
struct Sheet {
  PlanDrawing drawing;

  Sheet& line(double x0, double y0, double x1, double y1) {
    drawing.lines.push_back({{x0, y0}, {x1, y1}});
    return *this;
  }
  Sheet& rectangle(double x0, double y0, double x1, double y1) {
    return line(x0, y0, x1, y0).line(x1, y0, x1, y1).line(x1, y1, x0, y1).line(x0, y1, x0, y0);
  }
  /// The faces of a horizontal wall from x0 to x1.
  Sheet& faces(double x0, double x1, double low, double high) {
    return line(x0, low, x1, low).line(x0, high, x1, high);
  }
  Sheet& jamb(double x, double low, double high) { return line(x, low, x, high); }
  /// A door leaf's swing from a hinge, counter-clockwise.
  Sheet& swing(double x, double y, double radius, double startAngle = 0.0) {
    drawing.arcs.push_back({{x, y}, radius, startAngle, kQuarter});
    return *this;
  }
  /// A horizontal wall of 5 m, 200 wide, with jambs at 2000 and at `to`.
  Sheet& wallWithGap(double to) {
    return faces(0, 2000, 0, 200).faces(to, 5000, 0, 200).jamb(2000, 0, 200).jamb(to, 0, 200);
  }
  /// What is found with all walls that are in doubt, as those are that meet few others.
  FoundWalls find(FindWallsOptions options = {}) const {
    options.minConfidence = 0.0;
    return findWalls(drawing, options);
  }
};

std::string text(const Wall& wall) {
  return ::testing::PrintToString(
      std::vector{wall.start.x, wall.start.y, wall.end.x, wall.end.y, wall.left, wall.right});
}

bool isNear(const AcGePoint2d& a, const AcGePoint2d& b, double tolerance) {
  return std::fabs(a.x - b.x) <= tolerance && std::fabs(a.y - b.y) <= tolerance;
}

/// Whether it runs between these points, either way.
bool runsBetween(const Wall& wall, const AcGePoint2d& a, const AcGePoint2d& b, double tolerance) {
  return (isNear(wall.start, a, tolerance) && isNear(wall.end, b, tolerance)) ||
         (isNear(wall.start, b, tolerance) && isNear(wall.end, a, tolerance));
}

/// Expects one wall of the width between the points.
void expectWall(const FoundWalls& found, AcGePoint2d a, AcGePoint2d b, double width,
                double tolerance = 1e-6) {
  const auto isIt = [&](const Wall& wall) {
    return runsBetween(wall, a, b, tolerance) && std::fabs(wall.width() - width) <= tolerance;
  };
  const auto count = std::count_if(found.plan.walls.begin(), found.plan.walls.end(), isIt);
  EXPECT_EQ(count, 1) << a.x << ',' << a.y << " to " << b.x << ',' << b.y << ", " << width
                      << " wide";
  if (count != 1) {
    for (const Wall& wall : found.plan.walls) {
      ADD_FAILURE() << "found " << text(wall);
    }
  }
}

/// How many wall ends are this point bit for bit.
std::size_t endsAt(const FoundWalls& found, const AcGePoint2d& point) {
  std::size_t count = 0;
  for (const Wall& wall : found.plan.walls) {
    count += wall.start.x == point.x && wall.start.y == point.y;
    count += wall.end.x == point.x && wall.end.y == point.y;
  }
  return count;
}

/// Expects that so many ends meet near the point, in the same bits.
void expectJunction(const FoundWalls& found, const AcGePoint2d& point, std::size_t ends) {
  for (const Wall& wall : found.plan.walls) {
    for (const AcGePoint2d& end : {wall.start, wall.end}) {
      if (isNear(end, point, 1e-6)) {
        EXPECT_EQ(endsAt(found, end), ends) << end.x << ',' << end.y;
        return;
      }
    }
  }
  ADD_FAILURE() << "no wall ends at " << point.x << ',' << point.y;
}

/// Expects one opening between two places on a wall along x.
void expectOpening(const FoundWalls& found, double from, double to, OpeningKind kind,
                   double tolerance = 1e-6) {
  ASSERT_EQ(found.plan.openings.size(), 1U);
  const Opening& opening = found.plan.openings.front();
  ASSERT_LT(opening.wall, found.plan.walls.size());
  const double a = found.plan.startOf(opening).x;
  const double b = found.plan.endOf(opening).x;
  EXPECT_NEAR(std::min(a, b), from, tolerance);
  EXPECT_NEAR(std::max(a, b), to, tolerance);
  EXPECT_EQ(nameOf(opening.kind), std::string(nameOf(kind)));
}

// Walls ------------------------------------------------------------------------------------------

TEST(FindWalls, TwoFacesAreAWallMidwayBetweenThem) {
  const FoundWalls found = Sheet().faces(0, 4000, 0, 200).find();
  ASSERT_EQ(found.plan.walls.size(), 1U);
  expectWall(found, {0, 100}, {4000, 100}, 200);
  EXPECT_EQ(found.plan.walls[0].left, 100);
  EXPECT_EQ(found.plan.walls[0].right, 100);
  EXPECT_LE(found.plan.walls[0].confidence, 1.0);
  EXPECT_EQ(found.faces, (std::vector<std::vector<std::size_t>>{{0, 1}}));
  EXPECT_TRUE(found.leftOver.empty());
  ASSERT_EQ(found.widths.size(), 1U);
  EXPECT_NEAR(found.widths[0].width, 200, 1e-6);
  EXPECT_NEAR(found.widths[0].length, 4000, 1e-6);
}

TEST(FindWalls, AWallThatMeetsNoOtherIsLessSure) {
  Sheet sheet = Sheet().rectangle(0, 0, 6000, 4000).rectangle(200, 200, 5800, 3800);
  sheet.faces(1500, 4500, 2000, 2120);
  const FoundWalls found = sheet.find();
  ASSERT_EQ(found.plan.walls.size(), 5U);
  double alone = 1.0;
  double joined = 1.0;
  for (const Wall& wall : found.plan.walls) {
    EXPECT_LE(wall.confidence, 1.0);
    double& least = wall.width() < 150 ? alone : joined;
    least = std::min(least, wall.confidence);
  }
  EXPECT_LT(alone, joined);
  EXPECT_GE(joined, FindWallsOptions().minConfidence);
}

TEST(FindWalls, EndsThatAreClosedBelongToTheWall) {
  const FoundWalls found = Sheet().rectangle(0, 0, 4000, 200).find();
  ASSERT_EQ(found.plan.walls.size(), 1U);
  expectWall(found, {0, 100}, {4000, 100}, 200);
  EXPECT_TRUE(found.leftOver.empty());
}

TEST(FindWalls, ObliqueFacesAreAWall) {
  const FoundWalls found = Sheet().line(0, 0, 4000, 3000).line(-120, 160, 3880, 3160).find();
  ASSERT_EQ(found.plan.walls.size(), 1U);
  expectWall(found, {-60, 80}, {3940, 3080}, 200);
}

TEST(FindWalls, WallsOfAnLMeetInOnePoint) {
  const FoundWalls found = Sheet()
                               .line(0, 0, 4000, 0)
                               .line(0, 0, 0, 3000)
                               .line(120, 200, 4000, 200)
                               .line(120, 200, 120, 3000)
                               .find();
  ASSERT_EQ(found.plan.walls.size(), 2U);
  expectWall(found, {60, 100}, {4000, 100}, 200);
  expectWall(found, {60, 100}, {60, 3000}, 120);
  expectJunction(found, {60, 100}, 2);
}

TEST(FindWalls, WallsOfATMeetInOnePoint) {
  const FoundWalls found = Sheet()
                               .line(0, 0, 6000, 0)
                               .line(0, 200, 3000, 200)
                               .line(3120, 200, 6000, 200)
                               .line(3000, 200, 3000, 3000)
                               .line(3120, 200, 3120, 3000)
                               .find();
  ASSERT_EQ(found.plan.walls.size(), 3U);
  expectWall(found, {0, 100}, {3060, 100}, 200);
  expectWall(found, {3060, 100}, {6000, 100}, 200);
  expectWall(found, {3060, 100}, {3060, 3000}, 120);
  expectJunction(found, {3060, 100}, 3);
}

TEST(FindWalls, WallsOfACrossMeetInOnePoint) {
  Sheet sheet;
  for (const double side : {-1.0, 1.0}) {
    sheet.line(-3000, side * 60, -100, side * 60).line(100, side * 60, 3000, side * 60);
    sheet.line(side * 100, -3000, side * 100, -60).line(side * 100, 60, side * 100, 3000);
  }
  const FoundWalls found = sheet.find();
  ASSERT_EQ(found.plan.walls.size(), 4U);
  expectWall(found, {0, 0}, {3000, 0}, 120);
  expectWall(found, {0, 0}, {0, 3000}, 200);
  expectJunction(found, {0, 0}, 4);
}

TEST(FindWalls, WallsOfAYMeetInOnePoint) {
  Sheet sheet;
  const auto at = [](double distance, double angle) {
    return AcGePoint2d{700 + distance * std::cos(angle), 300 + distance * std::sin(angle)};
  };
  const double third = 4.0 * kQuarter / 3.0;
  // Faces meet on the bisectors between walls 200 wide.
  const double corner = 100.0 / std::sin(0.5 * third);
  for (int i = 0; i < 3; ++i) {
    const double angle = kQuarter + i * third;
    for (const double side : {-1.0, 1.0}) {
      const AcGePoint2d from = at(corner, angle + side * 0.5 * third);
      sheet.line(from.x, from.y, from.x + 3000 * std::cos(angle), from.y + 3000 * std::sin(angle));
    }
  }
  const FoundWalls found = sheet.find();
  ASSERT_EQ(found.plan.walls.size(), 3U);
  expectJunction(found, {700, 300}, 3);
  for (const Wall& wall : found.plan.walls) {
    EXPECT_NEAR(wall.width(), 200, 1e-6);
  }
}

TEST(FindWalls, AWallThatGoesOnThinnerWithOneFaceFlushStaysOnOneLine) {
  // The wall in the south is 300 wide up to x = 3000, then 120; its outer face is one line.
  const FoundWalls found = Sheet()
                               .rectangle(0, 0, 6000, 4000)
                               .line(300, 300, 3000, 300)
                               .jamb(3000, 120, 300)
                               .line(3000, 120, 5880, 120)
                               .line(5880, 120, 5880, 3700)
                               .line(5880, 3700, 300, 3700)
                               .line(300, 3700, 300, 300)
                               .find();
  ASSERT_EQ(found.plan.walls.size(), 5U);
  std::vector<const Wall*> south;
  for (const Wall& wall : found.plan.walls) {
    if (wall.start.y < 1000 && wall.end.y < 1000) {
      south.push_back(&wall);
    }
  }
  ASSERT_EQ(south.size(), 2U);
  expectJunction(found, {3000, south[0]->start.y}, 2);
  for (const Wall* wall : south) {
    EXPECT_EQ(wall->start.y, south[0]->start.y);
    EXPECT_EQ(wall->end.y, south[0]->start.y);
    // The outer face, on the right of a wall that runs along x.
    const bool isAlong = wall->end.x > wall->start.x;
    EXPECT_NEAR(wall->start.y - (isAlong ? wall->right : wall->left), 0, 1e-6);
    EXPECT_NEAR(wall->width(), std::min(wall->start.x, wall->end.x) < 2000 ? 300 : 120, 1e-6);
  }
}

TEST(FindWalls, WidthsAreToldByTheOptions) {
  const Sheet sheet = Sheet().faces(0, 4000, 0, 200).faces(0, 4000, 5000, 5400);
  FindWallsOptions options;
  options.maxWidth = 300;
  const FoundWalls narrow = sheet.find(options);
  ASSERT_EQ(narrow.plan.walls.size(), 1U);
  EXPECT_NEAR(narrow.plan.walls[0].width(), 200, 1e-6);
  EXPECT_EQ(narrow.leftOver, (std::vector<std::size_t>{2, 3}));
  options = {};
  options.minWidth = 300;
  const FoundWalls wide = sheet.find(options);
  ASSERT_EQ(wide.plan.walls.size(), 1U);
  EXPECT_NEAR(wide.plan.walls[0].width(), 400, 1e-6);
}

TEST(FindWalls, MetresGiveTheSameWalls) {
  const FoundWalls found = Sheet().faces(0, 4, 0, 0.2).find(FindWallsOptions::inUnitsOf(1000.0));
  ASSERT_EQ(found.plan.walls.size(), 1U);
  expectWall(found, {0, 0.1}, {4, 0.1}, 0.2, 1e-9);
}

TEST(FindWalls, FarFromTheOriginNothingChanges) {
  const double far = 5e6;
  const FoundWalls found = Sheet()
                               .line(far, far, far + 4000, far)
                               .line(far, far, far, far + 3000)
                               .line(far + 200, far + 200, far + 4000, far + 200)
                               .line(far + 200, far + 200, far + 200, far + 3000)
                               .find();
  ASSERT_EQ(found.plan.walls.size(), 2U);
  expectWall(found, {far + 100, far + 100}, {far + 4000, far + 100}, 200);
  expectJunction(found, {far + 100, far + 100}, 2);
}

// Openings ---------------------------------------------------------------------------------------

TEST(FindWalls, AGapWithJambsAndALeafIsADoor) {
  const FoundWalls found = Sheet().wallWithGap(2900).swing(2000, 200, 900).find();
  ASSERT_EQ(found.plan.walls.size(), 1U);
  expectWall(found, {0, 100}, {5000, 100}, 200);
  expectOpening(found, 2000, 2900, OpeningKind::Door);
}

TEST(FindWalls, LinesBetweenTheJambsAreAWindow) {
  const FoundWalls found =
      Sheet().wallWithGap(3500).line(2000, 80, 3500, 80).line(2000, 120, 3500, 120).find();
  ASSERT_EQ(found.plan.walls.size(), 1U);
  expectOpening(found, 2000, 3500, OpeningKind::Window);
}

TEST(FindWalls, AGapWithNothingInItIsAnOpening) {
  const FoundWalls found = Sheet().wallWithGap(3000).find();
  ASSERT_EQ(found.plan.walls.size(), 1U);
  expectOpening(found, 2000, 3000, OpeningKind::Opening);
}

TEST(FindWalls, TwoLinesFlushWithTheFacesBetweenJambsAreAWindow) {
  const FoundWalls found =
      Sheet().wallWithGap(3500).line(2000, 0, 3500, 0).line(2000, 200, 3500, 200).find();
  ASSERT_EQ(found.plan.walls.size(), 1U);
  expectOpening(found, 2000, 3500, OpeningKind::Window);
}

TEST(FindWalls, AWindowThinnerThanItsWallIsNoWall) {
  const FoundWalls found =
      Sheet().wallWithGap(2600).line(2000, 70, 2600, 70).line(2000, 130, 2600, 130).find();
  ASSERT_EQ(found.plan.walls.size(), 1U);
  expectWall(found, {0, 100}, {5000, 100}, 200);
  expectOpening(found, 2000, 2600, OpeningKind::Window);
}

TEST(FindWalls, ASymbolSaysWhatAGapIs) {
  Sheet sheet = Sheet().wallWithGap(2900);
  sheet.drawing.symbols.push_back({{{2000, 0}, {2900, 900}}, true, OpeningKind::Door});
  expectOpening(sheet.find(), 2000, 2900, OpeningKind::Door);
}

TEST(FindWalls, AGapWiderThanAnOpeningPartsTheWall) {
  const FoundWalls found = Sheet().faces(0, 4000, 0, 200).faces(8000, 12000, 0, 200).find();
  EXPECT_EQ(found.plan.walls.size(), 2U);
  EXPECT_TRUE(found.plan.openings.empty());
}

// What is no wall --------------------------------------------------------------------------------

TEST(FindWalls, FurnitureAloneIsNoWall) {
  const FoundWalls table = findWalls(Sheet().rectangle(0, 0, 1600, 400).drawing, {});
  EXPECT_TRUE(table.plan.walls.empty());
  EXPECT_EQ(table.leftOver.size(), 4U);
  Sheet stairs;
  for (int i = 0; i <= 12; ++i) {
    stairs.line(270 * i, 0, 270 * i, 1000);
  }
  stairs.line(0, 0, 3240, 0).line(0, 1000, 3240, 1000);
  const FoundWalls found = findWalls(stairs.drawing, {});
  EXPECT_TRUE(found.plan.walls.empty());
  EXPECT_EQ(found.leftOver.size(), stairs.drawing.lines.size());
}

TEST(FindWalls, NoLinesGiveNoWalls) {
  const FoundWalls found = Sheet().find();
  EXPECT_TRUE(found.plan.walls.empty());
  EXPECT_TRUE(found.plan.openings.empty());
  EXPECT_TRUE(found.leftOver.empty());
  EXPECT_TRUE(found.widths.empty());
}

TEST(FindWalls, LinesThatCannotBeUsedAreLeftOver) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinite = std::numeric_limits<double>::infinity();
  const FoundWalls found = Sheet()
                               .line(nan, 0, 4000, 0)
                               .faces(0, 4000, 0, 200)
                               .line(50, 50, 50, 50)
                               .line(0, 0, infinite, 0)
                               .find();
  ASSERT_EQ(found.plan.walls.size(), 1U);
  expectWall(found, {0, 100}, {4000, 100}, 200);
  EXPECT_EQ(found.leftOver, (std::vector<std::size_t>{0, 3, 4}));
}

// What is drawn with errors ----------------------------------------------------------------------

TEST(FindWalls, FacesDrawnTwiceAreOneWall) {
  const FoundWalls found =
      Sheet().faces(0, 4000, 0, 200).line(4000, 200, 0, 200).line(500, 1, 2500, 1).find();
  ASSERT_EQ(found.plan.walls.size(), 1U);
  expectWall(found, {0, 100}, {4000, 100}, 200, 2.0);
  EXPECT_TRUE(found.leftOver.empty());
}

TEST(FindWalls, CornersThatMissByLessThanTheReachMeet) {
  // Outer faces overshoot by 12, inner ones end 15 before the corner.
  const FoundWalls found = Sheet()
                               .line(-12, 0, 4000, 0)
                               .line(0, -12, 0, 3000)
                               .line(215, 200, 4000, 200)
                               .line(200, 215, 200, 3000)
                               .find();
  ASSERT_EQ(found.plan.walls.size(), 2U);
  expectWall(found, {100, 100}, {4000, 100}, 200);
  expectWall(found, {100, 100}, {100, 3000}, 200);
  expectJunction(found, {100, 100}, 2);
}

TEST(FindWalls, AStemThatEndsShortOfItsWallReachesIt) {
  const FoundWalls found =
      Sheet().faces(0, 6000, 0, 200).line(3000, 220, 3000, 3000).line(3120, 230, 3120, 3000).find();
  ASSERT_EQ(found.plan.walls.size(), 3U);
  expectJunction(found, {3060, 100}, 3);
}

TEST(FindWalls, FacesInPiecesAreOneWall) {
  const FoundWalls found = Sheet()
                               .line(0, 0, 1500, 0)
                               .line(1503, 1, 4000, 1)
                               .line(0, 200, 2500, 200)
                               .line(2490, 200, 4000, 200)
                               .find();
  ASSERT_EQ(found.plan.walls.size(), 1U);
  EXPECT_NEAR(found.plan.walls[0].length(), 4000, 5.0);
  EXPECT_NEAR(found.plan.walls[0].width(), 200, 5.0);
}

TEST(FindWalls, FacesTurnedByLessThanTheToleranceAreParallel) {
  const FoundWalls found = Sheet().line(0, 0, 4000, 4).line(0, 200, 4000, 200).find();
  ASSERT_EQ(found.plan.walls.size(), 1U);
  EXPECT_NEAR(found.plan.walls[0].width(), 198, 5.0);
  EXPECT_NEAR(found.plan.walls[0].length(), 4000, 5.0);
}

TEST(FindWalls, FacesTurnedByMoreAreNone) {
  const FoundWalls found = Sheet().line(0, 0, 4000, 700).line(0, 200, 4000, 200).find();
  EXPECT_TRUE(found.plan.walls.empty());
}

// Laws -------------------------------------------------------------------------------------------

/// A building of rooms in a grid: every line of the grid is a wall of one width, most walls between
/// neighbouring rooms have a door or a plain opening. `untidy` moves ends by that much at most.
PlanDrawing randomRooms(std::mt19937& random, double untidy) {
  const auto between = [&](double least, double most) {
    return std::uniform_real_distribution<>(least, most)(random);
  };
  const auto gridOf = [&](std::size_t cells) {
    std::vector<std::pair<double, double>> lines;  // place, half the width
    double at = std::floor(between(-9000, 9000));
    for (std::size_t i = 0; i <= cells; ++i) {
      const bool isOuter = i == 0 || i == cells;
      lines.emplace_back(at, isOuter ? 150.0 : (random() % 2 == 0 ? 60.0 : 100.0));
      at += std::floor(between(2800, 5200));
    }
    return lines;
  };
  const auto columns = gridOf(2 + random() % 3);
  const auto rows = gridOf(2 + random() % 3);
  PlanDrawing drawing;
  // A line between two places along x, or along y where `isAcross`.
  const auto add = [&](bool isAcross, double from, double to, double beside) {
    from += between(-untidy, untidy);
    to += between(-untidy, untidy);
    drawing.lines.push_back(isAcross ? PlanLine{{beside, from}, {beside, to}}
                                     : PlanLine{{from, beside}, {to, beside}});
  };
  for (const bool isAcross : {false, true}) {
    const auto& along = isAcross ? rows : columns;
    const auto& walls = isAcross ? columns : rows;
    for (std::size_t i = 0; i < walls.size(); ++i) {
      const auto [place, half] = walls[i];
      const bool isOuter = i == 0 || i + 1 == walls.size();
      if (isOuter) {
        const double out = i == 0 ? place - half : place + half;
        add(isAcross, along.front().first - along.front().second,
            along.back().first + along.back().second, out);
      }
      for (std::size_t j = 0; j + 1 < along.size(); ++j) {
        const double from = along[j].first + along[j].second;
        const double to = along[j + 1].first - along[j + 1].second;
        if (isOuter || random() % 4 == 0) {
          if (i != 0) {
            add(isAcross, from, to, place - half);
          }
          if (i + 1 != walls.size()) {
            add(isAcross, from, to, place + half);
          }
          continue;
        }
        const double gap = from + std::floor(between(300, to - from - 1300));
        for (const double side : {place - half, place + half}) {
          add(isAcross, from, gap, side);
          add(isAcross, gap + 900, to, side);
        }
        for (const double jamb : {gap, gap + 900}) {
          add(!isAcross, place - half, place + half, jamb);
        }
        if (random() % 2 == 0) {
          const AcGePoint2d hinge =
              isAcross ? AcGePoint2d{place + half, gap} : AcGePoint2d{gap, place + half};
          drawing.arcs.push_back({hinge, 900, 0.0, kQuarter});
        }
      }
    }
  }
  return drawing;
}

using PointMap = std::function<AcGePoint2d(const AcGePoint2d&)>;

PlanDrawing mapped(const PlanDrawing& drawing, const PointMap& map,
                   const std::function<double(const PlanArc&)>& startAngle) {
  PlanDrawing result = drawing;
  for (PlanLine& line : result.lines) {
    line = {map(line.start), map(line.end)};
  }
  for (PlanArc& arc : result.arcs) {
    arc.startAngle = startAngle(arc);
    arc.center = map(arc.center);
  }
  return result;
}

/// Expects the walls and openings of the one plan, moved, to be those of the other.
void expectSame(const FoundWalls& found, const FoundWalls& other, const PointMap& map) {
  ASSERT_EQ(found.plan.walls.size(), other.plan.walls.size());
  ASSERT_EQ(found.plan.openings.size(), other.plan.openings.size());
  EXPECT_EQ(found.leftOver.size(), other.leftOver.size());
  for (const Wall& wall : found.plan.walls) {
    const auto isIt = [&](const Wall& same) {
      return runsBetween(same, map(wall.start), map(wall.end), 1e-6) &&
             std::fabs(same.width() - wall.width()) <= 1e-6 &&
             std::fabs(same.confidence - wall.confidence) <= 1e-6;
    };
    EXPECT_EQ(std::count_if(other.plan.walls.begin(), other.plan.walls.end(), isIt), 1)
        << text(wall);
  }
  for (const Opening& opening : found.plan.openings) {
    const AcGePoint2d a = map(found.plan.startOf(opening));
    const AcGePoint2d b = map(found.plan.endOf(opening));
    const auto isIt = [&](const Opening& same) {
      return same.kind == opening.kind &&
             runsBetween({other.plan.startOf(same), other.plan.endOf(same)}, a, b, 1e-6);
    };
    EXPECT_EQ(std::count_if(other.plan.openings.begin(), other.plan.openings.end(), isIt), 1)
        << a.x << ',' << a.y;
  }
}

class FindWallsLaws : public ::testing::TestWithParam<double> {
 protected:
  /// Compares 40 random plans with what `change` makes of them.
  void compare(
      const std::function<PlanDrawing(const PlanDrawing&, std::mt19937&)>& change,
      const PointMap& map = [](const AcGePoint2d& point) { return point; }) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
      SCOPED_TRACE("seed " + std::to_string(seed));
      std::mt19937 random(seed);
      const PlanDrawing drawing = randomRooms(random, GetParam());
      const PlanDrawing changed = change(drawing, random);
      const FoundWalls found = findWalls(drawing, {});
      ASSERT_FALSE(found.plan.walls.empty());
      expectSame(found, findWalls(changed, {}), map);
      if (HasFailure()) {
        return;
      }
    }
  }
};

TEST_P(FindWallsLaws, TheOrderOfTheLinesDoesNotMatter) {
  compare([](PlanDrawing drawing, std::mt19937& random) {
    std::shuffle(drawing.lines.begin(), drawing.lines.end(), random);
    std::shuffle(drawing.arcs.begin(), drawing.arcs.end(), random);
    return drawing;
  });
}

TEST_P(FindWallsLaws, TheDirectionOfTheLinesDoesNotMatter) {
  compare([](PlanDrawing drawing, std::mt19937& random) {
    for (PlanLine& line : drawing.lines) {
      if (random() % 2 == 0) {
        std::swap(line.start, line.end);
      }
    }
    return drawing;
  });
}

TEST_P(FindWallsLaws, TurnedByAQuarterThePlanHasTheSameWalls) {
  const PointMap turn = [](const AcGePoint2d& point) { return AcGePoint2d{-point.y, point.x}; };
  compare(
      [&](const PlanDrawing& drawing, std::mt19937&) {
        return mapped(drawing, turn, [](const PlanArc& arc) { return arc.startAngle + kQuarter; });
      },
      turn);
}

TEST_P(FindWallsLaws, MirroredThePlanHasTheSameWalls) {
  const PointMap mirror = [](const AcGePoint2d& point) { return AcGePoint2d{-point.x, point.y}; };
  compare(
      [&](const PlanDrawing& drawing, std::mt19937&) {
        return mapped(drawing, mirror, [](const PlanArc& arc) {
          return 2.0 * kQuarter - arc.startAngle - arc.sweep;
        });
      },
      mirror);
}

TEST_P(FindWallsLaws, ShiftedThePlanHasTheSameWalls) {
  const PointMap shift = [](const AcGePoint2d& point) {
    return AcGePoint2d{point.x + 123456.0, point.y - 654321.0};
  };
  compare(
      [&](const PlanDrawing& drawing, std::mt19937&) {
        return mapped(drawing, shift, [](const PlanArc& arc) { return arc.startAngle; });
      },
      shift);
}

INSTANTIATE_TEST_SUITE_P(TidyAndNot, FindWallsLaws, ::testing::Values(0.0, 6.0),
                         [](const ::testing::TestParamInfo<double>& untidy) {
                           return untidy.param == 0.0 ? "Tidy" : "EndsOff";
                         });

TEST(FindWalls, ALineFarOffChangesNothing) {
  Sheet sheet;
  sheet.wallWithGap(2900);
  const FoundWalls near = sheet.find();
  sheet.line(1e15, 1e15, 1.001e15, 1e15).line(-1e15, 0, 1e15, 1e14);
  const FoundWalls far = sheet.find();
  ASSERT_EQ(near.plan.walls.size(), 1U);
  ASSERT_EQ(far.plan.walls.size(), 1U);
  EXPECT_TRUE(isNear(far.plan.walls[0].start, near.plan.walls[0].start, 1e-9));
  EXPECT_EQ(far.plan.walls[0].width(), 200.0);
  EXPECT_EQ(far.plan.openings.size(), near.plan.openings.size());
}

// No wall has a face outside, and none ends at another.
TEST(FindWalls, RoomsDrawnAsRectanglesHaveWallsBetweenThem) {
  Sheet sheet;
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      const double x = 4120.0 * column;
      const double y = 3120.0 * row;
      sheet.rectangle(x, y, x + 4000.0, y + 3000.0);
    }
  }
  const FoundWalls found = findWalls(sheet.drawing, {});
  // Three lines each way, parted where they cross.
  EXPECT_EQ(found.plan.walls.size(), 24U);
  for (const Wall& wall : found.plan.walls) {
    EXPECT_EQ(wall.width(), 120.0) << text(wall);
  }
}

TEST(FindWalls, EndsOfARandomBuildingMeetBitForBit) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    std::mt19937 random(seed);
    const FoundWalls found = findWalls(randomRooms(random, 6.0), {});
    for (const Wall& wall : found.plan.walls) {
      for (const AcGePoint2d& end : {wall.start, wall.end}) {
        EXPECT_GE(endsAt(found, end), 2U) << "seed " << seed << ", " << text(wall);
      }
    }
  }
}

}  // namespace
}  // namespace quoin::plan
