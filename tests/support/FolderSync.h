// A test program that links FolderSync.cpp can have the system fail to bring a folder's new state
// to the disk, as a disk does that breaks just then.
#pragma once

#include <atomic>

namespace quoin::test {

extern std::atomic<bool> failsToSyncFolders;

}  // namespace quoin::test
