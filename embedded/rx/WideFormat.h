// printf formatting by the host's wide rules, the same on every platform: %s and %c take
// wide arguments, %S, %C, %hs and %hc narrow ones (UTF-8), %I64d and %lld 64 bits.
#pragma once

#include <cstdarg>
#include <string>

namespace quoin::rx {

/// The formatted text. A null string argument prints "(null)"; a conversion that the rules
/// do not know is printed as it stands and takes no argument. %n is not known.
std::wstring formatWide(const wchar_t* format, std::va_list arguments);

}  // namespace quoin::rx
