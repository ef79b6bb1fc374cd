#include "embedded/dwg/drawing/DwgDrawing.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <unordered_map>
#include <utility>

#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/TemplateSection.h"
#include "embedded/dxf/FileError.h"
#include "embedded/dxf/Tag.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/CodePage.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

struct TableFacts {
  const char* name;
  std::uint16_t control;  // the object type of the table
};

/// In the order in which DXF has them.
constexpr std::array<TableFacts, 9> kTables{{{"VPORT", 64},
                                             {"LTYPE", 56},
                                             {"LAYER", 50},
                                             {"STYLE", 52},
                                             {"VIEW", 60},
                                             {"UCS", 62},
                                             {"APPID", 66},
                                             {"DIMSTYLE", 68},
                                             {"BLOCK_RECORD", 48}}};
constexpr std::size_t kLinetypes = 1;
constexpr std::size_t kBlocks = 8;
constexpr std::uint16_t kBlockHeader = 49;

std::uint16_t typeOf(const RecordView& view, Version version) {
  BitReader reader(view.data, 0, view.data.size() * 8);
  return version >= Version::R2010 ? reader.objectType() : reader.bitShort().value;
}

/// The material of this name in the dictionary of materials; 0 in any other dictionary.
std::uint64_t byBlockMaterialIn(const DecodedRecord& dictionary) {
  const RecordValues& values = dictionary.values;
  for (std::size_t i = 0; i + 1 < values.size(); ++i) {
    const bool isEntry = values[i].key == 3 && values[i + 1].type == Value::Type::Handle;
    if (isEntry && values.textOf(values[i]) == L"ByBlock") {
      return static_cast<std::uint64_t>(values[i + 1].integer);
    }
  }
  return 0;
}

RecordSource sourceOf(const RecordView& view) {
  return {view.handle, view.data, view.handleBits};
}

std::wstring textAt(const DecodedRecord& record, int key) {
  const Value* const value = record.values.first(key);
  return value != nullptr && value->type == Value::Type::Text ? record.values.textOf(*value)
                                                              : std::wstring();
}

std::int64_t integerAt(const DecodedRecord& record, int key) {
  const Value* const value = record.values.first(key);
  return value == nullptr ? 0 : value->integer;
}

/// "LINE 2F" for messages.
std::string describe(const DecodedRecord& record) {
  char handle[24];
  std::snprintf(handle, sizeof handle, " %llX",
                static_cast<unsigned long long>(record.handleAt(kOwnHandle)));
  return record.name + handle;
}

void beginSection(std::string& bytes, std::string_view name, const dxf::Format& format) {
  dxf::putAscii(bytes, 0, "SECTION", format);
  dxf::putAscii(bytes, 2, name, format);
}

void endSection(std::string& bytes, const dxf::Format& format) {
  dxf::putAscii(bytes, 0, "ENDSEC", format);
}

}  // namespace

DwgDrawing::DwgDrawing(DwgFile file, const std::string& codePage)
    : m_file(std::move(file)), m_codec(m_facts, m_classes) {
  dxf::Format& format = m_facts.format;
  format.form = dxf::Form::Binary;
  format.version = m_file.version();
  format.codePage = codePage.empty() ? m_file.codePage() : codePage;
  format.isCodePageGiven = !codePage.empty() && format.version < Version::R2007;
  m_facts.codePage = &os::CodePage::named(format.codePage);
  readSections();
  findTables();
  readNames();
  nameBlocks();
}

// --- what records must know of each other ---------------------------------------------------

void DwgDrawing::readSections() {
  if (!m_header.read(m_file.headerVariables(), m_file.version(), *m_facts.codePage)) {
    m_problems.push_back("the header variables cannot be read");
  }
  if (!m_classSection.read(m_file.classes(), m_file.version(), *m_facts.codePage)) {
    m_problems.push_back("the classes cannot be read");
  }
  m_classes = m_classSection.byType();
  m_measurement = measurementOf(m_file.section(SectionName::Template)).value_or(0);
}

void DwgDrawing::findTables() {
  for (const RecordView& view : m_file.records()) {
    const std::uint16_t type = typeOf(view, m_file.version());
    for (std::size_t i = 0; i < kTables.size(); ++i) {
      if (kTables[i].control == type && m_controls[i] == 0) {
        m_controls[i] = view.handle;
      }
    }
    if (type == kBlockHeader) {
      m_blockHeaders.push_back(view.handle);
    }
  }
}

