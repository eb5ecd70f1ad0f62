#include "vansys/TStringCore.h"

#include "support/FailureMessage.h"
#include "support/PlainNumbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace
{

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr char16_t BaseError[] = u"TStringCore::parseInteger: base out of range.";

using Texts = std::vector<TStringCore>;

std::basic_string<TWideTwin> twinOf(TStringCore const &text)
{
    return {text.begin(), text.end()};
}

/// Reads with one of the readers; `ok` must come back as given, whatever it was before.
template <class Number, class... Base>
void testRead(Number (TStringCore::*reader)(bool *, Base...) const, TStringCore const &text, Number expected,
              bool expectedOk, Base... base)
{
    bool ok = !expectedOk;
    Number const value = (text.*reader)(&ok, base...);
    EXPECT_TRUE(value == expected || (value != value && expected != expected)) << value << ", " << expected;
    EXPECT_EQ(std::signbit(static_cast<double>(value)), std::signbit(static_cast<double>(expected)));
    EXPECT_EQ(ok, expectedOk);
    (text.*reader)(nullptr, base...);
    if (testing::Test::HasFailure())
        FAIL() << testing::PrintToString(text);
}

/// The digits of `value` times 5 to the `exponent`.
std::string timesPowerOfFive(std::uint64_t value, int exponent)
{
    std::string digits = std::to_string(value);
    for (int i = 0; i < exponent; ++i)
    {
        int carry = 0;
        for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit)
        {
            carry += (*digit - '0') * 5;
            *digit = static_cast<char>('0' + carry % 10);
            carry /= 10;
        }
        if (carry != 0)
            digits.insert(0, std::to_string(carry));
    }
    return digits;
}

} // namespace

TEST(TStringCoreParse, LeftIntegerLength)
{
    std::tuple<int, int, Texts> const rows[] = {
        {10, 0, {u"", u"-", u"-+1", u" 1", u"x", u"\x131\x130"}},
        {10, 1, {u"1", u"0x1f", u"1a", u"1\u0661\uff11", {u"1\0002", 3}}},
        {10, 3, {u"-12x", u"+12", u"\x10\x19\x30\x1a"}}, // bit 0x20 is not looked at
        {16, 0, {u"0x", u"0xg", u"-ff"}},                // signs stand in base 10 only
        {16, 1, {u"0", u"Fg"}},
        {16, 4, {u"0x1f", u"0X1fg"}},
        {2, 3, {u"129", u"129A"}}, // decimal digits count in every base
        {20, 1, {u"AK", u"jk"}},
        {35, 0, {u"zZ"}},
        {36, 2, {u"zZ{"}},
        {0, 0, {u"", u"0x"}},
        {0, 2, {u"-0x1", u"17", u"09"}},
        {0, 4, {u"0x1f"}},
        {37, 0, {u"", {u"\0007", 2}}}, // settled before the base
    };
    for (auto const &[base, expected, texts] : rows)
    {
        for (TStringCore const &text : texts)
        {
            TStringCore const behind = TStringCore(text).append(u"1"); // not to be looked at
            SCOPED_TRACE(testing::PrintToString(text) + " in base " + std::to_string(base));
            EXPECT_EQ(text.leftIntegerLength(base), expected);
            EXPECT_EQ(TStringCore::leftIntegerLength(behind, text.length(), base), expected);
            EXPECT_EQ(TStringCore::leftIntegerLength(twinOf(text).c_str(), -1, base), expected);
        }
    }
    EXPECT_EQ(TStringCore::leftIntegerLength(static_cast<TCodeUnit const *>(nullptr), 5, 99), 0);
    EXPECT_EQ(TStringCore::leftIntegerLength(static_cast<TWideTwin const *>(nullptr), -1, 99), 0);
}

TEST(TStringCoreParse, BasesOutOfRange)
{
    for (auto const &row : {std::pair(u"7", 0), {u"x", 0}, {u"7", 1}, {u"77", -1}, {u"x", 37}})
    {
        char16_t const *const text = row.first;
        int const base = row.second;
        TStringCore const string = text;
        auto const twin = twinOf(string);
        EXPECT_EQ(StringFailureMessage([&] { string.leftIntegerLength(base); }), BaseError);
        EXPECT_EQ(StringFailureMessage([&] { TStringCore::leftIntegerLength(text, -1, base); }), BaseError);
        EXPECT_EQ(StringFailureMessage([&] { TStringCore::leftIntegerLength(twin.c_str(), -1, base); }),
                  BaseError);
        EXPECT_EQ(StringFailureMessage([&] { string.toInt(nullptr, base); }), BaseError);
    }
}

