// Names of symbols: which are allowed, which are fixed, and who uses them.
#pragma once

#include <string_view>

#include "embedded/db/core/DatabaseImpl.h"

namespace quoin::db {

/// 1 to 255 characters, none of <>/\":;?*|,=` and no control character. A bar is allowed in
/// names of external references.
bool isValidSymbolName(std::wstring_view name, bool allowVerticalBar);

/// Records that every drawing has under just this name.
bool mustKeepName(TableKind kind, std::wstring_view name);

/// Whether any record names this one by text: an entity its layer, linetype, style or block,
/// a header variable the current one.
bool isNamed(const DatabaseImpl& database, TableKind kind, std::wstring_view name);

}  // namespace quoin::db
