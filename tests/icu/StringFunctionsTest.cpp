#include "icu/Families.h"

#include <vector>

using namespace VanICU;

using ICUStringFunctions = ICUFamilyTest;
VANSYS_WITH_BOTH_FAMILIES(ICUStringFunctions);

namespace
{

int sign(int value)
{
    return (value > 0) - (value < 0);
}

} // namespace

TEST_P(ICUStringFunctions, CompareByUnitAndAfterFolding)
{
    TStringCore const upper("STRASSE \U0001F600");
    TStringCore const lower("stra\u00DFe \U0001F600");
    EXPECT_EQ(sign(t_u_strcmp(upper, lower)), -1);
    EXPECT_EQ(sign(t_u_strcmp(lower, upper)), 1);
    EXPECT_EQ(t_u_strncmp(upper, TStringCore("STRAND"), 4), 0);
    EXPECT_EQ(sign(t_u_strncmp(upper, TStringCore("STRAND"), 5)), 1);
    EXPECT_EQ(t_u_strcasecmp(upper, lower, ICU_FOLD_CASE_DEFAULT), 0) << "one letter folds to two";
    EXPECT_EQ(t_u_strncasecmp(upper, TStringCore("strand"), 4, ICU_FOLD_CASE_DEFAULT), 0);
    EXPECT_EQ(sign(t_u_strncasecmp(upper, TStringCore("strand"), 5, ICU_FOLD_CASE_DEFAULT)), 1);
    EXPECT_NE(t_u_strcasecmp(TStringCore("I"), TStringCore("i"), ICU_FOLD_CASE_EXCLUDE_SPECIAL_I), 0);

    // A surrogate pair comes after U+FFFD by code point, and before it by code unit.
    TStringCore const pair("\U00010000");
    TStringCore const last("\uFFFD");
    EXPECT_EQ(sign(t_u_strcasecmp(pair, last, ICU_FOLD_CASE_DEFAULT)), -1);
    EXPECT_EQ(sign(t_u_strcasecmp(pair, last, ICU_COMPARE_CODE_POINT_ORDER)), 1);
}

TEST_P(ICUStringFunctions, CaseMappingFollowsTheLocale)
{
    struct
    {
        char const *text, *locale, *lower, *upper;
    } const rows[] = {
        {"Stra\u00DFe", "", "stra\u00DFe", "STRASSE"},
        {"Iil", "", "iil", "IIL"},
        {"Iil", "tr", "\u0131il", "I\u0130L"},
        {"\u039F\u03A3", "", "\u03BF\u03C2", "\u039F\u03A3"}, // a sigma at the end of a word has its own form
        {"ijs IJS", "nl", "ijs ijs", "IJS IJS"},
    };
    for (auto const &row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.text << " in " << row.locale);
        TStringCore const text(row.text);
        EXPECT_EQ(FilledText([&](auto *out, int room)
                             { return t_u_strToLower(out, room, text, -1, row.locale, &m_status); }),
                  row.lower);
        EXPECT_EQ(
            FilledText([&](auto *out, int room)
                       { return t_u_strToUpper(out, room, text, text.length(), row.locale, &m_status); }),
            row.upper);

        Owned<UCaseMap, &t_ucasemap_close> const mapper(t_ucasemap_open(row.locale, 0, &m_status));
        EXPECT_EQ(Filled<char>(
                      [&](auto *out, int room)
                      { return t_ucasemap_utf8ToLower(mapper.get(), out, room, row.text, -1, &m_status); }),
                  row.lower);
        EXPECT_EQ(Filled<char>(
                      [&](auto *out, int room)
                      { return t_ucasemap_utf8ToUpper(mapper.get(), out, room, row.text, -1, &m_status); }),
                  row.upper);
        EXPECT_EQ(m_status, U_ZERO_ERROR);
    }
    EXPECT_EQ(FilledText(
                  [&](auto *out, int room) {
                      return t_u_strFoldCase(out, room, TStringCore("Stra\u00DFe I"), -1,
                                             ICU_FOLD_CASE_DEFAULT, &m_status);
                  }),
              "strasse i");
    EXPECT_EQ(m_status, U_ZERO_ERROR);
}

