// The switch is process-wide and has no way back, hence a program of its own.

#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

TEST(ConservativeString, GrowsByFullAndThreeQuarterSteps)
{
    EXPECT_FALSE(TStringCore::IsConservativeString());
    TStringCore const before(u'x', 40);
    TStringCore::EnableConservativeString();
    EXPECT_TRUE(TStringCore::IsConservativeString());
    EXPECT_EQ(before.capacity(), 64);

    struct Row
    {
        int length;
        int capacity;
    };

    for (Row const row : {Row{14, 15},
                          {15, 17},
                          {16, 17},
                          {17, 25},
                          {24, 25},
                          {25, 41},
                          {40, 41},
                          {41, 57},
                          {100, 121},
                          {120, 121},
                          {121, 185}})
        EXPECT_EQ(TStringCore(u'x', row.length).capacity(), row.capacity) << row.length;

    TStringCore text;
    text.reserve(20);
    EXPECT_EQ(text.capacity(), 21);
    text.reserve(31);
    EXPECT_EQ(text.capacity(), 32);
    EXPECT_THROW(text.resize(0x7FFFFFF9), TStringCore::Exception);
    EXPECT_THROW(text.resize(0x70000000), TStringCore::Exception);
}
