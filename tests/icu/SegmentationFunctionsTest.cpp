#include "icu/Families.h"

#include <vector>

using namespace VanICU;

using ICUSegmentationFunctions = ICUFamilyTest;
VANSYS_WITH_BOTH_FAMILIES(ICUSegmentationFunctions);

TEST_P(ICUSegmentationFunctions, BreakIteratorsCountWords)
{
    auto const countWords = [](ICUBreakIterator *iterator)
    {
        int count = 0;
        while (t_ubrk_next(iterator) != -1)
            count += t_ubrk_getRuleStatus(iterator) >= 100;
        return count;
    };
    TStringCore const text("Don't panic: 42 isn't \u00E5 lot\u2026");
    using BreakIterator = Owned<ICUBreakIterator, &t_ubrk_close>;
    BreakIterator const words(t_ubrk_open(UBRK_WORD, "en", text, -1, &m_status));
    EXPECT_EQ(countWords(words.get()), 6);

    // The same over UTF-8, where positions are bytes; the ICUText itself is not needed for long.
    std::string const utf8 = text.toStdString();
    ICUText *utext = t_utext_openUTF8(nullptr, utf8.data(), static_cast<int>(utf8.size()), &m_status);
    t_ubrk_setUText(words.get(), utext, &m_status);
    EXPECT_EQ(t_utext_close(utext), nullptr);
    EXPECT_EQ(countWords(words.get()), 6);

    BreakIterator const characters(t_ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &m_status));
    std::string const family =
        "e\u0301\U0001F468\u200D\U0001F469!"; // two characters of several code points, and one
    utext = t_utext_openUTF8(nullptr, family.data(), -1, &m_status);
    t_ubrk_setUText(characters.get(), utext, &m_status);
    t_utext_close(utext);
    std::vector<int> boundaries;
    for (int at = t_ubrk_next(characters.get()); at != -1; at = t_ubrk_next(characters.get()))
        boundaries.push_back(at);
    EXPECT_EQ(boundaries, (std::vector<int>{3, 14, 15}));
    EXPECT_TRUE(ICU_SUCCESS(m_status)) << t_u_errorName(m_status);
}

TEST_P(ICUSegmentationFunctions, RegularExpressionsFindAndReplace)
{
    using Expression = Owned<ICURegularExpression, &t_uregex_close>;
    TStringCore const pattern("(\\w+)@(\\w+)(!)?");
    TStringCore const text("from \u00E5sa@home to bo@work");
    Expression const expression(t_uregex_open(pattern, -1, 0, nullptr, &m_status));
    t_uregex_setText(expression.get(), text, -1, &m_status);
    auto const group = [&](int number)
    {
        return FilledText([&](auto *out, int room)
                          { return t_uregex_group(expression.get(), number, out, room, &m_status); });
    };

    EXPECT_FALSE(t_uregex_matches(expression.get(), -1, &m_status));
    EXPECT_TRUE(t_uregex_matches(expression.get(), 17, &m_status)) << "the rest of the text is one match";
    ASSERT_TRUE(t_uregex_find(expression.get(), 0, &m_status));
    EXPECT_EQ(t_uregex_start(expression.get(), 0, &m_status), 5);
    EXPECT_EQ(t_uregex_end(expression.get(), 0, &m_status), 13);
    EXPECT_EQ(group(1), "\u00E5sa");
    EXPECT_EQ(group(2), "home");
    EXPECT_EQ(t_uregex_start(expression.get(), 3, &m_status), -1);
    ASSERT_TRUE(t_uregex_find(expression.get(), 9, &m_status)) << "from the middle of a match";
    EXPECT_EQ(group(0), "bo@work");

    TStringCore const replacement("$2:$1");
    EXPECT_EQ(
        FilledText([&](auto *out, int room)
                   { return t_uregex_replaceAll(expression.get(), replacement, -1, out, room, &m_status); }),
        "from home:\u00E5sa to work:bo");
    EXPECT_EQ(FilledText(
                  [&](auto *out, int room)
                  { return t_uregex_replaceFirst(expression.get(), replacement, -1, out, room, &m_status); }),
              "from home:\u00E5sa to bo@work");

    Expression const clone(t_uregex_clone(expression.get(), &m_status));
    EXPECT_EQ(m_status, U_ZERO_ERROR);
    t_uregex_find(clone.get(), 0, &m_status);
    EXPECT_EQ(m_status, U_REGEX_INVALID_STATE) << "a copy has no text yet";
    m_status = U_ZERO_ERROR;
    t_uregex_setText(clone.get(), TStringCore("a@b"), -1, &m_status);
    EXPECT_TRUE(t_uregex_matches(clone.get(), 0, &m_status));
    EXPECT_EQ(m_status, U_ZERO_ERROR);
}

TEST_P(ICUSegmentationFunctions, FlagsAndErrorsOfPatterns)
{
    struct
    {
        char const *pattern;
        unsigned int flags;
        char const *text;
        bool matches;
    } const rows[] = {
        {"\u00C5.", 0, "\u00E5x", false},
        {"\u00C5.", ICU_REGEX_CASE_INSENSITIVE, "\u00E5x", true},
        {"a.c", 0, "a\nc", false},
        {"a.c", ICU_REGEX_DOTALL, "a\nc", true},
        {"a.c", ICU_REGEX_LITERAL, "abc", false},
        {"a b # c", ICU_REGEX_COMMENTS, "ab", true},
    };
    for (auto const &row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.pattern << ' ' << row.flags);
        TStringCore const text(row.text);
        Owned<ICURegularExpression, &t_uregex_close> const expression(
            t_uregex_open(TStringCore(row.pattern), -1, row.flags, nullptr, &m_status));
        t_uregex_setText(expression.get(), text, -1, &m_status);
        EXPECT_EQ(t_uregex_matches(expression.get(), -1, &m_status) != 0, row.matches);
        EXPECT_EQ(m_status, U_ZERO_ERROR);
    }

    ICUParseError error = {};
    EXPECT_EQ(t_uregex_open(TStringCore("ab\nc(d"), -1, 0, &error, &m_status), nullptr);
    EXPECT_EQ(m_status, U_REGEX_MISMATCHED_PAREN);
    EXPECT_EQ(error.line, 2);
}
