#include "embedded/os/File.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <new>
#include <system_error>

namespace quoin::os {
namespace {

constexpr std::size_t kReadPiece = std::size_t{1} << 22;
constexpr std::size_t kWriteBuffer = std::size_t{1} << 18;
constexpr int kMostLinks = 40;       // as the system itself follows
constexpr int kMostNameTries = 100;  // names of temporary files that may be taken
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

/// Writes all of these bytes; answers 0 or the error.
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

}  // namespace

// --- reading --------------------------------------------------------------------------------

std::string readFile(const std::string& path, const std::function<bool(double)>& goOn,
                     FileSystem& files, std::uint64_t mostBytes) {
  const ReadHandle handle(path, files);
  const FileFacts facts = factsToRead(path, handle.get(), files);
  const std::uint64_t limit = std::min(mostBytes, memorySize());
  if (facts.size > limit) {
    failAsTooLarge(path, facts.size);
  }
  std::string bytes;
  try {
    bytes.resize(static_cast<std::size_t>(facts.size));
    for (std::size_t at = 0;;) {
      // One byte more than the file said it has finds out whether it has grown, or is a pipe.
      if (at == bytes.size()) {
        char more = 0;
        std::size_t done = 0;
        if (const int error = files.read(handle.get(), &more, 1, done)) {
          failToRead(path, error);
        }
        if (done == 0) {
          return bytes;
        }
        if (at >= limit) {
          failAsTooLarge(path, at);
        }
        bytes.push_back(more);
        bytes.resize(std::max(bytes.size() + kReadPiece, bytes.size() + bytes.size() / 2));
        ++at;
      }
      const std::size_t piece = std::min(kReadPiece, bytes.size() - at);
      std::size_t done = 0;
      if (const int error = files.read(handle.get(), bytes.data() + at, piece, done)) {
        failToRead(path, error);
      }
      if (done == 0) {
        bytes.resize(at);
        return bytes;
      }
      at += done;
      if (goOn && !goOn(static_cast<double>(at) / static_cast<double>(bytes.size()))) {
        throw FileFailure(Acad::eUserBreak, path, "reading was stopped");
      }
    }
  } catch (const std::bad_alloc&) {
    failAsTooLarge(path, facts.size);
  } catch (const std::length_error&) {
    failAsTooLarge(path, facts.size);
  }
}

std::string readFileHead(const std::string& path, std::size_t size, FileSystem& files) {
  const ReadHandle handle(path, files);
  factsToRead(path, handle.get(), files);
  std::string bytes(size, '\0');
  std::size_t at = 0;
  while (at < size) {
    std::size_t done = 0;
    if (const int error = files.read(handle.get(), bytes.data() + at, size - at, done)) {
      failToRead(path, error);
    }
    if (done == 0) {
      break;
    }
    at += done;
  }
  bytes.resize(at);
  return bytes;
}

std::string backupPath(const std::string& path) {
  return path + ".bak";
}

// --- writing --------------------------------------------------------------------------------

AtomicFile::AtomicFile(const std::string& path, const Options& options, FileSystem& files)
    : m_files(files), m_options(options), m_path(path), m_target(path) {
  findTarget();
  checkTarget();
  m_folder = folderOf(m_target);
  m_buffer.reserve(kWriteBuffer);
  m_temporary = createTemporary(m_handle, m_targetExists);
}

AtomicFile::~AtomicFile() {
  discard();
}

void AtomicFile::discard() {
  if (m_handle >= 0) {
    m_files.close(m_handle);
    m_handle = -1;
  }
  for (std::string* temporary : {&m_temporary, &m_backupTemporary}) {
    if (!temporary->empty()) {
      m_files.remove(*temporary);
      temporary->clear();
    }
  }
}

void AtomicFile::fail(const std::string& what, int systemError) const {
  const std::string reason = systemError == 0 ? std::string{} : ": " + systemText(systemError);
  throw FileFailure(statusFor(systemError, Acad::eFileWriteError), m_path, what + reason);
}

void AtomicFile::findTarget() {
  for (int i = 0; i < kMostLinks; ++i) {
    FileFacts facts;
    const int error = m_files.facts(m_target, false, facts);
    if (error == ENOENT) {
      return;
    }
    if (error != 0) {
      fail("it cannot be looked at", error);
    }
    if (facts.kind != FileFacts::Kind::Link) {
      m_targetExists = true;
      m_targetFacts = facts;
      return;
    }
    std::string next;
    if (const int linkError = m_files.linkTarget(m_target, next)) {
      fail("its link cannot be followed", linkError);
    }
    const bool isAbsolute = !next.empty() && next.front() == '/';
    m_target = isAbsolute ? next : folderOf(m_target) + "/" + next;
  }
  fail("its link cannot be followed", ELOOP);
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

std::string AtomicFile::temporaryName() const {
  static std::atomic<unsigned> counter{0};
  // Short, so that it is valid wherever the target's own name is.
  return m_folder + "/.quoin-" + std::to_string(processNumber()) + "-" + std::to_string(counter++) +
         ".tmp";
}

std::string AtomicFile::createTemporary(FileSystem::Handle& handle, bool isPrivate) {
  int error = EEXIST;
  for (int i = 0; i < kMostNameTries && error == EEXIST; ++i) {
    const std::string path = temporaryName();
    error = m_files.create(path, isPrivate, handle);
    if (error == 0) {
      return path;
    }
  }
  handle = -1;
  fail(error == ENOENT ? "there is no folder " + m_folder
                       : "a new version cannot be put into the folder " + m_folder,
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
  if (m_targetExists) {
    takeOverPermissions(m_handle);
  }
  if (const int error = m_files.flush(m_handle)) {
    fail("the new version cannot be brought to the disk; the old one is untouched", error);
  }
  FileFacts facts;
  if (const int error = m_files.facts(m_handle, facts)) {
    fail("the new version cannot be looked at; the old one is untouched", error);
  }
  if (facts.size != m_written) {
    fail("the disk kept " + std::to_string(facts.size) + " of " + std::to_string(m_written) +
             " bytes of the new version; the old one is untouched",
         0);
  }
  const int closeError = m_files.close(m_handle);
  m_handle = -1;
  if (closeError != 0) {
    fail("the new version cannot be closed; the old one is untouched", closeError);
  }
  if (m_options.keepBackup && m_targetExists) {
    makeBackup();
  }
  if (const int error = m_files.rename(m_temporary, m_target)) {
    fail("the new version cannot take its name; the old one is untouched", error);
  }
  m_temporary.clear();
  noteFileWritten();
  if (const int error = m_files.flushFolder(m_folder)) {
    FileFailure failure(
        Acad::eFileWriteError, m_path,
        "the new version is in place, but its folder cannot be brought to the disk: " +
            systemText(error));
    failure.isInPlace = true;
    throw failure;
  }
}

/// The old version gets a second name first; only then its first name goes to the new one. So
/// there is no moment without it.
void AtomicFile::makeBackup() {
  int error = EEXIST;
  for (int i = 0; i < kMostNameTries && error == EEXIST; ++i) {
    m_backupTemporary = temporaryName();
    error = m_files.link(m_target, m_backupTemporary);
  }
  if (error != 0) {
    m_backupTemporary.clear();
    copyTarget();  // a file system without second names
  }
  if (const int renameError = m_files.rename(m_backupTemporary, backupPath(m_target))) {
    fail("the old version cannot be kept as " + backupPath(m_target), renameError);
  }
  // Where the backup already was a name of the same file, the system left both.
  m_files.remove(m_backupTemporary);
  m_backupTemporary.clear();
}

void AtomicFile::copyTarget() {
  FileSystem::Handle handle = -1;
  m_backupTemporary = createTemporary(handle, true);
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
