#include "python/src/Document.h"

#include <fmt/format.h>

#include <algorithm>

#include "commands/LayerChoice.h"
#include "commands/Units.h"
#include "commands/WallWords.h"
#include "embedded/os/Utf8.h"

namespace quoin::python {

using commands::CommandError;
using commands::ExitCode;

std::vector<std::string> inUtf8(const std::vector<std::wstring>& texts) {
  std::vector<std::string> converted;
  converted.reserve(texts.size());
  for (const std::wstring& text : texts) {
    converted.push_back(os::toUtf8(text));
  }
  return converted;
}

std::uint64_t parseHandle(const std::string& text) {
  constexpr int kHexadecimal = 16;
  return text.empty() ? 0 : std::stoull(text, nullptr, kHexadecimal);
}

Document::Document(const std::string& file, const std::string& codePage, const std::string& units)
    : drawing(file, codePage) {
  if (units.empty()) {
    return;
  }
  const commands::NamedUnit* const unit = commands::unitNamed(units);
  if (!unit) {
    std::string known;
    for (const commands::NamedUnit& named : commands::namedUnits()) {
      known += (known.empty() ? "" : ", ") + std::string(named.name);
    }
    throw CommandError(ExitCode::Usage,
                       fmt::format("units: no unit '{}' is known; there are {}", units, known));
  }
  drawing.takeUnits(unit->value);
}

std::uint64_t Document::nameOf(const AcDbObjectId& id) {
  const AcDbHandle handle = id.handle();
  if (!handle.isNull()) {
    return static_cast<Adesk::UInt64>(handle);
  }
  const auto [at, isNew] = m_numberOf.try_emplace(id, kFirstNumber + m_unnamed.size());
  if (isNew) {
    m_unnamed.push_back(id);
  }
  return at->second;
}

AcDbObjectId Document::objectWith(std::uint64_t name) {
  AcDbObjectId id;
  if (name >= kFirstNumber && name - kFirstNumber < m_unnamed.size()) {
    return m_unnamed[name - kFirstNumber];
  }
  drawing.database().getAcDbObjectId(id, false, AcDbHandle(name));
  return id;
}

AcDbObjectId Document::entityWith(std::uint64_t name) {
  const AcDbObjectId id = objectWith(name);
  if (id.isNull() || id.isErased() || hostx::layerName(id).empty()) {
    throw CommandError(ExitCode::EntityFailed,
                       fmt::format("{}: it has no entity {:X}", drawing.file().string(), name));
  }
  return id;
}

std::set<std::wstring> chooseLayers(Drawing& drawing, const std::vector<std::string>& patterns) {
  const std::vector<commands::LayerContent> layers = drawing.layers();
  if (patterns.empty() && std::none_of(layers.begin(), layers.end(), [](const auto& layer) {
        return commands::looksLikeWalls(layer.name);
      })) {
    throw CommandError(ExitCode::NothingToDo,
                       fmt::format("{}: no layer's name has a word for wall; name layers, or '*' "
                                   "for all",
                                   drawing.file().string()));
  }
  return commands::chooseLayers(layers, patterns, drawing);
}

}  // namespace quoin::python
