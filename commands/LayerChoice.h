// Which layers a command works on: those that the user's patterns name, or those that look
// like walls.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "commands/Drawing.h"

namespace quoin::commands {

/// Whether a name matches a pattern with `*` (any text) and `?` (one character); letters match
/// in either case.
bool matchesGlob(std::wstring_view name, std::wstring_view pattern);

/// The layers that match one of the patterns; without patterns those that look like walls
/// (WallWords.h).
/// Fails: throws CommandError (NothingToDo) listing the drawing's layers if there is none.
std::set<std::wstring> chooseLayers(const std::vector<LayerContent>& layers,
                                    const std::vector<std::string>& patterns,
                                    const Drawing& drawing);

}  // namespace quoin::commands
