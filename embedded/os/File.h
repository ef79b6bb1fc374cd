// Whole files: reading into memory, and writing so that at every moment the old or the new
// version exists whole under the file's name, whatever fails in between. A failure says what
// could not be done and why, in words for the user.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "acadstrc.h"
#include "embedded/os/FileSystem.h"
#include "embedded/os/Process.h"

namespace quoin::os {

class HOST_API FileFailure : public std::runtime_error {
 public:
  FileFailure(Acad::ErrorStatus code, const std::string& where, const std::string& cause)
      : std::runtime_error(cause), status(code), path(where) {}

  Acad::ErrorStatus status;
  std::string path;
  /// Whether the new version has the file's name already, whatever failed after that.
  bool isInPlace = false;

  /// "plan.dxf: there is no such file".
  std::string message() const { return path + ": " + what(); }
};

/// How a file is read.
struct ReadRules {
  /// Asked now and then with the share that is done; returns false to stop.
  std::function<bool(double)> goOn;
  /// Sees the first bytes, `headSize` of them where there are so many, before more is read;
  /// throws to refuse the file.
  std::function<void(std::string_view head)> checkHead;
  std::size_t headSize = 0;
  std::uint64_t mostBytes = std::numeric_limits<std::uint64_t>::max();
};

/// The bytes of a file (a pipe is read to its end); `version` gets what the system knew of the
/// file when reading began.
/// Fails: throws FileFailure with eFileNotFound, eFileAccessErr (no permission, a folder, no
/// file), eOutOfMemory (larger than `mostBytes` or than the memory that is left), eFilerError
/// (the disk cannot read it), eUserBreak.
HOST_API std::string readFile(const std::string& path, const ReadRules& rules = {},
                              FileSystem& files = systemFiles(), FileFacts* version = nullptr);

/// The first bytes of an ordinary file, for whoever wants to know what it is.
/// Fails: as readFile(); eFileAccessErr for pipes and devices, which would lose them.
HOST_API std::string readFileHead(const std::string& path, std::size_t size,
                                  FileSystem& files = systemFiles());

/// Follows symbolic links: `path` becomes the name of what they lead to, which need not exist;
/// `facts` is empty then. Returns 0 or the system's error number.
HOST_API int followLinks(FileSystem& files, std::string& path, std::optional<FileFacts>& facts);

/// Writes a file beside the one that it replaces: the bytes go to a temporary file in the same
/// folder, are flushed and counted, get the old file's permissions (and its owner, where
/// allowed), and only then take the old one's name. Of a symbolic link the file it points to
/// is replaced. Without commit() nothing happened; no temporary file stays behind. Of two that
/// replace files of one folder at a time, one waits for the other. While one lives, a request to
/// stop the process waits (Process.h).
class HOST_API AtomicFile {
 public:
  struct Options {
    /// Keeps the old version, whole, under the first free name of backupPath(). A file that
    /// would get the very bytes that it has is left alone instead.
    bool keepBackup = false;
    /// Where backups go; empty: beside the file.
    std::string backupFolder;
    /// What the file was when it was read: another one is not replaced.
    std::optional<FileFacts> expected;
    /// The permissions of a file that was not there before; none: what new files get.
    std::optional<std::uint32_t> newFileMode;
    /// How long another run is waited for.
    std::chrono::milliseconds patience = std::chrono::seconds(60);
  };

  /// Fails: throws FileFailure with eFileAccessErr (write-protected, a folder, no ordinary
  /// file, a folder that nothing can be written to, somebody else's file in a folder where
  /// only owners take names away), eFileNotFound (no such folder), eFileWriteError.
  AtomicFile(const std::string& path, const Options& options, FileSystem& files = systemFiles());
  explicit AtomicFile(const std::string& path) : AtomicFile(path, Options{}) {}
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  /// Fails: throws FileFailure with eFileWriteError (the disk is full, ...), eUserBreak when
  /// the process was asked to stop.
  void write(std::string_view bytes);
  /// Fails: throws FileFailure, eFileSharingViolation where somebody has written to the file
  /// that was expected or another run does not end, eUserBreak; the old file is untouched,
  /// unless isInPlace says that the new one is in place already.
  void commit();
  /// After commit(): whether the file had these bytes before, so that nothing was written.
  bool isUnchanged() const { return m_isUnchanged; }
  /// After commit(): where the old version is; empty for nowhere.
  const std::string& backup() const { return m_backup; }
  /// After commit(): what the system knows of the new version.
  const FileFacts& version() const { return m_version; }

 private:
  void findTarget();
  void checkTarget();
  void checkFolder() const;
  std::string createTemporary(const std::string& folder, FileSystem::Handle& handle,
                              bool isPrivate);
  void takeOverPermissions(FileSystem::Handle handle) const;
  void writeBuffer();
  void writeAll(std::string_view bytes);
  int closeTemporary();
  bool isSameAsTarget() const;
  void checkVersion();
  void replaceTarget();
  void makeBackup();
  void copyTarget();
  void takeBackBackup();
  void discard();
  [[noreturn]] void fail(const std::string& what, int systemError) const;

  StopDelay m_untilWhole;  // and so the last to go
  FileSystem& m_files;
  Options m_options;
  std::string m_path;    // as the caller names it, for messages
  std::string m_target;  // what it is after all links
  std::string m_folder;
  std::string m_temporary;  // empty: none exists
  std::string m_backupTemporary;
  FileSystem::Handle m_handle = -1;
  bool m_targetExists = false;
  FileFacts m_targetFacts;
  std::string m_backup;
  FileFacts m_version;
  bool m_isUnchanged = false;
  std::string m_buffer;
  std::uint64_t m_written = 0;
};

}  // namespace quoin::os
