#include "embedded/db/core/NewBlock.h"

#include "embedded/db/core/ObjectCopy.h"

namespace quoin::db {
namespace {

/// A BLOCK or ENDBLK record in the drawing's format.
std::string blockEdge(const DatabaseImpl& database, std::string neutral, const std::wstring& name,
                      const Placement& placement) {
  const dxf::Format& format = *neutralFormat();
  if (!name.empty()) {
    constexpr int kSecondName = 3;
    constexpr int kPath = 1;
    dxf::putText(neutral, code::kName, name, format);
    dxf::putInteger(neutral, code::kFlags, 0, format);
    for (const int axis : {10, 20, 30}) {
      dxf::putDouble(neutral, axis, 0.0, format);
    }
    dxf::putText(neutral, kSecondName, name, format);
    dxf::putText(neutral, kPath, L"", format);
  }
  return transferred(TagList(neutral, format), database.format(), placement);
}

}  // namespace

void appendNewBlock(DatabaseImpl& database, const std::wstring& name, AcDbObject& record) {
  const bool hasRecords = database.format().hasSubclassMarkers();
  Placement of;
  std::string recordBytes;
  if (hasRecords) {
    of.owner = database.store.ensureTable(fileName(TableKind::Block)).head->handle;
    of.handle = database.store.newHandle();
    recordBytes = transferred(tagsOf(record), database.format(), of);
  }
  Placement begin;
  begin.handle = database.store.newHandle();
  begin.owner = of.handle;
  Placement end;
  end.handle = database.store.newHandle();
  end.owner = of.handle;
  std::string beginBytes =
      blockEdge(database, "0\nBLOCK\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n", name, begin);
  std::string endBytes =
      blockEdge(database, "0\nENDBLK\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockEnd\n", {}, end);
  const dxf::Block& block =
      database.store.appendBlock(name, std::move(recordBytes), of.handle, std::move(beginBytes),
                                 begin.handle, std::move(endBytes), end.handle);
  database.noteName(TableKind::Block, name, *block.record);
  ++database.changes;
  bind(record, *block.record);
}

void renameBlock(DatabaseImpl& database, dxf::Block& block, const std::wstring& name) {
  constexpr int kSecondName = 3;
  if (block.record->data) {
    changeRecord(*block.record,
                 [&](RecordEdit& edit) { edit.setText(layout::kSymbol, code::kName, name); });
  }
  if (block.begin) {
    changeRecord(*block.begin, [&](RecordEdit& edit) {
      edit.setText(layout::kBlockBegin, code::kName, name);
      edit.setText(layout::kBlockBegin, kSecondName, name, std::wstring_view(name));
    });
  }
  database.store.renameBlock(block, name);
  ++database.changes;
}

}  // namespace quoin::db
