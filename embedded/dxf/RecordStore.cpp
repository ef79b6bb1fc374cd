#include "embedded/dxf/RecordStore.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "embedded/dxf/FileError.h"
#include "embedded/dxf/RecordStoreImpl.h"
#include "embedded/dxf/StoreLoader.h"
#include "embedded/dxf/StoreWriter.h"
#include "embedded/dxf/TagReader.h"
#include "embedded/os/CaseFold.h"

namespace quoin::dxf {
namespace {

constexpr std::size_t kLineStretch = std::size_t{1} << 16;
constexpr std::size_t kMostKinds = std::numeric_limits<std::uint16_t>::max();

/// The value of the group 0 that the bytes of a record begin with.
std::string_view kindIn(std::string_view bytes, const Format& format) {
  RawTag tag;
  if (readTag(bytes.data(), bytes.data() + bytes.size(), TagLayout(format), tag) !=
          ReadResult::Tag ||
      tag.code != 0) {
    throw FileError(Acad::eInvalidInput, "a record must begin with its kind (group 0)");
  }
  if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) {
    throw FileError(Acad::eInvalidInput, "the record is larger than 4 GiB");
  }
  return trimmed({tag.value, tag.valueSize});
}

/// Bytes that a writer built up with room to spare would cost that room for ever.
void trimCapacity(std::string& bytes) {
  if (bytes.capacity() - bytes.size() > bytes.size() / 8 + 32) {
    bytes.shrink_to_fit();
  }
}

}  // namespace

// --- the inside -----------------------------------------------------------------------------

const SectionPlace* RecordStore::Impl::section(std::string_view name) const {
  const auto found = std::find_if(sections.begin(), sections.end(),
                                  [&](const SectionPlace& place) { return place.name == name; });
  return found == sections.end() ? nullptr : &*found;
}

std::size_t RecordStore::Impl::fileOffset(const AcDbStub& stub) const {
  if (stub.index >= fileStubs) {
    return kNoPlace;
  }
  if (!stub.changed) {
    return static_cast<std::size_t>(stub.data - buffer.data());
  }
  return own.at(&stub).fileOffset;
}

std::uint32_t RecordStore::Impl::fileSize(const AcDbStub& stub) const {
  return stub.changed ? own.at(&stub).fileSize : stub.size;
}

std::uint64_t RecordStore::Impl::lineAt(std::size_t offset, char terminator) const {
  const auto count = [&](std::size_t from, std::size_t to) {
    return static_cast<std::uint64_t>(std::count(buffer.begin() + static_cast<std::ptrdiff_t>(from),
                                                 buffer.begin() + static_cast<std::ptrdiff_t>(to),
                                                 terminator));
  };
  if (linesBefore.empty()) {
    linesBefore.push_back(0);
    for (std::size_t at = 0; at + kLineStretch <= buffer.size(); at += kLineStretch) {
      linesBefore.push_back(linesBefore.back() + count(at, at + kLineStretch));
    }
  }
  const std::size_t stretch = offset / kLineStretch;
  return linesBefore[stretch] + count(stretch * kLineStretch, offset) + 1;
}

RecordStore::RecordStore() : m_impl(std::make_unique<Impl>(m_stubs)) {}
RecordStore::~RecordStore() = default;

void RecordStore::clear() {
  m_stubs.clear();
  m_tables.clear();
  m_blocks.clear();
  m_objects.clear();
  m_kindNames.clear();
  m_warnings.clear();
  m_format = Format{};
  m_impl = std::make_unique<Impl>(m_stubs);
  m_source.reset();
}

void RecordStore::warn(std::size_t offset, const std::string& record, const std::string& text) {
  addWarning({offset, record, text});
}

void RecordStore::addWarning(Warning warning) {
  constexpr std::size_t kWarningsKept = 100;
  if (m_warnings.size() < kWarningsKept) {
    m_warnings.push_back(std::move(warning));
  }
}

std::uint16_t RecordStore::internKind(std::string_view name) {
  if (const auto found = m_impl->kindNumbers.find(name); found != m_impl->kindNumbers.end()) {
    return found->second;
  }
  if (m_kindNames.size() >= kMostKinds) {
    throw FileError(Acad::eBadDxfFile, "the file has more kinds of records than make sense");
  }
  const auto number = static_cast<std::uint16_t>(m_kindNames.size());
  m_kindNames.emplace_back(name);
  m_impl->kindNumbers.emplace(m_kindNames.back(), number);
  return number;
}

