#include "vansys/sha2.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr std::pair<sha2::SHA_TYPE, char const *> Algorithms[] = {{sha2::SHA1, "SHA160"},
                                                                  {sha2::SHA224, "SHA224"},
                                                                  {sha2::SHA256, "SHA256"},
                                                                  {sha2::SHA384, "SHA384"},
                                                                  {sha2::SHA512, "SHA512"}};

std::vector<unsigned char> TestMessage(std::size_t length)
{
    std::vector<unsigned char> message(length);
    for (std::size_t index = 0; index < length; ++index)
        message[index] = static_cast<unsigned char>(131 * index + 7);
    return message;
}

std::string HexOfRaw(sha2 const &hash)
{
    int length = -1;
    unsigned char const *const digest = hash.RawHash(length);
    std::string text;
    for (int index = 0; index < length; ++index)
        for (int const digit : {digest[index] / 16, digest[index] % 16})
            text += "0123456789abcdef"[digit];
    return text;
}

/// The message of the `std::runtime_error` that `action` throws; anything else fails the test.
template <class Action>
std::string ErrorOf(Action action)
{
    try
    {
        action();
    }
    catch (std::runtime_error const &error)
    {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(sha2Test, DigestsOfAllLengths)
{
    sha2 reused;
    EXPECT_STREQ(reused.GetTypeString(), "Unknown!");
    EXPECT_EQ(reused.GetEnumType(), sha2::NONE);
    EXPECT_FALSE(reused.IsBigEndian());

    std::ifstream file(VANSYS_TEST_DATA "/sha_vectors.txt");
    int count = 0;
    for (std::string line; std::getline(file, line);)
    {
        SCOPED_TRACE(line);
        unsigned int length = 0;
        std::istringstream fields(line);
        if (!(fields >> length))
            continue; // a comment
        ++count;
        // One byte off any alignment, and nothing readable behind the end.
        std::vector<unsigned char> shifted = TestMessage(length);
        shifted.insert(shifted.begin(), 0xff);
        shifted.shrink_to_fit();
        for (auto const &[type, name] : Algorithms)
        {
            std::string digest;
            ASSERT_TRUE(fields >> digest);
            EXPECT_EQ(reused.GetHash(type, shifted.data() + 1, length), digest);
            EXPECT_EQ(reused.HexHash(), digest);
            EXPECT_EQ(HexOfRaw(reused), digest);
            EXPECT_STREQ(reused.GetTypeString(), name);
            EXPECT_EQ(reused.GetEnumType(), type);
        }
    }
    EXPECT_EQ(count, 301);
}

TEST(sha2Test, PiecesGiveTheDigestOfTheWhole)
{
    std::vector<unsigned char> const message = TestMessage(1500);
    for (auto const &[type, name] : Algorithms)
    {
        std::string const whole = sha2().GetHash(type, message.data(), 1500);
        for (unsigned int const size : {1u, 3u, 7u, 55u, 63u, 64u, 65u, 127u, 128u, 129u, 193u, 700u})
        {
            sha2 hash;
            hash.Init(type);
            for (unsigned int done = 0; done < 1500; done += size)
                hash.Update(message.data() + done, std::min(size, 1500 - done));
            hash.End();
            EXPECT_EQ(hash.StringHash(), whole) << name << ", pieces of " << size;
        }
    }
}

// One byte over 512 MiB: the message length in bits passes 32 bits.
TEST(sha2Test, LengthBeyond32Bits)
{
    std::vector<unsigned char> const zeros(1 << 20);
    sha2 hash;
    hash.Init(sha2::SHA256);
    for (int count = 0; count < 512; ++count)
        hash.Update(zeros.data(), 1 << 20);
    hash.Update(zeros.data(), 1);
    hash.End();
    EXPECT_EQ(hash.StringHash(), "7c40fe5ce847740d0f0d0cdde3949d6585804cdec3ae61a15b923165699c8137");
}

TEST(sha2Test, CopiesGoOnInMidMessageAndAnswerForTheDigest)
{
    std::vector<unsigned char> const message = TestMessage(1000);
    for (auto const &[type, name] : Algorithms)
    {
        SCOPED_TRACE(name);
        std::string const whole = sha2().GetHash(type, message.data(), 1000);
        sha2 first;
        first.GetHash(sha2::SHA1, message.data(), 3);
        first.Init(type);
        first.Update(message.data(), 333);

        sha2 copied(first), assigned;
        assigned = first;
        sha2 moved(std::move(first));
        for (sha2 *const hash : {&first, &copied, &assigned, &moved})
        {
            EXPECT_EQ(hash->GetEnumType(), type);
            EXPECT_EQ(hash->StringHash().size(), 40u); // of the message before
            EXPECT_EQ(ErrorOf([&] { hash->HexHash(); }), "Unfinished execution!");
            hash->Update(message.data() + 333, 667);
            hash->End();

            sha2 finished;
            finished = std::move(*hash);
            EXPECT_EQ(hash->HexHash(), whole);
            EXPECT_EQ(finished.HexHash(), whole);
            EXPECT_EQ(HexOfRaw(finished), whole);
        }
    }
}

TEST(sha2Test, InvalidTypeLeavesTheObjectAsItWas)
{
    unsigned char const byte = 'a';
    sha2 fresh;
    EXPECT_EQ(ErrorOf([&] { fresh.Update(&byte, 1); }), "Invalid SHA_TYPE type!");
    EXPECT_EQ(ErrorOf([&] { fresh.End(); }), "Invalid SHA_TYPE type!");

    sha2 hash;
    std::string const expected = hash.GetHash(sha2::SHA256, &byte, 1);
    for (int const type : {0, 6, -1})
    {
        auto const invalid = static_cast<sha2::SHA_TYPE>(type);
        EXPECT_EQ(ErrorOf([&] { hash.Init(invalid); }), "Invalid SHA_TYPE type!");
        EXPECT_EQ(ErrorOf([&] { hash.GetHash(invalid, &byte, 1); }), "Invalid SHA_TYPE type!");
        EXPECT_EQ(hash.HexHash(), expected);
        EXPECT_EQ(hash.GetEnumType(), sha2::SHA256);
    }
}

TEST(sha2Test, DigestIsClosedUntilTheEnd)
{
    sha2 hash;
    EXPECT_EQ(hash.StringHash(), "");
    for (sha2::SHA_TYPE const next : {sha2::SHA512, sha2::SHA1})
    {
        int length = 77;
        EXPECT_EQ(ErrorOf([&] { hash.HexHash(); }), "Unfinished execution!");
        EXPECT_EQ(ErrorOf([&] { hash.RawHash(length); }), "Unfinished execution!");
        EXPECT_EQ(length, 77);

        std::string const before = hash.GetHash(sha2::SHA384, nullptr, 0);
        hash.Init(next);
        EXPECT_EQ(hash.StringHash(), before); // only End replaces it
    }
}
