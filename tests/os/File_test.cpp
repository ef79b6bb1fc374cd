#include "embedded/os/File.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "embedded/os/Backups.h"
#include "embedded/os/Process.h"
#include "support/FaultyFiles.h"
#include "support/TemporaryFolder.h"

namespace quoin::os {
namespace {

using test::FaultyFiles;
using test::TemporaryFolder;
using Names = std::set<std::string>;

template <typename Work>
FileFailure failureOf(Work work) {
  try {
    work();
  } catch (const FileFailure& failure) {
    return failure;
  }
  return FileFailure(Acad::eOk, "", "no failure");
}

void save(const std::string& path, std::string_view bytes, bool keepBackup = false,
          FileSystem& files = systemFiles()) {
  AtomicFile::Options options;
  options.keepBackup = keepBackup;
  AtomicFile file(path, options, files);
  file.write(bytes);
  file.commit();
}

std::uint32_t modeOf(const std::string& path) {
  FileFacts facts;
  EXPECT_EQ(systemFiles().facts(path, true, facts), 0);
  return facts.mode;
}

// --- reading --------------------------------------------------------------------------------

TEST(ReadFile, GivesAllBytes) {
  const TemporaryFolder folder;
  std::string bytes("a\0b\r\n", 5);
  bytes.resize(10'000'000, 'x');
  EXPECT_TRUE(readFile(folder.put("plan.dxf", bytes)) == bytes);
  EXPECT_EQ(readFile(folder.put("empty.dxf", "")), "");
  EXPECT_EQ(readFileHead(folder.file("plan.dxf"), 3), std::string("a\0b", 3));
  EXPECT_EQ(readFileHead(folder.file("empty.dxf"), 3), "");
}

TEST(ReadFile, SaysWhyItCannot) {
  const TemporaryFolder folder;
  folder.put("plan.dxf", "abc");
  const FileFailure missing = failureOf([&] { readFile(folder.file("none.dxf")); });
  EXPECT_EQ(missing.status, Acad::eFileNotFound);
  EXPECT_EQ(missing.message(), folder.file("none.dxf") + ": there is no such file");
  const FileFailure isFolder = failureOf([&] { readFile(folder.path().string()); });
  EXPECT_EQ(isFolder.status, Acad::eFileAccessErr);
  EXPECT_STREQ(isFolder.what(), "it is a folder, not a file");
  const FileFailure wrongPath = failureOf([&] { readFile(folder.file("plan.dxf/x")); });
  EXPECT_EQ(wrongPath.status, Acad::eFileNotFound);
  ReadRules rules;
  rules.mostBytes = 2;
  const FileFailure tooLarge = failureOf([&] { readFile(folder.file("plan.dxf"), rules); });
  EXPECT_EQ(tooLarge.status, Acad::eOutOfMemory);
  FaultyFiles locked;
  locked.failAt = 0;
  locked.error = EACCES;
  const FileFailure forbidden = failureOf([&] { readFile(folder.file("plan.dxf"), {}, locked); });
  EXPECT_EQ(forbidden.status, Acad::eFileAccessErr);
  EXPECT_STREQ(forbidden.what(), "no permission to read it");
}

TEST(ReadFile, ADiskThatCannotReadIsAnErrorAtEveryCall) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "abc");
  FaultyFiles counting;
  readFile(path, {}, counting);
  for (std::size_t i = 0; i + 1 < counting.calls.size(); ++i) {  // the last is the close
    FaultyFiles files;
    files.failAt = static_cast<int>(i);
    EXPECT_EQ(failureOf([&] { readFile(path, {}, files); }).status, Acad::eFilerError)
        << counting.calls[i];
  }
}

TEST(ReadFile, ReadsAPipeToItsEnd) {
  const TemporaryFolder folder;
  const std::string path = folder.file("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const std::string bytes(300'000, 'p');
  const pid_t writer = ::fork();
  if (writer == 0) {
    folder.put("pipe", bytes);
    ::_exit(0);
  }
  EXPECT_TRUE(readFile(path) == bytes);
}

TEST(ReadFile, CanBeStopped) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "abc");
  ReadRules rules;
  rules.goOn = [](double) { return false; };
  EXPECT_EQ(failureOf([&] { readFile(path, rules); }).status, Acad::eUserBreak);
}

