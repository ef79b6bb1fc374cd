// Names of layers, blocks, styles and tables are the same in any case. The folding here is
// a fixed table of letters, so that it never depends on the machine's locale.
#pragma once

#include <string>
#include <string_view>

#include "hostapi.h"

namespace quoin::os {

/// The capital of a letter of the Latin, Greek, Cyrillic and full-width alphabets that has
/// one of the same block; any other character itself.
HOST_API wchar_t foldCase(wchar_t letter);
HOST_API std::wstring foldCase(std::wstring_view text);
/// Whether two names are equal in any case.
HOST_API bool sameName(std::wstring_view left, std::wstring_view right);
/// The same for plain ASCII; bytes above 127 are compared as they are.
HOST_API bool sameName(std::string_view left, std::string_view right);

}  // namespace quoin::os
