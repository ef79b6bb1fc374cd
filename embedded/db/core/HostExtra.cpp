#include "hostextra.h"

#include <array>

#include "embedded/db/core/Misuse.h"
#include "embedded/db/core/RecordKinds.h"
#include "embedded/os/CodePage.h"
#include "embedded/os/Utf8.h"

using namespace quoin::db;
namespace dxf = quoin::dxf;
namespace os = quoin::os;

namespace {

struct Unit {
  const ACHAR* name;
  double millimeters;
};

/// In the order of AcDb::UnitsValue.
constexpr std::array<Unit, AcDb::kUnitsMax + 1> kUnits{{
    {L"unitless", 0.0},
    {L"inches", 25.4},
    {L"feet", 304.8},
    {L"miles", 1609344.0},
    {L"millimeters", 1.0},
    {L"centimeters", 10.0},
    {L"meters", 1000.0},
    {L"kilometers", 1.0e6},
    {L"microinches", 2.54e-5},
    {L"mils", 0.0254},
    {L"yards", 914.4},
    {L"angstroms", 1.0e-7},
    {L"nanometers", 1.0e-6},
    {L"microns", 1.0e-3},
    {L"decimeters", 100.0},
    {L"dekameters", 1.0e4},
    {L"hectometers", 1.0e5},
    {L"gigameters", 1.0e12},
    {L"astronomical units", 1.495978707e14},
    {L"light years", 9.4607304725808e18},
    {L"parsecs", 3.0856775814913673e19},
}};

const Unit& unitOf(AcDb::UnitsValue units) {
  const auto index = static_cast<std::size_t>(units);
  return kUnits[index < kUnits.size() ? index : 0];
}

}  // namespace

namespace hostx {

FileInfo fileInfo(const AcDbDatabase* database) {
  FileInfo info;
  if (!database) {
    return info;
  }
  const DatabaseImpl& impl = Access::of(*database);
  const dxf::Format& format = impl.format();
  info.path = impl.path;
  const dxf::DrawingSource* const source = impl.store.source();
  info.format = source == nullptr ? L"DXF" : os::fromUtf8(source->formatName());
  info.release = os::fromUtf8(dxf::releaseName(format.version));
  info.acadVersion = os::fromUtf8(dxf::acadVerText(format.version));
  info.codePage = os::fromUtf8(format.codePage);
  info.isBinary = format.form == dxf::Form::Binary;
  info.isTextUtf8 = format.textIsUtf8();
  info.fileBytes = impl.wasRead ? impl.store.fileSize() : 0;
  info.recordCount = impl.store.stubs().size();
  info.units = database->insunits();
  return info;
}

const ACHAR* unitsName(AcDb::UnitsValue units) {
  return unitOf(units).name;
}

double millimetersPerUnit(AcDb::UnitsValue units) {
  return unitOf(units).millimeters;
}

std::wstring lastFileError(const AcDbDatabase* database) {
  return database ? Access::of(*database).lastError : std::wstring();
}

bool isSaveInPlace(const AcDbDatabase* database) {
  return database && Access::of(*database).isSaveInPlace;
}

SaveResult lastSave(const AcDbDatabase* database) {
  return database ? Access::of(*database).lastSave : SaveResult();
}

namespace {
std::wstring& backupFolderSlot() {
  static std::wstring folder;
  return folder;
}
}  // namespace

void setBackupFolder(const std::wstring& folder) {
  backupFolderSlot() = folder;
}

std::wstring backupFolder() {
  return backupFolderSlot();
}

std::vector<std::wstring> warnings(const AcDbDatabase* database) {
  std::vector<std::wstring> texts;
  if (database) {
    for (const dxf::Warning& warning : Access::of(*database).store.warnings()) {
      const std::string record = warning.record.empty() ? "" : warning.record + ": ";
      texts.push_back(os::fromUtf8(record + warning.text));
    }
  }
  return texts;
}

bool isKnownCodePage(const ACHAR* name) {
  return name && *name && os::CodePage::isKnown(os::toUtf8(name));
}

Acad::ErrorStatus setCodePage(AcDbDatabase* database, const ACHAR* name) {
  if (!database || !name || (*name && !isKnownCodePage(name))) {
    return Acad::eInvalidInput;
  }
  DatabaseImpl& impl = Access::of(*database);
  if (impl.wasRead) {
    return Acad::eNotApplicable;
  }
  impl.codePage = os::toUtf8(name);
  return Acad::eOk;
}

void setProgress(AcDbDatabase* database, Progress progress) {
  if (database) {
    Access::of(*database).progress = std::move(progress);
  }
}

bool isModified(const AcDbDatabase* database) {
  return database && Access::of(*database).changes != Access::of(*database).savedChanges;
}

std::wstring kindName(const AcDbObject* object) {
  if (!object) {
    return {};
  }
  const TagList& tags = tagsOf(*object);
  return tags.size() > 0 ? os::fromUtf8(dxf::trimmedValue(tags[0])) : kindName(object->objectId());
}

std::wstring kindName(const AcDbObjectId& id) {
  const AcDbStub* const stub = stubOf(id);
  return stub ? os::fromUtf8(DatabaseImpl::of(*stub).kindOf(*stub)) : std::wstring();
}

bool hasTypedClass(const AcDbObjectId& id) {
  const AcDbStub* const stub = stubOf(id);
  try {
    return stub && classOf(*stub);
  } catch (...) {
    statusOfException();
    return false;
  }
}

Adesk::UInt64 lineNumber(const AcDbObjectId& id) {
  const AcDbStub* const stub = stubOf(id);
  const bool isOwnHead = stub && stub->role == dxf::Role::Table && !stub->data;
  return stub && !isOwnHead ? stub->store->lineOf(*stub) : 0;
}

bool hasUnreadableNumber(const AcDbObject* object) {
  if (!object) {
    return false;
  }
  const TagList& tags = tagsOf(*object);
  for (std::size_t i = 0; i < tags.size(); ++i) {
    if (dxf::isUnreadableDouble(tags[i], tags.format())) {
      return true;
    }
  }
  return false;
}

std::wstring layerName(const AcDbObjectId& id) {
  const AcDbStub* const stub = stubOf(id);
  if (!stub) {
    return {};
  }
  DatabaseImpl& database = DatabaseImpl::of(*stub);
  try {
    return database.isEntity(*stub) ? database.layerSpelling(database.layerNameOf(*stub))
                                    : std::wstring();
  } catch (...) {
    statusOfException();
    return {};
  }
}

std::vector<std::wstring> openObjects(const AcDbDatabase* database) {
  std::vector<std::wstring> texts;
  if (database) {
    Access::of(*database).forEachStub([&](const AcDbStub& stub) {
      if (stub.object) {
        const bool forWrite = Access::of(*stub.object).state == OpenState::Write;
        texts.push_back(describe(*stub.object) + (forWrite ? L" for write" : L" for read"));
      }
    });
  }
  return texts;
}

}  // namespace hostx
