// Which layers hold a plan's openings, as options say it.
#pragma once

#include <CLI/CLI.hpp>
#include <set>
#include <string>
#include <vector>

#include "commands/Drawing.h"

namespace quoin::commands {

class OpeningLayers {
 public:
  /// Adds --openings, and --no-openings with this explanation.
  void declare(CLI::App& command, const std::string& none);
  /// Those that the options name, else QUOIN-OPENING where it has lines.
  /// Fails: throws CommandError, as chooseLayers does.
  std::set<std::wstring> in(Drawing& drawing) const;

 private:
  std::vector<std::string> m_patterns;
  bool m_hasNone = false;
};

}  // namespace quoin::commands
