/// @file
/// The search by vectors of any width. Like those, everything here is local to the file that includes it.
#pragma once

#include "main/vansys/string/TextSearch.h"
#include "main/vansys/string/UnitComparison.h"

#include <cstddef>

namespace vansys::detail
{

namespace
{

template <int Bytes>
TCodeUnit const *FindUnitByVector(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit unit) noexcept
{
    if constexpr (Bytes < BytesOfVector)
    {
        for (; text != end; ++text)
        {
            if (*text == unit)
                return text;
        }
        return nullptr;
    }
    else
    {
        constexpr int Lanes = LanesOf<Bytes>;
        if (end - text < Lanes)
            return FindUnitByVector<Bytes / 2>(text, end, unit);
        auto const sought = Spread<Bytes>(unit);
        auto const equal = [sought](TCodeUnit const *units) { return LoadUnits<Bytes>(units) == sought; };

        // From the second vector on, loads are aligned: none spans two cache lines.
        if (auto const lanes = LaneBits(equal(text)))
            return text + FirstLane(lanes);
        text += Lanes - reinterpret_cast<std::uintptr_t>(text) % Bytes / sizeof *text;

        constexpr int Step = 4 * Lanes;
        for (; end - text >= Step; text += Step)
        {
            if (LaneBits((equal(text) | equal(text + Lanes)) |
                         (equal(text + 2 * Lanes) | equal(text + 3 * Lanes))))
                break;
        }
        for (; end - text >= Lanes; text += Lanes)
        {
            if (auto const lanes = LaneBits(equal(text)))
                return text + FirstLane(lanes);
        }
        // The rest, with units before it that are known to be others.
        text = end - Lanes;
        auto const lanes = LaneBits(equal(text));
        return lanes ? text + FirstLane(lanes) : nullptr;
    }
}

/// How the search for a needle finds the places worth a closer look: by two of its units.
template <int Bytes>
class ExactCandidates
{
public:
    ExactCandidates(TCodeUnit const *needle, int offset) noexcept
        : m_first(Spread<Bytes>(needle[0])),
          m_other(Spread<Bytes>(needle[offset])),
          m_offset(offset)
    {
    }

    /// The lanes of those among the places from `places` on.
    std::uint32_t In(TCodeUnit const *places) const noexcept
    {
        return LaneBits((LoadUnits<Bytes>(places) == m_first) &
                        (LoadUnits<Bytes>(places + m_offset) == m_other));
    }

private:
    UnitVectorOf<Bytes> m_first;
    UnitVectorOf<Bytes> m_other;
    int m_offset;
};

/// A way to compare (see `Exactly`), and what the search by vectors needs to know besides.
struct SearchExactly : Exactly
{
    template <int Bytes>
    using Candidates = ExactCandidates<Bytes>;

    template <Direction direction>
    static constexpr FindText *FindTwoWay = FindExactlyTwoWay<direction>;
};

/// Looks at all places where two units of the needle match. As long as few do, this is by far the fastest; it
/// keeps count of what it compares, and leaves the rest of the text to the two-way search when that grows out
/// of proportion.
template <Direction direction, class Way>
class VectorSearch
{
public:
    /// The needle is not empty, and not longer than the text.
    VectorSearch(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit const *needle,
                 int needleLength) noexcept
        : m_text(text),
          m_end(end),
          m_needle(needle),
          m_length(needleLength),
          m_offset(TestedOffset(needle, needleLength)),
          m_first(Way::Key(needle[0])),
          m_other(Way::Key(needle[m_offset])),
          m_start(IsForwards ? text : end - needleLength)
    {
    }

    template <int Bytes>
    TCodeUnit const *Find() noexcept
    {
        return FindAt<Bytes>(m_text, m_end - m_length + 1);
    }

private:
    static constexpr bool IsForwards = direction == Direction::Forwards;

    /// The offset of the unit that places are tested by, besides the first: the last one that differs from
    /// the first. So the text of one and the same unit, over and over, stops few searches.
    static int TestedOffset(TCodeUnit const *needle, int needleLength) noexcept
    {
        for (int offset = needleLength - 1; offset > 0; --offset)
        {
            if (Way::Key(needle[offset]) != Way::Key(needle[0]))
                return offset;
        }
        return needleLength - 1;
    }

