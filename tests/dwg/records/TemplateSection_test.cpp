// The section with $MEASUREMENT, by hand.
#include "embedded/dwg/records/TemplateSection.h"

#include <gtest/gtest.h>

namespace quoin::dwg {
namespace {

using namespace std::string_view_literals;

constexpr auto kOneByteLetters = "\2\0mm\1\0"sv;
constexpr auto kTwoByteLetters = "\1\0\0\0\0\0"sv;

TEST(TemplateSection, SaysWhetherADrawingIsMetric) {
  EXPECT_EQ(measurementOf("\0\0\0\0"sv), 0);
  EXPECT_EQ(measurementOf(kOneByteLetters), 1);
  EXPECT_EQ(measurementOf(kTwoByteLetters), 0);
}

TEST(TemplateSection, ChangesThatAlone) {
  EXPECT_EQ(withMeasurement(kOneByteLetters, 0), "\2\0mm\0\0"sv);
  EXPECT_EQ(withMeasurement(kTwoByteLetters, 1), "\1\0\0\0\1\0"sv);
  EXPECT_EQ(withMeasurement(kTwoByteLetters, 0), kTwoByteLetters);
}

TEST(TemplateSection, OfAnotherFormStaysAsItIs) {
  for (const std::string_view section : {""sv, "\0\0\0"sv, "\3\0mm\1\0"sv, "\0\1\0\0"sv}) {
    EXPECT_EQ(measurementOf(section), std::nullopt);
    EXPECT_EQ(withMeasurement(section, 1), std::nullopt);
  }
  EXPECT_EQ(withMeasurement(kOneByteLetters, 2), std::nullopt);
}

}  // namespace
}  // namespace quoin::dwg
