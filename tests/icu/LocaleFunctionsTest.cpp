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
        EXPECT_EQ(Filled<char>([&](auto *out, int room)
                               { return t_uloc_getLanguage(row.locale, out, room, &m_status); }),
                  row.language);
        EXPECT_EQ(Filled<char>([&](auto *out, int room)
                               { return t_uloc_getScript(row.locale, out, room, &m_status); }),
                  row.script);
        EXPECT_EQ(Filled<char>([&](auto *out, int room)
                               { return t_uloc_getCountry(row.locale, out, room, &m_status); }),
                  row.country);
        EXPECT_EQ(FilledText([&](auto *out, int room)
                             { return t_uloc_getDisplayLanguage(row.locale, "de", out, room, &m_status); }),
                  row.displayLanguage);
        EXPECT_EQ(FilledText([&](auto *out, int room)
                             { return t_uloc_getDisplayCountry(row.locale, "de", out, room, &m_status); }),
                  row.displayCountry);
        EXPECT_EQ(FilledText([&](auto *out, int room)
                             { return t_ucurr_forLocale(row.locale, out, room, &m_status); }),
                  row.currency);
        EXPECT_TRUE(ICU_SUCCESS(m_status)) << t_u_errorName(m_status);
    }
}

TEST_P(ICULocaleFunctions, MapWindowsIdentifiersBothWays)
{
    struct
    {
        char const *locale;
        unsigned int lcid;
    } const rows[] = {{"sv_SE", 0x041D}, {"en_US", 0x0409}, {"de_AT", 0x0C07}};
    for (auto const &row : rows)
    {
        EXPECT_EQ(t_uloc_getLCID(row.locale), row.lcid);
        EXPECT_EQ(Filled<char>([&](auto *out, int room)
                               { return t_uloc_getLocaleForLCID(row.lcid, out, room, &m_status); }),
                  row.locale);
    }
    EXPECT_EQ(m_status, U_ZERO_ERROR);
    EXPECT_EQ(t_uloc_getLCID("xx_YY"), 0u);
    char name[20] = {};
    t_uloc_getLocaleForLCID(0xFFFFFFFF, name, 20, &m_status);
    EXPECT_EQ(m_status, U_ILLEGAL_ARGUMENT_ERROR);
}

TEST_P(ICULocaleFunctions, NumberFormatsHaveSymbolsAndTexts)
{
    using Format = Owned<ICUNumberFormat, &t_unum_close>;
    auto const symbol = [&](Format const &format, ICUNumberFormatSymbol which)
    {
        return FilledText([&](auto *out, int room)
                          { return t_unum_getSymbol(format.get(), which, out, room, &m_status); });
    };
    auto const text = [&](Format const &format, ICUNumberFormatTextAttribute which)
    {
        return FilledText([&](auto *out, int room)
                          { return t_unum_getTextAttribute(format.get(), which, out, room, &m_status); });
    };

    Format const german(t_unum_open(UNUM_DECIMAL, nullptr, 0, "de_DE", nullptr, &m_status));
    EXPECT_EQ(symbol(german, UNUM_DECIMAL_SEPARATOR_SYMBOL), ",");
    EXPECT_EQ(symbol(german, UNUM_GROUPING_SEPARATOR_SYMBOL), ".");
    EXPECT_EQ(text(german, UNUM_NEGATIVE_PREFIX), "-");
    EXPECT_TRUE(ICU_SUCCESS(m_status)) << t_u_errorName(m_status);

    m_status = U_ZERO_ERROR;
    TStringCore const pattern("'<'0.0'>';(0.0)");
    Format const custom(t_unum_open(UNUM_PATTERN_DECIMAL, pattern, -1, "en", nullptr, &m_status));
    EXPECT_EQ(text(custom, UNUM_POSITIVE_PREFIX), "<");
    EXPECT_EQ(text(custom, UNUM_POSITIVE_SUFFIX), ">");
    EXPECT_EQ(text(custom, UNUM_NEGATIVE_PREFIX), "(");
    EXPECT_TRUE(ICU_SUCCESS(m_status)) << t_u_errorName(m_status);

    Format const yen(t_unum_open(UNUM_CURRENCY, nullptr, 0, "ja_JP", nullptr, &m_status));
    EXPECT_EQ(symbol(yen, UNUM_INTL_CURRENCY_SYMBOL), "JPY");
    EXPECT_EQ(text(yen, UNUM_CURRENCY_CODE), "JPY");
}