std::vector<std::uint64_t> DwgDrawing::entriesOf(std::uint64_t control) const {
  DecodedRecord record;
  std::vector<std::uint64_t> entries;
  if (!decode(control, record)) {
    return entries;
  }
  // Model and paper space stand apart from the other blocks.
  for (const int key : {kFirstOwned, kLastOwned}) {
    if (const std::uint64_t handle = record.handleAt(key); handle != 0) {
      entries.push_back(handle);
    }
  }
  const std::vector<std::uint64_t> listed = listedIn(record);
  entries.insert(entries.end(), listed.begin(), listed.end());
  return entries;
}

void DwgDrawing::readNames() {
  DecodedRecord record;
  for (std::size_t i = 0; i < kTables.size(); ++i) {
    if (i == kBlocks) {
      continue;
    }
    for (const std::uint64_t handle : entriesOf(m_controls[i])) {
      if (decode(handle, record)) {
        m_facts.name(kTables[i].name, handle, textAt(record, 2));
      }
    }
  }
  const auto linetype = [&](const wchar_t* name) { return m_facts.handleOf("LTYPE", name); };
  m_facts.byLayerLinetype = linetype(L"ByLayer");
  m_facts.byBlockLinetype = linetype(L"ByBlock");
  m_facts.continuousLinetype = linetype(L"Continuous");
  if (decode(m_controls[kBlocks], record)) {
    m_facts.modelSpace = record.handleAt(kFirstOwned);
    m_facts.paperSpace = record.handleAt(kLastOwned);
  }
  for (const std::uint64_t handle : entriesOf(m_controls[kLinetypes])) {
    if (handle != m_facts.byLayerLinetype && handle != m_facts.byBlockLinetype) {
      m_facts.linetypes.push_back(handle);
    }
  }
  readObjectFacts();
}

/// What entities need of objects beside the tables.
void DwgDrawing::readObjectFacts() {
  constexpr std::uint16_t kViewport = 34;
  constexpr std::uint16_t kMultilineStyle = 73;
  constexpr std::uint16_t kDictionary = 42;
  std::unordered_map<std::uint64_t, std::int64_t> viewports;  // counted by their owner
  DecodedRecord record;
  for (const RecordView& view : m_file.records()) {
    const std::uint16_t type = typeOf(view, m_file.version());
    const auto found = m_classes.find(type);
    const std::string_view name =
        found == m_classes.end() ? std::string_view() : std::string_view(found->second.dxfName);
    if (type == kViewport && decode(view.handle, record)) {
      m_facts.viewportNumbers[view.handle] = ++viewports[record.handleAt(kOwner)];
    } else if (type == kMultilineStyle && decode(view.handle, record)) {
      m_facts.name("MLINESTYLE", view.handle, textAt(record, 2));
    } else if (name == "DBCOLOR" && decode(view.handle, record) && record.isWhole) {
      m_facts.bookColors[view.handle] = {integerAt(record, 420), textAt(record, 430)};
    } else if (type == kDictionary && m_facts.byBlockMaterial == 0 && decode(view.handle, record)) {
      m_facts.byBlockMaterial = byBlockMaterialIn(record);
    }
  }
}

/// Headers of nameless blocks have but the beginning of the name ("*U"): the BLOCK has all of it.
void DwgDrawing::nameBlocks() {
  DecodedRecord header;
  DecodedRecord begin;
  for (const std::uint64_t handle : m_blockHeaders) {
    if (!decode(handle, header) || !header.isWhole) {
      continue;
    }
    std::wstring name = textAt(header, 2);
    if (decode(header.handleAt(kBlockBegin), begin) && begin.isWhole && !textAt(begin, 2).empty()) {
      name = textAt(begin, 2);
    }
    BlockFacts& block = m_facts.blocks[handle];
    block.isPaperSpace = os::foldCase(name).starts_with(os::foldCase(L"*Paper_Space"));
    block.flags = integerAt(header, kBlockFlags);
    for (int i = 0; i < 3; ++i) {
      const Value* const base = header.values.first(kBlockBase + 10 * i);
      block.base[i] = base == nullptr ? 0.0 : base->number;
    }
    block.path = textAt(header, kBlockPath);
    block.description = textAt(header, kBlockDescription);
    m_facts.name("BLOCK_RECORD", handle, std::move(name));
  }
}

