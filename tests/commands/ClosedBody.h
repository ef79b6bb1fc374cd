// What every body must be: a closed surface, each edge of which two faces run in opposite
// directions, with its outside outside.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "gepnt3d.h"

namespace quoin::test {

using BodyFace = std::array<AcGePoint3d, 4>;

struct BodyFacts {
  /// Edges that are not run once in each direction: open ones, T-junctions, four faces at an edge.
  std::size_t wrongEdges = 0;
  /// By the divergence theorem; positive where faces look outwards.
  double volume = 0.0;
  /// Parts that share no corner.
  std::size_t parts = 0;
};

/// Corners are one where all their digits are.
inline BodyFacts factsOf(const std::vector<BodyFace>& faces) {
  using Key = std::array<double, 3>;
  std::map<Key, std::size_t> numbers;
  std::vector<std::size_t> partOf;
  const auto numberOf = [&](const AcGePoint3d& point) {
    const auto [place, isNew] =
        numbers.emplace(Key{point.x + 0.0, point.y + 0.0, point.z + 0.0}, numbers.size());
    if (isNew) {
      partOf.push_back(place->second);
    }
    return place->second;
  };
  const auto rootOf = [&](std::size_t corner) {
    while (partOf[corner] != corner) {
      corner = partOf[corner] = partOf[partOf[corner]];
    }
    return corner;
  };
  std::map<std::pair<std::size_t, std::size_t>, int> edges;
  BodyFacts facts;
  const AcGePoint3d origin = faces.empty() ? AcGePoint3d() : faces[0][0];
  for (const BodyFace& face : faces) {
    for (std::size_t i = 0; i < face.size(); ++i) {
      const std::size_t from = numberOf(face[i]);
      const std::size_t to = numberOf(face[(i + 1) % face.size()]);
      if (from != to) {
        ++edges[{from, to}];
        partOf[rootOf(from)] = rootOf(to);
      }
    }
    for (const auto& [second, third] : {std::pair(1, 2), std::pair(2, 3)}) {
      facts.volume +=
          (face[0] - origin)
              .dotProduct((face[static_cast<std::size_t>(second)] - origin)
                              .crossProduct(face[static_cast<std::size_t>(third)] - origin)) /
          6.0;
    }
  }
  for (const auto& [edge, count] : edges) {
    const auto back = edges.find({edge.second, edge.first});
    facts.wrongEdges += count != 1 || back == edges.end() || back->second != 1 ? 1 : 0;
  }
  std::set<std::size_t> roots;
  for (std::size_t corner = 0; corner < partOf.size(); ++corner) {
    roots.insert(rootOf(corner));
  }
  facts.parts = roots.size();
  return facts;
}

inline void expectClosed(const std::vector<BodyFace>& faces, double volume, std::size_t parts) {
  const BodyFacts facts = factsOf(faces);
  EXPECT_EQ(facts.wrongEdges, 0u);
  EXPECT_EQ(facts.parts, parts);
  EXPECT_NEAR(facts.volume, volume, 1e-9 * std::fabs(volume));
}

}  // namespace quoin::test
