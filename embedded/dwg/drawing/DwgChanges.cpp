#include "embedded/dwg/drawing/DwgChanges.h"

#include <algorithm>
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
  if (one == other) {
    return std::nullopt;
  }
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
  nameNewRecords();
  noteOwners();
  linkOwned();
  takeRecords(changes);
  takeHeader(changes);
  checkOwned(changes);
  return changes;
}

bool DwgChanges::isInFile(const AcDbStub& stub) const {
  return m_drawing->file().find(stub.handle) != nullptr;
}

bool DwgChanges::isGone(std::uint64_t handle) const {
  const AcDbStub* const stub = m_store->find(handle);
  return stub != nullptr && m_store->isErased(*stub);
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

// --- what records own -----------------------------------------------------------------------

void DwgChanges::noteOwners() {
  for (const AcDbStub& stub : m_store->stubs()) {
    const bool isErased = m_store->isErased(stub);
    if (stub.isNew && !isErased) {
      noteNew(stub);
    } else if (isErased && isInFile(stub)) {
      noteErased(stub);
    }
  }
}

void DwgChanges::noteNew(const AcDbStub& stub) {
  if (stub.role == Role::Table || stub.role == Role::BlockBegin || stub.role == Role::BlockEnd) {
    refuse(m_store->describe(stub),
           "this program does not make new tables and blocks in a DWG drawing");
  }
  if (stub.role != Role::TableRecord && !isListed(stub)) {
    return;  // an object: its dictionary says that it is there
  }
  if (stub.owner == nullptr) {
    refuse(m_store->describe(stub), "nothing owns it");
  }
  OwnedChange& owned = m_owned[stub.owner->handle];
  if (m_store->kindName(stub) == "SEQEND") {
    owned.sequenceEnd = stub.handle;
  } else {
    owned.added.push_back(stub.handle);
  }
}

void DwgChanges::noteErased(const AcDbStub& stub) {
  if (stub.role == Role::Table || stub.role == Role::BlockBegin || stub.role == Role::BlockEnd ||
      stub.role == Role::TableRecord) {
    refuse(m_store->describe(stub),
           "this program does not erase records of tables in a DWG drawing");
  }
  const bool ownerStays = stub.owner != nullptr && !m_store->isErased(*stub.owner);
  if (ownerStays && m_store->kindName(stub) == "SEQEND") {
    refuse(m_store->describe(stub), "what it ends is not erased");
  }
  if (ownerStays && isListed(stub)) {
    m_owned[stub.owner->handle].hasErased = true;
  }
}

std::vector<std::uint64_t> DwgChanges::ownedBefore(const DecodedRecord& owner,
                                                   const std::string& what) const {
  const DwgFile& file = m_drawing->file();
  if (!areChained(file.version()) || owner.kind->family == Family::Table) {
    return listedIn(owner);
  }
  std::vector<std::uint64_t> handles;
  const bool isWhole = visitChain(
      owner, file.records().size(),
      [this](std::uint64_t handle, DecodedRecord& part) { return m_drawing->decode(handle, part); },
      [&handles](const DecodedRecord& part) { handles.push_back(part.handleAt(kOwnHandle)); });
  if (!isWhole) {
    refuse(what, "the chain of its entities is broken");
  }
  return handles;
}

void DwgChanges::linkOwned() {
  const bool isChained = areChained(m_drawing->file().version());
  for (auto& [handle, owned] : m_owned) {
    const AcDbStub* const stub = m_store->find(handle);
    if (stub == nullptr) {
      refuse("", "the owner of a new or erased record is not in the drawing");
    }
    std::vector<std::uint64_t> before;
    if (isInFile(*stub)) {
      DecodedRecord owner;
      decodeForEdit(*stub, owner);
      before = ownedBefore(owner, m_store->describe(*stub));
    }
    for (const std::uint64_t part : before) {
      if (!owned.hasErased || !isGone(part)) {
        owned.wanted.push_back(part);
      }
    }
    owned.wanted.insert(owned.wanted.end(), owned.added.begin(), owned.added.end());
    if (isChained && stub->role != Role::Table) {
      linkChain(before, owned.wanted);
    }
  }
}

/// Notes new links where an entity is new or has other neighbours than it had.
void DwgChanges::linkChain(const std::vector<std::uint64_t>& before,
                           const std::vector<std::uint64_t>& after) {
  const auto linksAt = [](const std::vector<std::uint64_t>& chain, std::size_t index) {
    return Links{index == 0 ? 0 : chain[index - 1],
                 index + 1 == chain.size() ? 0 : chain[index + 1]};
  };
  std::size_t old = 0;
  for (std::size_t i = 0; i < after.size(); ++i) {
    while (old < before.size() && before[old] != after[i]) {
      ++old;  // an erased one
    }
    const Links links = linksAt(after, i);
    const Links former = old < before.size() ? linksAt(before, old) : Links{};
    if (old == before.size() || links.previous != former.previous || links.next != former.next) {
      m_links[after[i]] = links;
    }
  }
}

// --- records --------------------------------------------------------------------------------

void DwgChanges::takeRecords(FileChanges& changes) {
  for (const AcDbStub& stub : m_store->stubs()) {
    if (m_store->isErased(stub)) {
      if (isInFile(stub)) {
        RecordChange& change = changes.records.emplace_back();
        change.handle = stub.handle;
        change.isErased = true;
      }
    } else if (isTouched(stub)) {
      encode(stub, recordOf(stub), changes);
    }
  }
}

bool DwgChanges::isTouched(const AcDbStub& stub) const {
  if (stub.changed && stub.role == Role::Table) {
    refuse(m_store->describe(stub),
           "this program changes nothing of a table in a DWG drawing but its list of records");
  }
  return stub.isNew || stub.changed || m_owned.contains(stub.handle) ||
         m_links.contains(stub.handle);
}

void DwgChanges::decodeForEdit(const AcDbStub& stub, DecodedRecord& record) const {
  if (!isInFile(stub)) {
    refuse(m_store->describe(stub), "the drawing has no record with its handle");
  }
  const bool staysUnread = !stub.changed && !m_owned.contains(stub.handle);
  if (!m_drawing->decodeExact(stub.handle, record) || (!record.isWhole && !staysUnread)) {
    refuse(m_store->describe(stub),
           "it is closed: this program does not know all that the drawing says of it, and would "
           "lose the rest");
  }
}

void DwgChanges::makeNew(const AcDbStub& stub, DecodedRecord& record) const {
  std::string problem;
  if (!m_codec.makeRecord(m_store->kindName(stub), stub.handle, stub.bytes(), record, problem)) {
    refuse(m_store->describe(stub), problem);
  }
  if (isListed(stub)) {
    setHandle(record.values, kOwner, stub.owner->handle);
  }
}

void DwgChanges::putTags(const AcDbStub& stub, DecodedRecord& record) const {
  std::string problem;
  if (!m_codec.readTags(stub.bytes(), record, problem)) {
    refuse(m_store->describe(stub), problem);
  }
  std::string taken;
  m_codec.writeTags(record, taken);
  const std::string tags(stub.bytes());
  if (const std::optional<int> code = contradiction(taken, tags, m_store->format())) {
    refuse(m_store->describe(stub),
           "group code " + std::to_string(*code) + " would not become what it was set to");
  }
}

DecodedRecord DwgChanges::recordOf(const AcDbStub& stub) const {
  DecodedRecord record;
  if (stub.isNew) {
    makeNew(stub, record);
  } else {
    decodeForEdit(stub, record);
    if (stub.changed) {
      putTags(stub, record);
    }
  }
  if (const auto owned = m_owned.find(stub.handle); owned != m_owned.end()) {
    putOwned(owned->second, record, record.values);
  }
  if (const auto links = m_links.find(stub.handle); links != m_links.end()) {
    setHandle(record.values, kPrevious, links->second.previous);
    setHandle(record.values, kNext, links->second.next);
    setInteger(record.values, kNoLinks, 0);
  }
  return record;
}

void DwgChanges::putOwned(const OwnedChange& owned, const DecodedRecord& whose,
                          RecordValues& values) const {
  if (owned.sequenceEnd != 0) {
    setHandle(values, kSequenceEnd, owned.sequenceEnd);
  }
  if (areChained(m_drawing->file().version()) && whose.kind->family != Family::Table) {
    setHandle(values, kFirstOwned, owned.wanted.empty() ? 0 : owned.wanted.front());
    setHandle(values, kLastOwned, owned.wanted.empty() ? 0 : owned.wanted.back());
    return;
  }
  if (owned.hasErased) {
    values.removeIf([this](const Value& value) {
      return value.key == kOwned && isGone(static_cast<std::uint64_t>(value.integer));
    });
  }
  for (const std::uint64_t handle : owned.added) {
    values.addHandle(kOwned, handle);
  }
}

void DwgChanges::encode(const AcDbStub& stub, const DecodedRecord& record,
                        FileChanges& changes) const {
  RecordBytes bytes;
  if (!m_codec.encode(stub.handle, record, bytes)) {
    refuse(m_store->describe(stub), "a value does not fit into a DWG record");
  }
  const RecordView* const former = m_drawing->file().find(stub.handle);
  if (former != nullptr && former->data == bytes.data && former->handleBits == bytes.handleBits) {
    return;
  }
  // What was written must say what was meant.
  DecodedRecord again;
  m_codec.decode({stub.handle, bytes.data, bytes.handleBits}, again);
  std::string meant;
  std::string written;
  m_codec.writeTags(record, meant);
  m_codec.writeTags(again, written);
  const bool isSame =
      former == nullptr ? saysAll(written, meant, m_facts.format) : meant == written;
  if (again.isWhole != record.isWhole || !isSame) {
    refuse(m_store->describe(stub), "written and read again it says something else");
  }
  RecordChange& change = changes.records.emplace_back();
  change.handle = stub.handle;
  change.data = std::move(bytes.data);
  change.handleBits = bytes.handleBits;
}

/// Reads what the new file will say of every changed list and chain.
void DwgChanges::checkOwned(const FileChanges& changes) const {
  const DwgFile& file = m_drawing->file();
  std::unordered_map<std::uint64_t, const RecordChange*> changed;
  for (const RecordChange& change : changes.records) {
    changed[change.handle] = &change;
  }
  const auto find = [&](std::uint64_t handle, DecodedRecord& record) {
    const auto found = changed.find(handle);
    if (found == changed.end()) {
      return m_drawing->decode(handle, record);
    }
    const RecordChange& change = *found->second;
    m_codec.decode({handle, change.data, change.handleBits}, record);
    return !change.isErased;
  };
  for (const auto& [handle, owned] : m_owned) {
    DecodedRecord owner;
    bool isWhole = find(handle, owner) && owner.kind != nullptr;
    std::vector<std::uint64_t> found;
    if (isWhole && areChained(file.version()) && owner.kind->family != Family::Table) {
      bool isLinkedBack = true;
      isWhole = visitChain(owner, owned.wanted.size() + 1, find, [&](const DecodedRecord& part) {
        const std::uint64_t own = part.handleAt(kOwnHandle);
        const std::uint64_t before = found.empty() ? 0 : found.back();
        isLinkedBack =
            isLinkedBack && (!m_links.contains(own) || part.handleAt(kPrevious) == before);
        found.push_back(own);
      });
      isWhole = isWhole && isLinkedBack;
    } else if (isWhole) {
      found = listedIn(owner);
    }
    if (!isWhole || found != owned.wanted) {
      dxf::FileError error(Acad::eFilerError,
                           "what it owns would not be in the new file as it should be");
      error.record = m_store->describe(*m_store->find(handle));
      throw error;
    }
  }
}

// --- the file -------------------------------------------------------------------------------

void DwgChanges::takeMeasurement(FileChanges& changes) const {
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

void DwgChanges::takeHeader(FileChanges& changes) const {
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
