/// @file
/// Which units have case mappings that depend on the language. They are those of Unicode's SpecialCasing.txt
/// under a language condition, and what ICU does to Greek on its own account. Units whose mapping changes the
/// length are not listed: the tables find those by asking.
#pragma once

namespace vansys::detail
{

inline constexpr char16_t CombiningDotAbove = 0x0307;
inline constexpr char16_t CapitalSigma = 0x03A3;
inline constexpr char16_t FinalSigma = 0x03C2;

constexpr bool IsGreek(char16_t unit) noexcept
{
    return (unit >= 0x0370 && unit <= 0x03FF) || (unit >= 0x1F00 && unit <= 0x1FFF) || unit == 0x2126;
}

/// Turkish and Azeri have an I without a dot, and Lithuanian keeps the dot of a small i below an accent.
constexpr bool LowerDependsOnLanguage(char16_t unit) noexcept
{
    switch (unit)
    {
    case 'I':
    case 'J':
    case 0x00CC: // I with grave
    case 0x00CD: // I with acute
    case 0x0128: // I with tilde
    case 0x012E: // I with ogonek
    case CombiningDotAbove:
        return true;
    default:
        return false;
    }
}

/// Turkish and Azeri give the small i its dot, Lithuanian takes a written dot away, and Greek loses its
/// accents in Greek.
constexpr bool UpperDependsOnLanguage(char16_t unit) noexcept
{
    return unit == 'i' || unit == CombiningDotAbove || IsGreek(unit);
}

} // namespace vansys::detail
