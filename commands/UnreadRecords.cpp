#include "commands/UnreadRecords.h"

#include <fmt/format.h>

#include <algorithm>

namespace quoin::commands {

std::string unreadText(const std::vector<dxf::UnreadKind>& kinds) {
  std::vector<dxf::UnreadKind> sorted = kinds;
  std::sort(sorted.begin(), sorted.end(),
            [](const dxf::UnreadKind& left, const dxf::UnreadKind& right) {
              return left.isEntity != right.isEntity ? left.isEntity : left.name < right.name;
            });
  std::string text;
  for (const dxf::UnreadKind& kind : sorted) {
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", kind.count, kind.name);
  }
  return text.empty() ? "nothing" : text;
}

nlohmann::json unreadJson(const std::vector<dxf::UnreadKind>& kinds) {
  nlohmann::json json = nlohmann::json::object();
  for (const dxf::UnreadKind& kind : kinds) {
    json[kind.name] = kind.count;
  }
  return json;
}

}  // namespace quoin::commands