// --- records --------------------------------------------------------------------------------

bool DwgDrawing::decode(std::uint64_t handle, DecodedRecord& record) const {
  const RecordView* const view = m_file.find(handle);
  if (view == nullptr) {
    return false;
  }
  m_codec.decode(sourceOf(*view), record);
  return true;
}

bool DwgDrawing::isRead(std::uint64_t handle) const {
  DecodedRecord record;
  return decode(handle, record) && record.kind != nullptr && record.isWhole;
}

bool DwgDrawing::decodeExact(std::uint64_t handle, DecodedRecord& record) const {
  const RecordView* const view = m_file.find(handle);
  if (view == nullptr) {
    return false;
  }
  m_codec.decode(sourceOf(*view), record);
  if (!record.isWhole && record.kind != nullptr) {
    m_codec.decodeShared(sourceOf(*view), record);
  }
  return m_codec.isExact(sourceOf(*view), record);
}

bool DwgDrawing::canEdit(std::uint64_t handle) const {
  const RecordView* const view = m_file.find(handle);
  if (view == nullptr) {
    return false;
  }
  // Model space is asked for with every new entity.
  m_editable.resize(m_file.records().size(), Editable::Unknown);
  Editable& editable = m_editable[static_cast<std::size_t>(view - m_file.records().data())];
  if (editable == Editable::Unknown) {
    DecodedRecord record;
    const bool isEditable = decodeExact(handle, record) && record.isWhole;
    editable = isEditable ? Editable::Yes : Editable::No;
  }
  return editable == Editable::Yes;
}

void DwgDrawing::visitOwned(const DecodedRecord& owner, const RecordVisitor& visit) {
  const bool isWhole = dwg::visitOwned(
      owner, m_file.version(), m_file.records().size(),
      [this](std::uint64_t handle, DecodedRecord& part) { return decode(handle, part); }, visit);
  if (!isWhole) {
    m_problems.push_back(describe(owner) + ": the chain of its entities is broken");
  }
}

// --- the DXF file ---------------------------------------------------------------------------

std::string DwgDrawing::tags(const dxf::Progress& progress) {
  m_progress = &progress;
  m_steps = 0;
  m_unread.clear();
  m_partlyRead.clear();
  m_written.assign(m_file.records().size(), false);
  const dxf::Format& format = m_facts.format;
  // Room for all of it, since a longer one would be held twice for a while. Pages that nothing is
  // written to take no memory.
  constexpr std::size_t kTagsPerByte = 4;
  std::size_t size = 0;
  for (const RecordView& view : m_file.records()) {
    size += view.data.size();
  }
  std::string bytes;
  bytes.reserve(kTagsPerByte * size);
  bytes += "AutoCAD Binary DXF\r\n\x1A";
  bytes += '\0';
  beginSection(bytes, "HEADER", format);
  writeHeader(bytes);
  endSection(bytes, format);
  beginSection(bytes, "CLASSES", format);
  m_classSection.writeTags(format, bytes);
  endSection(bytes, format);
  beginSection(bytes, "TABLES", format);
  writeTables(bytes);
  endSection(bytes, format);
  beginSection(bytes, "BLOCKS", format);
  writeBlocks(bytes);
  endSection(bytes, format);
  beginSection(bytes, "ENTITIES", format);
  writeEntities(bytes);
  endSection(bytes, format);
  beginSection(bytes, "OBJECTS", format);
  writeObjects(bytes);
  endSection(bytes, format);
  dxf::putAscii(bytes, 0, "EOF", format);
  m_progress = nullptr;
  return bytes;
}

void DwgDrawing::writeRecord(const DecodedRecord& record, std::string& bytes) {
  const std::uint64_t handle = record.handleAt(kOwnHandle);
  if (const RecordView* const view = m_file.find(handle)) {
    const auto index = static_cast<std::size_t>(view - m_file.records().data());
    if (m_written[index]) {
      return;  // two owners name it
    }
    m_written[index] = true;
  }
  countUnread(record);
  m_codec.writeTags(record, bytes);
  step();
}

void DwgDrawing::step() {
  constexpr std::size_t kStride = 4096;
  if (++m_steps % kStride != 0 || !*m_progress) {
    return;
  }
  const double share = static_cast<double>(m_steps) / static_cast<double>(m_written.size() + 1);
  if (!(*m_progress)(std::min(share, 1.0))) {
    throw dxf::FileError(Acad::eUserBreak, "reading was stopped");
  }
}