AcDbStub* RecordStore::appendStub(Section section, Role role, std::string bytes,
                                  std::uint64_t handle) {
  const std::uint16_t kind = internKind(kindIn(bytes, m_format));
  if (m_stubs.size() >= HandleIndex::kNone) {
    throw FileError(Acad::eInvalidInput, "the drawing has more records than can be numbered");
  }
  AcDbStub& stub = m_stubs.emplace_back();
  stub.store = this;
  stub.index = static_cast<std::uint32_t>(m_stubs.size() - 1);
  stub.section = section;
  stub.role = role;
  stub.kind = kind;
  stub.isNew = true;
  stub.changed = true;
  OwnBytes& own = m_impl->own[&stub];
  own.bytes = std::move(bytes);
  trimCapacity(own.bytes);
  stub.data = own.bytes.data();
  stub.size = static_cast<std::uint32_t>(own.bytes.size());
  stub.handle = handle;
  if (handle != 0) {
    m_impl->highestHandle = std::max(m_impl->highestHandle, handle);
    m_impl->handedOut = true;
    m_impl->handles.insert(stub.index);
  }
  return &stub;
}

// --- reading and writing --------------------------------------------------------------------

void RecordStore::load(std::string buffer, const std::string& fileName, const Progress& progress) {
  clear();
  m_fileName = fileName;
  m_impl->buffer = std::move(buffer);
  try {
    StoreLoader(*this, progress).run();
  } catch (FileError& error) {
    error.fileName = fileName;
    clear();
    throw;
  } catch (...) {
    clear();
    throw;
  }
}

void RecordStore::save(const std::function<void(std::string_view)>& write,
                       const Progress& progress) const {
  StoreWriter(*this).run(write, progress);
}

std::size_t RecordStore::fileSize() const {
  return m_source != nullptr ? m_source->fileSize() : m_impl->buffer.size();
}

bool RecordStore::isChanged() const {
  return m_impl->handedOut || !m_impl->headerChanges.empty() || !m_impl->own.empty() ||
         std::any_of(m_stubs.begin(), m_stubs.end(),
                     [](const AcDbStub& stub) { return stub.erased; });
}

// --- records --------------------------------------------------------------------------------

AcDbStub* RecordStore::find(std::uint64_t handle) const {
  const std::uint32_t number = m_impl->handles.find(handle);
  // The store is const, its records are not: they are what a caller comes for.
  return number == HandleIndex::kNone ? nullptr : const_cast<AcDbStub*>(&m_stubs[number]);
}

std::uint64_t RecordStore::lineOf(const AcDbStub& stub) const {
  const std::size_t offset = m_impl->fileOffset(stub);
  if (offset == kNoPlace) {
    return 0;
  }
  return m_format.form == Form::Binary ? offset
                                       : m_impl->lineAt(offset, TagLayout(m_format).terminator);
}

std::string RecordStore::describe(const AcDbStub& stub) const {
  std::string text(kindName(stub).substr(0, 40));
  if (stub.handle != 0) {
    text += ' ';
    char digits[17];
    char* at = digits + sizeof digits;
    for (std::uint64_t rest = stub.handle; rest != 0; rest >>= 4) {
      *--at = "0123456789ABCDEF"[rest & 0xF];
    }
    text.append(at, static_cast<std::size_t>(digits + sizeof digits - at));
  }
  return text;
}

void RecordStore::replace(AcDbStub& stub, std::string bytes) {
  const std::uint16_t kind = internKind(kindIn(bytes, m_format));
  const bool isPlaceholder = stub.data == nullptr;
  const auto [entry, isFirst] = m_impl->own.try_emplace(&stub);
  OwnBytes& own = entry->second;
  if (isFirst && !isPlaceholder) {
    own.fileOffset = m_impl->fileOffset(stub);
    own.fileSize = stub.size;
  }
  stub.kind = kind;
  stub.size = static_cast<std::uint32_t>(bytes.size());
  if (own.fileOffset != kNoPlace &&
      bytes == std::string_view(m_impl->buffer).substr(own.fileOffset, own.fileSize)) {
    stub.data = m_impl->buffer.data() + own.fileOffset;
    stub.changed = false;
    m_impl->own.erase(entry);
    return;
  }
  own.bytes = std::move(bytes);
  trimCapacity(own.bytes);
  stub.data = own.bytes.data();
  stub.changed = true;
  if (isPlaceholder && (m_format.hasSubclassMarkers() || kindName(stub) != "BLOCK_RECORD")) {
    Table& table = ensureTable(kindName(stub));
    if (std::find(table.records.begin(), table.records.end(), &stub) == table.records.end()) {
      stub.owner = table.head;
      table.records.push_back(&stub);
    }
  }
}

