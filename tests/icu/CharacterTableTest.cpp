// The tables of characters are filled on first use, so this has a process of its own, in which nothing has
// used them before.

#include "vansys/ICUCharacterFunctions.h"
#include "vansys/ICUVersion.h"
#include "vansys/TCType.h"
#include "vansys/TStringCore.h"

#include "support/Latch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

// First, as the tables are empty but once.
TEST(CharacterTable, TextIsComparedAndMappedFromTheFirstTimeOn)
{
    EXPECT_EQ(TStringCore(u"ΑΒΓΔΕΖΗΘ").compare(u"αβγδεζηι", TStringCore::CaseInsensitive), -1);
    EXPECT_EQ(TStringCore(u"ABCDEFGHАБВГДЕЖЗ").toLower(), u"abcdefghабвгдежз");
    EXPECT_EQ(TStringCore(u"աբգդեզէը").toUpper(), u"ԱԲԳԴԵԶԷԸ");
}

TEST(CharacterTable, AnyThreadMayBeTheFirstToAsk)
{
    constexpr int Units = 0x10000;
    for (int const version : {4, 55})
    {
        VanICU::setIcuVersion(version);
        std::atomic<int> differences{0};
        Latch start(4);
        auto const compare = [&](bool upwards)
        {
            start.ArriveAndWait(); // so that two come to each unfilled part at about the same time
            for (int i = 0; i < Units; ++i)
            {
                int const c = upwards ? i : Units - 1 - i;
                auto const unit = static_cast<TCodeUnit>(c);
                if (TCType::ToLower(unit) != VanICU::t_u_tolower(c) ||
                    TCType::isAlpha(unit) != (VanICU::t_u_isUAlphabetic(c) != 0))
                    ++differences;
            }
        };
        {
            std::jthread const threads[] = {std::jthread(compare, true), std::jthread(compare, true),
                                            std::jthread(compare, false), std::jthread(compare, false)};
        }
        EXPECT_EQ(differences, 0) << "family " << version;
    }
}
