// Texts as DWG has them: bytes of a code page up to R2004, UTF-16 from R2007 on.
#pragma once

#include <string>
#include <string_view>

namespace quoin::os {
class CodePage;
}

namespace quoin::dwg {

/// Text of UTF-16; half a pair stays what it is.
/// Laws: unitsOf(textOfUnits(units)) == units.
std::wstring textOfUnits(std::u16string_view units);
std::u16string unitsOf(std::wstring_view text);
/// Bytes of the code page; what that lacks as \U+XXXX.
std::string bytesOfText(std::wstring_view text, const os::CodePage& codePage);

}  // namespace quoin::dwg