void RecordStore::setErased(AcDbStub& stub, bool erased) {
  stub.erased = erased;
}

bool RecordStore::isErased(const AcDbStub& stub) const {
  for (const AcDbStub* at = &stub; at != nullptr; at = at->owner) {
    if (at->erased) {
      return true;
    }
    if (at->role != Role::Entity && at->role != Role::SubEntity && at->role != Role::BlockBegin &&
        at->role != Role::BlockEnd) {
      break;
    }
  }
  return false;
}

AcDbStub* RecordStore::appendEntity(Block& block, std::string bytes, std::uint64_t handle) {
  const bool isLayout = &block == m_impl->modelSpace || &block == m_impl->paperSpace;
  AcDbStub* const stub = appendStub(isLayout ? Section::Entities : Section::Blocks, Role::Entity,
                                    std::move(bytes), handle);
  stub->owner = block.record;
  block.entities.push_back(stub);
  return stub;
}

AcDbStub* RecordStore::appendTableRecord(Table& table, std::string bytes, std::uint64_t handle) {
  makeTableHead(table);
  AcDbStub* const stub = appendStub(Section::Tables, Role::TableRecord, std::move(bytes), handle);
  stub->owner = table.head;
  table.records.push_back(stub);
  return stub;
}

AcDbStub* RecordStore::appendObject(std::string bytes, std::uint64_t handle) {
  AcDbStub* const stub = appendStub(Section::Objects, Role::Object, std::move(bytes), handle);
  m_objects.push_back(stub);
  return stub;
}

AcDbStub* RecordStore::appendSubEntity(AcDbStub& parent, std::string bytes, std::uint64_t handle) {
  AcDbStub* const stub = appendStub(parent.section, Role::SubEntity, std::move(bytes), handle);
  stub->owner = &parent;
  m_impl->newSubEntities[&parent].push_back(stub);
  return stub;
}

AcDbStub* RecordStore::appendPlaceholder(std::string_view kind) {
  AcDbStub& stub = m_stubs.emplace_back();
  stub.store = this;
  stub.index = static_cast<std::uint32_t>(m_stubs.size() - 1);
  stub.section = Section::Tables;
  stub.role = Role::TableRecord;
  stub.kind = internKind(kind);
  return &stub;
}

void RecordStore::setPlaceholderHandle(AcDbStub& placeholder, std::uint64_t handle) {
  if (handle == 0 || placeholder.handle != 0) {
    return;
  }
  placeholder.handle = handle;
  m_impl->handles.insert(placeholder.index);
}

std::vector<AcDbStub*> RecordStore::subEntities(const AcDbStub& parent) const {
  std::vector<AcDbStub*> found;
  for (std::size_t i = parent.index + std::size_t{1}; i < m_stubs.size(); ++i) {
    const AcDbStub& stub = m_stubs[i];
    if (stub.role != Role::SubEntity || stub.owner != &parent || stub.isNew) {
      break;
    }
    found.push_back(const_cast<AcDbStub*>(&stub));
  }
  const auto added = m_impl->newSubEntities.find(&parent);
  if (added == m_impl->newSubEntities.end()) {
    return found;
  }
  found.insert(found.end(), added->second.begin(), added->second.end());
  std::stable_partition(found.begin(), found.end(),
                        [&](const AcDbStub* stub) { return kindName(*stub) != "SEQEND"; });
  return found;
}

std::uint64_t RecordStore::newHandle() {
  if (!m_impl->hasHandles) {
    return 0;
  }
  m_impl->highestHandle = nextHandle();
  m_impl->handedOut = true;
  return m_impl->highestHandle;
}

std::uint64_t RecordStore::nextHandle() const {
  return m_impl->hasHandles ? std::max(m_impl->highestHandle + 1, m_impl->seed) : 0;
}

// --- structure ------------------------------------------------------------------------------

Table* RecordStore::table(std::string_view name) {
  const auto found = std::find_if(m_tables.begin(), m_tables.end(), [&](const Table& candidate) {
    return os::sameName(candidate.name, name);
  });
  return found == m_tables.end() ? nullptr : &*found;
}

