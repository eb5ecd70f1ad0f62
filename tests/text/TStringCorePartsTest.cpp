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
constexpr TCodeUnit const *NullText = nullptr;
constexpr auto SkipEmpty = TStringCore::SkipEmptyParts;

using Strings = std::vector<TStringCore>;

} // namespace

TEST(TStringCoreParts, LeftRightAndMidClamp)
{
    TStringCore const text = u"abcdef";
    struct Row
    {
        int position, count;
        TStringCore left, right, mid;
    };

    for (Row const &row : {Row{2, 3, u"abc", u"def", u"cde"},
                           {0, 0, u"", u"", u""},
                           {-4, 2, u"ab", u"ef", u"ab"},
                           {4, MaxInt, u"abcdef", u"abcdef", u"ef"},
                           {1, -1, u"abcdef", u"abcdef", u"bcdef"},
                           {MaxInt, MinInt, u"abcdef", u"abcdef", u""},
                           {MinInt, 6, u"abcdef", u"abcdef", u"abcdef"}})
    {
        SCOPED_TRACE(testing::Message() << row.position << ", " << row.count);
        EXPECT_EQ(text.left(row.count), row.left);
        EXPECT_EQ(text.right(row.count), row.right);
        EXPECT_EQ(text.mid(row.position, row.count), row.mid);
    }
    EXPECT_EQ(text.spanIncluding(u"cba"), u"abc");
    EXPECT_EQ(text.spanExcluding("dx"), u"abc");
    EXPECT_EQ(text.spanIncluding(nullptr), u"");
    EXPECT_EQ(text.spanExcluding(nullptr), text);
    EXPECT_EQ(text.spanIncluding(text), text);
}

TEST(TStringCoreParts, TheWholeTextIsShared)
{
    TStringCore const text = u"a text that is too long to be held inline";
    for (TStringCore const &part :
         {text.left(100), text.right(-1), text.mid(-1), text.section(u",", 0), text.split(u",").at(0),
          text.splitOnAny(u",").at(0), text.trimmed(), text.leftJustified(41), text.rightJustified(3),
          text.leftJustified(41, u' ', true), text.spanExcluding(u","), TStringCore::join({text}, u","),
          text.repeated(1)})
        EXPECT_EQ(part.constData(), text.constData());
}

