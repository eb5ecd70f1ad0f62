#include "icu/Families.h"

#include <cstring>
#include <set>

using namespace VanICU;

VANSYS_FAMILY_TEST(ICUCollationFunctions);

using Collator = Owned<ICU_Collator, &t_ucol_close>;

namespace
{

ICUCollationResult compare(Collator const &collator, TStringCore const &left, TStringCore const &right)
{
    return t_ucol_strcoll(collator.get(), left, -1, TStringCore(right).append("_"), right.length());
}

} // namespace

TEST_P(ICUCollationFunctions, SortAsTheLanguageDoes)
{
    TStringCore const umlaut("\u00E4"); // behind z in Swedish
    for (auto const &[language, expected] : {std::pair("sv", UCOL_GREATER), std::pair("de", UCOL_LESS)})
    {
        Collator const collator(t_ucol_open(language, &m_status));
        EXPECT_EQ(compare(collator, umlaut, "z"), expected) << language;
        UCharIterator texts[2];
        t_uiter_setUTF8(&texts[0], "\u00E4", -1);
        t_uiter_setUTF8(&texts[1], "z_", 1);
        EXPECT_EQ(t_ucol_strcollIter(collator.get(), &texts[0], &texts[1], &m_status), expected);
        unsigned char keys[2][20] = {};
        t_ucol_getSortKey(collator.get(), umlaut, -1, keys[0], 20);
        t_ucol_getSortKey(collator.get(), TStringCore("z_"), 1, keys[1], 20);
        EXPECT_EQ(std::memcmp(keys[0], keys[1], 20) > 0, expected == UCOL_GREATER);
    }
}

TEST_P(ICUCollationFunctions, AttributesDecideWhatCounts)
{
    Collator const collator(t_ucol_open("", &m_status));
    EXPECT_EQ(t_ucol_getAttribute(collator.get(), UCOL_STRENGTH, &m_status), UCOL_TERTIARY);
    EXPECT_EQ(compare(collator, "a", "A"), UCOL_LESS);
    t_ucol_setStrength(collator.get(), UCOL_SECONDARY);
    EXPECT_EQ(compare(collator, "a", "A"), UCOL_EQUAL);
    t_ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &m_status);
    EXPECT_EQ(compare(collator, "file10", "file9"), UCOL_GREATER);
    EXPECT_EQ(TakeStatus(), U_ZERO_ERROR);
    t_ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, UCOL_PRIMARY, &m_status);
    EXPECT_EQ(TakeStatus(), U_ILLEGAL_ARGUMENT_ERROR);
}

TEST_P(ICUCollationFunctions, RulesTailorACollator)
{
    TStringCore const rules("&z<a");
    ICUParseError error = {};
    Collator const collator(t_ucol_openRules(rules, -1, UCOL_OFF, UCOL_PRIMARY, &error, &m_status));
    ASSERT_EQ(m_status, U_ZERO_ERROR);
    EXPECT_EQ(compare(collator, "a", "Z"), UCOL_GREATER);
    int length = 0;
    TCodeUnit const *const stored = t_ucol_getRules(collator.get(), &length);
    EXPECT_EQ(TStringCore(stored, length), rules);

    TStringCore const &ignoreDigits = t_getIgnoreDigitsRule();
    EXPECT_EQ(ignoreDigits, "&'0'='1'='2'='3'='4'='5'='6'='7'='8'='9'<[variable top]");
    t_ucol_openRules(ignoreDigits, -1, UCOL_OFF, UCOL_DEFAULT_STRENGTH, &error, &m_status);
    EXPECT_EQ(TakeStatus(), U_INVALID_FORMAT_ERROR) << "this ICU refuses what stands behind the digits";
    EXPECT_EQ(TStringCore(error.postContext), "<[variable top]");
}

TEST_P(ICUCollationFunctions, KnowTheirLocales)
{
    Collator const collator(t_ucol_open("zh_Hant_TW", &m_status));
    EXPECT_STREQ(t_ucol_getLocaleByType(collator.get(), ULOC_ACTUAL_LOCALE, &m_status),
                 "zh@collation=stroke");
    EXPECT_STREQ(t_ucol_getLocaleByType(collator.get(), ULOC_VALID_LOCALE, &m_status), "zh_Hant_TW");

    Owned<ICUEnumeration, &t_uenum_close> const names(t_ucol_openAvailableLocales(&m_status));
    std::set<std::string> found;
    int length = 0;
    while (char const *const name = t_uenum_next(names.get(), &length, &m_status))
        found.emplace(name, static_cast<std::size_t>(length));
    EXPECT_TRUE(found.count("sv") && found.count("de")) << found.size();
}

TEST_P(ICUCollationFunctions, SearchWalksMatchesBothWays)
{
    // "resume" with and without accents, at 0, 7 and 14; the last one at 24 is part of a longer word.
    TStringCore const text("r\u00E9sum\u00E9 Resume RE\u0301SUME\u0301 presumed");
    TStringCore const pattern("resume");
    Collator const collator(t_ucol_open("en", &m_status));
    t_ucol_setStrength(collator.get(), UCOL_PRIMARY);
    Owned<ICUStringSearch, &t_usearch_close> const search(
        t_usearch_openFromCollator(pattern, -1, text, -1, collator.get(), nullptr, &m_status));
    auto const walk = [&](auto const &first, auto const &next)
    {
        std::vector<int> stops;
        for (int at = first(search.get(), &m_status); at != -1; at = next(search.get(), &m_status))
            stops.push_back(at);
        return stops;
    };
    EXPECT_EQ(walk(t_usearch_first, t_usearch_next), (std::vector<int>{0, 7, 14, 24}));
    EXPECT_EQ(walk(t_usearch_last, t_usearch_previous), (std::vector<int>{24, 14, 7, 0}));
    EXPECT_EQ(t_usearch_following(search.get(), 8, &m_status), 14);
    EXPECT_EQ(t_usearch_getMatchedLength(search.get()), 8) << "accents of their own are part of the match";
    EXPECT_EQ(t_usearch_preceding(search.get(), 20, &m_status), 7) << "matches end there at the latest";
    TStringCore const other("no such word here");
    t_usearch_setText(search.get(), other, -1, &m_status);
    EXPECT_EQ(t_usearch_next(search.get(), &m_status), -1);
}
