#include "commands/OpeningLayers.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "commands/CommonOptions.h"
#include "commands/LayerChoice.h"
#include "commands/PlannedWalls.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

void OpeningLayers::declare(CLI::App& command, const std::string& none) {
  CLI::Option* const openings =
      addRepeated(command, "--openings", m_patterns,
                  fmt::format("Layers with the openings, * and ? allowed; may be repeated "
                              "(default: {}, where it has lines)",
                              kOpeningLayer),
                  "GLOB");
  command.add_flag("--no-openings", m_hasNone, none)->excludes(openings);
}

std::set<std::wstring> OpeningLayers::in(Drawing& drawing) const {
  const std::vector<LayerContent> layers = drawing.layers();
  if (m_hasNone) {
    return {};
  }
  if (!m_patterns.empty()) {
    return chooseLayers(layers, m_patterns, drawing);
  }
  std::set<std::wstring> chosen;
  for (const LayerContent& layer : layers) {
    if (layer.countOfKind.count(L"LINE") > 0 &&
        matchesGlob(layer.name, os::fromUtf8(kOpeningLayer))) {
      chosen.insert(layer.name);
    }
  }
  return chosen;
}

}  // namespace quoin::commands
