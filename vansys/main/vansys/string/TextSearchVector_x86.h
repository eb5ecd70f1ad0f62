/// @file
/// The search by vectors, once for every width of them. Everything here is local to the file that includes
/// it, as each is compiled for another processor.
#pragma once

#include "main/vansys/string/TextSearch.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <emmintrin.h>

namespace vansys::detail
{

namespace
{

/// No vector: what is too short for the smallest one is searched unit by unit.
struct NoVector
{
    static constexpr int Units = 1;
};

/// A register of units. `equal` gives all ones for each unit that is equal, `mask` two bits for each unit.
class Sse2Vector
{
public:
    static constexpr int Units = 8;
    using Mask = std::uint32_t;
    using Half = NoVector;

    explicit Sse2Vector(TCodeUnit unit) noexcept : m_units(_mm_set1_epi16(static_cast<short>(unit))) {}

    Sse2Vector equal(TCodeUnit const *text) const noexcept
    {
        auto const *const from = reinterpret_cast<__m128i const *>(text);
        return Sse2Vector(_mm_cmpeq_epi16(m_units, _mm_loadu_si128(from)));
    }

    Mask mask() const noexcept { return static_cast<Mask>(_mm_movemask_epi8(m_units)); }

    friend Sse2Vector operator&(Sse2Vector a, Sse2Vector b) noexcept
    {
        return Sse2Vector(_mm_and_si128(a.m_units, b.m_units));
    }

    friend Sse2Vector operator|(Sse2Vector a, Sse2Vector b) noexcept
    {
        return Sse2Vector(_mm_or_si128(a.m_units, b.m_units));
    }

private:
    explicit Sse2Vector(__m128i units) noexcept : m_units(units) {}

    __m128i m_units;
};

/// The unit that the lowest bit of a mask belongs to.
template <class Mask>
int LowestUnit(Mask mask) noexcept
{
    return __builtin_ctz(mask) / 2;
}

template <class Vector>
TCodeUnit const *FindUnit(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit unit) noexcept
{
    if constexpr (Vector::Units == 1)
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
        if (end - text < Vector::Units)
            return FindUnit<typename Vector::Half>(text, end, unit);
        Vector const sought(unit);

        // From the second vector on, loads are aligned: none spans two cache lines.
        if (auto const mask = sought.equal(text).mask())
            return text + LowestUnit(mask);
        constexpr std::size_t VectorBytes = Vector::Units * sizeof(TCodeUnit);
        text += Vector::Units - reinterpret_cast<std::uintptr_t>(text) % VectorBytes / sizeof(TCodeUnit);

        constexpr int Step = 4 * Vector::Units;
        for (; end - text >= Step; text += Step)
        {
            Vector const half = sought.equal(text) | sought.equal(text + Vector::Units);
            Vector const other =
                sought.equal(text + 2 * Vector::Units) | sought.equal(text + 3 * Vector::Units);
            if ((half | other).mask())
                break;
        }
        for (; end - text >= Vector::Units; text += Vector::Units)
        {
            if (auto const mask = sought.equal(text).mask())
                return text + LowestUnit(mask);
        }
        // The rest, with units before it that are known to be others.
        text = end - Vector::Units;
        auto const mask = sought.equal(text).mask();
        return mask ? text + LowestUnit(mask) : nullptr;
    }
}

/// The offset of the unit of the needle that places are tested by, besides the first: the last one that
/// differs from the first. So the text of one and the same unit, over and over, stops no search.
inline int TestedOffset(TCodeUnit const *needle, int needleLength) noexcept
{
    for (int offset = needleLength - 1; offset > 0; --offset)
    {
        if (needle[offset] != needle[0])
            return offset;
    }
    return needleLength - 1;
}

/// `places` are where the needle may begin.
template <class Vector>
TCodeUnit const *FindAtPlaces(TCodeUnit const *places, TCodeUnit const *placesEnd, TCodeUnit const *needle,
                              int needleLength, int offset) noexcept
{
    auto const matches = [=](TCodeUnit const *place)
    { return std::memcmp(place, needle, static_cast<std::size_t>(needleLength) * sizeof *needle) == 0; };

    if constexpr (Vector::Units == 1)
    {
        for (; places != placesEnd; ++places)
        {
            if (places[0] == needle[0] && places[offset] == needle[offset] && matches(places))
                return places;
        }
        return nullptr;
    }
    else
    {
        if (placesEnd - places < Vector::Units)
            return FindAtPlaces<typename Vector::Half>(places, placesEnd, needle, needleLength, offset);
        Vector const first(needle[0]);
        Vector const other(needle[offset]);
        TCodeUnit const *const last = placesEnd - Vector::Units;
        for (;;)
        {
            auto mask = (first.equal(places) & other.equal(places + offset)).mask();
            while (mask)
            {
                int const unit = LowestUnit(mask);
                if (matches(places + unit))
                    return places + unit;
                mask &= ~(decltype(mask){3} << 2 * unit);
            }
            if (places == last)
                return nullptr;
            // The last vector may overlap with the one before.
            places = last - places < Vector::Units ? last : places + Vector::Units;
        }
    }
}

template <class Vector>
TCodeUnit const *FindText(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit const *needle,
                          int needleLength) noexcept
{
    return FindAtPlaces<Vector>(text, end - needleLength + 1, needle, needleLength,
                                TestedOffset(needle, needleLength));
}

template <class Vector>
TextSearches SearchesByVector() noexcept
{
    return {FindUnit<Vector>, FindText<Vector>};
}

} // namespace

} // namespace vansys::detail
