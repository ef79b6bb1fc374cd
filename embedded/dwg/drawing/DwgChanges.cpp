#include "embedded/dwg/drawing/DwgChanges.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/TemplateSection.h"
#include "embedded/dxf/FileError.h"
#include "embedded/dxf/Tag.h"

namespace quoin::dwg {
namespace {

using dxf::Role;
using dxf::Version;

std::string describe(const DecodedRecord& record, std::uint64_t handle) {
  char text[32];
  std::snprintf(text, sizeof text, " %llX", static_cast<unsigned long long>(handle));
  return record.name + text;
}

/// Puts one handle in the place of another under a key of which there is one.
void setHandle(RecordValues& values, int key, std::uint64_t handle) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i].key == key) {
      values[i].integer = static_cast<std::int64_t>(handle);
      return;
    }
  }
  values.addHandle(key, handle);
}

void setInteger(RecordValues& values, int key, std::int64_t integer) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i].key == key) {
      values[i].integer = integer;
      values[i].form = Value::kAnyForm;
      return;
    }
  }
  values.addInteger(key, integer);
}

/// Removes the field with this key and handle. Fails: false for none.
bool removeHandle(RecordValues& values, int key, std::uint64_t handle) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i].key == key && static_cast<std::uint64_t>(values[i].integer) == handle) {
      values.remove(i);
      return true;
    }
  }
  return false;
}

/// Puts an entity between two others of its block's chain; 0 for none.
void setNeighbours(RecordValues& values, std::uint64_t previous, std::uint64_t next) {
  setHandle(values, kPrevious, previous);
  setHandle(values, kNext, next);
  setInteger(values, kNoLinks, 0);
}

/// Whether all of these tags are among the others, which may say more: what a new record has by
/// default.
bool saysAll(const std::string& tags, const std::string& wanted, const dxf::Format& format) {
  const auto sorted = [&](const std::string& bytes) {
    std::vector<std::string> spelled;
    dxf::TagCursor cursor(bytes, format);
    dxf::TagView tag;
    while (cursor.next(tag)) {
      spelled.push_back(bytes.substr(tag.begin, tag.end - tag.begin));
    }
    std::sort(spelled.begin(), spelled.end());
    return spelled;
  };
  const std::vector<std::string> all = sorted(tags);
  const std::vector<std::string> some = sorted(wanted);
  return std::includes(all.begin(), all.end(), some.begin(), some.end());
}

/// A group code of which both have as many tags, but other ones; of others one may have left out
/// what is so by default.
std::optional<int> contradiction(const std::string& one, const std::string& other,
                                 const dxf::Format& format) {
  const auto byCode = [&](const std::string& bytes) {
    std::map<int, std::vector<std::string_view>> spelled;
    dxf::TagCursor cursor(bytes, format);
    for (dxf::TagView tag; cursor.next(tag);) {
      spelled[tag.code].push_back(std::string_view(bytes).substr(tag.begin, tag.end - tag.begin));
    }
    for (auto& [code, tags] : spelled) {
      std::sort(tags.begin(), tags.end());
    }
    return spelled;
  };
  const auto wanted = byCode(other);
  for (const auto& [code, tags] : byCode(one)) {
    const auto found = wanted.find(code);
    if (found != wanted.end() && found->second.size() == tags.size() && found->second != tags) {
      return code;
    }
  }
  return std::nullopt;
}

/// What an entity is in a block: all but BLOCK and ENDBLK.
bool isListed(const AcDbStub& stub) {
  return stub.role == Role::Entity || stub.role == Role::SubEntity;
}

}  // namespace

DwgChanges::DwgChanges(const DwgDrawing& drawing, const dxf::RecordStore& store)
    : m_drawing(&drawing),
      m_store(&store),
      m_facts(drawing.facts()),
      m_codec(m_facts, drawing.classes()) {}

void DwgChanges::refuse(const std::string& record, const std::string& cause) const {
  dxf::FileError error(Acad::eNotApplicable, cause);
  error.record = record;
  throw error;
}

FileChanges DwgChanges::collect() {
  FileChanges changes;
  takeRecords();
  takeHeader(changes);
  encode(changes);
  for (const auto& [handle, isInFile] : m_erased) {
    if (isInFile) {
      RecordChange& change = changes.records.emplace_back();
      change.handle = handle;
      change.isErased = true;
    }
  }
  return changes;
}

DecodedRecord& DwgChanges::edited(std::uint64_t handle, const std::string& what) {
  const auto found = m_edited.find(handle);
  if (found != m_edited.end()) {
    return found->second;
  }
  DecodedRecord record;
  if (!m_drawing->decode(handle, record)) {
    refuse(what, "the drawing has no record with its handle");
  }
  if (!m_drawing->isExact(handle)) {
    refuse(what,
           "it is closed: this program does not know all that the drawing says of it, and would "
           "lose the rest");
  }
  return m_edited.emplace(handle, std::move(record)).first->second;
}

