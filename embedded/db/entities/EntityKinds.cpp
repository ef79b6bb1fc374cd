#include "embedded/db/entities/EntityKinds.h"

#include <vector>

namespace quoin::db {

std::span<const std::span<const RecordKind>> entityFamilies() {
#define QUOIN_LIST(family) k##family##Rows,
  static const std::vector<std::span<const RecordKind>> families{QUOIN_ENTITY_FAMILIES(QUOIN_LIST)};
#undef QUOIN_LIST
  return families;
}

}  // namespace quoin::db
