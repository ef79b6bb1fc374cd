#include "commands/Units.h"

#include <algorithm>

namespace quoin::commands {

const std::vector<NamedUnit>& namedUnits() {
  static const std::vector<NamedUnit> kUnits{{"mm", AcDb::kUnitsMillimeters, 1.0},
                                             {"cm", AcDb::kUnitsCentimeters, 10.0},
                                             {"m", AcDb::kUnitsMeters, 1000.0},
                                             {"in", AcDb::kUnitsInches, 25.4},
                                             {"ft", AcDb::kUnitsFeet, 304.8}};
  return kUnits;
}

const NamedUnit* unitNamed(std::string_view name) {
  const std::vector<NamedUnit>& units = namedUnits();
  const auto found = std::find_if(units.begin(), units.end(),
                                  [&](const NamedUnit& unit) { return name == unit.name; });
  return found == units.end() ? nullptr : &*found;
}

}  // namespace quoin::commands
