#include "commands/LayerChoice.h"

#include <gtest/gtest.h>

namespace {

using quoin::commands::matchesGlob;

TEST(LayerPattern, MatchesTheWholeNameInAnyCase) {
  EXPECT_TRUE(matchesGlob(L"A-WALL", L"a-wall"));
  EXPECT_FALSE(matchesGlob(L"A-WALL-NEW", L"A-WALL"));
  EXPECT_FALSE(matchesGlob(L"A-WAL", L"A-WALL"));
  EXPECT_TRUE(matchesGlob(L"", L""));
  EXPECT_FALSE(matchesGlob(L"", L"?"));
}

TEST(LayerPattern, AStarIsAnyText) {
  EXPECT_TRUE(matchesGlob(L"A-WALL-NEW", L"A-WALL*"));
  EXPECT_TRUE(matchesGlob(L"A-WALL", L"*"));
  EXPECT_TRUE(matchesGlob(L"", L"*"));
  EXPECT_TRUE(matchesGlob(L"aXbXc", L"a*b*c"));
  EXPECT_FALSE(matchesGlob(L"aXbX", L"a*b*c"));
  EXPECT_TRUE(matchesGlob(L"abcabcabd", L"*abd"));
}

TEST(LayerPattern, AQuestionMarkIsOneCharacter) {
  EXPECT_TRUE(matchesGlob(L"W1", L"W?"));
  EXPECT_FALSE(matchesGlob(L"W", L"W?"));
  EXPECT_TRUE(matchesGlob(L"墙体", L"?体"));
}

TEST(LayerPattern, ManyStarsEndQuickly) {
  EXPECT_FALSE(matchesGlob(std::wstring(5000, L'a'), L"*a*a*a*a*a*a*a*b"));
}

TEST(LayerPattern, LettersBeyondAsciiMatchInEitherCase) {
  EXPECT_TRUE(matchesGlob(L"ŚCIANY", L"ściany"));
  EXPECT_TRUE(matchesGlob(L"СТЕНЫ 1", L"стены*"));
}

}  // namespace
