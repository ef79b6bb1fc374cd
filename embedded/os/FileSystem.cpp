#include "embedded/os/FileSystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <fstream>
#include <limits>
#include <memory>

#include "embedded/os/Process.h"

namespace quoin::os {
namespace {

constexpr mode_t kPrivateMode = S_IRUSR | S_IWUSR;
constexpr mode_t kNewFileMode = 0666;  // the process's mask takes from it
constexpr mode_t kAnyoneMayWrite = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr std::uint32_t kModeBits = 07777;
constexpr int kWaitMilliseconds = 100;  // between two looks at whether somebody asked to stop
constexpr std::int64_t kNanoseconds = 1'000'000'000;

int resultOf(int result) {
  return result == 0 ? 0 : errno;
}

template <typename Call>
auto retried(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) {
    result = call();
  }
  return result;
}

FileFacts factsFrom(const struct stat& status) {
  FileFacts facts;
  facts.kind = S_ISREG(status.st_mode)   ? FileFacts::Kind::Regular
               : S_ISDIR(status.st_mode) ? FileFacts::Kind::Folder
               : S_ISLNK(status.st_mode) ? FileFacts::Kind::Link
                                         : FileFacts::Kind::Other;
  facts.size = static_cast<std::uint64_t>(status.st_size);
  facts.mode = static_cast<std::uint32_t>(status.st_mode) & kModeBits;
  facts.owner = status.st_uid;
  facts.group = status.st_gid;
  facts.device = status.st_dev;
  facts.number = status.st_ino;
  facts.modified =
      std::int64_t{status.st_mtim.tv_sec} * kNanoseconds + std::int64_t{status.st_mtim.tv_nsec};
  return facts;
}

}  // namespace

FileSystem::~FileSystem() = default;

int SystemFiles::openToRead(const std::string& path, Handle& handle) {
  // Without O_NONBLOCK a pipe that nobody writes to would hold us up, deaf to Ctrl-C.
  handle = retried([&] { return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); });
  return handle < 0 ? errno : 0;
}

int SystemFiles::create(const std::string& path, bool isPrivate, Handle& handle) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  const mode_t mode = isPrivate ? kPrivateMode : kNewFileMode;
  handle = retried([&] { return ::open(path.c_str(), kFlags, mode); });
  return handle < 0 ? errno : 0;
}

int SystemFiles::read(Handle handle, char* to, std::size_t size, std::size_t& done) {
  done = 0;
  for (;;) {
    if (isInterrupted()) {
      return EINTR;
    }
    pollfd wait{handle, POLLIN, 0};
    const int ready = ::poll(&wait, 1, kWaitMilliseconds);
    if (ready < 0 && errno != EINTR) {
      return errno;
    }
    if (ready <= 0) {
      continue;
    }
    const ssize_t count = ::read(handle, to, size);
    if (count >= 0) {
      done = static_cast<std::size_t>(count);
      return 0;
    }
    if (errno != EINTR && errno != EAGAIN) {
      return errno;
    }
  }
}

int SystemFiles::write(Handle handle, const char* from, std::size_t size, std::size_t& done) {
  const ssize_t count = retried([&] { return ::write(handle, from, size); });
  done = count < 0 ? 0 : static_cast<std::size_t>(count);
  return count < 0 ? errno : 0;
}

int SystemFiles::flush(Handle handle) {
  return resultOf(retried([&] { return ::fsync(handle); }));
}

int SystemFiles::close(Handle handle) {
  // The descriptor is gone even when the call was interrupted.
  return ::close(handle) == 0 || errno == EINTR ? 0 : errno;
}

int SystemFiles::facts(const std::string& path, bool followLink, FileFacts& facts) {
  struct stat status {};
  const int result = followLink ? ::stat(path.c_str(), &status) : ::lstat(path.c_str(), &status);
  if (result != 0) {
    return errno;
  }
  facts = factsFrom(status);
  return 0;
}

int SystemFiles::facts(Handle handle, FileFacts& facts) {
  struct stat status {};
  if (::fstat(handle, &status) != 0) {
    return errno;
  }
  facts = factsFrom(status);
  return 0;
}

int SystemFiles::linkTarget(const std::string& path, std::string& target) {
  std::array<char, PATH_MAX> text{};
  const ssize_t size = ::readlink(path.c_str(), text.data(), text.size());
  if (size < 0) {
    return errno;
  }
  target.assign(text.data(), static_cast<std::size_t>(size));
  return 0;
}

