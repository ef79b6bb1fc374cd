// A DWG drawing of a DXF drawing, for tests and examples: its records of known kinds, by the
// program's own encoder, in the least container that a file has (MadeDwg.h). What has no kind is
// left out, and nothing refers to it. No program of its own: what users have goes the other way.
#pragma once

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "dwg/MadeDwg.h"
#include "dwg/MadeSections.h"
#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/HeaderSection.h"
#include "embedded/dwg/records/RecordCodec.h"
#include "embedded/dxf/RecordStore.h"
#include "embedded/os/CaseFold.h"

namespace quoin::test {

class DwgMaker {
 public:
  /// The drawing's version decides that of the file: R14, R2000, R2004, R2010, R2013 or R2018.
  explicit DwgMaker(dxf::RecordStore& store) : m_store(store) {
    m_facts.format = store.format();
    m_facts.codePage = &os::CodePage::named(store.format().codePage);
  }
  DwgMaker(const DwgMaker&) = delete;  // the codec refers to the facts beside it
  DwgMaker& operator=(const DwgMaker&) = delete;

  std::string file() {
    readClasses();
    nameRecords();
    for (const AcDbStub& stub : m_store.stubs()) {
      makeRecord(stub);
    }
    for (dxf::Table& table : m_store.tables()) {
      makeTable(table);
    }
    for (dxf::Block& block : m_store.blocks()) {
      makeBlock(block);
    }
    MadeContents contents;
    contents.records = encoded();
    contents.classes = madeClassSection(version(), *m_facts.codePage, m_classes);
    contents.header = header();
    contents.codePage = m_facts.format.codePage == "ANSI_936" ? 39 : 30;
    contents.templateBytes = std::string("\0\0\1\0", 4);  // metric
    const std::string mark(dxf::acadVerText(version()));
    return isChained() ? madeFlatDwg(contents, mark) : madePagedDwg(contents, mark);
  }

  /// "MATERIAL 2F: why": what the DWG file does not have.
  const std::vector<std::string>& leftOut() const { return m_leftOut; }

 private:
  dxf::Version version() const { return m_facts.format.version; }
  /// Whether what belongs together is a chain; a list otherwise.
  bool isChained() const { return version() < dxf::Version::R2004; }

  /// The value of a record's first tag of this code.
  std::wstring textOf(const AcDbStub& stub, int code) const {
    dxf::TagCursor cursor(stub.bytes(), m_store.format());
    for (dxf::TagView tag; cursor.next(tag);) {
      if (tag.code == code) {
        return dxf::textOf(tag, m_store.format());
      }
    }
    return {};
  }
  static std::string narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

  void readClasses() {
    for (const AcDbStub& stub : m_store.stubs()) {
      if (m_store.kindName(stub) == "CLASS") {
        const bool isEntity = textOf(stub, 281) == L"1";
        m_classes.push_back({narrow(textOf(stub, 1)), narrow(textOf(stub, 2)), isEntity});
        m_classMap[static_cast<std::uint16_t>(499 + m_classes.size())] = {m_classes.back().dxfName,
                                                                          isEntity};
      }
    }
  }

  /// What records must know of each other.
  void nameRecords() {
    for (const AcDbStub& stub : m_store.stubs()) {
      if (stub.role == dxf::Role::TableRecord || m_store.kindName(stub) == "MLINESTYLE") {
        m_facts.name(m_store.kindName(stub), stub.handle, textOf(stub, 2));
      }
    }
    m_facts.byLayerLinetype = m_facts.handleOf("LTYPE", L"ByLayer");
    m_facts.byBlockLinetype = m_facts.handleOf("LTYPE", L"ByBlock");
    m_facts.continuousLinetype = m_facts.handleOf("LTYPE", L"Continuous");
    m_facts.modelSpace = m_store.modelSpace().record->handle;
    m_facts.paperSpace = m_store.paperSpace()->record->handle;
  }

  void makeRecord(const AcDbStub& stub) {
    const std::string kind(m_store.kindName(stub));
    if (stub.handle == 0 || stub.role == dxf::Role::Table || stub.role == dxf::Role::Other) {
      return;
    }
    dwg::DecodedRecord record;
    std::string problem;
    if (m_codec.makeRecord(kind, stub.handle, stub.bytes(), record, problem)) {
      m_records[stub.handle] = std::move(record);
      put(m_records[stub.handle], dwg::kOwner, stub.owner == nullptr ? 0 : stub.owner->handle);
    } else {
      m_leftOut.push_back(m_store.describe(stub) + ": " + problem);
    }
  }

  /// A field of which there is one.
  static void put(dwg::DecodedRecord& record, int key, std::uint64_t handle) {
    for (std::size_t i = 0; i < record.values.size(); ++i) {
      if (record.values[i].key == key) {
        record.values[i].integer = static_cast<std::int64_t>(handle);
        return;
      }
    }
    record.values.addHandle(key, handle);
  }

