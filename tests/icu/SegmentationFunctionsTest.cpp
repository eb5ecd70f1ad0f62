#include "icu/Families.h"

using namespace VanICU;

VANSYS_FAMILY_TEST(ICUSegmentationFunctions);

using Expression = Owned<ICURegularExpression, &t_uregex_close>;

TEST_P(ICUSegmentationFunctions, BreakIteratorsStopAtBoundaries)
{
    using Stops = std::vector<std::pair<int, int>>; // positions, and the rule's status there
    auto const stops = [](auto const &iterator)
    {
        Stops result;
        for (int at = t_ubrk_next(iterator.get()); at != -1; at = t_ubrk_next(iterator.get()))
            result.emplace_back(at, t_ubrk_getRuleStatus(iterator.get()));
        return result;
    };
    using BreakIterator = Owned<ICUBreakIterator, &t_ubrk_close>;
    TStringCore const text("\u00E5 42");
    BreakIterator const words(t_ubrk_open(UBRK_WORD, "en", text, -1, &m_status));
    EXPECT_EQ(stops(words), (Stops{{1, 200}, {2, 0}, {4, 100}}));

    // Over UTF-8, positions are bytes; the ICUText itself is not needed for long.
    std::string const utf8 = "e\u0301\U0001F468\u200D\U0001F469!";
    BreakIterator const characters(t_ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &m_status));
    ICUText *const utext =
        t_utext_openUTF8(nullptr, utf8.data(), static_cast<int>(utf8.size()) - 1, &m_status);
    t_ubrk_setUText(characters.get(), utext, &m_status);
    EXPECT_EQ(t_utext_close(utext), nullptr);
    EXPECT_EQ(stops(characters), (Stops{{3, 0}, {14, 0}}));
}

TEST_P(ICUSegmentationFunctions, RegularExpressionsFindAndReplace)
{
    TStringCore const text("from \u00E5sa@home to bo@work");
    Expression const owner(t_uregex_open(TStringCore("(\\w+)@(\\w+)(!)?"), -1, 0, nullptr, &m_status));
    ICURegularExpression *const expression = owner.get();
    t_uregex_setText(expression, text, -1, &m_status);
    EXPECT_FALSE(t_uregex_matches(expression, -1, &m_status));
    EXPECT_TRUE(t_uregex_matches(expression, 17, &m_status)) << "the rest of the text is one match";
    ASSERT_TRUE(t_uregex_find(expression, 0, &m_status));
    EXPECT_EQ(t_uregex_start(expression, 0, &m_status), 5);
    EXPECT_EQ(t_uregex_end(expression, 0, &m_status), 13);
    EXPECT_EQ(Filled(t_uregex_group, expression, 2), "home");
    EXPECT_EQ(t_uregex_start(expression, 3, &m_status), -1);
    ASSERT_TRUE(t_uregex_find(expression, 9, &m_status)) << "from the middle of a match";
    EXPECT_EQ(Filled(t_uregex_group, expression, 0), "bo@work");
    TStringCore const swapped("$2:$1");
    EXPECT_EQ(Filled(t_uregex_replaceAll, expression, swapped, -1), "from home:\u00E5sa to work:bo");
    EXPECT_EQ(Filled(t_uregex_replaceFirst, expression, swapped, -1), "from home:\u00E5sa to bo@work");

    Expression const clone(t_uregex_clone(expression, &m_status));
    EXPECT_EQ(TakeStatus(), U_ZERO_ERROR);
    t_uregex_find(clone.get(), 0, &m_status);
    EXPECT_EQ(TakeStatus(), U_REGEX_INVALID_STATE) << "a copy has no text yet";
}

TEST_P(ICUSegmentationFunctions, PatternsHaveFlagsAndErrors)
{
    Expression const expression(t_uregex_open(
        TStringCore("\u00C5 b.c"), -1, ICU_REGEX_CASE_INSENSITIVE | ICU_REGEX_DOTALL, nullptr, &m_status));
    TStringCore const text("\u00E5 b\nC");
    t_uregex_setText(expression.get(), text, -1, &m_status);
    EXPECT_TRUE(t_uregex_matches(expression.get(), -1, &m_status));
    EXPECT_EQ(TakeStatus(), U_ZERO_ERROR);
    ICUParseError error = {};
    EXPECT_EQ(t_uregex_open(TStringCore("ab\nc(d"), -1, 0, &error, &m_status), nullptr);
    EXPECT_EQ(TakeStatus(), U_REGEX_MISMATCHED_PAREN);
    EXPECT_EQ(error.line, 2);
}
