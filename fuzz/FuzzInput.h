/// @file
/// Values and texts taken from the bytes that a fuzzer makes up.
#pragma once

#include <vansys/TStringCore.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace fuzz
{

/// Ends the program when the condition does not hold: that is how a fuzzer, and the replay, report a fault.
inline void Require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Gives bytes from the front, zeros when there are none left.
class FuzzInput
{
public:
    FuzzInput(std::uint8_t const *data, std::size_t size) : m_next(data), m_end(data + size) {}

    bool IsEmpty() const { return m_next == m_end; }

    std::uint8_t TakeByte() { return IsEmpty() ? 0 : *m_next++; }

    /// A value from `low` to `high`, which are no more than 255 apart.
    int TakeInt(int low, int high) { return low + TakeByte() % (high - low + 1); }

    bool TakeBool() { return TakeByte() % 2 != 0; }

    /// Up to `limit` units, each written as one byte: letters, and now and then what a letter of the alphabet
    /// stands for, so that short inputs reach zero units, surrogates, and letters whose case folds oddly.
    std::u16string TakeText(std::size_t limit)
    {
        std::u16string text;
        std::size_t const length = TakeByte() % (limit + 1);
        while (text.size() < length && !IsEmpty())
            text.push_back(unitOf(TakeByte()));
        return text;
    }

    /// All that is left.
    std::string_view TakeRest()
    {
        std::string_view const rest(reinterpret_cast<char const *>(m_next),
                                    static_cast<std::size_t>(m_end - m_next));
        m_next = m_end;
        return rest;
    }

private:
    static char16_t unitOf(std::uint8_t byte)
    {
        static constexpr char16_t Odd[] = {0x0000, 0x00E9, 0x00C9, 0x0130, 0x0131, 0x03A3, 0x03C2, 0x03C3,
                                           0x1E9E, 0x00DF, 0x212A, 0x3000, 0xD83D, 0xDE00, 0xFEFF, 0xFFFF};
        return byte < 0x80 ? byte : Odd[byte % (sizeof Odd / sizeof *Odd)];
    }

    std::uint8_t const *m_next;
    std::uint8_t const *m_end;
};

inline TStringCore ToString(std::u16string const &text)
{
    return TStringCore(std::u16string_view(text));
}

} // namespace fuzz
