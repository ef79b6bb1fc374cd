#include "embedded/dxf/StoreLinker.h"

#include <algorithm>

#include "embedded/dxf/FileError.h"
#include "embedded/dxf/RecordStoreImpl.h"
#include "embedded/dxf/TagText.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/CodePage.h"

namespace quoin::dxf {
namespace {

constexpr const wchar_t* kModelSpaceName = L"*Model_Space";
constexpr const wchar_t* kPaperSpaceName = L"*Paper_Space";

/// R12 files that newer programs write have "$MODEL_SPACE" for "*Model_Space".
bool isLayoutName(std::string_view name, std::string_view bare, Version version) {
  return name.size() == bare.size() + 1 && os::sameName(name.substr(1), bare) &&
         (name[0] == '*' || (name[0] == '$' && version <= Version::R12));
}

}  // namespace

StoreLinker::StoreLinker(RecordStore& store, const TagLayout& layout, const StoreFindings& found)
    : m_store(store), m_data(*store.m_impl), m_layout(layout), m_found(found) {}

void StoreLinker::run() {
  readHeader();
  m_data.fileStubs = m_store.m_stubs.size();
  indexHandles();
  linkBlocks();
  makeLayouts();
  distributeEntities();
  linkOwners();
  makeLayerZero();
}

std::string_view StoreLinker::headerText(std::string_view variable) const {
  const std::string_view tags = m_store.headerVariable(variable);
  const char* const end = tags.data() + tags.size();
  RawTag tag;
  return readTag(tags.data(), end, m_layout, tag) == ReadResult::Tag
             ? trimmed({tag.value, tag.valueSize})
             : std::string_view{};
}

void StoreLinker::readHeader() {
  Format& format = m_store.m_format;
  const std::string_view acadVer = headerText("$ACADVER");
  format.version = versionFromAcadVer(acadVer);
  if (format.version == Version::Unknown) {
    const bool isNewer = acadVer.size() == 6 && acadVer.starts_with("AC1");
    format.version = isNewer                 ? Version::R2018
                     : m_found.hasSubclasses ? Version::R2000
                                             : Version::R12;
    if (!acadVer.empty()) {
      m_store.warn(0, {},
                   "version '" + std::string(acadVer) + "' is unknown; read as " +
                       std::string(releaseName(format.version)));
    }
  }
  if (!m_store.m_givenCodePage.empty()) {
    format.codePage = m_store.m_givenCodePage;
    format.isCodePageGiven = true;
  } else if (const std::string_view codePage = headerText("$DWGCODEPAGE"); !codePage.empty()) {
    format.codePage = std::string(codePage);
    if (!format.textIsUtf8() && !os::CodePage::isKnown(codePage)) {
      m_store.warn(0, {},
                   "code page '" + std::string(codePage) + "' is unknown; read as ANSI_1252");
    }
  } else if (m_found.hasByteOrderMark) {
    format.codePage = "UTF-8";  // nothing else begins with a byte order mark
  }
  m_data.seed = handleFromText(headerText("$HANDSEED"));
  const std::string_view handling = m_store.headerVariable("$HANDLING");
  RawTag tag;
  const bool isOff = readTag(handling.data(), handling.data() + handling.size(), m_layout, tag) ==
                         ReadResult::Tag &&
                     integerOf({tag.code, {tag.value, tag.valueSize}, 0, 0}, format) == 0;
  m_data.hasHandles =
      format.hasSubclassMarkers() || (handling.empty() ? m_found.handles != 0 : !isOff);
}

void StoreLinker::indexHandles() {
  m_data.handles.reserve(m_found.handles);
  for (const AcDbStub& stub : m_store.m_stubs) {
    if (stub.handle == 0) {
      continue;
    }
    m_data.highestHandle = std::max(m_data.highestHandle, stub.handle);
    const std::uint32_t holder = m_data.handles.insert(stub.index);
    if (holder != stub.index) {
      const AcDbStub& first = m_store.m_stubs[holder];
      const std::uint64_t place = m_store.lineOf(first);
      m_store.warn(m_data.fileOffset(stub), m_store.describe(stub),
                   "the handle is taken by the " + std::string(m_store.kindName(first)) +
                       (m_layout.isBinary ? " at byte " : " in line ") + std::to_string(place));
    }
  }
}

void StoreLinker::linkBlocks() {
  for (std::size_t i = 0; i < m_found.blockHeads.size(); ++i) {
    Block& block = m_store.m_blocks[i];
    const StoreFindings::BlockHead& head = m_found.blockHeads[i];
    block.name = decodeText(head.name, m_store.m_format);
    linkBlockRecord(block, head);
    const Version version = m_store.m_format.version;
    if (m_data.modelSpace == nullptr && isLayoutName(head.name, "MODEL_SPACE", version)) {
      block.name = kModelSpaceName;
      m_data.modelSpace = &block;
    } else if (m_data.paperSpace == nullptr && isLayoutName(head.name, "PAPER_SPACE", version)) {
      block.name = kPaperSpaceName;
      m_data.paperSpace = &block;
    }
    if (!m_data.blockByName.try_emplace(os::foldCase(block.name), &block).second) {
      m_store.warn(m_data.fileOffset(*block.begin), m_store.describe(*block.begin),
                   "a second block of the same name");
    }
  }
}

AcDbStub* StoreLinker::freeRecordNamed(std::string_view name) const {
  const auto named = m_found.blockRecords.find(capitals(name));
  if (named == m_found.blockRecords.end()) {
    return nullptr;
  }
  const auto isFree = [&](const AcDbStub* record) {
    return m_data.blockByRecord.find(record) == m_data.blockByRecord.end();
  };
  const auto free = std::find_if(named->second.begin(), named->second.end(), isFree);
  return free == named->second.end() ? nullptr : *free;
}

/// The BLOCK_RECORD that the BLOCK names as its owner, else the first of the same name that no
/// other block has, else a placeholder.
void StoreLinker::linkBlockRecord(Block& block, const StoreFindings::BlockHead& head) {
  AcDbStub* record = m_store.find(head.owner);
  const bool isRecord = record != nullptr && record->role == Role::TableRecord &&
                        m_store.kindName(*record) == "BLOCK_RECORD" &&
                        m_store.blockOf(*record) == nullptr;
  if (!isRecord) {
    record = freeRecordNamed(head.name);
  }
  block.record = record != nullptr ? record : m_store.appendPlaceholder("BLOCK_RECORD");
  m_data.blockByRecord[block.record] = &block;
}

void StoreLinker::makeLayouts() {
  const SectionPlace* const entities = m_data.section("ENTITIES");
  const std::size_t insertAt = entities == nullptr ? kNoPlace : entities->end;
  const auto make = [&](const wchar_t* name, std::string_view bare) {
    Block& block = m_store.m_blocks.emplace_back();
    block.name = name;
    AcDbStub* const record = freeRecordNamed("*" + std::string(bare));
    block.record = record != nullptr ? record : m_store.appendPlaceholder("BLOCK_RECORD");
    m_data.blockByRecord.try_emplace(block.record, &block);
    m_data.blockByName.try_emplace(os::foldCase(block.name), &block);
    return &block;
  };
  if (m_data.modelSpace == nullptr) {
    m_data.modelSpace = make(kModelSpaceName, "MODEL_SPACE");
  }
  m_data.modelSpace->insertAt = insertAt;
  const bool needsPaper =
      freeRecordNamed("*PAPER_SPACE") != nullptr ||
      std::any_of(m_found.layoutRuns.begin(), m_found.layoutRuns.end(),
                  [](const StoreFindings::LayoutRun& layoutRun) { return layoutRun.inPaperSpace; });
  if (m_data.paperSpace == nullptr && needsPaper) {
    m_data.paperSpace = make(kPaperSpaceName, "PAPER_SPACE");
  }
  if (m_data.paperSpace != nullptr) {
    m_data.paperSpace->insertAt = insertAt;
  }
}

/// Entities of the ENTITIES section belong to the layout that they name as their owner; where
/// they name none, the paper space flag decides.
void StoreLinker::distributeEntities() {
  Block* target = nullptr;
  std::size_t nextRun = 0;
  for (std::size_t i = m_found.layoutRuns.empty() ? m_data.fileStubs : m_found.layoutRuns[0].first;
       i < m_data.fileStubs; ++i) {
    AcDbStub& stub = m_store.m_stubs[i];
    if (nextRun < m_found.layoutRuns.size() && m_found.layoutRuns[nextRun].first == i) {
      const StoreFindings::LayoutRun& layoutRun = m_found.layoutRuns[nextRun++];
      target = layoutRun.inPaperSpace ? m_data.paperSpace : m_data.modelSpace;
      const AcDbStub* const owner = m_store.find(layoutRun.owner);
      Block* const named = owner == nullptr ? nullptr : m_store.blockOf(*owner);
      if (named != nullptr &&
          (named->name.starts_with(kModelSpaceName) || named->name.starts_with(kPaperSpaceName))) {
        target = named;
      }
    }
    if (stub.section == Section::Entities && stub.role == Role::Entity) {
      target->entities.push_back(&stub);
    }
  }
}

void StoreLinker::linkOwners() {
  for (Block& block : m_store.m_blocks) {
    block.entities.shrink_to_fit();
    for (AcDbStub* entity : block.entities) {
      entity->owner = block.record;
    }
    for (AcDbStub* end : {block.begin, block.end}) {
      if (end != nullptr) {
        end->owner = block.record;
      }
    }
  }
  for (const StoreFindings::OwnerLink& ownerLink : m_found.ownerLinks) {
    ownerLink.stub->owner = m_store.find(ownerLink.owner);
  }
}

void StoreLinker::makeLayerZero() {
  if (m_found.hasLayerZero) {
    return;
  }
  Table* layers = m_store.table("LAYER");
  if (layers == nullptr) {
    layers = &m_store.m_tables.emplace_back();
    layers->name = "LAYER";
  }
  AcDbStub* const zero = m_store.appendPlaceholder("LAYER");
  zero->owner = layers->head;
  layers->records.push_back(zero);
}

}  // namespace quoin::dxf
