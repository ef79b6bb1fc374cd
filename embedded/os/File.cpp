#include "embedded/os/File.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <new>
#include <system_error>
#include <thread>

#include "embedded/os/Backups.h"
#include "embedded/os/Process.h"

namespace quoin::os {
namespace {

constexpr std::size_t kReadPiece = std::size_t{1} << 22;
constexpr std::size_t kWriteBuffer = std::size_t{1} << 18;
constexpr int kMostLinks = 40;       // as the system itself follows
constexpr int kMostNameTries = 100;  // names of temporary files that may be taken
constexpr int kMostBackupTries = 10'000;
constexpr std::size_t kGrowth = 3;  // a text that grows stands twice in memory for a moment
constexpr std::uint32_t kStickyBit = 01000;
constexpr std::chrono::milliseconds kLockInterval{10};
constexpr std::uint32_t kSetIdBits = 06000;

std::string systemText(int error) {
  return std::generic_category().message(error);
}

Acad::ErrorStatus statusFor(int error, Acad::ErrorStatus otherwise) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return Acad::eFileNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ELOOP:
    case ENAMETOOLONG:
      return Acad::eFileAccessErr;
    case EBUSY:
    case ETXTBSY:
      return Acad::eFileSharingViolation;
    case ENOMEM:
      return Acad::eOutOfMemory;
    default:
      return otherwise;
  }
}

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

[[noreturn]] void failToRead(const std::string& path, int error) {
  const std::string cause = error == ENOENT    ? "there is no such file"
                            : error == EACCES  ? "no permission to read it"
                            : error == EISDIR  ? "it is a folder, not a file"
                            : error == ENOTDIR ? "a part of its path is no folder"
                                               : "it cannot be read: " + systemText(error);
  throw FileFailure(statusFor(error, Acad::eFilerError), path, cause);
}

[[noreturn]] void failAsTooLarge(const std::string& path, std::uint64_t size) {
  throw FileFailure(Acad::eOutOfMemory, path,
                    "it is too large for the memory (" + std::to_string(size >> 20) + " MiB)");
}

[[noreturn]] void failAsStopped(const std::string& path) {
  throw FileFailure(Acad::eUserBreak, path, "reading was stopped");
}

/// A file open for reading; closed at the end.
class ReadHandle {
 public:
  ReadHandle(const std::string& path, FileSystem& files) : m_files(files) {
    if (const int error = files.openToRead(path, m_handle)) {
      failToRead(path, error);
    }
  }
  ~ReadHandle() { m_files.close(m_handle); }
  ReadHandle(const ReadHandle&) = delete;
  ReadHandle& operator=(const ReadHandle&) = delete;
  FileSystem::Handle get() const { return m_handle; }

 private:
  FileSystem& m_files;
  FileSystem::Handle m_handle = -1;
};

/// Writes all of these bytes; returns 0 or the error.
int putAll(FileSystem& files, FileSystem::Handle handle, std::string_view bytes) {
  while (!bytes.empty()) {
    std::size_t done = 0;
    if (const int error = files.write(handle, bytes.data(), bytes.size(), done)) {
      return error;
    }
    if (done == 0) {
      return ENOSPC;  // no error, and no progress either
    }
    bytes.remove_prefix(done);
  }
  return 0;
}

std::size_t readSome(const std::string& path, FileSystem::Handle handle, char* to, std::size_t size,
                     FileSystem& files) {
  std::size_t done = 0;
  if (const int error = files.read(handle, to, size, done)) {
    error == EINTR ? failAsStopped(path) : failToRead(path, error);
  }
  return done;
}

FileFacts factsToRead(const std::string& path, FileSystem::Handle handle, FileSystem& files) {
  FileFacts facts;
  if (const int error = files.facts(handle, facts)) {
    failToRead(path, error);
  }
  if (facts.kind == FileFacts::Kind::Folder) {
    failToRead(path, EISDIR);
  }
  return facts;
}

/// Fills the text as far as the file reaches.
std::size_t readFully(const std::string& path, FileSystem::Handle handle, std::string& text,
                      FileSystem& files) {
  std::size_t size = 0;
  for (std::size_t done = 1; done != 0 && size < text.size(); size += done) {
    done = readSome(path, handle, text.data() + size, text.size() - size, files);
  }
  return size;
}

