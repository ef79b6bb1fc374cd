#include "commands/CommonOptions.h"

#include <gtest/gtest.h>

#include "commands/CommandError.h"

namespace {

using quoin::commands::CommandError;
using quoin::commands::CommonOptions;
using quoin::commands::ExitCode;
using quoin::commands::parsePoint;

ExitCode codeOf(const CommonOptions& options) {
  try {
    options.checkFiles();
    return ExitCode::Ok;
  } catch (const CommandError& error) {
    return error.code;
  }
}

TEST(PointOption, TakesTwoOrThreeNumbers) {
  EXPECT_EQ(parsePoint("1,-2.5").y, -2.5);
  EXPECT_EQ(parsePoint("1e3,0").x, 1000.0);
  EXPECT_EQ(parsePoint("1,2,3").z, 3.0);
}

TEST(PointOption, RefusesAnythingElse) {
  for (const char* text :
       {"", "1", "1,", ",1", "1,2,", "1,2,3,4", "1;2", "a,b", "1, 2", "inf,0", "nan,1", "1,2x"}) {
    EXPECT_THROW(parsePoint(text), CommandError) << text;
  }
}

TEST(FileOptions, AskForOnePlaceForTheResult) {
  CommonOptions options;
  options.plan = "a.dxf";
  EXPECT_EQ(codeOf(options), ExitCode::Usage);
  options.isDryRun = true;
  EXPECT_EQ(codeOf(options), ExitCode::Ok);
  options.isDryRun = false;
  options.output = "b.dxf";
  EXPECT_EQ(codeOf(options), ExitCode::Ok);
  options.isInPlace = true;
  EXPECT_EQ(codeOf(options), ExitCode::Usage);
}

TEST(FileOptions, KnowThreeKindsOfPictures) {
  CommonOptions options;
  options.isDryRun = true;
  for (const char* picture : {"p.png", "p.SVG", "p.pdf"}) {
    options.picture = picture;
    EXPECT_EQ(codeOf(options), ExitCode::Ok) << picture;
  }
  for (const char* picture : {"p", "p.jpg", "png"}) {
    options.picture = picture;
    EXPECT_EQ(codeOf(options), ExitCode::Usage) << picture;
  }
}

}  // namespace
