// Which layers hold a plan's openings, as options say it.
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "commands/CommandLineNames.h"
#include "commands/Drawing.h"

namespace quoin::commands {

class OpeningLayers {
 public:
  OpeningLayers() = default;
  /// As if options named these, or none.
  OpeningLayers(std::vector<std::string> patterns, bool hasNone)
      : m_patterns(std::move(patterns)), m_hasNone(hasNone) {}

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
