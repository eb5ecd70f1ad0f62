#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

using namespace std::string_literals;

TEST(TStringCoreConversion, DecodesUtf8)
{
    std::pair<std::string, std::u16string> const rows[] = {
        {"a\0b\xC3\xA9\xE2\x82\xAC"s, u"a\0b\u00e9\u20ac"s},
        {"\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", u"\U0001F600\U0010FFFF"},
        {"\xE2\x82", u"\uFFFD"},   // one byte short: the terminator does not continue it
        {"\xE2\x82x", u"\uFFFDx"}, // a byte that does not continue it: what was consumed is one
        {"\x80\xBF\xFE\xFF\xC3(", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD("},
        {"\xF0\x9F(\x80", u"\uFFFD(\uFFFD"},
        {"\xC0\x80\xE0\x80\xAF", u"\0/"s},       // overlong
        {"\xED\xA0\x80", {0xD800}},              // a surrogate
        {"\xF4\x90\x80\x80", u"\uFFFD"},         // above U+10FFFF
        {"\xF8\x80\x80\x80\xAF", u"/"},          // five bytes
        {"\xFC\x80\x80\x82\x82\xAC", u"\u20ac"}, // six bytes
        {"\xFD\xBF\xBF\xBF\xBF\xBF", u"\uFFFD"},
    };
    for (auto const &[bytes, units] : rows)
    {
        // Behind and before ASCII of every length up to two vectors, so that each row crosses every boundary.
        for (std::size_t before = 0; before < 33; ++before)
        {
            std::string const padded = std::string(before, 'b') + bytes;
            std::u16string const expected = std::u16string(before, u'b') + units;
            EXPECT_EQ(TStringCore::fromStdString(padded).toStdUString(), expected)
                << testing::PrintToString(bytes) << " behind " << before;
            EXPECT_EQ(TStringCore::fromStdString(padded + std::string(40, 'a')).toStdUString(),
                      expected + std::u16string(40, u'a'));
        }
    }
}

TEST(TStringCoreConversion, LeadBytesTakeTheirContinuationBytes)
{
    int const ranges[][3] = {{0x80, 0xBF, 0}, {0xC0, 0xDF, 1}, {0xE0, 0xEF, 2}, {0xF0, 0xF7, 3},
                             {0xF8, 0xFB, 4}, {0xFC, 0xFD, 5}, {0xFE, 0xFF, 0}};
    for (auto const &[first, last, continuations] : ranges)
    {
        for (int lead = first; lead <= last; ++lead)
        {
            // A lead byte holds the top bits; what it does not take stands alone.
            auto const value =
                static_cast<unsigned int>(continuations ? (lead - first) << 6 * continuations : 0xFFFD);
            std::string const bytes = static_cast<char>(lead) + std::string(5, '\x80');
            TStringCore const rest(u'\uFFFD', 5 - continuations);
            EXPECT_EQ(TStringCore::fromStdString(bytes), TStringCore::fromUtf32(&value, 1).append(rest));
        }
    }
}

// A sequence that is one byte short of its end: the byte at `count` decides. One that is shorter still is
// given up at once, and each of its bytes stands alone.
TEST(TStringCoreConversion, CountedUtf8LooksAtTheByteBehind)
{
    EXPECT_EQ(TStringCore("\xC3\xA9", 1), u"\u00e9");
    EXPECT_EQ(TStringCore("\xC3", 1), u"\uFFFD");
    EXPECT_EQ(TStringCore("ab\xE2\x82\xAC", 4), u"ab\u20ac");
    EXPECT_EQ(TStringCore("ab\xE2\x82\xAC", 3), u"ab\uFFFD");
    EXPECT_EQ(TStringCore("ab\xF0\x9F", 4), u"ab\uFFFD\uFFFD");
    EXPECT_EQ(TStringCore("\xF0\x9F\x98\x80zz", 3), u"\U0001F600");
}

TEST(TStringCoreConversion, UnitsSurviveUtf8)
{
    TStringCore everyUnit;
    for (int unit = 0; unit < 0x10000; ++unit)
        everyUnit.append(static_cast<TCodeUnit>(unit));
    // Here the last high surrogate meets the first low one and makes a pair; all others are alone.
    EXPECT_EQ(TStringCore::fromStdString(everyUnit.toStdString()), everyUnit);

    std::pair<std::u16string, std::string> const rows[] = {
        {u"\u007f\u0080\u07ff\u0800\uffff", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
        {u"\U00010000\U0010ffff", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
        {{0xDC00, 0xD800, u'x'}, "\xED\xB0\x80\xED\xA0\x80x"},
        {{0xD83D, 0xD83D, 0xDE00}, "\xED\xA0\xBD\xF0\x9F\x98\x80"},
    };
    for (auto const &[text, bytes] : rows)
        EXPECT_EQ(TStringCore(text).toStdString(), bytes);

    // Long text is encoded in portions: none may end within a pair.
    for (std::size_t before = 2046; before <= 2048; ++before)
    {
        std::u16string const text = std::u16string(before, u'\u00e9') + u"\U0001F600";
        EXPECT_EQ(TStringCore(text).toStdString().substr(2 * before), "\xF0\x9F\x98\x80");
    }
}

TEST(TStringCoreConversion, Utf32)
{
    unsigned int const text[] = {'a', 0xFFFF, 0x10000, 0x10FFFF, 0x110000, 0xFFFFFFFF, 0xD800, 0};
    std::u16string const expected = u"a\uffff\U00010000\U0010ffff\ufffd\ufffd"s + char16_t(0xD800);
    EXPECT_EQ(TStringCore::fromUtf32(text).toStdUString(), expected);
    EXPECT_EQ(TStringCore::fromUtf32(text, 3), u"a\uffff\U00010000");
    EXPECT_EQ(TStringCore::fromUtf32(text, 0), u"");
    EXPECT_EQ(TStringCore::fromUtf32(static_cast<char32_t const *>(nullptr)), u"");
    EXPECT_EQ(TStringCore::fromUtf32(U"\U0001F600"), u"\U0001F600");
}

TEST(TStringCoreConversion, WideText)
{
    TStringCore const text(u"a\u20ac\U0001F600\0b", 6);
    std::wstring const wide = L"a\u20ac\U0001F600\0b"s;
    EXPECT_EQ(TStringCore::fromWChar(wide.c_str()), u"a\u20ac\U0001F600");
    EXPECT_EQ(TStringCore::fromWChar(wide.c_str(), 2), u"a\u20ac");
    EXPECT_EQ(TStringCore::fromUtf16(u"abc", 2), u"ab");
    EXPECT_EQ(TStringCore::fromStdWString(wide), text);
    EXPECT_EQ(text.toStdWString(), wide);
    EXPECT_EQ(TStringCore::fromStdUString(text.toStdUString()), text);
    auto const vector = text.toWCharVector();
    EXPECT_EQ(std::wstring(vector.begin(), vector.end()), wide + L'\0');

    auto const testArrays = [&]<class Unit>(std::basic_string<Unit> const &expected)
    {
        for (int capacity = -1; capacity < 8; ++capacity)
        {
            std::vector<Unit> buffer(8, Unit('#'));
            int const length = std::clamp(capacity - 1, 0, static_cast<int>(expected.size()));
            ASSERT_EQ(text.toWCharArray(buffer.data(), capacity), length);
            if (capacity > 0)
            {
                EXPECT_TRUE(std::equal(buffer.begin(), buffer.begin() + length, expected.begin()));
                EXPECT_EQ(buffer[static_cast<std::size_t>(length)], 0);
            }
            EXPECT_EQ(buffer[static_cast<std::size_t>(std::max(capacity, 0))], Unit('#'));
        }
    };
    testArrays(wide);
    testArrays(text.toStdUString());
    EXPECT_EQ(text.toWCharArray(static_cast<char16_t *>(nullptr), 5), 0);

    EXPECT_EQ(text.lengthInCodePoints(), 5);
    EXPECT_EQ(text.lengthInBytes(), 12u);
    EXPECT_EQ(TStringCore::lengthInCodePoints(u"a\u20ac\U0001F600b"), 4);
    EXPECT_EQ(TStringCore::lengthInCodePoints(L"a\u20ac\U0001F600b"), 4);
    EXPECT_EQ(TStringCore::length(u"\U0001F600"), 2);
    EXPECT_EQ(TStringCore::length(L"abc"), 3);
    EXPECT_EQ(TStringCore::lengthInBytes(u"abc"), 6u);
    EXPECT_EQ(TStringCore::length(static_cast<wchar_t const *>(nullptr)), 0);
}

TEST(TStringCoreConversion, LatinCodePages)
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes.push_back(static_cast<char>(byte));
    for (auto const &[from, to] : {std::pair(&TStringCore::fromLatin1, &TStringCore::toLatin1),
                                   std::pair(&TStringCore::fromLatin9, &TStringCore::toLatin9)})
    {
        TStringCore const text = from(bytes.data(), 256);
        bool complete = false;
        EXPECT_EQ((text.*to)(&complete), bytes);
        EXPECT_TRUE(complete);
        EXPECT_EQ(from("a\xE9", -1), u"a\u00e9");
        EXPECT_EQ(from(nullptr, 4), u"");
        EXPECT_EQ((TStringCore(u"\u0100x\U0001F600").*to)(&complete), "?x?");
        EXPECT_FALSE(complete);
    }
    EXPECT_EQ(TStringCore::fromLatin9("\xA4\xA6\xA8\xB4\xB8\xBC\xBD\xBE"),
              u"\u20AC\u0160\u0161\u017D\u017E\u0152\u0153\u0178");
    EXPECT_EQ(TStringCore(u"\u00A4").toLatin9(), "?");
}