TEST(ReadFile, TheFirstBytesDecideBeforeMoreIsRead) {
  struct Refused {};
  ReadRules rules;
  rules.headSize = 4096;
  std::size_t size = 0;
  rules.checkHead = [&](std::string_view head) {
    size = head.size();
    throw Refused();
  };
  FaultyFiles files;
  EXPECT_THROW(readFile("/dev/zero", rules, files), Refused);
  EXPECT_EQ(size, 4096U);
  EXPECT_LE(std::count(files.calls.begin(), files.calls.end(), "read"), 3);
  const TemporaryFolder folder;
  EXPECT_THROW(readFile(folder.put("short.dxf", "ab"), rules), Refused);
  EXPECT_EQ(size, 2U);
  EXPECT_THROW(readFile(folder.put("empty.dxf", ""), rules), Refused);
  EXPECT_EQ(size, 0U);
  EXPECT_THROW(readFile(folder.put("long.dxf", std::string(10'000, 'x')), rules), Refused);
  EXPECT_EQ(size, 4096U);
}

TEST(ReadFile, ADeviceWithoutEndIsGivenUpLongBeforeTheMemoryIs) {
  ReadRules rules;
  rules.mostBytes = 30'000'000;
  EXPECT_EQ(failureOf([&] { readFile("/dev/zero", rules); }).status, Acad::eOutOfMemory);
}

TEST(ReadFile, WaitingForAPipeEndsOnRequest) {
  const TemporaryFolder folder;
  const std::string path = folder.file("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  setInterrupted(true);
  EXPECT_EQ(failureOf([&] { readFile(path); }).status, Acad::eUserBreak);
  setInterrupted(false);
  EXPECT_EQ(failureOf([&] { readFileHead(path, 10); }).status, Acad::eFileAccessErr);
}

// --- saving ---------------------------------------------------------------------------------

TEST(AtomicFile, MakesAFileOrReplacesOne) {
  const TemporaryFolder folder;
  save(folder.file("plan.dxf"), "one");
  EXPECT_EQ(folder.get("plan.dxf"), "one");
  save(folder.file("plan.dxf"), "two");
  EXPECT_EQ(folder.get("plan.dxf"), "two");
  EXPECT_EQ(folder.names(), Names{"plan.dxf"});
}

TEST(AtomicFile, WritesPiecesOfEverySizeInOrder) {
  const TemporaryFolder folder;
  std::string expected;
  {
    AtomicFile file(folder.file("plan.dxf"));
    for (std::size_t size = 0; size < 2'000'000; size = size * 3 + 1) {
      const std::string piece(size, static_cast<char>('a' + size % 26));
      file.write(piece);
      expected += piece;
    }
    file.commit();
  }
  EXPECT_TRUE(folder.get("plan.dxf") == expected);
}

TEST(AtomicFile, WithoutCommitNothingHappened) {
  const TemporaryFolder folder;
  folder.put("plan.dxf", "old");
  {
    AtomicFile file(folder.file("plan.dxf"));
    file.write("new");
    EXPECT_EQ(folder.names().size(), 2U);  // the temporary file lies beside it
    EXPECT_EQ(folder.get("plan.dxf"), "old");
  }
  EXPECT_EQ(folder.get("plan.dxf"), "old");
  EXPECT_EQ(folder.names(), Names{"plan.dxf"});
}

TEST(AtomicFile, KeepsPermissionsOfTheOldFile) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "old");
  for (const mode_t mode : {0640U, 0604U, 0777U, 0200U}) {
    ASSERT_EQ(::chmod(path.c_str(), mode), 0);
    save(path, "new");
    EXPECT_EQ(modeOf(path), mode);
  }
}

TEST(AtomicFile, ANewFileGetsWhatNewFilesGet) {
  const TemporaryFolder folder;
  const mode_t former = ::umask(027);
  save(folder.file("plan.dxf"), "new");
  ::umask(former);
  EXPECT_EQ(modeOf(folder.file("plan.dxf")), 0640U);
}

TEST(AtomicFile, KeepsTheOwnerWhereAllowedAndDropsHisRightsElsewhere) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "old");
  if (::chown(path.c_str(), 12345, 12345) != 0) {
    GTEST_SKIP() << "only the superuser can give files away";
  }
  ASSERT_EQ(::chmod(path.c_str(), 04755), 0);
  save(path, "new");
  FileFacts facts;
  ASSERT_EQ(systemFiles().facts(path, true, facts), 0);
  EXPECT_EQ(facts.owner, 12345U);
  EXPECT_EQ(facts.group, 12345U);
  EXPECT_EQ(facts.mode, 04755U);

  FaultyFiles files;
  save(path, "newer", false, files);
  const auto setOwner = std::find(files.calls.begin(), files.calls.end(), "setOwner");
  ASSERT_NE(setOwner, files.calls.end());
  FaultyFiles refusing;
  refusing.failAt = static_cast<int>(setOwner - files.calls.begin());
  refusing.error = EPERM;
  save(path, "newest", false, refusing);
  EXPECT_EQ(folder.get("plan.dxf"), "newest");
  EXPECT_EQ(modeOf(path), 0755U);
}

TEST(AtomicFile, ASymbolicLinkStaysAndItsFileIsReplaced) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.path() / "deep");
  folder.put("deep/real.dxf", "old");
  std::filesystem::create_symlink("deep/real.dxf", folder.path() / "link.dxf");
  std::filesystem::create_symlink("link.dxf", folder.path() / "second.dxf");
  save(folder.file("second.dxf"), "new", true);
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / "second.dxf"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / "link.dxf"));
  EXPECT_FALSE(std::filesystem::is_symlink(folder.path() / "deep/real.dxf"));
  EXPECT_EQ(folder.get("deep/real.dxf"), "new");
  EXPECT_EQ(folder.get("deep/real.dxf.bak"), "old");
}

