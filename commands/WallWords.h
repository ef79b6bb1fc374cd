// What walls are called on layers, in the languages of published drawings.
#pragma once

#include <string>
#include <string_view>

namespace quoin::commands {

/// Whether a layer's name says that walls are on it. Long words count wherever they stand ("wall",
/// "mauer", "ściana", "墙"); short ones only as a word or where a compound ends in them, so that
/// "mur" is not found in MURAL or "wand" in WANDERWEG. Letters count in either case; words end at
/// what is no letter and where a capital follows a small one.
bool looksLikeWalls(std::wstring_view name);

/// For help texts: "a word for wall (wall, mur, muro, Wand, 墙, ...)".
inline constexpr const char* kWallWords = "a word for wall (wall, mur, muro, Wand, 墙, ...)";

}  // namespace quoin::commands
