#include "support/ReferenceText.h"
#include "support/TestText.h"
#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

using namespace std::string_view_literals;

namespace
{

constexpr int MaxInt = std::numeric_limits<int>::max();
constexpr int MinInt = std::numeric_limits<int>::min();
constexpr TCodeUnit const *NullText = nullptr;

} // namespace

TEST(TStringCoreSearch, AgreesWithTheReference)
{
    // Long enough for every vector loop, at every place in a vector; few letters, so that a lot matches.
    // U+0161 has the low bits of "a", and U+0431 those of U+04B1: sets must tell them apart.
    RandomText random(u"aAbB,\u0161\u0431\u04B1");
    for (int round = 0; round < 20000; ++round)
    {
        std::u16string text = random.text(round % 4 == 0 ? 200 : 20);
        std::u16string needle = random.text(round % 8 == 0 ? 20 : 3);
        if (round % 4 == 1)
        {
            // Nearly the same over and over, which no search may be slow with.
            while (text.size() < 150)
                text += text + needle + u'a';
            needle = reference::folded(text.substr(text.size() / 3, 60), reference::foldAscii) + needle;
        }
        int const start = random.number(-2, static_cast<int>(text.size()) + 2);
        ExactUnits const units(text);
        ExactUnits const set(needle);
        for (bool const folds : {false, true})
        {
            SCOPED_TRACE(testing::Message()
                         << "round " << round << ", start " << start << ", folds " << folds);
            auto const fold = folds ? reference::foldAscii : reference::keepCase;
            auto const sensitivity = folds ? TStringCore::CaseInsensitive : TStringCore::CaseSensitive;
            TStringCore const string(text);
            TStringCore const sought(needle);
            int const first = reference::indexOf(text, needle, start, fold);
            ASSERT_EQ(string.indexOf(sought, start, sensitivity), first);
            ASSERT_EQ(string.lastIndexOf(sought, start, sensitivity),
                      reference::lastIndexOf(text, needle, start, fold));
            ASSERT_EQ(string.count(sought, sensitivity),
                      static_cast<int>(reference::matches(text, needle, fold).size()));
            ASSERT_EQ(TStringCore::findStr(units.data(), units.count(), set.data(), set.count(), start,
                                           sensitivity),
                      first);
        }
        auto const from = static_cast<std::size_t>(std::max(start, 0));
        ASSERT_EQ(TStringCore::findOneOf(units.data(), units.count(), set.data(), set.count(), start),
                  reference::position(text.find_first_of(needle, from)));
        ASSERT_EQ(TStringCore::findOneNotOf(units.data(), units.count(), set.data(), set.count(), start),
                  reference::position(text.find_first_not_of(needle, from)));
    }
}

TEST(TStringCoreSearch, EdgesOfPositionsAndEmptyTexts)
{
    TStringCore const text = u"abcabc";
    struct Row
    {
        TStringCore needle;
        int start, first, last;
    };

    for (Row const &row : {Row{u"bc", MinInt, 1, 4},
                           {u"bc", MaxInt, -1, 4},
                           {u"bc", 4, 4, 4},
                           {u"bc", 3, 4, 1},
                           {u"", -1, 0, 6},
                           {u"", 6, 6, 6},
                           {u"", 7, -1, -1},
                           {u"", MaxInt, -1, -1},
                           {u"abcabcd", 0, -1, -1}})
    {
        EXPECT_EQ(text.indexOf(row.needle, row.start), row.first) << row.start;
        EXPECT_EQ(text.lastIndexOf(row.needle, row.start), row.last) << row.start;
    }
    EXPECT_EQ(text.indexOf(NullText, 2), 2);
    EXPECT_EQ(text.count(NullText), 0);
    EXPECT_EQ(TStringCore().indexOf(u'a'), -1);
    EXPECT_EQ(TStringCore().lastIndexOf(u""), 0);
    EXPECT_EQ(TStringCore::findStr(NullText, 5, NullText, 5), 0) << "null is empty whatever its count";
    EXPECT_EQ(TStringCore::findOneOf(NullText, -1, NullText, -1), -1);
    EXPECT_EQ(TStringCore::findOneNotOf(text.constData(), -1, NullText, 3, 2), 2);
    EXPECT_EQ(TStringCore::findOneOf(text.constData(), -1, text.constData() + 2, 1, MaxInt), -1);
    EXPECT_EQ(TStringCore::findChar(text.constData(), -1, text[2]), 2);
    EXPECT_TRUE(text.contains("CA", TStringCore::CaseInsensitive));
    EXPECT_EQ(TStringCore(u"e\u00C9").indexOf(u'\u00E9', TStringCore::CaseInsensitive), 1);
    EXPECT_EQ(TStringCore(u"a vector and more: \u212Aelvin").indexOf(u"Kelvin", TStringCore::CaseInsensitive),
              19);
    EXPECT_EQ(TStringCore(u"a\0b\0"sv).lastIndexOf(u'\0'), 3);
}

TEST(TStringCoreSearch, NoTextTakesMoreThanLinearTime)
{
    // Each of these would take minutes if it looked at the whole needle at every place.
    constexpr int Length = 1 << 20;
    TStringCore text;
    TStringCore const needle = TStringCore(u"ab").repeated(Length / 4).append(u"aabb");
    auto const start = std::chrono::steady_clock::now();
    for (auto const sensitivity : {TStringCore::CaseSensitive, TStringCore::CaseInsensitive})
    {
        text = TStringCore(u"ab").repeated(Length / 2);
        EXPECT_EQ(text.indexOf(needle, sensitivity), -1);
        EXPECT_EQ(text.lastIndexOf(needle, -1, sensitivity), -1);
        EXPECT_EQ(text.count(needle, sensitivity), 0);
        EXPECT_EQ(text.replaceCount(needle, u"", sensitivity), 0);
        EXPECT_EQ(text.split(needle, TStringCore::KeepEmptyParts, sensitivity).size(), 1u);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    }
}

TEST(TStringCoreSearch, CountsOfTheTwinAreElements)
{
    // Where an element takes two units, positions of elements and units differ.
    std::u32string const text = U"\U0001F600a\U0001F601,\U0001F600b";
    std::vector<TWideTwin> const twin = TwinElements(TStringCore::fromUtf32(text.c_str()));
    std::vector<TWideTwin> const pair = TwinElements(u"\U0001F600");
    auto const count = static_cast<int>(twin.size()) - 1;
    bool const oneElement = pair.size() == 2;
    EXPECT_EQ(TStringCore::findStr(twin.data(), count, pair.data(), -1), 0);
    EXPECT_EQ(TStringCore::findStr(twin.data(), -1, pair.data(), -1, 1), oneElement ? 4 : 6);
    EXPECT_EQ(TStringCore::findStr(twin.data(), 2, pair.data(), -1, 1), -1);
    EXPECT_EQ(TStringCore::findStr(twin.data(), -1, twin.data(), 0, count), count);
    EXPECT_EQ(TStringCore::findStr(twin.data(), -1, twin.data(), 0, count + 1), -1);
    EXPECT_EQ(TStringCore::findChar(twin.data(), -1, TWideTwin{'B'}, -5, TStringCore::CaseInsensitive),
              oneElement ? 5 : 8);
    TWideTwin const set[] = {'b', ',', 0};
    EXPECT_EQ(TStringCore::findOneOf(twin.data(), -1, set, -1, 1), oneElement ? 3 : 5);
    EXPECT_EQ(TStringCore::findOneNotOf(twin.data(), -1, twin.data(), oneElement ? 2 : 3),
              oneElement ? 2 : 4);
}