TEST(AtomicFile, ALinkToNothingGetsItsFile) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink(folder.path() / "real.dxf", folder.path() / "link.dxf");
  save(folder.file("link.dxf"), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / "link.dxf"));
  EXPECT_EQ(folder.get("real.dxf"), "new");
}

TEST(AtomicFile, LinksInACircleAreRefused) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink("b.dxf", folder.path() / "a.dxf");
  std::filesystem::create_symlink("a.dxf", folder.path() / "b.dxf");
  EXPECT_EQ(failureOf([&] { save(folder.file("a.dxf"), "x"); }).status, Acad::eFileAccessErr);
}

TEST(AtomicFile, AWriteProtectedFileIsLeftAlone) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "old");
  ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
  const FileFailure failure = failureOf([&] { save(path, "new"); });
  EXPECT_EQ(failure.status, Acad::eFileAccessErr);
  EXPECT_NE(failure.message().find("it is write-protected"), std::string::npos);
  EXPECT_EQ(folder.get("plan.dxf"), "old");
  EXPECT_EQ(folder.names(), Names{"plan.dxf"});
}

TEST(AtomicFile, AFolderThatNothingCanBeWrittenToIsNamed) {
  const TemporaryFolder folder;
  folder.put("plan.dxf", "old");
  FaultyFiles counting;
  save(folder.file("plan.dxf"), "old", false, counting);
  FaultyFiles files;
  files.failAt = static_cast<int>(
      std::find(counting.calls.begin(), counting.calls.end(), "create") - counting.calls.begin());
  files.error = EACCES;
  const FileFailure failure =
      failureOf([&] { save(folder.file("plan.dxf"), "new", false, files); });
  EXPECT_EQ(failure.status, Acad::eFileAccessErr);
  EXPECT_NE(failure.message().find("cannot be put into the folder " + folder.path().string()),
            std::string::npos);
  EXPECT_EQ(folder.get("plan.dxf"), "old");
}

