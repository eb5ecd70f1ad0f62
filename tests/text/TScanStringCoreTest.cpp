#include "vansys/TScanStringCore.h"
#include "vansys/AssertHooks.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace
{

/// The message of the exception that `action` throws; empty when it throws none.
TStringCore failureOf(std::function<void()> const &action)
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

std::basic_string<TWideTwin> twinOf(TStringCore const &text)
{
    std::vector<TWideTwin> buffer(static_cast<std::size_t>(text.length()) + 1);
    text.toWCharArray(buffer.data(), text.length() + 1);
    return buffer.data();
}

constexpr char NoNewline[] = "TScanStringCore::lengthNewLine: No new line found.";
constexpr char NoBool[] = "TScanStringCore::lengthBool: Boolean value not found.";
constexpr char NoInt[] = "TScanStringCore::lengthInt: Integer value not found.";
constexpr char NoFloat[] = "TScanStringCore::lengthFloat: Float value not found.";

} // namespace

/// Each function over both wide types, as itself and as the skip of the same name.
TEST(TScanStringCore, Measures)
{
    struct Function
    {
        std::function<int(TCodeUnit const *)> measure;
        std::function<int(TWideTwin const *)> measureTwin;
        std::function<void(TScanStringCore &)> skip;
    };

    struct Row
    {
        Function const &function;
        TStringCore text;
        int length;
        char const *failure = "";
    };

#define FUNCTION(name, length, skip, arguments, ...)                                                         \
    Function const name = {                                                                                  \
        [](TCodeUnit const *text) { return TScanStringCore::length(text __VA_ARGS__); },                     \
        [](TWideTwin const *text) { return TScanStringCore::length(text __VA_ARGS__); },                     \
        [](TScanStringCore &scan) { scan.skip arguments; }                                                   \
    }
    FUNCTION(anyOf, lengthAnyOf, skipAnyOf, (u"ab\u20AC"), , u"ab\u20AC");
    FUNCTION(anyOfNone, lengthAnyOf, skipAnyOf, (nullptr), , nullptr);
    FUNCTION(anyOfOne, lengthAnyOf, skipAnyOf, ('a'), , 'a');
    FUNCTION(anyOfZero, lengthAnyOf, skipAnyOf, (TStringCore(u"\0a", 2)), , TStringCore(u"\0a", 2));
    FUNCTION(anyNotOf, lengthAnyNotOf, skipAnyNotOf, ("ab"), , "ab");
    FUNCTION(space, lengthWhitespace, skipWhitespace, ());
    FUNCTION(nonSpace, lengthNonWhitespace, skipNonWhitespace, ());
    FUNCTION(three, lengthString, skipString, (3), , 3);
    FUNCTION(all, lengthString, skipString, (-1), , -1);
    FUNCTION(line, lengthLine, skipLine, ());
    FUNCTION(newline, lengthNewline, skipNewline, ());
    FUNCTION(boolean, lengthBool, skipBool, ());
    FUNCTION(decimal, lengthInt, skipInt, ());
    FUNCTION(anyBase, lengthInt, skipInt, (0), , 0);
    FUNCTION(hexadecimal, lengthInt, skipInt, (16), , 16);
    FUNCTION(floating, lengthFloat, skipFloat, ());
#undef FUNCTION

    Row const rows[] = {
        {anyOf, u"", 0},
        {anyOf, u"ba\u20ACab", 5},
        {anyOf, u"abc", 2},
        {anyOf, u"cab", 0},
        {anyOfNone, u"ab", 0},
        {anyOfOne, u"aab", 2},
        {anyOfZero, u"aa", 2},
        {anyNotOf, u"xyzb", 3},
        {anyNotOf, u"xyz", 3},
        {anyNotOf, u"a", 0},
        {space, u" \t\r\n\u00A0\u3000x", 6},
        {space, u"x ", 0},
        {nonSpace, u"x\u20AC y", 2},
        {nonSpace, u" x", 0},
        {three, u"ab", 2},
        {three, u"abcd", 3},
        {all, u"", 0},
        {all, u"abcd", 4},
        {line, u"ab\r\nc", 3},
        {line, u"ab\r", 3},
        {line, u"\nab", 0},
        {newline, u"", 0},
        {newline, u"\r\n\n", 2},
        {newline, u"\n\r\n", 2},
        {newline, u"\n\n", 1},
        {newline, u"\r\r", 1},
        {newline, u"\n", 1},
        {newline, u"\rx", 1},
        {newline, u"x\n", 0, NoNewline},
        {newline, u"\u2028", 0, NoNewline},
        {boolean, u"1", 1},
        {boolean, u"10", 1},
        {boolean, u"00", 1},
        {boolean, u"TRUEst", 4},
        {boolean, u"False", 5},
        {boolean, u"YES", 3},
        {boolean, u"nope", 2},
        {boolean, u"tru", 0, NoBool},
        {boolean, u"y", 0, NoBool},
        {boolean, u" 1", 0, NoBool},
        {boolean, u"", 0, NoBool},
        {decimal, u"-12x", 3},
        {decimal, u"7", 1},
        {decimal, u"0x1F", 1},
        {decimal, u"-", 0, NoInt},
        {decimal, u" 1", 0, NoInt},
        {decimal, u"", 0, NoInt},
        {anyBase, u"7 ", 1},
        {anyBase, u"0x1F.", 4},
        {anyBase, u" 7", 0, NoInt},
        {anyBase, u"", 0, NoInt},
        {hexadecimal, u"fFg", 2},
        {hexadecimal, u"-1", 0, NoInt},
        {floating, u"1.5e3,", 5},
        {floating, u"-.5.5", 3},
        {floating, u"1e+", 1},
        {floating, u"infinite", 3},
        {floating, u".", 0, NoFloat},
        {floating, u"", 0, NoFloat},
    };
    int index = 0;
    for (Row const &row : rows)
    {
        SCOPED_TRACE(testing::Message() << "row " << index++ << ", " << testing::PrintToString(row.text));
        int length = 0;
        EXPECT_EQ(failureOf([&] { length = row.function.measure(row.text.constData()); }), row.failure);
        EXPECT_EQ(length, row.length);
        length = 0;
        EXPECT_EQ(failureOf([&] { length = row.function.measureTwin(twinOf(row.text).c_str()); }),
                  row.failure);
        EXPECT_EQ(length, row.length);

        TStringCore const text = TStringCore(u"<< ").append(row.text);
        TScanStringCore scan(text);
        scan.skip(u"<< ");
        EXPECT_EQ(failureOf([&] { row.function.skip(scan); }), row.failure);
        EXPECT_EQ(scan.index(), 3 + row.length);
    }
    // The counts of the other type are its own.
    EXPECT_EQ(TScanStringCore::lengthNonWhitespace(L"\U0001F600\U0001F600 "), sizeof(wchar_t) == 2 ? 4 : 2);
    EXPECT_EQ(TScanStringCore::lengthString(L"\U0001F600\U0001F600 ", 2), 2);
    EXPECT_EQ(TScanStringCore::lengthLine(static_cast<TCodeUnit const *>(nullptr)), 0);
    EXPECT_EQ(TScanStringCore::lengthString(static_cast<TWideTwin const *>(nullptr), 3), 0);
    EXPECT_THROW(TScanStringCore::lengthInt(TStringCore(u"7"), 0), TStringCore::Exception)
        << "base 0 wants two units";
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
    EXPECT_EQ(key, u"key");
    EXPECT_EQ(value, u"value");
    EXPECT_EQ(decimal, 42);
    EXPECT_EQ(hexadecimal, 0x2A);
    EXPECT_TRUE(flag);
    EXPECT_EQ(number, 2.5);
    EXPECT_EQ(large, std::numeric_limits<float>::infinity());
    EXPECT_EQ(infinite, -std::numeric_limits<float>::infinity());
    EXPECT_EQ(rest, u"end");
    EXPECT_EQ(scan.index(), text.length());

    copy.readAnyNotOf(rest, u"d").readString(value, 100);
    EXPECT_EQ(rest, u";;en");
    EXPECT_EQ(value, u"d");
    copy = TScanStringCore(rest);
    EXPECT_EQ(copy.skipString(2).reset().index(), 0);
    EXPECT_EQ(TStringCore(scan.str()), text);
    EXPECT_EQ(scan.str(), text.constData()) << "borrowed";
}