/// Keeps other runs from replacing files of a folder as long as it lives.
class FolderLock {
 public:
  FolderLock(FileSystem& files, const std::string& path, const std::string& folder,
             std::chrono::milliseconds patience)
      : m_files(files) {
    const auto end = std::chrono::steady_clock::now() + patience;
    for (;;) {
      const int error = files.lockFolder(folder, m_handle);
      if (error == 0) {
        return;
      }
      m_handle = -1;
      if (error == ENOTSUP) {
        return;  // the look at the version alone has to do
      }
      if (error != EWOULDBLOCK) {
        throw FileFailure(statusFor(error, Acad::eFileWriteError), path,
                          "the folder " + folder + " cannot be locked: " + systemText(error));
      }
      if (isInterrupted()) {
        throw FileFailure(Acad::eUserBreak, path, "writing was stopped");
      }
      if (std::chrono::steady_clock::now() >= end) {
        throw FileFailure(
            Acad::eFileSharingViolation, path,
            "another program keeps the folder " + folder + " locked; the old version is untouched");
      }
      std::this_thread::sleep_for(kLockInterval);
    }
  }
  ~FolderLock() {
    if (m_handle >= 0) {
      m_files.close(m_handle);
    }
  }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  FileSystem& m_files;
  FileSystem::Handle m_handle = -1;
};

}  // namespace

// --- reading --------------------------------------------------------------------------------

std::string readFile(const std::string& path, const ReadRules& rules, FileSystem& files,
                     FileFacts* version) {
  const ReadHandle handle(path, files);
  const FileFacts facts = factsToRead(path, handle.get(), files);
  if (version) {
    *version = facts;
  }
  const std::uint64_t limit = std::min(rules.mostBytes, availableMemory());
  if (facts.size > limit) {
    failAsTooLarge(path, facts.size);
  }
  std::string bytes;
  try {
    bytes.resize(static_cast<std::size_t>(facts.size));
    bool isHeadChecked = !rules.checkHead;
    for (std::size_t at = 0;;) {
      // One byte more than the file said it has finds out whether it has grown, or is a pipe.
      if (at == bytes.size()) {
        char more = 0;
        if (readSome(path, handle.get(), &more, 1, files) == 0) {
          bytes.resize(at);
          break;
        }
        if (at >= limit / kGrowth) {
          failAsTooLarge(path, at);
        }
        bytes.push_back(more);
        bytes.resize(std::max(bytes.size() + kReadPiece, bytes.size() + bytes.size() / 2));
        ++at;
      }
      const std::size_t most = isHeadChecked ? kReadPiece : rules.headSize;
      const std::size_t piece = std::min(most, bytes.size() - at);
      const std::size_t done = readSome(path, handle.get(), bytes.data() + at, piece, files);
      at += done;
      if (!isHeadChecked && (at >= rules.headSize || done == 0)) {
        rules.checkHead(std::string_view(bytes).substr(0, std::min(at, rules.headSize)));
        isHeadChecked = true;
      }
      if (done == 0) {
        bytes.resize(at);
        break;
      }
      if (rules.goOn && !rules.goOn(static_cast<double>(at) / static_cast<double>(bytes.size()))) {
        failAsStopped(path);
      }
    }
    if (!isHeadChecked) {
      rules.checkHead(bytes);
    }
    return bytes;
  } catch (const std::bad_alloc&) {
    failAsTooLarge(path, facts.size);
  } catch (const std::length_error&) {
    failAsTooLarge(path, facts.size);
  }
}

std::string readFileHead(const std::string& path, std::size_t size, FileSystem& files) {
  const ReadHandle handle(path, files);
  if (factsToRead(path, handle.get(), files).kind != FileFacts::Kind::Regular) {
    throw FileFailure(Acad::eFileAccessErr, path, "it is no ordinary file");
  }
  std::string bytes(size, '\0');
  std::size_t at = 0;
  while (at < size) {
    const std::size_t done = readSome(path, handle.get(), bytes.data() + at, size - at, files);
    if (done == 0) {
      break;
    }
    at += done;
  }
  bytes.resize(at);
  return bytes;
}

