// What the pretty printers of scripts/quoin_gdb.py are tried on: the arguments of show().
#include <cstdio>

#include "dbents.h"
#include "dbsymtb.h"
#include "embedded/dxf/RecordStore.h"
#include "embedded/product/HostApplication.h"

namespace {

void show(const AcDbObjectId& id, const AcDbObjectId& none, const AcDbStub& record,
          const AcGePoint3d& point, const AcGeVector3d& vector) {
  std::printf("%d %d %u %g %g\n", id.isNull() ? 1 : 0, none.isNull() ? 1 : 0, record.size, point.x,
              vector.x);
}

}  // namespace

int main() {
  const quoin::HostApplication host;
  AcDbDatabase database(true, true);
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  database.getBlockTable(blocks, AcDb::kForRead);
  blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite);
  blocks->close();
  auto* const line = new AcDbLine(AcGePoint3d(0.0, 0.0, 0.0), AcGePoint3d(1.0, 0.0, 0.0));
  AcDbObjectId id;
  space->appendAcDbEntity(id, line);
  line->close();
  space->close();
  // Through a pointer that the compiler cannot follow, so that the arguments stay arguments.
  void (*volatile const call)(const AcDbObjectId&, const AcDbObjectId&, const AcDbStub&,
                              const AcGePoint3d&, const AcGeVector3d&) = &show;
  call(id, AcDbObjectId(), *static_cast<AcDbStub*>(id), AcGePoint3d(1.0, 2.5, -3.0),
       AcGeVector3d(0.0, 1.0, 0.0));
  return 0;
}