TEST(TScanStringCore, ReadsLines)
{
    struct Row
    {
        TStringCore text;
        std::vector<TStringCore> lines;
    };

    // LF CR is one line end too, so that an empty line between two CR LF loses one of its halves.
    Row const rows[] = {
        {u"a,b\r\nc", {u"a,b\r", u"c"}},
        {u"a\n\nb", {u"a", u"", u"b"}},
        {u"a\n\rb\n", {u"a", u"b"}},
        {u"a\r\n\r\nb", {u"a\r", u"", u"b"}},
        {u"\rb", {u"\rb"}},
        {u"none", {u"none"}},
    };
    for (Row const &row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.text));
        TScanStringCore scan(row.text);
        for (TStringCore const &expected : row.lines)
        {
            TStringCore line(u"before");
            scan.readLine(line);
            EXPECT_EQ(line, expected);
        }
        EXPECT_NO_THROW(scan.end());
        TStringCore line(u"before");
        EXPECT_EQ(scan.readLine(line).index(), row.text.length());
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
        {u"2147483648", [](TScanStringCore &s) { s.readInt(number); }, outOfRange},
        {u"-2147483649", [](TScanStringCore &s) { s.readInt(number); }, outOfRange},
        {u"256", [](TScanStringCore &s) { s.readInt(byte); }, outOfRange},
        {u"-1", [](TScanStringCore &s) { s.readInt(wide); }, outOfRange},
        {u"18446744073709551616", [](TScanStringCore &s) { s.readInt(wide); }, outOfRange},
        {u"129", [](TScanStringCore &s) { s.readInt(number, 8); }, outOfRange},
        {u"x", [](TScanStringCore &s) { s.readFloat(single); },
         "TScanStringCore::readFloat: Float value not found."},
        {u"+", [](TScanStringCore &s) { s.readFloat(twice); },
         "TScanStringCore::readDouble: Float value not found."},
        {u"Key", [](TScanStringCore &s) { s.skip(u"key"); }, mismatch},
        {u"ke", [](TScanStringCore &s) { s.skip("key"); }, mismatch},
        {u"ke", [](TScanStringCore &s) { s.skip(TStringCore(u"ke\0", 3)); }, mismatch},
        {u" ", [](TScanStringCore &s) { s.end(); }, "TScanStringCore::end(): Expected null character."},
    };
    for (Row const &row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.text));
        flag = true;
        number = 77;
        byte = 77;
        wide = 77;
        single = 77;
        twice = 77;
        TStringCore const text = TStringCore(u"|").append(row.text);
        TScanStringCore scan(text);
        scan.skipString(1);
        EXPECT_EQ(failureOf([&] { row.read(scan); }), row.failure);
        EXPECT_EQ(scan.index(), 1);
        EXPECT_TRUE(flag && number == 77 && byte == 77 && wide == 77 && single == 77 && twice == 77);
    }
    long long least = 0;
    unsigned long long greatest = 0;
    signed char digit = 0;
    TStringCore const text = u"-9223372036854775808 18446744073709551615 7,";
    TScanStringCore scan(text);
    scan.readInt(least).skip(' ').readInt(greatest).skip(' ').readInt(digit, 0).skip(',').end();
    EXPECT_EQ(least, std::numeric_limits<long long>::min());
    EXPECT_EQ(greatest, std::numeric_limits<unsigned long long>::max());
    EXPECT_EQ(digit, 7);
}

