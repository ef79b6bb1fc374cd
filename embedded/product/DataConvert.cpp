#include "host/DataConvert.h"

#include <cmath>

namespace {

constexpr int kDefaultPrecision = -1;
// Nine places: a millionth of a millimetre in drawings whose unit is the metre.
constexpr double kDefaultTolerance = 1e-9;

}  // namespace

bool DataConvert::FloatEqual(double a, double b, int decimals) {
  const double tolerance =
      decimals == kDefaultPrecision ? kDefaultTolerance : std::pow(10.0, -decimals);
  return std::fabs(a - b) <= tolerance;
}
