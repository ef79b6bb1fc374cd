#include "embedded/dwg/records/RecordCodec.h"

#include <algorithm>

#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/DxfLayout.h"
#include "embedded/dwg/records/ExtendedData.h"
#include "embedded/dxf/Tag.h"

namespace quoin::dwg {
namespace {

constexpr std::uint16_t kFirstClassType = 500;

/// The layouts are texts; each is taken apart once.
const DxfLayout& layoutOf(const char* text) {
  thread_local std::unordered_map<const char*, DxfLayout> layouts;
  auto found = layouts.find(text);
  if (found == layouts.end()) {
    found = layouts.emplace(text, DxfLayout(text)).first;
  }
  return found->second;
}

bool isEntityType(std::uint16_t type) {
  constexpr std::uint16_t kProxyEntity = 498;
  return (type >= 1 && type <= 41) || (type >= 43 && type <= 47) || type == 74 || type == 77 ||
         type == 78 || type == kProxyEntity;
}

void codeShared(RecordCoder& coder, const DecodedRecord& record, const DrawingFacts& facts) {
  if (record.isEntity) {
    codeEntity(coder, facts);
  } else {
    codeObject(coder);
  }
}

}  // namespace

std::uint64_t DecodedRecord::handleAt(int key) const {
  const Value* const value = values.first(key);
  return value == nullptr ? 0 : static_cast<std::uint64_t>(value->integer);
}

void RecordCodec::decode(const RecordSource& source, DecodedRecord& record) const {
  record.isWhole = false;
  record.kind = nullptr;
  record.name.clear();
  RecordCoder coder(m_facts->format.version, *m_facts->codePage, source.handle, source.data,
                    source.handleBits, record.values);
  record.type = codeHead(coder, 0);
  if (record.type >= kFirstClassType) {
    const auto found = m_classes->find(record.type);
    record.isEntity = found != m_classes->end() && found->second.isEntity;
    record.name = found != m_classes->end() ? found->second.dxfName : std::string();
    record.kind = kindOfClass(record.name);
  } else {
    record.isEntity = isEntityType(record.type);
    record.kind = kindOfType(record.type);
    record.name = record.kind != nullptr ? record.kind->name : nameOfType(record.type);
  }
  codeShared(coder, record, *m_facts);
  if (record.kind == nullptr || coder.hasFailed()) {
    return;
  }
  record.kind->code(coder, *m_facts);
  record.isWhole = !coder.hasFailed() && coder.bitsLeft() == 0 && !coder.hasHandlesLeft();
  coder.padding();
}

bool RecordCodec::encode(std::uint64_t handle, const DecodedRecord& record,
                         RecordBytes& bytes) const {
  if (!record.isWhole || record.kind == nullptr) {
    return false;
  }
  RecordCoder coder(m_facts->format.version, *m_facts->codePage, handle, record.values);
  codeHead(coder, record.type);
  codeShared(coder, record, *m_facts);
  record.kind->code(coder, *m_facts);
  return coder.finish(bytes);
}

bool RecordCodec::isExact(const RecordSource& source, const DecodedRecord& record) const {
  RecordBytes bytes;
  return encode(source.handle, record, bytes) && bytes.data == source.data &&
         bytes.handleBits == source.handleBits;
}

// --- tags -----------------------------------------------------------------------------------

void RecordCodec::writeHead(const DecodedRecord& record, std::string& bytes) const {
  const dxf::Format& format = m_facts->format;
  constexpr int kDimStyleHandle = 105;
  dxf::putAscii(bytes, 0, record.name, format);
  dxf::putHandle(bytes, record.name == "DIMSTYLE" ? kDimStyleHandle : 5,
                 record.handleAt(kOwnHandle), format);
  if (const std::uint64_t dictionary = record.handleAt(kExtensionDictionary); dictionary != 0) {
    dxf::putAscii(bytes, 102, "{ACAD_XDICTIONARY", format);
    dxf::putHandle(bytes, 360, dictionary, format);
    dxf::putAscii(bytes, 102, "}", format);
  }
  if (record.values.first(kReactor) != nullptr) {
    dxf::putAscii(bytes, 102, "{ACAD_REACTORS", format);
    for (std::size_t i = 0; i < record.values.size(); ++i) {
      if (record.values[i].key == kReactor) {
        dxf::putHandle(bytes, 330, static_cast<std::uint64_t>(record.values[i].integer), format);
      }
    }
    dxf::putAscii(bytes, 102, "}", format);
  }
  if (format.hasOwners()) {
    dxf::putHandle(bytes, 330, record.handleAt(kOwner), format);
  }
  if (record.isEntity) {
    dxf::putAscii(bytes, 100, "AcDbEntity", format);
    const auto block = m_facts->blocks.find(record.handleAt(kOwner));
    if (block != m_facts->blocks.end() && block->second.isPaperSpace) {
      dxf::putInteger(bytes, 67, 1, format);
    }
    layoutOf(kEntityLayout).write(record.values, *m_facts, bytes);
  }
}

void RecordCodec::writeTags(const DecodedRecord& record, std::string& bytes) const {
  writeHead(record, bytes);
  if (record.kind != nullptr && record.isWhole) {
    layoutOf(record.kind->layout).write(record.values, *m_facts, bytes);
  }
  writeExtendedTags(record.values, *m_facts, bytes);
}

}  // namespace quoin::dwg
