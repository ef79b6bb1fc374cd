// What rescale says where saving fails.
#include <gtest/gtest.h>

#include "commands/CommandLine.h"
#include "support/DxfText.h"
#include "support/FolderSync.h"
#include "support/RunningHost.h"
#include "support/TemporaryFolder.h"

namespace quoin::commands {
namespace {

TEST(RescaleCommand, SaysWhichDrawingIsInPlaceWhereItsFolderFailsToReachTheDisk) {
  const test::RunningHost host;
  const test::TemporaryFolder folder;
  const std::string old = test::asciiDxf(
      test::smallR2000("0 LINE\n5 40\n100 AcDbEntity\n8 0\n100 AcDbLine\n10 1.0\n20 2.0\n11 3.0\n"
                       "21 4.0\n"));
  const std::string plan = folder.put("plan.dxf", old);
  const char* const words[] = {"quoin", "rescale", plan.c_str(), "--drawing-factor", "2"};
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  test::failsToSyncFolders = true;
  const int code = runCommandLine(5, words);
  test::failsToSyncFolders = false;
  const std::string told = testing::internal::GetCapturedStdout();
  const std::string error = testing::internal::GetCapturedStderr();
  EXPECT_EQ(code, 5);
  const bool isNew = folder.get("plan.dxf") != old;
  EXPECT_EQ(error.find("the new version is in place") != std::string::npos, isNew) << error;
  EXPECT_EQ(error.find("as it was"), std::string::npos) << error;
  EXPECT_EQ(told.find("scaled\n"), std::string::npos) << told;
}

}  // namespace
}  // namespace quoin::commands
