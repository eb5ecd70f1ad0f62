#include "icu/Families.h"

#include <climits>
#include <functional>

using namespace VanICU;

VANSYS_FAMILY_TEST(ICUStringFunctions);

TEST_P(ICUStringFunctions, CompareByUnitAndAfterFolding)
{
    TStringCore const upper("STRASSE"), lower("stra\u00DFe"), beach("STRAND");
    EXPECT_LT(t_u_strcmp(upper, lower), 0);
    EXPECT_EQ(t_u_strncmp(upper, beach, 4), 0);
    EXPECT_GT(t_u_strncmp(upper, beach, 5), 0);
    EXPECT_EQ(t_u_strcasecmp(upper, lower, ICU_FOLD_CASE_DEFAULT), 0) << "one letter folds to two";
    EXPECT_EQ(t_u_strncasecmp(lower, beach, 4, ICU_FOLD_CASE_DEFAULT), 0);
    EXPECT_GT(t_u_strncasecmp(lower, beach, 5, ICU_FOLD_CASE_DEFAULT), 0);

    // A surrogate pair comes after U+FFFD by code point, and before it by code unit.
    TStringCore const pair("\U00010000"), last("\uFFFD");
    EXPECT_LT(t_u_strcasecmp(pair, last, ICU_FOLD_CASE_DEFAULT), 0);
    EXPECT_GT(t_u_strcasecmp(pair, last, ICU_COMPARE_CODE_POINT_ORDER), 0);
}

TEST_P(ICUStringFunctions, CaseMappingFollowsTheLocale)
{
    struct
    {
        char const *text, *locale, *lower, *upper, *folded;
    } const rows[] = {
        {"Stra\u00DFe", "", "stra\u00DFe", "STRASSE", "strasse"},
        {"Iil", "tr", "\u0131il", "I\u0130L", "iil"},
    };
    for (auto const &row : rows)
    {
        TStringCore const text(row.text);
        Owned<UCaseMap, &t_ucasemap_close> const mapper(t_ucasemap_open(row.locale, 0, &m_status));
        auto const inUtf8 = [&](auto *map)
        { return Mapped<char>(std::bind_front(map, mapper.get()), row.text, -1); };
        EXPECT_EQ(Mapped(t_u_strToLower, text, -1, row.locale), row.lower);
        EXPECT_EQ(Mapped(t_u_strToUpper, text, text.length(), row.locale), row.upper);
        EXPECT_EQ(Mapped(t_u_strFoldCase, text, -1, ICU_FOLD_CASE_DEFAULT), row.folded);
        EXPECT_EQ(inUtf8(t_ucasemap_utf8ToLower), row.lower);
        EXPECT_EQ(inUtf8(t_ucasemap_utf8ToUpper), row.upper);
    }
}

TEST_P(ICUStringFunctions, StatusTellsHowABufferWasFilled)
{
    TStringCore const text("Stra\u00DFe"); // 7 units in upper case
    TCodeUnit buffer[8] = {'x'};
    m_status = U_PARSE_ERROR;
    EXPECT_EQ(t_u_strToUpper(buffer, 8, text, -1, "", &m_status), 0);
    EXPECT_EQ(TakeStatus(), U_PARSE_ERROR);
    EXPECT_EQ(buffer[0], TCodeUnit('x')) << "with a failure that is there already, nothing is done";
    EXPECT_EQ(t_u_strToUpper(buffer, 7, text, -1, "", &m_status), 7);
    EXPECT_EQ(TakeStatus(), U_STRING_NOT_TERMINATED_WARNING);
    EXPECT_EQ(t_u_strToUpper(buffer, 6, text, -1, "", &m_status), 7);
    EXPECT_EQ(TakeStatus(), U_BUFFER_OVERFLOW_ERROR);
}

TEST(ICUStatus, WarningsAreSuccess)
{
    for (int const code : {-128, -1, 0, 1, INT_MAX})
    {
        EXPECT_EQ(ICU_SUCCESS(static_cast<ICUErrorCode>(code)), code <= 0) << code;
        EXPECT_EQ(ICU_FAILURE(static_cast<ICUErrorCode>(code)), code > 0) << code;
    }
    EXPECT_STREQ(t_u_errorName(U_ILLEGAL_ARGUMENT_ERROR), "U_ILLEGAL_ARGUMENT_ERROR");
}

