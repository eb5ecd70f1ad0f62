#include "vansys/TFormatStringCore.h"

#include "support/FailureMessage.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <vector>

namespace
{

using Strings = std::vector<TStringCore>;
using Format = TFormatStringCore;

constexpr char LeadingZero[] = "Leading zero in marker number in format string.";
constexpr char Numberless[] = "Invalid numberless marker in format string.";
constexpr char TooLarge[] = "Invalid marker number > 99 in format string.";
constexpr char Incomplete[] = "Format string ends with an incomplete marker.";

} // namespace

TEST(TFormatStringCore, RejectsWhatIsNoFormatString)
{
    struct Row
    {
        TStringCore format;
        char const *message;
    };

    Row const rows[] = {
        {u"%0", LeadingZero},         {u"a %01", LeadingZero},      {u"%1%0", LeadingZero},
        {u"%x", Numberless},          {u"%1 % 2", Numberless},      {u"%%%x", Numberless},
        {u"%\U0001D7CE", Numberless}, {u"%100", TooLarge},          {u"%99%1234567", TooLarge},
        {u"%1\u0661", TooLarge},      {u"%\u0661\u0661", TooLarge}, {u"%\u06611", TooLarge},
        {u"%", Incomplete},           {u"%1%", Incomplete},         {TStringCore(u"%\0", 2), Numberless}};
    for (Row const &row : rows)
    {
        SCOPED_TRACE(row.format.toStdString());
        Format kept = Format(u"%2 %1").arg(u"a", u"b");
        EXPECT_EQ(FailureMessage<Format::Exception>([&] { kept = row.format; }), row.message);
        EXPECT_EQ(kept.result(), u"b a");
    }
}

