#include "commands/Report.h"

#include <gtest/gtest.h>

#include <cmath>

#include "commands/Words.h"

namespace {

using quoin::commands::countText;
using quoin::commands::numberText;
using quoin::commands::pointText;
using quoin::commands::Report;

std::string textOf(std::size_t i) {
  return std::to_string(i);
}

TEST(ReportOfADrawing, ShowsTheFirstOfManyLinesUnlessAllAreWanted) {
  Report few({false, false});
  few.list(11, &textOf);
  EXPECT_EQ(few.lines().size(), 11U);
  Report many({false, false});
  many.list(1000000, &textOf);
  ASSERT_EQ(many.lines().size(), 11U);
  EXPECT_EQ(many.lines().back().text, "... and 999990 more; --verbose lists them all");
  Report all({false, true});
  all.list(1000, &textOf);
  EXPECT_EQ(all.lines().size(), 1000U);
}

TEST(ReportOfADrawing, KeepsDetailsForThoseWhoAsk) {
  Report brief({false, false});
  brief.details(3, &textOf);
  EXPECT_TRUE(brief.lines().empty());
  Report verbose({false, true});
  verbose.details(3, &textOf);
  EXPECT_EQ(verbose.lines().size(), 3U);
}

TEST(ReportOfADrawing, WarnsInTextAndInJson) {
  Report report({false, false});
  report.warn("beware");
  EXPECT_EQ(report.lines().front().text, "warning: beware");
  EXPECT_EQ(report.warnings().front(), "beware");
}

TEST(ReportOfADrawing, ComesWholeOutOfAnotherProcess) {
  Report report({false, false});
  report.line("a \xff name");  // no UTF-8
  report.warn("beware");
  report.json["x"] = 0.1 + 0.2;
  Report copy({false, false});
  copy.unpack(report.packed());
  ASSERT_EQ(copy.lines().size(), 2U);
  EXPECT_EQ(copy.lines()[0].text, "a \xff name");
  EXPECT_EQ(copy.lines()[1].level, Report::Level::Warning);
  EXPECT_EQ(copy.warnings(), report.warnings());
  EXPECT_EQ(copy.json["x"].get<double>(), 0.1 + 0.2);
}

TEST(NumbersInWords, ReadBackAsTheSameNumber) {
  for (const double value : {4512345.678901, 0.1, 1e-300, 1.0 / 3.0, 123456789012345.6, -2.5}) {
    EXPECT_EQ(std::stod(numberText(value)), value);
  }
  EXPECT_EQ(numberText(400.0), "400");
  EXPECT_EQ(numberText(-0.0), "0");
  EXPECT_EQ(pointText({500123.25, -0.0, 7.0}), "500123.25,0");
}

TEST(NumbersInWords, OneIsOne) {
  EXPECT_EQ(countText(1, "wall line"), "1 wall line");
  EXPECT_EQ(countText(0, "wall line"), "0 wall lines");
  EXPECT_EQ(countText(2, "entity", "entities"), "2 entities");
}

}  // namespace
