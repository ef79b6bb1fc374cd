// Entities that the host cannot move or scale: commands name them before they change a drawing.
#pragma once

#include <map>
#include <string>

#include "dbmain.h"

namespace quoin::commands {

struct FixedEntities {
  std::map<std::wstring, std::size_t> countOfKind;
  AcDbObjectId first;  // null where there are none

  bool isEmpty() const { return countOfKind.empty(); }
  /// "2 3DSOLID, 1 REGION".
  std::string text() const;
};

/// Those of a database's model space, and how many entities there are in all.
FixedEntities findFixedEntities(AcDbDatabase& database, std::size_t& entityCount);

}  // namespace quoin::commands
