// Drawings on disk: reading with whichever codec recognises the file, and saving so that a
// failure at any moment leaves the old file whole. What AcDbDatabase::readDwgFile and saveAs
// are made of.
#pragma once

#include <string>

#include "embedded/dxf/RecordStore.h"
#include "embedded/os/FileSystem.h"

namespace quoin::dxf {

/// Reads a drawing into a store. Paths are the system's bytes (UTF-8 on most).
/// Fails: throws FileError with the path: eFileNotFound, eFileAccessErr, eUnsupportedFileFormat
/// (no drawing, or one of a format that this build does not read), eBadDxfFile and its like
/// with line and record, eUserBreak when `progress` answers false. The store is empty then.
HOST_API void readDrawing(const std::string& path, RecordStore& store,
                          const Progress& progress = {}, os::FileSystem& files = os::systemFiles());

struct SaveOptions {
  /// Keeps the version that is replaced, whole, as PATH.bak.
  bool keepBackup = false;
};

/// Saves a store in the version and form that it was read in.
/// Fails: throws FileError with the path; the file that was there is untouched:
/// eFileAccessErr (write-protected, a folder), eFileWriteError (disk full, ...), eUserBreak,
/// eUnsupportedFileFormat (a DWG file's name: DXF text in it would deceive every program).
HOST_API void writeDrawing(const RecordStore& store, const std::string& path,
                           const SaveOptions& options = {}, const Progress& progress = {},
                           os::FileSystem& files = os::systemFiles());

}  // namespace quoin::dxf
