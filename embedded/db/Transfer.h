// Records on the way from one place to another: a clone's record into a drawing, with its
// new handle and owner, in the drawing's own format and version.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "embedded/db/DatabaseImpl.h"
#include "embedded/db/TagList.h"

namespace quoin::db {

/// What a transferred record gets at its head.
struct Placement {
  std::uint64_t handle = 0;  // 0: none is written
  std::uint64_t owner = 0;   // 0: none is written
  /// Tags of application groups (102), in the target's format.
  std::string groups;
  enum class Space : std::uint8_t { Keep, Model, Paper };
  Space space = Space::Keep;
};

/// What stands at the head of an object's record.
Placement placementOf(const AcDbObject& object);

/// Whether tags of the one format are tags of the other, byte for byte.
bool isSameSpelling(const dxf::Format& a, const dxf::Format& b);

/// The record's tags in another format: without the source's handle, owner and application
/// groups, with the placement's; without what the target's version does not know; with
/// subclass markers exactly where the target has them.
/// Fails: throws FileError with eIllegalEntityType when the target's version has no such kind,
/// or needs markers that nobody knows for it.
std::string transferred(const TagList& source, const dxf::Format& target,
                        const Placement& placement);

/// As transferred(), in the source's own format with nothing in the head: a clone's record.
std::string headless(const TagList& source);

/// The record with its mark for parts behind it (66) as it must be: polylines always have
/// some, block references if so told, other kinds never.
std::string withPartsMark(const TagList& tags, bool hasParts);

/// Appends a free entity with its parts to a block. The entity is a view of the new record
/// then, open for write.
/// Fails: throws FileError (eIllegalEntityType), std::bad_alloc; nothing was appended then.
void appendFreeEntity(DatabaseImpl& database, dxf::Block& block, AcDbObject& entity);

/// Appends a free vertex or attribute to a resident owner, behind its last one.
/// Fails: as above.
void appendFreePart(AcDbStub& owner, AcDbObject& part);

/// Appends a vertex or attribute to an owner that may be free or resident.
/// Fails: eNotOpenForWrite, eNullObjectPointer, eAlreadyInDb and what appendFreePart answers.
Acad::ErrorStatus appendPart(AcDbObject& owner, AcDbObjectId& id, AcDbObject* part);

/// Appends a free record to its table.
/// Fails: as above.
void appendFreeRecord(DatabaseImpl& database, TableKind table, AcDbObject& record);

/// Makes a free object the view of a stub, open for write.
void bind(AcDbObject& object, AcDbStub& stub);
/// Makes a view a free object with a copy of its record and parts.
void unbind(AcDbObject& object);

/// A free copy of a record with its parts, of the class that shows it.
std::unique_ptr<AcDbObject> copyOf(const AcDbStub& stub);
std::vector<std::unique_ptr<AcDbObject>> copiesOfParts(const AcDbStub& owner);

/// The layers, linetypes, styles and applications that a record names, made or registered in
/// the drawing where it lacks them.
void ensureNames(DatabaseImpl& database, const TagList& tags);

}  // namespace quoin::db
