#include "main/vansys/digest/sha2CompressAvx2_x86.h"

#include "main/vansys/digest/sha2Portable.h"

#include <immintrin.h>

#define VANSYS_TARGET_AVX2 __attribute__((target("avx2,bmi,bmi2")))
#define VANSYS_INLINE_AVX2 VANSYS_ALWAYS_INLINE VANSYS_TARGET_AVX2

// The rounds of a block depend on each other and on the block before, but its message schedule does not. So
// the schedules of four blocks are computed side by side, one block in each lane of the vectors, while the
// rounds of the first of the four keep the scalar units busy.

namespace vansys::detail
{

namespace
{

constexpr std::size_t BlockSize = 128;
constexpr std::size_t BatchBlocks = 4;
constexpr std::size_t RoundCount = Sha2Portable::Sha512::s_rounds;
constexpr std::size_t GroupSize = Sha2Portable::s_messageWords;

using Group = std::make_index_sequence<GroupSize>;
using State = Sha2Portable::Sha2State<Sha2Portable::Sha512>;

struct Batch
{
    /// Word n of the four messages; the next 16 rounds' words replace those of the last.
    __m256i message[GroupSize];
    /// The sums of message word and constant of each round of the four blocks.
    alignas(32) std::uint64_t inputs[RoundCount][BatchBlocks];
};

template <int Count>
VANSYS_INLINE_AVX2 __m256i RotateRight(__m256i x) noexcept
{
    return _mm256_or_si256(_mm256_srli_epi64(x, Count), _mm256_slli_epi64(x, 64 - Count));
}

VANSYS_INLINE_AVX2 __m256i Xor(__m256i x, __m256i y, __m256i z) noexcept
{
    return _mm256_xor_si256(_mm256_xor_si256(x, y), z);
}

VANSYS_INLINE_AVX2 __m256i SmallSigma0(__m256i x) noexcept
{
    return Xor(RotateRight<1>(x), RotateRight<8>(x), _mm256_srli_epi64(x, 7));
}

VANSYS_INLINE_AVX2 __m256i SmallSigma1(__m256i x) noexcept
{
    return Xor(RotateRight<19>(x), RotateRight<61>(x), _mm256_srli_epi64(x, 6));
}

/// Four words of one block, in host order.
VANSYS_INLINE_AVX2 __m256i LoadMessage(unsigned char const *bytes) noexcept
{
    __m256i const reversal =
        _mm256_set_epi64x(0x08090a0b0c0d0e0f, 0x0001020304050607, 0x08090a0b0c0d0e0f, 0x0001020304050607);
    return _mm256_shuffle_epi8(_mm256_loadu_si256(reinterpret_cast<__m256i const *>(bytes)), reversal);
}

/// Reads four words of each block, and turns rows into columns.
VANSYS_INLINE_AVX2 void LoadFourWords(__m256i *message, unsigned char const *blocks) noexcept
{
    __m256i const row0 = LoadMessage(blocks);
    __m256i const row1 = LoadMessage(blocks + BlockSize);
    __m256i const row2 = LoadMessage(blocks + 2 * BlockSize);
    __m256i const row3 = LoadMessage(blocks + 3 * BlockSize);
    __m256i const even01 = _mm256_unpacklo_epi64(row0, row1);
    __m256i const odd01 = _mm256_unpackhi_epi64(row0, row1);
    __m256i const even23 = _mm256_unpacklo_epi64(row2, row3);
    __m256i const odd23 = _mm256_unpackhi_epi64(row2, row3);
    message[0] = _mm256_permute2x128_si256(even01, even23, 0x20);
    message[1] = _mm256_permute2x128_si256(odd01, odd23, 0x20);
    message[2] = _mm256_permute2x128_si256(even01, even23, 0x31);
    message[3] = _mm256_permute2x128_si256(odd01, odd23, 0x31);
}

/// Stores the inputs of the round `Number` of the group that starts with `first`.
template <std::size_t Number>
VANSYS_INLINE_AVX2 void StoreInputs(Batch &batch, std::size_t first) noexcept
{
    __m256i const constant = _mm256_set1_epi64x(static_cast<long long>(Sha512Constants[first + Number]));
    _mm256_store_si256(reinterpret_cast<__m256i *>(batch.inputs[first + Number]),
                       _mm256_add_epi64(batch.message[Number], constant));
}

template <std::size_t Number>
VANSYS_INLINE_AVX2 void Schedule(__m256i (&message)[GroupSize]) noexcept
{
    __m256i const sigmas = _mm256_add_epi64(SmallSigma1(message[(Number + 14) % GroupSize]),
                                            SmallSigma0(message[(Number + 1) % GroupSize]));
    __m256i const words = _mm256_add_epi64(message[Number], message[(Number + 9) % GroupSize]);
    message[Number] = _mm256_add_epi64(words, sigmas);
}

template <std::size_t... Number>
VANSYS_INLINE_AVX2 void StartSchedule(Batch &batch, unsigned char const *blocks,
                                      std::index_sequence<Number...>) noexcept
{
    for (std::size_t word = 0; word < GroupSize; word += 4)
        LoadFourWords(batch.message + word, blocks + word * sizeof(std::uint64_t));
    (StoreInputs<Number>(batch, 0), ...);
}

/// A group of rounds of the first block, interleaved with the schedule of the group after it.
template <std::size_t... Number>
VANSYS_INLINE_AVX2 void RoundsAndSchedule(State &work, Batch &batch, std::size_t first,
                                          std::index_sequence<Number...>) noexcept
{
    ((work.Round<Number>(batch.inputs[first + Number][0]), Schedule<Number>(batch.message),
      StoreInputs<Number>(batch, first + GroupSize)),
     ...);
}

template <std::size_t... Number>
VANSYS_INLINE_AVX2 void Rounds(State &work, Batch const &batch, std::size_t block, std::size_t first,
                               std::index_sequence<Number...>) noexcept
{
    (work.Round<Number>(batch.inputs[first + Number][block]), ...);
}

VANSYS_INLINE_AVX2 void CompressBatch(std::uint64_t *state, unsigned char const *blocks) noexcept
{
    Batch batch;
    StartSchedule(batch, blocks, Group{});

    State work;
    work.Load(state);
    std::size_t first = 0;
    for (; first < RoundCount - GroupSize; first += GroupSize)
        RoundsAndSchedule(work, batch, first, Group{});
    Rounds(work, batch, 0, first, Group{});
    work.AddTo(state);

    for (std::size_t block = 1; block < BatchBlocks; ++block)
    {
        work.Load(state);
        for (first = 0; first < RoundCount; first += GroupSize)
            Rounds(work, batch, block, first, Group{});
        work.AddTo(state);
    }
}

} // namespace

// The vectors on the stack need an alignment that callers on 32-bit Windows do not provide.
VANSYS_TARGET_AVX2 __attribute__((force_align_arg_pointer)) void
CompressSha512Avx2(std::uint64_t *state, unsigned char const *blocks, std::size_t blockCount)
{
    for (; blockCount >= BatchBlocks; blockCount -= BatchBlocks, blocks += BatchBlocks * BlockSize)
        CompressBatch(state, blocks);
    Sha2Portable::CompressSha512(state, blocks, blockCount);
}

} // namespace vansys::detail
