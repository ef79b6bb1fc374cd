#include "commands/Report.h"

#include <algorithm>

namespace quoin::commands {

void Report::list(std::size_t count, const std::function<std::string(std::size_t)>& text) {
  constexpr std::size_t kMostShown = 10;  // more lines of one kind nobody reads
  if (isJson()) {
    return;
  }
  // One line more takes no more room than the words that would stand for it.
  const std::size_t shown = m_wanted.details || count <= kMostShown + 1 ? count : kMostShown;
  for (std::size_t i = 0; i < shown; ++i) {
    line("{}", text(i));
  }
  if (shown < count) {
    line("... and {} more; --verbose lists them all", count - shown);
  }
}

void Report::details(std::size_t count, const std::function<std::string(std::size_t)>& text) {
  if (m_wanted.details) {
    list(count, text);
  }
}

void Report::warn(const std::string& sentence) {
  m_warnings.push_back(sentence);
  if (!isJson()) {
    m_lines.push_back({Level::Warning, "warning: " + sentence});
  }
}

std::string Report::packed() const {
  nlohmann::json lines = nlohmann::json::array();
  for (const Line& line : m_lines) {
    lines.push_back({static_cast<int>(line.level), line.text});
  }
  // CBOR keeps every bit of numbers, and bytes of names that are no UTF-8.
  const std::vector<std::uint8_t> bytes =
      nlohmann::json::to_cbor({{"json", json}, {"lines", lines}, {"warnings", m_warnings}});
  return {bytes.begin(), bytes.end()};
}

void Report::unpack(const std::string& bytes) {
  const nlohmann::json packed = nlohmann::json::from_cbor(bytes);
  json = packed.at("json");
  m_warnings = packed.at("warnings").get<std::vector<std::string>>();
  m_lines.clear();
  for (const nlohmann::json& line : packed.at("lines")) {
    m_lines.push_back({static_cast<Level>(line.at(0).get<int>()), line.at(1).get<std::string>()});
  }
}

}  // namespace quoin::commands