TEST_P(ICUStringFunctions, ConvertBetweenTheUnicodeEncodings)
{
    TStringCore const text("a\u00E9\u20AC\U0001F600");
    int length = 0;
    char narrow[20] = {};
    TCodeUnit wide[20] = {};
    int codePoints[20] = {};
    EXPECT_EQ(t_u_strToUTF8(narrow, 20, &length, text, -1, &m_status), narrow);
    EXPECT_EQ(std::string(narrow, static_cast<std::size_t>(length)), text.toStdString());
    EXPECT_EQ(t_u_strFromUTF8(wide, 20, &length, narrow, -1, &m_status), wide);
    EXPECT_EQ(TStringCore(wide, length), text);
    EXPECT_EQ(t_u_strToUTF32(codePoints, 20, &length, text, -1, &m_status), codePoints);
    EXPECT_EQ(std::u32string(codePoints, codePoints + length), U"a\u00E9\u20AC\U0001F600");
    EXPECT_EQ(t_u_strFromUTF32(wide, 20, &length, codePoints, 2, &m_status), wide);
    EXPECT_EQ(TStringCore(wide, length), "a\u00E9");

    // Ill-formed text is an error, or is replaced and counted.
    TCodeUnit const lone[] = {'<', 0xD800, '>', 0xDC00, 0};
    int substitutions = 0;
    t_u_strToUTF8WithSub(narrow, 20, &length, lone, -1, '?', &substitutions, &m_status);
    EXPECT_STREQ(narrow, "<?>?");
    EXPECT_EQ(substitutions, 2);
    t_u_strFromUTF8WithSub(wide, 20, &length, "<\xFF>", -1, '!', &substitutions, &m_status);
    EXPECT_EQ(TStringCore(wide, length), "<!>");
    EXPECT_EQ(substitutions, 1);
    t_u_strFromUTF8(wide, 20, &length, "<\xFF>", -1, &m_status);
    EXPECT_EQ(TakeStatus(), U_INVALID_CHAR_FOUND);
}

TEST_P(ICUStringFunctions, NormaliseText)
{
    TStringCore const composed("\u00C5 \uFB01"), decomposed("A\u030A \uFB01");
    auto const *const nfc = t_unorm2_getInstance(nullptr, "nfc", UNORM2_COMPOSE, &m_status);
    auto const *const nfd = t_unorm2_getInstance(nullptr, "nfc", UNORM2_DECOMPOSE, &m_status);
    auto const *const nfkc = t_unorm2_getInstance(nullptr, "nfkc", UNORM2_COMPOSE, &m_status);
    EXPECT_EQ(Filled(t_unorm2_normalize, nfc, decomposed, -1), composed);
    EXPECT_EQ(Filled(t_unorm2_normalize, nfd, composed, 1), "A\u030A");
    EXPECT_EQ(Filled(t_unorm2_normalize, nfkc, composed, -1), "\u00C5 fi");
    EXPECT_EQ(t_unorm2_quickCheck(nfc, decomposed, -1, &m_status), UNORM_MAYBE);
    EXPECT_EQ(t_unorm2_quickCheck(nfd, composed, -1, &m_status), UNORM_NO);
}

TEST(ICUCodeUnits, StepForwardAndBack)
{
    using Stops = std::vector<int>;
    auto const forward = [](auto const &step, auto const *text, unsigned int length)
    {
        Stops stops;
        for (unsigned int i = 0; i < length; stops.push_back(static_cast<int>(i)))
            step(text, i, length);
        return stops;
    };
    auto const back = [](auto const &step, auto const *text, int start, int i)
    {
        Stops stops;
        for (; i > start; stops.push_back(i))
            step(text, start, i);
        return stops;
    };
    // Lone surrogates and cut-off sequences are among the characters.
    static TCodeUnit const wide[] = {'a', 0xD83D, 0xDE00, 0xDC00, 0xD800, 'b', 0xD800, 0};
    EXPECT_EQ(forward(ICU16_FWD_1, wide, 7), (Stops{1, 3, 4, 5, 6, 7}));
    EXPECT_EQ(forward(ICU16_FWD_1, wide, 2), (Stops{1, 2})) << "ends within a pair";
    EXPECT_EQ(back(ICU16_BACK_1, wide, 0, 7), (Stops{6, 5, 4, 3, 1, 0}));
    EXPECT_EQ(back(ICU16_BACK_1, wide, 2, 4), (Stops{3, 2})) << "begins within a pair";
    static char const narrow[] = "a\xC3\xA9\xF0\x9F\x98\x80\x80\xE2\x82z\xE2\x82\xAC";
    auto const *const bytes = reinterpret_cast<unsigned char const *>(narrow);
    EXPECT_EQ(forward(ICU8_FWD_1, narrow, 14), (Stops{1, 3, 7, 8, 10, 11, 14}));
    EXPECT_EQ(forward(ICU8_FWD_1, narrow, 6), (Stops{1, 3, 6})) << "ends within a sequence";
    EXPECT_EQ(back(ICU8_BACK_1, bytes, 0, 14), (Stops{11, 10, 8, 7, 3, 1, 0}));
    EXPECT_EQ(back(ICU8_BACK_1, bytes, 5, 7), (Stops{6, 5})) << "begins within a sequence";
}
