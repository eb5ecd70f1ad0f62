/// @file
/// Text as the operations of the string see it: units and their number.
#pragma once

#include "vansys/TStringCore.h"

#include <cstddef>
#include <cstring>

namespace vansys::detail
{

/// Refers to the text, which must outlive it.
struct RawText
{
    /// Text that may be null, or end at its first zero, which a negative count stands for.
    RawText(TCodeUnit const *text, int count)
        : units(text),
          length(text && count >= 0 ? count : StringFunctions::length(text))
    {
    }

    RawText(TStringCore const &text) noexcept : units(text.constData()), length(text.length()) {}

    RawText(Text const &text) noexcept : units(text.units()), length(text.length()) {}

    TCodeUnit const *units;
    int length;
};

/// Copies `count` units between memory that does not overlap; none from a null pointer.
inline void CopyUnits(TCodeUnit *to, TCodeUnit const *from, int count) noexcept
{
    if (count > 0)
        std::memcpy(to, from, static_cast<std::size_t>(count) * sizeof(TCodeUnit));
}

/// Copies `count` units between memory that may overlap.
inline void MoveUnits(TCodeUnit *to, TCodeUnit const *from, int count) noexcept
{
    std::memmove(to, from, static_cast<std::size_t>(count) * sizeof(TCodeUnit));
}

} // namespace vansys::detail
