// The contents of blocks as entities of their own: copies that look in the plan as the insert
// showed them.
#pragma once

#include <memory>
#include <string>

#include "dbents.h"

namespace quoin::db {

/// What an insert passes on to what is in its block.
struct Inherited {
  std::wstring layer;  // to what is on layer 0
  // To what takes its look "by block". By layer means by `layer`.
  AcCmColor color;
  std::wstring linetype;
  AcDb::LineWeight lineWeight = AcDb::kLnWtByLayer;
  std::int64_t transparency = 0;  // as files write it (440); 0 by layer
};

/// What an insert passes on; `outer` is what the insert around it does, null in model space.
/// Fails: throws FileError, std::bad_alloc.
HOST_API Inherited inheritedFrom(const AcDbObjectId& insert, const Inherited* outer);

/// Why an insert or a multiline cannot give way to what it shows: something hangs on it, is shown
/// by it alone, or says that it must stay whole. "has attributes"; empty where it can.
HOST_API std::string whyIndivisible(const AcDbObjectId& id);

/// Whether an entity of a block shows wherever the block is inserted; definitions of attributes do
/// not.
HOST_API bool showsInInserts(const AcDbObjectId& entity);

/// A copy in no database of an entity of a block: moved by the matrix, with what it inherits in its
/// own properties. A hatch is tied to its boundary no longer. Null with the cause where there is no
/// exact one: "holds DIMENSION, which cannot be taken out of its block".
/// Fails: throws FileError, std::bad_alloc.
HOST_API std::unique_ptr<AcDbEntity> copyInPlace(const AcDbObjectId& entity,
                                                 const AcGeMatrix3d& matrix,
                                                 const Inherited& inherited, std::string& cause);

}  // namespace quoin::db
