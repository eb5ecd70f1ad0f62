/// @file
/// The compression functions of SHA-1 and SHA-2 in plain C++.
#pragma once

#include "main/vansys/digest/sha2Constants.h"
#include "main/vansys/digest/sha2Functions.h"

#include <cstring>
#include <utility>

namespace vansys::detail
{

/// The compressions that are built from the functions of `sha2`, and so are its friend.
///
/// A round has its number, or that within its group of 16, as a template argument. All indices are then
/// constants: the words of state and message are variables of their own to the compiler, and the exchange of
/// the state words that ends each round costs nothing, as the words stay where they are and only their roles
/// move on.
struct Sha2Portable
{
    /// Words of one block, and of the part of the message schedule that is alive at any time.
    static constexpr std::size_t s_messageWords = 16;

    // What SHA-256 and SHA-512 differ in.

    struct Sha256
    {
        using Word = std::uint32_t;
        static constexpr std::size_t s_rounds = 64;
        static constexpr auto const &s_constants = Sha256Constants;

        VANSYS_ALWAYS_INLINE static Word Sigma0(Word x) noexcept { return sha2::Sigma0_256(x); }
        VANSYS_ALWAYS_INLINE static Word Sigma1(Word x) noexcept { return sha2::Sigma1_256(x); }
        VANSYS_ALWAYS_INLINE static Word SmallSigma0(Word x) noexcept { return sha2::sigma0_256(x); }
        VANSYS_ALWAYS_INLINE static Word SmallSigma1(Word x) noexcept { return sha2::sigma1_256(x); }
    };

    struct Sha512
    {
        using Word = std::uint64_t;
        static constexpr std::size_t s_rounds = 80;
        static constexpr auto const &s_constants = Sha512Constants;

        VANSYS_ALWAYS_INLINE static Word Sigma0(Word x) noexcept { return sha2::Sigma0_512(x); }
        VANSYS_ALWAYS_INLINE static Word Sigma1(Word x) noexcept { return sha2::Sigma1_512(x); }
        VANSYS_ALWAYS_INLINE static Word SmallSigma0(Word x) noexcept { return sha2::sigma0_512(x); }
        VANSYS_ALWAYS_INLINE static Word SmallSigma1(Word x) noexcept { return sha2::sigma1_512(x); }
    };

    /// The chaining words of SHA-256 or SHA-512 on their way through the rounds of one block.
    template <class Algorithm>
    struct Sha2State
    {
        using Word = typename Algorithm::Word;

        Word words[8];

        VANSYS_ALWAYS_INLINE void Load(Word const *state) noexcept
        {
            for (std::size_t index = 0; index < 8; ++index)
                words[index] = state[index];
        }

        VANSYS_ALWAYS_INLINE void AddTo(Word *state) const noexcept
        {
            for (std::size_t index = 0; index < 8; ++index)
                state[index] += words[index];
        }

        /// The round with this number in its group. `input` is the sum of its constant and its message word.
        template <std::size_t Number>
        VANSYS_ALWAYS_INLINE void Round(Word input) noexcept
        {
            Word const a = Role<0, Number>();
            Word const e = Role<4, Number>();
            Word &h = Role<7, Number>();
            // In the order in which the summands become known: e comes last, from the round before.
            h += input;
            h += sha2::Ch(e, Role<5, Number>(), Role<6, Number>());
            h += Algorithm::Sigma1(e);
            Role<3, Number>() += h;
            h += Algorithm::Sigma0(a) + sha2::Maj(a, Role<1, Number>(), Role<2, Number>());
        }

    private:
        template <std::size_t Which, std::size_t Number>
        VANSYS_ALWAYS_INLINE Word &Role() noexcept
        {
            return words[(Which + s_messageWords - Number) % 8];
        }
    };

    VANSYS_ALWAYS_INLINE static void CompressSha1(std::uint32_t *state, unsigned char const *blocks,
                                                  std::size_t blockCount) noexcept
    {
        for (; blockCount > 0; --blockCount, blocks += sha2::s_blockSize32)
        {
            Sha1Block work;
            LoadMessage(work.message, blocks);
            std::memcpy(work.state, state, sizeof work.state);
            work.Rounds(std::make_index_sequence<80>{});
            for (std::size_t index = 0; index < 5; ++index)
                state[index] += work.state[index];
        }
    }

    VANSYS_ALWAYS_INLINE static void CompressSha256(std::uint32_t *state, unsigned char const *blocks,
                                                    std::size_t blockCount) noexcept
    {
        CompressSha2<Sha256>(state, blocks, blockCount);
    }