/// Other records name new ones of tables, wherever these stand.
void DwgChanges::nameNewRecords() {
  constexpr int kNameCode = 2;
  for (const AcDbStub& stub : m_store->stubs()) {
    if (!stub.isNew || stub.role != Role::TableRecord || m_store->isErased(stub)) {
      continue;
    }
    dxf::TagCursor cursor(stub.bytes(), m_store->format());
    dxf::TagView tag;
    while (cursor.next(tag)) {
      if (tag.code == kNameCode) {
        m_facts.name(m_store->kindName(stub), stub.handle, dxf::textOf(tag, m_store->format()));
        break;
      }
    }
  }
}

void DwgChanges::takeRecords() {
  nameNewRecords();
  for (const AcDbStub& stub : m_store->stubs()) {
    const bool isErased = m_store->isErased(stub);
    if (stub.isNew && isErased) {
      continue;  // never was in the file
    }
    if (isErased) {
      takeErased(stub);
    } else if (stub.isNew) {
      takeNew(stub);
    } else if (stub.changed) {
      takeChanged(stub);
    }
  }
}

void DwgChanges::takeChanged(const AcDbStub& stub) {
  const std::string what = m_store->describe(stub);
  if (stub.role == Role::Table) {
    return;  // the list of its records is all that it has
  }
  DecodedRecord& record = edited(stub.handle, what);
  std::string problem;
  const std::string tags(stub.bytes());
  if (!m_codec.readTags(tags, record, problem)) {
    refuse(what, problem);
  }
  std::string taken;
  m_codec.writeTags(record, taken);
  if (const std::optional<int> code = contradiction(taken, tags, m_store->format())) {
    refuse(what, "group code " + std::to_string(*code) + " would not become what it was set to");
  }
}

void DwgChanges::takeNew(const AcDbStub& stub) {
  const std::string what = m_store->describe(stub);
  if (stub.role == Role::Table || stub.role == Role::BlockBegin || stub.role == Role::BlockEnd) {
    refuse(what, "this program does not make new tables and blocks in a DWG drawing");
  }
  DecodedRecord record;
  std::string problem;
  if (!m_codec.makeRecord(m_store->kindName(stub), stub.handle, stub.bytes(), record, problem)) {
    refuse(what, problem);
  }
  DecodedRecord& kept = m_edited.emplace(stub.handle, std::move(record)).first->second;
  addToOwner(stub, kept);
}

void DwgChanges::takeErased(const AcDbStub& stub) {
  const bool isInFile = m_drawing->file().find(stub.handle) != nullptr;
  if (stub.role == Role::Table || stub.role == Role::BlockBegin || stub.role == Role::BlockEnd ||
      stub.role == Role::TableRecord) {
    refuse(m_store->describe(stub),
           "this program does not erase records of tables in a DWG drawing");
  }
  m_erased[stub.handle] = isInFile;
  const bool ownerStays = stub.owner == nullptr || !m_store->isErased(*stub.owner);
  if (isListed(stub) && ownerStays) {
    removeFromOwner(stub);
  }
  // Only now: a neighbour that was erased before has left its own neighbours here.
  m_edited.erase(stub.handle);
}

// --- owners ---------------------------------------------------------------------------------

void DwgChanges::link(std::uint64_t before, std::uint64_t after) {
  const auto relink = [&](std::uint64_t handle, bool isBefore) {
    DecodedRecord& record = edited(handle, "the neighbour of a new or erased entity");
    const std::uint64_t previous = isBefore ? previousInChain(record) : before;
    const std::uint64_t next = isBefore ? after : nextInChain(record);
    setNeighbours(record.values, previous, next);
  };
  if (before != 0) {
    relink(before, true);
  }
  if (after != 0) {
    relink(after, false);
  }
}

void DwgChanges::addToOwner(const AcDbStub& stub, DecodedRecord& record) {
  const std::string what = m_store->describe(stub);
  if (stub.role == Role::TableRecord) {
    DecodedRecord& table = edited(stub.owner->handle, m_store->describe(*stub.owner));
    table.values.addHandle(kOwned, stub.handle);
    return;
  }
  if (!isListed(stub)) {
    return;  // an object: its dictionary says that it is there
  }
  const std::uint64_t ownerHandle = stub.owner == nullptr ? 0 : stub.owner->handle;
  setHandle(record.values, kOwner, ownerHandle);
  DecodedRecord& owner = edited(ownerHandle, "the owner of " + what);
  if (record.name == "SEQEND") {
    setHandle(owner.values, kSequenceEnd, stub.handle);
    return;
  }
  if (m_drawing->file().version() >= Version::R2004) {
    owner.values.addHandle(kOwned, stub.handle);
    return;
  }
  const std::uint64_t last = owner.handleAt(kLastOwned);
  setHandle(owner.values, kLastOwned, stub.handle);
  if (last == 0) {
    setHandle(owner.values, kFirstOwned, stub.handle);
  }
  setNeighbours(record.values, last, 0);
  if (last != 0) {
    DecodedRecord& before = edited(last, what);
    setNeighbours(before.values, previousInChain(before), stub.handle);
  }
}

