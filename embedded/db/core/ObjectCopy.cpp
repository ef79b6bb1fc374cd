// AcDbObject: clones, taking over another object's record, handing a place over.
#include "embedded/db/core/ObjectCopy.h"

#include <algorithm>

#include "dbsymtb.h"
#include "embedded/db/core/Append.h"
#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/db/core/DimStyleRecord.h"
#include "embedded/db/core/Opening.h"
#include "embedded/db/core/RecordKinds.h"
#include "embedded/dxf/FileError.h"

using namespace quoin::db;
namespace dxf = quoin::dxf;

namespace {

std::unique_ptr<AcDbObject> copyOfFree(const AcDbObject& object) {
  // Reading the tags may make the record.
  const std::string_view bytes = tagsOf(object).bytes();
  const ObjectImpl::Own& own = Access::of(object).own();
  const ClassRow* const row = classOf(object.isA());
  const bool isEntity = object.isKindOf(AcDbEntity::desc());
  std::unique_ptr<AcDbObject> copy(row        ? row->make()
                                   : isEntity ? Access::newPlainEntity()
                                              : Access::newPlainObject());
  ObjectImpl::Own& made = Access::of(*copy).ownToChange();
  made.bytes = std::string(bytes);
  made.format = own.format;
  made.copiedFromOwner = own.copiedFromOwner;
  made.namesFrom = own.namesFrom;
  for (const auto& part : own.parts) {
    made.parts.push_back(copyOfFree(*part));
    Access::of(*made.parts.back()).ownToChange().partOf = copy.get();
  }
  return copy;
}

/// The tags of the application groups of a record, as they stand.
std::string groupsOf(const TagList& tags) {
  std::string groups;
  bool isInside = false;
  for (std::size_t i = tags.head().first; i < tags.head().last; ++i) {
    const bool isBrace = tags[i].code == kGroupCode;
    if (isBrace || isInside) {
      groups += tags.bytes().substr(tags[i].begin, tags[i].end - tags[i].begin);
    }
    isInside = isBrace ? dxf::trimmedValue(tags[i]).starts_with('{') : isInside;
  }
  return groups;
}

/// The extended data of `from` whose applications `to` has none of, as bytes of the format
/// that both have.
std::string missingXData(const TagList& from, const TagList& to) {
  std::string bytes;
  for (std::size_t i = from.xData().first; i < from.xData().last; ++i) {
    if (from[i].code != kAppNameCode) {
      continue;
    }
    const std::wstring app = from.textAt(i);
    if (to.xData(app).isEmpty()) {
      const TagRange range = from.xData(app);
      const std::size_t begin = from[range.first].begin;
      bytes += from.bytes().substr(begin, from[range.last - 1].end - begin);
    }
  }
  return bytes;
}

/// Makes the parts of a resident owner those of a free object.
void replaceParts(AcDbStub& owner, const std::vector<std::unique_ptr<AcDbObject>>& parts) {
  DatabaseImpl& database = DatabaseImpl::of(owner);
  for (AcDbStub* const former : database.store.subEntities(owner)) {
    database.store.setErased(*former, true);
  }
  for (const auto& part : parts) {
    appendFreePart(owner, *part);
    closeView(*part);
  }
}

}  // namespace

Placement quoin::db::placementOf(const AcDbObject& object) {
  const ObjectImpl& impl = Access::of(object);
  const TagList& tags = tagsOf(object);
  Placement placement;
  placement.groups = groupsOf(tags);
  placement.handle = tags.handleTag() == TagList::kNone ? 0 : tags.handleAt(tags.handleTag());
  placement.owner = tags.ownerTag() == TagList::kNone ? 0 : tags.handleAt(tags.ownerTag());
  if (impl.stub && impl.database->isEntity(*impl.stub)) {
    const bool isPaper = tags.integer(code::kPaperSpace, layout::kEntity.in(tags), 0) != 0;
    placement.space = isPaper ? Placement::Space::Paper : Placement::Space::Model;
  }
  return placement;
}

AcRxObject* AcDbObject::clone() const {
  try {
    switch (m_impl->state) {
      case OpenState::Free:
        return copyOfFree(*this).release();
      case OpenState::Read:
      case OpenState::Write: {
        std::unique_ptr<AcDbObject> copy = copyOf(*m_impl->stub);
        for (const auto& part : Access::of(*copy).own().parts) {
          Access::of(*part).ownToChange().partOf = copy.get();
        }
        return copy.release();
      }
      case OpenState::Closed:
        tagsOf(*this);  // counts the misuse
        break;
    }
  } catch (...) {
    statusOfException();
  }
  return nullptr;
}