    VANSYS_ALWAYS_INLINE static void CompressSha512(std::uint64_t *state, unsigned char const *blocks,
                                                    std::size_t blockCount) noexcept
    {
        CompressSha2<Sha512>(state, blocks, blockCount);
    }

private:
    VANSYS_ALWAYS_INLINE static std::uint32_t Reverse(std::uint32_t word) noexcept
    {
        return sha2::REVERSE32(word);
    }

    VANSYS_ALWAYS_INLINE static std::uint64_t Reverse(std::uint64_t word) noexcept
    {
        return sha2::REVERSE64(word);
    }

    template <class Word>
    VANSYS_ALWAYS_INLINE static void LoadMessage(Word (&message)[s_messageWords],
                                                 unsigned char const *block) noexcept
    {
        std::memcpy(message, block, sizeof message);
        for (Word &word : message)
            word = Reverse(word);
    }

    struct Sha1Block
    {
        std::uint32_t state[5];
        std::uint32_t message[s_messageWords];

        template <std::size_t... Round>
        VANSYS_ALWAYS_INLINE void Rounds(std::index_sequence<Round...>) noexcept
        {
            (OneRound<Round>(), ...);
        }

        template <std::size_t Round>
        VANSYS_ALWAYS_INLINE void OneRound() noexcept
        {
            std::uint32_t const a = Role<0, Round>();
            std::uint32_t &b = Role<1, Round>();
            std::uint32_t &e = Role<4, Round>();
            e += sha2::ROTL32(5, a) + Mix<Round>(b, Role<2, Round>(), Role<3, Round>()) +
                 Sha1Constants[Round / 20] + Schedule<Round>();
            b = sha2::ROTL32(30, b);
        }

        template <std::size_t Which, std::size_t Round>
        VANSYS_ALWAYS_INLINE std::uint32_t &Role() noexcept
        {
            return state[(Which + 80 - Round) % 5];
        }

        template <std::size_t Round>
        VANSYS_ALWAYS_INLINE static std::uint32_t Mix(std::uint32_t x, std::uint32_t y,
                                                      std::uint32_t z) noexcept
        {
            if constexpr (Round < 20)
                return sha2::Ch(x, y, z);
            else if constexpr (Round >= 40 && Round < 60)
                return sha2::Maj(x, y, z);
            else
                return sha2::Parity(x, y, z);
        }

        template <std::size_t Round>
        VANSYS_ALWAYS_INLINE std::uint32_t Schedule() noexcept
        {
            std::uint32_t &word = message[Round % 16];
            if constexpr (Round >= 16)
                word = sha2::ROTL32(1, word ^ message[(Round + 2) % 16] ^ message[(Round + 8) % 16] ^
                                           message[(Round + 13) % 16]);
            return word;
        }
    };

    template <class Algorithm>
    struct Sha2Block
    {
        using Word = typename Algorithm::Word;

        Sha2State<Algorithm> state;
        Word message[s_messageWords];

        /// A group of 16 rounds, the first of which is number `first`.
        template <std::size_t... Number>
        VANSYS_ALWAYS_INLINE void Rounds(std::size_t first, std::index_sequence<Number...>) noexcept
        {
            (state.template Round<Number>(Algorithm::s_constants[first + Number] + message[Number]), ...);
        }

        /// The message words of the next 16 rounds, in place of those of the last.
        template <std::size_t... Number>
        VANSYS_ALWAYS_INLINE void Schedule(std::index_sequence<Number...>) noexcept
        {
            ((message[Number] += Algorithm::SmallSigma1(message[(Number + 14) % 16]) +
                                 message[(Number + 9) % 16] +
                                 Algorithm::SmallSigma0(message[(Number + 1) % 16])),
             ...);
        }
    };

    template <class Algorithm>
    VANSYS_ALWAYS_INLINE static void CompressSha2(typename Algorithm::Word *state,
                                                  unsigned char const *blocks,
                                                  std::size_t blockCount) noexcept
    {
        using Group = std::make_index_sequence<s_messageWords>;
        for (; blockCount > 0; --blockCount, blocks += s_messageWords * sizeof(typename Algorithm::Word))
        {
            Sha2Block<Algorithm> work;
            work.state.Load(state);
            LoadMessage(work.message, blocks);
            work.Rounds(0, Group{});
            for (std::size_t first = s_messageWords; first < Algorithm::s_rounds; first += s_messageWords)
            {
                work.Schedule(Group{});
                work.Rounds(first, Group{});
            }
            work.state.AddTo(state);
        }
    }
};

} // namespace vansys::detail
