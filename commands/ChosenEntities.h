// The entities of model space on chosen layers, for commands that change their properties.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "commands/Drawing.h"

namespace quoin::commands {

struct ChosenEntities {
  std::vector<AcDbObjectId> entities;  // file order
  std::map<std::wstring, std::size_t> countOfKind;
  std::size_t onLockedLayers = 0;  // left out
};

/// Every entity of these layers but `except`; those on locked layers are only counted.
/// Fails: throws CommandError (NothingToDo) when there is none at all.
ChosenEntities chooseEntities(Drawing& drawing, const std::set<std::wstring>& layers,
                              const AcDbObjectId& except = AcDbObjectId::kNull);

/// Opens each for write and hands it to `change`.
/// Fails: throws CommandError (EntityFailed) that names the entity which does not open.
void changeEach(const Drawing& drawing, const ChosenEntities& chosen,
                const std::function<void(AcDbEntity&)>& change);

}  // namespace quoin::commands
