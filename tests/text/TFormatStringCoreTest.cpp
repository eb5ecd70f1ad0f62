#include "vansys/TFormatStringCore.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace
{

using Strings = std::vector<TStringCore>;

/// The message of the exception that `action` throws; empty when it throws none.
TStringCore failureOf(std::function<void()> const &action)
{
    try
    {
        action();
    }
    catch (TFormatStringCore::Exception const &exception)
    {
        EXPECT_EQ(exception.GetMessages().size(), 1u);
        return exception.GetMessagesFront();
    }
    return TStringCore();
}

TStringCore format(TStringCore const &format, Strings const &arguments)
{
    return TFormatStringCore(format).arg(arguments).result();
}

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
        {u"%x", Numberless},          {u"%1 % 2", Numberless},      {u"%-1", Numberless},
        {u"%%%x", Numberless},        {u"%\U0001D7CE", Numberless}, {TStringCore(u"%\0", 2), Numberless},
        {u"%100", TooLarge},          {u"%99%1234567", TooLarge},   {u"%1\u0661", TooLarge},
        {u"%\u0661\u0661", TooLarge}, {u"%\u06611", TooLarge},      {u"%", Incomplete},
        {u"%1%", Incomplete},         {u"%%%", Incomplete},
    };
    for (Row const &row : rows)
    {
        SCOPED_TRACE(row.format.toStdString());
        TFormatStringCore kept(u"%2 %1");
        kept.arg(u"a", u"b");
        EXPECT_EQ(failureOf([&] { TFormatStringCore{row.format}; }), row.message);
        EXPECT_EQ(failureOf([&] { TFormatStringCore(row.format.toStdString().c_str()); }),
                  row.format.contains(u'\0') ? Incomplete : row.message);
        EXPECT_EQ(failureOf([&] { kept = row.format; }), row.message);
        EXPECT_EQ(kept.formatString(), u"%2 %1");
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
        {u"", {}, u""},
        {u"no marker", {u"ignored"}, u"no marker"},
        {u"%1", {u""}, u""},
        {u"%1%%", {u"x"}, u"x%"},
        {u"%%1%%%%", {u"x"}, u"%1%%"},
        {u"%2 %1", {u"a", u"b"}, u"b a"},
        {u"%1 %1", {u"a", u"ignored"}, u"a a"},
        {u"<%1%2>", {u"%2", u"%%"}, u"<%2%%>"},
        {u"%3%1x", {u"a", u"b", u"c"}, u"cax"},
        {u"%12%1", {u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8", u"9", u"10", u"11", u"12"}, u"121"},
        {u"%99", Strings(99, u"last"), u"last"},
        {TStringCore(u"\0%1\0", 4), {TStringCore(u"\0", 1)}, TStringCore(u"\0\0\0", 3)},
        {longText, {}, longText},
        {TStringCore(longText).append(u"%1, ").append(longText),
         {longText},
         TStringCore(longText).append(longText).append(u", ").append(longText)},
        {TStringCore(u"%1-%%").repeated(30), {longText}, TStringCore(longText).append(u"-%").repeated(30)},
    };
    for (Row const &row : rows)
    {
        SCOPED_TRACE(row.format.toStdString());
        EXPECT_EQ(format(row.format, row.arguments), row.expected);
    }
    // Every length that is copied in a way of its own.
    for (int length = 0; length < 70; ++length)
    {
        TStringCore text;
        for (int i = 0; i < length; ++i)
            text.append(static_cast<TCodeUnit>(u'A' + i));
        EXPECT_EQ(format(TStringCore(text).append(u"%1.%1"), {text}),
                  TStringCore(text).append(text).append(u'.').append(text));
    }
}

TEST(TFormatStringCore, BindsEachKindOfArgument)
{
    enum Unscoped
    {
        Seven = 7,
    };
    using Format = TFormatStringCore;

    struct Row
    {
        TStringCore expected; ///< the arguments, each followed by a bar
        std::function<Format &(Format &)> bind;
    };

    Row const rows[] = {
        {u"units|UTF-8|wide|",
         [](Format &f) -> Format & { return f.arg(u"units").arg("UTF-8").arg(L"wide"); }},
        {u"|", [](Format &f) -> Format & { return f.arg(nullptr); }},
        {u"ab...|...ab|ab|ab|",
         [](Format &f) -> Format &
         { return f.arg("ab", -5, u'.').arg("ab", 5, u'.').arg("ab", 1).arg("ab", -1); }},
        {u"x|y|z|  x|y..|",
         [](Format &f) -> Format &
         { return f.arg(u'x').arg(L'y').arg('z').arg(u'x', 3).arg('y', -3, u'.'); }},
        {u"\u00E9|", [](Format &f) -> Format & { return f.arg('\xE9'); }},
        {u"a|b|c|", [](Format &f) -> Format & { return f.arg(u"a", "b", TStringCore(u"c")); }},
        {u"1|2|3|4|5|6|7|8|9|10|",
         [](Format &f) -> Format & { return f.arg("1", "2", "3", "4", "5", "6", "7", "8", "9", u"10"); }},
        {u"a|b|c|",
         [](Format &f) -> Format & {
             return f.arg(Strings{u"a", u"b"}).arg(Strings()).arg(u"c");
         }},
        {u"<a>|b|", [](Format &f) -> Format & { return f.arg(Format(u"<%1>").arg(u"a"), u"b"); }},
        {u"-1|65535|-1|ff|",
         [](Format &f) -> Format &
         { return f.arg(short(-1)).arg(static_cast<unsigned short>(-1)).arg(-1).arg(255u, 0, 16); }},
        {u"-7|7|-8|18446744073709551615|",
         [](Format &f) -> Format & { return f.arg(-7L).arg(7ul).arg(-8LL).arg(~0ull); }},
        {u"1|7|65|",
         [](Format &f) -> Format & { return f.arg(true).arg(Seven).arg(static_cast<signed char>('A')); }},
        {u"00-5|101..|-101|",
         [](Format &f) -> Format & { return f.arg(-5, 4, 10, u'0').arg(5, -5, 2, u'.').arg(-5, 0, 2); }},
        {u"0.5|1e+10|  2.50|1.000000|1.0|",
         [](Format &f) -> Format & {
             return f.arg(0.5)
                 .arg(1e10f)
                 .arg(2.5, 6, 'f', 2)
                 .arg(1.0, 0, 'f')
                 .arg(1.0, 0, 'f', 2, u' ', true);
         }},
    };
    for (Row const &row : rows)
    {
        SCOPED_TRACE(row.expected.toStdString());
        int const arguments = row.expected.count(u'|');
        TStringCore text;
        for (int i = 1; i <= arguments; ++i)
            text.append(u'%').append(TStringCore::number(i)).append(u'|');
        Format format(text);
        EXPECT_EQ(&row.bind(format), &format);
        EXPECT_EQ(format.result(), row.expected);
        EXPECT_EQ(TStringCore(format.args()), row.expected);
        EXPECT_EQ(format.formatString(), text);
        format.clearParms();
        EXPECT_EQ(failureOf([&] { format.result(); }).isEmpty(), arguments == 0);
        row.bind(format);
        EXPECT_EQ(format.result(), row.expected);
    }
}

TEST(TFormatStringCore, WidthBeyondAllTextsFails)
{
    for (int const width : {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    {
        TFormatStringCore format(u"%1");
        EXPECT_THROW(format.arg(u"x", width), TStringCore::Exception);
        EXPECT_EQ(format.arg(u"y").result(), u"y");
    }
}

TEST(TFormatStringCore, TooFewArgumentsFail)
{
    struct Row
    {
        TStringCore format;
        int have;
        int need;
    };

    Row const rows[] = {{u"%1", 0, 1},
                        {u"%1 %2", 1, 2},
                        {u"%3 %1", 2, 3},
                        {u"%\u0661", 99, 0x661 - 0x30},
                        {u"%\uFF19%1", 1, 0xFF19 - 0x30}};
    for (Row const &row : rows)
    {
        SCOPED_TRACE(row.format.toStdString());
        TFormatStringCore format(row.format);
        format.arg(Strings(static_cast<std::size_t>(row.have), u"secret"));
        try
        {
            format.result();
            ADD_FAILURE();
        }
        catch (TFormatStringCore::Exception const &exception)
        {
            std::string const expected = "Insufficient parameters to format string (have " +
                                         std::to_string(row.have) + ", need " + std::to_string(row.need) +
                                         ": format string = \"" + row.format.toStdString() + "\")";
            EXPECT_EQ(exception.GetMessages(), std::list<TStringCore>{expected.c_str()});
            EXPECT_EQ(exception.GetRedactedMessages(),
                      std::list<TStringCore>{"Insufficient parameters to format string (have %1, need %2: "
                                             "format string = \"%3\")"});
            std::unique_ptr<VantrelException> const clone(exception.Clone());
            EXPECT_THROW(clone->Throw(), TFormatStringCore::Exception);
        }
        format.arg(Strings(static_cast<std::size_t>(row.need), u"x"));
        EXPECT_NO_THROW(format.result());
    }
}

TEST(TFormatStringCore, CopiesAreIndependent)
{
    TFormatStringCore original(u"%1 and %2, which is a long text");
    original.arg(u"a").arg(u"b");
    TFormatStringCore copy = original;
    copy = u"%2%1";
    copy.arg(u"ignored");
    EXPECT_EQ(copy.result(), u"ba");
    EXPECT_EQ(original.result(), u"a and b, which is a long text");
    original.clearParms();
    EXPECT_EQ(copy.result(), u"ba");
    original = copy;
    copy.clearParms();
    EXPECT_EQ(original.result(), u"ba");

    TFormatStringCore moved = std::move(original);
    EXPECT_EQ(moved.result(), u"ba");
    EXPECT_EQ(original.result(), u"") << "the empty format, without markers";
    original = std::move(moved);
    EXPECT_EQ(original.result(), u"ba");
    EXPECT_EQ(moved.result(), u"");
    auto &same = original;
    original = same;
    original = std::move(same);
    EXPECT_EQ(original.result(), u"ba");
    original = original.formatString();
    EXPECT_EQ(original.result(), u"ba");
}
