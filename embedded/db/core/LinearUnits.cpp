#include "embedded/db/core/LinearUnits.h"

#include "embedded/db/core/DatabaseImpl.h"

namespace quoin::db {

int linearUnits(const AcDbDatabase& database) {
  constexpr int kDecimal = 2;
  try {
    const TagList tags = Access::of(database).headerTags("$LUNITS");
    return tags.size() > 0 ? static_cast<int>(tags.integerAt(0)) : kDecimal;
  } catch (...) {
    statusOfException();
    return kDecimal;
  }
}

}  // namespace quoin::db
