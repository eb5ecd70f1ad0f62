#include "icu/Families.h"

using namespace VanICU;

using ICULocaleFunctions = ICUFamilyTest;
VANSYS_WITH_BOTH_FAMILIES(ICULocaleFunctions);

TEST_P(ICULocaleFunctions, TakeALocaleNameApart)
{
    struct
    {
        char const *locale, *language, *script, *country, *displayLanguage, *displayCountry, *currency;
    } const rows[] = {
        {"sv_SE", "sv", "", "SE", "Schwedisch", "Schweden", "SEK"},
        {"zh_Hant_TW", "zh", "Hant", "TW", "Chinesisch", "Taiwan", "TWD"},
        {"de_CH@currency=EUR", "de", "", "CH", "Deutsch", "Schweiz", "EUR"},
    };
    for (auto const &row : rows)
    {
        SCOPED_TRACE(row.locale);
        EXPECT_EQ(Filled<char>(t_uloc_getLanguage, row.locale), row.language);
        EXPECT_EQ(Filled<char>(t_uloc_getScript, row.locale), row.script);
        EXPECT_EQ(Filled<char>(t_uloc_getCountry, row.locale), row.country);
        EXPECT_EQ(Filled(t_uloc_getDisplayLanguage, row.locale, "de"), row.displayLanguage);
        EXPECT_EQ(Filled(t_uloc_getDisplayCountry, row.locale, "de"), row.displayCountry);
        EXPECT_EQ(Filled(t_ucurr_forLocale, row.locale), row.currency);
        EXPECT_TRUE(ICU_SUCCESS(m_status)) << t_u_errorName(m_status);
    }
}

TEST_P(ICULocaleFunctions, MapWindowsIdentifiersBothWays)
{
    EXPECT_EQ(t_uloc_getLCID("de_AT"), 0x0C07u);
    EXPECT_EQ(t_uloc_getLCID("xx_YY"), 0u);
    EXPECT_EQ(Filled<char>(t_uloc_getLocaleForLCID, 0x041Du), "sv_SE");
    EXPECT_EQ(m_status, U_ZERO_ERROR);
    m_status = U_PARSE_ERROR;
    EXPECT_EQ(Filled<char>(t_uloc_getLocaleForLCID, 0x0C07u), "de_AT") << "in spite of the failure";
    EXPECT_EQ(m_status, U_PARSE_ERROR);
    char name[20] = {};
    t_uloc_getLocaleForLCID(0xFFFFFFFF, name, 20, &m_status);
    EXPECT_EQ(m_status, U_ILLEGAL_ARGUMENT_ERROR);
}

TEST_P(ICULocaleFunctions, NumberFormatsHaveSymbolsAndTexts)
{
    using Format = Owned<ICUNumberFormat, &t_unum_close>;
    Format const german(t_unum_open(UNUM_DECIMAL, nullptr, 0, "de_DE", nullptr, &m_status));
    EXPECT_EQ(Filled(t_unum_getSymbol, german.get(), UNUM_DECIMAL_SEPARATOR_SYMBOL), ",");
    EXPECT_EQ(Filled(t_unum_getSymbol, german.get(), UNUM_GROUPING_SEPARATOR_SYMBOL), ".");
    EXPECT_TRUE(ICU_SUCCESS(m_status)) << t_u_errorName(m_status);

    m_status = U_ZERO_ERROR;
    TStringCore const pattern("'<'0.0'>';(0.0)");
    Format const custom(t_unum_open(UNUM_PATTERN_DECIMAL, pattern, -1, "en", nullptr, &m_status));
    EXPECT_EQ(Filled(t_unum_getTextAttribute, custom.get(), UNUM_POSITIVE_PREFIX), "<");
    EXPECT_EQ(Filled(t_unum_getTextAttribute, custom.get(), UNUM_POSITIVE_SUFFIX), ">");
    EXPECT_EQ(Filled(t_unum_getTextAttribute, custom.get(), UNUM_NEGATIVE_PREFIX), "(");
    EXPECT_TRUE(ICU_SUCCESS(m_status)) << t_u_errorName(m_status);
}
