#include "vansys/TScanStringCore.h"

#include "support/FailureMessage.h"
#include "support/RecordedAssertions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace
{

using Scan = TScanStringCore;

template <class Action>
TStringCore FailureOf(Action const &action)
{
    return FailureMessage<Scan::Exception>(action);
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
} // namespace

/// Each function over both wide types, and the skip of the same name. In the texts, which bars divide, the
/// item reaches to the "^"; where there is none, the function fails.
TEST(TScanStringCore, Measures)
{
    struct Row
    {
        std::function<int(TCodeUnit const *)> measure;
        std::function<int(TWideTwin const *)> measureTwin;
        std::function<void(Scan &)> skip;
        char const *failure;
        TStringCore texts;
    };

#define FUNCTION(name, ...)                                                                                  \
    [](TCodeUnit const *text) { return Scan::length##name(text __VA_OPT__(, ) __VA_ARGS__); },               \
        [](TWideTwin const *text) { return Scan::length##name(text __VA_OPT__(, ) __VA_ARGS__); },           \
        [](Scan &scan) { scan.skip##name(__VA_ARGS__); }

    Row const rows[] = {
        {FUNCTION(AnyOf, u"ab\u20AC"), "", u"^|ba\u20ACab^|ab^c|^cab"},
        {FUNCTION(AnyOf, nullptr), "", u"^ab"},
        {FUNCTION(AnyNotOf, 'b'), "", u"xyz^b|xyz^|^b"},
        {FUNCTION(Whitespace), "", u" \t\r\n\u00A0\u3000^x|^x "},
        {FUNCTION(NonWhitespace), "",
         TStringCore(u"x\u20AC^ y|^ x|").append(TStringCore(u'x', 300)).append('^')},
        {FUNCTION(String, 3), "", u"ab^|abc^d"},
        {FUNCTION(String, -1), "", u"^|abcd^"},
        {FUNCTION(Line), "", u"ab\r^\nc|ab\r^|^\nab"},
        {FUNCTION(Newline), NoNewline, u"^|\r\n^\n|\n\r^\n|\n^\n|\r^x|x\n"},
        {FUNCTION(Bool), NoBool, u"1^0|0^0|TRUE^st|False^|YES^|no^pe|tru| 1|"},
        {FUNCTION(Int), NoInt, u"-12^x|7^|0^x1F|-| 1|"},
        {FUNCTION(Int, 0), NoInt, u"7^ |0x1F^.| 7|"},
        {FUNCTION(Int, 16), NoInt, u"fF^g|0x1F^x|0x|-1"},
        {FUNCTION(Float), NoFloat, u"1.5e3^,|-.5^.5|1^e+|inf^inite|infinity^|.|"},
    };
#undef FUNCTION
    for (Row const &row : rows)
    {
        for (TStringCore const &marked : row.texts.split(u'|'))
        {
            SCOPED_TRACE(testing::PrintToString(marked) + " of " + testing::PrintToString(row.texts));
            int const expected = marked.indexOf(u'^');
            char const *const failure = expected < 0 ? row.failure : "";
            TStringCore const text = TStringCore(u"<< ").append(TStringCore(marked).removeAll(u'^'));
            std::vector<TWideTwin> const twin = TwinOf(text);
            Scan scan(text);
            scan.skip(u"<< ");
            int length = -1, twinLength = -1;
            EXPECT_EQ(FailureOf([&] { length = row.measure(text.constData() + 3); }), failure);
            EXPECT_EQ(FailureOf([&] { twinLength = row.measureTwin(twin.data() + 3); }), failure);
            EXPECT_EQ(FailureOf([&] { row.skip(scan); }), failure);
            EXPECT_TRUE(length == expected && twinLength == expected) << length << ", " << twinLength;
            EXPECT_EQ(scan.index(), 3 + std::max(expected, 0));
        }
    }
    // The counts of the other type are its own. It is looked at in portions, which must not cut an item.
    EXPECT_EQ(Scan::lengthNonWhitespace(L"\U0001F600\U0001F600 "), sizeof(wchar_t) == 2 ? 4 : 2);
    EXPECT_EQ(Scan::lengthString(L"\U0001F600\U0001F600 ", 2), 2);
    for (int digits = 1; digits < 200; ++digits)
        EXPECT_EQ(Scan::lengthFloat(TwinOf(TStringCore(u'7', digits).append("e+5 ")).data()), digits + 3);
    EXPECT_EQ(Scan::lengthLine(static_cast<TCodeUnit const *>(nullptr)), 0);
    EXPECT_THROW(Scan::lengthInt(TStringCore(u"7"), 0), TStringCore::Exception) << "base 0 wants two units";
}

/// Each function has to do with its item, and not with all that follows.
TEST(TScanStringCore, CostsWhatTheItemCosts)
{
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
    Scan scan(text);
    scan.readAnyOf(key, "eky").skip(" = ").readNonWhitespace(value).skip(u' ').readInt(decimal).skip(L", ");
    scan.readInt(hexadecimal, 0).skipWhitespace().readBool(flag).skipWhitespace().readFloat(number);
    scan.skipWhitespace().readFloat(large).skipWhitespace().readFloat(infinite);
    Scan copy = scan;
    EXPECT_EQ(scan.skipAnyOf(u";").readString(rest, -1).end().index(), text.length());
    EXPECT_EQ(TStringCore::join({key, value, rest}, u","), u"key,value,end");
    EXPECT_TRUE(decimal == 42 && hexadecimal == 0x2A && flag && number == 2.5);
    EXPECT_EQ(large, std::numeric_limits<float>::infinity());
    EXPECT_EQ(infinite, -std::numeric_limits<float>::infinity());
    copy.readAnyNotOf(rest, u"d").readString(value, 100);
    EXPECT_EQ(TStringCore::join({rest, value}, u","), u";;en,d");
    EXPECT_EQ(copy.reset().index(), 0);
    EXPECT_EQ(copy.str(), text.constData()) << "borrowed";
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
            EXPECT_EQ(Scan(text).readInt(value, base).skip('|').index(), text.length());
            EXPECT_EQ(value, number) << "base " << base;
        }
    }
    signed char small = 0;
    unsigned long long greatest = 0;
    TStringCore const text = u"18446744073709551615 -10,+0x1F|7|";
    Scan(text).readInt(greatest).skip(" ").readInt(small, 2).skip(",").readInt(small, 16).skip("|").readInt(
        small, 0);
    EXPECT_EQ(greatest, std::numeric_limits<unsigned long long>::max());
    EXPECT_EQ(small, 7);
}

TEST(TScanStringCore, ReadsLines)
{
    // LF CR is one line end too, so that an empty line between two CR LF loses one of its halves.
    TStringCore const text = u"a,b\r\n\nb\n\rc\r\n\r\n\rd\re";
    Scan scan(text);
    for (TStringCore const expected : {u"a,b\r", u"", u"b", u"c\r", u"", u"d\re", u""})
    {
        TStringCore line(u"before");
        scan.readLine(line);
        EXPECT_EQ(line, expected);
    }
    EXPECT_EQ(scan.end().index(), text.length());
}

TEST(TScanStringCore, FailuresLeaveCursorAndOutput)
{
    struct Outputs
    {
        bool operator==(Outputs const &) const = default;

        bool flag = true;
        int number = 77;
        unsigned char byte = 77;
        unsigned long long wide = 77;
        float single = 77;
        double twice = 77;
    };

    using O = Outputs;
    struct Row
    {
        TStringCore text; ///< after the first unit
        std::function<void(Scan &, Outputs &)> read;
        char const *failure;
    };

    Row const rows[] = {
        {u"maybe", [](Scan &s, O &o) { s.readBool(o.flag); }, "lengthBool: Boolean value not found."},
        {u"x", [](Scan &s, O &o) { s.readInt(o.number); }, "readInt: Integer value not found."},
        {u"--1", [](Scan &s, O &o) { s.readInt(o.number, 8); }, "readInt: Integer value not found."},
        {u"2147483648", [](Scan &s, O &o) { s.readInt(o.number); }, "readInt: Integer value out of range."},
        {u"-2147483649", [](Scan &s, O &o) { s.readInt(o.number); }, "readInt: Integer value out of range."},
        {u"256", [](Scan &s, O &o) { s.readInt(o.byte); }, "readInt: Integer value out of range."},
        {u"-f", [](Scan &s, O &o) { s.readInt(o.wide, 16); }, "readInt: Integer value out of range."},
        {u"129", [](Scan &s, O &o) { s.readInt(o.number, 8); }, "readInt: Integer value out of range."},
        {u"x", [](Scan &s, O &o) { s.readFloat(o.single); }, "readFloat: Float value not found."},
        {u"+", [](Scan &s, O &o) { s.readFloat(o.twice); }, "readDouble: Float value not found."},
        {u"Key", [](Scan &s, O &) { s.skip(u"key"); }, "skip: String mismatch."},
        {u"ke", [](Scan &s, O &) { s.skip(TStringCore(u"ke\0", 3)); }, "skip: String mismatch."},
        {u" ", [](Scan &s, O &) { s.end(); }, "end(): Expected null character."},
    };
    for (Row const &row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.text));
        TStringCore const text = TStringCore(u"|").append(row.text);
        Scan scan(text);
        scan.skipString(1);
        Outputs outputs;
        EXPECT_EQ(FailureOf([&] { row.read(scan, outputs); }),
                  TStringCore("TScanStringCore::").append(row.failure));
        EXPECT_EQ(scan.index(), 1);
        EXPECT_TRUE(outputs == Outputs());
    }
}

TEST(TScanStringCore, ReportsNullAndThrowsItsType)
{
    TCodeUnit const *const null = nullptr;
    std::string const report = "vansys/main/vansys/TScanStringCore:223: m_input";
    {
        RecordedAssertions const recorded;
        Scan scan(null);
        scan.reset();
        EXPECT_EQ(RecordedAssertions::Take(), std::vector<std::string>(2, report));
        TStringCore line(u"before");
        EXPECT_EQ(scan.readLine(line).skipWhitespace().skipNewline().end().str(), null);
        EXPECT_EQ(line, u"");
    }
    EXPECT_THROW(Scan{null}, VantrelException);
    std::unique_ptr<VantrelException> const clone(Scan::Exception(u"x").Clone());
    EXPECT_THROW(clone->Throw(), Scan::Exception) << "its own type";
}
