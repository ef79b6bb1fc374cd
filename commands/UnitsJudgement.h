// Whether the unit that a drawing names can be the one it was drawn in.
//
// Walls are 40 to 650 mm thick, plans 3 m to 150 m across, and a dimension's text says what the
// length that it measures means. Where the named unit makes walls that nobody builds and another
// one makes common ones, the drawing's unit is doubted; it is never replaced in silence.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "commands/Units.h"
#include "commands/WallLines.h"

namespace quoin::commands {

/// What a drawing shows of its unit.
struct UnitsEvidence {
  /// kUnitsUndefined is taken for millimetres.
  AcDb::UnitsValue named = AcDb::kUnitsUndefined;
  /// The greater side of the walls' box, drawing units.
  double span = 0.0;
  /// faceSpacings() of the walls, drawing units.
  std::vector<double> spacings;
  /// For each dimension whose text names a unit, the millimetres that it makes of a drawing unit.
  std::vector<double> dimensions;
  /// Lengths are written in feet and inches ($LUNITS): a drawing unit is an inch.
  bool showsFeetAndInches = false;
  /// $MEASUREMENT says imperial.
  bool isImperial = false;
};

/// Whether $LUNITS writes lengths in feet and inches, where a drawing unit is an inch.
bool writesFeetAndInches(Drawing& drawing);

/// Looks at the header, the walls and the first dimensions of model space.
UnitsEvidence gatherUnitsEvidence(Drawing& drawing, const std::vector<WallLine>& walls);

/// The unit that a drawing is in rather than the one it names, and why, in words with numbers.
struct UnitsDoubt {
  const NamedUnit* likely;
  std::string reason;
};

/// Nothing where the named unit is plausible, or no other one more so.
std::optional<UnitsDoubt> doubtUnits(const UnitsEvidence& evidence);

}  // namespace quoin::commands
