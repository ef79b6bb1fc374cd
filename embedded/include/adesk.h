// Basic types of the host API: fixed-width integers under the host's names, its
// character type and the boolean that older signatures carry.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hostapi.h"

/// The host's character: one wide character (UTF-16 code unit on Windows, UTF-32 elsewhere).
using ACHAR = wchar_t;

#define ACRX_T(text) L##text
#ifndef _T
#define _T(text) L##text
#endif

namespace Adesk {
using Int8 = std::int8_t;
using Int16 = std::int16_t;
using Int32 = std::int32_t;
using Int64 = std::int64_t;
using UInt8 = std::uint8_t;
using UInt16 = std::uint16_t;
using UInt32 = std::uint32_t;
using UInt64 = std::uint64_t;
using LongPtr = std::intptr_t;
using ULongPtr = std::uintptr_t;
using IntDbId = std::intptr_t;
using GsMarker = std::intptr_t;

/// The host's truth value; the names are its own.
using Boolean = bool;
inline constexpr Boolean kFalse = false;
inline constexpr Boolean kTrue = true;
}  // namespace Adesk
