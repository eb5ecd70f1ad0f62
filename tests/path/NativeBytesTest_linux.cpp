// Every sequence of bytes is a name, and comes back as it went in.
#include "vansys/TPathCore.h"
#include "vansys/TPathCoreFilesystem.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using Path = TPathCore;

TEST(NativeBytes, ComeBackAsTheyWent)
{
    // The first and last of each kind of byte in UTF-8.
    constexpr std::string_view Edges(
        "\0/A\\\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF3\xF4\xF5\xFF", 24);
    std::minstd_rand random(1);
    std::string before;
    for (int i = 0; i < 200'000; ++i)
    {
        std::string bytes = random() % 3 == 0 ? "\xF0\x9F\x98\x80" : "";
        for (auto length = random() % 12; length > 0; --length)
            bytes += random() % 8 == 0 ? static_cast<char>(random()) : Edges[random() % Edges.size()];
        Path const path = Path::fromNativeBytes(bytes);
        ASSERT_EQ(path.toNativeBytes(), bytes) << testing::PrintToString(bytes);
        ASSERT_EQ(PathToFilesystem(PathFromFilesystem(bytes)).native(), bytes);
        // A path of the text is of the same name.
        ASSERT_EQ(Path((path + u"x").GenericString()).toNativeBytes(), bytes + "x");
        ASSERT_EQ((Path::fromNativeBytes(before) + path).toNativeBytes(), before + bytes);
        before = bytes;
    }
}

TEST(NativeBytes, TextThatStandsForBytes)
{
    std::pair<char const *, char16_t const *> const rows[] = {
        {"a/\xC3\xA9\xF0\x9F\x98\x80", u"a/\u00E9\U0001F600"},
        {"a\\z", u"a\xDC5Cz"},
        {"\xE9", u"\xDCE9"},
        {"\xC0\xAF", u"\xDCC0\xDCAF"},
        {"\xED\xB2\x80", u"\xDCED\xDCB2\xDC80"},
        {"\xF4\x90\x80\x80", u"\xDCF4\xDC90\xDC80\xDC80"},
        {"\xF0\x9F\x98z", u"\xDCF0\xDC9F\xDC98z"}};
    for (auto const &[bytes, text] : rows)
        EXPECT_EQ(Path::fromNativeBytes(bytes).GenericString(), text);
    // Text that is no name of bytes: no escape makes a separator, a zero or a letter.
    EXPECT_EQ(Path(TStringCore(u"\xDC2F\xDC00\xD800\xDC41\xDD00")).toNativeBytes(),
              "\xED\xB0\xAF\xED\xB0\x80\xF0\x90\x81\x81\xED\xB4\x80");
    Path swapped;
    Path(u"a/b").Swap(swapped);
    EXPECT_EQ(swapped.toNativeBytes(), "a/b");
}
