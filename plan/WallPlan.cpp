#include "plan/WallPlan.h"

#include <array>

namespace quoin::plan {

namespace {
constexpr std::array<const char*, 3> kKindNames{"opening", "door", "window"};
}

AcGeVector2d Wall::direction() const {
  const double far = length();
  return far > 0.0 ? (end - start) / far : AcGeVector2d();
}

const char* nameOf(OpeningKind kind) {
  return kKindNames[static_cast<std::size_t>(kind)];
}

std::optional<OpeningKind> openingKindNamed(std::string_view name) {
  for (std::size_t i = 0; i < kKindNames.size(); ++i) {
    if (name == kKindNames[i]) {
      return static_cast<OpeningKind>(i);
    }
  }
  return std::nullopt;
}

}  // namespace quoin::plan
