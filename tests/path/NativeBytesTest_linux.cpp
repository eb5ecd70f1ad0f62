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
    for (unsigned i = 0; i < 0x100 * 0x100; ++i)
        ExpectRoundTrip({static_cast<char>(i), static_cast<char>(i >> 8)});
    // The first and last of each kind of byte in UTF-8.
    constexpr std::string_view Edges(
        "\0/A\\\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF3\xF4\xF5\xFF", 24);
    for (unsigned i = 0; i < 24u * 24 * 24 * 24; ++i)
        ExpectRoundTrip(
            {Edges[i % 24], Edges[i / 24 % 24], Edges[i / 24 / 24 % 24], Edges[i / 24 / 24 / 24]});
}

TEST(NativeBytes, RandomNamesAndTheirParts)
{
    std::minstd_rand random(1);
    std::string before;
    for (int i = 0; i < 50'000; ++i)
    {
        std::string bytes;
        for (auto length = random() % 20; length > 0; --length)
            bytes += random() % 3 == 0 ? std::string("\xF0\x9F\x98\x80")
                                       : std::string(1, static_cast<char>(random()));
        ExpectRoundTrip(bytes);
        ASSERT_EQ((Path::fromNativeBytes(before) + Path::fromNativeBytes(bytes)).toNativeBytes(),
                  before + bytes);
        ASSERT_EQ(PathToFilesystem(PathFromFilesystem(bytes)).native(), bytes);
        before = bytes;
    }
}

TEST(NativeBytes, TextThatStandsForBytes)
{
    struct Row
    {
        std::string_view bytes;
        std::u16string_view text;
    };
    for (Row const &row : std::initializer_list<Row>{{"a/\xC3\xA9\xF0\x9F\x98\x80", u"a/\u00E9\U0001F600"},
                                                     {"a\\b", u"a\xDC5C"
                                                              u"b"},
                                                     {"\xE9", u"\xDCE9"},
                                                     {"\xC0\xAF", u"\xDCC0\xDCAF"},
                                                     {"\xED\xB2\x80", u"\xDCED\xDCB2\xDC80"},
                                                     {"\xF4\x90\x80\x80", u"\xDCF4\xDC90\xDC80\xDC80"},
                                                     {"\xF0\x9F\x98"
                                                      "A",
                                                      u"\xDCF0\xDC9F\xDC98"
                                                      u"A"}})
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
