#include "icu/Families.h"

#include <algorithm>
#include <set>
#include <vector>

using namespace VanICU;

using ICUCollationFunctions = ICUFamilyTest;
VANSYS_WITH_BOTH_FAMILIES(ICUCollationFunctions);

using Collator = Owned<ICU_Collator, &t_ucol_close>;

TEST_P(ICUCollationFunctions, SortsAsTheLanguageDoes)
{
    struct
    {
        char const *locale;
        std::vector<TStringCore> sorted;
    } const rows[] = {
        {"sv", {"a", "z", "\u00E5", "\u00E4", "\u00F6"}},
        {"de", {"a", "\u00E5", "\u00E4", "\u00F6", "z"}},
    };
    for (auto const &row : rows)
    {
        SCOPED_TRACE(row.locale);
        Collator const collator(t_ucol_open(row.locale, &m_status));
        ASSERT_TRUE(ICU_SUCCESS(m_status));
        std::vector<TStringCore> const letters = {"z", "\u00F6", "\u00E4", "\u00E5", "a"};

        auto byComparison = letters;
        std::sort(byComparison.begin(), byComparison.end(),
                  [&](TStringCore const &left, TStringCore const &right)
                  { return t_ucol_strcoll(collator.get(), left, -1, right, right.length()) == UCOL_LESS; });
        EXPECT_EQ(byComparison, row.sorted);

        auto byKey = letters;
        auto const key = [&](TStringCore const &text)
        {
            std::vector<unsigned char> bytes(20);
            int const length = t_ucol_getSortKey(collator.get(), text, -1, bytes.data(), 20);
            EXPECT_TRUE(0 < length && length <= 20) << length;
            bytes.resize(static_cast<std::size_t>(length));
            return bytes;
        };
        std::sort(byKey.begin(), byKey.end(),
                  [&](auto const &left, auto const &right) { return key(left) < key(right); });
        EXPECT_EQ(byKey, row.sorted);
    }
}

TEST_P(ICUCollationFunctions, AttributesDecideWhatCounts)
{
    Collator const collator(t_ucol_open("", &m_status));
    EXPECT_EQ(t_ucol_getAttribute(collator.get(), UCOL_STRENGTH, &m_status), UCOL_TERTIARY);
    auto const compare = [&](char const *left, char const *right)
    { return t_ucol_strcoll(collator.get(), TStringCore(left), -1, TStringCore(right), -1); };

    EXPECT_EQ(compare("a", "A"), UCOL_LESS);
    EXPECT_EQ(compare("B", "a"), UCOL_GREATER);
    t_ucol_setStrength(collator.get(), UCOL_SECONDARY);
    EXPECT_EQ(compare("a", "A"), UCOL_EQUAL);
    EXPECT_EQ(compare("a", "\u00E1"), UCOL_LESS);
    t_ucol_setAttribute(collator.get(), UCOL_STRENGTH, UCOL_PRIMARY, &m_status);
    EXPECT_EQ(compare("a", "\u00E1"), UCOL_EQUAL);

    EXPECT_EQ(compare("file10", "file9"), UCOL_LESS);
    t_ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &m_status);
    EXPECT_EQ(compare("file10", "file9"), UCOL_GREATER);
    EXPECT_EQ(m_status, U_ZERO_ERROR);
    t_ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, UCOL_PRIMARY, &m_status);
    EXPECT_EQ(m_status, U_ILLEGAL_ARGUMENT_ERROR);
}

TEST_P(ICUCollationFunctions, RulesTailorACollator)
{
    TStringCore const rules("&z<a");
    ICUParseError error = {};
    Collator const collator(t_ucol_openRules(rules, -1, UCOL_OFF, UCOL_PRIMARY, &error, &m_status));
    ASSERT_EQ(m_status, U_ZERO_ERROR);
    EXPECT_EQ(t_ucol_strcoll(collator.get(), TStringCore("a"), -1, TStringCore("Z"), -1), UCOL_GREATER);
    int length = 0;
    TCodeUnit const *const stored = t_ucol_getRules(collator.get(), &length);
    EXPECT_EQ(TStringCore(stored, length), rules);

    EXPECT_EQ(t_ucol_openRules(TStringCore("&z<a &"), -1, UCOL_OFF, UCOL_PRIMARY, &error, &m_status),
              nullptr);
    EXPECT_EQ(m_status, U_INVALID_FORMAT_ERROR);
    EXPECT_EQ(error.offset, 5) << "the structure is ICU's";
    EXPECT_EQ(TStringCore(error.preContext), "&z<a ");
    EXPECT_EQ(TStringCore(error.postContext), "&");
}

