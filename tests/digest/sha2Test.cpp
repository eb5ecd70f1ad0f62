#include "vansys/sha2.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr sha2::SHA_TYPE AllTypes[] = {sha2::SHA1, sha2::SHA224, sha2::SHA256, sha2::SHA384, sha2::SHA512};
constexpr std::size_t TypeCount = std::size(AllTypes);

/// Digests of the messages of `TestMessage`, in the order of `AllTypes`.
struct Vector
{
    unsigned int length;
    std::string digests[TypeCount];
};

std::vector<Vector> ReadVectors()
{
    std::vector<Vector> vectors;
    std::ifstream file(VANSYS_TEST_DATA "/sha_vectors.txt");
    for (std::string line; std::getline(file, line);)
    {
        if (line.empty() || line[0] == '#')
            continue;
        Vector vector;
        std::istringstream fields(line);
        fields >> vector.length;
        for (std::string &digest : vector.digests)
            fields >> digest;
        EXPECT_TRUE(fields) << line;
        vectors.push_back(vector);
    }
    EXPECT_EQ(vectors.size(), 301u);
    return vectors;
}

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
    {
        text += "0123456789abcdef"[digest[index] / 16];
        text += "0123456789abcdef"[digest[index] % 16];
    }
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
    for (Vector const &vector : ReadVectors())
    {
        // One byte off any alignment, and nothing readable behind the end.
        std::vector<unsigned char> shifted = TestMessage(vector.length);
        shifted.insert(shifted.begin(), 0xff);
        shifted.shrink_to_fit();
        for (std::size_t type = 0; type < TypeCount; ++type)
        {
            SCOPED_TRACE(testing::Message() << "length " << vector.length << " type " << AllTypes[type]);
            EXPECT_EQ(reused.GetHash(AllTypes[type], shifted.data() + 1, vector.length),
                      vector.digests[type]);
            EXPECT_EQ(reused.HexHash(), vector.digests[type]);
            EXPECT_EQ(HexOfRaw(reused), vector.digests[type]);
        }
    }
}

TEST(sha2Test, PiecesGiveTheDigestOfTheWhole)
{
    std::vector<unsigned char> const message = TestMessage(1500);
    for (sha2::SHA_TYPE const type : AllTypes)
    {
        std::string const whole = sha2().GetHash(type, message.data(), 1500);
        for (unsigned int const size : {1u, 3u, 7u, 55u, 63u, 64u, 65u, 127u, 128u, 129u, 193u, 700u})
        {
            sha2 hash;
            hash.Init(type);
            for (unsigned int done = 0; done < 1500; done += size)
                hash.Update(message.data() + done, std::min(size, 1500 - done));
            hash.End();
            EXPECT_EQ(hash.StringHash(), whole) << "type " << type << " pieces of " << size;
        }
    }
}

// The published digests of a million times "a", in pieces that straddle the blocks.
TEST(sha2Test, MillionBytes)
{
    char const *const expected[TypeCount] = {
        "34aa973cd4c4daa4f61eeb2bdbad27316534016f",
        "20794655980c91d8bbb4c1ea97618a4bf03f42581948b2ee4ee7ad67",
        "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0",
        "9d0e1809716474cb086e834e310a4a1ced149e9c00f248527972cec5704c2a5b07b8b3dc38ecc4ebae97ddd87f3d8985",
        ("e718483d0ce769644e2e42c7bc15b4638e1f98b13b2044285632a803afa973eb"
         "de0ff244877ea60a4cb0432ce577c31beb009c5c2c49aa2e4eadb217ad8cc09b")};
    std::vector<unsigned char> const piece(1000, 'a');
    for (std::size_t type = 0; type < TypeCount; ++type)
    {
        sha2 hash;
        hash.Init(AllTypes[type]);
        for (int count = 0; count < 1000; ++count)
            hash.Update(piece.data(), 1000);
        hash.End();
        EXPECT_EQ(hash.StringHash(), expected[type]);
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

TEST(sha2Test, CopiesGoOnInMidMessage)
{
    std::vector<unsigned char> const message = TestMessage(1000);
    for (sha2::SHA_TYPE const type : AllTypes)
    {
        std::string const whole = sha2().GetHash(type, message.data(), 1000);
        sha2 first;
        first.GetHash(sha2::SHA1, message.data(), 3);
        first.Init(type);
        first.Update(message.data(), 333);

        sha2 copied(first);
        sha2 assigned;
        assigned = first;
        sha2 moved(std::move(first));
        sha2 moveAssigned;
        moveAssigned = std::move(assigned);
        for (sha2 *const hash : {&first, &copied, &assigned, &moved, &moveAssigned})
        {
            EXPECT_EQ(hash->GetEnumType(), type);
            EXPECT_EQ(hash->StringHash().size(), 40u); // of the message before
            EXPECT_THROW(hash->HexHash(), std::runtime_error);
            hash->Update(message.data() + 333, 667);
            hash->End();
            EXPECT_EQ(hash->StringHash(), whole);
        }
    }
}

TEST(sha2Test, CopiesAnswerForTheDigest)
{
    sha2 first;
    std::string const expected = first.GetHash(sha2::SHA384, nullptr, 0);
    sha2 copied(first);
    sha2 assigned;
    assigned = std::move(copied);
    for (sha2 const *const hash : {&first, &copied, &assigned})
    {
        EXPECT_EQ(hash->HexHash(), expected);
        EXPECT_EQ(HexOfRaw(*hash), expected);
    }
}

TEST(sha2Test, TypeNamesAndDigestLengths)
{
    char const *const names[TypeCount] = {"SHA160", "SHA224", "SHA256", "SHA384", "SHA512"};
    int const lengths[TypeCount] = {20, 28, 32, 48, 64};
    sha2 hash;
    EXPECT_STREQ(hash.GetTypeString(), "Unknown!");
    EXPECT_EQ(hash.GetEnumType(), sha2::NONE);
    EXPECT_FALSE(hash.IsBigEndian());
    for (std::size_t type = 0; type < TypeCount; ++type)
    {
        hash.GetHash(AllTypes[type], nullptr, 0);
        EXPECT_STREQ(hash.GetTypeString(), names[type]);
        EXPECT_EQ(hash.GetEnumType(), AllTypes[type]);
        int length = -1;
        hash.RawHash(length);
        EXPECT_EQ(length, lengths[type]);
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
    EXPECT_EQ(hash.GetHash(sha2::SHA256, &byte, 1), expected);
}

TEST(sha2Test, DigestIsClosedUntilTheEnd)
{
    sha2 hash;
    int length = 77;
    EXPECT_EQ(ErrorOf([&] { hash.HexHash(); }), "Unfinished execution!");
    EXPECT_EQ(ErrorOf([&] { hash.RawHash(length); }), "Unfinished execution!");
    EXPECT_EQ(length, 77);
    EXPECT_EQ(hash.StringHash(), "");

    std::string const before = hash.GetHash(sha2::SHA1, nullptr, 0);
    hash.Init(sha2::SHA512);
    EXPECT_EQ(ErrorOf([&] { hash.HexHash(); }), "Unfinished execution!");
    EXPECT_EQ(ErrorOf([&] { hash.RawHash(length); }), "Unfinished execution!");
    EXPECT_EQ(hash.StringHash(), before); // only End replaces it
    hash.End();
    EXPECT_EQ(hash.StringHash().size(), 128u);
}
