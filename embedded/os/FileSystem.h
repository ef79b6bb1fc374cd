// The few calls that files need of the system, one virtual function each, so that a test can
// put a layer in between that fails where a disk would. File.h builds reading and safe
// writing on them; nothing else in the host touches files through the system.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "hostapi.h"

namespace quoin::os {

/// What the system knows of a file.
struct FileFacts {
  enum class Kind : std::uint8_t { Regular, Folder, Link, Other };
  Kind kind = Kind::Regular;
  std::uint64_t size = 0;
  std::uint32_t mode = 0;  // permission bits, with set-user-id and its like
  std::uint32_t owner = 0;
  std::uint32_t group = 0;
  std::uint64_t device = 0;  // with `number`: which file it is, whatever its name
  std::uint64_t number = 0;
  std::int64_t modified = 0;  // nanoseconds of the system's clock

  /// Whether these are facts of one file whose content nobody has written to in between.
  bool isSameVersion(const FileFacts& other) const {
    return device == other.device && number == other.number && size == other.size &&
           modified == other.modified;
  }
};

/// Every call returns 0 or the system's error number (errno); paths are the system's bytes.
class HOST_API FileSystem {
 public:
  using Handle = int;

  virtual ~FileSystem();

  /// Does not wait, not even for the other end of a pipe.
  virtual int openToRead(const std::string& path, Handle& handle) = 0;
  /// Makes a file for writing that must not exist yet. A private one is readable for its owner
  /// alone, another has the permissions that new files get.
  virtual int create(const std::string& path, bool isPrivate, Handle& handle) = 0;
  /// Reads or writes up to `size` bytes; `done` is how many it were. Reading 0 is the end.
  /// Reading waits for what a pipe brings; EINTR says that somebody asked to stop (Process.h).
  virtual int read(Handle handle, char* to, std::size_t size, std::size_t& done) = 0;
  virtual int write(Handle handle, const char* from, std::size_t size, std::size_t& done) = 0;
  /// Waits until the file's bytes are on the disk.
  virtual int flush(Handle handle) = 0;
  virtual int close(Handle handle) = 0;

  virtual int facts(const std::string& path, bool followLink, FileFacts& facts) = 0;
  virtual int facts(Handle handle, FileFacts& facts) = 0;
  virtual int linkTarget(const std::string& path, std::string& target) = 0;
  /// 0 where this process may write the file.
  virtual int mayWrite(const std::string& path) = 0;
  virtual int setOwner(Handle handle, std::uint32_t owner, std::uint32_t group) = 0;
  virtual int setMode(Handle handle, std::uint32_t mode) = 0;

  /// Replaces `to` in one step.
  virtual int rename(const std::string& from, const std::string& to) = 0;
  /// EEXIST where `to` is there already.
  virtual int renameNew(const std::string& from, const std::string& to) = 0;
  virtual int remove(const std::string& path) = 0;
  /// A second name for the same file.
  /// EEXIST where `to` is there already.
  virtual int link(const std::string& from, const std::string& to) = 0;
  /// The names in a folder, in no order.
  virtual int names(const std::string& folder, std::vector<std::string>& names) = 0;
  /// Keeps other runs from replacing files in a folder until the handle is closed, or the
  /// process ends. EWOULDBLOCK while another run does so; ENOTSUP where there are no locks.
  virtual int lockFolder(const std::string& path, Handle& handle) = 0;
  /// Whether this process may take away names that others gave in folders with the sticky bit.
  virtual bool mayTakeNamesOf(std::uint32_t owner) = 0;
  /// Waits until the names in a folder are on the disk.
  virtual int flushFolder(const std::string& path) = 0;
};

/// The machine's own files.
class HOST_API SystemFiles : public FileSystem {
 public:
  int openToRead(const std::string& path, Handle& handle) override;
  int create(const std::string& path, bool isPrivate, Handle& handle) override;
  int read(Handle handle, char* to, std::size_t size, std::size_t& done) override;
  int write(Handle handle, const char* from, std::size_t size, std::size_t& done) override;
  int flush(Handle handle) override;
  int close(Handle handle) override;
  int facts(const std::string& path, bool followLink, FileFacts& facts) override;
  int facts(Handle handle, FileFacts& facts) override;
  int linkTarget(const std::string& path, std::string& target) override;
  int mayWrite(const std::string& path) override;
  int setOwner(Handle handle, std::uint32_t owner, std::uint32_t group) override;
  int setMode(Handle handle, std::uint32_t mode) override;
  int rename(const std::string& from, const std::string& to) override;
  int renameNew(const std::string& from, const std::string& to) override;
  int remove(const std::string& path) override;
  int link(const std::string& from, const std::string& to) override;
  int names(const std::string& folder, std::vector<std::string>& names) override;
  int lockFolder(const std::string& path, Handle& handle) override;
  bool mayTakeNamesOf(std::uint32_t owner) override;
  int flushFolder(const std::string& path) override;
};

/// The one that everything uses unless told otherwise.
HOST_API FileSystem& systemFiles();
/// A number that no other running process of this machine has.
HOST_API unsigned long processNumber();
/// How many bytes of memory this process can still get, swap space included; the largest
/// number where that is unknown.
HOST_API std::uint64_t availableMemory();

}  // namespace quoin::os
