// The spaces that a drawing can be looked at in: model space and its layouts.
#pragma once

#include <string>
#include <vector>

#include "commands/Drawing.h"

namespace quoin::commands {

struct LayoutSpace {
  std::string name;  // UTF-8, "Model" for model space
  AcDbObjectId block;
  bool isModel = false;
};

/// Model space first, then the layouts in the order of their blocks.
std::vector<LayoutSpace> layoutSpaces(Drawing& drawing);

/// Fails: throws CommandError (NothingToDo) listing the drawing's layouts if none has this name.
LayoutSpace layoutNamed(Drawing& drawing, const std::string& name);

}  // namespace quoin::commands
