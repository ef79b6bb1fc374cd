// What measuring has learnt and spent in one drawing (../geometry/ExtentsWalk.h).
#pragma once

#include <cstdint>
#include <unordered_map>

#include "dbmain.h"

namespace quoin::dxf {
struct Block;
}

namespace quoin::db {

/// Kept until the drawing changes.
struct ExtentsMemory {
  /// Entities of blocks that are visited one by one, for all measuring of a drawing.
  static constexpr std::size_t kExactEntities = 2'000'000;
  /// What took fewer visits is measured again rather than remembered.
  static constexpr std::size_t kWorthKeeping = 64;
  struct Measured {
    AcDbExtents box;
    bool isRough = false;  // blocks in it count with their boxes
  };

  std::uint64_t changes = 0;  // the drawing's count when this was learnt
  std::size_t visited = 0;
  std::size_t roughEntities = 0;
  std::unordered_map<const dxf::Block*, AcDbExtents> boxes;
  std::unordered_map<const AcDbStub*, Measured> entities;
};

}  // namespace quoin::db
