#include "commands/compare/Matching.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>

namespace {

using quoin::commands::match;
using quoin::commands::Matches;
using quoin::commands::MatchItem;
using quoin::commands::MatchRules;

/// An entity of one shape at a place.
MatchItem item(std::uint64_t handle, std::uint64_t shape, double x, double y,
               std::uint64_t properties = 0) {
  MatchItem made;
  made.handle = handle;
  made.kind = 1;
  made.signature.properties = properties;
  made.signature.shape = shape;
  made.signature.words = shape;
  made.signature.place = shape * 1000003 + static_cast<std::uint64_t>(x * 8191 + y * 131071);
  made.signature.anchor = {x, y, 0.0};
  made.signature.hasAnchor = true;
  return made;
}

MatchRules rules(double farthest = 1000.0) {
  MatchRules made;
  made.farthest = farthest;
  return made;
}

TEST(Matching, AnEntityOfTheSameHandleIsTheSameOneWhateverItSays) {
  const Matches found = match({item(1, 5, 0, 0)}, {item(1, 6, 9, 9)}, rules());
  ASSERT_EQ(found.unsure.size(), 1U);
  EXPECT_TRUE(found.added.empty() && found.removed.empty());
}

TEST(Matching, AnotherKindUnderTheHandleIsAnotherEntity) {
  MatchItem other = item(1, 6, 0, 0);
  other.kind = 2;
  const Matches found = match({item(1, 5, 0, 0)}, {other}, rules());
  EXPECT_EQ(found.added.size(), 1U);
  EXPECT_EQ(found.removed.size(), 1U);
}

TEST(Matching, ANewHandleAtTheSamePlaceIsTheSameEntity) {
  const Matches found = match({item(1, 5, 3, 4)}, {item(2, 5, 3, 4)}, rules());
  EXPECT_EQ(found.same.size(), 1U);
}

TEST(Matching, ANewHandleAndAnotherLayerAtTheSamePlaceIsToBeLookedAt) {
  const Matches found = match({item(1, 5, 3, 4, 7)}, {item(2, 5, 3, 4, 8)}, rules());
  EXPECT_EQ(found.unsure.size(), 1U);
}

TEST(Matching, TheSameShapeElsewhereHasMoved) {
  const Matches found = match({item(1, 5, 3, 4)}, {item(2, 5, 30, 4)}, rules());
  ASSERT_EQ(found.moved.size(), 1U);
}

TEST(Matching, FilesThatWereNumberedAnewArePairedByWhatTheySay) {
  // Each handle now belongs to the neighbour.
  std::vector<MatchItem> before;
  std::vector<MatchItem> after;
  for (std::uint64_t i = 0; i < 10; ++i) {
    before.push_back(item(i + 1, 5, static_cast<double>(i), 0));
    after.push_back(item(i + 2, 5, static_cast<double>(i), 0));
  }
  const Matches found = match(before, after, rules());
  EXPECT_TRUE(found.isRenumbered);
  EXPECT_EQ(found.same.size(), 10U);
  EXPECT_TRUE(found.added.empty() && found.removed.empty());
}

TEST(Matching, EqualOnesThatMovedTogetherArePairedByTheirVector) {
  // Rows of chairs, 10 apart, all moved by 10: each stands where its neighbour stood.
  std::vector<MatchItem> before;
  std::vector<MatchItem> after;
  for (std::uint64_t i = 0; i < 20; ++i) {
    before.push_back(item(i + 1, 5, 10.0 * static_cast<double>(i), 0));
    after.push_back(item(i + 101, 5, 10.0 * static_cast<double>(i) + 1000.0, 0));
  }
  std::reverse(after.begin(), after.end());
  const Matches found = match(before, after, rules());
  ASSERT_EQ(found.moved.size(), 20U);
  for (const auto& pair : found.moved) {
    EXPECT_EQ(after[pair.after].signature.anchor.x - before[pair.before].signature.anchor.x, 1000);
  }
}

TEST(Matching, OneOfTwoEqualOnesIsRemovedAndTheNearerOneMoved) {
  const Matches found =
      match({item(1, 5, 0, 0), item(2, 5, 100, 0)}, {item(3, 5, 101, 0)}, rules());
  ASSERT_EQ(found.moved.size(), 1U);
  EXPECT_EQ(found.moved.front().before, 1U);
  EXPECT_EQ(found.removed, std::vector<std::size_t>{0});
}

TEST(Matching, DuplicatesAreCounted) {
  const Matches found = match({item(1, 5, 0, 0), item(2, 5, 0, 0)},
                              {item(7, 5, 0, 0), item(8, 5, 0, 0), item(9, 5, 0, 0)}, rules());
  EXPECT_EQ(found.same.size(), 2U);
  EXPECT_EQ(found.added, std::vector<std::size_t>{2});
}

TEST(Matching, PlacesThatDifferByRoundingAreAskedAbout) {
  MatchItem moved = item(2, 5, 3.0, 4.0);
  moved.signature.place += 1;  // another cell
  moved.signature.shape += 1;
  moved.signature.anchor.x += 1e-10;
  MatchRules asked = rules();
  asked.isSamePlace = [](std::size_t, std::size_t) { return true; };
  EXPECT_EQ(match({item(1, 5, 3.0, 4.0)}, {moved}, asked).unsure.size(), 1U);
  asked.isSamePlace = [](std::size_t, std::size_t) { return false; };
  EXPECT_EQ(match({item(1, 5, 3.0, 4.0)}, {moved}, asked).unsure.size(), 0U);
}

TEST(Matching, NeitherOrderNorDirectionMatters) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 200; ++round) {
    std::vector<MatchItem> before;
    std::vector<MatchItem> after;
    const auto number = [&](int below) {
      return static_cast<int>(random() % static_cast<std::uint64_t>(below));
    };
    for (std::uint64_t i = 0; i < 30; ++i) {
      const std::uint64_t shape = 1 + random() % 4;
      const std::uint64_t properties = random() % 2;
      const MatchItem one = item(i + 1, shape, number(6) * 10, number(6) * 10, properties);
      before.push_back(one);
      MatchItem other = one;
      switch (number(5)) {
        case 0:
          continue;  // removed
        case 1:
          other =
              item(i + 1001, one.signature.shape, number(90), number(90), one.signature.properties);
          break;
        case 2:
          other.signature.properties ^= 1;
          break;
        default:
          break;
      }
      after.push_back(other);
    }
    const Matches found = match(before, after, rules());
    const Matches mirrored = match(after, before, rules());
    std::vector<MatchItem> shuffled = after;
    std::shuffle(shuffled.begin(), shuffled.end(), random);
    const Matches again = match(before, shuffled, rules());
    EXPECT_EQ(found.same.size(), mirrored.same.size());
    EXPECT_EQ(found.unsure.size(), mirrored.unsure.size());
    EXPECT_EQ(found.moved.size(), mirrored.moved.size());
    EXPECT_EQ(found.added.size(), mirrored.removed.size());
    EXPECT_EQ(found.removed.size(), mirrored.added.size());
    EXPECT_EQ(found.same.size(), again.same.size());
    EXPECT_EQ(found.removed, again.removed);
    EXPECT_EQ(found.moved.size(), again.moved.size());
  }
}

