// Format strings that the compiler checks. What it must reject is in tests/rejected_code.

#include "vansys/TFormatLiteral.h"
#include "vansys/TCType.h"

#include "support/FailureMessage.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>

namespace
{

/// Takes down what the compiler would say.
struct RecordingSink : vansys::detail::FormatLiteralSink
{
    int Fail(char const *text) noexcept
    {
        message = text;
        return 0;
    }

    char const *message = "";
};

/// The message of the scan of zero-terminated text; otherwise what the highest number is.
template <class Character>
std::string LiteralOutcome(Character const *text)
{
    using Iterator = vansys::detail::FormatLiteralIterator<Character>;
    RecordingSink sink;
    int const number = vansys::detail::ScanFormat(Iterator(text), typename Iterator::Sentinel(), sink);
    return *sink.message ? sink.message : std::to_string(number);
}

/// The same of a format at run time, of which each argument is missing.
std::string RunTimeOutcome(TStringCore const &text)
{
    std::string const message =
        FailureMessage<TFormatStringCore::Exception>([&] { TFormatStringCore(text).result(); }).toStdString();
    if (message.empty())
        return "0";
    auto const need = message.find("need ");
    return need == message.npos ? message : message.substr(need + 5, message.find(':') - need - 5);
}

} // namespace

TEST(TFormatLiteral, MakesTextsAndFormats)
{
    TStringCore const name(u"a name that is kept on the heap");
    EXPECT_EQ(FormatText(u"%1 of %2%%", 3, name), u"3 of a name that is kept on the heap%");
    EXPECT_EQ(FormatText(L"%2%1", L"wide", "UTF-8"), u"UTF-8wide");
    EXPECT_EQ(FormatText("\u20AC%1%2%3|%4", u'x', 'y', 0.5, 0.25f), u"\u20ACxy0.5|0.25");
    EXPECT_EQ(FormatText(u"%1%1%1%1%1%1%1%1%1%1%1%1%1%1%1%1%1", 1), u"11111111111111111") << "17 markers";
    static constexpr TFormatLiteral<2> Constant = u"%1 of %2";
    EXPECT_EQ(Constant.text(1, 2).append(Constant.formatString()), u"1 of 2%1 of %2");
    EXPECT_EQ(CheckedFormat(u"%1: %2", "size", 7).result(), u"size: 7");
    EXPECT_EQ(TFormatLiteral(u"%1|%2").arg(u"a", -3).arg(5, 3).result(), u"a  |  5");
    EXPECT_THROW(TFormatLiteral("%1").text(), TFormatStringCore::Exception) << "the number is not known";
}

TEST(TFormatLiteral, KnowsTheDigitsOfIcu)
{
    for (int unit = 0; unit <= 0xFFFF; ++unit)
        EXPECT_EQ(vansys::detail::IsDecimalDigit(static_cast<TCodeUnit>(unit)),
                  TCType::isDigit(static_cast<TCodeUnit>(unit)))
            << std::hex << unit;
}

/// Random text, mostly of what matters to the scanner, must mean the same at both times and in every form.
TEST(TFormatLiteral, AgreesWithTheRunTime)
{
    std::mt19937 random(5);
    char32_t const characters[] = {U'%',   U'%',  U'%', U'0', U'1',   U'9',   U'2',    U'x',    U' ',  0x661,
                                   0xFF10, 0x96F, 0x2F, 0x3A, 0xD800, 0xDFCE, 0x10031, 0x10025, 0xFFFD};
    unsigned char const bytes[] = {'%',  '%',  '1',  '0',  '5',  'a',  0xC0, 0xA5, 0xB1, 0xD9, 0xA1,
                                   0xE0, 0xEF, 0xBC, 0x91, 0xF0, 0xF8, 0xFC, 0x80, 0xFE, 0xFF};
    for (int round = 0; round < 20000; ++round)
    {
        std::u32string text;
        std::string utf8;
        for (auto length = random() % 9; length > 0; --length)
        {
            text.push_back(characters[random() % std::size(characters)]);
            utf8.push_back(static_cast<char>(bytes[random() % std::size(bytes)]));
        }
        TStringCore const units = TStringCore::fromUtf32(text.c_str());
        SCOPED_TRACE(testing::PrintToString(units) + ", " + testing::PrintToString(utf8));
        std::string const expected = RunTimeOutcome(units);
        EXPECT_EQ(LiteralOutcome(units.constData()), expected);
        EXPECT_EQ(LiteralOutcome(units.toStdWString().c_str()), expected);
        EXPECT_EQ(LiteralOutcome(units.toStdString().c_str()), expected);
        EXPECT_EQ(LiteralOutcome(utf8.c_str()), RunTimeOutcome(utf8.c_str()));
    }
    // A one in each form that is longer than it need be, the longest of which is none.
    for (char const *const utf8 : {"%\xC0\xB1", "%\xE0\x80\xB1", "%\xF0\x80\x80\xB1", "%\xF8\x80\x80\x80\xB1",
                                   "%\xFC\x80\x80\x80\x80\xB1", "%\xFE\x80\x80\x80\x80\x80\xB1"})
        EXPECT_EQ(LiteralOutcome(utf8), RunTimeOutcome(utf8)) << testing::PrintToString(utf8);
}