  void makeTable(const dxf::Table& table) {
    if (table.head == nullptr) {
      return;
    }
    const dwg::Kind* kind = nullptr;
    const std::string name = (table.name == "BLOCK_RECORD" ? "BLOCK" : table.name) + "_CONTROL";
    for (const dwg::Kind* one : dwg::allKinds()) {
      kind = one->name == name ? one : kind;
    }
    if (kind == nullptr) {
      throw std::logic_error(name + " is a table");
    }
    dwg::DecodedRecord& control = m_records[table.head->handle];
    control.type = kind->type;
    control.kind = kind;
    control.name = name;
    control.isWhole = true;
    control.values.addHandle(dwg::kOwner, 0);
    // Two are owned apart.
    std::uint64_t first = table.name == "LTYPE" ? m_facts.byLayerLinetype : 0;
    std::uint64_t last = table.name == "LTYPE" ? m_facts.byBlockLinetype : 0;
    if (name == "BLOCK_CONTROL") {
      first = m_facts.modelSpace;
      last = m_facts.paperSpace;
    }
    for (const AcDbStub* record : table.records) {
      control.values.addHandle(record->handle == first  ? dwg::kFirstOwned
                               : record->handle == last ? dwg::kLastOwned
                                                        : dwg::kOwned,
                               record->handle);
    }
    m_tables[name] = table.head->handle;
  }

  /// Tells an owner what belongs to it, in order.
  void own(dwg::DecodedRecord& owner, const std::vector<AcDbStub*>& stubs) {
    std::vector<std::uint64_t> parts;
    for (const AcDbStub* stub : stubs) {
      if (m_records.contains(stub->handle)) {
        parts.push_back(stub->handle);
      }
    }
    if (isChained()) {
      put(owner, dwg::kFirstOwned, parts.empty() ? 0 : parts.front());
      put(owner, dwg::kLastOwned, parts.empty() ? 0 : parts.back());
    }
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (isChained()) {
        put(m_records[parts[i]], dwg::kPrevious, i == 0 ? 0 : parts[i - 1]);
        put(m_records[parts[i]], dwg::kNext, i + 1 == parts.size() ? 0 : parts[i + 1]);
        m_records[parts[i]].values.addInteger(dwg::kNoLinks, 0);
      } else {
        owner.values.addHandle(dwg::kOwned, parts[i]);
      }
    }
  }

  void makeBlock(const dxf::Block& block) {
    dwg::DecodedRecord& header = m_records.at(block.record->handle);
    const bool isSpace = block.record->handle == m_facts.modelSpace ||
                         os::foldCase(block.name).starts_with(os::foldCase(L"*Paper_Space"));
    const bool isNameless = block.name.starts_with(L'*') && !isSpace;
    header.values.addText(dwg::kBlockName, isNameless ? block.name.substr(0, 2) : block.name);
    header.values.addInteger(dwg::kIsNameless, isNameless ? 1 : 0);
    header.values.addHandle(dwg::kBlockBegin, block.begin->handle);
    header.values.addHandle(dwg::kBlockEnd, block.end->handle);
    for (int i = 0; i < 3; ++i) {
      const std::wstring base = textOf(*block.begin, 10 + 10 * i);
      header.values.addDouble(dwg::kBlockBase + 10 * i, base.empty() ? 0.0 : std::stod(base));
    }
    own(header, block.entities);
    bool hasAttributes = false;
    for (const AcDbStub* entity : block.entities) {
      hasAttributes = hasAttributes || m_store.kindName(*entity) == "ATTDEF";
      makeParts(*entity);
      if (m_store.kindName(*entity) == "INSERT" && m_records.contains(entity->handle)) {
        const dwg::DecodedRecord& insert = m_records.at(entity->handle);
        m_records.at(insert.handleAt(2)).values.addHandle(dwg::kBlockInsert, entity->handle);
      }
    }
    header.values.addInteger(dwg::kHasAttributes, hasAttributes ? 1 : 0);
  }

  /// Vertices and attributes.
  void makeParts(const AcDbStub& entity) {
    std::vector<AcDbStub*> parts = m_store.subEntities(entity);
    if (parts.empty() || !m_records.contains(entity.handle)) {
      return;
    }
    dwg::DecodedRecord& owner = m_records.at(entity.handle);
    if (m_store.kindName(*parts.back()) == "SEQEND") {
      owner.values.addHandle(dwg::kSequenceEnd, parts.back()->handle);
      parts.pop_back();
    }
    own(owner, parts);
  }

