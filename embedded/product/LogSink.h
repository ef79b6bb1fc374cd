// Where the lines of CLog go. The running host decides; without one, and by default, they go
// to the standard error stream.
#pragma once

#include <functional>
#include <string_view>

#include "hostapi.h"

namespace quoin::product {

/// Receives one line of the log, without a line end.
using LogSink = std::function<void(std::wstring_view line)>;

/// The default: "error: <line>" in UTF-8 on the standard error stream.
HOST_API void logToStandardError(std::wstring_view line);

}  // namespace quoin::product
