// What this host tells its clients beyond the classic API: why a file could not be read or
// written, what a file is, where in it an object stands, progress of long work, and whether
// anybody mishandled an object. Modules that are to run in other hosts do without it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "dbmain.h"

namespace hostx {

// --- files ------------------------------------------------------------------------------------

/// What a drawing was read from. Texts are for people: "R2010", "AC1024", "ANSI_1252", "DXF".
struct FileInfo {
  std::wstring path;     // empty for a drawing that was not read
  std::wstring format;   // "DXF"
  std::wstring release;  // "R2010"
  std::wstring acadVersion;
  /// As setCodePage() gave it, else as the file names it; text from R2007 on is UTF-8 whatever
  /// the file says.
  std::wstring codePage;
  bool isBinary = false;
  bool isTextUtf8 = false;
  Adesk::UInt64 fileBytes = 0;
  Adesk::UInt64 recordCount = 0;
  AcDb::UnitsValue units = AcDb::kUnitsUndefined;
};
HOST_API FileInfo fileInfo(const AcDbDatabase* database);

/// "millimeters", "unitless", ...
HOST_API const ACHAR* unitsName(AcDb::UnitsValue units);
/// Millimetres of one unit; 0 for kUnitsUndefined.
HOST_API double millimetersPerUnit(AcDb::UnitsValue units);

/// What went wrong with the last reading or saving of this database, in words: file, line or
/// offset, record, cause. Empty when it went well.
HOST_API std::wstring lastFileError(const AcDbDatabase* database);

/// Whether the last saving put the drawing in place. One that failed may have done so: where the
/// folder's new state could not be brought to the disk, the file is the new one all the same.
HOST_API bool isSaveInPlace(const AcDbDatabase* database);

/// What the last saving of a database did, where it did not fail.
struct SaveResult {
  std::wstring backup;       // where the version that was replaced is kept; empty for nowhere
  bool isUnchanged = false;  // the file had these bytes already: nothing was written, none kept
};
HOST_API SaveResult lastSave(const AcDbDatabase* database);

/// Where this process keeps the versions of drawings that it replaces; empty, as at the start,
/// for beside the drawing.
HOST_API void setBackupFolder(const std::wstring& folder);
HOST_API std::wstring backupFolder();

/// What reading found odd but could live with (layers that no table lists, double handles),
/// in words.
HOST_API std::vector<std::wstring> warnings(const AcDbDatabase* database);

/// Names the code page of all text of the file that this database is going to read, for files
/// that name none or the wrong one: "ANSI_936", "gbk", "cp1252", "shift_jis", "utf-8", in any
/// case. The file keeps what it says; new text is written in the code page that is named here.
/// An empty name leaves it to the file.
/// Fails: eInvalidInput (no database, a code page that nobody knows), eNotApplicable (the
/// database holds a drawing that was read).
HOST_API Acad::ErrorStatus setCodePage(AcDbDatabase* database, const ACHAR* name);
/// Whether setCodePage() takes the name.
HOST_API bool isKnownCodePage(const ACHAR* name);

/// Called while a file is read or saved, with 0 to 1; returning false stops the work with
/// eUserBreak, and every file stays whole. An empty function takes it away.
using Progress = std::function<bool(double fraction)>;
HOST_API void setProgress(AcDbDatabase* database, Progress progress);

/// Whether anything differs from the file that was read or saved last.
HOST_API bool isModified(const AcDbDatabase* database);

// --- objects ----------------------------------------------------------------------------------

/// The name of the object's kind in drawing files, "LINE"; empty for null.
HOST_API std::wstring kindName(const AcDbObject* object);
HOST_API std::wstring kindName(const AcDbObjectId& id);
/// Whether the host has a class for this kind; else the object is a plain AcDbEntity or
/// AcDbObject that keeps all its data.
HOST_API bool hasTypedClass(const AcDbObjectId& id);
/// Whether transformBy knows this kind and finds what it needs in the record.
HOST_API bool canTransform(const AcDbObjectId& id);
/// Whether getGeomExtents knows this kind.
HOST_API bool hasExtents(const AcDbObjectId& id);
/// Where the object stands in the file that was read: the line (from 1) of an ASCII file, the
/// byte offset in a binary one; 0 for a new object.
HOST_API Adesk::UInt64 lineNumber(const AcDbObjectId& id);
/// Whether a number of the object, as the file has it, is none or is not finite. The object returns
/// 0 for such a number.
HOST_API bool hasUnreadableNumber(const AcDbObject* object);
/// The name of an entity's layer without opening anything; empty for other objects.
HOST_API std::wstring layerName(const AcDbObjectId& id);

// --- misuse -----------------------------------------------------------------------------------

/// What clients did wrong with objects, in the whole process since the last reset.
struct Misuse {
  Adesk::UInt64 leftOpen = 0;             // open when their database was deleted
  Adesk::UInt64 usedAfterClose = 0;       // called through a pointer that was closed
  Adesk::UInt64 writtenWithoutWrite = 0;  // a setter on what was not open for write
  Adesk::UInt64 deletedInDatabase = 0;    // `delete` on what belongs to a database
  /// The first hundred, one sentence each: "LINE 2F left open for write".
  std::vector<std::wstring> messages;

  bool isEmpty() const {
    return leftOpen + usedAfterClose + writtenWithoutWrite + deletedInDatabase == 0;
  }
};
HOST_API Misuse misuse();
HOST_API void resetMisuse();

/// The objects of a database that are open now, one text each: "LINE 2F for write".
HOST_API std::vector<std::wstring> openObjects(const AcDbDatabase* database);

}  // namespace hostx
