#include "vansys/TScanStringCore.h"

#include "support/RecordedAssertions.h"

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace
{

/// The message of the exception that `action` throws; empty when it throws none.
TStringCore FailureOf(std::function<void()> const &action)
{
    try
    {
        action();
    }
    catch (TScanStringCore::Exception const &exception)
    {
        EXPECT_EQ(exception.GetMessages().size(), 1u);
        EXPECT_TRUE(exception.GetRedactedMessages().empty());
        return exception.GetMessagesFront();
    }
    return TStringCore();
}

std::vector<TWideTwin> TwinOf(TStringCore const &text)
{
    std::vector<TWideTwin> result(static_cast<std::size_t>(text.length()) + 1);
    text.toWCharArray(result.data(), text.length() + 1);
    return result;
}

constexpr char NoNewline[] = "TScanStringCore::lengthNewLine: No new line found.";
constexpr char NoBool[] = "TScanStringCore::lengthBool: Boolean value not found.";
constexpr char NoInt[] = "TScanStringCore::lengthInt: Integer value not found.";
constexpr char NoFloat[] = "TScanStringCore::lengthFloat: Float value not found.";
constexpr int Fails = -1;

} // namespace

/// Each function over both wide types, and the skip of the same name.
TEST(TScanStringCore, Measures)
{
    struct Item
    {
        TStringCore text;
        int length;
    };

    struct Row
    {
        std::function<int(TCodeUnit const *)> measure;
        std::function<int(TWideTwin const *)> measureTwin;
        std::function<void(TScanStringCore &)> skip;
        char const *failure;
        std::vector<Item> items;
    };

#define FUNCTION(name, ...)                                                                                  \
    [](TCodeUnit const *text) { return TScanStringCore::length##name(text __VA_OPT__(, ) __VA_ARGS__); },    \
        [](TWideTwin const *text)                                                                            \
    { return TScanStringCore::length##name(text __VA_OPT__(, ) __VA_ARGS__); },                              \
        [](TScanStringCore &scan) { scan.skip##name(__VA_ARGS__); }

    Row const rows[] = {
        {FUNCTION(AnyOf, u"ab\u20AC"), "", {{u"", 0}, {u"ba\u20ACab", 5}, {u"abc", 2}, {u"cab", 0}}},
        {FUNCTION(AnyOf, nullptr), "", {{u"ab", 0}}},
        {FUNCTION(AnyOf, TStringCore(u"\0a", 2)), "", {{u"aa", 2}}},
        {FUNCTION(AnyNotOf, 'b'), "", {{u"xyzb", 3}, {u"xyz", 3}, {u"b", 0}}},
        {FUNCTION(Whitespace), "", {{u" \t\r\n\u00A0\u3000x", 6}, {u"x ", 0}}},
        {FUNCTION(NonWhitespace), "", {{u"x\u20AC y", 2}, {u" x", 0}, {TStringCore(u'x', 300), 300}}},
        {FUNCTION(String, 3), "", {{u"ab", 2}, {u"abcd", 3}}},
        {FUNCTION(String, -1), "", {{u"", 0}, {u"abcd", 4}}},
        {FUNCTION(Line), "", {{u"ab\r\nc", 3}, {u"ab\r", 3}, {u"\nab", 0}}},
        {FUNCTION(Newline),
         NoNewline,
         {{u"", 0}, {u"\r\n\n", 2}, {u"\n\r\n", 2}, {u"\n\n", 1}, {u"\rx", 1}, {u"x\n", Fails}}},
        {FUNCTION(Bool),
         NoBool,
         {{u"10", 1},
          {u"00", 1},
          {u"TRUEst", 4},
          {u"False", 5},
          {u"YES", 3},
          {u"nope", 2},
          {u"tru", Fails},
          {u"y", Fails},
          {u" 1", Fails},
          {u"", Fails}}},
        {FUNCTION(Int),
         NoInt,
         {{u"-12x", 3}, {u"7", 1}, {u"0x1F", 1}, {u"-", Fails}, {u" 1", Fails}, {u"", Fails}}},
        {FUNCTION(Int, 0), NoInt, {{u"7 ", 1}, {u"0x1F.", 4}, {u" 7", Fails}, {u"", Fails}}},
        {FUNCTION(Int, 16), NoInt, {{u"fFg", 2}, {u"0x1Fx", 4}, {u"0x", Fails}, {u"-1", Fails}}},
        {FUNCTION(Float),
         NoFloat,
         {{u"1.5e3,", 5},
          {u"-.5.5", 3},
          {u"1e+", 1},
          {u"infinite", 3},
          {u"infinity", 8},
          {u".", Fails},
          {u"", Fails}}},
    };
#undef FUNCTION
    int index = 0;
    for (Row const &row : rows)
    {
        for (Item const &item : row.items)
        {
            SCOPED_TRACE(testing::Message() << "row " << index << ", " << testing::PrintToString(item.text));
            char const *const failure = item.length == Fails ? row.failure : "";
            int length = Fails;
            EXPECT_EQ(FailureOf([&] { length = row.measure(item.text.constData()); }), failure);
            EXPECT_EQ(length, item.length);
            length = Fails;
            EXPECT_EQ(FailureOf([&] { length = row.measureTwin(TwinOf(item.text).data()); }), failure);
            EXPECT_EQ(length, item.length);

            TStringCore const text = TStringCore(u"<< ").append(item.text);
            TScanStringCore scan(text);
            scan.skip(u"<< ");
            EXPECT_EQ(FailureOf([&] { row.skip(scan); }), failure);
            EXPECT_EQ(scan.index(), 3 + std::max(item.length, 0));
        }
        ++index;
    }
    // The counts of the other type are its own.
    EXPECT_EQ(TScanStringCore::lengthNonWhitespace(L"\U0001F600\U0001F600 "), sizeof(wchar_t) == 2 ? 4 : 2);
    EXPECT_EQ(TScanStringCore::lengthString(L"\U0001F600\U0001F600 ", 2), 2);
    EXPECT_EQ(TScanStringCore::lengthLine(static_cast<TCodeUnit const *>(nullptr)), 0);
    EXPECT_EQ(TScanStringCore::lengthFloat(TwinOf(TStringCore(u'7', 200).append("e+x")).data()), 200);
    for (int digits = 1; digits < 200; ++digits)
        EXPECT_EQ(TScanStringCore::lengthFloat(TwinOf(TStringCore(u'7', digits).append("e+5 ")).data()),
                  digits + 3);
    EXPECT_THROW(TScanStringCore::lengthInt(TStringCore(u"7"), 0), TStringCore::Exception)
        << "base 0 wants two units";
}

/// Each function has to do with its item, and not with all that follows.
TEST(TScanStringCore, CostsWhatTheItemCosts)
{
    using Scan = TScanStringCore;
    static int number;
    static double value;
    static TStringCore text;
    static std::vector<TWideTwin> twin;
    static auto const twinAt = [](Scan const &scan) { return twin.data() + scan.index(); };
    std::function<void(Scan &)> const operations[] = {
        [](Scan &s) { s.skipBool(); },
        [](Scan &s) { s.readInt(number); },
        [](Scan &s) { s.readInt(number, 16); },
        [](Scan &s) { s.skipInt(0); },
        [](Scan &s) { s.readFloat(value); },
        [](Scan &s) { s.skip(u"1").skipWhitespace().skipAnyOf("x").skipAnyNotOf(u'-'); },
        [](Scan &s) { s.skipString(Scan::lengthInt(twinAt(s)) * Scan::lengthFloat(twinAt(s))); },
        [](Scan &s) { s.skipString(Scan::lengthBool(twinAt(s)) * Scan::lengthString(twinAt(s), 1)); },
    };
    text = TStringCore(u"1-").repeated(150000);
    twin = TwinOf(text);
    for (std::size_t i = 0; i < std::size(operations); ++i)
    {
        Scan scan(text);
        std::clock_t const limit = std::clock() + 4 * CLOCKS_PER_SEC;
        while (scan.index() < text.length())
        {
            operations[i](scan);
            scan.skipString(1);
            ASSERT_TRUE(scan.index() % 1024 != 0 || std::clock() < limit) << "operation " << i;
        }
    }
}

TEST(TScanStringCore, ReadsInAChain)
{
    TStringCore const text(u"key = value 42, 0x2A yes 2.5 1e400 -inf;;end");
    TStringCore key, value, rest;
    int decimal = 0;
    unsigned short hexadecimal = 0;
    bool flag = false;
    double number = 0;
    float large = 0, infinite = 0;
    TScanStringCore scan(text);
    scan.readAnyOf(key, "eky").skip(" = ").readNonWhitespace(value).skip(u' ').readInt(decimal).skip(L", ");
    scan.readInt(hexadecimal, 0).skipWhitespace().readBool(flag).skipWhitespace().readFloat(number);
    scan.skipWhitespace().readFloat(large).skipWhitespace().readFloat(infinite);
    EXPECT_EQ(scan.str()[scan.index()], u';');
    TScanStringCore copy = scan;
    scan.skipAnyOf(u";").readString(rest, -1).end();
    EXPECT_EQ(TStringCore::join({key, value, rest}, u","), u"key,value,end");
    EXPECT_TRUE(decimal == 42 && hexadecimal == 0x2A && flag && number == 2.5);
    EXPECT_EQ(large, std::numeric_limits<float>::infinity());
    EXPECT_EQ(infinite, -std::numeric_limits<float>::infinity());
    EXPECT_EQ(scan.index(), text.length());
    EXPECT_EQ(scan.str(), text.constData()) << "borrowed";

    copy.readAnyNotOf(rest, u"d").readString(value, 100);
    EXPECT_EQ(rest, u";;en");
    EXPECT_EQ(value, u"d");
    copy = TScanStringCore(rest);
    EXPECT_EQ(copy.skipString(2).reset().index(), 0);
}

TEST(TScanStringCore, ReadsWhatNumberWrites)
{
    using Long = std::numeric_limits<long long>;
    for (int base = 2; base <= 36; ++base)
    {
        for (long long const number : {0LL, -255LL, 255LL, Long::min(), Long::max()})
        {
            TStringCore const text = TStringCore::number(number, base).append(u'|');
            long long value = 77;
            EXPECT_EQ(TScanStringCore(text).readInt(value, base).skip('|').index(), text.length());
            EXPECT_EQ(value, number) << "base " << base;
        }
    }
    signed char small = 0;
    unsigned long long greatest = 0;
    TStringCore const text = u"+0x1F -10|18446744073709551615 7,";
    TScanStringCore(text)
        .readInt(small, 16)
        .skip(" ")
        .readInt(small, 2)
        .skip("|")
        .readInt(greatest)
        .skip(" ")
        .readInt(small, 0)
        .skip(',')
        .end();
    EXPECT_EQ(greatest, std::numeric_limits<unsigned long long>::max());
    EXPECT_EQ(small, 7);
}

TEST(TScanStringCore, ReadsLines)
{
    // LF CR is one line end too, so that an empty line between two CR LF loses one of its halves.
    for (std::vector<TStringCore> const &row :
         std::vector<std::vector<TStringCore>>{{u"a,b\r\nc", u"a,b\r", u"c"},
                                               {u"a\n\nb", u"a", u"", u"b"},
                                               {u"a\n\rb\n", u"a", u"b"},
                                               {u"a\r\n\r\nb", u"a\r", u"", u"b"},
                                               {u"\rb", u"\rb"},
                                               {u"none", u"none"}})
    {
        SCOPED_TRACE(testing::PrintToString(row[0]));
        TScanStringCore scan(row[0]);
        TStringCore line;
        for (std::size_t i = 1; i < row.size(); ++i)
        {
            scan.readLine(line);
            EXPECT_EQ(line, row[i]);
        }
        EXPECT_EQ(scan.end().readLine(line).index(), row[0].length());
        EXPECT_EQ(line, u"");
    }
}

TEST(TScanStringCore, FailuresLeaveCursorAndOutput)
{
    struct Row
    {
        TStringCore text; ///< after the first unit
        std::function<void(TScanStringCore &)> read;
        char const *failure;
    };

    static bool flag;
    static int number;
    static unsigned char byte;
    static unsigned long long wide;
    static float single;
    static double twice;
    constexpr char noInt[] = "TScanStringCore::readInt: Integer value not found.";
    constexpr char outOfRange[] = "TScanStringCore::readInt: Integer value out of range.";
    constexpr char mismatch[] = "TScanStringCore::skip: String mismatch.";
    Row const rows[] = {
        {u"maybe", [](TScanStringCore &s) { s.readBool(flag); }, NoBool},
        {u"x", [](TScanStringCore &s) { s.readInt(number); }, noInt},
        {u"--1", [](TScanStringCore &s) { s.readInt(number, 8); }, noInt},
        {u"2147483648", [](TScanStringCore &s) { s.readInt(number); }, outOfRange},
        {u"-2147483649", [](TScanStringCore &s) { s.readInt(number); }, outOfRange},
        {u"256", [](TScanStringCore &s) { s.readInt(byte); }, outOfRange},
        {u"-f", [](TScanStringCore &s) { s.readInt(wide, 16); }, outOfRange},
        {u"18446744073709551616", [](TScanStringCore &s) { s.readInt(wide); }, outOfRange},
        {u"129", [](TScanStringCore &s) { s.readInt(number, 8); }, outOfRange},
        {u"x", [](TScanStringCore &s) { s.readFloat(single); },
         "TScanStringCore::readFloat: Float value not found."},
        {u"+", [](TScanStringCore &s) { s.readFloat(twice); },
         "TScanStringCore::readDouble: Float value not found."},
        {u"Key", [](TScanStringCore &s) { s.skip(u"key"); }, mismatch},
        {u"ke", [](TScanStringCore &s) { s.skip(TStringCore(u"ke\0", 3)); }, mismatch},
        {u" ", [](TScanStringCore &s) { s.end(); }, "TScanStringCore::end(): Expected null character."},
    };
    for (Row const &row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.text));
        flag = true;
        number = byte = 77;
        wide = 77;
        twice = single = 77;
        TStringCore const text = TStringCore(u"|").append(row.text);
        TScanStringCore scan(text);
        scan.skipString(1);
        EXPECT_EQ(FailureOf([&] { row.read(scan); }), row.failure);
        EXPECT_EQ(scan.index(), 1);
        EXPECT_TRUE(flag && number == 77 && byte == 77 && wide == 77 && single == 77 && twice == 77);
    }
}

TEST(TScanStringCore, ReportsNull)
{
    TCodeUnit const *const null = nullptr;
    std::string const report = "vansys/main/vansys/TScanStringCore:223: m_input";
    {
        RecordedAssertions const recorded;
        TScanStringCore scan(null);
        scan.reset();
        EXPECT_EQ(RecordedAssertions::Take(), std::vector<std::string>(2, report));
        TStringCore line(u"before");
        EXPECT_EQ(scan.readLine(line).skipWhitespace().skipNewline().end().str(), null);
        EXPECT_EQ(line, u"");
    }
    EXPECT_THROW(TScanStringCore{null}, VantrelException);
}

TEST(TScanStringCore, ExceptionKeepsItsType)
{
    TScanStringCore::Exception const exception(u"while reading");
    std::unique_ptr<VantrelException> const clone(exception.Clone());
    EXPECT_THROW(clone->Throw(), TScanStringCore::Exception);
}
