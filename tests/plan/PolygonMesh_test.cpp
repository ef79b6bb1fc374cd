#include "plan/PolygonMesh.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>

namespace {

using quoin::plan::doubleAreaOf;
using quoin::plan::meshOf;
using quoin::plan::PolygonMesh;
using Outline = std::vector<AcGePoint2d>;

/// The laws of the header.
void expectFilled(const Outline& outline) {
  const PolygonMesh mesh = meshOf(outline);
  ASSERT_EQ(mesh.problem, "");
  EXPECT_EQ(mesh.triangles.size(), outline.size() - 2);
  std::map<std::pair<std::size_t, std::size_t>, int> edges;
  double sum = 0.0;
  for (const auto& triangle : mesh.triangles) {
    const Outline corners{outline[triangle[0]], outline[triangle[1]], outline[triangle[2]]};
    EXPECT_GE(doubleAreaOf(corners), 0.0);
    sum += doubleAreaOf(corners);
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(++edges[std::pair(triangle[i], triangle[(i + 1) % 3])], 1);
    }
  }
  const double area = doubleAreaOf(outline);
  EXPECT_NEAR(sum, std::fabs(area), 1e-9 * std::fabs(area));
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const std::size_t next = (i + 1) % outline.size();
    const auto side = area > 0.0 ? std::pair(i, next) : std::pair(next, i);
    EXPECT_EQ(edges.count(side), 1u);
    EXPECT_EQ(edges.count(std::pair(side.second, side.first)), 0u);
    edges.erase(side);
  }
  for (const auto& [edge, count] : edges) {
    EXPECT_EQ(edges.count(std::pair(edge.second, edge.first)), 1u);
  }
}

TEST(PolygonMesh, FillsConvexAndConcaveOutlinesEitherWayRound) {
  Outline outline{{0, 0}, {4, 0}, {4, 3}};
  expectFilled(outline);
  outline = {{0, 0}, {6, 0}, {6, 2}, {2, 2}, {2, 5}, {0, 5}};
  expectFilled(outline);
  std::reverse(outline.begin(), outline.end());
  expectFilled(outline);
}

TEST(PolygonMesh, KeepsCornersOnStraightSides) {
  expectFilled({{0, 0}, {1, 0}, {2, 0}, {4, 0}, {4, 1}, {4, 3}, {0, 3}, {0, 2}});
}

TEST(PolygonMesh, FillsFarFromTheOrigin) {
  const double far = 5.0e6;
  expectFilled({{far, far},
                {far + 6, far},
                {far + 6, far + 2},
                {far + 2, far + 2},
                {far + 2, far + 5},
                {far, far + 5}});
}

TEST(PolygonMesh, FillsRandomStarsAndCombs) {
  std::mt19937 random(15);
  std::uniform_real_distribution<double> share(0.05, 1.0);
  for (int run = 0; run < 200; ++run) {
    const int count = 5 + static_cast<int>(random() % 60);
    Outline star;
    Outline comb{{0.0, -1.0}};
    for (int i = 0; i < count; ++i) {
      const double angle = 2.0 * std::acos(-1.0) * (i + 0.8 * share(random)) / count;
      const double radius = 1000.0 * share(random);
      star.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
      comb.emplace_back(i, i % 2 == 0 ? 0.0 : 100.0 * share(random));
    }
    comb.emplace_back(count - 1, -1.0);
    std::reverse(comb.begin(), comb.end());
    expectFilled(star);
    expectFilled(comb);
  }
}

TEST(PolygonMesh, RefusesWhatIsNoSimplePolygon) {
  EXPECT_EQ(meshOf({{0, 0}, {1, 0}}).problem, "has fewer than three corners");
  EXPECT_EQ(meshOf({{0, 0}, {2, 2}, {2, 0}, {0, 2}}).problem,
            "is no simple polygon: Self-intersection");
  // Two squares that meet in a corner.
  EXPECT_NE(meshOf({{0, 0}, {2, 0}, {2, 2}, {4, 2}, {4, 4}, {2, 4}, {2, 2}, {0, 2}}).problem, "");
  EXPECT_NE(meshOf({{0, 0}, {1, 0}, {2, 0}}).problem, "");
}

}  // namespace
