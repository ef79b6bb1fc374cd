#include "host/Log.h"

#include <cstdarg>
#include <cstdio>

#include "embedded/os/Utf8.h"
#include "embedded/product/Platform.h"
#include "embedded/rx/WideFormat.h"

void quoin::product::logToStandardError(std::wstring_view line) {
  const std::string text = "error: " + os::toUtf8(line) + "\n";
  std::fwrite(text.data(), 1, text.size(), stderr);
}

void CLog::LogError(const wchar_t* format, ...) {
  using quoin::product::Platform;
  std::va_list arguments;
  va_start(arguments, format);
  const std::wstring line = quoin::rx::formatWide(format, arguments);
  va_end(arguments);
  if (Platform* const platform = Platform::current()) {
    platform->log(line);
  } else {
    quoin::product::logToStandardError(line);
  }
}
