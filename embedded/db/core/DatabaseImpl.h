// What stands behind an AcDbDatabase: the record store, and by-name indices of its symbol
// tables.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "dbmain.h"
#include "embedded/db/core/ExtentsMemory.h"
#include "embedded/db/core/ObjectImpl.h"
#include "embedded/db/core/OwnBlockMoves.h"
#include "embedded/db/records/TagList.h"
#include "embedded/dxf/RecordStore.h"
#include "embedded/os/FileSystem.h"
#include "hostextra.h"

namespace quoin::db {

enum class TableKind : std::uint8_t {
  Block,
  Layer,
  Linetype,
  TextStyle,
  DimStyle,
  RegApp,
  Ucs,
  View,
  Viewport
};
inline constexpr std::size_t kTableKinds = 9;

/// "BLOCK_RECORD", "LAYER", ...: the table's name in files, which is its records' kind too.
std::string_view fileName(TableKind kind);
/// Fails: returns false for a name of no table.
bool tableKindOf(std::string_view fileName, TableKind& kind);

/// The record store of a database: its stubs lead to the database.
struct DatabaseStore : dxf::RecordStore {
  DatabaseImpl* database = nullptr;
};

struct DatabaseImpl {
  explicit DatabaseImpl(AcDbDatabase& owner);
  ~DatabaseImpl();
  DatabaseImpl(const DatabaseImpl&) = delete;
  DatabaseImpl& operator=(const DatabaseImpl&) = delete;

  static DatabaseImpl& of(const AcDbStub& stub) {
    return *static_cast<DatabaseStore*>(stub.store)->database;
  }

  AcDbDatabase* self;
  /// Dies with the database: free objects that remember it ask this whether it still lives.
  const std::shared_ptr<DatabaseImpl* const> token = std::make_shared<DatabaseImpl* const>(this);
  DatabaseStore store;
  const dxf::Format& format() const { return store.format(); }

  // --- files ------------------------------------------------------------------------------
  std::wstring path;        // read from, or saved to last
  std::wstring failedPath;  // that could not be read
  std::wstring lastError;
  bool isSaveInPlace = false;  // the last saving replaced the file, though it may have failed then
  hostx::SaveResult lastSave;
  /// What the file of `path` was when it was read or saved; none for pipes and new drawings.
  std::optional<os::FileFacts> version;
  hostx::Progress progress;
  std::string codePage;  // for what is read, whatever it says; empty for what it says
  bool wasRead = false;

  /// Blocks of dimensions and tables that transforms took along.
  OwnBlockMoves ownBlockMoves;

  /// Counts what was changed, appended and erased; differs from savedChanges while the drawing
  /// differs from its file.
  std::uint64_t changes = 0;
  std::uint64_t savedChanges = 0;
  /// What measuring has learnt of the drawing as it is now.
  ExtentsMemory& extentsMemory();
  /// A fresh drawing, as at the start; whatever was there is gone.
  void reset();
  /// Forgets everything that is known of the records, before the store gets others.
  void clear();

  // --- records ----------------------------------------------------------------------------
  /// "LINE"; also for the stubs that stand for tables which the file lacks.
  std::string_view kindOf(const AcDbStub& stub) const;
  /// The record's bytes; those of a new one for a record that the file does not list.
  std::string_view bytesOf(const AcDbStub& stub) const;
  /// Fails: throws FileError.
  TagList tagsOf(const AcDbStub& stub) const { return TagList(bytesOf(stub), format()); }
  /// Gives a record new bytes; an open object of it sees them.
  void replace(AcDbStub& stub, std::string bytes);
  bool isEntity(const AcDbStub& stub) const;
  /// See AcDbObject::ownerId().
  AcDbStub* ownerOf(const AcDbStub& stub);
  bool isErased(const AcDbStub& stub) const;
  /// Views that are open now.
  std::uint64_t openCount = 0;
  /// Calls `visit` for every stub, those of our own included.
  template <class Visit>
  void forEachStub(Visit&& visit) const {
    for (const AcDbStub& stub : store.stubs()) {
      visit(stub);
    }
    for (const AcDbStub& stub : m_ownHeads) {
      visit(stub);
    }
  }
  /// The stub for a handle that a tag of another record names; null for 0 and for none.
  AcDbStub* byHandle(std::uint64_t handle) const { return handle ? store.find(handle) : nullptr; }

  // --- symbol tables ------------------------------------------------------------------------
  /// The stub of a table's head; one of our own where the file has no such table.
  AcDbStub* tableHead(TableKind kind);
  bool isTable(const AcDbStub& stub, TableKind& kind) const;
  /// Every record in file order, erased ones included.
  std::vector<AcDbStub*> tableRecords(TableKind kind);
  /// The record of this name (in any case): the first that is not erased; with `erasedToo`
  /// the first erased one where there is no other. Null if there is none.
  AcDbStub* record(TableKind kind, std::wstring_view name, bool erasedToo = false);
  std::wstring recordName(const AcDbStub& stub);
  /// To be called when a record was added or renamed.
  void forgetNames(TableKind kind) { m_names[static_cast<std::size_t>(kind)].reset(); }
  void noteName(TableKind kind, std::wstring_view name, AcDbStub& stub);

