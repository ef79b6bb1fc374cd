// The units that commands know by name.
#pragma once

#include <string_view>
#include <vector>

#include "dbmain.h"

namespace quoin::commands {

inline constexpr double kMillimetersPerMeter = 1000.0;

/// mm, cm, m, in, ft.
struct NamedUnit {
  const char* name;
  AcDb::UnitsValue value;
  double millimeters;
};
const std::vector<NamedUnit>& namedUnits();
/// Null for a name that is none of them.
const NamedUnit* unitNamed(std::string_view name);

}  // namespace quoin::commands