void DwgChanges::removeFromOwner(const AcDbStub& stub) {
  const std::string what = m_store->describe(stub);
  const std::uint64_t ownerHandle = stub.owner == nullptr ? 0 : stub.owner->handle;
  DecodedRecord& owner = edited(ownerHandle, "the owner of " + what);
  if (m_drawing->file().version() >= Version::R2004) {
    removeHandle(owner.values, kOwned, stub.handle);
    return;
  }
  // An earlier step may have given the record other neighbours.
  const auto known = m_edited.find(stub.handle);
  DecodedRecord record;
  if (known != m_edited.end()) {
    record = known->second;
  } else if (!m_drawing->decode(stub.handle, record)) {
    return;
  }
  const bool isFirst = owner.handleAt(kFirstOwned) == stub.handle;
  const bool isLast = owner.handleAt(kLastOwned) == stub.handle;
  const std::uint64_t previous = isFirst ? 0 : previousInChain(record);
  const std::uint64_t next = isLast ? 0 : nextInChain(record);
  if (isFirst) {
    setHandle(owner.values, kFirstOwned, next);
  }
  if (isLast) {
    setHandle(owner.values, kLastOwned, previous);
  }
  link(previous, next);
}

// --- the file -------------------------------------------------------------------------------

void DwgChanges::encode(FileChanges& changes) {
  for (const auto& [handle, record] : m_edited) {
    if (m_erased.contains(handle)) {
      continue;
    }
    RecordBytes bytes;
    if (!m_codec.encode(handle, record, bytes)) {
      refuse(describe(record, handle), "a value does not fit into a DWG record");
    }
    // What was written must say what was meant.
    DecodedRecord again;
    m_codec.decode({handle, bytes.data, bytes.handleBits}, again);
    std::string meant;
    std::string written;
    m_codec.writeTags(record, meant);
    m_codec.writeTags(again, written);
    const bool isNew = m_drawing->file().find(handle) == nullptr;
    if (!again.isWhole || !(isNew ? saysAll(written, meant, m_facts.format) : meant == written)) {
      refuse(describe(record, handle), "written and read again it says something else");
    }
    const RecordView* const former = m_drawing->file().find(handle);
    if (former != nullptr && former->data == bytes.data && former->handleBits == bytes.handleBits) {
      continue;
    }
    RecordChange& change = changes.records.emplace_back();
    change.handle = handle;
    change.data = std::move(bytes.data);
    change.handleBits = bytes.handleBits;
  }
}

void DwgChanges::takeMeasurement(FileChanges& changes) {
  dxf::TagCursor cursor(m_store->headerVariable("$MEASUREMENT"), m_store->format());
  dxf::TagView tag;
  const std::int64_t measurement =
      cursor.next(tag) ? std::int64_t{dxf::integerOf(tag, m_store->format())} : 0;
  const std::string_view section = m_drawing->file().section(SectionName::Template);
  changes.templateSection = withMeasurement(section, measurement);
  if (!changes.templateSection) {
    refuse("$MEASUREMENT", "the DWG drawing has no room for this header variable");
  }
  if (*changes.templateSection == section) {
    changes.templateSection.reset();
  }
}

void DwgChanges::takeHeader(FileChanges& changes) {
  HeaderSection header = m_drawing->header();
  for (const std::string& name : m_store->changedHeaderVariables()) {
    if (name == "$MEASUREMENT") {
      takeMeasurement(changes);
    } else if (!header.set(name, m_store->headerVariable(name), m_drawing->facts())) {
      refuse(name, "this header variable cannot be written into the DWG drawing");
    }
  }
  const bool hasNew = std::any_of(m_store->stubs().begin(), m_store->stubs().end(),
                                  [](const AcDbStub& stub) { return stub.isNew; });
  if (hasNew && header.handles().seed < m_store->nextHandle() &&
      !header.setSeed(m_store->nextHandle())) {
    refuse("$HANDSEED", "the drawing's header cannot be written, so it takes no new records");
  }
  const std::string contents = header.write();
  if (!contents.empty() && contents != m_drawing->file().headerVariables()) {
    changes.headerVariables = contents;
  }
}

}  // namespace quoin::dwg
