// Blocks by name, and their base points.
#pragma once

#include <string_view>

#include "embedded/db/core/DatabaseImpl.h"

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
  return tags.point(kBase, layout::kBlockBegin.in(tags));
}

}  // namespace quoin::db