TEST(AtomicFile, AMissingFolderIsNamed) {
  const TemporaryFolder folder;
  const FileFailure failure = failureOf([&] { save(folder.file("none/plan.dxf"), "x"); });
  EXPECT_EQ(failure.status, Acad::eFileNotFound);
  EXPECT_NE(failure.message().find("there is no folder " + folder.file("none")), std::string::npos);
}

TEST(AtomicFile, FoldersAndDevicesAreNotReplaced) {
  const TemporaryFolder folder;
  EXPECT_STREQ(failureOf([&] { save(folder.path().string(), "x"); }).what(),
               "it is a folder, not a file: Is a directory");
  const std::string pipe = folder.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(failureOf([&] { save(pipe, "x"); }).status, Acad::eFileAccessErr);
  EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST(AtomicFile, TheLongestNameStillSaves) {
  const TemporaryFolder folder;
  const std::string name(255, 'n');
  save(folder.file(name), "one");
  save(folder.file(name), "two");
  EXPECT_EQ(folder.get(name), "two");
}

// --- backups --------------------------------------------------------------------------------

TEST(AtomicFile, TheOldVersionStaysAsABackup) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "one");
  save(path, "two", true);
  EXPECT_EQ(folder.get("plan.dxf"), "two");
  EXPECT_EQ(folder.get("plan.dxf.bak"), "one");
}

TEST(AtomicFile, ABackupNeverReplacesAnOlderOne) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "one");
  save(path, "two", true);
  save(path, "three", true);
  save(path, "four", true);
  EXPECT_EQ(folder.get("plan.dxf.bak"), "one");
  EXPECT_EQ(folder.get("plan.dxf.2.bak"), "two");
  EXPECT_EQ(folder.get("plan.dxf.3.bak"), "three");
  // A gap is not filled: the highest number stays the newest.
  std::filesystem::remove(folder.file("plan.dxf.bak"));
  save(path, "five", true);
  EXPECT_EQ(folder.get("plan.dxf.4.bak"), "four");
  EXPECT_FALSE(std::filesystem::exists(folder.file("plan.dxf.bak")));
}

TEST(AtomicFile, NamesThatOnlyLookLikeBackupsDoNotCount) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "one");
  for (const char* const name :
       {"plan.dxf.x.bak", "plan.dxf.0.bak", "plan.dxf.1.bak", "plan.dxf.02.bak",
        "plan.dxf.bak.7.bak", "plan.bak", "plan.dxf.99999999999999999999.bak", "plan.dxf..bak"}) {
    folder.put(name, "mine");
  }
  save(path, "two", true);
  EXPECT_EQ(folder.get("plan.dxf.bak"), "one");
}

TEST(AtomicFile, WhereTheFolderCannotBeListedNoBackupIsReplacedEither) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "two");
  folder.put("plan.dxf.bak", "one");
  FaultyFiles counting;
  save(folder.put("other.dxf", "x"), "y", true, counting);
  FaultyFiles files;
  files.failAt = static_cast<int>(std::find(counting.calls.begin(), counting.calls.end(), "names") -
                                  counting.calls.begin());
  save(path, "new", true, files);
  EXPECT_EQ(folder.get("plan.dxf.bak"), "one");
  EXPECT_EQ(folder.get("plan.dxf.2.bak"), "two");
}

