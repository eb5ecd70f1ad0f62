/// @file
/// The search for text whose time is linear whatever the text, in no memory but a few words: M. Crochemore,
/// D. Perrin, "Two-Way String-Matching", Journal of the ACM 38 (1991), pages 651-675.
#pragma once

#include "vansys/TCodeUnit.h"

#include <cstdint>

namespace vansys::detail
{

/// From which end on a text is searched.
enum class Direction
{
    Forwards,
    Backwards
};

/// A text as the search reads it: from its end on when that goes backwards.
template <Direction direction>
class DirectedText
{
public:
    DirectedText(TCodeUnit const *text, TCodeUnit const *end) noexcept
        : m_first(direction == Direction::Forwards ? text : end - 1),
          m_length(static_cast<int>(end - text))
    {
    }

    int Length() const noexcept { return m_length; }

    TCodeUnit operator[](int i) const noexcept { return m_first[direction == Direction::Forwards ? i : -i]; }

    /// Where the `length` units from `i` on begin in memory.
    TCodeUnit const *Place(int i, int length) const noexcept
    {
        return direction == Direction::Forwards ? m_first + i : m_first - i - length + 1;
    }

private:
    TCodeUnit const *m_first;
    int m_length;
};

/// For a way to compare, such as `Exactly`: any order of the keys will do.
template <Direction direction, class Way>
class TwoWaySearch
{
public:
    /// The needle is not empty.
    explicit TwoWaySearch(DirectedText<direction> needle) noexcept : m_needle(needle)
    {
        // The later of the two suffixes that are maximal in the order of keys, and in the opposite one,
        // begins at a critical position: the shortest repetition around it is as long as the period of the
        // needle.
        for (int i = 0; i < Length(); ++i)
            m_units |= BitOf(m_needle[i]);
        Suffix const suffix = MaximalSuffix([](TCodeUnit a, TCodeUnit b) { return a < b; });
        Suffix const opposite = MaximalSuffix([](TCodeUnit a, TCodeUnit b) { return a > b; });
        Suffix const &critical = suffix.begin > opposite.begin ? suffix : opposite;
        m_critical = critical.begin;
        m_shift = critical.period;
        if (!HasPeriod(m_critical, critical.period)) // the period is longer than either part
            m_shift = (m_critical > Length() - m_critical ? m_critical : Length() - m_critical) + 1;
    }

    /// The first place of the needle, by the direction; null when there is none.
    TCodeUnit const *Find(DirectedText<direction> text) const noexcept
    {
        for (int place = 0; text.Length() - place >= Length();)
        {
            // By far the most places of usual text are passed here.
            if (!MayHave(text[place + Length() - 1]))
            {
                place += Length();
                continue;
            }
            int i = m_critical;
            while (i < Length() && Way::IsSame(m_needle[i], text[place + i]))
                ++i;
            if (i < Length())
            {
                place += i - m_critical + 1;
                continue;
            }
            i = m_critical;
            while (i > 0 && Way::IsSame(m_needle[i - 1], text[place + i - 1]))
                --i;
            if (i == 0)
                return text.Place(place, Length());
            // Where the period is short, what has matched need not be remembered, as it would have to be for
            // all matches: the next place is the match, or is followed by a long step.
            place += m_shift;
        }
        return nullptr;
    }

private:
    struct Suffix
    {
        int begin;
        int period;
    };

    int Length() const noexcept { return m_needle.Length(); }

    static std::uint64_t BitOf(TCodeUnit unit) noexcept { return std::uint64_t{1} << Way::Key(unit) % 64u; }

    /// Whether there may be such a unit in the needle.
    bool MayHave(TCodeUnit unit) const noexcept { return (m_units & BitOf(unit)) != 0; }

    /// The last of all suffixes in the order that `isBefore` gives, and its period.
    template <class IsBefore>
    Suffix MaximalSuffix(IsBefore isBefore) const noexcept
    {
        Suffix maximal{0, 1};
        int other = 1;  // begins the suffix that the maximal one so far is compared with
        int offset = 0; // up to which both are the same
        while (Length() - other > offset)
        {
            TCodeUnit const a = Way::Key(m_needle[other + offset]);
            TCodeUnit const b = Way::Key(m_needle[maximal.begin + offset]);
            if (isBefore(a, b))
            {
                other += offset + 1;
                offset = 0;
                maximal.period = other - maximal.begin;
            }
            else if (a != b)
            {
                maximal = {other, 1};
                other = maximal.begin + 1;
                offset = 0;
            }
            else if (++offset == maximal.period)
            {
                other += offset;
                offset = 0;
            }
        }
        return maximal;
    }

    /// Whether the first `count` units come again one period later.
    bool HasPeriod(int count, int period) const noexcept
    {
        for (int i = 0; i < count; ++i)
        {
            if (!Way::IsSame(m_needle[i], m_needle[i + period]))
                return false;
        }
        return true;
    }

    DirectedText<direction> m_needle;
    std::uint64_t m_units = 0; ///< a bit for each unit of the needle, by the lower bits of its key
    int m_critical;            ///< the needle is compared from here on first, and then what is before
    int m_shift;               ///< how far to go on when only what is before differs
};

} // namespace vansys::detail
