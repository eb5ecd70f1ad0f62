#include "vansys/TScanStringCore.h"

#include "support/FailureMessage.h"
#include "support/RecordedAssertions.h"
#include "support/TestText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace
{

using Scan = TScanStringCore;

auto const failureOf = [](auto const &action) { return FailureMessage<Scan::Exception>(action); };

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
            std::vector<TWideTwin> const twin = TwinElements(text);
            Scan scan(text);
            scan.skip(u"<< ");
            int length = -1, twinLength = -1;
            EXPECT_EQ(failureOf([&] { length = row.measure(text.constData() + 3); }), failure);
            EXPECT_EQ(failureOf([&] { twinLength = row.measureTwin(twin.data() + 3); }), failure);
            EXPECT_EQ(failureOf([&] { row.skip(scan); }), failure);
            EXPECT_TRUE(length == expected && twinLength == expected) << length << ", " << twinLength;
            EXPECT_EQ(scan.index(), 3 + std::max(expected, 0));
        }
    }
    // The counts of the other type are its own. It is looked at in portions, which must not cut an item.
    EXPECT_EQ(Scan::lengthNonWhitespace(L"\U0001F600\U0001F600 "), sizeof(wchar_t) == 2 ? 4 : 2);
    EXPECT_EQ(Scan::lengthString(L"\U0001F600\U0001F600 ", 2), 2);
    for (int digits = 1; digits < 200; ++digits)
        ASSERT_EQ(Scan::lengthFloat(TwinElements(TStringCore(u'7', digits).append("e+5")).data()),
                  digits + 3);
    EXPECT_THROW(Scan::lengthInt(TStringCore(u"7"), 0), TStringCore::Exception) << "base 0 wants two units";
}

/// Each function has to do with its item, and not with all that follows.
TEST(TScanStringCore, CostsWhatTheItemCosts)
{
    int number = 0;
    double value = 0;
    TStringCore const text = TStringCore(u"1-").repeated(150000);
    std::vector<TWideTwin> const twin = TwinElements(text);
    auto const at = [&](Scan const &scan) { return twin.data() + scan.index(); };
    std::function<void(Scan &)> const operations[] = {
        [&](Scan &s) { s.skipBool(); },
        [&](Scan &s) { s.readInt(number, 16); },
        [&](Scan &s) { s.skipInt(0); },
        [&](Scan &s) { s.readFloat(value); },
        [&](Scan &s) { s.skip(u"1").skipWhitespace().skipAnyOf("x").skipAnyNotOf(u'-'); },
        [&](Scan &s) { s.skipString(Scan::lengthInt(at(s)) * Scan::lengthFloat(at(s))); },
        [&](Scan &s) { s.skipString(Scan::lengthBool(at(s)) * Scan::lengthString(at(s), 1)); },
    };
    for (std::size_t i = 0; i < std::size(operations); ++i)
    {
        Scan scan(text);
        std::clock_t const limit = std::clock() + 4 * CLOCKS_PER_SEC;
        for (; scan.index() < text.length(); scan.skipString(1))
        {
            ASSERT_TRUE(scan.index() % 1024 != 0 || std::clock() < limit) << "operation " << i;
            operations[i](scan);
        }
    }
}

TEST(TScanStringCore, ReadsInAChain)
{
    TStringCore const text(u"key = value 42, 0x2A YES 2.5 1e400 -inf;;end");
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
    EXPECT_TRUE(large > std::numeric_limits<float>::max() && infinite == -large);
    copy.readAnyNotOf(rest, u"d").readString(value, 100);
    EXPECT_EQ(TStringCore::join({rest, value}, u","), u";;en,d");
    EXPECT_EQ(copy.reset().index(), 0);
    EXPECT_EQ(copy.str(), text.constData()) << "borrowed";
}

TEST(TScanStringCore, ReadsWhatNumberWrites)
{
    using Long = std::numeric_limits<long long>;
    for (int base = 2; base <= 36; ++base)
        for (long long const number : {0LL, -255LL, 255LL, Long::min(), Long::max()})
        {
            TStringCore const text = TStringCore::number(number, base).append(u'|');
            long long value = 77;
            EXPECT_EQ(Scan(text).readInt(value, base).skip('|').index(), text.length());
            EXPECT_EQ(value, number) << "base " << base;
        }
    signed char small = 0;
    unsigned long long greatest = 0;
    TStringCore const text = u"18446744073709551615|+0x1F|7|";
    Scan(text).readInt(greatest).skip("|").readInt(small, 16).skip("|").readInt(small, 0);
    EXPECT_TRUE(greatest == ~0ULL && small == 7);
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
    using Outputs = std::tuple<bool, int, unsigned char, unsigned long long, float, double>;
    static constexpr Outputs Before(true, 77, 77, 77, 77, 77);
    static Outputs o;
    constexpr char OutOfRange[] = "readInt: Integer value out of range.";
    using std::get;
    struct Row
    {
        TStringCore text; ///< after the first unit
        void (*read)(Scan &);
        char const *failure;
    };

    Row const rows[] = {
        {u"maybe", [](Scan &s) { s.readBool(get<bool>(o)); }, "lengthBool: Boolean value not found."},
        {u"--1", [](Scan &s) { s.readInt(get<int>(o), 8); }, "readInt: Integer value not found."},
        {u"2147483648", [](Scan &s) { s.readInt(get<int>(o)); }, OutOfRange},
        {u"-2147483649", [](Scan &s) { s.readInt(get<int>(o)); }, OutOfRange},
        {u"256", [](Scan &s) { s.readInt(get<unsigned char>(o)); }, OutOfRange},
        {u"-f", [](Scan &s) { s.readInt(get<unsigned long long>(o), 16); }, OutOfRange},
        {u"x", [](Scan &s) { s.readFloat(get<float>(o)); }, "readFloat: Float value not found."},
        {u"+", [](Scan &s) { s.readFloat(get<double>(o)); }, "readDouble: Float value not found."},
        {u"Key", [](Scan &s) { s.skip(u"key"); }, "skip: String mismatch."},
        {u"ke", [](Scan &s) { s.skip(TStringCore(u"ke\0", 3)); }, "skip: String mismatch."},
        {u" ", [](Scan &s) { s.end(); }, "end(): Expected null character."},
    };
    for (Row const &row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.text));
        TStringCore const text = TStringCore(u"|").append(row.text);
        Scan scan(text);
        scan.skipString(1);
        o = Before;
        EXPECT_EQ(failureOf([&] { row.read(scan); }), TStringCore("TScanStringCore::").append(row.failure));
        EXPECT_EQ(scan.index(), 1);
        EXPECT_TRUE(o == Before);
    }
}

TEST(TScanStringCore, ReportsNullAndThrowsItsType)
{
    TCodeUnit const *const null = nullptr;
    {
        RecordedAssertions const recorded;
        Scan scan(null);
        scan.reset();
        EXPECT_EQ(RecordedAssertions::Take(),
                  std::vector<std::string>(2, "vansys/main/vansys/TScanStringCore:223: m_input"));
        TStringCore line(u"before");
        EXPECT_EQ(scan.readLine(line).skipWhitespace().skipNewline().end().str(), null);
        EXPECT_EQ(line, u"");
    }
    EXPECT_THROW(Scan{null}, VantrelException);
    std::unique_ptr<VantrelException> const clone(Scan::Exception(u"x").Clone());
    EXPECT_THROW(clone->Throw(), Scan::Exception) << "its own type";
}