TEST(AtomicFile, TheSameBytesAgainWriteNothingAndKeepNothing) {
  const TemporaryFolder folder;
  const std::string bytes(700'000, 's');
  const std::string path = folder.put("plan.dxf", bytes);
  FileFacts before;
  ASSERT_EQ(systemFiles().facts(path, true, before), 0);
  AtomicFile::Options options;
  options.keepBackup = true;
  AtomicFile file(path, options);
  file.write(bytes);
  file.commit();
  EXPECT_TRUE(file.isUnchanged());
  EXPECT_EQ(file.backup(), "");
  FileFacts after;
  ASSERT_EQ(systemFiles().facts(path, true, after), 0);
  EXPECT_TRUE(after.isSameVersion(before));
  EXPECT_EQ(folder.names(), Names{"plan.dxf"});
  // One byte of as many is a change.
  std::string changed = bytes;
  changed.back() = 'x';
  save(path, changed, true);
  EXPECT_TRUE(folder.get("plan.dxf") == changed);
  EXPECT_TRUE(folder.get("plan.dxf.bak") == bytes);
}

TEST(AtomicFile, BackupsGoIntoAFolderOfTheirOwn) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "one");
  std::filesystem::create_directory(folder.path() / "old");
  for (const bool hasHardLinks : {true, false}) {
    FaultyFiles files;
    files.hasHardLinks = hasHardLinks;
    AtomicFile::Options options;
    options.keepBackup = true;
    options.backupFolder = folder.file("old");
    AtomicFile file(path, options, files);
    file.write(hasHardLinks ? "two" : "three");
    file.commit();
    EXPECT_EQ(file.backup(), folder.file(hasHardLinks ? "old/plan.dxf.bak" : "old/plan.dxf.2.bak"));
  }
  EXPECT_EQ(folder.get("old/plan.dxf.bak"), "one");
  EXPECT_EQ(folder.get("old/plan.dxf.2.bak"), "two");
  EXPECT_EQ(folder.get("plan.dxf"), "three");
  EXPECT_EQ(folder.names(), (Names{"plan.dxf", "old"}));

  AtomicFile::Options nowhere;
  nowhere.keepBackup = true;
  nowhere.backupFolder = folder.file("none");
  AtomicFile file(path, nowhere);
  file.write("four");
  EXPECT_NE(failureOf([&] { file.commit(); }).message().find("there is no folder"),
            std::string::npos);
  EXPECT_EQ(folder.get("plan.dxf"), "three");
}

TEST(AtomicFile, ANewFileHasNoBackup) {
  const TemporaryFolder folder;
  save(folder.file("plan.dxf"), "one", true);
  EXPECT_EQ(folder.names(), Names{"plan.dxf"});
}

TEST(AtomicFile, ABackupIsCopiedWhereFilesHaveNoSecondNames) {
  const TemporaryFolder folder;
  const std::string bytes(1'000'000, 'o');
  const std::string path = folder.put("plan.dxf", bytes);
  ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
  FaultyFiles files;
  files.hasHardLinks = false;
  save(path, "new", true, files);
  EXPECT_EQ(folder.get("plan.dxf"), "new");
  EXPECT_TRUE(folder.get("plan.dxf.bak") == bytes);
  EXPECT_EQ(modeOf(folder.file("plan.dxf.bak")), 0640U);
  EXPECT_EQ(folder.names(), (Names{"plan.dxf", "plan.dxf.bak"}));
}

TEST(AtomicFile, ABackupThatIsAnotherNameOfTheFileIsNoTrap) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "old");
  std::filesystem::create_hard_link(path, backupPath(path));
  save(path, "new", true);
  EXPECT_EQ(folder.get("plan.dxf"), "new");
  EXPECT_EQ(folder.get("plan.dxf.bak"), "old");
  EXPECT_EQ(folder.get("plan.dxf.2.bak"), "old");
  EXPECT_EQ(folder.names(), (Names{"plan.dxf", "plan.dxf.bak", "plan.dxf.2.bak"}));
}

// --- somebody else ---------------------------------------------------------------------------

TEST(AtomicFile, SomebodyElsesFileInAStickyFolderIsRefusedBeforeAnythingIsWritten) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "old");
  ASSERT_EQ(::chmod(path.c_str(), 0666), 0);
  ASSERT_EQ(::chmod(folder.path().c_str(), 01777), 0);
  FaultyFiles files;
  files.isStranger = true;
  const FileFailure failure = failureOf([&] { save(path, "new", true, files); });
  EXPECT_EQ(failure.status, Acad::eFileAccessErr);
  EXPECT_NE(failure.message().find("only owners replace files"), std::string::npos);
  EXPECT_EQ(folder.names(), Names{"plan.dxf"});
  // A new file is nobody's, and one's own may be replaced.
  save(folder.file("new.dxf"), "new", true, files);
  save(path, "new", true);
  EXPECT_EQ(folder.get("plan.dxf"), "new");
}

