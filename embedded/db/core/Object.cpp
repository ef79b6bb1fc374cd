// AcDbObject: identity, opening and closing, erasing.
#include "dbmain.h"
#include "embedded/db/core/DictionaryRecords.h"
#include "embedded/db/core/Misuse.h"
#include "embedded/db/core/Opening.h"
#include "embedded/os/CaseFold.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObject, AcRxObject)

using namespace quoin::db;
namespace dxf = quoin::dxf;

namespace {

/// What a class shows that the host has no class for.
class PlainObject : public AcDbObject {};
class PlainEntity : public AcDbEntity {};

constexpr int kSoftOwnerCode = 350;
constexpr int kHardOwnerCode = 360;

/// What a drawing cannot be without.
bool isIndispensable(DatabaseImpl& database, const AcDbStub& stub) {
  switch (stub.role) {
    case dxf::Role::Table:
    case dxf::Role::BlockBegin:
    case dxf::Role::BlockEnd:
    case dxf::Role::Other:
      return true;
    case dxf::Role::Object: {
      // An object that its owner does not list would go on being named by somebody.
      const AcDbStub* const owner = stub.owner;
      const std::wstring name = owner ? database.dictionaryName(*owner, stub) : std::wstring();
      const bool isListed = !name.empty() || database.erasedEntries.contains(&stub);
      const bool isNamedDictionary =
          owner == database.rootDictionary() && name.starts_with(L"ACAD_");
      const bool isStandard = database.kindOf(stub) == "MLINESTYLE" &&
                              quoin::os::sameName(std::wstring_view(name), L"Standard");
      return !isListed || isNamedDictionary || isStandard || database.kindOf(stub) == "LAYOUT" ||
             isPointedTo(database, stub);
    }
    case dxf::Role::TableRecord: {
      if (database.store.blockOf(stub) || &stub == database.layer(L"0")) {
        return true;
      }
      const std::wstring name = database.recordName(stub);
      return database.kindOf(stub) == "LTYPE" &&
             (quoin::os::sameName(name, L"ByLayer") || quoin::os::sameName(name, L"ByBlock") ||
              quoin::os::sameName(name, L"Continuous"));
    }
    case dxf::Role::Entity:
    case dxf::Role::SubEntity:
      break;
  }
  return false;
}

/// Erases what an object owns besides its parts: the extension dictionary with its entries.
void eraseOwned(DatabaseImpl& database, const AcDbStub& stub, bool erasing) {
  const auto eraseEach = [&](const TagList& tags, TagRange range) {
    for (std::size_t i = range.first; i < range.last; ++i) {
      if (tags[i].code != kHardOwnerCode && tags[i].code != kSoftOwnerCode) {
        continue;
      }
      AcDbStub* const owned = database.byHandle(tags.handleAt(i));
      if (owned && owned->role == dxf::Role::Object && owned->erased != erasing) {
        database.store.setErased(*owned, erasing);
        eraseOwned(database, *owned, erasing);
      }
    }
  };
  const TagList tags = database.tagsOf(stub);
  eraseEach(tags, tags.group("{ACAD_XDICTIONARY"));
  if (stub.role == dxf::Role::Object && database.kindOf(stub) == "DICTIONARY") {
    eraseEach(tags, tags.subclass("AcDbDictionary"));
  }
}

}  // namespace

AcDbObject* quoin::db::Access::newPlainEntity() {
  return new PlainEntity;
}

AcDbObject* quoin::db::Access::newPlainObject() {
  return new PlainObject;
}

AcDbObject::AcDbObject() : m_impl(std::make_unique<ObjectImpl>()) {}

AcDbObject::~AcDbObject() {
  if (m_impl->stub) {
    try {
      noteDeletedInDatabase(describe(*this));
    } catch (const std::bad_alloc&) {
      // The count is lost; the stub must not keep the pointer.
    }
    closeView(*this);
  }
}

// --- identity -------------------------------------------------------------------------------

AcDbObjectId AcDbObject::objectId() const {
  return AcDbObjectId(m_impl->stub);
}

AcDbObjectId AcDbObject::ownerId() const {
  return m_impl->stub ? AcDbObjectId(m_impl->database->ownerOf(*m_impl->stub))
                      : AcDbObjectId::kNull;
}

void AcDbObject::getAcDbHandle(AcDbHandle& handle) const {
  handle = AcDbHandle(m_impl->stub ? m_impl->stub->handle : 0);
}

AcDbDatabase* AcDbObject::database() const {
  return m_impl->database ? m_impl->database->self : nullptr;
}

