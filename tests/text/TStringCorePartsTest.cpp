#include "support/ReferenceText.h"
#include "support/TestText.h"
#include "vansys/TScanStringCore.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace
{

constexpr int MaxInt = std::numeric_limits<int>::max();
constexpr int MinInt = std::numeric_limits<int>::min();

using Strings = std::vector<TStringCore>;
using S = TStringCore;

} // namespace

TEST(TStringCoreParts, LeftRightAndMidClamp)
{
    TStringCore const text = u"abcdef";
    auto const all = [](Strings const &parts) { return TStringCore::join(parts, u','); };
    auto const parts = [&](int position, int count) {
        return all({text.left(count), text.right(count), text.mid(position, count)});
    };
    EXPECT_EQ(parts(2, 3), u"abc,def,cde");
    EXPECT_EQ(parts(0, 0), u",,");
    EXPECT_EQ(parts(-4, 2), u"ab,ef,ab");
    EXPECT_EQ(parts(4, MaxInt), u"abcdef,abcdef,ef");
    EXPECT_EQ(parts(1, -1), u"abcdef,abcdef,bcdef");
    EXPECT_EQ(parts(MaxInt, MinInt), u"abcdef,abcdef,");
    EXPECT_EQ(all({text.spanIncluding(u"cba"), text.spanExcluding("dx"), text.spanIncluding(nullptr)}),
              u"abc,abc,");
}

TEST(TStringCoreParts, TheWholeTextIsShared)
{
    TStringCore const text = u"a text that is too long to be held inline";
    for (TStringCore const &part :
         {text.left(100), text.right(-1), text.mid(-1), text.section(u",", 0), text.split(u",").at(0),
          text.splitOnAny(u",").at(0), text.trimmed(), text.leftJustified(41), text.rightJustified(3),
          text.leftJustified(41, u' ', true), text.spanExcluding(nullptr), TStringCore::join({text}, u","),
          text.repeated(1)})
        EXPECT_EQ(part.constData(), text.constData());
}

TEST(TStringCoreParts, SplitAndSectionAgreeWithTheReference)
{
    RandomText random(u"aA,,b");
    for (int round = 0; round < 20000; ++round)
    {
        // Some have more parts than are remembered without touching the heap.
        std::u16string const text = random.text(round % 50 == 0 ? 1000 : 20);
        std::u16string const separator = random.text(2);
        int const flags = random.number(0, 15), first = random.number(-5, 5), last = random.number(-5, 5);
        SCOPED_TRACE(testing::Message() << "round " << round << ", flags " << flags);
        bool const folds = (flags & 8) != 0;
        auto const fold = folds ? reference::FoldAscii : reference::KeepCase;
        auto const sensitivity = folds ? TStringCore::CaseInsensitive : TStringCore::CaseSensitive;
        TStringCore const string(text), sought(separator);

        Strings expected;
        for (std::u16string const &part : reference::Split(text, separator, (flags & 1) != 0, fold))
            expected.push_back(TStringCore(part));
        auto const behavior = static_cast<TStringCore::SplitBehavior>(flags & 1);
        ASSERT_EQ(string.split(sought, behavior, sensitivity), expected);
        if (separator.size() == 1 && !folds)
        {
            ASSERT_EQ(string.splitOnAny(sought, behavior), expected);
            ASSERT_TRUE(flags % 2 == 1 || TStringCore::join(expected, sought) == string);
        }
        auto const sectionFlags = static_cast<TStringCore::SectionFlags>(flags);
        TStringCore const section(reference::Section(text, separator, first, last, flags, fold));
        ASSERT_EQ(string.section(sought, first, last, sectionFlags), section);
        ExactUnits const units(text);
        ASSERT_EQ(TStringCore::section(units.data(), units.count(), sought.constData(), sought.length(),
                                       first, last, sectionFlags),
                  section);
    }
}

TEST(TStringCoreParts, SplitsAndCutsInEachForm)
{
    TStringCore const text = u"a,b;;c";
    EXPECT_EQ(text.splitOnAny(""), Strings());
    EXPECT_EQ(S::join(text.splitOnAny(u";,"), u'|'), u"a|b||c");
    EXPECT_EQ(S::join(text.splitOnAny(L";,", static_cast<S::SplitBehavior>(7)), u'|'), u"a|b|c");
    EXPECT_EQ(TStringCore::split(static_cast<TCodeUnit *>(nullptr), -1, text.constData() + 1, 1), Strings());
    EXPECT_EQ(TStringCore::split(text.constData(), 0, text.constData() + 1, 1), Strings{u""});
    EXPECT_EQ(TStringCore(u"1and2AND3").section("And", 1, 1, TStringCore::SectionCaseInsensitiveSeps), u"2");
    EXPECT_EQ(text.section(u';', 1, 1, S::SectionIncludeLeadingSep | S::SectionIncludeTrailingSep), u";;");
    EXPECT_EQ(text.section(u';', MinInt, MaxInt), u"");

    // Lengths of the twin are counts of its elements.
    std::vector<TWideTwin> const twin = TwinElements(u"\U0001F600,\u00E9,b");
    std::vector<TWideTwin> const comma = TwinElements(u",b");
    auto const count = static_cast<int>(twin.size()) - 3; // up to and with U+00E9
    Strings const twoParts{u"\U0001F600", u"\u00E9"};
    EXPECT_EQ(TStringCore::split(twin.data(), count, comma.data(), 1), twoParts);
    EXPECT_EQ(TStringCore::splitOnAny(twin.data(), count, comma.data(), 1), twoParts);
    EXPECT_EQ(TStringCore::section(twin.data(), count, comma.data(), 1, 1, -1), u"\u00E9");
}

