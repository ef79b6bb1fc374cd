// The CAD product's own saver of drawing databases.
#pragma once

#include "PlatformApi.h"
#include "acadstrc.h"

class AcDbDatabase;

class PLATFORM_API CAcadDbTool {
 public:
  /// Saves the database under the path, in the format that it was read in. A true `keepBackup`
  /// keeps what stood there before beside it as a backup file.
  /// Fails: eNoDatabase, eInvalidInput (no path), otherwise what saving returns; the file
  /// that stood there stays whole.
  static Acad::ErrorStatus SaveDb(AcDbDatabase* pDb, const wchar_t* path, bool keepBackup);
};
