// The switch is process-wide and has no way back, hence a program of its own.

#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <utility>

TEST(ConservativeString, GrowsByFullAndThreeQuarterSteps)
{
    EXPECT_FALSE(TStringCore::IsConservativeString());
    TStringCore const before(u'x', 40);
    TStringCore::EnableConservativeString();
    EXPECT_TRUE(TStringCore::IsConservativeString());
    EXPECT_EQ(before.capacity(), 64);

    std::pair<int, int> const capacities[] = {{14, 15}, {15, 17}, {16, 17},   {17, 25},   {24, 25},  {25, 41},
                                              {40, 41}, {41, 57}, {100, 121}, {120, 121}, {121, 185}};
    for (auto const &[length, capacity] : capacities)
        EXPECT_EQ(TStringCore(u'x', length).capacity(), capacity) << length;

    TStringCore text;
    for (int const reserved : {20, 31})
    {
        text.reserve(reserved);
        EXPECT_EQ(text.capacity(), reserved + 1);
    }
    EXPECT_THROW(text.resize(0x7FFFFFF9), TStringCore::Exception);
    EXPECT_THROW(text.resize(0x70000000), TStringCore::Exception);
}
