// The older versions of a file: how they are named, which there are, and how the last one comes
// back. A backup never replaces another: the first is "plan.dxf.bak", then "plan.dxf.2.bak".
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "embedded/os/FileSystem.h"

namespace quoin::os {

/// The name of a file's backup, numbered from 1; in `folder`, or beside the file where that is
/// empty.
HOST_API std::string backupPath(const std::string& path, std::size_t number = 1,
                                const std::string& folder = {});

struct Backup {
  std::size_t number;
  std::string path;
};

/// The backups of a file, or of the file that a link leads to, by number; the last one is the
/// newest. None where the folder cannot be listed.
HOST_API std::vector<Backup> backupsOf(const std::string& path, const std::string& folder = {},
                                       FileSystem& files = systemFiles());

struct PutBack {
  std::string formerVersion;  // where it is kept; empty where there was none
  bool isSame = false;        // the file had the backup's bytes: all stays as it was
};

/// Puts a backup in its file's place, which is replaced as AtomicFile does it. What stood there
/// becomes the newest backup, and the one that was put back is gone from the backups: doing it
/// again leads back to where it began.
/// Fails: throws FileFailure; the file and its backups are as they were unless it says that the
/// file is replaced.
HOST_API PutBack putBack(const std::string& path, const Backup& backup,
                         const std::string& folder = {}, FileSystem& files = systemFiles());

}  // namespace quoin::os
