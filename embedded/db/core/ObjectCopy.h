// Copies of objects, and objects on their way between being free and being a drawing's.
#pragma once

#include <memory>
#include <vector>

#include "embedded/db/core/Transfer.h"

namespace quoin::db {

/// What stands at the head of an object's record.
Placement placementOf(const AcDbObject& object);

/// Makes a free object the view of a stub, open for write.
void bind(AcDbObject& object, AcDbStub& stub);
/// Makes a view a free object with a copy of its record and parts.
void unbind(AcDbObject& object);

/// A free copy of a record with its parts, of the class that shows it.
std::unique_ptr<AcDbObject> copyOf(const AcDbStub& stub);
std::vector<std::unique_ptr<AcDbObject>> copiesOfParts(const AcDbStub& owner);

}  // namespace quoin::db