TEST(TStringCoreParse, Integers)
{
    std::tuple<int, long long, bool, Texts> const rows[] = {
        {10, 12, true, {u"12", u"+12", u"0000000000000000000000000000012"}},
        {10, 0, true, {u"0", u"-0", u"+00"}},
        {16, -255, true, {u"-ff", u"-0XfF"}},
        {36, 42819, true, {u"0x1f", u"+X1F"}}, // "x" is a digit here
        {0, 15, true, {u"0xf", u"017", u"15", u"+15"}},
        {10, LLONG_MAX, false, {u"9223372036854775808", u"18446744073709551617"}},
        {10, LLONG_MIN, false, {u"-9223372036854775809", u"-99999999999999999999999999999999"}},
        {16, LLONG_MAX, false, {u"8000000000000000", u"100000000000000001"}}, // 1, if it wrapped
        {10, 0, false, {u"", u"-", u"+-1", u" 1", u"1 ", u"1/", u":1", u"12:", u"0x1f", u"\u0661", u"1.0"}},
        {10, 0, false, {{u"1\0", 2}, {u"\0001", 2}, u"99999999999999999999999999999999x"}},
        {10, 0, false, {u"\x11\x12"}}, // measured, and no number, as the next one
        {8, 0, false, {u"129"}},
        {16, 0, false, {u"0x", u"0x-1", u"fg"}},
        {0, 0, false, {u"-0x1", u"08"}},
        {99, 0, false, {u"", {u"\0007", 2}}}, // settled before the base
    };
    for (auto const &[base, expected, ok, texts] : rows)
    {
        for (TStringCore const &text : texts)
            testRead(&TStringCore::toLongLong, text, expected, ok, base);
    }
}

TEST(TStringCoreParse, RangeOfEachType)
{
    auto const test = []<class Integer>(Integer (TStringCore::*reader)(bool *, int) const)
    {
        using Limits = std::numeric_limits<Integer>;
        for (int const base : {2, 10, 16, 36})
        {
            TStringCore const max = TStringCore::number(Limits::max(), base);
            TStringCore const min = TStringCore::number(Limits::min(), base);
            testRead(reader, max, Limits::max(), true, base);
            testRead(reader, min, Limits::min(), true, base);
            testRead(reader, TStringCore(max).append(u'0'), Limits::max(), false, base);
            testRead(reader, TStringCore(u"-").append(max).append(u'0'), Limits::min(), false, base);
            if constexpr (sizeof(Integer) < sizeof(long long))
            {
                testRead(reader, TStringCore::number(Limits::max() + 1LL, base), Limits::max(), false, base);
                testRead(reader, TStringCore::number(Limits::min() - 1LL, base), Limits::min(), false, base);
            }
        }
        testRead(reader, u"-1", static_cast<Integer>(Limits::is_signed ? -1 : 0), Limits::is_signed, 10);
    };
    auto const testAll = [&](auto... readers) { (test(readers), ...); };
    testAll(&TStringCore::toShort, &TStringCore::toUShort, &TStringCore::toInt, &TStringCore::toUInt,
            &TStringCore::toLong, &TStringCore::toULong, &TStringCore::toLongLong, &TStringCore::toULongLong);
}