TEST(AtomicFile, AFileThatIsNotTheOneThatWasReadIsNotReplaced) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "old");
  AtomicFile::Options options;
  FileFacts version;
  EXPECT_EQ(readFile(path, {}, systemFiles(), &version), "old");
  options.expected = version;
  const auto expectRefusal = [&](const char* words) {
    AtomicFile file(path, options);
    file.write("new");
    const FileFailure failure = failureOf([&] { file.commit(); });
    EXPECT_EQ(failure.status, Acad::eFileSharingViolation);
    EXPECT_NE(failure.message().find(words), std::string::npos) << failure.message();
  };
  save(path, "alt");  // as many bytes, another file
  options.keepBackup = true;
  expectRefusal("changed it since it was read");
  EXPECT_EQ(folder.get("plan.dxf"), "alt");
  save(path, "new");  // what would be written stands there: by somebody else all the same
  expectRefusal("changed it since it was read");
  std::filesystem::remove(path);
  expectRefusal("taken it away since it was read");
  EXPECT_EQ(folder.names(), Names{});
  folder.put("plan.dxf", "old");
  readFile(path, {}, systemFiles(), &version);
  options.expected = version;
  AtomicFile file(path, options);
  file.write("new");
  file.commit();
  EXPECT_EQ(folder.get("plan.dxf"), "new");
  readFile(path, {}, systemFiles(), &version);
  EXPECT_TRUE(file.version().isSameVersion(version));
}

TEST(AtomicFile, AFileThatAppearedInBetweenIsKeptAsABackup) {
  const TemporaryFolder folder;
  AtomicFile::Options options;
  options.keepBackup = true;
  AtomicFile file(folder.file("plan.dxf"), options);
  file.write("new");
  folder.put("plan.dxf", "of somebody else");
  file.commit();
  EXPECT_EQ(folder.get("plan.dxf"), "new");
  EXPECT_EQ(folder.get("plan.dxf.bak"), "of somebody else");
}

TEST(AtomicFile, WaitsForAnotherRunAndNotForEver) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "old");
  FaultyFiles busy;
  busy.busyLocks = 3;
  save(path, "new", false, busy);
  EXPECT_EQ(folder.get("plan.dxf"), "new");

  FileSystem::Handle other = -1;
  ASSERT_EQ(systemFiles().lockFolder(folder.path().string(), other), 0);
  AtomicFile::Options options;
  options.patience = std::chrono::milliseconds(30);
  {
    AtomicFile file(path, options);
    file.write("newer");
    const FileFailure failure = failureOf([&] { file.commit(); });
    EXPECT_EQ(failure.status, Acad::eFileSharingViolation);
    EXPECT_NE(failure.message().find("locked"), std::string::npos);
  }
  {
    AtomicFile file(path);
    file.write("newer");
    setInterrupted(true);
    EXPECT_EQ(failureOf([&] { file.commit(); }).status, Acad::eUserBreak);
    setInterrupted(false);
  }
  EXPECT_EQ(folder.get("plan.dxf"), "new");
  systemFiles().close(other);
  save(path, "newer");
  EXPECT_EQ(folder.names(), Names{"plan.dxf"});
}

TEST(AtomicFile, WhereFoldersHaveNoLocksItSavesAllTheSame) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "old");
  FaultyFiles counting;
  save(path, "old", false, counting);
  FaultyFiles files;
  files.failAt =
      static_cast<int>(std::find(counting.calls.begin(), counting.calls.end(), "lockFolder") -
                       counting.calls.begin());
  files.error = ENOTSUP;
  save(path, "new", false, files);
  EXPECT_EQ(folder.get("plan.dxf"), "new");
}

