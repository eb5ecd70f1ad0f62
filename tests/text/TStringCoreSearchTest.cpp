#include "support/ReferenceText.h"
#include "support/TestText.h"
#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <initializer_list>
#include <limits>
#include <string>
#include <utility>
#include <vector>

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
            needle = reference::Folded(text.substr(text.size() / 3, 60), reference::FoldAscii) + needle;
        }
        int const start = random.number(-2, static_cast<int>(text.size()) + 2);
        SCOPED_TRACE(testing::Message() << "round " << round << ", start " << start);
        ExactUnits const units(text), set(needle);
        TStringCore const string(text), sought(needle);
        for (auto const &[sensitivity, fold] :
             {std::pair(TStringCore::CaseSensitive, reference::KeepCase),
              std::pair(TStringCore::CaseInsensitive, reference::FoldAscii)})
        {
            int const first = TStringCore::findStr(units.data(), units.count(), set.data(), set.count(),
                                                   start, sensitivity);
            ASSERT_EQ(first, reference::IndexOf(text, needle, start, fold));
            ASSERT_EQ(first, string.indexOf(sought, start, sensitivity));
            ASSERT_EQ(string.lastIndexOf(sought, start, sensitivity),
                      reference::LastIndexOf(text, needle, start, fold));
            ASSERT_EQ(string.count(sought, sensitivity), reference::Count(text, needle, fold));
        }
        auto const from = static_cast<std::size_t>(std::max(start, 0));
        ASSERT_EQ(TStringCore::findOneOf(units.data(), units.count(), set.data(), set.count(), start),
                  reference::Position(text.find_first_of(needle, from)));
        ASSERT_EQ(TStringCore::findOneNotOf(units.data(), units.count(), set.data(), set.count(), start),
                  reference::Position(text.find_first_not_of(needle, from)));
    }
}

TEST(TStringCoreSearch, EdgesOfPositionsAndEmptyTexts)
{
    constexpr int MaxInt = std::numeric_limits<int>::max();
    TStringCore const text = u"abcabc";
    struct Row
    {
        TStringCore needle;
        int start, first, last;
    };
    for (auto const &[needle, start, first, last] :
         {Row{u"bc", -MaxInt, 1, 4}, Row{u"bc", MaxInt, -1, 4}, Row{u"", -1, 0, 6}, Row{u"", 6, 6, 6},
          Row{u"", 7, -1, -1}, Row{u"", MaxInt, -1, -1}, Row{u"abcabcd", 0, -1, -1}})
    {
        EXPECT_EQ(text.indexOf(needle, start), first) << start;
        EXPECT_EQ(text.lastIndexOf(needle, start), last) << start;
    }
    TCodeUnit const *const null = nullptr;
    TCodeUnit const *const units = text;
    EXPECT_EQ(text.indexOf(null, 2), 2);
    EXPECT_EQ(text.count(null), 0);
    EXPECT_EQ(TStringCore().lastIndexOf(u""), 0);
    EXPECT_EQ(TStringCore::findStr(null, 5, null, 5), 0) << "null is empty whatever its count";
    EXPECT_EQ(TStringCore::findOneNotOf(units, -1, null, 3, 2), 2);
    EXPECT_EQ(TStringCore::findOneOf(units, -1, units + 2, 1, MaxInt), -1);
    EXPECT_EQ(TStringCore::findChar(units, -1, text[2]), 2);
    EXPECT_EQ(TStringCore(u"e\u00C9").indexOf(u'\u00E9', TStringCore::CaseInsensitive), 1);
    EXPECT_EQ(TStringCore(u"a vector and more: \u212Aelvin").indexOf(u"Kelvin", TStringCore::CaseInsensitive),
              19);
    EXPECT_EQ(TStringCore(u"a\0b\0", 4).lastIndexOf(u'\0'), 3);
}

TEST(TStringCoreSearch, NoTextTakesMoreThanLinearTime)
{
    constexpr int Length = 1 << 19;
    auto const halfOf = [](TStringCore const &text) { return text.mid(5, Length / 2); };
    TStringCore const same(u'a', Length);
    TStringCore const pairs = TStringCore(u"ab").repeated(Length / 2);
    TStringCore const runs = TStringCore(u'a', 60).append(u'b').repeated(Length / 61);
    // Made of the two words before it, over and over: it has many periods, none of which lasts.
    TStringCore fibonacci = u"a";
    for (TStringCore before = u"b"; fibonacci.length() < Length; before.swap(fibonacci))
        before.prepend(fibonacci);
    using TextsAndNeedles = std::initializer_list<std::pair<TStringCore, TStringCore>>;
    for (auto const &[text, needle] :
         TextsAndNeedles{{same, halfOf(same).append(u"b")},
                         {same, TStringCore(u"b").append(halfOf(same))},
                         {same, halfOf(same).append(u"b").append(halfOf(same)).mid(Length / 4, Length / 2)},
                         {pairs, halfOf(pairs).append(u"aabb")},
                         {pairs, TStringCore(u"bbaa").append(halfOf(pairs))},
                         {runs, runs.left(60).append(u"ab")},
                         {runs, TStringCore(u"b").append(runs.left(60)).append(u"aba")},
                         {fibonacci, halfOf(fibonacci).append(u"bb")},
                         {fibonacci, fibonacci.mid(5, 30)}})
    {
        // It would take far longer to look at the whole needle at every place.
        auto const start = std::chrono::steady_clock::now();
        for (auto const sensitivity : {TStringCore::CaseSensitive, TStringCore::CaseInsensitive})
        {
            int const count = text.count(needle, sensitivity);
            EXPECT_EQ(TStringCore(text).replaceCount(needle, u"", sensitivity), count);
            EXPECT_EQ(text.contains(needle, sensitivity), count > 0);
            EXPECT_EQ(text.lastIndexOf(needle, -1, sensitivity) >= 0, count > 0);
        }
        ASSERT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5))
            << needle.left(70).toStdString();
    }
}

TEST(TStringCoreSearch, CountsOfTheTwinAreElements)
{
    // Where an element takes two units, positions of elements and units differ.
    std::vector<TWideTwin> const twin = TwinElements(u"\U0001F600a\U0001F601,\U0001F600b");
    std::vector<TWideTwin> const pair = TwinElements(u"\U0001F600");
    TWideTwin const set[] = {'b', ',', 0};
    auto const count = static_cast<int>(twin.size()) - 1;
    bool const oneElement = pair.size() == 2;
    int const secondPair = oneElement ? 4 : 6;
    EXPECT_EQ(TStringCore::findStr(twin.data(), count, pair.data(), -1), 0);
    EXPECT_EQ(TStringCore::findStr(twin.data(), -1, pair.data(), -1, 1), secondPair);
    EXPECT_EQ(TStringCore::findStr(twin.data(), 2, pair.data(), -1, 1), -1);
    EXPECT_EQ(TStringCore::findStr(twin.data(), -1, twin.data(), 0, count), count);
    EXPECT_EQ(TStringCore::findStr(twin.data(), -1, twin.data(), 0, count + 1), -1);
    EXPECT_EQ(TStringCore::findChar(twin.data(), -1, TWideTwin{'B'}, -5, TStringCore::CaseInsensitive),
              count - 1);
    EXPECT_EQ(TStringCore::findOneOf(twin.data(), -1, set, -1, secondPair), count - 1);
    EXPECT_EQ(TStringCore::findOneNotOf(twin.data(), -1, twin.data(), oneElement ? 2 : 3),
              oneElement ? 2 : 4);
}
