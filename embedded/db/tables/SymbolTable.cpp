// Symbol tables and their iterators: the part that is the same for all of them.
#include "dbsymtb.h"
#include "embedded/db/core/Append.h"
#include "embedded/db/core/Blocks.h"
#include "embedded/db/core/NewBlock.h"
#include "embedded/db/tables/SymbolNames.h"
#include "embedded/os/CaseFold.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTable, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTableRecord, AcDbObject)

using namespace quoin::db;
namespace dxf = quoin::dxf;

namespace {

/// The table that an object is; false for a table in no database.
bool kindOfTable(const AcDbObject& table, TableKind& kind) {
  const ObjectImpl& impl = Access::of(table);
  return impl.stub && impl.database->isTable(*impl.stub, kind);
}

}  // namespace

struct AcDbSymbolTableIterator::State {
  std::vector<AcDbStub*> records;
  const DatabaseImpl* database = nullptr;
  std::size_t at = 0;

  bool isSkipped(bool skipDeleted) const {
    return skipDeleted && at < records.size() && database->isErased(*records[at]);
  }
};

// --- records --------------------------------------------------------------------------------

AcDbSymbolTableRecord::AcDbSymbolTableRecord() = default;

Acad::ErrorStatus AcDbSymbolTableRecord::getName(ACHAR*& name) const {
  const ACHAR* kept = nullptr;
  const Acad::ErrorStatus status = getName(kept);
  name = nullptr;
  return status == Acad::eOk ? acutNewString(kept, name) : status;
}

