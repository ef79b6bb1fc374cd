// AcDbObject: identity, opening and closing, erasing.
#include "dbmain.h"
#include "embedded/db/DatabaseImpl.h"
#include "embedded/db/Misuse.h"
#include "embedded/db/Opening.h"
#include "embedded/db/Transfer.h"
#include "embedded/os/CaseFold.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObject, AcRxObject)

using namespace quoin::db;
namespace dxf = quoin::dxf;

namespace {

/// What a class shows that the host has no class for.
class PlainObject : public AcDbObject {};
class PlainEntity : public AcDbEntity {};

/// What a drawing cannot be without.
bool isIndispensable(DatabaseImpl& database, const AcDbStub& stub) {
  switch (stub.role) {
    case dxf::Role::Table:
    case dxf::Role::BlockBegin:
    case dxf::Role::BlockEnd:
    case dxf::Role::Other:
    case dxf::Role::Object:  // its dictionary would go on naming it
      return true;
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
  constexpr int kHardOwner = 360;
  const auto eraseEach = [&](const TagList& tags, TagRange range) {
    for (std::size_t i = range.first; i < range.last; ++i) {
      if (tags[i].code != kHardOwner) {
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
