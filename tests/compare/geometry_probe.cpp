// Tells what the embedded host makes of a drawing's geometry, for comparison with other
// programs. `geometry_probe extents FILE` prints a line for every entity of every layout;
// `geometry_probe transform FILE OUT MATRIX` transforms every one, prints the status and saves.
// MATRIX is twelve numbers: the rows of the linear part, each with its displacement.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/os/Utf8.h"
#include "hostextra.h"

namespace {

using quoin::os::toUtf8;

/// Calls `visit(AcDbEntity&)` for each entity of model space and of every paper space.
template <class Visit>
void forEachLayoutEntity(AcDbDatabase& database, AcDb::OpenMode mode, Visit&& visit) {
  AcDbBlockTable* table = nullptr;
  if (database.getBlockTable(table, AcDb::kForRead) != Acad::eOk) {
    return;
  }
  AcDbBlockTableIterator* blocks = nullptr;
  table->newIterator(blocks);
  table->close();
  const std::unique_ptr<AcDbBlockTableIterator> ownedBlocks(blocks);
  for (; blocks && !blocks->done(); blocks->step()) {
    AcDbObjectId id;
    blocks->getRecordId(id);
    const AcDbObjectPointer<AcDbBlockTableRecord> block(id);
    if (block.openStatus() != Acad::eOk || !block->isLayout()) {
      continue;
    }
    AcDbBlockTableRecordIterator* entities = nullptr;
    block->newIterator(entities);
    const std::unique_ptr<AcDbBlockTableRecordIterator> ownedEntities(entities);
    for (; entities && !entities->done(); entities->step()) {
      entities->getEntityId(id);
      const AcDbObjectPointer<AcDbEntity> entity(id, mode);
      if (entity.openStatus() == Acad::eOk) {
        visit(*entity);
      }
    }
  }
}

void printNames(const AcDbEntity& entity, Acad::ErrorStatus status) {
  AcDbHandle handle;
  entity.getAcDbHandle(handle);
  std::printf("%llX %s %s", static_cast<unsigned long long>(static_cast<Adesk::UInt64>(handle)),
              toUtf8(hostx::kindName(&entity)).c_str(),
              toUtf8(acadErrorStatusText(status)).c_str());
}

/// Handle, kind, status, minimum and maximum; 17 digits tell doubles apart.
void printExtents(const AcDbEntity& entity) {
  AcDbExtents box;
  const Acad::ErrorStatus status = entity.getGeomExtents(box);
  printNames(entity, status);
  if (status == Acad::eOk) {
    for (const AcGePoint3d& point : {box.minPoint(), box.maxPoint()}) {
      std::printf(" %.17g %.17g %.17g", point.x, point.y, point.z);
    }
  }
  std::printf("\n");
}

/// Prints why a file could not be read or written; the program's exit code.
int fail(const AcDbDatabase& database) {
  std::fprintf(stderr, "%s\n", toUtf8(hostx::lastFileError(&database)).c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int kMatrixWords = 12;
  const bool isExtents = argc == 3 && std::strcmp(argv[1], "extents") == 0;
  const bool isTransform = argc == 4 + kMatrixWords && std::strcmp(argv[1], "transform") == 0;
  if (!isExtents && !isTransform) {
    std::fprintf(stderr,
                 "usage: geometry_probe extents FILE\n"
                 "       geometry_probe transform FILE OUT MATRIX\n");
    return 2;
  }
  AcDbDatabase database(false, true);
  if (database.readDwgFile(quoin::os::fromUtf8(argv[2]).c_str()) != Acad::eOk) {
    return fail(database);
  }
  if (isExtents) {
    forEachLayoutEntity(database, AcDb::kForRead, printExtents);
    return 0;
  }
  AcGeMatrix3d matrix;
  for (int i = 0; i < kMatrixWords; ++i) {
    matrix.entry[i / 4][i % 4] = std::strtod(argv[4 + i], nullptr);
  }
  forEachLayoutEntity(database, AcDb::kForWrite, [&](AcDbEntity& entity) {
    printNames(entity, entity.transformBy(matrix));
    std::printf("\n");
  });
  return database.saveAs(quoin::os::fromUtf8(argv[3]).c_str()) == Acad::eOk ? 0 : fail(database);
}
