// The fast loops against the plain ones that define the result.

#include "main/vansys/string/Utf.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

using namespace vansys::detail;

namespace
{

constexpr TCodeUnit Poison = 0x2620;

std::basic_string<TCodeUnit> decode(decltype(DecodeUtf8) decoder, std::string const &bytes, int count)
{
    std::vector<TCodeUnit> room(static_cast<std::size_t>(count) + 1, Poison);
    // Not one byte more than the decoder may read, for the sanitizer to see.
    std::vector<char> const exact(bytes.c_str(), bytes.c_str() + count + 1);
    TCodeUnit const *const end = decoder(exact.data(), count, room.data());
    EXPECT_EQ(room.back(), Poison) << "wrote past the room";
    return {static_cast<TCodeUnit const *>(room.data()), end};
}

/// Bytes of which more or fewer are ASCII, and of which most others make up sequences.
std::string randomBytes(std::mt19937 &random, int length)
{
    int const asciiShare = static_cast<int>(random() % 100);
    bool const uniform = random() % 4 == 0;
    auto const uniformKind = random();
    std::string result;
    while (static_cast<int>(result.size()) < length)
    {
        if (static_cast<int>(random() % 100) < asciiShare)
            result.push_back(static_cast<char>(random() % 0x80));
        else if (!uniform && random() % 8 == 0)
            result.push_back(static_cast<char>(random()));
        else
        {
            static constexpr unsigned char Leads[] = {0xC3, 0xE2, 0xED, 0xF0, 0xF4, 0xF8, 0xFC};
            static constexpr int Continuations[] = {1, 2, 2, 3, 3, 4, 5};
            auto const kind = (uniform ? uniformKind : random()) % std::size(Leads);
            result.push_back(static_cast<char>(Leads[kind]));
            for (int i = 0; i < Continuations[kind]; ++i)
                result.push_back(static_cast<char>(0x80 | (random() & 0x3F)));
        }
    }
    return result;
}

} // namespace

TEST(Utf, FastDecoderAgreesWithTheDefinition)
{
    std::mt19937 random(20240229);
    for (int round = 0; round < 20000; ++round)
    {
        std::string const bytes = randomBytes(random, static_cast<int>(random() % 300));
        int const count = static_cast<int>(bytes.size()) - static_cast<int>(bytes.empty() ? 0 : random() % 2);
        ASSERT_EQ(decode(DecodeUtf8, bytes, count), decode(DecodeUtf8BySequence, bytes, count))
            << testing::PrintToString(bytes) << " count " << count;
    }
}

TEST(Utf, EncoderLooksAtNoUnitBehindTheCount)
{
    TCodeUnit const pair[] = {0xD83D, 0xDE00};
    for (auto const encoder : {EncodeUtf8, EncodeUtf8ByCodePoint})
    {
        char bytes[MaxUtf8BytesOfUnit];
        EXPECT_EQ(std::string(bytes, encoder(pair, 1, bytes)), "\xED\xA0\xBD");
    }
}

TEST(Utf, FastEncoderAgreesWithTheDefinition)
{
    std::mt19937 random(20240301);
    for (int round = 0; round < 20000; ++round)
    {
        static constexpr TCodeUnit Masks[] = {0x7F, 0x7F, 0x7F, 0x7FF, 0xFFFF};
        std::vector<TCodeUnit> text(random() % 300);
        int const kinds = 1 + static_cast<int>(random() % std::size(Masks));
        for (TCodeUnit &unit : text)
        {
            unit = static_cast<TCodeUnit>(random() & Masks[static_cast<int>(random() % 50) % kinds]);
            if (kinds == 5 && random() % 4 == 0)
                unit = static_cast<TCodeUnit>(0xD800 | (unit & 0x7FF));
        }
        if (round % 4 == 0) // the room is used up only when every unit takes three bytes
            std::fill(text.begin(), text.end(), TCodeUnit{0x20AC});
        int const count = static_cast<int>(text.size());
        std::string expected(text.size() * 3, '\0');
        expected.resize(static_cast<std::size_t>(EncodeUtf8ByCodePoint(text.data(), count, expected.data()) -
                                                 expected.data()));
        std::string actual(text.size() * MaxUtf8BytesOfUnit + 1, '#');
        ASSERT_EQ(EncodeUtf8(text.data(), count, actual.data()) - actual.data(),
                  static_cast<std::ptrdiff_t>(expected.size()));
        ASSERT_EQ(actual.back(), '#') << "wrote past the room";
        actual.resize(expected.size());
        ASSERT_EQ(actual, expected);

        std::string ascii(text.size() + 1, '#');
        int const prefix = EncodeAsciiPrefix(text.data(), count, ascii.data());
        ASSERT_EQ(ascii.substr(0, static_cast<std::size_t>(prefix)),
                  expected.substr(0, static_cast<std::size_t>(prefix)));
        ASSERT_TRUE(prefix == count || text[static_cast<std::size_t>(prefix)] >= 0x80);
        ASSERT_EQ(ascii.back(), '#');
    }
}