TEST(TStringCoreParse, FloatingGrammar)
{
    std::tuple<double, bool, Texts> const numbers[] = {
        {1.5, true, {u"1.5", u"+1.5e0", u"15E-1", u".15e+1"}},
        {-100, true, {u"-100", u"-100.", u"-1.e2", u"-0000000000000000000000100"}},
        {-0.0, true, {u"-0", u"-.0", u"-0e99999999999999999999", u"-1e-400", u"-1e-99999999999999999999"}},
        {Infinity, true, {u"inf", u"+INFINITY"}},
        {-Infinity, true, {u"-Inf", u"-infiNIty"}},
        {NaN, true, {u"nan", u"NaN"}},
        {Infinity, false, {u"1e400", u"1e99999999999999999999", u"1.7976931348623159e308"}},
        {-Infinity, false, {u"-1e400"}},
        {std::numeric_limits<double>::denorm_min(), true, {u"4e-324"}},
    };
    for (auto const &[value, ok, texts] : numbers)
    {
        for (TStringCore const &text : texts)
        {
            EXPECT_EQ(text.leftDoubleLength(), text.length()) << testing::PrintToString(text);
            testRead(&TStringCore::toDouble, text, value, ok);
            testRead(&TStringCore::toFloat, text, static_cast<float>(value), ok);
        }
    }
    std::pair<int, Texts> const others[] = {
        {0,
         {u"", u"-", u".", u"-.e1", u"+-1", u" 1", u"in", u"na", u"e1", u"\u0661", u"\x131", {u"\0001", 2}}},
        {1, {u"1 ", u"1,5", u"1e", u"1e+", u"1ee1", u"0x10", {u"1\0", 2}}},
        {3, {u"1.5.", u"1.5e-x", u"1e5e5", u"1.5f", u"infinit", u"nan(1)"}},
    };
    for (auto const &[length, texts] : others)
    {
        for (TStringCore const &text : texts)
        {
            EXPECT_EQ(text.leftDoubleLength(), length) << testing::PrintToString(text);
            EXPECT_EQ(TStringCore::leftDoubleLength(twinOf(text).data(), text.length()), length);
            testRead(&TStringCore::toDouble, text, 0.0, false);
            testRead(&TStringCore::toFloat, text, 0.0f, false);
        }
    }
    EXPECT_EQ(TStringCore::leftDoubleLength(static_cast<TCodeUnit const *>(nullptr), 5), 0);
    EXPECT_EQ(TStringCore::leftDoubleLength(u"infinity", 7), 3); // does not look behind the length
    EXPECT_EQ(TStringCore::leftDoubleLength(u"1e5", 2), 1);
    EXPECT_EQ(TStringCore::leftDoubleLength(u"1e5x", -1), 3);
}

// The C library rounds correctly too.
TEST(TStringCoreParse, FloatingValuesAreThoseOfTheCLibrary)
{
    std::mt19937_64 random(1);
    auto const check = [](std::string const &text)
    {
        TStringCore const string = TStringCore::fromStdString(text);
        double const ownDouble = string.toDouble();
        float const ownFloat = string.toFloat();
        PlainNumbers const plainNumbers;
        ASSERT_EQ(ownDouble, std::strtod(text.c_str(), nullptr)) << text;
        ASSERT_EQ(ownFloat, std::strtof(text.c_str(), nullptr)) << text;
    };
    for (int i = 0; i < 50'000; ++i)
    {
        // About the borders of what is computed exactly.
        std::string digits = std::to_string(random() >> random() % 64);
        check(digits + "e" + std::to_string(static_cast<int>(random() % 60) - 30));
        digits.insert(static_cast<std::size_t>(random() % (digits.size() + 1)), 1, '.');
        check(digits);

        auto const value = std::bit_cast<double>(random() % 0x7FF0'0000'0000'0000); // finite
        char buffer[64];
        check({buffer, std::to_chars(buffer, std::end(buffer), value).ptr});
        check({buffer, std::to_chars(buffer, std::end(buffer), static_cast<float>(value)).ptr});
    }
}

TEST(TStringCoreParse, LongTextsAreRoundedOnce)
{
    std::string const zeros(100'000, '0');
    auto const read = [](std::string const &text) { return TStringCore::fromStdString(text).toDouble(); };

    EXPECT_EQ(read("1" + zeros + "e-100000"), 1);
    EXPECT_EQ(read("0." + zeros + "1e100001"), 1);
    EXPECT_EQ(read(zeros + "1.5" + zeros), 1.5);
    EXPECT_EQ(read(zeros), 0);
    EXPECT_EQ(read("18446744073709551617"), 18446744073709551616.0); // 1, if it wrapped

    // Halfway between two floats; then above it by a digit far away, or by less than a double can tell.
    EXPECT_EQ(TStringCore::fromStdString("16777217." + zeros).toFloat(), 16777216);
    EXPECT_EQ(TStringCore::fromStdString("16777217." + zeros + "1").toFloat(), 16777218);
    EXPECT_EQ(TStringCore(u"16777217.0000000001").toFloat(), 16777218);

    // Halfway between two doubles, where no point has more digits.
    constexpr std::uint64_t Even = (std::uint64_t{1} << 53) - 2;
    double const even = std::ldexp(static_cast<double>(Even), -1074);
    std::string const halfway = timesPowerOfFive(2 * Even + 1, 1075); // and e-1075
    ASSERT_EQ(halfway.size(), 768u);
    EXPECT_EQ(read(halfway + "e-1075"), even);
    EXPECT_EQ(read(halfway + "." + zeros + "e-1075"), even);
    EXPECT_EQ(read(halfway + "." + zeros + "10e-1075"), std::nextafter(even, 1));
    EXPECT_EQ(read("-0." + halfway + zeros + "1e-307"), -std::nextafter(even, 1));
}