TEST_P(ICUStringFunctions, StatusTellsHowABufferWasFilled)
{
    TStringCore const text("Stra\u00DFe"); // 7 units in upper case
    TCodeUnit buffer[8] = {};
    struct
    {
        int capacity;
        ICUErrorCode expected;
    } const rows[] = {{8, U_ZERO_ERROR}, {7, U_STRING_NOT_TERMINATED_WARNING}, {6, U_BUFFER_OVERFLOW_ERROR}};
    for (auto const &row : rows)
    {
        ICUErrorCode status = U_ZERO_ERROR;
        EXPECT_EQ(t_u_strToUpper(buffer, row.capacity, text, -1, "", &status), 7);
        EXPECT_EQ(status, row.expected) << row.capacity;
    }
    EXPECT_EQ(TStringCore(buffer, 7), "STRASSE");

    // A failure that is there already stays, and nothing is done.
    m_status = U_PARSE_ERROR;
    buffer[0] = 'x';
    EXPECT_EQ(t_u_strToUpper(buffer, 8, text, -1, "", &m_status), 0);
    EXPECT_EQ(m_status, U_PARSE_ERROR);
    EXPECT_EQ(buffer[0], TCodeUnit('x'));
}

TEST_P(ICUStringFunctions, ConvertsBetweenTheUnicodeEncodings)
{
    TStringCore const text("a\u00E9\u20AC\U0001F600");
    std::string const utf8 = text.toStdString();
    int length = 0;
    char narrow[20] = {};
    TCodeUnit wide[20] = {};
    int codePoints[20] = {};

    EXPECT_EQ(t_u_strToUTF8(narrow, 20, &length, text, -1, &m_status), narrow);
    EXPECT_EQ(std::string(narrow, static_cast<std::size_t>(length)), utf8);
    EXPECT_EQ(t_u_strFromUTF8(wide, 20, &length, utf8.c_str(), -1, &m_status), wide);
    EXPECT_EQ(TStringCore(wide, length), text);
    EXPECT_EQ(t_u_strToUTF32(codePoints, 20, &length, text, -1, &m_status), codePoints);
    EXPECT_EQ(std::vector<int>(codePoints, codePoints + length),
              (std::vector<int>{'a', 0xE9, 0x20AC, 0x1F600}));
    EXPECT_EQ(t_u_strFromUTF32(wide, 20, &length, codePoints, length, &m_status), wide);
    EXPECT_EQ(TStringCore(wide, length), text);
    EXPECT_EQ(m_status, U_ZERO_ERROR);

    // Ill-formed text is an error, or is replaced and counted.
    TCodeUnit const lone[] = {'<', 0xD800, '>', 0xDC00, 0};
    t_u_strToUTF8(narrow, 20, &length, lone, -1, &m_status);
    EXPECT_EQ(m_status, U_INVALID_CHAR_FOUND);
    m_status = U_ZERO_ERROR;
    int substitutions = 0;
    t_u_strToUTF8WithSub(narrow, 20, &length, lone, -1, '?', &substitutions, &m_status);
    EXPECT_STREQ(narrow, "<?>?");
    EXPECT_EQ(substitutions, 2);

    t_u_strFromUTF8(wide, 20, &length, "<\xFF>", -1, &m_status);
    EXPECT_EQ(m_status, U_INVALID_CHAR_FOUND);
    m_status = U_ZERO_ERROR;
    t_u_strFromUTF8WithSub(wide, 20, &length, "<\xFF>", -1, 0xFFFD, &substitutions, &m_status);
    EXPECT_EQ(TStringCore(wide, length), "<\uFFFD>");
    EXPECT_EQ(substitutions, 1);
    EXPECT_EQ(m_status, U_ZERO_ERROR);
}