int SystemFiles::mayWrite(const std::string& path) {
  if (::access(path.c_str(), W_OK) != 0) {
    return errno;
  }
  // The superuser may write everything; a file that nobody is meant to write is still one.
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    return errno;
  }
  return (status.st_mode & kAnyoneMayWrite) == 0 ? EACCES : 0;
}

int SystemFiles::setOwner(Handle handle, std::uint32_t owner, std::uint32_t group) {
  return resultOf(::fchown(handle, owner, group));
}

int SystemFiles::setMode(Handle handle, std::uint32_t mode) {
  return resultOf(::fchmod(handle, static_cast<mode_t>(mode & kModeBits)));
}

int SystemFiles::rename(const std::string& from, const std::string& to) {
  return resultOf(std::rename(from.c_str(), to.c_str()));
}

int SystemFiles::renameNew(const std::string& from, const std::string& to) {
  const int result =
      resultOf(::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE));
  if (result != EINVAL && result != ENOSYS) {
    return result;
  }
  // A file system that cannot do both in one step.
  struct stat status {};
  return ::lstat(to.c_str(), &status) == 0 ? EEXIST : rename(from, to);
}

int SystemFiles::remove(const std::string& path) {
  return resultOf(::unlink(path.c_str()));
}

int SystemFiles::link(const std::string& from, const std::string& to) {
  return resultOf(::link(from.c_str(), to.c_str()));
}

int SystemFiles::names(const std::string& folder, std::vector<std::string>& names) {
  const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir(folder.c_str()), &::closedir);
  if (!open) {
    return errno;
  }
  errno = 0;
  while (const dirent* const entry = ::readdir(open.get())) {
    names.emplace_back(entry->d_name);
    errno = 0;
  }
  return errno;
}

int SystemFiles::lockFolder(const std::string& path, Handle& handle) {
  handle = retried([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
  if (handle < 0) {
    // A folder that may be written to and not be listed cannot be opened.
    return errno == EACCES ? ENOTSUP : errno;
  }
  const int result = resultOf(retried([&] { return ::flock(handle, LOCK_EX | LOCK_NB); }));
  if (result == 0) {
    return 0;
  }
  ::close(handle);
  handle = -1;
  const bool isMissing =
      result == ENOLCK || result == ENOSYS || result == EINVAL || result == EBADF;
  return isMissing ? ENOTSUP : result;
}

bool SystemFiles::mayTakeNamesOf(std::uint32_t owner) {
  return ::geteuid() == 0 || ::geteuid() == owner;
}

int SystemFiles::flushFolder(const std::string& path) {
  const int handle = retried([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); });
  if (handle < 0) {
    return errno;
  }
  const int result = resultOf(retried([&] { return ::fsync(handle); }));
  ::close(handle);
  // Some file systems keep no folders that could be flushed.
  return result == EINVAL || result == ENOTSUP || result == EROFS ? 0 : result;
}

FileSystem& systemFiles() {
  static SystemFiles files;
  return files;
}

unsigned long processNumber() {
  return static_cast<unsigned long>(::getpid());
}

namespace {

constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

/// What the system says of free memory: "MemAvailable:  123 kB".
std::uint64_t systemMemory() {
  std::ifstream stream("/proc/meminfo");
  std::uint64_t sum = 0;
  bool isKnown = false;
  std::string name;
  for (std::uint64_t kibibytes = 0; stream >> name >> kibibytes;) {
    if (name == "MemAvailable:" || name == "SwapFree:") {
      sum += kibibytes << 10;
      isKnown = isKnown || name == "MemAvailable:";
    }
    stream.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  }
  return isKnown ? sum : kUnlimited;
}

/// What a container may have; "max" stands for no limit.
std::uint64_t containerMemory() {
  std::uint64_t least = kUnlimited;
  for (const char* const path :
       {"/sys/fs/cgroup/memory.max", "/sys/fs/cgroup/memory/memory.limit_in_bytes"}) {
    std::ifstream stream(path);
    std::uint64_t bytes = 0;
    if (stream >> bytes) {
      least = std::min(least, bytes);
    }
  }
  return least;
}

}  // namespace

std::uint64_t availableMemory() {
  struct rlimit limit {};
  const bool hasLimit = ::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
  return std::min({systemMemory(), containerMemory(),
                   hasLimit ? static_cast<std::uint64_t>(limit.rlim_cur) : kUnlimited});
}

}  // namespace quoin::os
