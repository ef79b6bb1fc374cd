// Text between its raw bytes in a file and wide characters: code page or UTF-8, \U+XXXX and
// \M+nXXXX, caret escapes. Tags go through textOf() and putText(); this is their inside.
#pragma once

#include <string>
#include <string_view>

#include "embedded/dxf/Format.h"

namespace quoin::dxf {

/// See textOf().
std::wstring decodeText(std::string_view raw, const Format& format);
/// See putText(): appends the raw bytes of the text.
void encodeText(std::string& bytes, std::wstring_view text, const Format& format);

}  // namespace quoin::dxf
