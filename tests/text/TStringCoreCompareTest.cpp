#include "vansys/ICUCharacterFunctions.h"
#include "vansys/TStringCore.h"

#include "support/ReferenceText.h"
#include "support/TestText.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using reference::Fold;

namespace
{

/// The folding of comparison, one unit at a time.
constexpr Fold FoldByIcu = [](char16_t unit)
{
    bool const isSurrogate = unit >= 0xD800 && unit < 0xE000;
    return isSurrogate ? unit : static_cast<char16_t>(VanICU::t_u_foldCase(unit, 0));
};

constexpr struct
{
    TStringCore::CaseSensitivity sensitivity;
    Fold fold;
} Ways[] = {{TStringCore::CaseSensitive, reference::KeepCase}, {TStringCore::CaseInsensitive, FoldByIcu}};

/// The text with the case of some units changed, and perhaps one more unit, cut off or continued.
std::u16string NearlyEqual(std::u16string text, RandomText &random)
{
    for (char16_t &unit : text)
    {
        if (random.number(0, 1))
            unit = static_cast<char16_t>(random.number(0, 1) ? VanICU::t_u_toupper(unit)
                                                             : VanICU::t_u_tolower(unit));
    }
    auto const place = static_cast<std::size_t>(random.number(0, static_cast<int>(text.size())));
    if (random.number(0, 2) == 0)
        text.replace(place, 1, random.text(1));
    if (random.number(0, 4) == 0)
        text.resize(place);
    return random.number(0, 4) == 0 ? text + random.text(3) : text;
}

/// All that two things say of each other when they are compared.
template <class A, class B>
std::vector<bool> Relations(A const &a, B const &b)
{
    return {a == b, a != b, a<b, a <= b, a> b, a >= b, (a <=> b) < 0, (a <=> b) == 0};
}

} // namespace

TEST(TStringCoreCompare, AgreesWithTheReference)
{
    // Each alphabet has what differs in case from what else is there, and what nearly does.
    for (char16_t const *alphabet :
         {u"aAbBzZ@[`{", u"aAβΒςσΣάΆ", u"aAéÉßẞKk\u212AıİiI\xD801\xDC00\xDC28\xFF21\xFF41"})
    {
        RandomText random(alphabet);
        for (int round = 0; round < 4000; ++round)
        {
            std::u16string a = random.text(round % 10 == 0 ? 400 : 50);
            std::u16string b = NearlyEqual(a, random);
            SCOPED_TRACE(testing::Message() << "round " << round);
            if (round % 50 == 0) // raw text is compared piece by piece
            {
                std::u16string const same(static_cast<std::size_t>(random.number(0, 16000)), u'x');
                a = same + a;
                b = same + b;
            }
            TStringCore const first(a), second(b);
            // Raw text is read up to its end, or to where the other one ends.
            ExactUnits const aUnits(a), aTerminated(a + u'\0'), bTerminated(b + u'\0');
            for (auto const [sensitivity, fold] : Ways)
            {
                std::u16string const aFolded = reference::Folded(a, fold);
                std::u16string const bFolded = reference::Folded(b, fold);
                int const order = reference::Compare(a, b, fold);
                ASSERT_EQ(first.compare(second, sensitivity), order);
                ASSERT_EQ(second.compare(first, sensitivity), -order);
                ASSERT_EQ(first.startsWith(second, sensitivity), aFolded.starts_with(bFolded));
                ASSERT_EQ(first.endsWith(second, sensitivity), aFolded.ends_with(bFolded));
                ASSERT_EQ(TStringCore::compare(aTerminated.data(), bTerminated.data(), sensitivity), order);
                ASSERT_EQ(
                    TStringCore::compareN(aUnits.data(), bTerminated.data(), aUnits.count(), sensitivity),
                    reference::Compare(a, b.substr(0, a.size()), fold));
            }
        }
    }
}

TEST(TStringCoreCompare, EveryUnitIsFoldedAloneAndAmongOthers)
{
    for (int c = 1; c < 0x10000; ++c)
    {
        TCodeUnit const folded = FoldByIcu(static_cast<char16_t>(c));
        for (int const count : {1, 9})
        {
            TStringCore const text(static_cast<TCodeUnit>(c), count);
            ASSERT_EQ(text.compare(TStringCore(folded, count), TStringCore::CaseInsensitive), 0) << c;
            ASSERT_EQ(text.compare(TStringCore(u'q', count), TStringCore::CaseInsensitive),
                      folded < u'q' ? -1 : folded > u'q')
                << c;
        }
    }
}

TEST(TStringCoreCompare, NullIsEmptyAndZeroUnitsCountInStringsOnly)
{
    TCodeUnit const *const null = nullptr;
    TCodeUnit const letter[] = {'a', 0};
    EXPECT_EQ(TStringCore::compare(null, letter + 1), 0);
    EXPECT_EQ(TStringCore::compare(null, letter), -1);
    EXPECT_EQ(TStringCore::compareN(letter, null, 1), 1);
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
    int const last = static_cast<int>(smile.size()) - 2;
    EXPECT_EQ(TStringCore::compareN(smile.data(), other.data(), last, TStringCore::CaseInsensitive), 0);
    EXPECT_EQ(TStringCore::compareN(smile.data(), other.data(), last + 1, TStringCore::CaseInsensitive), -1);
    EXPECT_EQ(TStringCore::compareN(static_cast<TWideTwin const *>(nullptr), smile.data(), 1), -1);
    EXPECT_TRUE(TStringCore(u"xya").startsWith(TwinElements(u"XY").data(), TStringCore::CaseInsensitive));
}

TEST(TStringCoreCompare, OperatorsTakeTextAndUnitsOfEachType)
{
    auto const isOrder = [](int order, TStringCore const &text, auto const &...others)
    {
        return ((Relations(text, others) == Relations(order, 0) &&
                 Relations(others, text) == Relations(0, order)) &&
                ...);
    };
    std::pair<TStringCore, int> const orders[] = {{u"", -1}, {u"l", -1}, {u"M", -1}, {u"m", 0}, {u"mm", 1}};
    for (auto const &[text, order] : orders)
        EXPECT_TRUE(isOrder(order, text, TStringCore(u"m"), u"m", L"m", "m", u'm', L'm', 'm'))
            << text.toStdString();
    EXPECT_EQ(TStringCore(u"\u00E9"), '\xE9') << "a byte is widened, not decoded";
}
