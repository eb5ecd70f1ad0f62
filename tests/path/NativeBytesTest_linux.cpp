// Every sequence of bytes is a name, and comes back as it went in.
#include "vansys/TPathCore.h"
#include "vansys/TPathCoreFilesystem.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using Path = TPathCore;

namespace
{

void ExpectRoundTrip(std::string const &bytes)
{
    Path const path = Path::fromNativeBytes(bytes);
    ASSERT_EQ(path.toNativeBytes(), bytes) << testing::PrintToString(bytes);
    // A path of the text is of the same name.
    TStringCore const text = Path::fromNativeBytes(bytes + "x").GenericString();
    ASSERT_EQ(Path(text).toNativeBytes(), bytes + "x") << testing::PrintToString(bytes);
}

} // namespace

TEST(NativeBytes, AllShortNames)
{
    std::string bytes(2, '\0');
    for (int first = 0; first < 0x100; ++first)
    {
        bytes[0] = static_cast<char>(first);
        ExpectRoundTrip(bytes.substr(0, 1));
        for (int second = 0; second < 0x100; ++second)
        {
            bytes[1] = static_cast<char>(second);
            ExpectRoundTrip(bytes);
        }
    }
    // The first and last of each kind of byte in UTF-8.
    constexpr std::string_view Edges(
        "\0/A\\\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF3\xF4\xF5\xFF", 24);
    for (unsigned i = 0; i < 24u * 24 * 24 * 24; ++i)
    {
        bytes.clear();
        for (unsigned rest = i, left = 4; left > 0; --left, rest /= 24)
            bytes.push_back(Edges[rest % 24]);
        ExpectRoundTrip(bytes);
    }
}

TEST(NativeBytes, RandomNamesAndTheirParts)
{
    std::minstd_rand random(1);
    auto const make = [&random]
    {
        std::string bytes;
        for (auto length = random() % 40; length > 0; --length)
            bytes += random() % 3 == 0 ? std::string("\xF0\x9F\x98\x80")
                                       : std::string(1, static_cast<char>(random()));
        return bytes;
    };
    for (int i = 0; i < 50'000; ++i)
    {
        std::string const first = make();
        std::string const second = make();
        ExpectRoundTrip(first);
        ASSERT_EQ((Path::fromNativeBytes(first) + Path::fromNativeBytes(second)).toNativeBytes(),
                  first + second);
        std::filesystem::path const path(first);
        ASSERT_EQ(PathToFilesystem(PathFromFilesystem(path)).native(), first);
    }
}

TEST(NativeBytes, TextThatStandsForBytes)
{
    struct Row
    {
        std::string_view bytes;
        std::u16string_view text;
    };
    for (Row const &row : std::initializer_list<Row>{
             {"a/\xC3\xA9\xF0\x9F\x98\x80", u"a/\u00E9\U0001F600"},
             {"a\\b", u"a\xDC5C"
                      u"b"},
             {"\xE9", u"\xDCE9"},
             {"\xC0\xAF", u"\xDCC0\xDCAF"},                     // longer than it has to be
             {"\xED\xB2\x80", u"\xDCED\xDCB2\xDC80"},           // the surrogate U+DC80
             {"\xF4\x90\x80\x80", u"\xDCF4\xDC90\xDC80\xDC80"}, // above U+10FFFF
             {"\xF0\x9F\x98"
              "A",
              u"\xDCF0\xDC9F\xDC98"
              u"A"},
         })
    {
        Path const path = Path::fromNativeBytes(row.bytes);
        EXPECT_EQ(path.GenericString(), TStringCore(row.text));
        EXPECT_EQ(path.toNativeBytes(), row.bytes);
    }
    // Text that is no name of bytes: no escape makes a separator, a zero or a letter.
    EXPECT_EQ(Path(TStringCore(std::u16string_view(u"\xDC2F\xDC00\xD800\xDC41\xDD00"))).toNativeBytes(),
              "\xED\xB0\xAF\xED\xB0\x80\xF0\x90\x81\x81\xED\xB4\x80");
    Path swapped(u"a/b");
    Path other;
    swapped.Swap(other);
    EXPECT_EQ(other.toNativeBytes(), "a/b");
}
