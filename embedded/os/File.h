// Whole files: reading into memory, and writing so that at every moment the old or the new
// version exists whole under the file's name, whatever fails in between. A failure says what
// could not be done and why, in words for the user.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
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

/// The bytes of a file (a pipe is read to its end). `goOn`, asked now and then with the share
/// that is done, answers false to stop.
/// Fails: throws FileFailure with eFileNotFound, eFileAccessErr (no permission, a folder, no
/// file), eOutOfMemory (larger than `mostBytes` or than the machine's memory), eFilerError (the
/// disk cannot read it), eUserBreak.
HOST_API std::string readFile(const std::string& path, const std::function<bool(double)>& goOn = {},
                              FileSystem& files = systemFiles(),
                              std::uint64_t mostBytes = std::numeric_limits<std::uint64_t>::max());

/// The first bytes of a file, for whoever wants to know what it is.
/// Fails: as readFile().
HOST_API std::string readFileHead(const std::string& path, std::size_t size,
                                  FileSystem& files = systemFiles());

/// Where AtomicFile keeps the old version: "plan.dxf.bak".
HOST_API std::string backupPath(const std::string& path);

/// Writes a file beside the one that it replaces: the bytes go to a temporary file in the same
/// folder, are flushed and counted, get the old file's permissions (and its owner, where
/// allowed), and only then take the old one's name. Of a symbolic link the file it points to
/// is replaced. Without commit() nothing happened; no temporary file stays behind. While one
/// lives, a request to stop the process waits (Process.h).
class HOST_API AtomicFile {
 public:
  struct Options {
    /// Keeps the old version, whole, as backupPath() of the file that is replaced.
    bool keepBackup = false;
  };

  /// Fails: throws FileFailure with eFileAccessErr (write-protected, a folder, no ordinary
  /// file, a folder that nothing can be written to), eFileNotFound (no such folder),
  /// eFileWriteError.
  AtomicFile(const std::string& path, const Options& options, FileSystem& files = systemFiles());
  explicit AtomicFile(const std::string& path) : AtomicFile(path, Options{}) {}
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  /// Fails: throws FileFailure with eFileWriteError (the disk is full, ...), eUserBreak when
  /// the process was asked to stop.
  void write(std::string_view bytes);
  /// Fails: throws FileFailure; the old file is untouched, unless isInPlace says that the new
  /// one is in place already.
  void commit();

 private:
  void findTarget();
  void checkTarget();
  std::string temporaryName() const;
  std::string createTemporary(FileSystem::Handle& handle, bool isPrivate);
  void takeOverPermissions(FileSystem::Handle handle) const;
  void writeBuffer();
  void writeAll(std::string_view bytes);
  void makeBackup();
  void copyTarget();
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
  std::string m_buffer;
  std::uint64_t m_written = 0;
};

}  // namespace quoin::os
