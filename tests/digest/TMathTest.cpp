#include "vansys/TMath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

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
    for (double const x : {1.0, 7.0, 33.3, 57.29577951308232, -141.0, 1e300})
    {
        volatile double const radians = x * TMath::PI;
        volatile double const degrees = x * 180;
        EXPECT_EQ(TMath::DegreesToRadians(x), radians / 180) << x;
        EXPECT_EQ(TMath::RadiansToDegrees(x), degrees / TMath::PI) << x;
    }
    EXPECT_EQ(TMath::DegreesToRadians(180), TMath::PI);
    EXPECT_EQ(TMath::RadiansToDegrees(TMath::PI), 180);
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
        {-7, 1, -2, 4},                       // (-7 - 1) / -2
        {1, 1, 3, 0},                         // 2 / 3
        {2, 1, 3, 1},                         // 3 / 3
        {100000, 100000, 100000, 100000},     // the product needs 64 bits
        {MinInt, MinInt, MinInt, MinInt + 1}, // -(2^31 - 1/2), the fraction dropped
        {MaxInt, 2, 1, MaxInt},               // held above
        {MinInt, 2, 1, MinInt},               // held below
        {MinInt, -1, 1, MaxInt},              // 2^31 is just too large
        {MinInt, 1, 1, MinInt},
        {MinInt, MinInt, 1, MaxInt},
        {MaxInt, 1, MinInt, 0}, // (2^31 - 1 - 2^30) / -2^31
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
        {2.4999, 0, 2},
        {0.125, 2, 0.13},
        {-0.125, 2, -0.13},
        {1234.5, -2, 1200},
        {1250, -2, 1300},
        {-1250, -2, -1300},
        {3.14159, 3, 3.142},
        {1.0 / 3, 15, 0.333333333333333},
        {1.5e-20, 20, 2e-20},
        {1e300, 10, Infinity},
        {Infinity, 2, Infinity},
        {-Infinity, 2, -Infinity},
    };
    for (auto const &row : rows)
        EXPECT_EQ(TMath::round2(row.x, row.digits), row.expected) << row.x << " to " << row.digits;

    for (double const x : {-0.0001, -0.0, 0.0, 0.0049})
    {
        EXPECT_EQ(TMath::round2(x, 2), 0.0) << x;
        EXPECT_FALSE(std::signbit(TMath::round2(x, 2))) << x;
    }
    EXPECT_TRUE(std::isnan(TMath::round2(NaN, 2)));
    EXPECT_TRUE(std::isnan(TMath::round2(1.0, 400)));
}

TEST(TMathTest, Identical)
{
    using TMath::identical;
    EXPECT_TRUE(identical(1.5, 1.5));
    EXPECT_FALSE(identical(1.5, 1.6));
    EXPECT_TRUE(identical(0.0, -0.0));
    EXPECT_TRUE(identical(NaN, -NaN));
    EXPECT_FALSE(identical(NaN, 0.0));
    EXPECT_FALSE(identical(0.0, NaN));

    using Row = std::vector<double>;
    EXPECT_TRUE(identical(Row{}, Row{}));
    EXPECT_TRUE(identical(Row{1, NaN, 0.0}, Row{1, NaN, -0.0}));
    EXPECT_FALSE(identical(Row{1, NaN}, Row{1, 2}));
    EXPECT_FALSE(identical(Row{1, 2}, Row{1, 2, 3}));
    EXPECT_FALSE(identical(Row{1, 2, 3}, Row{1, 2}));

    using Table = std::vector<Row>;
    EXPECT_TRUE(identical(Table{}, Table{}));
    EXPECT_TRUE(identical(Table{{1}, {}, {NaN, 2}}, Table{{1}, {}, {NaN, 2}}));
    EXPECT_FALSE(identical(Table{{1}, {2}}, Table{{1}, {3}}));
    EXPECT_FALSE(identical(Table{{1}, {}}, Table{{1}}));
    EXPECT_FALSE(identical(Table{{1, 2}}, Table{{1}, {2}}));
}
