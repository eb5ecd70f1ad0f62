// The fast loops against the plain ones that define the result.

#include "main/vansys/string/Utf.h"

#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <string>
#include <vector>

using namespace vansys::detail;

namespace
{

std::u16string Decode(decltype(DecodeUtf8) decoder, std::string const &bytes, int count)
{
    constexpr TCodeUnit Poison = 0x2620;
    std::vector<TCodeUnit> room(static_cast<std::size_t>(count) + 1, Poison);
    // Not one byte more than the decoder may read, for the sanitizer to see.
    std::vector<char> const exact(bytes.c_str(), bytes.c_str() + count + 1);
    TCodeUnit const *const end = decoder(exact.data(), count, room.data());
    EXPECT_EQ(room.back(), Poison) << "wrote past the room";
    return {static_cast<TCodeUnit const *>(room.data()), end};
}

std::string Encode(decltype(EncodeUtf8) encoder, std::vector<TCodeUnit> const &text)
{
    std::string room(text.size() * MaxUtf8BytesOfUnit + 1, '#');
    char const *const end = encoder(text.data(), static_cast<int>(text.size()), room.data());
    EXPECT_EQ(room.back(), '#') << "wrote past the room";
    return {static_cast<char const *>(room.data()), end};
}

/// Sequences of a few kinds, of which some are malformed.
std::string RandomBytes(std::mt19937 &random)
{
    std::string result;
    auto const put = [&](auto count, unsigned bits, unsigned randomBits)
    {
        while (count-- > 0)
            result.push_back(static_cast<char>(bits | (random() & randomBits)));
    };
    constexpr unsigned char Leads[] = {0, 0x80, 0xC3, 0xE2, 0xED, 0xF0, 0xF4, 0xF8, 0xFC, 0xFF};
    auto const first = random();
    auto const kinds = 1 + random() % std::size(Leads);
    for (auto const length = random() % 300; result.size() < length;)
    {
        unsigned char const lead = Leads[(first + random() % kinds) % std::size(Leads)];
        if (lead == 0) // ASCII
            put(random() % 50, 0, 0x7F);
        put(lead != 0 ? 1 : 0, lead, 0);
        put(random() % 16 == 0 ? static_cast<int>(random() % 4) : std::countl_one(lead) - 1, 0x80, 0x3F);
    }
    return result;
}

} // namespace

TEST(Utf, FastLoopsAgreeWithTheDefinition)
{
    std::mt19937 random(20240229);
    for (int round = 0; round < 20000; ++round)
    {
        std::string const bytes = RandomBytes(random);
        SCOPED_TRACE(testing::PrintToString(bytes));
        // The byte behind the count may be the last of a sequence.
        auto const count = static_cast<int>(bytes.size() - (bytes.empty() ? 0 : random() % 2));
        std::u16string const units = Decode(DecodeUtf8BySequence, bytes, count);
        ASSERT_EQ(Decode(DecodeUtf8, bytes, count), units);
        std::vector<TCodeUnit> const text(units.begin(), units.end());
        std::string const encoded = Encode(EncodeUtf8ByCodePoint, text);
        ASSERT_EQ(Encode(EncodeUtf8, text), encoded);

        std::string ascii(text.size() + 1, '#');
        auto const prefix = static_cast<std::size_t>(
            EncodeAsciiPrefix(text.data(), static_cast<int>(text.size()), ascii.data()));
        ASSERT_EQ(ascii.substr(0, prefix), encoded.substr(0, prefix));
        ASSERT_TRUE(prefix == text.size() || text[prefix] >= 0x80);
        ASSERT_EQ(ascii.back(), '#');
    }
}

TEST(Utf, EncoderLooksAtNoUnitBehindTheCount)
{
    TCodeUnit const pair[] = {0xD83D, 0xDE00};
    char bytes[MaxUtf8BytesOfUnit];
    for (auto const encoder : {EncodeUtf8, EncodeUtf8ByCodePoint})
        EXPECT_EQ(std::string(bytes, encoder(pair, 1, bytes)), "\xED\xA0\xBD");
}
