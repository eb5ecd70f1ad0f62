/// @file
/// Eight code units at a time, in the vector types that the compilers offer for every processor.
#pragma once

#include "vansys/TCodeUnit.h"

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#    include <emmintrin.h>
#endif

namespace vansys::detail
{

/// Units as signed numbers, which processors compare more readily: those from 0x8000 up are below 0. A
/// comparison gives -1 in each lane for which it holds, and 0 in the others.
using UnitVector = std::int16_t __attribute__((vector_size(16)));

inline constexpr int LanesOfVector = 8;

inline UnitVector LoadUnits(TCodeUnit const *from) noexcept
{
    UnitVector result;
    std::memcpy(&result, from, sizeof result);
    return result;
}

inline void StoreUnits(TCodeUnit *to, UnitVector units) noexcept
{
    std::memcpy(to, &units, sizeof units);
}

/// The units, each passed through `map`.
template <class Map>
UnitVector MapUnits(TCodeUnit const *from, Map const &map) noexcept
{
    auto const lane = [&](int i) { return static_cast<std::int16_t>(map(from[i])); };
    return UnitVector{lane(0), lane(1), lane(2), lane(3), lane(4), lane(5), lane(6), lane(7)};
}

/// Two equal bits for each lane of the result of a comparison, the lowest for lane 0.
inline std::uint32_t LaneBits(UnitVector comparison) noexcept
{
#if defined(__SSE2__)
    return static_cast<std::uint32_t>(_mm_movemask_epi8(reinterpret_cast<__m128i>(comparison)));
#else
    std::uint32_t bits = 0;
    for (int i = 0; i < LanesOfVector; ++i)
        bits |= (static_cast<std::uint32_t>(comparison[i]) & 3u) << (2 * i);
    return bits;
#endif
}

inline constexpr std::uint32_t AllLanes = 0xFFFF;

/// The first lane with bits set; there is one.
inline int FirstLane(std::uint32_t bits) noexcept
{
    return std::countr_zero(bits) / 2;
}

/// The lanes that hold a unit from `first` to `last`, which are ASCII.
inline UnitVector AreBetween(UnitVector units, char first, char last) noexcept
{
    // Shifts the range to the upper end of the signed numbers, so that one comparison finds it. Unsigned, for
    // the addition may carry.
    using Unsigned = std::uint16_t __attribute__((vector_size(16)));
    auto const shifted = reinterpret_cast<Unsigned>(units) + static_cast<std::uint16_t>(0x7FFF - last);
    return reinterpret_cast<UnitVector>(shifted) > static_cast<std::int16_t>(0x7FFF - last + first - 1);
}

inline bool AreAscii(UnitVector units) noexcept
{
    return LaneBits((units & static_cast<std::int16_t>(0xFF80)) == 0) == AllLanes;
}

/// The bit in which the two cases of an ASCII letter differ.
inline constexpr std::int16_t AsciiCaseBit = 0x20;

} // namespace vansys::detail