TEST(TScanStringCore, ReportsNull)
{
    static std::string reported;
    reported.clear();
    TCodeUnit const *const null = nullptr;
    AssertHooks::SetLogicAssertHook(
        [](char const *file, int line, char const *expression)
        { reported += std::string(file) + ":" + std::to_string(line) + ":" + expression + ";"; });
    TScanStringCore scan(null);
    scan.reset();
    EXPECT_EQ(
        reported,
        "vansys/main/vansys/TScanStringCore:223:m_input;vansys/main/vansys/TScanStringCore:223:m_input;");
    TStringCore line(u"before");
    EXPECT_EQ(scan.readLine(line).skipWhitespace().skipNewline().end().str(), null);
    EXPECT_EQ(line, u"");
    AssertHooks::SetLogicAssertHook(nullptr);
    EXPECT_THROW(TScanStringCore{null}, VantrelException);
    EXPECT_THROW(scan.reset(), VantrelException);
}

TEST(TScanStringCore, ExceptionKeepsItsType)
{
    TStringCore const text = u"x";
    try
    {
        try
        {
            TScanStringCore(text).end();
        }
        catch (...)
        {
            StackExceptionAndRethrow("while reading");
        }
    }
    catch (TScanStringCore::Exception const &exception)
    {
        EXPECT_EQ(exception.GetMessages().back(), u"while reading");
        std::unique_ptr<VantrelException> const clone(exception.Clone());
        EXPECT_THROW(clone->Throw(), TScanStringCore::Exception);
        return;
    }
    FAIL();
}
