#include "vansys/TMath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace
{

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr int MaxInt = std::numeric_limits<int>::max();
constexpr int MinInt = std::numeric_limits<int>::min();

} // namespace

TEST(TMathTest, UnitsAgreeWithEachOther)
{
    using namespace TMath;
    EXPECT_DOUBLE_EQ(FeetPerCentimeter, 1 / CentimetersPerFoot);
    EXPECT_DOUBLE_EQ(FeetPerMeter, 1 / MetersPerFoot);
    EXPECT_DOUBLE_EQ(InchesPerMeter, CentimetersPerMeter / CentimetersPerInch);
    EXPECT_DOUBLE_EQ(CentimetersPerFoot, CentimetersPerInch * InchesPerFoot);
    EXPECT_DOUBLE_EQ(MetersPerMile, FeetPerMile * MetersPerFoot);
    EXPECT_EQ(PI, std::acos(-1.0));
}

TEST(TMathTest, Angles)
{
    // Multiplied first, then divided: for these, the other order rounds differently.
    for (double const x : {1.0, 7.0, 33.3, 57.29577951308232, -141.0, 180.0, TMath::PI, 1e300})
    {
        volatile double const radians = x * TMath::PI;
        volatile double const degrees = x * 180;
        EXPECT_EQ(TMath::DegreesToRadians(x), radians / 180) << x;
        EXPECT_EQ(TMath::RadiansToDegrees(x), degrees / TMath::PI) << x;
    }
}

TEST(TMathTest, MulDiv)
{
    struct
    {
        int a, b, c, expected;
    } const rows[] = {
        {5, 3, 0, -1},                        // no divisor
        {7, 1, 2, 4},                         // halves go up
        {-7, 1, 2, -3},                       // also below zero, where the fraction is then dropped
        {-8, 1, 3, -2},                       // (-8 + 1) / 3
        {7, 1, -2, -3},                       // (7 - 1) / -2
        {100000, 100000, 100000, 100000},     // the product needs 64 bits
        {MinInt, MinInt, MinInt, MinInt + 1}, // -(2^31 - 1/2), the fraction dropped
        {MaxInt, 2, 1, MaxInt},               // held above
        {MinInt, 2, 1, MinInt},               // held below
        {MinInt, -1, 1, MaxInt},              // 2^31 is just too large
        {MaxInt, 1, MinInt, 0},               // (2^31 - 1 - 2^30) / -2^31
    };
    for (auto const &row : rows)
        EXPECT_EQ(TMath::MulDiv(row.a, row.b, row.c), row.expected)
            << row.a << " * " << row.b << " / " << row.c;
}

TEST(TMathTest, Round2)
{
    struct
    {
        double x;
        short digits;
        double expected;
    } const rows[] = {
        {2.5, 0, 3},
        {-2.5, 0, -3},
        {0.125, 2, 0.13},
        {1234.5, -2, 1200},
        {-1250, -2, -1300},
        {1.5e-20, 20, 2e-20},
        // The product is rounded before the half is added.
        {0.0049999999999999992, 2, 0.01},
        {-0.0049999999999999992, 2, -0.01},
        {-0.0001, 2, 0},
        {1e300, 10, Infinity},
        {Infinity, 2, Infinity},
        {-Infinity, 2, -Infinity},
    };
    for (auto const &row : rows)
    {
        double const result = TMath::round2(row.x, row.digits);
        EXPECT_EQ(result, row.expected) << row.x << " to " << row.digits;
        EXPECT_EQ(std::signbit(result), row.expected < 0) << row.x << " to " << row.digits;
    }
    for (short digits = 0; digits < 16; ++digits)
        EXPECT_EQ(TMath::round2(1.0 / 3, digits),
                  std::stod("0." + std::string(static_cast<std::size_t>(digits), '3')));
    EXPECT_TRUE(std::isnan(TMath::round2(NaN, 2)));
    EXPECT_TRUE(std::isnan(TMath::round2(1.0, 400)));
}

TEST(TMathTest, Identical)
{
    using TMath::identical;
    EXPECT_TRUE(identical(NaN, -NaN));

    using Row = std::vector<double>;
    using Table = std::vector<Row>;
    Row const rows[] = {{}, {1}, {NaN}, {1, NaN}, {1, 2}, {1, 2, 3}, {NaN, 2}};
    for (Row const &a : rows)
        for (Row const &b : rows)
        {
            SCOPED_TRACE(testing::Message() << &a - rows << ' ' << &b - rows);
            EXPECT_EQ(identical(a, Row(b)), &a == &b);
            EXPECT_EQ(identical(Table{a, {}, a}, Table{a, {}, b}), &a == &b);
            EXPECT_FALSE(identical(Table{a}, Table{a, b}));
            EXPECT_FALSE(identical(Table{a, b}, Table{a}));
        }
    EXPECT_TRUE(identical(Row{0.0}, Row{-0.0}));
}