Acad::ErrorStatus AcDbObject::copyFrom(const AcRxObject* other) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  const AcDbObject* const source = AcDbObject::cast(other);
  if (!source) {
    return Acad::eNullObjectPointer;
  }
  if (source->isA() != isA()) {
    return Acad::eNotThatKindOfClass;
  }
  try {
    const TagList& target = tagsOf(*this);
    const std::string made = transferred(tagsOf(*source), target.format(), placementOf(*this));
    const TagList madeTags(made, target.format());
    RecordEdit edit(madeTags);
    if (const auto name = target.text(code::kName, layout::kSymbol.in(target));
        name && madeTags.hasMarkers() == target.hasMarkers() &&
        isKindOf(AcDbSymbolTableRecord::desc())) {
      edit.setText(layout::kSymbol, code::kName, *name);
    }
    setBytes(*this, edit.bytes());
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbObject::handOverTo(AcDbObject* newObject, bool keepXData, bool keepExtDict) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  if (!newObject) {
    return Acad::eNullObjectPointer;
  }
  AcDbStub* const stub = m_impl->stub;
  if (!stub) {
    return Acad::eNotInDatabase;
  }
  if (Access::of(*newObject).state != OpenState::Free) {
    return Access::of(*newObject).stub ? Acad::eAlreadyInDb : Acad::eNotOpenForWrite;
  }
  const bool areEntities =
      stub->role == dxf::Role::Entity && newObject->isKindOf(AcDbEntity::desc());
  if (!areEntities || Access::of(*newObject).own().partOf) {
    return Acad::eNotApplicable;
  }
  try {
    DatabaseImpl& database = *m_impl->database;
    Placement placement = placementOf(*this);
    if (!keepExtDict) {
      placement.groups.clear();
    }
    std::string made = transferred(tagsOf(*newObject), database.format(), placement);
    if (keepXData) {
      made += missingXData(tagsOf(*this), TagList(made, database.format()));
    }
    ObjectImpl& taken = Access::of(*newObject);
    std::vector<std::unique_ptr<AcDbObject>> parts = std::move(taken.ownToChange().parts);
    ensureNames(database, tagsOf(*newObject));
    const TagList madeTags(made, database.format());
    made = withPartsMark(madeTags, !parts.empty());
    unbind(*this);
    database.replace(*stub, std::move(made));
    bind(*newObject, *stub);
    replaceParts(*stub, parts);
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

namespace quoin::db {

void bind(AcDbObject& object, AcDbStub& stub) {
  ObjectImpl& impl = Access::of(object);
  impl.forgetDecoded();
  if (impl.hasOwn()) {
    ObjectImpl::Own& own = impl.ownToChange();
    own.bytes.clear();
    own.format.reset();
    own.parts.clear();
    own.partOf = nullptr;
    own.copiedFromOwner = nullptr;
  }
  impl.stub = &stub;
  impl.database = &DatabaseImpl::of(stub);
  impl.state = OpenState::Write;
  impl.readers = 0;
  impl.isModified = true;
  stub.object = &object;
  ++impl.database->openCount;
}

void unbind(AcDbObject& object) {
  ObjectImpl& impl = Access::of(object);
  AcDbStub* const stub = impl.stub;
  DatabaseImpl* const database = impl.database;
  std::vector<std::unique_ptr<AcDbObject>> parts = copiesOfParts(*stub);
  std::string bytes = headless(tagsOf(object));
  auto format = std::make_shared<const dxf::Format>(database->format());
  ObjectImpl::Own& own = impl.ownToChange();
  impl.forgetDecoded();
  own.bytes = std::move(bytes);
  own.format = std::move(format);
  own.parts = std::move(parts);
  own.copiedFromOwner = stub->owner;
  stub->object = nullptr;
  --database->openCount;
  impl.stub = nullptr;
  impl.database = nullptr;
  impl.state = OpenState::Free;
}

std::unique_ptr<AcDbObject> copyOf(const AcDbStub& stub) {
  DatabaseImpl& database = DatabaseImpl::of(stub);
  std::unique_ptr<AcDbObject> copy = makeView(stub);
  ObjectImpl::Own& own = Access::of(*copy).ownToChange();
  if (stub.role == dxf::Role::TableRecord && database.kindOf(stub) == "DIMSTYLE") {
    own.bytes = freeDimStyle(database.tagsOf(stub), database);
    own.format = neutralFormat();
    own.namesFrom = database.token;
  } else {
    own.bytes = headless(database.tagsOf(stub));
    own.format = std::make_shared<const dxf::Format>(database.format());
  }
  own.copiedFromOwner = stub.owner;
  own.parts = copiesOfParts(stub);
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
