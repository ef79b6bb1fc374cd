// Free objects into a drawing: handles, owners, names that must exist, and the parts behind their
// entity.
#pragma once

#include <string>

#include "embedded/db/core/DatabaseImpl.h"

namespace quoin::db {

/// Appends a free entity with its parts to a block. The entity is a view of the new record
/// then, open for write.
/// Fails: throws FileError (eIllegalEntityType), std::bad_alloc; nothing was appended then.
void appendFreeEntity(DatabaseImpl& database, dxf::Block& block, AcDbObject& entity);

/// Appends a free vertex or attribute to a resident owner, behind its last one.
/// Fails: as above.
void appendFreePart(AcDbStub& owner, AcDbObject& part);

/// Appends a vertex or attribute to an owner that may be free or resident.
/// Fails: eNotOpenForWrite, eNullObjectPointer, eAlreadyInDb and what appendFreePart returns.
Acad::ErrorStatus appendPart(AcDbObject& owner, AcDbObjectId& id, AcDbObject* part);

/// Appends a free record to its table.
/// Fails: as above.
void appendFreeRecord(DatabaseImpl& database, TableKind table, AcDbObject& record);

/// The record with its mark for parts behind it (66) as it must be: polylines always have
/// some, block references if so told, other kinds never.
std::string withPartsMark(const TagList& tags, bool hasParts);

/// The layers, linetypes, styles and applications that a record names, made or registered in
/// the drawing where it lacks them.
void ensureNames(DatabaseImpl& database, const TagList& tags);

}  // namespace quoin::db
