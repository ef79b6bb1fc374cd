#include "commands/picture/ScaleBar.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

namespace quoin::commands {

namespace {

/// 1, 2 or 5 times a power of ten, no larger than this.
double roundBelow(double most) {
  const double power = std::pow(10.0, std::floor(std::log10(most)));
  const double mantissa = most / power;
  return power * (mantissa >= 5.0 ? 5.0 : mantissa >= 2.0 ? 2.0 : 1.0);
}

/// A round number without an exponent as far as anybody reads one.
std::string numberText(double number) {
  constexpr double kLargest = 1e9;
  constexpr double kSmallest = 1e-6;
  if (number >= kLargest || number < kSmallest) {
    return fmt::format("{:.0e}", number);
  }
  const int decimals = number >= 1.0 ? 0 : static_cast<int>(std::ceil(-std::log10(number) - 1e-9));
  return fmt::format("{:.{}f}", number, decimals);
}

RoundLength metric(double most, double millimetersPerUnit) {
  struct Unit {
    const char* name;
    double millimeters;
  };
  const double length = roundBelow(most * millimetersPerUnit);
  constexpr std::array kUnits{Unit{"km", 1e6}, Unit{"m", 1e3}, Unit{"mm", 1.0}};
  for (const Unit& unit : kUnits) {
    if (length >= unit.millimeters * (1.0 - 1e-9) || unit.millimeters == 1.0) {
      return {length / millimetersPerUnit, numberText(length / unit.millimeters) + " " + unit.name};
    }
  }
  return {};
}

RoundLength imperial(double most, double millimetersPerUnit) {
  constexpr double kInch = 25.4;
  constexpr double kInchesOfFoot = 12.0;
  const double inches = most * millimetersPerUnit / kInch;
  if (inches >= kInchesOfFoot) {
    const double feet = roundBelow(inches / kInchesOfFoot);
    return {feet * kInchesOfFoot * kInch / millimetersPerUnit, numberText(feet) + " ft"};
  }
  double length = 0.0;
  for (const double half : {6.0, 3.0, 2.0, 1.0}) {
    if (inches >= half) {
      length = half;
      break;
    }
  }
  std::string text = numberText(length) + " in";
  if (length == 0.0) {
    // Below an inch by halves.
    double parts = 2.0;
    constexpr double kFinest = 64.0;
    while (1.0 / parts > inches && parts < kFinest) {
      parts *= 2.0;
    }
    length = 1.0 / parts;
    text = fmt::format("1/{:.0f} in", parts);
    if (length > inches) {
      length = roundBelow(inches);
      text = numberText(length) + " in";
    }
  }
  return {length * kInch / millimetersPerUnit, text};
}

}  // namespace

RoundLength roundLength(double most, LengthKind kind, double millimetersPerUnit) {
  if (!(most > 0.0) || !std::isfinite(most)) {
    return {1.0, "1"};
  }
  if (kind == LengthKind::Unknown || millimetersPerUnit <= 0.0) {
    const double length = roundBelow(most);
    return {length, numberText(length) + (length == 1.0 ? " unit" : " units")};
  }
  return kind == LengthKind::Imperial ? imperial(most, millimetersPerUnit)
                                      : metric(most, millimetersPerUnit);
}

}  // namespace quoin::commands