    /// `begin` up to `end` are where the needle may begin.
    template <int Bytes>
    TCodeUnit const *FindAt(TCodeUnit const *begin, TCodeUnit const *end) noexcept
    {
        if constexpr (Bytes < BytesOfVector)
        {
            return FindOneByOne(begin, end);
        }
        else
        {
            constexpr int Lanes = LanesOf<Bytes>;
            if (end - begin < Lanes)
                return FindAt<Bytes / 2>(begin, end);
            typename Way::template Candidates<Bytes> const candidates(m_needle, m_offset);
            TCodeUnit const *places = IsForwards ? begin : end - Lanes;
            TCodeUnit const *const last = IsForwards ? end - Lanes : begin;
            for (;;)
            {
                std::uint32_t lanes = candidates.In(places);
                while (lanes)
                {
                    int const lane = IsForwards ? FirstLane(lanes) : LastLane(lanes);
                    if (Settles(places + lane))
                        return m_result;
                    lanes &= ~(std::uint32_t{3} << 2 * lane);
                }
                if (places == last)
                    return nullptr;
                // The last vector may overlap with the one before.
                if (IsForwards)
                    places = last - places < Lanes ? last : places + Lanes;
                else
                    places = places - last < Lanes ? last : places - Lanes;
            }
        }
    }

    /// Takes time in proportion to the places and the length of the needle, multiplied.
    TCodeUnit const *FindOneByOne(TCodeUnit const *begin, TCodeUnit const *end) const noexcept
    {
        TCodeUnit const first = m_first;
        for (auto left = end - begin; left > 0; --left)
        {
            TCodeUnit const *const place = IsForwards ? end - left : begin + left - 1;
            if (Way::Key(place[0]) == first && FirstDifference<Way>(place, m_needle, m_length) == m_length)
                return place;
        }
        return nullptr;
    }

    /// Whether what is at this place, or what has been spent up to it, settles the search.
    [[gnu::always_inline]] bool Settles(TCodeUnit const *place) noexcept
    {
        int const same = Way::Key(place[0]) == m_first && Way::Key(place[m_offset]) == m_other
                             ? FirstDifference<Way>(place, m_needle, m_length)
                             : 0;
        if (same == m_length)
        {
            m_result = place;
            return true;
        }
        // In proportion is a vector for four places passed or units of the needle, after some to begin with:
        // so a search that finds something takes no more than what it passes over is worth, and repeated
        // searches remain linear as well.
        constexpr int Free = 32;
        m_compared += 1 + same / LanesOfVector;
        std::int64_t const passed = IsForwards ? place - m_start : m_start - place;
        if (4 * (m_compared - Free) <= m_length + passed)
            return false;
        m_result = FindWithoutVectors(place);
        return true;
    }

    /// Searches this place and the others that are left.
    [[gnu::noinline]] TCodeUnit const *FindWithoutVectors(TCodeUnit const *place) const noexcept
    {
        TCodeUnit const *const begin = IsForwards ? place : m_text;
        TCodeUnit const *const end = IsForwards ? m_end : place + m_length;
        constexpr int ShortLength = 3; // up to here the two-way search has no units to pass over
        if (m_length <= ShortLength)
            return FindOneByOne(begin, end - m_length + 1);
        return Way::template FindTwoWay<direction>(begin, end, m_needle, m_length);
    }

    TCodeUnit const *m_text;
    TCodeUnit const *m_end;
    TCodeUnit const *m_needle;
    int m_length;
    int m_offset;
    TCodeUnit m_first; ///< the keys of the units that places are tested by
    TCodeUnit m_other;
    TCodeUnit const *m_start; ///< the place that is looked at first
    std::int64_t m_compared = 0;
    TCodeUnit const *m_result = nullptr;
};

template <Direction direction, class Way, int Bytes>
TCodeUnit const *FindByVector(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit const *needle,
                              int needleLength) noexcept
{
    return VectorSearch<direction, Way>(text, end, needle, needleLength).template Find<Bytes>();
}

template <int Bytes>
TextSearches SearchesByVector() noexcept
{
    return {FindUnitByVector<Bytes>, FindByVector<Direction::Forwards, SearchExactly, Bytes>,
            FindByVector<Direction::Backwards, SearchExactly, Bytes>};
}

} // namespace

} // namespace vansys::detail