TEST(Matching, ManyEqualOnesTakeNoLongerThanManyDifferentOnes) {
  // All of one shape, each moved for itself, and at one place with rounding: neither is quadratic.
  std::vector<MatchItem> before;
  std::vector<MatchItem> after;
  std::mt19937_64 random(3);
  for (std::uint64_t i = 0; i < 50000; ++i) {
    before.push_back(item(i + 1, 5, static_cast<double>(random() % 1000000), 0));
    after.push_back(item(i + 100001, 5, static_cast<double>(random() % 1000000), 5));
  }
  std::size_t asked = 0;
  MatchRules counting = rules(1e6);
  counting.isSamePlace = [&](std::size_t, std::size_t) { return ++asked == 0; };
  const Matches moved = match(before, after, counting);
  EXPECT_EQ(moved.moved.size(), 50000U);
  for (MatchItem& one : after) {
    one.signature.anchor = {1.0, 1.0, 0.0};
    one.signature.shape = 9;
  }
  for (MatchItem& one : before) {
    one.signature.anchor = {1.0, 1.0, 0.0};
  }
  const Matches stacked = match(before, after, counting);
  EXPECT_EQ(stacked.added.size(), 50000U);
  EXPECT_LE(asked, 20U * 50000U);
}

}  // namespace
