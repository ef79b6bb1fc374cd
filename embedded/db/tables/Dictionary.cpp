// AcDbDictionary and its iterator; the named dictionaries of a database.
#include "dbdict.h"
#include "dbsymtb.h"
#include "embedded/db/core/DictionaryRecords.h"
#include "embedded/os/CaseFold.h"

ACRX_CONS_DEFINE_MEMBERS(AcDbDictionary, AcDbObject)
ACRX_CONS_DEFINE_MEMBERS(AcDbDictionaryWithDefault, AcDbDictionary)

using namespace quoin::db;
namespace dxf = quoin::dxf;
namespace os = quoin::os;

namespace {

constexpr wchar_t kFirstPrintable = 0x20;

/// The live entries of a dictionary in a database; none for one in no database.
std::vector<DictionaryEntry> liveEntries(const AcDbDictionary& dictionary) {
  const DatabaseImpl* const database = Access::of(dictionary).database;
  std::vector<DictionaryEntry> entries;
  if (database) {
    entries = entriesOf(*database, tagsOf(dictionary));
    std::erase_if(entries, [](const DictionaryEntry& entry) {
      return !entry.object || entry.object->erased;
    });
  }
  return entries;
}

template <class Matches>
bool findEntry(const AcDbDictionary& dictionary, DictionaryEntry& found, Matches&& matches) {
  for (DictionaryEntry& entry : liveEntries(dictionary)) {
    if (matches(entry)) {
      found = std::move(entry);
      return true;
    }
  }
  return false;
}

auto isCalled(std::wstring_view name) {
  return [name](const DictionaryEntry& entry) { return os::sameName(entry.name, name); };
}

auto isFor(const AcDbObjectId& id) {
  return [id](const DictionaryEntry& entry) { return AcDbObjectId(entry.object) == id; };
}

bool isEntryName(const ACHAR* name) {
  if (!name || !*name) {
    return false;
  }
  for (const ACHAR* at = name; *at; ++at) {
    if (*at < kFirstPrintable) {
      return false;
    }
  }
  return true;
}

/// What is wrong with a free object that is to go into a dictionary; eOk if nothing is.
Acad::ErrorStatus checkObject(const DatabaseImpl& database, const AcDbObject& object) {
  if (Access::of(object).state != OpenState::Free) {
    return Acad::eAlreadyInDb;
  }
  if (object.isKindOf(AcDbEntity::desc()) || object.isKindOf(AcDbSymbolTableRecord::desc()) ||
      object.isKindOf(AcDbSymbolTable::desc())) {
    return Acad::eNotThatKindOfClass;
  }
  const TagList& tags = tagsOf(object);
  if (tags.size() == 0) {
    return Acad::eNotThatKindOfClass;
  }
  const std::string_view kind = dxf::trimmedValue(tags[0]);
  if (!isDeclared(database, kind)) {
    return Acad::eNotApplicable;
  }
  const bool needsName = kind == "MLINESTYLE";
  return needsName && tags.text(code::kName, tags.body()).value_or(L"").empty()
             ? Acad::eInvalidInput
             : Acad::eOk;
}

Acad::ErrorStatus removeMatching(AcDbDictionary& dictionary, AcDbObjectId& id,
                                 const std::function<bool(const DictionaryEntry&)>& matches) {
  id.setNull();
  const Acad::ErrorStatus status = checkWritable(dictionary);
  if (status != Acad::eOk) {
    return status;
  }
  try {
    DictionaryEntry entry;
    if (!findEntry(dictionary, entry, matches)) {
      return Acad::eKeyNotFound;
    }
    id = AcDbObjectId(entry.object);
    return change(dictionary, [&](RecordEdit& edit) { removeEntry(edit, entry); });
  } catch (...) {
    return statusOfException();
  }
}

}  // namespace

// --- the iterator ---------------------------------------------------------------------------

struct AcDbDictionaryIterator::State {
  std::vector<DictionaryEntry> entries;
  std::size_t at = 0;
};

AcDbDictionaryIterator::AcDbDictionaryIterator(std::unique_ptr<State> state)
    : m_state(std::move(state)) {}

AcDbDictionaryIterator::~AcDbDictionaryIterator() = default;

bool AcDbDictionaryIterator::done() const {
  return m_state->at >= m_state->entries.size();
}

bool AcDbDictionaryIterator::next() {
  m_state->at += done() ? 0 : 1;
  return !done();
}

const ACHAR* AcDbDictionaryIterator::name() const {
  return done() ? nullptr : m_state->entries[m_state->at].name.c_str();
}

