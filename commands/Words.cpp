#include "commands/Words.h"

#include <fmt/format.h>

#include "embedded/os/Utf8.h"

namespace quoin::commands {

std::string numberText(double value) {
  return fmt::format("{}", value == 0.0 ? 0.0 : value);  // the negative zero too
}

std::string pointText(const AcGePoint3d& point) {
  return numberText(point.x) + "," + numberText(point.y);
}

std::string countText(std::size_t count, const std::string& one, const std::string& many) {
  return fmt::format("{} {}", count, count == 1 ? one : many.empty() ? one + "s" : many);
}

std::string kindsText(const std::map<std::wstring, std::size_t>& countOfKind) {
  std::string text;
  for (const auto& [kind, count] : countOfKind) {
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, os::toUtf8(kind));
  }
  return text;
}

std::string csvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == text.npos) {
    return text;
  }
  std::string quoted = "\"";
  for (const char letter : text) {
    quoted += letter == '"' ? "\"\"" : std::string(1, letter);
  }
  return quoted + "\"";
}

}  // namespace quoin::commands
