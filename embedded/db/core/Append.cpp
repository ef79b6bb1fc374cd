#include "embedded/db/core/Append.h"

#include <algorithm>

#include "dbents.h"
#include "embedded/db/core/DimStyleRecord.h"
#include "embedded/db/core/ObjectCopy.h"
#include "embedded/db/core/RecordKinds.h"
#include "embedded/dxf/FileError.h"
#include "embedded/os/CaseFold.h"

namespace quoin::db {
namespace {

bool isPaperSpace(const dxf::Block& block) {
  constexpr std::wstring_view kPrefix = ACDB_PAPER_SPACE;
  return os::sameName(std::wstring_view(block.name).substr(0, kPrefix.size()), kPrefix);
}

std::string_view kindName(const TagList& tags) {
  return tags.size() > 0 ? dxf::trimmedValue(tags[0]) : std::string_view();
}

Parts partsOf(const TagList& tags) {
  const RecordKind* const kind = kindOf(tags);
  return kind ? kind->parts : Parts::None;
}

/// The subclass of the kind itself, whichever it is (there are several sorts of polylines).
SubclassLayout ownSubclass(const TagList& tags) {
  SubclassLayout own{"", order::kHeavyPolyline};
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
  const std::string neutral = newRecordOf(*classOf(AcDbSequenceEnd::desc()));
  const TagList tags(neutral, *neutralFormat());
  RecordEdit edit(tags);
  edit.setText(layout::kEntity, code::kLayer, database.layerNameOf(owner));
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
  const Parts parts = partsOf(tags);
  if (parts == Parts::None) {
    return std::string(tags.bytes());
  }
  RecordEdit edit(tags);
  if (hasParts || parts == Parts::Always) {
    edit.setInteger(ownSubclass(tags), code::kPartsFollow, 1);
  } else {
    edit.setInteger(ownSubclass(tags), code::kPartsFollow, 0, 0);
  }
  return edit.bytes();
}

void ensureNames(DatabaseImpl& database, const TagList& tags) {
  const auto ensure = [&](TableKind kind, const SubclassLayout& layout, int code) {
    if (const auto name = tags.text(code, layout.in(tags))) {
      database.ensureRecord(kind, *name);
    }
  };
  const std::string_view kind = kindName(tags);
  ensure(TableKind::Layer, layout::kEntity, code::kLayer);
  const auto linetype = tags.text(code::kLinetype, layout::kEntity.in(tags));
  if (kind != "MLINESTYLE" && linetype && !isBuiltInLinetype(*linetype)) {
    database.ensureRecord(TableKind::Linetype, *linetype);
  }
  constexpr int kTextStyle = 7;
  const RecordKind* const row = kindOf(tags);
  if (row && row->textStyle) {
    ensure(TableKind::TextStyle, *row->textStyle, kTextStyle);
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
  const std::string_view kind = kindName(tags);
  if (kind.empty()) {
    throw dxf::FileError(Acad::eIllegalEntityType, "the object has no record");
  }
  if (kind == "INSERT" &&
      tags.text(code::kName, layout::kReference.in(tags)).value_or(L"").empty()) {
    throw dxf::FileError(Acad::eNullBlockName, "the reference names no block");
  }
  const std::vector<std::unique_ptr<AcDbObject>>& ownParts = impl.own().parts;
  const bool hasParts = !ownParts.empty();
  Placement placement;
  placement.handle = database.store.newHandle();
  placement.owner = block.record->handle;
  placement.space = impl.own().copiedFromOwner == block.record ? Placement::Space::Keep
                    : isPaperSpace(block)                      ? Placement::Space::Paper
                                                               : Placement::Space::Model;
  // Every record is made before the first is appended, so that a failure leaves nothing.
  const std::string marked = withPartsMark(tags, hasParts);
  std::string bytes = transferred(TagList(marked, tags.format()), database.format(), placement);
  std::vector<NewRecord> parts;
  for (const auto& part : ownParts) {
    const Placement at = partPlacement(database, placement.handle, placement.space);
    parts.push_back({transferred(tagsOf(*part), database.format(), at), at.handle});
  }
  if (hasParts || partsOf(tags) == Parts::Always) {
    const Placement at = partPlacement(database, placement.handle, placement.space);
    parts.push_back({sequenceEnd(database, tags, at), at.handle});
  }
  ensureNames(database, tags);
  for (const auto& part : ownParts) {
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
  const bool isPaper = ownerTags.integer(code::kPaperSpace, layout::kEntity.in(ownerTags), 0) != 0;
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

Acad::ErrorStatus appendPart(AcDbObject& owner, AcDbObjectId& id, AcDbObject* part) {
  id.setNull();
  const Acad::ErrorStatus status = checkWritable(owner);
  if (status != Acad::eOk) {
    return status;
  }
  if (!part) {
    return Acad::eNullObjectPointer;
  }
  ObjectImpl& impl = Access::of(owner);
  ObjectImpl& partImpl = Access::of(*part);
  if (partImpl.state != OpenState::Free || partImpl.own().partOf) {
    return Acad::eAlreadyInDb;
  }
  try {
    if (impl.stub) {
      appendFreePart(*impl.stub, *part);
      id = AcDbObjectId(partImpl.stub);
    } else {
      AcDbObject*& partOf = partImpl.ownToChange().partOf;
      impl.ownToChange().parts.emplace_back(part);
      partOf = &owner;
    }
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
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
      tags.text(code::kName, layout::kSymbol.in(tags)).value_or(std::wstring());
  if (kind == TableKind::Layer && database.format().version >= dxf::Version::R2000) {
    // Layers share the plot style of layer "0" until somebody gives them one.
    const TagList made(bytes, database.format());
    const AcDbStub* const zero = database.layer(L"0");
    if (zero && made.find(code::kPlotStyle, layout::kLayer.in(made)) == TagList::kNone) {
      const TagList zeroTags = database.tagsOf(*zero);
      RecordEdit edit(made);
      edit.setHandle(layout::kLayer, code::kPlotStyle,
                     zeroTags.handle(code::kPlotStyle, layout::kLayer.in(zeroTags)));
      bytes = edit.bytes();
    }
  }
  AcDbStub* const stub =
      database.store.appendTableRecord(table, std::move(bytes), placement.handle);
  database.noteName(kind, name, *stub);
  ++database.changes;
  bind(record, *stub);
}

}  // namespace quoin::db
