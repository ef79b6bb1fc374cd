#include "embedded/db/core/DatabaseImpl.h"

#include <algorithm>
#include <unordered_set>

#include "dbsymtb.h"
#include "embedded/db/core/Append.h"
#include "embedded/db/core/Misuse.h"
#include "embedded/db/core/Opening.h"
#include "embedded/db/core/RecordKinds.h"
#include "embedded/db/core/Transfer.h"
#include "embedded/dxf/NewDrawing.h"
#include "embedded/os/CaseFold.h"

namespace quoin::db {
namespace {

constexpr std::array<std::string_view, kTableKinds> kTableNames{
    "BLOCK_RECORD", "LAYER", "LTYPE", "STYLE", "DIMSTYLE", "APPID", "UCS", "VIEW", "VPORT"};

constexpr std::size_t indexOf(TableKind kind) {
  return static_cast<std::size_t>(kind);
}

}  // namespace

std::string_view fileName(TableKind kind) {
  return kTableNames[indexOf(kind)];
}

bool tableKindOf(std::string_view fileName, TableKind& kind) {
  const auto found = std::find(kTableNames.begin(), kTableNames.end(), fileName);
  kind = static_cast<TableKind>(found - kTableNames.begin());
  return found != kTableNames.end();
}

DatabaseImpl::DatabaseImpl(AcDbDatabase& owner) : self(&owner) {
  store.database = this;
  reset();
}

DatabaseImpl::~DatabaseImpl() {
  if (openCount > 0) {
    forEachStub([](const AcDbStub& stub) {
      if (stub.object) {
        releaseLeftOpen(*stub.object);
      }
    });
  }
}

void DatabaseImpl::clear() {
  for (auto& names : m_names) {
    names.reset();
  }
  m_ownHeads.clear();
  m_heads.fill(nullptr);
  m_unlisted = {};
  m_unlistedBytes.clear();
  erasedEntries.clear();
  m_extentsMemory = {};
  m_layerSpellings.clear();
  wasRead = false;
  changes = savedChanges = 0;
}

void DatabaseImpl::reset() {
  clear();
  store.setCodePage({});
  store.load(dxf::newDrawingTemplate(), "");
}

ExtentsMemory& DatabaseImpl::extentsMemory() {
  if (m_extentsMemory.changes != changes) {
    m_extentsMemory = {};
    m_extentsMemory.changes = changes;
  }
  return m_extentsMemory;
}

// --- records --------------------------------------------------------------------------------

std::string_view DatabaseImpl::kindOf(const AcDbStub& stub) const {
  return stub.role == dxf::Role::Table ? std::string_view("TABLE") : store.kindName(stub);
}

std::string_view DatabaseImpl::bytesOf(const AcDbStub& stub) const {
  if (!stub.data && !m_unlistedBytes.empty()) {
    if (const auto found = m_unlistedBytes.find(&stub); found != m_unlistedBytes.end()) {
      return found->second;
    }
  }
  return stub.bytes();
}

void DatabaseImpl::replace(AcDbStub& stub, std::string bytes) {
  if (stub.object) {
    Access::of(*stub.object).forgetDecoded();
  }
  if (stub.data) {
    store.replace(stub, std::move(bytes));
  } else {
    // The record enters the file only now: it needs a handle and an owner.
    const std::string_view tableName = kindOf(stub);
    const dxf::Table& table = store.ensureTable(tableName);
    store.setPlaceholderHandle(stub, store.newHandle());
    Placement placement;
    placement.handle = stub.handle;
    placement.owner = table.head->handle;
    store.replace(stub, transferred(TagList(bytes, format()), format(), placement));
    m_unlistedBytes.erase(&stub);
    for (std::vector<AcDbStub*>& unlisted : m_unlisted) {
      std::erase(unlisted, &stub);
    }
  }
  ++changes;
}

bool DatabaseImpl::isEntity(const AcDbStub& stub) const {
  switch (stub.role) {
    case dxf::Role::Entity:
    case dxf::Role::SubEntity:
    case dxf::Role::BlockBegin:
    case dxf::Role::BlockEnd:
      return true;
    default:
      return false;
  }
}

AcDbStub* DatabaseImpl::ownerOf(const AcDbStub& stub) {
  TableKind kind{};
  if (stub.role == dxf::Role::TableRecord && tableKindOf(store.kindName(stub), kind)) {
    return tableHead(kind);
  }
  return stub.owner;
}

bool DatabaseImpl::isErased(const AcDbStub& stub) const {
  return stub.role == dxf::Role::Table ? stub.erased : store.isErased(stub);
}

// --- symbol tables --------------------------------------------------------------------------

AcDbStub* DatabaseImpl::tableHead(TableKind kind) {
  AcDbStub*& head = m_heads[indexOf(kind)];
  if (!head) {
    const dxf::Table* const table = store.table(fileName(kind));
    head = table ? table->head : nullptr;
  }
  if (!head) {
    head = &m_ownHeads.emplace_back();
    head->store = &store;
    head->section = dxf::Section::Tables;
    head->role = dxf::Role::Table;
  }
  return head;
}

bool DatabaseImpl::isTable(const AcDbStub& stub, TableKind& kind) const {
  for (std::size_t i = 0; i < kTableKinds; ++i) {
    kind = static_cast<TableKind>(i);
    if (m_heads[i] == &stub) {
      return true;
    }
    const dxf::Table* const table = const_cast<DatabaseStore&>(store).table(kTableNames[i]);
    if (table && table->head == &stub) {
      return true;
    }
  }
  return false;
}

std::vector<AcDbStub*> DatabaseImpl::tableRecords(TableKind kind) {
  std::vector<AcDbStub*> records;
  if (kind == TableKind::Block) {
    for (const dxf::Block& block : store.blocks()) {
      records.push_back(block.record);
    }
    return records;
  }
  names(kind);  // finds what no table lists
  if (const dxf::Table* const table = store.table(fileName(kind))) {
    records = table->records;
  }
  const std::vector<AcDbStub*>& unlisted = m_unlisted[indexOf(kind)];
  records.insert(records.end(), unlisted.begin(), unlisted.end());
  return records;
}

std::wstring DatabaseImpl::recordName(const AcDbStub& stub) {
  if (const dxf::Block* const block = store.blockOf(stub)) {
    return block->name;
  }
  const TagList tags = tagsOf(stub);
  return tags.text(code::kName, layout::kSymbol.in(tags)).value_or(std::wstring());
}

void DatabaseImpl::noteName(TableKind kind, std::wstring_view name, AcDbStub& stub) {
  if (auto& known = m_names[indexOf(kind)]) {
    (*known)[os::foldCase(name)].push_back(&stub);
  }
}

DatabaseImpl::Names& DatabaseImpl::names(TableKind kind) {
  auto& known = m_names[indexOf(kind)];
  if (known) {
    return *known;
  }
  auto made = std::make_unique<Names>();
  if (kind == TableKind::Block) {
    for (const dxf::Block& block : store.blocks()) {
      (*made)[os::foldCase(block.name)].push_back(block.record);
    }
  } else if (const dxf::Table* const table = store.table(fileName(kind))) {
    for (AcDbStub* const record : table->records) {
      if (!record->data && kind == TableKind::Layer && !m_unlistedBytes.contains(record)) {
        describeUnlisted(*record, kind, L"0");
      }
      (*made)[os::foldCase(recordName(*record))].push_back(record);
    }
  }
  for (AcDbStub* const record : m_unlisted[indexOf(kind)]) {
    (*made)[os::foldCase(recordName(*record))].push_back(record);
  }
  if (kind == TableKind::Layer) {
    addUnlistedLayers(*made);
  } else if (kind == TableKind::Linetype) {
    for (const std::wstring_view name : {L"ByBlock", L"ByLayer", L"Continuous"}) {
      if (!made->contains(os::foldCase(name))) {
        addUnlisted(kind, name, *made);
      }
    }
  }
  known = std::move(made);
  return *known;
}

/// The bytes of an entity's layer name; none where it names none. Records of polylines may have
/// millions of tags, and the name stands in front.
std::optional<std::string_view> DatabaseImpl::layerValueOf(const AcDbStub& stub) const {
  dxf::TagCursor cursor(stub.bytes(), format());
  dxf::TagView tag;
  std::optional<std::string_view> inFront;
  bool hasMarker = false;
  bool isInGroup = false;
  while (cursor.next(tag) && tag.code != kEmbeddedCode && tag.code < kFirstXDataCode) {
    if (tag.code == kMarkerCode) {
      hasMarker = true;
      isInGroup = false;
      if (dxf::trimmedValue(tag) != layout::kEntity.marker) {
        break;  // a layer that stands here needs a closer look
      }
    } else if (tag.code == kGroupCode) {
      isInGroup = dxf::trimmedValue(tag).starts_with('{');
    } else if (tag.code == code::kLayer && !isInGroup) {
      if (hasMarker) {
        return tag.value;
      }
      inFront = inFront.value_or(tag.value);
    }
  }
  if (!hasMarker) {
    return inFront;
  }
  const TagList tags = tagsOf(stub);
  const std::size_t index = tags.find(code::kLayer, layout::kEntity.in(tags));
  return index == TagList::kNone ? std::nullopt : std::optional(tags[index].value);
}

std::wstring DatabaseImpl::layerNameOf(const AcDbStub& stub) const {
  const std::optional<std::string_view> value = layerValueOf(stub);
  return value ? dxf::textOf({code::kLayer, *value, 0, 0}, format()) : L"0";
}

void DatabaseImpl::addUnlistedLayers(Names& known) {
  std::unordered_set<std::string_view> seen;
  const std::size_t count = store.stubs().size();  // placeholders are added behind these
  for (std::size_t i = 0; i < count; ++i) {
    const AcDbStub& stub = store.stubs()[i];
    if (!isEntity(stub) || !stub.data) {
      continue;
    }
    const std::string_view layer = layerValueOf(stub).value_or(std::string_view());
    if (!layer.empty() && seen.insert(layer).second) {
      const std::wstring name = dxf::textOf({code::kLayer, layer, 0, 0}, format());
      if (!known.contains(os::foldCase(name))) {
        addUnlisted(TableKind::Layer, name, known);
      }
    }
  }
}

AcDbStub* DatabaseImpl::addUnlisted(TableKind kind, std::wstring_view name, Names& known) {
  AcDbStub* const stub = store.appendPlaceholder(fileName(kind));
  describeUnlisted(*stub, kind, name);
  m_unlisted[indexOf(kind)].push_back(stub);
  known[os::foldCase(name)].push_back(stub);
  return stub;
}

void DatabaseImpl::describeUnlisted(const AcDbStub& stub, TableKind kind, std::wstring_view name) {
  const std::string neutral = newRecordOf(tableRecordClass(kind));
  const TagList tags(neutral, *neutralFormat());
  RecordEdit edit(tags);
  edit.setText(layout::kSymbol, code::kName, name);
  const std::string named = edit.bytes();
  m_unlistedBytes[&stub] = transferred(TagList(named, *neutralFormat()), format(), {});
}

AcDbStub* DatabaseImpl::record(TableKind kind, std::wstring_view name, bool erasedToo) {
  const Names& known = names(kind);
  const auto found = known.find(os::foldCase(name));
  if (found == known.end()) {
    return nullptr;
  }
  for (AcDbStub* const stub : found->second) {
    if (!isErased(*stub)) {
      return stub;
    }
  }
  return erasedToo ? found->second.front() : nullptr;
}

std::wstring DatabaseImpl::layerNameOf(const TagList& tags) const {
  return tags.text(code::kLayer, layout::kEntity.in(tags)).value_or(L"0");
}

const std::wstring& DatabaseImpl::layerSpelling(const std::wstring& name) {
  if (m_layerSpellingsAt != changes) {
    m_layerSpellings.clear();
    m_layerSpellingsAt = changes;
  }
  const auto kept = m_layerSpellings.find(name);
  if (kept != m_layerSpellings.end()) {
    return kept->second;
  }
  std::wstring spelling = name;
  const Names& known = names(TableKind::Layer);
  if (const auto found = known.find(os::foldCase(name)); found != known.end()) {
    bool isFirst = true;
    for (const AcDbStub* const stub : found->second) {
      std::wstring own = isErased(*stub) ? std::wstring() : recordName(*stub);
      if (own == name) {  // a table may list both spellings
        spelling = name;
        break;
      }
      if (isFirst && !own.empty()) {
        spelling = std::move(own);
        isFirst = false;
      }
    }
  }
  return m_layerSpellings.emplace(name, std::move(spelling)).first->second;
}

void DatabaseImpl::ensureRecord(TableKind kind, std::wstring_view name, bool always) {
  if (name.empty() || record(kind, name)) {
    return;
  }
  const dxf::Table* const table = store.table(fileName(kind));
  if (!always && !(table && table->head)) {
    if (kind == TableKind::Layer) {
      addUnlisted(kind, name, names(kind));
    }
    return;
  }
  const std::unique_ptr<AcDbObject> made(tableRecordClass(kind).make());
  if (setText(*made, layout::kSymbol, code::kName, std::wstring(name).c_str()) != Acad::eOk) {
    throw std::bad_alloc();
  }
  appendFreeRecord(*this, kind, *made);
  closeView(*made);
}

AcDbObjectId recordNamed(const AcDbObject& object, TableKind kind, const std::wstring& name) {
  DatabaseImpl* const database = Access::of(object).database;
  try {
    return database ? AcDbObjectId(database->record(kind, name)) : AcDbObjectId::kNull;
  } catch (...) {
    statusOfException();
    return AcDbObjectId::kNull;
  }
}

Acad::ErrorStatus checkRecord(const AcDbObject& object, const AcDbStub* stub, TableKind kind) {
  if (!stub) {
    return Acad::eInvalidInput;
  }
  const DatabaseImpl& database = DatabaseImpl::of(*stub);
  if (stub->role != dxf::Role::TableRecord || database.kindOf(*stub) != fileName(kind)) {
    return Acad::eNotThatKindOfClass;
  }
  const DatabaseImpl* const own = Access::of(object).database;
  if (own && own != &database) {
    return Acad::eWrongDatabase;
  }
  return database.isErased(*stub) ? Acad::eWasErased : Acad::eOk;
}

Acad::ErrorStatus setRecordName(AcDbObject& object, const SubclassLayout& layout, int code,
                                TableKind kind, AcDbObjectId record, std::wstring_view absent) {
  const AcDbStub* const stub = record;
  Acad::ErrorStatus status = checkWritable(object);
  status = status == Acad::eOk ? checkRecord(object, stub, kind) : status;
  if (status != Acad::eOk) {
    return status;
  }
  try {
    const std::wstring name = DatabaseImpl::of(*stub).recordName(*stub);
    return change(object, [&](RecordEdit& edit) {
      const auto before = edit.tags().text(code, layout.in(edit.tags()));
      if (!os::sameName(before ? std::wstring_view(*before) : absent, name)) {
        edit.setText(layout, code, name);
      }
    });
  } catch (...) {
    return statusOfException();
  }
}

TagList DatabaseImpl::headerTags(std::string_view name) const {
  return TagList(store.headerVariable(name), format());
}

}  // namespace quoin::db
