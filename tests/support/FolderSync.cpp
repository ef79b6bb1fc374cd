#include "support/FolderSync.h"

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

std::atomic<bool> quoin::test::failsToSyncFolders{false};

/// Stands in for the system's own.
extern "C" __attribute__((visibility("default"))) int fsync(int file) {
  struct stat status {};
  if (quoin::test::failsToSyncFolders && fstat(file, &status) == 0 && S_ISDIR(status.st_mode)) {
    errno = EIO;
    return -1;
  }
  return static_cast<int>(syscall(SYS_fsync, file));
}
