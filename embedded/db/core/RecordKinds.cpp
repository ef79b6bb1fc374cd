#include "embedded/db/core/RecordKinds.h"

#include <algorithm>
#include <array>
#include <unordered_map>

#include "embedded/dxf/SharedTags.h"

namespace quoin::db {
namespace {

const RecordKind* named(std::span<const RecordKind> kinds, std::string_view name) {
  const auto found = std::find_if(kinds.begin(), kinds.end(),
                                  [&](const RecordKind& kind) { return kind.name == name; });
  return found == kinds.end() ? nullptr : &*found;
}

const ClassRow* firstClass(const RecordKind* kind) {
  return kind && !kind->classes.empty() ? &kind->classes.front() : nullptr;
}

using ClassMap = std::unordered_map<const AcRxClass*, const ClassRow*>;

void addClasses(ClassMap& map, std::span<const RecordKind> kinds) {
  for (const RecordKind& kind : kinds) {
    for (const ClassRow& row : kind.classes) {
      map.emplace(row.descriptor(), &row);
    }
  }
}

}  // namespace

const RecordKind* entityKind(std::string_view name) {
  static const std::unordered_map<std::string_view, const RecordKind*> byName = [] {
    std::unordered_map<std::string_view, const RecordKind*> map;
    for (const std::span<const RecordKind> family : entityFamilies()) {
      for (const RecordKind& kind : family) {
        map.emplace(kind.name, &kind);
      }
    }
    return map;
  }();
  const auto found = byName.find(name);
  return found == byName.end() ? nullptr : found->second;
}

const RecordKind* kindOf(const TagList& tags) {
  if (tags.size() == 0) {
    return nullptr;
  }
  const std::string_view name = dxf::trimmedValue(tags[0]);
  if (const RecordKind* const entity = entityKind(name)) {
    return entity;
  }
  const RecordKind* const record = named(tableRecordKinds(), name);
  return record ? record : named(objectKinds(), name);
}

const ClassRow* classOf(const AcRxClass* descriptor) {
  static const ClassMap byClass = [] {
    ClassMap map;
    for (const std::span<const RecordKind> family : entityFamilies()) {
      addClasses(map, family);
    }
    addClasses(map, tableRecordKinds());
    addClasses(map, objectKinds());
    return map;
  }();
  const auto found = byClass.find(descriptor);
  return found == byClass.end() ? nullptr : found->second;
}

const ClassRow* classOf(const RecordKind& kind, const TagList& tags) {
  return kind.classOf ? kind.classOf(tags, nullptr) : firstClass(&kind);
}

const ClassRow* classOf(const AcDbStub& stub) {
  const DatabaseImpl& database = DatabaseImpl::of(stub);
  switch (stub.role) {
    case dxf::Role::Table: {
      TableKind kind = TableKind::Block;
      return database.isTable(stub, kind) ? &tableClasses()[static_cast<std::size_t>(kind)]
                                          : nullptr;
    }
    case dxf::Role::TableRecord:
      return firstClass(named(tableRecordKinds(), database.kindOf(stub)));
    case dxf::Role::Entity:
    case dxf::Role::SubEntity: {
      const RecordKind* const kind = entityKind(database.kindOf(stub));
      return kind && kind->classOf ? kind->classOf(database.tagsOf(stub), &stub) : firstClass(kind);
    }
    case dxf::Role::Object:
      return firstClass(named(objectKinds(), database.kindOf(stub)));
    case dxf::Role::BlockBegin:
    case dxf::Role::BlockEnd:
    case dxf::Role::Other:
      break;
  }
  return nullptr;
}

const ClassRow& tableRecordClass(TableKind kind) {
  return tableRecordKinds()[static_cast<std::size_t>(kind)].classes.front();
}

std::string newRecordOf(const ClassRow& row) {
  std::string record;
  record.reserve(row.newRecord.size() + 1);
  for (const char c : row.newRecord) {
    if (c != '~') {
      record += c == ' ' ? '\n' : c;
    }
  }
  record += '\n';
  return record;
}

std::unique_ptr<AcDbObject> makeView(const AcDbStub& stub) {
  if (const ClassRow* const row = classOf(stub)) {
    return std::unique_ptr<AcDbObject>(row->make());
  }
  const bool isEntity = DatabaseImpl::of(stub).isEntity(stub);
  return std::unique_ptr<AcDbObject>(isEntity ? Access::newPlainEntity()
                                              : Access::newPlainObject());
}

}  // namespace quoin::db

namespace quoin::dxf {

bool isSharedTag(std::string_view kind, int code) {
  /// Handle, linetype, layer, linetype scale, visibility, colour, paper space, shadow, owner,
  /// material, visual style, line weight, plot style, layout, true colour and its name,
  /// transparency.
  constexpr std::array kShared{5,   6,   8,   48,  60,  62,  67,  284, 330,
                               347, 348, 370, 390, 410, 420, 430, 440};
  if (std::find(kShared.begin(), kShared.end(), code) == kShared.end()) {
    return false;
  }
  const db::RecordKind* const row = db::entityKind(kind);
  return row && row->ownCodes &&
         std::find(row->ownCodes->begin(), row->ownCodes->end(), code) == row->ownCodes->end();
}

}  // namespace quoin::dxf
