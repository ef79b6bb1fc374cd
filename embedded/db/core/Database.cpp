// AcDbDatabase: files, tables and well-known objects.
#include <cwctype>
#include <filesystem>

#include "dbapserv.h"
#include "dbsymtb.h"
#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/dxf/DrawingFile.h"
#include "embedded/dxf/FileError.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/Utf8.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDatabase, AcRxObject)

using namespace quoin::db;
namespace dxf = quoin::dxf;
namespace os = quoin::os;

namespace {

dxf::Progress progressOf(DatabaseImpl& database) {
  return database.progress;
}

/// Whether two names lead to the same file; names that no file has are compared as they are.
bool isSameFile(const std::wstring& a, const std::wstring& b) {
  std::error_code ignored;
  const std::filesystem::path first(os::toUtf8(a));
  const std::filesystem::path second(os::toUtf8(b));
  if (std::filesystem::equivalent(first, second, ignored)) {
    return true;
  }
  return std::filesystem::weakly_canonical(first, ignored) ==
         std::filesystem::weakly_canonical(second, ignored);
}

/// Takes the current exception: keeps its words and returns its status.
Acad::ErrorStatus noteFileError(DatabaseImpl& database) {
  try {
    throw;
  } catch (const dxf::FileError& error) {
    database.lastError = os::fromUtf8(error.message());
    database.isSaveInPlace = error.isInPlace;
    return error.status;
  } catch (const std::bad_alloc&) {
    database.lastError = L"there is not enough memory";
    return Acad::eOutOfMemory;
  } catch (const std::exception& error) {
    database.lastError = os::fromUtf8(error.what());
    return Acad::eFileInternalErr;
  }
}

AcDbDatabase*& workingDatabaseSlot() {
  static AcDbDatabase* database = nullptr;
  return database;
}

}  // namespace

AcDbDatabase::AcDbDatabase(bool, bool) : m_impl(std::make_unique<DatabaseImpl>(*this)) {}

AcDbDatabase::~AcDbDatabase() {
  if (workingDatabaseSlot() == this) {
    workingDatabaseSlot() = nullptr;
  }
}

// --- files ----------------------------------------------------------------------------------

Acad::ErrorStatus AcDbDatabase::readDwgFile(const ACHAR* fileName, int, bool, const wchar_t*) {
  DatabaseImpl& database = *m_impl;
  try {
    database.lastError.clear();
    if (!fileName || !*fileName) {
      database.lastError = L"no file is named";
      return Acad::eInvalidInput;
    }
    if (database.wasRead || database.changes > 0 || database.openCount > 0) {
      database.lastError = L"the database holds a drawing already";
      return Acad::eNotApplicable;
    }
    database.clear();
    database.store.setCodePage(database.codePage);
    const os::FileFacts version =
        dxf::readDrawing(os::toUtf8(fileName), database.store, progressOf(database));
    if (version.kind == os::FileFacts::Kind::Regular) {
      database.version = version;
    }
    database.path = fileName;
    database.failedPath.clear();
    database.wasRead = true;
    return Acad::eOk;
  } catch (...) {
    const Acad::ErrorStatus status = noteFileError(database);
    try {
      database.reset();
      database.failedPath = fileName;
    } catch (...) {
      return statusOfException();
    }
    return status;
  }
}

Acad::ErrorStatus AcDbDatabase::dxfIn(const ACHAR* fileName, const ACHAR*) {
  return readDwgFile(fileName);
}

Acad::ErrorStatus AcDbDatabase::saveAs(const ACHAR* fileName, bool keepBackup) {
  DatabaseImpl& database = *m_impl;
  try {
    database.lastError.clear();
    database.isSaveInPlace = false;
    database.lastSave = {};
    if (!fileName || !*fileName) {
      database.lastError = L"no file is named";
      return Acad::eInvalidInput;
    }
    if (!database.failedPath.empty() && isSameFile(fileName, database.failedPath)) {
      database.lastError = std::wstring(fileName) +
                           L": the drawing could not be read from this file and is not saved "
                           L"over it";
      return Acad::eNotApplicable;
    }
    dxf::SaveOptions options;
    options.keepBackup = keepBackup;
    options.backupFolder = os::toUtf8(hostx::backupFolder());
    if (!database.path.empty() && isSameFile(fileName, database.path)) {
      options.expected = database.version;
    }
    const dxf::SaveResult result =
        dxf::writeDrawing(database.store, os::toUtf8(fileName), options, progressOf(database));
    database.lastSave = {os::fromUtf8(result.backup), result.isUnchanged};
    database.version = result.version;
    database.path = fileName;
    database.savedChanges = database.changes;
    database.isSaveInPlace = true;
    return Acad::eOk;
  } catch (...) {
    const Acad::ErrorStatus status = noteFileError(database);
    if (database.isSaveInPlace) {
      database.savedChanges = database.changes;
      database.version.reset();
    }
    return status;
  }
}

Acad::ErrorStatus AcDbDatabase::getFilename(const ACHAR*& fileName) const {
  fileName = m_impl->path.c_str();
  return m_impl->path.empty() ? Acad::eNotApplicable : Acad::eOk;
}

