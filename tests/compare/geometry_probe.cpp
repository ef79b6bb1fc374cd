// Tells what the embedded host makes of a drawing's geometry, for comparison with other
// programs: geometry_probe extents FILE prints a line for every entity of every layout.
#include <cstdio>
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
void forEachLayoutEntity(AcDbDatabase& database, Visit&& visit) {
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
      const AcDbObjectPointer<AcDbEntity> entity(id);
      if (entity.openStatus() == Acad::eOk) {
        visit(*entity);
      }
    }
  }
}

/// Handle, kind, status, minimum and maximum; 17 digits tell doubles apart.
void printExtents(const AcDbEntity& entity) {
  AcDbExtents box;
  const Acad::ErrorStatus status = entity.getGeomExtents(box);
  AcDbHandle handle;
  entity.getAcDbHandle(handle);
  std::printf("%llX %s %s", static_cast<unsigned long long>(static_cast<Adesk::UInt64>(handle)),
              toUtf8(hostx::kindName(&entity)).c_str(),
              toUtf8(acadErrorStatusText(status)).c_str());
  if (status == Acad::eOk) {
    for (const AcGePoint3d& point : {box.minPoint(), box.maxPoint()}) {
      std::printf(" %.17g %.17g %.17g", point.x, point.y, point.z);
    }
  }
  std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 || std::strcmp(argv[1], "extents") != 0) {
    std::fprintf(stderr, "usage: geometry_probe extents FILE\n");
    return 2;
  }
  AcDbDatabase database(false, true);
  if (database.readDwgFile(quoin::os::fromUtf8(argv[2]).c_str()) != Acad::eOk) {
    std::fprintf(stderr, "%s\n", toUtf8(hostx::lastFileError(&database)).c_str());
    return 1;
  }
  forEachLayoutEntity(database, printExtents);
  return 0;
}