TEST_P(ICUStringFunctions, NormalisesText)
{
    TStringCore const composed("\u00C5ngstr\u00F6m \uFB01");
    TStringCore const decomposed("A\u030Angstro\u0308m \uFB01");
    ICUNormalizer2 const *const nfc = t_unorm2_getInstance(nullptr, "nfc", UNORM2_COMPOSE, &m_status);
    ICUNormalizer2 const *const nfd = t_unorm2_getInstance(nullptr, "nfc", UNORM2_DECOMPOSE, &m_status);
    ICUNormalizer2 const *const nfkc = t_unorm2_getInstance(nullptr, "nfkc", UNORM2_COMPOSE, &m_status);
    ASSERT_EQ(m_status, U_ZERO_ERROR);

    auto const normalized = [&](ICUNormalizer2 const *normalizer, TStringCore const &text)
    {
        return FilledText([&](auto *out, int room)
                          { return t_unorm2_normalize(normalizer, text, -1, out, room, &m_status); });
    };
    EXPECT_EQ(normalized(nfc, decomposed), composed);
    EXPECT_EQ(normalized(nfd, composed), decomposed);
    EXPECT_EQ(normalized(nfkc, decomposed), "\u00C5ngstr\u00F6m fi");
    EXPECT_EQ(t_unorm2_quickCheck(nfc, composed, -1, &m_status), UNORM_YES);
    EXPECT_EQ(t_unorm2_quickCheck(nfc, decomposed, -1, &m_status), UNORM_MAYBE);
    EXPECT_EQ(t_unorm2_quickCheck(nfd, composed, -1, &m_status), UNORM_NO);
    EXPECT_EQ(m_status, U_ZERO_ERROR);
}

TEST(ICUCodeUnits, StepForwardAndBack)
{
    // Positions where a step may stand, with lone surrogates and cut-off sequences among the characters.
    TCodeUnit const wide[] = {'a', 0xD83D, 0xDE00, 0xDC00, 0xD800, 'b', 0xD800, 0};
    std::vector<int> const wideStops = {0, 1, 3, 4, 5, 6, 7};
    char const narrow[] = "a\xC3\xA9\xF0\x9F\x98\x80\x80\xE2\x82z\xE2\x82\xAC";
    std::vector<int> const narrowStops = {0, 1, 3, 7, 8, 10, 11, 14};

    auto const forward = [](int length, auto const &step)
    {
        std::vector<int> stops = {0};
        for (unsigned int i = 0; i < static_cast<unsigned int>(length); stops.push_back(static_cast<int>(i)))
            step(i);
        return stops;
    };
    auto const backward = [](int length, auto const &step)
    {
        std::vector<int> stops = {length};
        for (int i = length; i > 0; stops.insert(stops.begin(), i))
            step(i);
        return stops;
    };
    EXPECT_EQ(forward(7, [&](unsigned int &i) { ICU16_FWD_1(wide, i, 7); }), wideStops);
    EXPECT_EQ(backward(7, [&](int &i) { ICU16_BACK_1(wide, 0, i); }), wideStops);
    EXPECT_EQ(forward(14, [&](unsigned int &i) { ICU8_FWD_1(narrow, i, 14); }), narrowStops);
    auto const *const bytes = reinterpret_cast<unsigned char const *>(narrow);
    EXPECT_EQ(backward(14, [&](int &i) { ICU8_BACK_1(bytes, 0, i); }), narrowStops);

    // Neither goes beyond the bounds it is given.
    unsigned int cut = 1;
    ICU16_FWD_1(wide, cut, 2);
    EXPECT_EQ(cut, 2u);
    int back = 3;
    ICU16_BACK_1(wide, 2, back);
    EXPECT_EQ(back, 2);
}
