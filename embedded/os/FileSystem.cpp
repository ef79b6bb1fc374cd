#include "embedded/os/FileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <limits>

namespace quoin::os {
namespace {

constexpr mode_t kPrivateMode = S_IRUSR | S_IWUSR;
constexpr mode_t kNewFileMode = 0666;  // the process's mask takes from it
constexpr mode_t kAnyoneMayWrite = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr std::uint32_t kModeBits = 07777;

int resultOf(int answer) {
  return answer == 0 ? 0 : errno;
}

template <typename Call>
auto retried(Call call) {
  auto answer = call();
  while (answer < 0 && errno == EINTR) {
    answer = call();
  }
  return answer;
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
  return facts;
}

}  // namespace

FileSystem::~FileSystem() = default;

int SystemFiles::openToRead(const std::string& path, Handle& handle) {
  handle = retried([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); });
  return handle < 0 ? errno : 0;
}

int SystemFiles::create(const std::string& path, bool isPrivate, Handle& handle) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  const mode_t mode = isPrivate ? kPrivateMode : kNewFileMode;
  handle = retried([&] { return ::open(path.c_str(), kFlags, mode); });
  return handle < 0 ? errno : 0;
}

int SystemFiles::read(Handle handle, char* to, std::size_t size, std::size_t& done) {
  const ssize_t count = retried([&] { return ::read(handle, to, size); });
  done = count < 0 ? 0 : static_cast<std::size_t>(count);
  return count < 0 ? errno : 0;
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
  const int answer = followLink ? ::stat(path.c_str(), &status) : ::lstat(path.c_str(), &status);
  if (answer != 0) {
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

int SystemFiles::remove(const std::string& path) {
  return resultOf(::unlink(path.c_str()));
}

int SystemFiles::link(const std::string& from, const std::string& to) {
  return resultOf(::link(from.c_str(), to.c_str()));
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

std::uint64_t memorySize() {
  const long pages = ::sysconf(_SC_PHYS_PAGES);
  const long pageSize = ::sysconf(_SC_PAGESIZE);
  if (pages <= 0 || pageSize <= 0) {
    return std::numeric_limits<std::uint64_t>::max();
  }
  return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize);
}

}  // namespace quoin::os
