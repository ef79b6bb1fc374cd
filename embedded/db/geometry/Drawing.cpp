// What hostdraw.h declares.
#include <span>
#include <string>
#include <vector>

#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/UndrawnKinds.h"
#include "hostdraw.h"

namespace quoin::db {

std::vector<std::string> undrawnKinds() {
  std::vector<std::string> names;
  for (const std::span<const RecordKind> family : entityFamilies()) {
    for (const RecordKind& kind : family) {
      if (!kind.draw) {
        names.emplace_back(kind.name);
      }
    }
  }
  return names;
}

}  // namespace quoin::db

namespace hostx {

using namespace quoin::db;

DrawSink::~DrawSink() = default;

bool DrawSink::beginEntity(const AcDbObjectId&) {
  return true;
}

void DrawSink::beginClip(const DrawPath&) {}

void DrawSink::endClip() {}

DrawReport drawBlock(const AcDbObjectId& block, DrawSink& sink, const DrawOptions& options) {
  const AcDbStub* const stub = stubOf(block);
  if (!stub) {
    return {};
  }
  DatabaseImpl& database = DatabaseImpl::of(*stub);
  const quoin::dxf::Block* const found = database.store.blockOf(*stub);
  return found && !database.isErased(*stub) ? DrawWalk(database, sink, options).drawBlock(*found)
                                            : DrawReport();
}

DrawReport drawEntity(const AcDbObjectId& entity, DrawSink& sink, const DrawOptions& options) {
  const AcDbStub* const stub = stubOf(entity);
  if (!stub) {
    return {};
  }
  DatabaseImpl& database = DatabaseImpl::of(*stub);
  return database.isEntity(*stub) && !database.isErased(*stub)
             ? DrawWalk(database, sink, options).drawEntity(*stub)
             : DrawReport();
}

}  // namespace hostx
