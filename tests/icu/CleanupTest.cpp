// A program of its own: t_u_cleanup frees what every other test would rely on.
#include "icu/Families.h"

using namespace VanICU;

using ICUCleanup = ICUFamilyTest;
VANSYS_WITH_BOTH_FAMILIES(ICUCleanup);

TEST_P(ICUCleanup, IcuLoadsItselfAgain)
{
    for (int round = 0; round < 2; ++round)
    {
        ICUErrorCode status = U_ZERO_ERROR;
        {
            Owned<ICU_Collator, &t_ucol_close> const collator(t_ucol_open("sv", &status));
            EXPECT_EQ(t_ucol_strcoll(collator.get(), TStringCore("\u00E5"), -1, TStringCore("z"), -1),
                      UCOL_GREATER);
            EXPECT_TRUE(ICU_SUCCESS(status)) << t_u_errorName(status);
        }
        t_u_cleanup();
    }
}
