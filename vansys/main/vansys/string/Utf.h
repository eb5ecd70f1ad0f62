/// @file
/// The conversions between UTF-8, UTF-16 and UTF-32, over raw memory. The caller provides the room.
#pragma once

#include "vansys/TCodeUnit.h"

#include <cstdint>

namespace vansys::detail
{

inline constexpr TCodeUnit ReplacementCharacter = 0xFFFD;

constexpr bool IsHighSurrogate(TCodeUnit unit) noexcept
{
    return (unit & 0xFC00) == 0xD800;
}

constexpr bool IsLowSurrogate(TCodeUnit unit) noexcept
{
    return (unit & 0xFC00) == 0xDC00;
}

constexpr std::uint32_t CodePointOfPair(TCodeUnit high, TCodeUnit low) noexcept
{
    return 0x10000 + ((static_cast<std::uint32_t>(high) - 0xD800) << 10) +
           (static_cast<std::uint32_t>(low) - 0xDC00);
}

/// How many units `PutCodePoint` writes.
constexpr int UnitsOfCodePoint(std::uint32_t value) noexcept
{
    return value >= 0x10000 && value <= 0x10FFFF ? 2 : 1;
}

/// Writes a code point as UTF-16: surrogates as they are, U+FFFD for what lies above U+10FFFF.
/// Returns where the next unit goes.
constexpr TCodeUnit *PutCodePoint(std::uint32_t value, TCodeUnit *out) noexcept
{
    if (value < 0x10000)
        *out++ = static_cast<TCodeUnit>(value);
    else if (value > 0x10FFFF)
        *out++ = ReplacementCharacter;
    else
    {
        *out++ = static_cast<TCodeUnit>(((value - 0x10000) >> 10) + 0xD800);
        *out++ = static_cast<TCodeUnit>((value & 0x3FF) + 0xDC00);
    }
    return out;
}

/// Takes one code point from non-empty text; a surrogate without its partner stands for itself.
/// Moves `text` behind it.
constexpr std::uint32_t TakeCodePoint(TCodeUnit const *&text, TCodeUnit const *end) noexcept
{
    TCodeUnit const unit = *text++;
    if (IsHighSurrogate(unit) && text != end && IsLowSurrogate(*text))
        return CodePointOfPair(unit, *text++);
    return unit;
}

/// Decodes `count` bytes, with the rules that `TStringCore::fromUtf8` states, into `out`, which has room for
/// `count` units. Reads the byte at index `count` where those rules say so. Returns the end of what it wrote.
TCodeUnit *DecodeUtf8(char const *bytes, int count, TCodeUnit *out) noexcept;

/// The same one sequence at a time: the definition that `DecodeUtf8` must agree with.
TCodeUnit *DecodeUtf8BySequence(char const *bytes, int count, TCodeUnit *out) noexcept;

/// Writes as many of the units as ASCII goes from the start. Returns their number.
int EncodeAsciiPrefix(TCodeUnit const *text, int count, char *out) noexcept;

/// A pair of two units makes four bytes, any other unit at most three.
inline constexpr int MaxUtf8BytesOfUnit = 3;

/// Encodes `count` units into `out`, which has room for `MaxUtf8BytesOfUnit` bytes for each; a lone surrogate
/// gets its three-byte form. Returns the end of what it wrote.
char *EncodeUtf8(TCodeUnit const *text, int count, char *out) noexcept;

/// The same one code point at a time: the definition that `EncodeUtf8` must agree with.
char *EncodeUtf8ByCodePoint(TCodeUnit const *text, int count, char *out) noexcept;

} // namespace vansys::detail
