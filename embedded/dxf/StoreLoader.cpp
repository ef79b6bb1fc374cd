// The pass over the tags; what is linked afterwards stands in StoreLinker.cpp.
#include "embedded/dxf/StoreLoader.h"

#include <algorithm>
#include <limits>

#include "embedded/dxf/FileError.h"
#include "embedded/dxf/FormatDetector.h"
#include "embedded/dxf/SharedTags.h"
#include "embedded/os/Trace.h"

namespace quoin::dxf {
namespace {

constexpr std::size_t kReportEvery = std::size_t{1} << 20;  // bytes between two reports
constexpr double kScanShare = 0.9;                          // of the whole load
constexpr int kPaperSpaceCode = 67;

Section sectionNamed(std::string_view name) {
  struct Named {
    std::string_view name;
    Section section;
  };
  for (const Named& named :
       {Named{"HEADER", Section::Header}, Named{"CLASSES", Section::Classes},
        Named{"TABLES", Section::Tables}, Named{"BLOCKS", Section::Blocks},
        Named{"ENTITIES", Section::Entities}, Named{"OBJECTS", Section::Objects}}) {
    if (name == named.name) {
      return named.section;
    }
  }
  return Section::Other;
}

bool isSubEntityKind(std::string_view kind) {
  return kind == "VERTEX" || kind == "ATTRIB" || kind == "SEQEND";
}

}  // namespace

StoreLoader::StoreLoader(RecordStore& store, const Progress& progress)
    : m_store(store), m_data(*store.m_impl), m_progress(progress), m_layout(store.m_format) {
  const DetectedFormat detected = detectFormat(m_data.buffer);
  store.m_format = detected.format;
  m_layout = TagLayout(detected.format);
  m_firstTag = detected.firstTag;
}

void StoreLoader::run() {
  if (m_data.buffer.empty()) {
    throw FileError(Acad::eBadDxfFile, "the file is empty");
  }
  scan();
  m_found.hasByteOrderMark = m_store.m_format.form == Form::Ascii && m_firstTag != 0;
  StoreLinker(m_store, m_layout, m_found).run();
  os::trace(os::Traced::Store, [&] {
    const std::string& name = m_store.fileName();
    return (name.empty() ? "a new drawing" : name) + ": " + std::to_string(m_store.stubs().size()) +
           " records in " + std::to_string(m_store.blocks().size()) + " blocks, " +
           std::to_string(m_data.buffer.size()) + " bytes";
  });
  report(1.0);
}

void StoreLoader::scan() {
  const char* const end = m_data.buffer.data() + m_data.buffer.size();
  const char* at = m_data.buffer.data() + m_firstTag;
  std::size_t nextReport = kReportEvery;
  while (!m_ended) {
    RawTag tag;
    const ReadResult result = readTag(at, end, m_layout, tag);
    const std::size_t offset = offsetOf(at);
    if (isWholeWithoutEof(offset)) {
      finish(offset);
      m_data.eofAt = offset;
      m_data.lacksEof = true;
      m_store.warn(offset, {}, "the file ends without EOF; its sections are whole");
      return;
    }
    if (result == ReadResult::End) {
      fail(Acad::eBadDxfFile, "the file is cut off: it ends without EOF", offset);
    }
    if (result != ReadResult::Tag) {
      fail(statusOf(result), causeOf(result, at, end, m_layout), offset);
    }
    if (tag.code == 0) {
      finish(offset);
      begin(trimmed({tag.value, tag.valueSize}), offset);
    } else {
      capture(tag, offset);
    }
    at = tag.next;
    if (offset >= nextReport) {
      nextReport = offset + kReportEvery;
      report(kScanShare * static_cast<double>(offset) / static_cast<double>(m_data.buffer.size()));
    }
  }
}

/// Whether nothing of a drawing is missing but its end: the last section that its release has was
/// there, no section is open, and only blanks or a beginning of EOF follow.
bool StoreLoader::isWholeWithoutEof(std::size_t offset) const {
  constexpr std::size_t kMostBlanks = 64;
  constexpr std::string_view kEnd = "0EOF";
  const Section last = m_found.hasSubclasses ? Section::Objects : Section::Entities;
  if (m_inSection || !m_sectionSeen[static_cast<std::size_t>(last)] ||
      m_data.buffer.size() - offset > kMostBlanks) {
    return false;
  }
  std::string rest(std::string_view(m_data.buffer).substr(offset));
  std::erase_if(rest, [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
  return rest.size() < kEnd.size() && kEnd.starts_with(rest);
}

void StoreLoader::capture(const RawTag& tag, std::size_t offset) {
  using What = Pending::What;
  const std::string_view value(tag.value, tag.valueSize);
  if (m_pending.what == What::Section) {
    if (tag.code == 2 && !m_pending.sawName) {
      m_pending.sawName = true;
      enterSection(trimmed(value));
    } else if (m_section == Section::Header && m_pending.sawName) {
      captureHeader(tag, offset);
    }
    return;
  }
  if (m_pending.what != What::Record) {
    return;
  }
  switch (tag.code) {
    case 2:
      if (!m_pending.sawName) {
        m_pending.sawName = true;
        m_pending.name = trimmed(value);
      }
      break;
    case 5:
    case 105:
      if (m_pending.handle == 0 && isOfEntity(tag.code) && m_pending.keepsHandle &&
          (tag.code == 105) == m_pending.handleIs105) {
        m_pending.handle = handleFromText(value);
        if (m_pending.handle == 0) {
          m_store.warn(offset, describePending(),
                       "'" + std::string(trimmed(value)) + "' is no handle");
        }
      }
      break;
    case kPaperSpaceCode:
      if (!m_pending.sawSpaceFlag && isOfEntity(tag.code)) {
        m_pending.sawSpaceFlag = true;
        m_pending.inPaperSpace = integerOf({tag.code, value, 0, 0}, m_store.m_format) == 1;
      }
      break;
    case 100:
      m_pending.sawSubclass = true;
      m_pending.isInGroup = false;
      m_pending.part =
          trimmed(value) == "AcDbEntity" ? Pending::Part::Entity : Pending::Part::Other;
      break;
    case 101:
      m_pending.part = Pending::Part::Embedded;
      break;
    case 102:
      m_pending.isInGroup = trimmed(value).starts_with('{');
      break;
    case 330:
      if (m_pending.owner == 0 && isOfEntity(tag.code)) {
        m_pending.owner = handleFromText(value);
      }
      break;
    default:
      break;
  }
}

/// Whether a tag that all entities share counts as such where it stands: in front of the markers,
/// behind AcDbEntity, and elsewhere in entities that have no use of their own for the code.
bool StoreLoader::isOfEntity(int code) const {
  if (m_pending.isInGroup) {
    return false;
  }
  switch (m_pending.part) {
    case Pending::Part::Head:
      return true;
    case Pending::Part::Embedded:
      return false;
    case Pending::Part::Entity:
    case Pending::Part::Other:
      break;
  }
  const Role role = m_pending.stub->role;
  const bool isEntity = role == Role::Entity || role == Role::SubEntity;
  return isEntity && (m_pending.part == Pending::Part::Entity ||
                      isSharedTag(m_store.kindName(*m_pending.stub), code));
}

void StoreLoader::captureHeader(const RawTag& tag, std::size_t offset) {
  if (tag.code != 9) {
    return;
  }
  if (!m_data.header.empty()) {
    m_data.header.back().end = offset;
  }
  m_data.header.push_back({trimmed({tag.value, tag.valueSize}), offsetOf(tag.next), kNoPlace});
}

// --- structure ----------------------------------------------------------------------------

void StoreLoader::begin(std::string_view kind, std::size_t offset) {
  m_pending = Pending{};
  m_pending.begin = offset;
  m_pending.what = Pending::What::Structure;
  if (kind == "SECTION") {
    beginSection(offset);
  } else if (kind == "ENDSEC") {
    endSection(offset);
  } else if (kind == "ENDTAB" && m_section == Section::Tables) {
    if (m_table == nullptr) {
      m_store.warn(offset, {}, "ENDTAB without a TABLE");
    }
    endTable(offset);
  } else if (kind == "EOF") {
    if (m_inSection) {
      fail(Acad::eBadDxfSequence,
           "EOF inside section " + m_data.sections.back().name + ", whose ENDSEC is missing",
           offset);
    }
    m_data.eofAt = offset;
    m_ended = true;
  } else {
    beginRecord(kind, offset);
  }
}

void StoreLoader::beginSection(std::size_t offset) {
  if (m_inSection) {
    fail(Acad::eBadDxfSequence,
         "a section begins inside section " + m_data.sections.back().name +
             ", whose ENDSEC is missing",
         offset);
  }
  m_pending.what = Pending::What::Section;
  m_inSection = true;
  m_section = Section::Other;
  m_data.sections.push_back({{}, offset, kNoPlace});
}

void StoreLoader::enterSection(std::string_view name) {
  m_section = sectionNamed(name);
  m_data.sections.back().name = std::string(name);
  bool& seen = m_sectionSeen[static_cast<std::size_t>(m_section)];
  if (seen && m_section != Section::Other) {
    m_store.warn(m_pending.begin, {}, "a second section " + std::string(name));
    if (m_section == Section::Header) {
      m_section = Section::Other;  // the first one's variables hold
    }
  }
  seen = true;
  m_parent = nullptr;
}

void StoreLoader::endSection(std::size_t offset) {
  if (!m_inSection) {
    fail(Acad::eBadDxfSequence, "ENDSEC outside of any section", offset);
  }
  if (m_table != nullptr) {
    m_store.warn(offset, {}, "table " + m_table->name + " has no ENDTAB");
    endTable(offset);
  }
  if (m_block != nullptr) {
    m_store.warn(offset, {}, "the last block has no ENDBLK");
    endBlock(offset);
  }
  m_data.sections.back().end = offset;
  m_inSection = false;
  m_section = Section::Other;
  m_parent = nullptr;
}

void StoreLoader::endTable(std::size_t offset) {
  if (m_table != nullptr) {
    m_table->insertAt = offset;
    m_table = nullptr;
  }
}

void StoreLoader::endBlock(std::size_t offset) {
  if (m_block != nullptr) {
    m_block->insertAt = offset;
    m_block = nullptr;
  }
  m_parent = nullptr;
}

// --- records ------------------------------------------------------------------------------

void StoreLoader::beginRecord(std::string_view kind, std::size_t offset) {
  if (!m_inSection) {
    fail(Acad::eBadDxfSequence, std::string(kind.substr(0, 40)) + " outside of any section",
         offset);
  }
  if (m_store.m_stubs.size() >= HandleIndex::kNone) {
    fail(Acad::eBadDxfFile, "the file has more records than can be numbered", offset);
  }
  std::uint16_t kindNumber = 0;
  try {
    kindNumber = m_store.internKind(kind);
  } catch (const FileError& error) {
    fail(error.status, error.what(), offset);
  }
  AcDbStub& stub = m_store.m_stubs.emplace_back();
  stub.store = &m_store;
  stub.data = m_data.buffer.data() + offset;
  stub.index = static_cast<std::uint32_t>(m_store.m_stubs.size() - 1);
  stub.kind = kindNumber;
  stub.section = m_section;
  m_pending.what = Pending::What::Record;
  m_pending.stub = &stub;
  m_pending.keepsHandle = m_section == Section::Tables || m_section == Section::Blocks ||
                          m_section == Section::Entities || m_section == Section::Objects;
  switch (m_section) {
    case Section::Tables:
      beginTableRecord(stub);
      break;
    case Section::Blocks:
      beginBlockRecord(stub, offset);
      break;
    case Section::Entities:
      beginEntity(stub);
      break;
    case Section::Objects:
      stub.role = Role::Object;
      m_store.m_objects.push_back(&stub);
      break;
    default:
      break;
  }
}

void StoreLoader::beginTableRecord(AcDbStub& stub) {
  const std::string_view kind = m_store.kindName(stub);
  if (kind == "TABLE") {
    if (m_table != nullptr) {
      m_store.warn(m_pending.begin, {}, "table " + m_table->name + " has no ENDTAB");
      endTable(m_pending.begin);
    }
    m_table = &m_store.m_tables.emplace_back();
    m_table->head = &stub;
    stub.role = Role::Table;
    return;
  }
  if (m_table == nullptr) {
    m_store.warn(m_pending.begin, std::string(kind), "a record between tables");
    return;
  }
  m_pending.handleIs105 = kind == "DIMSTYLE";
  stub.role = Role::TableRecord;
  stub.owner = m_table->head;
  m_table->records.push_back(&stub);
}

void StoreLoader::beginBlockRecord(AcDbStub& stub, std::size_t offset) {
  const std::string_view kind = m_store.kindName(stub);
  if (kind == "BLOCK") {
    if (m_block != nullptr) {
      m_store.warn(offset, {}, "a block has no ENDBLK");
      endBlock(offset);
    }
    m_block = &m_store.m_blocks.emplace_back();
    m_block->begin = &stub;
    m_found.blockHeads.emplace_back();
    stub.role = Role::BlockBegin;
    m_parent = nullptr;
  } else if (m_block == nullptr) {
    m_store.warn(offset, std::string(kind), "a record between blocks");
  } else if (kind == "ENDBLK") {
    stub.role = Role::BlockEnd;
    m_block->end = &stub;
    endBlock(offset);
  } else {
    beginEntity(stub);
  }
}

void StoreLoader::beginEntity(AcDbStub& stub) {
  const std::string_view kind = m_store.kindName(stub);
  if (m_parent != nullptr && isSubEntityKind(kind)) {
    stub.role = Role::SubEntity;
    stub.owner = m_parent;
    if (kind == "SEQEND") {
      m_parent = nullptr;
    }
    return;
  }
  stub.role = Role::Entity;
  m_parent = &stub;
  if (m_block != nullptr) {
    m_block->entities.push_back(&stub);
  }
}

void StoreLoader::finish(std::size_t end) {
  switch (m_pending.what) {
    case Pending::What::Section:
      if (!m_pending.sawName) {
        fail(Acad::eBadDxfSequence, "a section without a name", m_pending.begin);
      }
      if (m_section == Section::Header && !m_data.header.empty() &&
          m_data.header.back().end == kNoPlace) {
        m_data.header.back().end = end;
      }
      break;
    case Pending::What::Record:
      finishRecord(end);
      break;
    default:
      break;
  }
}

void StoreLoader::finishRecord(std::size_t end) {
  AcDbStub& stub = *m_pending.stub;
  const std::size_t size = end - m_pending.begin;
  if (size > std::numeric_limits<std::uint32_t>::max()) {
    fail(Acad::eBadDxfFile, "the record is larger than 4 GiB", m_pending.begin);
  }
  stub.size = static_cast<std::uint32_t>(size);
  stub.handle = m_pending.handle;
  m_found.handles += stub.handle != 0 ? 1U : 0U;
  m_found.hasSubclasses = m_found.hasSubclasses || m_pending.sawSubclass;
  switch (stub.role) {
    case Role::Table:
      m_table->name = std::string(m_pending.name);
      break;
    case Role::TableRecord:
      if (m_table->name == "BLOCK_RECORD") {
        m_found.blockRecords[capitals(m_pending.name)].push_back(&stub);
      } else if (m_table->name == "LAYER" && m_pending.name == "0") {
        m_found.hasLayerZero = true;
      }
      break;
    case Role::BlockBegin:
      m_found.blockHeads.back() = {m_pending.name, m_pending.owner};
      break;
    case Role::Entity:
      if (m_section == Section::Entities &&
          (m_found.layoutRuns.empty() || m_found.layoutRuns.back().owner != m_pending.owner ||
           m_found.layoutRuns.back().inPaperSpace != m_pending.inPaperSpace)) {
        m_found.layoutRuns.push_back({stub.index, m_pending.inPaperSpace, m_pending.owner});
      }
      break;
    case Role::Object:
      if (m_pending.owner != 0) {
        m_found.ownerLinks.push_back({&stub, m_pending.owner});
      }
      break;
    default:
      break;
  }
}

// --- messages -----------------------------------------------------------------------------

void StoreLoader::report(double fraction) const {
  if (m_progress && !m_progress(fraction)) {
    throw FileError(Acad::eUserBreak, "reading was stopped");
  }
}

std::string StoreLoader::describePending() const {
  if (m_pending.what != Pending::What::Record) {
    return {};
  }
  AcDbStub named = *m_pending.stub;
  named.handle = m_pending.handle;
  return m_store.describe(named);
}

void StoreLoader::fail(Acad::ErrorStatus status, const std::string& cause,
                       std::size_t offset) const {
  FileError error(status, cause);
  error.record = describePending();
  error.offset = offset;
  if (m_store.m_format.form == Form::Ascii) {
    error.line = m_data.lineAt(offset, m_layout.terminator);
  }
  throw error;
}

}  // namespace quoin::dxf