// --- faults ---------------------------------------------------------------------------------

/// Fails at every call of a save in turn: afterwards the file is the old or the new one,
/// whole, a failure was reported unless nothing was lost, and no temporary file is left.
void expectWholeAfterEveryFault(bool keepBackup, bool hasHardLinks, int error) {
  const std::string oldBytes(700'000, 'o');
  const std::string newBytes(900'000, 'n');
  FaultyFiles counting;
  counting.hasHardLinks = hasHardLinks;
  {
    const TemporaryFolder folder;
    save(folder.put("plan.dxf", oldBytes), newBytes, keepBackup, counting);
  }
  for (std::size_t i = 0; i < counting.calls.size(); ++i) {
    SCOPED_TRACE("call " + std::to_string(i) + ": " + counting.calls[i]);
    const TemporaryFolder folder;
    const std::string path = folder.put("plan.dxf", oldBytes);
    FaultyFiles files;
    files.hasHardLinks = hasHardLinks;
    files.failAt = static_cast<int>(i);
    files.error = error;
    const FileFailure failure = failureOf([&] { save(path, newBytes, keepBackup, files); });
    const std::string now = folder.get("plan.dxf");
    ASSERT_TRUE(now == oldBytes || now == newBytes);
    if (failure.status == Acad::eOk) {
      ASSERT_TRUE(now == newBytes);
    } else {
      ASSERT_EQ(failure.isInPlace, now == newBytes) << failure.message();
      ASSERT_FALSE(failure.message().empty());
      ASSERT_TRUE(failure.isInPlace || folder.names() == Names{"plan.dxf"});
    }
    Names expected{"plan.dxf"};
    if (folder.names().count("plan.dxf.bak") != 0) {
      expected.insert("plan.dxf.bak");
      ASSERT_TRUE(folder.get("plan.dxf.bak") == oldBytes);
    }
    ASSERT_EQ(folder.names(), expected);
  }
}

TEST(AtomicFile, AFaultAtAnyCallLeavesTheOldOrTheNewFileWhole) {
  for (const int error : {EIO, ENOSPC, EDQUOT}) {
    expectWholeAfterEveryFault(false, true, error);
    expectWholeAfterEveryFault(true, true, error);
    expectWholeAfterEveryFault(true, false, error);
  }
}

TEST(AtomicFile, AFullDiskIsSaidToBeFull) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "old");
  FaultyFiles counting;
  save(path, "old", false, counting);
  FaultyFiles files;
  files.failAt = static_cast<int>(std::find(counting.calls.begin(), counting.calls.end(), "write") -
                                  counting.calls.begin());
  files.error = ENOSPC;
  const FileFailure failure = failureOf([&] { save(path, "new", false, files); });
  EXPECT_EQ(failure.status, Acad::eFileWriteError);
  EXPECT_EQ(failure.message(), path +
                                   ": the new version cannot be written; the old one is untouched: "
                                   "No space left on device");
}

TEST(AtomicFile, ShortWritesAreContinued) {
  const TemporaryFolder folder;
  FaultyFiles files;
  files.shortWrites = 1000;
  const std::string bytes(300'000, 'x');
  save(folder.file("plan.dxf"), bytes, false, files);
  EXPECT_TRUE(folder.get("plan.dxf") == bytes);
}

TEST(AtomicFile, ADiskThatLosesBytesSilentlyIsFoundOut) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", "old");
  FaultyFiles files;
  files.loseWritesFrom = 0;
  const FileFailure failure = failureOf([&] { save(path, "newer", false, files); });
  EXPECT_EQ(failure.status, Acad::eFileWriteError);
  EXPECT_NE(failure.message().find("the disk kept 0 of 5 bytes"), std::string::npos);
  EXPECT_EQ(folder.get("plan.dxf"), "old");
  EXPECT_EQ(folder.names(), Names{"plan.dxf"});
}

}  // namespace
}  // namespace quoin::os
