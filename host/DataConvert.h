// The CAD product's comparison of floating point values.
#pragma once

#include "PlatformApi.h"

class PLATFORM_API DataConvert {
 public:
  /// Whether two values are equal: |a - b| <= 1e-9 for decimals == -1 (the product's default
  /// precision), else |a - b| <= 10^-decimals. False when either is not a number, and for
  /// two infinities of the same sign, whose difference is not a number.
  static bool FloatEqual(double a, double b, int decimals);
};
