/// @file
/// A set of code units, for many questions.
#pragma once

#include "vansys/TCodeUnit.h"

#include <algorithm>
#include <cstdint>

namespace vansys::detail
{

/// Refers to the units, which must outlive it.
class UnitSet
{
public:
    UnitSet(TCodeUnit const *units, int count) noexcept : m_begin(units), m_end(units + count)
    {
        for (TCodeUnit const *unit = m_begin; unit != m_end; ++unit)
            m_words[wordOf(*unit)] |= bitOf(*unit);
    }

    bool contains(TCodeUnit unit) const noexcept
    {
        if ((m_words[wordOf(unit)] & bitOf(unit)) == 0)
            return false;
        return unit < AsciiEnd || std::find(m_begin, m_end, unit) != m_end;
    }

private:
    static constexpr unsigned int AsciiEnd = 0x80;

    /// Each ASCII unit has a bit of its own, in the first two words. All others share those of the third:
    /// most of them that are not in the set are known by it.
    static constexpr unsigned int wordOf(TCodeUnit unit) noexcept
    {
        return unit < AsciiEnd ? unit / 64u : 2u;
    }

    static constexpr std::uint64_t bitOf(TCodeUnit unit) noexcept { return std::uint64_t{1} << unit % 64u; }

    std::uint64_t m_words[3] = {};
    TCodeUnit const *m_begin;
    TCodeUnit const *m_end;
};

} // namespace vansys::detail
