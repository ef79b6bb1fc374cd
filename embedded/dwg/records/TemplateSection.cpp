#include "embedded/dwg/records/TemplateSection.h"

namespace quoin::dwg {
namespace {

// The length of the description in front of it, and the number itself.
constexpr std::size_t kShortSize = 2;

std::size_t shortAt(std::string_view bytes, std::size_t at) {
  return static_cast<std::size_t>(static_cast<unsigned char>(bytes[at]) |
                                  static_cast<unsigned char>(bytes[at + 1]) << 8);
}

/// The length counts letters: of one byte up to R2004, of two from R2007 on.
bool isTemplate(std::string_view section) {
  if (section.size() < 2 * kShortSize) {
    return false;
  }
  const std::size_t description = section.size() - 2 * kShortSize;
  const std::size_t letters = shortAt(section, 0);
  return description == letters || description == 2 * letters;
}

}  // namespace

std::optional<std::int64_t> measurementOf(std::string_view section) {
  return isTemplate(section) ? std::optional(static_cast<std::int64_t>(
                                   shortAt(section, section.size() - kShortSize)))
                             : std::nullopt;
}

std::optional<std::string> withMeasurement(std::string_view section, std::int64_t measurement) {
  if (!isTemplate(section) || measurement < 0 || measurement > 1) {
    return std::nullopt;
  }
  std::string changed(section.substr(0, section.size() - kShortSize));
  changed += static_cast<char>(measurement);
  changed += '\0';
  return changed;
}

}  // namespace quoin::dwg