AcDbObjectId AcDbObject::extensionDictionary() const {
  if (!m_impl->database) {
    return AcDbObjectId::kNull;
  }
  const TagList& tags = tagsOf(*this);
  const TagRange group = tags.group("{ACAD_XDICTIONARY");
  for (std::size_t i = group.first; i < group.last; ++i) {
    if (tags[i].code != kGroupCode) {
      return AcDbObjectId(m_impl->database->byHandle(tags.handleAt(i)));
    }
  }
  return AcDbObjectId::kNull;
}

Acad::ErrorStatus AcDbObject::createExtensionDictionary() {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  if (!m_impl->stub) {
    return Acad::eNotInDatabase;
  }
  try {
    DatabaseImpl& database = *m_impl->database;
    AcDbStub* const former = extensionDictionary();
    if (former && !former->erased) {
      return Acad::eAlreadyInDb;
    }
    const std::size_t handleTag = tagsOf(*this).handleTag();
    if (!database.format().hasSubclassMarkers() || handleTag == TagList::kNone) {
      return Acad::eNotApplicable;
    }
    const AcDbStub* const made = appendDictionary(database, m_impl->stub, true);
    return change(*this, [&](RecordEdit& edit) {
      const TagRange group = edit.tags().group("{ACAD_XDICTIONARY");
      const dxf::Format& format = database.format();
      std::string bytes;
      dxf::putAscii(bytes, kGroupCode, "{ACAD_XDICTIONARY", format);
      dxf::putHandle(bytes, kHardOwnerCode, made->handle, format);
      dxf::putAscii(bytes, kGroupCode, "}", format);
      if (group.isEmpty()) {
        edit.insertBefore(handleTag + 1, std::move(bytes));
      } else {
        edit.replace(group, std::move(bytes));
      }
    });
  } catch (...) {
    return statusOfException();
  }
}

// --- opening and closing --------------------------------------------------------------------

Acad::ErrorStatus AcDbObject::close() {
  switch (m_impl->state) {
    case OpenState::Free:
      return Acad::eNotInDatabase;
    case OpenState::Closed:
      try {
        noteUsedAfterClose(describe(*this));
      } catch (const std::bad_alloc&) {
        return Acad::eOutOfMemory;
      }
      return Acad::eNotOpenForRead;
    case OpenState::Read:
      if (--m_impl->readers > 0) {
        return Acad::eOk;
      }
      break;
    case OpenState::Write:
      break;
  }
  closeView(*this, true);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
  switch (m_impl->state) {
    case OpenState::Free:
      return Acad::eNotInDatabase;
    case OpenState::Closed:
      return Acad::eNotOpenForRead;
    case OpenState::Write:
      return Acad::eWasOpenForWrite;
    case OpenState::Read:
      break;
  }
  if (m_impl->readers > 1) {
    return Acad::eWasOpenForRead;
  }
  m_impl->readers = 0;
  m_impl->state = OpenState::Write;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
  if (m_impl->state == OpenState::Free) {
    return Acad::eNotInDatabase;
  }
  if (m_impl->state != OpenState::Write) {
    return Acad::eNotOpenForWrite;
  }
  m_impl->readers = 1;
  m_impl->state = OpenState::Read;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::erase(Adesk::Boolean erasing) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  AcDbStub* const stub = m_impl->stub;
  if (!stub) {
    return Acad::eNotInDatabase;
  }
  try {
    DatabaseImpl& database = *m_impl->database;
    if (isIndispensable(database, *stub)) {
      return Acad::eNotApplicable;
    }
    if (stub->erased == erasing) {
      return erasing ? Acad::eWasErased : Acad::eNotApplicable;
    }
    const Acad::ErrorStatus left = eraseEntry(database, *stub, erasing);
    if (left != Acad::eOk) {
      return left;
    }
    database.store.setErased(*stub, erasing);
    ++database.changes;
    eraseOwned(database, *stub, erasing);
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

bool AcDbObject::isErased() const {
  return m_impl->stub && m_impl->stub->erased;
}

bool AcDbObject::isEffectivelyErased() const {
  return m_impl->stub && m_impl->database->isErased(*m_impl->stub);
}

bool AcDbObject::isReadEnabled() const {
  return m_impl->state != OpenState::Closed;
}

bool AcDbObject::isWriteEnabled() const {
  return m_impl->state == OpenState::Free || m_impl->state == OpenState::Write;
}

bool AcDbObject::isModified() const {
  return m_impl->isModified;
}

bool AcDbObject::isNewObject() const {
  return !m_impl->stub || m_impl->stub->isNew;
}

// --- opening by id --------------------------------------------------------------------------

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
  return openStub(object, static_cast<AcDbStub*>(id), mode, openErased);
}

Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& entity, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
  return acdbOpenObject(entity, id, mode, openErased);
}
