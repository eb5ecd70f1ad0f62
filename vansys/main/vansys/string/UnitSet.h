/// @file
/// Sets of code units and of code points, for many questions about the elements of a text.
///
/// A set of units looks at each unit of a text by itself. A set of code points takes a surrogate pair for one
/// element, so that nothing leaves half of a character behind. Both answer the same questions, so that each
/// algorithm is written once.
#pragma once

#include "main/vansys/string/Utf.h"
#include "vansys/TCodeUnit.h"
#include "vansys/TStringCore.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace vansys::detail
{

/// Refers to the units, which must outlive it.
class UnitSet
{
public:
    UnitSet(TCodeUnit const *units, int count) noexcept : m_begin(units), m_end(units + count)
    {
        for (TCodeUnit const *unit = m_begin; unit != m_end; ++unit)
            m_words[WordOf(*unit)] |= BitOf(*unit);
    }

    bool Contains(TCodeUnit unit) const noexcept
    {
        if ((m_words[WordOf(unit)] & BitOf(unit)) == 0)
            return false;
        return unit < AsciiEnd || std::find(m_begin, m_end, unit) != m_end;
    }

    /// Whether the element of `length` units at `text` is in the set.
    bool Contains(TCodeUnit const *text, int /*length*/) const noexcept { return Contains(*text); }

    /// The length of the element that begins, or ends, at `text`, which is not the end, or the begin.
    static constexpr int LengthAt(TCodeUnit const * /*text*/, TCodeUnit const * /*end*/) noexcept
    {
        return 1;
    }
    static constexpr int LengthBefore(TCodeUnit const * /*text*/, TCodeUnit const * /*begin*/) noexcept
    {
        return 1;
    }

private:
    static constexpr unsigned int AsciiEnd = 0x80;

    /// Each ASCII unit has a bit of its own, in the first two words. All others share those of the third:
    /// most of them that are not in the set are known by it.
    static constexpr unsigned int WordOf(TCodeUnit unit) noexcept
    {
        return unit < AsciiEnd ? unit / 64u : 2u;
    }

    static constexpr std::uint64_t BitOf(TCodeUnit unit) noexcept { return std::uint64_t{1} << unit % 64u; }

    std::uint64_t m_words[3] = {};
    TCodeUnit const *m_begin;
    TCodeUnit const *m_end;
};

/// The code points of a text in UTF-16, where a surrogate without its partner stands for itself. Refers to
/// the text, which must outlive it.
class CodePointSet
{
public:
    CodePointSet(TCodeUnit const *units, int count) noexcept
        : m_units(units, count),
          m_begin(units),
          m_end(units + count)
    {
    }

    bool Contains(TCodeUnit const *text, int length) const noexcept
    {
        if (!m_units.Contains(*text))
            return false;
        for (TCodeUnit const *member = m_begin; member != m_end;)
        {
            int const memberLength = LengthAt(member, m_end);
            if (memberLength == length && std::equal(text, text + length, member))
                return true;
            member += memberLength;
        }
        return false;
    }

    static constexpr int LengthAt(TCodeUnit const *text, TCodeUnit const *end) noexcept
    {
        return IsHighSurrogate(*text) && text + 1 != end && IsLowSurrogate(text[1]) ? 2 : 1;
    }

    static constexpr int LengthBefore(TCodeUnit const *text, TCodeUnit const *begin) noexcept
    {
        return IsLowSurrogate(text[-1]) && text - 1 != begin && IsHighSurrogate(text[-2]) ? 2 : 1;
    }

private:
    UnitSet m_units;
    TCodeUnit const *m_begin;
    TCodeUnit const *m_end;
};

/// Calls `action` with the set that the units are. Without surrogates, a set of code points is one of units,
/// which is faster.
template <class Action>
decltype(auto) WithSet(TCodeUnit const *units, int count, bool areCodePoints, Action action)
{
    auto const isSurrogate = [](TCodeUnit unit) { return IsHighSurrogate(unit) || IsLowSurrogate(unit); };
    if (areCodePoints && std::any_of(units, units + count, isSurrogate))
        return action(CodePointSet(units, count));
    return action(UnitSet(units, count));
}

template <class Action>
decltype(auto) WithSet(TStringCore::Text const &set, Action action)
{
    return WithSet(set.units(), set.length(), set.isCodePoints(), action);
}

/// The first element that is in the set, or that is not; otherwise `end`.
template <class Set>
TCodeUnit const *FindMember(TCodeUnit const *text, TCodeUnit const *end, Set const &set,
                            bool isMember) noexcept
{
    if constexpr (std::is_same_v<Set, UnitSet>)
        return std::find_if(text, end, [&](TCodeUnit unit) { return set.Contains(unit) == isMember; });

    while (text != end)
    {
        int const length = set.LengthAt(text, end);
        if (set.Contains(text, length) == isMember)
            break;
        text += length;
    }
    return text;
}

} // namespace vansys::detail
