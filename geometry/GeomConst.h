// Angles that the module's geometry shares, in radians. Not exported.
#pragma once

namespace GeomConst {
inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kHalfPi = kPi / 2;  // exact: halving loses no digit
}  // namespace GeomConst