TEST_P(ICUCollationFunctions, TheRuleThatIgnoresDigitsIsRefusedByThisIcu)
{
    TStringCore const &rule = t_getIgnoreDigitsRule();
    EXPECT_EQ(rule, "&'0'='1'='2'='3'='4'='5'='6'='7'='8'='9'<[variable top]");
    EXPECT_EQ(&rule, &t_getIgnoreDigitsRule());
    ICUParseError error = {};
    EXPECT_EQ(t_ucol_openRules(rule, -1, UCOL_DEFAULT, UCOL_DEFAULT_STRENGTH, &error, &m_status), nullptr);
    EXPECT_EQ(m_status, U_INVALID_FORMAT_ERROR);
    EXPECT_EQ(error.offset, 40) << "behind the digits";
}

TEST_P(ICUCollationFunctions, KnowsItsLocales)
{
    Collator const collator(t_ucol_open("zh_Hant_TW", &m_status));
    EXPECT_STREQ(t_ucol_getLocaleByType(collator.get(), ULOC_ACTUAL_LOCALE, &m_status),
                 "zh@collation=stroke");
    EXPECT_STREQ(t_ucol_getLocaleByType(collator.get(), ULOC_VALID_LOCALE, &m_status), "zh_Hant_TW");
    EXPECT_TRUE(ICU_SUCCESS(m_status));

    Owned<ICUEnumeration, &t_uenum_close> const names(t_ucol_openAvailableLocales(&m_status));
    std::set<std::string> found;
    int length = 0;
    while (char const *const name = t_uenum_next(names.get(), &length, &m_status))
    {
        EXPECT_EQ(static_cast<int>(std::string(name).size()), length);
        found.insert(name);
    }
    EXPECT_TRUE(found.count("sv") && found.count("de")) << found.size();

    m_status = U_ZERO_ERROR;
    Collator const unknown(t_ucol_open("xx_YY", &m_status));
    EXPECT_EQ(m_status, U_USING_DEFAULT_WARNING);
    EXPECT_TRUE(unknown);
}

TEST_P(ICUCollationFunctions, ComparesUtf8WithoutConvertingIt)
{
    Collator const collator(t_ucol_open("sv", &m_status));
    auto const compare = [&](char const *left, char const *right)
    {
        UCharIterator first;
        UCharIterator second;
        t_uiter_setUTF8(&first, left, -1);
        t_uiter_setUTF8(&second, right, -1);
        return t_ucol_strcollIter(collator.get(), &first, &second, &m_status);
    };
    EXPECT_EQ(compare("z\u00E5", "z\u00F6"), UCOL_LESS);
    EXPECT_EQ(compare("\u00E4", "z"), UCOL_GREATER);
    EXPECT_EQ(compare("\U0001F600\u00E4", "\U0001F600a\u0308"), UCOL_EQUAL);
    EXPECT_TRUE(ICU_SUCCESS(m_status));
}

TEST_P(ICUCollationFunctions, SearchWalksMatchesBothWays)
{
    // "resume" with and without accents, at 0, 7 and 14; the last one at 21 is part of a longer word.
    TStringCore const text("r\u00E9sum\u00E9 Resume RE\u0301SUME\u0301 presumed");
    TStringCore const pattern("resume");
    Collator const collator(t_ucol_open("en", &m_status));
    t_ucol_setStrength(collator.get(), UCOL_PRIMARY);
    Owned<ICUStringSearch, &t_usearch_close> const search(
        t_usearch_openFromCollator(pattern, -1, text, -1, collator.get(), nullptr, &m_status));
    ASSERT_TRUE(ICU_SUCCESS(m_status));

    std::vector<int> forward;
    for (int at = t_usearch_first(search.get(), &m_status); at != -1;
         at = t_usearch_next(search.get(), &m_status))
        forward.push_back(at);
    EXPECT_EQ(forward, (std::vector<int>{0, 7, 14, 24}));
    EXPECT_EQ(t_usearch_getMatchedLength(search.get()), 0);

    std::vector<int> backward;
    for (int at = t_usearch_last(search.get(), &m_status); at != -1;
         at = t_usearch_previous(search.get(), &m_status))
        backward.push_back(at);
    EXPECT_EQ(backward, (std::vector<int>{24, 14, 7, 0}));

    EXPECT_EQ(t_usearch_following(search.get(), 8, &m_status), 14);
    EXPECT_EQ(t_usearch_getMatchedLength(search.get()), 8) << "accents of their own are part of the match";
    EXPECT_EQ(t_usearch_preceding(search.get(), 20, &m_status), 7) << "matches end there at the latest";

    TStringCore const other("no such word here");
    t_usearch_setText(search.get(), other, -1, &m_status);
    EXPECT_EQ(t_usearch_next(search.get(), &m_status), -1);
    EXPECT_TRUE(ICU_SUCCESS(m_status));

    Owned<ICUBreakIterator, &t_ubrk_close> const words(t_ubrk_open(UBRK_WORD, "en", text, -1, &m_status));
    Owned<ICUStringSearch, &t_usearch_close> const wholeWords(
        t_usearch_openFromCollator(pattern, -1, text, -1, collator.get(), words.get(), &m_status));
    EXPECT_EQ(t_usearch_last(wholeWords.get(), &m_status), 14);
    EXPECT_TRUE(ICU_SUCCESS(m_status));
}
