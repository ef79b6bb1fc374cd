#include "commands/CommonOptions.h"

#include <gtest/gtest.h>
#include <CLI/CLI.hpp>

#include "commands/CommandError.h"

namespace {

using quoin::commands::CommandError;
using quoin::commands::CommonOptions;
using quoin::commands::DrawingJob;
using quoin::commands::ExitCode;
using quoin::commands::parsePoint;

/// Options for drawings that need a place for their results, as most commands have them.
struct Options {
  explicit Options(std::vector<std::string> plans) {
    common.declareFiles(app);
    common.plans = std::move(plans);
  }

  ExitCode code() const {
    try {
      common.drawingJobs();
      return ExitCode::Ok;
    } catch (const CommandError& error) {
      return error.code;
    }
  }

  CLI::App app;
  CommonOptions common;
};

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
  Options options({"a.dxf"});
  EXPECT_EQ(options.code(), ExitCode::Usage);
  options.common.isDryRun = true;
  EXPECT_EQ(options.code(), ExitCode::Ok);
  options.common.isDryRun = false;
  options.common.output = "b.dxf";
  EXPECT_EQ(options.code(), ExitCode::Ok);
  options.common.isInPlace = true;
  EXPECT_EQ(options.code(), ExitCode::Usage);
}

TEST(FileOptions, KnowThreeKindsOfPictures) {
  Options options({"a.dxf"});
  options.common.isDryRun = true;
  for (const char* picture : {"p.png", "p.SVG", "p.pdf"}) {
    options.common.picture = picture;
    EXPECT_EQ(options.code(), ExitCode::Ok) << picture;
  }
  for (const char* picture : {"p", "p.jpg", "png"}) {
    options.common.picture = picture;
    EXPECT_EQ(options.code(), ExitCode::Usage) << picture;
  }
}

TEST(FileOptions, GiveEachOfSeveralDrawingsItsPlaceInAFolder) {
  Options options({"x/a.dxf", "y/b.dxf"});
  options.common.output = "out";
  options.common.picture = "pictures/{name}.svg";
  const std::vector<DrawingJob> jobs = options.common.drawingJobs();
  ASSERT_EQ(jobs.size(), 2U);
  EXPECT_EQ(jobs[0].output, "out/a.dxf");
  EXPECT_EQ(jobs[1].output, "out/b.dxf");
  EXPECT_EQ(jobs[0].picture, "pictures/a.svg");
  EXPECT_EQ(jobs[1].picture, "pictures/b.svg");
}

TEST(FileOptions, RefuseOnePlaceForTwoDrawings) {
  Options options({"x/a.dxf", "y/a.dxf"});
  for (const char* output : {"out", "out/", "out/{name}-new.dxf", "one.dxf", "-"}) {
    options.common.output = output;
    EXPECT_EQ(options.code(), ExitCode::Usage) << output;
  }
}

TEST(FileOptions, RefuseToWriteOverADrawingThatIsRead) {
  Options options({"a.dxf", "x/b.dxf"});
  for (const char* output : {".", "./", "x", "./x/../x/"}) {
    options.common.output = output;
    EXPECT_EQ(options.code(), ExitCode::Usage) << output;
  }
}

TEST(FileOptions, RefuseADrawingTwiceInPlace) {
  Options options({"a.dxf", "x/../a.dxf"});
  options.common.isInPlace = true;
  EXPECT_EQ(options.code(), ExitCode::Usage);
}

TEST(FileOptions, TakeTheStandardInputAloneAndNotInPlace) {
  Options options({"-"});
  options.common.output = "-";
  EXPECT_TRUE(options.common.drawingJobs().front().writesToStandardOutput());
  options.common.output = "o.dxf";
  EXPECT_EQ(options.code(), ExitCode::Ok);
  options.common.plans = {"-", "a.dxf"};
  options.common.output = "out";
  EXPECT_EQ(options.code(), ExitCode::Usage);
  options.common.plans = {"-"};
  options.common.output.clear();
  options.common.isInPlace = true;
  EXPECT_EQ(options.code(), ExitCode::Usage);
}

}  // namespace