TEST(TStringCoreParts, Sections)
{
    auto const flags = [](int value) { return static_cast<TStringCore::SectionFlags>(value); };
    TStringCore const path = u"/usr//local/lib";
    struct Row
    {
        int first, last, flags;
        char const *expected;
    };

    for (Row const &row : {Row{1, 2, 0, "usr/"},
                           {-2, -1, 0, "local/lib"},
                           {0, 1, 1, "usr//local"},
                           {1, 1, 2, "/usr"},
                           {1, 3, 6, "/usr//local/"},
                           {0, 0, 7, "/usr/"},
                           {3, 1, 0, ""},
                           {MinInt, MaxInt, 0, ""}})
    {
        EXPECT_EQ(path.section(u'/', row.first, row.last, flags(row.flags)), row.expected)
            << row.first << " to " << row.last << ", flags " << row.flags;
    }
    EXPECT_EQ(TStringCore(u"1and2AND3").section("And", 1, 1, flags(8)), u"2");
    EXPECT_EQ(path.section(nullptr, 0), u"");
    EXPECT_EQ(TStringCore::section(NullText, 3, path.constData(), 1, 0, -1), u"");
    EXPECT_EQ(path.section(u'/', 1, 1,
                           TStringCore::SectionIncludeLeadingSep | TStringCore::SectionIncludeTrailingSep),
              u"/usr/");
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

TEST(TStringCoreParts, SplitOfEmptyAndOfRawText)
{
    TStringCore const text = u"a,b;;c";
    EXPECT_EQ(text.split(nullptr), Strings());
    EXPECT_EQ(text.splitOnAny(""), Strings());
    EXPECT_EQ(text.splitOnAny(u";,"), (Strings{u"a", u"b", u"", u"c"}));
    EXPECT_EQ(text.splitOnAny(L";,", static_cast<TStringCore::SplitBehavior>(7)),
              (Strings{u"a", u"b", u"c"}));
    EXPECT_EQ(TStringCore::split(NullText, -1, text.constData() + 1, 1), Strings());
    EXPECT_EQ(TStringCore::split(text.constData(), 0, text.constData() + 1, 1), Strings{u""});
    EXPECT_EQ(TStringCore::split(text.constData(), 4, text.constData() + 3, 1), (Strings{u"a,b", u""}));

    // Lengths of the twin are counts of its elements.
    std::vector<TWideTwin> const twin = TwinElements(U"\U0001F600,\u00E9,b");
    std::vector<TWideTwin> const comma = TwinElements(U",");
    auto const count = static_cast<int>(twin.size()) - 3; // up to and with U+00E9
    EXPECT_EQ(TStringCore::split(twin.data(), count, comma.data(), -1), (Strings{u"\U0001F600", u"\u00E9"}));
    EXPECT_EQ(TStringCore::splitOnAny(twin.data(), -1, comma.data(), 1),
              (Strings{u"\U0001F600", u"\u00E9", u"b"}));
    EXPECT_EQ(TStringCore::section(twin.data(), count, comma.data(), 1, 1, -1), u"\u00E9");
    EXPECT_EQ(TStringCore::split(static_cast<TWideTwin *>(nullptr), 4, comma.data(), 1), Strings());
}

TEST(TStringCoreParts, JoinsRepeatsAndReverses)
{
    Strings const parts{u"a", u"", u"a part on the heap", u"-"};
    EXPECT_EQ(TStringCore::join(parts, parts[3]), u"a--a part on the heap--");
    EXPECT_EQ(TStringCore::join(parts, u", "), u"a, , a part on the heap, -");
    EXPECT_EQ(TStringCore::join(parts, nullptr), u"aa part on the heap-");
    EXPECT_EQ(TStringCore::join({}, u","), u"");
    EXPECT_EQ(TStringCore(u"ab").repeated(8), u"abababababababab");
    EXPECT_EQ(TStringCore(u"ab").repeated(MinInt), u"");
    EXPECT_EQ(TStringCore().repeated(MaxInt), u"");
    EXPECT_EQ(TStringCore(u"abcde").reversed(), u"edcba");
    EXPECT_EQ(TStringCore::join({u"", u""}, u','), u",");
}

TEST(TStringCoreParts, TokenizeWalks)
{
    struct Row
    {
        TStringCore text;
        TStringCore::SplitBehavior behavior;
        Strings tokens;
    };

    for (Row const &row : {Row{u",a;;b", SkipEmpty, {u"a", u"b"}},
                           {u",a;;b", TStringCore::KeepEmptyParts, {u"", u"a", u"", u"b"}},
                           {u"a,", SkipEmpty, {u"a", u""}},
                           {u"", SkipEmpty, {u""}},
                           {u"a,;b", static_cast<TStringCore::SplitBehavior>(2), {u"a", u"", u"b"}}})
    {
        Strings tokens;
        for (int position = 0; position >= 0;)
            tokens.push_back(row.text.tokenize(u",;", position, row.behavior));
        EXPECT_EQ(tokens, row.tokens) << testing::PrintToString(row.text);
    }

    TStringCore const text = u"ab,c";
    struct Start
    {
        TStringCore::Text separators;
        int position;
        char const *token;
        int after;
    };

    for (Start const &start : {Start{nullptr, 1, "", 1},
                               {u",", -3, "", -3},
                               {u",", MaxInt, "", -1},
                               {u"", 1, "b,c", -1},
                               {L",", 1, "b", 3},
                               {u",", 4, "", -1}})
    {
        int position = start.position;
        EXPECT_EQ(text.tokenize(start.separators, position), start.token) << start.position;
        EXPECT_EQ(position, start.after);
    }
}

TEST(TStringCoreParts, Justifies)
{
    struct Row
    {
        int width;
        bool truncate;
        char const *left;
        char const *right;
    };

    for (Row const row : {Row{6, false, "abc---", "---abc"},
                          {20, true, "abc-----------------", "-----------------abc"},
                          {3, true, "abc", "abc"},
                          {2, false, "abc", "abc"},
                          {2, true, "ab", "ab"},
                          {MinInt, false, "abc", "abc"},
                          {-1, true, "", ""}})
    {
        EXPECT_EQ(TStringCore(u"abc").leftJustified(row.width, u'-', row.truncate), row.left) << row.width;
        EXPECT_EQ(TStringCore(u"abc").rightJustified(row.width, u'-', row.truncate), row.right) << row.width;
    }
    EXPECT_EQ(TStringCore(u" a ").trimmed(), u"a");
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
        EXPECT_EQ(TStringCore(u"\U0001F600a").trimLeft(L'\U0001F601'), u"\U0001F600a");
        EXPECT_EQ(TStringCore::findOneOf(L"\U0001F600a\U0001F601", -1, L"\U0001F601", -1), 2);
        EXPECT_EQ(TStringCore::findOneNotOf(L"\U0001F600a\U0001F601", -1, L"\U0001F600", -1), 1);
        EXPECT_EQ(TStringCore::splitOnAny(L"\U0001F600a\U0001F601", -1, L"\U0001F601", -1),
                  (Strings{u"\U0001F600a", u""}));
    }
    EXPECT_EQ(TStringCore(text).trim("\xED\xA0\xBD"), text) << "half of a character is none in a set either";
    EXPECT_EQ(TStringCore(u"\xD83D").append(text).trim("\xED\xA0\xBD"), text) << "but for one by itself";
    EXPECT_EQ(TStringCore(text).removeAnyOf(TStringCore(u"\U0001F601")), u"\xDE00\u0061") << "a set of units";
}
