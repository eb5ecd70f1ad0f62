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

/// Runs the portable and the fastest compression on random blocks and chaining words, and compares the first
/// `stateWords` words. Known digests are compared with the fastest one: where that is the portable one,
/// nothing is left to compare here.
template <class Word>
void ExpectSame(Sha2Compression<Word> Sha2Compressions::*which, std::size_t stateWords)
{
    auto const portable = PortableSha2Compressions().*which;
    auto const fastest = FastestSha2Compressions(DetectCpuFeatures()).*which;
    if (fastest == portable)
        GTEST_SKIP() << "this processor has no instructions for it";
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

TEST(sha2InternalTest, Sha1InstructionsAgreeWithPortableCode)
{
    ExpectSame(&Sha2Compressions::sha1, 5);
}

TEST(sha2InternalTest, Sha256InstructionsAgreeWithPortableCode)
{
    ExpectSame(&Sha2Compressions::sha256, 8);
}

TEST(sha2InternalTest, Sha512VectorsAgreeWithPortableCode)
{
    ExpectSame(&Sha2Compressions::sha512, 8);
}
