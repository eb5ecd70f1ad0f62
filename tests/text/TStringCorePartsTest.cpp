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

} // namespace

TEST(TStringCoreParts, LeftRightAndMidClamp)
{
    TStringCore const text = u"abcdef";
    struct Row
    {
        int position, count;
        TStringCore parts; ///< left, right and mid
    };

    for (Row const &row : {Row{2, 3, u"abc,def,cde"},
                           {0, 0, u",,"},
                           {-4, 2, u"ab,ef,ab"},
                           {4, MaxInt, u"abcdef,abcdef,ef"},
                           {1, -1, u"abcdef,abcdef,bcdef"},
                           {MaxInt, MinInt, u"abcdef,abcdef,"}})
        EXPECT_EQ(TStringCore::join(
                      {text.left(row.count), text.right(row.count), text.mid(row.position, row.count)}, u','),
                  row.parts);
    EXPECT_EQ(text.spanIncluding(u"cba"), u"abc");
    EXPECT_EQ(text.spanExcluding("dx"), u"abc");
    EXPECT_EQ(text.spanIncluding(nullptr), u"");
    EXPECT_EQ(text.spanIncluding(text), text);
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
        int const flags = random.number(0, 15);
        int const first = random.number(-5, 5);
        int const last = random.number(-5, 5);
        SCOPED_TRACE(testing::Message() << "round " << round << ", flags " << flags);
        bool const folds = (flags & 8) != 0;
        auto const fold = folds ? reference::foldAscii : reference::keepCase;
        auto const sensitivity = folds ? TStringCore::CaseInsensitive : TStringCore::CaseSensitive;
        TStringCore const string(text);
        TStringCore const sought(separator);

        Strings expected;
        for (std::u16string const &part : reference::split(text, separator, (flags & 1) != 0, fold))
            expected.push_back(TStringCore(part));
        auto const behavior = static_cast<TStringCore::SplitBehavior>(flags & 1);
        ASSERT_EQ(string.split(sought, behavior, sensitivity), expected);
        if (separator.size() == 1 && !folds)
        {
            ASSERT_EQ(string.splitOnAny(sought, behavior), expected);
        }
        if (flags == 0 && !separator.empty())
        {
            ASSERT_EQ(TStringCore::join(expected, sought), string);
        }
        auto const sectionFlags = static_cast<TStringCore::SectionFlags>(flags);
        TStringCore const section(reference::section(text, separator, first, last, flags, fold));
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
    EXPECT_EQ(text.split(nullptr), Strings());
    EXPECT_EQ(text.splitOnAny(""), Strings());
    EXPECT_EQ(text.splitOnAny(u";,"), (Strings{u"a", u"b", u"", u"c"}));
    EXPECT_EQ(text.splitOnAny(L";,", static_cast<TStringCore::SplitBehavior>(7)),
              (Strings{u"a", u"b", u"c"}));
    EXPECT_EQ(TStringCore::split(static_cast<TCodeUnit *>(nullptr), -1, text.constData() + 1, 1), Strings());
    EXPECT_EQ(TStringCore::split(text.constData(), 0, text.constData() + 1, 1), Strings{u""});
    EXPECT_EQ(TStringCore::split(text.constData(), 4, text.constData() + 3, 1), (Strings{u"a,b", u""}));
    EXPECT_EQ(text.section(nullptr, 0), u"");
    EXPECT_EQ(TStringCore(u"1and2AND3").section("And", 1, 1, TStringCore::SectionCaseInsensitiveSeps), u"2");
    EXPECT_EQ(text.section(u';', 1, 1,
                           TStringCore::SectionIncludeLeadingSep | TStringCore::SectionIncludeTrailingSep),
              u";;");
    EXPECT_EQ(text.section(u';', MinInt, MaxInt), u"");

    // Lengths of the twin are counts of its elements.
    std::vector<TWideTwin> const twin = TwinElements(U"\U0001F600,\u00E9,b");
    std::vector<TWideTwin> const comma = TwinElements(U",");
    auto const count = static_cast<int>(twin.size()) - 3; // up to and with U+00E9
    EXPECT_EQ(TStringCore::split(twin.data(), count, comma.data(), -1), (Strings{u"\U0001F600", u"\u00E9"}));
    EXPECT_EQ(TStringCore::splitOnAny(twin.data(), count, comma.data(), 1),
              (Strings{u"\U0001F600", u"\u00E9"}));
    EXPECT_EQ(TStringCore::section(twin.data(), count, comma.data(), 1, 1, -1), u"\u00E9");
    EXPECT_EQ(TStringCore::split(static_cast<TWideTwin *>(nullptr), 4, comma.data(), 1), Strings());
}

