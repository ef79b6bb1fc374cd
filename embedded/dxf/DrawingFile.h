// Drawings on disk: reading with whichever codec recognises the file, and saving so that a
// failure at any moment leaves the old file whole. What AcDbDatabase::readDwgFile and saveAs
// are made of.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "embedded/dxf/RecordStore.h"
#include "embedded/os/FileSystem.h"

namespace quoin::dxf {

/// Reads a drawing into a store; of what is no drawing only the first bytes. Paths are the
/// system's bytes (UTF-8 on most). Returns what the system knew of the file then.
/// Fails: throws FileError with the path: eFileNotFound, eFileAccessErr, eUnsupportedFileFormat
/// (no drawing, or one of a format that this build does not read), eBadDxfFile and its like
/// with line and record, eUserBreak when `progress` returns false. The store is empty then.
HOST_API os::FileFacts readDrawing(const std::string& path, RecordStore& store,
                                   const Progress& progress = {},
                                   os::FileSystem& files = os::systemFiles());

struct SaveOptions {
  /// Keeps the version that is replaced, whole, as its next backup (embedded/os/Backups.h); a
  /// file that would get the very bytes that it has is left alone instead.
  bool keepBackup = false;
  /// Where the backup goes; empty: beside the file.
  std::string backupFolder;
  /// The version that was read: a file that has become another one is not replaced.
  std::optional<os::FileFacts> expected;
};

struct SaveResult {
  std::string backup;  // where the replaced version is; empty for nowhere
  bool isUnchanged = false;
  os::FileFacts version;
};

/// Saves a store in the version and form that it was read in.
/// Fails: throws FileError with the path; the file that was there is untouched unless the
/// error says isInPlace: eFileAccessErr (write-protected, a folder), eFileWriteError (disk
/// full, ...), eFileSharingViolation (not the version that was expected), eUserBreak,
/// eUnsupportedFileFormat (a DWG file's name: DXF text in it would deceive every program).
HOST_API SaveResult writeDrawing(const RecordStore& store, const std::string& path,
                                 const SaveOptions& options = {}, const Progress& progress = {},
                                 os::FileSystem& files = os::systemFiles());

/// Hands the bytes to `sink` that writeDrawing() would write.
/// Fails: throws FileError with eUserBreak, and what `sink` throws.
HOST_API void writePieces(const RecordStore& store,
                          const std::function<void(std::string_view)>& sink,
                          const Progress& progress = {});

}  // namespace quoin::dxf
