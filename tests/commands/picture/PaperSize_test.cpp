#include "commands/picture/PaperSize.h"

#include <gtest/gtest.h>

#include "commands/CommandError.h"

namespace quoin::commands {
namespace {

TEST(Paper, SheetsHaveNamesAndMeasures) {
  EXPECT_EQ(parsePaper("A3").width, 297.0);
  EXPECT_TRUE(parsePaper("a3").turns);
  EXPECT_EQ(parsePaper("A4-landscape").width, 297.0);
  EXPECT_FALSE(parsePaper("A4-landscape").turns);
  EXPECT_EQ(parsePaper("500x250.5").height, 250.5);
  for (const char* bad : {"A9", "", "0x100", "100", "10x10x10", "1e9x5", "nanx5", "A4-", "-5x30"}) {
    EXPECT_THROW(parsePaper(bad), CommandError) << bad;
  }
}

TEST(Scale, IsOfDrawingToPaper) {
  EXPECT_EQ(parseScale("1:100"), 100.0);
  EXPECT_EQ(parseScale("2:1"), 0.5);
  EXPECT_EQ(parseScale("1/4in=1ft"), 48.0);
  EXPECT_EQ(parseScale("1/8\"=1'"), 96.0);
  for (const char* bad : {"100", "1:0", "1:x", "0:1", ":", "1:-5", "1:1e300", "1=2"}) {
    EXPECT_THROW(parseScale(bad), CommandError) << bad;
  }
}

TEST(Scale, UsualOnesAreOneTwoAndFive) {
  EXPECT_DOUBLE_EQ(usualScaleFrom(87.0), 100.0);
  EXPECT_DOUBLE_EQ(usualScaleFrom(100.0 * (1.0 + 1e-12)), 100.0);
  EXPECT_DOUBLE_EQ(usualScaleFrom(101.0), 200.0);
  EXPECT_DOUBLE_EQ(usualScaleFrom(0.3), 0.5);
  EXPECT_EQ(scaleText(100.0), "1:100");
  EXPECT_EQ(scaleText(0.5), "2:1");
}

}  // namespace
}  // namespace quoin::commands
