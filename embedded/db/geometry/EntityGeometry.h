// Measuring and transforming entities by the rows of their kinds. A kind whose row lacks a function
// fails with eNotApplicable.
#pragma once

#include "embedded/db/core/RecordKinds.h"
#include "embedded/db/geometry/ExtentsWalk.h"

namespace quoin::db {

/// An entity to be measured: a record with what belongs to it.
struct Drawn {
  const TagList& tags;
  DatabaseImpl* database = nullptr;    // null for a free entity
  const AcDbStub* stub = nullptr;      // of a resident entity
  const AcDbObject* object = nullptr;  // of a free entity
};

/// The block that shows a dimension or table and belongs to it alone, and how it follows.
struct OwnBlock {
  const dxf::Block* block = nullptr;
  AcGeMatrix3d matrix;
};

/// Whether an entity can be transformed, by the function or the schema of its kind.
/// Fails: throws FileError.
bool hasTransform(const DatabaseImpl& database, const AcDbStub& stub);

/// Whether a matrix can transform anything: no infinity, no NaN.
bool isFinite(const AcGeMatrix3d& matrix);

}  // namespace quoin::db