void DwgDrawing::countUnread(const DecodedRecord& record) {
  if (record.isWhole && !record.kind->isPartial) {
    return;
  }
  std::vector<dxf::UnreadKind>& kinds = record.isWhole ? m_partlyRead : m_unread;
  const auto found = std::find_if(kinds.begin(), kinds.end(), [&](const dxf::UnreadKind& kind) {
    return kind.name == record.name;
  });
  dxf::UnreadKind& kind = found == kinds.end() ? kinds.emplace_back() : *found;
  kind.name = record.name;
  kind.isEntity = record.isEntity;
  ++kind.count;
}

void DwgDrawing::writeTable(const char* name, std::uint64_t control, std::string& bytes) {
  const std::vector<std::uint64_t> entries = entriesOf(control);
  DecodedRecord record;
  if (const RecordView* const view = m_file.find(control)) {
    m_codec.decode(sourceOf(*view), record);
    m_written[static_cast<std::size_t>(view - m_file.records().data())] = true;
  }
  m_codec.writeTableHead(name, entries.size(), record, bytes);
  for (const std::uint64_t handle : entries) {
    if (decode(handle, record)) {
      writeRecord(record, bytes);
    }
  }
  dxf::putAscii(bytes, 0, "ENDTAB", m_facts.format);
}

void DwgDrawing::writeTables(std::string& bytes) {
  for (std::size_t i = 0; i < kTables.size(); ++i) {
    writeTable(kTables[i].name, m_controls[i], bytes);
  }
}

void DwgDrawing::writeBlockPart(const DecodedRecord& header, int key, std::string& bytes) {
  DecodedRecord part;
  if (decode(header.handleAt(key), part)) {
    writeRecord(part, bytes);
  }
}

void DwgDrawing::writeBlocks(std::string& bytes) {
  DecodedRecord header;
  for (const std::uint64_t handle : entriesOf(m_controls[kBlocks])) {
    if (!decode(handle, header) || !header.isWhole) {
      continue;
    }
    writeBlockPart(header, kBlockBegin, bytes);
    if (handle != m_facts.modelSpace && handle != m_facts.paperSpace) {
      visitOwned(header, [&](const DecodedRecord& entity) { writeEntity(entity, bytes); });
    }
    writeBlockPart(header, kBlockEnd, bytes);
  }
}

void DwgDrawing::writeEntities(std::string& bytes) {
  DecodedRecord header;
  for (const std::uint64_t space : {m_facts.modelSpace, m_facts.paperSpace}) {
    if (decode(space, header)) {
      visitOwned(header, [&](const DecodedRecord& entity) { writeEntity(entity, bytes); });
    }
  }
}

void DwgDrawing::writeEntity(const DecodedRecord& record, std::string& bytes) {
  writeRecord(record, bytes);
  if (record.handleAt(kSequenceEnd) == 0) {
    return;
  }
  visitOwned(record, [&](const DecodedRecord& part) { writeRecord(part, bytes); });
  DecodedRecord end;
  if (decode(record.handleAt(kSequenceEnd), end)) {
    writeRecord(end, bytes);
  }
}

void DwgDrawing::writeObjects(std::string& bytes) {
  const auto isRoot = [](const DecodedRecord& record) {
    return record.name == "DICTIONARY" && record.handleAt(kOwner) == 0;
  };
  // The dictionary that names all others comes first.
  DecodedRecord record;
  for (const bool wantsRoot : {true, false}) {
    for (std::size_t i = 0; i < m_file.records().size(); ++i) {
      if (m_written[i]) {
        continue;
      }
      m_codec.decode(sourceOf(m_file.records()[i]), record);
      if (record.isEntity) {
        if (!wantsRoot) {
          m_problems.push_back(describe(record) + " belongs to no block");
        }
      } else if (isRoot(record) == wantsRoot && !record.name.empty()) {
        writeRecord(record, bytes);
      }
      if (wantsRoot && isRoot(record)) {
        break;
      }
    }
  }
}

void DwgDrawing::writeHeader(std::string& bytes) const {
  OutsideVariables outside;
  outside.maintenance = static_cast<int>(m_file.maintenance());
  outside.measurement = m_measurement;
  m_header.writeTags(m_facts, outside, bytes);
}

}  // namespace quoin::dwg