int followLinks(FileSystem& files, std::string& path, std::optional<FileFacts>& facts) {
  for (int i = 0; i < kMostLinks; ++i) {
    FileFacts found;
    const int error = files.facts(path, false, found);
    if (error != 0) {
      return error == ENOENT ? 0 : error;
    }
    if (found.kind != FileFacts::Kind::Link) {
      facts = found;
      return 0;
    }
    std::string next;
    if (const int linkError = files.linkTarget(path, next)) {
      return linkError;
    }
    const bool isAbsolute = !next.empty() && next.front() == '/';
    path = isAbsolute ? next : folderOf(path) + "/" + next;
  }
  return ELOOP;
}

// --- writing --------------------------------------------------------------------------------

AtomicFile::AtomicFile(const std::string& path, const Options& options, FileSystem& files)
    : m_files(files), m_options(options), m_path(path), m_target(path) {
  findTarget();
  checkTarget();
  m_folder = folderOf(m_target);
  checkFolder();
  m_buffer.reserve(kWriteBuffer);
  m_temporary =
      createTemporary(m_folder, m_handle, m_targetExists || m_options.newFileMode.has_value());
}

AtomicFile::~AtomicFile() {
  discard();
}

void AtomicFile::discard() {
  closeTemporary();
  for (std::string* temporary : {&m_temporary, &m_backupTemporary}) {
    if (!temporary->empty()) {
      m_files.remove(*temporary);
      temporary->clear();
    }
  }
}

int AtomicFile::closeTemporary() {
  const int error = m_handle >= 0 ? m_files.close(m_handle) : 0;
  m_handle = -1;
  return error;
}

void AtomicFile::fail(const std::string& what, int systemError) const {
  const std::string reason = systemError == 0 ? std::string{} : ": " + systemText(systemError);
  throw FileFailure(statusFor(systemError, Acad::eFileWriteError), m_path, what + reason);
}

void AtomicFile::findTarget() {
  std::optional<FileFacts> facts;
  if (const int error = followLinks(m_files, m_target, facts)) {
    fail(m_target == m_path ? "it cannot be looked at" : "its link cannot be followed", error);
  }
  m_targetExists = facts.has_value();
  m_targetFacts = facts.value_or(FileFacts{});
}

void AtomicFile::checkTarget() {
  if (!m_targetExists) {
    return;
  }
  if (m_targetFacts.kind == FileFacts::Kind::Folder) {
    fail("it is a folder, not a file", EISDIR);
  }
  if (m_targetFacts.kind != FileFacts::Kind::Regular) {
    throw FileFailure(Acad::eFileAccessErr, m_path, "it is no ordinary file; it is left alone");
  }
  if (const int error = m_files.mayWrite(m_target)) {
    fail("it is write-protected", error);
  }
}

/// The new version would take a name away from somebody else's file.
void AtomicFile::checkFolder() const {
  FileFacts folder;
  if (!m_targetExists || m_files.facts(m_folder, true, folder) != 0 ||
      (folder.mode & kStickyBit) == 0 || m_files.mayTakeNamesOf(folder.owner) ||
      m_files.mayTakeNamesOf(m_targetFacts.owner)) {
    return;
  }
  throw FileFailure(
      Acad::eFileAccessErr, m_path,
      "it belongs to somebody else, and in the folder " + m_folder + " only owners replace files");
}

std::string AtomicFile::createTemporary(const std::string& folder, FileSystem::Handle& handle,
                                        bool isPrivate) {
  static std::atomic<unsigned> counter{0};
  int error = EEXIST;
  for (int i = 0; i < kMostNameTries && error == EEXIST; ++i) {
    // Short, so that it is valid wherever the target's own name is.
    const std::string path = folder + "/.quoin-" + std::to_string(processNumber()) + "-" +
                             std::to_string(counter++) + ".tmp";
    error = m_files.create(path, isPrivate, handle);
    if (error == 0) {
      return path;
    }
  }
  handle = -1;
  fail(error == ENOENT ? "there is no folder " + folder
                       : "a new version cannot be put into the folder " + folder,
       error);
}

