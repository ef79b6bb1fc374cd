#include "embedded/dwg/records/RecordCodec.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/DxfLayout.h"
#include "embedded/dwg/records/ExtendedData.h"
#include "embedded/dxf/Tag.h"

namespace quoin::dwg {
namespace {

constexpr std::uint16_t kFirstClassType = 500;
constexpr int kUnreadRest = -910;  // five keys downwards

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
  decodeFields(source, record, true);
}

void RecordCodec::decodeShared(const RecordSource& source, DecodedRecord& record) const {
  decodeFields(source, record, false);
}

void RecordCodec::decodeFields(const RecordSource& source, DecodedRecord& record,
                               bool isKindWanted) const {
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
  if (!isKindWanted) {
    record.kind = nullptr;
  }
  codeShared(coder, record, *m_facts);
  if (coder.hasFailed()) {
    return;
  }
  if (record.kind != nullptr) {
    record.kind->code(coder, *m_facts);
    record.isWhole = !coder.hasFailed() && coder.bitsLeft() == 0 && !coder.hasHandlesLeft();
  } else if (keepsRest()) {
    coder.rest(kUnreadRest);
    if (coder.hasFailed()) {
      record.values.removeAll(kUnreadRest);
    }
  }
  coder.padding();
}

bool RecordCodec::encode(std::uint64_t handle, const DecodedRecord& record,
                         RecordBytes& bytes) const {
  if (record.kind == nullptr ? record.values.first(kUnreadRest) == nullptr : !record.isWhole) {
    return false;
  }
  RecordCoder coder(m_facts->format.version, *m_facts->codePage, handle, record.values);
  codeHead(coder, record.type);
  codeShared(coder, record, *m_facts);
  if (record.kind != nullptr) {
    record.kind->code(coder, *m_facts);
  } else {
    coder.rest(kUnreadRest);
  }
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
  writeRelations(record, bytes);
  if (record.isEntity) {
    layoutOf(kEntityLayout).write(record.values, *m_facts, bytes);
  }
}

void RecordCodec::writeRelations(const DecodedRecord& record, std::string& bytes) const {
  const dxf::Format& format = m_facts->format;
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
}

void RecordCodec::writeTableHead(std::string_view name, std::size_t count,
                                 const DecodedRecord& record, std::string& bytes) const {
  const dxf::Format& format = m_facts->format;
  dxf::putAscii(bytes, 0, "TABLE", format);
  dxf::putAscii(bytes, 2, name, format);
  if (const std::uint64_t own = record.handleAt(kOwnHandle); own != 0) {
    dxf::putHandle(bytes, 5, own, format);
  }
  writeRelations(record, bytes);
  dxf::putAscii(bytes, 100, "AcDbSymbolTable", format);
  dxf::putInteger(bytes, 70, static_cast<std::int64_t>(count), format);
  if (name == "DIMSTYLE" && format.version >= dxf::Version::R2000) {
    dxf::putAscii(bytes, 100, "AcDbDimStyleTable", format);
    dxf::putInteger(bytes, 71, static_cast<std::int64_t>(record.values.count(kListedStyle)),
                    format);
    for (std::size_t i = 0; i < record.values.size(); ++i) {
      if (record.values[i].key == kListedStyle) {
        dxf::putHandle(bytes, 340, static_cast<std::uint64_t>(record.values[i].integer), format);
      }
    }
  }
  writeExtendedTags(record.values, *m_facts, bytes);
}

void RecordCodec::writeTags(const DecodedRecord& record, std::string& bytes) const {
  writeHead(record, bytes);
  if (record.kind != nullptr && record.isWhole) {
    layoutOf(record.kind->layout).write(record.values, *m_facts, bytes);
  }
  writeExtendedTags(record.values, *m_facts, bytes);
}

// --- from tags ------------------------------------------------------------------------------

namespace {

constexpr int kMarkerCode = 100;
constexpr int kGroupCode = 102;
constexpr std::string_view kBlockReferences = "{BLKREFS";  // a group that is a kind's own
constexpr int kFirstExtendedCode = 1000;

/// A record's tags, taken apart: what stands in front of the first marker, the fields, and
/// extended data.
struct TagParts {
  std::vector<dxf::TagView> fields;
  std::uint64_t owner = 0;
  std::uint64_t extensionDictionary = 0;
  std::vector<std::uint64_t> reactors;
  std::string_view extendedData;
};

TagParts partsOf(std::string_view tags, const dxf::Format& format) {
  TagParts parts;
  dxf::TagCursor cursor(tags, format);
  dxf::TagView tag;
  bool isInFront = true;
  bool isFree = false;  // the tags of an XRECORD may be any
  std::string_view group;
  while (cursor.next(tag)) {
    if (isFree && tag.code != kFirstExtendedCode + 1) {
      parts.fields.push_back(tag);
      continue;
    }
    if (tag.code >= kFirstExtendedCode) {
      parts.extendedData = tags.substr(tag.begin);
      break;
    }
    const bool wasReferences = group == kBlockReferences;
    if (tag.code == kGroupCode) {
      const std::string_view name = dxf::trimmedValue(tag);
      group = name.starts_with('{') ? name : std::string_view();
    }
    if (wasReferences || group == kBlockReferences) {
      parts.fields.push_back(tag);
    } else if (tag.code == kGroupCode) {
      continue;
    } else if (!group.empty()) {
      const std::uint64_t handle = dxf::handleOf(tag, format);
      if (group == "{ACAD_REACTORS") {
        parts.reactors.push_back(handle);
      } else if (group == "{ACAD_XDICTIONARY") {
        parts.extensionDictionary = handle;
      }
    } else if (tag.code == kMarkerCode || !isInFront) {
      isInFront = false;
      isFree = tag.code == kMarkerCode && dxf::trimmedValue(tag) == "AcDbXrecord";
      parts.fields.push_back(tag);
    } else if (tag.code == 330) {
      parts.owner = dxf::handleOf(tag, format);
    }
  }
  return parts;
}

/// Puts a handle in the place of another, with the file's own reference where it is the same.
void addHandle(RecordValues& values, const RecordValues& original, int key, std::uint64_t handle) {
  const Value* const former = original.first(key);
  if (former != nullptr && static_cast<std::uint64_t>(former->integer) == handle) {
    values.addFrom(original, *former);
  } else {
    values.addHandle(key, handle);
  }
}

/// Fields that DXF does not show stay what they were; those that it shows in a way of its own are
/// put in by the caller.
void keepHidden(RecordValues& values, const RecordValues& original, const DxfLayout& layout) {
  for (std::size_t i = 0; i < original.size(); ++i) {
    const Value& value = original[i];
    const bool isShown = value.key == kOwner || value.key == kReactor ||
                         value.key == kExtensionDictionary || value.key == kExtendedDataApp ||
                         value.key == kExtendedDataBytes ||
                         // Of an object within the record some fields are shown, under low keys.
                         (value.key < -kKeyStep && layout.shows(value.key));
    if (value.key < 0 && !isShown) {
      values.addFrom(original, value);
    }
  }
}

void putReactors(RecordValues& values, const RecordValues& original,
                 const std::vector<std::uint64_t>& reactors) {
  ValueCursor former(original);
  for (const std::uint64_t handle : reactors) {
    const Value* const value = former.take(kReactor);
    if (value != nullptr && static_cast<std::uint64_t>(value->integer) == handle) {
      values.addFrom(original, *value);
    } else {
      values.addHandle(kReactor, handle);
    }
  }
}

/// Whether every marker of the layout stands among the tags.
bool hasMarkers(const char* layout, const std::vector<dxf::TagView>& tags) {
  const auto& items = layoutOf(layout).items();
  return std::all_of(items.begin(), items.end(), [&](const LayoutItem& item) {
    return item.shape != LayoutItem::Shape::Marker ||
           std::any_of(tags.begin(), tags.end(), [&](const dxf::TagView& tag) {
             return tag.code == kMarkerCode && dxf::trimmedValue(tag) == item.text;
           });
  });
}

}  // namespace

bool RecordCodec::readTags(std::string_view tags, DecodedRecord& record,
                           std::string& problem) const {
  const TagParts parts = partsOf(tags, m_facts->format);
  const RecordValues original = std::move(record.values);
  record.values = RecordValues();
  RecordValues& values = record.values;
  keepHidden(values, original, layoutOf(record.kind->layout));
  addHandle(values, original, kOwner, parts.owner);
  if (parts.extensionDictionary != 0 || original.first(kExtensionDictionary) != nullptr) {
    addHandle(values, original, kExtensionDictionary, parts.extensionDictionary);
  }
  putReactors(values, original, parts.reactors);
  std::vector<bool> used(parts.fields.size(), false);
  if (record.isEntity &&
      !layoutOf(kEntityLayout).read(parts.fields, original, *m_facts, values, used, problem)) {
    return false;
  }
  if (!layoutOf(record.kind->layout)
           .read(parts.fields, original, *m_facts, values, used, problem)) {
    return false;
  }
  if (record.kind->settle != nullptr) {
    record.kind->settle(values);
  }
  const auto left = std::find(used.begin(), used.end(), false);
  if (left != used.end()) {
    const dxf::TagView& tag = parts.fields[static_cast<std::size_t>(left - used.begin())];
    problem = "group code " + std::to_string(tag.code) + " has no place in a DWG record";
    return false;
  }
  return readExtendedTags(parts.extendedData, original, *m_facts, values, problem);
}

bool RecordCodec::makeRecord(std::string_view name, std::uint64_t handle, std::string_view tags,
                             DecodedRecord& record, std::string& problem) const {
  record = DecodedRecord();
  record.name = name;
  record.isWhole = true;
  const TagParts parts = partsOf(tags, m_facts->format);
  for (const Kind* kind : kindsNamed(name)) {
    if (record.kind == nullptr && hasMarkers(kind->layout, parts.fields)) {
      record.kind = kind;
    }
  }
  if (record.kind == nullptr) {
    problem = "this program cannot make one in a DWG drawing";
    return false;
  }
  if (record.kind->isPartial) {
    problem = "this program does not know all that a new one needs";
    return false;
  }
  record.type = record.kind->type;
  record.isEntity = record.kind->family == Family::Entity;
  if (record.type == 0) {
    const auto found = std::find_if(m_classes->begin(), m_classes->end(), [&](const auto& entry) {
      return entry.second.dxfName == name;
    });
    if (found == m_classes->end()) {
      problem = "the drawing has no class of this name, and this program does not add one";
      return false;
    }
    record.type = found->first;
  }
  if (!readTags(tags, record, problem)) {
    return false;
  }
  record.values.addHandle(kOwnHandle, handle, absoluteReference(handle, 0));
  return true;
}

}  // namespace quoin::dwg
