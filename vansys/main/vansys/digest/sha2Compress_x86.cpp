#include "main/vansys/digest/sha2Compress.h"

#include "main/vansys/digest/sha2CompressAvx2_x86.h"
#include "main/vansys/digest/sha2Constants.h"

#include <immintrin.h>

// Functions with these attributes may only run, and may only be inlined into functions that run, on
// processors with the instructions they name. Entry points align the stack themselves: vectors are kept
// there, and on 32-bit Windows callers align it to four bytes only.
#define VANSYS_TARGET_SHA __attribute__((target("sha,sse4.1,ssse3")))
#define VANSYS_ENTRY __attribute__((force_align_arg_pointer))

namespace vansys::detail
{

namespace
{

constexpr std::size_t BlockSize = 64;

/// Message words of a block, four in each vector.
constexpr int MessageVectors = 4;

VANSYS_TARGET_SHA inline __m128i LoadVector(void const *source) noexcept
{
    return _mm_loadu_si128(static_cast<__m128i const *>(source));
}

VANSYS_TARGET_SHA inline void StoreVector(void *target, __m128i vector) noexcept
{
    _mm_storeu_si128(static_cast<__m128i *>(target), vector);
}

// SHA-1. Its vectors hold the earliest word in the highest lane.

/// Turns 16 bytes of the message into four words in host order, the first in the highest lane.
VANSYS_TARGET_SHA inline __m128i LoadSha1Message(unsigned char const *bytes) noexcept
{
    return _mm_shuffle_epi8(LoadVector(bytes), _mm_set_epi64x(0x0001020304050607, 0x08090a0b0c0d0e0f));
}

struct Sha1State
{
    __m128i abcd;
    /// `abcd` of four rounds ago, or the word e itself before the first round: the e of the next four rounds
    /// is made of its first word.
    __m128i before;
};

/// 20 rounds with the function and constant number `Function`. The message words of the next 16 rounds
/// replace those that were used.
template <int Function>
VANSYS_TARGET_SHA inline void Sha1Rounds(Sha1State &state, __m128i (&message)[MessageVectors]) noexcept
{
#pragma GCC unroll 5
    for (int index = 5 * Function; index < 5 * Function + 5; ++index)
    {
        __m128i &words = message[index % 4];
        __m128i const e =
            index == 0 ? _mm_add_epi32(state.before, words) : _mm_sha1nexte_epu32(state.before, words);
        state.before = state.abcd;
        state.abcd = _mm_sha1rnds4_epu32(state.abcd, e, Function);

        __m128i const mixed =
            _mm_xor_si128(_mm_sha1msg1_epu32(words, message[(index + 1) % 4]), message[(index + 2) % 4]);
        words = _mm_sha1msg2_epu32(mixed, message[(index + 3) % 4]);
    }
}

VANSYS_TARGET_SHA VANSYS_ENTRY void CompressSha1(std::uint32_t *state, unsigned char const *blocks,
                                                 std::size_t blockCount)
{
    constexpr int Reversed = 0x1b;
    __m128i abcd = _mm_shuffle_epi32(LoadVector(state), Reversed);
    __m128i e = _mm_set_epi32(static_cast<int>(state[4]), 0, 0, 0);
    for (; blockCount > 0; --blockCount, blocks += BlockSize)
    {
        __m128i message[MessageVectors];
        for (int index = 0; index < MessageVectors; ++index)
            message[index] = LoadSha1Message(blocks + 16 * index);

        Sha1State work{abcd, e};
        Sha1Rounds<0>(work, message);
        Sha1Rounds<1>(work, message);
        Sha1Rounds<2>(work, message);
        Sha1Rounds<3>(work, message);
        abcd = _mm_add_epi32(abcd, work.abcd);
        e = _mm_sha1nexte_epu32(work.before, e);
    }
    StoreVector(state, _mm_shuffle_epi32(abcd, Reversed));
    state[4] = static_cast<std::uint32_t>(_mm_extract_epi32(e, 3));
}

// SHA-256. Message vectors hold the earliest word in the lowest lane; the state is held as the instructions
// want it, with the words named from the highest lane to the lowest.

VANSYS_TARGET_SHA inline __m128i LoadSha256Message(unsigned char const *bytes) noexcept
{
    return _mm_shuffle_epi8(LoadVector(bytes), _mm_set_epi64x(0x0c0d0e0f08090a0b, 0x0405060700010203));
}

struct Sha256State
{
    __m128i abef;
    __m128i cdgh;
};

/// 16 rounds, the first of which is number `first`. The message words of the next 16 replace those used.
VANSYS_TARGET_SHA inline void Sha256Rounds(Sha256State &state, __m128i (&message)[MessageVectors],
                                           int first) noexcept
{
#pragma GCC unroll 4
    for (int index = 0; index < MessageVectors; ++index)
    {
        __m128i &words = message[index];
        __m128i const sum = _mm_add_epi32(words, LoadVector(Sha256Constants + first + 4 * index));
        state.cdgh = _mm_sha256rnds2_epu32(state.cdgh, state.abef, sum);
        state.abef = _mm_sha256rnds2_epu32(state.abef, state.cdgh, _mm_unpackhi_epi64(sum, sum));

        __m128i const &last = message[(index + 3) % 4];
        __m128i const sevenBack = _mm_alignr_epi8(last, message[(index + 2) % 4], 4);
        __m128i const mixed = _mm_add_epi32(_mm_sha256msg1_epu32(words, message[(index + 1) % 4]), sevenBack);
        words = _mm_sha256msg2_epu32(mixed, last);
    }
}

VANSYS_TARGET_SHA VANSYS_ENTRY void CompressSha256(std::uint32_t *state, unsigned char const *blocks,
                                                   std::size_t blockCount)
{
    constexpr int PairsSwapped = 0xb1;
    constexpr int Reversed = 0x1b;
    __m128i const badc = _mm_shuffle_epi32(LoadVector(state), PairsSwapped); // lanes 3 to 0: c d a b
    __m128i const efgh = _mm_shuffle_epi32(LoadVector(state + 4), Reversed);
    Sha256State total{_mm_alignr_epi8(badc, efgh, 8), _mm_blend_epi16(efgh, badc, 0xf0)};
    for (; blockCount > 0; --blockCount, blocks += BlockSize)
    {
        __m128i message[MessageVectors];
        for (int index = 0; index < MessageVectors; ++index)
            message[index] = LoadSha256Message(blocks + 16 * index);

        Sha256State work = total;
        for (int first = 0; first < 64; first += 16)
            Sha256Rounds(work, message, first);
        total.abef = _mm_add_epi32(total.abef, work.abef);
        total.cdgh = _mm_add_epi32(total.cdgh, work.cdgh);
    }
    __m128i const feba = _mm_shuffle_epi32(total.abef, Reversed);
    __m128i const dchg = _mm_shuffle_epi32(total.cdgh, PairsSwapped);
    StoreVector(state, _mm_blend_epi16(feba, dchg, 0xf0));
    StoreVector(state + 4, _mm_alignr_epi8(dchg, feba, 8));
}

} // namespace

Sha2Compressions FastestSha2Compressions(CpuFeatures features) noexcept
{
    Sha2Compressions fastest = PortableSha2Compressions();
    if (features.sha)
    {
        fastest.sha1 = CompressSha1;
        fastest.sha256 = CompressSha256;
    }
    if (features.avx2)
        fastest.sha512 = CompressSha512Avx2;
    return fastest;
}

} // namespace vansys::detail