  /// Removes what a dictionary has under the names of records that were left out, and all other
  /// references to them.
  void forgetLeftOut(dwg::DecodedRecord& record) const {
    dwg::RecordValues& values = record.values;
    for (std::size_t i = values.size(); i-- > 0;) {
      if (values[i].type != dwg::Value::Type::Handle || values[i].key == dwg::kOwnHandle ||
          values[i].integer == 0 ||
          m_records.contains(static_cast<std::uint64_t>(values[i].integer))) {
        continue;
      }
      const bool isEntry = i > 0 && values[i - 1].key == 3 && record.name == "DICTIONARY";
      if (isEntry || values[i].key == dwg::kReactor) {
        values.remove(i);
      } else {
        values[i].integer = 0;
        values[i].reference = {};
      }
      if (isEntry) {
        values.remove(--i);
      }
    }
  }

  std::vector<MadeContents::Record> encoded() {
    std::vector<MadeContents::Record> records;
    for (auto& [handle, record] : m_records) {
      forgetLeftOut(record);
      dwg::RecordBytes bytes;
      dwg::DecodedRecord again;
      if (!m_codec.encode(handle, record, bytes)) {
        throw std::logic_error(record.name + " can be written");
      }
      const dwg::RecordSource source{handle, bytes.data, bytes.handleBits};
      m_codec.decode(source, again);
      if (!again.isWhole || !m_codec.isExact(source, again)) {
        throw std::logic_error(record.name + " can be read again");
      }
      records.push_back({handle, bytes.data, bytes.handleBits});
    }
    return records;
  }

  std::uint64_t inRoot(std::wstring_view name) const {
    for (const auto& [handle, record] : m_records) {
      if (record.name != "DICTIONARY" || record.handleAt(dwg::kOwner) != 0) {
        continue;
      }
      for (std::size_t i = 0; i + 1 < record.values.size(); ++i) {
        if (record.values[i].key == 3 && record.values.textOf(record.values[i]) == name) {
          return static_cast<std::uint64_t>(record.values[i + 1].integer);
        }
      }
      return name.empty() ? handle : 0;
    }
    return 0;
  }

  /// The variables of the DXF file, and what the header alone knows.
  std::string header() {
    MadeVariables known{{"HANDSEED", m_store.nextHandle()},
                        {"NAMED_OBJECTS", inRoot({})},
                        {"GROUPS", inRoot(L"ACAD_GROUP")},
                        {"MLINESTYLES", inRoot(L"ACAD_MLINESTYLE")},
                        {"LAYOUTS", inRoot(L"ACAD_LAYOUT")},
                        {"PLOTSETTINGS", inRoot(L"ACAD_PLOTSETTINGS")},
                        {"PLOTSTYLES", inRoot(L"ACAD_PLOTSTYLENAME")},
                        {"MODEL_SPACE", m_facts.modelSpace},
                        {"PAPER_SPACE", m_facts.paperSpace},
                        {"BYLAYER", m_facts.byLayerLinetype},
                        {"BYBLOCK", m_facts.byBlockLinetype},
                        {"CONTINUOUS", m_facts.continuousLinetype},
                        {"CLAYER", m_facts.handleOf("LAYER", L"0")},
                        {"TEXTSTYLE", m_facts.handleOf("STYLE", L"Standard")},
                        {"CELTYPE", m_facts.byLayerLinetype},
                        {"DIMSTYLE", m_facts.handleOf("DIMSTYLE", L"Standard")},
                        {"DIMTXSTY", m_facts.handleOf("STYLE", L"Standard")},
                        {"CMLSTYLE", m_facts.handleOf("MLINESTYLE", L"Standard")}};
    for (const auto& [name, handle] : m_tables) {
      known.emplace_back(name, handle);
    }
    dwg::HeaderSection section;
    const std::string made = madeHeaderSection(version(), *m_facts.codePage, known);
    if (!section.read(made, version(), *m_facts.codePage) || !section.isExact()) {
      throw std::logic_error("a made header can be read");
    }
    std::string tags;
    section.writeTags(m_facts, {}, tags);
    dxf::TagCursor cursor(tags, m_facts.format);
    for (dxf::TagView tag; cursor.next(tag);) {
      const std::string_view name = dxf::trimmedValue(tag);
      if (tag.code == 9 && name != "$HANDSEED" && !m_store.headerVariable(name).empty()) {
        section.set(name, m_store.headerVariable(name), m_facts);
      }
    }
    return section.write();
  }

  dxf::RecordStore& m_store;
  dwg::DrawingFacts m_facts;
  dwg::ClassMap m_classMap;
  dwg::RecordCodec m_codec{m_facts, m_classMap};
  std::vector<MadeClass> m_classes;
  std::map<std::uint64_t, dwg::DecodedRecord> m_records;
  std::map<std::string, std::uint64_t> m_tables;
  std::vector<std::string> m_leftOut;
};

}  // namespace quoin::test