void AtomicFile::write(std::string_view bytes) {
  if (m_buffer.size() + bytes.size() > kWriteBuffer) {
    writeBuffer();
  }
  if (bytes.size() >= kWriteBuffer) {
    writeAll(bytes);
  } else {
    m_buffer += bytes;
  }
}

void AtomicFile::writeBuffer() {
  writeAll(m_buffer);
  m_buffer.clear();
}

void AtomicFile::writeAll(std::string_view bytes) {
  if (isInterrupted()) {
    throw FileFailure(Acad::eUserBreak, m_path, "writing was stopped; the old one is untouched");
  }
  m_written += bytes.size();
  if (const int error = putAll(m_files, m_handle, bytes)) {
    fail("the new version cannot be written; the old one is untouched", error);
  }
}

void AtomicFile::takeOverPermissions(FileSystem::Handle handle) const {
  FileFacts facts;
  if (const int error = m_files.facts(handle, facts)) {
    fail("the new version cannot be looked at", error);
  }
  std::uint32_t mode = m_targetFacts.mode;
  const bool isSameOwner = facts.owner == m_targetFacts.owner && facts.group == m_targetFacts.group;
  if (!isSameOwner && m_files.setOwner(handle, m_targetFacts.owner, m_targetFacts.group) != 0) {
    mode &= ~kSetIdBits;  // these would be rights of somebody else
  }
  if (const int error = m_files.setMode(handle, mode)) {
    fail("the new version cannot get the permissions of the old one", error);
  }
}

void AtomicFile::commit() {
  writeBuffer();
  if (m_options.keepBackup && isSameAsTarget()) {
    checkVersion();  // the same change by somebody else is not this one
    m_isUnchanged = true;
    m_version = m_targetFacts;
    discard();
    return;
  }
  if (m_targetExists) {
    takeOverPermissions(m_handle);
  } else if (m_options.newFileMode) {
    if (const int error = m_files.setMode(m_handle, *m_options.newFileMode & ~kSetIdBits)) {
      fail("the new version cannot get its permissions", error);
    }
  }
  if (const int error = m_files.flush(m_handle)) {
    fail("the new version cannot be brought to the disk; the old one is untouched", error);
  }
  if (const int error = m_files.facts(m_handle, m_version)) {
    fail("the new version cannot be looked at; the old one is untouched", error);
  }
  if (m_version.size != m_written) {
    fail("the disk kept " + std::to_string(m_version.size) + " of " + std::to_string(m_written) +
             " bytes of the new version; the old one is untouched",
         0);
  }
  if (const int error = closeTemporary()) {
    fail("the new version cannot be closed; the old one is untouched", error);
  }
  replaceTarget();
}

bool AtomicFile::isSameAsTarget() const {
  if (!m_targetExists || m_targetFacts.size != m_written) {
    return false;
  }
  try {
    const ReadHandle oldVersion(m_target, m_files);
    const ReadHandle newVersion(m_temporary, m_files);
    std::string oldBytes(kWriteBuffer, '\0');
    std::string newBytes(kWriteBuffer, '\0');
    for (;;) {
      const std::size_t oldSize = readFully(m_target, oldVersion.get(), oldBytes, m_files);
      const std::size_t newSize = readFully(m_temporary, newVersion.get(), newBytes, m_files);
      if (oldSize != newSize || oldBytes.compare(0, oldSize, newBytes, 0, newSize) != 0) {
        return false;
      }
      if (oldSize < kWriteBuffer) {
        return true;
      }
    }
  } catch (const FileFailure&) {
    return false;  // what cannot be compared is written
  }
}

/// The lock is held from the look at the old version until the new one has its name, so that of
/// two runs that have read the same version only one replaces it.
void AtomicFile::replaceTarget() {
  const FolderLock lock(m_files, m_path, m_folder, m_options.patience);
  checkVersion();
  if (m_options.keepBackup && m_targetExists) {
    makeBackup();
  }
  if (const int error = m_files.rename(m_temporary, m_target)) {
    takeBackBackup();
    fail("the new version cannot take its name; the old one is untouched" +
             (m_backup.empty() ? "" : ", its second name is " + m_backup),
         error);
  }
  m_temporary.clear();
  noteFileWritten();
  if (const int error = m_files.flushFolder(m_folder)) {
    FileFailure failure(
        Acad::eFileWriteError, m_path,
        "the new version is in place, but its folder cannot be brought to the disk: " +
            systemText(error) + (m_backup.empty() ? "" : "; the old one is " + m_backup));
    failure.isInPlace = true;
    throw failure;
  }
}

