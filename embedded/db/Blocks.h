// Blocks and what inserts them, as values.
#pragma once

#include <algorithm>
#include <cmath>
#include <string>

#include "embedded/db/DatabaseImpl.h"
#include "gescl3d.h"

namespace quoin::db {

/// The block of this name that is not erased; null if there is none.
inline dxf::Block* blockNamed(DatabaseImpl& database, std::wstring_view name) {
  const AcDbStub* const record = database.record(TableKind::Block, name);
  return record ? database.store.blockOf(*record) : nullptr;
}

/// The base point of a block: what a reference's position stands for.
inline AcGePoint3d baseOf(const DatabaseImpl& database, const dxf::Block& block) {
  if (!block.begin) {
    return {};
  }
  constexpr int kBase = 10;
  const TagList tags = database.tagsOf(*block.begin);
  return tags.point(kBase, place::kBlockBegin.in(tags));
}

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
