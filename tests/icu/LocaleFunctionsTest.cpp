#include "icu/Families.h"

using namespace VanICU;

VANSYS_FAMILY_TEST(ICULocaleFunctions);

TEST_P(ICULocaleFunctions, TakeALocaleNameApart)
{
    struct
    {
        char const *locale, *language, *script, *country, *displayLanguage, *displayCountry, *currency;
    } const rows[] = {
        {"zh_Hant_TW", "zh", "Hant", "TW", "Chinesisch", "Taiwan", "TWD"},
        {"de_CH@currency=EUR", "de", "", "CH", "Deutsch", "Schweiz", "EUR"},
    };
    for (auto const &row : rows)
    {
        EXPECT_EQ(Filled<char>(t_uloc_getLanguage, row.locale), row.language);
        EXPECT_EQ(Filled<char>(t_uloc_getScript, row.locale), row.script);
        EXPECT_EQ(Filled<char>(t_uloc_getCountry, row.locale), row.country);
        EXPECT_EQ(Filled(t_uloc_getDisplayLanguage, row.locale, "de"), row.displayLanguage);
        EXPECT_EQ(Filled(t_uloc_getDisplayCountry, row.locale, "de"), row.displayCountry);
        EXPECT_EQ(Filled(t_ucurr_forLocale, row.locale), row.currency);
    }
}

TEST_P(ICULocaleFunctions, MapWindowsIdentifiersBothWays)
{
    EXPECT_EQ(t_uloc_getLCID("de_AT"), 0x0C07u);
    EXPECT_EQ(t_uloc_getLCID("xx_YY"), 0u);
    for (ICUErrorCode const before : {U_ZERO_ERROR, U_PARSE_ERROR}) // done in spite of a failure
    {
        m_status = before;
        EXPECT_EQ(Filled<char>(t_uloc_getLocaleForLCID, 0x0C07u), "de_AT");
        EXPECT_EQ(TakeStatus(), before);
    }
    t_uloc_getLocaleForLCID(0xFFFFFFFF, nullptr, 0, &m_status);
    EXPECT_EQ(TakeStatus(), U_ILLEGAL_ARGUMENT_ERROR);
}

TEST_P(ICULocaleFunctions, NumberFormatsHaveSymbolsAndTexts)
{
    using Format = Owned<ICUNumberFormat, &t_unum_close>;
    Format const german(t_unum_open(UNUM_DECIMAL, nullptr, 0, "de_DE", nullptr, &m_status));
    EXPECT_EQ(Filled(t_unum_getSymbol, german.get(), UNUM_DECIMAL_SEPARATOR_SYMBOL), ",");
    EXPECT_EQ(Filled(t_unum_getSymbol, german.get(), UNUM_GROUPING_SEPARATOR_SYMBOL), ".");

    TStringCore const pattern("'<'0.0'>';(0.0)");
    Format const custom(t_unum_open(UNUM_PATTERN_DECIMAL, pattern, -1, "en", nullptr, &m_status));
    EXPECT_EQ(Filled(t_unum_getTextAttribute, custom.get(), UNUM_POSITIVE_SUFFIX), ">");
    EXPECT_EQ(Filled(t_unum_getTextAttribute, custom.get(), UNUM_NEGATIVE_PREFIX), "(");
}
