#include "commands/LayoutSpaces.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>

#include "commands/CommandError.h"
#include "dbdict.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// The name of a layout object; empty where nothing names it.
std::string nameOf(AcDbDatabase& database, const AcDbObjectId& layout) {
  const AcDbObjectPointer<AcDbDictionary> layouts(database.layoutDictionaryId(), AcDb::kForRead);
  std::string name;
  if (!layout.isNull() && layouts.openStatus() == Acad::eOk) {
    const std::unique_ptr<AcDbDictionaryIterator> iterator(layouts->newIterator());
    if (iterator->setPosition(layout)) {
      name = os::toUtf8(iterator->name());
    }
  }
  return name;
}

}  // namespace

std::vector<LayoutSpace> layoutSpaces(Drawing& drawing) {
  AcDbDatabase& database = drawing.database();
  const AcDbObjectId model = drawing.modelSpaceId();
  std::vector<LayoutSpace> spaces{{"Model", model, true}};
  AcDbBlockTable* opened = nullptr;
  if (database.getBlockTable(opened, AcDb::kForRead) != Acad::eOk) {
    return spaces;
  }
  AcDbBlockTableIterator* made = nullptr;
  opened->newIterator(made);
  const std::unique_ptr<AcDbBlockTableIterator> iterator(made);
  for (; iterator && !iterator->done(); iterator->step()) {
    AcDbObjectId id;
    iterator->getRecordId(id);
    const AcDbObjectPointer<AcDbBlockTableRecord> block(id, AcDb::kForRead);
    if (id == model || block.openStatus() != Acad::eOk || !block->isLayout()) {
      continue;
    }
    std::string name = nameOf(database, block->getLayoutId());
    if (name.empty()) {
      // Drawings from before there were layouts have one sheet, which no object names.
      ACHAR* own = nullptr;
      block->getName(own);
      name = os::toUtf8(takeText(own));
      name.erase(0, name.find_first_not_of('*'));
    }
    spaces.push_back({name, id, false});
  }
  opened->close();
  return spaces;
}

LayoutSpace layoutNamed(Drawing& drawing, const std::string& name) {
  const std::vector<LayoutSpace> spaces = layoutSpaces(drawing);
  const std::wstring wanted = os::foldCase(os::fromUtf8(name));
  const auto found = std::find_if(spaces.begin(), spaces.end(), [&](const LayoutSpace& space) {
    return os::foldCase(os::fromUtf8(space.name)) == wanted;
  });
  if (found == spaces.end()) {
    std::string list;
    for (const LayoutSpace& space : spaces) {
      list += "\n  " + space.name;
    }
    throw CommandError(ExitCode::NothingToDo,
                       fmt::format("{}: no layout is named '{}'. Its layouts:{}",
                                   drawing.file().string(), name, list));
  }
  return *found;
}

}  // namespace quoin::commands
