// UTF-8 to wide text and back, for file paths, messages and narrow literals. Both ways are
// total: bytes that are no UTF-8 become U+DC80 + (byte - 0x80) and encode back to the same
// byte, so that any file name survives the round trip.
#pragma once

#include <string>
#include <string_view>

#include "hostapi.h"

namespace quoin::os {

/// Wide text of a UTF-8 text (UTF-16 where wchar_t has 16 bits, else UTF-32).
/// Laws: toUtf8(fromUtf8(b)) == b for any bytes b.
HOST_API std::wstring fromUtf8(std::string_view bytes);

/// UTF-8 of a wide text. Surrogate pairs are joined; a lone surrogate that stands for no
/// escaped byte becomes U+FFFD.
HOST_API std::string toUtf8(std::wstring_view text);

}  // namespace quoin::os