TEST(TStringCoreParts, JoinsRepeatsAndJustifies)
{
    Strings const parts{u"a", u"", u"a part on the heap", u"-"};
    EXPECT_EQ(TStringCore::join(parts, parts[3]), u"a--a part on the heap--");
    EXPECT_EQ(TStringCore::join(parts, nullptr), u"aa part on the heap-");
    EXPECT_EQ(TStringCore(u"ab").repeated(8), u"abababababababab");
    EXPECT_EQ(TStringCore(u"ab").repeated(MinInt).append(TStringCore().repeated(MaxInt)), u"");
    EXPECT_EQ(TStringCore(u" edcba ").reversed().trimmed(), u"abcde");

    auto const justified = [](int width, bool truncate)
    {
        return TStringCore(u"abc").leftJustified(width, u'-', truncate).append(u'|') +=
               TStringCore(u"abc").rightJustified(width, u'-', truncate);
    };
    EXPECT_EQ(justified(6, false), u"abc---|---abc");
    EXPECT_EQ(justified(18, true), u"abc---------------|---------------abc");
    EXPECT_EQ(justified(2, false).append(justified(MinInt, false)), u"abc|abcabc|abc");
    EXPECT_EQ(justified(2, true).append(justified(-1, true)), u"ab|ab|");
}

TEST(TStringCoreParts, TokenizeWalks)
{
    auto const tokens = [](TStringCore const &text, int position, int behavior)
    {
        TStringCore result;
        while (position >= 0)
            result.append(text.tokenize(L",;", position, static_cast<S::SplitBehavior>(behavior)))
                .append(u'|');
        return result;
    };
    EXPECT_EQ(tokens(u",a;;b", 0, S::SkipEmptyParts), u"a|b|");
    EXPECT_EQ(tokens(u",a;;b", 0, S::KeepEmptyParts), u"|a||b|");
    EXPECT_EQ(tokens(u"a,;b", 0, 2), u"a||b|");
    EXPECT_EQ(tokens(u"a,", 0, S::SkipEmptyParts), u"a||");
    EXPECT_EQ(tokens(u"ab,c", 1, S::SkipEmptyParts), u"b|c|");
    EXPECT_EQ(tokens(u"", 0, S::SkipEmptyParts), u"|");
    EXPECT_EQ(tokens(u"ab", MaxInt, S::SkipEmptyParts).append(tokens(u"ab", MaxInt, S::KeepEmptyParts)),
              u"||");
    int start = 1, none = -3;
    EXPECT_EQ(S(u"a,b").tokenize(nullptr, start).append(S(u"a").tokenize(u",", none)), u"");
    EXPECT_TRUE(start == 1 && none == -3) << "left alone";
}

/// Sets in UTF-8, and in the other wide type where that is UTF-32, do not take characters apart. The two here
/// begin with the same unit.
TEST(TStringCoreParts, SetsOfCodePoints)
{
    TStringCore const text = u"\U0001F600a\U0001F601";
    auto const check = [&](auto const *set)
    {
        for (TStringCore const &part : {S(text).trim(set), S(text).removeAnyOf(set), text.spanExcluding(set),
                                        text.splitOnAny(set).at(0)})
            EXPECT_EQ(part, u"\U0001F600a");
        EXPECT_EQ(TStringCore(text).trimLeft(set), text);
        EXPECT_EQ(TStringCore(text).removeAnyOf(set, 4), text) << "half of a character is none";
        EXPECT_EQ(TStringCore(text).append(text).replaceAnyOf(set, u'-', 1), u"\U0001F600a-\U0001F600a-");
        int position = 0;
        EXPECT_EQ(TStringCore(u"\U0001F601\U0001F600\U0001F601a").tokenize(set, position), u"\U0001F600");
        EXPECT_EQ(position, 6);
        EXPECT_EQ(TScanStringCore::lengthAnyNotOf(text, set), 3);
        EXPECT_EQ(TStringCore(u"\xDE01\xD83D").trim(set).length(), 2);
    };
    check("x\u20AC\U0001F601");
    if constexpr (sizeof(TWideTwin) != sizeof(TCodeUnit))
    {
        check(L"x\u20AC\U0001F601");
        EXPECT_EQ(TStringCore::findOneOf(L"\U0001F600a\U0001F601", -1, L"\U0001F601", -1), 2);
        EXPECT_EQ(TStringCore::findOneNotOf(L"\U0001F600a\U0001F601", -1, L"\U0001F600", -1), 1);
        EXPECT_EQ(TStringCore::splitOnAny(L"\U0001F600a\U0001F601", -1, L"\U0001F601", -1).at(0).length(), 3);
    }
    EXPECT_EQ(TStringCore(text).trim("\xED\xA0\xBD"), text) << "half of a character is none in a set either";
    EXPECT_EQ(TStringCore(u"\xD83D").append(text).trim("\xED\xA0\xBD"), text) << "but for one by itself";
    EXPECT_EQ(TStringCore(u"\u20AC\u212C").removeAnyOf(u"\u20AC"), u"\u212C") << "alike in the set's filter";
    EXPECT_EQ(TStringCore(text).removeAnyOf(TStringCore(u"\U0001F601")), u"\xDE00\u0061") << "a set of units";
}
