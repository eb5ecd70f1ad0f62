#include "vansys/THash.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace
{

/// The message of the test vectors, one byte off any alignment and with nothing readable behind its end.
std::vector<unsigned char> ShiftedMessage(unsigned int length)
{
    std::vector<unsigned char> bytes(std::size_t{length} + 1);
    for (std::size_t index = 0; index < length; ++index)
        bytes[index + 1] = static_cast<unsigned char>(131 * index + 7);
    return bytes;
}

} // namespace

TEST(THashTest, ReferenceVectors)
{
    std::ifstream file(VANSYS_TEST_DATA "/hash_vectors.txt");
    int count = 0;
    for (std::string line; std::getline(file, line);)
    {
        SCOPED_TRACE(line);
        std::istringstream fields(line);
        std::string kind;
        unsigned int length = 0;
        fields >> kind >> length >> std::hex;
        std::vector<unsigned char> const bytes = ShiftedMessage(length);
        void const *const data = bytes.data() + 1;
        if (kind == "spooky128")
        {
            std::uint64_t seed1, seed2, first, second;
            ASSERT_TRUE(fields >> seed1 >> seed2 >> first >> second);
            EXPECT_EQ(THash128(data, length, seed1, seed2), std::pair(first, second));
            EXPECT_EQ(THash64(data, length, seed1), THash128(data, length, seed1, seed1).first);
            ++count;
        }
        else if (kind == "lookup2")
        {
            std::uint32_t seed, hash;
            ASSERT_TRUE(fields >> seed >> hash);
            EXPECT_EQ(THash32(data, length, seed), hash);
            EXPECT_EQ(THash(data, length), THash32(data, length, 0xdeadbeef));
            ++count;
        }
    }
    EXPECT_EQ(count, 2 * 189);
}

TEST(THashTest, NoDataNeedsNoPointer)
{
    unsigned char const byte = 1;
    EXPECT_EQ(THash(nullptr, 0), THash(&byte, 0));
    EXPECT_EQ(THash64(nullptr, 0, 5), THash64(&byte, 0, 5));
}

TEST(THashTest, CombineHashesTheBytesOfTheValue)
{
    for (unsigned int const value : {0u, 1u, 0x12345678u, 0xffffffffu})
    {
        for (unsigned int const seed : {0u, 7u, 0xdeadbeefu, 0xffffffffu})
        {
            EXPECT_EQ(THashCombine(value, seed), THash32(&value, 4, seed)) << value << ' ' << seed;
            EXPECT_EQ(THashCombine32(value, seed), THashCombine(value, seed)) << value << ' ' << seed;
        }
    }
}
