/// @file
/// Checking a format string while compiling.
#pragma once

#include "vansys/TCodeUnit.h"
#include "vansys/detail/FormatScanner.h"

namespace vansys::detail
{

/// The zeros of the decimal digits in Unicode 15 that are one unit. Nine more digits follow each of them.
inline constexpr TCodeUnit DecimalZeros[] = {
    0x0030, 0x0660, 0x06F0, 0x07C0, 0x0966, 0x09E6, 0x0A66, 0x0AE6, 0x0B66, 0x0BE6, 0x0C66, 0x0CE6, 0x0D66,
    0x0DE6, 0x0E50, 0x0ED0, 0x0F20, 0x1040, 0x1090, 0x17E0, 0x1810, 0x1946, 0x19D0, 0x1A80, 0x1A90, 0x1B50,
    0x1BB0, 0x1C40, 0x1C50, 0xA620, 0xA8D0, 0xA900, 0xA9D0, 0xA9F0, 0xAA50, 0xABF0, 0xFF10,
};

/// What `TCType::isDigit` says with ICU's data for Unicode 15.
constexpr bool IsDecimalDigit(TCodeUnit unit) noexcept
{
    for (TCodeUnit const zero : DecimalZeros)
    {
        if (unit >= zero && unit - zero < 10)
            return true;
    }
    return false;
}

/// Goes through zero-terminated text of any kind, character by character. It gives the unit of each, or
/// U+FFFD for those that have two units, or are none. To the scanner, which knows text from digits and
/// percent signs only, these are all the same.
template <class Character>
class FormatLiteralIterator
{
public:
    struct Sentinel
    {
    };

    constexpr explicit FormatLiteralIterator(Character const *text) noexcept : m_next(text) {}

    constexpr TCodeUnit operator*() const noexcept
    {
        Character const *next = m_next;
        return Take(next);
    }

    constexpr FormatLiteralIterator &operator++() noexcept
    {
        Take(m_next);
        ++m_position;
        return *this;
    }

    constexpr FormatLiteralIterator operator++(int) noexcept
    {
        FormatLiteralIterator const before = *this;
        ++*this;
        return before;
    }

    friend constexpr int operator-(FormatLiteralIterator const &a, FormatLiteralIterator const &b) noexcept
    {
        return a.m_position - b.m_position;
    }

    friend constexpr bool operator==(FormatLiteralIterator const &iterator, Sentinel) noexcept
    {
        return *iterator.m_next == Character{0};
    }

    friend constexpr bool operator!=(FormatLiteralIterator const &iterator, Sentinel sentinel) noexcept
    {
        return !(iterator == sentinel);
    }

private:
    static constexpr TCodeUnit Other = 0xFFFD;

    static constexpr TCodeUnit Take(Character const *&text) noexcept
    {
        if constexpr (sizeof(Character) == 1)
            return TakeUtf8(text);
        else
        {
            auto const value = static_cast<unsigned long>(*text++);
            return value > 0xFFFF ? Other : static_cast<TCodeUnit>(value);
        }
    }

    /// With the rules that TStringCore::fromUtf8 states; the terminator continues no sequence.
    static constexpr TCodeUnit TakeUtf8(Character const *&text) noexcept
    {
        unsigned long value = static_cast<unsigned char>(*text++);
        if (value < 0x80)
            return static_cast<TCodeUnit>(value);
        int continuations = 0;
        while (continuations < 6 && (value & 0x40u >> continuations) != 0)
            ++continuations;
        if (continuations == 0 || continuations == 6)
            return Other;
        value &= 0x3Fu >> continuations;
        for (; continuations > 0; --continuations)
        {
            auto const next = static_cast<unsigned char>(*text);
            if ((next & 0xC0) != 0x80)
                return Other;
            value = value << 6 | (next & 0x3F);
            ++text;
        }
        return value > 0xFFFF ? Other : static_cast<TCodeUnit>(value);
    }

    Character const *m_next;
    int m_position = 0; ///< in characters
};

struct FormatLiteralSink
{
    constexpr bool IsDigit(TCodeUnit unit) const noexcept { return IsDecimalDigit(unit); }

    constexpr void AddMarker(FormatMarker const &) const noexcept {}

    /// Not constexpr: calling it while compiling is the error, which the compiler shows with the message.
    int Fail(char const *) const noexcept { return 0; }
};

/// Scans zero-terminated text, and compares the highest marker number with the number of arguments, unless
/// that is negative.
template <class Character>
constexpr void CheckFormatLiteral(Character const *text, int argumentCount)
{
    FormatLiteralSink sink;
    using Iterator = FormatLiteralIterator<Character>;
    int const highestNumber = text ? ScanFormat(Iterator(text), typename Iterator::Sentinel(), sink) : 0;
    if (argumentCount >= 0 && highestNumber > argumentCount)
        sink.Fail("Insufficient parameters to format string");
}

} // namespace vansys::detail