Acad::ErrorStatus AcDbSymbolTableRecord::getName(const ACHAR*& name) const {
  name = nullptr;
  const ObjectImpl& impl = Access::of(*this);
  if (impl.state == OpenState::Closed) {
    tagsOf(*this);  // counts the misuse
    return Acad::eNotOpenForRead;
  }
  try {
    std::wstring text = impl.stub ? impl.database->recordName(*impl.stub)
                                  : textOf(*this, layout::kSymbol, code::kName);
    name = keptText(*this, code::kName, std::move(text));
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbSymbolTableRecord::setName(const ACHAR* name) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  try {
    const ObjectImpl& impl = Access::of(*this);
    if (!name || !isValidSymbolName(name, true)) {
      return Acad::eInvalidInput;
    }
    if (!impl.stub) {
      return setText(*this, layout::kSymbol, code::kName, name);
    }
    DatabaseImpl& database = *impl.database;
    const std::wstring before = database.recordName(*impl.stub);
    if (before == name) {
      return Acad::eOk;
    }
    TableKind kind{};
    if (!tableKindOf(database.store.kindName(*impl.stub), kind) || mustKeepName(kind, before)) {
      return Acad::eNotApplicable;
    }
    const AcDbStub* const same = database.record(kind, name);
    if (same && same != impl.stub) {
      return Acad::eDuplicateRecordName;
    }
    // Entities name their layers, linetypes, styles and blocks by text: those names would
    // have to follow. Renaming in place is offered where nothing names the record yet.
    if (isNamed(database, kind, before)) {
      return Acad::eNotApplicable;
    }
    if (dxf::Block* const block = database.store.blockOf(*impl.stub)) {
      renameBlock(database, *block, name);
    } else {
      const Acad::ErrorStatus renamed = setText(*this, layout::kSymbol, code::kName, name);
      if (renamed != Acad::eOk) {
        return renamed;
      }
    }
    database.forgetNames(kind);
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

bool AcDbSymbolTableRecord::isDependent() const {
  constexpr std::int64_t kIsDependent = 16;
  return (integerOf(*this, layout::kSymbol, code::kFlags) & kIsDependent) != 0;
}

// --- tables ---------------------------------------------------------------------------------

AcDbSymbolTable::AcDbSymbolTable() = default;

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbObjectId& id,
                                         bool getErased) const {
  id.setNull();
  TableKind kind{};
  if (!name || !kindOfTable(*this, kind)) {
    return name ? Acad::eNotInDatabase : Acad::eInvalidInput;
  }
  try {
    DatabaseImpl& database = *Access::of(*this).database;
    AcDbStub* const found = database.record(kind, name, true);
    if (!found) {
      return Acad::eKeyNotFound;
    }
    if (database.isErased(*found) && !getErased) {
      return Acad::eWasErased;
    }
    id = AcDbObjectId(found);
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbSymbolTableRecord*& record,
                                         AcDb::OpenMode mode, bool openErased) const {
  record = nullptr;
  AcDbObjectId id;
  const Acad::ErrorStatus status = getAt(name, id, openErased);
  return status == Acad::eOk ? acdbOpenObject(record, id, mode, openErased) : status;
}

bool AcDbSymbolTable::has(const ACHAR* name) const {
  AcDbObjectId id;
  return getAt(name, id) == Acad::eOk;
}

bool AcDbSymbolTable::has(AcDbObjectId id) const {
  TableKind kind{};
  const AcDbStub* const stub = id;
  if (!stub || !kindOfTable(*this, kind)) {
    return false;
  }
  const DatabaseImpl& database = *Access::of(*this).database;
  return stub->store == &database.store && stub->role == dxf::Role::TableRecord &&
         database.kindOf(*stub) == fileName(kind) && !database.isErased(*stub);
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbSymbolTableRecord* record) {
  AcDbObjectId id;
  return add(id, record);
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbObjectId& id, AcDbSymbolTableRecord* record) {
  id.setNull();
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  if (!record) {
    return Acad::eNullObjectPointer;
  }
  TableKind kind{};
  if (!kindOfTable(*this, kind)) {
    return Acad::eNotInDatabase;
  }
  const ObjectImpl& added = Access::of(*record);
  if (added.state != OpenState::Free) {
    return Acad::eAlreadyInDb;
  }
  try {
    const TagList& tags = tagsOf(*record);
    if (tags.size() == 0 || dxf::trimmedValue(tags[0]) != fileName(kind)) {
      return Acad::eNotThatKindOfClass;
    }
    const std::wstring name =
        tags.text(code::kName, layout::kSymbol.in(tags)).value_or(std::wstring());
    if (name.empty()) {
      return Acad::eInvalidInput;
    }
    DatabaseImpl& database = *Access::of(*this).database;
    if (kind != TableKind::Viewport && database.record(kind, name)) {
      return Acad::eDuplicateRecordName;
    }
    if (kind == TableKind::Block) {
      appendNewBlock(database, name, *record);
    } else {
      appendFreeRecord(database, kind, *record);
    }
    id = record->objectId();
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

std::unique_ptr<AcDbSymbolTableIterator::State> AcDbSymbolTable::stateOver(
    const AcDbSymbolTable& table, bool atBeginning, bool skipDeleted) {
  auto state = std::make_unique<AcDbSymbolTableIterator::State>();
  TableKind kind{};
  if (kindOfTable(table, kind)) {
    state->database = Access::of(table).database;
    state->records = Access::of(table).database->tableRecords(kind);
  }
  AcDbSymbolTableIterator iterator(std::move(state));
  iterator.start(atBeginning, skipDeleted);
  return std::move(iterator.m_state);
}

Acad::ErrorStatus AcDbSymbolTable::newIterator(AcDbSymbolTableIterator*& iterator, bool atBeginning,
                                               bool skipDeleted) const {
  iterator = nullptr;
  try {
    auto state = stateOver(*this, atBeginning, skipDeleted);
    iterator = new AcDbSymbolTableIterator(std::move(state));
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

// --- iterators ------------------------------------------------------------------------------

AcDbSymbolTableIterator::AcDbSymbolTableIterator(std::unique_ptr<State> state)
    : m_state(std::move(state)) {}

AcDbSymbolTableIterator::~AcDbSymbolTableIterator() = default;

void AcDbSymbolTableIterator::start(bool atBeginning, bool skipDeleted) {
  constexpr auto kBack = static_cast<std::size_t>(-1);
  m_state->at = atBeginning ? 0 : m_state->records.size() - 1;
  while (!done() && m_state->isSkipped(skipDeleted)) {
    m_state->at += atBeginning ? 1U : kBack;
  }
}

bool AcDbSymbolTableIterator::done() const {
  return m_state->at >= m_state->records.size();
}

void AcDbSymbolTableIterator::step(bool forward, bool skipDeleted) {
  constexpr auto kBack = static_cast<std::size_t>(-1);
  do {
    m_state->at += forward ? 1U : kBack;
  } while (!done() && m_state->isSkipped(skipDeleted));
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecordId(AcDbObjectId& id) const {
  id = done() ? AcDbObjectId::kNull : AcDbObjectId(m_state->records[m_state->at]);
  return done() ? Acad::eInvalidInput : Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecord(AcDbSymbolTableRecord*& record,
                                                     AcDb::OpenMode mode, bool openErased) const {
  record = nullptr;
  AcDbObjectId id;
  const Acad::ErrorStatus status = getRecordId(id);
  return status == Acad::eOk ? acdbOpenObject(record, id, mode, openErased) : status;
}

// --- every table under its records' type ----------------------------------------------------

#define QUOIN_DEFINE_SYMBOL_TABLE(TABLE, RECORD, ITERATOR)                                        \
  ACRX_CONS_DEFINE_MEMBERS(TABLE, AcDbSymbolTable)                                                \
  TABLE::TABLE() = default;                                                                       \
  ITERATOR::ITERATOR(std::unique_ptr<State> state) : AcDbSymbolTableIterator(std::move(state)) {} \
  Acad::ErrorStatus ITERATOR::getRecord(RECORD*& record, AcDb::OpenMode mode, bool openErased)    \
      const {                                                                                     \
    record = nullptr;                                                                             \
    AcDbObjectId id;                                                                              \
    const Acad::ErrorStatus status = getRecordId(id);                                             \
    return status == Acad::eOk ? acdbOpenObject(record, id, mode, openErased) : status;           \
  }                                                                                               \
  Acad::ErrorStatus TABLE::getAt(const ACHAR* name, RECORD*& record, AcDb::OpenMode mode,         \
                                 bool openErased) const {                                         \
    record = nullptr;                                                                             \
    AcDbObjectId id;                                                                              \
    const Acad::ErrorStatus status = AcDbSymbolTable::getAt(name, id, openErased);                \
    return status == Acad::eOk ? acdbOpenObject(record, id, mode, openErased) : status;           \
  }                                                                                               \
  Acad::ErrorStatus TABLE::newIterator(ITERATOR*& iterator, bool atBeginning, bool skipDeleted)   \
      const {                                                                                     \
    iterator = nullptr;                                                                           \
    try {                                                                                         \
      auto state = stateOver(*this, atBeginning, skipDeleted);                                    \
      iterator = new ITERATOR(std::move(state));                                                  \
      return Acad::eOk;                                                                           \
    } catch (...) {                                                                               \
      return statusOfException();                                                                 \
    }                                                                                             \
  }                                                                                               \
  Acad::ErrorStatus TABLE::add(RECORD* record) {                                                  \
    return AcDbSymbolTable::add(record);                                                          \
  }                                                                                               \
  Acad::ErrorStatus TABLE::add(AcDbObjectId& id, RECORD* record) {                                \
    return AcDbSymbolTable::add(id, record);                                                      \
  }

QUOIN_DEFINE_SYMBOL_TABLE(AcDbBlockTable, AcDbBlockTableRecord, AcDbBlockTableIterator)
QUOIN_DEFINE_SYMBOL_TABLE(AcDbLayerTable, AcDbLayerTableRecord, AcDbLayerTableIterator)
QUOIN_DEFINE_SYMBOL_TABLE(AcDbLinetypeTable, AcDbLinetypeTableRecord, AcDbLinetypeTableIterator)
QUOIN_DEFINE_SYMBOL_TABLE(AcDbTextStyleTable, AcDbTextStyleTableRecord, AcDbTextStyleTableIterator)
QUOIN_DEFINE_SYMBOL_TABLE(AcDbDimStyleTable, AcDbDimStyleTableRecord, AcDbDimStyleTableIterator)
QUOIN_DEFINE_SYMBOL_TABLE(AcDbRegAppTable, AcDbRegAppTableRecord, AcDbRegAppTableIterator)
QUOIN_DEFINE_SYMBOL_TABLE(AcDbUCSTable, AcDbUCSTableRecord, AcDbUCSTableIterator)
QUOIN_DEFINE_SYMBOL_TABLE(AcDbViewTable, AcDbViewTableRecord, AcDbViewTableIterator)
QUOIN_DEFINE_SYMBOL_TABLE(AcDbViewportTable, AcDbViewportTableRecord, AcDbViewportTableIterator)
