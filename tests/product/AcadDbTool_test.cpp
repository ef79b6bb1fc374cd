#include "host/AcadDbTool.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "dbmain.h"
#include "embedded/product/SaveOutcomes.h"
#include "hostextra.h"
#include "support/FolderSync.h"

namespace {

namespace fs = std::filesystem;

class SaveDbTest : public testing::Test {
 protected:
  SaveDbTest() { fs::create_directories(folder); }
  ~SaveDbTest() override { fs::remove_all(folder); }

  static std::string contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // A folder of this test's own: tests run at the same time.
  const fs::path folder =
      fs::temp_directory_path() / (std::string("quoin-savedb-") +
                                   testing::UnitTest::GetInstance()->current_test_info()->name());
  const fs::path path = folder / "plan.dxf";
};

TEST_F(SaveDbTest, ASavedDrawingReadsBack) {
  AcDbDatabase drawing(true, true);
  ASSERT_EQ(CAcadDbTool::SaveDb(&drawing, path.wstring().c_str(), true), Acad::eOk);
  AcDbDatabase again(false, true);
  EXPECT_EQ(again.readDwgFile(path.wstring().c_str()), Acad::eOk);
  EXPECT_FALSE(fs::exists(folder / "plan.dxf.bak")) << "there was nothing to keep";
}

TEST_F(SaveDbTest, TheOldFileIsKeptAsBackupOnRequestOnly) {
  AcDbDatabase drawing(true, true);
  std::ofstream(path) << "old";
  ASSERT_EQ(CAcadDbTool::SaveDb(&drawing, path.wstring().c_str(), false), Acad::eOk);
  EXPECT_FALSE(fs::exists(folder / "plan.dxf.bak"));
  std::ofstream(path) << "old";
  // Another drawing: what this one wrote was replaced by somebody else, so it would be refused.
  AcDbDatabase other(true, true);
  ASSERT_EQ(CAcadDbTool::SaveDb(&other, path.wstring().c_str(), true), Acad::eOk);
  EXPECT_EQ(contentOf(folder / "plan.dxf.bak"), "old");
  EXPECT_NE(contentOf(path), "old");
}

TEST_F(SaveDbTest, WithoutDatabaseOrPathNothingIsWritten) {
  AcDbDatabase drawing(true, true);
  EXPECT_EQ(CAcadDbTool::SaveDb(nullptr, path.wstring().c_str(), true), Acad::eNoDatabase);
  EXPECT_EQ(CAcadDbTool::SaveDb(&drawing, nullptr, true), Acad::eInvalidInput);
  EXPECT_EQ(CAcadDbTool::SaveDb(&drawing, L"", true), Acad::eInvalidInput);
  EXPECT_TRUE(fs::is_empty(folder));
}

TEST_F(SaveDbTest, AFolderThatDoesNotExistIsAnError) {
  AcDbDatabase drawing(true, true);
  const fs::path nowhere = folder / "missing" / "plan.dxf";
  EXPECT_NE(CAcadDbTool::SaveDb(&drawing, nowhere.wstring().c_str(), true), Acad::eOk);
  EXPECT_FALSE(fs::exists(nowhere));
}

TEST_F(SaveDbTest, WhatItDidCanBeAskedForOnce) {
  quoin::product::takeSaveOutcomes();
  AcDbDatabase drawing;
  const fs::path good = folder / "good.dxf";
  const fs::path bad = folder / "nowhere" / "bad.dxf";
  CAcadDbTool::SaveDb(&drawing, good.wstring().c_str(), true);
  CAcadDbTool::SaveDb(&drawing, bad.wstring().c_str(), true);
  CAcadDbTool::SaveDb(nullptr, L"none.dxf", true);
  const std::vector<quoin::product::SaveOutcome> outcomes = quoin::product::takeSaveOutcomes();
  ASSERT_EQ(outcomes.size(), 3u);
  EXPECT_EQ(outcomes[0].path, good.wstring());
  EXPECT_EQ(outcomes[0].status, Acad::eOk);
  EXPECT_TRUE(outcomes[0].cause.empty());
  EXPECT_NE(outcomes[1].status, Acad::eOk);
  EXPECT_NE(outcomes[1].cause.find(L"bad.dxf"), std::wstring::npos);
  EXPECT_EQ(outcomes[2].status, Acad::eNoDatabase);
  EXPECT_TRUE(quoin::product::takeSaveOutcomes().empty());
}

TEST_F(SaveDbTest, ADrawingInPlaceIsSaidToBeSoEvenWhereTheFolderFailsToReachTheDisk) {
  std::ofstream(path) << "old";
  AcDbDatabase drawing(true, true);
  quoin::product::takeSaveOutcomes();
  quoin::test::failsToSyncFolders = true;
  const Acad::ErrorStatus status = CAcadDbTool::SaveDb(&drawing, path.wstring().c_str(), true);
  quoin::test::failsToSyncFolders = false;
  EXPECT_EQ(status, Acad::eFileWriteError);
  EXPECT_NE(contentOf(path), "old");
  const fs::path nowhere = folder / "missing" / "plan.dxf";
  CAcadDbTool::SaveDb(&drawing, nowhere.wstring().c_str(), true);
  CAcadDbTool::SaveDb(&drawing, path.wstring().c_str(), true);
  CAcadDbTool::SaveDb(&drawing, L"", true);
  const std::vector<quoin::product::SaveOutcome> outcomes = quoin::product::takeSaveOutcomes();
  ASSERT_EQ(outcomes.size(), 4u);
  EXPECT_TRUE(outcomes[0].isInPlace);
  EXPECT_NE(outcomes[0].cause.find(L"the new version is in place"), std::wstring::npos);
  EXPECT_FALSE(outcomes[1].isInPlace);
  EXPECT_TRUE(outcomes[2].isInPlace);
  EXPECT_FALSE(outcomes[3].isInPlace) << "nothing was saved";
  EXPECT_FALSE(hostx::isSaveInPlace(nullptr));
}

}  // namespace
