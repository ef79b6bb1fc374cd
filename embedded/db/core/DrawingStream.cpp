#include "embedded/db/core/DrawingStream.h"

#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/dxf/DrawingFile.h"
#include "embedded/dxf/DxfCopy.h"
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

Acad::ErrorStatus writeDxfCopy(const AcDbDatabase& database,
                               const std::function<void(std::string_view)>& sink) {
  const db::DatabaseImpl& impl = db::Access::of(database);
  try {
    dxf::writeDxfCopy(impl.store, sink, impl.progress);
    return Acad::eOk;
  } catch (const dxf::FileError& error) {
    return error.status;
  }
}

std::vector<dxf::UnreadKind> unreadKinds(const AcDbDatabase& database) {
  const dxf::DrawingSource* const source = db::Access::of(database).store.source();
  return source == nullptr ? std::vector<dxf::UnreadKind>() : source->unread();
}

std::vector<dxf::UnreadKind> partlyReadKinds(const AcDbDatabase& database) {
  const dxf::DrawingSource* const source = db::Access::of(database).store.source();
  return source == nullptr ? std::vector<dxf::UnreadKind>() : source->partlyRead();
}

std::string savedBy(const AcDbDatabase& database) {
  const dxf::DrawingSource* const source = db::Access::of(database).store.source();
  return source == nullptr ? std::string() : source->savedBy();
}

std::string whyReadOnly(const AcDbDatabase& database) {
  const dxf::DrawingSource* const source = db::Access::of(database).store.source();
  return source == nullptr ? std::string() : source->whyReadOnly();
}

}  // namespace quoin