void AtomicFile::checkVersion() {
  FileFacts now;
  const int error = m_files.facts(m_target, false, now);
  if (error != 0 && error != ENOENT) {
    fail("it cannot be looked at", error);
  }
  m_targetExists = error == 0;
  m_targetFacts = now;
  if (m_options.expected && !(m_targetExists && now.isSameVersion(*m_options.expected))) {
    throw FileFailure(Acad::eFileSharingViolation, m_path,
                      m_targetExists
                          ? "somebody else has changed it since it was read; it is left as it is"
                          : "somebody else has taken it away since it was read; nothing was "
                            "written");
  }
  checkTarget();
}

/// The old version gets a second name first; only then its first name goes to the new one. So
/// there is no moment without it, and no backup that is only half there.
void AtomicFile::makeBackup() {
  const std::string& folder = m_options.backupFolder;
  const std::vector<Backup> backups = backupsOf(m_target, folder, m_files);
  std::size_t number = backups.empty() ? 1 : backups.back().number + 1;
  int error = EEXIST;
  for (int i = 0; i < kMostBackupTries && error == EEXIST; ++i, ++number) {
    const std::string path = backupPath(m_target, number, folder);
    error = m_files.link(m_target, path);
    if (error != 0 && error != EEXIST) {
      // Another file system, one without second names, or somebody else's file.
      copyTarget();
      error = m_files.renameNew(m_backupTemporary, path);
      if (error != 0) {
        m_files.remove(m_backupTemporary);
      }
      m_backupTemporary.clear();
    }
    if (error == 0) {
      m_backup = path;
    } else if (error != EEXIST) {
      fail("the old version cannot be kept as " + path, error);
    }
  }
  if (m_backup.empty()) {
    fail("the old version cannot be kept: all names for backups are taken", 0);
  }
  if (const int flushError = folder.empty() ? 0 : m_files.flushFolder(folder)) {
    takeBackBackup();
    fail("the folder " + folder + " cannot be brought to the disk", flushError);
  }
}

/// Removes the backup if the old version still has its own name: some systems say that a name
/// could not be given, and gave it.
void AtomicFile::takeBackBackup() {
  FileFacts now;
  if (!m_backup.empty() && m_files.facts(m_target, false, now) == 0 &&
      now.isSameVersion(m_targetFacts) && m_files.remove(m_backup) == 0) {
    m_backup.clear();
  }
}

void AtomicFile::copyTarget() {
  FileSystem::Handle handle = -1;
  const std::string folder = m_options.backupFolder.empty() ? m_folder : m_options.backupFolder;
  m_backupTemporary = createTemporary(folder, handle, true);
  struct Closer {
    FileSystem& files;
    FileSystem::Handle handle;
    ~Closer() { files.close(handle); }
  } const closer{m_files, handle};
  const ReadHandle from(m_target, m_files);
  std::string piece(kWriteBuffer, '\0');
  std::uint64_t copied = 0;
  for (std::size_t got = 1; got != 0; copied += got) {
    if (const int error = m_files.read(from.get(), piece.data(), piece.size(), got)) {
      if (error == EINTR) {
        throw FileFailure(Acad::eUserBreak, m_path, "writing was stopped");
      }
      fail("the old version cannot be read to keep it", error);
    }
    if (const int error = putAll(m_files, handle, std::string_view(piece).substr(0, got))) {
      fail("the old version cannot be copied to keep it", error);
    }
  }
  takeOverPermissions(handle);
  if (const int error = m_files.flush(handle)) {
    fail("the copy of the old version cannot be brought to the disk", error);
  }
  FileFacts facts;
  if (m_files.facts(handle, facts) != 0 || facts.size != copied) {
    fail("the copy of the old version is not whole", 0);
  }
}

}  // namespace quoin::os
