// The themes of pictures by the names that users give them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "commands/picture/ListPainter.h"

namespace quoin::commands {

inline constexpr std::pair<const char*, Theme> kThemes[] = {
    {"paper", Theme::Paper}, {"screen", Theme::Screen}, {"faint", Theme::Faint}};

inline std::vector<std::string> themeNames() {
  std::vector<std::string> names;
  for (const auto& known : kThemes) {
    names.emplace_back(known.first);
  }
  return names;
}

/// Nothing for a name that no theme has.
inline std::optional<Theme> themeNamed(std::string_view name) {
  for (const auto& [known, theme] : kThemes) {
    if (name == known) {
      return theme;
    }
  }
  return std::nullopt;
}

}  // namespace quoin::commands