TEST(TFormatStringCore, PutsArgumentsInPlaceOfMarkers)
{
    struct Row
    {
        TStringCore format;
        Strings arguments;
        TStringCore expected;
    };

    TStringCore const longText = TStringCore(u"long text ").append(TStringCore(u'x', 100));
    Row const rows[] = {
        {u"no marker", {u"ignored"}, u"no marker"},
        {u"%1", {u""}, u""},
        {u"%%1%%%%", {u"x"}, u"%1%%"},
        {u"%2 %1%1%%", {u"a", u"b", u"ignored"}, u"b aa%"},
        {u"<%1%2>", {u"%2", u"%%"}, u"<%2%%>"},
        {u"%12%1", {u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8", u"9", u"10", u"11", u"12"}, u"121"},
        {u"%99", Strings(99, u"last"), u"last"},
        {TStringCore(u"\0%1\0", 4), {TStringCore(u"\0", 1)}, TStringCore(u"\0\0\0", 3)},
        {TStringCore(u"%1-%%").repeated(30), {longText}, TStringCore(longText).append(u"-%").repeated(30)}};
    for (Row const &row : rows)
        EXPECT_EQ(Format(row.format).arg(row.arguments).result(), row.expected);

    // Every length that is copied in a way of its own.
    TStringCore text;
    for (int length = 0; length < 70; text.append(static_cast<TCodeUnit>(u'A' + length++)))
        EXPECT_EQ(Format(TStringCore(text).append(u"%1.%1")).arg(text).result(),
                  TStringCore(text).append(text).append(u'.').append(text));
}

TEST(TFormatStringCore, BindsEachKindOfArgument)
{
    auto const four = [] { return Format(u"%1|%2|%3|%4"); };
    EXPECT_EQ(four().arg(u"units").arg("UTF-8").arg(L"wide").arg(nullptr).result(), u"units|UTF-8|wide|");
    EXPECT_EQ(four().arg("ab", -5, u'.').arg("ab", 5, u'.').arg("ab", 1).arg("ab", -1).result(),
              u"ab...|...ab|ab|ab");
    EXPECT_EQ(four().arg(L'y').arg('\xE9').arg(u'x', 3).arg('y', -3, u'.').result(), u"y|\u00E9|  x|y..");
    EXPECT_EQ(four().arg(u"a", "b").arg(Strings{u"c", u"d"}).arg(Strings()).result(), u"a|b|c|d");
    EXPECT_EQ(Format(u"%10%5%2%1").arg("1", "2", "3", "4", "5", "6", "7", "8", "9", u"X").result(), u"X521");
    EXPECT_EQ(four().arg(Format(u"<%1>").arg(u"a"), u"b", u"", TStringCore(u"c")).result(), u"<a>|b||c");
    EXPECT_EQ(four().arg(short(-1)).arg(static_cast<unsigned short>(-1)).arg(-1).arg(255u, 0, 16).result(),
              u"-1|65535|-1|ff");
    EXPECT_EQ(four().arg(-7L).arg(7ul).arg(-8LL).arg(~0ull).result(), u"-7|7|-8|18446744073709551615");
    EXPECT_EQ(four().arg(true).arg(static_cast<signed char>('A')).arg(-5, 4, 10, u'0').arg(5, -5, 2).result(),
              u"1|65|00-5|101  ");
    EXPECT_EQ(four().arg(0.5).arg(1e10f).arg(2.5, 6, 'f', 2).arg(1.0, 0, 'f').result(),
              u"0.5|1e+10|  2.50|1.000000");
    EXPECT_EQ(TStringCore(Format(u"%1").arg(1.0, 0, 'f', 2, u' ', true).args()), u"1.0");
    Format format(u"%1");
    EXPECT_EQ(&format.arg(u"x"), &format);
    format.clearParms();
    EXPECT_THROW(format.result(), Format::Exception);
    for (int const width : {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_THROW(format.arg(u"x", width), TStringCore::Exception) << "wider than any text";
    EXPECT_EQ(format.arg(u"y").result(), u"y");
}

TEST(TFormatStringCore, TooFewArgumentsFail)
{
    auto const expectFailure = [](TStringCore const &text, std::size_t have, char const *expected)
    {
        Format format(text);
        format.arg(Strings(have, u"secret"));
        EXPECT_EQ(FailureMessage<Format::Exception>([&] { format.result(); }),
                  TStringCore("Insufficient parameters to format string (have ").append(expected));
        EXPECT_NO_THROW(format.arg(Strings(0xFFFF, u"x")).result());
    };
    expectFailure(u"%1", 0, "0, need 1: format string = \"%1\")");
    expectFailure(u"%3 %1", 2, "2, need 3: format string = \"%3 %1\")");
    expectFailure(u"%\u0661", 99, "99, need 1585: format string = \"%\u0661\")");
    expectFailure(u"%\uFF19%1", 1, "1, need 65257: format string = \"%\uFF19%1\")");
    try
    {
        Format(u"%1 secret").result();
        ADD_FAILURE();
    }
    catch (Format::Exception const &exception)
    {
        EXPECT_EQ(exception.GetRedactedMessages().front(),
                  "Insufficient parameters to format string (have %1, need %2: format string = \"%3\")");
        std::unique_ptr<VantrelException> const clone(exception.Clone());
        EXPECT_THROW(clone->Throw(), Format::Exception);
    }
}

TEST(TFormatStringCore, CopiesAreIndependent)
{
    Format original(u"%1 and %2, which is a long text");
    original.arg(u"a").arg(u"b");
    Format copy = original;
    copy = u"%2%1";
    EXPECT_EQ(copy.result(), u"ba");
    EXPECT_EQ(original.result(), u"a and b, which is a long text");
    original = copy;
    copy.clearParms();
    EXPECT_EQ(original.result(), u"ba");

    Format moved = std::move(original);
    EXPECT_EQ(original.result(), u"") << "the empty format, without markers";
    original = std::move(moved);
    EXPECT_EQ(moved.result(), u"");
    auto &same = original;
    original = same;
    original = std::move(same);
    original = original.formatString();
    EXPECT_EQ(original.result(), u"ba");
}