AcDb::AcDbDwgVersion AcDbDatabase::originalFileVersion() const {
  switch (m_impl->format().version) {
    case dxf::Version::R10:
      return AcDb::kDHL_1006;
    case dxf::Version::R12:
      return AcDb::kDHL_1009;
    case dxf::Version::R13:
      return AcDb::kDHL_1012;
    case dxf::Version::R14:
      return AcDb::kDHL_1014;
    case dxf::Version::R2000:
      return AcDb::kDHL_1015;
    case dxf::Version::R2004:
      return AcDb::kDHL_1800;
    case dxf::Version::R2007:
      return AcDb::kDHL_1021;
    case dxf::Version::R2010:
      return AcDb::kDHL_1024;
    case dxf::Version::R2013:
      return AcDb::kDHL_1027;
    case dxf::Version::R2018:
      return AcDb::kDHL_1032;
    case dxf::Version::Unknown:
      break;
  }
  return AcDb::kDHL_Unknown;
}

// --- symbol tables --------------------------------------------------------------------------

namespace {

AcDbObjectId tableId(DatabaseImpl& database, TableKind kind) {
  try {
    return AcDbObjectId(database.tableHead(kind));
  } catch (...) {
    statusOfException();
    return AcDbObjectId::kNull;
  }
}

}  // namespace

Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbBlockTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, tableId(*m_impl, TableKind::Block), mode);
}

Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbLayerTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, tableId(*m_impl, TableKind::Layer), mode);
}

Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, tableId(*m_impl, TableKind::Linetype), mode);
}

Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbTextStyleTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, tableId(*m_impl, TableKind::TextStyle), mode);
}

Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbDimStyleTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, tableId(*m_impl, TableKind::DimStyle), mode);
}

Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbRegAppTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, tableId(*m_impl, TableKind::RegApp), mode);
}

Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbUCSTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, tableId(*m_impl, TableKind::Ucs), mode);
}

Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbViewTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, tableId(*m_impl, TableKind::View), mode);
}

Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbViewportTable*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, tableId(*m_impl, TableKind::Viewport), mode);
}

AcDbObjectId AcDbDatabase::blockTableId() const {
  return tableId(*m_impl, TableKind::Block);
}

AcDbObjectId AcDbDatabase::layerTableId() const {
  return tableId(*m_impl, TableKind::Layer);
}

AcDbObjectId AcDbDatabase::linetypeTableId() const {
  return tableId(*m_impl, TableKind::Linetype);
}

AcDbObjectId AcDbDatabase::textStyleTableId() const {
  return tableId(*m_impl, TableKind::TextStyle);
}

AcDbObjectId AcDbDatabase::dimStyleTableId() const {
  return tableId(*m_impl, TableKind::DimStyle);
}

AcDbObjectId AcDbDatabase::regAppTableId() const {
  return tableId(*m_impl, TableKind::RegApp);
}

// --- well-known objects ---------------------------------------------------------------------

namespace {

AcDbObjectId recordId(DatabaseImpl& database, TableKind kind, std::wstring_view name) {
  try {
    return AcDbObjectId(database.record(kind, name));
  } catch (...) {
    statusOfException();
    return AcDbObjectId::kNull;
  }
}

}  // namespace

AcDbObjectId AcDbDatabase::layerZero() const {
  return recordId(*m_impl, TableKind::Layer, L"0");
}

AcDbObjectId AcDbDatabase::continuousLinetype() const {
  return recordId(*m_impl, TableKind::Linetype, L"Continuous");
}

AcDbObjectId AcDbDatabase::byLayerLinetype() const {
  return recordId(*m_impl, TableKind::Linetype, L"ByLayer");
}

AcDbObjectId AcDbDatabase::byBlockLinetype() const {
  return recordId(*m_impl, TableKind::Linetype, L"ByBlock");
}

AcDbObjectId AcDbDatabase::namedObjectsDictionaryId() const {
  return AcDbObjectId(m_impl->rootDictionary());
}

AcDbObjectId AcDbDatabase::byLayerMaterial() const {
  try {
    return AcDbObjectId(m_impl->material(L"ByLayer"));
  } catch (...) {
    statusOfException();
    return AcDbObjectId::kNull;
  }
}

// --- ids ------------------------------------------------------------------------------------

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound,
                                                const AcDbHandle& handle, Adesk::UInt32) {
  id.setNull();
  if (handle.isNull()) {
    return Acad::eNullHandle;
  }
  AcDbStub* const stub = m_impl->byHandle(handle.asUInt64());
  if (!stub) {
    return createIfNotFound ? Acad::eNotApplicable : Acad::eUnknownHandle;
  }
  id = AcDbObjectId(stub);
  return Acad::eOk;
}

AcDbHandle AcDbDatabase::handseed() const {
  return AcDbHandle(m_impl->store.nextHandle());
}

Adesk::Int32 AcDbDatabase::approxNumObjects() const {
  return static_cast<Adesk::Int32>(m_impl->store.stubs().size());
}

// --- the host's services --------------------------------------------------------------------

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbHostApplicationServices, AcRxObject)

AcDbDatabase* AcDbHostApplicationServices::workingDatabase() const {
  return workingDatabaseSlot();
}

void AcDbHostApplicationServices::setWorkingDatabase(AcDbDatabase* database) {
  workingDatabaseSlot() = database;
}

AcDbHostApplicationServices* acdbHostApplicationServices() {
  static AcDbHostApplicationServices services;
  return &services;
}
