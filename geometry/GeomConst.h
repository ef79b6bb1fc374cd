// Numbers that the module's geometry shares. Not exported.
#pragma once

namespace GeomConst {
inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kHalfPi = kPi / 2;  // exact: halving loses no digit

/// The relative slack of comparisons that must not decide what rounding could decide otherwise:
/// 9,000 times 2^-53, where what is compared is off by a few dozen roundings of its size.
inline constexpr double kRoundingSlack = 1.0e-12;

/// What such comparisons of distances allow beside: where the squares of differences vanish
/// (below some 1e-161) the computed distance says nothing about them.
inline constexpr double kVanishingSlack = 1.0e-150;
}  // namespace GeomConst