Table& RecordStore::ensureTable(std::string_view name) {
  Table* found = table(name);
  if (found == nullptr) {
    found = &m_tables.emplace_back();
    found->name = std::string(name);
  }
  makeTableHead(*found);
  return *found;
}

void RecordStore::makeTableHead(Table& table) {
  if (table.head != nullptr) {
    return;
  }
  std::string bytes;
  putAscii(bytes, 0, "TABLE", m_format);
  putAscii(bytes, 2, table.name, m_format);
  const std::uint64_t handle = m_format.hasSubclassMarkers() ? newHandle() : 0;
  if (m_format.hasSubclassMarkers()) {
    putHandle(bytes, 5, handle, m_format);
    if (m_format.hasOwners()) {
      putHandle(bytes, 330, 0, m_format);
    }
    putAscii(bytes, 100, "AcDbSymbolTable", m_format);
  }
  putInteger(bytes, 70, 1, m_format);
  if (table.name == "DIMSTYLE" && m_format.version >= Version::R2000) {
    putAscii(bytes, 100, "AcDbDimStyleTable", m_format);
  }
  table.head = appendStub(Section::Tables, Role::Table, std::move(bytes), handle);
  for (AcDbStub* record : table.records) {
    record->owner = table.head;
  }
}

Block* RecordStore::block(std::wstring_view name) {
  const auto found = m_impl->blockByName.find(os::foldCase(name));
  return found == m_impl->blockByName.end() ? nullptr : found->second;
}

Block& RecordStore::modelSpace() {
  if (m_impl->modelSpace == nullptr) {
    throw FileError(Acad::eNoDatabase, "the drawing is empty: nothing was loaded");
  }
  return *m_impl->modelSpace;
}

Block* RecordStore::paperSpace() {
  return m_impl->paperSpace;
}

void RecordStore::renameBlock(Block& block, std::wstring name) {
  const auto former = m_impl->blockByName.find(os::foldCase(block.name));
  if (former != m_impl->blockByName.end() && former->second == &block) {
    m_impl->blockByName.erase(former);
  }
  block.name = std::move(name);
  m_impl->blockByName.try_emplace(os::foldCase(block.name), &block);
}

Block* RecordStore::blockOf(const AcDbStub& record) {
  const auto found = m_impl->blockByRecord.find(&record);
  return found == m_impl->blockByRecord.end() ? nullptr : found->second;
}

Block& RecordStore::appendBlock(const std::wstring& name, std::string recordBytes,
                                std::uint64_t recordHandle, std::string beginBytes,
                                std::uint64_t beginHandle, std::string endBytes,
                                std::uint64_t endHandle) {
  AcDbStub* const record =
      m_format.hasSubclassMarkers()
          ? appendTableRecord(ensureTable("BLOCK_RECORD"), std::move(recordBytes), recordHandle)
          : appendPlaceholder("BLOCK_RECORD");
  Block& block = m_blocks.emplace_back();
  block.name = name;
  block.record = record;
  block.begin = appendStub(Section::Blocks, Role::BlockBegin, std::move(beginBytes), beginHandle);
  block.end = appendStub(Section::Blocks, Role::BlockEnd, std::move(endBytes), endHandle);
  block.begin->owner = record;
  block.end->owner = record;
  m_impl->blockByRecord[record] = &block;
  m_impl->blockByName.try_emplace(os::foldCase(name), &block);
  return block;
}

// --- header variables -----------------------------------------------------------------------

std::string_view RecordStore::Impl::headerInFile(std::string_view name) const {
  for (const HeaderVariable& variable : header) {
    if (variable.name == name) {
      return std::string_view(buffer).substr(variable.begin, variable.end - variable.begin);
    }
  }
  return {};
}

std::vector<std::string> RecordStore::changedHeaderVariables() const {
  std::vector<std::string> names;
  for (const HeaderChange& change : m_impl->headerChanges) {
    names.push_back(change.name);
  }
  return names;
}

std::string_view RecordStore::headerVariable(std::string_view name) const {
  for (const HeaderChange& change : m_impl->headerChanges) {
    if (change.name == name) {
      return change.valueTags;
    }
  }
  return m_impl->headerInFile(name);
}

void RecordStore::setHeaderVariable(std::string_view name, std::string valueTags) {
  auto& changes = m_impl->headerChanges;
  std::erase_if(changes, [&](const HeaderChange& change) { return change.name == name; });
  if (m_impl->headerInFile(name) != valueTags) {
    changes.push_back({std::string(name), std::move(valueTags)});
  }
}

}  // namespace quoin::dxf
