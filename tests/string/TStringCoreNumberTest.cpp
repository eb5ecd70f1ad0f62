#include "vansys/TStringCore.h"

#include "support/FailureMessage.h"
#include "support/PlainNumbers.h"

#include <gtest/gtest.h>

#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <tuple>

namespace
{

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

/// Written as `std::to_chars` does it, and read back.
template <class Integer>
void testInteger(Integer value, int base, Integer (TStringCore::*reader)(bool *, int) const)
{
    char plain[65];
    *std::to_chars(plain, std::end(plain), value, base).ptr = 0;
    TStringCore const text = TStringCore().setNum(value, base);
    ASSERT_EQ(text, plain);
    ASSERT_EQ((text.*reader)(nullptr, base), value) << plain << " in base " << base;
}

void testInEachBase(unsigned long long value)
{
    for (int base = 2; base <= 36; ++base)
    {
        testInteger(value, base, &TStringCore::toULongLong);
        testInteger(static_cast<long long>(~value), base, &TStringCore::toLongLong);
    }
}

/// Printed as `printf` does it.
void testDouble(double value, char format, int precision)
{
    TStringCore const own = TStringCore::number(value, format, precision);
    PlainNumbers const plainNumbers;
    char text[2000]; // 1e308 with a precision of 1500 fits
    if (format == 'g')
        std::snprintf(text, sizeof text, "%.*g", precision, value);
    else
        std::snprintf(text, sizeof text, format == 'e' ? "%.*e" : "%.*f", precision, value);
    ASSERT_EQ(own, text) << format << precision;
}

} // namespace

TEST(TStringCoreNumber, IntegersReadBack)
{
    std::mt19937_64 random(1);
    for (int i = 0; i < 1000; ++i)
        testInEachBase(random() >> i % 64);
    // Where the number of digits changes.
    std::uint64_t power = 1;
    for (int digits = 1; digits <= 20; ++digits, power *= 10)
    {
        testInEachBase(power);
        testInEachBase(power - 1);
    }
}

TEST(TStringCoreNumber, FieldWidth)
{
    auto const padded = [](int value, int base, int width)
    { return TStringCore::number(value, base, width, u'*'); };
    EXPECT_EQ(padded(-5, 10, 4), u"**-5");
    EXPECT_EQ(padded(-5, 10, -4), u"-5**");
    EXPECT_EQ(padded(-5, 10, 2), u"-5");
    EXPECT_EQ(padded(-5, 10, -1), u"-5");
    EXPECT_EQ(padded(255, 2, 14), u"******11111111"); // the longest that is inline
    EXPECT_EQ(padded(255, 2, 15), u"*******11111111");
}

TEST(TStringCoreNumber, Errors)
{
    char16_t const baseError[] = u"TStringCore::number: base out of range.";
    for (int const base : {INT_MIN, 0, 1, 37, INT_MAX})
    {
        EXPECT_EQ(StringFailureMessage([&] { TStringCore::number(1, base); }), baseError);
        EXPECT_EQ(StringFailureMessage([&] { TStringCore().setNum(1ull, base); }), baseError);
    }
    char16_t const lengthError[] = u"Allocation size less than zero; probable overflow";
    for (int const width : {INT_MIN, -INT_MAX, INT_MAX})
        EXPECT_EQ(StringFailureMessage([&] { TStringCore::number(1, 10, width); }), lengthError);
    for (char const format : {'e', 'f'})
        EXPECT_EQ(StringFailureMessage([&] { TStringCore::number(1.5, format, INT_MAX); }), lengthError);
}

TEST(TStringCoreNumber, Doubles)
{
    std::tuple<double, char, int, char16_t const *, char16_t const *> const rows[] = {
        {2, 'f', -1, u"2.000000", u"2.0"},
        {100, 'f', 0, u"100", u"1"}, // zeros go, though there is no point
        {-0.0, 'f', 0, u"0", u""},
        {-0.004, 'f', 2, u"0.00", u"0.0"},
        {-0.006, 'f', 2, u"-0.01", u"-0.01"},
        {1e-7, 'F', 3, u"0.000", u"0.0"},
        {150000, 'e', INT_MIN, u"1.500000e+05", u"1.5e+05"},
        {-1e100, 'E', 2, u"-1.00E+100", u"-1.0E+100"},
        {-0.0, 'e', 0, u"0e+00", u"e+00"},
        {3, 'g', 6, u"3", u"3.0"},
        {-0.0, 'g', 6, u"0", u"0.0"},
        {0.125, 'G', 6, u"0.125", u"0.125"},
        {1e-5, 'G', 6, u"1E-05", u"1.0E-05"},
        {25, 'g', 0, u"2e+01", u"2.0e+01"},
        {0.5, 'g', INT_MAX, u"0.5", u"0.5"},
        {1e6, 'x', 6, u"1e+06", u"1.0e+06"}, // no letter of ours: "g"
        {Infinity, 'f', 2, u"inf", u"inf"},
        {-Infinity, 'E', 0, u"-inf", u"-inf"},
        {NaN, 'G', 6, u"nan", u"nan"},
        {-NaN, 'f', 6, u"nan", u"nan"}};
    for (auto const &[value, format, precision, plain, tidy] : rows)
    {
        EXPECT_EQ(TStringCore::number(value, format, precision), plain) << format;
        EXPECT_EQ(TStringCore().setNum(value, format, precision, true), tidy) << format;
    }
    EXPECT_EQ(TStringCore::number(1.5, 'f', INT_MAX, true), u"1.5");
}

TEST(TStringCoreNumber, DoublesAreThoseOfPrintf)
{
    std::mt19937_64 random(1);
    auto const below = [&random](int limit)
    { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    for (int i = 0; i < 10'000; ++i)
    {
        char const format = "efg"[i % 3];
        double const fraction = std::ldexp(static_cast<double>(random() >> 11), -53);
        testDouble(std::ldexp(fraction + 0.5, below(2094) - 1070), format, 6);
        testDouble(std::ldexp(fraction + 0.5, below(80) - 40), format, below(20));
        testDouble(below(100'000'000) / 1000.0, format, below(8));
        if (i % 32 == 0) // about the number of digits that a double has at most behind the point
            testDouble(std::ldexp(1 / 3.0, -1072 + below(100)), format, 1068 + below(i % 64 ? 12 : 400));
    }
}

TEST(TStringCoreNumber, Pointer)
{
    auto const *const address = reinterpret_cast<void const *>(std::uintptr_t{0xAB09F});
    TStringCore const zeros(u'0', 2 * int{sizeof address} - 5);
    EXPECT_EQ(TStringCore::pointer(address), TStringCore(u"0x").append(zeros).append(u"ab09f"));
    EXPECT_EQ(TStringCore::pointer(address, false, true), TStringCore(zeros).append(u"AB09F"));
}