TEST(TStringCoreParts, JoinsRepeatsAndJustifies)
{
    Strings const parts{u"a", u"", u"a part on the heap", u"-"};
    EXPECT_EQ(TStringCore::join(parts, parts[3]), u"a--a part on the heap--");
    EXPECT_EQ(TStringCore::join(parts, nullptr), u"aa part on the heap-");
    EXPECT_EQ(TStringCore::join({}, u","), u"");
    EXPECT_EQ(TStringCore::join({u"", u""}, u','), u",");
    EXPECT_EQ(TStringCore(u"ab").repeated(8), u"abababababababab");
    EXPECT_EQ(TStringCore(u"ab").repeated(MinInt), u"");
    EXPECT_EQ(TStringCore().repeated(MaxInt), u"");
    EXPECT_EQ(TStringCore(u"abcde").reversed(), u"edcba");
    EXPECT_EQ(TStringCore(u" a ").trimmed(), u"a");

    struct Row
    {
        int width;
        bool truncate;
        char const *left;
        char const *right;
    };

    for (Row const row : {Row{6, false, "abc---", "---abc"},
                          {20, true, "abc-----------------", "-----------------abc"},
                          {2, false, "abc", "abc"},
                          {2, true, "ab", "ab"},
                          {MinInt, false, "abc", "abc"},
                          {-1, true, "", ""}})
    {
        EXPECT_EQ(TStringCore(u"abc").leftJustified(row.width, u'-', row.truncate), row.left) << row.width;
        EXPECT_EQ(TStringCore(u"abc").rightJustified(row.width, u'-', row.truncate), row.right) << row.width;
    }
}

TEST(TStringCoreParts, TokenizeWalks)
{
    struct Row
    {
        TStringCore text;
        int position;
        TStringCore::SplitBehavior behavior;
        Strings tokens;
    };

    constexpr auto Keep = TStringCore::KeepEmptyParts, Skip = TStringCore::SkipEmptyParts;
    for (Row const &row : {Row{u",a;;b", 0, Skip, {u"a", u"b"}},
                           {u",a;;b", 0, Keep, {u"", u"a", u"", u"b"}},
                           {u"a,", 0, Skip, {u"a", u""}},
                           {u"", 0, Skip, {u""}},
                           {u"ab,c", 1, Skip, {u"b", u"c"}},
                           {u"ab,c", MaxInt, Skip, {u""}},
                           {u"ab,c", MaxInt, Keep, {u""}},
                           {u"a,;b", 0, static_cast<TStringCore::SplitBehavior>(2), {u"a", u"", u"b"}}})
    {
        Strings tokens;
        for (int position = row.position; position >= 0;)
            tokens.push_back(row.text.tokenize(L",;", position, row.behavior));
        EXPECT_EQ(tokens, row.tokens) << testing::PrintToString(row.text);
    }
    int start = 1, none = -3;
    EXPECT_EQ(TStringCore(u"a,b").tokenize(nullptr, start).append(TStringCore(u"a").tokenize(u",", none)),
              u"");
    EXPECT_TRUE(start == 1 && none == -3) << "left alone";
}

/// Sets in UTF-8, and in the other wide type where that is UTF-32, do not take characters apart. The two here
/// begin with the same unit.
TEST(TStringCoreParts, SetsOfCodePoints)
{
    TStringCore const text = u"\U0001F600a\U0001F601";
    auto const check = [&](auto const *set)
    {
        EXPECT_EQ(TStringCore(text).trim(set), u"\U0001F600a");
        EXPECT_EQ(TStringCore(text).trimLeft(set), text);
        EXPECT_EQ(TStringCore(text).removeAnyOf(set), u"\U0001F600a");
        EXPECT_EQ(TStringCore(text).removeAnyOf(set, 4), text) << "half of a character is none";
        EXPECT_EQ(TStringCore(text).append(text).replaceAnyOf(set, u'-', 1), u"\U0001F600a-\U0001F600a-");
        EXPECT_EQ(text.spanExcluding(set), u"\U0001F600a");
        EXPECT_EQ(text.spanIncluding(set), u"");
        EXPECT_EQ(text.splitOnAny(set), (Strings{u"\U0001F600a", u""}));
        int position = 0;
        EXPECT_EQ(TStringCore(u"\U0001F601\U0001F600\U0001F601a").tokenize(set, position), u"\U0001F600");
        EXPECT_EQ(position, 6);
        EXPECT_EQ(TScanStringCore::lengthAnyOf(text.constData() + 3, set), 2);
        EXPECT_EQ(TScanStringCore::lengthAnyNotOf(text, set), 3);
        EXPECT_EQ(TStringCore(u"\xDE01\xD83D").trim(set).length(), 2);
    };
    check("x\u20AC\U0001F601");
    if constexpr (sizeof(TWideTwin) != sizeof(TCodeUnit))
    {
        check(L"x\u20AC\U0001F601");
        EXPECT_EQ(TStringCore(u"\U0001F600a").trimLeft(static_cast<TWideTwin>(0x1F601)), u"\U0001F600a");
        EXPECT_EQ(TStringCore::findOneOf(L"\U0001F600a\U0001F601", -1, L"\U0001F601", -1), 2);
        EXPECT_EQ(TStringCore::findOneNotOf(L"\U0001F600a\U0001F601", -1, L"\U0001F600", -1), 1);
        EXPECT_EQ(TStringCore::splitOnAny(L"\U0001F600a\U0001F601", -1, L"\U0001F601", -1),
                  (Strings{u"\U0001F600a", u""}));
    }
    EXPECT_EQ(TStringCore(text).trim("\xED\xA0\xBD"), text) << "half of a character is none in a set either";
    EXPECT_EQ(TStringCore(u"\xD83D").append(text).trim("\xED\xA0\xBD"), text) << "but for one by itself";
    EXPECT_EQ(TStringCore(u"\u20AC\u212C").removeAnyOf(u"\u20AC"), u"\u212C") << "alike in the set's filter";
    EXPECT_EQ(TStringCore(text).removeAnyOf(TStringCore(u"\U0001F601")), u"\xDE00\u0061") << "a set of units";
}
