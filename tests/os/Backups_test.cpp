#include "embedded/os/Backups.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "embedded/os/File.h"
#include "support/FaultyFiles.h"
#include "support/TemporaryFolder.h"

namespace quoin::os {
namespace {

using test::FaultyFiles;
using test::TemporaryFolder;
using Names = std::set<std::string>;

std::vector<std::size_t> numbersOf(const std::vector<Backup>& backups) {
  std::vector<std::size_t> numbers;
  for (const Backup& backup : backups) {
    numbers.push_back(backup.number);
  }
  return numbers;
}

TEST(Backups, AreNamedByNumber) {
  EXPECT_EQ(backupPath("a/plan.dxf"), "a/plan.dxf.bak");
  EXPECT_EQ(backupPath("a/plan.dxf", 12), "a/plan.dxf.12.bak");
  EXPECT_EQ(backupPath("a/plan.dxf", 2, "old"), "old/plan.dxf.2.bak");
}

TEST(Backups, ComeInTheOrderInWhichTheyWereMade) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "now");
  EXPECT_TRUE(backupsOf(path).empty());
  for (const char* const name :
       {"plan.dxf.10.bak", "plan.dxf.bak", "plan.dxf.2.bak", "plan.bak", "plan.dxf.02.bak"}) {
    folder.put(name, name);
  }
  EXPECT_EQ(numbersOf(backupsOf(path)), (std::vector<std::size_t>{1, 2, 10}));
  EXPECT_EQ(backupsOf(path).back().path, folder.file("plan.dxf.10.bak"));
  EXPECT_TRUE(backupsOf(path, folder.file("none")).empty());
}

TEST(Backups, OfALinkAreThoseOfItsFile) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.path() / "deep");
  folder.put("deep/real.dxf", "now");
  folder.put("deep/real.dxf.bak", "before");
  std::filesystem::create_symlink("deep/real.dxf", folder.path() / "link.dxf");
  ASSERT_EQ(backupsOf(folder.file("link.dxf")).size(), 1U);
  putBack(folder.file("link.dxf"), backupsOf(folder.file("link.dxf")).back());
  EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link.dxf")));
  EXPECT_EQ(folder.get("deep/real.dxf"), "before");
}

TEST(PutBack, TwiceLeadsBackToWhereItBegan) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "new");
  folder.put("plan.dxf.bak", "older");
  folder.put("plan.dxf.2.bak", "old");
  EXPECT_EQ(putBack(path, backupsOf(path).back()).formerVersion, folder.file("plan.dxf.3.bak"));
  EXPECT_EQ(folder.get("plan.dxf"), "old");
  EXPECT_EQ(folder.get("plan.dxf.3.bak"), "new");
  EXPECT_EQ(folder.names(), (Names{"plan.dxf", "plan.dxf.bak", "plan.dxf.3.bak"}));
  putBack(path, backupsOf(path).back());
  EXPECT_EQ(folder.get("plan.dxf"), "new");
  EXPECT_EQ(folder.get("plan.dxf.4.bak"), "old");
  EXPECT_EQ(folder.get("plan.dxf.bak"), "older");
}

TEST(PutBack, TheSameBytesStayWhereTheyAre) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "same");
  folder.put("plan.dxf.bak", "same");
  EXPECT_TRUE(putBack(path, backupsOf(path).back()).isSame);
  EXPECT_EQ(folder.names(), (Names{"plan.dxf", "plan.dxf.bak"}));
}

TEST(PutBack, AFileThatIsGoneComesBackWithItsPermissions) {
  const TemporaryFolder folder;
  ASSERT_EQ(::chmod(folder.put("plan.dxf.bak", "old").c_str(), 0600), 0);
  const std::string path = folder.file("plan.dxf");
  EXPECT_EQ(putBack(path, backupsOf(path).back()).formerVersion, "");
  EXPECT_EQ(folder.get("plan.dxf"), "old");
  EXPECT_EQ(folder.names(), Names{"plan.dxf"});
  FileFacts facts;
  ASSERT_EQ(systemFiles().facts(path, true, facts), 0);
  EXPECT_EQ(facts.mode, 0600U);
}

TEST(PutBack, WhatIsNoOrdinaryFileIsNoBackup) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "now");
  std::filesystem::create_symlink("/etc/passwd", folder.path() / "plan.dxf.bak");
  EXPECT_THROW(putBack(path, backupsOf(path).back()), FileFailure);
  EXPECT_THROW(putBack(path, {1, folder.file("none.bak")}), FileFailure);
  EXPECT_EQ(folder.get("plan.dxf"), "now");
}

TEST(PutBack, AFaultAtAnyCallLosesNeitherVersion) {
  const std::string oldBytes(300'000, 'o');
  const std::string newBytes(400'000, 'n');
  const auto run = [&](FaultyFiles& files, const TemporaryFolder& folder) {
    const std::string path = folder.put("plan.dxf", newBytes);
    folder.put("plan.dxf.bak", oldBytes);
    putBack(path, {1, folder.file("plan.dxf.bak")}, {}, files);
  };
  FaultyFiles counting;
  run(counting, TemporaryFolder());
  for (std::size_t i = 0; i < counting.calls.size(); ++i) {
    SCOPED_TRACE("call " + std::to_string(i) + ": " + counting.calls[i]);
    const TemporaryFolder folder;
    FaultyFiles files;
    files.failAt = static_cast<int>(i);
    bool isInPlace = true;
    try {
      run(files, folder);
    } catch (const FileFailure& failure) {
      isInPlace = failure.isInPlace;
    }
    ASSERT_TRUE(folder.get("plan.dxf") == (isInPlace ? oldBytes : newBytes));
    std::set<std::string> contents;
    for (const std::string& name : folder.names()) {
      ASSERT_EQ(name.find(".tmp"), std::string::npos);
      contents.insert(folder.get(name));
    }
    ASSERT_EQ(contents, (std::set<std::string>{oldBytes, newBytes}));
  }
}

}  // namespace
}  // namespace quoin::os
