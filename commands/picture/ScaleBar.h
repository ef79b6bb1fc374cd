// Round lengths in the drawing's own kind of unit.
#pragma once

#include <string>

namespace quoin::commands {

enum class LengthKind { Unknown, Metric, Imperial };

struct RoundLength {
  double units = 0.0;  // drawing units
  std::string text;    // "5 m", "500 mm", "10 ft", "6 in", "2000 units"
};

/// The longest round length that is no longer than `most` drawing units.
RoundLength roundLength(double most, LengthKind kind, double millimetersPerUnit);

}  // namespace quoin::commands