AcDbObjectId AcDbDictionaryIterator::objectId() const {
  return done() ? AcDbObjectId::kNull : AcDbObjectId(m_state->entries[m_state->at].object);
}

Acad::ErrorStatus AcDbDictionaryIterator::getObject(AcDbObject*& object, AcDb::OpenMode mode) {
  return acdbOpenAcDbObject(object, objectId(), mode);
}

bool AcDbDictionaryIterator::setPosition(AcDbObjectId id) {
  for (std::size_t i = 0; i < m_state->entries.size(); ++i) {
    if (AcDbObjectId(m_state->entries[i].object) == id) {
      m_state->at = i;
      return true;
    }
  }
  return false;
}

// --- look-up --------------------------------------------------------------------------------

AcDbDictionary::AcDbDictionary() = default;
AcDbDictionaryWithDefault::AcDbDictionaryWithDefault() = default;

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* name, AcDbObjectId& id) const {
  id.setNull();
  if (!name || !*name) {
    return Acad::eInvalidInput;
  }
  try {
    DictionaryEntry entry;
    if (!findEntry(*this, entry, isCalled(name))) {
      return Acad::eKeyNotFound;
    }
    id = AcDbObjectId(entry.object);
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* name, AcDbObject*& object,
                                        AcDb::OpenMode mode) const {
  return getAt<AcDbObject>(name, object, mode);
}

Acad::ErrorStatus AcDbDictionary::nameAt(AcDbObjectId id, ACHAR*& name) const {
  name = nullptr;
  try {
    DictionaryEntry entry;
    return findEntry(*this, entry, isFor(id)) ? acutNewString(entry.name.c_str(), name)
                                              : Acad::eKeyNotFound;
  } catch (...) {
    return statusOfException();
  }
}

bool AcDbDictionary::has(const ACHAR* name) const {
  AcDbObjectId id;
  return getAt(name, id) == Acad::eOk;
}

bool AcDbDictionary::has(AcDbObjectId id) const {
  try {
    DictionaryEntry entry;
    return findEntry(*this, entry, isFor(id));
  } catch (...) {
    statusOfException();
    return false;
  }
}

Adesk::UInt32 AcDbDictionary::numEntries() const {
  try {
    return static_cast<Adesk::UInt32>(liveEntries(*this).size());
  } catch (...) {
    statusOfException();
    return 0;
  }
}

AcDbDictionaryIterator* AcDbDictionary::newIterator() const {
  try {
    auto state = std::make_unique<AcDbDictionaryIterator::State>();
    state->entries = liveEntries(*this);
    return new AcDbDictionaryIterator(std::move(state));
  } catch (...) {
    statusOfException();
    return nullptr;
  }
}

bool AcDbDictionary::isTreatElementsAsHard() const {
  constexpr int kIsHardOwner = 280;
  const TagList& tags = tagsOf(*this);
  return tags.integer(kIsHardOwner, tags.subclass("AcDbDictionary"), 0) != 0;
}

AcDbObjectId AcDbDictionaryWithDefault::defaultId() const {
  constexpr int kDefault = 340;
  const DatabaseImpl* const database = Access::of(*this).database;
  const TagList& tags = tagsOf(*this);
  return database ? AcDbObjectId(database->byHandle(
                        tags.handle(kDefault, tags.subclass("AcDbDictionaryWithDefault"))))
                  : AcDbObjectId::kNull;
}

// --- changes --------------------------------------------------------------------------------

Acad::ErrorStatus AcDbDictionary::setAt(const ACHAR* name, AcDbObject* object, AcDbObjectId& id) {
  id.setNull();
  Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  AcDbStub* const own = Access::of(*this).stub;
  if (!own || !object) {
    return own ? Acad::eNullObjectPointer : Acad::eNotInDatabase;
  }
  if (!isEntryName(name)) {
    return Acad::eInvalidInput;
  }
  try {
    DatabaseImpl& database = *Access::of(*this).database;
    status = checkObject(database, *object);
    if (status != Acad::eOk) {
      return status;
    }
    if (DictionaryEntry former; findEntry(*this, former, isCalled(name))) {
      AcDbObject* replaced = nullptr;
      status = acdbOpenAcDbObject(replaced, AcDbObjectId(former.object), AcDb::kForWrite);
      if (status != Acad::eOk) {
        return status;
      }
      status = replaced->erase();
      replaced->close();
      if (status != Acad::eOk) {
        return status;
      }
    }
    appendFreeObject(database, *own, *object);
    id = object->objectId();
    return change(
        *this, [&](RecordEdit& edit) { addEntry(edit, name, static_cast<AcDbStub*>(id)->handle); });
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* name) {
  AcDbObjectId id;
  return remove(name, id);
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* name, AcDbObjectId& id) {
  return removeMatching(*this, id, isCalled(name ? name : L""));
}

Acad::ErrorStatus AcDbDictionary::remove(AcDbObjectId id) {
  AcDbObjectId removed;
  return removeMatching(*this, removed, isFor(id));
}

bool AcDbDictionary::setName(const ACHAR* oldName, const ACHAR* newName) {
  if (checkWritable(*this) != Acad::eOk || !oldName || !isEntryName(newName)) {
    return false;
  }
  try {
    DictionaryEntry entry;
    DictionaryEntry other;
    if (!findEntry(*this, entry, isCalled(oldName)) ||
        (findEntry(*this, other, isCalled(newName)) && other.object != entry.object)) {
      return false;
    }
    return change(*this, [&](RecordEdit& edit) {
             std::string bytes;
             dxf::putText(bytes, edit.tags()[entry.at].code, newName, edit.tags().format());
             edit.replace({entry.at, entry.at + 1}, std::move(bytes));
           }) == Acad::eOk;
  } catch (...) {
    statusOfException();
    return false;
  }
}

// --- the database's dictionaries ------------------------------------------------------------

namespace {

AcDbObjectId dictionaryId(const DatabaseImpl& database, std::wstring_view name) {
  try {
    return AcDbObjectId(namedDictionary(database, name));
  } catch (...) {
    statusOfException();
    return AcDbObjectId::kNull;
  }
}

Acad::ErrorStatus openDictionary(DatabaseImpl& database, std::wstring_view name,
                                 AcDbDictionary*& dictionary, AcDb::OpenMode mode) {
  dictionary = nullptr;
  if (!database.format().hasSubclassMarkers()) {
    return Acad::eNotApplicable;
  }
  try {
    AcDbStub* const found = mode == AcDb::kForWrite ? ensureNamedDictionary(database, name)
                                                    : namedDictionary(database, name);
    return found ? acdbOpenObject(dictionary, AcDbObjectId(found), mode) : Acad::eKeyNotFound;
  } catch (...) {
    return statusOfException();
  }
}

}  // namespace

Acad::ErrorStatus AcDbDatabase::getNamedObjectsDictionary(AcDbDictionary*& dictionary,
                                                          AcDb::OpenMode mode) {
  return openDictionary(*m_impl, dictionaries::kRoot, dictionary, mode);
}

Acad::ErrorStatus AcDbDatabase::getMLStyleDictionary(AcDbDictionary*& dictionary,
                                                     AcDb::OpenMode mode) {
  return openDictionary(*m_impl, dictionaries::kMlineStyles, dictionary, mode);
}

Acad::ErrorStatus AcDbDatabase::getMaterialDictionary(AcDbDictionary*& dictionary,
                                                      AcDb::OpenMode mode) {
  return openDictionary(*m_impl, dictionaries::kMaterials, dictionary, mode);
}

Acad::ErrorStatus AcDbDatabase::getGroupDictionary(AcDbDictionary*& dictionary,
                                                   AcDb::OpenMode mode) {
  return openDictionary(*m_impl, dictionaries::kGroups, dictionary, mode);
}

Acad::ErrorStatus AcDbDatabase::getLayoutDictionary(AcDbDictionary*& dictionary,
                                                    AcDb::OpenMode mode) {
  return openDictionary(*m_impl, dictionaries::kLayouts, dictionary, mode);
}

Acad::ErrorStatus AcDbDatabase::getPlotStyleNameDictionary(AcDbDictionary*& dictionary,
                                                           AcDb::OpenMode mode) {
  return openDictionary(*m_impl, dictionaries::kPlotStyleNames, dictionary, mode);
}

AcDbObjectId AcDbDatabase::mLStyleDictionaryId() const {
  return dictionaryId(*m_impl, dictionaries::kMlineStyles);
}

AcDbObjectId AcDbDatabase::materialDictionaryId() const {
  return dictionaryId(*m_impl, dictionaries::kMaterials);
}

AcDbObjectId AcDbDatabase::groupDictionaryId() const {
  return dictionaryId(*m_impl, dictionaries::kGroups);
}

AcDbObjectId AcDbDatabase::layoutDictionaryId() const {
  return dictionaryId(*m_impl, dictionaries::kLayouts);
}

AcDbObjectId AcDbDatabase::plotStyleNameDictionaryId() const {
  return dictionaryId(*m_impl, dictionaries::kPlotStyleNames);
}
