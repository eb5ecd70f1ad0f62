#include "vansys/ICUCharacterFunctions.h"
#include "vansys/TStringCore.h"

#include "support/ReferenceText.h"
#include "support/TestText.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace
{

/// The folding of comparison, one unit at a time.
char16_t foldByIcu(char16_t unit)
{
    bool const isSurrogate = unit >= 0xD800 && unit < 0xE000;
    return isSurrogate ? unit : static_cast<char16_t>(VanICU::t_u_foldCase(unit, 0));
}

struct Sensitivity
{
    TStringCore::CaseSensitivity value;
    reference::Fold fold;
};

constexpr Sensitivity Sensitivities[] = {
    {TStringCore::CaseSensitive, reference::keepCase},
    {TStringCore::CaseInsensitive, foldByIcu},
};

/// Each with what differs in case from what else is there, and with what nearly does.
constexpr char16_t const *Alphabets[] = {
    u"aAbBzZ@[`{",
    u"aAβΒςσΣάΆ",
    u"aAéÉßẞKk\u212AıİiI\xD801\xDC00\xDC28\xFF21\xFF41",
};

/// The text with a few units changed, and perhaps cut or continued.
std::u16string nearlyEqual(std::u16string text, RandomText &random)
{
    for (char16_t &unit : text)
    {
        auto const upper = static_cast<char16_t>(VanICU::t_u_toupper(unit));
        auto const lower = static_cast<char16_t>(VanICU::t_u_tolower(unit));
        if (random.number(0, 1))
            unit = random.number(0, 1) ? upper : lower;
    }
    if (!text.empty() && random.number(0, 2) == 0)
    {
        auto const place = static_cast<std::size_t>(random.number(0, static_cast<int>(text.size()) - 1));
        text[place] = random.text(1).append(1, text[place])[0];
    }
    if (random.number(0, 4) == 0)
        text += random.text(3);
    if (random.number(0, 4) == 0)
        text.resize(static_cast<std::size_t>(random.number(0, static_cast<int>(text.size()))));
    return text;
}

/// Calls `check(a, b)` with pairs of texts that differ little.
void forNearlyEqualTexts(std::function<void(std::u16string const &, std::u16string const &)> const &check)
{
    for (char16_t const *alphabet : Alphabets)
    {
        RandomText random(alphabet);
        for (int round = 0; round < 4000 && !testing::Test::HasFatalFailure(); ++round)
        {
            std::u16string const text = random.text(round % 10 == 0 ? 400 : 50);
            check(text, nearlyEqual(text, random));
        }
    }
}

} // namespace

TEST(TStringCoreCompare, TextsAgreeWithTheReference)
{
    forNearlyEqualTexts(
        [](std::u16string const &a, std::u16string const &b)
        {
            TStringCore const first(a);
            TStringCore const second(b);
            for (auto const [sensitivity, fold] : Sensitivities)
            {
                int const order = reference::compare(a, b, fold);
                ASSERT_EQ(first.compare(second, sensitivity), order) << first.toStdString() << '\n'
                                                                     << second.toStdString();
                ASSERT_EQ(second.compare(first, sensitivity), -order);
                ASSERT_EQ(first.startsWith(second, sensitivity),
                          reference::folded(a, fold).starts_with(reference::folded(b, fold)));
                ASSERT_EQ(first.endsWith(second, sensitivity),
                          reference::folded(a, fold).ends_with(reference::folded(b, fold)));
            }
        });
}

TEST(TStringCoreCompare, RawTextIsReadUpToItsEnd)
{
    forNearlyEqualTexts(
        [](std::u16string const &a, std::u16string const &b)
        {
            ExactUnits const first(a);
            ExactUnits const second(b + u'\0');
            ExactUnits const terminated(a + u'\0');
            auto const count = first.count();
            for (auto const [sensitivity, fold] : Sensitivities)
            {
                ASSERT_EQ(TStringCore::compareN(first.data(), second.data(), count, sensitivity),
                          reference::compare(a, b.substr(0, a.size()), fold));
                ASSERT_EQ(TStringCore::compare(terminated.data(), second.data(), sensitivity),
                          reference::compare(a, b, fold));
            }
        });
}

TEST(TStringCoreCompare, EveryUnitIsFoldedAloneAndAmongOthers)
{
    for (int c = 1; c < 0x10000; ++c)
    {
        auto const unit = static_cast<TCodeUnit>(c);
        auto const folded = static_cast<TCodeUnit>(foldByIcu(static_cast<char16_t>(c)));
        for (int const count : {1, 9})
        {
            TStringCore const text(unit, count);
            ASSERT_EQ(text.compare(TStringCore(folded, count), TStringCore::CaseInsensitive), 0) << c;
            ASSERT_EQ(text.compare(TStringCore(u'q', count), TStringCore::CaseInsensitive),
                      folded < u'q' ? -1 : folded > u'q')
                << c;
        }
    }
}

