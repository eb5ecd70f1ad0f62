#include "vansys/ICUVersion.h"
#include "vansys/ICUFunctions.h"

#include <gtest/gtest.h>

#include <climits>

using namespace VanICU;

TEST(ICUVersion, StoresWhateverItIsGiven)
{
    EXPECT_EQ(getIcuVersion(), 4);
    for (int const version : {5, 55, 0, -1, INT_MAX, 4})
    {
        setIcuVersion(version);
        EXPECT_EQ(getIcuVersion(), version);
    }
}

TEST(ICUStatus, WarningsAreSuccess)
{
    struct
    {
        ICUErrorCode code;
        bool success;
        char const *name;
    } const rows[] = {
        {U_USING_FALLBACK_WARNING, true, "U_USING_FALLBACK_WARNING"},
        {static_cast<ICUErrorCode>(-1), true, "[BOGUS UErrorCode]"},
        {U_ZERO_ERROR, true, "U_ZERO_ERROR"},
        {U_ILLEGAL_ARGUMENT_ERROR, false, "U_ILLEGAL_ARGUMENT_ERROR"},
        {U_REGEX_INTERNAL_ERROR, false, "U_REGEX_INTERNAL_ERROR"},
        {static_cast<ICUErrorCode>(INT_MAX), false, "[BOGUS UErrorCode]"},
    };
    for (auto const &row : rows)
    {
        EXPECT_EQ(ICU_SUCCESS(row.code) != 0, row.success) << row.code;
        EXPECT_EQ(ICU_FAILURE(row.code) == 0, row.success) << row.code;
        EXPECT_STREQ(t_u_errorName(row.code), row.name);
    }
}
