/// @file
/// Many code units or bytes at a time: the vectors of search, comparison, case and UTF-8.
///
/// They are the vector types that the compilers offer for every processor, of 16 bytes, or of 32 in files
/// compiled for processors with AVX2. Files compiled for different processors must not share code, so
/// everything here is local to the file that includes it.
#pragma once

#include "vansys/TCodeUnit.h"

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#    include <immintrin.h>
#endif

namespace vansys::detail
{

namespace
{

template <int Bytes>
struct UnitVectorType;

template <>
struct UnitVectorType<16>
{
    using Type = std::int16_t __attribute__((vector_size(16)));
};

template <>
struct UnitVectorType<32>
{
    using Type = std::int16_t __attribute__((vector_size(32)));
};

/// Units as signed numbers, which processors compare more readily: those from 0x8000 up are below 0. A
/// comparison gives -1 in each lane for which it holds, and 0 in the others.
template <int Bytes>
using UnitVectorOf = typename UnitVectorType<Bytes>::Type;

/// The narrowest, which every processor has.
inline constexpr int BytesOfVector = 16;
using UnitVector = UnitVectorOf<BytesOfVector>;
using ByteVector = signed char __attribute__((vector_size(BytesOfVector)));

template <int Bytes>
inline constexpr int LanesOf = Bytes / static_cast<int>(sizeof(TCodeUnit));

inline constexpr int LanesOfVector = LanesOf<BytesOfVector>;

// Memory

template <int Bytes = BytesOfVector>
inline UnitVectorOf<Bytes> LoadUnits(TCodeUnit const *from) noexcept
{
    UnitVectorOf<Bytes> result;
    std::memcpy(&result, from, sizeof result);
    return result;
}

inline void StoreUnits(TCodeUnit *to, UnitVector units) noexcept
{
    std::memcpy(to, &units, sizeof units);
}

inline ByteVector LoadBytes(void const *from) noexcept
{
    ByteVector result;
    std::memcpy(&result, from, sizeof result);
    return result;
}

inline void StoreBytes(void *to, ByteVector bytes) noexcept
{
    std::memcpy(to, &bytes, sizeof bytes);
}

/// The unit in every lane.
template <int Bytes = BytesOfVector>
inline UnitVectorOf<Bytes> Spread(TCodeUnit unit) noexcept
{
    return UnitVectorOf<Bytes>{} + static_cast<std::int16_t>(unit);
}

/// The units, each passed through `map`.
template <class Map>
UnitVector MapUnits(TCodeUnit const *from, Map const &map) noexcept
{
    auto const lane = [&](int i) { return static_cast<std::int16_t>(map(from[i])); };
    return UnitVector{lane(0), lane(1), lane(2), lane(3), lane(4), lane(5), lane(6), lane(7)};
}

// Conversion between units and bytes

/// Each byte as a unit.
inline void StoreWidened(TCodeUnit *to, ByteVector bytes) noexcept
{
    // Every target is little-endian, so that a zero behind a byte makes a unit of it.
    ByteVector const zero{};
    StoreBytes(to,
               __builtin_shufflevector(bytes, zero, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
    StoreBytes(to + LanesOfVector, __builtin_shufflevector(bytes, zero, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28,
                                                           13, 29, 14, 30, 15, 31));
}

#if defined(__SSE2__)

/// Units below 0x80 as bytes; what others become does not matter.
inline ByteVector Narrow(UnitVector low, UnitVector high) noexcept
{
    return reinterpret_cast<ByteVector>(
        _mm_packus_epi16(reinterpret_cast<__m128i>(low), reinterpret_cast<__m128i>(high)));
}

#else

inline ByteVector Narrow(UnitVector low, UnitVector high) noexcept
{
    return __builtin_shufflevector(reinterpret_cast<ByteVector>(low), reinterpret_cast<ByteVector>(high), 0,
                                   2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
}

#endif

// Masks

#if defined(__SSE2__)

/// Two equal bits for each lane of the result of a comparison, the lowest for lane 0.
inline std::uint32_t LaneBits(UnitVector comparison) noexcept
{
    return static_cast<std::uint32_t>(_mm_movemask_epi8(reinterpret_cast<__m128i>(comparison)));
}

/// A bit for each byte that is not ASCII, the lowest for the first.
inline std::uint32_t OtherThanAscii(ByteVector bytes) noexcept
{
    return static_cast<std::uint32_t>(_mm_movemask_epi8(reinterpret_cast<__m128i>(bytes)));
}

/// A bit for each of 16 units that is not ASCII.
inline std::uint32_t OtherThanAscii(UnitVector low, UnitVector high) noexcept
{
    // Saturating addition carries every unit from 0x80 up, and no other, into the sign bit.
    __m128i const carry = _mm_set1_epi16(0x7F80);
    return static_cast<std::uint32_t>(
        _mm_movemask_epi8(_mm_packs_epi16(_mm_adds_epu16(reinterpret_cast<__m128i>(low), carry),
                                          _mm_adds_epu16(reinterpret_cast<__m128i>(high), carry))));
}

#else

inline std::uint32_t OtherThanAscii(ByteVector bytes) noexcept
{
    std::uint32_t bits = 0;
    for (int i = 0; i < BytesOfVector; ++i)
        bits |= static_cast<std::uint32_t>(bytes[i] < 0) << i;
    return bits;
}

inline std::uint32_t LaneBits(UnitVector comparison) noexcept
{
    return OtherThanAscii(reinterpret_cast<ByteVector>(comparison));
}

inline std::uint32_t OtherThanAscii(UnitVector low, UnitVector high) noexcept
{
    auto const others = static_cast<std::int16_t>(0xFF80);
    return OtherThanAscii(Narrow((low & others) != 0, (high & others) != 0));
}

#endif

#if defined(__AVX2__)

inline std::uint32_t LaneBits(UnitVectorOf<32> comparison) noexcept
{
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(reinterpret_cast<__m256i>(comparison)));
}

#endif

inline constexpr std::uint32_t AllLanes = 0xFFFF; ///< of a `UnitVector`

/// The first lane with bits set; there is one.
inline int FirstLane(std::uint32_t bits) noexcept
{
    return __builtin_ctz(bits) / 2;
}

/// The last lane with bits set; there is one.
inline int LastLane(std::uint32_t bits) noexcept
{
    return (31 - __builtin_clz(bits)) / 2;
}

// ASCII

/// The lanes that hold a unit from `first` to `last`, which are ASCII.
inline UnitVector AreBetween(UnitVector units, char first, char last) noexcept
{
    // Shifts the range to the upper end of the signed numbers, so that one comparison finds it. Unsigned, for
    // the addition may carry.
    using Unsigned = std::uint16_t __attribute__((vector_size(BytesOfVector)));
    auto const shifted = reinterpret_cast<Unsigned>(units) + static_cast<std::uint16_t>(0x7FFF - last);
    return reinterpret_cast<UnitVector>(shifted) > static_cast<std::int16_t>(0x7FFF - last + first - 1);
}

/// The lanes that hold ASCII.
inline UnitVector AsciiLanes(UnitVector units) noexcept
{
    return (units & static_cast<std::int16_t>(0xFF80)) == 0;
}

inline bool AreAscii(UnitVector units) noexcept
{
    return LaneBits(AsciiLanes(units)) == AllLanes;
}

/// The bit in which the two cases of an ASCII letter differ.
inline constexpr std::int16_t AsciiCaseBit = 0x20;

} // namespace

} // namespace vansys::detail
