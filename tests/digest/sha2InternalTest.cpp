#include "main/platform/CpuFeatures.h"
#include "main/vansys/digest/sha2Compress.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <random>
#include <vector>

namespace
{

using namespace vansys::detail;

/// Runs both on random blocks and chaining words, and compares the first `stateWords` words.
template <class Word>
void ExpectSame(Sha2Compression<Word> portable, Sha2Compression<Word> fastest, std::size_t stateWords)
{
    std::mt19937_64 random(20120806);
    auto const randomWord = [&] { return static_cast<Word>(random()); };
    constexpr std::size_t BlockSize = 16 * sizeof(Word);
    for (std::size_t blockCount = 0; blockCount < 14; ++blockCount)
    {
        for (std::size_t offset = 0; offset < 33; ++offset)
        {
            std::vector<unsigned char> bytes(offset + blockCount * BlockSize);
            std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<unsigned char>(random()); });

            // Words behind the state must stay as they are.
            std::array<Word, 10> expected;
            std::generate(expected.begin(), expected.end(), randomWord);
            std::array<Word, 10> actual = expected;
            portable(expected.data(), bytes.data() + offset, blockCount);
            fastest(actual.data(), bytes.data() + offset, blockCount);
            EXPECT_TRUE(std::equal(actual.begin(), actual.begin() + static_cast<std::ptrdiff_t>(stateWords),
                                   expected.begin()) &&
                        std::equal(actual.begin() + 8, actual.end(), expected.begin() + 8))
                << blockCount << " blocks at offset " << offset;
        }
    }
}

} // namespace

class sha2InternalTest : public testing::Test
{
protected:
    Sha2Compressions const m_portable = PortableSha2Compressions();
    Sha2Compressions const m_fastest = FastestSha2Compressions(DetectCpuFeatures());
};

TEST_F(sha2InternalTest, Sha1InstructionsAgreeWithPortableCode)
{
    if (m_fastest.sha1 == m_portable.sha1)
        GTEST_SKIP() << "this processor has no SHA instructions";
    ExpectSame(m_portable.sha1, m_fastest.sha1, 5);
}

TEST_F(sha2InternalTest, Sha256InstructionsAgreeWithPortableCode)
{
    if (m_fastest.sha256 == m_portable.sha256)
        GTEST_SKIP() << "this processor has no SHA instructions";
    ExpectSame(m_portable.sha256, m_fastest.sha256, 8);
}

TEST_F(sha2InternalTest, Sha512VectorsAgreeWithPortableCode)
{
    if (m_fastest.sha512 == m_portable.sha512)
        GTEST_SKIP() << "this processor has no AVX2 instructions";
    ExpectSame(m_portable.sha512, m_fastest.sha512, 8);
}

// The one part of SHA-1, SHA-256 and SHA-512 that other tests reach only on processors without instructions
// for it: the padded message "abc".
TEST_F(sha2InternalTest, PortableCodeOnAKnownMessage)
{
    unsigned char block[128] = {'a', 'b', 'c', 0x80};
    std::array<std::uint32_t, 8> sha1 = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0};
    std::array<std::uint32_t, 8> sha256 = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                           0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    block[63] = 24;
    m_portable.sha1(sha1.data(), block, 1);
    m_portable.sha256(sha256.data(), block, 1);
    EXPECT_EQ(sha1,
              (std::array<std::uint32_t, 8>{0xa9993e36, 0x4706816a, 0xba3e2571, 0x7850c26c, 0x9cd0d89d}));
    EXPECT_EQ(sha256, (std::array<std::uint32_t, 8>{0xba7816bf, 0x8f01cfea, 0x414140de, 0x5dae2223,
                                                    0xb00361a3, 0x96177a9c, 0xb410ff61, 0xf20015ad}));
}
