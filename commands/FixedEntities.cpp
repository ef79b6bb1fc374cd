#include "commands/FixedEntities.h"

#include <fmt/format.h>

#include <memory>

#include "commands/Drawing.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

std::string FixedEntities::text() const {
  std::string words;
  for (const auto& [kind, count] : countOfKind) {
    words += fmt::format("{}{} {}", words.empty() ? "" : ", ", count, os::toUtf8(kind));
  }
  return words;
}

FixedEntities findFixedEntities(AcDbDatabase& database, std::size_t& entityCount) {
  FixedEntities fixed;
  entityCount = 0;
  forEachEntityOf(modelSpaceOf(database), [&](const AcDbObjectId& id) {
    ++entityCount;
    if (!hostx::canTransform(id)) {
      ++fixed.countOfKind[hostx::kindName(id)];
      if (fixed.first.isNull()) {
        fixed.first = id;
      }
    }
  });
  return fixed;
}

}  // namespace quoin::commands
