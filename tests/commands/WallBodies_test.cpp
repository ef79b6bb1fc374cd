// Walls among those that can matter are shown as among all others, bit for bit.
#include "commands/WallBodies.h"

#include <gtest/gtest.h>

#include "ProjectScale.h"
#include "support/RunningHost.h"
#include "support/SameBits.h"
#include "support/WallLineSets.h"

namespace quoin::commands {
namespace {

std::vector<BodyWall> wallsAlong(const std::vector<WallLineLikeSeg>& lines) {
  std::vector<BodyWall> walls;
  for (const WallLineLikeSeg& line : lines) {
    const double width = 1.0 + static_cast<double>(walls.size() % 3);
    walls.push_back({{line.ptStart, line.ptEnd, AcDbObjectId(), 0, false}, {width, 2.0}});
  }
  return walls;
}

/// The records of all walls and the algorithm object that shows one of them among all others.
class AmongAll {
 public:
  AmongAll(const std::vector<BodyWall>& walls, std::size_t shown) {
    for (const BodyWall& wall : walls) {
      m_algorithm.GetAllWallRect().push_back(new WallEntityLikeRect{
          wall.line.start, wall.line.end, wall.widths.left, wall.widths.right});
    }
    WallEntityLikeRect*& own = m_algorithm.GetAllWallRect()[shown];
    *m_algorithm.GetShowWall() = *own;
    delete own;
    own = nullptr;
  }
  ~AmongAll() { m_algorithm.GetAllWallRect().push_back(m_algorithm.GetShowWall()); }
  AmongAll(const AmongAll&) = delete;
  AmongAll& operator=(const AmongAll&) = delete;

  CShowWallLikeAlgorithm& algorithm() { return m_algorithm; }

 private:
  CShowWallLikeAlgorithm m_algorithm;
};

void expectSameOutline(const WallOutline& outline, CShowWallLikeAlgorithm& all) {
  all.CalcShowWall();
  EXPECT_TRUE(test::sameLine(outline.left, *all.GetLeftWall()));
  EXPECT_TRUE(test::sameLine(outline.right, *all.GetRightWall()));
  ASSERT_EQ(outline.start.has_value(), all.GetStartWall() != nullptr);
  ASSERT_EQ(outline.end.has_value(), all.GetEndWall() != nullptr);
  EXPECT_TRUE(!outline.start || test::sameLine(*outline.start, *all.GetStartWall()));
  EXPECT_TRUE(!outline.end || test::sameLine(*outline.end, *all.GetEndWall()));
  std::vector<WallEntityLikeRect> connections;
  for (const auto* array : {&all.GetStartWallArray(), &all.GetEndWallArray()}) {
    for (const WallEntityLikeRect* record : *array) {
      connections.push_back(*record);
    }
  }
  EXPECT_TRUE(test::sameLines(outline.connections, connections));
}

void expectSameFaces(const PrepareFrom2dTo3dData& faces, const CShowWallLikeAlgorithm& algorithm) {
  const PrepareFrom2dTo3dData all = algorithm.CalcShowWallPrepareFor3d();
  EXPECT_EQ(faces.bHasStartWall, all.bHasStartWall);
  EXPECT_EQ(faces.bHasEndWall, all.bHasEndWall);
  EXPECT_TRUE(test::sameBits(faces.ptStartLeft, all.ptStartLeft));
  EXPECT_TRUE(test::sameBits(faces.ptStartMid, all.ptStartMid));
  EXPECT_TRUE(test::sameBits(faces.ptStartRight, all.ptStartRight));
  EXPECT_TRUE(test::sameBits(faces.ptEndLeft, all.ptEndLeft));
  EXPECT_TRUE(test::sameBits(faces.ptEndMid, all.ptEndMid));
  EXPECT_TRUE(test::sameBits(faces.ptEndRight, all.ptEndRight));
}

void compareWithAll(const std::vector<BodyWall>& walls, double scale) {
  const double captureDistance = GetCaptureDistance(scale);
  const std::vector<WallOutline> outlines = showWalls(walls, captureDistance);
  const std::vector<PrepareFrom2dTo3dData> faces = prepareWalls(walls, captureDistance);
  ASSERT_EQ(outlines.size(), walls.size());
  ASSERT_EQ(faces.size(), walls.size());
  for (std::size_t i = 0; i < walls.size(); ++i) {
    expectSameOutline(outlines[i], AmongAll(walls, i).algorithm());
    expectSameFaces(faces[i], AmongAll(walls, i).algorithm());
  }
}

TEST(WallBodies, AreShownAsAmongAllWallsBitForBit) {
  test::RunningHost host;
  std::mt19937_64 random(20261123);
  for (int round = 0; round < 60; ++round) {
    const std::vector<BodyWall> walls = wallsAlong(test::randomWallLines(random, 2 + round % 30));
    for (const double scale : test::projectScales()) {
      host.setScale(scale);
      compareWithAll(walls, scale);
    }
  }
}

TEST(WallBodies, AreShownAsAmongAllWallsWhereTheyLieUnevenly) {
  test::RunningHost host;
  std::mt19937_64 random(20261124);
  for (int kind = 0; kind < test::kUnevenKinds; ++kind) {
    const std::vector<BodyWall> walls = wallsAlong(test::unevenWallLines(random, kind, 80));
    for (const double scale : {1.0, 100.0, 0.01}) {
      host.setScale(scale);
      compareWithAll(walls, scale);
    }
  }
}

TEST(WallBodies, AreShownAsAmongAllWallsAtTheEndsOfTheNumbers) {
  test::RunningHost host;
  std::mt19937_64 random(20261125);
  for (int round = 0; round < 60; ++round) {
    const std::vector<BodyWall> walls = wallsAlong(test::extremeWallLines(random, 2 + round % 20));
    for (const double scale : test::projectScales()) {
      host.setScale(scale);
      compareWithAll(walls, scale);
    }
  }
}

}  // namespace
}  // namespace quoin::commands
