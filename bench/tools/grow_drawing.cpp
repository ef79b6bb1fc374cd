// Makes a large drawing of the format of a small one: adds the lines of another drawing, with the
// layers they lie on.
// Usage: grow_drawing SMALL LINES OUT   (SMALL and OUT of one format)
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "acdb.h"
#include "dbents.h"
#include "dbsymtb.h"

namespace {

std::unique_ptr<AcDbDatabase> opened(const char* path) {
  auto database = std::make_unique<AcDbDatabase>(false, true);
  if (database->readDwgFile(std::filesystem::path(path).wstring().c_str()) != Acad::eOk) {
    throw std::runtime_error(std::string("cannot read ") + path);
  }
  return database;
}

AcDbBlockTableRecord* modelSpace(AcDbDatabase& database, AcDb::OpenMode mode) {
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  database.getBlockTable(blocks, AcDb::kForRead);
  blocks->getAt(ACDB_MODEL_SPACE, space, mode);
  blocks->close();
  if (space == nullptr) {
    throw std::runtime_error("model space cannot be opened");
  }
  return space;
}

void ensureLayer(AcDbDatabase& database, const ACHAR* name) {
  AcDbLayerTable* layers = nullptr;
  database.getLayerTable(layers, AcDb::kForWrite);
  if (!layers->has(name)) {
    auto* const layer = new AcDbLayerTableRecord;
    layer->setName(name);
    layers->add(layer);
    layer->close();
  }
  layers->close();
}

std::size_t addLines(AcDbDatabase& from, AcDbDatabase& to) {
  AcDbBlockTableRecord* const source = modelSpace(from, AcDb::kForRead);
  AcDbBlockTableRecord* const target = modelSpace(to, AcDb::kForWrite);
  AcDbBlockTableRecordIterator* made = nullptr;
  source->newIterator(made);
  const std::unique_ptr<AcDbBlockTableRecordIterator> iterator(made);
  std::size_t count = 0;
  for (; !iterator->done(); iterator->step()) {
    AcDbEntity* entity = nullptr;
    if (iterator->getEntity(entity, AcDb::kForRead) != Acad::eOk) {
      continue;
    }
    if (const AcDbLine* const line = AcDbLine::cast(entity)) {
      auto* const copy = new AcDbLine(line->startPoint(), line->endPoint());
      ACHAR* layer = line->layer();
      ensureLayer(to, layer);
      copy->setDatabaseDefaults(&to);
      copy->setLayer(layer);
      acutDelString(layer);
      target->appendAcDbEntity(copy);
      copy->close();
      ++count;
    }
    entity->close();
  }
  source->close();
  target->close();
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: grow_drawing SMALL LINES OUT\n");
    return 2;
  }
  try {
    const std::unique_ptr<AcDbDatabase> target = opened(argv[1]);
    const std::unique_ptr<AcDbDatabase> source = opened(argv[2]);
    std::printf("%zu lines\n", addLines(*source, *target));
    if (target->saveAs(std::filesystem::path(argv[3]).wstring().c_str()) != Acad::eOk) {
      throw std::runtime_error(std::string("cannot write ") + argv[3]);
    }
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "grow_drawing: %s\n", error.what());
    return 1;
  }
}
