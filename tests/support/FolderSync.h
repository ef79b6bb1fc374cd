// Stands in for the system's fsync in a test program, so that a folder's new state cannot be
// brought to the disk. To be included by one file of a program.
#pragma once

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace quoin::test {

/// Whether bringing a folder to the disk fails, as on a disk that breaks just then.
inline std::atomic<bool> failsToSyncFolders{false};

}  // namespace quoin::test

extern "C" __attribute__((visibility("default"))) int fsync(int file) {
  struct stat status {};
  if (quoin::test::failsToSyncFolders && fstat(file, &status) == 0 && S_ISDIR(status.st_mode)) {
    errno = EIO;
    return -1;
  }
  return static_cast<int>(syscall(SYS_fsync, file));
}
