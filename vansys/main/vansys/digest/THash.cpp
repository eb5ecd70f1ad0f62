#include "vansys/THash.h"

#include <bit>
#include <cstddef>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "words are read from the data as they stand");

namespace
{

template <class Word>
Word Load(unsigned char const *bytes) noexcept
{
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// The 0 to 8 bytes at `bytes` as a little-endian number. Reads none beyond them; the words that it reads may
/// overlap, which does no harm, as both then put the same byte in the same place.
std::uint64_t LoadTail(unsigned char const *bytes, std::size_t size) noexcept
{
    if (size >= 4)
    {
        std::uint64_t const last = Load<std::uint32_t>(bytes + size - 4);
        return Load<std::uint32_t>(bytes) | last << (8 * (size - 4));
    }
    std::uint64_t value = 0;
    for (std::size_t index = 0; index < size; ++index)
        value |= static_cast<std::uint64_t>(bytes[index]) << (8 * index);
    return value;
}

// lookup2

constexpr std::uint32_t GoldenRatio = 0x9e3779b9;
constexpr unsigned int Lookup2BlockSize = 12;

struct Lookup2State
{
    std::uint32_t a, b, c;

    void Mix() noexcept
    {
        a = (a - b - c) ^ (c >> 13);
        b = (b - c - a) ^ (a << 8);
        c = (c - a - b) ^ (b >> 13);
        a = (a - b - c) ^ (c >> 12);
        b = (b - c - a) ^ (a << 16);
        c = (c - a - b) ^ (b >> 5);
        a = (a - b - c) ^ (c >> 3);
        b = (b - c - a) ^ (a << 10);
        c = (c - a - b) ^ (b >> 15);
    }
};

// SpookyHash

/// Fills the state words that no seed goes to. Any odd value that is not very regular does.
constexpr std::uint64_t SpookyConstant = 0xdeadbeefdeadbeef;

/// Words of the long form's state, and of its blocks.
constexpr std::size_t SpookyWords = 12;
constexpr std::size_t SpookyBlockSize = SpookyWords * sizeof(std::uint64_t);

/// From this length on the long form's longer start and end pay.
constexpr std::size_t SpookyLongSize = 2 * SpookyBlockSize;

using Hash128 = std::pair<std::uint64_t, std::uint64_t>;

struct SpookyShortState
{
    std::uint64_t a, b, c, d;

    void Mix() noexcept
    {
        MixStep(c, d, a, 50);
        MixStep(d, a, b, 52);
        MixStep(a, b, c, 30);
        MixStep(b, c, d, 41);
        MixStep(c, d, a, 54);
        MixStep(d, a, b, 48);
        MixStep(a, b, c, 38);
        MixStep(b, c, d, 37);
        MixStep(c, d, a, 62);
        MixStep(d, a, b, 34);
        MixStep(a, b, c, 5);
        MixStep(b, c, d, 36);
    }

    void End() noexcept
    {
        EndStep(d, c, 15);
        EndStep(a, d, 52);
        EndStep(b, a, 26);
        EndStep(c, b, 51);
        EndStep(d, c, 28);
        EndStep(a, d, 9);
        EndStep(b, a, 47);
        EndStep(c, b, 54);
        EndStep(d, c, 32);
        EndStep(a, d, 25);
        EndStep(b, a, 63);
    }

private:
    static void MixStep(std::uint64_t &x, std::uint64_t y, std::uint64_t &z, int rotation) noexcept
    {
        x = std::rotl(x, rotation) + y;
        z ^= x;
    }

    static void EndStep(std::uint64_t &x, std::uint64_t &y, int rotation) noexcept
    {
        x ^= y;
        y = std::rotl(y, rotation);
        x += y;
    }
};

Hash128 SpookyShort(unsigned char const *bytes, std::size_t length, Hash128 seeds) noexcept
{
    SpookyShortState state{seeds.first, seeds.second, SpookyConstant, SpookyConstant};
    std::size_t left = length;
    for (; left >= 32; left -= 32, bytes += 32)
    {
        state.c += Load<std::uint64_t>(bytes);
        state.d += Load<std::uint64_t>(bytes + 8);
        state.Mix();
        state.a += Load<std::uint64_t>(bytes + 16);
        state.b += Load<std::uint64_t>(bytes + 24);
    }
    if (left >= 16)
    {
        state.c += Load<std::uint64_t>(bytes);
        state.d += Load<std::uint64_t>(bytes + 8);
        state.Mix();
        left -= 16;
        bytes += 16;
    }

    // The top byte of d is never reached by the 15 bytes that may be left, and holds the length instead.
    state.d += static_cast<std::uint64_t>(length) << 56;
    if (left == 0)
    {
        state.c += SpookyConstant;
        state.d += SpookyConstant;
    }
    else if (left <= 8)
    {
        state.c += LoadTail(bytes, left);
    }
    else
    {
        state.c += Load<std::uint64_t>(bytes);
        state.d += LoadTail(bytes + 8, left - 8);
    }
    state.End();
    return {state.a, state.b};
}

class SpookyLongState
{
public:
    explicit SpookyLongState(Hash128 seeds) noexcept
        : m_words{seeds.first, seeds.second, SpookyConstant, seeds.first, seeds.second, SpookyConstant,
                  seeds.first, seeds.second, SpookyConstant, seeds.first, seeds.second, SpookyConstant}
    {
    }

    void Mix(unsigned char const *block) noexcept { MixSteps(block, Steps{}); }

    Hash128 End(unsigned char const *block) noexcept
    {
        AddBlock(block);
        for (int round = 0; round < 3; ++round)
            EndSteps(Steps{});
        return {m_words[0], m_words[1]};
    }

private:
    using Steps = std::make_index_sequence<SpookyWords>;

    static constexpr int s_mixRotations[SpookyWords] = {11, 32, 43, 31, 17, 28, 39, 57, 55, 54, 22, 46};
    static constexpr int s_endRotations[SpookyWords] = {44, 15, 34, 21, 38, 33, 10, 13, 38, 53, 42, 54};

    // Every step is the one before it with all indices one higher. The index is a template argument, so that
    // each word of the state is a variable of its own to the compiler.
    template <std::size_t Index>
    std::uint64_t &Word() noexcept
    {
        return m_words[Index % SpookyWords];
    }

    template <std::size_t... Index>
    void MixSteps(unsigned char const *block, std::index_sequence<Index...>) noexcept
    {
        (MixStep<Index>(Load<std::uint64_t>(block + Index * sizeof(std::uint64_t))), ...);
    }

    template <std::size_t Index>
    void MixStep(std::uint64_t data) noexcept
    {
        Word<Index>() += data;
        Word<Index + 2>() ^= Word<Index + 10>();
        Word<Index + 11>() ^= Word<Index>();
        Word<Index>() = std::rotl(Word<Index>(), s_mixRotations[Index]);
        Word<Index + 11>() += Word<Index + 1>();
    }

    template <std::size_t... Index>
    void EndSteps(std::index_sequence<Index...>) noexcept
    {
        (EndStep<Index>(), ...);
    }

    template <std::size_t Index>
    void EndStep() noexcept
    {
        Word<Index + 11>() += Word<Index + 1>();
        Word<Index + 2>() ^= Word<Index + 11>();
        Word<Index + 1>() = std::rotl(Word<Index + 1>(), s_endRotations[Index]);
    }

    void AddBlock(unsigned char const *block) noexcept
    {
        for (std::uint64_t &word : m_words)
        {
            word += Load<std::uint64_t>(block);
            block += sizeof word;
        }
    }

    std::uint64_t m_words[SpookyWords];
};

Hash128 SpookyLong(unsigned char const *bytes, std::size_t length, Hash128 seeds) noexcept
{
    SpookyLongState state(seeds);
    std::size_t left = length;
    for (; left >= SpookyBlockSize; left -= SpookyBlockSize, bytes += SpookyBlockSize)
        state.Mix(bytes);

    unsigned char tail[SpookyBlockSize] = {};
    std::memcpy(tail, bytes, left);
    tail[SpookyBlockSize - 1] = static_cast<unsigned char>(left);
    return state.End(tail);
}

} // namespace

std::uint32_t THash32(void const *data, unsigned int length, unsigned int seed) noexcept
{
    auto const *bytes = static_cast<unsigned char const *>(data);
    Lookup2State state{GoldenRatio, GoldenRatio, seed};
    unsigned int left = length;
    for (; left >= Lookup2BlockSize; left -= Lookup2BlockSize, bytes += Lookup2BlockSize)
    {
        state.a += Load<std::uint32_t>(bytes);
        state.b += Load<std::uint32_t>(bytes + 4);
        state.c += Load<std::uint32_t>(bytes + 8);
        state.Mix();
    }

    std::uint64_t const tail = LoadTail(bytes, left < 8 ? left : 8);
    state.a += static_cast<std::uint32_t>(tail);
    state.b += static_cast<std::uint32_t>(tail >> 32);
    // The low byte of c belongs to the length: the last three bytes go above it.
    state.c += length;
    if (left > 8)
        state.c += static_cast<std::uint32_t>(LoadTail(bytes + 8, left - 8)) << 8;
    state.Mix();
    return state.c;
}

std::uint32_t THash(void const *data, unsigned int length) noexcept
{
    return THash32(data, length, 0xdeadbeef);
}

std::uint32_t THashCombine(unsigned int value, unsigned int seed) noexcept
{
    // What THash32 comes to for the four bytes of `value`.
    Lookup2State state{GoldenRatio + value, GoldenRatio, seed + static_cast<std::uint32_t>(sizeof value)};
    state.Mix();
    return state.c;
}

std::uint32_t THashCombine32(unsigned int value, unsigned int seed) noexcept
{
    return THashCombine(value, seed);
}

std::uint64_t THash64(void const *data, unsigned int length, std::uint64_t seed) noexcept
{
    return THash128(data, length, seed, seed).first;
}

std::pair<std::uint64_t, std::uint64_t> THash128(void const *data, unsigned int length, std::uint64_t seed1,
                                                 std::uint64_t seed2) noexcept
{
    auto const *bytes = static_cast<unsigned char const *>(data);
    Hash128 const seeds{seed1, seed2};
    return length < SpookyLongSize ? SpookyShort(bytes, length, seeds) : SpookyLong(bytes, length, seeds);
}
