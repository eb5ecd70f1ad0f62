// What the build must have got right for the target, and would otherwise show only as wrong results.

#include "vansys/TMath.h"
#include "vansys/TStringCore.h"
#include "vansys/VantrelOutOfMemoryException.h"

#include <gtest/gtest.h>

#include <type_traits>

#if defined(_WIN32)
static_assert(sizeof(void *) == 4, "the DLL is for 32-bit programs");
static_assert(std::is_same_v<TCodeUnit, wchar_t> && std::is_same_v<TWideTwin, char16_t>);
#else
static_assert(sizeof(void *) == 8);
static_assert(std::is_same_v<TCodeUnit, char16_t> && std::is_same_v<TWideTwin, wchar_t>);
#endif
static_assert(sizeof(TStringCore) == 32 && alignof(TStringCore) == alignof(void *));
static_assert(sizeof(VantrelException) == 3 * sizeof(void *), "a virtual table and two lists");

// In the extended precision of the x87 unit, 2.675 * 100 is not the double that it is rounded to elsewhere.
TEST(Target, DoublesAreComputedAsDoubles)
{
    double volatile const value = 2.675;
    EXPECT_EQ(TMath::round2(value, 2), 2.68);
    double volatile const large = 9007199254740992.0;
    EXPECT_EQ((large + 1.0) - large, 0.0);
}

TEST(Target, ExceptionsOfTheLibraryAreCaughtByType)
{
    EXPECT_THROW(TStringCore().reserve(-1), TStringCore::Exception);
    EXPECT_THROW(VantrelOutOfMemoryException().Throw(), VantrelOutOfMemoryException);
    EXPECT_THROW(VantrelOutOfMemoryException().Throw(), VantrelException);
}
