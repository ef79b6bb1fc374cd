// What must hold when a drawing database is asked how far things reach, whatever bytes it was read
// from. Pictures and walls of damaged drawings are tried by scripts/damage_drawings.py.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "support/Drawings.h"

namespace quoin::test {

/// The box of everything in a block, entity by entity; every entity is asked for its own too.
inline AcDbExtents extentsOfBlock(AcDbBlockTableRecord& block) {
  AcDbExtents sum;
  AcDbBlockTableRecordIterator* made = nullptr;
  block.newIterator(made);
  const std::unique_ptr<AcDbBlockTableRecordIterator> iterator(made);
  for (; iterator && !iterator->done(); iterator->step()) {
    AcDbEntity* entity = nullptr;
    if (iterator->getEntity(entity, AcDb::kForRead) != Acad::eOk) {
      continue;
    }
    AcDbExtents first;
    AcDbExtents again;
    const Acad::ErrorStatus status = entity->getGeomExtents(first);
    const bool isSame = entity->getGeomExtents(again) == status &&
                        first.isFresh() == again.isFresh() &&
                        (first.isFresh() || first.minPoint() == again.minPoint());
    entity->close();
    if (!isSame) {
      throw std::logic_error("an entity reaches as far when it is asked again");
    }
    sum.addExt(first);
  }
  return sum;
}

/// Reads the bytes as a drawing and measures all its blocks.
/// Fails: throws std::logic_error naming the law that does not hold.
inline bool probeDrawing(const std::string& bytes) {
  const Drawing drawing(bytes);
  if (drawing.status != Acad::eOk) {
    return false;
  }
  AcDbBlockTable* table = nullptr;
  AcDbBlockTableIterator* made = nullptr;
  if (drawing.db().getBlockTable(table, AcDb::kForRead) != Acad::eOk) {
    throw std::logic_error("a drawing has a block table");
  }
  table->newIterator(made);
  table->close();
  const std::unique_ptr<AcDbBlockTableIterator> iterator(made);
  for (; iterator && !iterator->done(); iterator->step()) {
    AcDbBlockTableRecord* block = nullptr;
    if (iterator->getRecord(block, AcDb::kForRead) != Acad::eOk) {
      continue;
    }
    extentsOfBlock(*block);
    AcDbExtents box;
    box.addBlockExt(block);
    block->close();
  }
  return true;
}

}  // namespace quoin::test
