/// @file
/// The functions that SHA-1 and SHA-2 are built from.
///
/// Everything is inlined into its caller, whatever the compiler's own measure says: a caller that is compiled
/// for a processor with more instructions is then made of those as a whole.
#pragma once

#include "vansys/sha2.h"

#include <cstring>

#define VANSYS_ALWAYS_INLINE [[gnu::always_inline]] inline

VANSYS_ALWAYS_INLINE sha2::Word32 sha2::Ch(Word32 x, Word32 y, Word32 z) noexcept
{
    return (x & y) ^ (~x & z);
}

VANSYS_ALWAYS_INLINE sha2::Word64 sha2::Ch(Word64 x, Word64 y, Word64 z) noexcept
{
    return (x & y) ^ (~x & z);
}

// Maj in a form with one operation less than the standard's: y, flipped where both x and z differ from it.
// And the x ^ y of one round is the y ^ z of the next.
VANSYS_ALWAYS_INLINE sha2::Word32 sha2::Maj(Word32 x, Word32 y, Word32 z) noexcept
{
    return ((x ^ y) & (y ^ z)) ^ y;
}

VANSYS_ALWAYS_INLINE sha2::Word64 sha2::Maj(Word64 x, Word64 y, Word64 z) noexcept
{
    return ((x ^ y) & (y ^ z)) ^ y;
}

VANSYS_ALWAYS_INLINE sha2::Word32 sha2::Parity(Word32 x, Word32 y, Word32 z) noexcept
{
    return x ^ y ^ z;
}

VANSYS_ALWAYS_INLINE sha2::Word32 sha2::ROTL32(int count, Word32 x) noexcept
{
    return (x << count) | (x >> (32 - count));
}

VANSYS_ALWAYS_INLINE sha2::Word32 sha2::ROTR32(int count, Word32 x) noexcept
{
    return (x >> count) | (x << (32 - count));
}

VANSYS_ALWAYS_INLINE sha2::Word64 sha2::ROTR64(int count, Word64 x) noexcept
{
    return (x >> count) | (x << (64 - count));
}

VANSYS_ALWAYS_INLINE sha2::Word32 sha2::SHR(int count, Word32 x) noexcept
{
    return x >> count;
}

VANSYS_ALWAYS_INLINE sha2::Word64 sha2::SHR(int count, Word64 x) noexcept
{
    return x >> count;
}

VANSYS_ALWAYS_INLINE sha2::Word32 sha2::Sigma0_256(Word32 x) noexcept
{
    return ROTR32(2, x) ^ ROTR32(13, x) ^ ROTR32(22, x);
}

VANSYS_ALWAYS_INLINE sha2::Word32 sha2::Sigma1_256(Word32 x) noexcept
{
    return ROTR32(6, x) ^ ROTR32(11, x) ^ ROTR32(25, x);
}

VANSYS_ALWAYS_INLINE sha2::Word32 sha2::sigma0_256(Word32 x) noexcept
{
    return ROTR32(7, x) ^ ROTR32(18, x) ^ SHR(3, x);
}

VANSYS_ALWAYS_INLINE sha2::Word32 sha2::sigma1_256(Word32 x) noexcept
{
    return ROTR32(17, x) ^ ROTR32(19, x) ^ SHR(10, x);
}

VANSYS_ALWAYS_INLINE sha2::Word64 sha2::Sigma0_512(Word64 x) noexcept
{
    return ROTR64(28, x) ^ ROTR64(34, x) ^ ROTR64(39, x);
}

VANSYS_ALWAYS_INLINE sha2::Word64 sha2::Sigma1_512(Word64 x) noexcept
{
    return ROTR64(14, x) ^ ROTR64(18, x) ^ ROTR64(41, x);
}

VANSYS_ALWAYS_INLINE sha2::Word64 sha2::sigma0_512(Word64 x) noexcept
{
    return ROTR64(1, x) ^ ROTR64(8, x) ^ SHR(7, x);
}

VANSYS_ALWAYS_INLINE sha2::Word64 sha2::sigma1_512(Word64 x) noexcept
{
    return ROTR64(19, x) ^ ROTR64(61, x) ^ SHR(6, x);
}

VANSYS_ALWAYS_INLINE sha2::Word32 sha2::REVERSE32(Word32 x) noexcept
{
    return __builtin_bswap32(x);
}

VANSYS_ALWAYS_INLINE sha2::Word64 sha2::REVERSE64(Word64 x) noexcept
{
    return __builtin_bswap64(x);
}

VANSYS_ALWAYS_INLINE void sha2::ADDINC128(Word64 (&counter)[2], Word64 increment) noexcept
{
    counter[0] += increment;
    if (counter[0] < increment)
        ++counter[1];
}

// Nothing is copied from a null pointer, not even no bytes.
VANSYS_ALWAYS_INLINE void sha2::MEMCPY_BCOPY(void *target, void const *source, std::size_t size) noexcept
{
    if (size != 0)
        std::memcpy(target, source, size);
}
