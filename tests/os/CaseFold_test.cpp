#include "embedded/os/CaseFold.h"

#include <gtest/gtest.h>

namespace quoin::os {
namespace {

TEST(CaseFold, NamesAreEqualInAnyCase) {
  EXPECT_TRUE(sameName(L"Walls", L"WALLS"));
  EXPECT_TRUE(sameName(L"w\u00E4nde", L"W\u00C4NDE"));
  EXPECT_TRUE(sameName(L"\u0441\u0442\u0435\u043D\u0430", L"\u0421\u0422\u0415\u041D\u0410"));
  EXPECT_TRUE(sameName(L"\u03C4\u03BF\u03AF", L"\u03A4\u039F\u03AF"));
  EXPECT_TRUE(sameName(L"\u015Bciana", L"\u015ACIANA"));
  EXPECT_TRUE(sameName(L"\u5899", L"\u5899"));
  EXPECT_FALSE(sameName(L"Walls", L"Wall"));
  EXPECT_FALSE(sameName(L"a", L"\u00E4"));
}

TEST(CaseFold, AsciiNamesLeaveOtherBytesAlone) {
  EXPECT_TRUE(sameName("Layer", "LAYER"));
  EXPECT_FALSE(sameName("\xE4", "\xC4"));
  EXPECT_FALSE(sameName("[", "{"));
}

TEST(CaseFold, SignsThatLookLikeLettersStay) {
  for (const wchar_t sign : {L'\u00D7', L'\u00F7', L'\u00DF', L'_', L'@', L'[', L'{', L'1'}) {
    EXPECT_EQ(foldCase(sign), sign);
  }
}

TEST(CaseFold, FoldingTwiceIsFoldingOnce) {
  for (wchar_t letter = 0; letter < 0xFFFF; ++letter) {
    ASSERT_EQ(foldCase(foldCase(letter)), foldCase(letter));
  }
}

}  // namespace
}  // namespace quoin::os
