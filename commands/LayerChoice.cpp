#include "commands/LayerChoice.h"

#include <fmt/format.h>

#include <algorithm>

#include "commands/CommandError.h"
#include "commands/WallWords.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

std::string listOf(const std::vector<LayerContent>& layers) {
  std::vector<const LayerContent*> used;
  std::size_t emptyCount = 0;
  for (const LayerContent& layer : layers) {
    if (layer.count() > 0) {
      used.push_back(&layer);
    } else {
      ++emptyCount;
    }
  }
  std::stable_sort(used.begin(), used.end(), [](const LayerContent* a, const LayerContent* b) {
    return a->count() > b->count();
  });
  std::string text;
  for (const LayerContent* layer : used) {
    text += fmt::format("\n  {:6} entities  {}", layer->count(), os::toUtf8(layer->name));
  }
  if (emptyCount > 0) {
    text += fmt::format("\n  and {} with nothing on them in model space", emptyCount);
  }
  return text.empty() ? "\n  none" : text;
}

}  // namespace

bool matchesGlob(std::wstring_view name, std::wstring_view pattern) {
  // On a mismatch behind a star the star takes one character more; only the last star needs
  // to be tried again.
  constexpr std::size_t kNone = std::wstring_view::npos;
  std::size_t n = 0;
  std::size_t p = 0;
  std::size_t starAt = kNone;
  std::size_t starTook = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == L'*') {
      starAt = p++;
      starTook = n;
    } else if (p < pattern.size() &&
               (pattern[p] == L'?' || os::foldCase(pattern[p]) == os::foldCase(name[n]))) {
      ++p;
      ++n;
    } else if (starAt != kNone) {
      p = starAt + 1;
      n = ++starTook;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == L'*') {
    ++p;
  }
  return p == pattern.size();
}

std::set<std::wstring> chooseLayers(const std::vector<LayerContent>& layers,
                                    const std::vector<std::string>& patterns,
                                    const Drawing& drawing) {
  std::set<std::wstring> chosen;
  for (const LayerContent& layer : layers) {
    const bool isChosen =
        patterns.empty() ? looksLikeWalls(layer.name)
                         : std::any_of(patterns.begin(), patterns.end(), [&](const auto& pattern) {
                             return matchesGlob(layer.name, os::fromUtf8(pattern));
                           });
    if (isChosen) {
      chosen.insert(layer.name);
    }
  }
  if (chosen.empty()) {
    const std::string what =
        patterns.empty()
            ? fmt::format("no layer's name holds {}; name layers with --layer", kWallWords)
            : fmt::format("no layer matches {}", fmt::join(patterns, " or "));
    throw CommandError(
        ExitCode::NothingToDo,
        fmt::format("{}: {}. Its layers:{}", drawing.file().string(), what, listOf(layers)));
  }
  return chosen;
}

}  // namespace quoin::commands