  /// The layer of an entity's record; its name where the tags name none is "0".
  std::wstring layerNameOf(const TagList& tags) const;
  std::wstring layerNameOf(const AcDbStub& stub) const;
  /// The name as the layer table spells it: names that differ in case only are one layer. A name
  /// of no layer stays as it is.
  const std::wstring& layerSpelling(const std::wstring& name);
  AcDbStub* layer(std::wstring_view name) { return record(TableKind::Layer, name); }
  /// Every record of this kind that a drawing's new record names and lacks is made with the
  /// settings of a new one, in files that have such a table at all; `always` makes the table
  /// too.
  /// Fails: throws FileError, std::bad_alloc.
  void ensureRecord(TableKind kind, std::wstring_view name, bool always = false);

  // --- dictionaries ---------------------------------------------------------------------------
  /// The root dictionary; null where the file has no objects.
  AcDbStub* rootDictionary() const;
  /// The entry of a dictionary's record; null if there is none.
  AcDbStub* dictionaryEntry(const AcDbStub& dictionary, std::wstring_view name) const;
  /// The name under which a dictionary lists an object; empty if it does not.
  std::wstring dictionaryName(const AcDbStub& dictionary, const AcDbStub& entry) const;
  /// A material by name ("ByLayer"); null if there is none.
  AcDbStub* material(std::wstring_view name) const;
  /// The names under which erased objects stood in the dictionaries that own them.
  std::unordered_map<const AcDbStub*, std::wstring> erasedEntries;

  // --- header variables -------------------------------------------------------------------
  /// The value tags; an empty list when the file does not set the variable. The text of `name`
  /// begins with "$".
  TagList headerTags(std::string_view name) const;

 private:
  using Names = std::unordered_map<std::wstring, std::vector<AcDbStub*>>;  // folded names
  Names& names(TableKind kind);
  void addUnlistedLayers(Names& known);
  std::optional<std::string_view> layerValueOf(const AcDbStub& stub) const;
  AcDbStub* addUnlisted(TableKind kind, std::wstring_view name, Names& known);
  void describeUnlisted(const AcDbStub& stub, TableKind kind, std::wstring_view name);

  std::array<std::unique_ptr<Names>, kTableKinds> m_names;
  /// By the names that were asked for, while the drawing is as it was at that count of changes.
  std::unordered_map<std::wstring, std::wstring> m_layerSpellings;
  std::uint64_t m_layerSpellingsAt = 0;
  ExtentsMemory m_extentsMemory;
  /// Heads of tables that the file lacks.
  std::deque<AcDbStub> m_ownHeads;
  std::array<AcDbStub*, kTableKinds> m_heads{};
  /// What records show that the file does not list: layer "0", layers that entities name, and
  /// the linetypes that every drawing has.
  std::unordered_map<const AcDbStub*, std::string> m_unlistedBytes;
  /// Those that are in no table of the store either, in the order in which they were found.
  std::array<std::vector<AcDbStub*>, kTableKinds> m_unlisted;
};

/// The kind of the record behind the last vertex or attribute.
inline constexpr std::string_view kSequenceEnd = "SEQEND";

/// Calls `visit(AcDbStub&)` for the vertices or attributes of an entity, without those that
/// are erased and without the record that ends them.
template <class Visit>
void forEachPartStub(const AcDbStub& entity, Visit&& visit) {
  if (entity.role != dxf::Role::Entity) {
    return;
  }
  const DatabaseImpl& database = DatabaseImpl::of(entity);
  for (AcDbStub* const part : database.store.subEntities(entity)) {
    if (!part->erased && database.kindOf(*part) != kSequenceEnd) {
      visit(*part);
    }
  }
}

/// The same for their tags.
/// Fails: throws FileError.
template <class Visit>
void forEachPart(const AcDbStub& entity, Visit&& visit) {
  const DatabaseImpl& database = DatabaseImpl::of(entity);
  forEachPartStub(entity, [&](const AcDbStub& part) { visit(database.tagsOf(part)); });
}
template <class Visit>
void forEachPart(const AcDbObject& entity, Visit&& visit) {
  const ObjectImpl& impl = Access::of(entity);
  if (impl.stub) {
    forEachPart(*impl.stub, visit);
  }
  for (const auto& part : impl.own().parts) {
    visit(tagsOf(*part));
  }
}

/// The record of a table that an object names; null for an object in no database and where
/// there is no such record.
AcDbObjectId recordNamed(const AcDbObject& object, TableKind kind, const std::wstring& name);
/// Makes an object name a record of a table. A tag that is missing names `absent`.
/// Fails: eNotOpenForWrite, eInvalidInput (null), eNotThatKindOfClass, eWasErased,
/// eWrongDatabase.
Acad::ErrorStatus setRecordName(AcDbObject& object, const SubclassLayout& layout, int code,
                                TableKind kind, AcDbObjectId record, std::wstring_view absent);
/// What is wrong with an id that is to be a record of this table; eOk if nothing is.
Acad::ErrorStatus checkRecord(const AcDbObject& object, const AcDbStub* stub, TableKind kind);

/// The stub of an object of a database; null for an id of none.
inline AcDbStub* stubOf(const AcDbObjectId& id) {
  return id.isValid() ? static_cast<AcDbStub*>(id) : nullptr;
}

template <class Edits>
void changeRecord(AcDbStub& stub, Edits&& edits) {
  DatabaseImpl& database = DatabaseImpl::of(stub);
  const TagList tags = database.tagsOf(stub);
  RecordEdit edit(tags);
  edits(edit);
  if (edit.isChanged()) {
    database.replace(stub, edit.bytes());
  }
}

}  // namespace quoin::db
