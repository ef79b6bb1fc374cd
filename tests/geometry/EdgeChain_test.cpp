// The chaining of edges against its direct form, bit for bit.
#include "EdgeChain.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <random>

#include "oracle/EdgeChainOracle.h"
#include "support/GeometryText.h"
#include "support/SameBits.h"

namespace {

using quoin::test::sameBits;
using Edges = std::vector<PolygonEdge>;

std::vector<AcGePoint3d> chained(const Edges& edges) {
  std::vector<AcGePoint3d> vertices;
  ChainEdges(edges, vertices);
  return vertices;
}

/// Whether the direct form ends; both give the same then.
bool expectSame(const Edges& edges) {
  std::vector<quoin::oracle::Edge> plain;
  for (const PolygonEdge& edge : edges) {
    plain.push_back({edge.start, edge.end});
  }
  const auto expected = quoin::oracle::chainEdges(plain);
  if (!expected) {
    return false;
  }
  const std::vector<AcGePoint3d> actual = chained(edges);
  EXPECT_EQ(actual.size(), expected->size());
  for (std::size_t i = 0; i < std::min(actual.size(), expected->size()); ++i) {
    EXPECT_TRUE(sameBits(actual[i], (*expected)[i])) << "vertex " << i;
  }
  return true;
}

TEST(EdgeChain, BeginsWithTheEndOfTheLastEdge) {
  const std::vector<AcGePoint3d> vertices =
      chained({{{0, 0, 0}, {10, 0, 0}}, {{10, 0, 0}, {10, 10, 0}}, {{10, 10, 0}, {0, 0, 0}}});
  ASSERT_EQ(vertices.size(), 3u);
  EXPECT_EQ(quoin::test::text(vertices[0]), quoin::test::text(AcGePoint3d(0, 0, 0)));
  EXPECT_EQ(quoin::test::text(vertices[1]), quoin::test::text(AcGePoint3d(10, 0, 0)));
  EXPECT_EQ(quoin::test::text(vertices[2]), quoin::test::text(AcGePoint3d(10, 10, 0)));
}

TEST(EdgeChain, TakesTheFirstEdgeOfSeveralAndItsStartBeforeItsEnd) {
  const Edges edges{{{5, 0, 0}, {0, 0, 0}},  // touches with its end, but comes first
                    {{0, 0, 0}, {7, 0, 0}},
                    {{7, 0, 0}, {5, 0, 0}},
                    {{9, 9, 9}, {0, 0, 0}}};
  const std::vector<AcGePoint3d> vertices = chained(edges);
  ASSERT_EQ(vertices.size(), 4u);
  EXPECT_EQ(vertices[1].x, 5.0);
  EXPECT_TRUE(expectSame(edges));
}

TEST(EdgeChain, GivesTheSameBitsAsItsDirectForm) {
  std::mt19937_64 random(1);
  int ended = 0;
  for (int round = 0; round < 10000; ++round) {
    // Few places, near each other and far out, so that edges share ends, touch within the
    // tolerance, cross cells and have no length.
    const double places[] = {
        0.0,           -0.0,  1e-8,      -1e-8, 1.0, 1.0 + 0.9e-10, 1.0e-8 + 0.5e-10,
        3.0 - 0.4e-10, 1.0e9, 123456.789};
    std::uniform_int_distribution<std::size_t> place(0, std::size(places) - 1);
    std::uniform_int_distribution<int> jitter(-2, 2);
    const std::size_t count = 2 + random() % 9;
    std::vector<AcGePoint3d> corners;
    for (std::size_t i = 0; i < count; ++i) {
      corners.push_back({places[place(random)], places[place(random)],
                         round % 3 == 0 ? places[place(random)] : 0.0});
    }
    Edges edges;
    for (std::size_t i = 0; i < count; ++i) {
      const auto near = [&](AcGePoint3d corner) {
        corner.x += jitter(random) * 0.3e-10;
        return corner;
      };
      PolygonEdge edge{near(corners[i]), near(corners[(i + 1) % count])};
      if (random() % 2 == 0) {
        std::swap(edge.start, edge.end);
      }
      edges.push_back(edge);
    }
    std::shuffle(edges.begin(), edges.end(), random);
    ended += expectSame(edges) ? 1 : 0;
    ASSERT_FALSE(HasFailure()) << "round " << round;
  }
  EXPECT_GT(ended, 3000);  // enough of them close
}

TEST(EdgeChain, OfALargeShuffledLoopGivesTheSameBits) {
  std::mt19937_64 random(2);
  Edges edges;
  for (int i = 0; i < 3000; ++i) {
    const auto corner = [](int at) {
      return AcGePoint3d(at % 3000 * 0.25, at % 3000 % 7 * 1.0, 0.0);
    };
    edges.push_back({corner(i), corner(i + 1)});
  }
  std::shuffle(edges.begin(), edges.end(), random);
  EXPECT_TRUE(expectSame(edges));
}

TEST(EdgeChainDeathTest, NeverReturnsWhenNothingTouches) {
  const auto endless = [](const AcGePoint3d& apart) {
    alarm(1);
    std::vector<AcGePoint3d> vertices;
    ChainEdges({{apart, AcGePoint3d(5, 5, 0)}, {{0, 0, 0}, {1, 0, 0}}}, vertices);
  };
  EXPECT_EXIT(endless(AcGePoint3d(4, 4, 0)), testing::KilledBySignal(SIGALRM), "");
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EXIT(endless(AcGePoint3d(nan, nan, nan)), testing::KilledBySignal(SIGALRM), "");
}

}  // namespace
