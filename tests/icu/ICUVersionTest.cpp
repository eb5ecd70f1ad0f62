#include "vansys/ICUVersion.h"
#include "vansys/ICUFunctions.h"

#include <gtest/gtest.h>

#include <climits>

using namespace VanICU;

TEST(ICUVersion, StoresWhateverItIsGiven)
{
    EXPECT_EQ(getIcuVersion(), 4);
    for (int const version : {5, 0, -1, INT_MAX, 4})
    {
        setIcuVersion(version);
        EXPECT_EQ(getIcuVersion(), version);
    }
}

TEST(ICUStatus, WarningsAreSuccess)
{
    for (int const code : {-128, -1, 0, 1, INT_MAX})
    {
        EXPECT_EQ(ICU_SUCCESS(static_cast<ICUErrorCode>(code)), code <= 0) << code;
        EXPECT_EQ(ICU_FAILURE(static_cast<ICUErrorCode>(code)), code > 0) << code;
    }
    EXPECT_STREQ(t_u_errorName(U_ILLEGAL_ARGUMENT_ERROR), "U_ILLEGAL_ARGUMENT_ERROR");
}
