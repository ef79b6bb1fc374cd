#include "embedded/db/core/DictionaryRecords.h"

#include <algorithm>
#include <array>

#include "embedded/db/core/Append.h"
#include "embedded/db/core/ObjectCopy.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/Utf8.h"

namespace quoin::db {
namespace {

constexpr std::string_view kMarker = "AcDbDictionary";
constexpr int kEntryName = 3;
constexpr int kSoftEntry = 350;
constexpr int kHardEntry = 360;
constexpr int kIsHardOwner = 280;
constexpr int kCloningRule = 281;

bool isEntryHandle(int code) {
  return code == kSoftEntry || code == kHardEntry || code == 340 || code == 330;
}

bool isDictionary(const DatabaseImpl& database, const AcDbStub& stub) {
  const std::string_view kind = database.kindOf(stub);
  return stub.role == dxf::Role::Object && (kind == "DICTIONARY" || kind == "ACDBDICTIONARYWDFLT");
}

/// The group that tells other programs which dictionary wants to hear of an object.
std::string reactorGroup(const dxf::Format& format, std::uint64_t dictionary) {
  std::string group;
  if (format.hasOwners()) {
    dxf::putAscii(group, kGroupCode, "{ACAD_REACTORS", format);
    dxf::putHandle(group, code::kOwner, dictionary, format);
    dxf::putAscii(group, kGroupCode, "}", format);
  }
  return group;
}

/// Whether two live entries would have one name.
bool hasLiveEntry(const DatabaseImpl& database, const AcDbStub& dictionary, std::wstring_view name,
                  const AcDbStub* except) {
  AcDbStub* const found = database.dictionaryEntry(dictionary, name);
  return found && found != except;
}

}  // namespace

// --- entries --------------------------------------------------------------------------------

std::vector<DictionaryEntry> entriesOf(const DatabaseImpl& database, const TagList& dictionary) {
  std::vector<DictionaryEntry> entries;
  const TagRange range = dictionary.subclass(kMarker);
  for (std::size_t i = range.first; i + 1 < range.last; ++i) {
    if (dictionary[i].code == kEntryName && isEntryHandle(dictionary[i + 1].code)) {
      entries.push_back({i, dictionary.textAt(i), database.byHandle(dictionary.handleAt(i + 1))});
    }
  }
  return entries;
}

void addEntry(RecordEdit& dictionary, std::wstring_view name, std::uint64_t handle) {
  const TagList& tags = dictionary.tags();
  const TagRange range = tags.subclass(kMarker);
  const bool isHard = tags.integer(kIsHardOwner, range, 0) != 0;
  std::string bytes;
  dxf::putText(bytes, kEntryName, name, tags.format());
  dxf::putHandle(bytes, isHard ? kHardEntry : kSoftEntry, handle, tags.format());
  dictionary.insertBefore(range.last, std::move(bytes));
}

void removeEntry(RecordEdit& dictionary, const DictionaryEntry& entry) {
  dictionary.replace({entry.at, entry.at + 2}, {});
}

AcDbStub* DatabaseImpl::rootDictionary() const {
  for (AcDbStub* const stub : store.objects()) {
    if (!stub->erased && store.kindName(*stub) == "DICTIONARY") {
      return stub;
    }
  }
  return nullptr;
}

AcDbStub* DatabaseImpl::dictionaryEntry(const AcDbStub& dictionary, std::wstring_view name) const {
  for (const DictionaryEntry& entry : entriesOf(*this, tagsOf(dictionary))) {
    if (os::sameName(entry.name, name)) {
      return entry.object && !entry.object->erased ? entry.object : nullptr;
    }
  }
  return nullptr;
}

std::wstring DatabaseImpl::dictionaryName(const AcDbStub& dictionary, const AcDbStub& entry) const {
  for (DictionaryEntry& candidate : entriesOf(*this, tagsOf(dictionary))) {
    if (candidate.object == &entry) {
      return std::move(candidate.name);
    }
  }
  return {};
}

AcDbStub* DatabaseImpl::material(std::wstring_view name) const {
  const AcDbStub* const materials = namedDictionary(*this, dictionaries::kMaterials);
  return materials ? dictionaryEntry(*materials, name) : nullptr;
}

// --- the named dictionaries -----------------------------------------------------------------

AcDbStub* namedDictionary(const DatabaseImpl& database, std::wstring_view name) {
  AcDbStub* const root = database.rootDictionary();
  return !root || name.empty() ? root : database.dictionaryEntry(*root, name);
}

AcDbStub* appendDictionary(DatabaseImpl& database, AcDbStub* owner, bool isHardOwner) {
  const dxf::Format& format = database.format();
  std::string bytes;
  const std::uint64_t handle = database.store.newHandle();
  dxf::putAscii(bytes, 0, "DICTIONARY", format);
  dxf::putHandle(bytes, code::kHandle, handle, format);
  if (owner && isDictionary(database, *owner)) {
    bytes += reactorGroup(format, owner->handle);
  }
  if (format.hasOwners()) {
    dxf::putHandle(bytes, code::kOwner, owner ? owner->handle : 0, format);
  }
  dxf::putAscii(bytes, kMarkerCode, kMarker, format);
  if (format.version >= dxf::Version::R2000) {
    if (isHardOwner) {
      dxf::putInteger(bytes, kIsHardOwner, 1, format);
    }
    dxf::putInteger(bytes, kCloningRule, 1, format);
  }
  AcDbStub* const stub = database.store.appendObject(std::move(bytes), handle);
  stub->owner = owner;
  ++database.changes;
  return stub;
}

AcDbStub* ensureNamedDictionary(DatabaseImpl& database, std::wstring_view name) {
  if (!database.format().hasSubclassMarkers()) {
    return nullptr;
  }
  AcDbStub* root = database.rootDictionary();
  if (!root) {
    root = appendDictionary(database, nullptr, false);
  }
  if (name.empty()) {
    return root;
  }
  AcDbStub* found = database.dictionaryEntry(*root, name);
  if (!found) {
    found = appendDictionary(database, root, false);
    changeRecord(*root, [&](RecordEdit& edit) { addEntry(edit, name, found->handle); });
  }
  return found;
}

// --- objects --------------------------------------------------------------------------------

void appendFreeObject(DatabaseImpl& database, AcDbStub& dictionary, AcDbObject& object) {
  const TagList& tags = tagsOf(object);
  Placement placement;
  placement.handle = database.store.newHandle();
  placement.owner = dictionary.handle;
  placement.groups = reactorGroup(database.format(), dictionary.handle);
  std::string bytes = transferred(tags, database.format(), placement);
  ensureNames(database, tags);
  AcDbStub* const stub = database.store.appendObject(std::move(bytes), placement.handle);
  stub->owner = &dictionary;
  ++database.changes;
  bind(object, *stub);
}

bool isDeclared(const DatabaseImpl& database, std::string_view kind) {
  constexpr std::array<std::string_view, 4> kOwnKinds{"DICTIONARY", "MLINESTYLE", "GROUP",
                                                      "XRECORD"};
  if (std::find(kOwnKinds.begin(), kOwnKinds.end(), kind) != kOwnKinds.end()) {
    return true;
  }
  constexpr int kRecordName = 1;
  const auto& stubs = database.store.stubs();
  return std::any_of(stubs.begin(), stubs.end(), [&](const AcDbStub& stub) {
    if (stub.section != dxf::Section::Classes || database.store.kindName(stub) != "CLASS") {
      return false;
    }
    const TagList tags = database.tagsOf(stub);
    const std::size_t at = tags.find(kRecordName, tags.body());
    return at != TagList::kNone && dxf::trimmedValue(tags[at]) == kind;
  });
}

bool isPointedTo(const DatabaseImpl& database, const AcDbStub& object) {
  const auto isHardPointer = [](int code) {
    return (code >= 340 && code <= 349) || (code >= 390 && code <= 399);
  };
  const auto& stubs = database.store.stubs();
  return std::any_of(stubs.begin(), stubs.end(), [&](const AcDbStub& stub) {
    if (!stub.data || &stub == &object || database.isErased(stub)) {
      return false;
    }
    const TagList tags = database.tagsOf(stub);
    for (std::size_t i = 0; i < tags.size(); ++i) {
      if (isHardPointer(tags[i].code) && tags.handleAt(i) == object.handle) {
        return true;
      }
    }
    return false;
  });
}

Acad::ErrorStatus eraseEntry(DatabaseImpl& database, AcDbStub& object, bool erasing) {
  AcDbStub* const owner = object.owner;
  if (!owner || !isDictionary(database, *owner)) {
    return Acad::eOk;
  }
  if (erasing) {
    const TagList tags = database.tagsOf(*owner);
    for (DictionaryEntry& entry : entriesOf(database, tags)) {
      if (entry.object == &object) {
        RecordEdit edit(tags);
        removeEntry(edit, entry);
        database.replace(*owner, edit.bytes());
        database.erasedEntries[&object] = std::move(entry.name);
        break;
      }
    }
    return Acad::eOk;
  }
  const auto former = database.erasedEntries.find(&object);
  if (former == database.erasedEntries.end()) {
    return Acad::eOk;
  }
  if (hasLiveEntry(database, *owner, former->second, &object)) {
    return Acad::eDuplicateKey;
  }
  changeRecord(*owner, [&](RecordEdit& edit) { addEntry(edit, former->second, object.handle); });
  database.erasedEntries.erase(former);
  return Acad::eOk;
}

}  // namespace quoin::db
