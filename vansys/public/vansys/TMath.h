/// @file
/// TMath: numeric helpers with exactly defined rounding and comparison, and units of length.
#pragma once

#include "vansys/Export.h"

#include <vector>

/// Nothing here throws, allocates or keeps state: every function may be called from any thread.
namespace TMath
{

inline constexpr double PI = 3.141592653589793;

inline constexpr double CentimetersPerFoot = 30.48;
inline constexpr double CentimetersPerInch = 2.54;
inline constexpr double CentimetersPerMeter = 100.0;
inline constexpr double FeetPerCentimeter = 0.03280839895013123;
inline constexpr double FeetPerMeter = 3.2808398950131235;
inline constexpr double FeetPerMile = 5280.0;
inline constexpr double InchesPerFoot = 12.0;
inline constexpr double InchesPerMeter = 39.37007874015748;
inline constexpr double MetersPerFoot = 0.3048;
inline constexpr double MetersPerMile = 1609.344;

/// Converts an angle: `x` times `PI`, and that divided by 180.
VANSYS_API double DegreesToRadians(double x) noexcept;

/// Converts an angle: `x` times 180, and that divided by `PI`.
VANSYS_API double RadiansToDegrees(double x) noexcept;

/// a * b / c, computed in 64 bits, and held to the range of `int` when it is outside.
///
/// c / 2 is added to the product before the division, and both divisions drop the fraction. So a positive
/// quotient is rounded to the nearest (halves up), but a negative one is not: (-7, 1, 2) gives -3.
/// A `c` of 0 gives -1.
VANSYS_API int MulDiv(int a, int b, int c) noexcept;

/// Rounds `x` to `digits` decimal places, halves away from zero. Negative `digits` round to tens (-1),
/// hundreds
/// (-2) and so on.
///
/// `x` is scaled by a power of ten, rounded and scaled back, so what counts as a half is decided by the
/// scaled double and not by the decimal text of `x`. Zero is always +0.0. NaN stays NaN, and is also the
/// result where the scaling passes the range of a double in both directions.
VANSYS_API double round2(double x, short digits) noexcept;

/// Whether `a == b`, or both are NaN. +0 and -0 are identical.
VANSYS_API bool identical(double a, double b) noexcept;

/// Whether both have the same size and identical elements at every index.
VANSYS_API bool identical(std::vector<double> const &a, std::vector<double> const &b) noexcept;

/// Whether both have the same size and identical vectors at every index.
VANSYS_API bool identical(std::vector<std::vector<double>> const &a,
                          std::vector<std::vector<double>> const &b) noexcept;

} // namespace TMath
