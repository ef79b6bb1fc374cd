// Blocks that a drawing gets: their record and the two records around their entities.
#pragma once

#include "embedded/db/core/DatabaseImpl.h"

namespace quoin::db {

/// Makes a free block table record a block of the drawing; it is the view of it then, open
/// for write.
/// Fails: throws FileError, std::bad_alloc.
void appendNewBlock(DatabaseImpl& database, const std::wstring& name, AcDbObject& record);

/// Gives a block another name in all its records.
/// Fails: throws FileError, std::bad_alloc.
void renameBlock(DatabaseImpl& database, dxf::Block& block, const std::wstring& name);

}  // namespace quoin::db
