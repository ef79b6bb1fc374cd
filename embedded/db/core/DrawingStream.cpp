#include "embedded/db/core/DrawingStream.h"

#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/dxf/DrawingFile.h"
#include "embedded/dxf/FileError.h"

namespace quoin {

Acad::ErrorStatus writePieces(const AcDbDatabase& database,
                              const std::function<void(std::string_view)>& sink) {
  const db::DatabaseImpl& impl = db::Access::of(database);
  try {
    dxf::writePieces(impl.store, sink, impl.progress);
    return Acad::eOk;
  } catch (const dxf::FileError& error) {
    return error.status;
  }
}

}  // namespace quoin
