// What a block reference says, as values.
#pragma once

#include <string>

#include "embedded/db/records/TagList.h"
#include "gemat3d.h"
#include "gescl3d.h"

namespace quoin::db {

/// What an INSERT record says.
struct ReferenceFields {
  explicit ReferenceFields(const TagList& tags);

  /// From the block's coordinates to the world, for one cell of the array.
  AcGeMatrix3d transform(const AcGePoint3d& base, std::int64_t column = 0,
                         std::int64_t row = 0) const;

  std::wstring name;
  AcGePoint3d position;  // in the plane of the normal
  AcGeScale3d scale;
  double rotation = 0.0;
  AcGeVector3d normal;
  std::int64_t columns = 1;
  std::int64_t rows = 1;
  double columnSpacing = 0.0;
  double rowSpacing = 0.0;
};

}  // namespace quoin::db