TEST(TStringCoreCompare, DifferencesAreFoundAnywhereInLongText)
{
    std::u16string const text(20000, u'x');
    for (int const place : {0, 30, 31, 32, 33, 95, 96, 4000, 8160, 12256, 19999})
    {
        SCOPED_TRACE(place);
        std::u16string other = text;
        other[static_cast<std::size_t>(place)] = u'y';
        for (auto const [sensitivity, fold] : Sensitivities)
        {
            TStringCore const a(text);
            TStringCore const b(other);
            EXPECT_EQ(a.compare(b, sensitivity), -1);
            EXPECT_EQ(TStringCore::compare(b, a, sensitivity), 1);
            EXPECT_EQ(TStringCore::compareN(a, b, place, sensitivity), 0);
            EXPECT_EQ(TStringCore::compareN(a, b, place + 1, sensitivity), -1);
            EXPECT_EQ(TStringCore::compareN(a, b, -1, sensitivity), -1);
        }
    }
}

TEST(TStringCoreCompare, NullIsEmptyAndZeroUnitsCountInStringsOnly)
{
    TCodeUnit const *const null = nullptr;
    TCodeUnit const empty[] = {0};
    TCodeUnit const letter[] = {'a', 0};
    EXPECT_EQ(TStringCore::compare(null, null), 0);
    EXPECT_EQ(TStringCore::compare(null, empty), 0);
    EXPECT_EQ(TStringCore::compare(null, letter), -1);
    EXPECT_EQ(TStringCore::compareN(letter, null, 1), 1);
    EXPECT_EQ(TStringCore::compareN(letter, null, 0), 0);
    EXPECT_EQ(TStringCore().compare(null), 0);

    TStringCore const zeros(u"a\0b", 3);
    EXPECT_EQ(zeros.compare(TStringCore(u"a\0c", 3)), -1);
    EXPECT_EQ(zeros.compare(TStringCore(u"A\0B", 3), TStringCore::CaseInsensitive), 0);
    EXPECT_EQ(TStringCore(u'\0', 20).compare(TStringCore(u'\0', 20), TStringCore::CaseInsensitive), 0);
    EXPECT_FALSE(TStringCore(u"a").startsWith(TStringCore(u"a\0", 2))) << "the terminator is no unit";
    EXPECT_EQ(zeros.compare(u"a\0c"), 1) << "a pointer's text ends at its first zero";
    EXPECT_EQ(TStringCore::compare(zeros, TStringCore(u"a")), 0);
}

TEST(TStringCoreCompare, TwinTextIsComparedByUnitAndCountedByElement)
{
    // In units, U+1F600 comes before U+FFFD; by code point it would come after it.
    auto const smile = TwinElements(u"a\U0001F600b");
    auto const replacement = TwinElements(u"a\uFFFD");
    EXPECT_EQ(TStringCore::compare(smile.data(), replacement.data()), -1);
    EXPECT_EQ(TStringCore::compareN(smile.data(), replacement.data(), 1), 0);
    EXPECT_EQ(TStringCore::compareN(smile.data(), replacement.data(), 2), -1);
    auto const other = TwinElements(u"A\U0001F600c");
    int const elements = static_cast<int>(smile.size()) - 1;
    EXPECT_EQ(TStringCore::compareN(smile.data(), other.data(), elements - 1, TStringCore::CaseInsensitive),
              0);
    EXPECT_EQ(TStringCore::compareN(smile.data(), other.data(), elements, TStringCore::CaseInsensitive), -1);
    TWideTwin const *const null = nullptr;
    EXPECT_EQ(TStringCore::compareN(null, smile.data(), 1), -1);
    EXPECT_TRUE(TStringCore(u"xya").startsWith(TwinElements(u"XY").data(), TStringCore::CaseInsensitive));
}

namespace
{

/// All operators, in both directions, of a string and something that it is compared with.
template <class Other>
void expectOrder(TStringCore const &a, Other const &b, int order)
{
    EXPECT_EQ(a == b, order == 0);
    EXPECT_EQ(a != b, order != 0);
    EXPECT_EQ(a < b, order < 0);
    EXPECT_EQ(a <= b, order <= 0);
    EXPECT_EQ(a > b, order > 0);
    EXPECT_EQ(a >= b, order >= 0);
    EXPECT_EQ(b == a, order == 0);
    EXPECT_EQ(b != a, order != 0);
    EXPECT_EQ(b<a, order> 0);
    EXPECT_EQ(b <= a, order >= 0);
    EXPECT_EQ(b > a, order < 0);
    EXPECT_EQ(b >= a, order <= 0);
    EXPECT_EQ((a <=> b) < 0, order < 0);
    EXPECT_EQ((a <=> b) == 0, order == 0);
}

} // namespace

TEST(TStringCoreCompare, OperatorsTakeTextAndUnitsOfEachType)
{
    struct Row
    {
        char16_t const *text;
        int order; ///< against "m"
    };
    for (Row const &row :
         {Row{u"", -1}, Row{u"l", -1}, Row{u"M", -1}, Row{u"m", 0}, Row{u"mm", 1}, Row{u"n", 1}})
    {
        TStringCore const text(row.text);
        SCOPED_TRACE(text.toStdString());
        expectOrder(text, TStringCore(u"m"), row.order);
        expectOrder(text, u"m", row.order);
        expectOrder(text, L"m", row.order);
        expectOrder(text, "m", row.order);
        expectOrder(text, u'm', row.order);
        expectOrder(text, L'm', row.order);
        expectOrder(text, 'm', row.order);
    }
    EXPECT_EQ(TStringCore(u"\u00E9"), '\xE9') << "a byte is widened, not decoded";
}
