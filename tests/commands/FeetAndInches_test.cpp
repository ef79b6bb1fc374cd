#include "commands/FeetAndInches.h"

#include <gtest/gtest.h>

namespace {

using quoin::commands::writtenMillimeters;

double inches(std::wstring_view text) {
  return writtenMillimeters(text).value_or(-25.4) / 25.4;
}

TEST(FeetAndInches, AreReadInEveryUsualSpelling) {
  EXPECT_DOUBLE_EQ(inches(L"16'-0\""), 192);
  EXPECT_DOUBLE_EQ(inches(L"\\A1;3'-1\""), 37);
  EXPECT_DOUBLE_EQ(inches(L"3' 6 1/2\""), 42.5);
  EXPECT_DOUBLE_EQ(inches(L"3'-6\\S1/2;\""), 42.5);
  EXPECT_DOUBLE_EQ(inches(L"3'-6\\S1#2;\""), 42.5);
  EXPECT_DOUBLE_EQ(inches(L"{\\fArial|b0|i0;7'-2\"}"), 86);
  EXPECT_DOUBLE_EQ(inches(L"1/2\""), 0.5);
  EXPECT_DOUBLE_EQ(inches(L"8.25\""), 8.25);
  EXPECT_DOUBLE_EQ(inches(L"12'"), 144);
  EXPECT_DOUBLE_EQ(inches(L"12' CLEAR"), 144);
  EXPECT_DOUBLE_EQ(inches(L"R.O. 3'-0\" (TYP)"), 36);
}

TEST(FeetAndInches, MetricUnitsCountWhereTheyAreNamed) {
  EXPECT_EQ(writtenMillimeters(L"2400 mm"), 2400.0);
  EXPECT_EQ(writtenMillimeters(L"2.4m"), 2400.0);
  EXPECT_EQ(writtenMillimeters(L"15cm"), 150.0);
}

TEST(FeetAndInches, OtherTextsHaveNone) {
  for (const wchar_t* text : {L"", L"2400", L"R12", L"45%%d", L"3 mittlere", L"7 main", L"'", L"\"",
                              L"1/0\"", L"\\A1;", L"\\", L"12 3"}) {
    EXPECT_FALSE(writtenMillimeters(text)) << testing::PrintToString(std::wstring(text));
  }
}

}  // namespace
