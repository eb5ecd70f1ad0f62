// A program of its own: t_u_cleanup frees what every other test would rely on.
#include "icu/Families.h"

using namespace VanICU;

VANSYS_FAMILY_TEST(ICUCleanup);

TEST_P(ICUCleanup, IcuLoadsItselfAgain)
{
    for (int round = 0; round < 2; ++round)
    {
        Owned<ICU_Collator, &t_ucol_close> collator(t_ucol_open("sv", &m_status));
        EXPECT_EQ(t_ucol_strcoll(collator.get(), TStringCore("\u00E5"), -1, TStringCore("z"), -1),
                  UCOL_GREATER);
        collator.reset();
        t_u_cleanup();
    }
}
