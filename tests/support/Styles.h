// Styles, blocks and records of a drawing, found and made in one call, for tests.
#pragma once

#include "dbdict.h"
#include "dbmstyle.h"
#include "support/Drawings.h"

namespace quoin::test {

/// Adds an empty block.
inline AcDbObjectId addBlock(const Drawing& drawing, const wchar_t* name) {
  AcDbBlockTable* blocks = nullptr;
  AcDbObjectId id;
  EXPECT_EQ(drawing.db().getBlockTable(blocks, AcDb::kForWrite), Acad::eOk);
  if (blocks) {
    auto* const block = new AcDbBlockTableRecord;
    block->setName(name);
    EXPECT_EQ(blocks->add(id, block), Acad::eOk);
    block->close();
    blocks->close();
  }
  return id;
}

inline AcDbObjectId blockOf(const Drawing& drawing, const wchar_t* name) {
  AcDbObjectId id;
  acdbSymUtil()->getBlockId(id, name, &drawing.db());
  return id;
}

/// The dimension style of this name; null if there is none.
inline AcDbObjectId dimStyleOf(const Drawing& drawing, const wchar_t* name) {
  const AcDbObjectPointer<AcDbDimStyleTable> styles(drawing.db().dimStyleTableId());
  AcDbObjectId id;
  styles->getAt(name, id);
  return id;
}

/// The names in a dictionary.
inline std::vector<std::wstring> namesIn(const AcDbObjectId& dictionaryId) {
  std::vector<std::wstring> names;
  const AcDbObjectPointer<AcDbDictionary> dictionary(dictionaryId);
  if (dictionary.openStatus() != Acad::eOk) {
    return names;
  }
  const std::unique_ptr<AcDbDictionaryIterator> walk(dictionary->newIterator());
  for (; !walk->done(); walk->next()) {
    names.emplace_back(walk->name());
  }
  return names;
}

}  // namespace quoin::test
