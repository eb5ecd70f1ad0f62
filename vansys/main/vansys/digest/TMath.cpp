#include "vansys/TMath.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>

namespace TMath
{

namespace
{

// Powers of ten that a double holds exactly; pow() need not return them to the last bit.
constexpr double PowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
constexpr short PowerCount = static_cast<short>(std::size(PowersOfTen));

/// Elements compare by `identical`, which finds the overload for their type.
template <class Element>
bool IdenticalVectors(std::vector<Element> const &a, std::vector<Element> const &b) noexcept
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](Element const &left, Element const &right) { return identical(left, right); });
}

} // namespace

double DegreesToRadians(double x) noexcept
{
    return x * PI / 180.0;
}

double RadiansToDegrees(double x) noexcept
{
    return x * 180.0 / PI;
}

int MulDiv(int a, int b, int c) noexcept
{
    if (c == 0)
        return -1;

    // No step can overflow: the product stays within 2^62, and c / 2 within 2^30.
    std::int64_t const quotient = (static_cast<std::int64_t>(a) * b + c / 2) / c;
    std::int64_t const low = std::numeric_limits<int>::min();
    std::int64_t const high = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(quotient, low, high));
}

double round2(double x, short digits) noexcept
{
    double const scale = digits >= 0 && digits < PowerCount ? PowersOfTen[digits] : std::pow(10.0, digits);

    // Both steps round to a double. Fused to one, which the build rules out, they would find other halves.
    double const scaled = x * scale;
    double const rounded = std::trunc(scaled + std::copysign(0.5, x));
    double const result = rounded / scale;
    return result == 0.0 ? 0.0 : result; // -0.0 == 0.0
}

bool identical(double a, double b) noexcept
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool identical(std::vector<double> const &a, std::vector<double> const &b) noexcept
{
    return IdenticalVectors(a, b);
}

bool identical(std::vector<std::vector<double>> const &a, std::vector<std::vector<double>> const &b) noexcept
{
    return IdenticalVectors(a, b);
}

} // namespace TMath
