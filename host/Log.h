// The CAD product's log. Lines go to the sink that the platform was given.
#pragma once

#include "PlatformApi.h"

class PLATFORM_API CLog {
 public:
  /// Logs one line of severity "error". printf formatting by the host's wide rules: %s takes
  /// wide text (see CString::Format).
  static void LogError(const wchar_t* format, ...);
};

/// How a failed condition is logged: its text, the source path, the line.
inline constexpr const wchar_t* kAssertionFormat = L"断言：%s %s - %d";
