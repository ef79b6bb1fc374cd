// Free objects into a drawing: handles, owners, names that must exist, and the parts behind
// their entity.
#include <algorithm>

#include "dbents.h"
#include "embedded/db/DimStyleRecord.h"
#include "embedded/db/Opening.h"
#include "embedded/db/Registry.h"
#include "embedded/db/Transfer.h"
#include "embedded/dxf/FileError.h"
#include "embedded/os/CaseFold.h"

namespace quoin::db {
namespace {

constexpr std::string_view kSequenceEnd = "SEQEND";

bool isPaperSpace(const dxf::Block& block) {
  constexpr std::wstring_view kPrefix = ACDB_PAPER_SPACE;
  return os::sameName(std::wstring_view(block.name).substr(0, kPrefix.size()), kPrefix);
}

/// Whether the record of a polyline or block reference says that parts follow.
bool takesParts(std::string_view kind) {
  return kind == "POLYLINE" || kind == "INSERT";
}

std::string_view kindOf(const TagList& tags) {
  return tags.size() > 0 ? dxf::trimmedValue(tags[0]) : std::string_view();
}

/// The subclass of the kind itself, whichever it is (there are several sorts of polylines).
Place ownSubclass(const TagList& tags) {
  Place own{"", order::kHeavyPolyline};
  for (std::size_t i = tags.head().last; i < tags.body().last; ++i) {
    if (tags[i].code == kMarkerCode) {
      own.marker = dxf::trimmedValue(tags[i]);
    }
  }
  return own;
}

/// The SEQEND record of an owner, on its layer.
std::string sequenceEnd(const DatabaseImpl& database, const TagList& owner,
                        const Placement& placement) {
  const ClassEntry* const entry = entryOf(AcDbSequenceEnd::desc());
  const std::string neutral = newRecordOf(*entry);
  const TagList tags(neutral, *neutralFormat());
  RecordEdit edit(tags);
  edit.setText(place::kEntity, code::kLayer, database.layerNameOf(owner));
  const std::string onLayer = edit.bytes();
  return transferred(TagList(onLayer, *neutralFormat()), database.format(), placement);
}

bool isBuiltInLinetype(std::wstring_view name) {
  return os::sameName(name, L"ByLayer") || os::sameName(name, L"ByBlock") ||
         os::sameName(name, L"Continuous");
}

struct NewRecord {
  std::string bytes;
  std::uint64_t handle;
};

Placement partPlacement(DatabaseImpl& database, std::uint64_t owner, Placement::Space space) {
  Placement placement;
  placement.handle = database.store.newHandle();
  placement.owner = owner;
  placement.space = space;
  return placement;
}

}  // namespace

std::string withPartsMark(const TagList& tags, bool hasParts) {
  if (!takesParts(kindOf(tags))) {
    return std::string(tags.bytes());
  }
  RecordEdit edit(tags);
  if (hasParts || kindOf(tags) == "POLYLINE") {
    edit.setInteger(ownSubclass(tags), code::kPartsFollow, 1);
  } else {
    edit.setInteger(ownSubclass(tags), code::kPartsFollow, 0, 0);
  }
  return edit.bytes();
}

void bind(AcDbObject& object, AcDbStub& stub) {
  ObjectImpl& impl = Access::of(object);
  impl.forgetDecoded();
  impl.ownBytes.clear();
  impl.ownFormat.reset();
  impl.parts.clear();
  impl.partOf = nullptr;
  impl.copiedFromOwner = nullptr;
  impl.stub = &stub;
  impl.database = &DatabaseImpl::of(stub);
  impl.state = OpenState::Write;
  impl.readers = 0;
  impl.isModified = true;
  stub.object = &object;
  ++impl.database->openCount;
}

void ensureNames(DatabaseImpl& database, const TagList& tags) {
  const auto ensure = [&](TableKind kind, const Place& place, int code) {
    if (const auto name = tags.text(code, place.in(tags))) {
      database.ensureRecord(kind, *name);
    }
  };
  const std::string_view kind = kindOf(tags);
  ensure(TableKind::Layer, place::kEntity, code::kLayer);
  const auto linetype = tags.text(code::kLinetype, place::kEntity.in(tags));
  if (kind != "MLINESTYLE" && linetype && !isBuiltInLinetype(*linetype)) {
    database.ensureRecord(TableKind::Linetype, *linetype);
  }
  constexpr int kTextStyle = 7;
  if (kind == "TEXT" || kind == "ATTRIB" || kind == "ATTDEF") {
    ensure(TableKind::TextStyle, place::kText, kTextStyle);
  } else if (kind == "MTEXT") {
    ensure(TableKind::TextStyle, place::kMText, kTextStyle);
  } else if (kind == "MLINESTYLE") {
    for (std::size_t i = tags.body().first; i < tags.body().last; ++i) {
      if (tags[i].code == code::kLinetype && !isBuiltInLinetype(tags.textAt(i))) {
        database.ensureRecord(TableKind::Linetype, tags.textAt(i));
      }
    }
  }
  for (std::size_t i = tags.xData().first; i < tags.xData().last; ++i) {
    if (tags[i].code == kAppNameCode) {
      database.ensureRecord(TableKind::RegApp, tags.textAt(i), true);
    }
  }
}

void appendFreeEntity(DatabaseImpl& database, dxf::Block& block, AcDbObject& entity) {
  ObjectImpl& impl = Access::of(entity);
  const TagList& tags = tagsOf(entity);
  const std::string_view kind = kindOf(tags);
  if (kind.empty()) {
    throw dxf::FileError(Acad::eIllegalEntityType, "the object has no record");
  }
  if (kind == "INSERT" &&
      tags.text(code::kName, place::kReference.in(tags)).value_or(L"").empty()) {
    throw dxf::FileError(Acad::eNullBlockName, "the reference names no block");
  }
  const bool hasParts = !impl.parts.empty();
  Placement placement;
  placement.handle = database.store.newHandle();
  placement.owner = block.record->handle;
  placement.space = impl.copiedFromOwner == block.record ? Placement::Space::Keep
                    : isPaperSpace(block)                ? Placement::Space::Paper
                                                         : Placement::Space::Model;
  // Every record is made before the first is appended, so that a failure leaves nothing.
  const std::string marked = withPartsMark(tags, hasParts);
  std::string bytes = transferred(TagList(marked, tags.format()), database.format(), placement);
  std::vector<NewRecord> parts;
  for (const auto& part : impl.parts) {
    const Placement at = partPlacement(database, placement.handle, placement.space);
    parts.push_back({transferred(tagsOf(*part), database.format(), at), at.handle});
  }
  if (hasParts || kind == "POLYLINE") {
    const Placement at = partPlacement(database, placement.handle, placement.space);
    parts.push_back({sequenceEnd(database, tags, at), at.handle});
  }
  ensureNames(database, tags);
  for (const auto& part : impl.parts) {
    ensureNames(database, tagsOf(*part));
  }
  AcDbStub* const stub = database.store.appendEntity(block, std::move(bytes), placement.handle);
  for (NewRecord& part : parts) {
    database.store.appendSubEntity(*stub, std::move(part.bytes), part.handle);
  }
  ++database.changes;
  bind(entity, *stub);
}

void appendFreePart(AcDbStub& owner, AcDbObject& part) {
  DatabaseImpl& database = DatabaseImpl::of(owner);
  const TagList ownerTags = database.tagsOf(owner);
  const bool isPaper = ownerTags.integer(code::kPaperSpace, place::kEntity.in(ownerTags), 0) != 0;
  const Placement::Space space = isPaper ? Placement::Space::Paper : Placement::Space::Model;
  const Placement placement = partPlacement(database, owner.handle, space);
  std::string bytes = transferred(tagsOf(part), database.format(), placement);
  const std::vector<AcDbStub*> siblings = database.store.subEntities(owner);
  const bool hasEnd = std::any_of(siblings.begin(), siblings.end(), [&](const AcDbStub* sibling) {
    return database.kindOf(*sibling) == kSequenceEnd && !sibling->erased;
  });
  ensureNames(database, tagsOf(part));
  if (!hasEnd) {
    const Placement at = partPlacement(database, owner.handle, space);
    database.store.appendSubEntity(owner, sequenceEnd(database, ownerTags, at), at.handle);
  }
  AcDbStub* const stub = database.store.appendSubEntity(owner, std::move(bytes), placement.handle);
  std::string marked = withPartsMark(ownerTags, true);
  if (marked != ownerTags.bytes()) {
    database.replace(owner, std::move(marked));
  }
  ++database.changes;
  bind(part, *stub);
}

void appendFreeRecord(DatabaseImpl& database, TableKind kind, AcDbObject& record) {
  dxf::Table& table = database.store.ensureTable(fileName(kind));
  const TagList& tags = tagsOf(record);
  Placement placement;
  placement.handle = database.store.newHandle();
  placement.owner = table.head->handle;
  std::string bytes = kind == TableKind::DimStyle ? placedDimStyle(tags, database, placement)
                                                  : transferred(tags, database.format(), placement);
  const std::wstring name =
      tags.text(code::kName, place::kSymbol.in(tags)).value_or(std::wstring());
  if (kind == TableKind::Layer && database.format().version >= dxf::Version::R2000) {
    // Layers share the plot style of layer "0" until somebody gives them one.
    const TagList made(bytes, database.format());
    const AcDbStub* const zero = database.layer(L"0");
    if (zero && made.find(code::kPlotStyle, place::kLayer.in(made)) == TagList::kNone) {
      const TagList zeroTags = database.tagsOf(*zero);
      RecordEdit edit(made);
      edit.setHandle(place::kLayer, code::kPlotStyle,
                     zeroTags.handle(code::kPlotStyle, place::kLayer.in(zeroTags)));
      bytes = edit.bytes();
    }
  }
  AcDbStub* const stub =
      database.store.appendTableRecord(table, std::move(bytes), placement.handle);
  database.noteName(kind, name, *stub);
  ++database.changes;
  bind(record, *stub);
}

void unbind(AcDbObject& object) {
  ObjectImpl& impl = Access::of(object);
  AcDbStub* const stub = impl.stub;
  DatabaseImpl* const database = impl.database;
  std::vector<std::unique_ptr<AcDbObject>> parts = copiesOfParts(*stub);
  std::string bytes = headless(tagsOf(object));
  auto format = std::make_shared<const dxf::Format>(database->format());
  impl.forgetDecoded();
  impl.ownBytes = std::move(bytes);
  impl.ownFormat = std::move(format);
  impl.parts = std::move(parts);
  impl.copiedFromOwner = stub->owner;
  stub->object = nullptr;
  --database->openCount;
  impl.stub = nullptr;
  impl.database = nullptr;
  impl.state = OpenState::Free;
}

std::unique_ptr<AcDbObject> copyOf(const AcDbStub& stub) {
  DatabaseImpl& database = DatabaseImpl::of(stub);
  std::unique_ptr<AcDbObject> copy = makeView(stub);
  ObjectImpl& impl = Access::of(*copy);
  if (stub.role == dxf::Role::TableRecord && database.kindOf(stub) == "DIMSTYLE") {
    impl.ownBytes = freeDimStyle(database.tagsOf(stub), database);
    impl.ownFormat = neutralFormat();
    impl.namesFrom = database.token;
  } else {
    impl.ownBytes = headless(database.tagsOf(stub));
    impl.ownFormat = std::make_shared<const dxf::Format>(database.format());
  }
  impl.copiedFromOwner = stub.owner;
  impl.parts = copiesOfParts(stub);
  return copy;
}

std::vector<std::unique_ptr<AcDbObject>> copiesOfParts(const AcDbStub& owner) {
  std::vector<std::unique_ptr<AcDbObject>> copies;
  if (owner.role != dxf::Role::Entity) {
    return copies;
  }
  const DatabaseImpl& database = DatabaseImpl::of(owner);
  for (const AcDbStub* const part : database.store.subEntities(owner)) {
    if (!part->erased && database.kindOf(*part) != kSequenceEnd) {
      copies.push_back(copyOf(*part));
    }
  }
  return copies;
}

}  // namespace quoin::db
